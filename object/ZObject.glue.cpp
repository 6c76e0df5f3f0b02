#include "object/ZObject.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "object/ZType.h"
#include "object/glue.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZObject> : Declares<ZObject> {
    using BaseTypes = Bases<ZType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZObject*)),
        ORV_DESTRUCTOR(),
        ORV_STATIC(ZObject*, create, (const ZSelector&), "creator"),
        ORV_STATIC(ZObject*, publishedObject, (const ZSelector&)),
        ORV_STATIC(ZObject*, propertyDelegate, (const ZSelector&)),
        ORV_STATIC(ZObject::DelegateType, scanDelegate, (const ZSelector&)),
        ORV_METHOD(ZObject*, getParent, (), const),
        ORV_METHOD(ZObject*, first, (), const),
        ORV_METHOD(ZObject*, last, (), const),
        ORV_METHOD(ZObject*, next, (), const),
        ORV_METHOD(ZObject*, previous, (), const),
        ORV_METHOD(bool, isObject, (), const),
        ORV_METHOD(void, deleting, (), , "unsafe"),
        ORV_METHOD(void, release, (), , "unsafe"),
        ORV_METHOD(ZType*, copy, (), const, "creator"),
        ORV_METHOD(ZSelector, typeName, (), const),
        ORV_METHOD(ZObject*, memberObject, (const ZSelector&), const),
        ORV_METHOD(bool, hasLocalMethod, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(bool, definesName, (const ZSelector&), const),
        ORV_METHOD(bool, implements, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(void, delegatePropertyChanged, (const ZSelector&), ),
        ORV_METHOD(void, cancelDiscarded, (), , "unsafe"),
        ORV_METHOD(void, releaseDiscarded, (), , "unsafe"),
        ORV_METHOD(bool, isDiscarded, (), const),
        ORV_METHOD(bool, markForDiscard, (), , "unsafe"),
        ORV_METHOD(bool, discard, (), , "unsafe"),
        ORV_METHOD(bool, revive, (), , "unsafe"),
        ORV_METHOD(bool, publishNamed, (), , "unsafe"),
        ORV_METHOD(bool, removeNamed, (), , "unsafe"),
        ORV_METHOD(bool, setPropertyDelegate, (bool), , "unsafe"),
        ORV_METHOD(ZObject*, deepCopy, (), const, "creator"),
        ORV_METHOD(bool, isMetaType, (), const),
        ORV_METHOD(void, setIsMetaType, (bool), , "unsafe"),
        ORV_METHOD(bool, isTypeLinked, (), const),
        ORV_METHOD(ZObject*, getTypeNext, (), const),
        ORV_METHOD(ZObject*, getTypePrev, (), const),
        ORV_METHOD(ZObject*, getFirst, (const ZMetaType*, const ZSelector&), const),
        ORV_METHOD(ZObject*, getFirst, (const ZMetaType*), const),
        ORV_METHOD(ZObject*, getFirst, (const ZSelector&), const),
        ORV_METHOD(ZObject*, getLast, (const ZMetaType*, const ZSelector&), const),
        ORV_METHOD(ZObject*, getLast, (const ZMetaType*), const),
        ORV_METHOD(ZObject*, getLast, (const ZSelector&), const),
        ORV_METHOD(ZObject*, getNext, (), const),
        ORV_METHOD(ZObject*, getNext, (const ZMetaType*, const ZSelector&), const),
        ORV_METHOD(ZObject*, getNext, (const ZMetaType*), const),
        ORV_METHOD(ZObject*, getNext, (const ZSelector&), const),
        ORV_METHOD(ZObject*, getPrev, (), const),
        ORV_METHOD(ZObject*, getPrev, (const ZMetaType*, const ZSelector&), const),
        ORV_METHOD(ZObject*, getPrev, (const ZMetaType*), const),
        ORV_METHOD(ZObject*, getPrev, (const ZSelector&), const),
        ORV_METHOD(bool, isDescendantOf, (const ZObject*), const),
        ORV_METHOD(bool, isParentOf, (const ZObject*), const),
        ORV_METHOD(ZObject*, sharedAncestor, (const ZObject*), const),
        ORV_METHOD(ZObject*, resolveObjectName, (const ZSelector&, ZSelector&), const),
        ORV_METHOD(ZObject*, resolveFieldName, (const ZSelector&, ZSelector&), const),
        ORV_METHOD(ZObject*, resolveFieldName, (const ZSelector&, ZSelector&, ZSelector&), const),
        ORV_METHOD(ZObject*, findObject, (const ZSelector&, bool), const),
        ORV_METHOD(ZObject*, findObject, (const ZSelector&, ZSelector&), const),
        ORV_METHOD(ZObject*, objectByProperty, (const ZSelector&, const ZVariant&, bool), const),
        ORV_METHOD(ZObject*, objectOfType, (const ZMetaType*, const ZSelector&), const),
        ORV_METHOD(int, countObjects, (), const),
        ORV_METHOD(void, linkParent, (ZObject*), , "unsafe"),
        ORV_METHOD(void, setParent, (ZObject*), , "unsafe"),
        ORV_METHOD(void, link, (ZObject*, ZObject*), , "unsafe"),
        ORV_METHOD(void, unlink, (), , "unsafe"),
        ORV_METHOD(ZSelector, getTypeName, (), const),
        ORV_METHOD(void, setTypeName, (const ZSelector&), , "unsafe"),
        ORV_METHOD(void, typeLink, (), , "unsafe"),
        ORV_METHOD(void, typeUnlink, (), , "unsafe"),
        ORV_METHOD(bool, hasMethods, (), const),
        ORV_METHOD(int, methodCount, (), const),
        ORV_METHOD(bool, getMethods, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, implements, (const ZSelector&), const),
        ORV_METHOD(bool, removeMethod, (const ZSelector&, const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, removeMethods, (), , "unsafe"),
        ORV_METHOD(bool, removeMethods, (const ZSelector&), , "unsafe"),
        ORV_METHOD(void, resetMethods, (), , "unsafe"),
        ORV_METHOD(bool, calcMultiMethods, (), const, "unsafe"),
        ORV_METHOD(void, resetInlineMethods, (), , "unsafe"),
        ORV_METHOD(void, resetInlineMethods, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, allowNameInvoke, (const ZSelector&), const),
        ORV_METHOD(ZVariant, invokeName, (const ZSelector&), ),
        ORV_METHOD(void, useDispatch, (), , "unsafe"),
        ORV_METHOD(void, cleanDispatch, (), , "unsafe"),
        ORV_METHOD(bool, hasDispatch, (), const),
        ORV_METHOD(bool, hasDispatch, (const ZSelector&), const),
        ORV_METHOD(bool, getMethodDispatch, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, addDispatch, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, addDispatch, (const ZSelector&, const ZSelector&, const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, addDispatch, (const ZSelector&, const ZMethodRef&), , "unsafe"),
        ORV_METHOD(bool, removeDispatch, (), , "unsafe"),
        ORV_METHOD(bool, removeDispatch, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, callDispatch, (const ZSelector&, const ZArrayT<ZVariant>&), ),
        ORV_METHOD(bool, callDispatch, (const ZSelector&), ),
        ORV_METHOD(bool, callDispatch, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, dispatchArgs, (const ZSelector&, const ZArrayT<ZVariant>&), ),
        ORV_METHOD(bool, getExtendTypes, (ZArrayT<ZMetaType*>&), const),
        ORV_METHOD(bool, addExtendType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, removeExtendType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, hasDelegate, (), const),
        ORV_METHOD(bool, hasDelegate, (const ZObject*), const),
        ORV_METHOD(bool, hasDelegate, (const ZSelector&), const),
        ORV_METHOD(bool, getAutoBind, (), const),
        ORV_METHOD(void, setAutoBind, (bool), ),
        ORV_METHOD(bool, addDelegate, (ZObject*, bool), , "unsafe"),
        ORV_METHOD(bool, removeDelegate, (ZObject*), , "unsafe"),
        ORV_METHOD(bool, removeDelegate, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZObject*, findDelegate, (const ZSelector&), const),
        ORV_METHOD(bool, detachDelegates, (), , "unsafe"),
        ORV_METHOD(void, resetPropertyDelegates, (), , "unsafe"),
        ORV_METHOD(bool, hasPropDelegate, (const ZSelector&), const),
        ORV_METHOD(ZVariant, getPropDelegate, (const ZSelector&), const),
        ORV_METHOD(bool, setPropDelegate, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, removePropDelegate, (const ZSelector&), ),
        ORV_METHOD(ZSelector, selector, (), const),
        ORV_METHOD(ZObject::DelegateType, delegateType, (), const),
        ORV_METHOD(ZObject::DelegateType, parentDelegate, (), const),
        ORV_METHOD(bool, mainQueuePosting, (), const),
        ORV_METHOD(bool, copyMembers, (), const),
        ORV_METHOD(bool, typeDelegate, (), const),
        ORV_METHOD(bool, globalNamed, (), const),
        ORV_ADAPTER(bool, setDelegateType, (const ZObject::DelegateType&), ,
                    [](Self& object, const ZObject::DelegateType& value) {
                        object.setDelegateType(value);
                        return true;
                    }),
        ORV_ADAPTER(bool, setParentDelegate, (const ZObject::DelegateType&), ,
                    [](Self& object, const ZObject::DelegateType& value) {
                        object.setParentDelegate(value);
                        return true;
                    }),
        ORV_ADAPTER(bool, setMainQueuePosting, (const bool&), ,
                    [](Self& object, const bool& value) {
                        object.setMainQueuePosting(value);
                        return true;
                    }),
        ORV_ADAPTER(bool, setCopyMembers, (const bool&), ,
                    [](Self& object, const bool& value) {
                        object.setCopyMembers(value);
                        return true;
                    }),
        ORV_ADAPTER(bool, setTypeDelegate, (const bool&), ,
                    [](Self& object, const bool& value) {
                        object.setTypeDelegate(value);
                        return true;
                    }),
        ORV_ADAPTER(bool, setGlobalNamed, (const bool&), ,
                    [](Self& object, const bool& value) {
                        object.setGlobalNamed(value);
                        return true;
                    }),
        ORV_ADAPTER(bool, setSelector, (const ZSelector&), ,
                    [](Self& object, const ZSelector& value) {
                        object.setSelector(value);
                        return true;
                    }),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(ZObject::DelegateType, delegateType, "store"),
        ORV_PROPERTY(ZObject::DelegateType, parentDelegate, "store"),
        ORV_PROPERTY(bool, mainQueuePosting, "store"),
        ORV_PROPERTY(bool, copyMembers, "store"),
        ORV_PROPERTY(bool, typeDelegate, "store"),
        ORV_PROPERTY(bool, globalNamed, "store"),
        ORV_PROPERTY(ZSelector, selector, "store"),
    };
    static constexpr EnumItemRow delegateTypeItems[] = {
        ORV_ITEM(DelegateType, None),     ORV_ITEM(DelegateType, Binder),    ORV_ITEM(DelegateType, Dispatch),
        ORV_ITEM(DelegateType, Priority), ORV_ITEM(DelegateType, Extension), ORV_ITEM(DelegateType, PriorEvent),
        ORV_ITEM(DelegateType, Event),    ORV_ITEM(DelegateType, Property),  ORV_ITEM(DelegateType, Resource),
        ORV_ITEM(DelegateType, Child)};
    static constexpr EnumItemRow signalItems[] = {ORV_ITEM(Signal, FirstSignal),    ORV_ITEM(Signal, DiscardSignal),
                                                  ORV_ITEM(Signal, ReviveSignal),   ORV_ITEM(Signal, LoadSignal),
                                                  ORV_ITEM(Signal, ExitLoopSignal), ORV_ITEM(Signal, PostSignal)};
    static constexpr EnumRow enums[] = {ORV_ENUM(DelegateType, delegateTypeItems), ORV_ENUM(Signal, signalItems)};
    static constexpr ClassInfo info = {.kind = Kind::Object,
                                       .flags = typePublic | typePolymorphic | typeCreated | typeRefStore};
};

} // namespace orv::glue

ORV_DECLARE(ZObject);
