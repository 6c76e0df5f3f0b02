#include "object/ZProperty.h"

#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/glue.h"
#include "object/recordCallbacks.h"
#include "text/ZBlendPos.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZProperty> : Declares<ZProperty> {
    static constexpr MethodRow methods[] = {
        ORV_STATIC(ZProperty*, create, (), "creator"),
        ORV_STATIC(ZProperty*, create, (const ZProperty&), "creator"),
        ORV_STATIC(ZProperty*, create, (const ZVariant&), "creator"),
        ORV_STATIC(ZProperty*, create, (const ZSelector&, const ZVariant&, uint), "creator"),
        ORV_STATIC(ZProperty*, create, (const ZSelector&, ZMetaType*, ZMetaType*, ZMetaType*, uint), "creator unsafe"),
        ORV_STATIC(ZProperty*, create, (const ZSelector&, ZMetaType*, ZMetaType*, uint), "creator unsafe"),
        ORV_STATIC(ZProperty*, create, (const ZSelector&, ZMetaType*, uint), "creator unsafe"),
        ORV_STATIC(ZProperty*, create, (const ZProperty*, const ZProperty*, const ZBlendPos&), "creator"),
        ORV_METHOD(ZProperty*, copy, (), const, "creator"),
        ORV_METHOD(int, refcount, (), const),
        ORV_METHOD(void, assign, (const ZProperty&), , "unsafe"),

        ORV_METHOD(const ZSelector&, name, (), const),
        ORV_METHOD(void, setName, (const ZSelector&), , "unsafe"),
        ORV_METHOD(uint, flags, (), const),
        ORV_METHOD(void, setFlags, (uint), , "unsafe"),
        ORV_METHOD(bool, hasFlags, (uint), const),
        ORV_METHOD(const ZSelector&, options, (), const),
        ORV_METHOD(void, setOptions, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, hasOption, (const ZSelector&), const),
        ORV_METHOD(const ZSelector&, getUpdaters, (), const),
        ORV_METHOD(int, version, (), const),
        ORV_METHOD(void, setVersion, (int), , "unsafe"),
        ORV_METHOD(int, sandBoxLevel, (), const),
        ORV_METHOD(void, setSandBoxLevel, (int), , "unsafe"),
        ORV_METHOD(int, offset, (), const),
        ORV_METHOD(void, setOffset, (int), , "unsafe"),
        ORV_METHOD(ZMetaType*, getItemType, (), const),
        ORV_METHOD(void, setItemType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(ZMetaType*, getIndex, (), const),
        ORV_METHOD(void, setIndex, (ZMetaType*), , "unsafe"),
        ORV_METHOD(const ZVariant&, value, (), const),
        ORV_METHOD(void, setValue, (const ZVariant&), , "unsafe"),
        ORV_METHOD(void, resetType, (), , "unsafe"),
        ORV_METHOD(bool, setupContainer, (), , "unsafe"),
        ORV_METHOD(void, setupDynamic, (const ZVariant&, const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, detach, (), , "unsafe"),
        ORV_METHOD(int, compare, (const ZProperty&), const),
        ORV_METHOD(int, compare, (const ZSelector&), const),
        ORV_METHOD(void, blendFrom, (const ZProperty*, const ZProperty*, const ZBlendPos&), , "unsafe"),
        ORV_METHOD(void, blendValue, (const ZVariant&, const ZVariant&, const ZBlendPos&), , "unsafe"),

        ORV_METHOD(bool, dynamic, (), const),
        ORV_METHOD(bool, collection, (), const),
        ORV_METHOD(bool, isArray, (), const),
        ORV_METHOD(bool, readOnly, (), const),
        ORV_METHOD(bool, resolved, (), const),
        ORV_METHOD(bool, retained, (), const),
        ORV_METHOD(bool, retainedObject, (), const),
        ORV_METHOD(bool, storable, (), const),
        ORV_METHOD(bool, variable, (), const),
        ORV_METHOD(bool, isTraversed, (), const),

        ORV_STATIC(uint, scanFlags, (const ZSelector&)),
        ORV_STATIC(int, scanVersion, (const ZSelector&, char)),
        ORV_STATIC(int, scanSBLevel, (const ZSelector&)),
        ORV_STATIC(ZSelector, extractOptions, (const ZSelector&)),
        ORV_STATIC(ZSelector, extractUpdate, (const ZSelector&)),

        ORV_METHOD(ZSelector, getter, (bool, bool, bool), const),
        ORV_METHOD(ZSelector, setter, (bool), const),
        ORV_METHOD(ZSelector, counter, (), const),
        ORV_METHOD(ZSelector, byindex, (), const),
        ORV_METHOD(ZSelector, hasProp, (), const),
        ORV_METHOD(ZSelector, propKey, (), const),
        ORV_METHOD(ZSelector, propIndex, (), const),
        ORV_METHOD(ZSelector, findKey, (), const),
        ORV_METHOD(ZSelector, findIndex, (), const),
        ORV_METHOD(ZSelector, cleaner, (), const),
        ORV_METHOD(ZSelector, remover, (), const),
        ORV_METHOD(ZSelector, removeByIndex, (), const),
        ORV_METHOD(ZSelector, inserter, (), const),
        ORV_METHOD(ZSelector, adder, (), const),
        ORV_METHOD(ZString, getkey, (bool, bool), const),
        ORV_METHOD(int, countItems, (ZMetaType*, const void*), const, "unsafe"),
        ORV_METHOD(bool, setupMethods, (ZObject*, bool), , "unsafe"),
        ORV_METHOD(bool, beginUpdate, (), , "unsafe"),
        ORV_METHOD(void, endUpdate, (), , "unsafe"),
        ORV_METHOD(bool, isUpdating, (), const),
    };
    static constexpr EnumItemRow flagItems[] = {
        ORV_ITEM(Flags, Alias),     ORV_ITEM(Flags, Hidden),   ORV_ITEM(Flags, ReadOnly),   ORV_ITEM(Flags, Retain),
        ORV_ITEM(Flags, Copy),      ORV_ITEM(Flags, Dynamic),  ORV_ITEM(Flags, Optional),   ORV_ITEM(Flags, Store),
        ORV_ITEM(Flags, Lock),      ORV_ITEM(Flags, Bindable), ORV_ITEM(Flags, Linked),     ORV_ITEM(Flags, Mutable),
        ORV_ITEM(Flags, Delegate),  ORV_ITEM(Flags, Resolve),  ORV_ITEM(Flags, Collection), ORV_ITEM(Flags, Array),
        ORV_ITEM(Flags, Interface), ORV_ITEM(Flags, Value),    ORV_ITEM(Flags, NoBlend),    ORV_ITEM(Flags, NoMark),
        ORV_ITEM(Flags, NoUpdate),  ORV_ITEM(Flags, NoCopy),   ORV_ITEM(Flags, Virtual),    ORV_ITEM(Flags, Fixed),
        ORV_ITEM(Flags, Traverse),  ORV_ITEM(Flags, NoDetach), ORV_ITEM(Flags, DWrap),      ORV_ITEM(Flags, SWrap),
        ORV_ITEM(Flags, PassPtr),   ORV_ITEM(Flags, Compact),  ORV_ITEM(Flags, Variable),   ORV_ITEM(Flags, External),
        ORV_ITEM(Flags, Default)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Flags, flagItems)};

    static constexpr Callbacks callbacks = [] {
        Callbacks made = recordCallbacks<ZProperty>();
        made.detach = [](void* record) { return static_cast<ZProperty*>(record)->detach(); };
        return made;
    }();
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic | typeRetaining};
};

} // namespace orv::glue

ORV_DECLARE(ZProperty);
