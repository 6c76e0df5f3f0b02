#pragma once

#include "core/ZPtrKey.h"
#include "core/ZSelector.h"
#include "module/forward.h"
#include "object/ZType.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "value/forward.h"

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <type_traits>

/// A value of any type together with its type, in 24 bytes: what properties, arguments and containers of the reflective
/// world are made of. Values below 17 bytes live in the variant itself, unless they are aligned above 8; these, larger
/// values, pointers and all instances of `ZType` classes are held by a counted reference to their block. An instance of
/// a `ZType` class is always held under the pointer type of its class, so that equal things have equal types. A value
/// that lives in the variant moves with it by its bytes.
///
/// A plain value: one variant is one thread's; what it holds is shared as far as its type allows. Operations that
/// answer a bool answer false, and leave the variant as it was, when there is no memory or the value has no such
/// operation. A constructor without memory raises `ZError::fail` and leaves the null variant. Before the library's
/// packages are open there are no types: what is made from a plain value then is the null variant.
class ORV_API ZVariant {
public:
    using ZRelocatable = void;

    /// Bytes of a value that the variant itself can hold.
    static constexpr int maxsize() { return 16; }

    // Lifetime. A copy shares what is held by reference; a held instance that is dead already (its count is 0) is
    // copied as no instance.

    constexpr ZVariant() = default;
    constexpr ZVariant(std::nullptr_t) {}
    ZVariant(const ZVariant& other) {
        if (ORV_LIKELY(other.plain()))
            takeBytes(other);
        else
            copyFrom(other);
    }
    ZVariant(ZVariant&& other) noexcept {
        takeBytes(other);
        other.forget();
    }
    ~ZVariant() {
        if (ORV_UNLIKELY(!plain())) release();
    }
    ZVariant& operator=(const ZVariant& other) {
        assign(other);
        return *this;
    }
    ZVariant& operator=(ZVariant&& other) noexcept {
        ZVariant old(std::move(*this));
        takeBytes(other);
        other.forget();
        return *this;
    }

    /// Only of a bool: a pointer doesn't become one.
    template <class T>
    requires std::is_same_v<T, bool> ZVariant(T value) { setNumber(ztype<bool>(), value); }
    ZVariant(char value) { setNumber(ztype<char>(), value); }
    ZVariant(int8 value) { setNumber(ztype<char>(), value); }
    ZVariant(byte value) { setNumber(ztype<byte>(), value); }
    ZVariant(short value) { setNumber(ztype<short>(), value); }
    ZVariant(word value) { setNumber(ztype<word>(), value); }
    ZVariant(int value) { setNumber(ztype<int>(), value); }
    ZVariant(uint value) { setNumber(ztype<uint>(), value); }
    ZVariant(long value) { setNumber(ztype<large>(), value); }
    ZVariant(unsigned long value) { setNumber(ztype<ularge>(), value); }
    ZVariant(large value) { setNumber(ztype<large>(), value); }
    ZVariant(ularge value) { setNumber(ztype<ularge>(), value); }
    ZVariant(float value) { setNumber(ztype<float>(), value); }
    ZVariant(double value) { setNumber(ztype<double>(), value); }
    /// A string.
    ZVariant(const char* text);
    ZVariant(const ZString& text);
    ZVariant(const ZSelector& name);
    /// A copy of the value, or a reference to the instance, at a typed pointer.
    ZVariant(const ZTypedPtr& value);
    /// A reference to the instance.
    ZVariant(const ZType* instance);
    /// A reference to a counted block, as a pointer to anything.
    explicit ZVariant(const void* block);
    /// The type with the value that means nothing: 0, empty, a new inline value; no instance for what is held by
    /// reference.
    explicit ZVariant(ZMetaType* type);
    /// The value at an address, copied; for pointer types and `ZType` classes the address is that of the pointer, whose
    /// instance is retained. Null for the address gives the type alone, null for the type the counted block that the
    /// pointer there points to.
    ZVariant(ZMetaType* type, const void* value);
    /// What another variant holds, as a value of the type: a number or text is converted (0 or empty where it can't
    /// be), other values as by `convert`, where one that can't be gives the type alone.
    ZVariant(ZMetaType* type, const ZVariant& value);
    /// The value that a text stands for; the type alone where it stands for none.
    ZVariant(ZMetaType* type, const ZString& text);
    /// The same with the type of that name in a package, or in all packages for null. The null variant without the
    /// type.
    ZVariant(const ZPackage* package, const ZSelector& typeName, const ZString& text);
    /// See `blendFrom`.
    ZVariant(const ZVariant* a, const ZVariant* b, const ZBlendPos& pos);

