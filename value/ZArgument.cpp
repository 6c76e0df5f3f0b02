#include "value/ZArgument.h"

#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/kindValues.h"
#include "object/ztype.h"
#include "value/ZVArray.h"
#include "value/itemType.h"

#include <algorithm>

using namespace orv;

namespace {

bool isText(const ZMetaType* type) {
    return type && (type->kind() == ZMetaType::String || type->kind() == ZMetaType::Selector);
}
bool isNumber(const ZMetaType* type) { return type && isNumberKind(type->kind()); }
/// Whether the argument is one word that holds a real.
bool isReal(const ZMetaType* type) { return type && isRealKind(type->kind()); }
/// Bytes of an argument, which are its alignment too: ints take four, all else a word.
uint argumentSize(const ZMetaType* type) { return isNumber(type) && !isReal(type) && type->byteSize() <= 4 ? 4 : 8; }

const void* pointerAt(const void* place) {
    const void* pointer;
    std::memcpy(&pointer, place, sizeof pointer);
    return pointer;
}

} // namespace

// The list

ZArgument::ZArgument(int capacity) {
    if (capacity < 0 || capacity > mostArguments || !types.reserve(uint(capacity) + 1)) ZError::fail();
}
ZArgument::ZArgument(ZMetaType** given, int count) {
    if (count < 0 || count > mostArguments + 1 || !types.append(given, uint(count)) || !reset()) ZError::fail();
}
ZArgument::ZArgument(ZMetaType* type, const ZSelector& signature) : types(signature.metaTypes(type)) {
    if (int(types.count()) != signature.parcount() + 1 || !reset()) ZError::fail();
}
ZArgument::ZArgument(ZMetaType* type, ZMethod* method) {
    if (!method) return;
    types = method->paramTypes(type);
    if (types.isEmpty() || !reset()) ZError::fail();
}

/// Calls `f` with each item as a variant, until it answers false. Items that are variants are handed out themselves;
/// variants of others come and go, and `passing` tells so: what they hold has to be kept.
template <class F> static bool eachItem(const ZVArray& values, uint count, F&& f) {
    const bool variants = values.getValueType() && values.getValueType()->isVariant();
    for (uint i = 0; i < count; ++i)
        if (!(variants ? f(i, *static_cast<const ZVariant*>(values.get(int(i))), false)
                       : f(i, values.variant(int(i)), true)))
            return false;
    return true;
}

ZArgument::ZArgument(const ZVArray& values, ZString::Type type, bool owned) : owned(owned) {
    const uint count = values.count();
    const bool done =
        count <= uint(mostArguments) && setStringType(type) && addType(ztype<void>()) &&
        eachItem(values, count, [&](uint, const ZVariant& value, bool) { return addType(value.type()); }) && reset() &&
        set(values);
    if (done) return;
    dropValues();
    types.clear();
    ZError::fail();
}
ZArgument::ZArgument(const ZArrayT<ZVariant>& values, ZString::Type type, bool owned) : owned(owned) {
    bool done = values.count() <= uint(mostArguments) && setStringType(type) && addType(ztype<void>());
    for (uint i = 0; done && i < values.count(); ++i) done = addType(values[i].type());
    if (done && reset() && set(values)) return;
    dropValues();
    types.clear();
    ZError::fail();
}
ZArgument::~ZArgument() { dropValues(); }

bool ZArgument::addType(ZMetaType* type) {
    if (count() >= mostArguments || !types.append(type)) return false;
    // The values were counted without it.
    ZMetaType* const last = types[types.count() - 1];
    types.setCount(types.count() - 1);
    dropValues();
    return types.append(last);
}
bool ZArgument::addType(const ZSelector& name) {
    ZMetaType* type = ZMetaType::find(name);
    return type && addType(type);
}
bool ZArgument::setStringType(ZString::Type type) {
    if (type != ZString::Char && type != ZString::WChar && type != ZString::IChar) return false;
    textType = type;
    return true;
}

bool ZArgument::reset() {
    const int all = count();
    ularge end = 0;
    for (int i = 1; i <= all; ++i) {
        const uint size = argumentSize(types[uint(i)]);
        end = (end + size - 1) / size * size + size;
    }
    end = (end + 7) & ~7ull;
    // The values, their offsets, and a byte for each.
    auto made = all ? static_cast<byte*>(toolkit::allocZeroedBlock(end + 5 * ularge(all))) : nullptr;
    if (all && !made) return false;
    dropValues();
    if (!all) return true;
    buffer = made;
    bytes = uint(end);
    offsets = reinterpret_cast<int*>(buffer + end);
    uint at = 0;
    for (int i = 1; i <= all; ++i) {
        const uint size = argumentSize(types[uint(i)]);
        at = (at + size - 1) / size * size;
        offsets[i - 1] = int(at);
        at += size;
    }
    return true;
}

