#include "object/ZTypeCategory.h"

#include "core/ZArrayT.h"
#include "module/ZPackage.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZTypeCategory> : Declares<ZTypeCategory> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ZPackage*, const ZSelector&), "unsafe"),
        ORV_DESTRUCTOR(),
        ORV_METHOD(ZPackage*, package, (), const),
        ORV_METHOD(void, setPackage, (ZPackage*), , "unsafe"),
        ORV_METHOD(bool, addBaseType, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, addBaseType, (const ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, removeBaseType, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZArrayT<ZSelector>, getBaseTypes, (), const),
        ORV_METHOD(bool, getBaseTypes, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, setBaseTypes, (const ZArrayT<ZSelector>&), , "unsafe"),
        ORV_METHOD(bool, addCategory, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, addCategory, (const ZTypeCategory*), , "unsafe"),
        ORV_METHOD(bool, removeCategory, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZArrayT<ZSelector>, getCategories, (), const),
        ORV_METHOD(bool, getCategories, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, setCategories, (const ZArrayT<ZSelector>&), , "unsafe"),
        ORV_METHOD(bool, addAutoExtend, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, addAutoExtend, (const ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, removeAutoExtend, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZArrayT<ZSelector>, getAutoExtend, (), const),
        ORV_METHOD(bool, getAutoExtend, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, setAutoExtend, (const ZArrayT<ZSelector>&), , "unsafe"),
        ORV_METHOD(bool, canExtend, (const ZMetaType*), const),
        ORV_METHOD(bool, setupAutoExtend, (ZPackage*), , "unsafe"),
        ORV_METHOD(bool, createTypes, (), , "unsafe"),
        ORV_METHOD(bool, createMethods, (), , "unsafe"),
        ORV_METHOD(bool, createProperties, (), , "unsafe"),
        ORV_METHOD(bool, createDispatch, (), , "unsafe"),
        ORV_METHOD(bool, calcMultiMethods, (), const, "unsafe"),
        ORV_METHOD(bool, addType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(ZMetaType*, findType, (const ZSelector&), const),
        ORV_METHOD(bool, getPropertyTypes, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, getDispatchTypes, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, extendTypes, (ZMetaType*), const, "unsafe"),
        ORV_METHOD(bool, extendDispatch, (ZMetaType*), const, "unsafe"),
        ORV_METHOD(bool, setupCategory, (), , "unsafe"),
        ORV_METHOD(void, resetCategory, (), , "unsafe"),
        ORV_METHOD(bool, selectorGroupNames, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(ZSelectorMap, selectorGroup, (const ZSelector&), const),
        ORV_METHOD(bool, setSelectorGroup, (const ZSelector&, const ZSelectorMap&), , "unsafe"),
    };
    static constexpr EnumItemRow callBackItems[] = {
        ORV_ITEM(CallBack, Initialize),       ORV_ITEM(CallBack, CreateTypes),    ORV_ITEM(CallBack, CreateMethods),
        ORV_ITEM(CallBack, CreateProperties), ORV_ITEM(CallBack, CreateDispatch), ORV_ITEM(CallBack, CallBackCount)};
    static constexpr EnumRow enums[] = {ORV_ENUM(CallBack, callBackItems)};
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZTypeCategory);
