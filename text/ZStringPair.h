#pragma once

#include "text/ZString.h"

/// Two strings.
class ORV_API ZStringPair {
public:
    using ZRelocatable = void;

    ZStringPair() = default;
    ZStringPair(const ZString& first, const ZString& second) : first(first), second(second) {}
    /// The two parts of a text that blanks part; both empty if there are more or fewer.
    explicit ZStringPair(const ZString& text);

    bool isEmpty() const { return first.isEmpty() && second.isEmpty(); }
    void clear();
    /// By the first strings, then by the second.
    int compare(const ZStringPair& other) const;
    bool operator==(const ZStringPair& other) const { return compare(other) == 0; }
    uint hashKey() const { return first.textHash() ^ second.textHash() * 31; }

    ZString first;
    ZString second;
};
