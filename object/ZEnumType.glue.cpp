#include "object/ZEnumType.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZEnumType> : Declares<ZEnumType> {
    using BaseTypes = Bases<ZMetaType>;
    static constexpr MethodRow methods[] = {
        ORV_METHOD(ZSelector, name, (int), const),
        ORV_METHOD(int, value, (const ZSelector&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZEnumType);
