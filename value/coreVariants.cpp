#include "core/ZArrayT.h"
#include "core/ZAtomicInt.h"
#include "core/ZCoreLib.h"
#include "core/ZError.h"
#include "core/ZUnique.h"
#include "object/ztype.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

// What counters, uniques and the library have to do with values.

ZAtomicInt::ZAtomicInt(const ZVariant& value) : cell(value.toInt()) {}

ZUnique::ZUnique(const ZVariant& value) : id(0) {
    if (value.isType(ztype<ZUnique>()) && value.getPtr()) assign(*static_cast<const ZUnique*>(value.getPtr()));
}

ZVArray ZCoreLib::plugins(const ZSelector& kind, bool qualified) {
    ZVArray made(ztype<ZSelector>());
    if (!made.append(getPlugins(kind, qualified))) ZError::fail();
    return made;
}
