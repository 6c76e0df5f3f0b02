#pragma once

#include "core/ZLock.h"
#include "object/ZMetaType.h"
#include "toolkit/epoch.h"

namespace orv {

/// A type that another one descends from: a base or an alias, at whatever distance.
struct Ancestor {
    const ZMetaType* type;
    int offset;   ///< where its part lies in an instance, in bytes
    byte isAlias; ///< reached through an alias, so that an instance has no such part
};

/// All ancestors of a type, nearest first, each once. Published whole; replaced when any base graph changes.
struct AncestorList {
    toolkit::EpochLink link;
    uint generation;
    uint count;
    Ancestor* entries() { return reinterpret_cast<Ancestor*>(this + 1); }
    const Ancestor* entries() const { return reinterpret_cast<const Ancestor*>(this + 1); }
};

/// A declared base. Its type is null as long as the name can't be resolved.
struct BaseLink {
    ZSelector name;
    ZMetaType* type = nullptr; ///< one reference
    int offset = 0;
};

/// Raised whenever a base, an alias or an option word of a type that is in use changes: what was worked out from them
/// carries the number it was worked out at, and is worked out anew when that number has passed.
extern ORV_API uint typeGeneration;
inline void typesChanged() { toolkit::addFetch(typeGeneration, 1); }

/// What is worked out once from words, flags and bases.
enum TypePredicate {
    predBlendable,
    predAllowMark,
    predAllowUpdate,
    predBinaryXST,
    predStorageAlias,
    predAliasedStore,
    predCreator,
    predRefStore,
    predSkipMember,
    predCount
};

/// The private part of a metatype. `change` guards names, words, groups and whatever no other lock is told for.
struct MetaTypeData {
    MetaTypeData();
    MetaTypeData(const MetaTypeData&) = delete;

    ZLock change;   ///< "ZMetaType::change_lock"
    ZLock basetype; ///< "ZMetaType::basetype_lock": bases, aliases, descendants, conversions
    ZLock variants; ///< "ZMetaType::variants_lock": variants and copies

    // Set before the type can be found, fixed then

    ZSelector name;
    ZSelector qualifier;
    ZPackage* package = nullptr;
    int ptrCount = 0;
    bool isReference = false;
    uint alignment = 0; ///< 0: by kind and size

    // Names

    ZSelector pluginId, pluginPrefix, localName, nameLabel, extraFlags, blockName, sandBoxName;
    int sandBoxLevel = -1;
    int indexLabel = 0;
    uint flags = 0;
    bool localType = false;
    bool retainedType = false;
    bool synthetic = false;
    bool hasDynamicProperties = false;
    bool resolvingBases = false;

    // Sizes of the private parts of instances

    uint internalSize = 0;
    int internalOffset = 0;
    bool dynamicInternal = false;
    int calculatedInternalSize = -1;
    int storedPropertyCount = -1;

    // Base graph

    ZArrayT<BaseLink> bases;
    ZArrayT<BaseLink> aliases;
    ZArrayT<ZMetaType*> descendants; ///< not retained: each leaves the list when it goes
    ZArrayT<ZMetaType*> implicitTo, implicitFrom;
    toolkit::EpochPtr<AncestorList> ancestors;
    ZMetaType* primaryBase = nullptr;
    bool singleBase = false;

    // Relatives

    ZMetaType::Types qualified; ///< by name; each has one reference here and points back without one
    ZArrayT<ZMetaType*> copies; ///< local copies, not retained
    ZMetaType* pointerType = nullptr; ///< of `qualified`, found without a lock
    ZMetaType* constPointerType = nullptr;
    ZMetaType* templateType = nullptr;
    ZMetaType* ownerType = nullptr; ///< the one that this is nested in
    ZMetaType::Types nested;
    ZArrayT<ZTypeCategory*> categories;

    // Callbacks and what was made of them

    ZTypeCallback callbacks[ZMetaType::CallBackCount] = {};
    const glue::ClassRow* declaration = nullptr;
    ZHashMapT<ZSelector, ZKeyValueT<ZSelector, ZSelectorMap>> selectorGroups;
    uint predicates[predCount] = {}; ///< generation * 2 + value

    // Instances

    ZObject* firstInstance = nullptr;
    ZObject* lastInstance = nullptr;
    ZObject* singleton = nullptr;
    ZListT<ZObject*> typeDelegates; ///< each retained
};

} // namespace orv
