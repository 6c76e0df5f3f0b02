#include "object/ZMethodBindings.h"

#include "core/construct.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"

#include <cstring>

// The records and the lists that they stand in. All of it under the lock of the table, unless told otherwise; stores
// are whole words where firings read them meanwhile.

using toolkit::load;
using toolkit::store;
using toolkit::storeRelease;

int orv::typeBindings = 0;

namespace {

ularge mix(ularge hash, const void* part) {
    hash = (hash ^ (uintptr_t(part) >> 4)) * 0x9E3779B97F4A7C15u;
    return hash ^ hash >> 29;
}
ularge pairHash(const ZObject* src, const ZObject* dst, const ZMethod* srcMethod, const ZMethod* dstMethod) {
    return mix(mix(mix(mix(0, src), dst), srcMethod), dstMethod);
}
ularge groupHash(const ZObject* src, const ZMethod* method) { return mix(mix(0, src), method); }

} // namespace

namespace orv {

DroppedBinding::~DroppedBinding() {
    ZMethod::release(srcMethod);
    ZMethod::release(dstMethod);
}

namespace {
int* makeBuckets(uint count) {
    auto made = static_cast<int*>(__zalloc(count * sizeof(int)));
    if (made) std::memset(made, 0xFF, count * sizeof(int));
    return made;
}
} // namespace

bool BindingIndex::open() {
    constexpr uint first = 1024;
    buckets = makeBuckets(first);
    mask = first - 1;
    return buckets != nullptr;
}
template <class Rehash> void BindingIndex::grow(uint entries, Rehash rehash) {
    if (ORV_LIKELY(entries <= mask) || mask >= 0x3FFFFFFF) return;
    const uint wanted = (mask + 1) * 2;
    int* fresh = makeBuckets(wanted);
    if (!fresh) return;
    zfree(std::exchange(buckets, fresh));
    mask = wanted - 1;
    rehash();
}

} // namespace orv

// Memory

bool ZMethodBindings::open() { return pairs.open() && groupIndex.open() && addChunk(); }
ZMethodBindings::~ZMethodBindings() {
    for (uint i = 0; i < capacity; ++i) at(int(i)).~ZBinding();
    for (uint i = 0; directory && i < directory->room; ++i) zfree(directory->chunks()[i]);
    while (directory) zfree(std::exchange(directory, directory->outgrown));
}

bool ZMethodBindings::addChunk() {
    const uint chunk = capacity / growBy;
    if (capacity > 0x7FFFFFFF - growBy) return false;
    if (!directory || chunk == directory->room) {
        const uint room = directory ? directory->room * 2 : 16;
        auto larger =
            static_cast<Directory*>(toolkit::allocZeroedBlock(sizeof(Directory) + size_t(room) * sizeof(ZBinding*)));
        if (!larger) return false;
        larger->room = room;
        larger->outgrown = directory;
        if (directory) std::memcpy(larger->chunks(), directory->chunks(), directory->room * sizeof(ZBinding*));
        storeRelease(directory, larger);
    }
    auto fresh = static_cast<ZBinding*>(toolkit::allocZeroedBlock(growBy * sizeof(ZBinding)));
    if (!fresh) return false;
    for (uint i = growBy; i-- > 0;) {
        ZBinding* made = ::new (static_cast<void*>(fresh + i)) ZBinding();
        made->number = int(capacity + i);
        made->nextEqual = std::exchange(freeHead, made->number);
    }
    storeRelease(directory->chunks()[chunk], fresh);
    storeRelease(capacity, capacity + growBy);
    return true;
}

// Pairs

