#pragma once

#include "core/ZError.h"
#include "toolkit/memory.h"

// Counted blocks. A block is handed about by its payload; a 16-byte header in front of it holds the reference count
// (12 bytes before the payload) and the element count (4 bytes before). Counts are atomic; contents are the owner's.

/// A new block of `size` bytes with count 1; contents undefined. Null when there is no memory.
inline void* __zalloc(size_t size) { return toolkit::allocBlock(size); }
/// A new zeroed block; acknowledges earlier failures of the thread, so that the constructor that follows is judged
/// alone.
inline void* __znalloc(size_t size) {
    void* p = toolkit::allocZeroedBlock(size);
    if (ORV_LIKELY(p != nullptr)) zresetfail();
    return p;
}
/// Resizes a block that nobody else holds. Null on failure, with the old block intact.
inline void* __zrealloc(void* p, size_t size) { return toolkit::reallocBlock(p, size); }
/// A copy with count 1, element count included; null for null.
ORV_API void* __zmemdup(const void* p);
/// Fills `pointers` with `count` new blocks of one size; on failure none is left and the answer is false.
ORV_API bool __zallocuniform(void** pointers, int count, size_t size);
/// Gives up one reference of each block, or frees each at once with `force`; the pointers become null.
ORV_API void zfreeuniform(void** pointers, int count, bool force);
ORV_API void freeblocks(void** pointers, int count, bool force);

/// Bytes in a block; 0 for null.
inline size_t memsize(const void* p) { return p ? toolkit::blockSize(p) : 0; }
inline int memcount(const void* p) { return p ? toolkit::blockHead(p)->elements : 0; }
/// Who sees 1 may write: what others did before they gave up their references has happened then.
inline int refcount(const void* p) { return p ? toolkit::loadAcquire(toolkit::blockHead(p)->count) : 0; }
/// The new count. -1 for null and, unless `force`, for a block whose count is 0 or less, which stays as it is.
inline int incmemref(const void* p, bool force) {
    if (!p) return -1;
    int& count = toolkit::blockHead(p)->count;
    if (force) return toolkit::increment(count);
    int now = toolkit::incNonZero(count);
    return now > 0 ? now : -1;
}
/// The new count; frees nothing. -1 for null.
inline int decmemref(const void* p) { return p ? toolkit::decrement(toolkit::blockHead(p)->count) : -1; }
ORV_API void* retainFailed(const void* p);
/// Adds a reference and answers `p`; null for null, and for a block whose count has reached 0: it is never raised
/// again.
template <class T> inline T* retain(T* p) {
    if (!p || ORV_LIKELY(toolkit::incNonZero(toolkit::blockHead(p)->count) > 0)) return p;
    return static_cast<T*>(retainFailed(p));
}
/// Gives up one reference and frees the block with the last. Null is fine. No destructor runs.
inline void zfree(const void* p) {
    if (p && toolkit::decrement(toolkit::blockHead(p)->count) <= 0) toolkit::freeBlock(const_cast<void*>(p));
}
inline void operator_release(const void* p) { zfree(p); }
/// Frees a block whatever its count, for the last holder. Once the library has gone the block is left alone.
ORV_API void zdfree(void* p);

ORV_API void zeromem(void* p);
ORV_API void fillmem(void* p, byte value);
/// A debug label, passed to whoever watches allocations.
ORV_API void markmem(void* p, const char* file, int line);
/// Compares two blocks by their bytes, then by size; null comes first.
ORV_API int memcompare(const void* a, const void* b);
/// Checks a block's header for damage, and logs `label` if it finds any. True if it is sound or null.
ORV_API bool checkMemory(const char* label, const void* p);
/// Checks what waits to be used again on this thread and in the allocator; false for damage, though damage may also end
/// the process here. With `flag`, gives unused memory back first.
ORV_API bool checkDefaultHeap(bool flag);

inline ularge freeMemory() { return toolkit::freeMemory(); }
inline ularge totalMemory() { return toolkit::totalMemory(); }
inline ularge freePhysicalMemory() { return toolkit::freePhysicalMemory(); }
inline ularge totalPhysicalMemory() { return toolkit::totalPhysicalMemory(); }
