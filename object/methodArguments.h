#pragma once

#include "object/ZMethod.h"
#include "object/methodParams.h"
#include "value/ZVariant.h"

/// Values on their way into and out of the entries of methods.
namespace orv {

/// Whether values of the kind are numbers, enums and bools included.
inline bool isNumber(ZMetaType::Type kind) { return kind >= ZMetaType::Bool && kind <= ZMetaType::Real; }
/// The number that a variant reads as, in the first bytes of `room`; of the null variant 0. False for what is no
/// number, and for an enumeration for what it doesn't hold.
bool numberBytes(const MethodParam& param, const ZVariant& value, char (&room)[8]);
bool isEnumHeld(const ZMetaType* type, const void* value);
/// Whether a value of the type may stand at an address that compiled code reads: anything but a number that an
/// enumeration doesn't hold.
inline bool isPassable(const ZMetaType* type, const void* value) {
    return ORV_LIKELY(type->kind() != ZMetaType::Enum) || isEnumHeld(type, value);
}
/// What was expected and what came instead, for messages: 'expected "int", actual "ZString" abc'.
ZString explainArgument(const MethodParam& param, const ZSelector& expected, const ZVariant& given);
/// The word for a parameter where the variant serves as it is or is another number; false where something has to be
/// made.
bool argumentWord(const MethodParam& param, const ZVariant& value, const void*& word);
/// Calls a fast entry with as many words as it takes.
void* callWords(const ZMethod* method, const void* instance, const void* const* words);

/// The variant of a result that the fast entry answered.
ZVariant wrapWord(const MethodParam& param, void* word, bool owned);
/// The variant of what a pointer or reference leads to: an instance is retained, or taken over if it is `owned`; a text
/// becomes a string; another value is copied, or its block taken over. What can't be told is the null variant.
ZVariant wrapAddress(const MethodParam& param, void* address, bool owned);
/// A copy of a value.
ZVariant copiedValue(const MethodParam& param, const void* value);
/// The items of an array as variants; fewer when there is no memory.
ZArrayT<ZVariant> variantList(const ZVArray& values);
/// Whether the memory for a result is a block that a variant can take over.
inline bool resultOnBlock(const MethodParam& param) {
    return param.passing == Passing::Value && !param.data->heldInline() && !param.data->isVariant();
}

} // namespace orv
