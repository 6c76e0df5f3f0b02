#include "core/ZRedBlackMap.h"

#include <cstring>

bool ZRedBlackMap::MapUser::copy(const ZRedBlackMap* map, void* to, const void* from) {
    std::memcpy(to, from, map->entrySize());
    return true;
}
void ZRedBlackMap::MapUser::destruct(const ZRedBlackMap*, void*) {}
int ZRedBlackMap::MapUser::comp(const ZRedBlackMap* map, const void* a, const void* b) {
    return std::memcmp(a, b, map->entrySize());
}
uint ZRedBlackMap::MapUser::hash(const ZRedBlackMap*, const void*, uint) { return 0; }

ZRedBlackMap::ZRedBlackMap(uint entrySize, uint hashSize, uint growth) {
    if (!init(entrySize, hashSize, growth)) ZError::fail();
}
ZRedBlackMap::ZRedBlackMap(const ZRedBlackMap& other) : behaviour(other.behaviour) { share(other); }
ZRedBlackMap::~ZRedBlackMap() {
    drop();
    if (behaviour && behaviour->map() == this) behaviour->assign(nullptr);
}
ZRedBlackMap& ZRedBlackMap::operator=(const ZRedBlackMap& other) {
    assign(other);
    return *this;
}

bool ZRedBlackMap::init(uint entrySize, uint hashSize, uint growth) {
    return hashSize <= toolkit::DataPack::bucketLimit && make(1, entrySize, growth) && pack->setTree(0, hashSize, 0);
}

void ZRedBlackMap::assign(const ZRedBlackMap& other) {
    if (&other == this) return;
    share(other);
    if (behaviour && behaviour != other.behaviour && behaviour->map() == this) behaviour->assign(nullptr);
    behaviour = other.behaviour;
}

void ZRedBlackMap::setUser(MapUser* user) {
    if (behaviour && behaviour != user && behaviour->map() == this) behaviour->assign(nullptr);
    behaviour = user;
    if (user) user->assign(this);
}

toolkit::PackCompare ZRedBlackMap::comparator(const Order& order) const {
    return {[](const void* context, const void* a, const void* b) {
                auto map = static_cast<const ZRedBlackMap*>(static_cast<const Order*>(context)->map);
                return map->behaviour ? map->behaviour->comp(map, a, b) : std::memcmp(a, b, map->entrySize());
            },
            &order};
}
uint ZRedBlackMap::hashOf(uint, const void* key, uint size) const {
    return behaviour ? behaviour->hash(this, key, size) : 0;
}
bool ZRedBlackMap::copyEntry(void* to, const void* from) const {
    if (behaviour) return behaviour->copy(this, to, from);
    std::memcpy(to, from, entrySize());
    return true;
}
void ZRedBlackMap::destructEntry(void* contents) const {
    if (behaviour) behaviour->destruct(this, contents);
}
