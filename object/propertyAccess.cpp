#include "object/propertyAccess.h"

#include "object/ZMetaType.h"
#include "object/methodArguments.h"
#include "object/methodParams.h"
#include "object/ztype.h"

#include <cstring>

namespace orv {

namespace {

/// Calls the fast entry, whose type the number of words tells.
void* callFast(ZMethod* method, const void* instance, const AccessorWord* words, int count) {
    auto word = [&](int i) -> const void* {
        if (!words[i].isNumber) return words[i].address;
        const void* packed = nullptr;
        std::memcpy(&packed, &words[i].number, sizeof words[i].number);
        return packed;
    };
    ZMethod::Func entry = method->getFunc();
    auto stored = reinterpret_cast<void (*)()>(entry);
    switch (count) {
    case 0:
        return entry(instance, method);
    case 1:
        return reinterpret_cast<MethodWords1>(stored)(instance, method, word(0));
    default:
        return reinterpret_cast<MethodWords2>(stored)(instance, method, word(0), word(1));
    }
}

/// The argument block of a stacked entry: the word for the result, then at most two arguments.
struct ArgumentBlock {
    alignas(8) byte bytes[24];

    ArgumentBlock(void* result, const AccessorWord* words, int count) {
        std::memcpy(bytes, &result, sizeof result);
        byte* at = bytes + sizeof result;
        for (int i = 0; i < count; ++i) {
            size_t size = words[i].isNumber ? sizeof words[i].number : sizeof words[i].address;
            std::memcpy(at, words[i].isNumber ? static_cast<const void*>(&words[i].number) : &words[i].address, size);
            at += size;
        }
    }
    const void* answer() const {
        const void* address;
        std::memcpy(&address, bytes, sizeof address);
        return address;
    }
};

/// Makes the first bytes of a word a number of that kind; false for other kinds.
bool setNumber(byte kind, const void* word, ZVariant& result) {
    auto as = [&](auto zero) {
        std::memcpy(&zero, &word, sizeof zero);
        return zero;
    };
    switch (kind) {
    case ZMetaType::Bool:
        return result.setBool(as(byte(0)) != 0);
    case ZMetaType::Byte:
        return result.setByte(as(byte(0)));
    case ZMetaType::Short:
        return result.setShort(as(short(0)));
    case ZMetaType::Word:
        return result.setWord(as(::word(0)));
    case ZMetaType::Int:
        return result.setInt(as(0));
    case ZMetaType::UInt:
        return result.setUInt(as(0u));
    case ZMetaType::Large:
        return result.setLarge(as(large(0)));
    case ZMetaType::ULarge:
        return result.setULarge(as(ularge(0)));
    case ZMetaType::Double:
        return result.setDouble(as(0.0));
    case ZMetaType::Real:
        return result.setReal(as(real(0)));
    default:
        return false;
    }
}

/// A copy of the value at an address. An instance there may be part of another one, so it is copied, not shared.
bool takeCopy(const ReadPlan& plan, const void* address, ZVariant& result) {
    if (!address) return false;
    if (plan.variant) {
        result = *static_cast<const ZVariant*>(address);
        return true;
    }
    if (!plan.type->holdsZType()) return result.setValue(plan.type, address, true, false);
    ZType* own = static_cast<const ZType*>(address)->copy();
    if (!own) return false;
    result.setType(own);
    own->release();
    return true;
}

/// Lets the stacked entry build its result: in the variant's own room, or in a counted block.
bool takeBuilt(ZMethod* method, const void* instance, const AccessorWord* words, int count, const ReadPlan& plan,
               ZVariant& result) {
    if (plan.variant) {
        alignas(ZVariant) byte room[sizeof(ZVariant)];
        ArgumentBlock block(room, words, count);
        method->getStacked()(instance, method, block.bytes);
        auto built = reinterpret_cast<ZVariant*>(room);
        result = std::move(*built);
        built->~ZVariant();
        return true;
    }
    alignas(16) byte room[16];
    void* memory = plan.type->heldInline() ? room : toolkit::allocZeroedBlock(plan.type->byteSize());
    if (!memory) return false;
    ArgumentBlock block(memory, words, count);
    method->getStacked()(instance, method, block.bytes);
    if (!plan.type->holdsZType()) return result.setValue(plan.type, memory, false, false);
    auto own = static_cast<ZType*>(memory);
    result.setType(own);
    own->release();
    return true;
}

} // namespace

ReadPlan readPlan(const ZMethod* method, const ZMetaType* type) {
    ReadPlan plan;
    const MethodParams* params = method->params(type);
    if (!params || !params->returns || params->count < 1) return plan;
    const MethodParam& param = (*params)[0];
    if (!param.type || !param.data) return plan;
    bool fast = method->fastWords() == params->count - 1, stacked = method->hasStacked();
    plan.variant = param.data->isVariant() && param.passing != Passing::Pointer;
    plan.type = param.data;
    plan.owned = method->getFlags() & ZMethod::Creator;
    switch (param.passing) {
    case Passing::Pointer:
        for (int i = 0; i < param.pointers; ++i)
            if (ZMetaType* pointer = plan.type->getPtrType()) plan.type = pointer;
        plan.shape = fast ? ReadPlan::Pointer : ReadPlan::Nothing;
        break;
    case Passing::Reference:
        plan.shape = fast ? ReadPlan::Address : stacked ? ReadPlan::Answered : ReadPlan::Nothing;
        break;
    case Passing::Value:
        plan.shape = fast && !plan.variant && param.data->heldInline() ? ReadPlan::Word
                     : stacked                                         ? ReadPlan::Stacked
                                                                       : ReadPlan::Nothing;
        if (ZVariant number; plan.shape == ReadPlan::Word && setNumber(byte(param.kind), nullptr, number))
            plan.number = number.type() == plan.type ? byte(param.kind) : byte(0);
        break;
    }
    return plan;
}

WritePlan writePlan(const ZMethod* method, int parameter, const ZMetaType* type) {
    WritePlan plan;
    const MethodParams* params = method->params(type);
    if (!params || parameter >= params->count) return plan;
    const MethodParam& param = (*params)[parameter];
    if (!param.type || !param.data) return plan;
    plan.type = param.data;
    plan.pointer = param.passing == Passing::Pointer;
    plan.variant = !plan.pointer && param.data->isVariant();
    plan.usable = param.passing != Passing::Value || (param.kind == ZMetaType::Int && param.size == 4);
    plan.number = param.passing == Passing::Value;
    plan.answers = params->returns;
    return plan;
}

bool accessorWord(const WritePlan& plan, const ZVariant& value, ZVariant& room, AccessorWord& word) {
    if (!plan.usable) return false;
    if (plan.number) {
        int number;
        if (!value.toInt(&number)) return false;
        word = AccessorWord(number);
        return true;
    }
    if (plan.variant) {
        word = AccessorWord(static_cast<const void*>(&value));
        return true;
    }
    const ZVariant* from = &value;
    ZMetaType* type = value.mainType();
    if (type != plan.type) {
        const void* part = type && value.getPtr() ? upcast(type, plan.type, value.getPtr()) : nullptr;
        if (part) {
            word = AccessorWord(part);
            return isPassable(plan.type, part);
        }
        if (value.isNull()) {
            word = AccessorWord(static_cast<const void*>(nullptr));
            return plan.pointer;
        }
        if (plan.pointer) return false;
        room = value;
        if (!room.convert(plan.type)) return false;
        from = &room;
    }
    word = AccessorWord(from->getPtr());
    return (word.address || plan.pointer) && isPassable(plan.type, word.address);
}

bool callAccessor(ZMethod* method, const void* instance, const AccessorWord* words, int count, const ReadPlan& plan,
                  ZVariant& result) {
    switch (plan.shape) {
    case ReadPlan::Word: {
        void* word = callFast(method, instance, words, count);
        return result.setValue(plan.type, &word, false, false);
    }
    case ReadPlan::Pointer: {
        void* pointer = callFast(method, instance, words, count);
        return result.setValue(plan.type, pointer, !plan.owned, false);
    }
    case ReadPlan::Address:
        return takeCopy(plan, callFast(method, instance, words, count), result);
    case ReadPlan::Stacked:
        return takeBuilt(method, instance, words, count, plan, result);
    case ReadPlan::Answered: {
        ArgumentBlock block(nullptr, words, count);
        method->getStacked()(instance, method, block.bytes);
        return takeCopy(plan, block.answer(), result);
    }
    default:
        return false;
    }
}

bool callGetter(ZMethod* method, const void* instance, const ReadPlan& plan, ZVariant& result) {
    if (plan.number) return setNumber(plan.number, method->getFunc()(instance, method), result);
    return callAccessor(method, instance, nullptr, 0, plan, result);
}

bool readEntry(const ZMetaType* type, const PropertyCatalogue::Entry& entry, const void* instance, ZVariant& value) {
    if (const CachedMethod* getter = readAccessor(type, entry))
        return callGetter(getter->method, static_cast<const char*>(instance) + getter->offset, entry.readPlan, value);
    if (entry.property->dynamic()) value = entry.property->value();
    return entry.property->dynamic();
}

bool callForNumber(ZMethod* method, const void* instance, const AccessorWord* words, int count, int& answer) {
    if (method->fastWords() == count) {
        void* word = callFast(method, instance, words, count);
        std::memcpy(&answer, &word, sizeof answer);
    } else if (method->hasStacked()) {
        int made = 0;
        ArgumentBlock block(&made, words, count);
        method->getStacked()(instance, method, block.bytes);
        answer = made;
    } else {
        return false;
    }
    return true;
}

} // namespace orv
