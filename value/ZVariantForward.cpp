#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZProperty.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

// Methods

ZMethod* ZVariant::method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).method(typed, selector, qualifier);
}
ZMethod* ZVariant::method(const ZSelector& selector, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).method(selector, qualifier);
}
ZMethod* ZVariant::baseMethod(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).baseMethod(typed, selector, qualifier);
}
ZMethod* ZVariant::multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                               bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).multimethod(distance, typed, name, types, implicit, skipResult, exact, qualifier);
}
ZMethod* ZVariant::multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const {
    return ZTypedPtr(*this).multimethod(name, types);
}
ZMethod* ZVariant::baseMultimethod(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                   const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                   const ZSelector& qualifier) const {
    return ZTypedPtr(*this).baseMultimethod(distance, typed, name, types, implicit, skipResult, exact, qualifier);
}
bool ZVariant::implements(const ZSelector& selector, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).implements(selector, qualifier);
}
bool ZVariant::definesName(const ZSelector& name) const { return ZTypedPtr(*this).definesName(name); }
ZVariant ZVariant::invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const {
    return ZTypedPtr(*this).invoke(name, arguments);
}
ZVariant ZVariant::invoke(const ZSelector& name, const ZVArray& arguments) const {
    return ZTypedPtr(*this).invoke(name, arguments);
}
bool ZVariant::callV(const ZSelector& name) const { return ZTypedPtr(*this).callV(name); }
bool ZVariant::callV(const ZSelector& name, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).callV(name, qualifier);
}

ZObject* ZVariant::ancestor(const ZSelector& name) const {
    ZObject* object = toObject();
    while (object && object->selector() != name) object = object->getParent();
    return object;
}
ZObject* ZVariant::descendant(const ZSelector& name) const {
    ZObject* object = toObject();
    return object ? object->findObject(name, true) : nullptr;
}

// Enums

bool ZVariant::enumValue(const ZSelector& path, int& value) const { return ZTypedPtr(*this).enumValue(path, value); }
ZSelector ZVariant::enumName(const ZSelector& enumType, int value) const {
    return ZTypedPtr(*this).enumName(enumType, value);
}
ZEnumType* ZVariant::findEnum(const ZSelector& name) const { return ZTypedPtr(*this).findEnum(name); }
int ZVariant::scanEnum(const ZSelector& enumType, const ZSelector& words) const {
    return ZTypedPtr(*this).scanEnum(enumType, words);
}
ZSelector ZVariant::outputEnum(const ZSelector& enumType, int flags) const {
    return ZTypedPtr(*this).outputEnum(enumType, flags);
}
ZSelector ZVariant::qualify() const {
    ZMetaType* main = mainType();
    if (!main || main->kind() != ZMetaType::Enum) return {};
    ZSelector item = toSelector();
    return item.isEmpty() ? item : main->getName().join("::").join(item);
}

// Property catalogue

ZProperty* ZVariant::getMetaProperty(const ZSelector& name) const { return ZTypedPtr(*this).getMetaProperty(name); }
ZSelector ZVariant::replacePropertyName(const ZSelector& name) const {
    return ZTypedPtr(*this).replacePropertyName(name);
}
uint ZVariant::propertyCount() const { return ZTypedPtr(*this).propertyCount(); }
bool ZVariant::dynamicPropertyNames(ZArrayT<ZSelector>& names) const {
    return ZTypedPtr(*this).dynamicPropertyNames(names);
}
bool ZVariant::enumerateProperties(orv::PropertyVisit visit, void* context) const {
    return ZTypedPtr(*this).enumerateProperties(visit, context);
}
bool ZVariant::updateProperties(ZTypedPtr* typed, orv::PropertyVisit filter, orv::PropertyVisit update, void* context,
                                bool recursive, bool detached) {
    return ownValue() && ZTypedPtr(*this).updateProperties(typed, filter, update, context, recursive, detached);
}
bool ZVariant::updateProperties(orv::PropertyVisit filter, orv::PropertyVisit update, void* context) {
    return ownValue() && ZTypedPtr(*this).updateProperties(filter, update, context);
}
bool ZVariant::getProperties(ZVSelectMap& values) const { return ZTypedPtr(*this).getProperties(values); }
bool ZVariant::propertiesWithOptions(const ZSelector& words, ZArrayT<ZSelector>& names) const {
    return ZTypedPtr(*this).propertiesWithOptions(words, names);
}
bool ZVariant::propertiesWithOptions(const ZSelector& words, ZVSelectMap& values) const {
    return ZTypedPtr(*this).propertiesWithOptions(words, values);
}
bool ZVariant::copyPropertiesFrom(const ZType* source) {
    return ownValue() && ZTypedPtr(*this).copyPropertiesFrom(source);
}
bool ZVariant::retainedObjectNames(ZArrayT<ZSelector>& names) const {
    return ZTypedPtr(*this).retainedObjectNames(names);
}
bool ZVariant::collectPropertyNames(ZHashSetT<ZSelector>& names) const {
    return ZTypedPtr(*this).collectPropertyNames(names);
}

