#include "text/ZInteger.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZInteger> : Declares<ZInteger> {
    static constexpr MethodRow methods[] = {
        ORV_STATIC(int, gcd, (int, int)),
        ORV_STATIC(int, lcm, (int, int)),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZInteger);
