#pragma once

#include "object/methodCache.h"
#include "object/methodParams.h"

/// Lookups in the tables of a type and of what it inherits from: its template, its bases, the type that it is a variant
/// or copy of. All are called under an open guard, and their answers are borrowed under it.
namespace orv {

enum LookupFlags : byte { LookImplicit = 1, LookSkipResult = 2, LookExact = 4 };

/// By signature or, with a name alone, the first of that name. `base`: what types declare, whatever was added at run
/// time.
ORV_API MethodHit lookUpMethod(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier, bool base);
/// The overload whose parameters fit best. Entry 0 of `types` is the result's; a null one is that of the null value.
ORV_API MethodHit lookUpOverload(const ZMetaType* type, const ZSelector& name, const ZMetaType* const* types, int count,
                                 byte flags, const ZSelector& qualifier, bool base);

/// In the tables of this type alone.
ORV_API ZMethod* pickMethod(const MethodTable* table, const ZSelector& selector, const ZSelector& qualifier, bool base);
ORV_API MethodHit pickOverload(const ZMetaType* type, const MethodTable* table, const ZSelector& name,
                               const ZMetaType* const* types, int count, byte flags, const ZSelector& qualifier,
                               bool base);

/// How well an argument's type fits a parameter's; smaller is better, -1 not at all. The null value, which has no type,
/// fits "void" with 0, a number with 2, a variant as any value does and, where conversions are allowed, a pointer as a
/// conversion.
ORV_API int typeDistance(const ZMetaType* argument, const ZMetaType* parameter, bool implicit);
/// What `off` surplus or missing arguments add to a distance: classes of distances stay apart.
ORV_API int countDistance(int distance, int off);
/// How well argument types fit a method. The largest of the single distances counts; surplus and missing arguments cost
/// 64 each, or are no match with `LookExact`. What goes to an open argument fits as a variant does.
ORV_API int matchArguments(const ZMethod* method, const MethodParams& params, const ZMetaType* const* types, int count,
                           byte flags);

/// Calls the overload of `name` that fits the arguments best; what `ZType::invoke` does for an instance without methods
/// of its own. Constructors and destructors aren't called. The null variant if there is none, or an argument can't be
/// converted. No allocation, no lock and no shared word written on the way to a fast entry.
ORV_API ZVariant invokeByType(const void* instance, const ZMetaType* type, const ZSelector& name, const ZVariant* args,
                              int count);
/// The same for a method that was found. Under a guard.
ORV_API ZVariant callFound(const ZMethod* method, const void* instance, const ZMetaType* type, const ZVariant* args,
                           int count);

/// Tells the debug log, if anybody reads it, why a call found no method; see `explainLookup`.
void logFailedCall(const ZMetaType* type, const ZSelector& selector, const ZVariant* args, int count);

inline constexpr int distanceLimit = 1 << 24; ///< sums stay below
inline constexpr int distanceImplicit = 1 << 25;
inline constexpr int distanceVariant = 1 << 26;
inline constexpr int distanceNamed = 1 << 27; ///< asked by its signature, whatever the arguments are
inline constexpr int distancePerCount = 64;

} // namespace orv
