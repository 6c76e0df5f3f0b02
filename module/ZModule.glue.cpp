#include "module/ZModule.h"

#include "module/ZPackage.h"
#include "object/glue.h"

namespace orv::glue {

// Modules come with their code and are never copied.
template <> struct Table<ZModule> : Declares<ZModule> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_DESTRUCTOR(),
        ORV_STATIC(ZModule*, findModule, (const ZSelector&)),
        ORV_STATIC(ZModule*, findModule, (const ZString&)),
        ORV_STATIC(void, clearModules, (const ZSelector&), "unsafe"),
        ORV_METHOD(ZModule::LoadMode, getLoadMode, (), const),
        ORV_METHOD(bool, setLoadMode, (ZModule::LoadMode), , "unsafe"),
        ORV_METHOD(const ZString&, getName, (), const),
        ORV_METHOD(bool, setName, (const ZString&), , "unsafe"),
        ORV_METHOD(bool, appendModule, (), , "unsafe"),
        ORV_METHOD(bool, isNativeModule, (), const),
        ORV_METHOD(bool, setNativeModule, (bool), , "unsafe"),
        ORV_METHOD(ZPackage*, openPackage, (const ZSelector&), , "creator unsafe"),
        ORV_METHOD(bool, loadPlugins, (), , "unsafe"),
        ORV_METHOD(void, packageClosed, (ZPackage*), , "unsafe"),
        ORV_METHOD(bool, loadLibrary, (), , "unsafe"),
        ORV_METHOD(int, getPackageCount, (), const),
    };
    static constexpr EnumItemRow modes[] = {ORV_ITEM(LoadMode, LoadInvalid), ORV_ITEM(LoadMode, LoadApplication),
                                            ORV_ITEM(LoadMode, LoadAlways), ORV_ITEM(LoadMode, LoadIfNeed),
                                            ORV_ITEM(LoadMode, LoadOnCall)};
    static constexpr EnumRow enums[] = {ORV_ENUM(LoadMode, modes)};
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZModule);
