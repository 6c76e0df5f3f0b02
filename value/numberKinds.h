#pragma once

#include "object/ZMetaType.h"

namespace orv {

/// The C++ type of the values of a kind, as an empty value.
template <class T> struct NumberOf { using Value = T; };

/// Calls `use` with the C++ type by which values are ordered exactly: of numbers their own, of enums an unsigned one of
/// their size, of selectors that of their ids. False for all other types, and for none.
template <class F> bool withNumber(const ZMetaType* type, F&& use) {
    switch (type ? type->kind() : ZMetaType::Unknown) {
    case ZMetaType::Bool:
    case ZMetaType::Byte:
        return use(NumberOf<byte>()), true;
    case ZMetaType::Char:
        return use(NumberOf<int8>()), true;
    case ZMetaType::Short:
        return use(NumberOf<int16>()), true;
    case ZMetaType::Word:
        return use(NumberOf<word>()), true;
    case ZMetaType::Int:
        return use(NumberOf<int>()), true;
    case ZMetaType::UInt:
    case ZMetaType::Selector:
        return use(NumberOf<uint>()), true;
    case ZMetaType::Large:
        return use(NumberOf<large>()), true;
    case ZMetaType::ULarge:
        return use(NumberOf<ularge>()), true;
    case ZMetaType::Float:
        return use(NumberOf<float>()), true;
    case ZMetaType::Double:
    case ZMetaType::Real:
        return use(NumberOf<double>()), true;
    case ZMetaType::Enum:
        switch (type->byteSize()) {
        case 1:
            return use(NumberOf<byte>()), true;
        case 2:
            return use(NumberOf<word>()), true;
        case 4:
            return use(NumberOf<uint>()), true;
        case 8:
            return use(NumberOf<ularge>()), true;
        default:
            return false;
        }
    default:
        return false;
    }
}

} // namespace orv
