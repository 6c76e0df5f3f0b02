#pragma once

#include "core/ZArrayT.h"
#include "core/ZHashTreeT.h"
#include "core/ZSelector.h"
#include "core/memory.h"
#include "module/forward.h"
#include "object/forward.h"
#include "value/forward.h"

#include <initializer_list>

namespace orv {

/// A metatype as the constructors of a class chain hand it from the most derived class to `ZType`, and back.
inline const __ZPassMetaType* passType(const ZMetaType* type) { return reinterpret_cast<const __ZPassMetaType*>(type); }
inline ZMetaType* passedType(const __ZPassMetaType* tag) {
    return reinterpret_cast<ZMetaType*>(const_cast<__ZPassMetaType*>(tag));
}

/// Called with a property and its value; false leaves the entry out, or, where a walk says so, ends it.
using PropertyVisit = bool (*)(const ZProperty& property, ZVariant& value, void* context);

} // namespace orv

/// The root of everything reflective: a counted value that knows its type, can be stored, copied, compared and blended
/// by who doesn't know its class, answers property and method requests by selector, and carries properties of its own
/// that no class declared. Without a type it is a bag of such properties.
///
/// Instances are counted blocks: made by `zmake` or `ZMetaType::createInstance`, ended by `release`. One isn't locked
/// by itself; a lock can be given to it (`makeLock`). A raw `ZMethod*` or `ZProperty*` in an answer is borrowed: it
/// holds while a `toolkit::EpochGuard` of this thread is open, or as long as the tables that it stands in don't change.
class ORV_API ZType {
public:
    using ZReleasing = void;
    using DynamicProperties = ZHashTreeT<ZSelector, ZPropertyPtr>;

    // Lifetime. The tag is the type of the most derived class; null stands for the class's own. A copy shares the
    // dynamic properties until one side writes.

    explicit ZType(const __ZPassMetaType* type = nullptr);
    explicit ZType(const ZType* source, const __ZPassMetaType* type = nullptr);
    ZType(const ZType&) = delete;
    ZType& operator=(const ZType&) = delete;
    virtual ~ZType();
    /// A zeroed counted block, null without memory; also for the instances of classes with room behind them.
    static void* operator new(size_t size) noexcept;
    static void* operator new(size_t, void* place) noexcept { return place; }
    static void operator delete(void* instance) noexcept;
    static void operator delete(void*, void*) noexcept {}

    /// Called once, ahead of the destructor, when the last reference has gone.
    virtual void deleting() {}
    /// Makes what is shared with copies this instance's own; false without memory.
    virtual bool detach();
    virtual bool deepDetachValue(ZDetachContext* context);
    virtual bool isDetached() const;
    virtual bool copyDynamicPropertiesFrom(const ZType* source);
    /// Takes over the value of an instance of the same type; false, with nothing changed, for another type.
    virtual bool assign(const ZType* other);
    /// Null comes first; then by the types' addresses, then by the dynamic properties in key order. What stands deeper
    /// than 512 values in each other is ordered by its address.
    virtual int compare(const ZType* other) const;
    virtual int compareContent(const ZType* other) const;

    // Stored forms

    virtual bool openBlock(ZStream* stream) const;
    virtual bool openBlock(ZStream* stream);
    virtual bool closeBlock(ZStream* stream) const;
    virtual bool closeBlock(ZStream* stream);
    virtual bool read(ZStream* stream);
    /// Adds computed properties to what is stored.
    virtual void storedExtras(ZVSelectMap&) const {}
    virtual bool write(ZStream* stream) const;
    virtual bool writeTyped(ZStream* stream) const;
    virtual bool writeBlock(ZStream* stream) const;
    virtual bool loadXST(const ZXSTNode* node);
    virtual bool storeXST(ZXSTNode* node) const;

    // The lock that the instance's block may carry, see core/memlock.h

    virtual bool lockable() const;
    virtual bool lockObject() const;
    virtual bool makeLock(bool spinning, bool recursive);
    virtual bool setSpinLock(bool on);
    virtual bool lock() const;
    virtual bool lock(bool tryOnly) const;
    virtual bool writeLock() const;
    virtual bool readLock() const;
    virtual bool tryLock() const;
    virtual bool tryWriteLock() const;
    virtual bool tryReadLock() const;
    virtual bool unlock() const;
    virtual bool canLock() const;
    virtual const char* lockLabel(int* index) const;
    virtual bool setLockLabel(const char* label, int index);
    virtual int lockIndex(int slot) const;
    virtual bool setLockIndex(int slot, int value);
    virtual uint lockNumber() const;

