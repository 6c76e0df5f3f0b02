#include "object/ZMethodRef.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZObject.h"
#include "object/ZType.h"
#include "object/glue.h"
#include "value/ZTypedPtr.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZMethodRef> : Declares<ZMethodRef> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZObject*, const ZSelector&, const ZSelector&), "unsafe"),
        ORV_CONSTRUCTOR((const ZType*, const ZSelector&, const ZSelector&), "unsafe"),
        ORV_CONSTRUCTOR((const ZMetaType*, const ZSelector&, const ZSelector&), "unsafe"),
        ORV_CONSTRUCTOR((const void*, const ZMetaType*, const ZSelector&, const ZSelector&), "unsafe"),
        ORV_CONSTRUCTOR((const ZMethod*, const void*, const ZMetaType*), "unsafe"),
        ORV_CONSTRUCTOR((const ZTypedPtr&, const ZMethod*), "unsafe"),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_CONSTRUCTOR((const ZMethodRef&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(int, compare, (const ZMethodRef&), const),
        ORV_METHOD(bool, isValid, (), const),
        ORV_METHOD(ZMethod*, getMethod, (), const),
        ORV_METHOD(void, setMethod, (const ZMethod*), , "unsafe"),
        ORV_METHOD(void, setInstance, (const void*), , "unsafe"),
        ORV_METHOD(void, set, (const ZMethod*, const void*, const ZMetaType*), , "unsafe"),
        ORV_METHOD(ZMetaType*, getType, (), const),
        ORV_METHOD(void, setType, (const ZMetaType*), , "unsafe"),
        ORV_METHOD(ZSelector, name, (), const),
        ORV_METHOD(ZSelector, selector, (), const),
        ORV_METHOD(ZSelector, options, (), const),
        ORV_METHOD(ZSelector, property, (), const),
        ORV_METHOD(ZVariant, invoke, (const ZArrayT<ZVariant>&), const),
        ORV_METHOD(ZVariant, invoke, (const ZVArray&), const),
        ORV_METHOD(ZVariant, invoke, (const ZVariant*, int), const, "unsafe"),
        ORV_METHOD(bool, detach, (), ),
        ORV_METHOD(bool, localize, (), ),
        ORV_METHOD(bool, add, (ZObject*, bool), const, "unsafe"),
        ORV_METHOD(bool, move, (ZObject*, bool), , "unsafe"),
        ORV_METHOD(bool, remove, (), , "unsafe"),
        ORV_METHOD(int, registerMethod, (), const, "unsafe"),
        ORV_METHOD(bool, registerMethod, (const ZSelector&), const, "unsafe"),
        ORV_METHOD(int, registryIndex, (), const),
        ORV_METHOD(bool, unregister, (), const, "unsafe"),
        ORV_STATIC(ZMethodRef, getNamed, (const ZSelector&)),
        ORV_STATIC(ZMethodRef, getRegistered, (int)),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZMethodRef);
