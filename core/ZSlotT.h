#pragma once

#include "core/ZArrayData.h"
#include "core/forward.h"

/// Records by value under small numbers that stay theirs until they are removed; the number freed last is given out
/// next. One pointer to a counted block, null until something is put in. A copy shares the block, and the first write
/// through one of them copies it. Pointers to records hold until the next `add`. A writing operation that answers
/// false, or -1, for lack of memory, has changed nothing. One thread at a time.
template <class T> class ZSlotT {
    struct SlotItem {
        T value;
        int nextFree;
        byte used;
    };
    struct Block;

public:
    using ZRelocatable = void;
    static constexpr uint defaultStep = 512;

    ZSlotT() = default;
    /// Room for `count` records, growing in steps of `growBy`. Raises a failure without memory.
    ZSlotT(uint count, uint growBy) : block(make(count, growBy ? growBy : 1)) {
        if (!block) ZError::fail();
    }
    ZSlotT(const ZSlotT& other) : block(retain(other.block)) {}
    ZSlotT(ZSlotT&& other) noexcept : block(std::exchange(other.block, nullptr)) {}
    ~ZSlotT() { clear(); }
    ZSlotT& operator=(const ZSlotT& other) {
        drop(std::exchange(block, retain(other.block)));
        return *this;
    }
    ZSlotT& operator=(ZSlotT&& other) noexcept {
        Block* taken = std::exchange(other.block, nullptr);
        drop(std::exchange(block, taken));
        return *this;
    }

    /// Walks the used records in order of their numbers.
    class iterator {
    public:
        const T& operator*() const { return block->items()[at].value; }
        const T* operator->() const { return &block->items()[at].value; }
        int index() const { return int(at); }
        iterator& operator++() {
            ++at;
            skipFree();
            return *this;
        }
        bool operator==(const iterator& other) const { return at == other.at; }

    private:
        friend ZSlotT;
        iterator(Block* block, uint at) : block(block), at(at) { skipFree(); }
        void skipFree() {
            while (block && at < block->count && !block->items()[at].used) ++at;
        }
        Block* block;
        uint at;
    };
    iterator begin() const { return iterator(block, 0); }
    iterator end() const { return iterator(block, capacity()); }

    /// Records in use, and how many there is room for.
    uint count() const { return block ? block->used : 0; }
    uint capacity() const { return block ? block->count : 0; }
    /// Null for a number that isn't in use.
    const T* get(int index) const {
        return index >= 0 && uint(index) < capacity() && block->items()[index].used ? &block->items()[index].value
                                                                                    : nullptr;
    }
    /// For writing; null also without memory to detach.
    T* edit(int index) { return get(index) && detach() ? &block->items()[index].value : nullptr; }

    /// The number of a new record; -1 without memory. `value` may be one of the table's own.
    int add(const T& value) {
        ZFailGuard guard;
        T kept(value);
        if (guard.rose() || !detach() || ((!block || block->freeHead < 0) && !grow())) {
            if (guard.rose()) guard.forget();
            return -1;
        }
        int index = block->freeHead;
        SlotItem& item = block->items()[index];
        ::new (&item.value) T(std::move(kept));
        block->freeHead = item.nextFree;
        item.nextFree = -1;
        item.used = 1;
        ++block->used;
        return index;
    }
    /// True also for a number that isn't in use.
    bool remove(int index) {
        if (!get(index)) return true;
        if (!detach()) return false;
        SlotItem& item = block->items()[index];
        // The destructor may come back: by then the record is free, and its value elsewhere.
        Aside dying(&item.value);
        __builtin_memset(static_cast<void*>(&item), 0, sizeof item);
        item.nextFree = block->freeHead;
        block->freeHead = index;
        --block->used;
        return true;
    }
    void clear() { drop(std::exchange(block, nullptr)); }

    int refcount() const { return ::refcount(block); }
    bool isDetached() const { return !block || toolkit::loadAcquire(toolkit::blockHead(block)->count) == 1; }
    bool detach() {
        if (isDetached()) return true;
        Block* own = make(block->count, block->growBy);
        if (!own) return false;
        ZFailGuard guard;
        for (uint i = 0; i < block->count; ++i) {
            SlotItem &from = block->items()[i], &to = own->items()[i];
            if (from.used) ::new (&to.value) T(from.value);
            to.used = from.used;
            to.nextFree = from.nextFree;
        }
        own->freeHead = block->freeHead;
        own->used = block->used;
        if (guard.rose()) {
            guard.forget();
            drop(own);
            return false;
        }
        drop(std::exchange(block, own));
        return true;
    }

private:
    struct Block {
        uint count; ///< records there is room for
        int freeHead;
        uint growBy;
        uint used;
        SlotItem* items() { return reinterpret_cast<SlotItem*>(this + 1); }
    };
    static_assert(alignof(T) <= 16 && sizeof(Block) == 16);

    /// A value taken out of its record.
    struct Aside {
        alignas(T) byte room[sizeof(T)];
        explicit Aside(T* from) { orv::detail::relocate(reinterpret_cast<T*>(room), from); }
        Aside(const Aside&) = delete;
        ~Aside() { reinterpret_cast<T*>(room)->~T(); }
    };

    /// A zeroed block with all records from `from` on chained into its free list.
    static Block* make(ularge count, uint growBy, uint from = 0) {
        if (count > 0x7FFFFFFF) return nullptr;
        auto block = static_cast<Block*>(toolkit::allocZeroedBlock(sizeof(Block) + count * sizeof(SlotItem)));
        if (!block) return nullptr;
        *block = {uint(count), from < count ? int(from) : -1, growBy, 0};
        for (uint i = from; i < count; ++i) block->items()[i].nextFree = i + 1 < count ? int(i + 1) : -1;
        return block;
    }
    /// Another step of records, for a table of its own that is full.
    bool grow() {
        uint had = capacity(), step = block ? block->growBy : defaultStep;
        Block* own = make(ularge(had) + step, step, had);
        if (!own) return false;
        for (uint i = 0; i < had; ++i) {
            SlotItem &from = block->items()[i], &to = own->items()[i];
            orv::detail::relocate(&to.value, &from.value);
            to.used = 1;
            to.nextFree = -1;
        }
        own->used = had;
        toolkit::freeBlock(std::exchange(block, own));
        return true;
    }
    static void drop(Block* block) {
        if (!block || decmemref(block) > 0) return;
        for (uint i = block->count; i > 0; --i)
            if (block->items()[i - 1].used) block->items()[i - 1].value.~T();
        toolkit::freeBlock(block);
    }

    Block* block = nullptr;
};
