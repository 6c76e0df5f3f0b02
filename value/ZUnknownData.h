#pragma once

#include "object/ZType.h"

#include <cstddef>

/// The bytes of a stored value whose class isn't there, kept so that the value can be written back as it was read.
/// Immutable; copies share the bytes.
class ORV_API ZUnknownData : public ZType {
public:
    /// Copies `size` bytes of a value of a type of that name. Without memory, raises a failure and holds none.
    ZUnknownData(const ZSelector& typeName, const void* bytes, size_t size, bool bigEndian,
                 const __ZPassMetaType* type = nullptr);
    explicit ZUnknownData(const ZUnknownData* source, const __ZPassMetaType* type = nullptr);
    ~ZUnknownData() override;

    /// The name that the value's type is stored under.
    const ZSelector& storedType() const { return unknownType; }
    const void* bytes() const { return data; }
    size_t size() const { return data ? length : 0; }
    bool bigEndian() const { return isBigEndian; }

    ZType* copy() const override;
    /// By type name, byte order, and bytes.
    int compare(const ZType* other) const override;
    ZSelector storedName() const override { return unknownType; }

private:
    ZSelector unknownType;
    void* data = nullptr; ///< a counted block
    size_t length = 0;
    bool isBigEndian = false;
};
