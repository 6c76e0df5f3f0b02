#pragma once

#include <cstdio>
#include <string>

namespace orv::tool {

/// A text as a JSON string (RFC 8259), quotes included. The text is UTF-8.
inline std::string jsonText(const std::string& text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        if (static_cast<unsigned char>(c) >= 32) {
            out += c;
            continue;
        }
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", c);
        out += escape;
    }
    return out + "\"";
}

} // namespace orv::tool
