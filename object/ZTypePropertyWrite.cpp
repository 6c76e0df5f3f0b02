#include "object/ZBinding.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/ZObject.h"
#include "object/propertyAccess.h"
#include "object/propertyPlace.h"
#include "object/ztype.h"

using orv::PropertyPlace;

namespace {

/// Holds the instance's write lock, if it has one, until told otherwise. Foreign code is called after that: what a
/// change replaces is kept until then.
class WriteLock {
public:
    explicit WriteLock(ZType* instance) : instance(instance->writeLock() ? instance : nullptr) {}
    ~WriteLock() { open(); }
    WriteLock(const WriteLock&) = delete;
    void open() {
        if (ZType* locked = std::exchange(instance, nullptr)) locked->unlock();
    }

private:
    ZType* instance;
};

/// The entry of a dynamic property with a record and a tree of its own; null if there is none or no memory.
ZPropertyPtr* editEntry(ZType::DynamicProperties& tree, const ZSelector& name) {
    const ZPropertyPtr* known = tree.find(name);
    if (!known || !known->property()) return nullptr;
    ZPropertyPtr* entry = tree.edit(known);
    return entry && entry->detach() ? entry : nullptr;
}

/// A property whose update methods are being called: setting it again meanwhile doesn't call them again.
struct Update {
    const ZType* instance;
    uint name;
    const Update* outer;
};
constinit thread_local const Update* innermostUpdate = nullptr;

void callUpdaters(ZType* self, const ZProperty& property) {
    const ZSelector updaters = property.getUpdaters();
    if (updaters.isEmpty()) return;
    for (const Update* at = innermostUpdate; at; at = at->outer)
        if (at->instance == self && at->name == property.name().key()) return;
    const Update update{self, property.name().key(), innermostUpdate};
    innermostUpdate = &update;
    if (updaters.type() == ZSelector::Names)
        for (int i = 0, count = updaters.parcount(); i < count; ++i) self->callV(updaters.param(i));
    else
        self->callV(updaters);
    innermostUpdate = update.outer;
}

bool isBound(ZType* self, const ZMetaType* type) {
    return type && type->kind() == ZMetaType::Object && ZBinding::isBound(static_cast<ZObject*>(self), nullptr);
}
/// Tells who is bound to a property of an object.
void callBindings(ZType* self, const ZMetaType* type, const ZSelector& name, const ZVariant& value) {
    if (isBound(self, type)) static_cast<ZObject*>(self)->callPropertyBindings(name, value);
}

/// Keeps an instance while foreign code runs that may give up the last reference to it.
class Kept {
public:
    explicit Kept(ZType* instance) : instance(instance->retain()) {}
    ~Kept() {
        if (instance) instance->release();
    }
    Kept(const Kept&) = delete;

private:
    ZType* instance;
};

/// Tells a change of a dynamic property with no lock held. Gives up the record, which is kept until then, whatever
/// happens to the entry.
void tell(ZType* self, ZProperty* record, bool notify) {
    Kept kept(self);
    self->propertyChanged(*record);
    if (notify) callBindings(self, self->type(), record->name(), record->value());
    record->release();
}

/// Replaces the value of a dynamic property that is there.
bool setDynamicValue(ZType* self, ZType::DynamicProperties& tree, const ZSelector& name, const ZVariant& value,
                     bool notify = true) {
    ZVariant old;
    WriteLock lock(self);
    ZPropertyPtr* entry = editEntry(tree, name);
    if (!entry) return false;
    old = entry->property()->value();
    ZFailGuard failures;
    (*entry)->setValue(value);
    if (ORV_UNLIKELY(failures.rose())) {
        failures.forget();
        (*entry)->setValue(old);
        return false;
    }
    ZProperty* record = entry->property()->retain();
    lock.open();
    if (record) tell(self, record, notify);
    return true;
}

/// Adds a dynamic property, or puts it in place of one of that name.
bool putDynamic(ZType* self, ZType::DynamicProperties& tree, const ZProperty& property, bool notify = true) {
    ZProperty* record = property.copy();
    if (!record) return false;
    ZProperty* old = nullptr;
    bool put = false;
    {
        WriteLock lock(self);
        if (const ZPropertyPtr* known = tree.find(record->name())) {
            if (ZPropertyPtr* entry = tree.edit(known)) {
                old = entry->drop();
                put = entry->set(record);
            }
        } else {
            ZPropertyPtr* entry = ZPropertyPtr::create(record);
            put = entry && tree.add(entry);
            if (entry && !put) entry->release();
        }
    }
    if (old) old->release();
    if (!put) {
        record->release();
        return false;
    }
    self->propertyDelegationChanged(*record);
    tell(self, record, notify);
    return true;
}

bool putDynamic(ZType* self, ZType::DynamicProperties& tree, const ZSelector& name, const ZVariant& value, uint flags) {
    ZFailGuard failures;
    ZProperty fresh(name, value, flags | ZProperty::Dynamic);
    if (ORV_LIKELY(!failures.rose())) return putDynamic(self, tree, fresh);
    failures.forget();
    return false;
}

/// Puts a copy of a record into a tree that is being built, under another name.
bool putAs(ZType::DynamicProperties& tree, const ZProperty& source, const ZSelector& name) {
    ZProperty* record = source.copy();
    if (!record) return false;
    record->setName(name);
    const ZPropertyPtr* known = tree.find(name);
    ZPropertyPtr* entry = known ? tree.edit(known) : ZPropertyPtr::create(record);
    const bool put = entry && (known ? entry->set(record) : tree.add(entry));
    if (entry && !known && !put) entry->release();
    record->release();
    return put;
}

/// Writes through the setter of a declared property.
bool setDeclared(ZType* self, const PropertyPlace& place, const ZVariant& value, bool notify) {
    const orv::CachedMethod* setter = orv::writeAccessor(place.type, place.row);
    if (!setter) return false;
    ZVariant room;
    orv::AccessorWord word(static_cast<const void*>(nullptr));
    if (!orv::accessorWord(place.row->writePlan, value, room, word)) return false;
    const void* at = reinterpret_cast<const char*>(self) + setter->offset;
    bool locked = place.property->hasFlags(ZProperty::Lock) && self->writeLock();
    int done = 0;
    bool called = orv::callForNumber(setter->method, at, &word, 1, done);
    if (locked) self->unlock();
    if (!called || (place.row->writePlan.answers && !(done & 0xFF))) return false;
    orv::tellDeclared(self, place, notify);
    return true;
}

} // namespace