int ZMethodBindings::findEqual(const ZObject* src, const ZObject* dst, const ZMetaType* srcType,
                               const ZMetaType* dstType, const ZMethod* srcMethod, const ZMethod* dstMethod) {
    int index = pairs.bucket(pairHash(src, dst, srcMethod, dstMethod));
    while (index >= 0) {
        const ZBinding& known = at(index);
        if (known.src == src && known.dst == dst && known.srcMethod == srcMethod && known.dstMethod == dstMethod &&
            (src || !srcType || known.srcType == srcType) && (dst || !dstType || known.dstType == dstType))
            return index;
        index = known.nextEqual;
    }
    return -1;
}
void ZMethodBindings::rememberPair(ZBinding& binding) {
    pairs.grow(usedCount, [&] {
        for (uint i = 0; i < capacity; ++i) {
            ZBinding& known = at(int(i));
            if (known.index < 0 || &known == &binding) continue;
            int& first = pairs.bucket(pairHash(known.src, known.dst, known.srcMethod, known.dstMethod));
            known.nextEqual = std::exchange(first, known.index);
        }
    });
    int& first = pairs.bucket(pairHash(binding.src, binding.dst, binding.srcMethod, binding.dstMethod));
    binding.nextEqual = std::exchange(first, binding.index);
}
void ZMethodBindings::forgetPair(ZBinding& binding) {
    int* place = &pairs.bucket(pairHash(binding.src, binding.dst, binding.srcMethod, binding.dstMethod));
    while (*place != binding.index) place = &at(*place).nextEqual;
    *place = binding.nextEqual;
}

// The plain lists, whose order doesn't matter

int* ZMethodBindings::head(List list, const ZBinding& binding) {
    switch (list) {
    case Destinations:
        return binding.dst ? &orv::BindingTable::destination(binding.dst) : nullptr;
    case SourceTypes:
        return binding.srcType ? &binding.srcType->record().bindingSrc : nullptr;
    case DestinationTypes:
        return binding.dstType ? &binding.dstType->record().bindingDst : nullptr;
    default:
        return nullptr;
    }
}
void ZMethodBindings::setHead(List list, const ZBinding& binding, int first) {
    if (list == SourceMethods || list == DestinationMethods) {
        (list == SourceMethods ? binding.srcMethod : binding.dstMethod)->setBinding(list == DestinationMethods, first);
        return;
    }
    if (list == Sources) {
        if (binding.src)
            storeRelease(orv::BindingTable::source(binding.src), first);
        else
            binding.srcMethod->setTypeBinding(first);
        return;
    }
    if (int* place = head(list, binding)) storeRelease(*place, first);
}
int& ZMethodBindings::next(List list, ZBinding& binding) {
    constexpr int ZBinding::*links[] = {&ZBinding::nextSrc,   &ZBinding::nextDst, &ZBinding::nextSType,
                                        &ZBinding::nextDType, &ZBinding::next0,   &ZBinding::next1};
    return binding.*links[list];
}
int& ZMethodBindings::previous(List list, ZBinding& binding) {
    constexpr int ZBinding::*links[] = {&ZBinding::prevSrc,   &ZBinding::prevDst, &ZBinding::prevSType,
                                        &ZBinding::prevDType, &ZBinding::prev0,   &ZBinding::prev1};
    return binding.*links[list];
}
void ZMethodBindings::link(List list, ZBinding& binding) {
    int first = -1;
    if (list == SourceMethods)
        first = binding.srcMethod->getBinding(false);
    else if (list == DestinationMethods)
        first = binding.dstMethod->getBinding(true);
    else if (const int* place = head(list, binding))
        first = *place;
    else
        return;
    next(list, binding) = first;
    previous(list, binding) = -1;
    if (first >= 0) previous(list, at(first)) = binding.index;
    setHead(list, binding, binding.index);
}
void ZMethodBindings::unlink(List list, ZBinding& binding) {
    if (list < SourceMethods && !head(list, binding)) return;
    const int before = previous(list, binding), behind = next(list, binding);
    if (before >= 0)
        next(list, at(before)) = behind;
    else
        setHead(list, binding, behind);
    if (behind >= 0) previous(list, at(behind)) = before;
    next(list, binding) = previous(list, binding) = -1;
}

// The list of a source: groups by method, levels by priority

int ZMethodBindings::findGroup(const ZObject* src, const ZMethod* method) {
    int index = groupIndex.bucket(groupHash(src, method));
    while (index >= 0) {
        const Group& known = groups.data()[index];
        if (known.src == src && known.method == method) return index;
        index = known.nextEqual;
    }
    return -1;
}
int ZMethodBindings::firstOfGroup(int group) const {
    return group < 0 ? -1 : levels.data()[groups.data()[group].firstLevel].first;
}