    // Setting type and value. False before the packages are open, with the null variant.

    bool setBool(bool value) { return resetNumber(ztype<bool>(), value); }
    bool setChar(char value) { return resetNumber(ztype<char>(), value); }
    bool setByte(byte value) { return resetNumber(ztype<byte>(), value); }
    bool setShort(short value) { return resetNumber(ztype<short>(), value); }
    bool setWord(word value) { return resetNumber(ztype<word>(), value); }
    bool setInt(int value) { return resetNumber(ztype<int>(), value); }
    bool setUInt(uint value) { return resetNumber(ztype<uint>(), value); }
    bool setLong(long value) { return resetNumber(ztype<large>(), value); }
    bool setULong(unsigned long value) { return resetNumber(ztype<ularge>(), value); }
    bool setLarge(large value) { return resetNumber(ztype<large>(), value); }
    bool setULarge(ularge value) { return resetNumber(ztype<ularge>(), value); }
    bool setFloat(float value) { return resetNumber(ztype<float>(), value); }
    bool setDouble(double value) { return resetNumber(ztype<double>(), value); }
    bool setReal(real value) { return resetNumber(ztype<real>(), value); }
    bool setSelector(const ZSelector& name);
    bool setString(const ZString& text);
    /// Holds a counted block, without a type.
    bool setBlock(const void* block);
    /// Holds a counted block as a pointer to anything.
    bool setVoidP(const void* block);
    /// Holds the instance under the pointer type of its type; null gives the null variant.
    bool setType(const ZType* instance);
    bool setObject(const ZObject* object);
    bool setFromTypedPtr(const ZTypedPtr& value);
    /// Holds the counted value at an address itself, as a pointer to it, instead of a copy.
    bool setReference(ZMetaType* type, const void* value);
    /// Another value of the same type, as with the constructor of type and address.
    bool setValue(const void* value);
    /// The value that a text stands for. False, with the variant as it was, if it stands for none.
    bool setValue(ZMetaType* type, const ZString& text);
    /// The general form. The address is that of the value; for pointer types and `ZType` classes, the pointer itself.
    /// With `dereference` it is read from there first. Without `copy` the value changes hands: one that lives in the
    /// variant is taken out of the memory, which is raw then; of others the caller's reference is taken over.
    bool setValue(ZMetaType* type, const void* value, bool copy, bool dereference);
    bool assign(const ZVariant& other) {
        if (ORV_UNLIKELY(!(plain() && other.plain()))) return assignFrom(other);
        takeBytes(other);
        return true;
    }
    void swap(ZVariant& other) noexcept;
    /// Back to the null variant.
    void clear() {
        if (ORV_UNLIKELY(!plain())) release();
        forget();
    }
    /// Gives the value up and keeps the type, with the value that means nothing.
    bool clearValue();
    /// A newly made value of the type, also for what is held by reference.
    bool resetValue();
    /// Takes the type of the instance anew, after that got another one.
    bool resetType();
    /// The value that blending treats as "nothing".
    bool setIdentity();

    // Value. A number, text or pointer to one reads as any number: integers are cut to their size, reals lose their
    // fraction and are held within the range of the integer, not-a-number gives 0, texts are read whole in base 10.
    // Anything else, and a text that is no such number, reads as 0; the forms with an address answer false then, and
    // leave what stands there.

