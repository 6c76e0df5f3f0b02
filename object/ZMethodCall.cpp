#include "object/ZMethodCall.h"

#include "core/debug.h"
#include "object/ZMetaType.h"
#include "object/ZType.h"
#include "object/glueLife.h"
#include "object/methodArguments.h"
#include "object/methodParams.h"
#include "object/names.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "value/ZVArray.h"

#include <cstring>
#include <new>

using orv::MethodParam;
using orv::Passing;

namespace {

struct StackWords {
    const void* words[2];
    bool set;
};
ORV_THREAD_LOCAL StackWords stackWordsNow{};

ORV_THREAD_LOCAL ZInternal* internalNow = nullptr;

/// Blocks for what the call itself has no room for: a link, then the memory.
struct Overflow {
    alignas(16) void* next;
};

bool sharesInstance(const ZMetaType* data) { return data->holdsZType(); }

} // namespace

ZInternal* orv::glue::takeInternal() { return std::exchange(internalNow, nullptr); }

ZMethodCall::ZMethodCall() {}
ZMethodCall::ZMethodCall(const void* target, const ZMethod* called, const ZMetaType* seen, bool isConstructor) {
    setup(target, called, seen, isConstructor);
}
ZMethodCall::~ZMethodCall() { clear(); }

bool ZMethodCall::setup(const void* target, const ZMethod* called, const ZMetaType* seen, bool isConstructor) {
    clear();
    if (!called) return false;
    params = called->params(seen);
    bool whole = params != nullptr;
    if (whole && params->count - 1 <= room) {
        arguments = ownArguments;
    } else if (whole) {
        arguments = static_cast<Argument*>(scratch(size_t(params->count) * sizeof(Argument)));
        whole = arguments != nullptr;
    }
    if (whole && params->stackSize <= blockRoom - 8) {
        block = ownBlock;
    } else if (whole) {
        block = static_cast<char*>(scratch(size_t(params->stackSize) + 8));
        whole = block != nullptr;
    }
    if (!whole) {
        clear();
        ZError::fail();
        return false;
    }
    instance = target;
    method = const_cast<ZMethod*>(called);
    type = seen;
    constructs = isConstructor;
    count = params->count;
    open = called->openArgument() < 0 ? -1 : called->openArgument() + 1;
    collects = called->collectArgs();
    std::memset(block, 0, 8);
    for (int i = 0; i < count; ++i) arguments[i] = {(*params)[i].type, nullptr, 0};
    return true;
}
void ZMethodCall::setcall(const void* target, const ZMethod* called) {
    dropResult();
    instance = target;
    method = const_cast<ZMethod*>(called);
}
void ZMethodCall::clear() {
    dropResult();
    for (int i = 1; i < count; ++i) resetParam(i);
    rest.clear();
    kept.clear();
    while (overflow) {
        void* next = static_cast<Overflow*>(overflow)->next;
        zfree(std::exchange(overflow, next));
    }
    instance = nullptr;
    method = nullptr;
    type = tag = nullptr;
    internal = nullptr;
    params = nullptr;
    arguments = nullptr;
    block = nullptr;
    count = scratchUsed = 0;
    index = 1;
    open = -1;
    collects = constructs = refused = ran = stackCall = false;
}

// Memory for values

void* ZMethodCall::scratch(size_t size) {
    size = (size + 15) & ~size_t(15);
    if (size <= size_t(scratchRoom - scratchUsed)) {
        void* place = ownScratch + scratchUsed;
        scratchUsed += int(size);
        return place;
    }
    auto link = static_cast<Overflow*>(__zalloc(sizeof(Overflow) + size));
    if (!link) return nullptr;
    link->next = std::exchange(overflow, link);
    return link + 1;
}

// Putting arguments into the block

