#pragma once

#include "core/ZPtrKey.h"
#include "object/ZType.h"

/// An instance as a key, found by its address and kept alive while it is one.
class ZTypePtrKey {
public:
    using ZRelocatable = void;

    constexpr ZTypePtrKey() = default;
    /// Retains the instance; one whose last reference has gone gives the null key.
    ZTypePtrKey(const ZType* instance) : value(instance ? instance->retain() : nullptr) {}
    ZTypePtrKey(const ZTypePtrKey& other) : ZTypePtrKey(other.value) {}
    ZTypePtrKey(ZTypePtrKey&& other) noexcept : value(std::exchange(other.value, nullptr)) {}
    ~ZTypePtrKey() {
        if (value) value->release();
    }
    ZTypePtrKey& operator=(ZTypePtrKey other) noexcept {
        std::swap(value, other.value);
        return *this;
    }

    ZType* instance() const { return value; }
    /// By address: -1, 0 or 1.
    int compare(const ZTypePtrKey& other) const { return ZPtrKey(value).compare(ZPtrKey(other.value)); }
    bool operator==(const ZTypePtrKey& other) const { return value == other.value; }
    uint hashKey() const { return ZPtrKey(value).hashKey(); }

private:
    ZType* value = nullptr;
};
