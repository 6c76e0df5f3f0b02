#include "value/ZUnknownData.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZUnknownData> : Declares<ZUnknownData> {
    using BaseTypes = Bases<ZType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR((const ZUnknownData*)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(const ZSelector&, storedType, (), const),
        ORV_METHOD(bool, bigEndian, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Dynamic, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZUnknownData);
