#include "core/ZPointerIndex.h"

#include "core/ItemPool.h"

namespace {
constexpr uint chunkItems = 2048;
constinit orv::detail::ItemPool pool(sizeof(ZPointerIndex), chunkItems);
} // namespace

ZPointerIndex* ZPointerIndex::make(const void* pointer, int index) {
    void* place = pool.take();
    return place ? ::new (place) ZPointerIndex(pointer, index) : nullptr;
}

void ZPointerIndex::release() {
    this->~ZPointerIndex();
    pool.give(this);
}

void ZPointerIndex::open() { pool.open(); }
void ZPointerIndex::close() { pool.close(); }
uint ZPointerIndex::count() { return pool.count(); }
