#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZObject.h"
#include "object/ZProperty.h"
#include "object/methodParams.h"
#include "object/propertyAccess.h"
#include "value/ZTypedPtr.h"

#include <cstring>

// Methods of properties: the counter that a type declares, and setters for a property that no class declares.

namespace {

/// What stands at the key's place of an item setter's arguments.
enum class Key { None, Position, Int, Selector, Other };

const void* addressAt(const char* place) {
    const void* address;
    std::memcpy(&address, place, sizeof address);
    return address;
}

/// A variant of the argument whose slot stands there.
bool readArgument(const orv::MethodParam& param, const char* slot, ZVariant& value) {
    const void* address = addressAt(slot);
    if (param.passing == orv::Passing::Pointer) return value.setValue(param.type, address, true, false);
    return address && param.data && value.setValue(param.data, address, true, false);
}

/// Sets the property, or the item whose key stands there.
template <Key key>
bool setKeyed(ZType* self, const ZSelector& name, const orv::MethodParams* params, const char* slot,
              const ZVariant& value) {
    if constexpr (key == Key::None) {
        return self->setProperty(nullptr, name, value, true);
    } else if constexpr (key == Key::Position) {
        int index;
        std::memcpy(&index, slot, sizeof index);
        return self->setPropertyItem(name, index, value, true);
    } else if constexpr (key == Key::Int) {
        auto index = static_cast<const int*>(addressAt(slot));
        return index && self->setPropertyItem(name, *index, value, true);
    } else if constexpr (key == Key::Selector) {
        auto item = static_cast<const ZSelector*>(addressAt(slot));
        return item && self->setPropertyItem(name, *item, value, true);
    } else {
        ZVariant item;
        return params && readArgument((*params)[1], slot, item) && self->setPropertyItem(name, item, value, true);
    }
}

/// The entry of a setter: it sets the property that the method is named for. `isVariant`: the value comes as one.
template <bool isVariant, Key key> void setterEntry(const void* instance, ZMethod* method, void* args) {
    auto block = static_cast<char*>(args);
    auto self = const_cast<ZType*>(static_cast<const ZType*>(instance));
    const char* slot = block + sizeof(void*);
    const char* valueSlot = slot + (key == Key::None ? 0 : key == Key::Position ? sizeof(int) : sizeof(void*));
    toolkit::EpochGuard guard;
    const orv::MethodParams* params = method->params(self->type());
    ZVariant made;
    const ZVariant* value = nullptr;
    if (isVariant)
        value = static_cast<const ZVariant*>(addressAt(valueSlot));
    else if (params && readArgument((*params)[params->count - 1], valueSlot, made))
        value = &made;
    const bool done = value && setKeyed<key>(self, method->getName(), params, slot, *value);
    if (void* result = const_cast<void*>(addressAt(block))) ::new (result) bool(done);
}

template <Key key> ZMethod::Stacked entryFor(bool isVariant) {
    return isVariant ? setterEntry<true, key> : setterEntry<false, key>;
}
ZMethod::Stacked itemEntryFor(bool isVariant, const ZMetaType* index) {
    if (!index) return entryFor<Key::Position>(isVariant);
    switch (index->getDataType()->kind()) {
    case ZMetaType::Int:
        return entryFor<Key::Int>(isVariant);
    case ZMetaType::Selector:
        return entryFor<Key::Selector>(isVariant);
    default:
        return entryFor<Key::Other>(isVariant);
    }
}

bool addSetter(ZObject* object, const ZProperty& property, const ZSelector& signature, ZMethod::Stacked entry) {
    constexpr uint flags = ZMethod::Dynamic | ZMethod::Property | ZMethod::Bindable;
    if (signature.isEmpty()) return true;
    ZMethod* method = ZMethod::create(signature, ZSelector(), flags, nullptr, entry);
    if (!method) return false;
    method->setName(property.name());
    method->setSandBoxLevel(property.sandBoxLevel());
    const bool added = object->setMethod(method, true);
    ZMethod::release(method);
    return added;
}

} // namespace

int ZProperty::countItems(ZMetaType* type, const void* instance) const {
    if (!collection() || !type || !instance) return 0;
    toolkit::EpochGuard guard;
    ZTypedPtr at(type, instance);
    ZMethod* method = type->counterMethod(&at, this);
    int items = 0;
    return method && orv::callForNumber(method, at.instance, nullptr, 0, items) ? items : 0;
}

bool ZProperty::setupMethods(ZObject* object, bool force) {
    if (!object) return false;
    if (toolkit::load(methodsSetup) && !force) return true;
    auto takesVariant = [&](ZMetaType* type) { return resolved() || !type || type->isVariant(); };
    const ZMetaType* key = index;
    if (!addSetter(object, *this, setter(false), entryFor<Key::None>(takesVariant(signatureType(false)))) ||
        !addSetter(object, *this, setter(true), itemEntryFor(takesVariant(itemType), key)))
        return false;
    toolkit::store(methodsSetup, byte(1));
    return true;
}
