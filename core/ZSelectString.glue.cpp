#include "core/ZSelectString.h"

#include "core/ZSelector.h"
#include "object/glue.h"
#include "text/ZString.h"
#include "value/ZVArray.h"
#include "value/ZVKeyMap.h"

namespace orv::glue {

template <> struct Table<ZSelectString> : Declares<ZSelectString> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZSelector&, const ZString&)),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_METHOD(void, assign, (const ZSelectString&), ),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(int, compare, (const ZSelectString&), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(ZString, toString, (), const),
        ORV_STATIC(ZVKeyMap, valueMap, (const ZVArray&)),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZSelectString);
