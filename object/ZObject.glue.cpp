#include "object/ZObject.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZObject> : Declares<ZObject> {
    using BaseTypes = Bases<ZType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZObject*)),
        ORV_DESTRUCTOR(),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object,
                                       .flags = typePublic | typePolymorphic | typeCreated | typeRefStore};
};

} // namespace orv::glue
ORV_DECLARE(ZObject);
