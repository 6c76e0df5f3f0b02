#pragma once

#include "object/ZType.h"
#include "value/forward.h"

/// A pointer that knows its type: the address of a value together with its metatype. A plain structure, a number inside
/// of a class and an instance of a `ZType` class look the same through it. Two words, no ownership, no lock: the rules
/// of what it points to hold.
///
/// Operations on an instance of a `ZType` class are its own, with dynamic properties and delegates; on other values
/// they work by the tables of the type. Without a type they answer null, false, 0, or -1 for a position. Where an
/// operation takes another typed pointer, which may be null, that one gets the base, delegate or part of the value in
/// which it found its answer.
class ORV_API ZTypedPtr {
public:
    // Making

    constexpr ZTypedPtr() = default;
    /// Null for null.
    ZTypedPtr(const ZTypedPtr* other);
    ZTypedPtr(ZMetaType* type, const void* instance) : type(type), instance(const_cast<void*>(instance)) {}
    /// Into the variant, if it holds its value itself: not to outlive it.
    ZTypedPtr(const ZVariant& value);
    ZTypedPtr(const ZVariant* value);
    ZTypedPtr(const ZType* instance);

    void assign(const ZTypedPtr& other) { *this = other; }
    void assign(const ZVariant& value) { *this = ZTypedPtr(value); }
    /// By the addresses of the types, then by value: -1, 0 or 1.
    int compare(const ZTypedPtr& other) const;
    bool isNull() const { return !type && !instance; }

    // Methods, borrowed. A path reads properties up to its last part and asks the value there. A `typed` with an
    // instance of its own stays as it is.