void ZArgument::drop(int index) {
    const void* pointer = pointerAt(placeOf(index));
    const byte holds = std::exchange(holding(index), byte(Nothing));
    if (holds == Text) zfree(pointer);
    if (holds == Value) types[uint(index)]->mainOrSelf()->releaseInstance(const_cast<void*>(pointer));
}
void ZArgument::dropValues() {
    if (!buffer) return;
    for (int i = count(); i > 0; --i)
        if (holding(i) != Nothing) drop(i);
    zfree(std::exchange(buffer, nullptr));
    offsets = nullptr;
    bytes = 0;
}

// Values

bool ZArgument::setPointer(int index, const void* pointer, Holding holds) {
    if (holding(index) != Nothing) drop(index);
    std::memcpy(placeOf(index), &pointer, sizeof pointer);
    holding(index) = holds;
    return true;
}
bool ZArgument::setText(int index, const ZString& value, Lifetime lifetime) {
    const auto view = value.view();
    if (!owned && lifetime == Lasting && value.length() && view.width == textType && !value.isInternal())
        return setPointer(index, view.text, Nothing);
    if (void* text = value.str(textType)) return setPointer(index, text, Text);
    // Text that is empty is no null text.
    auto empty = value.isEmpty() ? toolkit::allocZeroedBlock(4) : nullptr;
    return empty && setPointer(index, empty, Text);
}

bool ZArgument::set(int index, large value) {
    if (!hasPlace(index)) return false;
    const ZMetaType* type = types[uint(index)];
    if (isText(type)) {
        ZString text;
        return text.setLarge(value) && setText(index, text, Passing);
    }
    if (!isNumber(type)) return false;
    if (isReal(type)) return set(index, real(value));
    ularge room = 0;
    if (!convertKind(type->kind(), &room, ZMetaType::Large, &value)) return false;
    // Small ones as the int that they become in a call.
    large promoted = 0;
    kindToLarge(type->kind(), &room, promoted);
    std::memcpy(placeOf(index), &promoted, argumentSize(type));
    return true;
}
bool ZArgument::set(int index, real value) {
    if (!hasPlace(index)) return false;
    const ZMetaType* type = types[uint(index)];
    if (isText(type)) {
        ZString text;
        return text.setReal(value) && setText(index, text, Passing);
    }
    if (!isReal(type)) return isNumber(type) && set(index, ZVariant(value));
    std::memcpy(placeOf(index), &value, sizeof value);
    return true;
}
bool ZArgument::set(int index, const ZString& value) {
    if (!hasPlace(index)) return false;
    const ZMetaType* type = types[uint(index)];
    if (isText(type)) return setText(index, value, Lasting);
    if (!isNumber(type)) return false;
    if (isReal(type)) {
        real number = 0;
        return value.toReal(number) && set(index, number);
    }
    return set(index, ZVariant(value));
}
bool ZArgument::set(int index, const ZSelector& value) {
    const ZString text(value);
    return hasPlace(index) && isText(types[uint(index)]) ? setText(index, text, Passing) : set(index, text);
}

