#include "value/ZTypedPtr.h"

#include "core/ZArrayT.h"
#include "object/ZMetaType.h"
#include "object/ZProperty.h"
#include "tests/value/valueShapes.h"
#include "toolkit/epoch.h"

#include <gtest/gtest.h>

namespace {

class PlainProperties : public ShapeTest {
protected:
    static ZMetaType* type(const char* name) { return ZMetaType::find(ZSelector(name)); }
    static ZVariant shape() {
        ValueShape made;
        return ZVariant(type("ValueShape"), &made);
    }
    static ZVariant point(int x) {
        ValuePoint made;
        made.first = x;
        return ZVariant(type("ValuePoint"), &made);
    }
    template <class... A> static ZArrayT<ZVariant> list(const A&... values) {
        ZArrayT<ZVariant> made;
        (made.append(ZVariant(values)), ...);
        return made;
    }
};

} // namespace

TEST_F(PlainProperties, OfStructuresAreReadAndWrittenByName) {
    ZVariant small = point(5), large = shape();
    EXPECT_EQ(small.getProperty("x").toInt(), 5);
    EXPECT_TRUE(small.setProperty("y", ZVariant(9)));
    EXPECT_EQ(small.getProperty("y").toInt(), 9);
    EXPECT_TRUE(small.setProperty("y", ZVariant("11")));
    EXPECT_EQ(static_cast<ValuePoint*>(small.getPtr())->second, 11);
    EXPECT_EQ(large.getProperty("total").toInt(), 3);
    EXPECT_FALSE(large.setProperty("total", ZVariant(1)));
    EXPECT_FALSE(large.setProperty("absent", ZVariant(1)));
    EXPECT_TRUE(large.getProperty("absent").isNull());
    EXPECT_FALSE(large.hasProperty("absent"));
    EXPECT_TRUE(large.hasProperty("label"));
    EXPECT_EQ(large.getPropertyType("label"), ztype<ZString>());
    ZArrayT<ZSelector> names;
    EXPECT_TRUE(large.storedPropertyNames(names));
    EXPECT_EQ(names.count(), 4u);
    EXPECT_EQ(large.propertyCount(), 5u);
    ZProperty found;
    ZTypedPtr owner;
    EXPECT_TRUE(large.property(&owner, "label", found, true));
    EXPECT_EQ(owner.instance, large.getPtr());
    EXPECT_TRUE(ZTypedPtr(large).hasProperty(&owner, "label"));
}

TEST_F(PlainProperties, OfABaseAreReachedAtItsPlace) {
    ValuePin pin;
    pin.first = 5;
    ZVariant value(type("ValuePin"), &pin);
    auto held = static_cast<ValuePin*>(value.getPtr());
    ZTypedPtr owner;
    EXPECT_EQ(value.getProperty(&owner, "x", true).toInt(), 5);
    EXPECT_EQ(owner.instance, static_cast<ValuePoint*>(held));
    EXPECT_EQ(owner.type, type("ValuePoint"));
    EXPECT_TRUE(value.setProperty("x", ZVariant(6)));
    EXPECT_EQ(held->first, 6);
    EXPECT_EQ(value.getProperty("mark").toInt(), 77);
    EXPECT_FALSE(value.setProperty("mark", ZVariant(1)));
    EXPECT_EQ(value.invoke("sum", list()).toInt(), 8);
    EXPECT_EQ(value.hashKey(), 6u);
    EXPECT_EQ(value.getValueT<ValuePoint>().first, 6);
    EXPECT_EQ(value.getValueT<ValueShape>().point.first, 1);
    ZVariant pointer;
    ASSERT_TRUE(pointer.setReference(type("ValuePin"), ZVariant(value).copyValue()));
    zfree(pointer.getPtr()); // the variant keeps it
    EXPECT_EQ(pointer.getValueT<ValuePoint*>()->first, 6);
    EXPECT_EQ(pointer.getValueT<ValueShape*>(), nullptr);
    // The second form of an operation tells who has the property.
    ZTypedPtr second;
    EXPECT_EQ(ZTypedPtr(value).propertyFlags(&second, "x"), ZTypedPtr(value).propertyFlags("x"));
    EXPECT_EQ(second.instance, static_cast<ValuePoint*>(held));
}

