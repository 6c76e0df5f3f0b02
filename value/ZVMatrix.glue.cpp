#include "value/ZVMatrix.h"

#include "object/ZDetachContext.h"
#include "object/ZMetaType.h"
#include "object/glue.h"
#include "text/ZBlendPos.h"

namespace orv::glue {

template <> struct Table<ZVMatrix> : Declares<ZVMatrix> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ZMetaType*)),
        ORV_CONSTRUCTOR((ZMetaType*, int, int)),
        ORV_CONSTRUCTOR((const ZVMatrix*, const ZVMatrix*, const ZBlendPos&)),
        ORV_CONSTRUCTOR((const ZVMatrix&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, assign, (const ZVMatrix&), ),
        ORV_METHOD(ZMetaType*, getValueType, (), const),
        ORV_METHOD(bool, sameType, (const ZVMatrix&), const),
        ORV_METHOD(uint, columns, (), const),
        ORV_METHOD(uint, rows, (), const),
        ORV_METHOD(uint, count, (), const),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(bool, setSize, (int, int), ),
        ORV_METHOD(bool, insertRow, (int, const ZVariant&), ),
        ORV_METHOD(bool, insertRow, (int, const ZVArray&), ),
        ORV_METHOD(bool, insertColumn, (int, const ZVariant&), ),
        ORV_METHOD(bool, insertColumn, (int, const ZVArray&), ),
        ORV_METHOD(bool, removeRow, (int), ),
        ORV_METHOD(bool, removeColumn, (int), ),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(ZVariant, variant, (int, int), const),
        ORV_METHOD(bool, set, (int, int, const ZVariant&), ),
        ORV_METHOD(bool, set, (const ZVArray&), ),
        ORV_METHOD(const ZVArray&, values, (), const),
        ORV_METHOD(bool, setIdentity, (), ),
        ORV_METHOD(int, findValue, (const ZVariant&), const),
        ORV_METHOD(int, findValue, (const ZVariant&, int), const),
        ORV_METHOD(int, findPos, (const ZVariant&), const),
        ORV_METHOD(bool, contains, (const ZVariant&), const),
        ORV_METHOD(bool, contains, (const ZVMatrix&), const),
        ORV_METHOD(int, compare, (const ZVMatrix&), const),
        ORV_METHOD(bool, matchValue, (const ZVMatrix&, real), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(bool, blendFrom, (const ZVMatrix*, const ZVMatrix*, const ZBlendPos&), ),
        ORV_METHOD(int, refcount, (), const),
        ORV_METHOD(bool, isDetached, (), const),
        ORV_METHOD(bool, detach, (), ),
        ORV_METHOD(bool, deepDetach, (), ),
        ORV_METHOD(bool, deepDetach, (ZDetachContext*), ),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZVMatrix);
