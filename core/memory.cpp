#include "core/memory.h"

#include "core/debug.h"
#include "core/state.h"
#include "toolkit/system.h"

#include <cstring>

void* __zmemdup(const void* p) {
    if (!p) return nullptr;
    size_t size = memsize(p);
    void* copy = __zalloc(size);
    if (!copy) return nullptr;
    std::memcpy(copy, p, size);
    toolkit::blockHead(copy)->elements = memcount(p);
    return copy;
}

bool __zallocuniform(void** pointers, int count, size_t size) {
    for (int i = 0; i < count; ++i) {
        pointers[i] = __zalloc(size);
        if (pointers[i]) continue;
        freeblocks(pointers, i, true);
        return false;
    }
    return true;
}

void freeblocks(void** pointers, int count, bool force) {
    for (int i = 0; i < count; ++i) {
        if (force)
            toolkit::freeBlock(pointers[i]);
        else
            zfree(pointers[i]);
        pointers[i] = nullptr;
    }
}

void zfreeuniform(void** pointers, int count, bool force) { freeblocks(pointers, count, force); }

void* retainFailed(const void* p) {
    zdebug("retain failed: %p, %d", p, refcount(p));
    return nullptr;
}

void zdfree(void* p) {
    if (!p) return;
    if (toolkit::load(orv::coreState.instances) <= 0) {
        zdebug("Too late to free: %p", p);
        return;
    }
    int& count = toolkit::blockHead(p)->count;
    if (count > 1) count = 1;
    toolkit::freeBlock(p);
}

void zeromem(void* p) {
    if (p) std::memset(p, 0, memsize(p));
}

void fillmem(void* p, byte value) {
    if (p) std::memset(p, value, memsize(p));
}

void markmem(void* p, const char* file, int line) {
    const toolkit::AllocHooks* hooks = toolkit::allocHooks();
    if (p && hooks && hooks->mark) hooks->mark(p, file, line);
}

int memcompare(const void* a, const void* b) {
    if (!a || !b) return (a != nullptr) - (b != nullptr);
    size_t sizeA = memsize(a), sizeB = memsize(b);
    int order = std::memcmp(a, b, sizeA < sizeB ? sizeA : sizeB);
    if (order) return order < 0 ? -1 : 1;
    return (sizeA > sizeB) - (sizeA < sizeB);
}

bool checkMemory(const char* label, const void* p) {
    if (!p) return true;
    bool aligned = reinterpret_cast<uintptr_t>(p) % 16 == 0;
    bool sound = aligned && refcount(p) > 0 && memcount(p) >= 0;
    if (!sound) zdebug("%s: damaged block %p", label ? label : "memory", p);
    return sound;
}

bool checkDefaultHeap(bool flag) {
    if (flag) {
        toolkit::emptyThreadCache();
        toolkit::drain();
    }
    return toolkit::checkHeap();
}
