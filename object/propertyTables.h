#pragma once

#include "core/ZHashTreeT.h"
#include "core/ZSpinLock.h"
#include "object/ZPropertyPtr.h"
#include "object/propertySignatures.h"
#include "toolkit/epoch.h"

/// What a metatype keeps about properties. What a reader can meet is published through `EpochPtr` and not changed in
/// place, save for words that are filled in once; so a lookup takes no lock and writes nothing shared.
namespace orv {

using PropertyTree = ZHashTreeT<ZSelector, ZPropertyPtr>;

/// A tree as readers see it.
struct PublishedProperties {
    toolkit::EpochLink link;
    PropertyTree tree;
};

/// A method as a lookup on a type found it.
struct CachedMethod {
    enum State : byte { Unknown, Absent, Found };

    ZMethod* method = nullptr; ///< retained
    int offset = 0;            ///< from the instance to what the method is called on
    byte state = Unknown;      ///< stored last, with release order
};

/// How the value of a property is had from its getter.
struct ReadPlan {
    enum Shape : byte {
        Nothing,  ///< there is no getter that could be called
        Word,     ///< the fast entry answers the bytes of a value
        Address,  ///< the fast entry answers where the value stands
        Stacked,  ///< the stacked entry builds a value
        Answered, ///< the stacked entry answers where the value stands
        Variant   ///< the stacked entry builds a variant
    };

    ZMetaType* type = nullptr; ///< of the value, without "const" and "&"
    byte shape = Nothing;
};

/// What was found out about one name on one type, inherited things included.
struct PropertyRow {
    ZSelector name;
    ZProperty* property = nullptr;  ///< retained; null for a name that the type doesn't declare
    ZMetaType* owner = nullptr;     ///< what declares it
    int offset = 0;                 ///< from the instance to its part of that type
    int readForm = -1;              ///< which of the getters reading takes, once its `state` is `Found`
    ReadPlan plan;                  ///< of that getter
    ZMetaType* writeType = nullptr; ///< what the setter takes, once its `state` is `Found`
    CachedMethod read;
    CachedMethod getters[6];                ///< by `item` ? 4 + ptrForm : constForm * 2 + ptrForm
    CachedMethod places[accessorCount - 1]; ///< by accessor, without `Getter`
};

/// An open-addressing table of rows, a power of two of places.
struct PropertyCache {
    toolkit::EpochLink link;
    ularge generation; ///< see `tableGeneration`
    uint mask;
    uint count;  ///< rows in use
    uint misses; ///< those of names that the type doesn't declare
    bool shared; ///< its rows went on to a larger table
    PropertyRow* rows[1];
};

struct SyntheticMethods;

/// The part of a metatype's record that has to do with properties.
struct PropertyTables {
    toolkit::EpochPtr<PublishedProperties> types; ///< null until built
    toolkit::EpochPtr<PublishedProperties> users;
    toolkit::EpochPtr<PropertyCache> cache;
    toolkit::EpochPtr<SyntheticMethods> synthetic;
    PropertyTree* building = nullptr; ///< under the type's change lock, while its builder runs
    ZSpinLock lock;                   ///< of the caches, while something is put in

    PropertyTables() = default;
    PropertyTables(const PropertyTables&) = delete;
    /// Nobody reads any more.
    ~PropertyTables();
    /// Forgets the declared properties, so that they are built again at the next demand. User properties stay.
    void reset();
    /// Forgets what was looked up; for a type that is going.
    void dropCaches();

    const PropertyTree& typeTree() const;
    const PropertyTree& userTree() const;
};

/// The row of a name, filled in if need be; null without memory. Borrowed under an open guard.
ORV_API const PropertyRow* propertyRow(const ZMetaType* type, const ZSelector& name);

} // namespace orv
