#pragma once

#include "toolkit/atomic.h"

namespace orv {

/// Finds the places of names in an array: one flat table, at most half full, of names and places. A place is found with
/// one multiplication and, as names are numbered one after the other, nearly always one look. Built at once by
/// whoever needs it first, kept up to date by those who change the array; a change that finds no memory drops it. One
/// thread changes it, several may look at it.
class NamePlaces {
    struct Slot {
        uint id;
        uint place; ///< the index and `first`; 0 for a free slot
    };

public:
    struct Table {
        uint mask;
        uint size;  ///< of `slots`, a power of two
        uint first; ///< the place of index 0: names that go from the front move nothing
        uint used;
        Slot slots[1];

        /// The index of a name, -1 if it isn't there.
        [[gnu::always_inline]] int find(uint id) const {
            for (uint at = home(id);; at = (at + 1) & mask) {
                const Slot slot = slots[at];
                if (slot.id == id && slot.place) return int(slot.place - first);
                if (!slot.place) return -1;
            }
        }
        /// The upper bits of the product with the golden ratio: names in a row are spread evenly (Knuth, The Art of
        /// Computer Programming 3, 6.4).
        uint home(uint id) const { return uint(ularge(id * 0x9E3779B1u) * size >> 32); }
        void add(uint id, uint place);
        uint slotOf(uint id) const;
        void take(uint slot);
    };

    NamePlaces() = default;
    ~NamePlaces() { drop(); }
    NamePlaces(const NamePlaces&) = delete;
    NamePlaces& operator=(const NamePlaces&) = delete;

    /// Null while there is none.
    const Table* built() const { return toolkit::loadAcquire(table); }
    /// Builds the index of `count` names, each there once; `idAt(i)` answers them. False without memory.
    template <class F> bool build(uint count, F&& idAt) {
        Table* made = makeTable(count);
        if (!made) return false;
        for (uint i = 0; i < count; ++i) made->add(idAt(i), i + made->first);
        toolkit::storeRelease(table, made);
        return true;
    }
    void drop();

    // The array has changed. Of an index that isn't built these do nothing.

    /// A name came to the end.
    void added(uint id, uint index);
    /// A name, of `count`, is about to go.
    void removed(uint id, uint index, uint count);
    void renamed(uint id, uint to);

private:
    static Table* makeTable(uint count);

    Table* table = nullptr;
};

} // namespace orv
