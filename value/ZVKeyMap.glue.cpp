#include "value/ZVKeyMap.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZDetachContext.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "text/ZBlendPos.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVariant.h"
#include "value/containerRows.h"

namespace orv::glue {

template <> struct Table<ZVKeyMap> : Declares<ZVKeyMap> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ZMetaType*, ZMetaType*)),
        ORV_CONSTRUCTOR((ZMetaType*, ZMetaType*, uint)),
        ORV_CONSTRUCTOR((ZMetaType*, ZMetaType*, uint, int16, uint)),
        ORV_CONSTRUCTOR((const ZVKeyMap*, const ZVKeyMap*, const ZBlendPos&)),
        ORV_CONSTRUCTOR((const ZVKeyMap&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, assign, (const ZVKeyMap&), ),
        ORV_METHOD(void, swap, (ZVKeyMap&), ),
        ORV_METHOD(bool, init, (uint, int16, uint, uint, uint, uint), ),
        ORV_METHOD(bool, init, (int), ),
        ORV_METHOD(bool, setTypes, (ZMetaType*, ZMetaType*), ),
        ORV_METHOD(ZMetaType*, getKeyType, (), const),
        ORV_METHOD(ZSelector, getKeyTypeName, (), const),
        ORV_METHOD(void, setKeyTypeName, (const ZSelector&), ),
        ORV_METHOD(bool, isKeyType, (const ZMetaType*), const),
        ORV_METHOD(bool, isKeyType, (const ZSelector&), const),
        ORV_METHOD(ZVariant, variant, (const ZVariant&), const),
        ORV_METHOD(ZVariant, entry, (const ZVariant&), const),
        ORV_METHOD(bool, haskey, (const ZVariant&), const),
        ORV_METHOD(bool, hasKeys, (const ZVArray&), const),
        ORV_METHOD(bool, hasKeys, (const ZVKeyMap&), const),
        ORV_METHOD(int, findKey, (const ZVariant&), const),
        ORV_METHOD(int, findFirstKey, (const ZVariant&), const),
        ORV_METHOD(bool, set, (const ZVariant&, const ZVariant&), ),
        ORV_METHOD(bool, add, (const ZVariant&, const ZVariant&, bool), ),
        ORV_METHOD(bool, setValue, (int, const ZVariant&), ),
        ORV_METHOD(bool, remove, (const ZVariant&), ),
        ORV_METHOD(bool, removeKeys, (const ZVArray&), ),
        ORV_METHOD(bool, removeKeys, (const ZVKeyMap&), ),
        ORV_METHOD(bool, copy, (const ZVariant&, const ZVariant&), ),
        ORV_METHOD(bool, rename, (const ZVariant&, const ZVariant&), ),
        ORV_METHOD(ZVariant, key, (int), const),
        ORV_METHOD(ZVariant, getKey, (const ZVariant&), const),
        ORV_METHOD(ZVariant, getKey, (const ZVariant&, int), const),
        ORV_METHOD(ZVArray, keys, (), const),
        ORV_METHOD(ZVHashSet, keySet, (), const),
        ORV_METHOD(ZVArray, extractKeys, (const ZArrayT<int>&), const),
        ORV_METHOD(ZVArray, collectNullKeys, (), const),
        ORV_METHOD(bool, moveBefore, (const ZVariant&, const ZVariant&), ),
        ORV_METHOD(bool, moveAfter, (const ZVariant&, const ZVariant&), ),
        ORV_METHOD(bool, moveToIndex, (const ZVariant&, int), ),
        ORV_METHOD(bool, sort, (bool), ),
        ORV_METHOD(ZVKeyMap, rearrange, (const ZArrayT<int>&), const),
        ORV_METHOD(ZVKeyMap, rearrange, (const ZVArray&), const),
        ORV_METHOD(void, clearAll, (), ),
        ORV_METHOD(bool, append, (const ZVKeyMap&), ),
        ORV_METHOD(int, compare, (const ZVKeyMap&), const),
        ORV_METHOD(bool, contains, (const ZVKeyMap&), const),
        ORV_METHOD(bool, contains, (const ZVariant&), const),
        ORV_METHOD(bool, contains, (const ZVArray&), const),
        ORV_METHOD(bool, contains, (const ZVariant&, const ZVariant&), const),
        ORV_METHOD(bool, matchValue, (const ZVKeyMap&, real), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(bool, blendFrom, (const ZVKeyMap*, const ZVKeyMap*, const ZBlendPos&), ),
        ORV_METHOD(int, findValue, (const ZVariant&, int), const),
        ORV_VALUE_MAP_ROWS,
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic | typeContainer, .indexLabel = 5};
};

} // namespace orv::glue

ORV_DECLARE(ZVKeyMap);