bool ZMethodCall::put(int at, const void* value) {
    return orv::isPassable((*params)[at].data, value) && store(at, value);
}
bool ZMethodCall::store(int at, const void* value) {
    const MethodParam& param = (*params)[at];
    char* slot = block + param.at;
    if (param.kind == ZMetaType::Float) {
        float number;
        std::memcpy(&number, value, sizeof number);
        const double wide = number;
        std::memcpy(slot, &wide, sizeof wide);
    } else {
        std::memcpy(slot, value, param.data->byteSize());
    }
    arguments[at].value = slot;
    arguments[at].flags |= Given;
    return true;
}
bool ZMethodCall::putPointer(int at, const void* pointer) {
    std::memcpy(block + (*params)[at].at, &pointer, sizeof pointer);
    arguments[at].value = const_cast<void*>(pointer);
    arguments[at].flags |= Given;
    return true;
}

/// The address for a reference or pointer parameter where the value serves as it is; null where one has to be made.
const void* ZMethodCall::directly(int at, const ZVariant& value) const {
    const MethodParam& param = (*params)[at];
    ZMetaType* held = value.type();
    if (param.data->isVariant() && param.pointers < 2) return param.isConst ? &value : nullptr;
    if (!held) return nullptr;
    if (param.pointers > 1) return held == param.type ? value.getPtr() : nullptr;
    if (param.kind == ZMetaType::Void) {
        const bool pointer = held->kind() == ZMetaType::Pointer || value.isZType();
        return param.isConst || pointer ? value.getPtr() : nullptr;
    }
    if (held->getPtrCount() > 1) return nullptr;
    const void* address = value.getPtr();
    ZMetaType* actual = value.mainType();
    const bool isPointer = held->kind() == ZMetaType::Pointer;
    // What may be written is the caller's only where it is an object, or handed over by a pointer to what isn't const.
    if (!param.isConst && !sharesInstance(param.data) && !isPointer) return nullptr;
    if (!param.isConst && isPointer && held->getQualifier().contains(zsel<"const">())) return nullptr;
    if (actual == param.data) return address;
    return sharesInstance(param.data) || param.isConst || isPointer ? orv::upcast(actual, param.data, address)
                                                                    : nullptr;
}

/// A value of the call's own: constructed from another one, or with nothing to convert, new.
bool ZMethodCall::putMade(int at, const ZVariant& value, bool convert) {
    const MethodParam& param = (*params)[at];
    ZMetaType* data = param.data;
    if (param.pointers > 1 || param.kind == ZMetaType::Void || param.kind == ZMetaType::Unknown) return false;
    if (sharesInstance(data) || (param.passing == Passing::Pointer && !convert)) {
        void* made = convert ? data->createFrom(value) : data->createInstance();
        if (!made) return false;
        putPointer(at, made);
        arguments[at].flags |= Created;
        return true;
    }
    void* place = scratch(data->byteSize());
    if (!place) return false;
    std::memset(place, 0, data->byteSize());
    ZFailGuard guard;
    const bool made = data->isVariant() && convert ? ::new (place) ZVariant(value) != nullptr
                      : convert                    ? data->constructFrom(place, value)
                                                   : data->constructInstance(place);
    if (!made || guard.rose()) {
        guard.forget();
        return false;
    }
    if (param.passing != Passing::Value && orv::isPassable(data, place)) {
        putPointer(at, place);
        arguments[at].flags |= Made;
        return true;
    }
    // Values in slots are plain bytes; what was made for them ends here.
    const bool stored = param.passing == Passing::Value && put(at, place);
    data->destructInstance(place);
    return stored;
}

bool ZMethodCall::putNumber(int at, const ZVariant& value) {
    const MethodParam& param = (*params)[at];
    char room[8] = {};
    if (!orv::numberBytes(param, value, room)) return false;
    return put(at, room);
}