/// The level for a record, made where it is missing, with its group; -1 without memory. A new level is empty.
int ZMethodBindings::levelFor(ZBinding& binding) {
    auto spare = [](auto& list, int& freeOnes) {
        if (freeOnes < 0) {
            using Entry = std::remove_cvref_t<decltype(*list.entry(0))>;
            if (!list.append(Entry())) return -1;
            list.entry(list.count() - 1)->next = -1;
            freeOnes = int(list.count()) - 1;
        }
        return freeOnes;
    };
    int group = findGroup(binding.src, binding.srcMethod), before = -1;
    if (group >= 0) {
        int level = groups.data()[group].firstLevel;
        // Most are of the last priority there is.
        if (const Level& last = levels.data()[groups.data()[group].lastLevel]; last.priority >= binding.priority)
            level = groups.data()[group].lastLevel;
        for (; level >= 0 && levels.data()[level].priority > binding.priority; level = levels.data()[level].next)
            before = level;
        if (level >= 0 && levels.data()[level].priority == binding.priority) return level;
    }
    const int level = spare(levels, freeLevels);
    if (level < 0) return -1;
    if (group < 0) {
        group = spare(groups, freeGroups);
        if (group < 0) return -1;
        Group& made = *groups.entry(uint(group));
        freeGroups = made.next;
        made = Group{binding.src, binding.srcMethod};
        const int head =
            binding.src ? load(orv::BindingTable::source(binding.src)) : binding.srcMethod->getTypeBinding();
        if (head >= 0) {
            made.next = levels.data()[at(head).level].group;
            groups.entry(uint(made.next))->prev = group;
        }
        ++groupCount;
        groupIndex.grow(groupCount, [this] {
            for (uint i = 0; i < groups.count(); ++i) {
                Group& known = *groups.entry(i);
                if (known.method && known.firstLevel >= 0)
                    known.nextEqual = std::exchange(groupIndex.bucket(groupHash(known.src, known.method)), int(i));
            }
        });
        made.nextEqual = std::exchange(groupIndex.bucket(groupHash(made.src, made.method)), group);
    }
    Group& of = *groups.entry(uint(group));
    Level& made = *levels.entry(uint(level));
    freeLevels = made.next;
    made = Level{binding.priority};
    made.group = group;
    made.prev = before;
    made.next = before >= 0 ? levels.data()[before].next : of.firstLevel;
    (before >= 0 ? levels.entry(uint(before))->next : of.firstLevel) = level;
    (made.next >= 0 ? levels.entry(uint(made.next))->prev : of.lastLevel) = level;
    return level;
}
void ZMethodBindings::freeLevel(int index) {
    Level& gone = *levels.entry(uint(index));
    Group& group = *groups.entry(uint(gone.group));
    (gone.prev >= 0 ? levels.entry(uint(gone.prev))->next : group.firstLevel) = gone.next;
    (gone.next >= 0 ? levels.entry(uint(gone.next))->prev : group.lastLevel) = gone.prev;
    if (group.firstLevel < 0) freeGroup(gone.group);
    gone = Level();
    gone.next = std::exchange(freeLevels, index);
}
void ZMethodBindings::freeGroup(int index) {
    Group& gone = *groups.entry(uint(index));
    int* place = &groupIndex.bucket(groupHash(gone.src, gone.method));
    while (*place != index) place = &groups.entry(uint(*place))->nextEqual;
    *place = gone.nextEqual;
    const int before = gone.prev, behind = gone.next;
    if (before >= 0) groups.entry(uint(before))->next = behind;
    if (behind >= 0) groups.entry(uint(behind))->prev = before;
    gone = Group();
    gone.next = std::exchange(freeGroups, index);
    --groupCount;
    if (before >= 0) firstChanged(groups.data()[before]);
}
/// The first record of a group, or of the one behind it, is another one: tells who reads from group to group.
void ZMethodBindings::firstChanged(const Group& group) {
    const int first = levels.data()[group.firstLevel].first;
    store(at(first).groupNext, firstOfGroup(group.next));
}

