#include "core/ZUnique.h"

#include "core/ZError.h"
#include "core/ZUniqueSpace.h"
#include "core/debug.h"
#include "tests/support/AllocProbe.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {
std::string logged;
struct UniqueScope {
    UniqueScope() {
        EXPECT_TRUE(ZUnique::open());
        logged.clear();
        zsetdebugsink([](const char* line) { logged += line; });
    }
    ~UniqueScope() {
        ZUnique::close();
        zsetdebugsink(nullptr);
    }
};
} // namespace

TEST(UniqueSpace, FreeIdsComeBackNewestFirst) {
    ZUniqueSpace space;
    ASSERT_TRUE(space.open());
    uint a = space.create(), b = space.create(), c = space.create();
    EXPECT_EQ(a, 1u);
    EXPECT_EQ(space.uniqueCount(), 3u);
    space.release(a);
    space.release(c);
    EXPECT_EQ(space.create(), c);
    EXPECT_EQ(space.create(), a);
    EXPECT_EQ(space.retain(b), b);
    EXPECT_EQ(space.refcount(b), 2);
    space.release(b);
    EXPECT_EQ(space.refcount(b), 1);
    space.close();
    EXPECT_EQ(space.refcount(b), 0);
}

TEST(UniqueSpace, GrowsBeyondTheFirstSlotsOrAnswers0) {
    AllocProbe probe;
    {
        ZUniqueSpace space;
        ASSERT_TRUE(space.open());
        std::set<uint> ids;
        for (uint i = 0; i < ZUniqueSpace::growth; ++i) ids.insert(space.create());
        probe.failAt(1);
        EXPECT_EQ(space.create(), 0u);
        EXPECT_TRUE(probe.failed());
        EXPECT_TRUE(ids.insert(space.create()).second);
        EXPECT_FALSE(ids.count(0));
        EXPECT_EQ(ids.size(), ZUniqueSpace::growth + 1);
        EXPECT_EQ(*ids.rbegin(), ZUniqueSpace::growth + 1);
        for (uint id : ids) space.release(id);
        EXPECT_EQ(space.uniqueCount(), 0u);
    }
    EXPECT_EQ(probe.live(), 0);
}

TEST(UniqueSpace, IdsThatNobodyHoldsAreLeftAlone) {
    UniqueScope scope;
    ZUniqueSpace space;
    ASSERT_TRUE(space.open());
    uint id = space.create();
    space.release(0);
    EXPECT_EQ(logged, "");
    space.release(id);
    for (uint bad : {id, 77u, 0x8001u, 0xFFFFFFFFu}) {
        logged.clear();
        space.release(bad);
        EXPECT_EQ(logged, "unique released too often: " + std::to_string(bad));
        EXPECT_EQ(space.retain(bad), 0u);
        EXPECT_EQ(space.refcount(bad), 0);
    }
    // A free list that was damaged would give one id twice.
    EXPECT_NE(space.create(), space.create());
    logged.clear();
    space.checkLimit("file", 0x8001);
    EXPECT_EQ(logged, "");
    space.checkLimit("file", 0x8000);
    EXPECT_EQ(logged, "file, 32768: 2 uniques");
}

TEST(ZUnique, CopiesNameTheSame) {
    UniqueScope scope;
    ZUnique a, b, none(0), preset(7);
    EXPECT_EQ(ZUnique::count(), 2u);
    EXPECT_FALSE(a.isEmpty());
    EXPECT_TRUE(none.isEmpty() && preset.isEmpty());
    EXPECT_NE(a.compare(b), 0);
    EXPECT_EQ(a.compare(b), -b.compare(a));
    EXPECT_EQ(none.compare(a), -1);
    {
        ZUnique copy(a);
        EXPECT_EQ(copy.compare(a), 0);
        EXPECT_EQ(copy.hashKey(), a.hashKey());
        EXPECT_EQ(a.refcount(), 2);
        copy = copy;
        EXPECT_EQ(a.refcount(), 2);
        copy = b;
        EXPECT_EQ(a.refcount(), 1);
        EXPECT_EQ(b.refcount(), 2);
    }
    uint old = a.hashKey();
    a.reset();
    EXPECT_NE(a.hashKey(), old) << "the new one is made before the old is given up";
    EXPECT_EQ(ZUnique::count(), 2u);
    uint given = b.hashKey();
    b.clear();
    EXPECT_EQ(b.refcount(), 0);
    EXPECT_EQ(ZUnique().hashKey(), given);
    ZUnique::check("here", 1);
    EXPECT_EQ(logged, "here, 1: 1 uniques");
}

TEST(ZUnique, ComparisonCanBeIgnored) {
    UniqueScope scope;
    ZUnique a, b;
    {
        ZUniqueIgnoreScope outer;
        { ZUniqueIgnoreScope inner; }
        EXPECT_EQ(a.compare(b), 0);
        EXPECT_FALSE(a == b);
        ZUnique::ignoreComparison(true);
    }
    EXPECT_EQ(a.compare(b), 0);
    ZUnique::ignoreComparison(false);
    EXPECT_NE(a.compare(b), 0);
}

TEST(ZUnique, OutsideOfTheSpaceThereAreNone) {
    ZUnique early;
    EXPECT_TRUE(early.isEmpty());
    EXPECT_EQ(zfailcount(), 0);
    failEachAllocation([](AllocProbe& probe) {
        bool opened = ZUnique::open();
        EXPECT_EQ(opened, !probe.failed());
        {
            ZUnique late;
            EXPECT_EQ(late.isEmpty(), !opened);
            ZUnique::close();
            EXPECT_EQ(late.refcount(), 0);
        }
        EXPECT_EQ(ZUnique::count(), 0u);
    });
}

TEST(ZUnique, NoTwoThreadsHoldOneId) {
    UniqueScope scope;
    std::vector<std::thread> threads;
    static int holder[0x8000 + 1];
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 3000; ++i) {
                ZUnique id;
                int& place = holder[id.hashKey()];
                EXPECT_EQ(++place, 1);
                ZUnique copy(id), second;
                EXPECT_FALSE(second == id);
                --place;
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(ZUnique::count(), 0u);
    EXPECT_EQ(logged, "");
}