bool ZMethodCall::putValue(int at, const ZVariant& value) {
    const MethodParam& param = (*params)[at];
    if (!param.data) return refuse(at, value);
    if (param.passing == Passing::Value) {
        if (value.type() == param.data && param.data->byteSize() <= 8)
            return put(at, value.getPtr()) || refuse(at, value);
        if (orv::isNumber(param.kind) && putNumber(at, value)) return true;
        return (value.type() && putMade(at, value, true)) || refuse(at, value);
    }
    if (param.passing == Passing::Reference && param.pointers > 0) return putPointerCell(at, value);
    if (param.passing == Passing::Pointer && value.isNull() && !param.data->isVariant()) return putPointer(at, nullptr);
    if (const void* address = directly(at, value))
        return orv::isPassable(param.data, address) ? putPointer(at, address) : refuse(at, value);
    if (param.kind == ZMetaType::Char && param.pointers == 1 && param.isConst)
        return putText(at, value) || refuse(at, value);
    return putMade(at, value, true) || refuse(at, value);
}

/// A pointer of the call's own for a reference to one; null for the null value.
bool ZMethodCall::putPointerCell(int at, const ZVariant& value) {
    const void* pointer = value.isNull() ? nullptr : directly(at, value);
    if (!pointer && !value.isNull()) return refuse(at, value);
    void* cell = scratch(sizeof pointer);
    if (!cell) return refuse(at, value);
    std::memcpy(cell, &pointer, sizeof pointer);
    return putPointer(at, cell);
}

/// A text for "const char*", zero-ended, in UTF-8.
bool ZMethodCall::putText(int at, const ZVariant& value) {
    const int kind = value.typeType();
    if (kind != ZMetaType::Selector && kind != ZMetaType::String && !orv::isNumber(ZMetaType::Type(kind))) return false;
    ZFailGuard failures;
    const ZString shown = value.toString();
    char* text = shown.astr();
    if (failures.rose() || (!text && !shown.isEmpty())) {
        failures.forget();
        zfree(text);
        return false;
    }
    if (!text) return putPointer(at, "");
    const size_t bytes = std::strlen(text) + 1;
    void* place = scratch(bytes);
    if (place) std::memcpy(place, text, bytes);
    zfree(text);
    return place && putPointer(at, place);
}

bool ZMethodCall::refuse(int at, const ZVariant& given) {
    refused = true;
    if (!zdebugasked()) return false;
    const ZMetaType* owner = method->getOwner() ? method->getOwner() : type;
    const ZSelector ownerName = owner ? owner->getName() : ZSelector();
    char* why = orv::explainArgument((*params)[at], method->paramType(at), given).astr();
    zdebug("argument %d of \"%s\"%s%s can't be had: %s", at, method->getSelector().string(),
           ownerName.isEmpty() ? "" : " of ", ownerName.isEmpty() ? "" : ownerName.string(), why ? why : "");
    zfree(why);
    return false;
}

// Adding arguments

