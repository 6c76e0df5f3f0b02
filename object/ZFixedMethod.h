#pragma once

#include "core/ZSelector.h"
#include "object/forward.h"
#include "toolkit/atomic.h"

/// A row of a type's table of methods that code calls by index: the names, and the record once it was looked up.
class ZFixedMethod {
public:
    using ZRelocatable = void;

    ZFixedMethod() = default;
    ZFixedMethod(const ZSelector& signature, const ZSelector& qualifier) : signature(signature), qualifier(qualifier) {}
    ZFixedMethod(const ZFixedMethod& other)
        : signature(other.signature), qualifier(other.qualifier), method(toolkit::loadAcquire(other.method)) {}
    ZFixedMethod& operator=(const ZFixedMethod& other) {
        signature = other.signature;
        qualifier = other.qualifier;
        toolkit::storeRelease(method, toolkit::loadAcquire(other.method));
        return *this;
    }

    const ZSelector& getSignature() const { return signature; }
    const ZSelector& getQualifier() const { return qualifier; }
    /// Borrowed from the type's method table; null while it isn't known.
    ZMethod* cached() const { return toolkit::loadAcquire(method); }
    void cache(ZMethod* known) const { toolkit::storeRelease(method, known); }

private:
    ZSelector signature, qualifier;
    mutable ZMethod* method = nullptr;
};
