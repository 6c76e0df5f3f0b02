#include "tests/object/propertyTypes.h"

#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/glue.h"
#include "object/names.h"

namespace orv::glue {

template <> struct Table<TestPoint> : Declares<TestPoint> {
    static constexpr MethodRow methods[] = {ORV_CONSTRUCTOR(()), ORV_VALUE_ACCESSORS(int, left, Left)};
    static constexpr PropertyRow properties[] = {ORV_PROPERTY(int, left, "store")};
    static constexpr ClassInfo info = {.kind = Kind::Structure};
};

template <> struct Table<TestShape> : Declares<TestShape> {
    using BaseTypes = Bases<ZType>;
    static constexpr int start = 11;
    static constexpr MethodRow methods[] = {
        ORV_VALUE_ACCESSORS(int, width, Width),
        ORV_METHOD(real, ratio, (), const),
        ORV_ACCESSORS(ZString, label, Label),
        ORV_METHOD(ZString, both, (), const),
        ORV_ACCESSORS(TestPoint, place, Place),
        ORV_POINTER_ACCESSORS(ZType, partner, Partner),
        ORV_VALUE_ACCESSORS(ZVariant, any, Any),
        ORV_METHOD(int, countSide, (), const),
        ORV_METHOD(int, side, (int), const),
        ORV_METHOD(bool, setSide, (int, const int&), ),
        ORV_METHOD(int, edge, (int), ),
        ORV_METHOD(bool, setEdge, (int, const int&), ),
        ORV_METHOD(void, grow, (), ),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(int, width, "store v3 sb2 .grow"),
        ORV_PROPERTY(real, ratio, "readonly"),
        ORV_PROPERTY(ZString, label, "store noxst"),
        ORV_PROPERTY(ZString, both, "readonly"),
        ORV_PROPERTY(TestPoint, place, "store"),
        ORV_PROPERTY(ZType*, partner, "retain"),
        ORV_PROPERTY(ZVariant, any, "variable"),
        ORV_DYNAMIC_PROPERTY(int, side, "optional collection array readonly"),
        ORV_DYNAMIC_PROPERTY(int, edge, "optional collection array .grow"),
        ORV_DYNAMIC_PROPERTY(int, given, "store").initially(start),
        ORV_DYNAMIC_PROPERTY(int, extra, "optional").initially(start),
    };
    static constexpr ClassInfo info = {.kind = Kind::Dynamic, .flags = typePublic | typePolymorphic};
};

template <> struct Table<TestTag> : Declares<TestTag> {
    static constexpr MethodRow methods[] = {ORV_CONSTRUCTOR(()), ORV_VALUE_ACCESSORS(int, tag, Tag)};
    static constexpr PropertyRow properties[] = {ORV_PROPERTY(int, tag, "store")};
    static constexpr ClassInfo info = {.kind = Kind::Structure};
};

template <> struct Table<TestTagged> : Declares<TestTagged> {
    using BaseTypes = Bases<TestShape, TestTag>;
    static constexpr MethodRow methods[] = {ORV_METHOD(real, ratio, (), const)};
    static constexpr ClassInfo info = {.kind = Kind::Dynamic, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(TestPoint);
ORV_DECLARE(TestShape);
ORV_DECLARE(TestTag);
ORV_DECLARE(TestTagged);

namespace {
bool own = false; ///< this suite opened the packages
} // namespace

void PropertyTest::SetUpTestSuite() {
    CoreTest::SetUpTestSuite();
    own = !ZPackage::root() && orv::openModule() && orv::openPackages();
    ASSERT_TRUE(orv::openNames(orv::moduleNames()));
    ZPackage* package = ZPackage::findPackage(ZSelector("orv.core.base"));
    ASSERT_NE(package, nullptr);
    for (const orv::glue::ClassRow* row : {&orv::glue::Row<TestPoint>::row, &orv::glue::Row<TestShape>::row,
                                           &orv::glue::Row<TestTag>::row, &orv::glue::Row<TestTagged>::row}) {
        ZMetaType* type = orv::makeType(package, *row);
        ASSERT_NE(type, nullptr) << row->name;
        type->resetBase();
    }
    ASSERT_EQ(ztype<TestShape>(), ZMetaType::find(ZSelector("TestShape")));
}

void PropertyTest::TearDownTestSuite() {
    orv::closeNames(orv::moduleNames());
    if (own) {
        orv::closePackages();
        orv::closeModule();
    }
    CoreTest::TearDownTestSuite();
}
