#include "value/ZVSelectMap.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZDetachContext.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "object/metaClass.h"
#include "text/ZBlendPos.h"
#include "value/ZVArray.h"
#include "value/ZVSelectMapType.h"
#include "value/ZVariant.h"
#include "value/containerRows.h"

namespace orv::glue {

template <> struct Table<ZVSelectMap> : Declares<ZVSelectMap> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ZMetaType*)),
        ORV_CONSTRUCTOR((ZMetaType*, uint)),
        ORV_CONSTRUCTOR((ZMetaType*, uint, int16, uint)),
        ORV_CONSTRUCTOR((const ZVSelectMap*, const ZVSelectMap*, const ZBlendPos&)),
        ORV_CONSTRUCTOR((const ZVSelectMap&)),
        ORV_METHOD(void, assign, (const ZVSelectMap&), ),
        ORV_METHOD(bool, init, (uint, int16, uint, uint, uint), ),
        ORV_METHOD(bool, setType, (ZMetaType*), ),
        ORV_METHOD(ZVariant, variant, (const ZSelector&), const),
        ORV_METHOD(ZVariant, entry, (const ZSelector&), const),
        ORV_METHOD(bool, haskey, (const ZSelector&), const),
        ORV_METHOD(bool, hasKeys, (const ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, hasKeys, (const ZVSelectMap&), const),
        ORV_METHOD(int, findKey, (const ZSelector&), const),
        ORV_METHOD(int, findFirstKey, (const ZSelector&), const),
        ORV_METHOD(bool, set, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, setValue, (int, const ZVariant&), ),
        ORV_METHOD(bool, remove, (const ZSelector&), ),
        ORV_METHOD(bool, removeKeys, (const ZArrayT<ZSelector>&), ),
        ORV_METHOD(bool, removeKeys, (const ZVSelectMap&), ),
        ORV_METHOD(bool, copy, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, rename, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(ZSelector, key, (int), const),
        ORV_METHOD(const ZSelector*, keyPtr, (int), const),
        ORV_METHOD(ZSelector, getKey, (const ZVariant&), const),
        ORV_METHOD(ZSelector, getKey, (const ZVariant&, int), const),
        ORV_METHOD(ZArrayT<ZSelector>, keys, (), const),
        ORV_METHOD(ZArrayT<ZSelector>, collectNullKeys, (), const),
        ORV_METHOD(bool, moveBefore, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, moveAfter, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, moveToIndex, (const ZSelector&, int), ),
        ORV_METHOD(bool, sort, (bool), ),
        ORV_METHOD(ZVSelectMap, rearrange, (const ZArrayT<int>&), const),
        ORV_METHOD(ZVSelectMap, rearrange, (const ZArrayT<ZSelector>&), const),
        ORV_METHOD(void, clearAll, (), ),
        ORV_METHOD(bool, append, (const ZVSelectMap&), ),
        ORV_METHOD(int, compare, (const ZVSelectMap&), const),
        ORV_METHOD(bool, contains, (const ZVSelectMap&), const),
        ORV_METHOD(bool, contains, (const ZSelector&), const),
        ORV_METHOD(bool, contains, (const ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, contains, (const ZSelector&, const ZVariant&), const),
        ORV_METHOD(bool, matchValue, (const ZVSelectMap&, real), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(bool, blendFrom, (const ZVSelectMap*, const ZVSelectMap*, const ZBlendPos&), ),
        ORV_METHOD(int, findValue, (const ZVariant&, int), const),
        ORV_VALUE_MAP_ROWS,
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure,
                                       .flags = typePublic | typeContainer,
                                       .indexLabel = 4,
                                       .meta = &MetaClassOf<ZVSelectMapType>::row};
};

} // namespace orv::glue

ORV_DECLARE(ZVSelectMap);
