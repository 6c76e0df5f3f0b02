#include "value/ZTypedPtr.h"

#include "object/ZMetaType.h"
#include "object/ZProperty.h"
#include "value/plainProperties.h"
#include "value/typedInstance.h"

using namespace orv;
using detail::instanceOf;

namespace {

/// Sets `typed` to what has the property of that name.
void locate(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name) {
    if (typed) at.findProperty(typed, name, false);
}

/// Looks an accessor up from `at` and gives its place.
template <class F> ZMethod* accessor(const ZTypedPtr& at, ZTypedPtr* typed, F&& find) {
    ZTypedPtr place(at);
    ZMethod* method = find(&place);
    if (method && typed) *typed = place;
    return method;
}

} // namespace

// Property catalogue

ZProperty* ZTypedPtr::getMetaProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->getMetaProperty(name);
    return type ? type->findPropertyDef(name) : nullptr;
}
ZSelector ZTypedPtr::replacePropertyName(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->replacePropertyName(name);
    return type ? name : ZSelector();
}
uint ZTypedPtr::propertyCount() const {
    if (ZType* object = instanceOf(*this)) return object->propertyCount();
    return type ? plain::propertyCount(*this) : 0;
}
bool ZTypedPtr::dynamicPropertyNames(ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->dynamicPropertyNames(names);
    return type ? true : false;
}
bool ZTypedPtr::enumerateProperties(orv::PropertyVisit visit, void* context) const {
    if (ZType* object = instanceOf(*this)) return object->enumerateProperties(visit, context);
    return type ? type->enumeratePropertyDefs(instance, visit, context) : false;
}
bool ZTypedPtr::updateProperties(ZTypedPtr* typed, orv::PropertyVisit filter, orv::PropertyVisit update, void* context,
                                 bool recursive, bool detached) const {
    if (ZType* object = instanceOf(*this))
        return object->updateProperties(typed, filter, update, context, recursive, detached);
    return type ? plain::updateProperties(*this, typed, filter, update, context, recursive, detached) : false;
}
bool ZTypedPtr::updateProperties(orv::PropertyVisit filter, orv::PropertyVisit update, void* context) const {
    if (ZType* object = instanceOf(*this)) return object->updateProperties(filter, update, context);
    return type ? plain::updateProperties(*this, nullptr, filter, update, context, false, false) : false;
}
bool ZTypedPtr::getProperties(ZVSelectMap& values) const {
    if (ZType* object = instanceOf(*this)) return object->getProperties(values);
    return type ? plain::fetchProperties(*this, values) : false;
}
bool ZTypedPtr::propertiesWithOptions(const ZSelector& words, ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->propertiesWithOptions(words, names);
    return type ? type->propertyDefsWithOptions(words, names) : false;
}
bool ZTypedPtr::propertiesWithOptions(const ZSelector& words, ZVSelectMap& values) const {
    if (ZType* object = instanceOf(*this)) return object->propertiesWithOptions(words, values);
    return type ? plain::propertiesWithOptions(*this, words, values) : false;
}
bool ZTypedPtr::copyPropertiesFrom(const ZType* source) const {
    if (ZType* object = instanceOf(*this)) return object->copyPropertiesFrom(source);
    return type ? plain::setProperties(*this, source) : false;
}
bool ZTypedPtr::retainedObjectNames(ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->retainedObjectNames(names);
    return type ? type->collectRetainedObjectNames(names) : false;
}
bool ZTypedPtr::collectPropertyNames(ZHashSetT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->collectPropertyNames(names);
    return type ? type->collectPropertyDefNames(names) : false;
}

// Property lookup

