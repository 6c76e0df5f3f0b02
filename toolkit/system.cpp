#include "toolkit/system.h"

#include "toolkit/lock.h"
#include "toolkit/memory.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace toolkit {

// Crashes

namespace {
constexpr int crashLines = 32, crashLineRoom = 160;
char crashText[crashLines][crashLineRoom];
unsigned crashNext = 0;
char userName[128], userNote[128];
CrashCallback crashCallback = nullptr;
constexpr int fatal[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP};
struct sigaction oldActions[std::size(fatal)];

void writeError(const char* text) { [[maybe_unused]] ssize_t done = write(STDERR_FILENO, text, std::strlen(text)); }

void onFatal(int signal) {
    unsigned next = load(crashNext);
    for (unsigned i = next > crashLines ? next - crashLines : 0; i < next; ++i) {
        writeError(crashText[i % crashLines]);
        writeError("\n");
    }
    if (userName[0]) {
        writeError(userName);
        writeError(": ");
        writeError(userNote);
        writeError("\n");
    }
    if (CrashCallback callback = load(crashCallback)) callback(signal);
    for (size_t i = 0; i < std::size(fatal); ++i)
        if (fatal[i] == signal) sigaction(signal, &oldActions[i], nullptr);
    raise(signal);
}
} // namespace

CrashCallback setCrashCallback(CrashCallback callback) {
    CrashCallback old = exchange(crashCallback, callback);
    if (!callback == !old) return old;
    for (size_t i = 0; i < std::size(fatal); ++i)
        if (callback) {
            struct sigaction action {};
            action.sa_handler = onFatal;
            sigaction(fatal[i], &action, &oldActions[i]);
        } else
            sigaction(fatal[i], &oldActions[i], nullptr);
    return old;
}

void crashLog(const char* text) {
    unsigned at = addFetch(crashNext, 1u) - 1;
    std::snprintf(crashText[at % crashLines], crashLineRoom, "%s", text);
}

void userInformation(const char* user, const char* information) {
    std::snprintf(userName, sizeof userName, "%s", user ? user : "");
    std::snprintf(userNote, sizeof userNote, "%s", information ? information : "");
}

// Leaks. The table is plain memory of its own, since it is written while blocks are made.

namespace {
struct Noted {
    void* block;
    const char* type;
    size_t size;
};
struct LeakTable {
    int lock = 0;
    Noted* rows = nullptr;
    size_t capacity = 0, used = 0, live = 0; // `used` counts graves too
    bool logging = false;
} leaks;
void* const grave = reinterpret_cast<void*>(1);

struct LeakGuard {
    LeakGuard() { spinLock(leaks.lock); }
    ~LeakGuard() { spinUnlock(leaks.lock); }
};

Noted* place(Noted* rows, size_t capacity, void* block) {
    size_t at = (reinterpret_cast<uintptr_t>(block) >> 4) * 0x9E3779B97F4A7C15u >> 20;
    for (;; ++at) {
        Noted& row = rows[at & (capacity - 1)];
        if (!row.block || row.block == block) return &row;
    }
}

bool grow() {
    size_t capacity = leaks.capacity ? leaks.live * 4 > leaks.capacity ? leaks.capacity * 2 : leaks.capacity : 4096;
    auto rows = static_cast<Noted*>(std::calloc(capacity, sizeof(Noted)));
    if (!rows) return false;
    for (size_t i = 0; i < leaks.capacity; ++i)
        if (leaks.rows[i].block && leaks.rows[i].block != grave)
            *place(rows, capacity, leaks.rows[i].block) = leaks.rows[i];
    std::free(leaks.rows);
    leaks.rows = rows;
    leaks.capacity = capacity;
    leaks.used = leaks.live;
    return true;
}

void noteMade(void* block, size_t size, const char* type) {
    LeakGuard guard;
    if (leaks.logging) std::fprintf(stderr, "made %p, %zu, %s\n", block, size, type ? type : "");
    if ((leaks.used + 1) * 2 > leaks.capacity && !grow()) return;
    *place(leaks.rows, leaks.capacity, block) = {block, type, size};
    ++leaks.used;
    ++leaks.live;
}
void noteGone(void* block) {
    LeakGuard guard;
    if (leaks.logging) std::fprintf(stderr, "gone %p\n", block);
    if (!leaks.rows) return;
    Noted* row = place(leaks.rows, leaks.capacity, block);
    if (!row->block) return;
    row->block = grave;
    --leaks.live;
}
const AllocHooks leakHooks{[](size_t) { return true; }, noteMade, noteGone, nullptr};
} // namespace

void trackLeaks(bool on) {
    if (on) {
        setAllocHooks(&leakHooks);
        return;
    }
    if (allocHooks() == &leakHooks) setAllocHooks(nullptr);
    LeakGuard guard;
    std::free(leaks.rows);
    leaks.rows = nullptr;
    leaks.capacity = leaks.used = leaks.live = 0;
}

long liveBlocks() {
    if (allocHooks() != &leakHooks) return -1;
    LeakGuard guard;
    return long(leaks.live);
}

/// Blocks of a type together, then those without one by size.
static int orderNoted(const void* a, const void* b) {
    auto first = static_cast<const Noted*>(a), second = static_cast<const Noted*>(b);
    if (first->type != second->type) {
        if (!first->type || !second->type) return first->type ? -1 : 1;
        int order = std::strcmp(first->type, second->type);
        return order ? order : first->type < second->type ? -1 : 1;
    }
    return first->type ? 0 : (first->size > second->size) - (first->size < second->size);
}

void reportLeaks(void (*line)(void*, const char*, long), void* context) {
    Noted* rows;
    size_t count = 0;
    {
        LeakGuard guard;
        rows = static_cast<Noted*>(std::calloc(leaks.live + 1, sizeof(Noted)));
        for (size_t i = 0; rows && i < leaks.capacity; ++i)
            if (leaks.rows[i].block && leaks.rows[i].block != grave) rows[count++] = leaks.rows[i];
    }
    if (count) std::qsort(rows, count, sizeof(Noted), orderNoted);
    for (size_t from = 0, to = 0; from < count; from = to) {
        while (to < count && orderNoted(&rows[from], &rows[to]) == 0) ++to;
        char bySize[48];
        std::snprintf(bySize, sizeof bySize, "block of %zu bytes", rows[from].size);
        line(context, rows[from].type ? rows[from].type : bySize, long(to - from));
    }
    std::free(rows);
}

void logMemory(bool on) {
    LeakGuard guard;
    leaks.logging = on;
}

// Figures

ularge peakMemory() {
    rusage usage;
    return getrusage(RUSAGE_SELF, &usage) == 0 ? ularge(usage.ru_maxrss) * 1024 : 0;
}

void memoryState(const char* label) {
    struct mallinfo2 info = mallinfo2();
    std::fprintf(stderr, "%s: used %zu, free %zu, peak %llu\n", label ? label : "memory", info.uordblks + info.hblkhd,
                 info.fordblks, peakMemory());
}

void drain() { malloc_trim(0); }
void purgePools() {
    emptyThreadCache();
    drain();
}

void systemVersion(char* out, size_t room) {
    utsname name;
    if (uname(&name) == 0)
        std::snprintf(out, room, "%s %s %s", name.sysname, name.release, name.machine);
    else if (room)
        out[0] = 0;
}

static void (*debugFunction)(int) = nullptr;
void setDebugFunction(void (*function)(int)) { storeRelease(debugFunction, function); }
bool callDebug(int code) {
    auto function = loadAcquire(debugFunction);
    if (function) function(code);
    return function != nullptr;
}

} // namespace toolkit
