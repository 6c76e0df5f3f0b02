#include "core/debugLayout.h"

#include "core/ZCompactRBMap.h"
#include "core/ZMapData.h"
#include "core/ZSelectorData.h"
#include "core/ZSelectorSpace.h"

#include <cstddef>

// The classes have virtual functions or a base with data, but none of these bases is virtual.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace orv::detail {

/// A friend of those whose private members it tells.
struct DebugLayout {
    static constexpr ularge directoryBits = ZSelectorSpace::directoryBits;
    static constexpr size_t directory = offsetof(ZSelectorSpace, directory);
    static constexpr size_t items = offsetof(ZCompactRBMap, items), itemBytes = offsetof(ZCompactRBMap, itemBytes),
                            itemCount = offsetof(ZCompactRBMap, itemCount);
};

} // namespace orv::detail

using orv::detail::DebugLayout;

const orv::detail::DebugRow orv_debug_core[] = {
    {"selector.space", &orv::detail::selectorSpace, 0},
    {"selector.directory", nullptr, DebugLayout::directory},
    {"selector.directoryBits", nullptr, DebugLayout::directoryBits},
    {"selector.type", nullptr, offsetof(ZSelectorData, type)},
    {"selector.length", nullptr, offsetof(ZSelectorData, length)},
    {"selector.text", nullptr, offsetof(ZSelectorData, text)},
    {"map.items", nullptr, DebugLayout::items},
    {"map.itemBytes", nullptr, DebugLayout::itemBytes},
    {"map.itemCount", nullptr, DebugLayout::itemCount},
    {"map.nodeHead", nullptr, sizeof(orv::detail::MapNode)},
    {},
};
