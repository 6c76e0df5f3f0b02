#pragma once

#include "text/ZString.h"

/// Values of the plain kinds, over raw memory: what can be done with a value when its kind is all that is known of it.
/// Kinds are those of `ZMetaType::Type`. Memory is aligned for its kind and holds a constructed value unless said
/// otherwise. Nothing here looks at a metatype or takes a lock.
namespace orv {

/// Whether the operations below know values of that kind: `Unknown` to `Real`, `Selector` and `String`. Of `Unknown`
/// and `Void` they know the bytes.
constexpr bool isPlainKind(int kind) { return kind >= 0 && kind <= 16; }
/// Whether such a value is a number: `Bool` to `Real`, enums among them.
constexpr bool isNumberKind(int kind) { return kind >= 2 && kind <= 14; }
constexpr bool isIntegerKind(int kind) { return kind >= 2 && kind <= 11; }
constexpr bool isRealKind(int kind) { return kind >= 12 && kind <= 14; }
/// Bytes of a value; 0 for `Unknown`, `Void` and the kinds that aren't plain, but 8 for `Pointer`.
ORV_API uint kindSize(int kind);

/// Makes the value that means nothing: 0, false or empty. `size` counts for `Unknown` and `Void`.
ORV_API void constructKind(int kind, void* memory, uint size);
/// Gives up what the value holds.
ORV_API void destructKind(int kind, void* value);
ORV_API void copyKind(int kind, void* target, const void* source, uint size);

/// The order that users see: reals that differ by less than 1e-8 are equal, and so are equal ones of any size. That is
/// no order to sort by, since it isn't transitive.
ORV_API int compareKind(int kind, const void* a, const void* b, uint size);
/// A total order for sorting and keys, the same but for reals: -0 equals 0, and not-a-number comes last, equal to
/// itself.
ORV_API int orderKind(int kind, const void* a, const void* b, uint size);
/// Equal for values that `orderKind` finds equal.
ORV_API uint hashKind(int kind, const void* value, uint size);
/// Whether the value is the one that `constructKind` makes; -0 counts as 0.
ORV_API bool isNullKind(int kind, const void* value, uint size);

/// Numbers in base 10, "yes" and "no", a text as it is. Empty for `Unknown` and `Void`; empty with a failure raised
/// without memory.
ORV_API ZString kindToString(int kind, const void* value);
/// Reads what `kindToString` writes, the whole text. False, with the value as it was, for any other text, and for a
/// number that the kind can't hold. A selector is made if it has to be.
ORV_API bool kindFromString(int kind, void* value, const ZString& text);

// Numbers. False, with `out` as it was, for a kind that is none. Integers are cut to the bits that there is room for;
// reals lose their fraction and are held within the range of the integer; not-a-number gives 0.

ORV_API bool kindToLarge(int kind, const void* value, large& out);
ORV_API bool kindToULarge(int kind, const void* value, ularge& out);
ORV_API bool kindToReal(int kind, const void* value, double& out);
ORV_API bool kindToBool(int kind, const void* value, bool& out);
/// Writes a number of one kind as one of another.
ORV_API bool convertKind(int kind, void* value, int fromKind, const void* from);

/// A real as an integer: cut towards zero, held within the range of the type, 0 for not-a-number.
template <class T> constexpr T realToInteger(double value) {
    constexpr bool hasSign = T(-1) < T(0);
    constexpr T top = hasSign ? T(~(~0ull << (8 * sizeof(T) - 1))) : T(~0ull);
    constexpr T bottom = hasSign ? T(-top - 1) : T(0);
    if (value != value) return 0;
    return value >= double(top) ? top : value <= double(bottom) ? bottom : T(value);
}

} // namespace orv
