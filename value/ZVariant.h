#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "module/forward.h"
#include "object/ZMetaType.h"
#include "text/ZString.h"
#include "value/forward.h"

/// A value of any type together with its type: 24 bytes that can be a property, an argument, a container's item. Values
/// below 17 bytes live inside; larger ones, pointers and all `ZType` instances are held by a counted reference. A plain
/// value: one variant is one thread's, what it holds is shared as far as its type allows. Before the library's packages
/// are open there are no types: what is made then is the null variant.
class ORV_API ZVariant {
public:
    using ZRelocatable = void;

    constexpr ZVariant() = default;
    ZVariant(const ZVariant& other);
    ZVariant(ZVariant&& other) noexcept : meta(other.meta), data{other.data[0], other.data[1]} {
        other.meta = nullptr;
        other.data[0] = other.data[1] = 0;
    }
    ~ZVariant() {
        if (meta || data[0]) releaseValue();
    }
    ZVariant& operator=(const ZVariant& other);
    ZVariant& operator=(ZVariant&& other) noexcept;
    ZVariant(bool value);
    ZVariant(char value);
    ZVariant(byte value);
    ZVariant(short value);
    ZVariant(word value);
    ZVariant(int value);
    ZVariant(uint value);
    ZVariant(long value);
    ZVariant(unsigned long value);
    ZVariant(large value);
    ZVariant(ularge value);
    ZVariant(float value);
    ZVariant(double value);
    ZVariant(const char* text);
    ZVariant(const ZString& text);
    ZVariant(const ZSelector& name);
    ZVariant(const ZTypedPtr& value);
    ZVariant(const ZType* instance);
    explicit ZVariant(const void* block);
    /// The value at `value`, copied or retained as its type asks; null gives the type alone.
    ZVariant(ZMetaType* type, const void* value);

    static constexpr int maxsize() { return 16; }
    ZMetaType* type() const { return meta; }
    ZMetaType* mainType() const;
    bool isNull() const;
    /// The address of the value: inside of the variant, or what it holds.
    const void* getPtr() const {
        return meta && meta->heldInline() ? static_cast<const void*>(data) : reinterpret_cast<const void*>(data[0]);
    }
    void* getPtr() { return const_cast<void*>(static_cast<const ZVariant*>(this)->getPtr()); }

private:
    void releaseValue();

    ZMetaType* meta = nullptr;
    ularge data[2] = {};
};
static_assert(sizeof(ZVariant) == 24);
