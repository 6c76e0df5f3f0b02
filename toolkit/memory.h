#pragma once

#include "toolkit/atomic.h"
#include "toolkit/types.h"

/// Counted blocks: what all memory of the library is made of.
namespace toolkit {

/// The 16 bytes in front of a payload. The payload is 16-aligned.
struct BlockHead {
    uint32_t sizeLow; ///< payload bytes, low 32 bits
    int count;        ///< reference count; 1 in a new block; atomic
    uint32_t
        state;    ///< bits 0 to 23: number of the block's own lock, 0 for none (atomic); 24 to 31: size, bits 32 to 39
    int elements; ///< element count of an array
};
static_assert(sizeof(BlockHead) == 16);

inline constexpr size_t blockLimit = (size_t(1) << 40) - 1; ///< largest payload in bytes
inline constexpr uint32_t blockLockMask = 0xFFFFFF;

inline BlockHead* blockHead(const void* payload) {
    return reinterpret_cast<BlockHead*>(static_cast<char*>(const_cast<void*>(payload)) - sizeof(BlockHead));
}
inline size_t blockSize(const void* payload) {
    const BlockHead* head = blockHead(payload);
    return head->sizeLow | size_t(load(head->state) >> 24) << 32;
}

/// A new block with count 1; contents undefined. Null when there is no memory or the size is above `blockLimit`.
ORV_API void* allocBlock(size_t size);
/// The same, zeroed.
ORV_API void* allocZeroedBlock(size_t size);
/// Resizes a block that nobody else holds; added bytes are undefined. Null on failure, with the old block intact.
/// A null block allocates.
ORV_API void* reallocBlock(void* payload, size_t size);
/// The same for a block that is likely to grow on: memory is taken ahead where that is needed, so that many small steps
/// don't move the block each time. The block is of exactly `size` bytes all the same.
ORV_API void* growBlock(void* payload, size_t size);
/// Frees a block whatever its count, and its own lock. Null is fine. A small block that is freed once more before it is
/// used again ends the process.
ORV_API void freeBlock(void* payload);

/// In a development configuration: overwrites freed blocks with 0xDD, so that late readers notice. Off at first.
ORV_API void setMemoryDebug(bool on);
/// Frees the small blocks that wait for the running thread's next allocations.
ORV_API void emptyThreadCache();
/// Whether the small blocks that wait on this thread, and the allocator's lists of free memory, are as they should be.
/// A programmer's aid: damage may also end the process here.
ORV_API bool checkHeap();

/// Called around every allocation while set; for tests and leak reports. None of them may allocate blocks.
struct AllocHooks {
    bool (*allow)(size_t size);                                 ///< false makes this allocation fail
    void (*made)(void* payload, size_t size, const char* type); ///< `type`: what is being constructed, or null
    void (*gone)(void* payload);
    void (*mark)(void* payload, const char* file, int line); ///< a debug label was given
};
/// Sets the hooks, null for none; answers the old ones. They have to outlive every call.
ORV_API const AllocHooks* setAllocHooks(const AllocHooks* hooks);
ORV_API const AllocHooks* allocHooks();

/// What the system has, in bytes.
ORV_API ularge freePhysicalMemory();
ORV_API ularge totalPhysicalMemory();
ORV_API ularge freeMemory();  ///< physical and swap
ORV_API ularge totalMemory(); ///< physical and swap

/// Gives the lock of a block back, by the number in `BlockHead::state`. The lock layer defines it.
void freeBlockLock(uint32_t number);

} // namespace toolkit
