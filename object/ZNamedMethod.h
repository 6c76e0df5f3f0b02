#pragma once

#include "core/ZTreeItemT.h"
#include "object/ZMethod.h"

/// One entry of an object's multi-method table: a counted handle of a method under its name.
class ORV_API ZNamedMethod : public ZTreeItemT<ZSelector, ZNamedMethod> {
public:
    static bool open();
    static void close();

    ZNamedMethod() = default;
    explicit ZNamedMethod(const ZMethod* method) : method(ZMethod::retain(method)) {
        if (method) name = method->methodName();
    }
    ZNamedMethod(const ZNamedMethod& other)
        : ZTreeItemT(other), name(other.name), method(ZMethod::retain(other.method)) {}
    ~ZNamedMethod() { ZMethod::release(method); }
    ZNamedMethod& operator=(const ZNamedMethod&) = delete;

    /// Borrowed; null for none.
    ZMethod* get() const { return method; }
    ZMethod* operator->() const { return method; }

    // As a node of a table

    const ZSelector& key() const { return name; }
    static void getHashInfo(uint& bits, uint& load) {
        bits = 4;
        load = 100;
    }
    static uint calcHashBits(uint count, uint load) { return orv_calchashbits(count, load, 4, 14); }
    static bool isMultiKey() { return true; }
    /// A node of the pool; null when there is no memory.
    static ZNamedMethod* create(const ZMethod* method);
    ZNamedMethod* copy() const { return create(method); }
    void release();

private:
    ZSelector name;
    ZMethod* method = nullptr;
};
