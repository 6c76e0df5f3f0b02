#pragma once

#include "module/ZPackage.h"
#include "object/ZMetaType.h"

#include <vector>

/// All types that the library registers, those nested in others too.
inline std::vector<ZMetaType*> declaredTypes() {
    std::vector<ZMetaType*> all;
    if (!ZPackage::root()) return all;
    for (ZMetaType* type : ZPackage::root()->getUsedTypes()) all.push_back(type);
    for (size_t i = 0; i < all.size(); ++i)
        for (const auto& nested : all[i]->getTypes()) all.push_back(nested.value());
    return all;
}
