#include "core/ZRedBlackMap.h"

#include <cstring>

int ZRedBlackMap::MapUser::comp(const ZRedBlackMap* map, const void* a, const void* b) {
    return std::memcmp(a, b, map->entrySize());
}
uint ZRedBlackMap::MapUser::hash(const ZRedBlackMap*, const void*, uint) { return 0; }

ZRedBlackMap::ZRedBlackMap(uint entrySize, uint hashSize, uint growth) {
    if (!init(entrySize, hashSize, growth)) ZError::fail();
}

bool ZRedBlackMap::init(uint entrySize, uint hashSize, uint growth) {
    return hashSize <= toolkit::DataPack::bucketLimit && make(1, entrySize, growth) && pack->setTree(0, hashSize, 0);
}

toolkit::PackCompare ZRedBlackMap::comparator(const Order& order) const {
    return {[](const void* context, const void* a, const void* b) {
                auto map = static_cast<const ZRedBlackMap*>(static_cast<const Order*>(context)->map);
                return map->behaviour ? map->user()->comp(map, a, b) : std::memcmp(a, b, map->entrySize());
            },
            &order};
}
uint ZRedBlackMap::hashOf(uint, const void* key, uint size) const {
    return behaviour ? user()->hash(this, key, size) : 0;
}
