#pragma once

#include "core/ZArrayT.h"
#include "core/ZHashTreeT.h"
#include "core/ZSpinLock.h"
#include "object/ZFixedMethod.h"
#include "object/ZMethodPtr.h"
#include "object/typeGeneration.h"
#include "toolkit/epoch.h"

/// What a metatype has of methods. Tables are built under its change lock, published, and replaced as a whole.
namespace orv {

using MethodTree = ZHashTreeT<ZSelector, ZMethodPtr>;
struct MethodCache;
struct OverloadCache;

/// The tables of a type as lookups see them.
struct MethodTable : toolkit::EpochLink {
    MethodTree declared;
    MethodTree user; ///< asked first
};

/// Operations that a metatype asks its type's methods for.
enum class TypeOperation {
    Compare,
    Internal,
    Hash,
    Blend,
    BlendLocal,
    SetIdentity,
    SetLocalIdentity,
    MarkCSP,
    MarkLocalCSP,
    UpdateCSP,
    UpdateLocalCSP,
    Count
};

/// The member of `orv::MetaTypeData` for all that; made and destroyed with it.
struct ORV_API MethodTables {
    MethodTables() = default;
    ~MethodTables();
    MethodTables(const MethodTables&) = delete;
    MethodTables& operator=(const MethodTables&) = delete;

    /// Null until the table is built.
    toolkit::EpochPtr<MethodTable> published;
    /// Answers of lookups in this type and what it inherits from, in front of the tables.
    toolkit::EpochPtr<MethodCache> cache;
    toolkit::EpochPtr<OverloadCache> overloads;
    ZSpinLock cacheGuard;

    // Under the type's change lock

    MethodTree user; ///< outlives the published table
    uint resets = 0; ///< how often the published table was thrown away

    ZArrayT<ZFixedMethod> fixedMethods;
    /// The signatures of the operations, once they are known: a bit for each.
    ZSelector operations[int(TypeOperation::Count)];
    uint operationsKnown = 0;

    /// Inline methods that were looked up in this type, to be reset before it ends.
    ZSpinLock inlineGuard;
    ZInlineMethod* inlineFirst = nullptr;
};

/// For a `CreateMethods` callback, ahead of its `ZMetaType::appendMethod`s: room for so many methods. False without
/// memory. What the callback appends is published once, when it has returned true.
ORV_API bool reserveMethods(ZMetaType* type, uint count);
/// What the running thread is filling for a type; null if it isn't.
const MethodTree* methodsUnderConstruction(const ZMetaType* type);
/// The tables of a type, built if need be; null without memory. Borrowed under a guard.
ORV_API const MethodTable* methodTable(const ZMetaType* type);

/// What a lookup of `selector` in a type finds, and why not: the signature that was asked, the candidates of that name
/// in the type, its bases and its template, and for each the expected and the actual types. For logs and tools; slow.
ORV_API ZString explainLookup(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier);
/// The same for a call with these arguments.
ORV_API ZString explainLookup(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier,
                              const ZVariant* args, int count);

} // namespace orv
