#include "core/ZArrayData.h"

#include "core/arrayMoves.h"
#include "core/debug.h"
#include "core/memsort.h"

#include <algorithm>

namespace orv::detail {

static bool copyRange(const ArrayType& type, void* to, const void* from, uint count) {
    if (type.copy) return type.copy(to, from, count);
    if (count) std::memcpy(to, from, size_t(count) * type.size);
    return true;
}

static void moveRange(const ArrayType& type, void* to, void* from, uint count) {
    if (type.move)
        type.move(to, from, count);
    else if (count)
        std::memcpy(to, from, size_t(count) * type.size);
}

static ularge blockBytes(const ArrayType& type, ularge capacity) { return type.offset + capacity * type.size; }

ArrayHead* arrayMake(const ArrayType& type, ularge capacity, int16 expand) {
    if (capacity > arrayLimit) return nullptr;
    auto head = static_cast<ArrayHead*>(__zalloc(blockBytes(type, capacity)));
    if (head) *head = {0, uint(capacity), expand, 0, 0};
    return head;
}

/// Destroys the items from `from` on, which the head no longer counts. A destructor may come back to the container: the
/// block is held meanwhile, so that a write there gets a block of its own and leaves the dying items alone.
static void destroyTail(ArrayHead* head, const ArrayType& type, uint from, uint count) {
    retain(head);
    type.destroy(arrayItem(head, type, from), count);
    arrayRelease(head, type);
}

void arrayRelease(ArrayHead* head, const ArrayType& type) {
    if (!head || decmemref(head) > 0) return;
    if (type.destroy && head->count) {
        type.destroy(arrayItem(head, type, 0), head->count);
        // A stale pointer finds nulls instead of something that looks alive.
        std::memset(arrayItem(head, type, 0), 0, size_t(head->count) * type.size);
        head->count = head->sorted = 0;
    }
    toolkit::freeBlock(head);
}

/// Replaces a shared block by a copy with this capacity.
static bool copyBlock(ArrayHead*& head, const ArrayType& type, ularge capacity) {
    ArrayHead* own = arrayMake(type, capacity, head->expand);
    if (!own) return false;
    if (!copyRange(type, arrayItem(own, type, 0), arrayItem(head, type, 0), head->count)) {
        toolkit::freeBlock(own);
        return false;
    }
    own->count = head->count;
    own->sorted = head->sorted;
    own->fixedSize = head->fixedSize;
    ArrayHead* old = std::exchange(head, own);
    arrayRelease(old, type);
    return true;
}

/// Gives a block that nobody else holds another capacity.
static bool moveBlock(ArrayHead*& head, const ArrayType& type, ularge capacity) {
    if (capacity > arrayLimit) return false;
    if (!type.move) {
        auto moved = static_cast<ArrayHead*>(__zrealloc(head, blockBytes(type, capacity)));
        if (!moved) return false;
        moved->capacity = uint(capacity);
        head = moved;
        return true;
    }
    ArrayHead* own = arrayMake(type, capacity, head->expand);
    if (!own) return false;
    moveRange(type, arrayItem(own, type, 0), arrayItem(head, type, 0), head->count);
    own->count = head->count;
    own->sorted = head->sorted;
    own->fixedSize = head->fixedSize;
    toolkit::freeBlock(std::exchange(head, own));
    return true;
}

static bool changeBlock(ArrayHead*& head, const ArrayType& type, ularge capacity) {
    return arrayOwned(head) ? moveBlock(head, type, capacity) : copyBlock(head, type, capacity);
}

bool arrayDetach(ArrayHead*& head, const ArrayType& type) {
    if (!head || arrayOwned(head)) return true;
    // A fixed size is a promise of room.
    return copyBlock(head, type, head->fixedSize ? head->capacity : head->count);
}

ularge grownCapacity(uint count, uint capacity, int16 expand, ularge more) {
    const ularge least = count + more;
    ularge grown;
    if (expand < 0) {
        const ularge step = ularge(-int(expand));
        grown = (capacity + more + step - 1) / step * step;
    } else if (expand > 0)
        grown = capacity + (ularge(count) * uint(expand) + 50) / 100;
    else
        grown = ularge(capacity) + count;
    return std::max(least, std::min<ularge>(grown, arrayLimit));
}

bool arrayGrow(ArrayHead*& head, const ArrayType& type, ularge need) {
    if (!head) return need == 0 || (head = arrayMake(type, need, arrayExpand)) != nullptr;
    if (head->count + need <= head->capacity) return arrayOwned(head) || copyBlock(head, type, head->capacity);
    return !head->fixedSize && need <= arrayLimit &&
           changeBlock(head, type, grownCapacity(head->count, head->capacity, head->expand, need));
}

bool arrayResize(ArrayHead*& head, const ArrayType& type, ularge capacity) {
    if (!head) return capacity == 0 || (head = arrayMake(type, capacity, arrayExpand)) != nullptr;
    capacity = std::max<ularge>(capacity, head->count);
    return (capacity == head->capacity && arrayOwned(head)) || changeBlock(head, type, capacity);
}

bool arrayAppend(ArrayHead*& head, const ArrayType& type, const void* items, uint count) {
    if (!count) return true;
    auto from = static_cast<const char*>(items);
    bool inside = head && from >= arrayItem(head, type, 0) && from < arrayItem(head, type, head->count);
    bool fits = head && ularge(head->count) + count <= head->capacity && arrayOwned(head);
    // Own items stay where they are while the block is held: growth then copies instead of moving.
    ArrayHead* held = inside && !fits ? retain(head) : nullptr;
    bool done =
        (fits || arrayGrow(head, type, count)) && copyRange(type, arrayItem(head, type, head->count), from, count);
    if (done) {
        head->count += count;
        head->sorted = 0;
    }
    arrayRelease(held, type);
    return done;
}

static void reverseBytes(char* items, size_t size, size_t first, size_t last) {
    while (first + 1 < last) {
        char* low = items + first++ * size;
        std::swap_ranges(low, low + size, items + --last * size);
    }
}

void rotateBytes(void* all, size_t size, size_t first, size_t middle, size_t last) {
    char aside[256];
    char *items = static_cast<char*>(all), *start = items + first * size;
    const size_t left = (middle - first) * size, right = (last - middle) * size;
    if (right <= sizeof aside) {
        std::memcpy(aside, start + left, right);
        std::memmove(start + right, start, left);
        std::memcpy(start, aside, right);
    } else if (left <= sizeof aside) {
        std::memcpy(aside, start, left);
        std::memmove(start, start + left, right);
        std::memcpy(start + right, aside, left);
    } else {
        reverseBytes(items, size, first, middle);
        reverseBytes(items, size, middle, last);
        reverseBytes(items, size, first, last);
    }
}

static void rotateRange(const ArrayType& type, ArrayHead* head, uint first, uint middle, uint last) {
    if (first == middle || middle == last) return;
    if (type.rotate)
        type.rotate(arrayItem(head, type, 0), first, middle, last);
    else
        rotateBytes(arrayItem(head, type, 0), type.size, first, middle, last);
}

void arrayPlace(ArrayHead* head, const ArrayType& type, uint index, uint count) {
    rotateRange(type, head, index, head->count - count, head->count);
}

bool arrayRemove(ArrayHead*& head, const ArrayType& type, uint index, uint count) {
    if (!count) return true;
    if (!arrayDetach(head, type)) return false;
    uint rest = head->count - count;
    if (!type.destroy) {
        char* place = arrayItem(head, type, index);
        std::memmove(place, place + size_t(count) * type.size, size_t(rest - index) * type.size);
        head->count = rest;
        return true;
    }
    rotateRange(type, head, index, index + count, head->count);
    head->count = rest;
    destroyTail(head, type, rest, count);
    return true;
}

namespace {
struct PointerOrder {
    int (*compare)(const void*, const void*, void*);
    void* user;
};
int comparePointed(const void* a, const void* b, void* user) {
    auto order = static_cast<PointerOrder*>(user);
    return order->compare(*static_cast<void* const*>(a), *static_cast<void* const*>(b), order->user);
}
} // namespace

/// Items that bytes can't move: their addresses are sorted, then they go over to a new block in that order.
static bool sortMoving(ArrayHead*& head, const ArrayType& type, PointerOrder order) {
    size_t count = head->count;
    auto places = static_cast<char**>(__zalloc(count * 2 * sizeof(char*)));
    ArrayHead* own = places ? arrayMake(type, head->capacity, head->expand) : nullptr;
    if (own) {
        for (size_t i = 0; i < count; ++i) places[i] = arrayItem(head, type, i);
        mergesort(places, count, sizeof(char*), comparePointed, &order, places + count);
        for (size_t i = 0; i < count; ++i) type.move(arrayItem(own, type, i), places[i], 1);
        own->count = head->count;
        own->fixedSize = head->fixedSize;
        toolkit::freeBlock(std::exchange(head, own));
    }
    zfree(places);
    return own != nullptr;
}

bool arraySort(ArrayHead*& head, const ArrayType& type, int (*compare)(const void*, const void*, void*), void* user) {
    if (!head) return true;
    if (!arrayDetach(head, type)) return false;
    uint unordered = 1;
    while (unordered < head->count &&
           compare(arrayItem(head, type, unordered - 1), arrayItem(head, type, unordered), user) <= 0)
        ++unordered;
    if (unordered < head->count) {
        if (type.move) {
            if (!sortMoving(head, type, {compare, user})) return false;
        } else {
            void* scratch = __zalloc(size_t(head->count) * type.size);
            if (!scratch) return false;
            mergesort(arrayItem(head, type, 0), head->count, type.size, compare, user, scratch);
            zfree(scratch);
        }
    }
    head->sorted = 1;
    return true;
}

void arrayIndexFailed(const char* file, int line) { orv_assertw("zarrayt", "Array index out of bounds", file, line); }

} // namespace orv::detail
