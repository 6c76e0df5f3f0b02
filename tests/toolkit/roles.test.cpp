#include "tests/support/AllocProbe.h"
#include "toolkit/binding.h"
#include "toolkit/clock.h"
#include "toolkit/coding.h"
#include "toolkit/packs.h"
#include "toolkit/plugindir.h"
#include "toolkit/system.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <thread>

using namespace toolkit;

TEST(Binding, RootFolderLosesTheToolFoldersInOrder) {
    struct Row {
        const char *path, *root;
    } rows[] = {
        {"/opt/suite/hule/lumbra/tools/orv/app", "/opt/suite"},
        {"/opt/suite/hule/app", "/opt/suite"},
        {"/opt/suite/lumbra/hule/app", "/opt/suite/lumbra"}, // the order is fixed: "lumbra" is looked for first
        {"C:\\Suite\\hule\\lumbra\\orv\\app.exe", "C:\\Suite"},
        {"C:\\Suite\\hule\\\\app.exe", "C:\\Suite"},
        {"/opt/nothule/app", "/opt/nothule"},
        {"app", "app"},
        {"", ""},
    };
    for (auto& row : rows) {
        char path[pathRoom];
        std::strcpy(path, row.path);
        size_t length = rootFolder(path);
        EXPECT_STREQ(path, row.root) << row.path;
        EXPECT_EQ(length, std::strlen(path));
    }
}

TEST(Binding, PathsOfTheLayerFitOrAreRefused) {
    char first[pathRoom], second[pathRoom], folder[pathRoom];
    ASSERT_TRUE(layerPaths("C:\\Suite\\", first, second, folder));
    EXPECT_STREQ(first, "C:\\Suite\\hule\\wbn\\wbncore.dll");
    ASSERT_TRUE(layerPaths("/opt", first, second, folder));
    EXPECT_STREQ(second, "/opt\\hule\\wbn\\wbnsys.dll");
    EXPECT_STREQ(folder, "/opt/hule/wbn");
    std::string longRoot(pathRoom - 20, 'x');
    EXPECT_FALSE(layerPaths(longRoot.c_str(), first, second, folder));
}

TEST(Binding, StartsWholeOrNotAtAll) {
    failEachAllocation([](AllocProbe& probe) {
        int status = bind("client", false);
        EXPECT_EQ(status == startFailed, probe.failed());
        EXPECT_EQ(rootTable() != nullptr, !probe.failed());
        EXPECT_EQ(environment() != nullptr, !probe.failed());
        if (rootTable()) { EXPECT_EQ(rootTable()->runtime->environment(), environment()); }
        setConfig(2, 5);
        EXPECT_EQ(getConfig(2), probe.failed() ? 0 : 5);
        setConfig(configSlots, 1);
        EXPECT_EQ(getConfig(-1), 0);
        unbind();
        EXPECT_EQ(rootTable(), nullptr);
        EXPECT_EQ(getConfig(2), 0);
    });
}

TEST(PluginDirectory, KeepsOrderRefusesTwinsAndRemovesByOwner) {
    failEachAllocation([](AllocProbe&) {
        int a, b;
        bool one = registerPlugin("stream", "zlib", &a, &a), two = registerPlugin("stream", "zstd", &b, &b);
        EXPECT_FALSE(one && registerPlugin("stream", "zlib", &b, &b));
        EXPECT_EQ(pluginEntries("none"), nullptr);
        if (one && two) {
            const PluginEntry* entry = pluginEntries("stream");
            EXPECT_STREQ(entry->name, "zlib");
            EXPECT_STREQ(entry->next->name, "zstd");
            EXPECT_EQ(entry->next->next, nullptr);
            removePlugins(&a);
            EXPECT_STREQ(pluginEntries("stream")->name, "zstd");
        }
        clearPlugins();
        EXPECT_EQ(pluginEntries("stream"), nullptr);
    });
}

