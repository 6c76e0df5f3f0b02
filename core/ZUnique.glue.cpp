#include "core/ZUnique.h"

#include "object/glue.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZUnique> : Declares<ZUnique> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const int&)),
        ORV_CONSTRUCTOR((const ZUnique&)),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, assign, (const ZUnique&), ),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(void, reset, (), ),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(int, refcount, (), const),
        ORV_METHOD(int, compare, (const ZUnique&), const),
        ORV_METHOD(uint, hashKey, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZUnique);
