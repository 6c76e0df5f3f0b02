#include "core/hashsize.h"

#include "toolkit/clock.h"
#include "toolkit/thread.h"

namespace {
ORV_THREAD_LOCAL uint64_t generator = 0;

/// The next value of a splitmix sequence (Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014).
uint64_t next() {
    if (!generator) generator = uint64_t(reinterpret_cast<uintptr_t>(&generator)) ^ toolkit::clockTicks();
    uint64_t z = generator += 0x9E3779B97F4A7C15u;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
    z = (z ^ z >> 27) * 0x94D049BB133111EBu;
    return z ^ z >> 31;
}
} // namespace

uint orv_calchashscale() {
    uint r = uint(next() % 4191);
    return r % 2 == 0 ? r + 3 : r + 4;
}
