#include "text/strtable.h"

#include "tests/support/AllocProbe.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace orv;
using detail::TextView;

namespace {
TextView view(const std::string& text) { return {text.c_str(), int(text.size())}; }
struct Open {
    Open() { EXPECT_TRUE(strtable::open()); }
    ~Open() { strtable::close(); }
};
} // namespace

TEST(StringTable, OneIndexForEachTextAndWidth) {
    Open table;
    uint narrow = strtable::intern(view("text")), wide = strtable::intern({u"text", 4});
    EXPECT_NE(narrow, wide);
    EXPECT_EQ(strtable::intern(view("text")), narrow);
    EXPECT_EQ(strtable::refcount(narrow), 2);
    EXPECT_EQ(strtable::compare(narrow, wide), 0);
    EXPECT_LT(strtable::compare(narrow, view("texu")), 0);
    EXPECT_EQ(strtable::fetch(wide).width, detail::wcharText);
    EXPECT_EQ(static_cast<const wchar*>(strtable::fetch(wide).text)[4], 0);
    uint kana = strtable::intern({u"\u3042\U0001F600", 3});
    EXPECT_EQ(strtable::length(kana), 3);
    EXPECT_EQ(strtable::count(kana), 2);
    char* copy = strtable::copy(kana);
    EXPECT_STREQ(copy, "\xE3\x81\x82\xF0\x9F\x98\x80");
    zfree(copy);
    EXPECT_EQ(strtable::texts(), 3);
}

TEST(StringTable, IndexesOfNobodyAreHarmless) {
    Open table;
    for (uint index : {0u, 1u, 255u, 256u, 257u, 70000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        EXPECT_FALSE(strtable::retain(index));
        strtable::release(index);
        EXPECT_EQ(strtable::refcount(index), 0);
        EXPECT_EQ(strtable::fetch(index).length, 0);
        EXPECT_EQ(strtable::copy(index), nullptr);
    }
    uint index = strtable::intern(view("gone"));
    strtable::release(index);
    strtable::release(index);
    EXPECT_FALSE(strtable::retain(index));
    EXPECT_EQ(strtable::texts(), 0);
    EXPECT_EQ(strtable::intern(view("")), 0u);
    EXPECT_EQ(strtable::intern(view("next")), index);
    strtable::close();
    EXPECT_EQ(strtable::intern(view("next")), 0u);
    EXPECT_EQ(strtable::refcount(index), 0);
}

TEST(StringTable, ManyTextsKeepTheirIndexes) {
    AllocProbe probe;
    {
        Open table;
        std::vector<uint> index;
        for (int i = 0; i < 20000; ++i) index.push_back(strtable::intern(view("text " + std::to_string(i))));
        for (int i = 0; i < 20000; i += 2) strtable::release(index[i]);
        EXPECT_EQ(strtable::texts(), 10000);
        for (int i = 1; i < 20000; i += 2) {
            std::string text = "text " + std::to_string(i);
            ASSERT_EQ(strtable::intern(view(text)), index[i]);
            ASSERT_EQ(strtable::compare(index[i], view(text)), 0);
        }
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(StringTable, FailedAllocationsLeaveTheTableWhole) {
    failEachAllocation([](AllocProbe& probe) {
        if (strtable::open()) {
            int held = 0;
            for (int i = 0; i < 600; ++i) held += strtable::intern(view("text " + std::to_string(i))) != 0;
            EXPECT_EQ(strtable::texts(), held);
            EXPECT_GE(held, probe.failed() ? 599 : 600);
        }
        strtable::close();
    });
}

TEST(StringTable, ThreadsShareOneIndexAsLongAsAnybodyHoldsIt) {
    Open table;
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 3000; ++i) {
                std::string text = "shared " + std::to_string((i + t) % 5);
                uint index = strtable::intern(view(text));
                uint again = strtable::intern(view(text));
                EXPECT_EQ(index, again);
                EXPECT_TRUE(strtable::retain(index));
                EXPECT_EQ(strtable::compare(index, view(text)), 0);
                for (int n = 0; n < 3; ++n) strtable::release(index);
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(strtable::texts(), 0);
}
