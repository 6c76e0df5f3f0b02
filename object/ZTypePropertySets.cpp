#include "core/ZHashSetT.h"
#include "object/ZMetaType.h"
#include "object/ZPropertyPtr.h"
#include "object/ztype.h"
#include "value/ZTypedPtr.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

// Sets of properties. The maps have no type of values, or one to which the values convert.

namespace {
template <class F> bool forEachKey(const ZVSelectMap& values, F visit) {
    for (int i = 0, count = int(values.count()); i < count; ++i)
        if (!visit(values.key(i), values.entry(i).expand())) return false;
    return true;
}
bool put(ZVSelectMap& values, const ZSelector& name, const ZVariant& value) { return values.set(name, value); }
} // namespace

bool ZType::getProperties(ZVSelectMap& values) const {
    ZArrayT<ZSelector> names;
    return propertyNames(names) && fetchProperties(values, names);
}

bool ZType::propertiesWithOptions(const ZSelector& words, ZVSelectMap& values) const {
    ZArrayT<ZSelector> names;
    return propertiesWithOptions(words, names) && fetchProperties(values, names);
}

bool ZType::copyPropertiesFrom(const ZType* source) {
    if (!source) return false;
    if (source == this) return true;
    const DynamicProperties given = source->getDynamicProperties();
    for (const ZPropertyPtr& entry : given) {
        if (!entry.property()) continue;
        bool there = hasProperty(entry.key());
        if (there ? !setProperty(entry.key(), entry.property()->value()) : !addProperty(*entry.property()))
            return false;
    }
    ZArrayT<ZSelector> names;
    if (source->metaType && !source->metaType->propertyDefNames(names)) return false;
    for (const ZSelector& name : names)
        if (hasDefinedProperty(name) && !given.contains(name) && !(propertyFlags(name) & ZProperty::ReadOnly))
            setProperty(name, source->getProperty(name));
    return true;
}

bool ZType::addPropertyArray(const ZSelector& name, const ZVArray& values, bool notify) {
    ZTypedPtr array(ztype<ZVArray>(), &values);
    for (int i = 0, count = int(array.itemCount()); i < count; ++i)
        if (!addPropertyItem(name, array.itemByIndex(i), notify)) return false;
    return true;
}

bool ZType::setProperties(const ZVSelectMap& values) { return setProperties(values, true); }

bool ZType::setProperties(const ZVSelectMap& values, bool notify) {
    bool all = true;
    forEachKey(values, [&](const ZSelector& name, const ZVariant& value) {
        all &= setProperty(nullptr, name, value, notify);
        return true;
    });
    return all;
}

bool ZType::setProperties(const ZType* source) {
    ZArrayT<ZSelector> names;
    return source && source->propertyNames(names) && setProperties(source, names);
}

bool ZType::setProperties(const ZType* source, const ZArrayT<ZSelector>& names) {
    if (!source) return false;
    bool all = true;
    for (const ZSelector& name : names) all &= copyProperty(source, name);
    return all;
}

bool ZType::matchProperties(const ZVSelectMap& values) const {
    return forEachKey(values, [&](const ZSelector& name, const ZVariant& value) {
        return hasProperty(name) && getProperty(name).compare(value) == 0;
    });
}

bool ZType::matchProperties(const ZType* other) const {
    if (!other) return false;
    ZArrayT<ZSelector> names, others;
    if (!propertyNames(names) || !other->propertyNames(others) || names.count() != others.count()) return false;
    return matchNamedProperties(other, names);
}

bool ZType::matchMarkedProperties(const ZVSelectMap& values, char mark) const {
    return forEachKey(values, [&](const ZSelector& key, const ZVariant& value) {
        if (key.at(0) != mark) return true;
        ZSelector name(key.string() + 1, key.length() - 1);
        return hasProperty(name) && getProperty(name).compare(value) == 0;
    });
}

bool ZType::matchNamedProperties(const ZType* other, const ZArrayT<ZSelector>& names) const {
    if (!other) return false;
    for (const ZSelector& name : names)
        if (!hasProperty(name) || !other->hasProperty(name) || getProperty(name).compare(other->getProperty(name)) != 0)
            return false;
    return true;
}

bool ZType::fetchProperties(ZVSelectMap& values) const {
    for (int i = 0, count = int(values.count()); i < count; ++i) {
        ZSelector name = values.key(i);
        if (hasProperty(name) && !put(values, name, getProperty(name))) return false;
    }
    return true;
}

bool ZType::fetchProperties(ZVSelectMap& values, const ZArrayT<ZSelector>& names) const {
    for (const ZSelector& name : names)
        if (hasProperty(name) && !put(values, name, getProperty(name))) return false;
    return true;
}

bool ZType::fetchProperties(ZVSelectMap& values, const ZSelector& names) const {
    if (names.type() != ZSelector::Names)
        return names.isEmpty() || fetchProperties(values, ZArrayT<ZSelector>(&names, 1));
    return fetchProperties(values, names.extract());
}

bool ZType::fetchPropertiesWithOption(ZVSelectMap& values, const ZSelector& word) const {
    return propertiesWithOptions(word, values);
}

bool ZType::setPropertiesWithOption(const ZVSelectMap& values, const ZSelector& word) {
    bool all = true;
    forEachKey(values, [&](const ZSelector& name, const ZVariant& value) {
        if (hasPropertyOption(name, word)) all &= setProperty(name, value);
        return true;
    });
    return all;
}
