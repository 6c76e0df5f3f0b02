#include "object/ZBinding.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/ZProperty.h"
#include "object/glue.h"
#include "text/ZRegExp.h"

namespace orv::glue {

/// The table itself: its records are told by their places, and aren't values.
template <> struct Table<ZBinding> : Declares<ZBinding> {
    static constexpr MethodRow methods[] = {
        ORV_STATIC(int, bind,
                   (ZObject*, ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&)),
        ORV_STATIC(int, bindmethod,
                   (ZObject*, ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&, bool)),
        ORV_STATIC(int, bindtype, (ZObject*, ZObject*, ZMetaType*, ZMetaType*, const ZSelector&, const ZSelector&)),
        ORV_STATIC(int, bind, (ZObject*, ZObject*, ZMetaType*, ZMetaType*, ZMethod*, ZMethod*), "unsafe"),
        ORV_STATIC(int, bind, (ZObject*, ZObject*, const ZRegExp&, const ZRegExp&)),
        ORV_STATIC(bool, autobind, (ZObject*, ZObject*, bool)),
        ORV_STATIC(bool, unbind,
                   (ZObject*, ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&)),
        ORV_STATIC(bool, unbind, (ZObject*, ZObject*, ZMetaType*, ZMetaType*, ZMethod*, ZMethod*), "unsafe"),
        ORV_STATIC(bool, unbindmethod,
                   (ZObject*, ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&)),
        ORV_STATIC(bool, unbind, (ZObject*, ZObject*, const ZRegExp&, const ZRegExp&)),
        ORV_STATIC(bool, unbindprop, (ZObject*, ZObject*, const ZSelector&, const ZSelector&)),
        ORV_STATIC(bool, unbindtype, (ZObject*, ZObject*, ZMetaType*, ZMetaType*, const ZSelector&, const ZSelector&)),
        ORV_STATIC(bool, unbindsrc, (ZObject*, const ZSelector&, const ZSelector&)),
        ORV_STATIC(bool, unbinddst, (ZObject*, const ZSelector&, const ZSelector&)),
        ORV_STATIC(bool, unbindLabeled, (ZObject*, ZObject*, const ZSelector&)),
        ORV_STATIC(bool, unbindLabeled, (ZObject*, const ZSelector&)),
        ORV_STATIC(bool, remove, (int, bool)),
        ORV_STATIC(bool, remove, (const ZArrayT<int>&)),
        ORV_STATIC(void, clear, (), "unsafe"),
        ORV_STATIC(void, removeObject, (ZObject*), "unsafe"),
        ORV_STATIC(void, removeType, (ZMetaType*), "unsafe"),
        ORV_STATIC(void, removeMethod, (ZMethod*), "unsafe"),
        ORV_STATIC(void, resetObject, (ZObject*, const ZSelector&), "unsafe"),
        ORV_STATIC(void, resetType, (ZMetaType*, const ZSelector&), "unsafe"),
        ORV_STATIC(int, find, (const ZObject*, const ZObject*, const ZMethod*, const ZMethod*)),
        ORV_STATIC(
            int, find,
            (const ZObject*, const ZObject*, const ZMetaType*, const ZMetaType*, const ZMethod*, const ZMethod*)),
        ORV_STATIC(
            int, find,
            (const ZObject*, const ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&)),
        ORV_STATIC(int, first, (const ZObject*, const ZMethod*)),
        ORV_STATIC(bool, bindings, (const ZObject*, ZArrayT<int>&)),
        ORV_STATIC(bool, bindings, (const ZObject*, const ZMethod*, ZArrayT<int>&)),
        ORV_STATIC(bool, bindings, (const ZObject*, const ZObject*, ZArrayT<int>&)),
        ORV_STATIC(bool, bindings, (const ZMethod*, ZArrayT<int>&)),
        ORV_STATIC(bool, bindingsTo, (const ZObject*, ZArrayT<int>&)),
        ORV_STATIC(int, getPriority, (int)),
        ORV_STATIC(bool, setPriority, (int, int)),
        ORV_STATIC(ZSelector, bindingLabel, (int)),
        ORV_STATIC(bool, setBindingLabel, (int, const ZSelector&)),
        ORV_STATIC(bool, enable, (int, bool)),
        ORV_STATIC(bool, countReference, (int, bool)),
        ORV_STATIC(bool, setParams, (int, int, const ZArrayT<ZVariant>&)),
        ORV_STATIC(bool, setParam, (int, int, const ZVariant&)),
        ORV_STATIC(bool, validate, (const ZObject*, const ZMethod*)),
    };
    static constexpr EnumItemRow priorities[] = {ORV_ITEM(Priority, Low), ORV_ITEM(Priority, Normal),
                                                 ORV_ITEM(Priority, High)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Priority, priorities)};
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZBinding);
