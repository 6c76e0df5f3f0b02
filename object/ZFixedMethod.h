#pragma once

#include "core/ZSelector.h"
#include "object/forward.h"

/// A row of a type's table of methods that code calls by index: the names of the method. The record is found through
/// the type's lookup cache.
class ZFixedMethod {
public:
    using ZRelocatable = void;

    ZFixedMethod() = default;
    ZFixedMethod(const ZSelector& signature, const ZSelector& qualifier) : signature(signature), qualifier(qualifier) {}

    const ZSelector& getSignature() const { return signature; }
    const ZSelector& getQualifier() const { return qualifier; }

private:
    ZSelector signature, qualifier;
};
