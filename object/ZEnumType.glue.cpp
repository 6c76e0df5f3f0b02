#include "object/ZEnumType.h"

#include "core/ZArrayT.h"
#include "module/ZPackage.h"
#include "object/glue.h"
#include "text/ZString.h"

namespace orv::glue {

template <> struct Table<ZEnumType> : Declares<ZEnumType> {
    using BaseTypes = Bases<ZMetaType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ZPackage*, const ZSelector&), "unsafe"),
        ORV_CONSTRUCTOR((ZPackage*, const ZSelector&, const ZArrayT<ZEnumItem>&), "unsafe"),
        ORV_CONSTRUCTOR((const ZEnumType*)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(const ZEnum&, data, (), const),
        ORV_METHOD(bool, setData, (const ZEnum&), , "unsafe"),
        ORV_METHOD(bool, add, (const ZArrayT<ZEnumItem>&), , "unsafe"),
        ORV_METHOD(bool, add, (const ZSelector&, int), , "unsafe"),
        ORV_METHOD(bool, remove, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, remove, (int), , "unsafe"),
        ORV_METHOD(bool, remove, (const ZArrayT<ZSelector>&), , "unsafe"),
        ORV_METHOD(bool, remove, (const ZEnum&), , "unsafe"),
        ORV_METHOD(ZSelector, name, (int), const),
        ORV_METHOD(bool, names, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(int, value, (const ZSelector&), const),
        ORV_METHOD(bool, value, (const ZSelector&, int*), const, "unsafe"),
        ORV_METHOD(bool, values, (ZArrayT<int>&), const),
        ORV_METHOD(int, resolve, (const ZString&), const),
        ORV_METHOD(bool, isBitFlags, (), const),
        ORV_METHOD(ZType*, copy, (), const, "creator"),
        ORV_METHOD(int, compare, (const ZType*), const),
        ORV_METHOD(bool, detach, (), ),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZEnumType);
