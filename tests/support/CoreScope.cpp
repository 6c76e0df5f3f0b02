#include "tests/support/CoreScope.h"

#include "object/names.h"

static AllocProbe* outermost = nullptr;
std::unique_ptr<CoreScope> CoreTest::scope;

CoreScope::CoreScope() {
    if (!outermost) {
        probe = std::make_unique<AllocProbe>();
        outermost = probe.get();
    }
    library = std::make_unique<ZCoreLib>("tests", false, false, true);
    EXPECT_TRUE(ZCoreLib::valid());
    if (probe) { EXPECT_TRUE(orv::openNames(orv::moduleNames())); }
}
CoreScope::~CoreScope() {
    if (probe) orv::closeNames(orv::moduleNames());
    library.reset();
    if (!probe) return;
    EXPECT_EQ(probe->live(), 0) << "left when the library stopped:\n" << probe->leaks();
    outermost = nullptr;
}

std::map<std::string, long> CoreScope::liveBlocks() {
    return outermost ? outermost->liveBlocks() : std::map<std::string, long>();
}
