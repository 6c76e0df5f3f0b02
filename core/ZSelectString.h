#pragma once

#include "core/ZSelector.h"
#include "text/ZString.h"

class ZVKeyMap;

/// A selector and a text as one value.
class ORV_API ZSelectString {
public:
    using ZRelocatable = void;

    ZSelectString() = default;
    ZSelectString(const ZSelector& selector, const ZString& string) : selector(selector), string(string) {}
    /// From two words with a blank between them; of any other text it stays empty.
    explicit ZSelectString(const ZString& text);

    void assign(const ZSelectString& other) { *this = other; }
    bool isEmpty() const { return selector.isEmpty() && string.isEmpty(); }
    /// By selector, then by text.
    int compare(const ZSelectString& other) const {
        int order = selector.compare(other.selector);
        return order ? order : string.compare(other.string);
    }
    bool operator==(const ZSelectString& other) const { return compare(other) == 0; }
    /// Equal for equal texts of any width.
    uint hashKey() const { return selector.key() ^ string.textHash(); }
    /// Both texts with a blank between them.
    ZString toString() const;
    /// The texts of an array of such values by their selectors; of one selector the last text counts. Empty, with a
    /// failure raised, without memory and for an item that is none.
    static ZVKeyMap valueMap(const ZVArray& items);

    ZSelector selector;
    ZString string;
};