    bool toBool() const { return valueOr<bool>(&ZVariant::toBool); }
    char toChar() const { return valueOr<char>(&ZVariant::toChar); }
    byte toByte() const { return valueOr<byte>(&ZVariant::toByte); }
    short toShort() const { return valueOr<short>(&ZVariant::toShort); }
    word toWord() const { return valueOr<word>(&ZVariant::toWord); }
    int toInt() const { return valueOr<int>(&ZVariant::toInt); }
    uint toUInt() const { return valueOr<uint>(&ZVariant::toUInt); }
    long toLong() const { return valueOr<long>(&ZVariant::toLong); }
    unsigned long toULong() const { return valueOr<unsigned long>(&ZVariant::toULong); }
    large toLarge() const { return valueOr<large>(&ZVariant::toLarge); }
    ularge toULarge() const { return valueOr<ularge>(&ZVariant::toULarge); }
    float toFloat() const { return valueOr<float>(&ZVariant::toFloat); }
    double toDouble() const { return valueOr<double>(&ZVariant::toDouble); }
    real toReal() const { return valueOr<real>(&ZVariant::toReal); }
    bool toBool(bool* out) const;
    bool toChar(char* out) const;
    bool toByte(byte* out) const;
    bool toShort(short* out) const;
    bool toWord(word* out) const;
    bool toInt(int* out) const;
    bool toUInt(uint* out) const;
    bool toLong(long* out) const;
    bool toULong(unsigned long* out) const;
    bool toLarge(large* out) const;
    bool toULarge(ularge* out) const;
    bool toFloat(float* out) const;
    bool toDouble(double* out) const;
    bool toReal(real* out) const { return toDouble(out); }
    /// The selector; of other values, that of their text.
    ZSelector toSelector() const;
    /// Numbers in base 10, "yes" and "no" for bools, texts as they are; of other values what their type makes of them,
    /// else the empty string.
    ZString toString() const;
    /// The held instance, not retained; null for values of other classes.
    ZType* toType() const;
    ZObject* toObject() const;
    /// The address of the value: in the variant, or that of what it holds. Null for the null variant.
    const void* getPtr() const { return isInline() ? static_cast<const void*>(data) : held(); }
    void* getPtr() { return isInline() ? static_cast<void*>(data) : held(); }
    /// Copies the value into raw memory of the type's size; of a value held by reference the pointer, with `retain` a
    /// counted one.
    bool getValue(void* target, bool retain) const;
    /// The value as a `T`: a number, text or selector converted, a pointer to a class if what is held by reference is
    /// of the class, any other type if the value is of it; else `T()`. What is derived is of its bases too.
    template <class T> T getValueT() const;
    /// A new counted copy of the value; null without a value or memory.
    void* copyValue() const;
    /// Of the address of the value.
    ZPtrKey ptrKey() const { return ZPtrKey(getPtr()); }

    // Type

    /// Null for the null variant and a bare block.
    ZMetaType* type() const { return reinterpret_cast<ZMetaType*>(typeBits & ~tagMask); }
    /// That of the held instance, which may be derived; without one, and for other values, the type without qualifiers
    /// and "*". Pointers to pointers are a type of their own.
    ZMetaType* mainType() const;
    /// The kind of the main type; 0 for null.
    int typeType() const;
    ZSelector typeName() const;
    ZSelector typeLabel() const;
    int typeIndexLabel() const;
    ZSelector typeSelector() const;
    ZMetaType* primaryBase() const;
    /// Whether the value is of the type or a derived one.
    bool isType(const ZMetaType* type) const;
    bool isType(const ZSelector& name) const;
    /// Whether there is no value at all: the null variant, or a type without an instance.
    bool isNull() const { return !isInline() && !held(); }
    /// The same, or a value that its type calls null, as 0 or an empty text.
    bool isNullData() const;
    bool isPointer() const;
    bool isContainer() const;
    /// Whether it is, or refers to, an instance of a `ZType` class.
    bool isZType() const;
    bool isSelector() const;
    /// Whether the type is derived from `ZSelectorType`'s kind: `Selector`.
    bool isSelectorType() const;
    bool isVariableType() const;
    /// Kinds of numbers other than enums.
    bool numericType() const;
    /// The same, bools, and texts that read as a real.
    bool numberType() const;
    bool isDetached() const;
    /// Whether both refer to the same instance or block.
    bool samePtr(const ZVariant& other) const {
        return !isInline() && !other.isInline() && held() && held() == other.held();
    }
    /// Of the held block; 0 for values in the variant, 2 for an instance that is counted in a way of its own: others
    /// may hold it.
    int referenceCount() const;
    /// Bytes that the value takes, for caches.
    int cost() const;

    // Comparison

    /// -1, 0 or 1. Values of different types are ordered by their types' addresses and never equal. Reals that differ
    /// by less than 1e-8 are equal: that is no order to sort by, see `order`.
    int compare(const ZVariant& other) const;
    /// A total order for sorting and keys, the same as `compare` but for reals: -0 equals 0, not-a-number comes last.
    /// Both compare values by their addresses that are nested deeper than 512 in others.
    int order(const ZVariant& other) const;
    /// The same for values that `order` finds equal; 0 without a type.
    uint hashKey() const;
    bool operator==(const ZVariant& other) const { return compare(other) == 0; }
    /// Equality in which reals may differ by `tolerance`, also in containers and stored properties.
    bool matchValue(const ZVariant& other, real tolerance) const;
    /// Applies a comparison or test by name ("==", "less", "contains", "in" …), with "not." in front of it the
    /// contrary; any other name is that of a method, see `checkWithMethod`.
    bool checkOperation(const ZSelector& operation, const ZVariant& other) const;
    /// Calls the method of that name with `other`; false if there is none.
    bool checkWithMethod(const ZSelector& method, const ZVariant& other) const;

