#include "value/ZVHashSet.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZDetachContext.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "text/ZString.h"
#include "value/ZVArray.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"
#include "value/containerRows.h"

namespace orv::glue {

template <> struct Table<ZVHashSet> : Declares<ZVHashSet> {
    /// Whether something can be added: what isn't a programming error of the caller by name mustn't be taken for one.
    static bool takes(const ZVHashSet& set) { return set.hasType() || set.block(); }

    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ZMetaType*)),
        ORV_CONSTRUCTOR((ZMetaType*, uint)),
        ORV_CONSTRUCTOR((ZMetaType*, uint, int16, uint)),
        ORV_CONSTRUCTOR((const ZVArray&)),
        ORV_CONSTRUCTOR((const ZVHashSet&)),
        ORV_METHOD(void, assign, (const ZVHashSet&), ),
        ORV_METHOD(bool, init, (uint, int16, uint, uint, uint), ),
        ORV_METHOD(bool, initType, (ZMetaType*), ),
        ORV_METHOD(bool, multiSet, (), const),
        ORV_METHOD(void, setMultiSet, (bool), ),
        ORV_ADAPTER(bool, add, (const ZVariant&), ,
                    [](Self& set, const ZVariant& value) { return takes(set) && set.add(value); }),
        ORV_METHOD(bool, add, (const ZVHashSet&), ),
        ORV_METHOD(bool, add, (const ZVArray&), ),
        ORV_METHOD(bool, add, (const ZVSelectMap&), ),
        ORV_METHOD(bool, add, (const ZVKeyMap&), ),
        ORV_ADAPTER(bool, addSelector, (const ZSelector&), ,
                    [](Self& set, const ZSelector& name) { return takes(set) && set.addSelector(name); }),
        ORV_ADAPTER(bool, addNew, (const ZVariant&), ,
                    [](Self& set, const ZVariant& value) { return takes(set) && set.addNew(value); }),
        ORV_METHOD(bool, replace, (const ZVariant&, const ZVariant&), ),
        ORV_METHOD(bool, contains, (const ZVariant&), const),
        ORV_METHOD(bool, contains, (const ZVHashSet&), const),
        ORV_METHOD(bool, contains, (const ZVArray&), const),
        ORV_METHOD(bool, contains, (const ZVSelectMap&), const),
        ORV_METHOD(bool, contains, (const ZVKeyMap&), const),
        ORV_METHOD(bool, contains, (const ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, hasSelector, (const ZSelector&), const),
        ORV_METHOD(int, findFirstValue, (const ZVariant&), const),
        ORV_METHOD(uint, usage, (const ZVariant&), const),
        ORV_METHOD(uint, usageAt, (int), const),
        ORV_METHOD(bool, matches, (const ZVHashSet&), const),
        ORV_METHOD(ZSelector, createSelector, (const ZString&, bool), ),
        ORV_METHOD(bool, remove, (const ZVariant&, bool), ),
        ORV_METHOD(bool, remove, (const ZVariant&), ),
        ORV_METHOD(bool, removeSelector, (const ZSelector&), ),
        ORV_METHOD(bool, remove, (const ZVHashSet&, bool), ),
        ORV_METHOD(bool, remove, (const ZVArray&, bool), ),
        ORV_METHOD(bool, removeSet, (const ZVHashSet&), ),
        ORV_METHOD(ZVariant, pop, (), ),
        ORV_METHOD(bool, intersection, (const ZVHashSet&), ),
        ORV_METHOD(ZVArray, array, (), const),
        ORV_METHOD(ZVHashSet, extract, (const ZArrayT<int>&), const),
        ORV_METHOD(bool, changed, (), ),
        ORV_METHOD(bool, sort, (bool), ),
        ORV_METHOD(void, clearAll, (), ),
        ORV_METHOD(int, compare, (const ZVHashSet&), const),
        ORV_METHOD(bool, matchValue, (const ZVHashSet&, real), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(int, findValue, (const ZVariant&, int), const),
        ORV_VALUE_MAP_ROWS,
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic | typeContainer, .indexLabel = 3};
};

} // namespace orv::glue

ORV_DECLARE(ZVHashSet);
