#pragma once

#include "toolkit/lock.h"
#include "toolkit/thread.h"

#include <cstddef>

/// The records behind lock and signal handles. Private to the files of the lock layer.
namespace toolkit {

/// Sleeps while the cell holds `expected`; false once `deadline` (nanoseconds of `futexClock`, below 0 for none) has
/// passed. May return early.
bool futexWait(int& cell, int expected, large deadline);
void futexWake(int& cell, int count);
large futexClock();

/// Ends a development build on the spot; a release goes on.
void lockMisuse(const char* what);

/// A waiting thread, on its own stack. Whoever takes it out of the queue sets the outcome, which is the last that it
/// may touch of it.
struct Waiter {
    enum Rank : int { Upgrader, Alone, Shared };
    enum Outcome : int { Waiting, Granted, SentAway };

    explicit Waiter(Rank rank) : rank(rank) {}
    Waiter* next = nullptr;
    Rank rank;
    bool queued = false;   ///< under the guard of the record
    int outcome = Waiting; ///< the cell that it sleeps on

    /// Sleeps until there is an outcome; `Waiting` if the deadline has passed first.
    Outcome park(large deadline = -1);
};
/// Sets the outcome of each of a chain and wakes it. No guard is held: a woken thread can go on at once.
void wakeChain(Waiter* first, Waiter::Outcome outcome);

/// By rank, then by age. A ring that is known by its last member.
class WaitQueue {
public:
    Waiter* front() const { return last ? last->next : nullptr; }
    void insert(Waiter& added);
    void remove(Waiter& gone);
    /// Takes the first out; null when there is none.
    Waiter* pop();
    /// Empties the queue and answers it as a chain.
    Waiter* popAll();

private:
    Waiter* last = nullptr;
};

/// One lock or signal. The word holds its handle in the upper half, so that one compare-and-swap both checks a handle
/// and takes the lock; a word of 0 is a free record. While a flag of `slowFlags` is set, everything goes through the
/// guard. Records never move and are never freed, so a stale handle reads one safely.
struct alignas(64) LockRecord {
    ularge word;
    ularge life; ///< the handle, and the number of references
    WaitQueue queue;
    const char* label;
    int guard;
    int depth;         ///< nested holds beyond the first, of the thread that has it alone; written by that thread
    uint waiting;      ///< threads in the queue; of a lock, also those woken that haven't come back
    uint waitingAlone; ///< of these, the ones that want it alone
    int labelIndex;
    uint number;
    int slotOrNext; ///< the observer's index; in a free record, the next free one
    uint traits;
};
static_assert(sizeof(LockRecord) == 64);

// Parts of the word.
inline constexpr ularge heldAlone = 1u << 31; ///< the payload is the number of the holder, else the number of readers
inline constexpr ularge contended = 1u << 30; ///< somebody waits
inline constexpr ularge dying = 1u << 29;     ///< no reference is left
inline constexpr ularge watched = 1u << 28;   ///< taking and releasing it is logged
inline constexpr ularge isSignal = 1u << 27;
inline constexpr ularge upgraded = 1u << 26; ///< beneath the exclusive hold, the holder still reads
inline constexpr ularge payloadMask = (1u << 24) - 1;
inline constexpr ularge slowFlags = contended | dying | watched | isSignal | upgraded;
static_assert(threadNumberLimit <= payloadMask);

inline uint payloadOf(ularge word) { return uint(word & payloadMask); }
inline ularge freeWord(TLockId id) { return ularge(id) << 32; }
inline bool wordIs(ularge word, TLockId id) { return TLockId(word >> 32) == id; }

// Bits of `traits`; the top byte counts the generations of the record.
inline constexpr uint traitSpinning = 1, traitRecursive = 2, traitExcluded = 4, traitCapture = 8;

inline constexpr int chunkBits = 10;
inline constexpr uint chunkSize = 1u << chunkBits;
inline constexpr uint recordLimit = 1u << 24;
extern LockRecord* lockChunks[recordLimit / chunkSize];

/// The record that a handle points at, whether the handle is good or not; null for none.
inline LockRecord* recordOf(TLockId id) {
    uint index = id & (recordLimit - 1);
    LockRecord* chunk = loadAcquire(lockChunks[index >> chunkBits]);
    return ORV_LIKELY(id != 0 && chunk != nullptr) ? chunk + (index & (chunkSize - 1)) : nullptr;
}
/// The record of a good handle of that kind; null otherwise.
inline LockRecord* liveRecord(TLockId id, bool signal) {
    LockRecord* record = recordOf(id);
    if (!record) return nullptr;
    ularge word = loadAcquire(record->word);
    return wordIs(word, id) && (word & isSignal) == (signal ? isSignal : 0) ? record : nullptr;
}

/// A record with one reference and a fresh handle, its word the handle with `flags`; 0 when there is no memory.
TLockId createRecord(ularge flags, uint traits);
bool retainRecord(TLockId id, bool signal);
/// Gives up a reference; answers the record if it was the last, null otherwise. `known` tells whether the handle was
/// good.
LockRecord* dropRecord(TLockId id, bool signal, bool& known);
/// Puts a record, whose word is 0 by now, back among the free ones.
void recycleRecord(LockRecord& record);

class RecordGuard {
public:
    explicit RecordGuard(LockRecord& record) : record(record) { spinLock(record.guard); }
    ~RecordGuard() { spinUnlock(record.guard); }
    RecordGuard(const RecordGuard&) = delete;

private:
    LockRecord& record;
};

} // namespace toolkit
