#include "value/ZTypeArray.h"

#include "core/ZHashSetT.h"
#include "object/ZMetaType.h"
#include "tests/support/CoreScope.h"
#include "tests/support/invoke.h"
#include "text/ZBlendPos.h"
#include "value/ZContentMap.h"
#include "value/ZTypeNameMap.h"
#include "value/ZUnknownData.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"

#include <gtest/gtest.h>
#include <string>

// The arrays and the map of instances.

namespace {

using Piece = ZRetainPtrT<ZUnknownData>;

class TypeArrays : public CoreTest {
protected:
    /// An instance that compares by its text.
    static Piece piece(const std::string& text) {
        return Piece::adopt(zmake<ZUnknownData>(ZSelector("Piece"), text.data(), text.size(), false));
    }
    static std::string textOf(const ZType* instance) {
        auto piece = static_cast<const ZUnknownData*>(instance);
        return piece ? std::string(static_cast<const char*>(piece->bytes()), piece->size()) : "-";
    }
    template <class Array> static std::string told(const Array& array) {
        std::string text;
        for (int i = 0; uint(i) < array.count(); ++i) text += textOf(array.get(i));
        return text;
    }
    static ZTypeArray letters(const char* text) {
        ZTypeArray made;
        for (; *text; ++text) EXPECT_TRUE(made.append(*text == '-' ? nullptr : piece({*text}).get()));
        return made;
    }
    static ZNamedTypeArray named(std::initializer_list<std::pair<const char*, const char*>> items) {
        ZNamedTypeArray made;
        for (auto [name, text] : items) EXPECT_TRUE(made.append(name, piece(text)));
        return made;
    }
    static std::string keysOf(const ZNamedTypeArray& array) {
        std::string text;
        for (const ZSelector& key : array.keys()) text += std::string(key.string()) + " ";
        return text;
    }
    static ZArrayT<int> places(std::initializer_list<int> list) { return {list.begin(), uint(list.size())}; }
    template <class T> static ZVariant held(const T& container) { return ZVariant(ztype<T>(), &container); }
};

TEST_F(TypeArrays, HoldsReferences) {
    const Piece a = piece("a");
    {
        ZTypeArray array;
        ASSERT_TRUE(array.append(a) && array.append(nullptr) && array.append(ZVariant(a.get())));
        EXPECT_EQ(a->refcount(), 3);
        EXPECT_FALSE(array.append(ZVariant(5)));
        EXPECT_TRUE(array.append(ZVariant()));
        ZTypeArray copy(array);
        EXPECT_EQ(copy.refcount(), 2);
        ASSERT_TRUE(copy.removeIndex(0));
        EXPECT_EQ(told(array), "a-a-");
        EXPECT_EQ(told(copy), "-a-");
        EXPECT_EQ(array.get(4), nullptr);
        EXPECT_EQ(array.get(-1), nullptr);
        EXPECT_EQ(array.typeByIndex(0), ztype<ZUnknownData>());
        EXPECT_TRUE(array.isType("ZType"));
        EXPECT_EQ(array.getValueType(), ztype<ZType>()->getPtrType());
        EXPECT_EQ(array.array().count(), 4u);
        EXPECT_EQ(ZTypeArray(held(array)), array);
        ZTypeArray refused(ZVArray("some names"));
        EXPECT_TRUE(zresetfail());
        EXPECT_TRUE(refused.isEmpty());
        ZVArray general = array.array();
        ASSERT_TRUE(array.cleanupPtr(a) && general.cleanupPtr(a));
        EXPECT_EQ(general.findPointer(a), -1);
        EXPECT_EQ(told(array), "----");
        EXPECT_EQ(a->refcount(), 2);
    }
    EXPECT_EQ(a->refcount(), 1);
}

TEST_F(TypeArrays, DetachesDeeplyWhatOthersHold) {
    const Piece shared = piece("s");
    ZTypeArray array = letters("a-");
    ASSERT_TRUE(array.append(shared));
    const ZType* own = array.get(0);
    ASSERT_TRUE(array.detach(true, false));
    EXPECT_EQ(array.get(0), own);
    EXPECT_NE(array.get(2), shared.get());
    EXPECT_EQ(shared->refcount(), 1);
    EXPECT_EQ(told(array), "a-s");
    // Of a shared block every instance is copied, and null stays null.
    ASSERT_TRUE(array.expand(5, true));
    EXPECT_EQ(array.maxcount(), 8u);
    ZTypeArray copy(array);
    ASSERT_TRUE(copy.detach(true, true));
    EXPECT_NE(copy.get(0), own);
    EXPECT_EQ(copy.maxcount(), 8u);
    EXPECT_EQ(copy, array);
    ZTypeArray shallow(array);
    ASSERT_TRUE(shallow.detach());
    EXPECT_EQ(shallow.get(0), own);
    ZVArray general = shallow.array();
    ASSERT_TRUE(shallow.deepDetach() && general.deepDetach());
    EXPECT_EQ(told(shallow), "a-s");
    EXPECT_NE(general.valuePtr(0), own);
    EXPECT_TRUE(array.isDetached());
    // What nobody else holds stays itself.
    const void* const alone[] = {shallow.get(0), general.valuePtr(0)};
    ASSERT_TRUE(shallow.deepDetach() && general.deepDetach());
    EXPECT_EQ(shallow.get(0), alone[0]);
    EXPECT_EQ(general.valuePtr(0), alone[1]);
}

TEST_F(TypeArrays, OrderAndExcerpts) {
    ZTypeArray array = letters("cab-b");
    EXPECT_EQ(array.findValue(ZVariant(piece("b").get())), 2);
    EXPECT_EQ(array.findValue(ZVariant(piece("b").get()), 3), 4);
    EXPECT_EQ(array.findPointer(array.get(4)), 4);
    const ZType *first = array.get(2), *second = array.get(4);
    ASSERT_TRUE(array.sort());
    EXPECT_EQ(told(array), "-abbc");
    EXPECT_EQ(array.get(2), first);
    EXPECT_EQ(array.get(3), second);
    ASSERT_TRUE(array.changePlace(1, 2, 3));
    EXPECT_EQ(told(array), "-bcab");
    ASSERT_TRUE(array.changePlace(places({2, 4, 1, 0}), 0));
    EXPECT_EQ(told(array), "cbb-a");
    EXPECT_FALSE(array.changePlace(0, 2, 4));
    EXPECT_FALSE(array.changePlace(places({1, 1}), 0));
    ASSERT_TRUE(array.reverse());
    EXPECT_EQ(told(array), "a-bbc");
    EXPECT_EQ(told(array.rearrange(places({4, 9, 0}))), "c-a");
    EXPECT_EQ(told(array.extract(places({4, 9, 0}))), "ca");
    EXPECT_EQ(told(array.extract(1, 2)), "-b");
    EXPECT_EQ(told(array.extractRemove(places({2, 0}))), "ba");
    EXPECT_EQ(told(array), "-bc");
    ZArrayT<int> nulls;
    ASSERT_TRUE(array.collectNullIndex(nulls) && array.removeItems(nulls));
    EXPECT_EQ(told(array), "bc");
    ASSERT_TRUE(array.insertArray(1, array) && array.setCount(5) && array.setSpace(3));
    EXPECT_EQ(told(array), "bbc");
    EXPECT_EQ(array.maxcount(), 3u);
    EXPECT_FALSE(array.setCount(-1));
    EXPECT_FALSE(array.setSpace(-1));
    EXPECT_FALSE(array.expand(0xFFFFFFFF));
    EXPECT_TRUE(array.contains(letters("bb")));
    EXPECT_FALSE(array.contains(letters("bx")));
    EXPECT_TRUE(array.overlapping(letters("xc")));
    EXPECT_EQ(array.compare(letters("bbd")), -1);
    EXPECT_EQ(array.compare(letters("bb")), 1);
    EXPECT_EQ(array.hashKey(), letters("bbc").hashKey());
}

TEST_F(TypeArrays, NamesAreFoundInAnyOrder) {
    ZNamedTypeArray one = named({{"only", "1"}});
    EXPECT_EQ(one.binarySearch("only"), 0);
    EXPECT_EQ(one.binarySearch("other"), -1);
    EXPECT_EQ(ZNamedTypeArray().findKey("any", true), -1);
    ZNamedTypeArray array;
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE(array.append(("k" + std::to_string(i * 7 % 40)).c_str(), piece(std::to_string(i * 7 % 40))));
    ASSERT_TRUE(array.append("k3", piece("again")));
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 40; ++i) {
            const std::string key = "k" + std::to_string(i);
            EXPECT_EQ(textOf(array.get(key.c_str())), std::to_string(i)) << round;
            EXPECT_EQ(array.findKey(key.c_str()), array.linearSearch(key.c_str())) << key;
        }
        EXPECT_FALSE(array.haskey("k40"));
        ASSERT_TRUE(array.sort());
        EXPECT_TRUE(array.isSorted());
    }
    ASSERT_TRUE(array.set("k5", piece("five")) && array.isSorted());
    EXPECT_EQ(textOf(array.get("k5")), "five");
    ASSERT_TRUE(array.set("new", ZVariant(piece("n").get())));
    EXPECT_FALSE(array.set("new", ZVariant(1)));
    EXPECT_FALSE(array.isSorted());
    EXPECT_EQ(array.key(41), ZSelector("new"));
    EXPECT_EQ(array.getKey(array.get(41)), ZSelector("new"));
    EXPECT_EQ(array.keySet().count(), 41u);
    EXPECT_TRUE(array.hasKeys(named({{"k1", ""}, {"new", ""}})));
    EXPECT_FALSE(array.hasKeys(named({{"k1", ""}, {"old", ""}})));
}

