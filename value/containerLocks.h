#pragma once

#include "core/memlock.h"

namespace orv {

/// The lock that the block of a container can carry (`block` of the class tells which): it guards the block among those
/// who share it, and goes with it. An empty container has no block, and these answer false then.
template <class Container> class ContainerLocks {
public:
    bool makeLock(bool spinning, bool recursive) const {
        return makelock(const_cast<void*>(block()), spinning, recursive);
    }
    bool lockable() const { return ::lockable(block()); }
    /// Whether this thread could take it alone now without waiting.
    bool canLock() const { return canlockmem(block()); }
    /// Takes it alone.
    bool lock() const { return lockmem(block()); }
    bool tryLock() const { return trylockmem(block()); }
    bool readLock() const { return readlockmem(block()); }
    bool tryReadLock() const { return tryreadlockmem(block()); }
    bool writeLock() const { return lockmem(block()); }
    bool tryWriteLock() const { return trywritelockmem(block()); }
    bool unlock() const { return unlockmem(block()); }
    bool setSpinLock(bool on) const { return setspinlock(block(), on); }

private:
    const void* block() const { return static_cast<const Container*>(this)->block(); }
};

} // namespace orv
