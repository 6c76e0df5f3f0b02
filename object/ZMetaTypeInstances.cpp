#include "core/construct.h"
#include "core/debug.h"
#include "object/ZMetaTypeData.h"
#include "object/kindValues.h"

#include <cstring>

// How values of a type come, go and compare, through untyped pointers. A callback of the type comes first; then what
// the kind says; then the operations that the type declares as methods.

namespace {

using Data = orv::MetaTypeData;
constexpr uint blockAlignment = 16;

/// A callback as a function of the one type that its index has.
template <class F> F callback(const ZMetaType* type, ZMetaType::CallBack index) {
    return reinterpret_cast<F>(type->instanceCallback(index));
}
ZType* asType(void* instance) { return static_cast<ZType*>(instance); }
const ZType* asType(const void* instance) { return static_cast<const ZType*>(instance); }
void* pointee(const void* instance) {
    void* held;
    std::memcpy(&held, instance, sizeof held);
    return held;
}

/// Calls a declared operation that takes no arguments through its stacked entry, the result being built at `result`.
/// False if the type declares none.
bool callOperation(const ZMetaType* type, Data::InlineOperation which, const void* instance, void* result) {
    toolkit::EpochGuard guard;
    ZMethod* method = type->inlineOperation(which).getMethod();
    if (!method || !method->hasStacked()) return false;
    int offset = 0;
    if (method->getOwner() && !type->upcastOffset(method->getOwner(), offset)) return false;
    void* block[1] = {result};
    method->getStacked()(static_cast<const char*>(instance) + offset, method, block);
    return true;
}
/// The answer of a declared operation that gives a bool; `otherwise` if the type declares none.
bool askOperation(const ZMetaType* type, Data::InlineOperation which, const void* instance, bool otherwise) {
    bool answer = otherwise;
    return callOperation(type, which, instance, &answer) ? answer : otherwise;
}
int sign(int order) { return (order > 0) - (order < 0); }

} // namespace

bool orv::isDeclared(const ZMetaType* type) {
    while (type && !type->declaration()) type = type->getMainType() ? type->getMainType() : type->primaryBase();
    return type != nullptr;
}

/// A class whose declaration says that it can't be made or copied isn't made or copied as its base.
ZTypeCallback ZMetaType::instanceCallback(CallBack index) const {
    const ZMetaType* type = typeKind == Pointer ? nullptr : described();
    while (type) {
        if (ZTypeCallback found = type->getCallback(index)) return found;
        if (type->mainType)
            type = type->mainType;
        else
            type = type->typeKind >= Dynamic && !type->own->declaration ? type->primaryBase() : nullptr;
    }
    return nullptr;
}

ZMetaType* ZMetaType::actualType(const void* instance) const {
    if (!instance || typeKind < Dynamic) return const_cast<ZMetaType*>(this);
    ZMetaType* type = asType(instance)->type();
    return type ? type : const_cast<ZMetaType*>(this);
}

// Making and ending

void* ZMetaType::createInstance() {
    if (auto create = callback<void* (*)(ZMetaType*)>(this, CreateInstance)) return create(this);
    const uint size = getSize();
    if (getAlignment() > blockAlignment) {
        zdebug("type %s: no block is aligned to %u\n", own->name.string(), getAlignment());
        return nullptr;
    }
    ZTypeLabel<ZMetaType> label;
    void* instance = __znalloc(size);
    if (!instance || buildInstance(instance)) return instance;
    toolkit::freeBlock(instance);
    return nullptr;
}

void ZMetaType::deleteInstance(void* instance) const {
    if (!instance) return;
    if (auto end = callback<void (*)(void*)>(this, DeleteInstance)) return end(instance);
    if (typeKind >= Dynamic) {
        asType(instance)->deleting();
        delete asType(instance);
    } else {
        destructInstance(instance);
        zdfree(instance);
    }
}

void ZMetaType::releaseInstance(void* instance) const {
    if (!instance) return;
    if (auto end = callback<void (*)(void*)>(this, ReleaseInstance)) return end(instance);
    directInstanceRelease(instance);
}
void ZMetaType::directInstanceRelease(void* instance) const {
    if (!instance) return;
    if (typeKind >= Dynamic) return asType(instance)->release();
    // Instances that are counted elsewhere than in the head of a block.
    if (getFlags() & Retaining)
        if (auto end = callback<void (*)(void*)>(this, ReleaseInstance)) return end(instance);
    if (decmemref(instance) > 0) return;
    destructInstance(instance);
    toolkit::freeBlock(instance);
}

void* ZMetaType::retainInstance(void* instance) const {
    if (!instance) return nullptr;
    if (getFlags() & Retaining)
        if (auto keep = callback<void* (*)(void*)>(this, RetainInstance)) return keep(instance);
    return typeKind >= Dynamic ? asType(instance)->retain() : ::retain(instance);
}