TEST_F(PlainProperties, AWalkMayChangeThem) {
    ZVariant value = point(4);
    ZTypedPtr owner;
    auto doubled = [](const ZProperty&, ZVariant& number, void*) { return number.setInt(number.toInt() * 2); };
    EXPECT_TRUE(value.updateProperties(&owner, nullptr, doubled, nullptr, false, false));
    EXPECT_EQ(owner.instance, value.getPtr());
    EXPECT_EQ(value.getProperty("x").toInt(), 8);
    EXPECT_EQ(value.getProperty("y").toInt(), 4);
}

TEST_F(PlainProperties, PathsLeadThroughValuesAndAreWrittenBack) {
    ZVariant value = shape();
    EXPECT_EQ(value.getProperty("place.x").toInt(), 1);
    EXPECT_EQ(value.getProperty("place x").toInt(), 1);
    EXPECT_TRUE(value.setProperty("place.x", ZVariant(40)));
    EXPECT_EQ(value.getProperty("place.x").toInt(), 40);
    EXPECT_EQ(value.getProperty("total").toInt(), 42);
    EXPECT_TRUE(value.hasProperty("place.x"));
    EXPECT_FALSE(value.hasProperty("place.z"));
    EXPECT_FALSE(value.setProperty("place.z", ZVariant(1)));
    EXPECT_FALSE(value.setProperty("total.x", ZVariant(1)));
    EXPECT_EQ(value.getPropertyType("place.x"), ztype<int>());
}

TEST_F(PlainProperties, StructuresInMapsAreWrittenThroughThem) {
    ZVariant value = shape();
    ZVSelectMap map(type("ValuePoint"));
    ASSERT_TRUE(map.set("corner", point(3)));
    ASSERT_TRUE(value.setProperty("named", ZVariant(type("ZVSelectMap"), &map)));
    EXPECT_TRUE(value.setProperty("named.corner.x", ZVariant(8)));
    EXPECT_EQ(value.getProperty("named").itemByKey(ZSelector("corner")).getProperty("x").toInt(), 8);
    // The map that was given is untouched; a new key is one more item.
    EXPECT_EQ(map.variant("corner").getProperty("x").toInt(), 3);
    EXPECT_TRUE(value.setProperty("named.other", point(7)));
    EXPECT_EQ(value.getProperty("named").itemCount(), 2u);
}

TEST_F(PlainProperties, WritesToACopyLeaveTheOriginal) {
    ZVariant first = shape(), second(first);
    EXPECT_TRUE(second.samePtr(first));
    EXPECT_TRUE(second.setProperty("label", ZVariant("new")));
    EXPECT_EQ(second.getProperty("label").toString(), "new");
    EXPECT_TRUE(first.getProperty("label").toString().isEmpty());
    // A pointer shows the value itself.
    ZVariant pointer;
    ASSERT_TRUE(pointer.setReference(first.type(), first.getPtr()));
    EXPECT_TRUE(pointer.setProperty("label", ZVariant("seen")));
    EXPECT_EQ(first.getProperty("label").toString(), "seen");
}

TEST_F(PlainProperties, WritingSurvivesLackOfMemory) {
    shape().setProperty("place.x", ZVariant(1));
    failEachAllocation([](AllocProbe&) {
        ZFailGuard guard;
        ZVariant value = shape();
        if (!guard.rose()) {
            ZVariant copy(value);
            bool done = copy.setProperty("place.x", ZVariant(40));
            EXPECT_EQ(static_cast<const ValueShape*>(copy.getPtr())->point.first, done ? 40 : 1);
            EXPECT_EQ(static_cast<const ValueShape*>(value.getPtr())->point.first, 1);
        }
        guard.forget();
    });
}

TEST_F(PlainProperties, VeryLongPathsEnd) {
    std::string path = "place";
    for (int i = 0; i < 100000; ++i) path += ".x";
    ZVariant value = shape();
    EXPECT_TRUE(value.getProperty(ZSelector(path.c_str())).isNull());
    EXPECT_FALSE(value.setProperty(ZSelector(path.c_str()), ZVariant(1)));
}

