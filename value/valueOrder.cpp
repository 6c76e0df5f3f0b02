#include "value/valueOrder.h"

#include "core/compare.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/kindValues.h"
#include "toolkit/epoch.h"
#include "toolkit/hash.h"
#include "value/ZVariant.h"
#include "value/variantTypes.h"

#include <cstring>

namespace orv {
namespace {

constexpr uint hashLimit = 0x100000;

/// Calls a method without arguments, which the type may have from a base; `hash` gets the result.
bool callHash(const ZMetaType* type, ZMethod* method, const void* value, uint& hash) {
    int offset = 0;
    if (!method || !method->hasFunc() || method->fastWords() != 0) return false;
    if (method->getOwner() && !type->upcastOffset(method->getOwner(), offset)) return false;
    hash = uint(reinterpret_cast<uintptr_t>(method->getFunc()(static_cast<const char*>(value) + offset, method)));
    return true;
}

bool hasOrder(const ZMetaType* type) {
    if (type->getCallback(ZMetaType::CompareInstance)) return true;
    ZMethod* method = type->getCompareMethod();
    return method && method->hasFunc();
}

} // namespace

int orderValues(const ZMetaType* type, const void* a, const void* b) {
    if (a == b) return 0;
    if (!a || !b) return a ? -1 : 1;
    if (!type) return 0;
    if (detail::hasPlainKind(type)) return orderKind(type->kind(), a, b, type->byteSize());
    if (type->kind() <= ZMetaType::Pointer || type->holdsZType()) return type->compareInstance(a, b);
    if (type->isVariant()) return static_cast<const ZVariant*>(a)->order(*static_cast<const ZVariant*>(b));
    toolkit::EpochGuard guard;
    if (hasOrder(type)) return type->compareInstance(a, b);
    int order = std::memcmp(a, b, type->byteSize());
    return (order > 0) - (order < 0);
}

uint hashValue(const ZMetaType* type, const void* value) {
    if (!type || !value) return 0;
    const int kind = type->kind();
    if (detail::hasPlainKind(type)) return hashKind(kind, value, type->byteSize());
    if (kind == ZMetaType::Enum) return zhashkey(detail::enumNumber(type, value));
    if (type->holdsZType()) return static_cast<const ZType*>(value)->hashKey();
    if (kind == ZMetaType::Pointer) {
        // Pointers are equal when what they point to is.
        const void* target;
        std::memcpy(&target, value, sizeof target);
        if (type->getPtrCount() == 1 && type->mainOrSelf()->kind() > ZMetaType::Void)
            return hashValue(target ? type->mainOrSelf()->actualType(target) : nullptr, target);
        return toolkit::hashData(0, value, sizeof target, hashLimit);
    }
    if (type->isVariant()) return static_cast<const ZVariant*>(value)->hashKey();
    toolkit::EpochGuard guard;
    uint hash = 0;
    if (callHash(type, type->getHashMethod(), value, hash)) return hash;
    if (hasOrder(type)) return type->getName().key();
    return toolkit::hashData(0, value, type->byteSize(), hashLimit);
}

} // namespace orv
