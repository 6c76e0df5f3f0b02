#pragma once

#include "toolkit/types.h"

/// What the library keeps for each thread, in one record without construction or destruction.
namespace toolkit {

/// A read lock that the running thread holds.
struct HeldRead {
    TLockId lock;
    int count;
};

struct ThreadState {
    static constexpr int heldReadRoom = 8;

    int failCount = 0;                ///< failures since the last recovery
    int failMark = 0;                 ///< failures acknowledged
    int observer = -1;                ///< belongs to whoever observes locks; -1 until it is set
    int heldReads = 0;                ///< entries of `held` in use, then of `moreHeld`
    HeldRead held[heldReadRoom] = {}; ///< read locks held now
    HeldRead* moreHeld = nullptr;     ///< the rest of them; freed at the thread's end
    int moreHeldRoom = 0;
    unsigned number = 0;             ///< a small number of this thread, from 1; 0 until it is asked for
    bool registered = false;         ///< the end callbacks of this thread are set up
    const char* typeLabel = nullptr; ///< name of the type under construction, for leak reports
};

/// Initial-exec and constant-initialised: an access is one load relative to the thread pointer.
#define ORV_THREAD_LOCAL constinit thread_local __attribute__((tls_model("initial-exec")))
inline ORV_API ORV_THREAD_LOCAL ThreadState threadState{};

} // namespace toolkit
