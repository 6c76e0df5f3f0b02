#pragma once

#include "object/ZType.h"
#include "value/forward.h"

/// A pointer that knows its type: the address of a value together with its metatype. A plain structure, a number inside
/// of a class and an instance of a `ZType` class look the same through it. Two words, no ownership, no lock: the rules
/// of what it points to hold.
///
/// Operations on an instance of a `ZType` class are its own, with dynamic properties and delegates; on other values
/// they work by the tables of the type. Without a type they answer null, false, 0, or -1 for a position. Where an
/// operation takes another typed pointer, which may be null, that one gets the base, delegate or part of the value in
/// which it found its answer.
class ORV_API ZTypedPtr {
public:
    // Making

    constexpr ZTypedPtr() = default;
    /// Null for null.
    ZTypedPtr(const ZTypedPtr* other);
    ZTypedPtr(ZMetaType* type, const void* instance) : type(type), instance(const_cast<void*>(instance)) {}
    /// Into the variant, if it holds its value itself: not to outlive it.
    ZTypedPtr(const ZVariant& value);
    ZTypedPtr(const ZVariant* value);
    ZTypedPtr(const ZType* instance);

    void assign(const ZTypedPtr& other) { *this = other; }
    void assign(const ZVariant& value) { *this = ZTypedPtr(value); }
    /// By the addresses of the types, then by value: -1, 0 or 1.
    int compare(const ZTypedPtr& other) const;
    bool isNull() const { return !type && !instance; }

    // Methods, borrowed. A path reads properties up to its last part and asks the value there. A `typed` with an
    // instance of its own stays as it is.

    ZMethod* method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    ZMethod* method(const ZSelector& selector, const ZSelector& qualifier) const;
    ZMethod* baseMethod(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    /// See `ZType::multimethod`.
    ZMethod* multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                         bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;
    ZMethod* multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const;
    ZMethod* baseMultimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                             bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;
    bool implements(const ZSelector& selector, const ZSelector& qualifier) const;
    bool definesName(const ZSelector& name) const;
    /// Calls the overload of `name`, or of a signature's name, that fits the arguments best. The null variant if there
    /// is none, or if an argument can't be converted.
    ZVariant invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const;
    ZVariant invoke(const ZSelector& name, const ZVArray& arguments) const;
    /// `gauge->invoke("add", {1, 2})`, `gauge->invoke("reset", {})`.
    ZVariant invoke(const ZSelector& name, std::initializer_list<ZVariant> arguments) const;
    /// Calls a method without arguments; false if there is none.
    bool callV(const ZSelector& name) const;
    bool callV(const ZSelector& name, const ZSelector& qualifier) const;

    // Calls of an accessor method, found below, at this address

    ZVariant getVariant(ZMethod* method) const;
    ZVariant getVariant(ZMethod* method, int key) const;
    ZVariant getVariant(ZMethod* method, const ZSelector& key) const;
    ZVariant getVariant(ZMethod* method, const void* key) const;
    ZVariant getVariant(ZMethod* method, const ZVariant& key) const;
    bool setVariant(ZMethod* method, const ZVariant& value) const;
    bool setVariant(ZMethod* method, int key, const ZVariant& value) const;
    bool setVariant(ZMethod* method, const ZSelector& key, const ZVariant& value) const;
    bool setVariant(ZMethod* method, const ZVariant& key, const ZVariant& value) const;
    /// The position of a value; -1 for none.
    int findVariant(ZMethod* method, const ZVariant& value) const;

    // Items of a container: of `ZVArray`, `ZVHashSet`, `ZVSelectMap`, `ZVKeyMap`, `ZSelectorMap`. Positions count from
    // 0 in the order of the items; a key of an array is its position. False, null, 0 or -1 for what is no container,
    // and out of range.

    bool isContainer() const;
    uint itemCount() const;
    ZVariant itemByIndex(int index) const;
    ZVariant itemByKey(const ZSelector& key) const;
    ZVariant itemByKey(const ZVariant& key) const;
    /// The key of an item; the position of one of an array, the item itself of a set.
    ZVariant keyByIndex(int index) const;
    bool setItem(int index, const ZVariant& value) const;
    bool setItem(const ZSelector& key, const ZVariant& value) const;
    bool setItem(const ZVariant& key, const ZVariant& value) const;
    bool appendItem(const ZVariant& value) const;
    /// A new item: in an array at a position, in a map under a key that it doesn't have.
    bool insertItem(const ZVariant& key, const ZVariant& value) const;
    bool removeItem(int index) const;
    bool removeItem(const ZSelector& key) const;
    bool removeItem(const ZVariant& key) const;
    /// The first item of that value.
    bool removeValue(const ZVariant& value) const;
    bool clearItems() const;
    bool hasKey(const ZSelector& key) const;
    bool hasKey(const ZVariant& key) const;
    int indexOfKey(const ZVariant& key) const;
    int indexOfValue(const ZVariant& value) const;
    bool containsValue(const ZVariant& value) const;
    /// The key of the first item of that value.
    ZVariant keyOfValue(const ZVariant& value) const;
    ZSelector selectorOfValue(const ZVariant& value) const;

    // Enums of the type

    bool enumValue(const ZSelector& path, int& value) const;
    ZSelector enumName(const ZSelector& enumType, int value) const;
    ZEnumType* findEnum(const ZSelector& name) const;
    int scanEnum(const ZSelector& enumType, const ZSelector& words) const;
    ZSelector outputEnum(const ZSelector& enumType, int flags) const;

    // Properties: all operations of `ZType` on properties, see valueProperties.def. Those on a name come in two forms,
    // the second with a typed pointer in front.

#define ORV_BARE(...) __VA_ARGS__
#define ORV_ASK(listing, result, operation, parameters, ...) result operation parameters const;
#define ORV_ASK_AT(listing, result, operation, parameters, ...)                                                        \
    result operation parameters const;                                                                                 \
    result operation(ZTypedPtr* typed, ORV_BARE parameters) const;
#define ORV_CHANGE ORV_ASK
#define ORV_CHANGE_AT ORV_ASK_AT
#define ORV_FIND_AT ORV_ASK_AT
#define ORV_TELL_AT ORV_ASK_AT
#include "value/valueProperties.def"

#include <initializer_list>
#undef ORV_BARE

    ZMetaType* type = nullptr;
    void* instance = nullptr;
};
