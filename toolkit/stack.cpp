#include "toolkit/stack.h"

#include "toolkit/thread.h"

#include <pthread.h>

namespace toolkit {
namespace {

/// Addresses below this one are the reserve; 1 while it isn't known, 0 where nobody tells.
ORV_THREAD_LOCAL uintptr_t reserveEnd = 1;

uintptr_t findReserve() {
    constexpr size_t most = 256 << 10;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes)) return 0;
    void* low = nullptr;
    size_t size = 0;
    const bool known = pthread_attr_getstack(&attributes, &low, &size) == 0;
    pthread_attr_destroy(&attributes);
    if (!known) return 0;
    return reinterpret_cast<uintptr_t>(low) + (size / 4 < most ? size / 4 : most);
}

} // namespace

bool stackNearlyFull() {
    if (ORV_UNLIKELY(reserveEnd == 1)) reserveEnd = findReserve();
    return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) < reserveEnd;
}

} // namespace toolkit
