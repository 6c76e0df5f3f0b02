#pragma once

#include "core/ZArrayT.h"
#include "object/ZType.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

/// Properties of values that are no `ZType` instances: by the tables of their types, over the address of the value. The
/// type of `at` is never null. `typed` may be null; it gets the part of the value that has the property.
namespace orv::plain {

/// Follows a path, value by value, to what is asked for the rest of it: an instance, or the value that the last part is
/// asked of. `found` is false if it leads nowhere.
struct PathEnd {
    bool found = false;
    ZVariant holder; ///< keeps `at` alive
    ZTypedPtr at;
    ZSelector name;

    PathEnd(const ZTypedPtr& from, const ZSelector& path);
    /// What a caller may be told of the place: it has to outlive the search.
    ZTypedPtr* place(ZTypedPtr* typed) const;
};

// One property

bool property(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve);
/// Borrowed from the type's table.
ZProperty* findProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name);
/// The property of the first part of a path; `rest` gets the others.
ZProperty* findPropertyPath(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& path, ZSelector& rest);
bool hasProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name);
ZMetaType* getPropertyType(const ZTypedPtr& at, const ZSelector& name);
ZMetaType* propertyType(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name);
ZSelector propertyOptions(const ZTypedPtr& at, const ZSelector& name);
bool matchingPropertyType(const ZTypedPtr& at, const ZSelector& name, const ZMetaType* wanted);
ZVariant getProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, bool expand);
bool resolveProperty(const ZTypedPtr& at, const ZSelector& name, ZVariant& value);
ZVariant storedProperty(const ZTypedPtr& at, const ZSelector& name);
bool setProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify);
/// Of a map, whose keys come and go: with `add` one that isn't there too. Other values have none.
bool setDynamicProperty(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value, bool add);
bool clearProperty(const ZTypedPtr& at, const ZSelector& name);
bool containsVariableProperty(const ZTypedPtr& at);
bool containsVariableProperty(const ZTypedPtr& at, const ZSelector& name);
bool updateProperties(const ZTypedPtr& at, ZTypedPtr* typed, PropertyVisit filter, PropertyVisit update, void* context,
                      bool recursive, bool detached);

// Items of a property: by its accessor methods, else on a copy of its value, which is written back

ZVariant getItem(const ZTypedPtr& at, const ZSelector& name, int index);
ZVariant getItem(const ZTypedPtr& at, const ZSelector& name, const ZSelector& key);
ZVariant getItem(const ZTypedPtr& at, const ZSelector& name, const void* key);
ZVariant getItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key);
int itemCount(const ZTypedPtr& at, const ZSelector& name);
bool hasValue(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value);
ZVariant keyAt(const ZTypedPtr& at, const ZSelector& name, int index);
int indexOfKey(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key);
ZVariant keyOfValue(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value);
int indexOfValue(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value);
bool setItem(const ZTypedPtr& at, const ZSelector& name, int index, const ZVariant& value);
bool setItem(const ZTypedPtr& at, const ZSelector& name, const ZSelector& key, const ZVariant& value);
bool setItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key, const ZVariant& value);
bool insertItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key, const ZVariant& value);
bool addItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value);
bool addArray(const ZTypedPtr& at, const ZSelector& name, const ZVArray& values);
bool removeItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key);
bool removeItemAt(const ZTypedPtr& at, const ZSelector& name, int index);

// Values of enum properties by name

bool setEnum(const ZTypedPtr& at, const ZSelector& name, const ZSelector& item, bool notify);
bool addEnumItem(const ZTypedPtr& at, const ZSelector& name, const ZSelector& item);
bool setEnumItem(const ZTypedPtr& at, const ZSelector& name, int index, const ZSelector& item);
bool setEnumItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key, const ZSelector& item);
/// Sets the bits of flag names, or clears them.
bool setEnumFlags(const ZTypedPtr& at, const ZSelector& name, const ZSelector& words, bool on);

// All properties

uint propertyCount(const ZTypedPtr& at);
bool propertyNames(const ZTypedPtr& at, ZArrayT<ZSelector>& names);
bool storedPropertyNames(const ZTypedPtr& at, ZArrayT<ZSelector>& names);
bool propertiesWithOptions(const ZTypedPtr& at, const ZSelector& words, ZVSelectMap& values);
bool fetchProperties(const ZTypedPtr& at, ZVSelectMap& values);
bool fetchProperties(const ZTypedPtr& at, ZVSelectMap& values, const ZArrayT<ZSelector>& names);
bool setProperties(const ZTypedPtr& at, const ZVSelectMap& values);
bool setProperties(const ZTypedPtr& at, const ZType* source);
bool setProperties(const ZTypedPtr& at, const ZType* source, const ZArrayT<ZSelector>& names);
bool setPropertiesWithOption(const ZTypedPtr& at, const ZVSelectMap& values, const ZSelector& word);
/// With a mark, only the keys that bear it, which are compared without it.
bool matchProperties(const ZTypedPtr& at, const ZVSelectMap& values, char mark = 0);
bool matchProperties(const ZTypedPtr& at, const ZType* other);
bool matchProperties(const ZTypedPtr& at, const ZType* other, const ZArrayT<ZSelector>& names);

} // namespace orv::plain
