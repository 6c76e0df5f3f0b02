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
    uint create();
    /// Counts an id once more and answers it; 0 if nobody holds it.
    uint retain(uint id);
    /// Counts an id down; with the last count its slot is free. An id that nobody holds is left alone, with a line in
    /// the debug log: it was given up once too often.
    void release(uint id);
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

    bool addSlots();
    Slot* held(uint id) {
        Slot* slot = slots.entry(id - 1);
        return slot && slot->refCount > 0 ? slot : nullptr;
    }

    ZArrayT<Slot> slots;
    ZSpinLock lock;
    int freeHead = -1;
    uint inUse = 0;
};
