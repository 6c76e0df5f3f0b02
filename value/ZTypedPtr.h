#pragma once

#include "value/forward.h"

/// A pointer that knows its type: the address of a value together with its metatype. Two words, no ownership, no lock.
/// A lookup may move it to the base, delegate or value in which it found its answer.
class ORV_API ZTypedPtr {
public:
    constexpr ZTypedPtr() = default;
    ZTypedPtr(const ZTypedPtr* other);
    ZTypedPtr(ZMetaType* type, const void* instance) : type(type), instance(const_cast<void*>(instance)) {}
    /// Into the variant, if it holds its value itself: not to outlive it.
    ZTypedPtr(const ZVariant& value);
    ZTypedPtr(const ZVariant* value);
    ZTypedPtr(const ZType* instance);

    bool isNull() const { return !type && !instance; }

    ZMetaType* type = nullptr;
    void* instance = nullptr;
};