void ZMethodBindings::linkSource(ZBinding& binding, int index) {
    Level& level = *levels.entry(uint(index));
    const Group& group = groups.data()[level.group];
    int before = level.last;
    if (before < 0 && level.prev >= 0) before = levels.data()[level.prev].last;
    int behind = -1;
    if (before >= 0) {
        behind = at(before).nextSrc;
    } else if (level.next >= 0) {
        behind = levels.data()[level.next].first;
        before = at(behind).prevSrc;
    } else {
        // A new group goes in front.
        behind = binding.src ? load(orv::BindingTable::source(binding.src)) : binding.srcMethod->getTypeBinding();
    }
    binding.level = index;
    binding.prevSrc = before;
    store(binding.nextSrc, behind);
    store(binding.groupNext, -1);
    const bool isFirst = level.last < 0 && level.prev < 0;
    const int oldFirst = isFirst && level.next >= 0 ? levels.data()[level.next].first : -1;
    if (level.first < 0) level.first = binding.index;
    level.last = binding.index;
    if (isFirst) {
        firstChanged(group);
        if (oldFirst >= 0) store(at(oldFirst).groupNext, -1);
    }
    if (behind >= 0) at(behind).prevSrc = binding.index;
    if (before >= 0)
        storeRelease(at(before).nextSrc, binding.index);
    else
        setHead(Sources, binding, binding.index);
    if (isFirst && group.prev >= 0) firstChanged(groups.data()[group.prev]);
    storeRelease(version, version + 1);
}
void ZMethodBindings::unlinkSource(ZBinding& binding) {
    const int before = binding.prevSrc, behind = binding.nextSrc, index = binding.level;
    Level& level = *levels.entry(uint(index));
    const int group = level.group;
    const bool wasFirst = level.first == binding.index && level.prev < 0;
    if (level.first == binding.index) level.first = level.last == binding.index ? -1 : behind;
    if (level.last == binding.index) level.last = level.first < 0 ? -1 : before;
    const bool wasOnly = level.first < 0 && groups.data()[group].firstLevel == groups.data()[group].lastLevel;
    if (level.first < 0) freeLevel(index);
    if (before >= 0)
        storeRelease(at(before).nextSrc, behind);
    else
        setHead(Sources, binding, behind);
    if (behind >= 0) at(behind).prevSrc = before;
    if (wasFirst && !wasOnly) {
        firstChanged(groups.data()[group]);
        if (const int outer = groups.data()[group].prev; outer >= 0) firstChanged(groups.data()[outer]);
    }
    binding.level = -1;
    // The links of the record itself stay, for a firing that stands there.
    storeRelease(version, version + 1);
}

// Records

int ZMethodBindings::add(const orv::BindingRequest& request) {
    if (freeHead < 0 && !addChunk()) return -1;
    const int index = freeHead;
    ZBinding& made = at(index);
    store(made.src, request.src);
    store(made.srcMethod, request.srcMethod);
    store(made.priority, int(ZBinding::Normal));
    const int level = levelFor(made);
    if (level < 0) return -1;
    freeHead = made.nextEqual;
    store(made.index, index);
    store(made.refs, 1);
    store(made.dst, request.dst);
    made.srcType = request.srcType;
    made.dstType = request.dstType;
    made.dstMethod = request.dstMethod;
    ZMethod::retain(made.srcMethod);
    ZMethod::retain(made.dstMethod);
    made.selector0 = request.selector0;
    made.selector1 = request.selector1;
    made.mSelector0 = made.srcMethod->getSelector();
    made.mSelector1 = made.dstMethod->getSelector();
    made.qualifier0 = made.srcMethod->getQualifier();
    made.qualifier1 = made.dstMethod->getQualifier();
    made.paramPos = 0;
    store(made.enabled, byte(1));
    made.countReferences = 1;
    made.hasParams = 0;
    made.toAll = !request.dst;
    setDirect(made);
    made.byProperty = request.byProperty;
    made.needsCall = request.needsCall;
    made.convertFirst = request.convertFirst;
    made.dropRest = request.dropRest;
    made.dstOffset = request.dstOffset;
    storeRelease(made.serial, nextSerial());
    storeRelease(made.active, uint(ZBinding::Idle));
    store(usedCount, usedCount + 1);
    rememberPair(made);
    linkSource(made, level);
    for (List list : {Destinations, SourceTypes, DestinationTypes, SourceMethods, DestinationMethods}) link(list, made);
    if (!made.src) {
        uint& sources = made.srcType->record().boundSources;
        store(sources, sources + 1);
        store(orv::typeBindings, orv::typeBindings + 1);
    }
    return index;
}

