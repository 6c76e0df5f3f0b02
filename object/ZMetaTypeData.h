#pragma once

#include "core/ZLock.h"
#include "object/ZInlineMethod.h"
#include "object/ZMetaType.h"
#include "object/ZMethodDispatch.h"
#include "object/categoryLinks.h"
#include "object/methodTables.h"
#include "object/propertyTables.h"
#include "object/typeGeneration.h"
#include "toolkit/epoch.h"

namespace orv {

/// A type that another one descends from: a base or an alias, at whatever distance.
struct Ancestor {
    const ZMetaType* type;
    int offset;   ///< where its part lies in an instance, in bytes
    uint depth;   ///< steps to it, by the shortest way; 1 for a direct base
    byte isAlias; ///< reached through an alias, so that an instance has no such part
};

/// All ancestors of a type, nearest first, each once. Published whole; replaced when any base graph changes.
struct AncestorList : toolkit::EpochLink {
    ularge generation; ///< the `typeGeneration` for which it was last found right
    uint count;
    Ancestor* entries() { return reinterpret_cast<Ancestor*>(this + 1); }
    const Ancestor* entries() const { return reinterpret_cast<const Ancestor*>(this + 1); }
};

/// A stored property of a type, its own or inherited. Borrowed: its table holds the record.
struct StoredProperty {
    ZProperty* property;
    int offset; ///< of the field in an instance of the type that has the list; -1 if there is no field
};

/// All stored properties of a type. Published whole; replaced when tables change.
struct StoredList : toolkit::EpochLink {
    ularge generation; ///< see `typeGeneration`
    uint count;
    StoredProperty* entries() { return reinterpret_cast<StoredProperty*>(this + 1); }
    const StoredProperty* entries() const { return reinterpret_cast<const StoredProperty*>(this + 1); }
};

/// A declared base or alias. Its type is null as long as the name can't be resolved.
struct BaseLink {
    ZSelector name;
    ZMetaType* type = nullptr; ///< one reference
    int offset = 0;
};

enum TableState : byte { tableUnbuilt, tableBuilding, tableBuilt };

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

    char* lockLabel = nullptr; ///< text of the label of the type's own lock

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
    byte wrapped = 0; ///< a descendant has the flag `Wrapper`

    // Sizes of the private parts of instances

    uint internalSize = 0;
    int internalOffset = 0;
    bool dynamicInternal = false;
    ularge wholeInternalSize = 0; ///< with all bases: in the lower half, for the `typeGeneration` in the upper one

    // Base graph

    ZArrayT<BaseLink> bases;
    ZArrayT<BaseLink> aliases;
    ZListT<ZMetaType*> descendants;              ///< not retained: each leaves the list when it goes
    ZListT<ZMetaType*> implicitTo, implicitFrom; ///< not retained: who goes leaves the lists of others
    toolkit::EpochPtr<AncestorList> ancestors;
    ZMetaType* primaryBase = nullptr;

    // Relatives

    ZMetaType::Types qualified;       ///< by name; each has one reference here and points back without one
    ZListT<ZMetaType*> copies;        ///< local copies, not retained: they hold this type
    ZMetaType* pointerType = nullptr; ///< of `qualified`, found without a lock
    ZMetaType* constPointerType = nullptr;
    ZMetaType* templateType = nullptr;
    ZMetaType* ownerType = nullptr; ///< the one that this is nested in
    ZMetaType::Types nested;
    byte typesState = tableUnbuilt; ///< of `nested`
    uint typesResets = 0;           ///< how often they were thrown away
    ZArrayT<CategoryLink> categories;

    // Signals

    ZObject::DispatchTable dispatch;
    byte dispatchState = tableUnbuilt; ///< of `dispatch`
    uint dispatchResets = 0;
    bool hasDispatch = false;   ///< `dispatch` isn't empty
    bool dispatchStale = false; ///< what its entries found isn't used again

    // Callbacks and what was made of them