void orv::tellDeclared(ZType* self, const PropertyPlace& place, bool notify) {
    const bool updates = !place.property->getUpdaters().isEmpty(), bound = notify && isBound(self, place.type);
    if (ORV_LIKELY(!updates && !bound)) return;
    Kept kept(self);
    if (updates) callUpdaters(self, *place.property);
    if (bound) callBindings(self, place.type, *place.name, self->getProperty(*place.name));
}

// Values

bool ZType::setDynamicProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, uint flags, bool add) {
    ZSelector today = replacePropertyName(name);
    if (today.isEmpty()) return false;
    if (typed) *typed = ZTypedPtr(this);
    if (hasDynamicProperty(today)) return setDynamicValue(this, dynamicProperties, today, value);
    return add && putDynamic(this, dynamicProperties, today, value, flags);
}

bool ZType::setDynamicProperty(const ZSelector& name, const ZVariant& value, bool add) {
    return setDynamicProperty(nullptr, name, value, ZProperty::Default, add);
}

bool ZType::setProperty(ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) {
    ZSelector today = replacePropertyName(name);
    if (today.isEmpty()) return false;
    if (!dynamicProperties.isEmpty() && hasDynamicProperty(today)) {
        if (dynamicProperty(today)->readOnly()) return false;
        if (typed) *typed = ZTypedPtr(this);
        return setDynamicValue(this, dynamicProperties, today, value, notify);
    }
    if (today.type() == ZSelector::UID && today.parcount() > 1 && !hasDefinedProperty(today))
        return orv::setPath(this, typed, today, value, notify);
    PropertyPlace place(this, today);
    switch (place.kind) {
    case PropertyPlace::Declared:
        if (typed) *typed = ZTypedPtr(this);
        if (place.property->readOnly()) return false;
        if (setDeclared(this, place, value, notify)) return true;
        // A dynamic one that instances get on demand: this is the demand.
        if (place.property->dynamic() && !orv::writeAccessor(place.type, place.row)) {
            ZProperty own(*place.property);
            own.setValue(value);
            return putDynamic(this, dynamicProperties, own, notify);
        }
        return false;
    case PropertyPlace::Synthetic:
        if (typed) *typed = ZTypedPtr(this);
        return metaType->setSyntheticProperty(ZTypedPtr(this), today, value, notify);
    case PropertyPlace::Elsewhere:
        // Lists of names are paths for reading only.
        if (place.pathParts) return false;
        if (!place.writeBack) return place.other.setProperty(place.lend(typed), place.otherName, value, notify);
        return place.holder.detach() && ZTypedPtr(place.holder).setProperty(nullptr, place.otherName, value, notify) &&
               orv::writeBack(this, place, notify);
    default:
        return false;
    }
}

