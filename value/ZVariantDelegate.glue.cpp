#include "value/ZVariantDelegate.h"

#include "object/glue.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZVariantDelegate> : Declares<ZVariantDelegate> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZVariantDelegate*)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(bool, hasPropDelegate, (const ZSelector&), const),
        ORV_METHOD(ZVariant, getPropDelegate, (const ZSelector&), const),
        ORV_METHOD(bool, setPropDelegate, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, removePropDelegate, (const ZSelector&), ),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic | typeCreated};
};

} // namespace orv::glue

ORV_DECLARE(ZVariantDelegate);
