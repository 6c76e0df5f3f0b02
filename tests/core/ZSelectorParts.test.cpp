#include "core/ZArrayT.h"
#include "core/ZSelectorData.h"
#include "core/ZSelectorSpace.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/SelectorScope.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

ZSelector typed(const char* text, ZSelector::Type type) {
    ZSelector made;
    made.set(text, type);
    return made;
}
std::string parts(const ZSelector& sel) {
    std::string all;
    for (int i = 0; i < sel.parcount(); ++i) all += "[" + text(sel.param(i)) + "]";
    return all;
}

} // namespace

TEST(SelectorParts, OfAFunctionAndATemplate) {
    SelectorScope scope;
    ZSelector function("bool hasMethodId(const ZUnique&)");
    EXPECT_EQ(function.type(), ZSelector::Method);
    EXPECT_EQ(function.result(), ZSelector("bool"));
    EXPECT_EQ(function.methodName(), ZSelector("hasMethodId"));
    EXPECT_EQ(function.parcount(), 1);
    EXPECT_EQ(text(function.param(0)), "const ZUnique&");
    EXPECT_EQ(function.param(0), function.params()[0]);
    EXPECT_TRUE(function.param(1).isEmpty());
    EXPECT_TRUE(function.param(-1).isEmpty());
    ZSelector map("ZHashMapT<ZSelector, ZArrayT<int>>");
    EXPECT_EQ(text(map.methodName()), "ZHashMapT");
    EXPECT_EQ(parts(map), "[ZSelector][ZArrayT<int>]");
    EXPECT_EQ(map.index(ZSelector("ZArrayT<int>")), 1);
    EXPECT_EQ(map.index(ZSelector("int")), -1);
    ZSelector name("plain");
    EXPECT_EQ(name.parcount(), 0);
    EXPECT_EQ(name.params(), nullptr);
    EXPECT_EQ(name.methodName(), name);
    EXPECT_TRUE(name.result().isEmpty());
    EXPECT_EQ(ZSelector().parcount(), 0);
}

TEST(SelectorParts, ComposedTexts) {
    SelectorScope scope;
    ZSelector a("a"), b("b"), list("A<b>"), items[] = {a, b}, inner[] = {a, list};
    EXPECT_EQ(ZSelector(items, 2, ZSelector::Names), ZSelector("a b"));
    EXPECT_EQ(ZSelector(items, 2, ZSelector::UID), ZSelector("a.b"));
    EXPECT_EQ(ZSelector(items, 2, ZSelector::Colon), ZSelector("a:b"));
    EXPECT_EQ(ZSelector(items, 2, ZSelector::Types), ZSelector("a::b"));
    EXPECT_EQ(ZSelector(items, 2, ZSelector::Detect), ZSelector("a b"));
    EXPECT_EQ(ZSelector(&list, 1, ZSelector::Names), list); // one item is that item
    EXPECT_EQ(ZSelector(&a, 1, ZSelector::Types).type(), ZSelector::Types);
    ZSelector composed(ZSelector("T"), ZSelector(), inner, 2, ZSelector::Template);
    EXPECT_EQ(text(composed), "T<a, A<b> >");
    EXPECT_EQ(parts(composed), "[a][A<b>]");
    EXPECT_EQ(composed, ZSelector("T<a, A<b>>"));
    EXPECT_EQ(text(ZSelector(ZSelector("f"), a, inner, 2, ZSelector::Method)), "a f(a, A<b>)");
    EXPECT_EQ(text(ZSelector(ZSelector("f"), ZSelector(), ZSelector::Method)), "f()");
    EXPECT_TRUE(ZSelector(items, 2, ZSelector::Name).isEmpty());
    ZSelector gaps[] = {ZSelector(), a, ZSelector(), b, ZSelector()};
    EXPECT_EQ(ZSelector(gaps, 5, ZSelector::Names), ZSelector("a b"));
    EXPECT_EQ(ZSelector(gaps, 3, ZSelector::UID), a);
    EXPECT_EQ(text(ZSelector(list, ZSelector(), gaps, 5, ZSelector::Method)), "A<b>(a, b)");
    EXPECT_TRUE(ZSelector(gaps, 1, ZSelector::Names).isEmpty());
    EXPECT_TRUE(ZSelector(items, 0, ZSelector::Names).isEmpty());
    EXPECT_TRUE(ZSelector(items, -1, ZSelector::Names).isEmpty());
    ZArrayT<ZSelector> array(items, 2);
    EXPECT_EQ(ZSelector(array), ZSelector("a b"));
    // What the parts are depends on the text alone, not on who made it first.
    ZSelector blank("int *"), method(ZSelector("g"), ZSelector(), &blank, 1, ZSelector::Method);
    EXPECT_EQ(method, ZSelector("g(int*)"));
    EXPECT_EQ(method.param(0), ZSelector("int*"));
    ZSelectorData data(ZSelector("f"), a, items, 2, ZSelector::Method);
    EXPECT_STREQ(data.text, "a f(a, b)");
    EXPECT_EQ(data.flags & ZSelectorData::Parts, ZSelectorData::Parts);
    EXPECT_TRUE(data.containsSorted(b));
    EXPECT_FALSE(data.containsSorted(list));
    ZSelectorData copied;
    ASSERT_TRUE(copied.copy(data));
    EXPECT_STREQ(copied.text, data.text);
    EXPECT_NE(copied.text, data.text);
    EXPECT_EQ(copied.paramCount, 2u);
}