bool ZType::setProperty(const ZSelector& name, const ZVariant& value) {
    return setProperty(nullptr, name, value, true);
}

bool ZType::changeProperty(const ZVariant& value, const ZSelector& name) { return setProperty(name, value); }

bool ZType::copyProperty(const ZType* source, const ZSelector& name) {
    return source && source->hasProperty(name) && setProperty(name, source->getProperty(name));
}

bool ZType::clearProperty(const ZSelector& name) {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    switch (place.kind) {
    case PropertyPlace::Dynamic: {
        if (place.property->readOnly()) return false;
        ZVariant empty(place.property->value());
        if (empty.isContainer() && !empty.isNull()) {
            if (!empty.detach() || !empty.clearItems()) return false;
        } else if (!empty.clearValue()) {
            return false;
        }
        return setDynamicValue(this, dynamicProperties, today, empty);
    }
    case PropertyPlace::Declared: {
        if (place.property->readOnly()) return false;
        ZTypedPtr at(this);
        if (ZMethod* method = metaType->cleanerMethod(&at, place.property)) {
            int done = 0;
            if (!orv::callForNumber(method, at.instance, nullptr, 0, done) || !(done & 0xFF)) return false;
            orv::tellDeclared(this, place, true);
            return true;
        }
        return setProperty(today, place.property->value());
    }
    case PropertyPlace::Synthetic:
        return metaType->clearSyntheticProperty(ZTypedPtr(this), today);
    case PropertyPlace::Elsewhere:
        if (!place.writeBack) return place.other.clearProperty(place.otherName);
        return place.holder.detach() && ZTypedPtr(place.holder).clearProperty(place.otherName) &&
               orv::writeBack(this, place, true);
    default:
        return false;
    }
}

// Paths

/// Writes a path. What its first part holds is asked to set the rest: an object in place; a map gets the rest as a key;
/// any other value is taken out, made private, changed and written back.
bool orv::setPath(ZType* self, ZTypedPtr* typed, const ZSelector& path, const ZVariant& value, bool notify) {
    const int parts = path.parcount();
    ZVariant keeper;
    for (int at = 0; at + 1 < parts; ++at) {
        ZSelector first = path.param(at);
        ZVariant held = self->getProperty(first);
        const bool last = at + 2 == parts, whole = parts - at <= longestWholePath;
        ZSelector rest = last ? path.param(at + 1) : whole ? path.extract(at + 1, parts) : ZSelector();
        if (held.isNull()) {
            if (!rest.isEmpty() && self->isCollectionProperty(first))
                return self->setPropertyItem(first, rest, value, notify);
            ZObject* member = self->memberObject(first);
            if (!member) return false;
            held.setObject(member);
        }
        if (ZType* object = held.toType(); object && !isSelectMap(held)) {
            if (!rest.isEmpty()) {
                const bool done = object->setProperty(typed, rest, value, notify);
                // The owner goes with the value that was read on the way.
                if (typed && held.referenceCount() < 2) *typed = ZTypedPtr();
                return done;
            }
            keeper = std::move(held);
            self = object;
            continue;
        }
        if (rest.isEmpty() || !held.detach()) return false;
        if (isSelectMap(held) ? !held.setItem(rest, value) : !held.setProperty(nullptr, rest, value, notify))
            return false;
        return self->setProperty(typed, first, held, notify);
    }
    return false;
}

bool orv::writeBack(ZType* self, const PropertyPlace& place, bool notify) {
    if (!place.delegate.isEmpty()) return self->setProperty(nullptr, place.delegate, place.holder, notify);
    if (place.pathParts > longestWholePath) return false;
    ZSelector path = place.pathParts == 1 ? place.name->param(0) : place.name->extract(0, place.pathParts);
    if (path.type() == ZSelector::Names) path = ZSelector(path.extract(), ZSelector::UID);
    return self->setProperty(nullptr, path, place.holder, notify);
}

bool orv::isSelectMap(const ZVariant& value) {
    ZMetaType* type = value.mainType();
    return type && type == ztype<ZVSelectMap>();
}

// Flags and options of dynamic properties

bool ZType::setPropertyFlags(const ZSelector& name, uint flags) {
    WriteLock lock(this);
    ZPropertyPtr* entry = editEntry(dynamicProperties, replacePropertyName(name));
    if (!entry) return false;
    bool delegated = entry->property()->hasFlags(ZProperty::Delegate) != ((flags & ZProperty::Delegate) != 0);
    (*entry)->setFlags(flags);
    ZProperty* record = delegated ? entry->property()->retain() : nullptr;
    lock.open();
    if (record) {
        propertyDelegationChanged(*record);
        record->release();
    }
    return true;
}

