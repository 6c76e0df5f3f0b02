#include "core/ZSelectorPair.h"

#include "core/ZSelector.h"
#include "object/glue.h"
#include "text/ZString.h"

namespace orv::glue {

template <> struct Table<ZSelectorPair> : Declares<ZSelectorPair> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZSelector&, const ZSelector&)),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_METHOD(void, assign, (const ZSelectorPair&), ),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(int, compare, (const ZSelectorPair&), const),
        ORV_METHOD(uint, hashKey, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZSelectorPair);
