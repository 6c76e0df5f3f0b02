#include "core/ItemPool.h"

#include "toolkit/memory.h"

namespace orv::detail {

using Locked = ZScopedLock<ZSpinLock>;

void ItemPool::open() {
    Locked held(lock);
    keeps = true;
}

void ItemPool::close() {
    Chunk* gone;
    {
        Locked held(lock);
        keeps = false;
        gone = unneeded();
    }
    freeChunks(gone);
}

void* ItemPool::take() {
    Chunk* fresh = nullptr;
    for (;;) {
        {
            Locked held(lock);
            if (fresh) addChunk(fresh);
            if (Free* item = firstFree) {
                firstFree = item->next;
                ++inUse;
                return item;
            }
        }
        fresh = static_cast<Chunk*>(toolkit::allocBlock(sizeof(Chunk) + size_t(chunkItems) * itemSize));
        if (!fresh) return nullptr;
    }
}

void ItemPool::give(void* item) {
    Chunk* gone;
    {
        Locked held(lock);
        auto place = static_cast<Free*>(item);
        place->next = firstFree;
        firstFree = place;
        --inUse;
        gone = unneeded();
    }
    freeChunks(gone);
}

uint ItemPool::count() {
    Locked held(lock);
    return inUse;
}

void ItemPool::addChunk(Chunk* fresh) {
    fresh->next = chunks;
    chunks = fresh;
    char* items = reinterpret_cast<char*>(fresh + 1);
    for (uint i = chunkItems; i > 0; --i) {
        auto item = reinterpret_cast<Free*>(items + size_t(i - 1) * itemSize);
        item->next = firstFree;
        firstFree = item;
    }
}

ItemPool::Chunk* ItemPool::unneeded() {
    if (keeps || inUse) return nullptr;
    Chunk* all = chunks;
    chunks = nullptr;
    firstFree = nullptr;
    return all;
}

void ItemPool::freeChunks(Chunk* chunk) {
    while (chunk) {
        Chunk* next = chunk->next;
        toolkit::freeBlock(chunk);
        chunk = next;
    }
}

} // namespace orv::detail