ZProperty* ZTypedPtr::dynamicProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->dynamicProperty(name);
    return type ? nullptr : nullptr;
}
bool ZTypedPtr::dynamicProperty(const ZSelector& name, ZProperty& found) const {
    if (ZType* object = instanceOf(*this)) return object->dynamicProperty(name, found);
    return type ? false : false;
}
bool ZTypedPtr::property(ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve) const {
    if (ZType* object = instanceOf(*this)) return object->property(typed, name, found, resolve);
    return type ? plain::property(*this, typed, name, found, resolve) : false;
}
bool ZTypedPtr::property(const ZSelector& name, ZProperty& found, bool resolve) const {
    if (ZType* object = instanceOf(*this)) return object->property(name, found, resolve);
    return type ? plain::property(*this, nullptr, name, found, resolve) : false;
}
bool ZTypedPtr::property(const ZSelector& name, ZProperty& found) const {
    if (ZType* object = instanceOf(*this)) return object->property(name, found);
    return type ? plain::property(*this, nullptr, name, found, false) : false;
}
bool ZTypedPtr::propertyNames(ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->propertyNames(names);
    return type ? plain::propertyNames(*this, names) : false;
}
bool ZTypedPtr::storedPropertyNames(ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->storedPropertyNames(names);
    return type ? plain::storedPropertyNames(*this, names) : false;
}
bool ZTypedPtr::delegatePropertyNames(ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->delegatePropertyNames(names);
    return type ? true : false;
}
ZProperty* ZTypedPtr::findPropertyRoot(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->findPropertyRoot(typed, name);
    return type ? plain::findProperty(*this, typed, name.deepName() ? name.param(0) : name) : nullptr;
}
ZProperty* ZTypedPtr::findPropertyPath(ZTypedPtr* typed, const ZSelector& path, ZSelector& rest) const {
    if (ZType* object = instanceOf(*this)) return object->findPropertyPath(typed, path, rest);
    return type ? plain::findPropertyPath(*this, typed, path, rest) : nullptr;
}
ZProperty* ZTypedPtr::findProperty(ZTypedPtr* typed, const ZSelector& name, bool localOnly) const {
    if (ZType* object = instanceOf(*this)) return object->findProperty(typed, name, localOnly);
    return type ? plain::findProperty(*this, typed, name) : nullptr;
}
void ZTypedPtr::delegatePropertyChanged(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) object->delegatePropertyChanged(name);
}
int ZTypedPtr::propertyVersion(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propertyVersion(name);
    return type ? type->propertyDefVersion(name) : -1;
}
uint ZTypedPtr::propertyFlags(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propertyFlags(name);
    return type ? type->propertyDefFlags(name) : 0;
}
ZSelector ZTypedPtr::propertyOptions(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propertyOptions(name);
    return type ? plain::propertyOptions(*this, name) : ZSelector();
}
bool ZTypedPtr::hasPropertyOption(const ZSelector& name, const ZSelector& word) const {
    if (ZType* object = instanceOf(*this)) return object->hasPropertyOption(name, word);
    return type ? plain::propertyOptions(*this, name).contains(word) : false;
}
bool ZTypedPtr::setPropertyOptions(const ZSelector& name, const ZSelector& words) const {
    if (ZType* object = instanceOf(*this)) return object->setPropertyOptions(name, words);
    return type ? false : false;
}
bool ZTypedPtr::containsVariableName(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->containsVariableName(name);
    return type ? type->hasStoredVariableName(instance, name) : false;
}
bool ZTypedPtr::containsVariableProperty() const {
    if (ZType* object = instanceOf(*this)) return object->containsVariableProperty();
    return type ? plain::containsVariableProperty(*this) : false;
}
bool ZTypedPtr::containsVariableProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->containsVariableProperty(name);
    return type ? plain::containsVariableProperty(*this, name) : false;
}
bool ZTypedPtr::isDynamicProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->isDynamicProperty(name);
    return type ? type->isDynamicPropertyDef(name) : false;
}
bool ZTypedPtr::isResolvedProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->isResolvedProperty(name);
    return type ? type->isResolvedPropertyDef(name) : false;
}
bool ZTypedPtr::isDynamicResolved(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->isDynamicResolved(name);
    return type ? false : false;
}
bool ZTypedPtr::isCollectionProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->isCollectionProperty(name);
    return type ? type->isCollectionPropertyDef(name) : false;
}
bool ZTypedPtr::setPropertyFlags(const ZSelector& name, uint flags) const {
    if (ZType* object = instanceOf(*this)) return object->setPropertyFlags(name, flags);
    return type ? false : false;
}
bool ZTypedPtr::hasProperty(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->hasProperty(typed, name);
    return type ? plain::hasProperty(*this, typed, name) : false;
}
bool ZTypedPtr::hasProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->hasProperty(name);
    return type ? plain::hasProperty(*this, nullptr, name) : false;
}
bool ZTypedPtr::hasDynamicProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->hasDynamicProperty(name);
    return type ? false : false;
}
bool ZTypedPtr::hasDefinedProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->hasDefinedProperty(name);
    return type ? type->hasPropertyDef(name) : false;
}
ZMetaType* ZTypedPtr::propertyDefinitionType(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propertyDefinitionType(name);
    return type ? type->propertyDefType(name) : nullptr;
}
ZMetaType* ZTypedPtr::getPropertyType(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->getPropertyType(name);
    return type ? plain::getPropertyType(*this, name) : nullptr;
}
ZMetaType* ZTypedPtr::getPropertyType(ZTypedPtr* typed, const ZSelector& name) const {
    locate(*this, typed, name);
    return getPropertyType(name);
}