bool ZMetaType::constructInstance(void* instance) {
    if (!instance) return false;
    std::memset(instance, 0, typeSize);
    return buildInstance(instance);
}

bool ZMetaType::buildInstance(void* instance) {
    if (auto construct = callback<bool (*)(void*, ZMetaType*)>(this, ConstructInstance))
        return construct(instance, this);
    if (orv::isPlainKind(typeKind)) {
        orv::constructKind(typeKind, instance, typeSize);
        return true;
    }
    if (typeKind == Pointer) {
        void* held = nullptr;
        if (ZMetaType* target = derefType(); target && target->typeKind != Pointer) held = target->createInstance();
        std::memcpy(instance, &held, sizeof held);
        return true;
    }
    // What no class stands behind is zero bytes, unless the type declares a constructor.
    toolkit::EpochGuard guard;
    ZMethod* method = inlineOperation(Data::inlineConstructor).getMethod();
    if (!method || !method->hasStacked()) return typeKind < Dynamic;
    if (typeKind >= Dynamic && own->declaration && method->getOwner() != relationType()) return false;
    ZFailGuard failures;
    const __ZPassMetaType* block[1] = {orv::passType(this)};
    method->getStacked()(instance, method, block);
    if (!failures.rose()) return true;
    destructInstance(instance);
    failures.forget();
    return false;
}

bool ZMetaType::destructInstance(void* instance) const {
    if (!instance) return false;
    if (auto destruct = callback<bool (*)(void*)>(this, DestructInstance)) return destruct(instance);
    if (orv::isPlainKind(typeKind))
        orv::destructKind(typeKind, instance);
    else if (typeKind == Pointer) {
        void* held = pointee(instance);
        if (ZMetaType* target = derefType(); target && held) target->actualType(held)->releaseInstance(held);
    } else if (typeKind >= Dynamic)
        asType(instance)->~ZType();
    else
        callOperation(this, Data::inlineDestructor, instance, nullptr);
    return true;
}

// Copies

void* ZMetaType::copyToBlock(const void* source) const {
    if (!source || getAlignment() > blockAlignment) return nullptr;
    ZTypeLabel<ZMetaType> label;
    void* instance = __znalloc(getSize());
    if (!instance || copyInstance(instance, source)) return instance;
    toolkit::freeBlock(instance);
    return nullptr;
}

bool ZMetaType::copyInstance(void* target, const void* source) const {
    if (!target || !source) return false;
    if (auto copy = callback<bool (*)(void*, const void*)>(this, CopyInstance1)) {
        std::memset(target, 0, typeSize);
        return copy(target, source);
    }
    if (orv::isPlainKind(typeKind)) {
        orv::constructKind(typeKind, target, typeSize);
        orv::copyKind(typeKind, target, source, typeSize);
        return true;
    }
    if (typeKind == Pointer) {
        void* held = pointee(source);
        ZMetaType* to = derefType();
        if (held && to && to->typeKind != Pointer) held = to->actualType(held)->retainInstance(held);
        std::memcpy(target, &held, sizeof held);
        return true;
    }
    // A class that can't be copied must not be taken for its bytes.
    if (typeKind >= Class && typeKind != Atomic) return false;
    if (instanceCallback(DestructInstance)) return false;
    std::memcpy(target, source, typeSize);
    return true;
}

void* ZMetaType::copyInstance(const void* source) const {
    if (!source) return nullptr;
    if (auto copy = callback<void* (*)(const void*)>(this, CopyInstance2)) return copy(source);
    return typeKind >= Dynamic ? asType(source)->copy() : copyToBlock(source);
}

// Comparison

int ZMetaType::compareInstance(const void* a, const void* b) const {
    if (a == b) return 0;
    if (!a) return 1;
    if (!b) return -1;
    if (auto compare = callback<int (*)(const void*, const void*)>(this, CompareInstance)) return sign(compare(a, b));
    if (orv::isPlainKind(typeKind)) return orv::compareKind(typeKind, a, b, typeSize);
    if (typeKind == Pointer) {
        const void *first = pointee(a), *second = pointee(b);
        if (first == second || !first || !second) return (first != nullptr) - (second != nullptr);
        ZMetaType* target = derefType();
        return target ? target->actualType(first)->compareInstance(first, second) : first < second ? -1 : 1;
    }
    if (typeKind >= Dynamic) return sign(asType(a)->compare(asType(b)));
    toolkit::EpochGuard guard;
    ZMethod* method = getCompareMethod();
    if (!method || method->fastWords() != 1) return 0;
    int offset = 0;
    if (method->getOwner() && !upcastOffset(method->getOwner(), offset)) return 0;
    auto entry = reinterpret_cast<orv::MethodWords1>(reinterpret_cast<ZTypeCallback>(method->getFunc()));
    void* word = entry(static_cast<const char*>(a) + offset, method, static_cast<const char*>(b) + offset);
    int order;
    std::memcpy(&order, &word, sizeof order);
    return sign(order);
}

