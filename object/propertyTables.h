#pragma once

#include "core/ZArrayT.h"
#include "core/ZHashTreeT.h"
#include "core/ZSpinLock.h"
#include "object/ZPropertyPtr.h"
#include "object/propertySignatures.h"
#include "object/typeGeneration.h"
#include "toolkit/epoch.h"
#include "toolkit/refusals.h"

/// What a metatype keeps about properties. What a reader can meet is published through `EpochPtr` and not changed in
/// place, save for words that are filled in once; so a lookup takes no lock and writes nothing shared.
namespace orv {

using PropertyTree = ZHashTreeT<ZSelector, ZPropertyPtr>;

/// A tree as readers see it.
struct PublishedProperties : toolkit::EpochLink {
    PropertyTree tree;
};

/// How the value of a property comes out of its getter.
struct ReadPlan {
    enum Shape : byte {
        Nothing,  ///< there is no getter that could be called
        Word,     ///< the fast entry answers the bytes of a value
        Pointer,  ///< the fast entry answers a pointer
        Address,  ///< the fast entry answers where the value stands
        Stacked,  ///< the stacked entry builds a value
        Answered, ///< the stacked entry answers where the value stands
    };

    ZMetaType* type = nullptr; ///< of the value; that of a pointer with its "*"
    byte shape = Nothing;
    byte number = 0;    ///< of a `Word` that is a number: the `ZMetaType::Type` whose variants are of exactly this type
    bool owned = false; ///< a pointer comes with a reference that is the caller's
    bool variant = false; ///< the value is a variant
};

/// How a value goes into a setter.
struct WritePlan {
    ZMetaType* type = nullptr; ///< of the values that it takes, without "const", "*" and "&"
    bool pointer = false;      ///< it takes a pointer, which may be null
    bool variant = false;      ///< it takes a variant
    bool number = false;       ///< it takes an "int" by value
    bool answers = false;      ///< its method answers whether it took the value
    bool usable = false;
};

/// A method as a lookup on a type found it.
struct CachedMethod {
    enum State : byte { Unknown, Absent, Found };

    ZMethod* method = nullptr; ///< retained
    int offset = 0;            ///< from the instance to what the method is called on
    byte state = Unknown;      ///< stored last, with release order
};

/// What was found out about one name on one type, inherited things included.
struct PropertyLookup : toolkit::EpochLink {
    ZSelector name;
    int offset = 0;                ///< from the instance to its part of `owner`
    ZProperty* property = nullptr; ///< retained; null for a name that the type doesn't declare
    ZMetaType* owner = nullptr;    ///< what declares it
    CachedMethod read;             ///< the getter that reading takes
    ReadPlan readPlan;
    CachedMethod write; ///< the setter that writing takes
    WritePlan writePlan;
    /// By `item` ? 4 + ptrForm : constForm * 2 + ptrForm. Items are asked of a const method, else of any.
    CachedMethod getters[6];
    CachedMethod places[accessorCount - 1]; ///< by accessor, without `Getter`
};

/// An open-addressing table of lookups, with a power of two of places.
struct PropertyCache : toolkit::EpochLink {
    ularge generation = 0; ///< see `typeGeneration`
    uint mask = 0;
    uint count = 0;        ///< rows in use
    uint misses = 0;       ///< those of names that the type doesn't declare
    bool outgrown = false; ///< its rows went on to a larger table

    PropertyLookup** rows() const { return reinterpret_cast<PropertyLookup**>(const_cast<PropertyCache*>(this) + 1); }
    uint place(uint key) const { return (key * 0x9E3779B1u >> 16 ^ key) & mask; }
    /// Null if the name isn't in it.
    PropertyLookup* find(uint key) const {
        for (uint at = place(key);; at = (at + 1) & mask) {
            PropertyLookup* row = toolkit::loadAcquire(rows()[at]);
            if (!row || row->name.key() == key) return row;
        }
    }
};

/// All properties that a type declares or inherits, each name once: those of bases first.
struct PropertyCatalogue : toolkit::EpochLink {
    struct Entry {
        ZProperty* property = nullptr; ///< retained
        ZMetaType* owner = nullptr;
        int offset = 0;
        mutable CachedMethod read; ///< what the lookup of its name has, so that walks over all needn't look up
        mutable ReadPlan readPlan;
    };
    ularge generation = 0;
    bool delegates = false; ///< some entry has the flag `Delegate`
    bool dynamic = false;   ///< some entry is given to each new instance
    ZArrayT<Entry> entries;