/// To an open argument, or to all as one.
bool ZMethodCall::take(const ZVariant& value) {
    if (rest.append(value)) return true;
    refused = true;
    return false;
}
bool ZMethodCall::add(const ZVariant& value) {
    if (!method) return false;
    if (takesRest()) return take(value);
    return index < count && putValue(index++, value);
}
bool ZMethodCall::addi(int value) {
    if (takesRest()) return take(ZVariant(value));
    if (index >= count) return false;
    const MethodParam& param = (*params)[index];
    if (param.passing == Passing::Value && (param.kind == ZMetaType::Int || param.kind == ZMetaType::UInt))
        return put(index++, &value);
    return addHeld(ZVariant(value));
}
bool ZMethodCall::addl(large value) { return addHeld(ZVariant(value)); }
bool ZMethodCall::addr(real value) { return addHeld(ZVariant(value)); }
bool ZMethodCall::addp(const void* value) { return index < count && setParam(index++, value); }
bool ZMethodCall::addv(const ZVariant& value) {
    if (!collects && index < count && index != open && (*params)[index].data && (*params)[index].data->isVariant() &&
        (*params)[index].passing != Passing::Value)
        return putPointer(index++, &value);
    return add(value);
}
/// Whether the next argument goes to an open one, or to all as one.
bool ZMethodCall::takesRest() const { return collects || (open >= 0 && index >= open); }
/// Adds a value that becomes this call's own: its address may stand in the block.
bool ZMethodCall::addHeld(const ZVariant& value) {
    if (takesRest()) return take(value);
    // The array's items must stay where they are.
    if (kept.isEmpty() && !kept.reserve(uint(count) + 1)) return false;
    return kept.count() < kept.capacity() && kept.append(value) && add(kept.data()[kept.count() - 1]);
}
bool ZMethodCall::addarg(var_arg* from, bool fromList) {
    bool added = index < count;
    do {
        if (index >= count) break;
        const MethodParam& param = (*params)[index];
        if (!param.data) return false;
        if (param.passing != Passing::Value) {
            added = setParam(index++, va_arg(from->list, const void*));
        } else if (param.kind == ZMetaType::Float) {
            const float number = float(va_arg(from->list, double));
            added = put(index++, &number);
        } else if (param.kind == ZMetaType::Double || param.kind == ZMetaType::Real) {
            const double number = va_arg(from->list, double);
            added = put(index++, &number);
        } else if (param.data->byteSize() <= 4) {
            const int number = va_arg(from->list, int);
            added = put(index++, &number);
        } else if (param.data->byteSize() == 8) {
            const large number = va_arg(from->list, large);
            added = put(index++, &number);
        } else {
            return false;
        }
    } while (added && fromList);
    return added;
}
bool ZMethodCall::copyarg(const ZMethodCall& source, int from) { return copyarg(source, from, source.count - from); }
bool ZMethodCall::copyarg(const ZMethodCall& source, int from, int wanted) {
    if (from < 1) return false;
    for (int i = from; i < source.count && i < from + wanted && index < count; ++i) {
        if (i == source.open || source.collects) {
            for (const ZVariant& value : source.rest)
                if (index < count && !addHeld(value)) return false;
            continue;
        }
        if (!(source.arguments[i].flags & Given)) {
            // To be constructed, there as here.
            ++index;
            continue;
        }
        const void* value = source.param(i);
        if (value && source.parType(i) == parType(index) && index != open) {
            const MethodParam& param = (*params)[index];
            // Slots of equal parameters are equal.
            std::memcpy(block + param.at, source.block + (*source.params)[i].at, size_t(param.size));
            arguments[index].value = param.passing == Passing::Value ? block + param.at : const_cast<void*>(value);
            arguments[index++].flags = Given;
        } else if (!addHeld(source.getParam(i))) {
            return false;
        }
    }
    return true;
}

// Places

bool ZMethodCall::hasReturn() const { return params && params->returns; }
void* ZMethodCall::resultAddress() const {
    if (!ran || !params->returns) return nullptr;
    if ((*params)[0].passing != Passing::Reference) return result;
    void* address;
    std::memcpy(&address, block, sizeof address);
    return address;
}
void* ZMethodCall::param(int at) const {
    if (at == 0 && params) return resultAddress();
    return at > 0 && at < count ? arguments[at].value : nullptr;
}
ZMetaType* ZMethodCall::parType(int at) const { return at >= 0 && at < count ? arguments[at].type : nullptr; }

