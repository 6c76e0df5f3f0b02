#pragma once

#include "toolkit/types.h"

#include <string_view>

/// The option language of property declarations, "store v3 sb2 .changed noxst": words that set a flag, "v" and a
/// number for the version, "sb" and a number for the sandbox level, "." and the name of an update method; every other
/// word is an option and kept. `constexpr` throughout, so that a declaration is read by the compiler.
namespace orv {

/// One word and the bits of `ZProperty::Flags` that it sets.
struct PropertyWord {
    std::string_view word;
    uint flags;
};
inline constexpr PropertyWord propertyWords[] = {
    {"alias", 0x1},          {"hidden", 0x2},         {"readonly", 0x4},       {"retain", 0x8},
    {"copy", 0x10},          {"dynamic", 0x20},       {"optional", 0x60},      {"store", 0x80},
    {"lock", 0x100},         {"bind", 0x200},         {"linked", 0x400},       {"mutable", 0x800},
    {"delegate", 0x1000},    {"resolve", 0x2000},     {"collection", 0x4000},  {"array", 0x8000},
    {"interface", 0x10000},  {"value", 0x20000},      {"noblend", 0x40000},    {"nomark", 0x80000},
    {"noupdate", 0x100000},  {"nocopy", 0x200000},    {"virtual", 0x400000},   {"fixed", 0x800000},
    {"traverse", 0x1000000}, {"nodetach", 0x2000000}, {"dwrap", 0x4000000},    {"swrap", 0x8000000},
    {"wrap", 0xC000000},     {"passptr", 0x10000000}, {"compact", 0x20000000}, {"variable", 0x40000000},
};

/// What one word of an option text is.
enum class PropertyWordKind { Flag, Version, SandBox, Update, Option };

struct PropertyWordMeaning {
    PropertyWordKind kind = PropertyWordKind::Option;
    uint flags = 0;  ///< of a flag word
    int number = -1; ///< of a version or sandbox word
};

/// The number behind a prefix that is all of the rest of the word and fits an int; -1 for any other word.
constexpr int propertyWordNumber(std::string_view word, std::string_view prefix) {
    if (word.size() <= prefix.size() || word.substr(0, prefix.size()) != prefix) return -1;
    large number = 0;
    for (char c : word.substr(prefix.size())) {
        if (c < '0' || c > '9') return -1;
        number = number * 10 + (c - '0');
        if (number > 0x7FFFFFFF) return -1;
    }
    return int(number);
}

constexpr PropertyWordMeaning propertyWordMeaning(std::string_view word) {
    if (word.size() > 1 && word[0] == '.') return {PropertyWordKind::Update, 0, -1};
    if (int number = propertyWordNumber(word, "v"); number >= 0) return {PropertyWordKind::Version, 0, number};
    if (int number = propertyWordNumber(word, "sb"); number >= 0) return {PropertyWordKind::SandBox, 0, number};
    for (const PropertyWord& known : propertyWords)
        if (known.word == word) return {PropertyWordKind::Flag, known.flags, -1};
    return {};
}

/// Cuts the first word off a text; empty when there is none left.
constexpr std::string_view propertyNextWord(std::string_view& rest) {
    size_t start = 0;
    while (start < rest.size() && rest[start] == ' ') ++start;
    size_t end = start;
    while (end < rest.size() && rest[end] != ' ') ++end;
    std::string_view word = rest.substr(start, end - start);
    rest = rest.substr(end);
    return word;
}

/// What the flag, version and sandbox words of an option text say together; a later number replaces an earlier one.
struct PropertyWordSum {
    uint flags = 0;
    int version = -1;
    int sandBoxLevel = -1;
    int options = 0;  ///< how many words are options
    int updaters = 0; ///< how many name an update method
};
constexpr PropertyWordSum propertyWordSum(std::string_view words) {
    PropertyWordSum sum;
    for (std::string_view word; !(word = propertyNextWord(words)).empty();) {
        PropertyWordMeaning meaning = propertyWordMeaning(word);
        sum.flags |= meaning.flags;
        if (meaning.kind == PropertyWordKind::Version) sum.version = meaning.number;
        if (meaning.kind == PropertyWordKind::SandBox) sum.sandBoxLevel = meaning.number;
        sum.options += meaning.kind == PropertyWordKind::Option;
        sum.updaters += meaning.kind == PropertyWordKind::Update;
    }
    return sum;
}

} // namespace orv
