#include "toolkit/epoch.h"

#include "toolkit/lock.h"
#include "toolkit/memory.h"

#include <sys/mman.h>

namespace toolkit {

alignas(64) ularge epochNow = 1;

namespace {

// Slots. The list only grows, by whoever has the guard.
constexpr int firstSlots = 16;
constexpr size_t slotPage = 4096;
EpochSlot firstChunk[firstSlots];
alignas(64) EpochSlot* slots = nullptr;
int slotGuard = 0;
EpochSlot* freshSlot = firstChunk;
EpochSlot* freshEnd = firstChunk + firstSlots;
/// Open guards without a slot. While there are any, nothing is reclaimed.
int sharedGuards = 0;

// Retired objects: `incoming` is a stack that any thread pushes to. The rest belongs to whoever has the collector's
// lock.
struct Batch {
    EpochLink* first = nullptr;
    EpochLink* last = nullptr;
    ularge epoch = 0; ///< a guard of this epoch or an earlier one may hold objects of the batch

    void append(EpochLink* chain, EpochLink* end) {
        (first ? last->next : first) = chain;
        last = end;
    }
};
constexpr int collectStep = 32; ///< so many retirements from one look at the readers to the next
alignas(64) EpochLink* incoming = nullptr;
int waiting = 0;
int collectAt = collectStep;
alignas(64) int collectorLock = 0;
/// Objects join the newer batch. The older one is left as it is, so that a steady flow can't hold it up.
Batch older, newer;

ORV_THREAD_LOCAL bool reclaiming = false;

/// A slot that nobody has, under the guard; null when there is no memory.
EpochSlot* takeSlot() {
    for (EpochSlot* slot = load(slots); slot; slot = slot->next) {
        if (loadAcquire(slot->taken)) continue;
        store(slot->taken, 1);
        return slot;
    }
    if (freshSlot == freshEnd) {
        // Slots are for ever, so they aren't counted blocks; but they can be refused as these can.
        if (const AllocHooks* hooks = allocHooks(); hooks && !hooks->allow(slotPage)) return nullptr;
        void* memory = mmap(nullptr, slotPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) return nullptr;
        freshSlot = static_cast<EpochSlot*>(memory);
        freshEnd = freshSlot + slotPage / sizeof(EpochSlot);
    }
    EpochSlot* slot = freshSlot++;
    store(slot->taken, 1);
    slot->next = load(slots);
    // An exchange: who looked through the list before is thereby synchronised with the guards of the new slot.
    exchange(slots, slot);
    return slot;
}

void push(EpochLink* link, void (*reclaim)(EpochLink*)) {
    link->reclaim = reclaim;
    EpochLink* top = load(incoming);
    do link->next = top;
    while (!compareExchange(incoming, top, link));
}

/// Read-modify-write accesses that change nothing: what came before here has happened for whoever changes the word
/// later.
EpochSlot* visitList() {
    EpochSlot* seen = load(slots);
    while (!compareExchange(slots, seen, seen)) {}
    return seen;
}
ularge visit(EpochSlot& slot) { return addFetch(slot.announced, 0); }

/// The oldest epoch of an open guard, or one that is still to come.
ularge oldestGuard() {
    if (addFetch(sharedGuards, 0) != 0) return 0;
    ularge oldest = ~ularge(0);
    for (EpochSlot* slot = visitList(); slot; slot = slot->next)
        if (ularge epoch = visit(*slot); epoch != 0 && epoch < oldest) oldest = epoch;
    return oldest;
}

/// Takes out what no reader can hold, under the collector's lock: a chain.
EpochLink* takeReclaimable() {
    if (EpochLink* chain = exchange(incoming, static_cast<EpochLink*>(nullptr))) {
        EpochLink* last = chain;
        while (last->next) last = last->next;
        newer.append(chain, last);
        newer.epoch = epochNow;
        // Guards of the next epoch have synchronised with this store, and so with every unpublishing so far.
        storeRelease(epochNow, epochNow + 1);
    }
    ularge oldest = oldestGuard();
    Batch free;
    for (int i = 0; i < 2; ++i) {
        if (older.first && older.epoch < oldest) {
            free.append(older.first, older.last);
            older = {};
        }
        if (!older.first) {
            older = newer;
            newer = {};
        }
    }
    return free.first;
}

/// Answers how many it reclaimed.
int reclaimChain(EpochLink* link) {
    int count = 0;
    reclaiming = true;
    for (; link; ++count) {
        EpochLink* next = link->next;
        link->reclaim(link);
        link = next;
    }
    reclaiming = false;
    if (count) addFetch(waiting, -count);
    return count;
}

/// A link for an object without one.
struct OwnLink : EpochLink {
    void* object;
    void (*reclaimObject)(void* object);
};

} // namespace

void epochEnterFirst() {
    ThreadState& state = threadState;
    // The number brings the callback along that gives the slot back. Begin callbacks may open guards of their own.
    state.epochDepth = 0;
    threadNumber();
    state.epochDepth = 1;
    if (!state.epochSlot) {
        spinLock(slotGuard);
        state.epochSlot = takeSlot();
        spinUnlock(slotGuard);
    }
    if (state.epochSlot)
        exchange(state.epochSlot->announced, loadAcquire(epochNow));
    else
        increment(sharedGuards);
}

void epochLeaveShared() { decrement(sharedGuards); }

void epochThreadEnds(ThreadState& state) {
    // A thread that ends inside a guard reads no more.
    if (EpochSlot* slot = state.epochSlot) {
        storeRelease(slot->announced, 0);
        storeRelease(slot->taken, 0);
    } else if (state.epochDepth != 0)
        epochLeaveShared();
    state.epochSlot = nullptr;
    state.epochDepth = 0;
}

void epochDefer(EpochLink* link, void (*reclaim)(EpochLink*)) {
    addFetch(waiting, 1);
    push(link, reclaim);
}

void epochRetire(EpochLink* link, void (*reclaim)(EpochLink*)) {
    int now = addFetch(waiting, 1);
    push(link, reclaim);
    if (now - load(collectAt) >= 0) epochCollect();
}

bool epochRetire(void* object, void (*reclaim)(void*)) {
    auto link = static_cast<OwnLink*>(allocBlock(sizeof(OwnLink)));
    if (!link) return false;
    link->object = object;
    link->reclaimObject = reclaim;
    epochRetire(link, [](EpochLink* own) {
        auto link = static_cast<OwnLink*>(own);
        auto reclaim = link->reclaimObject;
        void* object = link->object;
        freeBlock(link);
        reclaim(object);
    });
    return true;
}

void epochCollect() {
    if (reclaiming || !spinTryLock(collectorLock)) return;
    EpochLink* chain = takeReclaimable();
    spinUnlock(collectorLock);
    reclaimChain(chain);
    store(collectAt, load(waiting) + collectStep);
}

bool epochDrain() {
    if (reclaiming) return false;
    do {
        spinLock(collectorLock);
        EpochLink* chain = takeReclaimable();
        spinUnlock(collectorLock);
        if (reclaimChain(chain) == 0) break;
    } while (epochWaiting() != 0);
    store(collectAt, load(waiting) + collectStep);
    return epochWaiting() == 0;
}

int epochWaiting() { return loadAcquire(waiting); }

} // namespace toolkit
