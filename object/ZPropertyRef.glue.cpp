#include "object/ZPropertyRef.h"

#include "core/ZSelector.h"
#include "object/ZType.h"
#include "object/glue.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZPropertyRef> : Declares<ZPropertyRef> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZPropertyRef&)),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_CONSTRUCTOR((const ZProperty*, const ZType*), "unsafe"),
        ORV_CONSTRUCTOR((const ZType*, const ZSelector&), "unsafe"),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, assign, (const ZPropertyRef&), ),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(bool, isNull, (), const),
        ORV_METHOD(ZProperty*, property, (), const),
        ORV_METHOD(ZType*, owner, (), const),
        ORV_METHOD(ZSelector, name, (), const),
        ORV_METHOD(int, compare, (const ZPropertyRef&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZPropertyRef);
