#pragma once

#include "core/memlock.h"
#include "core/memory.h"
#include "toolkit/datapack.h"

namespace orv::detail {

/// What the pack maps have in common: a handle on a counted store. A copy shares the store; writing operations run
/// `detach` first. Writers are kept apart by the owner's lock; `entry`, `valid` and `count` are safe without one while
/// another thread adds.
class ORV_API PackMap {
public:
    PackMap(const PackMap&) = delete;
    PackMap& operator=(const PackMap&) = delete;

    /// Whether there is a store.
    bool isSet() const { return pack != nullptr; }
    uint entrySize() const { return pack ? uint(pack->entrySize()) : 0; }

    // Entries

    /// The contents of an entry, which never moves until the store is cloned; null if there is none. Writing through it
    /// reaches all maps that share the store.
    void* entry(uint id) const { return pack ? pack->entry(id) : nullptr; }
    bool valid(uint id) const { return pack && pack->valid(id); }
    uint count() const { return pack ? pack->count() : 0; }
    /// The highest id given out so far.
    uint lastId() const { return pack ? pack->lastId() : 0; }
    /// A new zeroed entry that isn't linked; 0 when there is no memory.
    uint create();
    /// Adds a copy of `entry`, made bytewise or by the user, and links it. 0 on failure.
    uint add(const void* entry, bool useUserCopy);
    /// Makes an entry found by its keys, to the left of equal ones; by all of them, or, on failure, by none. It may be
    /// linked already.
    bool link(uint id);
    /// The entry stays, but isn't found any more. False if there is no such entry.
    bool unlink(uint id);
    /// Unlinks an entry, destroys its contents and frees its id, which is the next one given out. False if there is
    /// none.
    bool remove(uint id);
    /// Makes room for `count` more entries.
    bool expand(uint count);
    /// Removes all entries. A store that others share is left to them.
    bool clean();
    /// Makes this handle the only one on its store, by a clone with the same ids. False when that can't be had.
    bool detach();

    // Lock, recursive, of the store's block: for all maps that share it. A clone gets its own,
    // which isn't held: who writes under the lock runs `detach` first

    /// Gives the store a lock. It can't be taken away again: false for `on` false while there is one.
    bool setLockable(bool on);
    bool lockable() const { return ::lockable(pack); }
    /// Waits for the lock; false if there is none.
    bool lock() const { return lockmem(pack); }
    bool unlock() const { return unlockmem(pack); }

    // Diagnostics

    /// Levels of the deepest bucket of all trees.
    uint maxDepth() const;

protected:
    PackMap() = default;
    ~PackMap() = default;

    /// The order of tree `tree`, kept by the map and valid as long as it is.
    struct Order {
        const PackMap* map;
        uint tree;
    };
    virtual toolkit::PackCompare comparator(const Order& order) const = 0;
    virtual uint hashOf(uint tree, const void* key, uint size) const = 0;
    virtual bool copyEntry(void* to, const void* from) const = 0;
    virtual void destructEntry(void* contents) const = 0;

    bool make(uint trees, uint entrySize, uint growth);
    void share(const PackMap& other);
    /// Gives the store up; the destructors of the derived classes begin with it.
    void drop();
    uint findIn(uint tree, const void* key) const;
    /// Flag of a tree: an entry whose key is there already can't be linked.
    static constexpr uint uniqueKeys = 1;

    toolkit::DataPack* pack = nullptr;

private:
    bool linkIn(uint tree, uint id);
    void forget(uint id);
    static bool copyCall(const void* context, void* to, const void* from);
    static void destructCall(const void* context, void* contents);
    static void release(toolkit::DataPack* store, const PackMap* by);
};

/// The behaviour of the entries of a `Map`, as far as the keys don't enter. Entries come as plain memory of the map's
/// entry size. A map doesn't own its user, which has to outlive all maps that share the store.
template <class Map> class ORV_API PackMapUser {
public:
    virtual ~PackMapUser() = default;
    /// Tells which map this user serves; null when it serves none any more.
    virtual void assign(Map* map) { served = map; }
    /// Builds a copy in zeroed memory; false when that can't be done, with nothing to be destroyed. Copies the bytes.
    virtual bool copy(const Map* map, void* to, const void* from) {
        __builtin_memcpy(to, from, map->entrySize());
        return true;
    }
    /// Destroys the contents of an entry. Does nothing.
    virtual void destruct(const Map*, void*) {}
    Map* map() const { return served; }

private:
    Map* served = nullptr;
};

/// What the pack maps with a user have in common. `Map` is the class derived from this; its destructor begins with
/// `leave`, and its `MapUser` is a `PackMapUser<Map>`.
template <class Map> class ORV_API UserPackMap : public PackMap {
public:
    /// Shares the other's store and user.
    void assign(const Map& other) {
        if (&other == this) return;
        share(other);
        const UserPackMap& from = other;
        if (behaviour != from.behaviour) dismiss();
        behaviour = from.behaviour;
    }

protected:
    UserPackMap() = default;
    UserPackMap(const UserPackMap& other) : PackMap(), behaviour(other.behaviour) { share(other); }
    ~UserPackMap() = default;

    void leave() {
        drop();
        dismiss();
    }
    void selectUser(PackMapUser<Map>* user) {
        if (behaviour != user) dismiss();
        behaviour = user;
        if (user) user->assign(self());
    }
    bool copyEntry(void* to, const void* from) const override {
        if (behaviour) return behaviour->copy(self(), to, from);
        __builtin_memcpy(to, from, entrySize());
        return true;
    }
    void destructEntry(void* contents) const override {
        if (behaviour) behaviour->destruct(self(), contents);
    }

    PackMapUser<Map>* behaviour = nullptr;

private:
    Map* self() { return static_cast<Map*>(this); }
    const Map* self() const { return static_cast<const Map*>(this); }
    /// The user serves this map no longer, if it's the one that it serves.
    void dismiss() {
        if (behaviour && behaviour->map() == self()) behaviour->assign(nullptr);
    }
};

} // namespace orv::detail
