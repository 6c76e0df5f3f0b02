#pragma once

#include "toolkit/types.h"

/// Bits of a hash table for `count` items at `load` percent: `minBits` plus the significant bits of the wanted size,
/// held between the two limits; `minBits` for no items.
inline uint orv_calchashbits(uint count, uint load, uint minBits, uint maxBits) {
    if (!count) return minBits;
    uint size = (count * load + 50) / 100;
    uint bits = minBits + (size ? 32 - uint(__builtin_clz(size)) : 0);
    return bits < minBits ? minBits : bits > maxBits ? maxBits : bits;
}
inline uint orv_calchashbits(uint count, uint load) { return orv_calchashbits(count, load, 4, 12); }
/// A random odd factor from 3 to 4193, from a generator of the running thread.
ORV_API uint orv_calchashscale();
