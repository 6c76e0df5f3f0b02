#pragma once

#include "value/typeItems.h"

extern template class ORV_API orv::TypeItems<ZTypeArray, orv::TypeItem>;

/// An array of instances of `ZType` classes, in one pointer. See `orv::TypeItems` for what it shares with the named
/// kind.
class ORV_API ZTypeArray : public orv::TypeItems<ZTypeArray, orv::TypeItem> {
public:
    // Lifetime. A constructor without memory raises `ZError::fail` and leaves the array without items.

    ZTypeArray() = default;
    explicit ZTypeArray(uint capacity) : ZTypeArray(capacity, 100) {}
    /// `expand` as for `setExpand`.
    ZTypeArray(uint capacity, int16 expand);
    ZTypeArray(const ZType* const* instances, int count);
    /// The instances of a general array; of one that holds something else none, with a failure raised.
    explicit ZTypeArray(const ZVArray& values);
    /// What a container in a variant holds, or the instance itself.
    explicit ZTypeArray(const ZVariant& value);
    /// See `blendFrom`.
    ZTypeArray(const ZTypeArray* a, const ZTypeArray* b, const ZBlendPos& pos);

    /// Of two arrays as many items as lie between the two counts, each blended from those at its part of both; of one
    /// alone that one.
    bool blendFrom(const ZTypeArray* a, const ZTypeArray* b, const ZBlendPos& pos);
};
static_assert(sizeof(ZTypeArray) == sizeof(void*));
