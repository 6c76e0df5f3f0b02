#include "value/ZTypeNameMapType.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZTypeNameMapType> : Declares<ZTypeNameMapType> {
    using BaseTypes = Bases<ZVSelectMapType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZTypeNameMapType*)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(ZType*, copy, (), const, "creator"),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZTypeNameMapType);