// Property reading

ZVariant ZTypedPtr::resolveValue(const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->resolveValue(value);
    return type ? value.expand() : ZVariant();
}
bool ZTypedPtr::resolveProperty(const ZSelector& name, ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->resolveProperty(name, value);
    return type ? plain::resolveProperty(*this, name, value) : false;
}
ZVariant ZTypedPtr::getDynamicProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->getDynamicProperty(name);
    return type ? ZVariant() : ZVariant();
}
ZVariant ZTypedPtr::mappedProperty(const ZSelector& name, const ZSelector& key) const {
    if (ZType* object = instanceOf(*this)) return object->mappedProperty(name, key);
    return type ? plain::getProperty(*this, nullptr, name, true).itemByKey(key) : ZVariant();
}
bool ZTypedPtr::setMappedProperty(const ZSelector& name, const ZSelector& key, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->setMappedProperty(name, key, value);
    return type ? plain::setItem(*this, name, key, value) : false;
}
bool ZTypedPtr::removeMappedProperty(const ZSelector& name, const ZSelector& key) const {
    if (ZType* object = instanceOf(*this)) return object->removeMappedProperty(name, key);
    return type ? plain::removeItem(*this, name, key) : false;
}
ZVariant ZTypedPtr::storedProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->storedProperty(name);
    return type ? plain::storedProperty(*this, name) : ZVariant();
}
bool ZTypedPtr::matchingPropertyType(const ZSelector& name, const ZMetaType* wanted) const {
    if (ZType* object = instanceOf(*this)) return object->matchingPropertyType(name, wanted);
    return type ? plain::matchingPropertyType(*this, name, wanted) : false;
}
bool ZTypedPtr::matchingPropertyType(const ZSelector& name, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->matchingPropertyType(name, value);
    return type ? plain::matchingPropertyType(*this, name, value.mainType()) : false;
}
ZVariant ZTypedPtr::getProperty(ZTypedPtr* typed, const ZSelector& name, bool expand) const {
    if (ZType* object = instanceOf(*this)) return object->getProperty(typed, name, expand);
    return type ? plain::getProperty(*this, typed, name, expand) : ZVariant();
}
ZVariant ZTypedPtr::getProperty(const ZSelector& name, bool expand) const {
    if (ZType* object = instanceOf(*this)) return object->getProperty(name, expand);
    return type ? plain::getProperty(*this, nullptr, name, expand) : ZVariant();
}
ZVariant ZTypedPtr::getProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->getProperty(name);
    return type ? plain::getProperty(*this, nullptr, name, true) : ZVariant();
}
ZVariant ZTypedPtr::getPropertyItem(const ZSelector& name, int index) const {
    if (ZType* object = instanceOf(*this)) return object->getPropertyItem(name, index);
    return type ? plain::getItem(*this, name, index) : ZVariant();
}
ZVariant ZTypedPtr::getPropertyItem(ZTypedPtr* typed, const ZSelector& name, int index) const {
    locate(*this, typed, name);
    return getPropertyItem(name, index);
}
ZVariant ZTypedPtr::getPropertyItem(const ZSelector& name, const ZSelector& key) const {
    if (ZType* object = instanceOf(*this)) return object->getPropertyItem(name, key);
    return type ? plain::getItem(*this, name, key) : ZVariant();
}
ZVariant ZTypedPtr::getPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZSelector& key) const {
    locate(*this, typed, name);
    return getPropertyItem(name, key);
}
ZVariant ZTypedPtr::getPropertyItem(const ZSelector& name, const void* key) const {
    if (ZType* object = instanceOf(*this)) return object->getPropertyItem(name, key);
    return type ? plain::getItem(*this, name, key) : ZVariant();
}
ZVariant ZTypedPtr::getPropertyItem(ZTypedPtr* typed, const ZSelector& name, const void* key) const {
    locate(*this, typed, name);
    return getPropertyItem(name, key);
}
ZVariant ZTypedPtr::getPropertyItem(const ZSelector& name, const ZVariant& key) const {
    if (ZType* object = instanceOf(*this)) return object->getPropertyItem(name, key);
    return type ? plain::getItem(*this, name, key) : ZVariant();
}
ZVariant ZTypedPtr::getPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key) const {
    locate(*this, typed, name);
    return getPropertyItem(name, key);
}
int ZTypedPtr::getPropertyCount(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->getPropertyCount(name);
    return type ? plain::itemCount(*this, name) : 0;
}
int ZTypedPtr::getPropertyCount(ZTypedPtr* typed, const ZSelector& name) const {
    locate(*this, typed, name);
    return getPropertyCount(name);
}
bool ZTypedPtr::hasPropertyValue(const ZSelector& name, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->hasPropertyValue(name, value);
    return type ? plain::hasValue(*this, name, value) : false;
}
bool ZTypedPtr::hasPropertyValue(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value) const {
    locate(*this, typed, name);
    return hasPropertyValue(name, value);
}
ZVariant ZTypedPtr::getPropertyKey(const ZSelector& name, int index) const {
    if (ZType* object = instanceOf(*this)) return object->getPropertyKey(name, index);
    return type ? plain::keyAt(*this, name, index) : ZVariant();
}
ZVariant ZTypedPtr::getPropertyKey(ZTypedPtr* typed, const ZSelector& name, int index) const {
    locate(*this, typed, name);
    return getPropertyKey(name, index);
}
int ZTypedPtr::getPropertyKeyIndex(const ZSelector& name, const ZVariant& key) const {
    if (ZType* object = instanceOf(*this)) return object->getPropertyKeyIndex(name, key);
    return type ? plain::indexOfKey(*this, name, key) : -1;
}
int ZTypedPtr::getPropertyKeyIndex(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key) const {
    locate(*this, typed, name);
    return getPropertyKeyIndex(name, key);
}
ZVariant ZTypedPtr::findPropertyKey(const ZSelector& name, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->findPropertyKey(name, value);
    return type ? plain::keyOfValue(*this, name, value) : ZVariant();
}
ZVariant ZTypedPtr::findPropertyKey(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value) const {
    locate(*this, typed, name);
    return findPropertyKey(name, value);
}
int ZTypedPtr::findPropertyIndex(const ZSelector& name, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->findPropertyIndex(name, value);
    return type ? plain::indexOfValue(*this, name, value) : -1;
}
int ZTypedPtr::findPropertyIndex(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value) const {
    locate(*this, typed, name);
    return findPropertyIndex(name, value);
}

