#pragma once

#include "core/ZArrayT.h"
#include "core/ZSpinLock.h"
#include "object/ZBinding.h"

namespace orv {

/// What a binding is made of, looked up ahead of the lock.
struct BindingRequest {
    ZObject* src = nullptr;
    ZObject* dst = nullptr;
    ZMetaType* srcType = nullptr;
    ZMetaType* dstType = nullptr;
    ZMethod* srcMethod = nullptr;
    ZMethod* dstMethod = nullptr;
    ZSelector selector0, selector1;
    int dstOffset = 0;
    bool byProperty = false, needsCall = false, convertFirst = false, dropRest = false;
};
/// Whom a firing reached last, so that it finds the next one whatever has happened to the list meanwhile.
struct BindingMark {
    int priority = 0x7FFFFFFF;
    ularge serial = 0;

    bool isBefore(int otherPriority, ularge otherSerial) const {
        return otherPriority < priority || (otherPriority == priority && otherSerial > serial);
    }
};
/// What is told to records that leave the table, and let go when no lock is held.
struct DroppedBinding {
    ZMethod *srcMethod = nullptr, *dstMethod = nullptr;
    ZSelector names[7];
    ZArrayT<ZVariant> params;

    DroppedBinding() = default;
    DroppedBinding(const DroppedBinding&) = delete;
    ~DroppedBinding();
};
/// The heads of lists that objects and types keep.
struct BindingTable {
    static int& source(ZObject* object) { return object->bindingSrc; }
    static int& destination(ZObject* object) { return object->bindingDst; }
};

/// Chains of numbers in buckets, as many as there are entries or twice that. Under the lock of the table.
struct BindingIndex {
    ~BindingIndex() { zfree(buckets); }
    bool open();
    /// Without memory for more buckets, chains get longer.
    template <class Rehash> void grow(uint entries, Rehash rehash);
    int& bucket(ularge hash) { return buckets[uint(hash >> 32) & mask]; }

    int* buckets = nullptr;
    uint mask = 0;
};

} // namespace orv

/// The table of all bindings: records in chunks that never move, so that a place that has been told once can be looked
/// at by any thread without a lock, whatever stands there by now. It grows by a chunk at a time, and has its memory
/// until it is closed. Records of one source and method are a group; within one, those of a priority are a level: a
/// binding that is made finds its place by them, however many there are.
class ORV_API ZMethodBindings {
public:
    static constexpr uint growBy = 512; ///< records of a chunk

    ZMethodBindings() = default;
    ~ZMethodBindings();
    ZMethodBindings(const ZMethodBindings&) = delete;
    bool open();

    /// Places that have memory; those in use.
    uint count() const { return toolkit::loadAcquire(capacity); }
    uint used() const { return toolkit::load(usedCount); }
    /// Null for a place out of range and for one that has no record.
    ZBinding* get(int index) const {
        ZBinding* found = record(index);
        return found && found->getIndex() == index ? found : nullptr;
    }

    enum List { Sources, Destinations, SourceTypes, DestinationTypes, SourceMethods, DestinationMethods };
    /// Leads a record to the methods that its signatures find now.
    void refresh(int index);
    /// Reads or changes a record under the lock: `use` gets it; false if the place has none.
    template <class Use> bool with(int index, Use use) {
        ZScopedLock held(lock);
        ZBinding* found = get(index);
        return found && use(*found);
    }

private:
    friend class ZBinding;
    friend struct orv::BindingSignal;

    struct Level {
        int priority = 0, first = -1, last = -1;
        int next = -1, prev = -1; ///< of the group, falling; of a free one the next free one
        int group = -1;
    };
    struct Group {
        const ZObject* src = nullptr;
        const ZMethod* method = nullptr;
        int firstLevel = -1, lastLevel = -1;
        int next = -1, prev = -1; ///< of the source; of a free one the next free one
        int nextEqual = -1;
    };
    struct Directory {
        Directory* outgrown;
        uint room;
        ZBinding** chunks() const { return reinterpret_cast<ZBinding**>(const_cast<Directory*>(this) + 1); }
    };
    /// The place of an index, in use or not; null out of range.
    ZBinding* record(int index) const {
        const Directory* known = toolkit::loadAcquire(directory);
        const uint chunk = uint(index) / growBy;
        if (!known || index < 0 || chunk >= known->room) return nullptr;
        ZBinding* start = toolkit::loadAcquire(known->chunks()[chunk]);
        return start ? start + uint(index) % growBy : nullptr;
    }
    ZBinding& at(int index) const { return *record(index); }

