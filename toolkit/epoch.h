#pragma once

#include "toolkit/atomic.h"
#include "toolkit/thread.h"

/// Epochs: what is published in a pointer is read without a lock and without writing a shared word, and is freed once
/// no reader can hold it any more.
///
/// A reader opens an `EpochGuard`, loads the pointer, and uses what it finds until the guard closes. A writer
/// unpublishes an object (it stores another pointer) and then retires it.
///
/// Why that is safe: a guard announces itself by an atomic exchange in a slot of its own thread, and who looks for
/// readers visits each slot by an atomic read-modify-write too. The two are ordered, whichever comes first. Either the
/// visitor sees the guard and waits for it, or the guard has synchronised with the visitor, and its loads find what was
/// published by then. The pointer itself needs no more than an acquiring load, on any machine.
namespace toolkit {

/// Where a thread announces its guards. Slots are for ever; that of a thread that has ended goes to another.
struct alignas(64) EpochSlot {
    ularge announced = 0; ///< the epoch in which the outermost guard opened; 0 while there is none
    int taken = 0;        ///< some thread has it
    EpochSlot* next = nullptr;
};

/// The running epoch, from 1. It changes only when retired objects are looked through.
extern ORV_API ularge epochNow;

/// The ways of a thread's first guard, and of those for whose slot there is no memory.
ORV_API void epochEnterFirst();
ORV_API void epochLeaveShared();
/// Gives the slot of the running thread back; called when it ends.
void epochThreadEnds(ThreadState& state);

/// While one is open, nothing that the thread loaded from a published pointer behind its opening is reclaimed. Guards
/// nest at the cost of a count. They belong to the thread that opened them, should be short, and are never held while
/// waiting: retired objects of all threads pile up meanwhile. Never fails: without memory for a slot the guard counts
/// in a shared word.
class [[nodiscard]] EpochGuard {
public:
    EpochGuard() {
        ThreadState& state = threadState;
        if (state.epochDepth++ != 0) return;
        if (ORV_LIKELY(state.epochSlot != nullptr))
            exchange(state.epochSlot->announced, loadAcquire(epochNow));
        else
            epochEnterFirst();
    }
    ~EpochGuard() {
        ThreadState& state = threadState;
        if (--state.epochDepth != 0) return;
        if (ORV_LIKELY(state.epochSlot != nullptr))
            storeRelease(state.epochSlot->announced, 0);
        else
            epochLeaveShared();
    }
    EpochGuard(const EpochGuard&) = delete;
    EpochGuard& operator=(const EpochGuard&) = delete;

    /// Whether the running thread has a guard open.
    static bool open() { return threadState.epochDepth != 0; }
};

/// What an object that will be retired holds, as a base or a member: retiring it then needs no memory. Only this layer
/// touches it; readers may go on using the rest of the object.
struct EpochLink {
    EpochLink* next = nullptr;
    void (*reclaim)(EpochLink* link) = nullptr;
};

/// Hands over an object that was unpublished before: `reclaim` is called once, on any thread, when all guards that were
/// open at this call have closed, and those opened before the next look at the readers. Never waits and needs no
/// memory. Every so many calls it looks and reclaims what was retired earlier, also inside a guard of the caller: so
/// the caller holds no lock that a reclaim function takes; who does calls `epochDefer`. A reclaim function is called
/// without any lock of this layer; it may open guards and retire more.
ORV_API void epochRetire(EpochLink* link, void (*reclaim)(EpochLink* link));
/// The same under a lock: only queues the object. Another `epochRetire` or `epochCollect` sees to it.
ORV_API void epochDefer(EpochLink* link, void (*reclaim)(EpochLink* link));
/// The form for objects without a link. It allocates one; false when there is no memory: then nothing has happened and
/// the object is still the caller's.
ORV_API bool epochRetire(void* object, void (*reclaim)(void* object));

/// Reclaims what can be reclaimed now, with no lock of the caller held; a look at every thread's slot. Does nothing
/// inside a reclaim function, or while another thread is at it.
ORV_API void epochCollect();
/// Reclaims everything, what reclaim functions retire included. For the end of a subsystem whose reclaim functions need
/// what ends next, before code is unloaded, and for the end of the library; no guard is open then, on any thread. False
/// if something is left: a guard was open, or the caller is a reclaim function.
ORV_API bool epochDrain();
/// Objects retired and not reclaimed yet; for tests and reports.
ORV_API int epochWaiting();

/// A published pointer. The objects are owned by whoever publishes; a reader borrows under a guard.
template <class T> class EpochPtr {
public:
    constexpr EpochPtr(T* first = nullptr) : object(first) {}
    EpochPtr(const EpochPtr&) = delete;
    EpochPtr& operator=(const EpochPtr&) = delete;

    /// What is published now; to be used until the guard closes.
    T* load() const { return loadAcquire(object); }
    /// Publishes another object and answers the old one, to be retired.
    [[nodiscard]] T* publish(T* fresh) { return exchange(object, fresh); }
    /// The same if `expected` is still published; false, with nothing changed, if it isn't.
    [[nodiscard]] bool publishOver(T* expected, T* fresh) { return compareExchange(object, expected, fresh); }

private:
    T* object;
};

} // namespace toolkit
