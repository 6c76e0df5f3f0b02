#pragma once

#include "object/glueLife.h"
#include "object/methodWords.h"

// Only the places of fields of classes without virtual bases are asked, which all compilers know.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// The declaration layer, for `<Class>.glue.cpp` files. docs/declaring-types.md shows a row of each kind.
namespace orv::glue {

template <class T, size_t N> constexpr int countOf(const T (&)[N]) { return int(N); }
/// Whether items count from one value up to another without a gap, three at least.
template <size_t N> constexpr bool countUp(const EnumItemRow (&items)[N]) {
    const auto has = [&](large value) {
        for (const EnumItemRow& item : items)
            if (item.value == value) return true;
        return false;
    };
    large first = items[0].value, last = first;
    for (const EnumItemRow& item : items) first = item.value < first ? item.value : first;
    for (last = first; has(last + 1);) ++last;
    for (const EnumItemRow& item : items)
        if (item.value > last) return false;
    return last - first >= 2;
}

// What a wrong row calls; the compiler's message names it.

void getterHasAnotherType();
void wordsAreTooLong();
void baseIsVirtual();
void fixedRowsAreNotInTheOrderOfTheirIndexes();

constexpr MethodRow methodRow(const char* text, uint flags, const char* words) {
    MethodWordSum sum = methodWordSum(words);
    return {.text = text,
            .fast = {},
            .stacked = nullptr,
            .options = sum.options ? words : nullptr,
            .flags = flags | sum.flags,
            .sandBox = int16(sum.sandBoxLevel),
            .fastWords = -1,
            .open = -1,
            .isConst = false,
            .isLife = false};
}
template <class C, class F, How how, class Get> constexpr MethodRow callRow(const char* text, const char* words, Get) {
    using S = Shape<F>;
    using E = typename S::template E<Call<how, C, Get>>;
    MethodRow row =
        methodRow(text, (S::isStatic ? uint(staticMethod) : 0) | (S::open >= 0 ? uint(variadicMethod) : 0), words);
    row.fast = E::fastEntry();
    row.fastWords = E::fastWords;
    row.stacked = &E::stacked;
    row.open = S::open;
    row.isConst = S::isConst;
    return row;
}
template <class F>
inline constexpr How howOf = Shape<F>::isStatic  ? How::function
                             : Shape<F>::isConst ? How::constMember
                                                 : How::member;

/// A row whose text was written.
template <class C, class F, class Get>
constexpr MethodRow writtenRow(const char* text, const char* name, const char* words, Get get) {
    return callRow<C, F, howOf<F>>(Shape<F>::checked(text, name), words, get);
}
/// A row whose text is made from the types.
template <class C, class F, FixedText Name, class Get> constexpr MethodRow typedRow(const char* words, Get get) {
    return callRow<C, F, howOf<F>>(Shape<F>::template made<Name>(), words, get);
}
template <class C, class F, FixedText Name, class Get> constexpr MethodRow adapterRow(const char* words, Get get) {
    using Instance = std::conditional_t<Shape<F>::isConst, const C, C>;
    return callRow<Instance, F, How::adapter>(Shape<F>::template made<Name>(), words, get);
}

template <class T, class F> struct ConstructorOf;
template <class T, class... A> struct ConstructorOf<T, void(A...)> {
    static constexpr MethodRow row(const char* words) {
        using B = Building<T, A...>;
        MethodRow made = methodRow(constructorText<T, A...>, B::isExplicit() ? 1024 : 0, words);
        made.stacked = &B::stacked;
        made.isLife = true;
        return made;
    }
};
template <class T> constexpr MethodRow destructorRow() {
    MethodRow made = methodRow(destructorText<T>, 0, "");
    made.stacked = &destructEntry<T>;
    made.isLife = true;
    return made;
}

/// A property's row, and what can be added to it.
template <class T> struct Property : PropertyRow {
    constexpr Property(const char* name, const char* type, const char* words, uint flags)
        : PropertyRow{.name = name,
                      .type = type,
                      .item = nullptr,
                      .index = nullptr,
                      .options = *words ? words : nullptr,
                      .value = nullptr,
                      .flags = flags | propertyWordSum(words).flags,
                      .offset = -1,
                      .version = int16(propertyWordSum(words).version),
                      .sandBox = int16(propertyWordSum(words).sandBoxLevel)} {}
    /// The type of the items of a container.
    template <class Item> constexpr Property items() const {
        Property made = *this;
        made.item = typeText<Item>;
        return made;
    }
    /// The type of the keys of a container.
    template <class Index> constexpr Property indexed() const {
        Property made = *this;
        made.index = typeText<Index>;
        return made;
    }
    /// A default other than a new value; a constant with static storage.
    constexpr Property initially(const T& value) const {
        Property made = *this;
        made.value = &value;
        return made;
    }
    /// Where in an instance the stored field stands.
    constexpr Property at(size_t offset) const {
        Property made = *this;
        made.offset = int(offset);
        return made;
    }
};
/// `ZProperty::Value`: how the getter gives it is seen from its type.
inline constexpr uint givenByValue = 0x20000;
template <class T, class Got>
constexpr Property<T> propertyRow(const char* type, const char* name, const char* words, uint flags) {
    if (!std::is_same_v<T, std::remove_cvref_t<Got>>) getterHasAnotherType();
    if (!std::is_reference_v<Got>) flags |= givenByValue;
    if (std::string_view(words).size() >= longestWords) wordsAreTooLong();
    return Property<T>(name, checkedType<T>(type), words, flags);
}

template <class T, class B> const void* upcast(const void* instance) {
    return static_cast<const B*>(static_cast<const T*>(instance));
}
/// Only a base at a fixed place can be cast down from.
template <class T, class B>
concept FixedBase = requires(B* base) {
    static_cast<T*>(base);
};
/// The bases of a class, in their order.
template <class... B> struct Bases {
    template <class T> struct Of {
        static constexpr BaseRow rows[] = {{typeText<B>, &upcast<T, B>}...};
    };
    static constexpr int count = sizeof...(B);
    template <class T> static constexpr bool fixed = (FixedBase<T, B> && ...);
};

/// What a `Table` is made from; what it leaves out, its class doesn't have.
template <class T> struct Declares {
    using Self = T;
    using BaseTypes = Bases<>;
};

/// What the class offers, and in front of that what its table says itself in `callbacks`.
template <class T> constexpr Callbacks makeCallbacks() {
    Callbacks made = Life<T>::callbacks();
    made.initialize = Table<T>::info.initialize;
    if constexpr (requires { Table<T>::callbacks; }) {
        const Callbacks& own = Table<T>::callbacks;
        auto take = [](auto& function, auto given) {
            if (given) function = given;
        };
        take(made.copyType, own.copyType);
        take(made.create, own.create);
        take(made.construct, own.construct);
        take(made.destruct, own.destruct);
        take(made.copy, own.copy);
        take(made.copyNew, own.copyNew);
        take(made.detach, own.detach);
        take(made.isDetached, own.isDetached);
        take(made.compare, own.compare);
        take(made.fromString, own.fromString);
        take(made.newFromString, own.newFromString);
        take(made.toString, own.toString);
        take(made.destroy, own.destroy);
        take(made.release, own.release);
        take(made.retain, own.retain);
        take(made.createDispatch, own.createDispatch);
    }
    return made;
}
template <class T> inline constexpr Callbacks callbacksOf = makeCallbacks<T>();

constexpr List<FixedRow> inOrder(List<FixedRow> rows) {
    for (int i = 0; i < rows.count; ++i)
        if (rows.rows[i].index != i) fixedRowsAreNotInTheOrderOfTheirIndexes();
    return rows;
}

template <class T> constexpr ClassRow makeRow() {
    using D = Table<T>;
    ClassRow row{};
    row.name = typeText<T>;
    row.info = &D::info;
    if constexpr (requires { D::callbacks; })
        row.callbacks = &D::callbacks;
    else
        row.callbacks = &callbacksOf<T>;
    row.alignment = 1;
    if constexpr (!std::is_void_v<T>) {
        row.size = sizeof(T);
        row.alignment = alignof(T);
    }
    if constexpr (D::BaseTypes::count > 0) {
        if (!D::BaseTypes::template fixed<T>) baseIsVirtual();
        row.bases = D::BaseTypes::template Of<T>::rows;
    }
    if constexpr (requires { D::methods; }) row.methods = D::methods;
    if constexpr (requires { D::properties; }) row.properties = D::properties;
    if constexpr (requires { D::enums; }) row.enums = D::enums;
    if constexpr (requires { D::types; }) row.types = D::types;
    if constexpr (requires { D::fixed; }) row.fixed = inOrder(D::fixed);
    if constexpr (requires { D::groups; }) row.groups = D::groups;
    return row;
}

} // namespace orv::glue

