#pragma once

#include "core/ZSelector.h"

/// The selector space, open for the life of this; it begins empty and leaves nothing.
struct SelectorScope {
    SelectorScope() {
        ZSelector::close();
        ZSelector::open();
    }
    ~SelectorScope() { ZSelector::close(); }
    SelectorScope(const SelectorScope&) = delete;
};