    // Life

    /// The held block with one more reference, which is the caller's; null for values in the variant.
    void* retain() const;
    /// Makes the value this variant's own.
    bool detach();
    /// The same for all that the value holds.
    bool deepDetach();
    bool deepDetach(ZDetachContext* context);
    /// A detached copy; the null variant without memory.
    ZVariant copy() const;
    /// The held variant if the value is one, else a copy of this.
    ZVariant expand() const;
    /// Makes the value one of another type. False, with the variant as it was, if it can't be converted.
    bool convert(ZMetaType* type);
    bool convertType(const ZSelector& typeName);
    /// What lies between `a` and `b`, of which one or both may be null.
    bool blendFrom(const ZVariant* a, const ZVariant* b, const ZBlendPos& pos);

    // Items of a container, see `ZTypedPtr`. A container that other variants share is copied before it is changed.

    uint itemCount() const;
    ZVariant itemByIndex(int index) const;
    ZVariant itemByKey(const ZSelector& key) const;
    ZVariant itemByKey(const ZVariant& key) const;
    ZVariant keyByIndex(int index) const;
    bool setItem(int index, const ZVariant& value);
    bool setItem(const ZSelector& key, const ZVariant& value);
    bool setItem(const ZVariant& key, const ZVariant& value);
    bool appendItem(const ZVariant& value);
    bool insertItem(const ZVariant& key, const ZVariant& value);
    bool removeItem(int index);
    bool removeItem(const ZSelector& key);
    bool removeItem(const ZVariant& key);
    bool removeValue(const ZVariant& value);
    bool clearItems();
    /// Whether an array or set has the item, a map the key, a list of words the words, a text the text.
    bool contains(const ZVariant& item) const;
    bool containsValue(const ZVariant& value) const;
    bool hasKey(const ZSelector& key) const;
    bool hasKey(const ZVariant& key) const;
    int indexOfKey(const ZSelector& key) const;
    int indexOfKey(const ZVariant& key) const;
    int indexOfValue(const ZVariant& value) const;
    ZVariant keyOfValue(const ZVariant& value) const;
    ZSelector selectorOfValue(const ZVariant& value) const;

    // Methods of the value. `ZMethod*` is borrowed, see `ZType`.

