#include "object/ZObject.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "core/ZUnique.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZMethodRef.h"
#include "object/ZObjectData.h"
#include "object/glue.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

#include <iterator>

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
        ORV_STATIC(void, closeNamed, (), "unsafe"),
        ORV_STATIC(int, internalSizeOfType, (bool)),
        ORV_STATIC(void, resourceChanged, (const ZSelector&)),
        // Signals: they do nothing, for others to be bound to.
        ORV_ADAPTER(
            void, discarded, (), , [](Self&) {}, "bind"),
        ORV_ADAPTER(
            void, revived, (), , [](Self&) {}, "bind"),
        ORV_ADAPTER(
            void, loaded, (), , [](Self&) {}, "bind"),
        ORV_ADAPTER(
            void, loopExited, (), , [](Self&) {}, "bind"),
        ORV_ADAPTER(
            void, eventPosted, (), , [](Self&) {}, "bind"),
        ORV_METHOD(bool, log_verify, (), const),
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
        ORV_METHOD(bool, hasBindings, (), const),
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
        ORV_METHOD(ZMethod*, methodBySelector, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(bool, setMethod, (ZMethod*, bool), , "unsafe"),
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
        ORV_METHOD(bool, loadDelegate, (const ZSelector&, const ZSelector&), , "unsafe"),
        ORV_METHOD(ZObject*, findDelegate, (const ZSelector&), const),
        ORV_METHOD(bool, detachDelegates, (), , "unsafe"),
        ORV_METHOD(int, findBinding,
                   (const ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&), const),
        ORV_METHOD(int, bind, (ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, xbind, (ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, xunbind, (ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(int, bindArg, (ZObject*, const ZSelector&, const ZSelector&, const ZArrayT<ZVariant>&, int), ),
        ORV_METHOD(int, bindService, (const ZSelector&, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, autobind, (ZObject*, bool), ),
        ORV_METHOD(bool, unbind, (ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, unbindsrc, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, unbinddst, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, unbindLabeled, (const ZSelector&), ),
        ORV_METHOD(bool, unbindLabeled, (ZObject*, const ZSelector&), ),
        ORV_METHOD(bool, unbindService, (const ZSelector&, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(int, lbind, (const ZSelector&, ZObject*, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, lxbind, (const ZSelector&, ZObject*, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, bindings, (ZArrayT<int>&), const),
        ORV_METHOD(bool, bindings, (const ZObject*, ZArrayT<int>&), const),
        ORV_METHOD(int, bindType, (ZMetaType*, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, unbindType, (ZMetaType*, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(ZObject*, caller, (), const),
        ORV_METHOD(bool, callerReturn, (const ZVariant&), ),
        ORV_METHOD(ZMetaType*, callerRetType, (), const),
        ORV_METHOD(bool, callPropertyBindings, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, invokePropertyBindings, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(void, resetPropertyDelegates, (), , "unsafe"),
        ORV_METHOD(bool, hasPropDelegate, (const ZSelector&), const),
        ORV_METHOD(ZVariant, getPropDelegate, (const ZSelector&), const),
        ORV_METHOD(bool, setPropDelegate, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, removePropDelegate, (const ZSelector&), ),
        ORV_METHOD(void, notifyResource, (const ZSelector&), ),
        ORV_METHOD(bool, setStringRes, (const ZSelector&), ),
        ORV_METHOD(bool, addWatchdog, (const ZSelector&, real), ),
        ORV_METHOD(bool, removeWatchdog, (const ZSelector&), ),
        ORV_METHOD(void, removeFromEvents, (), ),
        ORV_METHOD(bool, forwardCurrentEvent, (bool), ),
        ORV_METHOD(bool, runLoop, (bool), ),
        ORV_METHOD(void, exitLoop, (), ),
        ORV_METHOD(ZUnique, postMethod, (const ZMethodRef&), ),
        ORV_METHOD(bool, postMethod, (const ZUnique&, const ZMethodRef&), ),
        ORV_METHOD(ZUnique, timedMethod, (const ZMethodRef&, real), ),
        ORV_METHOD(bool, timedMethod, (const ZUnique&, const ZMethodRef&, real), ),
        ORV_METHOD(ZUnique, postedMethodId, (const ZSelector&), const),
        ORV_METHOD(bool, hasPostMethod, (const ZUnique&), const),
        ORV_METHOD(bool, hasTimedMethod, (const ZUnique&), const),
        ORV_METHOD(bool, isTimedPost, (const ZSelector&), const),
        ORV_METHOD(bool, hasMethodPost, (const ZSelector&), const),
        ORV_METHOD(int, startTimer, (real, bool), ),
        ORV_METHOD(int, startTimer, (const ZMethodRef&, real), ),
        ORV_METHOD(bool, stopTimer, (int), ),
        ORV_METHOD(bool, removePostMethod, (const ZUnique&), ),
        ORV_METHOD(bool, removeTimedMethod, (const ZUnique&), ),
        ORV_METHOD(bool, setPostedMethodId, (const ZSelector&, const ZUnique&), ),
        ORV_METHOD(bool, removeMethodPost, (const ZSelector&), ),
        ORV_METHOD(bool, addMethodPost, (const ZSelector&, const ZMethodRef&), ),
        ORV_METHOD(bool, addMethodPost, (const ZSelector&, const ZMethodRef&, real), ),
        ORV_METHOD(bool, addMethodPost, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, addMethodPost, (const ZSelector&, const ZSelector&, real), ),
        ORV_METHOD(bool, addMethodPost, (const ZSelector&), ),
        ORV_METHOD(bool, addMethodPost, (const ZSelector&, real), ),
        ORV_METHOD(ZUnique, namedMethodPostId, (const ZSelector&), const),
        ORV_METHOD(bool, setNamedMethodPostId, (const ZSelector&, const ZUnique&), ),
        ORV_METHOD(ZMetaType*, loadTypeFromName, (const ZSelector&), const),
        ORV_METHOD(ZObject*, loadObject, (ZMetaType*, const ZSelector&, const ZSelector&), ),
        ORV_METHOD(ZObject*, createObject, (const ZSelector&, const ZSelector&, const ZVArray&), ),
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
    static constexpr FixedRow fixed[] = {
        ORV_FIXED(DeletingMethod, void, deleting, (), ),
        ORV_FIXED(DetachMethod, bool, detach, (), ),
        ORV_FIXED(IsDetachedMethod, bool, isDetached, (), const),
        ORV_FIXED(CopyMethod, ZType*, copy, (), const),
        ORV_FIXED(AssignMethod, bool, assign, (const ZType*), ),
        ORV_FIXED(CompareMethod, int, compare, (const ZType*), const),
        ORV_FIXED(HashKeyMethod, uint, hashKey, (), const),
        ORV_FIXED(DeepCopyMethod, ZObject*, deepCopy, (), const),
        ORV_FIXED(SelectorMethod, ZSelector, selector, (), const),
        ORV_FIXED(MemberObjectMethod, ZObject*, memberObject, (const ZSelector&), const),
        ORV_FIXED(FindObjectMethod, ZObject*, findObject, (const ZSelector&, bool), const),
        ORV_FIXED(DiscardMethod, bool, discard, (), ),
        ORV_FIXED(ReviveMethod, bool, revive, (), ),
        ORV_FIXED(ReleaseDiscardedMethod, void, releaseDiscarded, (), ),
        ORV_FIXED(SetParentMethod, void, setParent, (ZObject*), ),
        ORV_FIXED(DiscardSignal, void, discarded, (), ),
        ORV_FIXED(ReviveSignal, void, revived, (), ),
        ORV_FIXED(LoadSignal, void, loaded, (), ),
        ORV_FIXED(ExitLoopSignal, void, loopExited, (), ),
        ORV_FIXED(PostSignal, void, eventPosted, (), ),
        ORV_FIXED(InvokeNameMethod, ZVariant, invokeName, (const ZSelector&), ),
        ORV_FIXED(AllowNameInvokeMethod, bool, allowNameInvoke, (const ZSelector&), const),
        ORV_FIXED(CallDispatchMethod, bool, callDispatch, (const ZSelector&, const ZArrayT<ZVariant>&), ),
        ORV_FIXED(DispatchArgsMethod, bool, dispatchArgs, (const ZSelector&, const ZArrayT<ZVariant>&), ),
        ORV_FIXED(AddDelegateMethod, bool, addDelegate, (ZObject*, bool), ),
        ORV_FIXED(RemoveDelegateMethod, bool, removeDelegate, (ZObject*), ),
        ORV_FIXED(HasPropDelegateMethod, bool, hasPropDelegate, (const ZSelector&), const),
        ORV_FIXED(GetPropDelegateMethod, ZVariant, getPropDelegate, (const ZSelector&), const),
        ORV_FIXED(SetPropDelegateMethod, bool, setPropDelegate, (const ZSelector&, const ZVariant&), ),
        ORV_FIXED(RemovePropDelegateMethod, bool, removePropDelegate, (const ZSelector&), ),
        ORV_FIXED(GetPropertyMethod, ZVariant, getProperty, (const ZSelector&), const),
        ORV_FIXED(SetPropertyMethod, bool, setProperty, (const ZSelector&, const ZVariant&), ),
        ORV_FIXED(HasPropertyMethod, bool, hasProperty, (const ZSelector&), const),
        ORV_FIXED(BlendFromMethod, bool, blendFrom, (const ZType*, const ZType*, const ZBlendPos&), ),
        ORV_FIXED(SetIdentityMethod, bool, setIdentity, (), ),
        ORV_FIXED(ReplacePropertyNameMethod, ZSelector, replacePropertyName, (const ZSelector&), const),
        ORV_FIXED(DelegatePropertyChangedMethod, void, delegatePropertyChanged, (const ZSelector&), ),
        ORV_FIXED(NotifyResourceMethod, void, notifyResource, (const ZSelector&), ),
        ORV_FIXED(ExitLoopMethod, void, exitLoop, (), ),
        ORV_FIXED(RunLoopMethod, bool, runLoop, (bool), ),
        ORV_FIXED(CreateObjectMethod, ZObject*, createObject, (const ZSelector&, const ZSelector&, const ZVArray&), ),
        ORV_FIXED(LoadTypeFromNameMethod, ZMetaType*, loadTypeFromName, (const ZSelector&), const),
    };
    static_assert(std::size(fixed) == ZObject::FixedMethodCount);
    static constexpr SelectorPairRow delegateWords[] = {
        {"binder", "Binder"}, {"dispatch", "Dispatch"}, {"priority", "Priority"}, {"extension", "Extension"},
        {"event", "Event"},   {"property", "Property"}, {"resource", "Resource"}, {"child", "Child"}};
    static constexpr GroupRow groups[] = {ORV_GROUP("delegate", delegateWords)};
    static constexpr EnumRow enums[] = {ORV_ENUM(DelegateType, delegateTypeItems), ORV_ENUM(Signal, signalItems)};
    static constexpr ClassInfo info = {.kind = Kind::Object,
                                       .flags = typePublic | typePolymorphic | typeCreated | typeRefStore,
                                       .internalSize = internalRoom(sizeof(ObjectData)),
                                       .dynamicInternal = true};
};

} // namespace orv::glue

ORV_DECLARE(ZObject);
