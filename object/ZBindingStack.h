#pragma once

#include "object/forward.h"
#include "toolkit/thread.h"

namespace orv {
inline ORV_API ORV_THREAD_LOCAL ZBindingStack* bindingStackTop{};
}

/// A firing under way on this thread: it stands on the stack of whoever fires. The masks are filters: what isn't in
/// them is in no frame below either.
struct ORV_API ZBindingStack {
    ZBindingStack(const ZObject* object, const ZMethod* method)
        : prev(orv::bindingStackTop), method(method), object(object), methodMask(ularge(uintptr_t(method))),
          objectMask(ularge(uintptr_t(object))), depth(prev ? prev->depth + 1 : 1) {
        if (prev) {
            methodMask |= prev->methodMask;
            objectMask |= prev->objectMask;
        }
        orv::bindingStackTop = this;
    }
    ~ZBindingStack() { orv::bindingStackTop = prev; }
    ZBindingStack(const ZBindingStack&) = delete;

    /// Whether the method of the object is being fired on this thread: calling it again would be a cycle.
    static bool checkCycle(const ZMethod* method, const ZObject* object) {
        const ularge methodBits = uintptr_t(method), objectBits = uintptr_t(object);
        for (const ZBindingStack* frame = orv::bindingStackTop; frame; frame = frame->prev) {
            if ((frame->methodMask & methodBits) != methodBits || (frame->objectMask & objectBits) != objectBits)
                return false;
            if (frame->method == method && frame->object == object) return true;
        }
        return false;
    }
    /// The same for the destination of a binding.
    static bool checkCycle(const ZBinding* binding);
    /// Whether this thread runs that binding.
    static bool runs(const ZBinding* binding) {
        for (const ZBindingStack* frame = orv::bindingStackTop; frame; frame = frame->prev)
            if (frame->running == binding) return true;
        return false;
    }
    /// An object goes: firings of it end after the call that they are at.
    static void forget(const ZObject* object) {
        for (ZBindingStack* frame = orv::bindingStackTop; frame; frame = frame->prev)
            if (frame->object == object) frame->valid = 0;
    }

    ZBindingStack* prev;
    const ZMethod* method;
    const ZObject* object;
    void* data = nullptr;      ///< where the answer goes; null where nobody asks for one
    ZMetaType* type = nullptr; ///< of the answer, once it has been asked for
    ularge methodMask;
    ularge objectMask;
    const ZBinding* running = nullptr;
    int depth;
    byte valid = 1; ///< the object is there
    byte answered = 0;
};
