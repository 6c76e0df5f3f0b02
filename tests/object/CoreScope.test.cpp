#include "tests/support/CoreScope.h"

#include "core/construct.h"

#include <gtest/gtest-spi.h>

namespace {

struct Labelled {
    int value = 1;
};
using Blocks = std::map<std::string, long>;

class CoreScopeSuite : public CoreTest {};

} // namespace

TEST(CoreScope, StartsTwiceAndLeavesNothing) {
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(ZCoreLib::valid());
        {
            CoreScope library;
            EXPECT_TRUE(ZCoreLib::valid());
            ZSelector name("void someName(int)");
            EXPECT_STREQ(name.methodName().string(), "someName");
            {
                CoreScope again; // only counts
                EXPECT_FALSE(CoreScope::liveBlocks().empty());
            }
            EXPECT_TRUE(ZCoreLib::valid());
        }
        EXPECT_EQ(CoreScope::liveBlocks(), Blocks());
    }
}

TEST(CoreScope, NamesWhatIsLeft) {
    static Labelled* left;
    EXPECT_NONFATAL_FAILURE(
        {
            CoreScope library;
            left = zmake<Labelled>();
        },
        "Labelled");
    zrelease(left);
}

TEST_F(CoreScopeSuite, InnerProbesFailAllocationsAndLeaveTheScopesCount) {
    Blocks before = CoreScope::liveBlocks();
    int runs = 0;
    failEachAllocation([&](AllocProbe& probe) {
        ++runs;
        Labelled *first = zmake<Labelled>(), *second = zmake<Labelled>();
        EXPECT_EQ(probe.live(), (first != nullptr) + (second != nullptr));
        EXPECT_EQ(probe.failed(), !first || !second);
        zrelease(first);
        zrelease(second);
    });
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(CoreScope::liveBlocks(), before);
    Labelled* one = zmake<Labelled>();
    Blocks with = CoreScope::liveBlocks();
    EXPECT_EQ(with.size(), before.size() + 1);
    zrelease(one);
    EXPECT_EQ(CoreScope::liveBlocks(), before);
}