TEST_F(PlainProperties, ItemsOfAPropertyAreWrittenBack) {
    ZVariant value = shape();
    ZVArray numbers(ztype<int>());
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(numbers.append(ZVariant(i * 10)));
    ASSERT_TRUE(value.setProperty("items", ZVariant(type("ZVArray"), &numbers)));
    EXPECT_EQ(value.getPropertyCount("items"), 3);
    EXPECT_EQ(value.getPropertyItem("items", 2).toInt(), 20);
    EXPECT_TRUE(value.setPropertyItem("items", 1, ZVariant(11), true));
    EXPECT_TRUE(value.addPropertyItem("items", ZVariant(30), true));
    EXPECT_TRUE(value.removePropertyItem("items", 0));
    EXPECT_EQ(value.getPropertyItem("items", 0).toInt(), 11);
    EXPECT_EQ(value.findPropertyIndex("items", ZVariant(30)), 2);
    EXPECT_TRUE(value.hasPropertyValue("items", ZVariant(30)));
    EXPECT_FALSE(value.setPropertyItem("items", 7, ZVariant(1), true));
    EXPECT_TRUE(value.clearProperty("items"));
    EXPECT_EQ(value.getPropertyCount("items"), 0);
    EXPECT_EQ(numbers.count(), 3u);
}

TEST_F(PlainProperties, MethodsOfValuesAreCalledByName) {
    ZVariant value = point(4);
    EXPECT_EQ(value.invoke("sum", list()).toInt(), 6);
    EXPECT_EQ(value.invoke("int sum() const", list()).toInt(), 6);
    EXPECT_TRUE(value.invoke("move", list(3)).toBool());
    EXPECT_EQ(value.getProperty("x").toInt(), 7);
    EXPECT_TRUE(value.invoke("move", list("no number")).isNull());
    EXPECT_TRUE(value.invoke("absent", list()).isNull());
    EXPECT_TRUE(value.callV("sum"));
    EXPECT_FALSE(value.callV("absent"));
    ZVariant whole = shape();
    EXPECT_EQ(whole.invoke("place.sum", list()).toInt(), 3);
    EXPECT_EQ(whole.invoke("total", list()).toInt(), 3);
    EXPECT_TRUE(value.checkOperation("compare", point(1)));
    EXPECT_FALSE(value.checkOperation("not.compare", point(1)));
}

TEST_F(PlainProperties, MatchingLooksIntoStoredProperties) {
    ZVariant a = shape(), b = shape();
    EXPECT_TRUE(a.matchValue(b, 0));
    EXPECT_TRUE(b.setProperty("place.x", ZVariant(2)));
    EXPECT_FALSE(a.matchValue(b, 10));
}

TEST_F(PlainProperties, ATypedPointerThatHasAnInstanceStays) {
    ZVariant value = point(4);
    ValuePoint other;
    ZTypedPtr kept(value.type(), &other), empty;
    EXPECT_NE(ZTypedPtr(value).method(&kept, "int sum()", {}), nullptr);
    EXPECT_EQ(kept.instance, &other);
    EXPECT_NE(ZTypedPtr(value).method(&empty, "int sum()", {}), nullptr);
    EXPECT_EQ(empty.instance, value.getPtr());
}

TEST_F(PlainProperties, AccessorsAreCalledWithWhatTheyTake) {
    ZVariant value = point(4);
    const ZTypedPtr place(value);
    toolkit::EpochGuard guard;
    ZMethod *sum = place.method("int sum()", {}), *move = place.method("bool move(int)", {});
    ASSERT_TRUE(sum && move);
    EXPECT_EQ(place.getVariant(sum).toInt(), 6);
    EXPECT_TRUE(place.setVariant(move, ZVariant(2)));
    EXPECT_EQ(value.getProperty("x").toInt(), 6);
    EXPECT_TRUE(place.getVariant(sum, 1).isNull());
    EXPECT_TRUE(place.getVariant(move).isNull());
    EXPECT_FALSE(place.setVariant(sum, ZVariant(2)));
    EXPECT_FALSE(place.setVariant(move, 1, ZVariant(2)));
    EXPECT_EQ(place.findVariant(sum, ZVariant(2)), -1);
    EXPECT_EQ(value.getProperty("x").toInt(), 6);
}

TEST_F(PlainProperties, SetsOfProperties) {
    ZVariant value = point(4), target = point(0);
    ZVSelectMap all;
    EXPECT_TRUE(value.fetchProperties(all));
    EXPECT_EQ(all.count(), 2u);
    EXPECT_TRUE(value.matchProperties(all));
    EXPECT_FALSE(target.matchProperties(all));
    EXPECT_TRUE(target.setProperties(all));
    EXPECT_TRUE(target.matchProperties(all));
    EXPECT_EQ(target.getProperty("x").toInt(), 4);
}