TEST(SelectorParts, TakingApart) {
    SelectorScope scope;
    ZSelector path("a.b.c"), before, rest;
    EXPECT_EQ(path.extract().count(), 3u);
    EXPECT_EQ(path.extract(1, 3), ZSelector("b.c"));
    EXPECT_EQ(path.extract(-5, 1), ZSelector("a"));
    EXPECT_TRUE(path.extract(2, 2).isEmpty());
    EXPECT_TRUE(path.separate(before, rest, 1));
    EXPECT_EQ(before, ZSelector("a"));
    EXPECT_EQ(rest, ZSelector("b.c"));
    EXPECT_FALSE(path.separate(before, rest, 3));
    EXPECT_EQ(path.prefix(), ZSelector("a.b"));
    EXPECT_EQ(path.suffix(), ZSelector("b.c"));
    ZArrayT<ZSelector> words = typed("x y:z", ZSelector::Names).extract(ZSelector::Colon);
    ASSERT_EQ(words.count(), 2u);
    EXPECT_EQ(text(words[0]), "x y");
    EXPECT_TRUE(path.setParam(1, ZSelector("new")));
    EXPECT_EQ(path, ZSelector("a.new.c"));
    EXPECT_FALSE(path.setParam(3, ZSelector("new")));
    ZSelector method("int f(a, b) const");
    EXPECT_TRUE(method.setParam(0, ZSelector("c")));
    EXPECT_EQ(text(method), "int f(c, b) const");
    EXPECT_TRUE(method.setMethodName(ZSelector("A::g")));
    EXPECT_EQ(text(method), "int A::g(c, b) const");
    ZSelector list("T<x, y>"), name("name");
    EXPECT_TRUE(list.setMethodName(ZSelector("U")));
    EXPECT_EQ(text(list), "U<x, y>");
    EXPECT_FALSE(name.setMethodName(list));
    EXPECT_EQ(text(ZSelector("pear apple fig").sorted()), "apple fig pear");
    EXPECT_EQ(text(ZSelector("b.a").sorted(ZSelector::UID)), "a.b");
}

