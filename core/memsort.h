#pragma once

#include "toolkit/types.h"

// Stable sorting of plain memory: records of one size in a row, moved by their bytes. `scratch` has room for all of
// them.

/// Sorts by `compare`, which gets two records and `user` and answers negative, 0 or positive.
ORV_API void mergesort(void* items, size_t count, size_t size, int (*compare)(const void*, const void*, void*),
                       void* user, void* scratch);
