#include "value/plainProperties.h"

#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZProperty.h"
#include "object/propertyAccess.h"
#include "toolkit/epoch.h"
#include "value/typedInstance.h"

namespace orv::plain {
namespace {

/// Longer rests of a path aren't asked for as one name.
constexpr int longestRest = 512;

void give(ZTypedPtr* typed, const ZTypedPtr& place) {
    if (typed) *typed = place;
}
bool isSynthetic(const ZTypedPtr& at, const ZSelector& name) {
    return at.type->isSynthetic() && at.type->hasSyntheticProperty(at, name);
}
void expandHeld(ZVariant& value) {
    if (value.type() && !value.type()->heldInline()) value = value.expand();
}

/// A property of the value itself, without a look at paths.
bool readOwn(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, bool expand, ZVariant& value) {
    ZTypedPtr place(at);
    if (at.type->getPropertyDef(&place, name, value)) {
        give(typed, place);
        if (expand) expandHeld(value);
        return true;
    }
    if (!isSynthetic(at, name)) return false;
    give(typed, at);
    value = at.type->getSyntheticProperty(at, name, expand);
    return true;
}

enum class Written { No, Yes, Unknown };

/// `Unknown` if the value itself has no such property.
Written writeOwn(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) {
    if (!at.instance) return Written::No;
    toolkit::EpochGuard guard;
    if (PropertyLookup* row = lookUpProperty(at.type, name)) {
        const CachedMethod* setter = row->property->readOnly() ? nullptr : writeAccessor(at.type, row);
        ZVariant room;
        AccessorWord word(static_cast<const void*>(nullptr));
        if (!setter || !accessorWord(row->writePlan, value, room, word)) return Written::No;
        int done = 0;
        auto bytes = static_cast<char*>(at.instance);
        if (!callForNumber(setter->method, bytes + setter->offset, &word, 1, done)) return Written::No;
        if (row->writePlan.answers && !(done & 0xFF)) return Written::No;
        give(typed, ZTypedPtr(row->owner, bytes + row->offset));
        return Written::Yes;
    }
    if (!isSynthetic(at, name)) return Written::Unknown;
    give(typed, at);
    return at.type->setSyntheticProperty(at, name, value, notify) ? Written::Yes : Written::No;
}
bool wroteOwn(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) {
    return writeOwn(at, typed, name, value, notify) == Written::Yes;
}

/// Whether a map is written under the whole rest of a path rather than in the value of its first part.
bool takesRest(const ZVariant& map, const ZSelector& path, int from, int parts) {
    if (from + 1 == parts || !map.hasKey(path.param(from))) return true;
    return parts - from <= longestRest && map.hasKey(path.extract(from, parts));
}

/// Writes a path: each value on the way is taken out and made private, the last one is changed, and all are put back.
/// An instance is shared by who refers to it: it is written itself, and the way ends there.
bool writePath(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& path, const ZVariant& value, bool notify) {
    const int parts = path.parcount();
    ZArrayT<ZVariant> way;
    for (int i = 0;; ++i) {
        if (i == parts) return false;
        const ZSelector name = path.param(i);
        if (i == 0) {
            ZVariant first;
            if (parts < 2 || !readOwn(at, nullptr, name, true, first) || !way.append(std::move(first))) return false;
        } else {
            ZVariant& holder = way[uint(i - 1)];
            if (holder.isZType()) return holder.setProperty(i + 1 == parts ? name : path.extract(i, parts), value);
            if (holder.isNull() || !holder.detach()) return false;
            const bool isMap = holder.typeIndexLabel() == ZMetaType::SelectMap;
            if (isMap && takesRest(holder, path, i, parts)) {
                if (!holder.setItem(i + 1 == parts ? name : path.extract(i, parts), value)) return false;
                break;
            }
            if (i + 1 == parts) {
                if (!wroteOwn(ZTypedPtr(holder), nullptr, name, value, notify)) return false;
                break;
            }
            ZVariant next;
            if (isMap)
                next = holder.itemByKey(name);
            else if (!readOwn(ZTypedPtr(holder), nullptr, name, true, next))
                return false;
            if (!way.append(std::move(next))) return false;
        }
    }
    for (uint i = way.count(); --i > 0;) {
        const ZVariant part = way[i];
        ZVariant& holder = way[i - 1];
        const bool isMap = holder.typeIndexLabel() == ZMetaType::SelectMap;
        const ZSelector name = path.param(int(i));
        if (!(isMap ? holder.setItem(name, part) : wroteOwn(ZTypedPtr(holder), nullptr, name, part, notify)))
            return false;
    }
    return wroteOwn(at, typed, path.param(0), way[0], notify);
}

} // namespace

PathEnd::PathEnd(const ZTypedPtr& from, const ZSelector& path) : at(from) {
    const int parts = path.deepName() ? path.parcount() : 0;
    for (int i = 0; i + 1 < parts; ++i) {
        ZVariant next;
        if (!readOwn(at, nullptr, path.param(i), true, next) || next.isNull()) return;
        holder = std::move(next);
        at = ZTypedPtr(holder);
        if (!at.type) return;
        const bool isInstance = detail::instanceOf(at);
        if (i + 2 == parts)
            name = path.param(i + 1);
        else if (isInstance || (at.type->isSynthetic() && parts - i <= longestRest))
            name = path.extract(i + 1, parts);
        else
            continue;
        found = i + 2 == parts || isInstance || isSynthetic(at, name);
        if (found) return;
    }
}
ZTypedPtr* PathEnd::place(ZTypedPtr* typed) const { return holder.isZType() ? typed : nullptr; }

bool property(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve) {
    if (name.isEmpty()) return false;
    ZTypedPtr place(at);
    if (at.type->propertyDef(&place, name, found)) {
        ZVariant value;
        ZTypedPtr reader(at);
        if (resolve && at.type->getPropertyDef(&reader, name, value)) found.setValue(value);
        give(typed, place);
        return true;
    }
    if (isSynthetic(at, name)) {
        give(typed, at);
        return at.type->syntheticProperty(at, name, found, resolve);
    }
    PathEnd end(at, name);
    return end.found && end.at.property(end.place(typed), end.name, found, resolve);
}

ZProperty* findProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name) {
    ZTypedPtr place(at);
    ZProperty* found = name.isEmpty() ? nullptr : at.type->findPropertyDef(&place, name);
    if (found) give(typed, place);
    return found;
}

