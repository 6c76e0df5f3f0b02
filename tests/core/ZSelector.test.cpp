#include "core/ZSelector.h"

#include "core/ZSelectorData.h"
#include "core/ZSelectorSpace.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/SelectorScope.h"
#include "toolkit/hash.h"
#include "toolkit/sanitized.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {
ZSelectorSpace& space() { return ZSelectorSpace::space(); }
/// From here on every new text is counted.
void countEverything() { space().setPermanentLimit(ZSelector::selectorCount()); }
} // namespace

TEST(Selector, EqualTextsAreOneValue) {
    SelectorScope scope;
    ZSelector a("alpha"), b("alpha", 5), c("alphabet", 5), d("  alpha\n", 8);
    EXPECT_FALSE(a.isEmpty());
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, c);
    EXPECT_EQ(a, d);
    EXPECT_STREQ(a.string(), "alpha");
    EXPECT_EQ(a.length(), 5);
    EXPECT_EQ(a.type(), ZSelector::Name);
    EXPECT_EQ(a.hashKey(), a.key());
    EXPECT_EQ(a.at(4), 'a');
    EXPECT_EQ(a.at(5), 0);
    EXPECT_EQ(a.at(-1), 0);
    EXPECT_EQ(space().get(a)->hash, toolkit::hashData(0, "alpha", 5, 32768));
    ZSelector spaced("a   b"), plain("a b");
    EXPECT_EQ(spaced, plain);
    EXPECT_EQ(ZSelector("a b"), plain);
}

TEST(Selector, KindsKeepEqualTextsApart) {
    SelectorScope scope;
    ZSelector normal("const A::B"), detected;
    EXPECT_TRUE(detected.set("const A::B", ZSelector::Detect));
    EXPECT_EQ(normal.type(), ZSelector::Names);
    EXPECT_EQ(detected.type(), ZSelector::Types);
    EXPECT_NE(normal, detected);
    EXPECT_NE(ZSelector("int *"), ZSelector("int*"));
    for (int round = 0; round < 3; ++round) { // the marks that one lookup leaves don't lead another astray
        EXPECT_EQ(ZSelector("const A::B"), normal);
        ZSelector again;
        again.set("  const A::B ", 13, ZSelector::Detect);
        EXPECT_EQ(again, detected);
        again.set("const A::B", ZSelector::Any);
        EXPECT_EQ(again.type(), ZSelector::Any);
        ZSelector linked;
        linked.link("const A::B", false);
        EXPECT_EQ(linked, detected);
    }
    ZSelector bytes;
    EXPECT_TRUE(bytes.setBytes(" a\nb ", 5));
    EXPECT_STREQ(bytes.string(), " a\nb ");
    EXPECT_EQ(bytes.type(), ZSelector::Names);
}

TEST(Selector, NormalFormWithoutTheSpace) {
    ZSelector::Type type = ZSelector::Mixed;
    int length = 7;
    EXPECT_EQ(ZSelector::normalize("", 0, type, length), nullptr);
    EXPECT_EQ(ZSelector::normalize(nullptr, 3, type, length), nullptr);
    EXPECT_EQ(length, 7);
    char* normal = ZSelector::normalize("A<B<c>> xyz", 7, type, length);
    EXPECT_STREQ(normal, "A<B<c> >");
    EXPECT_EQ(length, 8);
    EXPECT_EQ(type, ZSelector::Template);
    zfree(normal);
    EXPECT_EQ(ZSelector::stringType("const A::B", 10), ZSelector::Types);
    EXPECT_EQ(ZSelector::stringType("A::B c", 6), ZSelector::Names);
    EXPECT_EQ(ZSelector::stringType("@", 1), ZSelector::Name);
    EXPECT_EQ(ZSelector::stringType("", 0), ZSelector::Any);
    EXPECT_EQ(ZSelector::stringType(nullptr, 10), ZSelector::Any);
}