ZVariant ZMethodCall::getParam(int at) const {
    void* value = param(at);
    if (!value) return {};
    const MethodParam& param = (*params)[at];
    if (param.passing == Passing::Value) {
        if (param.kind == ZMetaType::Float && at > 0) {
            double wide;
            std::memcpy(&wide, value, sizeof wide);
            return ZVariant(float(wide));
        }
        return orv::copiedValue(param, value);
    }
    if (at == 0 && param.passing == Passing::Pointer) std::memcpy(&value, value, sizeof value);
    return orv::wrapAddress(param, value, false);
}
bool ZMethodCall::setParam(int at, const ZVariant& value) {
    if (at < 1 || at >= count) return false;
    resetParam(at);
    return putValue(at, value);
}
bool ZMethodCall::setParam(int at, const void* value) {
    if (at < 1 || at >= count || !(*params)[at].data) return false;
    resetParam(at);
    if ((*params)[at].passing != Passing::Value) return putPointer(at, value);
    return value && (*params)[at].data->byteSize() <= 8 && put(at, value);
}
bool ZMethodCall::initParam(int at) {
    if (at < 1 || at >= count || !(*params)[at].data) return false;
    const MethodParam& param = (*params)[at];
    resetParam(at);
    if (param.passing == Passing::Value && param.data->primitive()) {
        const char zero[8] = {};
        return store(at, zero);
    }
    if (param.passing == Passing::Reference && param.pointers > 0) return putPointerCell(at, {});
    if (putMade(at, {}, false)) return true;
    // A pointer can do without an instance.
    return param.passing == Passing::Pointer && putPointer(at, nullptr);
}
bool ZMethodCall::initParams() {
    for (int i = 1; i < count; ++i) {
        if (arguments[i].flags & Given) continue;
        if (i == open) {
            if (!putPointer(i, &rest)) return false;
        } else if (!initParam(i)) {
            return false;
        }
    }
    return true;
}
void ZMethodCall::resetParam(int at) {
    if (at < 1 || at >= count) return;
    Argument& argument = arguments[at];
    ZMetaType* data = (*params)[at].data;
    if (argument.flags & Made && freeParam) data->destructInstance(argument.value);
    if (argument.flags & Created && freePointer) data->releaseInstance(argument.value);
    argument.flags = 0;
    argument.value = nullptr;
}
ZArrayT<ZVariant> ZMethodCall::argArray() const {
    ZArrayT<ZVariant> values;
    if (collects) return rest;
    for (int i = 1; i < count; ++i)
        if (!(i == open ? values.append(rest) : values.append(getParam(i)))) return {};
    return values;
}
void ZMethodCall::setStackCall(const void* first, const void* second) {
    words[0] = first;
    words[1] = second;
    stackCall = true;
}
bool ZMethodCall::stackWords(const void*& first, const void*& second) {
    first = stackWordsNow.words[0];
    second = stackWordsNow.words[1];
    return stackWordsNow.set;
}

// Calling

