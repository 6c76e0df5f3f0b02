#pragma once

#include "toolkit/types.h"

/// What the library keeps for each thread, in one record without construction or destruction.
namespace toolkit {

struct EpochSlot;

/// A read lock that the running thread holds.
struct HeldRead {
    TLockId lock;
    int count;
};

struct ThreadState {
    static constexpr int heldReadRoom = 8;

    int failCount = 0;                ///< failures since the last recovery
    int failMark = 0;                 ///< failures acknowledged
    unsigned recoveries = 0;          ///< how often the two were set back to 0
    int observer = -1;                ///< belongs to whoever observes locks; -1 until it is set
    int heldReads = 0;                ///< entries of `held` in use, then of `moreHeld`, oldest first
    HeldRead held[heldReadRoom] = {}; ///< read locks held now
    HeldRead* moreHeld = nullptr;     ///< the rest of them: a counted block, there while it is needed
    int moreHeldRoom = 0;
    unsigned number = 0;             ///< a number of this thread, from 1; 0 until it is asked for
    bool registered = false;         ///< the end callbacks of this thread are set up
    const char* typeLabel = nullptr; ///< name of the type under construction, for leak reports
    EpochSlot* epochSlot = nullptr;  ///< where the thread announces its epoch guards; null until its first
    int epochDepth = 0;              ///< epoch guards open now
};

/// Initial-exec and constant-initialised: an access is one load relative to the thread pointer.
#define ORV_THREAD_LOCAL constinit thread_local __attribute__((tls_model("initial-exec")))
inline ORV_API ORV_THREAD_LOCAL ThreadState threadState{};

inline constexpr uint threadNumberLimit = 1u << 22; ///< no process has as many threads at once

/// Gives the running thread its number and calls the begin callbacks; answers the number.
ORV_API uint registerThread();
/// The number of the running thread, from 1; no two living threads share one, and a number comes back as late as can
/// be.
inline uint threadNumber() {
    uint known = threadState.number;
    return ORV_LIKELY(known != 0) ? known : registerThread();
}

/// Called on each thread that uses the library: `begins` when it first takes a lock or asks for its number, `ends` when
/// it ends. A thread that ran before the callbacks were set gets no `begins`; the main thread gets no `ends`, since it
/// ends with the process. No lock is held during a call. Either may be null.
struct ThreadHooks {
    void* context;
    void (*begins)(void* context);
    void (*ends)(void* context);
};
/// Sets a record of callbacks, which has to outlive every call; several can be set. False when all places are taken.
/// Ends are called in the reverse order of begins.
ORV_API bool addThreadHooks(const ThreadHooks* hooks);
/// Removes it; false if it wasn't set. A call that has begun on another thread may still be running.
ORV_API bool removeThreadHooks(const ThreadHooks* hooks);

} // namespace toolkit
