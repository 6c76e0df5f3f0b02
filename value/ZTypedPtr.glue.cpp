#include "value/ZTypedPtr.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZTypedPtr> : Declares<ZTypedPtr> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZTypedPtr&)),
        ORV_DESTRUCTOR(),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue
ORV_DECLARE(ZTypedPtr);
