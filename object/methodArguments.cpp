#include "object/methodArguments.h"

#include "core/debug.h"
#include "object/ZEnumType.h"
#include "object/ZMethodCall.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "value/ZVArray.h"

#include <cstring>

namespace orv {
namespace {

template <class T> bool number(bool (ZVariant::*read)(T*) const, const ZVariant& value, char (&room)[8]) {
    T result{};
    if (!(value.*read)(&result)) return false;
    std::memcpy(room, &result, sizeof result);
    return true;
}

} // namespace

bool isEnumHeld(const ZMetaType* type, const void* value) {
    const ZEnumType* items = value ? type->enumType() : nullptr;
    return !items || items->isHeld(value);
}

bool numberBytes(const MethodParam& param, const ZVariant& value, char (&room)[8]) {
    if (!value.type()) return value.isNull();
    switch (param.kind) {
    case ZMetaType::Bool:
        return number(&ZVariant::toBool, value, room);
    case ZMetaType::Char:
        return number(&ZVariant::toChar, value, room);
    case ZMetaType::Byte:
        return number(&ZVariant::toByte, value, room);
    case ZMetaType::Short:
        return number(&ZVariant::toShort, value, room);
    case ZMetaType::Word:
        return number(&ZVariant::toWord, value, room);
    case ZMetaType::UInt:
        return number(&ZVariant::toUInt, value, room);
    case ZMetaType::Large:
        return number(&ZVariant::toLarge, value, room);
    case ZMetaType::ULarge:
        return number(&ZVariant::toULarge, value, room);
    case ZMetaType::Float:
        return number(&ZVariant::toFloat, value, room);
    case ZMetaType::Double:
    case ZMetaType::Real:
        return number(&ZVariant::toDouble, value, room);
    case ZMetaType::Enum: {
        // Names of items are for the type to read.
        const int given = value.typeType();
        if (given == ZMetaType::Selector || given == ZMetaType::String) return false;
        large read;
        const ZEnumType* items = param.data->enumType();
        // Asked ahead of its being cut to the size of the enumeration.
        if (!value.toLarge(&read) || (items && !items->holds(read))) return false;
        std::memcpy(room, &read, sizeof read);
        return true;
    }
    case ZMetaType::Int:
        return number(&ZVariant::toInt, value, room);
    default:
        return false;
    }
}

bool argumentWord(const MethodParam& param, const ZVariant& value, const void*& word) {
    word = nullptr;
    ZMetaType* held = value.type();
    if (param.passing == Passing::Value) {
        if (ORV_LIKELY(held == param.data && held)) {
            const uint size = param.data->byteSize();
            const void* from = value.getPtr();
            if (size > sizeof word || !isPassable(param.data, from)) return false;
            // Sizes that the compiler knows make one move.
            if (size == 4)
                std::memcpy(&word, from, 4);
            else if (size == 8)
                std::memcpy(&word, from, 8);
            else
                std::memcpy(&word, from, size);
            return true;
        }
        char room[8] = {};
        if (!isNumber(param.kind) || !numberBytes(param, value, room)) return false;
        std::memcpy(&word, room, sizeof room);
        return true;
    }
    if (!held || param.pointers > (param.passing == Passing::Pointer) || !param.data) return false;
    if (param.data == held && !held->holdsZType() && param.isConst && param.kind != ZMetaType::Char) {
        word = value.getPtr();
        return word != nullptr && isPassable(param.data, word);
    }
    if (param.isConst && param.data->isVariant()) {
        word = &value;
        return true;
    }
    return false;
}

namespace {
/// Back to the type that the entry was given with.
template <class To> To entryAs(ZMethod::Func entry) {
    return reinterpret_cast<To>(reinterpret_cast<void (*)()>(entry));
}
} // namespace

void* callWords(const ZMethod* method, const void* instance, const void* const* words) {
    auto record = const_cast<ZMethod*>(method);
    const ZMethod::Func entry = method->getFunc();
    switch (method->fastWords()) {
    case 0:
        return entry(instance, record);
    case 1:
        return entryAs<MethodWords1>(entry)(instance, record, words[0]);
    case 2:
        return entryAs<MethodWords2>(entry)(instance, record, words[0], words[1]);
    case 3:
        return entryAs<MethodWords3>(entry)(instance, record, words[0], words[1], words[2]);
    case 4:
        return entryAs<MethodWords4>(entry)(instance, record, words[0], words[1], words[2], words[3]);
    default:
        return nullptr;
    }
}

ZVariant copiedValue(const MethodParam& param, const void* value) {
    if (param.data->isVariant()) return *static_cast<const ZVariant*>(value);
    return ZVariant(param.data, value);
}
ZVariant wrapAddress(const MethodParam& param, void* address, bool owned) {
    if (!address || !param.data || param.pointers > 1) return {};
    if (param.passing == Passing::Reference && param.pointers) {
        std::memcpy(&address, address, sizeof address);
        if (!address) return {};
    }
    ZVariant wrapped;
    if (param.data->holdsZType() ||
        (param.passing == Passing::Pointer && param.data->getFlags() & ZMetaType::Retaining)) {
        wrapped.setValue(param.data->getPtrType(), address, !owned, false);
    } else if (param.passing == Passing::Reference && !param.pointers) {
        return copiedValue(param, address);
    } else if (owned) {
        wrapped.setValue(param.type, address, false, false);
    } else if (param.kind == ZMetaType::Char && param.isConst) {
        return ZVariant(ZString(static_cast<const char*>(address)));
    } else if (param.kind != ZMetaType::Void && param.kind != ZMetaType::Unknown && param.data->byteSize()) {
        return copiedValue(param, address);
    }
    return wrapped;
}
ZVariant wrapWord(const MethodParam& param, void* word, bool owned) {
    if (!param.data) return {};
    if (param.kind == ZMetaType::Int && param.passing == Passing::Value && param.data == ztype<int>()) {
        int number;
        std::memcpy(&number, &word, sizeof number);
        return ZVariant(number);
    }
    return param.passing == Passing::Value ? ZVariant(param.data, &word) : wrapAddress(param, word, owned);
}

ZArrayT<ZVariant> variantList(const ZVArray& values) {
    ZArrayT<ZVariant> list;
    const uint count = values.count();
    if (!list.reserve(count)) return list;
    for (uint i = 0; i < count && list.append(values.variant(int(i))); ++i) {}
    return list;
}

} // namespace orv

