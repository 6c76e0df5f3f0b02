#include "value/ZVariant.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZVariant> : Declares<ZVariant> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_DESTRUCTOR(),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic, .indexLabel = 1};
};

} // namespace orv::glue
ORV_DECLARE(ZVariant);
