// Any bytes, as a condition: it is read or its fault has a place in the text, and bracketed, negated and joined with
// itself it says what logic says.
#include "tools/orv/where.h"

#include "core/ZCoreLib.h"
#include "core/construct.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ztype.h"
#include "text/ZString.h"

#include <cstdint>
#include <cstdlib>

namespace {

using orv::tool::TextFault;
using orv::tool::Where;

void require(bool holds) {
    if (!holds) std::abort();
}
ZMetaType* typeOf(const std::string& name) {
    switch (name.empty() ? 0 : name[0]) {
    case 'a': return ztype<large>();
    case 'b': return ztype<byte>();
    case 'd': return ztype<double>();
    case 'n': return ztype<ZSelector>();
    case 's': return ztype<ZString>();
    case 'e': return ZMetaType::findExisting("ZMetaType::Type");
    default: return nullptr;
    }
}
/// 1 and 0 for what it says of the object, -1 for a text that is no condition.
int check(const std::string& text, const ZObject& object) {
    TextFault fault;
    auto read = Where::read(text, typeOf, fault);
    if (!read) {
        require(fault.column >= 1 && fault.column <= text.size() + 1 && !fault.what.empty());
        return -1;
    }
    return read->matches(object);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static ZCoreLib library("fuzz", false, false, true);
    static ZObject* object = [] {
        auto made = zmake<ZObject>();
        made->setDynamicProperty("a", ZVariant(large(7)), true);
        made->setDynamicProperty("b", ZVariant(byte(7)), true);
        made->setDynamicProperty("d", ZVariant(0.5), true);
        made->setDynamicProperty("n", ZVariant(ZSelector("x y z")), true);
        made->setDynamicProperty("s", ZVariant(ZString("seven")), true);
        return made;
    }();
    if (size > 4096) return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const int says = check(text, *object);
    if (says < 0) return 0;
    const std::string brackets = "(" + text + ")";
    require(check("not " + brackets, *object) == !says);
    require(check(brackets + " and " + brackets, *object) == says);
    require(check(brackets + " or a != 7", *object) == says);
    return 0;
}
