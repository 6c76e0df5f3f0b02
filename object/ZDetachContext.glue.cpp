#include "object/ZDetachContext.h"

#include "object/glue.h"
#include "value/ZContentMap.h"
#include "value/ZTypeArray.h"
#include "value/ZTypeNameMap.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <> struct Table<ZDetachContext> : Declares<ZDetachContext> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, startDetach, (), ),
        ORV_METHOD(void, endDetach, (), ),
        ORV_METHOD(ZType*, detachType, (ZType*), , "creator"),
        ORV_METHOD(ZType*, detached, (const ZType*), const),
        ORV_METHOD(bool, setDetached, (const ZType*, ZType*), ),
        ORV_METHOD(bool, detachVariant, (ZVariant&), ),
        ORV_METHOD(bool, detachArray, (ZVArray&), ),
        ORV_METHOD(bool, detachArray, (ZArrayT<ZVariant>&), ),
        ORV_METHOD(bool, detachHashSet, (ZVHashSet&), ),
        ORV_METHOD(bool, detachSelectMap, (ZVSelectMap&), ),
        ORV_METHOD(bool, detachKeyMap, (ZVKeyMap&), ),
        ORV_METHOD(bool, detachArray, (ZTypeArray&), ),
        ORV_METHOD(bool, detachNamedTypeArray, (ZNamedTypeArray&), ),
        ORV_METHOD(bool, detachContentMap, (ZContentMap&), ),
        ORV_METHOD(bool, detachTypeNameMap, (ZTypeNameMap&), ),
        ORV_STATIC(bool, detachValue, (ZVariant&)),
        ORV_STATIC(bool, detachValue, (ZVArray&)),
        ORV_STATIC(bool, detachValue, (ZVHashSet&)),
        ORV_STATIC(bool, detachValue, (ZVSelectMap&)),
        ORV_STATIC(bool, detachValue, (ZVKeyMap&)),
        ORV_METHOD(ZObject*, documentState, (), const),
        ORV_ADAPTER(bool, setDocumentState, (const ZObject*), ,
                    [](Self& context, const ZObject* object) {
                        context.setDocumentState(const_cast<ZObject*>(object));
                        return true;
                    }),
        ORV_METHOD(bool, referenceMapping, (), const),
        ORV_ADAPTER(bool, setReferenceMapping, (const bool&), ,
                    [](Self& context, const bool& on) {
                        context.setReferenceMapping(on);
                        return true;
                    }),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(ZObject*, documentState, "internal noblend nocsp"),
        ORV_PROPERTY(bool, referenceMapping, "internal noblend nocsp"),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(ZDetachContext);
