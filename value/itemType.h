#pragma once

#include "object/ZMetaType.h"
#include "value/ZVariant.h"

#include <cstring>

/// What the containers whose type is known at run time ask of the type of their items. A null type stands for bytes.
namespace orv::item {

/// Items are aligned to so much at most.
inline constexpr uint mostAlignment = 16;

/// The type under which a container holds values of a type: without references and qualifiers; of a `ZType` class that
/// of counted pointers to it.
ZMetaType* normalType(ZMetaType* type);
/// A type that belongs to one instance lives as long as somebody holds it; the others stay.
void retainType(ZMetaType* type);
void releaseType(ZMetaType* type);

/// Whether values of the type can be items: they have a size, and an alignment that blocks have.
bool holdable(const ZMetaType* type);
/// Bytes as items are spaced: a multiple of 4 when above 4.
constexpr uint spacing(uint bytes) { return bytes > 4 ? (bytes + 3) & ~3u : bytes; }
/// `bytes` counts without a type.
inline uint sizeOf(const ZMetaType* type, uint bytes) { return spacing(type ? type->byteSize() : bytes); }
uint alignmentOf(const ZMetaType* type);

/// Numbers and bytes: moved and copied as blocks, with nothing to be given up.
inline bool plain(const ZMetaType* type) { return !type || type->kind() < ZMetaType::Selector; }
/// Whether values are of a type or of one derived from it.
bool isOf(const ZMetaType* type, const ZMetaType* wanted);
bool isOf(const ZMetaType* type, const ZSelector& name);
/// Whether items are pointers to instances of `ZType` classes.
bool instances(const ZMetaType* type);

// Raw values. What makes one answers false, with nothing made, when that fails; the memory may be anything before.

/// The value that means nothing; of pointers null.
bool make(ZMetaType* type, void* place, uint size);
bool copy(const ZMetaType* type, void* place, const void* value, uint size);
void end(const ZMetaType* type, void* value);
/// An exact order for sorting and keys.
int order(const ZMetaType* type, const void* a, const void* b, uint size);
uint hash(const ZMetaType* type, const void* value, uint size);
/// The order that users see: that of the type.
int compare(const ZMetaType* type, const void* a, const void* b, uint size);
/// What a method that is given two values makes of them.
int askOrder(const ZMethodRef& method, const ZVariant& a, const ZVariant& b);
/// Makes what the value holds its own, and, with a context, what that holds.
bool deepDetach(ZMetaType* type, void* value, ZDetachContext& context);

/// The value of a variant as one of another type: the address of a raw value, which holds as long as this and the
/// variant do; null if it can't be converted.
class Given {
public:
    Given(ZMetaType* type, const ZVariant& value);
    const void* address() const { return raw; }

private:
    ZVariant converted;
    const void* pointer = nullptr;
    const void* raw = nullptr;
};

/// Bytes for a raw value that is on its way in or out.
class Scratch {
public:
    explicit Scratch(size_t size) : bytes(size <= sizeof room ? room : static_cast<byte*>(__zalloc(size))) {}
    ~Scratch() {
        if (bytes != room) zfree(bytes);
    }
    Scratch(const Scratch&) = delete;
    /// Null without memory.
    byte* memory() const { return bytes; }

private:
    alignas(16) byte room[128];
    byte* bytes;
};

} // namespace orv::item
