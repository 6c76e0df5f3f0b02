#include "core/ZRBMultiMap.h"

#include <cstring>

bool ZRBMultiMap::MapUser::copy(const ZRBMultiMap* map, void* to, const void* from) {
    std::memcpy(to, from, map->entrySize());
    return true;
}
void ZRBMultiMap::MapUser::destruct(const ZRBMultiMap*, void*) {}
int ZRBMultiMap::MapUser::comp(const ZRBMultiMap* map, uint, const void* a, const void* b) {
    return std::memcmp(a, b, map->entrySize());
}
uint ZRBMultiMap::MapUser::hash(const ZRBMultiMap*, uint, const void*, uint) { return 0; }

ZRBMultiMap::ZRBMultiMap(uint maps, uint entrySize, uint hash, uint growth) {
    if (!init(maps, entrySize, hash, growth)) ZError::fail();
}
ZRBMultiMap::ZRBMultiMap(const ZRBMultiMap& other) : behaviour(other.behaviour) { share(other); }
ZRBMultiMap::~ZRBMultiMap() {
    drop();
    if (behaviour && behaviour->map() == this) behaviour->assign(nullptr);
}
ZRBMultiMap& ZRBMultiMap::operator=(const ZRBMultiMap& other) {
    assign(other);
    return *this;
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

void ZRBMultiMap::assign(const ZRBMultiMap& other) {
    if (&other == this) return;
    share(other);
    if (behaviour && behaviour != other.behaviour && behaviour->map() == this) behaviour->assign(nullptr);
    behaviour = other.behaviour;
}

void ZRBMultiMap::setUser(MapUser* user) {
    if (behaviour && behaviour != user && behaviour->map() == this) behaviour->assign(nullptr);
    behaviour = user;
    if (user) user->assign(this);
}

toolkit::PackCompare ZRBMultiMap::comparator(const Order& order) const {
    return {[](const void* context, const void* a, const void* b) {
                auto within = static_cast<const Order*>(context);
                auto map = static_cast<const ZRBMultiMap*>(within->map);
                if (map->behaviour) return map->behaviour->comp(map, within->tree, a, b);
                return std::memcmp(a, b, map->entrySize());
            },
            &order};
}
uint ZRBMultiMap::hashOf(uint tree, const void* key, uint size) const {
    return behaviour ? behaviour->hash(this, tree, key, size) : 0;
}
bool ZRBMultiMap::copyEntry(void* to, const void* from) const {
    if (behaviour) return behaviour->copy(this, to, from);
    std::memcpy(to, from, entrySize());
    return true;
}
void ZRBMultiMap::destructEntry(void* contents) const {
    if (behaviour) behaviour->destruct(this, contents);
}