// Property lookup

ZProperty* ZVariant::dynamicProperty(const ZSelector& name) const { return ZTypedPtr(*this).dynamicProperty(name); }
bool ZVariant::dynamicProperty(const ZSelector& name, ZProperty& found) const {
    return ZTypedPtr(*this).dynamicProperty(name, found);
}
bool ZVariant::property(ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve) const {
    return ZTypedPtr(*this).property(typed, name, found, resolve);
}
bool ZVariant::property(const ZSelector& name, ZProperty& found, bool resolve) const {
    return ZTypedPtr(*this).property(name, found, resolve);
}
bool ZVariant::property(const ZSelector& name, ZProperty& found) const {
    return ZTypedPtr(*this).property(name, found);
}
bool ZVariant::propertyNames(ZArrayT<ZSelector>& names) const { return ZTypedPtr(*this).propertyNames(names); }
bool ZVariant::storedPropertyNames(ZArrayT<ZSelector>& names) const {
    return ZTypedPtr(*this).storedPropertyNames(names);
}
bool ZVariant::delegatePropertyNames(ZArrayT<ZSelector>& names) const {
    return ZTypedPtr(*this).delegatePropertyNames(names);
}
ZProperty* ZVariant::findPropertyRoot(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).findPropertyRoot(typed, name);
}
ZProperty* ZVariant::findPropertyPath(ZTypedPtr* typed, const ZSelector& path, ZSelector& rest) const {
    return ZTypedPtr(*this).findPropertyPath(typed, path, rest);
}
ZProperty* ZVariant::findProperty(ZTypedPtr* typed, const ZSelector& name, bool localOnly) const {
    return ZTypedPtr(*this).findProperty(typed, name, localOnly);
}
void ZVariant::delegatePropertyChanged(const ZSelector& name) { ZTypedPtr(*this).delegatePropertyChanged(name); }
int ZVariant::propertyVersion(const ZSelector& name) const { return ZTypedPtr(*this).propertyVersion(name); }
uint ZVariant::propertyFlags(const ZSelector& name) const { return ZTypedPtr(*this).propertyFlags(name); }
ZSelector ZVariant::propertyOptions(const ZSelector& name) const { return ZTypedPtr(*this).propertyOptions(name); }
bool ZVariant::hasPropertyOption(const ZSelector& name, const ZSelector& word) const {
    return ZTypedPtr(*this).hasPropertyOption(name, word);
}
bool ZVariant::setPropertyOptions(const ZSelector& name, const ZSelector& words) {
    return ownValue() && ZTypedPtr(*this).setPropertyOptions(name, words);
}
bool ZVariant::containsVariableName(const ZSelector& name) const { return ZTypedPtr(*this).containsVariableName(name); }
bool ZVariant::containsVariableProperty() const { return ZTypedPtr(*this).containsVariableProperty(); }
bool ZVariant::containsVariableProperty(const ZSelector& name) const {
    return ZTypedPtr(*this).containsVariableProperty(name);
}
bool ZVariant::isDynamicProperty(const ZSelector& name) const { return ZTypedPtr(*this).isDynamicProperty(name); }
bool ZVariant::isResolvedProperty(const ZSelector& name) const { return ZTypedPtr(*this).isResolvedProperty(name); }
bool ZVariant::isDynamicResolved(const ZSelector& name) const { return ZTypedPtr(*this).isDynamicResolved(name); }
bool ZVariant::isCollectionProperty(const ZSelector& name) const { return ZTypedPtr(*this).isCollectionProperty(name); }
bool ZVariant::setPropertyFlags(const ZSelector& name, uint flags) {
    return ownValue() && ZTypedPtr(*this).setPropertyFlags(name, flags);
}
bool ZVariant::hasProperty(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).hasProperty(typed, name);
}
bool ZVariant::hasProperty(const ZSelector& name) const { return ZTypedPtr(*this).hasProperty(name); }
bool ZVariant::hasDynamicProperty(const ZSelector& name) const { return ZTypedPtr(*this).hasDynamicProperty(name); }
bool ZVariant::hasDefinedProperty(const ZSelector& name) const { return ZTypedPtr(*this).hasDefinedProperty(name); }
ZMetaType* ZVariant::propertyDefinitionType(const ZSelector& name) const {
    return ZTypedPtr(*this).propertyDefinitionType(name);
}
ZMetaType* ZVariant::getPropertyType(const ZSelector& name) const { return ZTypedPtr(*this).getPropertyType(name); }

