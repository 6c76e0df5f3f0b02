#include "toolkit/packs.h"

#include "toolkit/datapack.h"
#include "toolkit/lock.h"

#include <cstring>

namespace toolkit {

namespace {
constexpr int room = 32;
struct Slot {
    const Pack* pack;
    int loads;
};
constexpr DataPackServices dataPackServices{DataPack::make};
constexpr Pack dataPack{"pack/datapack", &dataPackServices, nullptr, nullptr};
Slot slots[room] = {{&dataPack, 0}};
int slotCount = 1;
int packsLock = 0;

struct Guard {
    Guard() { spinLock(packsLock); }
    ~Guard() { spinUnlock(packsLock); }
};

Slot* find(const char* name) {
    for (int i = 0; i < slotCount; ++i)
        if (std::strcmp(slots[i].pack->name, name) == 0) return &slots[i];
    return nullptr;
}

Slot* ofHandle(void* handle) {
    auto slot = static_cast<Slot*>(handle);
    return slot >= slots && slot < slots + slotCount ? slot : nullptr;
}
} // namespace

bool addPack(const Pack& pack) {
    Guard guard;
    if (slotCount == room || find(pack.name)) return false;
    slots[slotCount++] = {&pack, 0};
    return true;
}

void* loadPack(const char* name) {
    if (!name) return nullptr;
    Slot* slot;
    {
        Guard guard;
        slot = find(name);
        if (!slot) return nullptr;
        if (slot->loads++ > 0) return slot;
    }
    if (!slot->pack->open || slot->pack->open()) return slot;
    Guard guard;
    --slot->loads;
    return nullptr;
}

void unloadPack(void* handle) {
    const Pack* closing;
    {
        Guard guard;
        Slot* slot = ofHandle(handle);
        if (!slot || slot->loads <= 0 || --slot->loads > 0) return;
        closing = slot->pack;
    }
    if (closing->close) closing->close();
}

const void* packServices(void* handle) {
    Guard guard;
    Slot* slot = ofHandle(handle);
    return slot && slot->loads > 0 ? slot->pack->services : nullptr;
}

int packLoads(const char* name) {
    Guard guard;
    Slot* slot = name ? find(name) : nullptr;
    return slot ? slot->loads : 0;
}

} // namespace toolkit
