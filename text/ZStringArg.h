#pragma once

#include "text/ZString.h"

/// One argument of a resource string: a whole number, a real, a text or nothing, told by the letter that lists of
/// argument types use for it.
struct ZStringArg {
    using ZRelocatable = void;

    ZStringArg() = default;
    ZStringArg(int value) : type('i'), integer(value) {}
    ZStringArg(uint value) : type('i'), integer(value) {}
    ZStringArg(long value) : type('i'), integer(value) {}
    ZStringArg(large value) : type('i'), integer(value) {}
    ZStringArg(double value) : type('r'), real(value) {}
    ZStringArg(const ZString& value) : type('s'), text(value) {}
    ZStringArg(const char* value) : type('s'), text(value) {}

    char type = ' '; ///< i, r, s, or a blank for nothing
    large integer = 0;
    double real = 0;
    ZString text;
};
