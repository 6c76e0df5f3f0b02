#include "value/ZTypeArray.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZDetachContext.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "text/ZBlendPos.h"
#include "text/ZString.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"
#include "value/containerRows.h"

namespace orv::glue {

template <> struct Table<ZTypeArray> : Declares<ZTypeArray> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((uint)),
        ORV_CONSTRUCTOR((uint, int16)),
        ORV_CONSTRUCTOR((const ZVArray&)),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_CONSTRUCTOR((const ZTypeArray*, const ZTypeArray*, const ZBlendPos&)),
        ORV_CONSTRUCTOR((const ZTypeArray&)),
        ORV_DESTRUCTOR(),
        ORV_TYPE_ITEM_ROWS(ZTypeArray),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic | typeContainer};
};

} // namespace orv::glue

ORV_DECLARE(ZTypeArray);
