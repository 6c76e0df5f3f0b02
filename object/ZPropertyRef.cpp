#include "object/ZPropertyRef.h"

#include "object/ZMetaType.h"
#include "toolkit/epoch.h"
#include "value/ZTypedPtr.h"

namespace {
/// What a lookup found, if it is an instance of a `ZType` class.
ZType* ownerOf(const ZTypedPtr& typed) {
    return typed.type && typed.instance && typed.type->getDataType()->holdsZType() ? static_cast<ZType*>(typed.instance)
                                                                                   : nullptr;
}
} // namespace

ZPropertyRef::ZPropertyRef(const ZPropertyRef& other)
    : record(other.record ? other.record->retain() : nullptr), instance(record ? other.instance : nullptr) {}

ZPropertyRef::ZPropertyRef(ZPropertyRef&& other) noexcept
    : record(std::exchange(other.record, nullptr)), instance(std::exchange(other.instance, nullptr)) {}

ZPropertyRef::ZPropertyRef(const ZVariant& value) : record(ZProperty::create(value)) {
    if (!record) ZError::fail();
}

ZPropertyRef::ZPropertyRef(const ZProperty* property, const ZType* owner)
    : record(property ? property->retain() : nullptr), instance(record ? const_cast<ZType*>(owner) : nullptr) {}

ZPropertyRef::ZPropertyRef(const ZType* type, const ZSelector& name) {
    if (!type) return;
    ZTypedPtr typed(type);
    {
        toolkit::EpochGuard guard;
        ZProperty* found = type->findProperty(&typed, name, false);
        // A declaration of the type of a value, that nobody owns, doesn't lead to that value.
        if (found && typed.instance) record = found->retain();
    }
    if (!record) {
        ZProperty local;
        typed = ZTypedPtr(type);
        if (!type->property(&typed, name, local, true)) return;
        record = local.copy();
        if (!record) {
            ZError::fail();
            return;
        }
    }
    instance = ownerOf(typed);
}

ZPropertyRef& ZPropertyRef::operator=(const ZPropertyRef& other) {
    ZPropertyRef copy(other);
    std::swap(record, copy.record);
    std::swap(instance, copy.instance);
    return *this;
}

ZPropertyRef& ZPropertyRef::operator=(ZPropertyRef&& other) noexcept {
    std::swap(record, other.record);
    std::swap(instance, other.instance);
    return *this;
}

void ZPropertyRef::clear() {
    instance = nullptr;
    if (ZProperty* old = std::exchange(record, nullptr)) old->release();
}

ZSelector ZPropertyRef::name() const { return record ? record->name() : ZSelector(); }

ZPropertyRef& ZPropertyRef::operator=(const ZVariant& value) {
    if (record && instance) instance->setProperty(record->name(), value);
    return *this;
}

ZPropertyRef::operator ZVariant() const {
    if (!record) return ZVariant();
    return instance ? instance->getProperty(record->name()) : record->value();
}

int ZPropertyRef::compare(const ZPropertyRef& other) const {
    if (!record || !other.record) return (record != nullptr) - (other.record != nullptr);
    if (record != other.record)
        if (int by = record->compare(*other.record)) return by;
    return (instance > other.instance) - (instance < other.instance);
}