ZProperty* findPropertyPath(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& path, ZSelector& rest) {
    if (ZProperty* whole = findProperty(at, typed, path)) {
        rest.clear();
        return whole;
    }
    if (!path.deepName()) return nullptr;
    ZProperty* first = findProperty(at, typed, path.param(0));
    if (first) rest = path.suffix();
    return first;
}

bool hasProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name) {
    if (name.isEmpty()) return false;
    ZTypedPtr place(at);
    if (at.type->hasPropertyDef(&place, name) || isSynthetic(at, name)) {
        give(typed, place);
        return true;
    }
    PathEnd end(at, name);
    return end.found && end.at.hasProperty(end.place(typed), end.name);
}

ZMetaType* getPropertyType(const ZTypedPtr& at, const ZSelector& name) { return propertyType(at, nullptr, name); }

ZMetaType* propertyType(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name) {
    if (name.isEmpty()) return nullptr;
    ZTypedPtr place(at);
    if (ZMetaType* type = at.type->propertyDefType(&place, name)) {
        give(typed, place);
        return type;
    }
    if (isSynthetic(at, name)) {
        give(typed, at);
        return at.type->getSyntheticPropertyType(at, name);
    }
    PathEnd end(at, name);
    return end.found ? end.at.propertyType(end.place(typed), end.name) : nullptr;
}

ZSelector propertyOptions(const ZTypedPtr& at, const ZSelector& name) {
    toolkit::EpochGuard guard;
    ZProperty* found = findProperty(at, nullptr, name);
    return found ? found->options() : ZSelector();
}

bool matchingPropertyType(const ZTypedPtr& at, const ZSelector& name, const ZMetaType* wanted) {
    ZMetaType* type = getPropertyType(at, name);
    if (!type || !wanted) return false;
    return type->isVariant() || wanted == type || wanted->typeOf(type->getDataType());
}

ZVariant getProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, bool expand) {
    ZVariant value;
    if (name.isEmpty() || readOwn(at, typed, name, expand, value)) return value;
    PathEnd end(at, name);
    return end.found ? end.at.getProperty(end.place(typed), end.name, expand) : ZVariant();
}

bool resolveProperty(const ZTypedPtr& at, const ZSelector& name, ZVariant& value) {
    if (!hasProperty(at, nullptr, name)) return false;
    value = getProperty(at, nullptr, name, true);
    return true;
}

ZVariant storedProperty(const ZTypedPtr& at, const ZSelector& name) {
    toolkit::EpochGuard guard;
    return at.type->storedPropertyDef(name) ? getProperty(at, nullptr, name, true) : ZVariant();
}

bool setProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) {
    if (name.isEmpty()) return false;
    const Written own = writeOwn(at, typed, name, value, notify);
    if (own != Written::Unknown || name.type() != ZSelector::UID) return own == Written::Yes;
    return writePath(at, typed, name, value, notify);
}

bool setDynamicProperty(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value, bool add) {
    if (name.isEmpty() || !at.instance || at.type->indexLabel() != ZMetaType::SelectMap) return false;
    return at.type->setSyntheticProperty(at, name, value, add);
}

bool containsVariableProperty(const ZTypedPtr& at) {
    ZArrayT<ZSelector> names;
    if (!propertyNames(at, names)) return false;
    for (const ZSelector& name : names)
        if (containsVariableProperty(at, name)) return true;
    return false;
}

bool containsVariableProperty(const ZTypedPtr& at, const ZSelector& name) {
    toolkit::EpochGuard guard;
    ZProperty* found = findProperty(at, nullptr, name);
    return found && (found->variable() || getProperty(at, nullptr, name, true).isVariableType());
}

bool updateProperties(const ZTypedPtr& at, ZTypedPtr* typed, PropertyVisit filter, PropertyVisit update, void* context,
                      bool recursive, bool detached) {
    give(typed, at);
    ZTypedPtr place(at);
    return at.type->updatePropertyDefs(&place, filter, update, context, recursive, detached);
}

uint propertyCount(const ZTypedPtr& at) {
    return at.type->propertyDefCount() + (at.type->isSynthetic() ? at.type->syntheticPropertyCount(at) : 0);
}

bool propertyNames(const ZTypedPtr& at, ZArrayT<ZSelector>& names) {
    return at.type->propertyDefNames(names) && (!at.type->isSynthetic() || at.type->syntheticPropertyNames(at, names));
}

bool storedPropertyNames(const ZTypedPtr& at, ZArrayT<ZSelector>& names) {
    for (int i = 0, count = at.type->storedPropertyCount(); i < count; ++i)
        if (!names.append(at.type->storedPropertyName(i))) return false;
    return true;
}

} // namespace orv::plain
