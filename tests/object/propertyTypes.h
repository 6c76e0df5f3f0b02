#pragma once

#include "module/packages.h"
#include "object/ZType.h"
#include "object/glue.h"
#include "object/names.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

/// Types with declared properties, for tests.

/// A plain structure.
struct TestPoint {
    int x = 0, y = 0;

    int left() const { return x; }
    bool setLeft(const int& value) {
        x = value;
        return true;
    }
    int compare(const TestPoint& other) const { return x != other.x ? (x > other.x) - (x < other.x) : y - other.y; }
};

/// A class with one property of each shape of getter.
class TestShape : public ZType {
public:
    ORV_REFLECT(TestShape);
    explicit TestShape(const __ZPassMetaType* tag = nullptr) : ZType(tag ? tag : orv::passType(ztype<TestShape>())) {}
    TestShape(const TestShape* source, const __ZPassMetaType* tag = nullptr)
        : ZType(source, tag ? tag : orv::passType(ztype<TestShape>())), w(source->w), title(source->title),
          spot(source->spot) {}
    ~TestShape() override {
        if (next) next->release();
    }

    int width() const { return w; }
    bool setWidth(const int& value) {
        if (value < 0) return false;
        w = value;
        ++sets;
        return true;
    }
    double ratio() const { return w / 2.0; }
    const ZString& label() const { return title; }
    bool setLabel(const ZString& text) {
        title = text;
        return true;
    }
    ZString both() const { return title + ZString("!"); }
    const TestPoint& place() const { return spot; }
    bool setPlace(const TestPoint& to) {
        spot = to;
        return true;
    }
    ZType* partner() const { return next; }
    bool setPartner(const ZType* other) {
        ZType* kept = other ? other->retain() : nullptr;
        if (ZType* old = std::exchange(next, kept)) old->release();
        return true;
    }
    ZVariant any() const { return held; }
    bool setAny(const ZVariant& value) {
        held = value;
        return true;
    }
    int countSide() const { return 4; }
    int side(int index) const { return sides[index & 3]; }
    bool setSide(int index, const int& value) {
        sides[index & 3] = value;
        return true;
    }
    /// Sets the property that it is the update method of.
    void grow() {
        ++grown;
        setProperty(ZSelector("width"), ZVariant(w + 1));
        setProperty(ZSelector("note"), ZVariant(grown));
    }

    int w = 3, sets = 0, grown = 0;
    int sides[4] = {1, 2, 3, 4};
    ZString title;
    TestPoint spot;
    ZType* next = nullptr;
    ZVariant held;
};

/// A class with two bases; the second stands behind the first and has a property of its own.
struct TestTag {
    int number = 7;
    int tag() const { return number; }
    bool setTag(const int& value) {
        number = value;
        return true;
    }
};
class TestTagged : public TestShape, public TestTag {
public:
    ORV_REFLECT(TestTagged);
    explicit TestTagged(const __ZPassMetaType* tag = nullptr)
        : TestShape(tag ? tag : orv::passType(ztype<TestTagged>())) {}
    /// Hides the base's.
    double ratio() const { return 100; }
};

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

/// The library up, with these types.
class PropertyTest : public CoreTest {
protected:
    static void SetUpTestSuite() {
        CoreTest::SetUpTestSuite();
        if (!ZPackage::root()) own = orv::openModule() && orv::openPackages();
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
    static void TearDownTestSuite() {
        orv::closeNames(orv::moduleNames());
        if (own) {
            orv::closePackages();
            orv::closeModule();
        }
        CoreTest::TearDownTestSuite();
    }

    static inline bool own = false;
    static ZSelector name(const char* text) { return ZSelector(text); }
};
