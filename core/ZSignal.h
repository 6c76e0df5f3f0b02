#pragma once

#include "core/forward.h"

/// A signal that threads wait for, named by a counted handle: a copy is a second name for the same signal. It is either
/// set or not; whoever is let through clears it. Handle 0 is no signal: nothing waits and everything answers false.
class ORV_API ZSignal {
public:
    using ZRelocatable = void;

    /// A new signal, not set, if the library is bound; raises a failure when there is no memory.
    ZSignal();
    /// The same if `wanted`, bound or not; else none.
    explicit ZSignal(bool wanted);
    /// A further name of that signal; none if the handle isn't good.
    explicit ZSignal(TLockId id);
    ZSignal(const ZSignal& other);
    ZSignal(ZSignal&& other) noexcept : id(other.id) { other.id = 0; }
    /// With the last name, whoever still waits leaves with false.
    ~ZSignal();
    ZSignal& operator=(const ZSignal& other) {
        assign(other);
        return *this;
    }

    void assign(const ZSignal& other);
    void setId(TLockId wanted);
    TLockId getId() const { return id; }
    bool isValid() const { return id != 0; }
    /// By handle: -1, 0 or 1.
    int compare(const ZSignal& other) const { return (id > other.id) - (id < other.id); }

    /// Wakes the thread that has waited longest; if nobody waits, the signal stays set for the next.
    void send() const;
    /// Wakes all who wait now. With `leaveSet` the signal is also left set, for one who comes later.
    void broadcast(bool leaveSet) const;
    /// Waits for at most `timeout` milliseconds, -1 for ever; 0 asks whether it is set, and clears it. True if
    /// signalled; false when the time is up, and at once after `release`.
    bool wait(int timeout) const;
    /// For good: all who wait, and all who come later, leave with false.
    void release() const;
    bool isReleased() const;

private:
    TLockId id = 0;
};
