#include "core/ZArrayT.h"
#include "core/ZSelectString.h"
#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "value/ZArgument.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVariant.h"

// What names have to do with types and values.

namespace {

/// The texts of items, which any container of them tells by `entry`; false without memory.
template <class Items> bool namesOf(const Items& items, ZArrayT<ZSelector>& names) {
    for (uint i = 0; i < items.count(); ++i)
        if (!names.append(items.entry(int(i)).toSelector())) return false;
    return true;
}

} // namespace

ZSelector::ZSelector(const ZVArray& items, Type type) { set(items, type); }
ZSelector::ZSelector(const ZVHashSet& items, Type type) { set(items, type); }
bool ZSelector::set(const ZVArray& items, Type type) {
    ZArrayT<ZSelector> names;
    return namesOf(items, names) && set(names, type);
}
bool ZSelector::set(const ZVHashSet& items, Type type) {
    ZArrayT<ZSelector> names;
    return namesOf(items, names) && set(names, type);
}

ZSelector::ZSelector(const ZSelector& name, const ZMetaType* result, const ZMetaType* const* params, int count) {
    ZArrayT<ZSelector> names;
    bool done = result && count >= 0;
    for (int i = 0; done && i < count; ++i) done = params[i] && names.append(params[i]->getName());
    if (done) set(name, result->getName(), names.data(), count, Method);
}

ZVArray ZSelector::separate(Type type) const {
    ZVArray made(ztype<ZSelector>());
    if (!made.append(extract(type))) ZError::fail();
    return made;
}
ZVHashSet ZSelector::separateSet(Type type) const {
    ZVHashSet made(ztype<ZSelector>());
    for (const ZSelector& item : extract(type))
        if (!made.addSelector(item)) {
            made.clear();
            ZError::fail();
            break;
        }
    return made;
}

ZVKeyMap ZSelectString::valueMap(const ZVArray& items) {
    ZVKeyMap made(ztype<ZSelector>(), ztype<ZString>());
    const ZVArray kept(items);
    for (int i = 0; uint(i) < kept.count(); ++i) {
        const ZVariant item = kept.variant(i);
        auto pair = item.type() == ztype<ZSelectString>() ? static_cast<const ZSelectString*>(item.getPtr()) : nullptr;
        if (!pair || !made.setItem(&pair->selector, &pair->string)) {
            made.clear();
            ZError::fail();
            break;
        }
    }
    return made;
}

// Types

ZMetaType* ZSelector::nameType(const ZMetaType* type) const {
    if (isEmpty()) return nullptr;
    ZMetaType* found = type ? type->findType(*this) : nullptr;
    return found ? found : ZMetaType::find(*this);
}

ZArrayT<ZMetaType*> ZSelector::metaTypes(const ZMetaType* type) const {
    ZArrayT<ZMetaType*> types;
    if (isEmpty()) return types;
    bool done = types.append(result().nameType(type));
    for (int i = 0; done && i < parcount(); ++i) done = types.append(param(i).nameType(type));
    if (!done) {
        types.clear();
        ZError::fail();
    }
    return types;
}

bool ZSelector::matchTypes(const ZMetaType* type, const ZMetaType* otherType, const ZSelector& other, bool checkResult,
                           bool exact) const {
    const int mine = parcount(), others = other.parcount();
    if (exact && mine != others) return false;
    // A name that no type has fits itself.
    auto fits = [&](const ZSelector& parameter, const ZSelector& argument) {
        ZMetaType *wanted = parameter.nameType(type), *given = argument.nameType(otherType);
        return wanted && given ? given == wanted || given->distance(wanted, false) >= 0 : parameter == argument;
    };
    if (checkResult && !fits(result(), other.result())) return false;
    for (int i = 0; i < mine && i < others; ++i)
        if (!fits(param(i), other.param(i))) return false;
    return true;
}

// Formatting

bool ZSelector::xprintf(const char* format, const ZArrayT<ZVariant>& arguments) {
    ZString text;
    if (!text.xprintf(format, arguments)) return false;
    ZSelector made(text);
    if (made.isEmpty()) return false;
    *this = std::move(made);
    return true;
}
