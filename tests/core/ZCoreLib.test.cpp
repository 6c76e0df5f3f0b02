#include "core/ZCoreLib.h"

#include "core/loadSteps.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/TempFolder.h"
#include "toolkit/memory.h"
#include "toolkit/places.h"
#include "toolkit/plugindir.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace {

std::vector<std::string> steps;

/// Notes the steps that run while it lives.
struct Trace {
    Trace() {
        steps.clear();
        orv::traceLoad([](const char* name) { steps.push_back(name); });
    }
    ~Trace() { orv::traceLoad(nullptr); }
};

bool ran(const char* name) { return std::find(steps.begin(), steps.end(), name) != steps.end(); }

std::vector<std::string> names(const orv::LoadOrder& order) {
    std::vector<std::string> all;
    for (int i = 0; i < order.count; ++i) all.push_back(order.steps[i].name);
    return all;
}

std::unique_ptr<ZCoreLib> small(bool loadNow = true) {
    return std::make_unique<ZCoreLib>("small", false, false, loadNow);
}

std::string text(const ZString& value) {
    char* copy = value.astr();
    std::string result = copy ? copy : "";
    zfree(copy);
    return result;
}

} // namespace

TEST(CoreLib, OrderOfStartAndStop) {
    orv::LoadOrder load = orv::loadOrder();
    EXPECT_EQ(names(load), (std::vector<std::string>{"packs",
                                                     "user path off",
                                                     "memory debug",
                                                     "splash open",
                                                     "internal strings",
                                                     "ZSelector::open",
                                                     "ZMethod::open",
                                                     "ZMethodPtr::open",
                                                     "ZMethodDispatch::open",
                                                     "ZNamedMethod::open",
                                                     "ZPointerIndex::open",
                                                     "ZProperty::open",
                                                     "ZPropertyPtr::open",
                                                     "ZUnique::open",
                                                     "ZBinding::open",
                                                     "ZLock::open",
                                                     "core lock",
                                                     "names",
                                                     "openModule",
                                                     "packages",
                                                     "splash plugins",
                                                     "splash resources",
                                                     "application names",
                                                     "application mode",
                                                     "loaded mark",
                                                     "splash launch"}));
    EXPECT_STREQ(load.steps[load.coreSteps - 1].name, "core lock");
    EXPECT_EQ(names(orv::unloadOrder()), (std::vector<std::string>{"first closing mark",
                                                                   "packages",
                                                                   "closeModule",
                                                                   "discard names",
                                                                   "core lock",
                                                                   "ZLock::close",
                                                                   "ZObject::closeNamed",
                                                                   "ZBinding::close",
                                                                   "ZUnique::close",
                                                                   "second closing mark",
                                                                   "retired objects",
                                                                   "ZProperty::close",
                                                                   "ZPointerIndex::close",
                                                                   "ZPropertyPtr::close",
                                                                   "ZMethodRef::close",
                                                                   "ZMethod::close",
                                                                   "ZMethodPtr::close",
                                                                   "ZNamedMethod::close",
                                                                   "ZMethodDispatch::close",
                                                                   "ZSelector::close",
                                                                   "internal strings",
                                                                   "collation",
                                                                   "final drain",
                                                                   "packs"}));
}

TEST(CoreLib, SwitchesChooseTheSteps) {
    Trace trace;
    {
        ZCoreLib library("/plugins", "client", false, true, true, false);
        EXPECT_TRUE(ZCoreLib::minimalLoad());
        EXPECT_FALSE(ZCoreLib::allowLocking());
        EXPECT_FALSE(ZCoreLib::allowUserPath());
        EXPECT_TRUE(ran("user path off") && ran("loaded mark"));
        EXPECT_FALSE(ran("ZLock::open") || ran("core lock") || ran("splash resources"));
        ZCoreLib::lock(); // nothing to take, nothing to wait for
        ZCoreLib::lock();
        EXPECT_EQ(ZCoreLib::getConfig(2), 1);
        EXPECT_STREQ(ZCoreLib::getAppName().string(), "client");
    }
    EXPECT_TRUE(ZCoreLib::allowLocking());
    {
        auto library = small();
        EXPECT_TRUE(ZCoreLib::allowUserPath());
        EXPECT_TRUE(ran("ZLock::open") && ran("core lock") && ran("splash resources"));
        EXPECT_EQ(ZCoreLib::getConfig(2), 0);
    }
    EXPECT_EQ(steps.back(), "packs");
}

