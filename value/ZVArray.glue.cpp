#include "value/ZVArray.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZDetachContext.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "text/ZBlendPos.h"
#include "text/ZString.h"
#include "value/ZVHashSet.h"
#include "value/ZVariant.h"
#include "value/containerRows.h"

namespace orv::glue {

template <> struct Table<ZVArray> : Declares<ZVArray> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ZMetaType*)),
        ORV_CONSTRUCTOR((ZMetaType*, uint)),
        ORV_CONSTRUCTOR((ZMetaType*, uint, int16)),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_CONSTRUCTOR((const ZVHashSet&)),
        ORV_CONSTRUCTOR((const ZVArray*, const ZVArray*, const ZBlendPos&)),
        ORV_CONSTRUCTOR((const ZVArray&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, assign, (const ZVArray&), ),
        ORV_METHOD(void, swap, (ZVArray&), ),
        ORV_METHOD(ZMetaType*, getValueType, (), const),
        ORV_METHOD(ZSelector, getTypeName, (), const),
        ORV_METHOD(void, setTypeName, (const ZSelector&), ),
        ORV_METHOD(bool, hasType, (), const),
        ORV_METHOD(bool, isType, (const ZMetaType*), const),
        ORV_METHOD(bool, isType, (const ZSelector&), const),
        ORV_METHOD(bool, isSelectorType, (), const),
        ORV_METHOD(bool, isZType, (), const),
        ORV_METHOD(ZMetaType*, typeByIndex, (int), const),
        ORV_METHOD(bool, setType, (ZMetaType*), ),
        ORV_METHOD(bool, setItemSize, (uint), , "unsafe"),
        ORV_METHOD(uint, itemSize, (), const),
        ORV_METHOD(bool, endian, (), const),
        ORV_METHOD(bool, setEndian, (bool), ),
        ORV_METHOD(uint, count, (), const),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(uint, maxcount, (), const),
        ORV_METHOD(ZVariant, variant, (int), const),
        ORV_METHOD(ZVariant, entry, (int), const),
        ORV_METHOD(bool, append, (const ZVariant&), ),
        ORV_METHOD(bool, append, (const ZVArray&), ),
        ORV_METHOD(bool, append, (const ZVHashSet&), ),
        ORV_METHOD(bool, append, (const ZArrayT<ZVariant>&), ),
        ORV_METHOD(bool, append, (const ZArrayT<ZSelector>&), ),
        ORV_METHOD(bool, append, (), ),
        ORV_METHOD(bool, appendNew, (uint), ),
        ORV_METHOD(bool, push, (const ZVariant&), ),
        ORV_METHOD(ZVariant, pop, (), ),
        ORV_METHOD(bool, insert, (int, const ZVariant&), ),
        ORV_METHOD(bool, insert, (int, const ZArrayT<ZVariant>&), ),
        ORV_METHOD(bool, insertArray, (int, const ZVArray&), ),
        ORV_METHOD(bool, insertNew, (int, uint), ),
        ORV_METHOD(bool, store, (int, const ZVariant&), ),
        ORV_METHOD(bool, set, (int, const ZVariant&), ),
        ORV_METHOD(bool, remove, (int, int), ),
        ORV_METHOD(bool, removeIndex, (int), ),
        ORV_METHOD(bool, removeValue, (const ZVariant&), ),
        ORV_METHOD(bool, removeItems, (const ZArrayT<int>&), ),
        ORV_METHOD(bool, discardItems, (), ),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(void, clearAll, (), ),
        ORV_METHOD(bool, setCount, (int), ),
        ORV_METHOD(bool, setSpace, (int), ),
        ORV_METHOD(bool, setExpand, (int16), ),
        ORV_METHOD(int16, expand, (), const),
        ORV_METHOD(bool, expand, (uint), ),
        ORV_METHOD(bool, trim, (), ),
        ORV_METHOD(bool, changePlace, (int, int), ),
        ORV_METHOD(bool, changePlace, (int, int, int), ),
        ORV_METHOD(bool, changePlace, (const ZArrayT<int>&, int), ),
        ORV_METHOD(int, findValue, (const ZVariant&), const),
        ORV_METHOD(int, findValue, (const ZVariant&, int), const),
        ORV_METHOD(int, findPos, (const ZVariant&), const),
        ORV_METHOD(bool, contains, (const ZVariant&), const),
        ORV_METHOD(bool, contains, (const ZVArray&), const),
        ORV_METHOD(bool, contains, (const ZVHashSet&), const),
        ORV_METHOD(bool, overlapping, (const ZVArray&), const),
        ORV_METHOD(int, compare, (const ZVArray&), const),
        ORV_METHOD(int, compare, (const ZVArray&, const ZMethodRef&), const),
        ORV_METHOD(bool, matchValue, (const ZVArray&, real), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(bool, sort, (), ),
        ORV_METHOD(bool, sort, (const ZMethodRef&, bool), ),
        ORV_METHOD(bool, isSorted, (), const),
        ORV_METHOD(bool, getSortOrder, (ZArrayT<int>&, bool), const),
        ORV_METHOD(int, findPosition, (const ZVariant&, const ZMethodRef&, bool), const),
        ORV_METHOD(ZVArray, rearrange, (const ZArrayT<int>&), const),
        ORV_METHOD(ZVArray, extract, (const ZArrayT<int>&), const),
        ORV_METHOD(ZVArray, extract, (int, int), const),
        ORV_METHOD(ZVArray, extract, (const ZVArray&), const),
        ORV_METHOD(ZVArray, extractRemove, (const ZArrayT<int>&), ),
        ORV_METHOD(ZVArray, extractRemove, (int, int), ),
        ORV_METHOD(ZVArray, extractRemove, (const ZVArray&), ),
        ORV_METHOD(bool, collectNullIndex, (ZArrayT<int>&), const),
        ORV_METHOD(bool, invertIndex, (ZArrayT<int>&), const),
        ORV_METHOD(bool, reverse, (), ),
        ORV_METHOD(int, refcount, (), const),
        ORV_METHOD(bool, isDetached, (), const),
        ORV_METHOD(bool, detach, (), ),
        ORV_METHOD(bool, detach, (bool), ),
        ORV_METHOD(bool, deepDetach, (), ),
        ORV_METHOD(bool, deepDetach, (ZDetachContext*), ),
        ORV_METHOD(bool, drop, (), ),
        ORV_METHOD(bool, blendFrom, (const ZVArray*, const ZVArray*, const ZBlendPos&), ),
        ORV_METHOD(ZString, toString, (), const),
        ORV_METHOD(bool, validString, (), const),
        ORV_LOCK_ROWS,
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic | typeContainer, .indexLabel = 2};
};

} // namespace orv::glue

ORV_DECLARE(ZVArray);
