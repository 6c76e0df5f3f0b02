#include "tests/value/valueShapes.h"

#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ValuePoint> : Declares<ValuePoint> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_VALUE_ACCESSORS(int, x, X),
        ORV_VALUE_ACCESSORS(int, y, Y),
        ORV_METHOD(int, sum, (), const),
        ORV_METHOD(bool, move, (int), ),
        ORV_METHOD(int, compare, (const ValuePoint&), const),
        ORV_METHOD(uint, hashKey, (), const),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(int, x, "store"),
        ORV_PROPERTY(int, y, "store"),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

template <> struct Table<ValueShape> : Declares<ValueShape> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ValueShape&)),
        ORV_DESTRUCTOR(),
        ORV_ACCESSORS(ValuePoint, place, Place),
        ORV_ACCESSORS(ZString, label, Label),
        ORV_ACCESSORS(ZVArray, items, Items),
        ORV_ACCESSORS(ZVSelectMap, named, Named),
        ORV_METHOD(int, total, (), const),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(ValuePoint, place, "store"), ORV_PROPERTY(ZString, label, "store"),
        ORV_PROPERTY(ZVArray, items, "store"),    ORV_PROPERTY(ZVSelectMap, named, "store"),
        ORV_PROPERTY(int, total, "readonly"),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

template <> struct Table<ValueMark> : Declares<ValueMark> {
    static constexpr MethodRow methods[] = {ORV_CONSTRUCTOR(()), ORV_METHOD(int, mark, (), const)};
    static constexpr PropertyRow properties[] = {ORV_PROPERTY(int, mark, "readonly")};
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};
template <> struct Table<ValuePin> : Declares<ValuePin> {
    using BaseTypes = Bases<ValueMark, ValuePoint>;
    static constexpr MethodRow methods[] = {ORV_CONSTRUCTOR(())};
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue
ORV_DECLARE(ValueMark);
ORV_DECLARE(ValuePin);
ORV_DECLARE(ValuePoint);
ORV_DECLARE(ValueShape);

void ShapeTest::SetUpTestSuite() {
    using namespace orv::glue;
    CoreTest::SetUpTestSuite();
    ZPackage* package = ZPackage::findPackage("orv.core.base");
    ASSERT_NE(package, nullptr);
    for (const ClassRow* row :
         {&Row<ValuePoint>::row, &Row<ValueShape>::row, &Row<ValueMark>::row, &Row<ValuePin>::row})
        ASSERT_NE(orv::makeType(package, *row), nullptr) << row->name;
}
