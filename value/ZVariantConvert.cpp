#include "core/ZError.h"
#include "object/ZEnumType.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/kindValues.h"
#include "value/ZVariant.h"
#include "value/variantTypes.h"

using namespace orv;

namespace {

/// What a getter reads: the kind and address of a plain value; a kind that isn't plain for all else.
struct Source {
    int kind = -1;
    const void* value = nullptr;
    int enumValue;

    explicit Source(const ZVariant& variant) : value(variant.getPtr()) {
        ZMetaType* type = variant.type();
        if (!type || !value) return;
        kind = type->kind();
        if (ORV_UNLIKELY(kind > ZMetaType::String)) {
            // The kind of what a pointer, or a type that stands for another, leads to.
            ZMetaType* own = detail::pointedType(type);
            type = own ? own->getDataType() : nullptr;
            kind = type ? type->kind() : -1;
        }
        if (ORV_UNLIKELY(kind == ZMetaType::Enum)) {
            enumValue = detail::enumNumber(type, value);
            value = &enumValue;
        }
    }
    Source(const Source&) = delete;
    const ZString& text() const { return *static_cast<const ZString*>(value); }
    const ZSelector& name() const { return *static_cast<const ZSelector*>(value); }
};

template <class T> T plainAt(const void* value) {
    T out;
    std::memcpy(&out, value, sizeof out);
    return out;
}

template <class T, class FromText, class FromName>
bool readInteger(const ZVariant& variant, T* out, FromText fromText, FromName fromName) {
    Source source(variant);
    switch (source.kind) {
    case ZMetaType::Int:
        *out = T(plainAt<int>(source.value));
        return true;
    case ZMetaType::String:
        return fromText(source.text(), *out);
    case ZMetaType::Selector:
        return fromName(source.name(), *out);
    case ZMetaType::ULarge:
        *out = T(plainAt<ularge>(source.value));
        return true;
    case ZMetaType::Float:
    case ZMetaType::Double:
    case ZMetaType::Real: {
        double real = 0;
        kindToReal(source.kind, source.value, real);
        *out = realToInteger<T>(real);
        return true;
    }
    default:
        large number;
        if (!kindToLarge(source.kind, source.value, number)) return false;
        *out = T(number);
        return true;
    }
}

} // namespace

int detail::enumNumber(const ZMetaType* type, const void* value) {
    const uint size = type->byteSize();
    if (ORV_LIKELY(size >= 4)) return plainAt<int>(value);
    // The items tell which of them are negative.
    if (const ZEnumType* items = type->enumType()) return items->valueOf(value);
    return size == 1 ? plainAt<byte>(value) : plainAt<word>(value);
}
bool detail::setEnumNumber(const ZMetaType* type, void* value, large number) {
    const uint size = type->byteSize() < sizeof number ? type->byteSize() : sizeof number;
    if (size < sizeof number) {
        // Of its bytes, with a sign or without.
        const large end = large(1) << size * 8;
        if (number >= end || number < -end / 2) return false;
    }
    std::memcpy(value, &number, size);
    return true;
}

// Getters

bool ZVariant::toBool(bool* out) const {
    Source source(*this);
    if (source.kind == ZMetaType::String) return source.text().toBool(*out);
    if (source.kind == ZMetaType::Selector) return source.name().toBool(*out);
    return kindToBool(source.kind, source.value, *out);
}

#define ORV_READ(Name, Type, Reader)                                                                                   \
    bool ZVariant::Name(Type* out) const {                                                                             \
        return readInteger(                                                                                            \
            *this, out, [](const ZString& text, Type& number) { return text.Reader(number); },                         \
            [](const ZSelector& name, Type& number) { return name.Reader(number); });                                  \
    }
ORV_READ(toByte, byte, toByte)
ORV_READ(toShort, short, toInt16)
ORV_READ(toWord, word, toWord)
ORV_READ(toInt, int, toInt)
ORV_READ(toUInt, uint, toUInt)
ORV_READ(toLarge, large, toLarge)
ORV_READ(toULarge, ularge, toULarge)
#undef ORV_READ

namespace {
/// For C++ types that are another one's twins.
template <class Twin, class T> bool readAs(const ZVariant& variant, T* out, bool (ZVariant::*read)(Twin*) const) {
    Twin number;
    if (!(variant.*read)(&number)) return false;
    *out = T(number);
    return true;
}
} // namespace

