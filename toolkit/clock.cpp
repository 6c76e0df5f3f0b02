#include "toolkit/clock.h"

#include "toolkit/atomic.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <unistd.h>

namespace toolkit {

static large nanos(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return large(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

/// When the process began, on the boot-time clock in nanoseconds, by the kernel's own record; now, if it can't be read.
static large readStart() {
    large start = nanos(CLOCK_BOOTTIME);
    std::FILE* file = std::fopen("/proc/self/stat", "re");
    if (!file) return start;
    char text[1024];
    size_t length = std::fread(text, 1, sizeof text - 1, file);
    std::fclose(file);
    text[length] = 0;
    // Field 22 holds the start in clock ticks; the name in field 2 may contain blanks, so count from its bracket.
    const char* at = std::strrchr(text, ')');
    unsigned long long ticks = 0;
    if (!at || std::sscanf(at + 1, " %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %*d %*d %llu",
                           &ticks) != 1)
        return start;
    large begun = large(ticks * (1'000'000'000ull / (unsigned long long)(sysconf(_SC_CLK_TCK))));
    return begun < start ? begun : start;
}

static large startNanos() {
    static large begun = 0;
    large known = load(begun);
    if (known) return known;
    large none = 0, found = readStart();
    return compareExchange(begun, none, found ? found : 1) ? found : none;
}

large processClockNanos() { return nanos(CLOCK_BOOTTIME) - startNanos(); }
large processClock() { return processClockNanos() / 1'000'000; }
large wallClock() { return nanos(CLOCK_REALTIME) / 1'000'000; }

large processStart() {
    static large start = 0;
    large known = load(start);
    if (known) return known;
    large none = 0, found = wallClock() - processClock();
    return compareExchange(start, none, found) ? found : none;
}

ularge clockTicks() {
#if defined(__x86_64__)
    return __builtin_ia32_rdtsc();
#else
    return ularge(nanos(CLOCK_MONOTONIC));
#endif
}

int zoneMinutes(large wallMillis) {
    time_t seconds = time_t(wallMillis / 1000 - (wallMillis % 1000 < 0));
    tm local;
    return localtime_r(&seconds, &local) ? int(local.tm_gmtoff / 60) : 0;
}

} // namespace toolkit
