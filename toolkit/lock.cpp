#include "toolkit/lock.h"

#include "toolkit/lockrecord.h"
#include "toolkit/memory.h"

namespace toolkit {

namespace {

constexpr int spinTries = 100;

const LockObserver* lockObserver = nullptr;
LockLog lockLog = nullptr;

inline void observeTaken(TLockId id) {
    if (const LockObserver* told = loadAcquire(lockObserver); ORV_UNLIKELY(told != nullptr))
        told->taken(told->context, id);
}
inline void observeReleased(TLockId id) {
    if (const LockObserver* told = loadAcquire(lockObserver); ORV_UNLIKELY(told != nullptr))
        told->released(told->context, id);
}
/// Tells the log of a lock that was taken the slow way, as a watched one always is.
void logTaken(const char* event, const LockRecord& record, TLockId id) {
    if (LockLog log = loadAcquire(lockLog); (load(record.word) & watched) && log)
        log(event, id, load(record.label), load(record.labelIndex));
}

// The thread's list of read locks. An entry is there exactly while the thread is counted as a reader in the word.

HeldRead& heldReadAt(ThreadState& state, int i) {
    return i < ThreadState::heldReadRoom ? state.held[i] : state.moreHeld[i - ThreadState::heldReadRoom];
}
inline HeldRead* findHeldRead(TLockId id) {
    ThreadState& state = threadState;
    for (int i = state.heldReads; i > 0; --i)
        if (HeldRead& entry = heldReadAt(state, i - 1); entry.lock == id) return &entry;
    return nullptr;
}
/// Makes sure that one more entry fits.
bool reserveHeldRead() {
    ThreadState& state = threadState;
    int more = state.heldReads - ThreadState::heldReadRoom;
    if (ORV_LIKELY(more < 0) || more < state.moreHeldRoom) return true;
    int room = state.moreHeldRoom ? 2 * state.moreHeldRoom : 16;
    void* grown = reallocBlock(state.moreHeld, size_t(room) * sizeof(HeldRead));
    if (!grown) return false;
    state.moreHeld = static_cast<HeldRead*>(grown);
    state.moreHeldRoom = room;
    return true;
}
inline void addHeldRead(TLockId id) {
    ThreadState& state = threadState;
    heldReadAt(state, state.heldReads++) = {id, 1};
}
void removeHeldRead(HeldRead* gone) {
    ThreadState& state = threadState;
    *gone = heldReadAt(state, --state.heldReads);
    if (ORV_UNLIKELY(state.moreHeld != nullptr) && state.heldReads <= ThreadState::heldReadRoom) {
        freeBlock(state.moreHeld);
        state.moreHeld = nullptr;
        state.moreHeldRoom = 0;
    }
}

// Slow paths. All of them work under the record's guard; while `contended` is set nothing else changes the word.

bool heldBy(ularge word, uint thread) { return (word & heldAlone) && payloadOf(word) == thread; }
bool unheld(ularge word) { return !(word & (heldAlone | payloadMask)); }

/// A stay in the queue of a record; tells the others that somebody waits as long as it lasts.
class Wait {
public:
    Wait(LockRecord& record, bool alone) : record(record), alone(alone) {}
    bool counted() const { return begun; }
    /// Whether others wait beside this one.
    bool others() const { return record.waiting > uint(begun); }
    /// Sleeps once; the guard is held before and after. Comes back without sleep if the word changed.
    void sleep(ularge seen, Waiter::Rank rank) {
        if (!begun) {
            begun = true;
            ++record.waiting;
            record.waitingAlone += alone;
        }
        if (!(seen & contended)) {
            compareExchange(record.word, seen, seen | contended);
            return;
        }
        Waiter self(rank);
        record.queue.insert(self);
        spinUnlock(record.guard);
        self.park();
        spinLock(record.guard);
    }
    void end() {
        if (!begun) return;
        begun = false;
        --record.waiting;
        record.waitingAlone -= alone;
    }

private:
    LockRecord& record;
    bool alone, begun = false;
};

/// Tries for a short while to take a lock that another thread is about to give up.
bool spinFor(LockRecord& record, TLockId id) {
    if (!(load(record.traits) & traitSpinning)) return false;
    ularge free = freeWord(id), wanted = free | heldAlone | threadNumber();
    for (int i = 0; i < spinTries; ++i) {
        ularge seen = load(record.word);
        if (seen == free && compareExchange(record.word, seen, wanted)) return true;
        if (!wordIs(seen, id) || (seen & slowFlags) || seen == wanted) return false;
        cpuPause();
    }
    return false;
}

/// What a thread that holds the lock alone does to take it once more.
bool nestHold(LockRecord& record, bool alone, bool wait) {
    if (alone && !(load(record.traits) & traitRecursive)) {
        if (!wait) return false;
        lockMisuse("a lock that doesn't recurse is taken again by its holder");
    }
    store(record.depth, record.depth + 1);
    return true;
}

[[gnu::noinline]] bool takeAlone(LockRecord& record, TLockId id, bool wait) {
    if (wait && spinFor(record, id)) return true;
    uint me = threadNumber();
    RecordGuard guard(record);
    Wait stay(record, true);
    for (;;) {
        ularge seen = loadAcquire(record.word);
        if (!wordIs(seen, id) || (seen & isSignal)) return false;
        if (heldBy(seen, me)) return nestHold(record, true, wait);
        bool reading = payloadOf(seen) && !(seen & heldAlone) && findHeldRead(id);
        if ((seen & dying) && !reading && !stay.counted()) return false;
        if (!(seen & heldAlone) && payloadOf(seen) == uint(reading)) {
            ularge wanted = (seen & ~(payloadMask | contended)) | heldAlone | me | (reading ? upgraded : 0) |
                            (stay.others() ? contended : 0);
            if (!compareExchange(record.word, seen, wanted)) continue;
            stay.end();
            return true;
        }
        if (!wait) return false;
        if (Waiter* first = record.queue.front(); reading && first && first->rank == Waiter::Upgrader)
            lockMisuse("two readers of one lock both wait to have it alone");
        stay.sleep(seen, reading ? Waiter::Upgrader : Waiter::Alone);
    }
}

[[gnu::noinline]] bool takeShared(LockRecord& record, TLockId id, bool wait) {
    uint me = threadNumber();
    RecordGuard guard(record);
    Wait stay(record, false);
    for (;;) {
        ularge seen = loadAcquire(record.word);
        if (!wordIs(seen, id) || (seen & isSignal)) return false;
        if (heldBy(seen, me)) return nestHold(record, false, wait);
        if (HeldRead* mine = findHeldRead(id)) {
            ++mine->count;
            return true;
        }
        if ((seen & dying) && !stay.counted()) return false;
        if (!(seen & heldAlone) && record.waitingAlone == 0) {
            ularge wanted = ((seen & ~contended) + 1) | (stay.others() ? contended : 0);
            if (!compareExchange(record.word, seen, wanted)) continue;
            stay.end();
            addHeldRead(id);
            return true;
        }
        if (!wait) return false;
        stay.sleep(seen, Waiter::Shared);
    }
}

/// Who can go on now that the word is as given; taken out of the queue.
Waiter* nextWaiters(LockRecord& record, ularge word) {
    Waiter* first = record.queue.front();
    if (!first || (word & heldAlone)) return nullptr;
    if (first->rank == Waiter::Shared) return record.waitingAlone == 0 ? record.queue.popAll() : nullptr;
    uint readersLeft = first->rank == Waiter::Upgrader ? 1 : 0;
    if (payloadOf(word) != readersLeft) return nullptr;
    record.queue.pop()->next = nullptr;
    return first;
}

/// Frees a record that nobody refers to, holds or waits for; true if it did. Under the guard.
bool endRecord(LockRecord& record, ularge seen) {
    if (!unheld(seen) || record.waiting) return false;
    return compareExchange(record.word, seen, 0ull);
}

/// Gives up one counted hold of the word: the last exclusive one, or the running thread's part of the readers.
[[gnu::noinline]] bool release(LockRecord& record, TLockId id) {
    uint me = threadNumber();
    Waiter* woken;
    bool ended = false, wasReader;
    {
        RecordGuard guard(record);
        for (;;) {
            ularge seen = loadAcquire(record.word), wanted;
            if (!wordIs(seen, id) || (seen & isSignal)) return false;
            if (seen & heldAlone) {
                if (payloadOf(seen) != me) return false;
                if (record.depth > 0) {
                    store(record.depth, record.depth - 1);
                    return true;
                }
                wanted = (seen & ~(heldAlone | upgraded | payloadMask)) | (seen & upgraded ? 1 : 0);
            } else {
                HeldRead* mine = findHeldRead(id);
                if (!mine) return false;
                if (mine->count > 1) {
                    --mine->count;
                    return true;
                }
                wanted = seen - 1;
            }
            if (!compareExchange(record.word, seen, wanted)) continue;
            wasReader = !(seen & heldAlone);
            woken = nextWaiters(record, wanted);
            if (wanted & dying) ended = endRecord(record, wanted);
            break;
        }
    }
    if (wasReader) removeHeldRead(findHeldRead(id));
    wakeChain(woken, Waiter::Granted);
    if (ended) recycleRecord(record);
    return true;
}

/// A plain reader count that has room for one more.
inline bool readable(ularge word, TLockId id) { return (word ^ freeWord(id)) < payloadMask; }

/// Any case but the usual one.
[[gnu::noinline]] bool readMore(LockRecord& record, TLockId id, bool wait) {
    ularge seen = loadAcquire(record.word);
    while (readable(seen, id)) {
        if (HeldRead* mine = findHeldRead(id)) {
            ++mine->count;
            observeTaken(id);
            return true;
        }
        if (!reserveHeldRead()) break;
        if (compareExchange(record.word, seen, seen + 1)) {
            addHeldRead(id);
            observeTaken(id);
            return true;
        }
    }
    // Without memory to note a read, the lock is taken alone: that holds off others more than asked for, never less.
    bool noted = heldBy(seen, threadNumber()) || findHeldRead(id) || reserveHeldRead();
    if (!(noted ? takeShared(record, id, wait) : takeAlone(record, id, wait))) return false;
    logTaken("read", record, id);
    observeTaken(id);
    return true;
}

inline bool readLock(TLockId id, bool wait) {
    LockRecord* record = recordOf(id);
    if (ORV_UNLIKELY(!record)) return false;
    // The usual case: nobody has it, and this thread reads no other.
    ularge seen = freeWord(id);
    ThreadState& state = threadState;
    if (ORV_UNLIKELY(state.heldReads != 0) || ORV_UNLIKELY(!compareExchange(record->word, seen, seen + 1)))
        return readMore(*record, id, wait);
    state.held[0] = {id, 1};
    state.heldReads = 1;
    observeTaken(id);
    return true;
}

inline bool aloneLock(TLockId id, bool wait) {
    LockRecord* record = recordOf(id);
    if (ORV_UNLIKELY(!record)) return false;
    ularge seen = freeWord(id), wanted = seen | heldAlone | threadNumber();
    if (ORV_LIKELY(compareExchange(record->word, seen, wanted))) {
        observeTaken(id);
        return true;
    }
    if (seen == wanted && (load(record->traits) & traitRecursive))
        store(record->depth, record->depth + 1);
    else if (takeAlone(*record, id, wait))
        logTaken("lock", *record, id);
    else
        return false;
    observeTaken(id);
    return true;
}

} // namespace

TLockId createLock(bool spinning, bool recursive) {
    return createRecord(0, (spinning ? traitSpinning : 0) | (recursive ? traitRecursive : 0));
}

bool retainLock(TLockId id) { return retainRecord(id, false); }

bool destroyLock(TLockId id, bool mayBeHeld) {
    bool known;
    LockRecord* record = dropRecord(id, false, known);
    if (!record) return known;
    bool ended = false;
    {
        RecordGuard guard(*record);
        for (;;) {
            ularge seen = loadAcquire(record->word);
            ended = endRecord(*record, seen);
            if (ended) break;
            if (unheld(seen) && !record->waiting) continue;
            if (!mayBeHeld) lockMisuse("a lock is destroyed while it is held");
            if (compareExchange(record->word, seen, seen | dying)) break;
        }
    }
    if (ended) recycleRecord(*record);
    return true;
}

bool lockAlone(TLockId id) { return aloneLock(id, true); }
bool tryLockAlone(TLockId id) { return aloneLock(id, false); }
bool lockShared(TLockId id) { return readLock(id, true); }
bool tryLockShared(TLockId id) { return readLock(id, false); }

namespace {
/// Any case but the usual ones.
[[gnu::noinline]] bool unlockMore(LockRecord& record, TLockId id) {
    ularge seen = load(record.word);
    if (readable(seen, id)) {
        HeldRead* mine = findHeldRead(id);
        if (!mine) return false;
        if (mine->count > 1) {
            --mine->count;
            observeReleased(id);
            return true;
        }
        do
            if (compareExchange(record.word, seen, seen - 1)) {
                removeHeldRead(mine);
                observeReleased(id);
                return true;
            }
        while (readable(seen, id));
    }
    // The record may be another lock's once the hold is given up.
    const char* label = load(record.label);
    int index = load(record.labelIndex);
    if (!release(record, id)) return false;
    if (LockLog log = loadAcquire(lockLog); (seen & watched) && log) log("unlock", id, label, index);
    observeReleased(id);
    return true;
}
} // namespace

bool unlock(TLockId id) {
    LockRecord* record = recordOf(id);
    if (ORV_UNLIKELY(!record)) return false;
    ThreadState& state = threadState;
    ularge free = freeWord(id), seen = free + 1;
    // The usual reader: it is the only one, and reads no other lock.
    if (state.heldReads == 1 && state.held[0].lock == id && state.held[0].count == 1 &&
        ORV_LIKELY(compareExchange(record->word, seen, free))) {
        state.heldReads = 0;
        observeReleased(id);
        return true;
    }
    // The usual holder. It has a number, or it wouldn't hold it.
    seen = free | heldAlone | state.number;
    if (ORV_UNLIKELY(load(record->word) != seen)) return unlockMore(*record, id);
    if (record->depth > 0)
        store(record->depth, record->depth - 1);
    else if (ORV_UNLIKELY(!compareExchange(record->word, seen, free)))
        return unlockMore(*record, id);
    observeReleased(id);
    return true;
}

bool validLock(TLockId id) {
    LockRecord* record = liveRecord(id, false);
    return record && wordIs(load(record->life), id) && uint(load(record->life)) > 0;
}

int lockHolds(TLockId id) {
    LockRecord* record = liveRecord(id, false);
    if (!record) return 0;
    ularge word = loadAcquire(record->word);
    if (!wordIs(word, id)) return 0;
    return word & heldAlone ? load(record->depth) + 1 + (word & upgraded ? 1 : 0) : int(payloadOf(word));
}

uint lockHolder(TLockId id) {
    LockRecord* record = liveRecord(id, false);
    ularge word = record ? loadAcquire(record->word) : 0;
    return wordIs(word, id) && (word & heldAlone) ? payloadOf(word) : 0;
}

bool lockHeldHere(TLockId id) {
    return id && (findHeldRead(id) || (threadState.number && lockHolder(id) == threadState.number));
}

bool lockFree(TLockId id) {
    LockRecord* record = liveRecord(id, false);
    ularge word = record ? loadAcquire(record->word) : 0;
    if (!record || !wordIs(word, id)) return false;
    if (word & heldAlone) return payloadOf(word) == threadNumber() && (load(record->traits) & traitRecursive);
    return payloadOf(word) == uint(findHeldRead(id) != nullptr);
}

namespace {
/// Runs `change` on the record of a good handle, under its guard.
template <class F> bool changeRecord(TLockId id, F&& change) {
    LockRecord* record = liveRecord(id, false);
    if (!record) return false;
    RecordGuard guard(*record);
    if (!wordIs(load(record->word), id)) return false;
    change(*record);
    return true;
}
bool setTrait(TLockId id, uint trait, bool on) {
    return changeRecord(id, [=](LockRecord& record) {
        uint traits = load(record.traits);
        store(record.traits, on ? traits | trait : traits & ~trait);
    });
}
bool hasTrait(const LockRecord& record, uint trait) { return load(record.traits) & trait; }
} // namespace

bool setLockSpinning(TLockId id, bool on) { return setTrait(id, traitSpinning, on); }

bool setLockLogging(TLockId id, bool on) {
    return changeRecord(id, [=](LockRecord& record) {
        ularge seen = load(record.word);
        while (!compareExchange(record.word, seen, on ? seen | watched : seen & ~watched)) {}
    });
}

void setLockLog(LockLog log) { storeRelease(lockLog, log); }

const char* lockLabel(TLockId id, int* index) {
    LockRecord* record = liveRecord(id, false);
    if (index) *index = record ? load(record->labelIndex) : 0;
    return record ? load(record->label) : nullptr;
}

bool setLockLabel(TLockId id, const char* label, int index) {
    return changeRecord(id, [=](LockRecord& record) {
        store(record.label, label);
        store(record.labelIndex, index);
    });
}

int lockSlot(TLockId id, int slot) {
    LockRecord* record = liveRecord(id, false);
    if (!record) return -1;
    switch (slot) {
    case LockSlotIndex:
        return load(record->slotOrNext);
    case LockSlotExcluded:
        return hasTrait(*record, traitExcluded);
    case LockSlotCapture:
        return hasTrait(*record, traitCapture);
    default:
        return -1;
    }
}

bool setLockSlot(TLockId id, int slot, int value) {
    switch (slot) {
    case LockSlotIndex:
        return changeRecord(id, [=](LockRecord& record) { store(record.slotOrNext, value); });
    case LockSlotExcluded:
        return setTrait(id, traitExcluded, value != 0);
    case LockSlotCapture:
        return setTrait(id, traitCapture, value != 0);
    default:
        return false;
    }
}

uint lockNumber(TLockId id) {
    LockRecord* record = liveRecord(id, false);
    return record ? load(record->number) : 0;
}

ularge lockKey(TLockId id) {
    uint number = lockNumber(id);
    return number ? ularge(number) << 32 | id : 0;
}

const LockObserver* setLockObserver(const LockObserver* observer) { return exchange(lockObserver, observer); }

// Block locks

namespace {
uint32_t blockLockNumber(const void* payload) {
    return payload ? loadAcquire(blockHead(payload)->state) & blockLockMask : 0;
}
TLockId currentId(uint32_t number) { return number ? TLockId(loadAcquire(recordOf(number)->word) >> 32) : 0; }
} // namespace

bool makeBlockLock(void* payload, bool spinning, bool recursive) {
    if (!payload || blockLockNumber(payload)) return payload != nullptr;
    TLockId made = createLock(spinning, recursive);
    if (!made) return false;
    uint32_t& state = blockHead(payload)->state;
    uint32_t seen = load(state);
    while (!(seen & blockLockMask))
        if (compareExchange(state, seen, seen | (made & blockLockMask))) return true;
    destroyLock(made, true);
    return true;
}

TLockId blockLock(const void* payload) { return currentId(blockLockNumber(payload)); }

void freeBlockLock(uint32_t number) { destroyLock(currentId(number), true); }

} // namespace toolkit