TEST(Selector, EmptyTextsAndValues) {
    SelectorScope scope;
    ZSelector none;
    EXPECT_TRUE(none.isEmpty());
    EXPECT_EQ(none.string(), nullptr);
    EXPECT_EQ(none.length(), 0);
    EXPECT_EQ(none.type(), ZSelector::Any);
    EXPECT_EQ(none.used(), 0);
    EXPECT_TRUE(ZSelector(static_cast<const char*>(nullptr)).isEmpty());
    EXPECT_TRUE(ZSelector("").isEmpty());
    EXPECT_TRUE(ZSelector("abc", 0).isEmpty());
    EXPECT_TRUE(ZSelector("abc", -3).isEmpty());
    EXPECT_FALSE(none.set("   ", ZSelector::Detect));
    EXPECT_FALSE(none.link("", true));
    EXPECT_FALSE(none.setValue(123456));
    ZSelector name("name");
    EXPECT_TRUE(none.setValue(name.key()));
    EXPECT_EQ(none, name);
    none.clear();
    EXPECT_TRUE(none.isEmpty());
}

TEST(Selector, FindCreatesNothing) {
    SelectorScope scope;
    uint before = ZSelector::selectorCount();
    EXPECT_TRUE(ZSelector::find("unheard").isEmpty());
    EXPECT_TRUE(ZSelector::find("un heard", 8).isEmpty());
    EXPECT_TRUE(ZSelector::find("unheard", 7, ZSelector::Detect).isEmpty());
    EXPECT_TRUE(ZSelector::findBytes("unheard", 7).isEmpty());
    EXPECT_EQ(ZSelector::selectorCount(), before);
    ZSelector made("heard");
    EXPECT_EQ(ZSelector::find("heard"), made);
    EXPECT_EQ(ZSelector::find("heard", 5, ZSelector::Name), made);
    EXPECT_EQ(ZSelector::findBytes("heard", 5), made);
    countEverything();
    ZSelector counted("counted");
    {
        ZSelector found = ZSelector::find("counted");
        EXPECT_EQ(counted.used(), 2);
    }
    EXPECT_EQ(counted.used(), 1);
}

TEST(Selector, PermanentUpToTheLimitCountedAbove) {
    SelectorScope scope;
    ZSelector permanent("permanent");
    EXPECT_EQ(permanent.used(), 1);
    {
        ZSelector copy(permanent);
        EXPECT_EQ(permanent.used(), 1);
    }
    countEverything();
    uint entries = ZSelector::selectorCount();
    {
        ZSelector a("counted");
        EXPECT_EQ(a.used(), 1);
        ZSelector b(a), c("counted"), d;
        d = c;
        EXPECT_EQ(a.used(), 4);
        d = ZSelector("other");
        EXPECT_EQ(a.used(), 3);
        b = b;
        EXPECT_EQ(a.used(), 3);
        ZSelector moved(std::move(c));
        EXPECT_EQ(a.used(), 3);
        ZSelector stored;
        space().lockSpace();
        stored.store(a);
        EXPECT_TRUE(d.store("counted"));
        EXPECT_EQ(a.used(), 5);
        stored.discard();
        d.discard();
        space().unlockSpace();
        EXPECT_EQ(a.used(), 3);
        uint key = a.key();
        a.clear();
        b.clear();
        EXPECT_STREQ(moved.string(), "counted");
        moved.clear();
        EXPECT_EQ(space().get(key), nullptr);
    }
    EXPECT_EQ(ZSelector::selectorCount(), entries);
    EXPECT_STREQ(permanent.string(), "permanent");
    space().setPermanentLimit(ZSelectorSpace::defaultPermanentLimit); // only goes down
    EXPECT_EQ(space().permanentLimit(), entries);
}