bool ZType::setPropertyOptions(const ZSelector& name, const ZSelector& words) {
    return setDynamicPropertyOptions(name, words);
}

ZSelector ZType::dynamicPropertyOptions(const ZSelector& name) const {
    ZProperty* property = dynamicProperty(replacePropertyName(name));
    return property ? property->options() : ZSelector();
}

bool ZType::setDynamicPropertyOptions(const ZSelector& name, const ZSelector& words) {
    WriteLock lock(this);
    ZPropertyPtr* entry = editEntry(dynamicProperties, replacePropertyName(name));
    if (entry) (*entry)->setOptions(words);
    return entry != nullptr;
}

bool ZType::addDynamicPropertyOptions(const ZSelector& name, const ZSelector& words) {
    return setDynamicPropertyOptions(name, dynamicPropertyOptions(name).add(words));
}

// Structure

bool ZType::addProperty(const ZProperty& property) {
    if (property.name().isEmpty()) return false;
    ZProperty own(property);
    own.setFlags(own.flags() | ZProperty::Dynamic);
    return putDynamic(this, dynamicProperties, own);
}

bool ZType::addProperty(const ZSelector& name, const ZVariant& value) {
    return addProperty(name, value, uint(ZProperty::Default));
}

bool ZType::addProperty(const ZSelector& name, const ZVariant& value, uint flags) {
    return !name.isEmpty() && putDynamic(this, dynamicProperties, name, value, flags);
}

bool ZType::addProperty(const ZSelector& name, const ZVariant& value, const ZSelector& words) {
    if (name.isEmpty()) return false;
    ZProperty own(name, value, ZProperty::scanFlags(words) | ZProperty::Dynamic);
    own.setVersion(ZProperty::scanVersion(words));
    own.setSandBoxLevel(ZProperty::scanSBLevel(words));
    own.setOptions(orv::optionsAndUpdaters(words));
    return putDynamic(this, dynamicProperties, own);
}

bool ZType::removeProperty(const ZSelector& name) {
    WriteLock lock(this);
    const ZPropertyPtr* known = dynamicProperties.find(name);
    if (!known) return false;
    ZProperty* record = known->property() ? known->property()->retain() : nullptr;
    bool removed = dynamicProperties.remove(name);
    lock.open();
    if (record) {
        if (removed) propertyDelegationChanged(*record);
        record->release();
    }
    return removed;
}

bool ZType::renameProperty(const ZSelector& name, const ZSelector& to) {
    ZProperty* known = dynamicProperty(name);
    if (!known || to.isEmpty() || dynamicProperties.contains(to)) return name == to && known;
    ZProperty renamed(*known);
    renamed.setName(to);
    return putDynamic(this, dynamicProperties, renamed) && removeProperty(name);
}

/// A name that no path or list of words can be.
ZSelector ZType::propertyStackName(const ZSelector& name) const { return ZSelector("__stack_").join(name); }

bool ZType::pushProperty(const ZSelector& name) {
    // What the change replaces goes when the lock is free.
    DynamicProperties tree;
    WriteLock lock(this);
    if (!hasDynamicProperty(name)) return false;
    tree = dynamicProperties;
    // Each saved value stands one name further than the one saved after it.
    for (ZSelector at = name; const ZProperty* known = dynamicProperty(at); at = propertyStackName(at))
        if (!putAs(tree, *known, propertyStackName(at))) return false;
    std::swap(dynamicProperties, tree);
    const ZProperty* known = dynamicProperty(name);
    ZProperty* record = known && known->hasFlags(ZProperty::Delegate) ? known->retain() : nullptr;
    lock.open();
    if (record) {
        propertyDelegationChanged(*record);
        record->release();
    }
    return true;
}

bool ZType::popProperty(const ZSelector& name) {
    DynamicProperties tree;
    WriteLock lock(this);
    ZSelector at = name, saved = propertyStackName(name);
    if (!hasDynamicProperty(saved)) return false;
    tree = dynamicProperties;
    for (; const ZProperty* known = dynamicProperty(saved); at = saved, saved = propertyStackName(saved))
        if (!putAs(tree, *known, at)) return false;
    if (!tree.remove(at)) return false;
    std::swap(dynamicProperties, tree);
    const ZProperty* known = dynamicProperty(name);
    ZProperty* record = known ? known->retain() : nullptr;
    lock.open();
    if (record) {
        propertyDelegationChanged(*record);
        tell(this, record, true);
    }
    return true;
}

void ZType::propertyDelegationChanged(const ZProperty&) {}

void ZType::propertyChanged(const ZProperty& property) { callUpdaters(this, property); }
