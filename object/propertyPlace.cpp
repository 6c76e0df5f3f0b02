#include "object/propertyPlace.h"

#include "object/ZMetaTypeData.h"
#include "object/propertyAccess.h"

namespace orv {

namespace {
bool isDelegate(const ZPropertyPtr& entry) {
    return entry.property() && entry.property()->hasFlags(ZProperty::Delegate);
}
/// Instances whose delegates this thread is asking: none is asked again for the same name, and the chain has an end.
struct Asking {
    const ZType* self;
    uint name;
    int depth;
    const Asking* outer;
};
constinit thread_local const Asking* innermost = nullptr;
constexpr int deepestDelegate = 512;

class AskingScope {
public:
    AskingScope(const ZType* self, const ZSelector& name)
        : asking{self, name.key(), innermost ? innermost->depth + 1 : 0, innermost} {
        for (const Asking* at = innermost; at && open; at = at->outer)
            open = at->self != self || at->name != asking.name;
        open = open && asking.depth < deepestDelegate;
        innermost = &asking;
    }
    ~AskingScope() { innermost = asking.outer; }
    AskingScope(const AskingScope&) = delete;
    explicit operator bool() const { return open; }

private:
    const Asking asking;
    bool open = true;
};
} // namespace

PropertyPlace::PropertyPlace(const ZType* self, const ZSelector& name, bool localOnly)
    : type(self->type()), self(self), name(&name) {
    if (name.isEmpty() || findOwn() || localOnly || !type) return;
    if (findDelegate() || findPath() || findTypeDelegate()) return;
}

ZTypedPtr* PropertyPlace::lend(ZTypedPtr* typed) const {
    if (!typed || holder.isNull() || (holder.isZType() && holder.referenceCount() > 1)) return typed;
    *typed = ZTypedPtr();
    return nullptr;
}

bool PropertyPlace::findOwn() {
    if (const ZPropertyPtr* entry = self->getDynamicProperties().find(*name)) {
        property = entry->property();
        kind = property ? Dynamic : Nowhere;
        return true;
    }
    if (!type) return false;
    if ((row = lookUpProperty(type, *name))) {
        property = row->property;
        kind = Declared;
        return true;
    }
    if (!type->isSynthetic() || !type->hasSyntheticProperty(ZTypedPtr(self), *name)) return false;
    kind = Synthetic;
    return true;
}

bool PropertyPlace::findDelegate() {
    if (self->getDynamicProperties().isEmpty()) return false;
    AskingScope scope(self, *name);
    if (!scope) return false;
    // Who is asked may change them.
    const PropertyTree own = self->getDynamicProperties();
    for (const ZPropertyPtr& entry : own) {
        if (!isDelegate(entry)) continue;
        const ZVariant& held = entry->value();
        if (held.toType() == self || !ZTypedPtr(held).hasProperty(*name)) continue;
        holder = held;
        other = ZTypedPtr(holder);
        otherName = *name;
        delegate = entry.key();
        writeBack = !held.isZType();
        kind = Elsewhere;
        return true;
    }
    return false;
}

/// The parts are read one after the other; a map gets what is left as one key.
bool PropertyPlace::findPath() {
    if (!name->deepName()) return false;
    const int parts = name->parcount();
    if (parts < 2) return false;
    if (!readProperty(self, nullptr, name->param(0), true, holder)) return false;
    int at = 1;
    for (; at + 1 < parts && !isSelectMap(holder); ++at) {
        ZVariant next = ZTypedPtr(holder).getProperty(name->param(at));
        if (next.isNull()) return false;
        holder = std::move(next);
    }
    otherName = at + 1 == parts ? name->param(at) : name->extract(at, parts);
    other = ZTypedPtr(holder);
    if (!other.hasProperty(otherName)) return false;
    pathParts = at;
    writeBack = !holder.isZType();
    kind = Elsewhere;
    return true;
}

bool PropertyPlace::findTypeDelegate() {
    AskingScope scope(self, *name);
    if (!scope) return false;
    ZTypedPtr delegate;
    for (int i = 0; type->delegateProperties(self, i, delegate); ++i) {
        if (!delegate.findProperty(nullptr, *name, false)) continue;
        other = delegate;
        otherName = *name;
        kind = Elsewhere;
        return true;
    }
    return false;
}

bool readPlace(const PropertyPlace& place, ZTypedPtr* typed, bool resolve, ZVariant& value) {
    switch (place.kind) {
    case PropertyPlace::Dynamic:
        value = place.property->value();
        break;
    case PropertyPlace::Declared: {
        const CachedMethod* getter = readAccessor(place.type, place.row);
        if (getter)
            callGetter(getter->method, reinterpret_cast<const char*>(place.self) + getter->offset, place.row->readPlan,
                       value);
        else if (place.property->dynamic())
            value = place.property->value();
        break;
    }
    case PropertyPlace::Synthetic:
        value = place.type->getSyntheticProperty(ZTypedPtr(place.self), *place.name, resolve);
        break;
    case PropertyPlace::Elsewhere:
        value = place.other.getProperty(place.lend(typed), place.otherName, resolve);
        return true;
    default:
        return false;
    }
    if (typed) *typed = ZTypedPtr(place.self);
    if (resolve && place.property && place.property->resolved()) value = place.self->resolveValue(value);
    return true;
}

bool readProperty(const ZType* self, ZTypedPtr* typed, const ZSelector& name, bool resolve, ZVariant& value) {
    const PropertyTree& own = self->getDynamicProperties();
    if (own.isEmpty()) {
        // The short way of what most reads are about: a declared property with a getter.
        const ZMetaType* type = self->type();
        if (!type) return false;
        toolkit::EpochGuard guard;
        PropertyLookup* row = lookUpProperty(type, name);
        const CachedMethod* getter = row ? readAccessor(type, row) : nullptr;
        if (ORV_LIKELY(getter && !row->property->resolved())) {
            if (typed) *typed = ZTypedPtr(self);
            callGetter(getter->method, reinterpret_cast<const char*>(self) + getter->offset, row->readPlan, value);
            return true;
        }
    } else if (const ZPropertyPtr* entry = own.find(name); entry && entry->property()) {
        if (!entry->property()->resolved()) {
            if (typed) *typed = ZTypedPtr(self);
            value = entry->property()->value();
            return true;
        }
    }
    return readPlace(PropertyPlace(self, name), typed, resolve, value);
}

} // namespace orv
