#include "value/ZNamedTypeArray.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZDetachContext.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "object/metaClass.h"
#include "text/ZBlendPos.h"
#include "text/ZString.h"
#include "value/ZNamedTypeArrayType.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"
#include "value/containerRows.h"

namespace orv::glue {

template <> struct Table<ZNamedTypeArray> : Declares<ZNamedTypeArray> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((uint)),
        ORV_CONSTRUCTOR((uint, int16)),
        ORV_CONSTRUCTOR((const ZVariant&)),
        ORV_CONSTRUCTOR((const ZNamedTypeArray*, const ZNamedTypeArray*, const ZBlendPos&)),
        ORV_CONSTRUCTOR((const ZNamedTypeArray&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(ZType*, get, (const ZSelector&), const),
        ORV_METHOD(ZVariant, variant, (const ZSelector&), const),
        ORV_METHOD(ZVariant, entry, (const ZSelector&), const),
        ORV_METHOD(bool, set, (const ZSelector&, const ZType*), ),
        ORV_METHOD(bool, set, (const ZSelector&, const ZVariant&), ),
        ORV_METHOD(bool, append, (const ZSelector&, const ZType*), ),
        ORV_METHOD(bool, insert, (int, const ZSelector&, const ZType*), ),
        ORV_METHOD(bool, remove, (const ZSelector&), ),
        ORV_METHOD(bool, copy, (const ZSelector&, const ZSelector&), ),
        ORV_METHOD(bool, haskey, (const ZSelector&), const),
        ORV_METHOD(bool, hasKeys, (const ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, hasKeys, (const ZNamedTypeArray&), const),
        ORV_METHOD(int, findKey, (const ZSelector&), const),
        ORV_METHOD(int, findKey, (const ZSelector&, bool), const),
        ORV_METHOD(int, binarySearch, (const ZSelector&), const),
        ORV_METHOD(int, linearSearch, (const ZSelector&), const),
        ORV_METHOD(ZSelector, key, (int), const),
        ORV_METHOD(const ZSelector*, keyPtr, (int), const),
        ORV_METHOD(bool, setKey, (int, const ZSelector&), ),
        ORV_METHOD(ZSelector, getKey, (const ZType*), const),
        ORV_METHOD(ZArrayT<ZSelector>, keys, (), const),
        ORV_METHOD(bool, isSorted, (), const),
        ORV_TYPE_ITEM_ROWS(ZNamedTypeArray),
    };
    static constexpr ClassInfo info = {
        .kind = Kind::Structure, .flags = typePublic | typeContainer, .meta = &MetaClassOf<ZNamedTypeArrayType>::row};
};

} // namespace orv::glue

ORV_DECLARE(ZNamedTypeArray);