    // Under the lock

    bool addChunk();
    int findEqual(const ZObject* src, const ZObject* dst, const ZMetaType* srcType, const ZMetaType* dstType,
                  const ZMethod* srcMethod, const ZMethod* dstMethod);
    int findGroup(const ZObject* src, const ZMethod* method);
    int firstOfGroup(int group) const;
    int add(const orv::BindingRequest& request);
    /// Takes a record out of all lists; true if it is the caller's to clear. One that runs is cleared by who runs it,
    /// and stays in the list of its destination until then.
    bool drop(ZBinding& binding);
    /// To be called when the destination's method, or the fixed arguments, are others.
    static void setDirect(ZBinding& binding);
    /// The destination of a dropped record goes, or isn't called any more.
    void leaveDestination(ZBinding& binding);
    ularge nextSerial() {
        toolkit::store(serials, serials + 1);
        return serials;
    }
    /// What a dropped record held.
    void clearRecord(ZBinding& binding, orv::DroppedBinding& dropped);
    void linkSource(ZBinding& binding, int level);
    void unlinkSource(ZBinding& binding);
    int levelFor(ZBinding& binding);
    void freeLevel(int level);
    void freeGroup(int group);
    void firstChanged(const Group& group);
    void link(List list, ZBinding& binding);
    void unlink(List list, ZBinding& binding);
    static int* head(List list, const ZBinding& binding);
    static void setHead(List list, const ZBinding& binding, int first);
    static int& next(List list, ZBinding& binding);
    static int& previous(List list, ZBinding& binding);
    void rememberPair(ZBinding& binding);
    void forgetPair(ZBinding& binding);
    /// False, with nothing changed, without memory.
    bool move(ZBinding& binding, int priority);
    /// The first record of a group behind the mark, made before `limit`; -1 for none.
    int behind(const ZObject* src, const ZMethod* method, const orv::BindingMark& mark, ularge limit);

    /// The places of a list; with a name, those of methods of that plain name. False without memory.
    bool snapshot(List list, int first, const ZSelector& name, ZArrayT<int>& places);
    /// Leads a record, which is taken, to other methods; false, with nothing changed, without memory.
    bool relink(ZBinding& binding, const orv::BindingRequest& request);

    // Taking the lock

    /// Drops those of a list that match, in steps that each hold the lock for a short while; how many those were.
    /// `start` answers the head of the list.
    template <class Start, class Match> int dropWhere(List list, Start start, Match match);
    /// Drops one record, unless it counts and isn't the last, or `all` is set; false if the place has none by now.
    bool dropAt(int index, bool all);

    ZSpinLock lock;
    Directory* directory = nullptr;
    uint capacity = 0;
    int freeHead = -1;
    uint usedCount = 0;
    ularge serials = 0; ///< of the last record made or moved
    uint version = 0;   ///< changes with each change of the lists of sources
    ZArrayT<Level> levels;
    ZArrayT<Group> groups;
    int freeLevels = -1, freeGroups = -1;
    uint groupCount = 0;
    orv::BindingIndex pairs, groupIndex;
};

template <class Start, class Match> int ZMethodBindings::dropWhere(List list, Start start, Match match) {
    constexpr int batch = 32;
    constexpr int longestHold = 4096;
    int total = 0, index = -1;
    ularge serial = 0;
    do {
        orv::DroppedBinding dropped[batch];
        int count = 0, steps = 0;
        ZScopedLock held(lock);
        // Who came between may have changed the list where this stood.
        if (index < 0 || at(index).index != index || at(index).serial != serial) index = start();
        while (index >= 0 && count < batch && steps++ < longestHold) {
            ZBinding& binding = at(index);
            const int behind = next(list, binding);
            if (binding.index >= 0 && match(binding)) {
                ++total;
                if (drop(binding)) clearRecord(binding, dropped[count++]);
            }
            index = behind;
        }
        if (index >= 0) serial = at(index).serial;
    } while (index >= 0);
    return total;
}
