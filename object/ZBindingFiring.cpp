#include "core/debug.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/ZMethodBindings.h"
#include "object/ZMethodCall.h"
#include "object/bindingTables.h"
#include "object/methodArguments.h"
#include "toolkit/stack.h"

#include <cstring>

// Firing: the walk over the records of a source, and the calls of their destinations. No lock is held while one is
// called.

using toolkit::load;
using toolkit::loadAcquire;

namespace orv {

/// A method that is being fired, with its arguments in one of two forms, and what comes back.
struct BindingSignal {
    enum Want : byte { Nothing, Number, Address, Value };

    BindingSignal(ZObject* object, const ZMethod* fired, Want want)
        : object(object), method(primary(fired)), want(want), frame(object, method) {
        frame.data = want == Nothing ? nullptr : this;
    }
    BindingSignal(const BindingSignal&) = delete;
    ~BindingSignal() {
        if (created) createdType->releaseInstance(created);
    }

    static const ZMethod* primary(const ZMethod* method) {
        while (const ZMethod* base = method->getBaseMethod()) method = base;
        return method;
    }

    /// True if anything was called.
    bool run();
    /// The answer as the destinations and `callerReturn` have it.
    const ZVariant& answer() const { return frame.answered ? given : result; }
    bool setAnswer(const ZVariant& value);
    void* takeAddress();

    ZObject* object;
    const ZMethod* method;
    const ZVariant* values = nullptr;
    int count = 0;
    var_arg* list = nullptr;
    ZMethodCall* block = nullptr; ///< filled from `list` when the first destination is there
    bool property = false;        ///< the only value is that of a property
    Want want;
    bool called = false;
    bool isLaid = false;

private:
    void walk(const ZObject* source, const ZMethod* listed, int index);
    void walkTypes();
    bool isExpected(const ZBinding& binding, ularge serial, const ZObject* source, const ZMethod* listed,
                    const BindingMark& mark) const;
    bool matchesType(const ZBinding& binding) const;
    void call(const ZBinding& binding);
    bool callOne(const ZBinding& binding, ZObject* target);
    bool callBuilt(const ZBinding& binding, const void* instance, const ZMetaType* type);
    bool laid();
    bool leave(ZBinding& binding, uint seen);
    void keep(const ZVariant& value, bool returns);
    void keepAddress(ZMethodCall& made, const ZMethod* called);

