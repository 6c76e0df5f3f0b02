#pragma once

#include "core/ZPtrKey.h"
#include "core/ZTreeItemT.h"

/// A pointer and its number, as a node of a tree. Nodes come from a pool of the process: made by `make`, given up by
/// `release`.
class ORV_API ZPointerIndex : public ZTreeItemT<ZPtrKey, ZPointerIndex> {
public:
    /// Null when there is no memory.
    static ZPointerIndex* make(const void* pointer, int index);
    ZPointerIndex* copy() const { return make(pointer.pointer(), index); }
    void release();

    const ZPtrKey& key() const { return pointer; }
    /// By pointer, then by number.
    int compare(const ZPointerIndex& other) const {
        int order = pointer.compare(other.pointer);
        return order ? order : (index > other.index) - (index < other.index);
    }

    static void getHashInfo(uint& bits, uint& load) {
        bits = 0;
        load = 200;
    }
    static uint calcHashBits(uint count, uint load) { return orv_calchashbits(count, load, 8, 14); }
    static bool isMultiKey() { return false; }

    // The pool. Between `open` and `close` its memory is kept; after that it goes with the last node.

    static void open();
    static void close();
    /// Nodes in use.
    static uint count();

    int index;

private:
    ZPointerIndex(const void* pointer, int index) : index(index), pointer(pointer) {}

    ZPtrKey pointer;
};
