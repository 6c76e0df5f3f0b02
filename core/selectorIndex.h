#pragma once

#include "toolkit/atomic.h"

class ZSelectorData;

namespace orv::detail {

/// What the space keeps of an entry beside the public fields, in front of them: one cache line answers a lookup.
struct SelectorEntry {
    enum Mark : uint {
        uncounted = 1,  ///< permanent, or was linked: neither retained nor removed
        normalizes = 2, ///< the normal form of the entry's text is this very entry
        detects = 4,    ///< the kind of the entry's text is that of the entry
        borrowed = 8,   ///< in a temporary entry: the text is somebody else's
    };
    static constexpr size_t prefixSize = 24;

    ularge textHash = 0;
    ZSelectorData* next = nullptr; ///< in a chain of the index (atomic); else for whoever holds the entry alone
    uint self = 0;                 ///< the entry's id
    uint marks = 0;                ///< of `Mark`; written under the space's lock, read without
    char prefix[prefixSize];       ///< the first bytes of the text, so that most lookups needn't touch it
};

/// Whether two ranges of at most 24 bytes are equal; without a loop, since this is where lookups spend their time.
inline bool sameShort(const char* a, const char* b, size_t length) {
    auto differ = [&](size_t at, auto size) {
        decltype(size) x, y;
        __builtin_memcpy(&x, a + at, sizeof x);
        __builtin_memcpy(&y, b + at, sizeof y);
        return ularge(x ^ y);
    };
    if (ORV_LIKELY(length >= 8)) {
        size_t last = length - 8;
        return !(differ(0, ularge()) | differ(last < 8 ? last : 8, ularge()) | differ(last, ularge()));
    }
    if (length >= 4) return !(differ(0, uint()) | differ(length - 4, uint()));
    return !length || !(differ(0, byte()) | differ(length / 2, byte()) | differ(length - 1, byte()));
}

/// A hash index of entries that stay until `clear`. Lookups take no lock: chains are only pushed to at the front, and
/// are moved to a larger table a few at a time. A lookup that runs beside such a move, or down a long chain, may miss:
/// a miss says nothing. Additions are kept apart by the caller's lock.
class SelectorIndex {
public:
    /// Enters an entry; false if there is no memory for the first table.
    bool add(ZSelectorData* entry);
    /// Under the caller's lock: true only if there is no entry of that text and type.
    bool lacks(const char* text, size_t length, ularge hash, int type) const;
    /// An entry with that text that has one of the marks; with no marks given, one of that type. Null on a miss.
    ZSelectorData* find(const char* text, size_t length, ularge hash, uint marks, int type) const;
    /// Gives all memory up; nobody may be in a lookup.
    void clear();

private:
    struct Table {
        Table* older; ///< its chains are being moved here; null when that is done (atomic)
        Table* freed; ///< the list of all tables made before
        size_t mask;
        size_t moved; ///< chains of `older` that were moved
        ZSelectorData* chains[];
    };
    static constexpr size_t firstSize = 32768;
    static constexpr int longestWalk = 48;

    struct Wanted {
        const char* text;
        size_t length;
        ularge hash;
        uint marks;
        int type;
    };
    static bool is(const ZSelectorData& entry, const Wanted& wanted);
    static ZSelectorData* walk(ZSelectorData* entry, const Wanted& wanted);
    ZSelectorData* findFurther(const Table* now, ZSelectorData* entry, const Wanted& wanted) const;
    static void push(Table& table, ZSelectorData* entry);
    static void moveChains(Table& table, size_t count);
    bool grow(size_t size);

    Table* table = nullptr; ///< atomic
    size_t count = 0;
};

} // namespace orv::detail
