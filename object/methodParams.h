#pragma once

#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/typeGeneration.h"
#include "toolkit/epoch.h"

/// The parameters of a method, resolved: one block, published in the method's record and never changed.
namespace orv {

enum class Passing : byte {
    Value,     ///< in the slot
    Reference, ///< the slot holds the address
    Pointer    ///< the slot holds the pointer
};

struct MethodParam {
    ZMetaType* type = nullptr;                 ///< as the signature names it; null while unknown
    ZMetaType* data = nullptr;                 ///< of the values themselves: without qualifier, "*" and "&"
    ZMetaType::Type kind = ZMetaType::Unknown; ///< of `data`
    Passing passing = Passing::Value;
    bool isConst = false;
    byte pointers = 0; ///< how many "*"
    int at = 0;        ///< where its slot stands in the block
    int size = 0;      ///< bytes of the slot
};

struct MethodParams : toolkit::EpochLink {
    ularge generation = 0; ///< of types, and of their removals, when it was resolved
    ularge removals = 0;
    int count = 0;        ///< with the result
    int stackSize = 0;    ///< bytes of all slots, without the word in front
    bool complete = true; ///< every type is known
    bool passVariant = false;
    bool constructor = false, destructor = false;
    bool returns = false;

    /// Whether the types are still those that the names mean.
    bool current() const {
        return ORV_LIKELY(removals == typeRemovals()) && (complete || generation == typeGeneration());
    }
    const MethodParam* begin() const { return reinterpret_cast<const MethodParam*>(this + 1); }
    const MethodParam* end() const { return begin() + count; }
    const MethodParam& operator[](int index) const { return begin()[index]; }
};

/// A type name taken apart: "const ZString&" is a const reference to "ZString". Null, with `param` as far as the name
/// alone tells, for what isn't known as seen from `scope`.
ORV_API ZMetaType* resolveParam(const ZMetaType* scope, const ZSelector& name, MethodParam& param);

/// From the address of an instance of `from` to that of its part `to`; null if `to` is neither `from` nor one of its
/// bases. The answer for a null instance is null.
ORV_API const void* upcast(const ZMetaType* from, const ZMetaType* to, const void* instance);
/// The same as an offset; false if `to` isn't among the bases.
ORV_API bool upcastOffset(const ZMetaType* from, const ZMetaType* to, int& offset);

} // namespace orv
