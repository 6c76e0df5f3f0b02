#pragma once

#include "object/ZMetaType.h"
#include "object/ZType.h"
#include "object/reflect.h"
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
        if (ended) ++*ended;
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
    int edge(int index) { return sides[index & 3]; }
    bool setEdge(int index, const int& value) { return setSide(index, value); }
    /// Sets the property that it is the update method of, or gives up a reference.
    void grow() {
        ++grown;
        if (leaves) return release();
        setProperty(ZSelector("width"), ZVariant(w + 1));
        setProperty(ZSelector("note"), ZVariant(grown));
    }

    int w = 3, sets = 0, grown = 0;
    int sides[4] = {1, 2, 3, 4};
    ZString title;
    TestPoint spot;
    ZType* next = nullptr;
    ZVariant held;
    bool leaves = false;
    int* ended = nullptr; ///< counts
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

/// The library up, with these types.
class PropertyTest : public CoreTest {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

    static ZSelector name(const char* text) { return ZSelector(text); }
};