TEST(SelectorParts, Sets) {
    SelectorScope scope;
    struct Row {
        const char *a, *b, *add, *remove, *intersect, *swap;
        bool contains;
    };
    const Row rows[] = {
        {"a b c", "c d a", "a b c d", "b", "a c", "b d", false},
        {"a b c", "c a", "a b c", "b", "a c", "b", true},
        {"a b", "c", "a b c", "a b", "", "a b c", false},
        {"a b", "b", "a b", "a", "b", "a", true},
        {"a", "b", "a b", "a", "", "a b", false},
        {"a", "a", "a", "", "a", "", true},
        {"a a b", "b a a", "a b", "", "a b", "", true},
        {"a b", "", "a b", "a b", "", "a b", true},
        {"", "a b", "a b", "", "", "a b", false},
        {"x.y", "x y", "x.y x y", "x.y", "", "x.y x y", false},
    };
    for (const Row& row : rows) {
        ZSelector a(row.a), b(row.b);
        EXPECT_EQ(text(a.add(b)), row.add) << row.a << " / " << row.b;
        EXPECT_EQ(text(a.remove(b)), row.remove) << row.a << " / " << row.b;
        EXPECT_EQ(text(a.intersect(b)), row.intersect) << row.a << " / " << row.b;
        EXPECT_EQ(text(a.swap(b)), row.swap) << row.a << " / " << row.b;
        EXPECT_EQ(a.intersects(b), *row.intersect != 0) << row.a << " / " << row.b;
        EXPECT_EQ(a.contains(b), row.contains) << row.a << " / " << row.b;
    }
    ZSelector path("a.b.c"), other("c.d");
    EXPECT_EQ(text(path.add(other, ZSelector::UID)), "a.b.c.d");
    EXPECT_EQ(text(path.remove(other, ZSelector::UID)), "a.b");
    EXPECT_EQ(text(path.swap(other, ZSelector::Detect)), "a.b.d");
    EXPECT_EQ(text(path.intersect(other, ZSelector::UID)), "c");
    EXPECT_TRUE(path.intersects(other, ZSelector::UID));
    EXPECT_FALSE(path.intersects(other));
    EXPECT_TRUE(path.contains(ZSelector("c.a"), ZSelector::UID));
    EXPECT_FALSE(path.contains(other, ZSelector::UID));
    EXPECT_TRUE(path.contains(ZSelector("c.a")));
    EXPECT_TRUE(path.contains(ZSelector("b")));
    EXPECT_FALSE(ZSelector("name").contains(ZSelector("nam")));
    EXPECT_TRUE(ZSelector("a b").matches(ZSelector("b a")));
    EXPECT_FALSE(ZSelector("a b c").matches(ZSelector("b a")));
    EXPECT_FALSE(ZSelector("name").matches(ZSelector("other")));
    EXPECT_TRUE(ZSelector("a.b").matchId(path));
    EXPECT_TRUE(ZSelector("a").matchId(path));
    EXPECT_FALSE(ZSelector("b.c").matchId(path));
    EXPECT_FALSE(path.matchId(ZSelector("a.b")));
    ZArrayT<ZSelector> array(path.extract());
    EXPECT_EQ(ZSelector("c x a").countItems(array), 2);
}

TEST(SelectorParts, ListsOfEveryLengthContainTheirItemsOnly) {
    SelectorScope scope;
    std::vector<ZSelector> all;
    for (int i = 0; i < 200; ++i) all.push_back(ZSelector(("item" + std::to_string(i)).c_str()));
    for (auto type : {ZSelector::Names, ZSelector::UID})
        for (int count = 2; count < 40; ++count) {
            ZSelector list(all.data() + count, count, type);
            for (int i = 0; i < 200; ++i)
                ASSERT_EQ(list.contains(all[size_t(i)]), i >= count && i < 2 * count) << count << ", " << i;
            EXPECT_TRUE(list.contains(list.suffix()));
            EXPECT_FALSE(list.contains(ZSelector(all.data() + count - 1, 3, type)));
            EXPECT_EQ(list.contains(ZSelector()), type == ZSelector::Names);
        }
}

