#include "module/ZPackage.h"

#include "object/glue.h"

namespace orv::glue {

// A package is made by its module and never copied.
template <> struct Table<ZPackage> : Declares<ZPackage> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_METHOD(uint, getFlags, (), const),
        ORV_METHOD(bool, isPublic, (), const),
        ORV_METHOD(const ZSelector&, getOptions, (), const),
        ORV_METHOD(bool, hasOption, (const ZSelector&), const),
        ORV_METHOD(int, getSandBoxLevel, (), const),
        ORV_METHOD(bool, uses, (const ZPackage*), const),
        ORV_METHOD(ZMetaType*, findType, (const ZSelector&), const),
        ORV_METHOD(ZMetaType*, findExisting, (const ZSelector&), const),
        ORV_METHOD(int, instanceCount, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZPackage);
