// Any bytes, as the name of a type and as the signature of a method: asking for a type makes none and gives one that
// answers to the name, and a method of any signature can be looked at and let go.
#include "core/ZCoreLib.h"
#include "module/ZPackage.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZObject.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "toolkit/epoch.h"
#include "value/ZVariant.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void asType(const ZSelector& name) {
    const uint before = ZPackage::root()->getUsedTypes().count();
    ztype<ZObject>()->isBase(name);
    ztype<ZObject>()->hasMultimethodType(name, ZSelector());
    ZMetaType* found = ZMetaType::findExisting(name);
    require(ZPackage::root()->getUsedTypes().count() == before);
    if (!found) return;
    require(found->getPtrCount() <= 4 && ZMetaType::findExisting(name) == found);
    const ZMetaType* data = found->getDataType();
    require(data && data->getPtrCount() == 0 && found->distance(found, false) == 0);
    const ZVariant empty(found);
    require(empty.compare(empty) == 0);
}

void asSignature(const ZSelector& signature) {
    toolkit::EpochGuard guard;
    for (const ZSelector& qualifier : {ZSelector(), ZSelector("const")}) {
        ZMethod* method = ZMethod::create(signature, qualifier);
        if (!method) continue;
        const int count = method->paramCount();
        require(count >= 0 && count <= signature.length());
        for (int i = -1; i <= count + 1; ++i) method->paramType(i);
        method->resultType();
        require(!method->isValid() || int(method->paramTypes(ztype<ZObject>()).count()) == count + 1);
        // "..." is spelled as the array that it is.
        require(method->getSelector() == signature || method->openArgument() >= 0);
        require(method->qualify(qualifier));
        ZMethod::release(method);
    }
    const ZArrayT<ZMetaType*> types = signature.metaTypes(ztype<ZObject>());
    require(types.isEmpty() || int(types.count()) == signature.parcount() + 1);
    signature.matchTypes(ztype<ZObject>(), nullptr, signature, true, true);
    ztype<ZObject>()->hasMethodType(signature, ZSelector());
    ztype<ZObject>()->implementMethod(signature);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static ZCoreLib library("fuzz", false, false, true);
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    const size_t line = text.find('\n');
    const std::string name = text.substr(0, line), signature = line == text.npos ? name : text.substr(line + 1);
    asType(ZSelector(name.data(), int(name.size())));
    asSignature(ZSelector(signature.data(), int(signature.size())));
    toolkit::epochDrain();
    return 0;
}