    ZMethod* method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    ZMethod* method(const ZSelector& selector, const ZSelector& qualifier) const;
    ZMethod* baseMethod(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    /// See `ZType::multimethod`.
    ZMethod* multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                         bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;
    ZMethod* multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const;
    ZMethod* baseMultimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                             bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;
    bool implements(const ZSelector& selector, const ZSelector& qualifier) const;
    bool definesName(const ZSelector& name) const;
    /// Calls the overload of `name`, or of a signature's name, that fits the arguments best. The null variant if there
    /// is none, or if an argument can't be converted.
    ZVariant invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const;
    ZVariant invoke(const ZSelector& name, const ZVArray& arguments) const;
    /// Calls a method without arguments; false if there is none.
    bool callV(const ZSelector& name) const;
    bool callV(const ZSelector& name, const ZSelector& qualifier) const;

    // Calls of an accessor method, found below, at this address

    ZVariant getVariant(ZMethod* method) const;
    ZVariant getVariant(ZMethod* method, int key) const;
    ZVariant getVariant(ZMethod* method, const ZSelector& key) const;
    ZVariant getVariant(ZMethod* method, const void* key) const;
    ZVariant getVariant(ZMethod* method, const ZVariant& key) const;
    bool setVariant(ZMethod* method, const ZVariant& value) const;
    bool setVariant(ZMethod* method, int key, const ZVariant& value) const;
    bool setVariant(ZMethod* method, const ZSelector& key, const ZVariant& value) const;
    bool setVariant(ZMethod* method, const ZVariant& key, const ZVariant& value) const;
    /// The position of a value; -1 for none.
    int findVariant(ZMethod* method, const ZVariant& value) const;

    // Items of a container: of `ZVArray`, `ZVHashSet`, `ZVSelectMap`, `ZVKeyMap`, `ZSelectorMap`. Positions count from
    // 0 in the order of the items; a key of an array is its position. False, null, 0 or -1 for what is no container,
    // and out of range.

    bool isContainer() const;
    uint itemCount() const;
    ZVariant itemByIndex(int index) const;
    ZVariant itemByKey(const ZSelector& key) const;
    ZVariant itemByKey(const ZVariant& key) const;
    /// The key of an item; the position of one of an array, the item itself of a set.
    ZVariant keyByIndex(int index) const;
    bool setItem(int index, const ZVariant& value) const;
    bool setItem(const ZSelector& key, const ZVariant& value) const;
    bool setItem(const ZVariant& key, const ZVariant& value) const;
    bool appendItem(const ZVariant& value) const;
    /// A new item: in an array at a position, in a map under a key that it doesn't have.
    bool insertItem(const ZVariant& key, const ZVariant& value) const;
    bool removeItem(int index) const;
    bool removeItem(const ZSelector& key) const;
    bool removeItem(const ZVariant& key) const;
    /// The first item of that value.
    bool removeValue(const ZVariant& value) const;
    bool clearItems() const;
    bool hasKey(const ZSelector& key) const;
    bool hasKey(const ZVariant& key) const;
    int indexOfKey(const ZVariant& key) const;
    int indexOfValue(const ZVariant& value) const;
    bool containsValue(const ZVariant& value) const;
    /// The key of the first item of that value.
    ZVariant keyOfValue(const ZVariant& value) const;
    ZSelector selectorOfValue(const ZVariant& value) const;

    // Enums of the type

    bool enumValue(const ZSelector& path, int& value) const;
    ZSelector enumName(const ZSelector& enumType, int value) const;
    ZEnumType* findEnum(const ZSelector& name) const;
    int scanEnum(const ZSelector& enumType, const ZSelector& words) const;
    ZSelector outputEnum(const ZSelector& enumType, int flags) const;

    // Property catalogue

    ZProperty* getMetaProperty(const ZSelector& name) const;
    ZSelector replacePropertyName(const ZSelector& name) const;
    uint propertyCount() const;
    bool dynamicPropertyNames(ZArrayT<ZSelector>& names) const;
    bool enumerateProperties(orv::PropertyVisit visit, void* context) const;
    bool updateProperties(ZTypedPtr* typed, orv::PropertyVisit filter, orv::PropertyVisit update, void* context,
                          bool recursive, bool detached) const;
    bool updateProperties(orv::PropertyVisit filter, orv::PropertyVisit update, void* context) const;
    bool getProperties(ZVSelectMap& values) const;
    bool propertiesWithOptions(const ZSelector& words, ZArrayT<ZSelector>& names) const;
    bool propertiesWithOptions(const ZSelector& words, ZVSelectMap& values) const;
    bool copyPropertiesFrom(const ZType* source) const;
    bool retainedObjectNames(ZArrayT<ZSelector>& names) const;
    bool collectPropertyNames(ZHashSetT<ZSelector>& names) const;

    // Property lookup. A `typed` gets the instance that owns what was found; null is fine.

    ZProperty* dynamicProperty(const ZSelector& name) const;
    bool dynamicProperty(const ZSelector& name, ZProperty& found) const;
    bool property(ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve) const;
    bool property(const ZSelector& name, ZProperty& found, bool resolve) const;
    bool property(const ZSelector& name, ZProperty& found) const;
    bool propertyNames(ZArrayT<ZSelector>& names) const;
    bool storedPropertyNames(ZArrayT<ZSelector>& names) const;
    bool delegatePropertyNames(ZArrayT<ZSelector>& names) const;
    ZProperty* findPropertyRoot(ZTypedPtr* typed, const ZSelector& name) const;
    ZProperty* findPropertyPath(ZTypedPtr* typed, const ZSelector& path, ZSelector& rest) const;
    ZProperty* findProperty(ZTypedPtr* typed, const ZSelector& name, bool localOnly) const;
    void delegatePropertyChanged(const ZSelector& name) const;
    int propertyVersion(const ZSelector& name) const;
    uint propertyFlags(const ZSelector& name) const;
    ZSelector propertyOptions(const ZSelector& name) const;
    bool hasPropertyOption(const ZSelector& name, const ZSelector& word) const;
    bool setPropertyOptions(const ZSelector& name, const ZSelector& words) const;
    bool containsVariableName(const ZSelector& name) const;
    bool containsVariableProperty() const;
    bool containsVariableProperty(const ZSelector& name) const;
    bool isDynamicProperty(const ZSelector& name) const;
    bool isResolvedProperty(const ZSelector& name) const;
    bool isDynamicResolved(const ZSelector& name) const;
    bool isCollectionProperty(const ZSelector& name) const;
    bool setPropertyFlags(const ZSelector& name, uint flags) const;
    bool hasProperty(ZTypedPtr* typed, const ZSelector& name) const;
    bool hasProperty(const ZSelector& name) const;
    bool hasDynamicProperty(const ZSelector& name) const;
    bool hasDefinedProperty(const ZSelector& name) const;
    ZMetaType* propertyDefinitionType(const ZSelector& name) const;
    ZMetaType* getPropertyType(const ZSelector& name) const;
    ZMetaType* getPropertyType(ZTypedPtr* typed, const ZSelector& name) const;

    // Property reading. What isn't there reads as the null variant, 0, -1 or false.

    ZVariant resolveValue(const ZVariant& value) const;
    bool resolveProperty(const ZSelector& name, ZVariant& value) const;
    ZVariant getDynamicProperty(const ZSelector& name) const;
    ZVariant mappedProperty(const ZSelector& name, const ZSelector& key) const;
    bool setMappedProperty(const ZSelector& name, const ZSelector& key, const ZVariant& value) const;
    bool removeMappedProperty(const ZSelector& name, const ZSelector& key) const;
    ZVariant storedProperty(const ZSelector& name) const;
    bool matchingPropertyType(const ZSelector& name, const ZMetaType* wanted) const;
    bool matchingPropertyType(const ZSelector& name, const ZVariant& value) const;
    ZVariant getProperty(ZTypedPtr* typed, const ZSelector& name, bool expand) const;
    ZVariant getProperty(const ZSelector& name, bool expand) const;
    ZVariant getProperty(const ZSelector& name) const;
    ZVariant getPropertyItem(const ZSelector& name, int index) const;
    ZVariant getPropertyItem(ZTypedPtr* typed, const ZSelector& name, int index) const;
    ZVariant getPropertyItem(const ZSelector& name, const ZSelector& key) const;
    ZVariant getPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZSelector& key) const;
    ZVariant getPropertyItem(const ZSelector& name, const void* key) const;
    ZVariant getPropertyItem(ZTypedPtr* typed, const ZSelector& name, const void* key) const;
    ZVariant getPropertyItem(const ZSelector& name, const ZVariant& key) const;
    ZVariant getPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key) const;
    int getPropertyCount(const ZSelector& name) const;
    int getPropertyCount(ZTypedPtr* typed, const ZSelector& name) const;
    bool hasPropertyValue(const ZSelector& name, const ZVariant& value) const;
    bool hasPropertyValue(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value) const;
    ZVariant getPropertyKey(const ZSelector& name, int index) const;
    ZVariant getPropertyKey(ZTypedPtr* typed, const ZSelector& name, int index) const;
    int getPropertyKeyIndex(const ZSelector& name, const ZVariant& key) const;
    int getPropertyKeyIndex(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key) const;
    ZVariant findPropertyKey(const ZSelector& name, const ZVariant& value) const;
    ZVariant findPropertyKey(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value) const;
    int findPropertyIndex(const ZSelector& name, const ZVariant& value) const;
    int findPropertyIndex(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value) const;

    // Property writing. False, with nothing changed, for what isn't there or can't be written.

    bool clearProperty(const ZSelector& name) const;
    bool clearProperty(ZTypedPtr* typed, const ZSelector& name) const;
    bool removePropertyItem(const ZSelector& name, const ZVariant& key) const;
    bool removePropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key) const;
    bool removePropertyItem(const ZSelector& name, int index) const;
    bool removePropertyItem(ZTypedPtr* typed, const ZSelector& name, int index) const;
    bool insertPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify) const;
    bool insertPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key, const ZVariant& value,
                            bool notify) const;
    bool addPropertyItem(const ZSelector& name, const ZVariant& value, bool notify) const;
    bool addPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) const;
    bool addPropertyArray(const ZSelector& name, const ZVArray& values, bool notify) const;
    ZMetaType* propertyType(const ZSelector& name) const;
    ZMetaType* propertyType(ZTypedPtr* typed, const ZSelector& name) const;
    ZSelector dynamicPropertyOptions(const ZSelector& name) const;
    bool setDynamicPropertyOptions(const ZSelector& name, const ZSelector& words) const;
    bool addDynamicPropertyOptions(const ZSelector& name, const ZSelector& words) const;
    bool setDynamicProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, uint flags, bool add) const;
    bool setDynamicProperty(const ZSelector& name, const ZVariant& value, bool add) const;
    bool setProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) const;
    bool setProperty(const ZSelector& name, const ZVariant& value) const;
    bool changeProperty(const ZVariant& value, const ZSelector& name) const;
    bool copyProperty(const ZType* source, const ZSelector& name) const;
    bool setEnumProperty(const ZSelector& name, const ZSelector& item, bool notify) const;
    bool setEnumProperty(ZTypedPtr* typed, const ZSelector& name, const ZSelector& item, bool notify) const;
    bool addEnumPropertyItem(const ZSelector& name, const ZSelector& item, bool notify) const;
    bool addEnumPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZSelector& item, bool notify) const;
    bool setDynamicPropertyItem(const ZSelector& name, int index, const ZVariant& value) const;
    bool setDynamicPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value) const;
    bool setDynamicPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value) const;
    bool setPropertyItem(const ZSelector& name, int index, const ZVariant& value, bool notify) const;
    bool setPropertyItem(ZTypedPtr* typed, const ZSelector& name, int index, const ZVariant& value, bool notify) const;
    bool setPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value, bool notify) const;
    bool setPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZSelector& key, const ZVariant& value,
                         bool notify) const;
    bool setPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify) const;
    bool setPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key, const ZVariant& value,
                         bool notify) const;
    bool setEnumPropertyItem(const ZSelector& name, int index, const ZSelector& item, bool notify) const;
    bool setEnumPropertyItem(ZTypedPtr* typed, const ZSelector& name, int index, const ZSelector& item,
                             bool notify) const;
    bool setEnumPropertyItem(const ZSelector& name, const ZSelector& key, const ZSelector& item, bool notify) const;
    bool setEnumPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZSelector& key, const ZSelector& item,
                             bool notify) const;
    bool setEnumPropertyItem(const ZSelector& name, const ZVariant& key, const ZSelector& item, bool notify) const;
    bool setEnumPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key, const ZSelector& item,
                             bool notify) const;

    // Sets of properties

    bool setProperties(const ZVSelectMap& values) const;
    bool setProperties(const ZVSelectMap& values, bool notify) const;
    bool setProperties(const ZType* source) const;
    bool setProperties(const ZType* source, const ZArrayT<ZSelector>& names) const;
    bool matchProperties(const ZVSelectMap& values) const;
    bool matchProperties(const ZType* other) const;
    bool matchMarkedProperties(const ZVSelectMap& values, char mark) const;
    bool matchNamedProperties(const ZType* other, const ZArrayT<ZSelector>& names) const;
    bool fetchProperties(ZVSelectMap& values) const;
    bool fetchProperties(ZVSelectMap& values, const ZArrayT<ZSelector>& names) const;
    bool fetchProperties(ZVSelectMap& values, const ZSelector& names) const;
    bool fetchPropertiesWithOption(ZVSelectMap& values, const ZSelector& word) const;
    bool setPropertiesWithOption(const ZVSelectMap& values, const ZSelector& word) const;

    // Property structure: what only instances of `ZType` classes can change

    bool addProperty(const ZProperty& property) const;
    bool addProperty(const ZSelector& name, const ZVariant& value) const;
    bool addProperty(const ZSelector& name, const ZVariant& value, uint flags) const;
    bool addProperty(const ZSelector& name, const ZVariant& value, const ZSelector& words) const;
    bool removeProperty(const ZSelector& name) const;
    bool renameProperty(const ZSelector& name, const ZSelector& to) const;
    ZSelector propertyStackName(const ZSelector& name) const;
    bool pushProperty(const ZSelector& name) const;
    bool popProperty(const ZSelector& name) const;
    bool loadPersistentProperties() const;
    bool loadPersistentProperties(const ZSelector& group) const;
    bool storePersistentProperties() const;
    void propertyDelegationChanged(const ZProperty& property) const;
    void propertyChanged(const ZProperty& property) const;
    int getEnumFlags(const ZSelector& name) const;
    bool setEnumFlags(const ZSelector& name, const ZSelector& words) const;
    bool removeEnumFlags(const ZSelector& name, const ZSelector& words) const;

    // Accessor methods of a property, borrowed; null if the type has none. A `typed` gets the address to call them on.

    ZMethod* getter(ZTypedPtr* typed, const ZSelector& name, bool ptrForm, bool constForm, bool item) const;
    ZMethod* getter(ZTypedPtr* typed, const ZProperty* prop, bool ptrForm, bool constForm, bool item) const;
    ZMethod* setter(ZTypedPtr* typed, const ZSelector& name, bool item) const;
    ZMethod* setter(ZTypedPtr* typed, const ZProperty* prop, bool item) const;
    ZMethod* counter(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* counter(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* propByIndex(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* propByIndex(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* hasProp(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* hasProp(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* propKey(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* propKey(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* propIndex(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* propIndex(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* findKey(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* findKey(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* findIndex(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* findIndex(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* cleaner(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* cleaner(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* remover(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* remover(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* removeByIndex(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* removeByIndex(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* inserter(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* inserter(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMethod* adder(ZTypedPtr* typed, const ZSelector& name) const;
    ZMethod* adder(ZTypedPtr* typed, const ZProperty* prop) const;
    ZMetaType* type = nullptr;
    void* instance = nullptr;
};
