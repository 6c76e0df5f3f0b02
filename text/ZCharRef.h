#pragma once

#include "text/ZChar.h"

/// A place in a string, which can be asked and assigned to like a character: what `ZString::operator[]` gives. It holds
/// no character, and is valid as long as the string. Every question makes the string private first.
class ORV_API ZCharRef {
public:
    constexpr ZCharRef() = default;
    constexpr ZCharRef(ZString* string, int index) : string(string), index(index) {}
    constexpr ZCharRef(const ZCharRef&) = default;

    /// Writes one unit of the string. A place at or behind its end first lengthens it with blanks.
    ZCharRef& operator=(const ZChar& value);
    ZCharRef& operator=(const ZCharRef& other) { return *this = other.value(); }

    /// The unit there; 0 outside the text.
    ZChar value() const;
    bool operator==(const ZChar& other) const { return value() == other; }
    bool operator==(const ZCharRef& other) const { return value() == other.value(); }

    /// As those of the string; true without one.
    bool detach() const;
    bool isDetached() const;

    // The questions of `ZChar`

    bool isNull() const { return value().isNull(); }
    ZChar::Category category() const { return value().category(); }
    ZChar::Direction direction() const { return value().direction(); }
    int decompose() const { return value().decompose(); }
    int flags() const { return value().flags(); }
    int combiningClass() const { return value().combiningClass(); }
    int digit() const { return value().digit(); }
    int decimal() const { return value().decimal(); }
    int block() const { return value().block(); }
    int length() const { return value().length(); }
    bool isLetter() const { return value().isLetter(); }
    bool isMark() const { return value().isMark(); }
    bool isNumber() const { return value().isNumber(); }
    bool isPunct() const { return value().isPunct(); }
    bool isSymbol() const { return value().isSymbol(); }
    bool isSeparator() const { return value().isSeparator(); }
    bool isOther() const { return value().isOther(); }
    ZChar mirror() const { return value().mirror(); }
    bool hasMirrored() const { return value().hasMirrored(); }
    ZChar toLower() const { return value().toLower(); }
    ZChar toUpper() const { return value().toUpper(); }
    ZChar toTitle() const { return value().toTitle(); }
    ZString name() const;

private:
    ZString* string = nullptr;
    int index = 0;
};
