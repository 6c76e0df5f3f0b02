#include "value/ZNamedTypeArrayType.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZNamedTypeArrayType> : Declares<ZNamedTypeArrayType> {
    using BaseTypes = Bases<ZMetaType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZNamedTypeArrayType*)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(ZType*, copy, (), const, "creator"),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZNamedTypeArrayType);
