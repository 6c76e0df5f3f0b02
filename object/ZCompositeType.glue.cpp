#include "object/ZCompositeType.h"

#include "module/ZPackage.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZCompositeType> : Declares<ZCompositeType> {
    using BaseTypes = Bases<ZMetaType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ZPackage*, const ZSelector&), "unsafe"),
        ORV_CONSTRUCTOR((const ZCompositeType*)),
        ORV_DESTRUCTOR(),
        ORV_MAP_ACCESSORS(ZVSelectMap, ZSelector, ZMetaType*, const ZMetaType*, member, Member),
        ORV_METHOD(bool, resetMembers, (), ),
        ORV_METHOD(bool, canCopyType, (), const),
        ORV_METHOD(ZType*, copy, (), const, "creator"),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(ZVSelectMap, member, "retain .resetMembers").items<ZMetaType*>().indexed<ZSelector>(),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZCompositeType);