// Property reading

ZVariant ZVariant::resolveValue(const ZVariant& value) const { return ZTypedPtr(*this).resolveValue(value); }
bool ZVariant::resolveProperty(const ZSelector& name, ZVariant& value) const {
    return ZTypedPtr(*this).resolveProperty(name, value);
}
ZVariant ZVariant::getDynamicProperty(const ZSelector& name) const { return ZTypedPtr(*this).getDynamicProperty(name); }
ZVariant ZVariant::mappedProperty(const ZSelector& name, const ZSelector& key) const {
    return ZTypedPtr(*this).mappedProperty(name, key);
}
bool ZVariant::setMappedProperty(const ZSelector& name, const ZSelector& key, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).setMappedProperty(name, key, value);
}
bool ZVariant::removeMappedProperty(const ZSelector& name, const ZSelector& key) {
    return ownValue() && ZTypedPtr(*this).removeMappedProperty(name, key);
}
ZVariant ZVariant::storedProperty(const ZSelector& name) const { return ZTypedPtr(*this).storedProperty(name); }
bool ZVariant::matchingPropertyType(const ZSelector& name, const ZMetaType* wanted) const {
    return ZTypedPtr(*this).matchingPropertyType(name, wanted);
}
bool ZVariant::matchingPropertyType(const ZSelector& name, const ZVariant& value) const {
    return ZTypedPtr(*this).matchingPropertyType(name, value);
}
ZVariant ZVariant::getProperty(ZTypedPtr* typed, const ZSelector& name, bool expand) const {
    return ZTypedPtr(*this).getProperty(typed, name, expand);
}
ZVariant ZVariant::getProperty(const ZSelector& name, bool expand) const {
    return ZTypedPtr(*this).getProperty(name, expand);
}
ZVariant ZVariant::getProperty(const ZSelector& name) const { return ZTypedPtr(*this).getProperty(name); }
ZVariant ZVariant::getPropertyItem(const ZSelector& name, int index) const {
    return ZTypedPtr(*this).getPropertyItem(name, index);
}
ZVariant ZVariant::getPropertyItem(const ZSelector& name, const ZSelector& key) const {
    return ZTypedPtr(*this).getPropertyItem(name, key);
}
ZVariant ZVariant::getPropertyItem(const ZSelector& name, const void* key) const {
    return ZTypedPtr(*this).getPropertyItem(name, key);
}
ZVariant ZVariant::getPropertyItem(const ZSelector& name, const ZVariant& key) const {
    return ZTypedPtr(*this).getPropertyItem(name, key);
}
int ZVariant::getPropertyCount(const ZSelector& name) const { return ZTypedPtr(*this).getPropertyCount(name); }
bool ZVariant::hasPropertyValue(const ZSelector& name, const ZVariant& value) const {
    return ZTypedPtr(*this).hasPropertyValue(name, value);
}
ZVariant ZVariant::getPropertyKey(const ZSelector& name, int index) const {
    return ZTypedPtr(*this).getPropertyKey(name, index);
}
int ZVariant::getPropertyKeyIndex(const ZSelector& name, const ZVariant& key) const {
    return ZTypedPtr(*this).getPropertyKeyIndex(name, key);
}
ZVariant ZVariant::findPropertyKey(const ZSelector& name, const ZVariant& value) const {
    return ZTypedPtr(*this).findPropertyKey(name, value);
}
int ZVariant::findPropertyIndex(const ZSelector& name, const ZVariant& value) const {
    return ZTypedPtr(*this).findPropertyIndex(name, value);
}