    // Count

    virtual int refcount() const;
    /// Null once the last reference has gone.
    virtual ZType* retain() const;
    /// A new instance of the same type and value; null without memory.
    virtual ZType* copy() const;
    virtual void release();

    // Identity

    virtual ZSelector key() const;
    virtual uint hashKey() const;
    virtual bool isTypeLabel(const ZSelector& label) const;
    virtual bool isTypeIndexLabel(int label) const;
    virtual bool isObject() const { return false; }
    virtual ZType* detachCopy(ZDetachContext* context) const;
    virtual bool setPublicValue(const ZVariant& value);
    /// A copy with the value that blending treats as "nothing".
    virtual ZType* createIdentity() const;
    virtual bool adjustBlendProperty(const ZSelector& name, ZVariant& value) const;

    // Blending: this instance becomes what lies between `a` and `b`; one of these may be null.

    virtual bool blendDynamicProperties(const ZType* a, const ZType* b, const ZBlendPos& pos);
    virtual bool blendProperties(const ZType* a, const ZType* b, const ZBlendPos& pos);
    virtual bool blendLocal(const ZType* a, const ZType* b, const ZBlendPos& pos);
    virtual bool blendIdentity() const;
    virtual bool blendFrom(const ZType* a, const ZType* b, const ZBlendPos& pos);
    virtual bool setIdentity();
    virtual bool setIdentityDynamicProperties();
    virtual bool setIdentityProperties();
    virtual bool setLocalIdentity();

    // Colour marks

    virtual bool markLocal(ZCSPMarker* marker) const;
    virtual bool markcsp(ZCSPMarker* marker) const;
    virtual bool updateLocal(const ZColorContext* context);
    virtual bool updatecsp(const ZColorContext* context);

    // Type

    /// With `derefCopies` the type that a local copy was made from, with `useRoot` the end of that chain.
    virtual ZMetaType* type(bool derefCopies, bool useRoot) const;
    virtual ZMetaType* type() const;
    /// The object that holds the part `name` of this instance; null if there is none.
    virtual ZObject* memberObject(const ZSelector& name) const;
    virtual bool setType(ZMetaType* type);
    virtual bool setType(const ZSelector& name);
    /// Whether the type is this instance's private copy; with `exclusive`, whether nobody shares it.
    virtual bool localType(bool exclusive) const;
    virtual bool localizeType(bool exclusive);
    virtual bool replaceType(ZMetaType* type);
    virtual bool setMetaType(ZMetaType* type);
    virtual bool setMetaType(const ZSelector& name);
    virtual bool setMetaType(const ZType* other);
    virtual bool sameType(const ZType* other) const;
    virtual bool sameType(const ZMetaType* type) const;
    virtual bool isType(const ZSelector& name) const;
    virtual bool isType(const ZMetaType* type) const;
    virtual bool hasTypeOption(const ZSelector& word, bool inherited) const;
    virtual ZSelector storedName() const;
    virtual ZSelector storedName(const ZSelector& label) const;
    virtual ZSelector getTypeExtraFlags() const;
    virtual void setTypeExtraFlags(const ZSelector& words);
    virtual ZSelector getTypeBlockName() const;
    virtual void setTypeBlockName(const ZSelector& name);
    virtual ZSelector getTypeSandBoxName() const;
    virtual void setTypeSandBoxName(const ZSelector& name);
    virtual int getTypeSandBoxLevel() const;
    virtual void setTypeSandBoxLevel(int level);
    virtual ZPlugin* plugin() const;
    virtual ZPackage* package() const;
    virtual bool isPlugin(const ZSelector& id) const;
    virtual bool isPlugin(const ZPlugin* plugin) const;
    virtual ZMetaType* findType(const ZSelector& name) const;

    // Enums of the type

