#pragma once

#include "core/ZTokenSpace.h"

/// A text of a token space, by its id: a counted name that compares as a number. The space belongs to somebody else and
/// outlives its tokens, open or closed; a token is used where its space is. Texts are UTF-8.
///
/// What makes a token gives an empty one if there is no memory or the text is empty, and without a space. Empty tokens
/// keep their space.
class ORV_API ZToken {
public:
    using ZRelocatable = void;

    // Lifetime

    ZToken() = default;
    /// An empty token of a space.
    explicit ZToken(ZTokenSpace* space) : owner(space) {}
    ZToken(ZTokenSpace* space, const char* text);
    ZToken(ZTokenSpace* space, const char* text, int length);
    ZToken(ZTokenSpace* space, const ZString& text);
    /// The token of an id, which is counted.
    ZToken(ZTokenSpace* space, uint id);
    ZToken(const ZToken& other);
    ~ZToken() { remove(); }
    ZToken& operator=(const ZToken& other);

    // Making. The token takes the new text in its space; these answer whether there is one.

    bool set(const char* text);
    bool set(const char* text, int length);
    bool set(const ZString& text);
    /// "yes" or "no".
    bool setBool(bool value);
    bool setInt(int value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    bool setLong(long value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    bool setLarge(large value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    /// Formats as strings do; false, with the old text, if the result is empty.
    bool printf(const char* format, ...) ORV_PRINTF(2, 3);
    bool aprintf(const char* format, var_arg* arguments);
    /// Gives the text up: the token is empty.
    void remove();

    // Tokens of the same space

    ZToken number(int value) const;
    ZToken number(uint value) const;
    ZToken number(large value) const;
    ZToken number(ularge value) const;
    ZToken number(real value) const;
    /// The first character in upper case.
    ZToken capitalize() const;
    ZToken lowerCase() const;
    /// Without any blank.
    ZToken removeSpaces() const;
    /// With the character in front, unless it has it.
    ZToken marked(char mark) const;
    /// Whether that is its first character.
    bool hasMarker(char mark) const { return mark && at(0) == mark; }

    // Reading

    bool isEmpty() const { return id == 0; }
    /// The number that stands for the text.
    uint key() const { return id; }
    uint hashKey() const { return id; }
    ZTokenSpace* space() const { return owner; }
    /// Zero-ended; null for an empty token.
    const char* string() const { return owner ? owner->string(id) : nullptr; }
    /// Bytes of text.
    int length() const { return owner ? owner->length(id) : 0; }
    /// A byte of the text; 0 out of range.
    char at(int index) const;
    /// Whether the text has that name token.
    bool isToken(int nameToken) const { return id && owner->nameToken(id) == nameToken; }
    /// Whether the text consists of the characters of names: digits, ASCII letters, "_" and ":".
    bool isName() const;
    ZTokenCallback callback() const { return owner ? owner->callback(id) : nullptr; }
    /// For all holders of the token.
    bool setCallback(ZTokenCallback callback) { return owner && owner->setCallback(id, callback); }
    bool hasstr(const char* text) const;
    /// By bytes: negative, 0 or positive. Null counts as the empty text.
    int cmpstr(const char* text) const;
    /// Whether it is the token of a text, which is looked up and not made.
    bool check(const char* text) const { return id && owner->nameIndex(text) == id; }

    bool operator==(const ZToken& other) const { return owner == other.owner && id == other.id; }
    /// By number, which has nothing to do with the order of texts.
    int compare(const ZToken& other) const { return (id > other.id) - (id < other.id); }

private:
    /// Gives the old text up and takes an id over that was counted for this token.
    bool take(uint made);
    ZToken sibling(const ZString& text) const { return ZToken(owner, text); }

    ZTokenSpace* owner = nullptr;
    uint id = 0;
};
