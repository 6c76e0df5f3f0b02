#pragma once

#include "core/ZHashTreeT.h"
#include "core/ZRetainPtrT.h"
#include "core/ZSpinLock.h"
#include "object/SharedName.h"
#include "object/ZMethodDispatch.h"
#include "object/ZMethodPtr.h"
#include "object/ZNamedMethod.h"
#include "object/ZObject.h"

namespace orv {

/// Objects by name, in front of a long list of them: a block of its own. A name that several have leads to the first
/// one added. No lock: published whole, and dropped when it doesn't fit its list any more.
struct alignas(void*) NameIndex {
    struct Entry {
        uint name; ///< 0 for a free place
        ZObject* object;
    };

    /// With room for so many names and half as many again; null without memory.
    static NameIndex* make(uint count);
    static void drop(NameIndex*& index);
    ZObject* find(uint key) const { return entry(key)->object; }
    /// False when it is full.
    bool add(ZObject* object);

    uint mask;
    uint free;
    uint changes; ///< of delegates: `ObjectData::delegatesChanged` as the names were read; it holds as long as that

private:
    Entry* entries() const { return reinterpret_cast<Entry*>(const_cast<NameIndex*>(this) + 1); }
    Entry* entry(uint name) const;
};

struct ObjectPosts;

/// A lock that is made when it is first taken. Who reads does so only behind a flag that was set under the lock.
class LazyLock {
public:
    LazyLock() = default;
    LazyLock(const LazyLock&) = delete;
    ~LazyLock() {
        if (id) toolkit::destroyLock(id, true);
    }
    /// False without memory for a lock; true without a lock while the library runs without locking.
    bool lock(const char* label);
    void readLock() { toolkit::lockShared(toolkit::loadAcquire(id)); }
    void unlock() { toolkit::unlock(toolkit::loadAcquire(id)); }

private:
    TLockId id = 0;
};

/// The private part of an object.
struct ObjectData {
    /// What there is to look at, so that a look at one word skips the rest.
    enum Bits : uint {
        Methods = 1,
        ExtMethods = 2,
        Dispatch = 4,
        Delegates = 8,
        ExtendTypes = 16,
        InlineRecords = 32,
        Published = 64,
        PropertyDelegate = 128,
        TypeLinked = 256,
        IsMetaType = 512,
        Deleting = 1024,
        AutoBind = 2048,
        MainQueuePosting = 4096,
        CopyMembers = 8192,
        TypeDelegate = 16384,
        GlobalNamed = 32768,
        MultiStale = 1 << 16,   ///< the table of multi-methods
        ExtStale = 1 << 17,     ///< the table of extensions
        DispatchUsed = 1 << 18, ///< entries may have found methods
        Delegated = 1 << 19,    ///< was a delegate of others
        Copied = AutoBind | CopyMembers | TypeDelegate
    };

    explicit ObjectData(ZObject* object) : object(object) {}
    ObjectData(const ObjectData&) = delete;
    static ObjectData* of(const ZObject* object) { return object->priv; }
    static ObjectData& at(const ZObject* object) { return *object->priv; }

    bool has(uint any) const { return toolkit::loadAcquire(bits) & any; }
    void set(uint mask, bool on);

    ZObject* object;
    uint bits = MultiStale;
    uint childCount = 0;
    SharedName selector;
    ZSelector typeName; ///< used while the object has no metatype
    uint delegateType = ZObject::None;
    uint parentDelegate = ZObject::None;
    NameIndex* childNames = nullptr; ///< made on demand
    ZThread* thread = nullptr;
    ZAnimation* animation = nullptr;
    ZEvent* currentEvent = nullptr;
    ZObject* nextToDelete = nullptr;
    ObjectPosts* posts = nullptr; ///< made on demand, see object/ZObjectPosts.cpp

    LazyLock lock; ///< "object method lock", of what follows
    ZObject::MethodTable methods;
    ZObject::MethodTable extMethods;
    ZObject::MultiMethodTable multiMethods;
    ZObject::DispatchTable dispatch;
    ZArrayT<ZMetaType*> extendTypes;
    ZArrayT<ZInlineMethod*> inlineRecords;

    NameIndex* delegateNames = nullptr; ///< good while its `changes` are `delegatesChanged`

    // Delegates are changed under the lock of the graph and this one, and read under either.

    ZArrayT<ZObject*> delegates;    ///< each retained
    uint delegatesChanged = 0;      ///< rises with each change, also of a name; atomic
    int delegateCount = 0;          ///< those whose type has more than binding, events and resources
    uint methodChanges = 0;         ///< rises when what entries have found may be wrong; atomic
    uint visited = 0;               ///< of the graph: the walk that came here last
    ZObject* nextVisited = nullptr; ///< of the graph: whom that walk looks at behind this one
    ZArrayT<ZObject*> delegatedBy;  ///< of the graph
};

/// Holds the lock of an object alone. Without memory for one it is false, and holds nothing.
class [[nodiscard]] ObjectWrite {
public:
    explicit ObjectWrite(const ZObject* object)
        : data(ObjectData::at(object)), held(data.lock.lock("object method lock")) {}
    ~ObjectWrite() {
        if (held) data.lock.unlock();
    }
    ObjectWrite(const ObjectWrite&) = delete;
    explicit operator bool() const { return held; }

private:
    ObjectData& data;
    const bool held;
};
/// A share of the lock of an object, behind a test of its bits.
class [[nodiscard]] ObjectRead {
public:
    explicit ObjectRead(ObjectData& data) : data(data) { data.lock.readLock(); }
    ~ObjectRead() { data.lock.unlock(); }
    ObjectRead(const ObjectRead&) = delete;

private:
    ObjectData& data;
};

/// Bytes that a private part takes in an internal block: parts stand at multiples of 16.
constexpr int internalRoom(size_t bytes) { return int((bytes + 15) & ~size_t(15)); }

/// An object goes: so do its named posts.
void dropPosts(ObjectData& data);
/// Takes an object that goes, or that isn't wanted there any more, out of the tables of names.
void forgetPublished(ZObject* object);
void forgetPropertyDelegate(ZObject* object);
/// Gives an object another name, which the tables follow; false, with nothing changed, without memory.
bool rename(ZObject* object, const ZSelector& name);

/// The object that a property holds, if others hold it too: one that comes with the answer goes with it. Borrowed.
ZObject* heldObject(const ZType* owner, const ZSelector& name);

/// To be called after a change of an object's own methods, with no lock held.
void ownMethodsChanged(ZObject* object);
/// An object changes its delegate type: those that it is a delegate of count anew.
void delegateTypeChanged(ZObject* object, uint type);
/// An object has another name: indexes of names that it stands in go.
void nameChanged(ZObject* object);
/// The delegates with a reference to each, taken while they were in the list; false without memory.
bool holdDelegates(const ZObject* object, ZArrayT<ZRetainPtrT<ZObject>>& delegates);
/// Brings the table of methods that extensions bring up to date; false without memory.
bool freshExtension(const ZObject* object);
/// An object goes: it lets its delegates go, and is none any more.
void dropDelegates(ZObject* object);

} // namespace orv
