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

struct MetaTypeData;

/// The categories of a type, each retained, while a table of the type is built: what they bring is told to the type
/// when that table is published.
class CategoryCopies {
public:
    CategoryCopies() = default;
    ~CategoryCopies();
    CategoryCopies(const CategoryCopies&) = delete;

    /// What `of` has of categories; false without memory.
    bool take(const MetaTypeData& of);
    /// Under the type's change lock: what a member says of each category that still extends the type.
    template <class T> void keep(MetaTypeData& of, T CategoryLink::*what) const;

    ZArrayT<CategoryLink> links;
};

/// To the table that the running thread builds: what the type's categories bring and it doesn't declare itself.
bool joinCategoryMethods(ZMetaType* type, CategoryCopies& categories);
bool joinCategoryProperties(ZMetaType* type, CategoryCopies& categories);

} // namespace orv