// Property writing

bool ZVariant::clearProperty(const ZSelector& name) { return ownValue() && ZTypedPtr(*this).clearProperty(name); }
bool ZVariant::removePropertyItem(const ZSelector& name, const ZVariant& key) {
    return ownValue() && ZTypedPtr(*this).removePropertyItem(name, key);
}
bool ZVariant::removePropertyItem(const ZSelector& name, int index) {
    return ownValue() && ZTypedPtr(*this).removePropertyItem(name, index);
}
bool ZVariant::insertPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify) {
    return ownValue() && ZTypedPtr(*this).insertPropertyItem(name, key, value, notify);
}
bool ZVariant::addPropertyItem(const ZSelector& name, const ZVariant& value, bool notify) {
    return ownValue() && ZTypedPtr(*this).addPropertyItem(name, value, notify);
}
bool ZVariant::addPropertyArray(const ZSelector& name, const ZVArray& values, bool notify) {
    return ownValue() && ZTypedPtr(*this).addPropertyArray(name, values, notify);
}
ZMetaType* ZVariant::propertyType(const ZSelector& name) const { return ZTypedPtr(*this).propertyType(name); }
ZMetaType* ZVariant::propertyType(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).propertyType(typed, name);
}
ZSelector ZVariant::dynamicPropertyOptions(const ZSelector& name) const {
    return ZTypedPtr(*this).dynamicPropertyOptions(name);
}
bool ZVariant::setDynamicPropertyOptions(const ZSelector& name, const ZSelector& words) {
    return ownValue() && ZTypedPtr(*this).setDynamicPropertyOptions(name, words);
}
bool ZVariant::addDynamicPropertyOptions(const ZSelector& name, const ZSelector& words) {
    return ownValue() && ZTypedPtr(*this).addDynamicPropertyOptions(name, words);
}
bool ZVariant::setDynamicProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, uint flags,
                                  bool add) {
    return ownValue() && ZTypedPtr(*this).setDynamicProperty(typed, name, value, flags, add);
}
bool ZVariant::setDynamicProperty(const ZSelector& name, const ZVariant& value, bool add) {
    return ownValue() && ZTypedPtr(*this).setDynamicProperty(name, value, add);
}
bool ZVariant::setProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) {
    return ownValue() && ZTypedPtr(*this).setProperty(typed, name, value, notify);
}
bool ZVariant::setProperty(const ZSelector& name, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).setProperty(name, value);
}
bool ZVariant::changeProperty(const ZVariant& value, const ZSelector& name) {
    return ownValue() && ZTypedPtr(*this).changeProperty(value, name);
}
bool ZVariant::copyProperty(const ZType* source, const ZSelector& name) {
    return ownValue() && ZTypedPtr(*this).copyProperty(source, name);
}
bool ZVariant::setEnumProperty(const ZSelector& name, const ZSelector& item, bool notify) {
    return ownValue() && ZTypedPtr(*this).setEnumProperty(name, item, notify);
}
bool ZVariant::addEnumPropertyItem(const ZSelector& name, const ZSelector& item, bool notify) {
    return ownValue() && ZTypedPtr(*this).addEnumPropertyItem(name, item, notify);
}
bool ZVariant::setDynamicPropertyItem(const ZSelector& name, int index, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).setDynamicPropertyItem(name, index, value);
}
bool ZVariant::setDynamicPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).setDynamicPropertyItem(name, key, value);
}
bool ZVariant::setDynamicPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).setDynamicPropertyItem(name, key, value);
}
bool ZVariant::setPropertyItem(const ZSelector& name, int index, const ZVariant& value, bool notify) {
    return ownValue() && ZTypedPtr(*this).setPropertyItem(name, index, value, notify);
}
bool ZVariant::setPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value, bool notify) {
    return ownValue() && ZTypedPtr(*this).setPropertyItem(name, key, value, notify);
}
bool ZVariant::setPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify) {
    return ownValue() && ZTypedPtr(*this).setPropertyItem(name, key, value, notify);
}
bool ZVariant::setEnumPropertyItem(const ZSelector& name, int index, const ZSelector& item, bool notify) {
    return ownValue() && ZTypedPtr(*this).setEnumPropertyItem(name, index, item, notify);
}
bool ZVariant::setEnumPropertyItem(const ZSelector& name, const ZSelector& key, const ZSelector& item, bool notify) {
    return ownValue() && ZTypedPtr(*this).setEnumPropertyItem(name, key, item, notify);
}
bool ZVariant::setEnumPropertyItem(const ZSelector& name, const ZVariant& key, const ZSelector& item, bool notify) {
    return ownValue() && ZTypedPtr(*this).setEnumPropertyItem(name, key, item, notify);
}