// Calling

ZVariant ZMethod::invoke(const void* instance, const ZMetaType* type, const ZArrayT<ZVariant>& args) const {
    return invoke(instance, type, args.data(), int(args.count()));
}
ZVariant ZMethod::invoke(const void* instance, const ZMetaType* type, const ZVariant* args, int count) const {
    toolkit::EpochGuard guard;
    const orv::MethodParams* known = params(type);
    if (ORV_UNLIKELY(!known)) return {};
    // Words need no block: what fits as it is goes straight to the fast entry.
    if (ORV_LIKELY(wordCount == count && known->count == count + 1 && count <= 4 && !(flags & CollectArgs) &&
                   (instance || flags & TypeMethod))) {
        const void* words[4];
        int i = 0;
        while (i < count && orv::argumentWord((*known)[i + 1], args[i], words[i])) ++i;
        if (ORV_LIKELY(i == count && openIndex < 0)) {
            void* word = orv::callWords(this, instance, words);
            if (!known->returns) return {};
            return orv::wrapWord((*known)[0], word, flags & (Creator | Manage));
        }
    }
    ZMethodCall call;
    if (!call.setup(instance, this, type, known->constructor)) {
        zrecover();
        return {};
    }
    for (int i = 0; i < count; ++i) {
        // What is left over goes, unless there is an open argument.
        if (openIndex < 0 && !collectArgs() && i + 1 >= known->count) break;
        if (!call.add(args[i])) return {};
    }
    return call.invoke() ? call.takeResult() : ZVariant();
}
