#include "core/debug.h"

#include "core/state.h"
#include "text/format.h"
#include "toolkit/atomic.h"

#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <execinfo.h>

namespace orv {
CoreState coreState;
}

namespace {
using Sink = void (*)(const char*);
Sink debugSink = nullptr;

Sink currentSink() {
    if (Sink sink = toolkit::loadAcquire(debugSink)) return sink;
#ifndef NDEBUG
    return [](const char* line) {
        std::fputs(line, stderr);
        std::fputc('\n', stderr);
    };
#else
    return nullptr;
#endif
}
} // namespace

void zsetdebugsink(void (*sink)(const char* line)) { toolkit::storeRelease(debugSink, sink); }

bool zdebugasked() { return currentSink() != nullptr; }

void zdebug(const char* format, ...) {
    Sink sink = currentSink();
    if (!sink) return;
    char line[1024];
    var_arg arguments;
    va_start(arguments.list, format);
    orv::aformat(line, int(sizeof line), format, &arguments);
    va_end(arguments.list);
    if (size_t length = std::strlen(line); length && line[length - 1] == '\n') line[length - 1] = 0;
    sink(line);
}

void orv_assert(const char*, const char* file, int line) {
    zdebug("Assertion failed at: %s, %d", file, line);
    __builtin_trap();
}

void orv_assertt(const char* text, const char* file, int line) {
    zdebug("Failed: %s", text);
    orv_assert(text, file, line);
}

void orv_assertw(const char* text1, const char* text2, const char* file, int line) {
    zdebug("Failure in: %s: \"%s\"", text1, text2);
    orv_assert(text1, file, line);
}

void logstack(const char* label, const void* p, int depth) {
    if (!toolkit::load(orv::coreState.coreLoaded) || !currentSink()) return;
    zdebug("%s: %p", label, p);
    constexpr int most = 64;
    void* frames[most + 2];
    int count = backtrace(frames, most + 2), first = 1;
    // In front of the caller stands this function's own frame, under a sanitizer also that of its `backtrace`.
    while (first < count && frames[first - 1] != __builtin_return_address(0)) ++first;
    first = first < count ? first - 1 : 1;
    int last = depth > 0 && depth < count - first ? first + depth : count;
    for (int i = first; i < last; ++i) {
        Dl_info place{};
        dladdr(frames[i], &place);
        const char* name = place.dli_sname ? place.dli_sname : place.dli_fname ? place.dli_fname : "?";
        const void* start = place.dli_sname ? place.dli_saddr : place.dli_fbase;
        large offset = static_cast<char*>(frames[i]) - static_cast<const char*>(start);
        zdebug("  %p %s + %lld", frames[i], name, offset);
    }
}
