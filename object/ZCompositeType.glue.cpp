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
        ORV_METHOD(const ZVSelectMap&, member, (), const),
        ORV_METHOD(ZMetaType*, member, (const ZSelector&), const),
        ORV_METHOD(ZMetaType*, memberByIndex, (int), const),
        ORV_METHOD(int, countMember, (), const),
        ORV_METHOD(bool, hasMember, (const ZMetaType*), const),
        ORV_METHOD(ZSelector, memberKey, (int), const),
        ORV_METHOD(int, memberIndex, (const ZSelector&), const),
        ORV_METHOD(ZSelector, findMemberKey, (const ZMetaType*), const),
        ORV_METHOD(int, findMemberIndex, (const ZMetaType*), const),
        ORV_METHOD(bool, setMember, (const ZVSelectMap&), , "unsafe"),
        ORV_METHOD(bool, setMember, (const ZSelector&, const ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, clearMember, (), , "unsafe"),
        ORV_METHOD(bool, removeMember, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, removeMemberByIndex, (int), , "unsafe"),
        ORV_METHOD(bool, resetMembers, (), , "unsafe"),
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
