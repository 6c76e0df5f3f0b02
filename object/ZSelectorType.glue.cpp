#include "object/ZSelectorType.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZSelectorType> : Declares<ZSelectorType> {
    using BaseTypes = Bases<ZMetaType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZSelectorType*)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(ZType*, copy, (), const, "creator"),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZSelectorType);
