#pragma once

#include "core/ZSelector.h"

#include <string>

/// The selector space, open for the life of this; it begins empty and leaves nothing.
struct SelectorScope {
    SelectorScope() {
        ZSelector::close();
        ZSelector::open();
    }
    ~SelectorScope() { ZSelector::close(); }
    SelectorScope(const SelectorScope&) = delete;
};

/// The text of a selector, "" for an empty one.
inline std::string text(const ZSelector& sel) { return sel.string() ? sel.string() : ""; }