TEST(CoreLib, ACoreOpenIsCompletedLaterAndOnlyOnce) {
    Trace trace;
    auto library = small(false);
    EXPECT_TRUE(ZCoreLib::valid());
    EXPECT_TRUE(steps.empty());
    library->load(nullptr, false, false);
    EXPECT_EQ(steps.back(), "core lock");
    EXPECT_FALSE(orv::coreState.coreLoaded);
    EXPECT_TRUE(ZCoreLib::getAppName().isEmpty());
    size_t core = steps.size();
    ZCoreLib::loadCore("/plugins");
    EXPECT_EQ(steps[core], "names");
    EXPECT_TRUE(orv::coreState.coreLoaded);
    size_t all = steps.size();
    ZCoreLib::loadCore(nullptr);
    EXPECT_EQ(steps.size(), all);
    library.reset();
    EXPECT_FALSE(orv::coreState.coreLoaded);
    EXPECT_TRUE(orv::coreState.notificationsClosed && orv::coreState.typesClosed);
    ZCoreLib::loadCore(nullptr);
    EXPECT_EQ(ZCoreLib::coreLib(), nullptr);
}

TEST(CoreLib, ASecondInstanceOnlyCounts) {
    auto first = small();
    Trace trace;
    auto second = std::make_unique<ZCoreLib>(nullptr, "other", false, true, false, false);
    EXPECT_TRUE(steps.empty());
    EXPECT_EQ(ZCoreLib::coreLib(), second.get());
    EXPECT_TRUE(ZCoreLib::minimalLoad());
    {
        ZCoreLib passive;
        EXPECT_EQ(ZCoreLib::coreLib(), second.get());
    }
    EXPECT_EQ(orv::coreState.instances, 2);
    second.reset();
    EXPECT_EQ(ZCoreLib::coreLib(), first.get());
    EXPECT_TRUE(steps.empty());
    // The other way round: the one that loaded goes first, and what it opened is closed with the last.
    second = small();
    first.reset();
    EXPECT_EQ(ZCoreLib::coreLib(), second.get());
    EXPECT_TRUE(steps.empty());
    ZCoreLib::setCachedIcons(true);
    EXPECT_TRUE(ZCoreLib::cachedIcons());
    EXPECT_TRUE(ZCoreLib::isMainThread());
    std::thread([] { EXPECT_FALSE(ZCoreLib::isMainThread()); }).join();
    second.reset();
    EXPECT_TRUE(ran("ZLock::close"));
    EXPECT_EQ(ZCoreLib::coreLib(), nullptr);
    EXPECT_FALSE(ZCoreLib::valid());
}

TEST(CoreLib, StartsAgainAndLeavesNothing) {
    AllocProbe probe;
    for (int round = 0; round < 3; ++round) {
        {
            auto library = small();
            ZSelector name("some name");
            EXPECT_STREQ(name.string(), "some name");
            EXPECT_FALSE(ZCoreLib::getAppName().isEmpty());
            library->selectUserInfo(ZString("somebody"), ZString("someone"));
        }
        EXPECT_EQ(probe.live(), 0) << probe.leaks();
    }
}

TEST(CoreLib, AnyAllocationOfTheStartMayFail) {
    failEachAllocation([](AllocProbe& probe) {
        auto library = small();
        EXPECT_TRUE(ZCoreLib::valid() || probe.failed());
        ZSelector name("name");
        ZCoreLib::lock();
        ZCoreLib::unlock();
        ZCoreLib::splashText("text");
        library.reset();
        EXPECT_FALSE(ZCoreLib::valid());
    });
}

TEST(CoreLib, SplashIsForgottenOnceComplete) {
    static std::string seen;
    seen.clear();
    static const ZCoreLib::SplashTable table{[] { seen += "open;"; }, [](const char* line) { (seen += line) += ";"; },
                                             [] { seen += "complete;"; }};
    ZCoreLib::completeSplash();
    ZCoreLib::selectSplash(&table);
    auto library = small();
    EXPECT_EQ(seen, "open;Loading Plugins;Loading Resources;Launching Application;");
    ZCoreLib::splashText(ZString("wide"));
    ZCoreLib::completeSplash();
    ZCoreLib::splashText("late");
    ZCoreLib::completeSplash();
    EXPECT_EQ(seen, "open;Loading Plugins;Loading Resources;Launching Application;wide;complete;");
}

