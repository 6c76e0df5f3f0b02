#pragma once

#include "core/ZTreeItemT.h"
#include "object/ZMethod.h"

/// A counted handle of a method together with its key in a table: the entry of `ZHashTreeT<ZSelector, ZMethodPtr>`, the
/// method table of a type or object. The key is the name of a function, so that overloads stand together, in the order
/// in which they were added. Nodes of tables come from a pool; a handle can also be a plain value.
class ORV_API ZMethodPtr : public ZTreeItemT<ZSelector, ZMethodPtr> {
public:
    static bool open();
    static void close();

    ZMethodPtr() = default;
    /// A new method; raises a failure when there is no memory.
    ZMethodPtr(const ZSelector& signature, const ZSelector& qualifier);
    explicit ZMethodPtr(const ZMethod* method) { set(method); }
    ZMethodPtr(const ZMethodPtr& other) : ZTreeItemT(other), name(other.name), method(ZMethod::retain(other.method)) {}
    ~ZMethodPtr() { ZMethod::release(method); }
    ZMethodPtr& operator=(const ZMethodPtr& other) {
        set(other.method);
        return *this;
    }
    /// For a node that stands in no table.
    void set(const ZMethod* other);

    /// Borrowed; null for none.
    ZMethod* get() const { return method; }
    ZMethod* operator->() const { return method; }
    explicit operator bool() const { return method != nullptr; }

    // As a node of a table

    const ZSelector& key() const { return name; }
    static void getHashInfo(uint& bits, uint& load) {
        bits = 4;
        load = 100;
    }
    static uint calcHashBits(uint count, uint load) { return orv_calchashbits(count, load, 4, 14); }
    static bool isMultiKey() { return true; }
    /// A node of the pool for the same method; null when there is no memory.
    static ZMethodPtr* create(const ZMethod* method);
    ZMethodPtr* copy() const { return create(method); }
    void release();

private:
    ZSelector name;
    ZMethod* method = nullptr;
};
