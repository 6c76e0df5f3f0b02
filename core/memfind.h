#pragma once

#include "toolkit/types.h"

// Searching and filling plain memory. Positions count elements from the start of the range; -1 means that there is
// none. Ranges are `count` elements long; an empty one may be null.

/// The first and the last position of a value.
ORV_API large memposc(const void* range, byte value, size_t count);
ORV_API large memposw(const word* range, word value, size_t count);
ORV_API large memposi(const uint* range, uint value, size_t count);
ORV_API large memrposc(const void* range, byte value, size_t count);
ORV_API large memrposw(const word* range, word value, size_t count);
ORV_API large memrposi(const uint* range, uint value, size_t count);
/// The first and the last position at which `first` stands with `second` right behind it.
ORV_API large memposc2(const void* range, byte first, byte second, size_t count);
ORV_API large memrposc2(const void* range, byte first, byte second, size_t count);
/// The first and the last position at which a byte string stands; an empty one stands everywhere.
ORV_API large memfind(const void* range, size_t count, const void* wanted, size_t length);
ORV_API large memrfind(const void* range, size_t count, const void* wanted, size_t length);

/// Fills `count` elements with a pattern of one, two or three elements, which starts anew after its last; a range that
/// ends within the pattern gets the front of it.
ORV_API void memsetc(void* range, byte a, size_t count);
ORV_API void memsetc2(void* range, byte a, byte b, size_t count);
ORV_API void memsetc3(void* range, byte a, byte b, byte c, size_t count);
ORV_API void memsetw(word* range, word a, size_t count);
ORV_API void memsetw2(word* range, word a, word b, size_t count);
ORV_API void memsetw3(word* range, word a, word b, word c, size_t count);
ORV_API void memseti(uint* range, uint a, size_t count);
ORV_API void memseti2(uint* range, uint a, uint b, size_t count);
ORV_API void memseti3(uint* range, uint a, uint b, uint c, size_t count);
/// Fills `columns` elements in each of `rows` rows; a row starts `rowStride` elements after the one before, which may
/// be negative.
ORV_API void memsetmc(void* matrix, byte value, size_t columns, size_t rows, ptrdiff_t rowStride);
ORV_API void memsetmw(word* matrix, word value, size_t columns, size_t rows, ptrdiff_t rowStride);
ORV_API void memsetmi(uint* matrix, uint value, size_t columns, size_t rows, ptrdiff_t rowStride);

/// The position `i` from 0 to `count` - 1 at which `array[start + i * stride]` holds a value, so that a field of
/// records can be searched. The binary search wants ascending values and answers any position among equal ones, the
/// linear search the first.
ORV_API int binary_searchi(const int* array, int value, int count, int start, int stride);
ORV_API int binary_searchu(const uint* array, uint value, int count, int start, int stride);
ORV_API int binary_searchw(const word* array, word value, int count, int start, int stride);
ORV_API int linear_searchi(const int* array, int value, int count, int start, int stride);
ORV_API int linear_searchu(const uint* array, uint value, int count, int start, int stride);
ORV_API int linear_searchw(const word* array, word value, int count, int start, int stride);
