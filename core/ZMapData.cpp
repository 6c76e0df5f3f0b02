#include "core/ZMapData.h"

#include "core/debug.h"

#include <cstring>

namespace orv::detail {

bool MapBase::take(const MapNode& node) {
    if (!append(1, false)) return false;
    const uint index = count() - 1;
    ZCompactRBItem* place = itemStart(index);
    std::memcpy(static_cast<void*>(place), &node, itemSize());
    *place = ZCompactRBItem(); // the node may come from another map, with its links
    addNode(int(index));
    return true;
}

void mapIndexFailed(const char* file, int line) { orv_assertw("zhashmapt", "Array index out of bounds", file, line); }

} // namespace orv::detail
