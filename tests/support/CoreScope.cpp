#include "tests/support/CoreScope.h"

static AllocProbe* outermost = nullptr;
std::unique_ptr<CoreScope> CoreTest::scope;

CoreScope::CoreScope() {
    if (!outermost) {
        probe = std::make_unique<AllocProbe>();
        outermost = probe.get();
    }
    library = std::make_unique<ZCoreLib>("tests", false, false, true);
    EXPECT_TRUE(ZCoreLib::valid());
}
CoreScope::~CoreScope() {
    library.reset();
    if (!probe) return;
    EXPECT_EQ(probe->live(), 0) << "left when the library stopped:\n" << probe->leaks();
    outermost = nullptr;
}

std::map<std::string, long> CoreScope::liveBlocks() {
    return outermost ? outermost->liveBlocks() : std::map<std::string, long>();
}
