#include "object/ZMethod.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/glue.h"
#include "object/recordCallbacks.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZMethod> : Declares<ZMethod> {
    static constexpr MethodRow methods[] = {
        ORV_STATIC(ZMethod*, create, (), "creator"),
        ORV_STATIC(ZMethod*, create, (const ZSelector&, const ZSelector&), "creator"),
        ORV_STATIC(ZMethod*, create, (const ZMethod&), "creator"),
        ORV_METHOD(ZMethod*, copy, (), const, "creator"),
        ORV_STATIC(int, refcount, (const ZMethod*)),
        ORV_METHOD(bool, assign, (const ZMethod&), , "unsafe"),
        ORV_METHOD(bool, copyFrom, (const ZMethod&), , "unsafe"),
        ORV_METHOD(void, reset, (), , "unsafe"),
        ORV_METHOD(void, clear, (), , "unsafe"),
        ORV_METHOD(bool, isValid, (), const),
        ORV_METHOD(int, compare, (const ZMethod&), const),
        ORV_METHOD(const ZSelector&, getSelector, (), const),
        ORV_METHOD(bool, setSelector, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZSelector, methodName, (), const),
        ORV_METHOD(const ZSelector&, getName, (), const),
        ORV_METHOD(void, setName, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZSelector, property, (), const),
        ORV_METHOD(const ZSelector&, getQualifier, (), const),
        ORV_METHOD(void, setQualifier, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, qualify, (const ZSelector&), const),
        ORV_METHOD(const ZSelector&, getOptions, (), const),
        ORV_METHOD(void, setOptions, (const ZSelector&), , "unsafe"),
        ORV_METHOD(void, addOptions, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, hasOption, (const ZSelector&), const),
        ORV_METHOD(uint, getFlags, (), const),
        ORV_METHOD(void, setFlags, (uint), , "unsafe"),
        ORV_METHOD(int, getSandBoxLevel, (), const),
        ORV_METHOD(void, setSandBoxLevel, (int), , "unsafe"),
        ORV_METHOD(ZSelector, getXName, (), const),
        ORV_METHOD(bool, setXName, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZMetaType*, getOwner, (), const),
        ORV_METHOD(ZMethod*, getBaseMethod, (), const),
        ORV_METHOD(ZVariant, getData, (), const),
        ORV_METHOD(bool, setData, (const ZVariant&), , "unsafe"),
        ORV_METHOD(bool, set, (const ZSelector&, const ZVariant&), , "unsafe"),
        ORV_METHOD(ZVariant, item, (const ZSelector&), const),
        ORV_METHOD(bool, remove, (const ZSelector&), , "unsafe"),
        ORV_METHOD(int, fastWords, (), const),
        ORV_METHOD(bool, hasFunc, (), const),
        ORV_METHOD(bool, hasStacked, (), const),
        ORV_METHOD(int, paramCount, (), const),
        ORV_METHOD(ZSelector, paramType, (int), const),
        ORV_METHOD(ZMetaType*, parType, (int, const ZMetaType*), const),
        ORV_METHOD(ZArrayT<ZMetaType*>, paramTypes, (const ZMetaType*), const),
        ORV_METHOD(ZMetaType*, resultType, (const ZMetaType*), const),
        ORV_METHOD(bool, hasReturn, (), const),
        ORV_METHOD(int, openArgument, (), const),
        ORV_METHOD(void, setOpenArgument, (int), , "unsafe"),
        ORV_METHOD(int, getStackSize, (const ZMetaType*), const),
        ORV_METHOD(bool, passVariant, (const ZMetaType*), const),
        ORV_METHOD(bool, collectArgs, (), const),
        ORV_METHOD(void, setCollectArgs, (bool), , "unsafe"),
        ORV_METHOD(bool, autoBind, (), const),
        ORV_METHOD(bool, synthetic, (), const),
        ORV_METHOD(bool, isConstructor, (const ZMetaType*), const),
        ORV_METHOD(bool, isDestructor, (const ZMetaType*), const),
        ORV_METHOD(ZVariant, invoke, (const void*, const ZMetaType*, const ZArrayT<ZVariant>&), const, "unsafe"),
        ORV_METHOD(bool, matchBinding, (const ZMethod*), const),
        ORV_METHOD(bool, matchBinding, (const ZMethod*, const ZMetaType*, const ZMetaType*), const),
        ORV_METHOD(bool, matchBindCall, (const ZMethod*), const),
        ORV_METHOD(bool, matchReturn, (const ZMethod*), const),
        ORV_METHOD(bool, matchMap, (const ZMethod*), const),
        ORV_METHOD(void, fetchBindingOptions, (const ZMethod*, bool&, bool&, bool&), const),
        ORV_STATIC(uint, scanFlags, (const ZSelector&)),
        ORV_STATIC(ZSelector, extractOptions, (const ZSelector&)),
    };

    static constexpr Callbacks callbacks = recordCallbacks<ZMethod>();
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic | typeRetaining};
};

} // namespace orv::glue

ORV_DECLARE(ZMethod);
