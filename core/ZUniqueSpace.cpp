#include "core/ZUniqueSpace.h"

#include "core/debug.h"

using Locked = ZScopedLock<ZSpinLock>;

bool ZUniqueSpace::addSlots() {
    uint had = slots.count();
    if (had > 0x7FFFFFFF - growth || !slots.setExpand(int16(-int(growth))) || !slots.setCount(had + growth))
        return false;
    Slot* first = slots.entry(had);
    for (uint i = 0; i < growth; ++i) first[i] = {0, i + 1 < growth ? int(had + i + 1) : freeHead};
    freeHead = int(had);
    return true;
}

bool ZUniqueSpace::open() {
    Locked held(lock);
    return slots.count() || addSlots();
}

void ZUniqueSpace::close() {
    ZArrayT<Slot> gone;
    Locked held(lock);
    gone = std::move(slots);
    freeHead = -1;
    inUse = 0;
}

uint ZUniqueSpace::create() {
    Locked held(lock);
    if (ORV_UNLIKELY(freeHead < 0) && !addSlots()) return 0;
    int index = freeHead;
    Slot* slot = slots.entry(uint(index));
    freeHead = slot->next;
    *slot = {1, -1};
    ++inUse;
    return uint(index) + 1;
}

uint ZUniqueSpace::retain(uint id) {
    Locked locked(lock);
    Slot* slot = held(id);
    if (!slot) return 0;
    ++slot->refCount;
    return id;
}

void ZUniqueSpace::release(uint id) {
    if (!id) return;
    {
        Locked locked(lock);
        if (Slot* slot = held(id); ORV_LIKELY(slot != nullptr)) {
            if (--slot->refCount > 0) return;
            slot->next = freeHead;
            freeHead = int(id - 1);
            --inUse;
            return;
        }
    }
    zdebug("unique released too often: %u", id);
}

int ZUniqueSpace::refcount(uint id) {
    Locked locked(lock);
    const Slot* slot = held(id);
    return slot ? slot->refCount : 0;
}

uint ZUniqueSpace::uniqueCount() {
    Locked locked(lock);
    return inUse;
}

void ZUniqueSpace::checkLimit(const char* file, int line) {
    uint made, used;
    {
        Locked locked(lock);
        made = slots.count();
        used = inUse;
    }
    if (line >= 0 && made >= uint(line)) zdebug("%s, %d: %u uniques", file, line, used);
}
