#pragma once

#include "toolkit/types.h"

// Stable sorting of plain memory: records of one size in a row, moved by their bytes. `scratch` has room for all of
// them.

/// Sorts by `compare`, which gets two records and `user` and answers negative, 0 or positive.
ORV_API void mergesort(void* items, size_t count, size_t size, int (*compare)(const void*, const void*, void*),
                       void* user, void* scratch);

/// Ascending by the number that stands `offset` bytes into each record, aligned or not. Not-a-number comes last, and -0
/// is equal to 0. False without memory for the scratch buffer, with nothing changed, and for a field outside the
/// record.
ORV_API bool mergeSortByInt(void* items, size_t count, size_t size, size_t offset);
ORV_API bool mergeSortByUInt(void* items, size_t count, size_t size, size_t offset);
ORV_API bool mergeSortByFloat(void* items, size_t count, size_t size, size_t offset);
ORV_API bool mergeSortByDouble(void* items, size_t count, size_t size, size_t offset);
