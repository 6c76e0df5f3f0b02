#pragma once

#include "tools/orv/stanzas.h"

#include <cstdio>
#include <string>

/// A text as the source of a reader.
inline orv::tool::StanzaReader::Source sourceOf(const std::string& text, size_t& at) {
    return [&](char* bytes, size_t size) {
        const size_t count = std::min(size, text.size() - at);
        text.copy(bytes, count, at);
        at += count;
        return count;
    };
}

/// What one side made of a control file.
struct PackageFigures {
    int packages = 0;
    long long total = 0;
    bool operator==(const PackageFigures&) const = default;
};

#ifdef ORV_PEER_QT
/// The same objects in Qt: made, then kept until `dropQtPackages`.
PackageFigures loadQtPackages(const std::string& text);
void dropQtPackages();
#endif
