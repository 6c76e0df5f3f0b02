#pragma once

#include "core/arrayMoves.h"
#include "core/construct.h"

#include <cstring>

/// The untyped part of `ZArrayT`: block layout, growth and moves. Items are known by an `ArrayType` only.
namespace orv::detail {

/// The head of an array block. Items follow at byte 12, or at 16 where their alignment needs it.
struct ArrayHead {
    uint count;     ///< items in use
    uint capacity;  ///< items there is room for
    int16 expand;   ///< growth: negative, a step in items; positive, percent of the items in use; 0 doubles
    byte sorted;    ///< the items are in order
    byte fixedSize; ///< growth is refused
};
static_assert(sizeof(ArrayHead) == 12);

inline constexpr int16 arrayExpand = 100;

/// What the untyped part has to know of an item. A null function means that bytes will do.
struct ArrayType {
    uint size;
    uint offset;
    bool (*copy)(void* to, const void* from, uint count);            ///< all, or false and none
    void (*move)(void* to, void* from, uint count);                  ///< to free room, leaving free room
    void (*rotate)(void* items, uint first, uint middle, uint last); ///< `middle` comes to `first`
    void (*destroy)(void* items, uint count);                        ///< last to first
};

inline char* arrayItem(const ArrayHead* head, const ArrayType& type, size_t index) {
    return reinterpret_cast<char*>(const_cast<ArrayHead*>(head)) + type.offset + index * type.size;
}
/// Whether nobody else holds the block, so that it may be written.
inline bool arrayOwned(const ArrayHead* head) { return toolkit::loadAcquire(toolkit::blockHead(head)->count) == 1; }

/// An empty block. Null when there is no memory or `capacity` is above `arrayLimit`.
ORV_API ArrayHead* arrayMake(const ArrayType& type, ularge capacity, int16 expand);
/// Gives up one reference; with the last, destroys the items and frees the block. Null is fine.
ORV_API void arrayRelease(ArrayHead* head, const ArrayType& type);
/// Makes the block the caller's own. On failure false, and nothing has changed; so for all that follow.
ORV_API bool arrayDetach(ArrayHead*& head, const ArrayType& type);
/// Room for `need` more items in a block of the caller's own.
ORV_API bool arrayGrow(ArrayHead*& head, const ArrayType& type, ularge need);
/// A block of the caller's own with exactly this capacity, or one for the items in use if that is more.
ORV_API bool arrayResize(ArrayHead*& head, const ArrayType& type, ularge capacity);
/// Appends copies of `count` items, which may be the array's own.
ORV_API bool arrayAppend(ArrayHead*& head, const ArrayType& type, const void* items, uint count);
/// Moves the last `count` items to `index`.
ORV_API void arrayPlace(ArrayHead* head, const ArrayType& type, uint index, uint count);
/// Removes a range that lies within the array.
ORV_API bool arrayRemove(ArrayHead*& head, const ArrayType& type, uint index, uint count);
/// Sorts, keeping the order of equal items. `compare` gets `user` as its last argument.
ORV_API bool arraySort(ArrayHead*& head, const ArrayType& type, int (*compare)(const void*, const void*, void*),
                       void* user);
[[noreturn]] ORV_API void arrayIndexFailed(const char* file, int line);

template <class T> bool copyItems(void* to, const void* from, uint count) {
    T* target = static_cast<T*>(to);
    const T* source = static_cast<const T*>(from);
    ZFailGuard guard;
    std::memset(to, 0, size_t(count) * sizeof(T));
    for (uint i = 0; i < count; ++i) {
        ::new (target + i) T(source[i]);
        if (ORV_LIKELY(!guard.rose())) continue;
        for (uint made = i + 1; made > 0; --made) target[made - 1].~T();
        guard.forget();
        return false;
    }
    return true;
}
/// Moves a value to free room, leaving free room; no destructor of a relocatable type runs.
template <class T> void relocate(T* to, T* from) {
    if constexpr (zrelocatable<T>)
        std::memcpy(static_cast<void*>(to), static_cast<void*>(from), sizeof(T));
    else {
        ::new (to) T(std::move(*from));
        from->~T();
    }
}
template <class T> void moveItems(void* to, void* from, uint count) {
    for (uint i = 0; i < count; ++i) relocate(static_cast<T*>(to) + i, static_cast<T*>(from) + i);
}
template <class T> void reverseItems(T* items, uint first, uint last) {
    while (first + 1 < last) {
        T kept(std::move(items[first]));
        T* low = items + first++;
        T* high = items + --last;
        low->~T();
        ::new (low) T(std::move(*high));
        high->~T();
        ::new (high) T(std::move(kept));
    }
}
template <class T> void rotateItems(void* items, uint first, uint middle, uint last) {
    T* all = static_cast<T*>(items);
    reverseItems(all, first, middle);
    reverseItems(all, middle, last);
    reverseItems(all, first, last);
}
template <class T> void destroyItems(void* items, uint count) {
    for (T* all = static_cast<T*>(items); count > 0; --count) all[count - 1].~T();
}

template <class T>
inline constexpr ArrayType arrayType = {
    .size = sizeof(T),
    .offset = alignof(T) <= 4 ? 12 : 16,
    .copy = std::is_trivially_copy_constructible_v<T> ? nullptr : copyItems<T>,
    .move = zrelocatable<T> ? nullptr : moveItems<T>,
    .rotate = zrelocatable<T> ? nullptr : rotateItems<T>,
    .destroy = std::is_trivially_destructible_v<T> ? nullptr : destroyItems<T>,
};

} // namespace orv::detail
