#pragma once

#include "core/ZSelector.h"

/// The syntax of selector texts: pure functions on byte ranges. They allocate nothing unless told, don't recurse, and
/// take time in proportion to the length.
namespace orv::detail {

/// A part of a text that somebody else owns; null `text` for none.
struct SelectorPart {
    const char* text = nullptr;
    size_t length = 0;
};

/// Whether a kind is that of texts which are lists of items and nothing else.
constexpr bool isList(ZSelector::Type type) {
    constexpr uint lists =
        1u << ZSelector::Names | 1u << ZSelector::UID | 1u << ZSelector::Colon | 1u << ZSelector::Types;
    return lists >> type & 1;
}

/// The kind of a text as it stands.
ORV_API ZSelector::Type selectorType(const char* text, size_t length);

/// Writes the normal form of a text and answers its length; with a null `out` it only measures. `out` needs room for
/// twice `length`. A text of which at most one character would be kept stays as it is.
ORV_API size_t normalizeSelector(const char* text, size_t length, ZSelector::Type& type, char* out);

/// The normal form of a text, in a buffer of its own unless it is large.
class ORV_API NormalText {
public:
    NormalText(const char* text, size_t length);
    ~NormalText();
    NormalText(const NormalText&) = delete;
    /// False when there was no memory for it.
    explicit operator bool() const { return text != nullptr; }

    char* text;
    size_t length = 0;
    ZSelector::Type type = ZSelector::Any;

private:
    static constexpr size_t room = 256;
    char small[2 * room];
};

/// Walks over the items of a text as those of one kind, without the blanks at their ends; empty ones are left out.
class ORV_API SelectorItems {
public:
    SelectorItems(const char* text, size_t length, ZSelector::Type type);
    /// The next item; false after the last.
    bool next(SelectorPart& item);

    SelectorPart name;   ///< of a template or function
    SelectorPart result; ///< of a function
    /// Where a function's parameters end: its ")", or the end of the text.
    const char* close() const { return at; }

private:
    void startTemplate();
    void startMethod();
    bool step(SelectorPart& item);

    const char *begin, *at, *end;
    ZSelector::Type type;
    bool done = false;
};

/// Walks over a text and keeps the depth of its angle brackets. Those in the name of an operator don't count, nor does
/// a
/// ">" that closes nothing; a "<" that is never closed counts to the end.
struct ORV_API BracketWalk {
    BracketWalk(const char* begin, const char* at, const char* end) : begin(begin), at(at), end(end) {}

    const char *begin, *at, *end;
    size_t depth = 0;

    /// Takes the character at `at` into account and moves on.
    void pass() {
        if (*at == '<' || *at == '>')
            passBracket();
        else
            ++at;
    }

private:
    void passBracket();
};

/// What the blanks at both ends leave of a text.
ORV_API SelectorPart trimBlanks(const char* text, size_t length);
/// Whether the bytes in front of `at` are "operator", within the text that starts at `begin`.
inline bool behindOperator(const char* begin, const char* at) {
    return at - begin >= 8 && __builtin_memcmp(at - 8, "operator", 8) == 0;
}

} // namespace orv::detail
