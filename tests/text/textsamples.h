#pragma once

#include "text/ZString.h"

#include <string>
#include <vector>

/// The UTF-8 of a string.
inline std::string utf8(const ZString& text) {
    char* copy = text.astr();
    std::string out = copy ? copy : "";
    zfree(copy);
    return out;
}

/// A UTF-8 text in a form.
inline ZString inForm(const std::string& text, ZString::Type type) {
    ZString made(text.c_str(), int(text.size()));
    made.setType(type);
    return made;
}

/// The forms that hold text themselves.
inline const ZString::Type widths[] = {ZString::Char, ZString::WChar, ZString::IChar};
