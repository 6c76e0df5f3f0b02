// Any bytes, as the words of a property, as the deep name of one and as the text of a value: words are read the same
// again from what is kept of them, names are asked without a trace, and a text that a type takes is read back alike
// from what the value prints.
#include "core/ZCoreLib.h"
#include "core/construct.h"
#include "object/ZEnumType.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZObject.h"
#include "object/ZProperty.h"
#include "object/ztype.h"
#include "text/ZDateTime.h"
#include "text/ZFileName.h"
#include "text/ZRange.h"
#include "text/ZString.h"
#include "text/ZTime.h"
#include "value/ZVArray.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void asWords(const ZSelector& words) {
    const uint flags = ZProperty::scanFlags(words);
    const int version = ZProperty::scanVersion(words), level = ZProperty::scanSBLevel(words);
    require(version >= -1 && level >= -1);
    const ZSelector options = ZProperty::extractOptions(words), updaters = ZProperty::extractUpdate(words);
    // What is kept has no meaning but its own.
    require(ZProperty::scanFlags(options) == 0 && ZProperty::scanVersion(options) == -1);
    require(ZProperty::extractOptions(options) == options && ZProperty::extractUpdate(options).isEmpty());
    ZProperty property(ZSelector("fuzzed"), ztype<int>(), flags);
    property.setOptions(words);
    require(property.getUpdaters() == updaters);
    ZMethod::scanFlags(words);
    ZMethod::extractOptions(words);
    ZMetaType::scanFlags(words);
    ZMetaType::extractOptions(words);
}

void asName(const ZSelector& name) {
    auto object = zmake<ZObject>();
    require(object != nullptr);
    ZVSelectMap map(ztype<ZVariant>());
    map.set("b", ZVariant(2));
    map.set("c", ZVariant(ZSelector("x y z")));
    require(object->setDynamicProperty("a", ZVariant(ztype<ZVSelectMap>(), &map), true));
    const uint before = std::as_const(*object).getDynamicProperties().count();
    object->hasProperty(name);
    object->getProperty(name);
    object->getPropertyType(name);
    if (object->setProperty(name, ZVariant(7))) object->hasProperty(name);
    require(std::as_const(*object).getDynamicProperties().count() == before);
    object->clearProperty(name);
    ZVariant value(ztype<ZVSelectMap>(), &map);
    value.getProperty(name);
    value.setProperty(name, ZVariant(ZString("text")));
    object->release();
}

void asValue(const ZString& text) {
    ZMetaType* types[] = {
        ztype<bool>(),
        ztype<byte>(),
        ztype<int>(),
        ztype<ularge>(),
        ztype<float>(),
        ztype<double>(),
        ztype<ZSelector>(),
        ztype<ZString>(),
        ztype<ZTime>(),
        ztype<ZDateTime>(),
        ztype<ZRange>(),
        ztype<ZFileName>(),
        ztype<ZVariant>(),
        ztype<ZVArray>(),
        ztype<ZVSelectMap>(),
        ztype<ZObject>(),
        ZMetaType::findExisting("ZMetaType::Type"),
        ZMetaType::findExisting("ZMetaType::Flags"),
    };
    for (ZMetaType* type : types) {
        const ZVariant value(type, text);
        if (value.isNull() || !type->primitive()) continue;
        const ZVariant again(type, value.toString());
        require(again.compare(value) == 0);
    }
    ZVariant detected(text);
    for (ZMetaType* type : types) {
        ZVariant converted(detected);
        if (!converted.convert(type)) require(converted.compare(detected) == 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static ZCoreLib library("fuzz", false, false, true);
    std::string rest(reinterpret_cast<const char*>(bytes), size);
    std::string lines[3];
    for (std::string& line : lines) {
        const size_t end = rest.find('\n');
        line = rest.substr(0, end);
        rest = end == std::string::npos ? line : rest.substr(end + 1);
    }
    asWords(ZSelector(lines[0].data(), int(lines[0].size())));
    asName(ZSelector(lines[1].data(), int(lines[1].size())));
    asValue(ZString(lines[2].data(), int(lines[2].size())));
    return 0;
}
