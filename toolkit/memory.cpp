#include "toolkit/memory.h"

#include "toolkit/thread.h"

#include <cstdlib>
#include <cstring>
#include <sys/sysinfo.h>

namespace toolkit {

void (*freeBlockLock)(uint32_t number) = nullptr;

static const AllocHooks* hooks = nullptr;

const AllocHooks* setAllocHooks(const AllocHooks* wanted) { return exchange(hooks, wanted); }
const AllocHooks* allocHooks() { return loadAcquire(hooks); }

static inline void* finish(void* raw, size_t size) {
    auto head = static_cast<BlockHead*>(raw);
    *head = {uint32_t(size), 1, uint32_t(size >> 32) << 24, 0};
    return head + 1;
}

/// The way of an allocation that hooks watch.
[[gnu::noinline, gnu::cold]] static void* allocWatched(size_t size, bool zero) {
    const AllocHooks* watch = allocHooks();
    if (watch && !watch->allow(size)) return nullptr;
    void* raw = std::malloc(size + sizeof(BlockHead));
    if (!raw) return nullptr;
    void* payload = finish(raw, size);
    if (zero) std::memset(payload, 0, size);
    if (watch) watch->made(payload, size, threadState.typeLabel);
    return payload;
}

void* allocBlock(size_t size) {
    if (ORV_UNLIKELY(size > blockLimit)) return nullptr;
    if (ORV_UNLIKELY(load(hooks) != nullptr)) return allocWatched(size, false);
    void* raw = std::malloc(size + sizeof(BlockHead));
    return ORV_LIKELY(raw != nullptr) ? finish(raw, size) : nullptr;
}

void* allocZeroedBlock(size_t size) {
    if (ORV_UNLIKELY(size > blockLimit)) return nullptr;
    if (ORV_UNLIKELY(load(hooks) != nullptr)) return allocWatched(size, true);
    // Large blocks come from fresh pages, which calloc knows to be zero.
    constexpr size_t fresh = 128 * 1024;
    void* raw = size < fresh ? std::malloc(size + sizeof(BlockHead)) : std::calloc(1, size + sizeof(BlockHead));
    if (ORV_UNLIKELY(!raw)) return nullptr;
    void* payload = finish(raw, size);
    if (size < fresh) std::memset(payload, 0, size);
    return payload;
}

void* reallocBlock(void* payload, size_t size) {
    if (!payload) return allocBlock(size);
    if (size > blockLimit) return nullptr;
    const AllocHooks* watch = allocHooks();
    if (watch && !watch->allow(size)) return nullptr;
    BlockHead* head = blockHead(payload);
    auto moved = static_cast<BlockHead*>(std::realloc(head, size + sizeof(BlockHead)));
    if (!moved) return nullptr;
    moved->sizeLow = uint32_t(size);
    moved->state = (moved->state & blockLockMask) | uint32_t(size >> 32) << 24;
    if (watch) {
        watch->gone(payload);
        watch->made(moved + 1, size, threadState.typeLabel);
    }
    return moved + 1;
}

void freeBlock(void* payload) {
    if (!payload) return;
    BlockHead* head = blockHead(payload);
    if (uint32_t lock = load(head->state) & blockLockMask; ORV_UNLIKELY(lock != 0) && freeBlockLock) freeBlockLock(lock);
    if (const AllocHooks* watch = load(hooks); ORV_UNLIKELY(watch != nullptr)) watch->gone(payload);
    std::free(head);
}

static ularge scaled(unsigned long units, const struct sysinfo& info) { return ularge(units) * info.mem_unit; }

ularge freePhysicalMemory() {
    struct sysinfo info;
    return sysinfo(&info) == 0 ? scaled(info.freeram, info) : 0;
}
ularge totalPhysicalMemory() {
    struct sysinfo info;
    return sysinfo(&info) == 0 ? scaled(info.totalram, info) : 0;
}
ularge freeMemory() {
    struct sysinfo info;
    return sysinfo(&info) == 0 ? scaled(info.freeram, info) + scaled(info.freeswap, info) : 0;
}
ularge totalMemory() {
    struct sysinfo info;
    return sysinfo(&info) == 0 ? scaled(info.totalram, info) + scaled(info.totalswap, info) : 0;
}

} // namespace toolkit
