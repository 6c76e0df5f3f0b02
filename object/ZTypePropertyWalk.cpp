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

/// A declared property of an instance whose value is being walked. Marks can't stand in the record: all instances and
/// threads share it.
struct Frame {
    const void* instance;
    const ZProperty* property;
    const Frame* outer;
};
constinit thread_local const Frame* innermost = nullptr;
constinit thread_local int walkDepth = 0;

bool walked(const void* instance, const ZProperty* property) {
    for (const Frame* frame = innermost; frame; frame = frame->outer)
        if (frame->instance == instance && frame->property == property) return true;
    return false;
}

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
        bool changed = update && update(property, value, context);
        if (recursive && value.toType() != instance && Depth::mayEnter()) {
            Depth deeper;
            changed |= value.updateProperties(nullptr, filter, update, context, recursive, detached);
        }
        return changed;
    }
};

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
        if (!walked(typed->instance, property) && (!filter || filter(*property, value, context))) {
            const Frame frame{typed->instance, property, innermost};
            innermost = &frame;
            const bool itself = value.toType() == typed->instance;
            if ((!detached || itself || value.detach()) && walk.enter(*property, value, typed->instance)) {
                ZTypedPtr at(const_cast<ZMetaType*>(this), typed->instance);
                toolkit::EpochGuard guard;
                ZMethod* setter = property->readOnly() ? nullptr : setterMethod(&at, name, false);
                changed |= setter && setVariant(setter, at.instance, value);
            }
            innermost = frame.outer;
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
        auto& stored = const_cast<ZVariant&>(record->value());
        if ((!filter || filter(*record, stored, context)) && record->beginUpdate()) {
            if (!detached) {
                changed |= walk.enter(*record, stored, this);
            } else {
                ZVariant copy = stored;
                const bool itself = copy.toType() == this;
                if ((itself || copy.detach()) && walk.enter(*record, copy, this)) {
                    record->endUpdate();
                    const ZPropertyPtr* known = dynamicProperties.find(name);
                    ZPropertyPtr* own = known ? dynamicProperties.edit(known) : nullptr;
                    if (own && own->property() && own->detach()) {
                        (*own)->setValue(copy);
                        changed = true;
                    }
                }
            }
            record->endUpdate();
            if (ZProperty* now = dynamicProperty(name)) now->endUpdate();
        }
        record->release();
    }
    return changed;
}

bool ZType::updateProperties(orv::PropertyVisit filter, orv::PropertyVisit update, void* context) {
    return updateProperties(nullptr, filter, update, context, false, false);
}
