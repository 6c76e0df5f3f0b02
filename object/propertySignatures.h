#pragma once

#include "toolkit/types.h"

#include <string_view>

/// The texts by which a property and its accessor methods find each other. A declared accessor bears exactly the
/// signature that its property works out, so the same formats serve the lookup and the declaring of accessor families.
namespace orv {

/// The accessor methods of a property. Those from `Setter` on have one cached place each in a type's accessor rows;
/// a getter has six, by its form.
enum class Accessor : byte {
    Getter,
    Setter,
    ItemSetter,
    Counter,
    PropByIndex,
    HasProp,
    PropKey,
    PropIndex,
    FindKey,
    FindIndex,
    Cleaner,
    Remover,
    RemoveByIndex,
    Inserter,
    Adder
};
inline constexpr int accessorCount = 15;

/// "%s" stands for, in turn: types, the property's name and key parts, as each comment says.
namespace signatures {

// Getters: type, name, key ("const K&" or "int"; empty for the whole value)
inline constexpr char getterConstPointer[] = "const %s* %sPtr(%s)";
inline constexpr char getterPointer[] = "%s* %sPtr(%s)";
inline constexpr char getterConstReference[] = "const %s& %s(%s)";
inline constexpr char getterReference[] = "%s& %s(%s)";
inline constexpr char getterValue[] = "%s %s(%s)";

// Key parts: the key type
inline constexpr char keyInner[] = ", const %s&, ";
inline constexpr char keyLast[] = ", const %s&";
inline constexpr char keyFirst[] = "const %s&, ";
inline constexpr char keyOnly[] = "const %s&";
inline constexpr char positionInner[] = ", int, ";
inline constexpr char positionLast[] = ", int";
inline constexpr char positionFirst[] = "int, ";
inline constexpr char positionOnly[] = "int";

// Behind a verb the name is capitalised; a form with "Pointer" takes a pointer type, which bears its own "*".
inline constexpr char setter[] = "bool set%s(%sconst %s&)"; ///< name, key, type
inline constexpr char setterPointer[] = "bool set%s(%sconst %s)";
inline constexpr char counter[] = "int count%s()";         ///< name
inline constexpr char byIndex[] = "%s %sByIndex(int)";     ///< item type, name as it is
inline constexpr char hasProp[] = "bool has%s(const %s&)"; ///< name, item type
inline constexpr char hasPropPointer[] = "bool has%s(const %s)";
inline constexpr char propKey[] = "%s %sKey(int)";            ///< key type, name as it is
inline constexpr char propIndex[] = "int %sIndex(const %s&)"; ///< name as it is, key type
inline constexpr char findKey[] = "%s find%sKey(const %s&)";  ///< key type, name, item type
inline constexpr char findKeyPointer[] = "%s find%sKey(const %s)";
inline constexpr char findIndex[] = "int find%sIndex(const %s&)"; ///< name, item type
inline constexpr char findIndexPointer[] = "int find%sIndex(const %s)";
inline constexpr char cleaner[] = "bool clear%s()";                  ///< name
inline constexpr char remover[] = "bool remove%s(%s)";               ///< name, key
inline constexpr char removeByIndex[] = "bool remove%sByIndex(int)"; ///< name
inline constexpr char inserter[] = "bool insert%s(%sconst %s&)";     ///< name, key, item type
inline constexpr char inserterPointer[] = "bool insert%s(%sconst %s)";
inline constexpr char adder[] = "bool add%s(const %s&)"; ///< name, item type
inline constexpr char adderPointer[] = "bool add%s(const %s)";

} // namespace signatures

/// Writes `format` with its "%s" replaced by the parts in turn. Answers the length, without an end mark; what doesn't
/// fit into `room` is left out, so ask with room 0 first where the length isn't known.
constexpr size_t writeSignature(char* out, size_t room, std::string_view format, const std::string_view* parts,
                                int count) {
    size_t length = 0;
    int next = 0;
    auto put = [&](char c) {
        if (length < room) out[length] = c;
        ++length;
    };
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%' || i + 1 >= format.size() || format[i + 1] != 's') {
            put(format[i]);
            continue;
        }
        ++i;
        if (next < count)
            for (char c : parts[next++]) put(c);
    }
    return length;
}

} // namespace orv