bool ZArgument::set(int index, const ZVariant& value) {
    if (!hasPlace(index)) return false;
    ZMetaType* type = types[uint(index)];
    if (isText(type)) {
        if (value.type() && value.type()->kind() == ZMetaType::String)
            return setText(index, *static_cast<const ZString*>(value.getPtr()), Lasting);
        ZString text;
        if (!text.setVariant(value) || (text.isEmpty() && !value.isNullData() && isText(value.type()))) return false;
        return setText(index, text, Passing);
    }
    if (isReal(type)) {
        real number = 0;
        return value.toReal(&number) && set(index, number);
    }
    if (isNumber(type)) {
        if (type->kind() == ZMetaType::ULarge) {
            ularge number = 0;
            if (!value.toULarge(&number)) return false;
            std::memcpy(placeOf(index), &number, sizeof number);
            return true;
        }
        large number = 0;
        return value.toLarge(&number) && set(index, number);
    }
    if (!type || type->kind() == ZMetaType::Void) return setPointer(index, value.getPtr(), Nothing);
    item::Given given(item::normalType(type), value);
    if (!given.address()) return false;
    const bool refers = type->kind() == ZMetaType::Pointer || type->holdsZType();
    const void* pointer = refers ? pointerAt(given.address()) : given.address();
    const bool converted = !refers && pointer != value.getPtr() && !type->isVariant();
    if ((!owned && !converted) || !pointer) return setPointer(index, pointer, Nothing);
    ZMetaType* main = type->mainOrSelf();
    const void* held = !refers                          ? main->copyInstance(pointer)
                       : main->kind() > ZMetaType::Void ? main->retainInstance(const_cast<void*>(pointer))
                                                        : nullptr;
    if (refers && main->kind() <= ZMetaType::Void) return setPointer(index, pointer, Nothing);
    return held && setPointer(index, held, Value);
}
bool ZArgument::set(const ZVArray& values) {
    return eachItem(values, uint(std::min(count(), int(values.count()))),
                    [&](uint i, const ZVariant& value, bool passing) {
                        const bool kept = std::exchange(owned, owned || passing);
                        const bool done = set(int(i) + 1, value);
                        owned = kept;
                        return done;
                    });
}
bool ZArgument::set(const ZArrayT<ZVariant>& values) {
    for (int i = 0; i < std::min(count(), int(values.count())); ++i)
        if (!set(i + 1, values[uint(i)])) return false;
    return true;
}

// Reading

const void* ZArgumentList::place() const { return owner->hasPlace(at) ? owner->placeOf(at) : nullptr; }

/// Text in one of the widths, zero-ended.
static ZString textAt(const void* text, ZString::Type type) {
    if (type == ZString::WChar) return ZString(static_cast<const wchar*>(text));
    if (type == ZString::IChar) return ZString(static_cast<const ichar*>(text));
    return ZString(static_cast<const char*>(text));
}

large ZArgumentList::integer() {
    const void* from = place();
    const ZMetaType* type = owner->getType(at++);
    large value = 0;
    if (!from) return 0;
    if (isReal(type)) {
        double number;
        std::memcpy(&number, from, sizeof number);
        return realToInteger<large>(number);
    }
    if (isNumber(type)) {
        // What is narrower stands here as an int.
        int narrow;
        if (argumentSize(type) == 8)
            std::memcpy(&value, from, sizeof value);
        else {
            std::memcpy(&narrow, from, sizeof narrow);
            value = type->kind() == ZMetaType::UInt ? large(uint(narrow)) : narrow;
        }
        return value;
    }
    if (isText(type)) textAt(pointerAt(from), owner->textType).toLarge(value);
    return value;
}
double ZArgumentList::real() {
    const void* from = place();
    const ZMetaType* type = owner->getType(at);
    if (from && isText(type)) {
        ++at;
        double value = 0;
        textAt(pointerAt(from), owner->textType).toReal(value);
        return value;
    }
    if (!from || !isReal(type)) {
        const bool wide = type && type->kind() == ZMetaType::ULarge;
        const large value = integer();
        return wide ? double(ularge(value)) : double(value);
    }
    ++at;
    double value;
    std::memcpy(&value, from, sizeof value);
    return value;
}
const void* ZArgumentList::pointer() {
    const void* from = place();
    const ZMetaType* type = owner->getType(at++);
    return from && !isNumber(type) ? pointerAt(from) : nullptr;
}
FormatArguments::Text ZArgumentList::text() {
    const void* from = place();
    const ZMetaType* type = owner->getType(at);
    if (from && isText(type)) {
        ++at;
        return {pointerAt(from), owner->textType};
    }
    if (!from || !isNumber(type)) {
        ++at;
        return {nullptr, ZString::Char};
    }
    if (!(isReal(type) ? converted.setReal(real()) : converted.setLarge(integer()))) ZError::fail();
    const auto view = converted.view();
    return {view.text, view.width};
}
const void* ZArgumentList::items(char letter, int& count) {
    count = 0;
    const void* from = place();
    const ZMetaType* type = owner->getType(at++);
    if (!from || !type || type->indexLabel() != ZMetaType::Array) return nullptr;
    auto array = static_cast<const ZVArray*>(pointerAt(from));
    const ZMetaType* items = array ? array->getValueType() : nullptr;
    const int wanted = letter == 'b'   ? ZMetaType::Byte
                       : letter == 'w' ? ZMetaType::Word
                       : letter == 'i' ? ZMetaType::Int
                                       : ZMetaType::Real;
    if (!items || (items->kind() != wanted && !(letter == 'd' && items->kind() == ZMetaType::Double))) return nullptr;
    count = int(array->count());
    return array->values();
}