    ZMethod* method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    ZMethod* method(const ZSelector& selector, const ZSelector& qualifier) const;
    ZMethod* baseMethod(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    ZMethod* multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                         bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;
    ZMethod* multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const;
    ZMethod* baseMultimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                             bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;
    bool implements(const ZSelector& selector, const ZSelector& qualifier) const;
    bool definesName(const ZSelector& name) const;
    /// Calls the overload that fits best, on the value in place: a method that isn't const may change it.
    ZVariant invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const;
    ZVariant invoke(const ZSelector& name, const ZVArray& arguments) const;
    /// `gauge->invoke("add", {1, 2})`, `gauge->invoke("reset", {})`.
    ZVariant invoke(const ZSelector& name, std::initializer_list<ZVariant> arguments) const;
    bool callV(const ZSelector& name) const;
    bool callV(const ZSelector& name, const ZSelector& qualifier) const;
    /// The nearest object of that name: the held one, its parent and so on. Null if there is none.
    ZObject* ancestor(const ZSelector& name) const;
    /// The first object of that name below the held one.
    ZObject* descendant(const ZSelector& name) const;

    // Enums of the type

    bool enumValue(const ZSelector& path, int& value) const;
    ZSelector enumName(const ZSelector& enumType, int value) const;
    ZEnumType* findEnum(const ZSelector& name) const;
    int scanEnum(const ZSelector& enumType, const ZSelector& words) const;
    ZSelector outputEnum(const ZSelector& enumType, int flags) const;
    /// The item name of an enum value with its type in front, "Type::Name"; empty for other values.
    ZSelector qualify() const;

    // Properties of the value: all operations of `ZType` on properties, see valueProperties.def. A value that other
    // variants share is copied before it is changed; instances and targets of pointers are changed for all.

#define ORV_ASK(listing, result, operation, parameters, ...) result operation parameters const;
#define ORV_CHANGE(listing, result, operation, parameters, ...) result operation parameters;
#include "value/valueProperties.def"

private:
    friend struct orv::detail::ObjectLayout;

    // The low bits of the type's address say what a copy has to know of the type.
    static constexpr uintptr_t cared = 1;   ///< the value is more than its bytes
    static constexpr uintptr_t inside = 2;  ///< it lives in the variant
    static constexpr uintptr_t tagMask = 3; ///< metatypes are aligned to 16
    static uintptr_t tagged(ZMetaType* type);

    bool plain() const { return !(typeBits & cared); }
    bool isInline() const { return typeBits & inside; }
    void* held() const {
        void* pointer;
        std::memcpy(&pointer, data, sizeof pointer);
        return pointer;
    }
    void setHeld(const void* pointer) {
        std::memset(data, 0, sizeof data);
        std::memcpy(data, &pointer, sizeof pointer);
    }
    void takeBytes(const ZVariant& other) {
        typeBits = other.typeBits;
        std::memcpy(data, other.data, sizeof data);
    }
    void forget() {
        typeBits = 0;
        std::memset(data, 0, sizeof data);
    }
    template <class T> bool setNumber(ZMetaType* type, T value) {
        if (ORV_UNLIKELY(!type)) return false;
        typeBits = reinterpret_cast<uintptr_t>(type) | inside;
        std::memcpy(data, &value, sizeof value);
        return true;
    }
    template <class T> bool resetNumber(ZMetaType* type, T value) {
        clear();
        return setNumber(type, value);
    }
    template <class T> T valueOr(bool (ZVariant::*read)(T*) const) const {
        T value{};
        (this->*read)(&value);
        return value;
    }
    bool copyFrom(const ZVariant& other);
    bool assignFrom(const ZVariant& other);
    void release();
    bool initType(ZMetaType* type);
    bool init(ZMetaType* type, const void* value, bool copy);
    bool initInstance(const ZType* instance, bool copy);
    bool initPointer(ZMetaType* type, const void* pointer, bool copy);
    bool initFrom(ZMetaType* type, const ZVariant& value);
    bool initText(ZMetaType* type, const ZString& text);
    bool take(ZVariant& made, bool done);
    /// The type of what stands at `getPtr`; null for what can only be told apart by its address.
    ZMetaType* valueType() const;
    bool ownValue();
    /// The address of the value as one of the type, which may be a base; null if it is none.
    const void* partAs(const ZMetaType* type) const;
    bool initBlend(const ZVariant& a, const ZVariant& b, const ZBlendPos& pos, bool& blended);
    template <class F> int compareWith(const ZVariant& other, F&& compareValues) const;
    bool callMatch(const ZVariant& other, real tolerance, bool& answer) const;

    uintptr_t typeBits = 0;
    alignas(8) byte data[16] = {};
};
static_assert(sizeof(ZVariant) == 24);

template <class T> T ZVariant::getValueT() const {
    if constexpr (std::is_same_v<T, ZVariant>)
        return expand();
    else if constexpr (std::is_same_v<T, bool>)
        return toBool();
    else if constexpr (std::is_same_v<T, ZString>)
        return toString();
    else if constexpr (std::is_same_v<T, ZSelector>)
        return toSelector();
    else if constexpr (std::is_enum_v<T>)
        return T(toInt());
    else if constexpr (std::is_same_v<T, float>)
        return toFloat();
    else if constexpr (std::is_floating_point_v<T>)
        return T(toDouble());
    else if constexpr (std::is_integral_v<T> && sizeof(T) == 1)
        return std::is_signed_v<T> ? T(toChar()) : T(toByte());
    else if constexpr (std::is_integral_v<T> && sizeof(T) == 2)
        return std::is_signed_v<T> ? T(toShort()) : T(toWord());
    else if constexpr (std::is_integral_v<T> && sizeof(T) == 4)
        return std::is_signed_v<T> ? T(toInt()) : T(toUInt());
    else if constexpr (std::is_integral_v<T>)
        return std::is_signed_v<T> ? T(toLarge()) : T(toULarge());
    else if constexpr (std::is_pointer_v<T>) {
        using Target = std::remove_cv_t<std::remove_pointer_t<T>>;
        return isInline() ? nullptr : static_cast<T>(const_cast<void*>(partAs(ztype<Target>())));
    } else {
        auto value = static_cast<const T*>(partAs(ztype<T>()));
        return value ? *value : T();
    }
}