    /// The value of "Enum::Item" or of an item of a nested enum; false if there is none.
    virtual bool enumValue(const ZSelector& path, int& value) const;
    virtual ZSelector enumName(const ZSelector& enumType, int value) const;
    virtual ZEnumType* findEnum(const ZSelector& name) const;
    virtual int scanEnum(const ZSelector& enumType, const ZSelector& words) const;
    virtual ZSelector outputEnum(const ZSelector& enumType, int flags) const;

    // Strings of the type

    virtual ZStringResource* getStringRes() const;
    virtual ZSelector stringResName() const;
    virtual ZSelector stringName(int index) const;
    virtual int stringIndex(const ZSelector& name) const;
    virtual bool hasStringResource(const ZSelector& name) const;
    virtual ZString translate(const ZSelector& name) const;
    virtual ZString translate(const ZString& text) const;
    virtual ZString translate(int index) const;
    virtual ZString transarg(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const;

    // Resources of the type

    virtual ZVariant resource(const ZSelector& name) const;
    virtual ZVariant resource(const ZSelector& group, const ZSelector& name) const;
    virtual ZVariant typeResource(const ZSelector& name) const;
    virtual ZMetaType* typeOfResource(const ZSelector& name) const;
    virtual bool setResource(const ZSelector& name, const ZVariant& value);
    virtual bool setResource(const ZSelector& name, int value);
    virtual bool setResource(const ZSelector& name, bool value);
    virtual bool setResource(const ZSelector& name, const ZType* value);
    virtual bool setResource(const ZSelector& group, const ZSelector& name, const ZVariant& value);
    virtual bool setResource(const ZSelector& group, const ZSelector& name, int value);
    virtual bool setResource(const ZSelector& group, const ZSelector& name, bool value);
    virtual bool setResource(const ZSelector& group, const ZSelector& name, const ZType* value);
    virtual bool removeResource(const ZSelector& name);
    virtual bool removeResource(const ZSelector& group, const ZSelector& name);
    virtual bool applyStyle(const ZSelector& name);
    virtual bool applyStyle(const ZSelector& group, const ZSelector& name);

    // Methods by signature or name

    virtual bool hasLocalMethod(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual bool hasMethod(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual bool hasMultimethod(const ZSelector& name, const ZSelector& qualifier) const;
    /// The method in that row of the type's fixed-method table; null past its end.
    virtual ZMethod* fixedMethod(int index) const;
    virtual void resetCategories();
    virtual ZTypeCategory* getCategory(const ZSelector& name) const;
    /// Calls the overload of `name`, or the method of that signature, that fits the arguments best. The null variant if
    /// there is none, or if an argument can't be converted. No lock is held meanwhile. A delegate whose method it is
    /// stays alive until the method has ended, though it be let go; the instance itself is the caller's to keep.
    ///
    /// Here and in all calls by selector, the method runs within an epoch guard of this thread, as it may be replaced
    /// meanwhile: what any thread retires (old tables, methods, names) isn't freed until the call ends. So a method
    /// that waits, for another thread, for input, or in a loop of its own, lets that pile up, and should be started
    /// otherwise.
    virtual ZVariant invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const;
    virtual ZVariant invoke(const ZSelector& name, const ZVArray& arguments) const;
    /// `gauge->invoke("add", {1, 2})`, `gauge->invoke("reset", {})`.
    ZVariant invoke(const ZSelector& name, std::initializer_list<ZVariant> arguments) const;
    virtual bool callV(const ZSelector& name) const;
    virtual bool callV(const ZSelector& name, const ZSelector& qualifier) const;
    virtual bool saveIntoFile(const ZFileName& file, const ZSelector& format) const;
    virtual bool extend(const ZSelector& category);
    virtual bool extend(ZTypeCategory* category);
    virtual bool removeExtension();
    virtual bool removeExtension(const ZSelector& category);
    virtual bool removeExtension(ZTypeCategory* category);

    // Property catalogue

    /// The declaration in the type; null if the type has none of that name.
    virtual ZProperty* getMetaProperty(const ZSelector& name) const;
    /// The name that a renamed property has today.
    virtual ZSelector replacePropertyName(const ZSelector& name) const;
    virtual uint propertyCount() const;
    virtual const DynamicProperties& getDynamicProperties() const { return dynamicProperties; }
    virtual DynamicProperties& getDynamicProperties() { return dynamicProperties; }
    virtual bool dynamicPropertyNames(ZArrayT<ZSelector>& names) const;
    /// Calls `visit` for each property, dynamic ones first; ends at the first false. Visits of declared ones run within
    /// an epoch guard, as called methods do, and shouldn't wait; those of `updateProperties` may.
    virtual bool enumerateProperties(orv::PropertyVisit visit, void* context) const;
    /// Calls `update` for the value of each property that passes `filter` (null: all), with `recursive` also inside of
    /// values, with `detached` on private copies that replace the old values when `update` answers true. True if
    /// something changed. A property that is being walked already isn't entered again.
    virtual bool updateProperties(ZTypedPtr* typed, orv::PropertyVisit filter, orv::PropertyVisit update, void* context,
                                  bool recursive, bool detached);
    virtual bool updateProperties(orv::PropertyVisit filter, orv::PropertyVisit update, void* context);
    virtual bool getProperties(ZVSelectMap& values) const;
    virtual bool propertiesWithOptions(const ZSelector& words, ZArrayT<ZSelector>& names) const;
    virtual bool propertiesWithOptions(const ZSelector& words, ZVSelectMap& values) const;
    virtual bool copyPropertiesFrom(const ZType* source);
    virtual bool retainedObjectNames(ZArrayT<ZSelector>& names) const;
    virtual bool collectPropertyNames(ZHashSetT<ZSelector>& names) const;

    // Property lookup. `typed`, which may be null, gets the instance that owns what was found.

    virtual ZProperty* dynamicProperty(const ZSelector& name) const;
    virtual bool dynamicProperty(const ZSelector& name, ZProperty& found) const;
    virtual bool property(ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve) const;
    virtual bool property(const ZSelector& name, ZProperty& found, bool resolve) const;
    virtual bool property(const ZSelector& name, ZProperty& found) const;
    virtual bool propertyNames(ZArrayT<ZSelector>& names) const;
    virtual bool storedPropertyNames(ZArrayT<ZSelector>& names) const;
    virtual bool delegatePropertyNames(ZArrayT<ZSelector>& names) const;
    virtual ZProperty* findPropertyRoot(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZProperty* findPropertyPath(ZTypedPtr* typed, const ZSelector& path, ZSelector& rest) const;
    virtual ZProperty* findProperty(ZTypedPtr* typed, const ZSelector& name, bool localOnly) const;
    virtual void delegatePropertyChanged(const ZSelector& name);
    virtual int propertyVersion(const ZSelector& name) const;
    virtual uint propertyFlags(const ZSelector& name) const;
    virtual ZSelector propertyOptions(const ZSelector& name) const;
    virtual bool hasPropertyOption(const ZSelector& name, const ZSelector& word) const;
    virtual bool setPropertyOptions(const ZSelector& name, const ZSelector& words);
    virtual bool containsVariableName(const ZSelector& name) const;
    virtual bool containsVariableProperty() const;
    virtual bool containsVariableProperty(const ZSelector& name) const;
    virtual bool isDynamicProperty(const ZSelector& name) const;
    virtual bool isResolvedProperty(const ZSelector& name) const;
    virtual bool isDynamicResolved(const ZSelector& name) const;
    virtual bool isCollectionProperty(const ZSelector& name) const;
    virtual bool setPropertyFlags(const ZSelector& name, uint flags);
    virtual bool hasProperty(ZTypedPtr* typed, const ZSelector& name) const;
    virtual bool hasProperty(const ZSelector& name) const;
    virtual bool hasDynamicProperty(const ZSelector& name) const;
    virtual bool hasDefinedProperty(const ZSelector& name) const;
    virtual ZMetaType* propertyDefinitionType(const ZSelector& name) const;
    virtual ZMetaType* getPropertyType(const ZSelector& name) const;

    // Property reading. What isn't there reads as the null variant, 0, -1 or false.

    virtual ZVariant resolveValue(const ZVariant& value) const;
    virtual bool resolveProperty(const ZSelector& name, ZVariant& value) const;
    virtual ZVariant getDynamicProperty(const ZSelector& name) const;
    virtual ZVariant mappedProperty(const ZSelector& name, const ZSelector& key) const;
    virtual bool setMappedProperty(const ZSelector& name, const ZSelector& key, const ZVariant& value);
    virtual bool removeMappedProperty(const ZSelector& name, const ZSelector& key);
    virtual ZVariant storedProperty(const ZSelector& name) const;
    virtual bool matchingPropertyType(const ZSelector& name, const ZMetaType* type) const;
    virtual bool matchingPropertyType(const ZSelector& name, const ZVariant& value) const;
    /// With `expand` a reference or resolved value becomes its content.
    virtual ZVariant getProperty(ZTypedPtr* typed, const ZSelector& name, bool expand) const;
    virtual ZVariant getProperty(const ZSelector& name, bool expand) const;
    virtual ZVariant getProperty(const ZSelector& name) const;
    virtual ZVariant getPropertyItem(const ZSelector& name, int index) const;
    virtual ZVariant getPropertyItem(const ZSelector& name, const ZSelector& key) const;
    virtual ZVariant getPropertyItem(const ZSelector& name, const void* key) const;
    virtual ZVariant getPropertyItem(const ZSelector& name, const ZVariant& key) const;
    virtual int getPropertyCount(const ZSelector& name) const;
    virtual bool hasPropertyValue(const ZSelector& name, const ZVariant& value) const;
    virtual ZVariant getPropertyKey(const ZSelector& name, int index) const;
    virtual int getPropertyKeyIndex(const ZSelector& name, const ZVariant& key) const;
    virtual ZVariant findPropertyKey(const ZSelector& name, const ZVariant& value) const;
    virtual int findPropertyIndex(const ZSelector& name, const ZVariant& value) const;

    // Property writing. False, with nothing changed, for what isn't there or can't be written.

    virtual bool clearProperty(const ZSelector& name);
    virtual bool removePropertyItem(const ZSelector& name, const ZVariant& key);
    virtual bool removePropertyItem(const ZSelector& name, int index);
    virtual bool insertPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify);
    virtual bool addPropertyItem(const ZSelector& name, const ZVariant& value, bool notify);
    virtual bool addPropertyArray(const ZSelector& name, const ZVArray& values, bool notify);
    virtual bool addEnumPropertyItem(const ZSelector& name, const ZSelector& item, bool notify);
    virtual ZMetaType* propertyType(const ZSelector& name) const;
    virtual ZMetaType* propertyType(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZSelector dynamicPropertyOptions(const ZSelector& name) const;
    virtual bool setDynamicPropertyOptions(const ZSelector& name, const ZSelector& words);
    virtual bool addDynamicPropertyOptions(const ZSelector& name, const ZSelector& words);
    /// Replaces the value of a dynamic property; with `add` makes it where there is none.
    virtual bool setDynamicProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, uint flags,
                                    bool add);
    virtual bool setDynamicProperty(const ZSelector& name, const ZVariant& value, bool add);
    /// Makes no property, but one that the type declares as optional.
    virtual bool setProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify);
    virtual bool setProperty(const ZSelector& name, const ZVariant& value);
    virtual bool changeProperty(const ZVariant& value, const ZSelector& name);
    virtual bool copyProperty(const ZType* source, const ZSelector& name);
    virtual bool setEnumProperty(const ZSelector& name, const ZSelector& item, bool notify);
    virtual bool setDynamicPropertyItem(const ZSelector& name, int index, const ZVariant& value);
    virtual bool setDynamicPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value);
    virtual bool setDynamicPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value);
    virtual bool setPropertyItem(const ZSelector& name, int index, const ZVariant& value, bool notify);
    virtual bool setPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value, bool notify);
    virtual bool setPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify);
    virtual bool setEnumPropertyItem(const ZSelector& name, int index, const ZSelector& item, bool notify);
    virtual bool setEnumPropertyItem(const ZSelector& name, const ZSelector& key, const ZSelector& item, bool notify);
    virtual bool setEnumPropertyItem(const ZSelector& name, const ZVariant& key, const ZSelector& item, bool notify);

    // Sets of properties

    virtual bool setProperties(const ZVSelectMap& values);
    virtual bool setProperties(const ZVSelectMap& values, bool notify);
    virtual bool setProperties(const ZType* source);
    virtual bool setProperties(const ZType* source, const ZArrayT<ZSelector>& names);
    virtual bool matchProperties(const ZVSelectMap& values) const;
    virtual bool matchProperties(const ZType* other) const;
    virtual bool matchMarkedProperties(const ZVSelectMap& values, char mark) const;
    virtual bool matchNamedProperties(const ZType* other, const ZArrayT<ZSelector>& names) const;
    virtual bool fetchProperties(ZVSelectMap& values) const;
    virtual bool fetchProperties(ZVSelectMap& values, const ZArrayT<ZSelector>& names) const;
    virtual bool fetchProperties(ZVSelectMap& values, const ZSelector& names) const;
    virtual bool fetchPropertiesWithOption(ZVSelectMap& values, const ZSelector& word) const;
    virtual bool setPropertiesWithOption(const ZVSelectMap& values, const ZSelector& word);

    // Property structure: the dynamic ones

    virtual bool addProperty(const ZProperty& property);
    virtual bool addProperty(const ZSelector& name, const ZVariant& value);
    virtual bool addProperty(const ZSelector& name, const ZVariant& value, uint flags);
    virtual bool addProperty(const ZSelector& name, const ZVariant& value, const ZSelector& words);
    virtual bool removeProperty(const ZSelector& name);
    virtual bool renameProperty(const ZSelector& name, const ZSelector& to);
    virtual ZSelector propertyStackName(const ZSelector& name) const;
    /// Saves the value of a dynamic property, in front of those saved before; `popProperty` brings the last back.
    virtual bool pushProperty(const ZSelector& name);
    virtual bool popProperty(const ZSelector& name);
    /// Adds a copy of what is referred to; takes the property of that name away. A null reference changes nothing.
    ZType& operator+=(const ZPropertyRef& property);
    ZType& operator-=(const ZPropertyRef& property);
    virtual bool loadPersistentProperties();
    virtual bool loadPersistentProperties(const ZSelector& group);
    virtual bool storePersistentProperties() const;
    virtual void propertyDelegationChanged(const ZProperty& property);
    virtual void propertyChanged(const ZProperty& property);
    virtual int getEnumFlags(const ZSelector& name) const;
    virtual bool setEnumFlags(const ZSelector& name, const ZSelector& words);
    virtual bool removeEnumFlags(const ZSelector& name, const ZSelector& words);

    // Accessor methods of a property; null if the type has none. `typed` gets the address to call them on.

    virtual ZMethod* getter(ZTypedPtr* typed, const ZSelector& name, bool ptrForm, bool constForm, bool item) const;
    virtual ZMethod* getter(ZTypedPtr* typed, const ZProperty* prop, bool ptrForm, bool constForm, bool item) const;
    virtual ZMethod* setter(ZTypedPtr* typed, const ZSelector& name, bool item) const;
    virtual ZMethod* setter(ZTypedPtr* typed, const ZProperty* prop, bool item) const;
    virtual ZMethod* counter(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* counter(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* propByIndex(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* propByIndex(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* hasProp(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* hasProp(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* propKey(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* propKey(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* propIndex(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* propIndex(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* findKey(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* findKey(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* findIndex(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* findIndex(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* cleaner(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* cleaner(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* remover(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* remover(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* removeByIndex(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* removeByIndex(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* inserter(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* inserter(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* adder(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* adder(ZTypedPtr* typed, const ZProperty* prop) const;

    // Method lookup

    virtual bool definesName(const ZSelector& name) const;
    virtual bool implements(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* method(const ZSelector& selector, const ZSelector& qualifier) const;
    /// As `method`, but the one that the type declares, whatever the instance adds.
    virtual ZMethod* baseMethod(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    /// The overload that fits best; `distance`, which may be null, says how well, see `ZMetaType::distance`.
    virtual ZMethod* multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                 const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                 const ZSelector& qualifier) const;
    virtual ZMethod* multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const;
    virtual ZMethod* baseMultimethod(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                     const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                     const ZSelector& qualifier) const;

    // Names

    virtual ZSelector typeName() const;
    virtual ZSelector typeLabel() const;
    virtual int typeIndexLabel() const;
    virtual ZSelector pluginName() const;
    virtual ZSelector pluginId() const;
    virtual ZSelector pluginPrefix() const;

protected:
    friend class ZMetaType;
    friend struct orv::detail::ObjectLayout;

    ZMetaType* metaType = nullptr;
    DynamicProperties dynamicProperties;
};
