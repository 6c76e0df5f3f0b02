#pragma once

#include "core/ZArrayData.h"
#include "core/compare.h"
#include "core/forward.h"

/// An ordered array: one pointer to a counted block, null until something is put in. A copy shares the block; the first
/// write to a shared block makes an own one. Every writing operation answers false when there is no memory, and has
/// then changed nothing; items handed in may be the array's own. At most 2^31 - 1 items.
///
/// Several threads may read and copy an array; whoever writes it has it alone. Items of a class that `zrelocatable`
/// holds for move by their bytes; of others the move constructor is used, which must not fail.
template <class T> class ZArrayT {
public:
    using ZRelocatable = void;
    using Item = T;

    // Lifetime. A constructor without memory raises a failure and leaves the array empty.

    ZArrayT() = default;
    /// Room for `capacity` items and a rule of growth, see `setExpand`.
    ZArrayT(uint capacity, int16 expand) : head(orv::detail::arrayMake(type(), capacity, expand)) {
        if (!head) ZError::fail();
    }
    ZArrayT(const ZArrayT& other) : head(retain(other.head)) {}
    ZArrayT(ZArrayT&& other) noexcept : head(std::exchange(other.head, nullptr)) {}
    template <class U>
    requires std::is_same_v<U, T> ZArrayT(const U* items, uint count) {
        if (!append(items, count)) ZError::fail();
    }
    ~ZArrayT() { clear(); }
    ZArrayT& operator=(const ZArrayT& other) {
        Head* old = std::exchange(head, retain(other.head));
        orv::detail::arrayRelease(old, type());
        return *this;
    }
    ZArrayT& operator=(ZArrayT&& other) noexcept {
        Head* taken = std::exchange(other.head, nullptr);
        orv::detail::arrayRelease(std::exchange(head, taken), type());
        return *this;
    }

    // Reading

    uint count() const { return head ? head->count : 0; }
    bool isEmpty() const { return count() == 0; }
    const T* data() const { return head ? items() : nullptr; }
    const T* begin() const { return data(); }
    const T* end() const { return head ? items() + head->count : nullptr; }
    /// An index out of range ends the process.
    const T& operator[](uint index) const {
        checkIndex(index);
        return items()[index];
    }
    /// Null for an index out of range.
    const T* entry(uint index) const { return index < count() ? items() + index : nullptr; }

    // Writing items in place. It leaves `isSorted` as it is: whoever moves an item in the order calls
    // `setSorted(false)`.

    /// An index out of range ends the process. Without memory to detach, raises a failure and answers a spare copy,
    /// which holds until the thread's next such answer; the array stays as it was.
    T& operator[](uint index) {
        checkIndex(index);
        return ORV_LIKELY(detach()) ? items()[index] : spare(index);
    }
    /// Null for an index out of range and without memory to detach.
    T* entry(uint index) { return index < count() && detach() ? items() + index : nullptr; }
    /// False also for an index out of range.
    bool set(uint index, const T& value) {
        // The value may be an item of the shared block, which goes when its other holders let it go.
        ZArrayT kept;
        if (!isDetached()) kept = *this;
        T* place = entry(index);
        if (!place) return false;
        ZFailGuard guard;
        *place = value;
        if (!guard.rose()) return true;
        guard.forget();
        return false;
    }

    // Adding and removing

    bool append(const T& value) {
        if (ORV_LIKELY(head && head->count < head->capacity && orv::detail::arrayOwned(head))) return addAtEnd(value);
        return appendGrowing(value);
    }
    /// Takes the value over where there is room; otherwise, and without memory, the value stays.
    bool append(T&& value) {
        if (ORV_LIKELY(head && head->count < head->capacity && orv::detail::arrayOwned(head)))
            return addAtEnd(std::move(value));
        return appendGrowing(value);
    }
    bool append(const T* values, uint count) { return orv::detail::arrayAppend(head, type(), values, count); }
    bool append(const ZArrayT& other) {
        ZArrayT kept(other);
        return append(kept.data(), kept.count());
    }
    /// An index above the count appends.
    bool insert(uint index, const T& value) {
        if (!append(value)) return false;
        if (index < head->count - 1) orv::detail::arrayPlace(head, type(), index, 1);
        return true;
    }
    bool insert(uint index, const T* values, uint count) {
        if (!append(values, count)) return false;
        if (count && index < head->count - count) orv::detail::arrayPlace(head, type(), index, count);
        return true;
    }
    /// Removes what lies of the range within the array; the order of the rest stays.
    bool remove(uint index, uint count = 1) {
        uint all = this->count();
        if (index >= all) return true;
        return orv::detail::arrayRemove(head, type(), index, count < all - index ? count : all - index);
    }
    /// Items are added as `T()`, or removed at the end.
    bool setCount(uint wanted) {
        uint had = count();
        if (wanted <= had) return remove(wanted, had - wanted);
        if (!orv::detail::arrayGrow(head, type(), wanted - had)) return false;
        return addEmpty(wanted);
    }
    /// Gives the block up, with its rule of growth and fixed size; `remove` keeps them.
    void clear() { orv::detail::arrayRelease(std::exchange(head, nullptr), type()); }

    // Order and search. `compare(a, b)` answers negative, 0 or positive and doesn't touch the array.

    /// Ascending; equal items keep their order.
    bool sort() {
        return sort([](const T& a, const T& b) { return zcompare(a, b); });
    }
    template <class F> bool sort(F compare) {
        auto call = [](const void* a, const void* b, void* user) {
            return int((*static_cast<F*>(user))(*static_cast<const T*>(a), *static_cast<const T*>(b)));
        };
        return orv::detail::arraySort(head, type(), call, &compare);
    }
    /// Set by `sort`, cleared by whatever adds an item.
    bool isSorted() const { return head && head->sorted; }
    bool setSorted(bool sorted) {
        if (!head) return true;
        if (!detach()) return false;
        head->sorted = sorted;
        return true;
    }
    /// By the first items that differ, then by the count.
    int compare(const ZArrayT& other) const {
        uint mine = count(), others = other.count(), shorter = mine < others ? mine : others;
        if (head != other.head)
            for (uint i = 0; i < shorter; ++i)
                if (int order = zcompare(items()[i], other.items()[i])) return order;
        return (mine > others) - (mine < others);
    }
    bool operator==(const ZArrayT& other) const {
        uint all = count(), i = 0;
        if (all != other.count()) return false;
        if (head != other.head)
            while (i < all && same(items()[i], other.items()[i])) ++i;
        return head == other.head || i == all;
    }
    /// The position of the first item from `start` on that compares equal; -1 if there is none.
    int indexOf(const T& value, uint start = 0) const {
        for (uint i = start, all = count(); i < all; ++i)
            if (same(items()[i], value)) return int(i);
        return -1;
    }
    bool contains(const T& value) const { return indexOf(value) >= 0; }
    /// The first and the last of the items equal to `value`, in ascending items; -1 if there is none.
    int findFirst(const T& value) const {
        int hit = findAny(value);
        while (hit > 0 && zcompare(items()[hit - 1], value) == 0) --hit;
        return hit;
    }
    int findLast(const T& value) const {
        int hit = findAny(value);
        while (hit >= 0 && uint(hit) + 1 < count() && zcompare(items()[hit + 1], value) == 0) ++hit;
        return hit;
    }

    // Room

    uint capacity() const { return head ? head->capacity : 0; }
    /// Room for `wanted` items in all; never less than there was.
    bool reserve(uint wanted) { return wanted <= capacity() || orv::detail::arrayResize(head, type(), wanted); }
    /// Room for `more` items beyond those in use, by the rule of growth. False also if the size is fixed and too small.
    bool expand(uint more) { return orv::detail::arrayGrow(head, type(), more); }
    /// Gives back the room that isn't in use.
    bool trim() { return !head || orv::detail::arrayResize(head, type(), head->count); }
    /// How the room grows: negative, in steps of that many items; positive, by so many percent of the items in use;
    /// 0, by the items in use. 100 at first.
    int16 expandRule() const { return head ? head->expand : orv::detail::arrayExpand; }
    bool setExpand(int16 rule) {
        if (!ownHead()) return false;
        head->expand = rule;
        return true;
    }
    /// While set, an array that is full refuses more items.
    bool fixedSize() const { return head && head->fixedSize; }
    bool setFixedSize(bool fixed) {
        if (!ownHead()) return false;
        head->fixedSize = fixed;
        return true;
    }

    // Sharing

    /// Arrays that share the block; 0 without one.
    int refcount() const { return ::refcount(head); }
    bool isDetached() const { return !head || orv::detail::arrayOwned(head); }
    /// Makes the block this array's own; `isSorted`, growth and fixed size stay.
    bool detach() { return isDetached() || orv::detail::arrayDetach(head, type()); }

private:
    using Head = orv::detail::ArrayHead;
    static constexpr uint offset = alignof(T) <= 4 ? 12 : 16;
    static constexpr const orv::detail::ArrayType& type() {
        static_assert(alignof(T) <= 16 && orv::detail::arrayType<T>.offset == offset);
        return orv::detail::arrayType<T>;
    }

    T* items() const { return reinterpret_cast<T*>(reinterpret_cast<char*>(head) + offset); }
    void checkIndex(uint index) const {
        if (ORV_UNLIKELY(index >= count())) orv::detail::arrayIndexFailed(__FILE__, __LINE__);
    }
    static bool same(const T& a, const T& b) {
        if constexpr (
            requires { a.compare(b); } || !requires { a == b; })
            return zcompare(a, b) == 0;
        else
            return a == b;
    }
    int findAny(const T& value) const {
        uint low = 0, high = count();
        while (low < high) {
            uint middle = low + (high - low) / 2;
            int order = zcompare(items()[middle], value);
            if (order == 0) return int(middle);
            (order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
        }
        return -1;
    }

    /// Builds the next item; there is room. The count rises with a whole item only.
    template <class V> bool addAtEnd(V&& value) {
        // One load of each field: what is stored to the items might be these, for all the compiler knows.
        Head* const block = head;
        const uint count = block->count;
        T* place = reinterpret_cast<T*>(reinterpret_cast<char*>(block) + offset) + count;
        // What is noexcept raises no failure either.
        if constexpr (std::is_nothrow_constructible_v<T, V&&>)
            ::new (place) T(std::forward<V>(value));
        else {
            ZFailGuard guard;
            std::memset(static_cast<void*>(place), 0, sizeof(T));
            ::new (place) T(std::forward<V>(value));
            if (ORV_UNLIKELY(guard.rose())) {
                place->~T();
                guard.forget();
                return false;
            }
        }
        block->count = count + 1;
        if (block->sorted) block->sorted = 0;
        return true;
    }
    [[gnu::noinline]] bool appendGrowing(const T& value) {
        // The value may stand in the block that is about to move.
        ZFailGuard guard;
        T kept(value);
        if (!guard.rose()) return orv::detail::arrayGrow(head, type(), 1) && addAtEnd(std::move(kept));
        guard.forget();
        return false;
    }
    bool addEmpty(uint wanted) {
        if (!head) __builtin_unreachable();
        uint had = count();
        std::memset(static_cast<void*>(items() + had), 0, size_t(wanted - had) * sizeof(T));
        if constexpr (!std::is_trivially_default_constructible_v<T>) {
            ZFailGuard guard;
            for (uint i = had; i < wanted; ++i) ::new (items() + i) T();
            if (guard.rose()) {
                orv::detail::destroyItems<T>(items() + had, wanted - had);
                guard.forget();
                return false;
            }
        }
        head->count = wanted;
        head->sorted = 0;
        return true;
    }
    bool ownHead() {
        if (head) return detach();
        return (head = orv::detail::arrayMake(type(), 0, orv::detail::arrayExpand)) != nullptr;
    }
    [[gnu::cold, gnu::noinline]] T& spare(uint index) {
        alignas(T) static constinit thread_local byte room[sizeof(T)] = {};
        static constinit thread_local bool used = false;
        T* copy = reinterpret_cast<T*>(room);
        if (used) copy->~T();
        used = true;
        ::new (room) T(std::as_const(*this)[index]);
        ZError::fail();
        return *copy;
    }

    Head* head = nullptr;
};