TEST(Selector, LinkedTextsAreNeitherCopiedNorCounted) {
    SelectorScope scope;
    static const char text[] = "linked.path";
    ZSelector linked, again;
    EXPECT_TRUE(linked.link(text, false));
    EXPECT_EQ(linked.string(), text);
    EXPECT_EQ(space().get(linked)->flags, 0x600u); // every dotted path names a variable
    EXPECT_TRUE(again.link("plainName", true));
    EXPECT_EQ(space().get(again)->flags, 0x600u);
    EXPECT_EQ(ZSelector("linked.path"), linked);
    ZSelector copy(linked);
    EXPECT_EQ(linked.used(), 1);
    // A text that goes away is copied for the other holders, wherever the entry's id lies.
    for (bool counted : {false, true}) {
        if (counted) countEverything();
        std::string name = counted ? "moduleName2" : "moduleName1";
        auto module = new char[32];
        std::strcpy(module, name.c_str());
        ZSelector owner, holder;
        EXPECT_TRUE(owner.link(module, false));
        EXPECT_EQ(owner.string(), module);
        holder = ZSelector(name.c_str());
        EXPECT_EQ(holder, owner);
        owner.unlink();
        std::memset(module, 'x', 12);
        delete[] module;
        EXPECT_TRUE(owner.isEmpty());
        EXPECT_STREQ(holder.string(), name.c_str());
        ZSelector second(holder);
        holder.clear();
        EXPECT_STREQ(second.string(), name.c_str());
        EXPECT_EQ(ZSelector(name.c_str()), second);
    }
    ZSelector heap("on the heap");
    EXPECT_EQ(heap.used(), 1);
    heap.unlink(); // the same as giving it up
    EXPECT_TRUE(heap.isEmpty());
    EXPECT_TRUE(ZSelector::find("on the heap").isEmpty());
}

TEST(Selector, HarmlessWhileClosedAndOpenAgain) {
    ZSelector closed("before open"), late;
    EXPECT_TRUE(closed.isEmpty());
    ASSERT_TRUE(ZSelector::open());
    ASSERT_TRUE(ZSelector::open());
    countEverything();
    ZSelector stale("stale"), linked;
    linked.link("linkedText", false);
    late = stale;
    ZSelector::close();
    ZSelector::close();
    EXPECT_FALSE(stale.isEmpty());
    EXPECT_EQ(stale.string(), nullptr);
    EXPECT_EQ(stale.type(), ZSelector::Any);
    ZSelector copy(stale);
    copy.clear();
    linked.unlink();
    late.clear();
    EXPECT_TRUE(ZSelector("after close").isEmpty());
    EXPECT_FALSE(copy.setValue(1));
    EXPECT_FALSE(copy.link("after close", false));
    EXPECT_EQ(ZSelector::selectorCount(), 0u);
    space().clearXMLNameMap();
    stale.forget();
    SelectorScope scope;
    ZSelector first("first");
    EXPECT_EQ(first.used(), 1);
    linked = ZSelector::adopt(7);
    EXPECT_TRUE(linked.link("linkedText", false));
    EXPECT_STREQ(linked.string(), "linkedText");
}

TEST(Selector, ChainsOfEntriesGoWithoutRecursion) {
    SelectorScope scope;
    countEverything();
    uint entries = ZSelector::selectorCount();
    std::string text;
    const int depth = 20000;
    std::vector<ZSelector> outer(1);
    {
        // Each entry is made to hold the next one.
        ZSelector inner("core");
        for (int i = 0; i < depth; ++i) {
            ZSelector next(("level" + std::to_string(i)).c_str());
            space().get(next)->nameSel = inner;
            inner = next;
        }
        outer[0] = inner;
    }
    EXPECT_EQ(ZSelector::selectorCount(), entries + depth + 1);
    outer.clear();
    EXPECT_EQ(ZSelector::selectorCount(), entries);
}

