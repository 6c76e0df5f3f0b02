#pragma once

#include "core/ZSpinLock.h"

namespace orv::detail {

/// Places of one size, taken from chunks, for small objects that come and go by the thousand. Any thread may take and
/// give back. Chunks are freed when the pool is closed and the last place has come back, so a late owner harms nothing.
class ORV_API ItemPool {
public:
    /// The size is rounded up to a multiple of 16; each chunk holds `chunkItems`.
    constexpr ItemPool(uint itemSize, uint chunkItems) : itemSize((itemSize + 15) & ~15u), chunkItems(chunkItems) {}
    ItemPool(const ItemPool&) = delete;

    /// From now on chunks are kept.
    void open();
    void close();
    /// Room for one item, undefined; null when there is no memory. Works on a closed pool too.
    void* take();
    void give(void* item);
    /// Items in use.
    uint count();

private:
    struct Free {
        Free* next;
    };
    struct alignas(16) Chunk {
        Chunk* next;
    };

    // Under the lock: puts a chunk's places among the free ones; takes out all chunks, if nobody needs them any more.
    void addChunk(Chunk* fresh);
    Chunk* unneeded();
    static void freeChunks(Chunk* chunk);

    const uint itemSize, chunkItems;
    ZSpinLock lock;
    bool keeps = false;
    uint inUse = 0;
    Free* firstFree = nullptr;
    Chunk* chunks = nullptr;
};

} // namespace orv::detail
