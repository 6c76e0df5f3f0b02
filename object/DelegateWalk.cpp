#include "object/DelegateWalk.h"

#include "core/memory.h"
#include "toolkit/thread.h"

#include <cstring>

namespace {
ORV_THREAD_LOCAL orv::WalkTurn* currentTurn = nullptr;
} // namespace

namespace orv {

WalkTurn::WalkTurn(const ZObject* object, Operation operation, const ZSelector& name)
    : object(object), operation(operation), name(name.key()), outer(currentTurn) {
    currentTurn = this;
}
WalkTurn::~WalkTurn() { currentTurn = outer; }
bool WalkTurn::take(const ZObject* object, Operation operation, const ZSelector& name) {
    WalkTurn* turn = currentTurn;
    if (ORV_LIKELY(!turn) || turn->object != object || turn->operation != operation || turn->name != name.key())
        return false;
    turn->object = nullptr;
    return true;
}

DelegateWalk::~DelegateWalk() {
    while (depth) pop();
    if (frames != own) zfree(frames);
    zfree(seen);
}

ZObject* DelegateWalk::next() {
    while (depth) {
        Frame& frame = frames[depth - 1];
        const Phase phase = frame.phase;
        if (phase == Self) {
            frame.phase = Behind;
            frame.index = 0;
            frame.last = nullptr;
            return frame.object;
        }
        if (phase == Done) {
            pop();
            continue;
        }
        ZObject* found = nullptr;
        if (phase == Parent) {
            frame.phase = Done;
            ZObject* above = frame.object->getParent();
            if (plan.parents && above && (ObjectData::at(frame.object).parentDelegate & ZObject::Dispatch))
                found = static_cast<ZObject*>(above->retain());
        } else {
            const uint wanted = phase == Before ? plan.before : plan.behind[phase - Behind];
            found = step(frame, wanted);
            if (!found) {
                frame.phase = Phase(phase + 1);
                frame.index = 0;
                frame.last = nullptr;
            }
        }
        if (found && !push(found)) found->release();
        if (failed) return nullptr;
    }
    return nullptr;
}

/// The next delegate with one of the wanted bits, retained; null behind the last.
ZObject* DelegateWalk::step(Frame& frame, uint wanted) {
    ObjectData& data = ObjectData::at(frame.object);
    if (!wanted || !data.has(ObjectData::Delegates)) return nullptr;
    ObjectRead held(data);
    const ZArrayT<ZObject*>& delegates = data.delegates;
    const uint changed = toolkit::load(data.delegatesChanged);
    if (frame.last && frame.changed != changed) {
        const int at = delegates.indexOf(const_cast<ZObject*>(frame.last));
        if (at >= 0)
            frame.index = uint(at) + 1;
        else if (frame.index)
            --frame.index;
    }
    frame.changed = changed;
    for (; frame.index < delegates.count(); ++frame.index) {
        ZObject* delegate = delegates.data()[frame.index];
        if (!(toolkit::load(ObjectData::at(delegate).delegateType) & wanted)) continue;
        ++frame.index;
        frame.last = delegate;
        if (delegate->retain()) return delegate;
        --frame.index;
    }
    return nullptr;
}

/// Takes a reference over. False for an object that had its turn, and without memory.
bool DelegateWalk::push(ZObject* object) {
    if (!markSeen(object) || (depth == room && !growFrames())) return false;
    frames[depth++] = {object, nullptr, 0, 0, plan.before ? Before : Self};
    return true;
}
void DelegateWalk::pop() {
    // The root is the caller's.
    ZObject* left = frames[--depth].object;
    if (depth) left->release();
}

bool DelegateWalk::markSeen(const ZObject* object) {
    if (seenCount < ownFrames && !seen) {
        for (uint i = 0; i < seenCount; ++i)
            if (firstSeen[i] == object) return false;
        firstSeen[seenCount++] = object;
        return true;
    }
    if ((!seen || seen->count * 4 >= seen->mask * 3) && !growSeen()) return false;
    uint at = uint(uintptr_t(object) >> 4) * 0x9E3779B1u;
    for (at >>= 7; seen->places()[at & seen->mask]; ++at)
        if (seen->places()[at & seen->mask] == object) return false;
    seen->places()[at & seen->mask] = object;
    ++seen->count;
    return true;
}
bool DelegateWalk::growSeen() {
    const uint places = seen ? (seen->mask + 1) * 2 : 64;
    auto fresh = static_cast<Seen*>(toolkit::allocZeroedBlock(sizeof(Seen) + size_t(places) * sizeof(void*)));
    if (!fresh) {
        failed = true;
        return false;
    }
    fresh->mask = places - 1;
    auto enter = [&](const void* object) {
        uint at = uint(uintptr_t(object) >> 4) * 0x9E3779B1u;
        for (at >>= 7; fresh->places()[at & fresh->mask];) ++at;
        fresh->places()[at & fresh->mask] = object;
        ++fresh->count;
    };
    if (seen) {
        for (uint i = 0; i <= seen->mask; ++i)
            if (seen->places()[i]) enter(seen->places()[i]);
    } else {
        for (uint i = 0; i < seenCount; ++i) enter(firstSeen[i]);
    }
    zfree(std::exchange(seen, fresh));
    return true;
}
bool DelegateWalk::growFrames() {
    auto fresh = static_cast<Frame*>(toolkit::allocBlock(size_t(room) * 2 * sizeof(Frame)));
    if (!fresh) {
        failed = true;
        return false;
    }
    std::memcpy(static_cast<void*>(fresh), frames, depth * sizeof(Frame));
    if (frames != own) zfree(frames);
    frames = fresh;
    room *= 2;
    return true;
}

} // namespace orv
