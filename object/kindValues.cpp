#include "object/kindValues.h"

#include "core/ZSelector.h"
#include "core/compare.h"
#include "object/ZMetaType.h"

#include <cstring>

namespace orv {
namespace {

/// The C++ type of a number kind as an empty value.
template <class T> struct KindOf { using Value = T; };

/// Calls `use` with the C++ type of a number kind; false for other kinds. Enums are ints with the order of uints.
template <class F> bool withNumber(int kind, F&& use) {
    switch (kind) {
    case ZMetaType::Bool:
    case ZMetaType::Byte:
        use(KindOf<byte>());
        return true;
    case ZMetaType::Char:
        use(KindOf<int8>());
        return true;
    case ZMetaType::Short:
        use(KindOf<int16>());
        return true;
    case ZMetaType::Word:
        use(KindOf<word>());
        return true;
    case ZMetaType::Int:
        use(KindOf<int>());
        return true;
    case ZMetaType::UInt:
    case ZMetaType::Enum:
        use(KindOf<uint>());
        return true;
    case ZMetaType::Large:
        use(KindOf<large>());
        return true;
    case ZMetaType::ULarge:
        use(KindOf<ularge>());
        return true;
    case ZMetaType::Float:
        use(KindOf<float>());
        return true;
    case ZMetaType::Double:
    case ZMetaType::Real:
        use(KindOf<double>());
        return true;
    default:
        return false;
    }
}
template <class T> T fetch(const void* value) {
    T out;
    std::memcpy(&out, value, sizeof out);
    return out;
}
template <class T> void put(void* memory, T value) { std::memcpy(memory, &value, sizeof value); }
const ZString& text(const void* value) { return *static_cast<const ZString*>(value); }
const ZSelector& name(const void* value) { return *static_cast<const ZSelector*>(value); }

/// A number of one C++ type as one of another, by the rules of the header.
template <class T, class U> T numberAs(U value) {
    if constexpr (std::is_floating_point_v<U> && std::is_integral_v<T>)
        return realToInteger<T>(value);
    else
        return T(value);
}
template <class T> bool readNumber(int kind, const void* value, T& out) {
    // What an enum holds is an int.
    if (kind == ZMetaType::Enum) kind = ZMetaType::Int;
    return withNumber(kind, [&]<class U>(KindOf<U>) { out = numberAs<T>(fetch<U>(value)); });
}
int compareReals(double a, double b) {
    if (a == b) return 0;
    return b - 1e-8 >= a ? -1 : a >= b + 1e-8 ? 1 : 0;
}
template <class T> bool readText(void* value, const ZString& text, bool (ZString::*read)(T&, int) const, int mode) {
    T number;
    if (!(text.*read)(number, mode)) return false;
    put(value, number);
    return true;
}
int sign(int order) { return (order > 0) - (order < 0); }
/// Bytes of a value of a plain kind. An enum has the size of its type.
uint bytesOf(int kind, uint size) {
    return kind <= ZMetaType::Void || (kind == ZMetaType::Enum && size) ? size : kindSize(kind);
}
/// An enum's bits, whatever its size.
ularge enumAt(const void* value, uint size) {
    if (size == 1) return fetch<byte>(value);
    if (size == 2) return fetch<word>(value);
    return size == 8 ? fetch<ularge>(value) : fetch<uint>(value);
}

} // namespace

uint kindSize(int kind) {
    if (kind == ZMetaType::Selector) return sizeof(ZSelector);
    if (kind == ZMetaType::String) return sizeof(ZString);
    if (kind == ZMetaType::Pointer) return sizeof(void*);
    uint size = 0;
    withNumber(kind, [&]<class T>(KindOf<T>) { size = sizeof(T); });
    return size;
}

void constructKind(int kind, void* memory, uint size) {
    // Empty texts and selectors are zero bytes too.
    if (isPlainKind(kind)) std::memset(memory, 0, bytesOf(kind, size));
}

void destructKind(int kind, void* value) {
    if (kind == ZMetaType::String)
        static_cast<ZString*>(value)->~ZString();
    else if (kind == ZMetaType::Selector)
        static_cast<ZSelector*>(value)->~ZSelector();
}

void copyKind(int kind, void* target, const void* source, uint size) {
    if (kind == ZMetaType::String)
        *static_cast<ZString*>(target) = text(source);
    else if (kind == ZMetaType::Selector)
        *static_cast<ZSelector*>(target) = name(source);
    else if (isPlainKind(kind))
        std::memmove(target, source, bytesOf(kind, size));
}

int orderKind(int kind, const void* a, const void* b, uint size) {
    if (kind == ZMetaType::String) return sign(text(a).compare(text(b)));
    if (kind == ZMetaType::Selector) return name(a).compare(name(b));
    if (kind == ZMetaType::Enum) return zcompare(enumAt(a, size), enumAt(b, size));
    int order = 0;
    if (withNumber(kind, [&]<class T>(KindOf<T>) { order = zcompare(fetch<T>(a), fetch<T>(b)); })) return order;
    return isPlainKind(kind) ? sign(std::memcmp(a, b, size)) : 0;
}

int compareKind(int kind, const void* a, const void* b, uint size) {
    if (!isRealKind(kind)) return orderKind(kind, a, b, size);
    double first = 0, second = 0;
    kindToReal(kind, a, first);
    kindToReal(kind, b, second);
    return compareReals(first, second);
}

uint hashKind(int kind, const void* value, uint size) {
    if (kind == ZMetaType::String) return text(value).textHash();
    if (kind == ZMetaType::Selector) return name(value).hashKey();
    uint hash = 0;
    if (withNumber(kind, [&]<class T>(KindOf<T>) { hash = zhashkey(fetch<T>(value)); })) return hash;
    if (isPlainKind(kind))
        for (uint i = 0; i < size; ++i) hash = hash * 31 + static_cast<const byte*>(value)[i];
    return hash;
}

bool isNullKind(int kind, const void* value, uint size) {
    if (kind == ZMetaType::String) return text(value).isEmpty();
    if (kind == ZMetaType::Selector) return name(value).isEmpty();
    bool null = true;
    if (withNumber(kind, [&]<class T>(KindOf<T>) { null = fetch<T>(value) == 0; })) return null;
    for (uint i = 0; i < size && null; ++i) null = static_cast<const byte*>(value)[i] == 0;
    return null;
}

ZString kindToString(int kind, const void* value) {
    ZString out;
    bool done = true;
    double real;
    ularge magnitude;
    large number;
    switch (kind) {
    case ZMetaType::Unknown:
    case ZMetaType::Void:
        break;
    case ZMetaType::Bool:
        done = out.setBool(fetch<byte>(value) != 0);
        break;
    case ZMetaType::String:
        return text(value);
    case ZMetaType::Selector:
        return ZString(name(value));
    case ZMetaType::ULarge:
        kindToULarge(kind, value, magnitude);
        done = out.setULarge(magnitude);
        break;
    default:
        if (isRealKind(kind))
            done = kindToReal(kind, value, real) && out.setReal(real);
        else if (kindToLarge(kind, value, number))
            done = out.setLarge(number);
    }
    if (!done) ZError::fail();
    return out;
}

bool kindFromString(int kind, void* value, const ZString& text) {
    bool truth;
    switch (kind) {
    case ZMetaType::Bool:
        if (!text.toBool(truth)) return false;
        put(value, byte(truth));
        return true;
    case ZMetaType::Char:
        return readText(value, text, &ZString::toInt8, 10);
    case ZMetaType::Byte:
        return readText(value, text, &ZString::toByte, 10);
    case ZMetaType::Short:
        return readText(value, text, &ZString::toInt16, 10);
    case ZMetaType::Word:
        return readText(value, text, &ZString::toWord, 10);
    case ZMetaType::Enum:
    case ZMetaType::Int:
        return readText(value, text, &ZString::toInt, 10);
    case ZMetaType::UInt:
        return readText(value, text, &ZString::toUInt, 10);
    case ZMetaType::Large:
        return readText(value, text, &ZString::toLarge, 10);
    case ZMetaType::ULarge:
        return readText(value, text, &ZString::toULarge, 10);
    case ZMetaType::Float:
        return readText(value, text, &ZString::toFloat, '.');
    case ZMetaType::Double:
    case ZMetaType::Real:
        return readText(value, text, &ZString::toReal, '.');
    case ZMetaType::String:
        return static_cast<ZString*>(value)->assign(text);
    case ZMetaType::Selector: {
        ZSelector made = text.toSelector();
        if (made.isEmpty() && !text.isEmpty()) return false;
        *static_cast<ZSelector*>(value) = made;
        return true;
    }
    default:
        return false;
    }
}

bool kindToLarge(int kind, const void* value, large& out) { return readNumber(kind, value, out); }
bool kindToULarge(int kind, const void* value, ularge& out) { return readNumber(kind, value, out); }
bool kindToReal(int kind, const void* value, double& out) { return readNumber(kind, value, out); }

bool kindToBool(int kind, const void* value, bool& out) {
    return withNumber(kind, [&]<class T>(KindOf<T>) { out = fetch<T>(value) != 0; });
}

bool convertKind(int kind, void* value, int fromKind, const void* from) {
    if (!isNumberKind(fromKind)) return false;
    if (kind == ZMetaType::Bool) {
        bool truth = false;
        kindToBool(fromKind, from, truth);
        put(value, byte(truth));
        return true;
    }
    if (kind == ZMetaType::Enum) kind = ZMetaType::Int;
    return withNumber(kind, [&]<class T>(KindOf<T>) {
        T number = 0;
        readNumber(fromKind, from, number);
        put(value, number);
    });
}

} // namespace orv
