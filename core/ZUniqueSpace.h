#pragma once

#include "core/ZArrayT.h"
#include "core/ZSpinLock.h"

/// Where the ids of uniques come from: a table of counted slots, an id being a slot's index plus 1. Free slots are used
/// again, the newest first. All operations may be called from any thread.
class ORV_API ZUniqueSpace {
public:
    /// How many slots are made at a time.
    static constexpr uint growth = 0x8000;

    ZUniqueSpace() = default;
    ZUniqueSpace(const ZUniqueSpace&) = delete;

    /// Makes the first slots; true if there are some. False when there is no memory.
    bool open();
    /// Forgets all ids.
    void close();

    /// A new id with count 1; 0 when there is no memory.
    uint create() {
        Locked held(lock);
        if (ORV_UNLIKELY(freeHead < 0) && !addSlots()) return 0;
        Slot& slot = table[freeHead];
        uint id = uint(freeHead) + 1;
        freeHead = slot.next;
        slot.refCount = 1;
        ++inUse;
        return id;
    }
    /// Counts an id once more and answers it; 0 if nobody holds it.
    uint retain(uint id) {
        Locked held(lock);
        Slot* slot = find(id);
        if (!slot) return 0;
        ++slot->refCount;
        return id;
    }
    /// Counts an id down; with the last count its slot is free. An id that nobody holds is left alone, with a line in
    /// the debug log: it was given up once too often.
    void release(uint id) {
        if (id && ORV_UNLIKELY(!countDown(id))) reportRelease(id);
    }
    /// 0 for an id that nobody holds.
    int refcount(uint id);
    /// Ids in use.
    uint uniqueCount();
    /// Writes the number of ids in use to the debug log if there are at least `line` slots.
    void checkLimit(const char* file, int line);

private:
    struct Slot {
        int refCount; ///< 0 while it is free
        int next;     ///< the next free slot; -1 for none
    };

    using Locked = ZScopedLock<ZSpinLock>;

    bool addSlots();
    /// The slot of an id that somebody holds; null otherwise.
    Slot* find(uint id) {
        return ORV_LIKELY(id - 1 < made) && ORV_LIKELY(table[id - 1].refCount > 0) ? table + (id - 1) : nullptr;
    }
    bool countDown(uint id) {
        Locked held(lock);
        Slot* slot = find(id);
        if (!slot) return false;
        if (--slot->refCount > 0) return true;
        slot->next = freeHead;
        freeHead = int(id - 1);
        --inUse;
        return true;
    }
    static void reportRelease(uint id);

    ZArrayT<Slot> slots;
    Slot* table = nullptr; ///< the items of `slots`, which nobody shares
    uint made = 0;         ///< and their number
    ZSpinLock lock;
    int freeHead = -1;
    uint inUse = 0;
};
