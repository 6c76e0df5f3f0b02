#pragma once

#include "core/ZSelector.h"

/// Two selectors as one value.
class ORV_API ZSelectorPair {
public:
    using ZRelocatable = void;

    ZSelectorPair() = default;
    ZSelectorPair(const ZSelector& name, const ZSelector& selector) : name(name), selector(selector) {}
    /// From two words with a blank between them; of any other text the pair stays empty.
    explicit ZSelectorPair(const ZString& text);

    void assign(const ZSelectorPair& other) { *this = other; }
    bool isEmpty() const { return name.isEmpty() && selector.isEmpty(); }
    int compare(const ZSelectorPair& other) const {
        int order = name.compare(other.name);
        return order ? order : selector.compare(other.selector);
    }
    bool operator==(const ZSelectorPair& other) const { return name == other.name && selector == other.selector; }
    uint hashKey() const { return name.key() ^ selector.key(); }

    ZSelector name, selector;
};
