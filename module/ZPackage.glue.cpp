#include "module/ZPackage.h"

#include "object/ZEnumType.h"
#include "object/ZTypeCategory.h"
#include "object/glue.h"

namespace orv::glue {

// A package is never copied.
template <> struct Table<ZPackage> : Declares<ZPackage> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_DESTRUCTOR(),
        ORV_STATIC(ZPackage*, root, ()),
        ORV_STATIC(ZPackage*, findPackage, (const ZSelector&)),
        ORV_METHOD(uint, getFlags, (), const),
        ORV_METHOD(void, setFlags, (uint), , "unsafe"),
        ORV_METHOD(bool, isPublic, (), const),
        ORV_METHOD(const ZSelector&, getOptions, (), const),
        ORV_METHOD(void, setOptions, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, hasOption, (const ZSelector&), const),
        ORV_METHOD(int, getSandBoxLevel, (), const),
        ORV_METHOD(void, setSandBoxLevel, (int), , "unsafe"),
        ORV_METHOD(ZModule*, getModule, (), const),
        ORV_METHOD(void, setModule, (ZModule*), , "unsafe"),
        ORV_METHOD(ZModule::LoadMode, getLoadMode, (), const),
        ORV_METHOD(bool, setTypeCount, (uint), , "unsafe"),
        ORV_METHOD(bool, setCategoryCount, (uint), , "unsafe"),
        ORV_METHOD(bool, setup, (), , "unsafe"),
        ORV_METHOD(void, setupImplicitMap, (), , "unsafe"),
        ORV_METHOD(void, resetBases, (), , "unsafe"),
        ORV_METHOD(void, unload, (), , "unsafe"),
        ORV_METHOD(bool, use, (ZPackage*), , "unsafe"),
        ORV_METHOD(bool, use, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, unuse, (ZPackage*), , "unsafe"),
        ORV_METHOD(bool, unuse, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, uses, (const ZPackage*), const),
        ORV_METHOD(bool, publish, (ZPackage*), , "unsafe"),
        ORV_METHOD(void, resetUsedTypes, (), const, "unsafe"),
        ORV_METHOD(bool, addUsedPackageTypes, (ZPackage*), , "unsafe"),
        ORV_METHOD(bool, linkType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(void, unlinkType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, addTypes, (const ZArrayT<ZMetaType*>&), , "unsafe"),
        ORV_METHOD(ZMetaType*, findType, (const ZSelector&), const, "unsafe"), // makes variants and instances
        ORV_METHOD(ZMetaType*, findExisting, (const ZSelector&), const),
        ORV_METHOD(ZMetaType*, findMetaType, (const ZSelector&), const),
        ORV_METHOD(ZMetaType*, findPackageType, (const ZSelector&), const),
        ORV_METHOD(ZEnumType*, findEnum, (const ZSelector&), const),
        ORV_METHOD(ZMetaType*, pluginType, (const ZSelector&), const),
        ORV_METHOD(ZArrayT<ZMetaType*>, getUsedTypes, (), const),
        ORV_METHOD(bool, addCategory, (ZTypeCategory*), , "unsafe"),
        ORV_METHOD(ZTypeCategory*, getCategory, (const ZSelector&), const),
        ORV_METHOD(ZTypeCategory*, findCategory, (const ZSelector&), const),
        ORV_METHOD(bool, removeCategory, (), , "unsafe"),
        ORV_METHOD(bool, removeCategory, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, removeCategory, (ZTypeCategory*), , "unsafe"),
        ORV_METHOD(void, resetCategory, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, autoExtend, (), , "unsafe"),
        ORV_METHOD(bool, selectorGroupNames, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(ZSelectorMap, selectorGroup, (const ZSelector&), const),
        ORV_METHOD(bool, setSelectorGroup, (const ZSelector&, const ZSelectorMap&), , "unsafe"),
        ORV_METHOD(ZSelector, getNamedSelector, (const ZSelector&, bool), const),
        ORV_METHOD(bool, collectSelectors, (ZSelectorMap&), const),
        ORV_METHOD(int, instanceCount, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZPackage);