void ZMethodBindings::setDirect(ZBinding& binding) {
    constexpr uint special = ZMethod::CollectArgs | ZMethod::Creator | ZMethod::Manage;
    const ZMethod* to = binding.dstMethod;
    store(binding.direct, byte(to->fastWords() == 0 && !binding.hasParams && !(to->getFlags() & special)));
}
bool ZMethodBindings::drop(ZBinding& binding) {
    forgetPair(binding);
    unlinkSource(binding);
    for (List list : {SourceTypes, DestinationTypes, SourceMethods, DestinationMethods}) unlink(list, binding);
    if (!binding.src) {
        uint& sources = binding.srcType->record().boundSources;
        store(sources, sources - 1);
        store(orv::typeBindings, orv::typeBindings - 1);
    }
    store(binding.index, -1);
    store(usedCount, usedCount - 1);
    uint seen = load(binding.active);
    while (!toolkit::compareExchange(binding.active, seen, seen | ZBinding::Gone)) {}
    // A destination that goes has to know that it is being called.
    if (seen & ZBinding::Running) return false;
    unlink(Destinations, binding);
    return true;
}
void ZMethodBindings::leaveDestination(ZBinding& binding) {
    unlink(Destinations, binding);
    store(binding.dst, static_cast<ZObject*>(nullptr));
}
void ZMethodBindings::clearRecord(ZBinding& binding, orv::DroppedBinding& dropped) {
    dropped.srcMethod = binding.srcMethod;
    dropped.dstMethod = binding.dstMethod;
    ZSelector* const names[] = {&binding.selector0,  &binding.selector1,  &binding.mSelector0, &binding.mSelector1,
                                &binding.qualifier0, &binding.qualifier1, &binding.label};
    for (uint i = 0; i < 7; ++i) std::swap(*names[i], dropped.names[i]);
    std::swap(binding.params, dropped.params);
    store(binding.src, static_cast<ZObject*>(nullptr));
    store(binding.dst, static_cast<ZObject*>(nullptr));
    store(binding.srcMethod, static_cast<ZMethod*>(nullptr));
    binding.dstMethod = nullptr;
    binding.srcType = binding.dstType = nullptr;
    store(binding.active, uint(ZBinding::Gone));
    binding.nextEqual = std::exchange(freeHead, binding.number);
}

bool ZMethodBindings::move(ZBinding& binding, int priority) {
    const int old = binding.priority;
    if (old == priority) return true;
    unlinkSource(binding);
    store(binding.priority, priority);
    int level = levelFor(binding);
    if (level < 0) {
        // The level that it was in, or one of its size, is free.
        store(binding.priority, old);
        level = levelFor(binding);
    }
    storeRelease(binding.serial, nextSerial());
    linkSource(binding, level);
    return binding.priority == priority;
}

int ZMethodBindings::behind(const ZObject* src, const ZMethod* method, const orv::BindingMark& mark, ularge limit) {
    const int group = findGroup(src, method);
    for (int level = group < 0 ? -1 : groups.data()[group].firstLevel; level >= 0; level = levels.data()[level].next) {
        const Level& of = levels.data()[level];
        if (!mark.isBefore(of.priority, at(of.last).serial)) continue;
        for (int index = of.first;; index = at(index).nextSrc) {
            const ZBinding& found = at(index);
            if (found.serial > limit) break;
            if (mark.isBefore(found.priority, found.serial)) return index;
            if (index == of.last) break;
        }
    }
    return -1;
}

bool ZMethodBindings::dropAt(int index, bool all) {
    orv::DroppedBinding dropped;
    ZScopedLock held(lock);
    ZBinding* binding = get(index);
    if (!binding) return false;
    if (!all && binding->countReferences && binding->refs > 1)
        store(binding->refs, binding->refs - 1);
    else if (drop(*binding))
        clearRecord(*binding, dropped);
    return true;
}