// Sharing

bool ZMetaType::detachInstance(void* instance) const {
    if (!instance) return false;
    if (auto detach = callback<bool (*)(void*)>(this, DetachInstance)) return detach(instance);
    if (typeKind >= Dynamic) return asType(instance)->detach();
    if (typeKind == String)
        return static_cast<ZString*>(instance)->isEmpty() || static_cast<ZString*>(instance)->detach();
    return typeKind <= Pointer || askOperation(this, Data::inlineDetach, instance, true);
}
bool ZMetaType::isDetachedInstance(const void* instance) const {
    if (!instance) return true;
    if (auto ask = callback<bool (*)(const void*)>(this, IsDetachedInstance)) return ask(instance);
    if (typeKind >= Dynamic) return asType(instance)->isDetached();
    if (typeKind == String) {
        // Of a text with a record the question is answered the other way round.
        auto text = static_cast<const ZString*>(instance);
        return text->isInternal() || !text->isDetached();
    }
    return typeKind <= Pointer || askOperation(this, Data::inlineIsDetached, instance, true);
}
bool ZMetaType::isNullData(const void* instance) const {
    if (!instance) return true;
    if (orv::isPlainKind(typeKind)) return orv::isNullKind(typeKind, instance, typeSize);
    if (typeKind == Pointer) return !pointee(instance);
    bool answer = false;
    if (callOperation(this, Data::inlineIsNull, instance, &answer)) return answer;
    // An instance of a class with a table of virtual operations is never all zero.
    if (typeKind >= Dynamic) return false;
    for (uint i = 0; i < typeSize; ++i)
        if (static_cast<const byte*>(instance)[i]) return false;
    return true;
}

// Texts

bool ZMetaType::toString(const void* instance, ZString& text) const {
    if (!instance) return false;
    if (auto print = callback<ZString (*)(const void*)>(this, ToString)) {
        text = print(instance);
        return true;
    }
    if (typeKind > Void && orv::isPlainKind(typeKind)) {
        ZFailGuard guard;
        text = orv::kindToString(typeKind, instance);
        return !guard.rose();
    }
    alignas(ZString) byte room[sizeof(ZString)];
    if (!callOperation(this, Data::inlineToString, instance, room)) return false;
    auto made = reinterpret_cast<ZString*>(room);
    text = std::move(*made);
    made->~ZString();
    return true;
}

bool ZMetaType::fromString(void* instance, const ZString& text) const {
    if (!instance) return false;
    if (auto scan = callback<bool (*)(void*, const ZString&)>(this, FromString1)) return scan(instance, text);
    return orv::kindFromString(typeKind, instance, text);
}
void* ZMetaType::fromString(const ZString& text) const {
    if (auto scan = callback<void* (*)(const ZString&)>(this, FromString2)) return scan(text);
    void* instance = const_cast<ZMetaType*>(this)->createInstance();
    if (!instance || fromString(instance, text)) return instance;
    releaseInstance(instance);
    return nullptr;
}

ZType* ZMetaType::createType() { return typeKind >= Dynamic ? asType(createInstance()) : nullptr; }

// The operations that are called on instances here: aimed at the first use of each

ZSelector ZMetaType::operationName(int which) const {
    static constexpr const char* signatures[orv::MetaTypeData::inlineCount] = {
        nullptr,
        nullptr,
        "bool detach()",
        "bool deepDetach()",
        "bool isDetached()",
        "bool isNull()",
        "ZString toString()",
        nullptr,
        "bool write(ZStream*)",
        nullptr,
        nullptr,
        "bool loadXST(const ZXSTNode*)",
        "bool loadXST(const ZXSTNode*, const ZSelector&)",
        "bool storeXST(ZXSTNode*)",
        "bool storeXST(ZXSTNode*, const ZSelector&)",
        "bool deepDetach(ZDetachContext*)",
    };
    switch (which) {
    case Data::inlineConstructor:
        return constructorName();
    case Data::inlineDestructor:
        return destructorName();
    case Data::inlineStreamConstructor:
        return streamConstructorName();
    case Data::inlineLoadConstructor:
        return loadConstructorName(false);
    case Data::inlineNamedLoadConstructor:
        return loadConstructorName(true);
    default:
        return signatures[which];
    }
}

const ZInlineMethod& ZMetaType::inlineOperation(int which) const {
    Data& data = *described()->own;
    const uint bit = 1u << which;
    if (ORV_LIKELY(toolkit::loadAcquire(data.operationsAimed) & bit)) return data.operations[which];
    ZScopedLock held(data.change);
    if (!(data.operationsAimed & bit)) {
        data.operations[which].init(described(), operationName(which));
        toolkit::storeRelease(data.operationsAimed, data.operationsAimed | bit);
    }
    return data.operations[which];
}