TEST(CoreLib, PluginNamesInTheDirectorysOrder) {
    auto library = small();
    int owner;
    ASSERT_TRUE(toolkit::registerPlugin("stream", "zstd", nullptr, &owner));
    ASSERT_TRUE(toolkit::registerPlugin("stream", "ascii85", nullptr, &owner));
    ZArrayT<ZSelector> plain = ZCoreLib::getPlugins("stream", false), full = ZCoreLib::getPlugins("stream", true);
    ASSERT_EQ(plain.count(), 2u);
    ASSERT_EQ(full.count(), 2u);
    EXPECT_STREQ(std::as_const(plain)[0].string(), "zstd");
    EXPECT_STREQ(std::as_const(full)[1].string(), "stream/ascii85");
    EXPECT_EQ(ZCoreLib::getPlugins("none", false).count(), 0u);
    EXPECT_NE(ZCoreLib::load(ZSelector("pack/datapack")), nullptr);
    EXPECT_EQ(ZCoreLib::load(ZSelector("pack/none")), nullptr);
}

TEST(CoreLib, SlotsAndDefaults) {
    auto library = small();
    for (int i = -1; i < 6; ++i) ZCoreLib::setValue(i, 10 + i);
    EXPECT_EQ(ZCoreLib::getValue(3), 13);
    EXPECT_EQ(ZCoreLib::getValue(4), 0);
    EXPECT_EQ(ZCoreLib::getValue(-1), 0);
    int count = 0, hash = 0, number = 0, cost = 0;
    EXPECT_FALSE(ZCoreLib::loadCacheOptions("section", "key", count, hash, number, cost));
    EXPECT_EQ(std::vector<int>({count, hash, number, cost}), std::vector<int>({128, 80, 100, 0x100000}));
    EXPECT_FALSE(text(ZCoreLib::systemVersion()).empty());
}

TEST(CoreLib, TemporaryFilesGoWithTheLibraryUnlessTheyAreToStay) {
    TempFolder folder;
    for (bool clear : {true, false}) {
        auto library = small();
        ZCoreLib::clearTempOnExit(clear);
        std::string file = folder.file(clear ? "goes" : "stays");
        ASSERT_EQ(toolkit::registerTemporary(file.c_str()), 0);
        library.reset();
        EXPECT_EQ(std::filesystem::exists(file), !clear);
    }
}

namespace {
/// Gives the data back with each byte changed by the key.
void* mixing(const ZSelector&, const void* key, size_t keyLength, const void* data, size_t length) {
    auto out = static_cast<byte*>(toolkit::allocBlock(length));
    for (size_t i = 0; out && i < length; ++i)
        out[i] = static_cast<const byte*>(data)[i] ^ static_cast<const byte*>(key)[i % keyLength];
    return out;
}
} // namespace

TEST(CoreLib, IdentifiersAreMadeOnceAndSurviveDamage) {
    TempFolder folder;
    setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
    auto library = small();
    ZCoreLib::setupClientId("mixing", ZString("seed"), 40, false);
    EXPECT_EQ(text(ZCoreLib::clientId()), ""); // no coder, no identifier
    ZCoreLib::setCoder(mixing);
    ZCoreLib::setupClientId("mixing", ZString("seed"), 40, false);
    std::string client = text(ZCoreLib::clientId());
    EXPECT_EQ(client.size(), 8u);
    EXPECT_EQ(client.find_first_not_of("0123456789abcdef"), std::string::npos);
    ZCoreLib::setupClientId("mixing", ZString("another"), 40, true);
    EXPECT_EQ(text(ZCoreLib::clientId()), client);
    ZCoreLib::setupUserId("mixing", ZString("\xff\xfb\xf0 a long seed of some length"), 12, true);
    std::string user = text(ZCoreLib::userId());
    EXPECT_EQ(user.size(), 12u);
    EXPECT_EQ(user.find_first_of("+/"), std::string::npos);
    for (auto& entry : std::filesystem::recursive_directory_iterator(folder.path()))
        if (entry.is_regular_file()) std::ofstream(entry.path()) << "cut";
    EXPECT_EQ(text(ZCoreLib::clientId()), "");
    ZCoreLib::setupClientId("mixing", ZString("another"), 40, false);
    EXPECT_EQ(text(ZCoreLib::clientId()).size(), 14u);
    ZCoreLib::setCoder(nullptr);
    unsetenv("XDG_DATA_HOME");
}