    ZBindingStack frame;
    ularge limit = 0; ///< the last record that takes part
    void* address = nullptr;
    void* created = nullptr;
    ZMetaType* createdType = nullptr;
    ZVariant result, given;
};

bool BindingSignal::run() {
    ZMethodBindings* table = bindingTable();
    if (!table) return false;
    constexpr int harmless = 16;
    if (ORV_UNLIKELY(frame.depth > harmless) && (frame.depth > ZBinding::depthLimit || toolkit::stackNearlyFull())) {
        zdebug("bindings of \"%s\" aren't called: %d firings within each other", method->getSelector().string(),
               frame.depth - 1);
        return false;
    }
    limit = load(table->serials);
    if (!object) {
        walk(nullptr, method, method->getTypeBinding());
        return called;
    }
    if (object->hasBindings()) walk(object, method, ZBinding::first(object, method));
    if (ORV_UNLIKELY(load(typeBindings) > 0) && frame.valid) walkTypes();
    return called;
}

bool BindingSignal::isExpected(const ZBinding& binding, ularge serial, const ZObject* source, const ZMethod* listed,
                               const BindingMark& mark) const {
    return load(binding.src) == source && load(binding.srcMethod) == listed && serial <= limit &&
           mark.isBefore(load(binding.priority), serial);
}

void BindingSignal::walk(const ZObject* source, const ZMethod* listed, int index) {
    ZMethodBindings& table = *bindingTable();
    uint version = loadAcquire(table.version);
    BindingMark mark;
    for (;;) {
        ZBinding* found = table.record(index);
        const ularge serial = found ? loadAcquire(found->serial) : 0;
        if (!found || !isExpected(*found, serial, source, listed, mark)) {
            // The end, unless the list has changed where this stood.
            const uint now = loadAcquire(table.version);
            if (ORV_LIKELY(now == version)) return;
            version = now;
            ZScopedLock held(table.lock);
            index = table.behind(source, listed, mark, limit);
            if (index < 0) return;
            continue;
        }
        ZBinding& binding = *found;
        uint seen = ZBinding::Idle;
        if (!load(binding.enabled)) {
            mark = {load(binding.priority), serial};
            index = load(binding.nextSrc);
            continue;
        }
        if (!toolkit::compareExchange(binding.active, seen, uint(ZBinding::Running))) {
            if (seen & ZBinding::Taking) {
                toolkit::cpuPause();
                continue;
            }
            if (seen & ZBinding::Gone) {
                // Taken out this moment: the list goes on behind it.
                ZScopedLock held(table.lock);
                index = table.behind(source, listed, mark, limit);
                continue;
            }
            if (!ZBindingStack::runs(&binding) && !(seen & ZBinding::Again) &&
                !toolkit::compareExchange(binding.active, seen, seen | ZBinding::Again))
                continue;
            mark = {load(binding.priority), serial};
            index = load(binding.nextSrc);
            continue;
        }
        // A number stands for one record, and for one place of it.
        const bool right = ORV_LIKELY(load(binding.serial) == serial);
        if (right) mark = {load(binding.priority), serial};
        frame.running = &binding;
        if (right && (source || matchesType(binding))) {
            ZObject* const target = load(binding.dst);
            if (ORV_LIKELY(load(binding.direct) && want == Nothing && target)) {
                ZMethod* to = binding.dstMethod;
                if (!ZBindingStack::checkCycle(to, target)) {
                    to->getFunc()(reinterpret_cast<const char*>(target) + binding.dstOffset, to);
                    called = true;
                }
            } else {
                call(binding);
            }
        }
        const int behind = load(binding.nextSrc);
        seen = ZBinding::Running;
        const bool stays =
            ORV_LIKELY(toolkit::compareExchange(binding.active, seen, uint(ZBinding::Idle))) || leave(binding, seen);
        if (ORV_UNLIKELY(!frame.valid)) return;
        if (ORV_LIKELY(stays && right)) {
            index = behind;
            continue;
        }
        ZScopedLock held(table.lock);
        index = table.behind(source, listed, mark, limit);
    }
}

bool BindingSignal::matchesType(const ZBinding& binding) const {
    const ZMetaType* type = object ? object->type() : nullptr;
    return !object || (type && (type == binding.srcType || type->typeOf(binding.srcType)));
}

/// Those for which any instance is a source. A type above may have the method under another record, which the one of
/// the object stands in for.
void BindingSignal::walkTypes() {
    const ZMetaType* type = object->type();
    if (!type) return;
    if (const int first = method->getTypeBinding(); first >= 0) walk(nullptr, method, first);
    constexpr uint room = 16;
    const ZMethod* others[room];
    uint known = 0;
    toolkit::EpochGuard guard;
    auto ask = [&](const ZMetaType* above) {
        if (!load(above->record().boundSources)) return true;
        const ZMethod* other = above->methodType(method->getSelector(), method->getQualifier());
        if (other) other = primary(other);
        if (!other || other == method || other->getTypeBinding() < 0) return true;
        for (uint i = 0; i < known; ++i)
            if (others[i] == other) return true;
        others[known++] = other;
        return known < room;
    };
    if (ask(type)) eachAncestor(type, [&](const Ancestor& above) { return ask(above.type); });
    for (uint i = 0; i < known && frame.valid; ++i) walk(nullptr, others[i], others[i]->getTypeBinding());
}

/// Ends the run of a record that somebody has marked meanwhile; false if it has gone.
bool BindingSignal::leave(ZBinding& binding, uint seen) {
    for (;;) {
        if (seen == ZBinding::Running && toolkit::compareExchange(binding.active, seen, uint(ZBinding::Idle)))
            return true;
        if (seen & ZBinding::Taking) {
            toolkit::cpuPause();
            seen = load(binding.active);
        } else if (seen & ZBinding::Gone) {
            ZObject* owed = nullptr;
            frame.running = nullptr;
            {
                ZMethodBindings& table = *bindingTable();
                DroppedBinding dropped;
                ZScopedLock held(table.lock);
                if (load(binding.active) & ZBinding::Owed) owed = binding.dst;
                table.leaveDestination(binding);
                table.clearRecord(binding, dropped);
            }
            if (owed) owed->release();
            return false;
        } else if (seen & ZBinding::Again) {
            const bool repeats = property && frame.valid && !binding.selector0.isEmpty();
            if (!toolkit::compareExchange(binding.active, seen, uint(repeats ? ZBinding::Running : ZBinding::Idle)))
                continue;
            if (!repeats) return true;
            const ZVariant now = object->getProperty(binding.selector0);
            const ZVariant* const before = std::exchange(values, &now);
            call(binding);
            values = before;
            seen = ZBinding::Running;
        }
    }
}

// Calling

void BindingSignal::call(const ZBinding& binding) {
    ZMethod* to = binding.dstMethod;
    if (ORV_LIKELY(!binding.toAll)) {
        ZObject* target = load(binding.dst);
        if (target && !ZBindingStack::checkCycle(to, target)) called |= callOne(binding, target);
        return;
    }
    if (to->getFlags() & ZMethod::TypeMethod) {
        if (!ZBindingStack::checkCycle(to, nullptr)) called |= callOne(binding, nullptr);
        return;
    }
    // Every instance there is, held while it is called.
    ZArrayT<ZRetainPtrT<ZObject>> instances;
    if (!collectInstances(binding.dstType, instances)) return;
    for (const ZRetainPtrT<ZObject>& instance : std::as_const(instances))
        if (!ZBindingStack::checkCycle(to, instance.get())) called |= callOne(binding, instance.get());
}

bool BindingSignal::callOne(const ZBinding& binding, ZObject* target) {
    ZMethod* to = binding.dstMethod;
    const void* instance = target ? reinterpret_cast<const char*>(target) + binding.dstOffset : nullptr;
    const bool fixed = load(binding.hasParams);
    if (!to->hasFunc() && !to->hasStacked()) return false;
    if (binding.byProperty && property && !fixed && target) {
        keep(ZVariant(target->setProperty(binding.selector1, *values)), true);
        return true;
    }
    const ZMetaType* type = target ? target->type() : binding.dstType;
    toolkit::EpochGuard guard;
    const MethodParams* params = to->params(type);
    if (!params || params->constructor || params->destructor) return false;
    if (!block && !fixed && want != Address) {
        // A variant method gets the value itself; so does one that takes a variant.
        const ZVariant answered = to->invoke(instance, type, values, count);
        keep(answered, params->returns);
        return true;
    }
    return callBuilt(binding, instance, type);
}

/// The block of the source's own arguments.
bool BindingSignal::laid() {
    if (!block || isLaid) return true;
    isLaid = true;
    if (block->setup(object, method, object ? object->type() : nullptr) &&
        (block->getParCount() < 2 || block->addarg(list, true)))
        return true;
    zrecover();
    return false;
}

bool BindingSignal::callBuilt(const ZBinding& binding, const void* instance, const ZMetaType* type) {
    if (!laid()) return false;
    ZArrayT<ZVariant> fixed;
    int ahead = 0x7FFFFFFF;
    if (load(binding.hasParams)) {
        ZScopedLock held(bindingTable()->lock);
        fixed = binding.params;
        ahead = binding.paramPos;
    }
    ZMethodCall made;
    if (!made.setup(instance, binding.dstMethod, type)) {
        zrecover();
        return false;
    }
    const bool takesAll = binding.dstMethod->collectArgs() || binding.dstMethod->openArgument() >= 0;
    int place = 1;
    auto room = [&] { return takesAll || place < made.getParCount(); };
    // Arguments of the source up to the place of the fixed ones, these, and the rest of the source's.
    auto pass = [&](int from, int to) {
        if (!block) {
            for (int i = from; i < to && i < count; ++i, ++place)
                if (room() && !made.addv(values[i])) return false;
            return true;
        }
        const int given = block->getParCount() - 1;
        if (to > given) to = given;
        if (from >= to) return true;
        place += to - from;
        return made.copyarg(*block, from + 1, to - from);
    };
    const int whole = 0x7FFFFFFF;
    if (!pass(0, ahead)) return false;
    if (!fixed.isEmpty()) {
        if (!takesAll) made.setIndex(place = ahead + 1);
        for (const ZVariant& value : std::as_const(fixed)) {
            if (room() && !made.addv(value)) return false;
            ++place;
        }
        if (!pass(ahead, whole)) return false;
    }
    if (want == Address) {
        keepAddress(made, binding.dstMethod);
        return true;
    }
    if (!made.invoke()) return false;
    keep(made.hasReturn() ? made.takeResult() : ZVariant(), made.hasReturn());
    return true;
}

// Answers

void BindingSignal::keep(const ZVariant& value, bool returns) {
    if (want == Number || (want == Value && returns)) result = value;
}
void BindingSignal::keepAddress(ZMethodCall& made, const ZMethod* to) {
    toolkit::EpochGuard guard;
    const MethodParams* params = to->params(made.parType(0));
    if (created) createdType->releaseInstance(std::exchange(created, nullptr));
    address = nullptr;
    if (!params || !params->returns || (*params)[0].passing == Passing::Value) {
        made.invoke();
        return;
    }
    const bool makes = (*params)[0].passing == Passing::Pointer && to->getFlags() & ZMethod::Creator;
    if (makes) made.setFreeReturn(false);
    address = made.callp();
    if (!makes) return;
    created = address;
    createdType = (*params)[0].data;
}
bool BindingSignal::setAnswer(const ZVariant& value) {
    ZMetaType* type = method->resultType();
    ZVariant converted(value);
    if (!type || (converted.type() != type && !converted.convert(type))) return false;
    given = std::move(converted);
    frame.answered = 1;
    return true;
}
void* BindingSignal::takeAddress() {
    if (frame.answered) return given.type() && given.type()->kind() == ZMetaType::Pointer ? given.getPtr() : nullptr;
    created = nullptr;
    return address;
}

} // namespace orv

