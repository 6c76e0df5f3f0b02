#include "toolkit/lockrecord.h"

#include "toolkit/memory.h"

#include <cstdio>
#include <sys/mman.h>

namespace toolkit {

namespace {
LockRecord firstChunk[chunkSize];

// The table: records are used for the first time in order, then again, the one that has been free longest first, so
// that a generation comes back as late as can be.
int tableGuard = 0;
uint freshIndex = 1; ///< the next record never used; index 0 isn't a record
uint roomEnd = chunkSize;
uint freeHead = 0, freeTail = 0;
uint lastNumber = 0;

LockRecord& recordAt(uint index) { return lockChunks[index >> chunkBits][index & (chunkSize - 1)]; }

/// Adds a chunk, under the table's guard. Chunks are for ever, so they aren't counted blocks; but they can be refused
/// as these can.
bool addChunk() {
    if (roomEnd >= recordLimit) return false;
    size_t size = chunkSize * sizeof(LockRecord);
    if (const AllocHooks* hooks = allocHooks(); hooks && !hooks->allow(size)) return false;
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return false;
    storeRelease(lockChunks[roomEnd >> chunkBits], static_cast<LockRecord*>(memory));
    roomEnd += chunkSize;
    return true;
}

/// The index of a record to use; 0 when there is none.
uint takeIndex() {
    if (freshIndex < roomEnd) return freshIndex++;
    if (freeHead) {
        uint index = freeHead;
        freeHead = uint(recordAt(index).slotOrNext);
        if (!freeHead) freeTail = 0;
        return index;
    }
    return addChunk() ? freshIndex++ : 0;
}
} // namespace

LockRecord* lockChunks[recordLimit / chunkSize] = {firstChunk};

TLockId createRecord(ularge flags, uint traits) {
    spinLock(tableGuard);
    uint index = takeIndex();
    uint number = index ? ++lastNumber : 0;
    spinUnlock(tableGuard);
    if (!index) return 0;
    LockRecord& record = recordAt(index);
    uint generation = (load(record.traits) >> 24) % 255 + 1;
    TLockId id = generation << 24 | index;
    // Nobody held it or waited when it ended: depth, queue and numbers of waiters are as they have to be.
    store(record.label, nullptr);
    store(record.labelIndex, 0);
    store(record.number, number);
    store(record.slotOrNext, -1);
    store(record.traits, generation << 24 | traits);
    storeRelease(record.life, freeWord(id) | 1);
    storeRelease(record.word, freeWord(id) | flags);
    return id;
}

bool retainRecord(TLockId id, bool signal) {
    LockRecord* record = liveRecord(id, signal);
    if (!record) return false;
    ularge seen = loadAcquire(record->life);
    while (wordIs(seen, id) && uint(seen) > 0 && uint(seen) < 0xFFFFFFFFu)
        if (compareExchange(record->life, seen, seen + 1)) return true;
    return false;
}

LockRecord* dropRecord(TLockId id, bool signal, bool& known) {
    LockRecord* record = liveRecord(id, signal);
    known = false;
    if (!record) return nullptr;
    ularge seen = loadAcquire(record->life);
    while (wordIs(seen, id) && uint(seen) > 0)
        if (compareExchange(record->life, seen, seen - 1)) {
            known = true;
            return uint(seen) == 1 ? record : nullptr;
        }
    return nullptr;
}

void recycleRecord(LockRecord& record) {
    uint index = uint(load(record.life) >> 32) & (recordLimit - 1);
    store(record.life, 0);
    spinLock(tableGuard);
    store(record.slotOrNext, 0);
    if (freeTail)
        store(recordAt(freeTail).slotOrNext, int(index));
    else
        freeHead = index;
    freeTail = index;
    spinUnlock(tableGuard);
}

int waiterCount(TLockId id) {
    LockRecord* record = liveRecord(id, false);
    if (!record) record = liveRecord(id, true);
    if (!record) return 0;
    RecordGuard guard(*record);
    return wordIs(load(record->word), id) ? int(record->waiting) : 0;
}

// Waiters

Waiter::Outcome Waiter::park(large deadline) {
    // Who answers at once, as in a hand-over to and fro, spares this thread the sleep.
    constexpr int tries = 50;
    for (int i = 0; i < tries && loadAcquire(outcome) == Waiting; ++i) cpuPause();
    for (;;) {
        int seen = loadAcquire(outcome);
        if (seen != Waiting) return Outcome(seen);
        if (!futexWait(outcome, Waiting, deadline)) return Outcome(loadAcquire(outcome));
    }
}

void wakeChain(Waiter* first, Waiter::Outcome outcome) {
    while (first) {
        Waiter* next = first->next;
        int& cell = first->outcome;
        storeRelease(cell, outcome);
        // The waiter may be gone by now: the kernel then finds nobody at this address.
        futexWake(cell, 1);
        first = next;
    }
}

void WaitQueue::insert(Waiter& added) {
    added.queued = true;
    if (!last) {
        last = added.next = &added;
        return;
    }
    Waiter* before = last;
    if (added.rank < last->rank)
        while (before->next->rank <= added.rank) before = before->next;
    added.next = before->next;
    before->next = &added;
    if (added.rank >= last->rank) last = &added;
}

void WaitQueue::remove(Waiter& gone) {
    gone.queued = false;
    Waiter* before = last;
    while (before->next != &gone) before = before->next;
    before->next = gone.next;
    if (last == &gone) last = before == &gone ? nullptr : before;
    gone.next = nullptr;
}

Waiter* WaitQueue::pop() {
    Waiter* first = front();
    if (first) remove(*first);
    return first;
}

Waiter* WaitQueue::popAll() {
    Waiter* first = front();
    if (!first) return nullptr;
    last->next = nullptr;
    last = nullptr;
    for (Waiter* w = first; w; w = w->next) w->queued = false;
    return first;
}

void lockMisuse([[maybe_unused]] const char* what) {
#ifndef NDEBUG
    std::fprintf(stderr, "lock misuse: %s\n", what);
    __builtin_trap();
#endif
}

} // namespace toolkit
