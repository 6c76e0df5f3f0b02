#include "object/ZMetaType.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZMetaType> : Declares<ZMetaType> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZMetaType*)),
        ORV_DESTRUCTOR(),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object,
                                       .flags = typePublic | typePolymorphic | typeCreated | typeRefStore};
};

} // namespace orv::glue
ORV_DECLARE(ZMetaType);
