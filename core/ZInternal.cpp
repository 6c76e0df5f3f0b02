#include "core/ZInternal.h"

#include "core/memory.h"

#include <new>

static const ZInternal::TypeSizes* typeSizes = nullptr;

void ZInternal::setTypeSizes(const TypeSizes* sizes) { toolkit::storeRelease(typeSizes, sizes); }

ZInternal* ZInternal::make(const ZMetaType* type, int size, bool direct) {
    if (size < 0) return nullptr;
    void* memory = toolkit::allocZeroedBlock(size_t(size) + sizeof(ZInternal));
    if (!memory) return nullptr;
    auto block = ::new (memory) ZInternal;
    block->type = type;
    block->room = size;
    block->isDirect = direct;
    block->next = reinterpret_cast<byte*>(block + 1);
    return block;
}

ZInternal* ZInternal::create(const ZMetaType* type, int size, ZInternal* existing) {
    if (existing) return existing->isDirect ? existing : retain(existing);
    if (const TypeSizes* sizes = toolkit::loadAcquire(typeSizes); type && sizes) size = int(sizes->whole(type));
    return make(type, size, false);
}

ZInternal* ZInternal::direct(const ZMetaType* type, int size, ZInternal* existing) {
    return existing || type ? existing : make(nullptr, size, true);
}

void* ZInternal::getmem(ZInternal* block, const ZMetaType* type, unsigned size) {
    if (!block) return nullptr;
    if (const TypeSizes* sizes = toolkit::loadAcquire(typeSizes); type && sizes) size = sizes->own(type);
    byte* end = reinterpret_cast<byte*>(block + 1) + block->room;
    if (size > size_t(end - block->next)) return nullptr;
    void* part = block->next;
    block->next += size;
    return part;
}
