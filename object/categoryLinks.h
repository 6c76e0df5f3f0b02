#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/forward.h"

namespace orv {

/// A method that a type has from a category.
struct CategoryMethod {
    using ZRelocatable = void;

    ZSelector selector, qualifier;
    const ZMethod* method = nullptr; ///< to be compared only

    int compare(const CategoryMethod& other) const { return selector.compare(other.selector); }
};

/// A category that extends a type, and what the type has from it.
struct CategoryLink {
    using ZRelocatable = void;

    ZSelector name;
    ZTypeCategory* category = nullptr; ///< one reference, which who drops the link gives up
    ZArrayT<CategoryMethod> methods;
    ZArrayT<ZSelector> properties, types, bases;

    int compare(const CategoryLink& other) const { return name.compare(other.name); }
};

/// While a type's table is built, under its change lock: what its categories bring and it doesn't declare itself.
bool joinCategoryMethods(ZMetaType* type);
bool joinCategoryProperties(ZMetaType* type);

} // namespace orv
