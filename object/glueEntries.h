#pragma once

#include "object/glueRows.h"
#include "object/glueText.h"

#include <new>
#include <type_traits>
#include <utility>

/// The entries of methods, made from member pointers.
namespace orv::glue {

// Words

template <class T>
inline constexpr bool isWord = std::is_reference_v<T> || (sizeof(T) <= 8 && std::is_trivially_copyable_v<T>);
template <> inline constexpr bool isWord<void> = true;

template <class T> inline void* toWord(T value) {
    if constexpr (std::is_pointer_v<T>) {
        return const_cast<void*>(static_cast<const volatile void*>(value));
    } else {
        void* word = nullptr;
        __builtin_memcpy(&word, &value, sizeof value);
        return word;
    }
}
template <class T> inline T fromWord(const void* word) {
    if constexpr (std::is_reference_v<T>) {
        return *static_cast<std::remove_reference_t<T>*>(const_cast<void*>(word));
    } else if constexpr (std::is_pointer_v<T> && !std::is_function_v<std::remove_pointer_t<T>>) {
        return static_cast<T>(const_cast<void*>(word));
    } else {
        std::remove_const_t<T> value;
        __builtin_memcpy(&value, &word, sizeof value);
        return value;
    }
}

// Slots of an argument block

template <class T> constexpr int slotBytes() {
    if constexpr (std::is_reference_v<T> || std::is_pointer_v<T> || std::is_same_v<T, float>)
        return 8;
    else
        return int(sizeof(T) + 3) & ~3;
}
template <class T> inline T fromSlot(const char* at) {
    if constexpr (std::is_reference_v<T>) {
        std::remove_reference_t<T>* address;
        __builtin_memcpy(&address, at, sizeof address);
        return *address;
    } else if constexpr (std::is_same_v<T, float>) {
        double value;
        __builtin_memcpy(&value, at, sizeof value);
        return float(value);
    } else {
        static_assert(sizeof(T) <= 8 && std::is_trivially_copyable_v<T>, "pass class values by const reference");
        std::remove_const_t<T> value;
        __builtin_memcpy(&value, at, sizeof value);
        return value;
    }
}
/// Where each argument stands in the block.
template <class... A> struct Layout {
    int at[sizeof...(A) + 1];
    constexpr Layout() : at{} {
        int bytes[] = {slotBytes<A>()..., 0};
        for (int i = 0, sum = 8; i < int(sizeof...(A)); sum += bytes[i++]) at[i] = sum;
    }
};

// Calls. `Get` is a lambda without state that answers what is called: a member pointer, a function, or a lambda that
// takes the instance first. It is a lambda because the pointer to an inherited member can't be a template argument.

enum class How { member, constMember, function, adapter };

template <How how, class C, class Get> struct Call {
    // The sanitizer of g++ takes the part of a second base, to which a member pointer moves, for a whole instance.
    template <class... A>
    __attribute__((no_sanitize("alignment", "vptr"))) static decltype(auto) run([[maybe_unused]] const void* instance,
                                                                                A&&... a) {
        if constexpr (how == How::constMember)
            return (static_cast<const C*>(instance)->*Get{}())(std::forward<A>(a)...);
        else if constexpr (how == How::member)
            return (static_cast<C*>(const_cast<void*>(instance))->*Get{}())(std::forward<A>(a)...);
        else if constexpr (how == How::adapter)
            return Get{}()(*static_cast<C*>(const_cast<void*>(instance)), std::forward<A>(a)...);
        else
            return Get{}()(std::forward<A>(a)...);
    }
};

template <class Call, class R, class... A> struct Entries {
    static constexpr bool hasFast = sizeof...(A) <= 4 && isWord<R> && (isWord<A> && ...);
    static constexpr int fastWords = hasFast ? int(sizeof...(A)) : -1;

    /// `W`: as many words as there are parameters.
    template <class... W> struct Fast {
        static void* entry(const void* instance, ZMethod*, W... words) {
            if constexpr (std::is_void_v<R>) {
                Call::run(instance, fromWord<A>(words)...);
                return nullptr;
            } else if constexpr (std::is_reference_v<R>) {
                return toWord(&static_cast<R>(Call::run(instance, fromWord<A>(words)...)));
            } else {
                return toWord<R>(Call::run(instance, fromWord<A>(words)...));
            }
        }
    };
    template <class> using Word = const void*;
    static constexpr FastEntry fastEntry() {
        if constexpr (hasFast)
            return FastEntry(&Fast<Word<A>...>::entry);
        else
            return {};
    }

    static void stacked(const void* instance, ZMethod*, void* args) {
        run(instance, static_cast<char*>(args), std::index_sequence_for<A...>{});
    }

private:
    template <size_t... I> static void run(const void* instance, char* block, std::index_sequence<I...>) {
        static constexpr Layout<A...> in;
        if constexpr (std::is_void_v<R>) {
            Call::run(instance, fromSlot<A>(block + in.at[I])...);
        } else if constexpr (std::is_reference_v<R>) {
            const void* address = &static_cast<R>(Call::run(instance, fromSlot<A>(block + in.at[I])...));
            __builtin_memcpy(block, &address, sizeof address);
        } else {
            void* result;
            __builtin_memcpy(&result, block, sizeof result);
            ::new (result) std::remove_const_t<R>(Call::run(instance, fromSlot<A>(block + in.at[I])...));
        }
    }
};

// Signatures taken apart

/// Of the type of a member or function. "..." as last parameter is an open argument: the member takes the rest of the
/// arguments as one array of variants.
template <class F> struct Shape;
template <class C, class R, class... A> struct Shape<R (C::*)(A...)> {
    template <class Call> using E = Entries<Call, R, A...>;
    using Member = R (C::*)(A...);
    static constexpr bool isConst = false, isStatic = false;
    static constexpr int open = -1;

    static constexpr const char* checked(const char* text, const char* name) {
        return checkedSignature<R, A...>(text, name, false);
    }
    template <FixedText Name> static constexpr const char* made() { return signatureText<Name, false, R, A...>; }
};
template <class C, class R, class... A> struct Shape<R (C::*)(A...) const> : Shape<R (C::*)(A...)> {
    using Member = R (C::*)(A...) const;
    static constexpr bool isConst = true;
};
template <class C, class R, class... A> struct Shape<R (C::*)(A..., ...)> {
    template <class Call> using E = Entries<Call, R, A..., ZArrayT<ZVariant>&>;
    using Member = R (C::*)(A..., ZArrayT<ZVariant>&);
    static constexpr bool isConst = false, isStatic = false;
    static constexpr int open = sizeof...(A);

    static constexpr const char* checked(const char* text, const char* name) {
        return checkedSignature<R, A...>(text, name, true);
    }
    template <FixedText Name> static constexpr const char* made() { return signatureText<Name, true, R, A...>; }
};
template <class C, class R, class... A> struct Shape<R (C::*)(A..., ...) const> : Shape<R (C::*)(A..., ...)> {
    using Member = R (C::*)(A..., ZArrayT<ZVariant>&) const;
    static constexpr bool isConst = true;
};
struct NoClass;
template <class R, class... A> struct Shape<R (*)(A...)> : Shape<R (NoClass::*)(A...)> {
    using Member = R (*)(A...);
    static constexpr bool isStatic = true;
};
template <class R, class... A> struct Shape<R (*)(A..., ...)> : Shape<R (NoClass::*)(A..., ...)> {
    using Member = R (*)(A..., ZArrayT<ZVariant>&);
    static constexpr bool isStatic = true;
};

} // namespace orv::glue
