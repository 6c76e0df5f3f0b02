#include "toolkit/memory.h"

#include "toolkit/refusals.h"
#include "toolkit/sanitized.h"
#include "toolkit/thread.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <pthread.h>
#include <sys/sysinfo.h>

namespace toolkit {

static const AllocHooks* hooks = nullptr;

const AllocHooks* setAllocHooks(const AllocHooks* wanted) { return exchange(hooks, wanted); }
const AllocHooks* allocHooks() { return loadAcquire(hooks); }

// Small blocks that a thread has freed wait for its next allocation of that size: no call, no lock. Not under a
// sanitizer, which has to see every block come and go.
constexpr bool caching = !sanitized;

namespace {
constexpr size_t cachedSize = 256; // largest payload that is kept
constexpr int cachedClasses = cachedSize / 16 + 1, cachedBlocks = 64;
/// What is left of the head of a block that waits. The count is far below 0: nobody gets hold of the block by `retain`,
/// and freeing it once more shows.
struct Waiting {
    uint32_t sizeLow;
    int count;
    Waiting* next;
};
static_assert(sizeof(Waiting) == sizeof(BlockHead) && offsetof(Waiting, count) == offsetof(BlockHead, count));
constexpr int freedCount = INT32_MIN / 2;

struct BlockCache {
    Waiting* first[cachedClasses];
    int count[cachedClasses];
    bool registered; // the thread's end will empty it
    bool closed;     // the thread is ending
};
ORV_THREAD_LOCAL BlockCache cache{};

void emptyCache() {
    for (int i = 0; i < cachedClasses; ++i) {
        while (Waiting* block = cache.first[i]) {
            cache.first[i] = block->next;
            std::free(block);
        }
        cache.count[i] = 0;
    }
}
/// Sees to it that the running thread empties its cache when it ends. A key and no destructor of a thread-local object:
/// that one would end the process when there is no memory to note it.
[[gnu::noinline]] bool registerCache() {
    static pthread_once_t once = PTHREAD_ONCE_INIT;
    static pthread_key_t key;
    static bool made = false;
    if (cache.closed) return false;
    pthread_once(&once, [] {
        made = pthread_key_create(&key, [](void*) {
                   cache.closed = true;
                   cache.registered = false;
                   emptyCache();
               }) == 0;
    });
    return cache.registered = made && pthread_setspecific(key, &cache) == 0;
}
} // namespace

/// What is asked of malloc. A sanitizer gets the exact size, to see every overrun.
static inline size_t rounded(size_t size) {
    return caching ? (size + sizeof(BlockHead) + 15) & ~size_t(15) : size + sizeof(BlockHead);
}

/// Memory for a head and a payload, with room up to the next 16 bytes.
static inline void* take(size_t size) {
    if (caching && size <= cachedSize) {
        size_t index = (size + 15) / 16;
        if (Waiting* block = cache.first[index]) {
            cache.first[index] = block->next;
            --cache.count[index];
            return block;
        }
    }
    return std::malloc(rounded(size));
}

static inline void giveBack(BlockHead* head, size_t size) {
    if (caching && size <= cachedSize) {
        size_t index = (size + 15) / 16;
        if (cache.count[index] < cachedBlocks && (cache.registered || registerCache())) {
            auto block = reinterpret_cast<Waiting*>(head);
            store(head->count, freedCount);
            block->next = cache.first[index];
            cache.first[index] = block;
            ++cache.count[index];
            return;
        }
    }
    std::free(head);
}

void emptyThreadCache() { emptyCache(); }

bool checkHeap() {
    for (int i = 0; i < cachedClasses; ++i) {
        int count = 0;
        for (Waiting* block = cache.first[i]; block; block = block->next, ++count) {
            bool aligned = reinterpret_cast<uintptr_t>(block) % 16 == 0;
            if (count == cachedBlocks || !aligned || load(block->count) >= freedCount / 2 ||
                (block->sizeLow + 15) / 16 != uint32_t(i))
                return false;
        }
        if (count != cache.count[i]) return false;
    }
    // What malloc takes to be in use is its memory less the free blocks it finds on a walk.
    struct mallinfo2 info = mallinfo2();
    return info.uordblks <= info.arena;
}

static ORV_THREAD_LOCAL uint refusals = 0;
uint refusedAllocations() { return refusals; }
[[gnu::noinline, gnu::cold]] static void* refused() {
    ++refusals;
    return nullptr;
}

static inline void* finish(void* raw, size_t size) {
    auto head = static_cast<BlockHead*>(raw);
    *head = {uint32_t(size), 1, uint32_t(size >> 32) << 24, 0};
    return head + 1;
}

/// The way of an allocation that hooks watch.
[[gnu::noinline, gnu::cold]] static void* allocWatched(size_t size, bool zero) {
    const AllocHooks* watch = allocHooks();
    if (watch && !watch->allow(size)) return refused();
    void* raw = std::malloc(rounded(size));
    if (!raw) return refused();
    void* payload = finish(raw, size);
    if (zero) std::memset(payload, 0, size);
    if (watch) watch->made(payload, size, threadState.typeLabel);
    return payload;
}

static bool memoryDebug = false;
void setMemoryDebug(bool on) { store(memoryDebug, on); }

void* allocBlock(size_t size) {
    if (ORV_UNLIKELY(size > blockLimit)) return nullptr;
    if (ORV_UNLIKELY(load(hooks) != nullptr)) return allocWatched(size, false);
    void* raw = take(size);
    return ORV_LIKELY(raw != nullptr) ? finish(raw, size) : refused();
}

void* allocZeroedBlock(size_t size) {
    if (ORV_UNLIKELY(size > blockLimit)) return nullptr;
    if (ORV_UNLIKELY(load(hooks) != nullptr)) return allocWatched(size, true);
    // Large blocks come from fresh pages, which calloc knows to be zero.
    constexpr size_t fresh = 128 * 1024;
    void* raw = size < fresh ? take(size) : std::calloc(1, rounded(size));
    if (ORV_UNLIKELY(!raw)) return refused();
    void* payload = finish(raw, size);
    if (caching && size <= 64) {
        // Whole 16-byte steps: the room reaches to the next of them.
        auto words = static_cast<uint64_t*>(payload);
        for (size_t i = 0; i < size; i += 16) words[i / 8] = words[i / 8 + 1] = 0;
    } else if (size < fresh)
        std::memset(payload, 0, size);
    return payload;
}

static inline void setSize(BlockHead* head, size_t size) {
    head->sizeLow = uint32_t(size);
    head->state = (head->state & blockLockMask) | uint32_t(size >> 32) << 24;
}

/// While hooks watch, the block always moves: whoever keeps the old address is found out.
[[gnu::noinline, gnu::cold]] static void* reallocWatched(void* payload, size_t size) {
    void* moved = allocWatched(size, false);
    if (!moved) return nullptr;
    BlockHead *from = blockHead(payload), *to = blockHead(moved);
    size_t had = blockSize(payload);
    std::memcpy(moved, payload, had < size ? had : size);
    to->count = from->count;
    to->elements = from->elements;
    to->state = from->state;
    setSize(to, size);
    if (const AllocHooks* watch = allocHooks()) watch->gone(payload);
    std::free(from);
    return moved;
}

void* reallocBlock(void* payload, size_t size) {
    if (!payload) return allocBlock(size);
    if (size > blockLimit) return nullptr;
    if (ORV_UNLIKELY(allocHooks() != nullptr)) return reallocWatched(payload, size);
    auto moved = static_cast<BlockHead*>(std::realloc(blockHead(payload), rounded(size)));
    if (!moved) return refused();
    setSize(moved, size);
    return moved + 1;
}

void* growBlock(void* payload, size_t size) {
    // A block that shrinks isn't kept: it would wait among blocks of its size with all its room.
    if (!payload || allocHooks() || size > blockLimit || size < blockSize(payload)) return reallocBlock(payload, size);
    BlockHead* head = blockHead(payload);
    if (malloc_usable_size(head) < rounded(size)) {
        void* moved = std::realloc(head, rounded(size + size / 4 + 16));
        if (!moved) return reallocBlock(payload, size);
        head = static_cast<BlockHead*>(moved);
    }
    setSize(head, size);
    return head + 1;
}

void freeBlock(void* payload) {
    if (!payload) return;
    BlockHead* head = blockHead(payload);
    if (ORV_UNLIKELY(load(head->count) < freedCount / 2)) __builtin_trap();
    if (uint32_t lock = load(head->state) & blockLockMask; ORV_UNLIKELY(lock != 0)) freeBlockLock(lock);
    if (const AllocHooks* watch = load(hooks); ORV_UNLIKELY(watch != nullptr)) watch->gone(payload);
    size_t size = blockSize(payload);
#ifndef NDEBUG
    if (load(memoryDebug)) std::memset(payload, 0xDD, size);
#endif
    giveBack(head, size);
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
