#pragma once

#include "core/ZTreeData.h"
#include "core/compare.h"
#include "core/forward.h"

/// The base of a class `T` whose objects are nodes of `ZTreeT` and `ZHashTreeT`: `class T : public ZTreeItemT<K, T>`. A
/// node is in one tree at a time; a copy of it is in none. `T` provides
///
///     K key() const;                                     // or a reference; doesn't change while the node is in a tree
///
/// and for a `ZHashTreeT`, unless what stands here will do, any of the static members below, `T* copy() const`,
/// `void release()`, and `int compare(const T&) const`, which orders first by key.
template <class K, class T> class ZTreeItemT : public orv::detail::TreeNode {
public:
    /// Bits and load percent of a new table.
    static void getHashInfo(uint& bits, uint& load) {
        bits = 0;
        load = 100;
    }
    static uint calcHashBits(uint count, uint load) { return orv_calchashbits(count, load, 0, 14); }
    /// Whether equal keys are allowed.
    static bool isMultiKey() { return false; }

    /// A new node with the same item; null when there is no memory.
    T* copy() const { return zmake<T>(static_cast<const T&>(*this)); }
    /// Gives up the reference that a table holds.
    void release() { zrelease(static_cast<T*>(this)); }

    static int order(const T& a, const T& b) {
        if constexpr (requires { a.compare(b); })
            return a.compare(b);
        else
            return zcompare<K>(a.key(), b.key());
    }
};
