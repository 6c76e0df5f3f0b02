#pragma once

#include "toolkit/types.h"

namespace orv::detail {

/// The length of the longest sequence that can be made from both by leaving out elements; -1 without memory, and
/// for 2^30 elements or more. The time
/// goes with the product of the lengths, 256 elements to a step, the memory with `lengthB`.
large longestSubsequence(const int* a, large lengthA, const int* b, large lengthB);

} // namespace orv::detail
