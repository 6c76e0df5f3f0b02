#include "value/ZTypeNameMap.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/glue.h"
#include "object/metaClass.h"
#include "text/ZBlendPos.h"
#include "value/ZTypeNameMapType.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZTypeNameMap> : Declares<ZTypeNameMap> {
    using BaseTypes = Bases<ZVSelectMap>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((uint)),
        ORV_CONSTRUCTOR((uint, int16, uint)),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_CONSTRUCTOR((const ZTypeNameMap*, const ZTypeNameMap*, const ZBlendPos&)),
        ORV_CONSTRUCTOR((const ZTypeNameMap&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(ZType*, get, (const ZSelector&), const),
        ORV_METHOD(ZType*, item, (int), const),
        ORV_METHOD(bool, set, (const ZSelector&, const ZType*), ),
        ORV_METHOD(ZSelector, getKey, (const ZType*), const),
        ORV_METHOD(int, findPointer, (const ZType*), const),
        ORV_METHOD(void, clearAll, (), ),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure,
                                       .flags = typePublic | typeContainer,
                                       .indexLabel = 4,
                                       .meta = &MetaClassOf<ZTypeNameMapType>::row};
};

} // namespace orv::glue

ORV_DECLARE(ZTypeNameMap);
