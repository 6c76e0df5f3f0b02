#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/propertyAccess.h"
#include "object/propertyTables.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

// Walks that may change values. A walk doesn't enter a property that it, or another walk of the thread, is in already,
// and goes no deeper than a bound.

namespace {

constexpr int deepestWalk = 512;

/// A property of an instance whose value is being walked. Marks can't stand in the record: other instances, and with
/// them other threads, share it.
struct Frame {
    const void* instance;
    const ZProperty* property;
    const Frame* outer;
};
constinit thread_local const Frame* innermost = nullptr;
constinit thread_local int walkDepth = 0;

bool isWalked(const void* instance, const ZProperty* property) {
    for (const Frame* frame = innermost; frame; frame = frame->outer)
        if (frame->instance == instance && frame->property == property) return true;
    return false;
}

class FrameScope {
public:
    FrameScope(const void* instance, const ZProperty* property) : frame{instance, property, innermost} {
        innermost = &frame;
    }
    ~FrameScope() { innermost = frame.outer; }
    FrameScope(const FrameScope&) = delete;

private:
    const Frame frame;
};

struct Depth {
    Depth() { ++walkDepth; }
    ~Depth() { --walkDepth; }
    Depth(const Depth&) = delete;
    static bool mayEnter() { return walkDepth < deepestWalk; }
};

struct Walk {
    orv::PropertyVisit filter, update;
    void* context;
    bool recursive, detached;

    /// Whether the value, that of a property of `instance`, changed.
    bool enter(const ZProperty& property, ZVariant& value, const void* instance) const {
        if (update && update(property, value, context)) return true;
        if (!recursive || value.toType() == instance || !Depth::mayEnter()) return false;
        Depth deeper;
        return value.updateProperties(nullptr, filter, update, context, recursive, detached);
    }
};

bool mayWalk(const ZType* self, const ZProperty& property) {
    return !property.hasFlags(ZProperty::Linked) && !property.isUpdating() && !isWalked(self, &property);
}

/// Walks the value of a dynamic property, whose record the caller holds. Where another instance shares the value, or
/// with `detached`, this is done on a copy, which takes its place after a change.
bool walkDynamic(const Walk& walk, ZType* self, ZType::DynamicProperties& tree, ZProperty* record) {
    const bool shared = !tree.isDetached() || record->refcount() > 2;
    if (!walk.detached && !shared) return walk.enter(*record, const_cast<ZVariant&>(record->value()), self);
    ZVariant copy = record->value();
    if (walk.detached && copy.toType() != self && !copy.detach()) return false;
    if (!walk.enter(*record, copy, self)) return false;
    const ZPropertyPtr* known = tree.find(record->name());
    ZPropertyPtr* own = known ? tree.edit(known) : nullptr;
    if (!own || !own->property() || !own->detach()) return false;
    (*own)->setValue(copy);
    return true;
}

} // namespace

bool ZMetaType::updatePropertyDefs(ZTypedPtr* typed, orv::PropertyVisit filter, orv::PropertyVisit update,
                                   void* context, bool recursive, bool detached) const {
    if (!typed || !typed->instance) return false;
    const Walk walk{filter, update, context, recursive, detached};
    // The walk may take its time, and callbacks may change the type: so no guard stays open, and names are kept.
    ZArrayT<ZSelector> names;
    if (!propertyDefNames(names)) return false;
    bool changed = false;
    for (const ZSelector& name : names) {
        ZVariant value;
        ZProperty* property = nullptr;
        {
            toolkit::EpochGuard guard;
            ZProperty* found = findPropertyDef(nullptr, name);
            if (found && !found->hasFlags(ZProperty::Linked)) property = found->retain();
            if (property && !getPropertyDef(property, typed->instance, value)) {
                property->release();
                property = nullptr;
            }
        }
        if (!property) continue;
        if (!isWalked(typed->instance, property) && (!filter || filter(*property, value, context))) {
            FrameScope frame(typed->instance, property);
            const bool itself = value.toType() == typed->instance;
            if ((!detached || itself || value.detach()) && walk.enter(*property, value, typed->instance)) {
                ZTypedPtr at(const_cast<ZMetaType*>(this), typed->instance);
                toolkit::EpochGuard guard;
                ZMethod* setter = property->readOnly() ? nullptr : setterMethod(&at, name, false);
                changed |= setter && setVariant(setter, at.instance, value);
            }
        }
        property->release();
    }
    return changed;
}

bool ZType::updateProperties(ZTypedPtr* typed, orv::PropertyVisit filter, orv::PropertyVisit update, void* context,
                             bool recursive, bool detached) {
    const Walk walk{filter, update, context, recursive, detached};
    ZTypedPtr self(this);
    if (typed) *typed = self;
    bool changed = metaType && metaType->updatePropertyDefs(&self, filter, update, context, recursive, detached);
    if (detached && !dynamicProperties.detach()) return changed;
    ZArrayT<ZSelector> names;
    if (!dynamicPropertyNames(names)) return changed;
    for (const ZSelector& name : names) {
        const ZPropertyPtr* entry = dynamicProperties.find(name);
        ZProperty* record = entry && entry->property() ? entry->property()->retain() : nullptr;
        if (!record) continue;
        if ((!filter || filter(*record, const_cast<ZVariant&>(record->value()), context)) && mayWalk(this, *record)) {
            FrameScope frame(this, record);
            changed |= walkDynamic(walk, this, dynamicProperties, record);
        }
        record->release();
    }
    return changed;
}

bool ZType::updateProperties(orv::PropertyVisit filter, orv::PropertyVisit update, void* context) {
    return updateProperties(nullptr, filter, update, context, false, false);
}