// Sets of properties

bool ZVariant::setProperties(const ZVSelectMap& values) { return ownValue() && ZTypedPtr(*this).setProperties(values); }
bool ZVariant::setProperties(const ZVSelectMap& values, bool notify) {
    return ownValue() && ZTypedPtr(*this).setProperties(values, notify);
}
bool ZVariant::setProperties(const ZType* source) { return ownValue() && ZTypedPtr(*this).setProperties(source); }
bool ZVariant::setProperties(const ZType* source, const ZArrayT<ZSelector>& names) {
    return ownValue() && ZTypedPtr(*this).setProperties(source, names);
}
bool ZVariant::matchProperties(const ZVSelectMap& values) const { return ZTypedPtr(*this).matchProperties(values); }
bool ZVariant::matchProperties(const ZType* other) const { return ZTypedPtr(*this).matchProperties(other); }
bool ZVariant::matchMarkedProperties(const ZVSelectMap& values, char mark) const {
    return ZTypedPtr(*this).matchMarkedProperties(values, mark);
}
bool ZVariant::matchNamedProperties(const ZType* other, const ZArrayT<ZSelector>& names) const {
    return ZTypedPtr(*this).matchNamedProperties(other, names);
}
bool ZVariant::fetchProperties(ZVSelectMap& values) const { return ZTypedPtr(*this).fetchProperties(values); }
bool ZVariant::fetchProperties(ZVSelectMap& values, const ZArrayT<ZSelector>& names) const {
    return ZTypedPtr(*this).fetchProperties(values, names);
}
bool ZVariant::fetchProperties(ZVSelectMap& values, const ZSelector& names) const {
    return ZTypedPtr(*this).fetchProperties(values, names);
}
bool ZVariant::fetchPropertiesWithOption(ZVSelectMap& values, const ZSelector& word) const {
    return ZTypedPtr(*this).fetchPropertiesWithOption(values, word);
}
bool ZVariant::setPropertiesWithOption(const ZVSelectMap& values, const ZSelector& word) {
    return ownValue() && ZTypedPtr(*this).setPropertiesWithOption(values, word);
}

// Property structure

bool ZVariant::addProperty(const ZProperty& property) { return ownValue() && ZTypedPtr(*this).addProperty(property); }
bool ZVariant::addProperty(const ZSelector& name, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).addProperty(name, value);
}
bool ZVariant::addProperty(const ZSelector& name, const ZVariant& value, uint flags) {
    return ownValue() && ZTypedPtr(*this).addProperty(name, value, flags);
}
bool ZVariant::addProperty(const ZSelector& name, const ZVariant& value, const ZSelector& words) {
    return ownValue() && ZTypedPtr(*this).addProperty(name, value, words);
}
bool ZVariant::removeProperty(const ZSelector& name) { return ownValue() && ZTypedPtr(*this).removeProperty(name); }
bool ZVariant::renameProperty(const ZSelector& name, const ZSelector& to) {
    return ownValue() && ZTypedPtr(*this).renameProperty(name, to);
}
ZSelector ZVariant::propertyStackName(const ZSelector& name) const { return ZTypedPtr(*this).propertyStackName(name); }
bool ZVariant::pushProperty(const ZSelector& name) { return ownValue() && ZTypedPtr(*this).pushProperty(name); }
bool ZVariant::popProperty(const ZSelector& name) { return ownValue() && ZTypedPtr(*this).popProperty(name); }
bool ZVariant::loadPersistentProperties() { return ownValue() && ZTypedPtr(*this).loadPersistentProperties(); }
bool ZVariant::loadPersistentProperties(const ZSelector& group) {
    return ownValue() && ZTypedPtr(*this).loadPersistentProperties(group);
}
bool ZVariant::storePersistentProperties() const { return ZTypedPtr(*this).storePersistentProperties(); }
void ZVariant::propertyDelegationChanged(const ZProperty& property) {
    ZTypedPtr(*this).propertyDelegationChanged(property);
}
void ZVariant::propertyChanged(const ZProperty& property) { ZTypedPtr(*this).propertyChanged(property); }
int ZVariant::getEnumFlags(const ZSelector& name) const { return ZTypedPtr(*this).getEnumFlags(name); }
bool ZVariant::setEnumFlags(const ZSelector& name, const ZSelector& words) {
    return ownValue() && ZTypedPtr(*this).setEnumFlags(name, words);
}
bool ZVariant::removeEnumFlags(const ZSelector& name, const ZSelector& words) {
    return ownValue() && ZTypedPtr(*this).removeEnumFlags(name, words);
}

