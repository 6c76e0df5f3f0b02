#include "object/ZEnum.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZEnumType.h"
#include "object/glue.h"
#include "text/ZString.h"
#include "value/ZVArray.h"

namespace orv::glue {

template <> struct Table<ZEnumItem> : Declares<ZEnumItem> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZSelector&, int)),
        ORV_CONSTRUCTOR((const ZSelector&, const ZSelector&, int)),
        ORV_CONSTRUCTOR((const ZEnumItem&)),
        ORV_DESTRUCTOR(),
        ORV_ADAPTER(ZSelector, name, (), const, [](const Self& item) { return item.name; }),
        ORV_ADAPTER(ZSelector, lowerName, (), const, [](const Self& item) { return item.lowerName; }),
        ORV_ADAPTER(int, value, (), const, [](const Self& item) { return item.value; }),
        ORV_METHOD(int, compare, (const ZEnumItem&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

template <> struct Table<ZEnum> : Declares<ZEnum> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZSelector&)),
        ORV_CONSTRUCTOR((const ZSelector&, uint)),
        ORV_CONSTRUCTOR((const ZEnum&)),
        ORV_METHOD(void, assign, (const ZEnum&), ),
        ORV_METHOD(bool, add, (const ZEnum&), ),
        ORV_METHOD(bool, add, (const ZArrayT<ZEnumItem>&), ),
        ORV_METHOD(bool, add, (const ZVArray&), ),
        ORV_METHOD(bool, add, (const ZSelector&), ),
        ORV_METHOD(bool, add, (const ZSelector&, int), ),
        ORV_METHOD(bool, remove, (const ZSelector&), ),
        ORV_METHOD(bool, remove, (int), ),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(bool, detach, (), ),
        ORV_METHOD(bool, isDetached, (), const),
        ORV_METHOD(int, value, (const ZSelector&), const),
        ORV_METHOD(bool, value, (const ZSelector&, int*), const, "unsafe"),
        ORV_METHOD(int, valueLC, (const ZSelector&), const),
        ORV_METHOD(bool, valueLC, (const ZSelector&, int*), const, "unsafe"),
        ORV_METHOD(ZSelector, name, (int), const),
        ORV_METHOD(ZSelector, nameLC, (int), const),
        ORV_METHOD(int, valueIndex, (int), const),
        ORV_METHOD(int, nextValue, (int), const),
        ORV_METHOD(int, prevValue, (int), const),
        ORV_METHOD(ZSelector, nextName, (const ZSelector&), const),
        ORV_METHOD(ZSelector, prevName, (const ZSelector&), const),
        ORV_METHOD(uint, count, (), const),
        ORV_METHOD(ZSelector, nameAtIndex, (int), const),
        ORV_METHOD(int, valueAtIndex, (int), const),
        ORV_METHOD(ZArrayT<ZSelector>, names, (), const),
        ORV_METHOD(ZArrayT<int>, values, (), const),
        ORV_METHOD(bool, enumNames, (ZArrayT<ZSelector>&), const),
        ORV_METHOD(bool, enumValues, (ZArrayT<int>&), const),
        ORV_METHOD(ZArrayT<ZEnumItem>, items, (), const),
        ORV_METHOD(bool, enumItems, (ZArrayT<ZEnumItem>&), const),
        ORV_METHOD(bool, isBitFlags, (), const),
        ORV_METHOD(void, resetBitFlags, (), ),
        ORV_METHOD(bool, isExclusive, (), const),
        ORV_METHOD(void, setExclusive, (bool), ),
        ORV_METHOD(int, scan, (const ZSelector&, bool), const),
        ORV_METHOD(ZSelector, output, (int, bool), const),
        ORV_METHOD(int, resolve, (const ZString&), const),
        ORV_METHOD(int, resolve, (const ZSelector&), const),
        ORV_STATIC(bool, enumValue, (const ZSelector&, int*), "unsafe"),
        ORV_STATIC(int, resolveEnum, (const ZString&)),
        ORV_STATIC(int, resolveEnum, (const ZSelector&)),
        ORV_METHOD(int, compare, (const ZEnum&), const),
        ORV_METHOD(const ZSelector&, getSelector, (), const),
        ORV_METHOD(void, setSelector, (const ZSelector&), ),
        ORV_METHOD(ZEnumType*, getType, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZEnumItem);
ORV_DECLARE(ZEnum);
