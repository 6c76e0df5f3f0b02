#pragma once

#include "core/ZCoreLib.h"
#include "tests/support/AllocProbe.h"

#include <gtest/gtest.h>
#include <memory>

/// Brings the whole library up, as an application does, and down again at its end. The outermost of these then checks
/// that no counted block made meanwhile is live, and names by type those that are. For the main thread; all other
/// threads that use the library have ended before the outermost goes.
class CoreScope {
public:
    CoreScope();
    ~CoreScope();
    CoreScope(const CoreScope&) = delete;

    /// Blocks made since the outermost scope began and still there, by type label; empty while there is no scope. What
    /// the library keeps while it is up is among them, so compare two answers:
    /// `EXPECT_EQ(CoreScope::liveBlocks(), before)` names what came and what went.
    static std::map<std::string, long> liveBlocks();

private:
    std::unique_ptr<AllocProbe> probe;
    std::unique_ptr<ZCoreLib> library;
};

/// A fixture whose suite finds the library up: it starts ahead of the suite's first test, stops after its last, and a
/// leak is reported as a failure of the suite. A fixture with a `SetUpTestSuite` of its own calls this one first, and
/// this `TearDownTestSuite` last.
///
/// `failEachAllocation` works in such a test; tables that the library fills at their first use have to be filled by one
/// run ahead of it, else they count as left behind.
class CoreTest : public testing::Test {
protected:
    static void SetUpTestSuite() { scope = std::make_unique<CoreScope>(); }
    static void TearDownTestSuite() { scope.reset(); }
    void SetUp() override { ASSERT_TRUE(ZCoreLib::valid()); }

private:
    static std::unique_ptr<CoreScope> scope;
};
