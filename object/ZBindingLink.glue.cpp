#include "object/ZBindingLink.h"

#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/glue.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZBindingLink> : Declares<ZBindingLink> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZBindingLink&)),
        ORV_DESTRUCTOR(),
        ORV_ACCESSORS(ZSelector, source, Source),
        ORV_ACCESSORS(ZSelector, target, Target),
        ORV_VALUE_ACCESSORS(ZBindingLink::Direction, direction, Direction),
        ORV_METHOD(void, assign, (const ZBindingLink&), ),
        ORV_METHOD(int, compare, (const ZBindingLink&), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(bool, bind, (ZObject*, bool), const),
        ORV_METHOD(bool, bind, (ZObject*, ZObject*, bool), const),
        ORV_METHOD(bool, bind, (const ZVSelectMap&, const ZSelector&, bool), const),
        ORV_METHOD(bool, bind,
                   (ZObject*, ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&, bool),
                   const),
        ORV_STATIC(ZObject*, findObject, (ZObject*, const ZSelector&)),
        ORV_STATIC(ZObject*, findObject, (const ZVSelectMap&, const ZSelector&, const ZSelector&)),
        ORV_STATIC(void, normalize, (const ZSelector&, ZSelector&, ZSelector&, ZSelector&)),
        ORV_METHOD(void, swapDirection, (bool), ),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(ZSelector, source, "store"),
        ORV_PROPERTY(ZSelector, target, "store"),
        ORV_PROPERTY(ZBindingLink::Direction, direction, "store"),
    };
    static constexpr EnumItemRow directions[] = {ORV_ITEM(Direction, Forward), ORV_ITEM(Direction, Backward),
                                                 ORV_ITEM(Direction, Cross)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Direction, directions)};
    static constexpr ClassInfo info = {
        .kind = Kind::Structure, .flags = typePublic, .words = "fixed assign compare variant noblend"};
};

template <> struct Table<ZBindingItem> : Declares<ZBindingItem> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZBindingItem&)),
        ORV_DESTRUCTOR(),
        ORV_ACCESSORS(ZSelector, change, Change),
        ORV_ACCESSORS(ZSelector, source, Source),
        ORV_ACCESSORS(ZSelector, target, Target),
        ORV_VALUE_ACCESSORS(int, paramPos, ParamPos),
        ORV_ACCESSORS(ZVArray, param, Param),
        ORV_VALUE_ACCESSORS(bool, crossBind, CrossBind),
        ORV_METHOD(void, assign, (const ZBindingItem&), ),
        ORV_METHOD(int, compare, (const ZBindingItem&), const),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(bool, bindingLink, (), const),
        ORV_METHOD(bool, bind, (ZObject*, bool), const),
        ORV_METHOD(bool, bind, (ZObject*, ZObject*, bool), const),
        ORV_METHOD(bool, bind, (const ZVSelectMap&, const ZSelector&, bool), const),
        ORV_METHOD(bool, bind,
                   (ZObject*, ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&, bool),
                   const),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(ZSelector, change, "store"), ORV_PROPERTY(ZSelector, source, "store"),
        ORV_PROPERTY(ZSelector, target, "store"), ORV_PROPERTY(int, paramPos, "store"),
        ORV_PROPERTY(ZVArray, param, "store"),    ORV_PROPERTY(bool, crossBind, "store"),
    };
    static constexpr ClassInfo info = {
        .kind = Kind::Structure, .flags = typePublic, .words = "fixed assign compare variant noblend"};
};

template <> struct Table<ZBindingSet> : Declares<ZBindingSet> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZBindingSet&)),
        ORV_DESTRUCTOR(),
        ORV_ACCESSORS(ZSelector, rootName, RootName),
        ORV_ACCESSORS(ZVArray, binding, Binding),
        ORV_METHOD(bool, addItem, (const ZBindingItem&), ),
        ORV_METHOD(void, assign, (const ZBindingSet&), ),
        ORV_METHOD(int, compare, (const ZBindingSet&), const),
        ORV_METHOD(bool, bind, (ZObject*, bool), const),
        ORV_METHOD(bool, bind, (ZObject*, ZObject*, bool), const),
        ORV_METHOD(bool, bind, (const ZVSelectMap&, bool), const),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(ZSelector, rootName, "store"),
        ORV_PROPERTY(ZVArray, binding, "store"),
    };
    static constexpr ClassInfo info = {
        .kind = Kind::Structure, .flags = typePublic, .words = "fixed assign compare variant noblend"};
};

} // namespace orv::glue

ORV_DECLARE(ZBindingLink);
ORV_DECLARE(ZBindingItem);
ORV_DECLARE(ZBindingSet);
