#include "toolkit/lockrecord.h"

namespace toolkit {

namespace {
// A signal keeps its state in the payload of its record's word; all of it under the guard.
constexpr ularge signalSet = 1, signalOver = 2;

bool signalIs(const LockRecord& record, TLockId id) {
    return wordIs(load(record.word), id) && (load(record.word) & isSignal);
}
void change(LockRecord& record, ularge clear, ularge set) {
    storeRelease(record.word, (load(record.word) & ~clear) | set);
}

/// Takes all waiters out, and sends them on with the outcome.
bool wakeAll(TLockId id, ularge set, Waiter::Outcome outcome) {
    LockRecord* record = liveRecord(id, true);
    if (!record) return false;
    Waiter* woken;
    {
        RecordGuard guard(*record);
        if (!signalIs(*record, id)) return false;
        change(*record, 0, set);
        woken = record->queue.popAll();
        record->waiting = 0;
    }
    wakeChain(woken, outcome);
    return true;
}
} // namespace

TLockId createSignal() { return createRecord(isSignal, 0); }
bool retainSignal(TLockId id) { return retainRecord(id, true); }

bool destroySignal(TLockId id) {
    bool known;
    LockRecord* record = dropRecord(id, true, known);
    if (!record) return known;
    Waiter* woken;
    {
        RecordGuard guard(*record);
        woken = record->queue.popAll();
        record->waiting = 0;
        storeRelease(record->word, 0);
    }
    wakeChain(woken, Waiter::SentAway);
    recycleRecord(*record);
    return true;
}

bool sendSignal(TLockId id) {
    LockRecord* record = liveRecord(id, true);
    if (!record) return false;
    Waiter* woken;
    {
        RecordGuard guard(*record);
        if (!signalIs(*record, id)) return false;
        woken = record->queue.pop();
        if (woken)
            --record->waiting;
        else
            change(*record, 0, signalSet);
    }
    wakeChain(woken, Waiter::Granted);
    return true;
}

bool broadcastSignal(TLockId id, bool leaveSet) { return wakeAll(id, leaveSet ? signalSet : 0, Waiter::Granted); }
bool releaseSignal(TLockId id) { return wakeAll(id, signalOver, Waiter::SentAway); }

bool signalReleased(TLockId id) {
    LockRecord* record = liveRecord(id, true);
    return record && (load(record->word) & signalOver);
}

bool waitSignal(TLockId id, int millis) {
    LockRecord* record = liveRecord(id, true);
    if (!record) return false;
    Waiter self(Waiter::Alone);
    {
        RecordGuard guard(*record);
        if (!signalIs(*record, id) || (load(record->word) & signalOver)) return false;
        if (load(record->word) & signalSet) {
            change(*record, signalSet, 0);
            return true;
        }
        if (millis == 0) return false;
        record->queue.insert(self);
        ++record->waiting;
    }
    Waiter::Outcome outcome = self.park(millis < 0 ? -1 : futexClock() + large(millis) * 1'000'000);
    if (outcome != Waiter::Waiting) return outcome == Waiter::Granted;
    {
        RecordGuard guard(*record);
        if (self.queued) {
            record->queue.remove(self);
            --record->waiting;
            return false;
        }
    }
    // Somebody took it out just before the time was up and is about to say why.
    return self.park() == Waiter::Granted;
}

} // namespace toolkit
