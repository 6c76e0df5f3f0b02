#include "core/ZSelectorMap.h"

#include "core/ZSelector.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZSelectorMap> : Declares<ZSelectorMap> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZSelectorMap&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, assign, (const ZSelectorMap&), ),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(uint, count, (), const),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(bool, contains, (const ZSelector&), const),
        ORV_METHOD(ZSelector, get, (const ZSelector&), const),
        ORV_METHOD(ZSelector, get, (int), const),
        ORV_METHOD(ZSelector, key, (int), const),
        ORV_METHOD(bool, set, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, append, (const ZSelectorMap&), ),
        ORV_METHOD(int, compare, (const ZSelectorMap&), const),
        ORV_METHOD(uint, hashKey, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZSelectorMap);
