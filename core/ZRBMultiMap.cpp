#include "core/ZRBMultiMap.h"

#include <cstring>

int ZRBMultiMap::MapUser::comp(const ZRBMultiMap* map, uint, const void* a, const void* b) {
    return std::memcmp(a, b, map->entrySize());
}
uint ZRBMultiMap::MapUser::hash(const ZRBMultiMap*, uint, const void*, uint) { return 0; }

ZRBMultiMap::ZRBMultiMap(uint maps, uint entrySize, uint hash, uint growth) {
    if (!init(maps, entrySize, hash, growth)) ZError::fail();
}

bool ZRBMultiMap::init(uint maps, uint entrySize, uint hash, uint growth) {
    return hash <= toolkit::DataPack::bucketLimit && make(maps, entrySize, growth) && initmaps(hash, 0);
}

bool ZRBMultiMap::initmap(uint i, uint hash, uint flags) { return detach() && pack->setTree(i, hash, flags); }

bool ZRBMultiMap::initmaps(uint hash, uint flags) {
    bool all = pack != nullptr;
    for (uint i = 0; i < maps(); ++i) all = initmap(i, hash, flags) && all;
    return all;
}

toolkit::PackCompare ZRBMultiMap::comparator(const Order& order) const {
    return {[](const void* context, const void* a, const void* b) {
                auto within = static_cast<const Order*>(context);
                auto map = static_cast<const ZRBMultiMap*>(within->map);
                if (map->behaviour) return map->user()->comp(map, within->tree, a, b);
                return std::memcmp(a, b, map->entrySize());
            },
            &order};
}
uint ZRBMultiMap::hashOf(uint tree, const void* key, uint size) const {
    return behaviour ? user()->hash(this, tree, key, size) : 0;
}
