#pragma once

#include "object/ZProperty.h"

/// A property of an instance as one value: a retained record and the instance that owns the property, which may be a
/// delegate of the one that was asked. It reads and writes through the owner, which it doesn't retain: an owner has to
/// outlive its references. Null without a record.
class ORV_API ZPropertyRef {
public:
    using ZRelocatable = void;

    ZPropertyRef() = default;
    ZPropertyRef(const ZPropertyRef& other);
    ZPropertyRef(ZPropertyRef&& other) noexcept;
    /// A record of its own that holds a value, without an owner.
    explicit ZPropertyRef(const ZVariant& value);
    ZPropertyRef(const ZProperty* property, const ZType* owner);
    /// The property that the instance answers for under that name; null if it answers for none.
    ZPropertyRef(const ZType* type, const ZSelector& name);
    ~ZPropertyRef() { clear(); }
    ZPropertyRef& operator=(const ZPropertyRef& other);
    ZPropertyRef& operator=(ZPropertyRef&& other) noexcept;
    void assign(const ZPropertyRef& other) { *this = other; }
    void clear();

    bool isNull() const { return !record; }
    /// Borrowed: valid while this holds it.
    ZProperty* property() const { return record; }
    ZType* owner() const { return instance; }
    /// Empty for null.
    ZSelector name() const;

    /// Writes through the owner; without one, or where it refuses, nothing happens.
    ZPropertyRef& operator=(const ZVariant& value);
    /// Reads through the owner; without one the value of the record.
    operator ZVariant() const;
    /// By the record's name and contents, then by the owner's address; null first.
    int compare(const ZPropertyRef& other) const;
    bool operator==(const ZPropertyRef& other) const { return compare(other) == 0; }

    // Bindings: when this property changes, the other one is set, or the method called with the value; see `ZBinding`.
    // Both ends are at objects, or nothing happens. `-=` removes them.

    ZPropertyRef& operator+=(const ZPropertyRef& destination);
    ZPropertyRef& operator-=(const ZPropertyRef& destination);
    ZPropertyRef& operator+=(const ZMethodRef& destination);
    ZPropertyRef& operator-=(const ZMethodRef& destination);
    /// The property of the same name.
    ZPropertyRef& operator+=(ZObject* destination);
    ZPropertyRef& operator-=(ZObject* destination);

private:
    ZObject* object() const;

    ZProperty* record = nullptr;
    ZType* instance = nullptr;
};
