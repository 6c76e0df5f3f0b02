#include "core/PackMap.h"

#include <cstring>
#include <utility>

namespace orv::detail {

using toolkit::DataPack;

bool PackMap::copyCall(const void* context, void* to, const void* from) {
    return static_cast<const PackMap*>(context)->copyEntry(to, from);
}
void PackMap::destructCall(const void* context, void* contents) {
    static_cast<const PackMap*>(context)->destructEntry(contents);
}
void PackMap::release(DataPack* store, const PackMap* by) { DataPack::release(store, destructCall, by); }

bool PackMap::make(uint trees, uint entrySize, uint growth) {
    DataPack* made = DataPack::make(trees, entrySize, growth);
    if (!made) return false;
    drop();
    pack = made;
    return true;
}

void PackMap::share(const PackMap& other) {
    DataPack* shared = retain(other.pack);
    drop();
    pack = shared;
}

void PackMap::drop() {
    // The handle is empty before the entries go: their destructors may come back to it.
    release(std::exchange(pack, nullptr), this);
}

bool PackMap::detach() {
    if (!pack) return false;
    if (refcount(pack) < 2) return true;
    DataPack* own = pack->clone(copyCall, destructCall, this);
    if (!own) return false;
    if (lockable() && !makelock(own, false, true)) {
        release(own, this);
        return false;
    }
    release(std::exchange(pack, own), this);
    return true;
}

uint PackMap::create() { return detach() ? pack->create() : 0; }

uint PackMap::add(const void* entry, bool useUserCopy) {
    const uint id = create();
    if (!id) return 0;
    void* to = pack->entry(id);
    if (!useUserCopy)
        std::memcpy(to, entry, pack->entrySize());
    else if (!copyEntry(to, entry)) {
        forget(id);
        return 0;
    }
    if (link(id)) return id;
    if (useUserCopy)
        remove(id);
    else // the contents are still the caller's
        forget(id);
    return 0;
}

/// Frees an id without destroying its contents.
void PackMap::forget(uint id) {
    if (pack->retire(id)) pack->recycle(id);
}

bool PackMap::remove(uint id) {
    if (!valid(id) || !detach()) return false;
    DataPack* store = pack;
    destructEntry(store->retire(id));
    // A destructor may have given up this store; then the id went with it.
    if (store == pack) store->recycle(id);
    return true;
}

bool PackMap::setLockable(bool on) { return on ? pack && makelock(pack, false, true) : !lockable(); }

bool PackMap::expand(uint count) { return detach() && pack->reserve(count); }

bool PackMap::clean() {
    if (!pack) return true;
    if (refcount(pack) > 1) {
        DataPack* fresh = pack->cloneEmpty();
        if (!fresh) return false;
        release(std::exchange(pack, fresh), this);
        return true;
    }
    // Back to front, so that the lowest ids are given out first again.
    for (uint id = pack->lastId(); id > 0 && pack; --id) remove(id);
    return true;
}

uint PackMap::findIn(uint tree, const void* key) const {
    if (!pack || !key || tree >= pack->trees()) return 0;
    Order order{this, tree};
    return pack->find(tree, hashOf(tree, key, pack->buckets(tree)), key, comparator(order));
}

bool PackMap::linkIn(uint tree, uint id) {
    const void* contents = pack->entry(id);
    if ((pack->flags(tree) & uniqueKeys) && findIn(tree, contents)) return false;
    Order order{this, tree};
    return pack->link(tree, id, hashOf(tree, contents, pack->buckets(tree)), comparator(order));
}

bool PackMap::link(uint id) {
    if (!valid(id) || !detach()) return false;
    for (uint tree = 0; tree < pack->trees(); ++tree) {
        if (pack->linked(tree, id) || linkIn(tree, id)) continue;
        while (tree > 0) pack->unlink(--tree, id);
        return false;
    }
    return true;
}

bool PackMap::unlink(uint id) {
    if (!valid(id) || !detach()) return false;
    for (uint tree = 0; tree < pack->trees(); ++tree) pack->unlink(tree, id);
    return true;
}

uint PackMap::maxDepth() const {
    uint deepest = 0;
    for (uint tree = 0; pack && tree < pack->trees(); ++tree)
        for (uint bucket = 0; bucket < pack->buckets(tree); ++bucket)
            if (uint depth = pack->depth(tree, bucket); depth > deepest) deepest = depth;
    return deepest;
}

} // namespace orv::detail
