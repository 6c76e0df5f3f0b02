#pragma once

#include "core/ZError.h"
#include "core/compare.h"
#include "core/construct.h"
#include "object/glueEntries.h"

/// How instances come and go, from what the class offers. Classes of types (`ZType` and what derives from it) have
/// virtual operations for most of it, so the metatype asks those.
namespace orv::glue {

/// A zeroed counted block of the type's size, or of `least` bytes if that is more; null without memory.
ORV_API void* newInstance(ZMetaType* type, size_t least);

/// Converts to the tag that constructors take last, and to nothing else.
struct TagProbe {
    template <class T>
    requires std::is_same_v<T, const __ZPassMetaType*>
    operator T() const;
};

/// Converts to the block for private parts that constructors take behind the tag, and to nothing else.
struct InternalProbe {
    template <class T>
    requires std::is_same_v<T, ZInternal*>
    operator T() const;
};
/// The block that the call under way passes to its constructor: null for none. Whoever takes it has it alone.
ORV_API ZInternal* takeInternal();

template <class T> struct Life {
    /// Whether it can be built from such arguments, with or without a tag behind them.
    template <class... A> static constexpr bool takesTag = requires(A&&... a, TagProbe tag) {
        ::new (static_cast<void*>(nullptr)) T(static_cast<A&&>(a)..., tag);
    };
    template <class... A> static constexpr bool takesInternal = requires(A&&... a, TagProbe tag, InternalProbe block) {
        ::new (static_cast<void*>(nullptr)) T(static_cast<A&&>(a)..., tag, block);
    };
    template <class... A> static constexpr bool builds = takesTag<A...> || requires(A&&... a) {
        ::new (static_cast<void*>(nullptr)) T(static_cast<A&&>(a)...);
    };
    static constexpr bool isType = std::is_base_of_v<ZType, T>;
    static constexpr bool copiesByPointer = isType && builds<const T*>;

    /// Constructs at `at`; a failure shows in the count of `ZError`.
    template <class... A> static void build(void* at, [[maybe_unused]] const __ZPassMetaType* tag, A&&... a) {
        if constexpr (takesTag<A...>)
            ::new (at) T(static_cast<A&&>(a)..., tag);
        else
            ::new (at) T(static_cast<A&&>(a)...);
    }
    template <class... A> static bool buildWhole(void* at, const __ZPassMetaType* tag, A&&... a) {
        ZFailGuard guard;
        build(at, tag, static_cast<A&&>(a)...);
        if (ORV_LIKELY(!guard.rose())) return true;
        static_cast<T*>(at)->~T();
        guard.forget();
        return false;
    }

    static bool construct(void* at, ZMetaType* type) {
        return buildWhole(at, reinterpret_cast<const __ZPassMetaType*>(type));
    }
    static bool destruct(void* instance) {
        static_cast<T*>(instance)->~T();
        return true;
    }
    static bool copy(void* at, const void* source) {
        auto from = static_cast<const T*>(source);
        if constexpr (copiesByPointer)
            return buildWhole(at, reinterpret_cast<const __ZPassMetaType*>(from->type()), from);
        else
            return buildWhole(at, nullptr, *from);
    }
    static void* copyNew(const void* source) {
        auto from = static_cast<const T*>(source);
        void* made = newInstance(from->type(), sizeof(T));
        if (!made || copy(made, source)) return made;
        toolkit::freeBlock(made);
        return nullptr;
    }
    static bool detach(void* instance) { return static_cast<T*>(instance)->detach(); }
    static bool isDetached(const void* instance) { return static_cast<const T*>(instance)->isDetached(); }
    static int compare(const void* a, const void* b) {
        return int(zcompare(*static_cast<const T*>(a), *static_cast<const T*>(b)));
    }
    static bool fromString(void* instance, const ZString& text) { return static_cast<T*>(instance)->fromString(text); }
    /// A template, so that `S` needs to be complete only where a class has the operation.
    template <class S> static S toString(const void* instance) { return static_cast<const T*>(instance)->toString(); }
    static void release(void* instance) { static_cast<T*>(instance)->release(); }
    static void* retain(void* instance) {
        static_cast<T*>(instance)->retain();
        return instance;
    }

    static constexpr Callbacks callbacks() {
        Callbacks made{};
        if constexpr (std::is_class_v<T>) {
            if constexpr (builds<>) made.construct = construct;
            if constexpr (!std::is_trivially_destructible_v<T> && requires(T & a) { a.~T(); }) made.destruct = destruct;
            if constexpr (copiesByPointer || (!isType && builds<const T&>)) made.copy = copy;
            if constexpr (isType) {
                if constexpr (copiesByPointer) made.copyNew = copyNew;
            } else {
                if constexpr (requires(T & a) { bool(a.detach()); }) made.detach = detach;
                if constexpr (requires(const T& a) { bool(a.isDetached()); }) made.isDetached = isDetached;
                if constexpr (zcomparable<T>) made.compare = compare;
                if constexpr (requires(T & a, const ZString& text) { bool(a.fromString(text)); })
                    made.fromString = fromString;
                if constexpr (requires(const T& a) { requires std::is_same_v<decltype(a.toString()), ZString>; })
                    made.toString = toString<ZString>;
                if constexpr (requires(T & a) {
                                  a.retain();
                                  a.release();
                              }) {
                    made.release = release;
                    made.retain = retain;
                }
            }
        }
        return made;
    }
};

/// Entries of constructors and of the destructor.
template <class T, class... A> struct Building {
    static void stacked(const void* instance, ZMethod*, void* args) {
        run(const_cast<void*>(instance), static_cast<char*>(args), std::index_sequence_for<A...>{});
    }
    /// Whether a value of the one parameter converts without being asked to.
    static constexpr bool isExplicit() {
        if constexpr (sizeof...(A) == 1)
            return !(std::is_convertible_v<A, T> && ...);
        else
            return false;
    }

private:
    template <size_t... I> static void run(void* instance, char* block, std::index_sequence<I...>) {
        static constexpr Layout<A...> in;
        const __ZPassMetaType* tag;
        __builtin_memcpy(&tag, block, sizeof tag);
        if constexpr (Life<T>::template takesInternal<A...>)
            ::new (instance) T(fromSlot<A>(block + in.at[I])..., tag, takeInternal());
        else
            Life<T>::template build<A...>(instance, tag, fromSlot<A>(block + in.at[I])...);
    }
};
template <class T> void destructEntry(const void* instance, ZMethod*, void*) {
    Life<T>::destruct(const_cast<void*>(instance));
}

} // namespace orv::glue