// Property writing

bool ZTypedPtr::clearProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->clearProperty(name);
    return type ? plain::clearProperty(*this, name) : false;
}
bool ZTypedPtr::clearProperty(ZTypedPtr* typed, const ZSelector& name) const {
    locate(*this, typed, name);
    return clearProperty(name);
}
bool ZTypedPtr::removePropertyItem(const ZSelector& name, const ZVariant& key) const {
    if (ZType* object = instanceOf(*this)) return object->removePropertyItem(name, key);
    return type ? plain::removeItem(*this, name, key) : false;
}
bool ZTypedPtr::removePropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key) const {
    locate(*this, typed, name);
    return removePropertyItem(name, key);
}
bool ZTypedPtr::removePropertyItem(const ZSelector& name, int index) const {
    if (ZType* object = instanceOf(*this)) return object->removePropertyItem(name, index);
    return type ? plain::removeItemAt(*this, name, index) : false;
}
bool ZTypedPtr::removePropertyItem(ZTypedPtr* typed, const ZSelector& name, int index) const {
    locate(*this, typed, name);
    return removePropertyItem(name, index);
}
bool ZTypedPtr::insertPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value,
                                   bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->insertPropertyItem(name, key, value, notify);
    return type ? plain::insertItem(*this, name, key, value) : false;
}
bool ZTypedPtr::insertPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key, const ZVariant& value,
                                   bool notify) const {
    locate(*this, typed, name);
    return insertPropertyItem(name, key, value, notify);
}
bool ZTypedPtr::addPropertyItem(const ZSelector& name, const ZVariant& value, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->addPropertyItem(name, value, notify);
    return type ? plain::addItem(*this, name, value) : false;
}
bool ZTypedPtr::addPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) const {
    locate(*this, typed, name);
    return addPropertyItem(name, value, notify);
}
bool ZTypedPtr::addPropertyArray(const ZSelector& name, const ZVArray& values, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->addPropertyArray(name, values, notify);
    return type ? plain::addArray(*this, name, values) : false;
}
ZMetaType* ZTypedPtr::propertyType(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propertyType(name);
    return type ? plain::getPropertyType(*this, name) : nullptr;
}
ZMetaType* ZTypedPtr::propertyType(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propertyType(typed, name);
    return type ? plain::propertyType(*this, typed, name) : nullptr;
}
ZSelector ZTypedPtr::dynamicPropertyOptions(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->dynamicPropertyOptions(name);
    return type ? ZSelector() : ZSelector();
}
bool ZTypedPtr::setDynamicPropertyOptions(const ZSelector& name, const ZSelector& words) const {
    if (ZType* object = instanceOf(*this)) return object->setDynamicPropertyOptions(name, words);
    return type ? false : false;
}
bool ZTypedPtr::addDynamicPropertyOptions(const ZSelector& name, const ZSelector& words) const {
    if (ZType* object = instanceOf(*this)) return object->addDynamicPropertyOptions(name, words);
    return type ? false : false;
}
bool ZTypedPtr::setDynamicProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, uint flags,
                                   bool add) const {
    if (ZType* object = instanceOf(*this)) return object->setDynamicProperty(typed, name, value, flags, add);
    return type ? false : false;
}
bool ZTypedPtr::setDynamicProperty(const ZSelector& name, const ZVariant& value, bool add) const {
    if (ZType* object = instanceOf(*this)) return object->setDynamicProperty(name, value, add);
    return type ? false : false;
}
bool ZTypedPtr::setProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setProperty(typed, name, value, notify);
    return type ? plain::setProperty(*this, typed, name, value, notify) : false;
}
bool ZTypedPtr::setProperty(const ZSelector& name, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->setProperty(name, value);
    return type ? plain::setProperty(*this, nullptr, name, value, true) : false;
}
bool ZTypedPtr::changeProperty(const ZVariant& value, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->changeProperty(value, name);
    return type ? plain::setProperty(*this, nullptr, name, value, true) : false;
}
bool ZTypedPtr::copyProperty(const ZType* source, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->copyProperty(source, name);
    return type ? source && plain::setProperty(*this, nullptr, name, source->getProperty(name), true) : false;
}
bool ZTypedPtr::setEnumProperty(const ZSelector& name, const ZSelector& item, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setEnumProperty(name, item, notify);
    return type ? plain::setEnum(*this, name, item, notify) : false;
}
bool ZTypedPtr::setEnumProperty(ZTypedPtr* typed, const ZSelector& name, const ZSelector& item, bool notify) const {
    locate(*this, typed, name);
    return setEnumProperty(name, item, notify);
}
bool ZTypedPtr::addEnumPropertyItem(const ZSelector& name, const ZSelector& item, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->addEnumPropertyItem(name, item, notify);
    return type ? plain::addEnumItem(*this, name, item) : false;
}
bool ZTypedPtr::addEnumPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZSelector& item, bool notify) const {
    locate(*this, typed, name);
    return addEnumPropertyItem(name, item, notify);
}
bool ZTypedPtr::setDynamicPropertyItem(const ZSelector& name, int index, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->setDynamicPropertyItem(name, index, value);
    return type ? false : false;
}
bool ZTypedPtr::setDynamicPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->setDynamicPropertyItem(name, key, value);
    return type ? false : false;
}
bool ZTypedPtr::setDynamicPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->setDynamicPropertyItem(name, key, value);
    return type ? false : false;
}
bool ZTypedPtr::setPropertyItem(const ZSelector& name, int index, const ZVariant& value, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setPropertyItem(name, index, value, notify);
    return type ? plain::setItem(*this, name, index, value) : false;
}
bool ZTypedPtr::setPropertyItem(ZTypedPtr* typed, const ZSelector& name, int index, const ZVariant& value,
                                bool notify) const {
    locate(*this, typed, name);
    return setPropertyItem(name, index, value, notify);
}
bool ZTypedPtr::setPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setPropertyItem(name, key, value, notify);
    return type ? plain::setItem(*this, name, key, value) : false;
}
bool ZTypedPtr::setPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZSelector& key, const ZVariant& value,
                                bool notify) const {
    locate(*this, typed, name);
    return setPropertyItem(name, key, value, notify);
}
bool ZTypedPtr::setPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setPropertyItem(name, key, value, notify);
    return type ? plain::setItem(*this, name, key, value) : false;
}
bool ZTypedPtr::setPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key, const ZVariant& value,
                                bool notify) const {
    locate(*this, typed, name);
    return setPropertyItem(name, key, value, notify);
}
bool ZTypedPtr::setEnumPropertyItem(const ZSelector& name, int index, const ZSelector& item, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setEnumPropertyItem(name, index, item, notify);
    return type ? plain::setEnumItem(*this, name, index, item) : false;
}
bool ZTypedPtr::setEnumPropertyItem(ZTypedPtr* typed, const ZSelector& name, int index, const ZSelector& item,
                                    bool notify) const {
    locate(*this, typed, name);
    return setEnumPropertyItem(name, index, item, notify);
}
bool ZTypedPtr::setEnumPropertyItem(const ZSelector& name, const ZSelector& key, const ZSelector& item,
                                    bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setEnumPropertyItem(name, key, item, notify);
    return type ? plain::setEnumItem(*this, name, key, item) : false;
}
bool ZTypedPtr::setEnumPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZSelector& key,
                                    const ZSelector& item, bool notify) const {
    locate(*this, typed, name);
    return setEnumPropertyItem(name, key, item, notify);
}
bool ZTypedPtr::setEnumPropertyItem(const ZSelector& name, const ZVariant& key, const ZSelector& item,
                                    bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setEnumPropertyItem(name, key, item, notify);
    return type ? plain::setEnumItem(*this, name, key, item) : false;
}
bool ZTypedPtr::setEnumPropertyItem(ZTypedPtr* typed, const ZSelector& name, const ZVariant& key, const ZSelector& item,
                                    bool notify) const {
    locate(*this, typed, name);
    return setEnumPropertyItem(name, key, item, notify);
}