TEST_F(TypeArrays, NamedItemsAreSetCopiedAndCompared) {
    ZNamedTypeArray array = named({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    const ZNamedTypeArray before(array);
    ASSERT_TRUE(array.set("b", piece("B")) && array.copy("a", "d") && array.copy("a", "c"));
    EXPECT_EQ(keysOf(array), "a b c d ");
    EXPECT_EQ(told(array), "1B11");
    EXPECT_EQ(told(before), "123");
    EXPECT_FALSE(array.copy("z", "a"));
    EXPECT_FALSE(array.remove("z"));
    ASSERT_TRUE(array.remove("a") && array.setKey(0, "e") && array.insert(0, "f", nullptr));
    EXPECT_EQ(keysOf(array), "f e c d ");
    EXPECT_EQ(keysOf(array.extract(1, 2)), "e c ");
    // The name decides first.
    EXPECT_EQ(named({{"a", "2"}}).compare(named({{"a", "1"}})), 1);
    EXPECT_NE(named({{"a", "1"}}).compare(named({{"b", "1"}})), 0);
    EXPECT_TRUE(before.contains(named({{"c", "3"}, {"a", "1"}})));
    EXPECT_FALSE(before.contains(named({{"c", "1"}})));
    EXPECT_FALSE(named({{"a", "1"}}).matchValue(named({{"b", "1"}}), 0));
    const ZContentMap content(before), other(named({{"b", "3"}, {"c", "3"}}));
    EXPECT_EQ(content.compare(other, "c"), 0);
    EXPECT_EQ(content.compare(other, "b"), -1);
    EXPECT_EQ(content.compare(other, "a"), 1);
    EXPECT_EQ(content.compare(other, "z"), 0);
}

TEST_F(TypeArrays, BlendTakesTheNearerOfWhatCannotBlend) {
    const ZTypeArray a = letters("ab"), b = letters("vwxyz");
    ZTypeArray made(&a, &b, ZBlendPos(0.75));
    EXPECT_EQ(told(made), "vwxyz"); // ceil(2 * 0.25 + 5 * 0.75)
    ASSERT_TRUE(made.blendFrom(&a, &b, ZBlendPos(0.5)));
    EXPECT_EQ(told(made), "aaab");
    ASSERT_TRUE(made.blendFrom(nullptr, &b, ZBlendPos(0.1)));
    EXPECT_EQ(made, b);
    const ZNamedTypeArray x = named({{"p", "1"}, {"q", "2"}}), y = named({{"q", "3"}, {"r", "4"}});
    const ZNamedTypeArray between(&x, &y, ZBlendPos(0.75));
    EXPECT_EQ(keysOf(between), "p q r ");
    EXPECT_EQ(told(between), "134");
}

TEST_F(TypeArrays, MapOfNames) {
    ZTypeNameMap map;
    const Piece a = piece("a");
    ASSERT_TRUE(map.set("x", a) && map.set("y", nullptr) && map.set("z", ZVariant(piece("c").get())));
    EXPECT_FALSE(map.set("w", ZVariant(3)));
    EXPECT_EQ(map.get("x"), a.get());
    EXPECT_EQ(map.get("y"), nullptr);
    EXPECT_TRUE(map.haskey("y"));
    EXPECT_EQ(map.getKey(a), ZSelector("x"));
    EXPECT_EQ(textOf(map.item(2)), "c");
    EXPECT_EQ(map.item(3), nullptr);
    ZTypeNameMap copy(map);
    ASSERT_TRUE(copy.remove("x") && copy.setHashbits(4));
    EXPECT_EQ(map.count(), 3u);
    EXPECT_EQ(copy.hashbits(), 4u);
    map.clearAll();
    EXPECT_TRUE(map.isZType());
    EXPECT_EQ(a->refcount(), 1);
    const ZTypeNameMap taken(held(named({{"m", "1"}, {"n", "2"}})));
    EXPECT_EQ(textOf(taken.get("n")), "2");
    EXPECT_EQ(keysOf(ZNamedTypeArray(held(taken))), "m n ");
    const ZTypeNameMap none(ZVariant(7));
    EXPECT_TRUE(zresetfail());
}

/// Names are properties, of the type that the instance under them has.
TEST_F(TypeArrays, KeysAreProperties) {
    ZTypeNameMap map;
    ASSERT_TRUE(map.set("first", piece("1")) && map.set("second", nullptr));
    const ZVariant values[] = {held(named({{"first", "1"}, {"second", "2"}})),
                               held(ZContentMap(named({{"first", "1"}, {"second", "2"}}))), held(map)};
    for (ZVariant value : values) {
        SCOPED_TRACE(value.typeName().string());
        EXPECT_TRUE(value.isContainer());
        EXPECT_EQ(textOf(value.getProperty("first").toType()), "1");
        EXPECT_EQ(value.getPropertyType("first"), ztype<ZUnknownData>()->getPtrType());
        EXPECT_TRUE(value.hasProperty("second"));
        EXPECT_FALSE(value.hasProperty("third"));
        ASSERT_TRUE(value.setProperty("second", ZVariant(piece("new").get())));
        EXPECT_FALSE(value.setProperty("third", ZVariant(piece("x").get())));
        EXPECT_FALSE(value.setProperty("second", ZVariant(1)));
        EXPECT_EQ(textOf(value.getProperty("second").toType()), "new");
        ASSERT_TRUE(value.clearProperty("second"));
        EXPECT_EQ(value.getProperty("second").toType(), nullptr);
        // Items go by name too.
        EXPECT_EQ(value.itemCount(), 2u);
        EXPECT_EQ(value.indexOfKey(ZSelector("second")), 1);
        EXPECT_TRUE(value.contains(ZVariant("first")));
        EXPECT_TRUE(value.setItem(ZSelector("third"), ZVariant(piece("3").get())));
        EXPECT_EQ(textOf(value.itemByKey(ZSelector("third")).toType()), "3");
        EXPECT_EQ(value.selectorOfValue(ZVariant(piece("3").get())), ZSelector("third"));
        EXPECT_FALSE(value.appendItem(ZVariant(piece("4").get())));
        EXPECT_TRUE(value.removeItem(ZSelector("first")));
        EXPECT_EQ(value.itemCount(), 2u);
        // Their method answers, not the walk over properties.
        EXPECT_TRUE(value.clearItems() && value.matchValue(value, 0));
        ZMetaType* copied = static_cast<ZMetaType*>(value.mainType()->copy());
        ASSERT_NE(copied, nullptr);
        EXPECT_EQ(copied->type(), value.mainType()->type());
        copied->release();
    }
}

TEST_F(TypeArrays, ByName) {
    ZVariant array = held(letters("ba"));
    EXPECT_TRUE(invoke(array, "append", piece("c").get()).toBool());
    EXPECT_TRUE(invoke(array, "sort").toBool());
    EXPECT_EQ(invoke(array, "count").toInt(), 3);
    const int places[] = {0, 1, 1};
    EXPECT_TRUE(array.invoke("changePlace", ZVArray(ztype<int>(), places, 3)).toBool());
    EXPECT_TRUE(array.invoke("changePlace", ZVArray(ztype<int>(), places, 2)).toBool());
    EXPECT_EQ(textOf(invoke(array, "get", 2).toType()), "c");
    EXPECT_EQ(told(*static_cast<const ZTypeArray*>(invoke(array, "extract", 1, 5).getPtr())), "bc");
    EXPECT_TRUE(array.contains(ZVariant(piece("b").get())));
    EXPECT_TRUE(array.contains(held(letters("cb"))));
    EXPECT_TRUE(ZVariant(piece("a").get()).checkOperation("in", array));
    EXPECT_TRUE(held(ZTypeArray()).matchValue(held(ZTypeArray()), 0));
    EXPECT_FALSE(held(ZTypeArray()).matchValue(array, 0));
    EXPECT_TRUE(array.setItem(0, ZVariant(piece("x").get())));
    EXPECT_TRUE(array.insertItem(ZVariant(3), ZVariant()));
    EXPECT_FALSE(array.insertItem(ZVariant(5), ZVariant()));
    EXPECT_EQ(array.itemCount(), 4u);
    ZVariant named = held(TypeArrays::named({{"a", "1"}}));
    EXPECT_EQ(invoke(named, "findKey", ZSelector("a")).toInt(), 0);
}

TEST_F(TypeArrays, FailedAllocationLeavesTheOldState) {
    const ZTypeArray given = letters("cab-d");
    const ZNamedTypeArray names = named({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    const Piece extra = piece("e");
    const ZVariant variant(extra.get());
    auto run = [&](AllocProbe&) {
        ZTypeArray array(given);
        std::string now = told(array);
        auto check = [&](bool done, const char* after) {
            EXPECT_EQ(told(array), done ? after : now.c_str());
            now = told(array);
            zrecover();
        };
        const bool first = array.append(variant);
        check(first, "cab-de");
        check(array.detach(true, true), now.c_str());
        ASSERT_TRUE(array.setCount(5) || !first);
        now = told(array);
        check(array.sort(), now == "cab-d" ? "-abcd" : now.c_str());
        const std::string whole = told(array);
        const ZTypeArray taken = array.extractRemove(1, 2);
        EXPECT_TRUE(told(array) + told(taken) == whole.substr(0, 1) + whole.substr(3) + whole.substr(1, 2) ||
                    (taken.isEmpty() && told(array) == whole));
        zrecover();
        ZNamedTypeArray other(names);
        const bool set = other.set("b", variant);
        EXPECT_EQ(told(other), set ? "1e3" : "123");
        ZTypeNameMap map;
        for (const char* name : {"x", "y", "z"}) {
            const uint before = map.count();
            EXPECT_EQ(map.count(), before + map.set(name, extra)) << name;
        }
        zrecover();
    };
    AllocProbe probe;
    run(probe);
    failEachAllocation(run);
}

} // namespace
