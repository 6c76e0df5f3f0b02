#pragma once

#include "core/ZSpinLock.h"
#include "core/construct.h"
#include "toolkit/epoch.h"

namespace orv {

/// The 8 bytes in front of each record of a pool.
struct SlotHead {
    int index; ///< of the record, while it is in use; the next free one while it isn't
    int count; ///< references; 0 in a free slot, below 0 while the record waits to be destroyed
};
static_assert(sizeof(SlotHead) == 8);

/// A pool of counted records of one size, the machinery behind `SlotPool`. Records are made in chunks and never move;
/// the memory of a chunk stays until the pool closes. So a pointer to a record that has gone, or that is another one by
/// now, can still be asked by `retain`, which refuses a count of 0: whoever retains by a pointer that may be stale has
/// to check afterwards that the record is the wanted one. Any thread may call anything, but for `open` and `close`.
class ORV_API SlotPoolData : toolkit::EpochLink {
public:
    /// `destroy` ends a record whose last reference has gone; it is called without a lock. `name` is for the debug log.
    /// The number of records in a chunk is a power of two.
    constexpr SlotPoolData(const char* name, uint recordSize, uint chunkRecords, void (*destroy)(void* record))
        : name(name), destroy(destroy), recordSize((recordSize + 7) & ~7u),
          chunkBits(uint(__builtin_ctz(chunkRecords))) {}
    SlotPoolData(const SlotPoolData&) = delete;
    SlotPoolData& operator=(const SlotPoolData&) = delete;

    /// False when there is no memory. An open pool stays as it is.
    bool open();
    /// Destroys what `retire` holds back, then frees all memory, unless references are left: these are told to the
    /// debug log, and the memory goes with the last of them. Nobody may use the pool meanwhile but to release; no guard
    /// is open. Harmless on a closed pool.
    void close();

    /// Zeroed room for a record, with one reference, and the record's index. Null when there is no memory, and on a
    /// pool that isn't open.
    void* allocate(int& index);
    /// Adds a reference; false, with nothing changed, if there is none left or for null.
    static bool retain(const void* record) { return record && toolkit::incNonZero(headOf(record)->count) > 0; }
    /// Gives up a reference; true if it was the last: the record is then the caller's, to be destroyed and given back,
    /// or retired. Without a reference left, and on a pool whose memory has gone, this does nothing.
    bool release(const void* record) {
        if (!record || !toolkit::load(table)) return false;
        int& count = headOf(record)->count;
        int seen = toolkit::load(count);
        while (seen > 0)
            if (toolkit::compareExchange(count, seen, seen - 1)) return seen == 1;
        return false;
    }
    /// Zeroes a destroyed record without references and makes its slot free.
    void giveBack(void* record);
    /// Destroys a record without references and gives it back, once all epoch guards open now have closed. Under the
    /// rules of `toolkit::epochRetire`.
    void retire(void* record);

    /// 0 for null and on a pool whose memory has gone.
    int refcount(const void* record) const {
        int count = record && toolkit::loadAcquire(table) ? toolkit::loadAcquire(headOf(record)->count) : 0;
        return count > 0 ? count : 0;
    }
    /// Index of a record that has references, or that the caller borrows under a guard and that is retired at its end.
    static int index(const void* record) { return toolkit::load(headOf(record)->index); }
    /// The place of an index, in use or not; null if there never was a record of that index.
    void* record(int index) const {
        const Table* known = toolkit::loadAcquire(table);
        uint chunk = uint(index) >> chunkBits;
        if (!known || chunk >= known->room) return nullptr;
        char* place = toolkit::loadAcquire(known->chunks()[chunk]);
        if (!place) return nullptr;
        return place + (uint(index) & (chunkRecords() - 1)) * stride() + sizeof(SlotHead);
    }
    /// The record of an index with a reference added; null if it has none.
    void* retainAt(int index) const {
        void* found = record(index);
        return retain(found) ? found : nullptr;
    }
    /// Records that have references; for leak tests. Takes time by the number of records.
    int live() const;

private:
    /// Where the chunks are. Outgrown tables stay, half the size each, until the pool closes: readers need no guard.
    struct Table {
        Table* outgrown;
        uint room;
        char** chunks() const { return reinterpret_cast<char**>(const_cast<Table*>(this) + 1); }
    };
    static constexpr uint firstRoom = 8;
    static constexpr uint closedMark = 0xFFFFFFFF;

