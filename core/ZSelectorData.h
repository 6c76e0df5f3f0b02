#pragma once

#include "core/ZRedBlackMap.h"
#include "core/ZSelector.h"
#include "core/selectorIndex.h"
#include "core/selectorText.h"

/// An entry of the selector space: a text, and what was parsed out of it. The space owns it; it never moves while its
/// selector is held. `type`, `length`, `hash` and the text are fixed. The lazy fields are written once, under the
/// space's lock, and may be read without it as soon as their flag shows (or, for `sortedParams`, once it isn't null). A
/// stored selector that is the entry's own isn't counted.
class ORV_API ZSelectorData : public orv::detail::SelectorEntry {
public:
    enum Flag : uint {
        Parts = 0x001, ///< `paramCount`, `nameSel`, `resultSel` and `params` are valid
        RootName = 0x002,
        MainType = 0x004,
        Unqualified = 0x008,
        Qualifier = 0x010,
        Package = 0x020,
        TypeName = 0x040,
        NameSpace = 0x080,
        BaseName = 0x100,
        Linked = 0x200,      ///< the text is a static one of its module
        VariableName = 0x400, ///< names a variable; set for every dotted path
        MethodName = 0x800,   ///< `nameSel` is valid, though the other parts may not be
    };

    /// Up to so many parts of a list are compared in turn, which is faster than to look in a sorted copy.
    static constexpr uint mostFewWords = 32;
    static constexpr ularge wordBit(uint key) { return 1ull << key % 64; }

    ZSelectorData() = default;
    /// An entry for a lookup; it borrows the text.
    ZSelectorData(const char* text, size_t length, ZSelector::Type type, ularge textHash);
    /// An entry with parts, from which its text is built. Raises a failure when there is no memory.
    ZSelectorData(const ZSelector& name, const ZSelector& result, const ZSelector* params, int count,
                  ZSelector::Type type);
    ZSelectorData(const ZSelectorData&) = delete;
    /// Gives up the selectors, and the text unless it is linked.
    ~ZSelectorData();

    /// Makes a deep copy of `other` in this empty entry, with a count of 1; false when there is no memory.
    bool copy(const ZSelectorData& other);
    /// Copies a linked or borrowed text to the heap. False when there is no memory; the text is then as it was. Not for
    /// entries of the space: `ZSelectorSpace::unlink` does that under its lock.
    bool detach();
    /// Forgets everything without giving anything up: somebody else has taken it over.
    void setNone();

    /// Builds the text from the parts. `Detect` as type joins them by blanks and works the type out, as one part alone
    /// in a list does. False when there is no memory, or nothing to build from; the text is then as it was.
    bool resolveName();
    /// The zero-ended text of parts, in a counted block; null as told above. `type` becomes that of the text.
    static char* composeText(const ZSelector& name, const ZSelector& result, const ZSelector* params, int count,
                             ZSelector::Type& type, size_t& length);
    /// Parses the text for its parts, in place of those that are there. Without memory there are none. Not for entries
    /// of the space: these get theirs by `ZSelector::params` and the like.
    void resolveParams();
    /// Whether `sel` is among the parts, by their sorted copy.
    bool containsSorted(const ZSelector& sel);
    /// The parts sorted by id, made on the first call; null when there are none, or no memory.
    const ZSelector* sorted();
    /// Makes selectors from the parts of a text, as those of a type; answers the number of items, -1 when there is no
    /// memory. `params` is an array as by `zmakearray`, null when there are none.
    static int extractParams(const char* text, ZSelector::Type type, ZSelector& result, ZSelector& name,
                             ZSelector*& params);
    static int extractParams(const char* text, size_t length, ZSelector::Type type, ZSelector& result, ZSelector& name,
                             ZSelector*& params);
    orv::detail::SelectorPart view() const { return {toolkit::loadAcquire(text), length}; }

    int refCount = 1; ///< atomic
    uint flags = 0;   ///< of `Flag`; atomic
    ZSelector::Type type = ZSelector::Any;
    uint length = 0;      ///< bytes of text
    uint hash = 0;        ///< `toolkit::hashData` of the text, below the space's `hashSize`
    char* text = nullptr; ///< zero-ended; a counted block unless linked; atomic
    uint paramCount = 0;
    ZSelector nameSel;   ///< of a function or template
    ZSelector resultSel; ///< of a function
    /// Of a list in the space with few parts: a bit for each, so that most others needn't be compared. Else 0. Atomic.
    ularge wordMask = 0;
    ZSelector* params = nullptr;
    ZSelector* sortedParams = nullptr; ///< uncounted copies; atomic; guarded by the space's second lock
    uint xmlName = 0, xmlSpace = 0;    ///< handles in the XML name table; 0 for none
    ZSelector rootNameSel, mainTypeSel, unqualifiedSel, qualifierSel, packageSel, typeNameSel, nameSpaceSel,
        baseNameSel;
};

/// How the map of the space treats its entries.
class ORV_API ZSelectorUser : public ZRedBlackMap::MapUser {
public:
    int comp(const ZRedBlackMap* map, const void* a, const void* b) override;
    bool copy(const ZRedBlackMap* map, void* to, const void* from) override;
    void destruct(const ZRedBlackMap* map, void* entry) override;
    uint hash(const ZRedBlackMap* map, const void* entry, uint size) override;
};

namespace orv::detail {

inline bool SelectorIndex::is(const ZSelectorData& entry, const Wanted& wanted) {
    constexpr size_t inEntry = SelectorEntry::prefixSize;
    if (entry.textHash != wanted.hash || entry.length != wanted.length) return false;
    if (wanted.marks ? !(toolkit::load(entry.marks) & wanted.marks) : entry.type != wanted.type) return false;
    if (ORV_LIKELY(wanted.length <= inEntry)) return sameShort(entry.prefix, wanted.text, wanted.length);
    return __builtin_memcmp(toolkit::loadAcquire(entry.text), wanted.text, wanted.length) == 0;
}

inline ZSelectorData* SelectorIndex::find(const char* text, size_t length, ularge hash, uint marks, int type) const {
    const Table* now = toolkit::loadAcquire(table);
    if (ORV_UNLIKELY(!now)) return nullptr;
    Wanted wanted{text, length, hash, marks, type};
    ZSelectorData* first = toolkit::loadAcquire(now->chains[hash & now->mask]);
    if (ORV_LIKELY(first && is(*first, wanted))) return first;
    return findFurther(now, first, wanted);
}

} // namespace orv::detail
