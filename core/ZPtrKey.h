#pragma once

#include "core/forward.h"

/// A pointer as a key. It owns nothing.
class ZPtrKey {
public:
    constexpr ZPtrKey() = default;
    constexpr ZPtrKey(const void* pointer) : value(pointer) {}

    const void* pointer() const { return value; }
    /// By address: -1, 0 or 1.
    int compare(const ZPtrKey& other) const { return (bits() > other.bits()) - (bits() < other.bits()); }
    bool operator==(const ZPtrKey& other) const { return value == other.value; }
    uint hashKey() const {
        uint x = uint(ularge(bits()) >> 32) ^ uint(bits());
        return (~x >> 16) ^ x;
    }

private:
    uintptr_t bits() const { return reinterpret_cast<uintptr_t>(value); }

    const void* value = nullptr;
};