// Sets of properties

bool ZTypedPtr::setProperties(const ZVSelectMap& values) const {
    if (ZType* object = instanceOf(*this)) return object->setProperties(values);
    return type ? plain::setProperties(*this, values) : false;
}
bool ZTypedPtr::setProperties(const ZVSelectMap& values, bool notify) const {
    if (ZType* object = instanceOf(*this)) return object->setProperties(values, notify);
    return type ? plain::setProperties(*this, values) : false;
}
bool ZTypedPtr::setProperties(const ZType* source) const {
    if (ZType* object = instanceOf(*this)) return object->setProperties(source);
    return type ? plain::setProperties(*this, source) : false;
}
bool ZTypedPtr::setProperties(const ZType* source, const ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->setProperties(source, names);
    return type ? plain::setProperties(*this, source, names) : false;
}
bool ZTypedPtr::matchProperties(const ZVSelectMap& values) const {
    if (ZType* object = instanceOf(*this)) return object->matchProperties(values);
    return type ? plain::matchProperties(*this, values) : false;
}
bool ZTypedPtr::matchProperties(const ZType* other) const {
    if (ZType* object = instanceOf(*this)) return object->matchProperties(other);
    return type ? plain::matchProperties(*this, other) : false;
}
bool ZTypedPtr::matchMarkedProperties(const ZVSelectMap& values, char mark) const {
    if (ZType* object = instanceOf(*this)) return object->matchMarkedProperties(values, mark);
    return type ? plain::matchProperties(*this, values, mark) : false;
}
bool ZTypedPtr::matchNamedProperties(const ZType* other, const ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->matchNamedProperties(other, names);
    return type ? plain::matchProperties(*this, other, names) : false;
}
bool ZTypedPtr::fetchProperties(ZVSelectMap& values) const {
    if (ZType* object = instanceOf(*this)) return object->fetchProperties(values);
    return type ? plain::fetchProperties(*this, values) : false;
}
bool ZTypedPtr::fetchProperties(ZVSelectMap& values, const ZArrayT<ZSelector>& names) const {
    if (ZType* object = instanceOf(*this)) return object->fetchProperties(values, names);
    return type ? plain::fetchProperties(*this, values, names) : false;
}
bool ZTypedPtr::fetchProperties(ZVSelectMap& values, const ZSelector& names) const {
    if (ZType* object = instanceOf(*this)) return object->fetchProperties(values, names);
    return type ? plain::fetchProperties(*this, values, names.extract()) : false;
}
bool ZTypedPtr::fetchPropertiesWithOption(ZVSelectMap& values, const ZSelector& word) const {
    if (ZType* object = instanceOf(*this)) return object->fetchPropertiesWithOption(values, word);
    return type ? plain::propertiesWithOptions(*this, word, values) : false;
}
bool ZTypedPtr::setPropertiesWithOption(const ZVSelectMap& values, const ZSelector& word) const {
    if (ZType* object = instanceOf(*this)) return object->setPropertiesWithOption(values, word);
    return type ? plain::setPropertiesWithOption(*this, values, word) : false;
}