/// All arguments as the one container that a collecting method takes.
bool ZMethodCall::packArguments() {
    if (count != 2 || !(*params)[1].data) return false;
    const MethodParam& param = (*params)[1];
    if (param.data->getName() == zsel<"ZArrayT<ZVariant>">()) return putPointer(1, &rest);
    if (param.data != ztype<ZVArray>()) return false;
    resetParam(1); // of an earlier call
    if (!putMade(1, {}, false)) return false;
    auto array = static_cast<ZVArray*>(arguments[1].value);
    array->setType(ztype<ZVariant>());
    for (const ZVariant& value : std::as_const(rest))
        if (!array->append(value)) return false;
    return true;
}
bool ZMethodCall::prepareResult() {
    dropResult();
    if (constructs) {
        const __ZPassMetaType* built = orv::passType(tag ? tag : type);
        std::memcpy(block, &built, sizeof built);
        return true;
    }
    std::memset(block, 0, 8);
    if (!params->returns) return true;
    const MethodParam& param = (*params)[0];
    if (!param.data) return false;
    if (param.passing == Passing::Reference) return true;
    if (param.passing == Passing::Pointer)
        result = scratch(sizeof(void*));
    else if (orv::resultOnBlock(param))
        result = __zalloc(param.data->byteSize());
    else
        result = scratch(param.data->byteSize());
    std::memcpy(block, &result, sizeof result);
    return result != nullptr;
}
void ZMethodCall::callEntry() {
    if (constructs) {
        ZInternal* const outer = std::exchange(internalNow, internal);
        method->getStacked()(instance, method, block);
        internalNow = outer;
        return;
    }
    if (method->hasStacked()) {
        if (!stackCall) return method->getStacked()(instance, method, block);
        const StackWords outer = stackWordsNow;
        stackWordsNow = {{words[0], words[1]}, true};
        method->getStacked()(instance, method, block);
        stackWordsNow = outer;
        return;
    }
    const void* given[4] = {};
    for (int i = 1; i < count; ++i) {
        const MethodParam& param = (*params)[i];
        if (param.passing == Passing::Value && param.kind == ZMetaType::Float) {
            double wide;
            std::memcpy(&wide, block + param.at, sizeof wide);
            const float number = float(wide);
            std::memcpy(given + i - 1, &number, sizeof number);
        } else {
            std::memcpy(given + i - 1, block + param.at, size_t(param.size < 8 ? param.size : 8));
        }
    }
    void* word = orv::callWords(method, instance, given);
    if (!params->returns) return;
    const MethodParam& param = (*params)[0];
    if (param.passing == Passing::Reference)
        std::memcpy(block, &word, sizeof word);
    else
        std::memcpy(result, &word, param.passing == Passing::Pointer ? sizeof word : param.data->byteSize());
}
/// Whether this is a constructor that copies an instance, and there is none.
bool ZMethodCall::copiesNothing() const {
    if (count != 2 || arguments[1].value) return false;
    const MethodParam& source = (*params)[1];
    const ZMetaType* built = type ? type : method->getOwner();
    return source.passing == Passing::Pointer && source.data && source.data->holdsZType() && built &&
           built->typeOf(source.data);
}
void ZMethodCall::logRefusal(const char* why) const {
    const ZMetaType* owner = method->getOwner() ? method->getOwner() : type;
    const ZSelector name = owner ? owner->getName() : ZSelector();
    zdebug("method \"%s\"%s%s %s", method->getSelector().string(), name.isEmpty() ? "" : " of ",
           name.isEmpty() ? "" : name.string(), why);
}
bool ZMethodCall::invoke() {
    if (!method || refused) return false;
    const bool byWords = method->fastWords() == count - 1 && count <= 5 && !constructs;
    if (!method->hasStacked() && !byWords) {
        if (zdebugasked()) logRefusal("has no entry");
        return false;
    }
    if (!instance && !(method->getFlags() & ZMethod::TypeMethod)) {
        if (zdebugasked()) logRefusal("needs an instance");
        return false;
    }
    if ((collects && !packArguments()) || !initParams()) return false;
    if (constructs && copiesNothing()) {
        if (zdebugasked()) logRefusal("has nothing to copy");
        return false;
    }
    if (!prepareResult()) return false;
    callEntry();
    ran = true;
    return true;
}

void ZMethodCall::dropResult() {
    if (!params || !result) {
        ran = false;
        return;
    }
    const MethodParam& param = (*params)[0];
    if (ran && param.passing == Passing::Value && freeReturn) param.data->destructInstance(result);
    if (ran && param.passing == Passing::Pointer && freeReturn && method->getFlags() & ZMethod::Creator) {
        void* instance;
        std::memcpy(&instance, result, sizeof instance);
        if (instance && param.pointers == 1) param.data->releaseInstance(instance);
    }
    if (param.passing == Passing::Value && orv::resultOnBlock(param)) zfree(result);
    result = nullptr;
    ran = false;
}
ZVariant ZMethodCall::takeResult() {
    if (!ran || !params->returns) return {};
    const MethodParam& param = (*params)[0];
    ZVariant taken;
    if (param.passing == Passing::Value) {
        if (param.data->isVariant()) {
            taken = std::move(*static_cast<ZVariant*>(result));
            static_cast<ZVariant*>(result)->~ZVariant();
        } else if (!taken.setValue(param.data, result, false, false)) {
            return {};
        }
    } else {
        void* address = resultAddress();
        if (param.passing == Passing::Pointer) std::memcpy(&address, result, sizeof address);
        taken = orv::wrapAddress(param, address, method->getFlags() & (ZMethod::Creator | ZMethod::Manage));
    }
    result = nullptr;
    ran = false;
    return taken;
}

int ZMethodCall::calli() { return invoke() ? takeResult().toInt() : 0; }
real ZMethodCall::callr() { return invoke() ? takeResult().toReal() : 0; }
void* ZMethodCall::callp() {
    if (!invoke()) return nullptr;
    void* address = resultAddress();
    if (address && (*params)[0].passing == Passing::Pointer) std::memcpy(&address, address, sizeof address);
    return address;
}
