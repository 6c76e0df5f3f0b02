#include "text/ZStringPair.h"

#include "object/glue.h"
#include "text/ZString.h"

namespace orv::glue {

template <> struct Table<ZStringPair> : Declares<ZStringPair> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZString&, const ZString&)),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(int, compare, (const ZStringPair&), const),
        ORV_METHOD(uint, hashKey, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZStringPair);