// Property structure

bool ZTypedPtr::addProperty(const ZProperty& property) const {
    if (ZType* object = instanceOf(*this)) return object->addProperty(property);
    return type ? false : false;
}
bool ZTypedPtr::addProperty(const ZSelector& name, const ZVariant& value) const {
    if (ZType* object = instanceOf(*this)) return object->addProperty(name, value);
    return type ? false : false;
}
bool ZTypedPtr::addProperty(const ZSelector& name, const ZVariant& value, uint flags) const {
    if (ZType* object = instanceOf(*this)) return object->addProperty(name, value, flags);
    return type ? false : false;
}
bool ZTypedPtr::addProperty(const ZSelector& name, const ZVariant& value, const ZSelector& words) const {
    if (ZType* object = instanceOf(*this)) return object->addProperty(name, value, words);
    return type ? false : false;
}
bool ZTypedPtr::removeProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->removeProperty(name);
    return type ? false : false;
}
bool ZTypedPtr::renameProperty(const ZSelector& name, const ZSelector& to) const {
    if (ZType* object = instanceOf(*this)) return object->renameProperty(name, to);
    return type ? false : false;
}
ZSelector ZTypedPtr::propertyStackName(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propertyStackName(name);
    return type ? ZSelector() : ZSelector();
}
bool ZTypedPtr::pushProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->pushProperty(name);
    return type ? false : false;
}
bool ZTypedPtr::popProperty(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->popProperty(name);
    return type ? false : false;
}
bool ZTypedPtr::loadPersistentProperties() const {
    if (ZType* object = instanceOf(*this)) return object->loadPersistentProperties();
    return type ? false : false;
}
bool ZTypedPtr::loadPersistentProperties(const ZSelector& group) const {
    if (ZType* object = instanceOf(*this)) return object->loadPersistentProperties(group);
    return type ? false : false;
}
bool ZTypedPtr::storePersistentProperties() const {
    if (ZType* object = instanceOf(*this)) return object->storePersistentProperties();
    return type ? false : false;
}
void ZTypedPtr::propertyDelegationChanged(const ZProperty& property) const {
    if (ZType* object = instanceOf(*this)) object->propertyDelegationChanged(property);
}
void ZTypedPtr::propertyChanged(const ZProperty& property) const {
    if (ZType* object = instanceOf(*this)) object->propertyChanged(property);
}
int ZTypedPtr::getEnumFlags(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->getEnumFlags(name);
    return type ? plain::getProperty(*this, nullptr, name, true).toInt() : 0;
}
bool ZTypedPtr::setEnumFlags(const ZSelector& name, const ZSelector& words) const {
    if (ZType* object = instanceOf(*this)) return object->setEnumFlags(name, words);
    return type ? plain::setEnumFlags(*this, name, words, true) : false;
}
bool ZTypedPtr::removeEnumFlags(const ZSelector& name, const ZSelector& words) const {
    if (ZType* object = instanceOf(*this)) return object->removeEnumFlags(name, words);
    return type ? plain::setEnumFlags(*this, name, words, false) : false;
}

