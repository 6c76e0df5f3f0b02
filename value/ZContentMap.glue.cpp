#include "value/ZContentMap.h"

#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/glue.h"
#include "object/metaClass.h"
#include "value/ZNamedTypeArrayType.h"

namespace orv::glue {

template <> struct Table<ZContentMap> : Declares<ZContentMap> {
    using BaseTypes = Bases<ZNamedTypeArray>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZContentMap&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(int, compare, (const ZContentMap&, const ZSelector&), const),
    };
    static constexpr ClassInfo info = {
        .kind = Kind::Structure, .flags = typePublic | typeContainer, .meta = &MetaClassOf<ZNamedTypeArrayType>::row};
};

} // namespace orv::glue

ORV_DECLARE(ZContentMap);
