#pragma once

#include "core/ZSelector.h"

#include <new>

namespace orv {

/// The memory of a selector that nobody constructs or destroys at start and end of the process. All zero it is empty.
struct SelectorCell {
    alignas(ZSelector) byte bytes[sizeof(ZSelector)];

    const ZSelector& get() const { return *std::launder(reinterpret_cast<const ZSelector*>(bytes)); }
    ZSelector& get() { return *std::launder(reinterpret_cast<ZSelector*>(bytes)); }
};

} // namespace orv