    static SlotHead* headOf(const void* record) { return static_cast<SlotHead*>(const_cast<void*>(record)) - 1; }
    SlotHead& headAt(uint index) const { return *headOf(record(int(index))); }
    size_t stride() const { return recordSize + sizeof(SlotHead); }
    uint chunkRecords() const { return 1u << chunkBits; }

    void* use(uint index);
    void* allocateFresh(int& index);
    static Table* makeTable(uint room);
    // Under the lock.
    bool addChunk();
    void freeMemory();

    bool giveBackClosed(SlotHead& head, uint number);
    void retireBatch();
    static void reclaimBatch(toolkit::EpochLink* link);

    const char* const name;
    void (*const destroy)(void*);
    const uint recordSize, chunkBits;
    Table* table = nullptr;

    // In the lists of slots, numbers are indexes plus one, and 0 ends the list.
    alignas(64) ularge freeList = closedMark; ///< lower half: the first; upper half: changes with each step
    mutable ZSpinLock lock;                   ///< of what follows, and of additions to the table
    uint fresh = 0;                           ///< the first index never used
    uint roomEnd = 0;                         ///< end of the indexes that have memory
    uint closedFree = 0, closedUsed = 0;      ///< while closed: the free list, the slots not on it
    uint retired = 0;                         ///< records to be retired
    uint batch = 0;                           ///< retired ones that an epoch holds back, linked by their counts
    bool batching = false;                    ///< somebody has taken on `batch`
};

/// A pool of records of class `T`. It is a static object, and outlives its records.
template <class T> class SlotPool {
    static_assert(alignof(T) <= 8);

public:
    constexpr SlotPool(const char* name, uint chunkRecords)
        : data(name, sizeof(T), chunkRecords, [](void* record) { static_cast<T*>(record)->~T(); }) {}

    /// As those of `SlotPoolData`.
    bool open() { return data.open(); }
    void close() { data.close(); }

    /// A new record with one reference. Null when there is no memory, when the pool isn't open, or when the constructor
    /// raised a failure: all failures are then forgotten, as with `zmake`.
    template <class... A> T* make(A&&... arguments) {
        ZTypeLabel<T> label;
        int index;
        void* memory = data.allocate(index);
        if (!memory) return nullptr;
        zresetfail();
        ZFailGuard guard;
        T* record = ::new (memory) T(std::forward<A>(arguments)...);
        if (ORV_UNLIKELY(zresetfail() || guard.rose())) {
            release(record);
            zrecover();
            return nullptr;
        }
        return record;
    }
    /// The two steps for a class that has its own `operator new` and `operator delete`: zeroed room with one reference,
    /// and a destroyed record without references.
    void* allocate(int& index) { return data.allocate(index); }
    void giveBack(void* record) { data.giveBack(record); }

    /// Adds a reference and answers the record; null for null and for a record without references.
    static T* retain(T* record) { return SlotPoolData::retain(record) ? record : nullptr; }
    /// Gives up a reference; true if it was the last: the record is then destroyed at once. For records that nobody
    /// borrows under a guard.
    bool release(T* record) {
        if (!data.release(record)) return false;
        record->~T();
        data.giveBack(record);
        return true;
    }
    /// The same for records that are borrowed under a guard: with the last reference, the record stays whole until all
    /// guards open now have closed. Under the rules of `toolkit::epochRetire`.
    bool releaseLater(T* record) {
        if (!data.release(record)) return false;
        data.retire(record);
        return true;
    }

    int refcount(const T* record) const { return data.refcount(record); }
    /// Index of a record that the caller holds or borrows.
    static int index(const T* record) { return SlotPoolData::index(record); }
    T* record(int index) const { return static_cast<T*>(data.record(index)); }
    T* retainAt(int index) const { return static_cast<T*>(data.retainAt(index)); }
    int live() const { return data.live(); }

private:
    SlotPoolData data;
};

} // namespace orv
