#pragma once

#include "object/ZObjectData.h"

namespace orv {

/// A walk through an object, its delegates, and theirs, each once. It keeps its own stack, so that chains may be of any
/// length, and holds a reference to each delegate that it is at; lists may change meanwhile, and no lock is held
/// between steps. Without memory it ends early.
class DelegateWalk {
public:
    /// Which delegates come ahead of an object, and which behind it, in this order; whether its parent comes last, if
    /// `parentDelegate` has `Dispatch`.
    struct Plan {
        uint before;
        uint behind[2];
        bool parents;
    };

    DelegateWalk(ZObject* root, const Plan& plan) : plan(plan) { push(root); }
    ~DelegateWalk();
    DelegateWalk(const DelegateWalk&) = delete;

    /// The next object in turn, to be used until the next call; null at the end.
    ZObject* next();
    /// The delegates that come behind the object in turn, and its parent, are left out.
    void skipRest() { frames[depth - 1].phase = Done; }
    /// Whether the walk has come to its end for lack of memory.
    bool outOfMemory() const { return failed; }

private:
    enum Phase : byte { Before, Self, Behind, BehindLast, Parent, Done };
    struct Frame {
        ZObject* object;
        const ZObject* last; ///< the delegate that was answered last; only compared
        uint index;
        uint changed; ///< `ObjectData::delegatesChanged` as the index was worked out
        Phase phase;
    };
    /// Addresses that were seen, by open addressing.
    struct Seen {
        uint mask, count;
        const void** places() { return reinterpret_cast<const void**>(this + 1); }
    };
    static constexpr uint ownFrames = 8;

    bool push(ZObject* object);
    void pop();
    ZObject* step(Frame& frame, uint wanted);
    bool markSeen(const ZObject* object);
    bool growFrames();
    bool growSeen();

    const Plan plan;
    Frame* frames = own;
    uint depth = 0, room = ownFrames;
    bool failed = false;
    uint seenCount = 0;
    Seen* seen = nullptr;
    const void* firstSeen[ownFrames];
    Frame own[ownFrames];
};

/// The turn of one object in a walk, which calls the object's virtual operation. Where that comes to the operation of
/// `ZObject`, which takes the turn, the object answers for itself alone, and the walk goes on to its delegates.
class WalkTurn {
public:
    enum Operation : byte { Method, Multimethod, Dispatch, DispatchArguments };

    WalkTurn(const ZObject* object, Operation operation, const ZSelector& name);
    ~WalkTurn();
    WalkTurn(const WalkTurn&) = delete;

    /// Whether it is the turn of this object. Calls that it makes in turn are calls like any other.
    static bool take(const ZObject* object, Operation operation, const ZSelector& name);
    /// False if the operation was overridden, and answered for the delegates as well.
    bool taken() const { return !object; }

private:
    const ZObject* object;
    const Operation operation;
    const uint name;
    WalkTurn* const outer;
};

} // namespace orv
