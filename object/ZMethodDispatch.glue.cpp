#include "object/ZMethodDispatch.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZMethodDispatch> : Declares<ZMethodDispatch> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZSelector&)),
        ORV_CONSTRUCTOR((const ZSelector&, const ZSelector&, const ZSelector&)),
        ORV_CONSTRUCTOR((const ZSelector&, const ZMethodRef&)),
        ORV_CONSTRUCTOR((ZObject*, const ZSelector&, const ZSelector&, const ZSelector&), "unsafe"),
        ORV_CONSTRUCTOR((const ZMethodDispatch&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(const ZSelector&, dispatchName, (), const),
        ORV_METHOD(const ZSelector&, methodName, (), const),
        ORV_METHOD(const ZSelector&, qualifier, (), const),
        ORV_METHOD(ZMethodRef, reference, (), const),
        ORV_METHOD(bool, isBound, (), const),
        ORV_METHOD(void, reset, (), const),
        ORV_METHOD(ZMethodRef, getMethod, (const ZMetaType*), const),
        ORV_METHOD(ZMethodRef, getMethod, (const ZObject*), const),
        ORV_METHOD(ZMethodRef, getMethod, (const ZMetaType*, const ZArrayT<ZMetaType*>&), const),
        ORV_METHOD(ZMethodRef, getMethod, (const ZObject*, const ZArrayT<ZMetaType*>&), const),
        ORV_METHOD(bool, add, (ZObject*), const, "unsafe"),
        ORV_METHOD(int, compare, (const ZMethodDispatch&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZMethodDispatch);