    ZTypeCallback callbacks[ZMetaType::CallBackCount] = {};
    const glue::ClassRow* declaration = nullptr;
    ZHashMapT<ZSelector, ZKeyValueT<ZSelector, ZSelectorMap>> selectorGroups;
    ularge predicates[predCount] = {}; ///< the `typeGeneration` it was worked out at, times 2, plus the value

    // Instances. The list has a lock of its own, under which none is taken.

    ZSpinLock instanceLock;
    uint objectCount = 0;
    ZObject* firstInstance = nullptr;
    ZObject* lastInstance = nullptr;
    ZObject* singleton = nullptr;
    ZListT<ZObject*> typeDelegates; ///< each retained

    // Bindings, under the lock of their table

    int bindingSrc = -1, bindingDst = -1; ///< heads of those whose source, destination is of this type
    uint boundSources = 0;                ///< those for which any instance is a source

    // Methods and properties

    MethodTables methods;
    PropertyTables properties;
    toolkit::EpochPtr<StoredList> stored;
    /// Operations that a metatype calls on instances of its type.
    enum InlineOperation {
        inlineConstructor,
        inlineDestructor,
        inlineDetach,
        inlineDeepDetach,
        inlineIsDetached,
        inlineIsNull,
        inlineToString,
        inlineStreamConstructor,
        inlineWrite,
        inlineLoadConstructor,
        inlineNamedLoadConstructor,
        inlineLoadXST,
        inlineNamedLoadXST,
        inlineStoreXST,
        inlineNamedStoreXST,
        inlineDeepDetachWithin, ///< with the context of the detach that it is part of
        inlineCount
    };
    ZInlineMethod operations[inlineCount];
    uint operationsAimed = 0; ///< a bit for each that was told what it stands for
};

/// The ancestors of a type, borrowed under an open guard. Null without memory.
ORV_API const AncestorList* ancestorsOf(const ZMetaType* type);
ORV_API void retireAncestors(AncestorList* list);

/// Calls `use(const Ancestor&)` for each ancestor, nearest first, until one answers false. Without memory for none.
template <class F> void eachAncestor(const ZMetaType* type, F use) {
    toolkit::EpochGuard guard;
    const AncestorList* list = ancestorsOf(type);
    for (uint i = 0; list && i < list->count; ++i)
        if (!use(list->entries()[i])) return;
}
/// Calls `use(ZMetaType*)` for each direct base until one answers false. No lock is held meanwhile.
template <class F> void eachBase(const ZMetaType* type, F use) {
    ZArrayT<BaseLink> bases, aliases;
    type->relationType()->copyLinks(bases, aliases);
    for (const BaseLink& link : std::as_const(bases))
        if (link.type && !use(link.type)) return;
}

/// Whether instances are those of a declared class: what it doesn't offer can't be done with them.
bool isDeclared(const ZMetaType* type);

/// The stored properties of a type, borrowed under an open guard. Null without memory.
const StoredList* storedOf(const ZMetaType* type);
void retireStored(StoredList* list);

/// Gathers the ancestors of a type.
struct AncestorWalk {
    Ancestor* entries = nullptr;
    uint count = 0, room = 0;

    AncestorWalk() = default;
    AncestorWalk(const AncestorWalk&) = delete;
    ~AncestorWalk() { zfree(entries); }
    /// False without memory.
    bool collect(const ZMetaType* from);
    bool same(const AncestorList& list) const;

private:
    bool add(const ZMetaType* type, int offset, uint depth, bool isAlias);
    bool addLinks(const Ancestor& of);
};

/// Gathers the stored properties of a type and its bases.
struct StoredWalk {
    StoredProperty* entries = nullptr;
    uint count = 0, room = 0;

    StoredWalk() = default;
    StoredWalk(const StoredWalk&) = delete;
    ~StoredWalk() { zfree(entries); }
    /// False without memory.
    bool collect(const ZMetaType* type, int offset, int depth);

private:
    bool add(ZProperty* property, int offset);
};

} // namespace orv
