#include "core/ZAtomicInt.h"

#include "object/glue.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZAtomicInt> : Declares<ZAtomicInt> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int)),
        ORV_CONSTRUCTOR((const ZAtomicInt&)),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_METHOD(int, get, (), const),
        ORV_METHOD(int, add, (int), ),
        ORV_METHOD(int, compare, (const ZAtomicInt&), const),
        ORV_METHOD(uint, hashKey, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZAtomicInt);
