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
    /// Answers of lookups in this type and its bases, in front of the tables.
    toolkit::EpochPtr<MethodCache> cache;
    /// The table that a builder is filling, under the change lock; and who does.
    MethodTable* building = nullptr;
    uint builder = 0;

    ZArrayT<ZFixedMethod> fixedMethods;
    ularge fixedGeneration = 0;

    ZMethod* operations[int(TypeOperation::Count)] = {};
    uint operationsKnown = 0; ///< a bit for each
    ularge operationsGeneration = 0;

    /// Inline methods that were found in this type, to be reset when its methods change.
    ZSpinLock inlineGuard;
    ZInlineMethod* inlineFirst = nullptr;
};

/// Fills the method table of a type: room for `count` methods, then many entries, then one publication. For declared
/// methods; between making and `publish` the thread holds the type's change lock.
class ORV_API MethodTableBuilder {
public:
    MethodTableBuilder(ZMetaType& type, uint count);
    ~MethodTableBuilder();
    MethodTableBuilder(const MethodTableBuilder&) = delete;
    MethodTableBuilder& operator=(const MethodTableBuilder&) = delete;

    /// Takes a reference of its own. False without memory.
    bool append(ZMethod* method);

private:
    ZMetaType& type;
};

/// What a lookup of `selector` in a type finds, and why not: the signature that was asked, the candidates of that name
/// in the type, its bases and its template, and for each the expected and the actual types. For logs and tools; slow.
ORV_API ZString explainLookup(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier);
/// The same for a call with these arguments.
ORV_API ZString explainLookup(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier,
                              const ZVariant* args, int count);

} // namespace orv
