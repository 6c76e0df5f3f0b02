#include "object/ZTypeCategory.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZTypeCategory> : Declares<ZTypeCategory> {
    using BaseTypes = Bases<ZObject>;
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZTypeCategory);
