#include "text/ZRange.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZRange> : Declares<ZRange> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int, int)),
        ORV_METHOD(int, start, (), const),
        ORV_METHOD(int, count, (), const),
        ORV_METHOD(void, setStart, (int), ),
        ORV_METHOD(void, setCount, (int), ),
        ORV_METHOD(void, set, (int, int), ),
        ORV_METHOD(bool, valid, (), const),
        ORV_METHOD(ZRange, join, (const ZRange&), const),
        ORV_METHOD(int, compare, (const ZRange&), const),
        ORV_METHOD(uint, hashKey, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZRange);
