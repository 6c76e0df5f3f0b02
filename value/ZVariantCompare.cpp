#include "core/ZArrayT.h"
#include "core/ZError.h"
#include "object/HeldTarget.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/kindValues.h"
#include "object/names.h"
#include "toolkit/epoch.h"
#include "toolkit/thread.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"
#include "value/valueOrder.h"
#include "value/variantTypes.h"

using namespace orv;

namespace {

template <class T> int byAddress(const T* a, const T* b) {
    auto first = reinterpret_cast<uintptr_t>(a), second = reinterpret_cast<uintptr_t>(b);
    return (first > second) - (first < second);
}

} // namespace

// Order

namespace {

/// How deep values are looked at in values.
constexpr int deepest = 512;
ORV_THREAD_LOCAL int depth = 0;
struct Level {
    Level() { ++depth; }
    ~Level() { --depth; }
    Level(const Level&) = delete;
};

} // namespace

/// Compares two values of one type; `compareValues` gets the type of what stands at both addresses. What is too deep in
/// other values is compared by its address.
template <class F> int ZVariant::compareWith(const ZVariant& other, F&& compareValues) const {
    ZMetaType* type = this->type();
    if (int order = byAddress(type, other.type())) return order;
    const void *a = getPtr(), *b = other.getPtr();
    if (!a || !b || a == b) return byAddress(a, b);
    if (!type) return memcompare(a, b);
    if (isInline()) return compareValues(type, a, b);
    ZMetaType* own = detail::pointedType(type);
    if (!own || depth >= deepest) return byAddress(a, b);
    Level level;
    return compareValues(own, a, b);
}

int ZVariant::compare(const ZVariant& other) const {
    return compareWith(other, [](ZMetaType* type, const void* a, const void* b) {
        return detail::hasPlainKind(type) ? compareKind(type->kind(), a, b, type->byteSize())
                                          : type->compareInstance(a, b);
    });
}

int ZVariant::order(const ZVariant& other) const {
    return compareWith(other, [](ZMetaType* type, const void* a, const void* b) { return orderValues(type, a, b); });
}

uint ZVariant::hashKey() const {
    if (isInline()) return hashValue(this->type(), data);
    if (ZMetaType* type = valueType()) {
        if (depth >= deepest) return 0;
        Level level;
        return hashValue(type, held());
    }
    // Targets without a type of their own are equal by their address.
    return type() ? ptrKey().hashKey() : 0;
}

// Equality with a tolerance

namespace {

/// Whether two values of a plain kind match.
bool plainMatch(int kind, const void* a, const void* b, uint size, real tolerance) {
    if (!isRealKind(kind)) return orderKind(kind, a, b, size) == 0;
    double first = 0, second = 0;
    kindToReal(kind, a, first);
    kindToReal(kind, b, second);
    // Equal infinities have no difference.
    return first == second || __builtin_fabs(first - second) <= tolerance;
}

bool storedMatch(const ZVariant& a, const ZVariant& b, real tolerance, const ZVariant& other) {
    return a.compare(b) == 0 || (!a.samePtr(other) && !b.samePtr(other) && a.matchValue(b, tolerance));
}

} // namespace

bool ZVariant::matchValue(const ZVariant& other, real tolerance) const {
    ZMetaType *type = this->type(), *otherType = other.type();
    if (!type && !otherType) return true;
    if (depth >= deepest) return false;
    Level level;
    if (!type || !otherType) {
        if (std::memcmp(data, other.data, sizeof data) == 0) return true;
        if (!getPtr() || !other.getPtr()) return false;
        const ZVariant &typed = type ? *this : other, &bare = type ? other : *this;
        bool answer = false;
        return typed.callMatch(bare, tolerance, answer) && answer;
    }
    if (type != otherType) return false;
    const void *a = getPtr(), *b = other.getPtr();
    if (!a || !b) return a == b;
    ZMetaType* own = isInline() ? type : detail::pointedType(type);
    if (!own) return a == b;
    if (own->kind() == ZMetaType::Enum) return detail::enumNumber(own, a) == detail::enumNumber(own, b);
    if (isPlainKind(own->kind())) return plainMatch(own->kind(), a, b, own->byteSize(), tolerance);
    if (own->isVariant()) return static_cast<const ZVariant*>(a)->compare(*static_cast<const ZVariant*>(b)) == 0;
    bool answer = false;
    if (callMatch(other, tolerance, answer)) return answer;
    ZArrayT<ZSelector> names;
    if (!ZTypedPtr(*this).storedPropertyNames(names)) return false;
    for (const ZSelector& name : names) {
        if (!storedMatch(getProperty(name), other.getProperty(name), tolerance, other)) return false;
        answer = true;
    }
    return answer;
}

/// Calls the type's own match method; false if it has none.
bool ZVariant::callMatch(const ZVariant& other, real tolerance, bool& answer) const {
    orv::HeldTarget target;
    toolkit::EpochGuard guard;
    const ZMethod* method;
    {
        orv::HeldTarget::Lookup looking(target);
        method = ZTypedPtr(*this).method(&target.typed, zsel<"matchValue">(), zsel<"const">());
    }
    if (!method) return false;
    const ZVariant arguments[] = {other, ZVariant(tolerance)};
    answer = method->invoke(target.typed.instance, target.typed.type, arguments, 2).toBool();
    return true;
}

// Operations by name

bool ZVariant::checkOperation(const ZSelector& operation, const ZVariant& other) const {
    struct Word {
        const char* text;
        bool (*check)(const ZVariant&, const ZVariant&);
    };
    using V = const ZVariant&;
    static constexpr auto equals = [](V a, V b) { return a.compare(b) == 0; };
    static constexpr auto differs = [](V a, V b) { return a.compare(b) != 0; };
    static constexpr auto less = [](V a, V b) { return a.compare(b) < 0; };
    static constexpr auto atMost = [](V a, V b) { return a.compare(b) <= 0; };
    static constexpr auto greater = [](V a, V b) { return a.compare(b) > 0; };
    static constexpr auto atLeast = [](V a, V b) { return a.compare(b) >= 0; };
    static constexpr auto contains = [](V a, V b) { return a.contains(b); };
    static constexpr auto misses = [](V a, V b) { return !a.contains(b); };
    static constexpr auto within = [](V a, V b) { return b.contains(a); };
    static constexpr Word words[] = {{"is", equals},        {"equals", equals},
                                     {"==", equals},        {"not", differs},
                                     {"notequal", differs}, {"!=", differs},
                                     {"<>", differs},       {"less", less},
                                     {"<", less},           {"lessorequal", atMost},
                                     {"<=", atMost},        {"greater", greater},
                                     {">", greater},        {"greaterorequal", atLeast},
                                     {">=", atLeast},       {"contains", contains},
                                     {"has", contains},     {"nothas", misses},
                                     {"misses", misses},    {"in", within}};
    if (const char* text = operation.string())
        for (const Word& word : words)
            if (std::strcmp(text, word.text) == 0) return word.check(*this, other);
    if (operation.deepName() && operation.param(0).cmpstr("not") == 0)
        return !checkWithMethod(operation.extract(1, operation.parcount()), other);
    return checkWithMethod(operation, other);
}

bool ZVariant::checkWithMethod(const ZSelector& method, const ZVariant& other) const {
    ZArrayT<ZVariant> arguments;
    return arguments.append(other) && invoke(method, arguments).toBool();
}
