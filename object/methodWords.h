#pragma once

#include "object/propertyWords.h"

/// The option language of method declarations, "bind static sb2": words that set or clear flags, and "sb" and a number
/// for the sandbox level; every other word is an option and kept. `constexpr` throughout, as that of properties.
namespace orv {

/// One word and what it does to the bits of `ZMethod::Flags`.
struct MethodWord {
    std::string_view word;
    uint flags;
    uint cleared = 0;
};
/// Words take effect in this order, whatever theirs is in the text.
inline constexpr MethodWord methodWords[] = {
    {"local", 0, 3},          {"fixed", 1, 2},       {"dynamic", 2, 1},     {"multimethod", 3},
    {"private", 4},           {"static", 8},         {"base", 16},          {"virtual", 64},
    {"export", 128},          {"lock", 512},         {"explicit", 1024},    {"bind", 0x18002000},
    {"autobind", 0x18006000}, {"return", 0x20000},   {"manage", 0x40000},   {"creator", 0x80000},
    {"interface", 0x100000},  {"publish", 0x200000}, {"collect", 0x800000}, {"rdlock", 0x2000000},
    {"wrlock", 0x4000000},    {"dwrap", 0x8000000},  {"invoke", 0x8000000}, {"swrap", 0x10000000},
    {"script", 0x10000000},   {"wrap", 0x18000000},
};

/// What the words of an option text say together; a later sandbox level replaces an earlier one.
struct MethodWordSum {
    uint flags = 0;
    int sandBoxLevel = -1;
    int options = 0; ///< how many words are options
};
constexpr bool isMethodWord(std::string_view word) {
    for (const MethodWord& known : methodWords)
        if (known.word == word) return true;
    return false;
}
constexpr MethodWordSum methodWordSum(std::string_view words) {
    MethodWordSum sum;
    if (words.empty()) return sum;
    for (const MethodWord& known : methodWords) {
        std::string_view rest = words;
        for (std::string_view word; !(word = propertyNextWord(rest)).empty();)
            if (word == known.word) sum.flags = (sum.flags & ~known.cleared) | known.flags;
    }
    for (std::string_view word; !(word = propertyNextWord(words)).empty();) {
        if (int level = propertyWordNumber(word, "sb"); level >= 0)
            sum.sandBoxLevel = level;
        else
            sum.options += !isMethodWord(word);
    }
    return sum;
}

} // namespace orv
