#include "core/ZUniqueSpace.h"

#include "core/debug.h"

bool ZUniqueSpace::addSlots() {
    uint had = slots.count();
    if (had > 0x7FFFFFFF - growth || !slots.setExpand(int16(-int(growth))) || !slots.setCount(had + growth))
        return false;
    table = slots.entry(0);
    made = slots.count();
    for (uint i = had; i < made; ++i) table[i] = {0, i + 1 < made ? int(i + 1) : freeHead};
    freeHead = int(had);
    return true;
}

bool ZUniqueSpace::open() {
    Locked held(lock);
    return made || addSlots();
}

void ZUniqueSpace::close() {
    ZArrayT<Slot> gone;
    Locked held(lock);
    gone = std::move(slots);
    table = nullptr;
    made = 0;
    freeHead = -1;
    inUse = 0;
}

void ZUniqueSpace::reportRelease(uint id) { zdebug("unique released too often: %u", id); }

int ZUniqueSpace::refcount(uint id) {
    Locked held(lock);
    const Slot* slot = find(id);
    return slot ? slot->refCount : 0;
}

uint ZUniqueSpace::uniqueCount() {
    Locked held(lock);
    return inUse;
}

void ZUniqueSpace::checkLimit(const char* file, int line) {
    uint places, used;
    {
        Locked held(lock);
        places = made;
        used = inUse;
    }
    if (line >= 0 && places >= uint(line)) zdebug("%s, %d: %u uniques", file, line, used);
}
