#include "object/ZType.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZType> : Declares<ZType> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZType*)),
        ORV_DESTRUCTOR(),
    };
    static constexpr ClassInfo info = {.kind = Kind::Dynamic,
                                       .flags = typePublic | typePolymorphic | typeCreated | typeRefStore};
};

} // namespace orv::glue
ORV_DECLARE(ZType);