TEST(Selector, AMillionHostileNames) {
    SelectorScope scope;
    const int count = toolkit::sanitized ? 200000 : 1000000, permanent = count * 3 / 10; // both kinds
    space().setPermanentLimit(ularge(permanent));
    std::vector<ZSelector> held;
    held.reserve(count);
    char text[32];
    for (int i = 0; i < count; ++i) {
        std::snprintf(text, sizeof text, "name%d", i);
        held.push_back(ZSelector(text));
    }
    EXPECT_EQ(ZSelector::selectorCount(), uint(count));
    for (int i = 0; i < count; i += 997) {
        std::snprintf(text, sizeof text, "name%d", i);
        ASSERT_EQ(ZSelector(text), held[size_t(i)]) << text;
    }
    held.clear();
    EXPECT_EQ(ZSelector::selectorCount(), uint(permanent));
}

TEST(Selector, LargeTexts) {
    SelectorScope scope;
    std::string text(10 << 20, 'x');
    ZSelector large(text.c_str());
    EXPECT_EQ(large.length(), int(text.size()));
    EXPECT_EQ(ZSelector(text.c_str()), large);
    std::string nested(100000, '<');
    ZSelector open(nested.c_str());
    EXPECT_EQ(open.type(), ZSelector::Template);
    EXPECT_EQ(ZSelector(nested.c_str()), open);
}

TEST(Selector, EachAllocationMayFail) {
    failEachAllocation([](AllocProbe&) {
        if (ZSelector::open()) {
            ZSelector permanent("some name");
            EXPECT_TRUE(permanent.isEmpty() || !std::strcmp(permanent.string(), "some name"));
            countEverything();
            ZSelector counted(std::string(400, 'x').c_str()), linked;
            char text[] = "moduleText";
            linked.link(text, false);
            linked.unlink();
            ZSelector again("moduleText");
            EXPECT_TRUE(again.isEmpty() || !std::strcmp(again.string(), "moduleText"));
        }
        ZSelector::close();
    });
    EXPECT_EQ(zfailcount(), 0);
}

TEST(Selector, RacingThreadsSeeOneValueWhileItIsHeld) {
    SelectorScope scope;
    ZSelector permanent[4];
    const char* names[] = {"race one", "race::two", "race.three", "race<four>"};
    for (bool counted : {false, true}) {
        if (counted) countEverything();
        std::string suffix = counted ? "counted" : "permanent";
        std::vector<std::thread> threads;
        for (int t = 0; t < 16; ++t)
            threads.emplace_back([&, t] {
                for (int i = 0; i < 400; ++i) {
                    std::string text = names[(t + i) % 4] + suffix;
                    ZSelector mine(text.c_str());
                    ZSelector again(mine), other(text.c_str());
                    if (mine != other || mine.isEmpty() || text != mine.string()) {
                        ADD_FAILURE() << text << " has two values";
                        return;
                    }
                    ZSelector own((text + std::to_string(i % 37)).c_str());
                    if (own.isEmpty()) ADD_FAILURE();
                }
            });
        for (auto& thread : threads) thread.join();
        EXPECT_TRUE(!counted || ZSelector::selectorCount() == space().permanentLimit());
    }
}

TEST(Selector, TheIndexGrowsBesideLookups) {
    SelectorScope scope;
    const int names = 40000, threads = 4; // past the first table
    std::vector<std::vector<uint>> keys(threads, std::vector<uint>(names));
    std::vector<std::thread> running;
    for (int t = 0; t < threads; ++t)
        running.emplace_back([&, t] {
            for (int i = 0; i < names; ++i) {
                int which = t % 2 ? names - 1 - i : i;
                keys[size_t(t)][size_t(which)] = ZSelector(("n" + std::to_string(which)).c_str()).key();
            }
        });
    for (auto& thread : running) thread.join();
    EXPECT_EQ(ZSelector::selectorCount(), uint(names));
    for (int t = 1; t < threads; ++t) EXPECT_EQ(keys[0], keys[size_t(t)]);
}