// Accessor methods of a property, borrowed; null if the type has none

ZMethod* ZVariant::getter(ZTypedPtr* typed, const ZSelector& name, bool ptrForm, bool constForm, bool item) const {
    return ZTypedPtr(*this).getter(typed, name, ptrForm, constForm, item);
}
ZMethod* ZVariant::getter(ZTypedPtr* typed, const ZProperty* prop, bool ptrForm, bool constForm, bool item) const {
    return ZTypedPtr(*this).getter(typed, prop, ptrForm, constForm, item);
}
ZMethod* ZVariant::setter(ZTypedPtr* typed, const ZSelector& name, bool item) const {
    return ZTypedPtr(*this).setter(typed, name, item);
}
ZMethod* ZVariant::setter(ZTypedPtr* typed, const ZProperty* prop, bool item) const {
    return ZTypedPtr(*this).setter(typed, prop, item);
}
ZMethod* ZVariant::counter(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).counter(typed, name);
}
ZMethod* ZVariant::counter(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).counter(typed, prop);
}
ZMethod* ZVariant::propByIndex(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).propByIndex(typed, name);
}
ZMethod* ZVariant::propByIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).propByIndex(typed, prop);
}
ZMethod* ZVariant::hasProp(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).hasProp(typed, name);
}
ZMethod* ZVariant::hasProp(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).hasProp(typed, prop);
}
ZMethod* ZVariant::propKey(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).propKey(typed, name);
}
ZMethod* ZVariant::propKey(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).propKey(typed, prop);
}
ZMethod* ZVariant::propIndex(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).propIndex(typed, name);
}
ZMethod* ZVariant::propIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).propIndex(typed, prop);
}
ZMethod* ZVariant::findKey(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).findKey(typed, name);
}
ZMethod* ZVariant::findKey(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).findKey(typed, prop);
}
ZMethod* ZVariant::findIndex(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).findIndex(typed, name);
}
ZMethod* ZVariant::findIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).findIndex(typed, prop);
}
ZMethod* ZVariant::cleaner(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).cleaner(typed, name);
}
ZMethod* ZVariant::cleaner(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).cleaner(typed, prop);
}
ZMethod* ZVariant::remover(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).remover(typed, name);
}
ZMethod* ZVariant::remover(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).remover(typed, prop);
}
ZMethod* ZVariant::removeByIndex(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).removeByIndex(typed, name);
}
ZMethod* ZVariant::removeByIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).removeByIndex(typed, prop);
}
ZMethod* ZVariant::inserter(ZTypedPtr* typed, const ZSelector& name) const {
    return ZTypedPtr(*this).inserter(typed, name);
}
ZMethod* ZVariant::inserter(ZTypedPtr* typed, const ZProperty* prop) const {
    return ZTypedPtr(*this).inserter(typed, prop);
}
ZMethod* ZVariant::adder(ZTypedPtr* typed, const ZSelector& name) const { return ZTypedPtr(*this).adder(typed, name); }
ZMethod* ZVariant::adder(ZTypedPtr* typed, const ZProperty* prop) const { return ZTypedPtr(*this).adder(typed, prop); }