TEST(SelectorParts, LargeSetsTakeNoQuadraticTime) {
    SelectorScope scope;
    std::string some, more;
    for (int i = 0; i < 30000; ++i) {
        some += " w" + std::to_string(i);
        more += " w" + std::to_string(i + 15000);
    }
    ZSelector a(some.c_str()), b(more.c_str());
    EXPECT_EQ(a.add(b).parcount(), 45000);
    EXPECT_EQ(a.intersect(b).parcount(), 15000);
    EXPECT_FALSE(a.contains(b));
    EXPECT_TRUE(a.contains(a.intersect(b)));
}

TEST(SelectorParts, SelfReferencesDontKeepAnEntry) {
    SelectorScope scope;
    ZSelectorSpace::space().setPermanentLimit(0);
    {
        ZSelector own("x>y<a::b"); // its only part is itself
        EXPECT_EQ(own.parcount(), 1);
        EXPECT_EQ(own.param(0), own);
        EXPECT_EQ(own.baseName(), own);
        EXPECT_EQ(own.used(), 1);
        ZSelector name("a::b::c");
        EXPECT_EQ(name.parcount(), 3);
        EXPECT_EQ(name.unqualified(), name);
        EXPECT_EQ(text(name.baseName()), "c");
    }
    EXPECT_EQ(ZSelector::selectorCount(), 0u);
}

TEST(SelectorParts, NestedTemplatesGoLevelByLevel) {
    SelectorScope scope;
    ZSelectorSpace::space().setPermanentLimit(0);
    {
        std::string nested = "x";
        for (int i = 0; i < 1000; ++i) nested = "A<" + nested + ">";
        std::vector<ZSelector> level{ZSelector(nested.c_str())};
        while (level.back().parcount()) level.push_back(level.back().param(0));
        EXPECT_EQ(level.size(), 1001u);
        EXPECT_EQ(text(level.back()), "x");
    }
    EXPECT_EQ(ZSelector::selectorCount(), 0u);
}

TEST(SelectorParts, EachAllocationMayFail) {
    failEachAllocation([](AllocProbe&) {
        if (ZSelector::open()) {
            ZSelectorSpace::space().setPermanentLimit(2);
            ZSelector method("void A::f(B<c, d>, e.f)"), list("a b c");
            int count = method.parcount();
            EXPECT_TRUE(count == 0 || count == 2);
            EXPECT_TRUE(count == 0 || text(method.param(1)) == "e.f");
            ZSelector made = list.add(ZSelector("c d")), base = method.baseName();
            EXPECT_TRUE(made.isEmpty() || text(made) == "a b c d" || text(made) == "a b c" || text(made) == "c d");
            EXPECT_TRUE(base.isEmpty() || text(base) == "f(B<c, d>, e.f)");
            list.contains(ZSelector("b"));
            ZSelector longer = list.join(std::string(600, 'x').c_str());
            EXPECT_TRUE(longer.isEmpty() || longer.length() == 605 || longer.length() == 600);
            method.setParam(0, list);
        }
        ZSelector::close();
    });
    EXPECT_EQ(zfailcount(), 0);
}

TEST(SelectorParts, ResolvedByManyThreadsAtOnce) {
    SelectorScope scope;
    for (bool counted : {false, true}) {
        if (counted) ZSelectorSpace::space().setPermanentLimit(ZSelector::selectorCount());
        for (int round = 0; round < 40; ++round) {
            ZSelector method(("void A::f" + std::to_string(round) + "(B<c>, d e)").c_str());
            ZSelector words(("a" + std::to_string(round) + " b c d").c_str());
            std::vector<std::thread> threads;
            for (int t = 0; t < 4; ++t)
                threads.emplace_back([&] {
                    EXPECT_EQ(method.parcount(), 2);
                    EXPECT_EQ(text(method.nameSpace()), "A");
                    EXPECT_TRUE(words.contains(ZSelector("d")));
                    EXPECT_EQ(words.baseName(), words);
                });
            for (auto& thread : threads) thread.join();
        }
    }
}