    PropertyCatalogue() = default;
    PropertyCatalogue(const PropertyCatalogue&) = delete;
    ~PropertyCatalogue();
};

struct SyntheticMethods;

/// The part of a metatype's record that has to do with properties; made and destroyed with it.
struct ORV_API PropertyTables {
    toolkit::EpochPtr<PublishedProperties> types; ///< null until built
    toolkit::EpochPtr<PublishedProperties> users;
    toolkit::EpochPtr<PropertyCache> cache;
    toolkit::EpochPtr<PropertyCatalogue> catalogue;
    toolkit::EpochPtr<SyntheticMethods> synthetic;
    uint edits = 0; ///< how often `types` and `users` were published or reset; changed under `lock`
    ZSpinLock lock; ///< of the caches, while something is put in

    PropertyTables() = default;
    ~PropertyTables();
    PropertyTables(const PropertyTables&) = delete;
    PropertyTables& operator=(const PropertyTables&) = delete;

    /// Lets everything go while the types of the values are still there; nobody reads it any more.
    void clear();
};

/// Forgets the declared properties: they are built anew at the next demand. User properties stay.
void resetProperties(ZMetaType* type);
/// What the running thread is filling for a type; null if it isn't.
const PropertyTree* propertiesUnderConstruction(const ZMetaType* type);
/// The tables of a type, with the declared properties built; borrowed under an open guard.
const PropertyTree& declaredProperties(const ZMetaType* type);
const PropertyTree& userProperties(const ZMetaType* type);

/// What a name is on a type, worked out if it isn't known yet. Borrowed under an open guard; null for a name that the
/// type doesn't declare, and without memory.
PropertyLookup* lookUpProperty(const ZMetaType* type, const ZSelector& name);
/// The getter that reading takes, or the setter, with its plan filled in; null if there is none.
const CachedMethod* findReadAccessor(const ZMetaType* type, PropertyLookup* row);
const CachedMethod* findWriteAccessor(const ZMetaType* type, PropertyLookup* row);
inline const CachedMethod* readAccessor(const ZMetaType* type, PropertyLookup* row) {
    if (ORV_UNLIKELY(toolkit::loadAcquire(row->read.state) == CachedMethod::Unknown))
        return findReadAccessor(type, row);
    return row->read.method ? &row->read : nullptr;
}
inline const CachedMethod* writeAccessor(const ZMetaType* type, PropertyLookup* row) {
    if (ORV_UNLIKELY(toolkit::loadAcquire(row->write.state) == CachedMethod::Unknown))
        return findWriteAccessor(type, row);
    return row->write.method ? &row->write : nullptr;
}
/// The same for an entry of the type's catalogue.
const CachedMethod* readAccessor(const ZMetaType* type, const PropertyCatalogue::Entry& entry);
/// Looks a method up for a place; false if that ran out of memory, which has refused so many allocations before.
bool findCachedMethod(const ZMetaType* type, CachedMethod& place, const ZSelector& signature,
                      const ZSelector& qualifier, uint refused);
/// A method of the type, looked up once for the place; `signature` makes its text. Null if there is none.
template <class F>
ZMethod* cachedMethod(const ZMetaType* type, CachedMethod& place, F signature, const ZSelector& qualifier,
                      int& offset) {
    if (ORV_UNLIKELY(toolkit::loadAcquire(place.state) == CachedMethod::Unknown)) {
        const uint refused = toolkit::refusedAllocations();
        if (!findCachedMethod(type, place, signature(), qualifier, refused)) return nullptr;
    }
    offset = place.offset;
    return place.method;
}
/// Borrowed under an open guard; null without memory.
const PropertyCatalogue* propertyCatalogue(const ZMetaType* type);

enum class PropertyPublish { Done, Outdated, NoMemory };
/// Publishes a tree that was made from what stood there while `edits` was `seen`; if that isn't so any more, `Outdated`
/// and the caller has the tree back. `change`: lookups may answer otherwise now. Under no lock that a reclaim function
/// takes.
PropertyPublish publishProperties(PropertyTables& tables, toolkit::EpochPtr<PublishedProperties>& place,
                                  PropertyTree& tree, uint seen, bool change);

} // namespace orv