bool ZVariant::toChar(char* out) const {
    return readInteger(
        *this, reinterpret_cast<int8*>(out), [](const ZString& text, int8& number) { return text.toInt8(number); },
        [](const ZSelector& name, int8& number) { return name.toInt8(number); });
}
bool ZVariant::toLong(long* out) const { return readAs<large>(*this, out, &ZVariant::toLarge); }
bool ZVariant::toULong(unsigned long* out) const { return readAs<ularge>(*this, out, &ZVariant::toULarge); }

bool ZVariant::toDouble(double* out) const {
    Source source(*this);
    if (source.kind == ZMetaType::String) return source.text().toReal(*out);
    if (source.kind == ZMetaType::Selector) return source.name().toReal(*out);
    return kindToReal(source.kind, source.value, *out);
}
bool ZVariant::toFloat(float* out) const {
    Source source(*this);
    if (source.kind == ZMetaType::String) return source.text().toFloat(*out);
    if (source.kind == ZMetaType::Selector) return source.name().toFloat(*out);
    double real;
    if (!kindToReal(source.kind, source.value, real)) return false;
    *out = float(real);
    return true;
}

ZSelector ZVariant::toSelector() const {
    Source source(*this);
    if (source.kind == ZMetaType::Selector) return source.name();
    if (source.kind == ZMetaType::String) return source.text().toSelector();
    ZFailGuard guard;
    ZString text = toString();
    if (guard.rose()) return {};
    return text.toSelector();
}

ZString ZVariant::toString() const {
    Source source(*this);
    if (source.kind == ZMetaType::String) return source.text();
    if (isPlainKind(source.kind) && source.kind > ZMetaType::Void && source.kind != ZMetaType::Enum)
        return kindToString(source.kind, source.value);
    ZString text;
    ZMetaType* own = valueType();
    if (own && source.value) own->toString(getPtr(), text);
    return text;
}

ZType* ZVariant::toType() const { return detail::refersToInstance(type()) ? static_cast<ZType*>(held()) : nullptr; }
ZObject* ZVariant::toObject() const {
    ZType* instance = toType();
    return instance && instance->isObject() ? static_cast<ZObject*>(instance) : nullptr;
}

bool ZVariant::numericType() const {
    int kind = Source(*this).kind;
    return (kind >= ZMetaType::Char && kind <= ZMetaType::ULarge) || isRealKind(kind);
}
bool ZVariant::numberType() const {
    Source source(*this);
    double real;
    if (source.kind == ZMetaType::String) return source.text().toReal(real);
    if (source.kind == ZMetaType::Selector) return source.name().toReal(real);
    return isNumberKind(source.kind) && source.kind != ZMetaType::Enum;
}

// Conversion

/// Builds the value of a null variant; false leaves it null.
bool ZVariant::initFrom(ZMetaType* type, const ZVariant& value) {
    const int kind = type->kind();
    Source source(value);
    if (value.type() == type && !value.isNull()) return value.plain() ? (takeBytes(value), true) : copyFrom(value);
    if (isNumberKind(kind) && isNumberKind(source.kind)) {
        large number = 0;
        if (kind == ZMetaType::Enum ? !value.toLarge(&number) || !detail::setEnumNumber(type, data, number)
                                    : !convertKind(kind, data, source.kind, source.value)) {
            forget();
            return false;
        }
        typeBits = tagged(type);
        return true;
    }
    if (isPlainKind(kind) && kind > ZMetaType::Void && isPlainKind(source.kind) && source.kind > ZMetaType::Void) {
        ZFailGuard guard;
        ZString text = value.toString();
        if (guard.rose()) return false;
        return initText(type, text);
    }
    if (type->holdsZType()) {
        if (value.isType(type)) return copyFrom(value);
        auto made = static_cast<ZType*>(type->createFrom(value));
        return made && initInstance(made, false);
    }
    if (value.isNull() || type->isVariant()) return false;
    if (type->heldInline()) {
        if (!type->constructFrom(data, value)) {
            forget();
            return false;
        }
    } else {
        void* made = type->createFrom(value);
        if (!made) return false;
        setHeld(made);
    }
    typeBits = tagged(type);
    return true;
}

bool ZVariant::convert(ZMetaType* type) {
    ZMetaType* target = type ? type->getDataType() : nullptr;
    if (!target) return false;
    if (target->isVariant()) return true;
    if (this->type() == target && !isNull()) return true;
    ZFailGuard guard;
    ZVariant made;
    bool done = take(made, made.initFrom(target, *this));
    if (!done) guard.forget();
    return done;
}

bool ZVariant::convertType(const ZSelector& typeName) { return convert(ZMetaType::find(typeName)); }
