#pragma once

#include "core/ZSpinLock.h"
#include "core/forward.h"

/// A recursive read/write lock, named by a counted handle: a copy is a second name for the same lock. Handle 0 is no
/// lock: with locking off, nothing is ever held. A handle whose lock has gone does nothing and answers false.
///
/// It is held by one thread alone (`lock`), or by several that read (`readLock`). Both recurse. Threads that want it
/// alone go first, but a thread that reads already may read again past them. The only reader may take it alone on top,
/// and waits until it is the only one; two readers that do so at once would wait for each other for ever, which a
/// development build reports. Whoever has it alone may also read. `unlock` gives up the thread's newest hold.
///
/// Locks can be made once the library is bound, so none may be made before: a `ZLock` of static storage has handle 0.
class ORV_API ZLock {
public:
    using ZRelocatable = void;

    // Lifetime

    /// A new lock, with both flags true, if the library is bound and locking allowed; raises a failure when there is no
    /// memory.
    ZLock();
    /// The same if `wanted`, else no lock.
    explicit ZLock(bool wanted);
    /// A further name of that lock; none if the handle isn't good.
    explicit ZLock(TLockId id);
    ZLock(const ZLock& other);
    ZLock(ZLock&& other) noexcept : id(other.id) { other.id = 0; }
    ~ZLock() { remove(true); }
    ZLock& operator=(const ZLock& other);

    /// Makes a lock unless there is one, and answers whether there is. `spinning`: waiting threads try for a short
    /// while before they sleep. `recursive`: whoever holds it alone may take it again.
    bool create(bool spinning, bool recursive);
    void init(bool spinning, bool recursive) { create(spinning, recursive); }
    void init(bool spinning) { create(spinning, true); }
    /// Gives up the lock, if any, and makes a new one. False when there is no memory: there is no lock then.
    bool reset(bool spinning, bool recursive);
    /// Gives up this name of the lock. With the last one the lock goes, once nobody holds it. `mayBeHeld` false says
    /// that nobody does: a development build ends if somebody does.
    void remove(bool mayBeHeld);
    void assign(const ZLock& other);
    /// Becomes a name of that lock; of none, if the handle isn't good.
    void setId(TLockId wanted);
    TLockId getId() const { return id; }
    bool isValid() const { return id != 0; }
    /// By handle.
    int compare(const ZLock& other) const { return (id > other.id) - (id < other.id); }

    // Locking

    /// Takes it alone; waits for it.
    void lock() const { toolkit::lockAlone(id); }
    /// With `tryOnly`, takes it only if that needs no waiting, and answers whether it is held; else waits and answers
    /// true. True without a lock.
    bool lock(bool tryOnly) const;
    void readLock() const { toolkit::lockShared(id); }
    /// False without a lock.
    bool tryLock() const { return toolkit::tryLockAlone(id); }
    bool tryReadLock() const { return toolkit::tryLockShared(id); }
    /// Gives up the newest hold of this thread; nothing if it has none.
    void unlock() const { toolkit::unlock(id); }
    /// How often it is held: all nested holds of the thread that has it alone, else the number of reading threads.
    int lockCount() const;
    /// The number of the thread that has it alone; 0 for none.
    uint thread() const;

    // What observers and logs tell of it

    /// The label, null for none; `index`, which may be null, gets its index.
    const char* getLabel(int* index) const;
    /// The text isn't copied: it has to outlive the lock.
    void setLabel(const char* label, int index);
    /// Slot 0: the observer's own index, -1 until it is set; 1: not to be observed; 2: call stacks are to be captured.
    /// -1 for other slots, and without a lock.
    int getIndex(int slot) const;
    void setIndex(int slot, int value);
    /// A running number of the lock; 0 without one.
    uint getNumber() const;
    /// While on, every take and release is written to the debug log.
    void setLogging(bool on);
    /// Without a lock, makes one.
    void setSpinning(bool on);

    // Shared locks: for objects that can do with a lock out of a fixed set

    /// Makes the set; nothing if there is one. False when there is no memory.
    static bool open(int count);
    static void close();
    /// A name of the next lock of the set, round robin; of none while there is no set.
    static ZLock shared();
    /// A name of the lock that a counted block carries; of none if it has none.
    static ZLock object(const void* block);

    // Process-wide locks, made when first wanted and, as all of these, doing nothing with locking off

    static void lockGPU();
    static void unlockGPU();
    static void lockOpenGL();
    static void unlockOpenGL();
    /// Takes the OpenGL lock and marks a region in which this thread may use OpenGL; regions nest.
    static void enterOpenGL();
    static void exitOpenGL();
    /// Whether this thread is in such a region.
    static bool openGLRegion();
    static void lockPrinter();
    static void unlockPrinter();

private:
    TLockId id = 0;
};

/// Holds a lock that has `readLock` and `unlock` for reading for a scope.
template <class L> class [[nodiscard]] ZScopedReadLock {
public:
    explicit ZScopedReadLock(L& held) : lock(held) { lock.readLock(); }
    ~ZScopedReadLock() { lock.unlock(); }
    ZScopedReadLock(const ZScopedReadLock&) = delete;

private:
    L& lock;
};