// Methods. `words` is an option text, left out if there is none. Parameters are spelled without names.

/// A method of the class or of its bases: `ORV_METHOD(bool, set, (int, const ZString&), , "bind")`.
#define ORV_METHOD(result, name, params, quals, ...)                                                                   \
    ::orv::glue::writtenRow<Self, result(Self::*) params quals>(#result " " #name #params, #name, "" __VA_ARGS__, [] { \
        return static_cast<::orv::glue::Shape<result(Self::*) params quals>::Member>(&Self::name);                     \
    })
/// The same with a text made from the types: in templates, and where a type stands under an alias because it has a
/// comma.
#define ORV_TYPED_METHOD(result, name, params, quals, ...)                                                             \
    ::orv::glue::typedRow<Self, result(Self::*) params quals, #name>("" __VA_ARGS__, [] {                              \
        return static_cast<typename ::orv::glue::Shape<result(Self::*) params quals>::Member>(&Self::name);            \
    })
/// A method that C++ offers in another form: `call` is a lambda that takes the instance first.
#define ORV_ADAPTER(result, name, params, quals, call, ...)                                                            \
    ::orv::glue::adapterRow<Self, result(Self::*) params quals, #name>("" __VA_ARGS__, [] { return call; })
#define ORV_STATIC(result, name, params, ...)                                                                          \
    ::orv::glue::writtenRow<Self, result(*) params>(#result " " #name #params, #name, "" __VA_ARGS__, [] {             \
        using Given = ::orv::glue::Shape<result(*) params>;                                                            \
        return static_cast<typename Given::Member>(&Self::name);                                                       \
    })
