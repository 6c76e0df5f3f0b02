#include "core/SlotPool.h"

#include "core/debug.h"
#include <cstring>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#endif

namespace orv {

using Locked = ZScopedLock<ZSpinLock>;

namespace {
/// The free list after a step, with another first slot.
ularge stepped(ularge list, uint first) { return ((list >> 32) + 1) << 32 | first; }

// The link of a retired record, in its count: below 0, so that nobody gets hold of it.
int linkCount(uint next) { return -1 - int(next); }
uint linkOf(int count) { return uint(-1 - count); }
} // namespace

bool SlotPoolData::open() {
    Locked held(lock);
    if (uint(toolkit::load(freeList)) != closedMark) return true;
    // A pool that was closed with records in use still has its memory.
    if (!table) {
        Table* first = makeTable(firstRoom);
        if (!first) return false;
        toolkit::storeRelease(table, first);
    }
    toolkit::storeRelease(freeList, ularge(closedFree));
    closedFree = closedUsed = 0;
    return true;
}

void SlotPoolData::close() {
    if (uint(toolkit::loadAcquire(freeList)) == closedMark) return;
    toolkit::epochDrain();
    uint left;
    {
        Locked held(lock);
        closedFree = uint(toolkit::exchange(freeList, ularge(closedMark)));
        closedUsed = fresh;
        for (uint next = closedFree; next; next = uint(headAt(next - 1).index)) --closedUsed;
        left = closedUsed;
        if (left == 0) freeMemory();
    }
    if (left) zdebug("%s: %u records still in use", name, left);
}

void* SlotPoolData::allocate(int& index) {
    ularge seen = toolkit::loadAcquire(freeList);
    for (;;) {
        uint first = uint(seen);
        if (first == 0 || first == closedMark) return allocateFresh(index);
        // Another thread may have the slot by now: then what stands here is no link, and the exchange fails.
        uint next = uint(toolkit::load(headAt(first - 1).index));
        if (!toolkit::compareExchange(freeList, seen, stepped(seen, next))) continue;
        index = int(first - 1);
        return use(first - 1);
    }
}

void* SlotPoolData::use(uint index) {
    void* place = record(int(index));
    ASAN_UNPOISON_MEMORY_REGION(place, recordSize);
    SlotHead& head = *headOf(place);
    toolkit::store(head.index, int(index));
    toolkit::storeRelease(head.count, 1);
    return place;
}

void* SlotPoolData::allocateFresh(int& index) {
    {
        Locked held(lock);
        if (uint(toolkit::load(freeList)) == closedMark) return nullptr;
        // Whoever comes meanwhile needs the new chunk too, and waits for it.
        if (fresh == roomEnd && !addChunk()) return nullptr;
        index = int(fresh++);
    }
    return use(uint(index));
}

SlotPoolData::Table* SlotPoolData::makeTable(uint room) {
    auto made = static_cast<Table*>(toolkit::allocZeroedBlock(sizeof(Table) + room * sizeof(char*)));
    if (made) made->room = room;
    return made;
}

bool SlotPoolData::addChunk() {
    constexpr uint indexLimit = 0x7FFFFFFF;
    if (roomEnd > indexLimit - chunkRecords()) return false;
    uint at = roomEnd >> chunkBits;
    if (at == table->room) {
        Table* larger = makeTable(at * 2);
        if (!larger) return false;
        std::memcpy(larger->chunks(), table->chunks(), at * sizeof(char*));
        larger->outgrown = table;
        toolkit::storeRelease(table, larger);
    }
    auto chunk = static_cast<char*>(toolkit::allocZeroedBlock(chunkRecords() * stride()));
    if (!chunk) return false;
    for (uint i = 0; i < chunkRecords(); ++i)
        ASAN_POISON_MEMORY_REGION(chunk + i * stride() + sizeof(SlotHead), recordSize);
    toolkit::storeRelease(table->chunks()[at], chunk);
    roomEnd += chunkRecords();
    return true;
}

void SlotPoolData::freeMemory() {
    Table* gone = toolkit::exchange(table, static_cast<Table*>(nullptr));
    for (uint i = 0; i < gone->room && gone->chunks()[i]; ++i) {
        ASAN_UNPOISON_MEMORY_REGION(gone->chunks()[i], chunkRecords() * stride());
        toolkit::freeBlock(gone->chunks()[i]);
    }
    while (gone) {
        Table* outgrown = gone->outgrown;
        toolkit::freeBlock(gone);
        gone = outgrown;
    }
    fresh = roomEnd = closedFree = closedUsed = 0;
}

void SlotPoolData::giveBack(void* record) {
    SlotHead& head = *headOf(record);
    uint number = uint(toolkit::load(head.index)) + 1;
    std::memset(record, 0, recordSize);
    ASAN_POISON_MEMORY_REGION(record, recordSize);
    toolkit::store(head.count, 0);
    ularge seen = toolkit::loadAcquire(freeList);
    for (;;) {
        if (uint(seen) == closedMark) {
            if (giveBackClosed(head, number)) return;
            seen = toolkit::loadAcquire(freeList);
            continue;
        }
        toolkit::store(head.index, int(uint(seen)));
        if (toolkit::compareExchange(freeList, seen, stepped(seen, number))) return;
    }
}

/// False if the pool is open again.
bool SlotPoolData::giveBackClosed(SlotHead& head, uint number) {
    Locked held(lock);
    if (uint(toolkit::load(freeList)) != closedMark) return false;
    toolkit::store(head.index, int(closedFree));
    closedFree = number;
    if (--closedUsed == 0) freeMemory();
    return true;
}

void SlotPoolData::retire(void* record) {
    int& count = headOf(record)->count;
    uint number = uint(index(record)) + 1, first = toolkit::load(retired);
    do toolkit::store(count, linkCount(first));
    while (!toolkit::compareExchange(retired, first, number));
    retireBatch();
}

/// Passes what waits to be retired on to an epoch, unless a batch is on its way: this one then comes behind it.
void SlotPoolData::retireBatch() {
    while (toolkit::loadAcquire(retired) != 0 && !toolkit::exchange(batching, true)) {
        batch = toolkit::exchange(retired, 0u);
        if (batch != 0) return toolkit::epochRetire(this, reclaimBatch);
        toolkit::exchange(batching, false);
    }
}

void SlotPoolData::reclaimBatch(toolkit::EpochLink* link) {
    auto pool = static_cast<SlotPoolData*>(link);
    uint next = pool->batch;
    while (next != 0) {
        void* record = pool->record(int(next - 1));
        next = linkOf(toolkit::load(headOf(record)->count));
        pool->destroy(record);
        pool->giveBack(record);
    }
    toolkit::exchange(pool->batching, false);
    pool->retireBatch();
}

int SlotPoolData::live() const {
    Locked held(lock);
    int count = 0;
    for (uint i = 0; i < fresh; ++i) count += toolkit::load(headAt(i).count) > 0;
    return count;
}

} // namespace orv