TEST(Packs, AreCountedAndKnownByName) {
    static int opened, closed;
    static bool refuse;
    static const Pack pack{"pack/test", &opened, [] { return ++opened, !refuse; }, [] { ++closed; }};
    opened = closed = 0;
    refuse = true;
    ASSERT_TRUE(addPack(pack));
    EXPECT_FALSE(addPack(pack));
    EXPECT_EQ(loadPack("pack/test"), nullptr);
    EXPECT_EQ(packLoads("pack/test"), 0);
    refuse = false;
    void* handle = loadPack("pack/test");
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(loadPack("pack/test"), handle);
    EXPECT_EQ(opened, 2);
    EXPECT_EQ(packServices(handle), &opened);
    unloadPack(handle);
    EXPECT_EQ(closed, 0);
    unloadPack(handle);
    unloadPack(handle); // once too often
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(loadPack("pack/none"), nullptr);
    unloadPack(&opened);
}

TEST(Coding, Base64OfThePublishedVectorsAndTolerance) {
    struct Row {
        const char *plain, *text;
    } rows[] = {{"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"foobar", "Zm9vYmFy"}};
    for (auto& row : rows) {
        char text[32];
        size_t length = base64Encode(row.plain, std::strlen(row.plain), text);
        EXPECT_EQ(std::string(text, length), row.text);
        EXPECT_EQ(length, base64Length(std::strlen(row.plain)));
        byte back[32];
        EXPECT_EQ(std::string(reinterpret_cast<char*>(back), base64Decode(text, length, back)), row.plain);
    }
    byte out[32];
    EXPECT_EQ(std::string(reinterpret_cast<char*>(out), base64Decode("Zm 9v\nYg", 8, out)), "foob");
    EXPECT_EQ(base64Decode("sorbet58plume", 13, out), 9u);
    EXPECT_EQ(base64Decode("Z", 1, out), 0u);
}

TEST(Coding, HexadecimalPairs) {
    char text[16];
    EXPECT_EQ(std::string(text, hexEncode("\x00\xff\x1a", 3, text)), "00ff1a");
    byte out[8];
    EXPECT_EQ(hexDecode("0 fZ-F1Aa", 9, out), 3u);
    EXPECT_EQ(std::memcmp(out, "\x0f\xf1\xaa", 3), 0);
    EXPECT_EQ(hexDecode("123", 3, out), 1u);
}

TEST(System, LeaksAreCountedByTypeAndSize) {
    trackLeaks(true);
    EXPECT_EQ(liveBlocks(), 0);
    void *a = allocBlock(10), *b = allocBlock(10), *c = allocBlock(20000), *d = allocBlock(30);
    EXPECT_EQ(liveBlocks(), 4);
    freeBlock(c);
    for (int again = 0; again < 2; ++again) {
        std::string report;
        auto note = [](void* to, const char* type, long count) {
            freeBlock(allocBlock(8)); // nothing is locked here
            *static_cast<std::string*>(to) += std::to_string(count) + " " + type + ";";
        };
        reportLeaks(note, &report);
        EXPECT_EQ(report, "2 block of 10 bytes;1 block of 30 bytes;");
    }
    freeBlock(d);
    freeBlock(a);
    freeBlock(b);
    for (int i = 0; i < 20000; ++i) freeBlock(allocBlock(24)); // graves don't fill the table
    EXPECT_EQ(liveBlocks(), 0);
    trackLeaks(false);
    EXPECT_EQ(liveBlocks(), -1);
}

TEST(System, SmallBlocksSurviveTheThreadThatMadeThem) {
    void* blocks[200];
    std::thread([&] {
        for (auto& block : blocks) block = allocZeroedBlock(40);
    }).join();
    for (auto& block : blocks) {
        for (int i = 0; i < 40; ++i) ASSERT_EQ(static_cast<byte*>(block)[i], 0);
        std::memset(block, 0xEE, 40);
        freeBlock(block);
    }
    auto again = static_cast<byte*>(allocZeroedBlock(33));
    for (int i = 0; i < 33; ++i) EXPECT_EQ(again[i], 0);
    freeBlock(again);
    emptyThreadCache();
}

TEST(Clock, RunsForwardFromTheProcessStart) {
    large first = processClock(), wall = wallClock();
    EXPECT_GE(first, 0);
    EXPECT_LT(first, 24 * 3600 * 1000);
    EXPECT_LE(processStart(), wall);
    EXPECT_NEAR(double(processStart() + first), double(wall), 2000);
    EXPECT_GE(processClock(), first);
}