/// A static method that C++ offers in another form.
#define ORV_STATIC_ADAPTER(result, name, params, call, ...)                                                            \
    ::orv::glue::typedRow<Self, result(*) params, #name>("" __VA_ARGS__, [] { return call; })
/// `ORV_CONSTRUCTOR((int, const ZString&))`. One that takes a tag is spelled without it. Whether it is explicit is
/// found out.
#define ORV_CONSTRUCTOR(params, ...) ::orv::glue::ConstructorOf<Self, void params>::row("" __VA_ARGS__)
#define ORV_DESTRUCTOR() ::orv::glue::destructorRow<Self>()

// The accessors of a field. `Name` is `name` with a capital; `arg` is how an item is passed: `const T&` or `const T*`.

/// A value that is given by reference.
#define ORV_ACCESSORS(type, name, Name)                                                                                \
    ORV_METHOD(const type&, name, (), const), ORV_METHOD(bool, set##Name, (const type&), )
/// A value that is given by value: a number, an enum.
#define ORV_VALUE_ACCESSORS(type, name, Name)                                                                          \
    ORV_METHOD(type, name, (), const), ORV_METHOD(bool, set##Name, (const type&), )
/// A pointer.
#define ORV_POINTER_ACCESSORS(type, name, Name)                                                                        \
    ORV_METHOD(type*, name, (), const), ORV_METHOD(bool, set##Name, (const type*), )
/// What all containers have.
#define ORV_CONTAINER_ACCESSORS(type, item, arg, name, Name)                                                           \
    ORV_ACCESSORS(type, name, Name), ORV_METHOD(int, count##Name, (), const),                                          \
        ORV_METHOD(item, name##ByIndex, (int), const), ORV_METHOD(bool, has##Name, (arg), const),                      \
        ORV_METHOD(bool, clear##Name, (), ), ORV_METHOD(bool, remove##Name##ByIndex, (int), )
/// A container by position.
#define ORV_ARRAY_ACCESSORS(type, item, arg, name, Name)                                                               \
    ORV_CONTAINER_ACCESSORS(type, item, arg, name, Name), ORV_METHOD(item, name, (int), const),                        \
        ORV_METHOD(bool, set##Name, (int, arg), ), ORV_METHOD(int, find##Name##Index, (arg), const),                   \
        ORV_METHOD(bool, remove##Name, (int), ), ORV_METHOD(bool, insert##Name, (int, arg), ),                         \
        ORV_METHOD(bool, add##Name, (arg), )
/// A container by key.
#define ORV_MAP_ACCESSORS(type, key, item, arg, name, Name)                                                            \
    ORV_CONTAINER_ACCESSORS(type, item, arg, name, Name), ORV_METHOD(item, name, (const key&), const),                 \
        ORV_METHOD(bool, set##Name, (const key&, arg), ), ORV_METHOD(key, name##Key, (int), const),                    \
        ORV_METHOD(int, name##Index, (const key&), const), ORV_METHOD(key, find##Name##Key, (arg), const),             \
        ORV_METHOD(int, find##Name##Index, (arg), const), ORV_METHOD(bool, remove##Name, (const key&), )

// Properties

/// A property with a getter of its name: `ORV_PROPERTY(int, width, "store .changed v3")`, and behind it what else it
/// has:
/// `.items<ZString>()`, `.indexed<ZSelector>()`, `.initially(constant)`, `.at(offsetof(Self, field))`.
#define ORV_PROPERTY(type, name, words)                                                                                \
    ::orv::glue::propertyRow<type, decltype(std::declval<const Self&>().name())>(#type, #name, words, 0)
/// A property that is held as a value and not in the class.
#define ORV_DYNAMIC_PROPERTY(type, name, words) ::orv::glue::propertyRow<type, const type&>(#type, #name, words, 0x20)

// Enums, groups, methods by index

/// `ORV_ITEM(Mode, Idle)`: an item with the enumerator's value.
#define ORV_ITEM(Enum, name)                                                                                           \
    ::orv::glue::EnumItemRow { #name, int(Self::Enum::name) }
/// The enum whose items stand in `items`, an array of `ORV_ITEM`s. Three values or more that count up without a gap
/// exclude each other, though their bits may look like flags; of others the bits decide.
#define ORV_ENUM(Enum, items) ORV_ENUM_ROW(Enum, items, ::orv::glue::countUp(items))
/// One of bit flags whose values count up, as 0, 1, 2 do.
#define ORV_FLAGS(Enum, items) ORV_ENUM_ROW(Enum, items, false)
#define ORV_ENUM_ROW(Enum, items, exclusive)                                                                           \
    ::orv::glue::EnumRow { #Enum, items, ::orv::glue::countOf(items), int(sizeof(Self::Enum)), exclusive }
/// A method that code calls by `index`, an enumerator of the class.
#define ORV_FIXED(index, result, name, params, quals)                                                                  \
    ::orv::glue::FixedRow {                                                                                            \
        int(Self::index), ::orv::glue::Shape<result(Self::*) params quals>::checked(#result " " #name #params, #name), \
            #quals                                                                                                     \
    }
/// A selector group from an array of pairs of texts.
#define ORV_GROUP(name, pairs)                                                                                         \
    ::orv::glue::GroupRow { name, pairs, ::orv::glue::countOf(pairs) }

/// Behind the table of a class, at file scope: makes its row.
#define ORV_DECLARE(...)                                                                                               \
    template <>                                                                                                        \
    constinit const ::orv::glue::ClassRow orv::glue::Row<__VA_ARGS__>::row = ::orv::glue::makeRow<__VA_ARGS__>()
