#pragma once

#include "toolkit/types.h"

/// The words in which declarations say how a method or property behaves. They are read by one set of functions, at
/// compile time from rows and at run time from texts.
namespace orv {

/// What a word does to the flags.
struct OptionWord {
    const char* word;
    uint set;
    uint clear = 0;
};

/// Values are those of `ZMethod::Flags`.
inline constexpr OptionWord methodWords[] = {
    {"local", 0, 3},
    {"fixed", 1, 2},
    {"dynamic", 2, 1},
    {"multimethod", 3},
    {"private", 4},
    {"static", 8},
    {"base", 16},
    {"virtual", 64},
    {"export", 128},
    {"lock", 512},
    {"explicit", 1024},
    {"bind", 0x18002000},
    {"autobind", 0x18006000},
    {"return", 0x20000},
    {"manage", 0x40000},
    {"creator", 0x80000},
    {"interface", 0x100000},
    {"publish", 0x200000},
    {"collect", 0x800000},
    {"rdlock", 0x2000000},
    {"wrlock", 0x4000000},
    {"dwrap", 0x8000000},
    {"invoke", 0x8000000},
    {"swrap", 0x10000000},
    {"script", 0x10000000},
    {"wrap", 0x18000000},
};

/// Values are those of `ZProperty::Flags`.
inline constexpr OptionWord propertyWords[] = {
    {"alias", 0x1},          {"hidden", 0x2},         {"readonly", 0x4},         {"retain", 0x8},
    {"copy", 0x10},          {"dynamic", 0x20},       {"optional", 0x60},        {"store", 0x80},
    {"lock", 0x100},         {"bind", 0x200},         {"linked", 0x400},         {"mutable", 0x800},
    {"delegate", 0x1000},    {"resolve", 0x2000},     {"collection", 0x4000},    {"array", 0x8000},
    {"interface", 0x10000},  {"value", 0x20000},      {"noblend", 0x40000},      {"nomark", 0x80000},
    {"noupdate", 0x100000},  {"nocopy", 0x200000},    {"virtual", 0x400000},     {"fixed", 0x800000},
    {"traverse", 0x1000000}, {"nodetach", 0x2000000}, {"dwrap", 0x4000000},      {"swrap", 0x8000000},
    {"wrap", 0xC000000},     {"passptr", 0x10000000}, {"compact", 0x20000000}, {"variable", 0x40000000},
};

/// Walks over the words of a text, which blanks separate.
struct OptionWalk {
    const char* at;
    const char* word = nullptr;
    size_t length = 0;

    constexpr explicit OptionWalk(const char* text) : at(text ? text : "") {}
    constexpr bool next() {
        while (*at == ' ') ++at;
        word = at;
        while (*at && *at != ' ') ++at;
        length = size_t(at - word);
        return length > 0;
    }
    constexpr bool is(const char* other) const {
        for (size_t i = 0; i < length; ++i)
            if (other[i] != word[i]) return false;
        return !other[length];
    }
    /// Whether the word is `prefix` and digits; then `value` is the number.
    constexpr bool number(const char* prefix, int& value) const {
        size_t i = 0;
        for (; prefix[i]; ++i)
            if (i >= length || word[i] != prefix[i]) return false;
        if (i == length || length - i > 8) return false;
        int sum = 0;
        for (; i < length; ++i) {
            if (word[i] < '0' || word[i] > '9') return false;
            sum = sum * 10 + (word[i] - '0');
        }
        value = sum;
        return true;
    }
};

template <size_t N> constexpr const OptionWord* findOption(const OptionWord (&words)[N], const OptionWalk& walk) {
    for (const OptionWord& known : words)
        if (walk.is(known.word)) return &known;
    return nullptr;
}

/// The flags of a text's words, in the order of the table and not of the text.
template <size_t N> constexpr uint optionFlags(const OptionWord (&words)[N], const char* text) {
    uint flags = 0;
    for (const OptionWord& known : words)
        for (OptionWalk walk(text); walk.next();)
            if (walk.is(known.word)) flags = (flags & ~known.clear) | known.set;
    return flags;
}

/// The number behind `prefix` ("v", "sb") in the last such word; -1 for none.
constexpr int optionNumber(const char* text, const char* prefix) {
    int value = -1;
    for (OptionWalk walk(text); walk.next();) walk.number(prefix, value);
    return value;
}

/// Whether any word is an option proper: no flag, no sandbox level and, of a property, no version and no updater.
template <size_t N>
constexpr bool hasOptionProper(const OptionWord (&words)[N], const char* text, bool property) {
    for (OptionWalk walk(text); walk.next();) {
        int ignored;
        if (findOption(words, walk) || walk.number("sb", ignored)) continue;
        if (property && (walk.word[0] == '.' || walk.number("v", ignored))) continue;
        return true;
    }
    return false;
}

} // namespace orv
