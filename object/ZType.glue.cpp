#include "object/ZType.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "module/ZPackage.h"
#include "object/ZDetachContext.h"
#include "object/ZEnumType.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZProperty.h"
#include "object/glue.h"
#include "text/ZBlendPos.h"
#include "text/ZFileName.h"
#include "value/ZTypedPtr.h"
#include "value/ZVArray.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZType> : Declares<ZType> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZType*)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, deleting, (), , "unsafe"),
        ORV_METHOD(bool, detach, (), ),
        ORV_METHOD(bool, deepDetachValue, (ZDetachContext*), , "unsafe"),
        ORV_METHOD(bool, isDetached, (), const),
        ORV_METHOD(bool, copyDynamicPropertiesFrom, (const ZType*), ),
        ORV_METHOD(bool, assign, (const ZType*), ),
        ORV_METHOD(int, compare, (const ZType*), const),
        ORV_METHOD(int, compareContent, (const ZType*), const),
        ORV_METHOD(bool, lockable, (), const),
        ORV_METHOD(bool, lockObject, (), const, "unsafe"),
        ORV_METHOD(bool, makeLock, (bool, bool), , "unsafe"),
        ORV_METHOD(bool, setSpinLock, (bool), , "unsafe"),
        ORV_METHOD(bool, lock, (), const, "unsafe"),
        ORV_METHOD(bool, lock, (bool), const, "unsafe"),
        ORV_METHOD(bool, writeLock, (), const, "unsafe"),
        ORV_METHOD(bool, readLock, (), const, "unsafe"),
        ORV_METHOD(bool, tryLock, (), const, "unsafe"),
        ORV_METHOD(bool, tryWriteLock, (), const, "unsafe"),
        ORV_METHOD(bool, tryReadLock, (), const, "unsafe"),
        ORV_METHOD(bool, unlock, (), const, "unsafe"),
        ORV_METHOD(bool, canLock, (), const),
        ORV_METHOD(int, lockIndex, (int), const),
        ORV_METHOD(bool, setLockIndex, (int, int), , "unsafe"),
        ORV_METHOD(uint, lockNumber, (), const),
        ORV_METHOD(int, refcount, (), const),
        ORV_METHOD(ZType*, retain, (), const, "unsafe"),
        ORV_METHOD(ZType*, copy, (), const, "creator"),
        ORV_METHOD(void, release, (), , "unsafe"),
        ORV_METHOD(ZSelector, key, (), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(bool, isTypeLabel, (const ZSelector&), const),
        ORV_METHOD(bool, isTypeIndexLabel, (int), const),
        ORV_METHOD(bool, isObject, (), const),
        ORV_METHOD(ZType*, detachCopy, (ZDetachContext*), const, "creator unsafe"),
        ORV_METHOD(bool, setPublicValue, (const ZVariant&), ),
        ORV_METHOD(ZType*, createIdentity, (), const, "creator"),
        ORV_METHOD(bool, adjustBlendProperty, (const ZSelector&, ZVariant&), const),
        ORV_METHOD(bool, blendDynamicProperties, (const ZType*, const ZType*, const ZBlendPos&), ),
        ORV_METHOD(bool, blendProperties, (const ZType*, const ZType*, const ZBlendPos&), ),
        ORV_METHOD(bool, blendLocal, (const ZType*, const ZType*, const ZBlendPos&), ),
        ORV_METHOD(bool, blendIdentity, (), const),
        ORV_METHOD(bool, blendFrom, (const ZType*, const ZType*, const ZBlendPos&), ),
        ORV_METHOD(bool, setIdentity, (), ),
        ORV_METHOD(bool, setIdentityDynamicProperties, (), ),
        ORV_METHOD(bool, setIdentityProperties, (), ),
        ORV_METHOD(bool, setLocalIdentity, (), ),
        ORV_METHOD(ZMetaType*, type, (bool, bool), const),
        ORV_METHOD(ZMetaType*, type, (), const),
        ORV_METHOD(ZObject*, memberObject, (const ZSelector&), const),
        ORV_METHOD(bool, setType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, setType, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, localType, (bool), const),
        ORV_METHOD(bool, localizeType, (bool), , "unsafe"),
        ORV_METHOD(bool, replaceType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, setMetaType, (ZMetaType*), , "unsafe"),
        ORV_METHOD(bool, setMetaType, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, setMetaType, (const ZType*), , "unsafe"),
        ORV_METHOD(bool, sameType, (const ZType*), const),
        ORV_METHOD(bool, sameType, (const ZMetaType*), const),
        ORV_METHOD(bool, isType, (const ZSelector&), const),
        ORV_METHOD(bool, isType, (const ZMetaType*), const),
        ORV_METHOD(bool, hasTypeOption, (const ZSelector&, bool), const),
        ORV_METHOD(ZSelector, storedName, (), const),
        ORV_METHOD(ZSelector, storedName, (const ZSelector&), const),
        ORV_METHOD(ZSelector, getTypeExtraFlags, (), const),
        ORV_METHOD(void, setTypeExtraFlags, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZSelector, getTypeBlockName, (), const),
        ORV_METHOD(void, setTypeBlockName, (const ZSelector&), , "unsafe"),
        ORV_METHOD(ZSelector, getTypeSandBoxName, (), const),
        ORV_METHOD(void, setTypeSandBoxName, (const ZSelector&), , "unsafe"),
        ORV_METHOD(int, getTypeSandBoxLevel, (), const),
        ORV_METHOD(void, setTypeSandBoxLevel, (int), , "unsafe"),
        ORV_METHOD(ZPackage*, package, (), const),
        ORV_METHOD(bool, isPlugin, (const ZSelector&), const),
        ORV_METHOD(ZMetaType*, findType, (const ZSelector&), const, "unsafe"), // makes variants and instances
        ORV_METHOD(bool, enumValue, (const ZSelector&, int&), const),
        ORV_METHOD(ZSelector, enumName, (const ZSelector&, int), const),
        ORV_METHOD(ZEnumType*, findEnum, (const ZSelector&), const),
        ORV_METHOD(int, scanEnum, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(ZSelector, outputEnum, (const ZSelector&, int), const),
        ORV_METHOD(ZSelector, stringResName, (), const),
        ORV_METHOD(ZSelector, stringName, (int), const),
        ORV_METHOD(int, stringIndex, (const ZSelector&), const),
        ORV_METHOD(bool, hasStringResource, (const ZSelector&), const),
        ORV_METHOD(ZString, translate, (const ZSelector&), const),
        ORV_METHOD(ZString, translate, (const ZString&), const),
        ORV_METHOD(ZString, translate, (int), const),
        ORV_METHOD(ZString, transarg, (const ZSelector&, const ZArrayT<ZVariant>&), const),
        ORV_METHOD(ZVariant, resource, (const ZSelector&), const),
        ORV_METHOD(ZVariant, resource, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(ZVariant, typeResource, (const ZSelector&), const),
        ORV_METHOD(ZMetaType*, typeOfResource, (const ZSelector&), const),
        ORV_METHOD(bool, setResource, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, setResource, (const ZSelector&, int), ),
        ORV_METHOD(bool, setResource, (const ZSelector&, bool), ),
        ORV_METHOD(bool, setResource, (const ZSelector&, const ZType*), ),
        ORV_METHOD(bool, setResource, (const ZSelector&, const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, setResource, (const ZSelector&, const ZSelector&, int), ),
        ORV_METHOD(bool, setResource, (const ZSelector&, const ZSelector&, bool), ),
        ORV_METHOD(bool, setResource, (const ZSelector&, const ZSelector&, const ZType*), ),
        ORV_METHOD(bool, removeResource, (const ZSelector&), ),
        ORV_METHOD(bool, removeResource, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, applyStyle, (const ZSelector&), ),
        ORV_METHOD(bool, applyStyle, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, hasLocalMethod, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(bool, hasMethod, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(bool, hasMultimethod, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(void, resetCategories, (), , "unsafe"),
        ORV_METHOD(ZTypeCategory*, getCategory, (const ZSelector&), const),
        ORV_METHOD(ZVariant, invoke, (const ZSelector&, const ZArrayT<ZVariant>&), const),
        ORV_METHOD(ZVariant, invoke, (const ZSelector&, const ZVArray&), const),
        ORV_METHOD(bool, callV, (const ZSelector&), const),
        ORV_METHOD(bool, callV, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(bool, saveIntoFile, (const ZFileName&, const ZSelector&), const, "unsafe"),
        ORV_METHOD(bool, extend, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, extend, (ZTypeCategory*), , "unsafe"),
        ORV_METHOD(bool, removeExtension, (), , "unsafe"),
        ORV_METHOD(bool, removeExtension, (const ZSelector&), , "unsafe"),
        ORV_METHOD(bool, removeExtension, (ZTypeCategory*), , "unsafe"),
#include "value/valuePropertyRows.def"
        ORV_METHOD(bool, definesName, (const ZSelector&), const),
        ORV_METHOD(bool, implements, (const ZSelector&, const ZSelector&), const),
        ORV_METHOD(ZSelector, typeName, (), const),
        ORV_METHOD(ZSelector, typeLabel, (), const),
        ORV_METHOD(int, typeIndexLabel, (), const),
        ORV_METHOD(ZSelector, pluginName, (), const),
        ORV_METHOD(ZSelector, pluginId, (), const),
        ORV_METHOD(ZSelector, pluginPrefix, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Dynamic,
                                       .flags = typePublic | typePolymorphic | typeCreated | typeRefStore};
};

} // namespace orv::glue

ORV_DECLARE(ZType);

