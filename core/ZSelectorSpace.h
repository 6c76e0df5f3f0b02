#pragma once

#include "core/ZSelector.h"
#include "core/ZSpinLock.h"
#include "core/selectorIndex.h"

class ZRedBlackMap;
class ZSelectorData;
class ZSelectorUser;

/// The one table of the process that gives each distinct text, with its kind, an id, and keeps what was parsed out of
/// it. All threads intern. Entries with ids up to `permanentLimit` stay until `close` and are found without a lock;
/// those above are counted and go with their last holder, unless their text was ever linked. While the space is closed
/// every operation answers 0, null or false and does nothing.
///
/// `lock` says whether an operation takes the space's spin lock; who passes false holds it by `lockSpace`.
class ORV_API ZSelectorSpace {
public:
    static constexpr uint hashSize = 32768, growth = 32768;
    static constexpr ularge defaultPermanentLimit = 0x100000;

    /// The instance.
    static ZSelectorSpace& space();

    // Lifetime

    /// True when the space is open, also when it was before; false when there is no memory.
    bool open();
    /// Ends all selectors: what they point to is freed, whoever holds them. No other thread may be in an operation.
    void close();
    bool isOpen() const { return toolkit::loadAcquire(opened); }
    /// Entries in the space.
    uint count() const;
    ularge permanentLimit() const { return toolkit::load(orv::detail::permanentSelectors); }
    /// Lowers the limit for entries made from now on; what is permanent stays so. `open` sets the default.
    void setPermanentLimit(ularge id) {
        if (id < permanentLimit()) toolkit::store(orv::detail::permanentSelectors, id);
    }

    // Interning. The answer is held for the caller, to be given up by `remove`; 0 for a null or empty text, and when
    // there is no memory.

    /// The entry of the text's normal form.
    uint create(const char* text, bool lock);
    uint create(const char* text, int length, bool lock);
    /// The entry of the text without the blanks at its ends, and otherwise as it stands. `Detect` works its kind out.
    uint create(const char* text, int length, ZSelector::Type type, bool lock);
    /// The entry of the text that the parts make together. `Detect` makes a list of words, and works the kind and the
    /// parts out from its text.
    uint create(const ZSelector& name, const ZSelector& result, const ZSelector* params, int count,
                ZSelector::Type type, bool lock);
    /// The entry of exactly these bytes, their kind worked out.
    uint createBytes(const char* text, int length, bool lock);
    /// The entry of the text as it stands, its kind worked out. A new entry points to the text, which has to stay until
    /// `unlink`, and isn't counted.
    uint createLink(const char* text, bool variableName, bool lock);

    // Lookup. As above, but 0 for what isn't there: nothing is created. For readers of data that isn't trusted.

    uint find(const char* text, int length, bool lock);
    uint find(const char* text, int length, ZSelector::Type type, bool lock);
    uint findBytes(const char* text, int length, bool lock);

    // Counts

    /// Answers the id; 0 if there is no such entry.
    uint retain(uint id, bool lock);
    /// Gives up one count; with the last the entry goes.
    void remove(uint id, bool lock);
    /// 1 for an entry that isn't counted; 0 if there is none.
    int refcount(uint id);
    /// For the holder of a linked selector, whose module is about to go: copies the entry's text to the heap, unless it
    /// lies in the program or this library. True if the entry was a linked one. Without memory for the copy the entry
    /// can't be found any more and has an empty text.
    bool unlink(uint id, bool lock);

    // Entries

    /// Null for 0 and ids that aren't in use. It takes no lock, and holds while the id is held.
    ZSelectorData* get(uint id) const {
        ZSelectorData** part = toolkit::loadAcquire(directory[id >> directoryBits]);
        return ORV_LIKELY(part != nullptr) ? toolkit::loadAcquire(part[id & (directoryPart - 1)]) : nullptr;
    }
    ZSelectorData* get(const ZSelector& sel) const { return get(sel.key()); }
    void lockSpace() { spin.lock(); }
    void unlockSpace() { spin.unlock(); }
    /// The lock of `ZSelectorData::sortedParams`.
    ZSpinLock& sortedLock() { return sortedSpin; }
    /// The entry with its parts resolved; null if there is none, and when there is no memory for them.
    ZSelectorData* resolve(uint id);
    /// The same for the name of a function alone, which most signatures in tables are asked for and no more.
    ZSelectorData* resolveName(uint id);
    /// Stores a lazy selector in its field of a held entry, unless another thread was first. `flag` tells the field.
    void publish(ZSelectorData* entry, uint flag, ZSelector ZSelectorData::*field, ZSelector&& value);
    /// Sets or clears the flag of variable names, which a dotted path keeps.
    void setVariableName(uint id, bool on);
    /// Sets the handles into the XML name table of all entries to 0.
    void clearXMLNameMap();

private:
    friend class ZSelector;
    friend struct orv::detail::DebugLayout;
    struct Hold;
    struct Request;
    static constexpr uint directoryBits = 16, directoryPart = 1u << directoryBits;

    bool enterDirectory(uint id, ZSelectorData* entry);
    uint enterSlow(const char* text, size_t length, ularge hash, bool lock, bool create);
    uint enter(Request& request, bool lock, bool create);
    uint findHeld(const Request& request);
    uint enterText(const char* text, bool lock);
    uint enterNormal(const char* text, int length, bool lock, bool create);
    uint enterPlain(const char* text, size_t length, ZSelector::Type type, bool lock, bool create);
    uint take(uint id, uint marks, uint flags);
    uint add(Request& request);
    static void dropSelf(ZSelectorData* entry, const ZSelector& stored);
    void giveUp(uint id, ZSelectorData*& dead, bool lock);
    void bury(ZSelectorData* dead, bool lock);

    ZRedBlackMap* map = nullptr;
    ZSelectorUser* user = nullptr;
    ZSpinLock spin;
    ZSpinLock sortedSpin;
    orv::detail::SelectorIndex index;
    uint unindexed = 0;  ///< entries that the index doesn't hold
    bool opened = false; ///< atomic
    /// Where each entry is, by the high and then the low half of its id; null where there is none. Atomic.
    ZSelectorData** directory[directoryPart] = {};
};

namespace orv::detail {
/// The instance, for the library itself: reached without a call.
extern __attribute__((visibility("hidden"))) ZSelectorSpace selectorSpace;
} // namespace orv::detail