using orv::BindingSignal;

namespace {

[[gnu::noinline]] void runLaid(BindingSignal& signal, var_arg* arguments) {
    ZMethodCall block;
    signal.block = &block;
    signal.list = arguments;
    signal.run();
    signal.block = nullptr;
}
void run(BindingSignal& signal, var_arg* arguments) {
    if (ORV_UNLIKELY(arguments != nullptr))
        runLaid(signal, arguments);
    else
        signal.run();
}

} // namespace

void ZBinding::fireV(ZObject* object, const ZMethod* method, var_arg* arguments) {
    if (!method) return;
    BindingSignal signal(object, method, BindingSignal::Nothing);
    run(signal, arguments);
}
int ZBinding::fireI(ZObject* object, const ZMethod* method, var_arg* arguments) {
    if (!method) return 0;
    BindingSignal signal(object, method, BindingSignal::Number);
    run(signal, arguments);
    return signal.answer().toInt();
}
real ZBinding::fireR(ZObject* object, const ZMethod* method, var_arg* arguments) {
    if (!method) return 0;
    BindingSignal signal(object, method, BindingSignal::Number);
    run(signal, arguments);
    return signal.answer().toReal();
}
void* ZBinding::fireX(ZObject* object, const ZMethod* method, var_arg* arguments) {
    if (!method) return nullptr;
    BindingSignal signal(object, method, BindingSignal::Address);
    run(signal, arguments);
    return signal.takeAddress();
}
void ZBinding::fireC(ZObject* object, const ZMethod* method, var_arg* arguments, ZVariant& result) {
    if (!method) return;
    BindingSignal signal(object, method, BindingSignal::Value);
    run(signal, arguments);
    if (!signal.answer().isNull()) result = signal.answer();
}
bool ZBinding::fireArgs(ZObject* object, const ZMethod* method, const ZVariant* arguments, int count,
                        ZVariant* result) {
    if (!method) return false;
    BindingSignal signal(object, method, result ? BindingSignal::Value : BindingSignal::Nothing);
    signal.values = arguments;
    signal.count = count;
    const bool called = signal.run();
    if (result && !signal.answer().isNull()) *result = signal.answer();
    return called;
}
bool ZBinding::fireProperty(ZObject* object, const ZMethod* method, const ZVariant& value) {
    if (!method) return false;
    BindingSignal signal(object, method, BindingSignal::Nothing);
    signal.values = &value;
    signal.count = 1;
    signal.property = true;
    return signal.run();
}

bool ZBindingStack::checkCycle(const ZBinding* binding) {
    return binding && checkCycle(binding->destinationMethod(), binding->destination());
}

// What a destination knows of its caller

ZObject* ZObject::caller() const {
    const ZBindingStack* frame = ZBinding::stack();
    return frame && frame->valid ? const_cast<ZObject*>(frame->object) : nullptr;
}
ZMetaType* ZObject::callerRetType() const {
    ZBindingStack* frame = ZBinding::stack();
    if (!frame || !frame->method->hasReturn()) return nullptr;
    if (!frame->type) frame->type = frame->method->resultType();
    return frame->type;
}
bool ZObject::callerReturn(const ZVariant& value) {
    const ZBindingStack* frame = ZBinding::stack();
    return frame && frame->data && callerRetType() && static_cast<BindingSignal*>(frame->data)->setAnswer(value);
}
