#include "core/ZArrayT.h"
#include "core/ZError.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "object/ztype.h"
#include "text/ZFileName.h"
#include "text/ZString.h"
#include "text/ZStringArg.h"
#include "text/format.h"
#include "value/ZArgument.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

// What texts have to do with values.

bool ZString::setVariant(const ZVariant& value) {
    ZFailGuard guard;
    ZString text = value.toString();
    if (guard.rose()) {
        guard.forget();
        return false;
    }
    *this = std::move(text);
    return true;
}

// Formatting

namespace {

template <class C> bool formatInto(ZString& text, const C* format, const ZArgument& arguments) {
    if (!format) return false;
    ZString made;
    ZArgumentList list = arguments.getArgs();
    auto sink = [](void* context, const C* piece, int length) {
        return static_cast<ZString*>(context)->append(ZString(piece, length));
    };
    ZFailGuard guard;
    const bool done = orv::formatTo<C>(sink, &made, format, list) > 0 && !guard.rose();
    guard.forget();
    if (!done) return false;
    text = std::move(made);
    return true;
}
template <class C, class Values> bool formatValues(ZString& text, const C* format, const Values& values) {
    ZFailGuard guard;
    const ZArgument arguments(values, ZString::Type(orv::detail::widthOf<C>), false);
    if (!guard.rose()) return formatInto(text, format, arguments);
    guard.forget();
    return false;
}

} // namespace

bool ZString::xprintf(const char* format, const ZArrayT<ZVariant>& args) { return formatValues(*this, format, args); }
bool ZString::xprintf(const wchar* format, const ZArrayT<ZVariant>& args) { return formatValues(*this, format, args); }
bool ZString::xprintf(const ichar* format, const ZArrayT<ZVariant>& args) { return formatValues(*this, format, args); }
bool ZString::printfArg(const char* format, const ZVArray& args) { return formatValues(*this, format, args); }
bool ZString::printfArg(const wchar* format, const ZVArray& args) { return formatValues(*this, format, args); }
bool ZString::printfArg(const ichar* format, const ZVArray& args) { return formatValues(*this, format, args); }
bool ZString::printfArg(const char* format, const ZArgument& args) { return formatInto(*this, format, args); }
bool ZString::printfArg(const wchar* format, const ZArgument& args) { return formatInto(*this, format, args); }
bool ZString::printfArg(const ichar* format, const ZArgument& args) { return formatInto(*this, format, args); }

// Resource strings

namespace {

/// What a value is in a resource string: the letter of its type, and the value.
ZStringArg argumentOf(const ZVariant& value) {
    const int kind = value.typeType();
    if (kind == ZMetaType::ULarge) return ZStringArg(value.toString());
    if (kind >= ZMetaType::Char && kind <= ZMetaType::Enum) return ZStringArg(value.toLarge());
    if (kind >= ZMetaType::Float && kind <= ZMetaType::Real) return ZStringArg(value.toReal());
    if (kind == ZMetaType::Selector || kind == ZMetaType::String) return ZStringArg(value.toString());
    return {};
}

const ZVariant& itemOf(const ZArrayT<ZVariant>& values, uint index) { return values[index]; }
ZVariant itemOf(const ZVArray& values, uint index) { return values.variant(int(index)); }

/// Calls `run` with the first arguments, as many as a text can name.
template <class Values, class F> bool withArguments(const Values& values, F&& run) {
    constexpr uint most = 9;
    ZStringArg list[most];
    ZFailGuard guard;
    const uint count = values.count() < most ? values.count() : most;
    for (uint i = 0; i < count; ++i) list[i] = argumentOf(itemOf(values, i));
    if (!guard.rose()) return run(list, int(count));
    guard.forget();
    return false;
}

template <class Values> ZString paramTypes(const Values& values) {
    ZString letters;
    for (uint i = 0; i < values.count(); ++i) {
        const int kind = itemOf(values, i).typeType();
        const bool isInteger = kind >= ZMetaType::Char && kind <= ZMetaType::Enum;
        const bool isReal = kind >= ZMetaType::Float && kind <= ZMetaType::Real;
        const bool isText = kind == ZMetaType::Selector || kind == ZMetaType::String;
        if (letters.append(isInteger ? "i" : isReal ? "r" : isText ? "s" : " ")) continue;
        ZError::fail();
        return {};
    }
    return letters;
}

} // namespace

#define ORV_EXEC_RES(letter)                                                                                           \
    bool ZString::execXRes##letter(const ZArrayT<ZVariant>& values) {                                                  \
        return withArguments(values,                                                                                   \
                             [&](const ZStringArg* list, int count) { return execRes##letter##Arg(list, count); });    \
    }                                                                                                                  \
    bool ZString::execXRes##letter(uint code, const ZArrayT<ZVariant>& values) {                                       \
        return withArguments(                                                                                          \
            values, [&](const ZStringArg* list, int count) { return execRes##letter##Arg(code, list, count); });       \
    }                                                                                                                  \
    bool ZString::execRes##letter##Arg(const ZVArray& values) {                                                        \
        return withArguments(values,                                                                                   \
                             [&](const ZStringArg* list, int count) { return execRes##letter##Arg(list, count); });    \
    }                                                                                                                  \
    bool ZString::execRes##letter##Arg(uint code, const ZVArray& values) {                                             \
        return withArguments(                                                                                          \
            values, [&](const ZStringArg* list, int count) { return execRes##letter##Arg(code, list, count); });       \
    }
ORV_EXEC_RES(A)
ORV_EXEC_RES(W)
ORV_EXEC_RES(I)
#undef ORV_EXEC_RES

ZString ZString::createParamType(const ZArrayT<ZVariant>& values) { return paramTypes(values); }
ZString ZString::createParamType(const ZVArray& values) { return paramTypes(values); }

// Parts

static ZVArray arrayOf(const ZArrayT<ZString>& parts) {
    ZVArray made(ztype<ZString>());
    if (!made.hasType() || !made.appendItems(parts.data(), parts.count())) {
        if (!parts.isEmpty()) ZError::fail();
        made.clear();
    }
    return made;
}
ZVArray ZString::separate() const { return arrayOf(split()); }
ZVArray ZString::separate(uint code, bool keepEmpty) const { return arrayOf(split(code, keepEmpty)); }
ZVArray ZString::separate(const ZString& codes, bool keepEmpty) const { return arrayOf(split(codes, keepEmpty)); }
ZVArray ZString::separateString(const ZString& delimiter, bool keepEmpty) const {
    return arrayOf(splitString(delimiter, keepEmpty));
}
ZString ZString::combineNames(const ZVArray& items) {
    ZString text;
    for (uint i = 0; i < items.count(); ++i)
        if (!text.append(items.variant(int(i)).toString()) || !text.append("\n")) {
            ZError::fail();
            return {};
        }
    return text;
}

// Scans

static bool keptByMethod(void* method, const ZString& name, bool isFolder) {
    const ZVariant arguments[] = {name, isFolder};
    return static_cast<const ZMethodRef*>(method)->invoke(arguments, 2).toBool();
}
ZFileName::Filter::Filter(const ZMethodRef& method)
    : keep(method.isValid() ? keptByMethod : nullptr), context(const_cast<ZMethodRef*>(&method)) {}
