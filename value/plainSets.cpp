#include "object/ZMetaType.h"
#include "object/ZProperty.h"
#include "value/ZVArray.h"
#include "value/ZVSelectMap.h"
#include "value/plainProperties.h"

namespace orv::plain {
namespace {

/// Writes the properties that the value has; false if one of them can't be written, after all others were.
template <class Names, class Read> bool setAll(const ZTypedPtr& at, const Names& names, Read&& read) {
    bool done = true;
    for (const ZSelector& name : names)
        if (hasProperty(at, nullptr, name)) done = setProperty(at, nullptr, name, read(name), true) && done;
    return done;
}

bool writableNames(const ZTypedPtr& at, ZArrayT<ZSelector>& names) {
    ZArrayT<ZSelector> all;
    if (!propertyNames(at, all)) return false;
    for (const ZSelector& name : all) {
        ZProperty found;
        if (property(at, nullptr, name, found, false) && !found.readOnly() && !names.append(name)) return false;
    }
    return true;
}

} // namespace

bool addArray(const ZTypedPtr& at, const ZSelector& name, const ZVArray& values) {
    for (int i = 0, count = int(values.count()); i < count; ++i)
        if (!addItem(at, name, values.variant(i))) return false;
    return true;
}

bool fetchProperties(const ZTypedPtr& at, ZVSelectMap& values) {
    ZArrayT<ZSelector> names;
    return propertyNames(at, names) && fetchProperties(at, values, names);
}

bool fetchProperties(const ZTypedPtr& at, ZVSelectMap& values, const ZArrayT<ZSelector>& names) {
    for (const ZSelector& name : names)
        if (hasProperty(at, nullptr, name) && !values.set(name, getProperty(at, nullptr, name, true))) return false;
    return true;
}

bool propertiesWithOptions(const ZTypedPtr& at, const ZSelector& words, ZVSelectMap& values) {
    ZArrayT<ZSelector> names;
    return at.type->propertyDefsWithOptions(words, names) && fetchProperties(at, values, names);
}

bool setProperties(const ZTypedPtr& at, const ZVSelectMap& values) {
    return setAll(at, values.keys(), [&](const ZSelector& name) { return values.variant(name).expand(); });
}

bool setProperties(const ZTypedPtr& at, const ZType* source) {
    ZArrayT<ZSelector> names;
    return source && writableNames(at, names) && setProperties(at, source, names);
}

bool setProperties(const ZTypedPtr& at, const ZType* source, const ZArrayT<ZSelector>& names) {
    if (!source) return false;
    ZArrayT<ZSelector> shared;
    for (const ZSelector& name : names)
        if (source->hasProperty(name) && !shared.append(name)) return false;
    return setAll(at, shared, [&](const ZSelector& name) { return source->getProperty(name); });
}

bool setPropertiesWithOption(const ZTypedPtr& at, const ZVSelectMap& values, const ZSelector& word) {
    ZArrayT<ZSelector> names, given;
    if (!at.type->propertyDefsWithOptions(word, names)) return false;
    for (const ZSelector& name : names)
        if (values.haskey(name) && !given.append(name)) return false;
    return setAll(at, given, [&](const ZSelector& name) { return values.variant(name).expand(); });
}

bool matchProperties(const ZTypedPtr& at, const ZVSelectMap& values, char mark) {
    for (int i = 0, count = int(values.count()); i < count; ++i) {
        ZSelector name = values.key(i);
        if (mark && !name.hasSelectorMark(mark)) continue;
        if (mark) name = name.unmarked(mark);
        if (getProperty(at, nullptr, name, true).compare(values.entry(i).expand()) != 0) return false;
    }
    return true;
}

bool matchProperties(const ZTypedPtr& at, const ZType* other) {
    ZArrayT<ZSelector> names;
    return other && propertyNames(at, names) && matchProperties(at, other, names);
}

bool matchProperties(const ZTypedPtr& at, const ZType* other, const ZArrayT<ZSelector>& names) {
    if (!other) return false;
    for (const ZSelector& name : names)
        if (getProperty(at, nullptr, name, true).compare(other->getProperty(name)) != 0) return false;
    return true;
}

} // namespace orv::plain