// Accessor methods of a property, borrowed; null if the type has none

ZMethod* ZTypedPtr::getter(ZTypedPtr* typed, const ZSelector& name, bool ptrForm, bool constForm, bool item) const {
    if (ZType* object = instanceOf(*this)) return object->getter(typed, name, ptrForm, constForm, item);
    return type ? accessor(*this, typed,
                           [&](ZTypedPtr* at) { return type->getterMethod(at, name, ptrForm, constForm, item); })
                : nullptr;
}
ZMethod* ZTypedPtr::getter(ZTypedPtr* typed, const ZProperty* prop, bool ptrForm, bool constForm, bool item) const {
    if (ZType* object = instanceOf(*this)) return object->getter(typed, prop, ptrForm, constForm, item);
    return type ? accessor(*this, typed,
                           [&](ZTypedPtr* at) { return type->getterMethod(at, prop, ptrForm, constForm, item); })
                : nullptr;
}
ZMethod* ZTypedPtr::setter(ZTypedPtr* typed, const ZSelector& name, bool item) const {
    if (ZType* object = instanceOf(*this)) return object->setter(typed, name, item);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->setterMethod(at, name, item); }) : nullptr;
}
ZMethod* ZTypedPtr::setter(ZTypedPtr* typed, const ZProperty* prop, bool item) const {
    if (ZType* object = instanceOf(*this)) return object->setter(typed, prop, item);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->setterMethod(at, prop, item); }) : nullptr;
}
ZMethod* ZTypedPtr::counter(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->counter(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->counterMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::counter(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->counter(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->counterMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::propByIndex(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propByIndex(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->propByIndexMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::propByIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->propByIndex(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->propByIndexMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::hasProp(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->hasProp(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->hasPropMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::hasProp(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->hasProp(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->hasPropMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::propKey(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propKey(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->propKeyMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::propKey(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->propKey(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->propKeyMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::propIndex(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->propIndex(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->propIndexMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::propIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->propIndex(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->propIndexMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::findKey(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->findKey(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->findKeyMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::findKey(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->findKey(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->findKeyMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::findIndex(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->findIndex(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->findIndexMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::findIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->findIndex(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->findIndexMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::cleaner(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->cleaner(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->cleanerMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::cleaner(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->cleaner(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->cleanerMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::remover(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->remover(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->removerMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::remover(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->remover(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->removerMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::removeByIndex(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->removeByIndex(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->removeByIndexMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::removeByIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->removeByIndex(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->removeByIndexMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::inserter(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->inserter(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->inserterMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::inserter(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->inserter(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->inserterMethod(at, prop); }) : nullptr;
}
ZMethod* ZTypedPtr::adder(ZTypedPtr* typed, const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->adder(typed, name);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->adderMethod(at, name); }) : nullptr;
}
ZMethod* ZTypedPtr::adder(ZTypedPtr* typed, const ZProperty* prop) const {
    if (ZType* object = instanceOf(*this)) return object->adder(typed, prop);
    return type ? accessor(*this, typed, [&](ZTypedPtr* at) { return type->adderMethod(at, prop); }) : nullptr;
}