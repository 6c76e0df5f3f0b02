#pragma once

#include "value/ZNamedTypeArray.h"

/// The parts of a content, by their names.
class ORV_API ZContentMap : public ZNamedTypeArray {
public:
    ZContentMap() = default;
    explicit ZContentMap(const ZNamedTypeArray& other) : ZNamedTypeArray(other) {}

    using ZNamedTypeArray::compare;
    /// What both have under one name, as `compare` has it: a missing one comes before an instance.
    int compare(const ZContentMap& other, const ZSelector& name) const;
};
