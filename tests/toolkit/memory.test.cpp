#include "toolkit/memory.h"

#include "tests/support/AllocProbe.h"
#include "toolkit/hash.h"
#include "toolkit/lock.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <utility>

TEST(Block, HeaderStandsInFrontOfAnAlignedPayload) {
    for (size_t size : {size_t(0), size_t(1), size_t(64), size_t(200000)}) {
        auto p = static_cast<byte*>(toolkit::allocZeroedBlock(size));
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 16, 0u);
        EXPECT_EQ(toolkit::blockSize(p), size);
        int count, elements;
        std::memcpy(&count, p - 12, 4);
        std::memcpy(&elements, p - 4, 4);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(elements, 0);
        for (size_t i = 0; i < size; ++i) ASSERT_EQ(p[i], 0);
        toolkit::freeBlock(p);
    }
}

TEST(Block, ReallocKeepsContentsAndRefusesWhatCantBe) {
    auto p = static_cast<char*>(toolkit::allocBlock(4));
    std::memcpy(p, "abc", 4);
    auto q = static_cast<char*>(toolkit::reallocBlock(p, 100000));
    ASSERT_NE(q, nullptr);
    EXPECT_STREQ(q, "abc");
    EXPECT_EQ(toolkit::reallocBlock(q, toolkit::blockLimit + 1), nullptr);
    EXPECT_STREQ(q, "abc");
    EXPECT_EQ(toolkit::allocBlock(size_t(-1)), nullptr);
    EXPECT_EQ(toolkit::allocZeroedBlock(size_t(-9)), nullptr);
    toolkit::freeBlock(q);
}

TEST(Block, WatchedReallocMovesAllThatBelongsToTheBlock) {
    auto p = static_cast<char*>(toolkit::allocBlock(20));
    std::memcpy(p, "text", 5);
    toolkit::blockHead(p)->elements = 7;
    toolkit::blockHead(p)->count = 2;
    ASSERT_TRUE(toolkit::makeBlockLock(p, false, false));
    AllocProbe probe;
    auto q = static_cast<char*>(toolkit::reallocBlock(p, 5000));
    ASSERT_TRUE(q && q != p);
    EXPECT_STREQ(q, "text");
    EXPECT_EQ(toolkit::blockSize(q), 5000u);
    EXPECT_EQ(toolkit::blockHead(q)->elements, 7);
    EXPECT_EQ(toolkit::blockHead(q)->count, 2);
    EXPECT_NE(toolkit::blockLock(q), 0u);
    EXPECT_EQ(probe.live(), 1);
    probe.failAt(1);
    EXPECT_EQ(toolkit::reallocBlock(q, 8), nullptr);
    EXPECT_STREQ(q, "text");
    toolkit::freeBlock(q);
    EXPECT_EQ(probe.live(), 0);
}

// Under a sanitizer no block waits, and the sanitizer finds these itself.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(Block, DamageAmongWaitingBlocksShows) {
    toolkit::emptyThreadCache();
    void* p = toolkit::allocBlock(48);
    toolkit::freeBlock(p);
    EXPECT_DEATH(toolkit::freeBlock(p), "");
    EXPECT_TRUE(toolkit::checkHeap());
    toolkit::BlockHead* head = toolkit::blockHead(p);
    int count = std::exchange(head->count, 1);
    EXPECT_FALSE(toolkit::checkHeap());
    head->count = count;
    uint32_t size = std::exchange(head->sizeLow, 480u);
    EXPECT_FALSE(toolkit::checkHeap());
    head->sizeLow = size;
    EXPECT_TRUE(toolkit::checkHeap());
    toolkit::emptyThreadCache();
}
#endif

TEST(Hash, EveryByteAndTheLengthCount) {
    std::string text(70, 'x');
    std::set<uint64_t> seen;
    for (size_t length = 0; length <= text.size(); ++length)
        EXPECT_TRUE(seen.insert(toolkit::hash64(text.data(), length)).second);
    for (size_t at = 0; at < text.size(); ++at) {
        std::string other = text;
        other[at] = 'y';
        EXPECT_TRUE(seen.insert(toolkit::hash64(other.data(), other.size())).second) << at;
    }
    EXPECT_NE(toolkit::hashBytes("abc", 3), toolkit::hashBytes("abd", 3));
    EXPECT_EQ(toolkit::hashBytes("abc", 3), toolkit::hashData(0, "abc", 3, 0xFFFFFFFF));
    EXPECT_LT(toolkit::hashData(0, "abc", 3, 7), 7u);
    EXPECT_EQ(toolkit::hashData(0, "abc", 3, 0), 0u);
    EXPECT_NE(toolkit::hashData(0, "abc", 3, 0xFFFFFFFF), toolkit::hashData(1, "abc", 3, 0xFFFFFFFF));
}

TEST(Hash, WordsAndAddressesSpreadOverTheHighAndTheLowBits) {
    constexpr unsigned bits = 12, keys = 1u << bits;
    for (uint64_t step : {1, 16, 64, 4096, 1 << 20})
        for (unsigned shift : {0u, 32 - bits}) {
            std::set<unsigned> buckets;
            for (uint64_t i = 0; i < keys; ++i)
                buckets.insert(toolkit::hashWord(0x7F0000001000 + i * step) >> shift & (keys - 1));
            // Numbers drawn at random would hit 63% of the buckets.
            EXPECT_GT(buckets.size(), keys * 6 / 10) << step << ", " << shift;
        }
    int here = 0;
    EXPECT_EQ(toolkit::hashPointer(&here), toolkit::hashWord(reinterpret_cast<uintptr_t>(&here)));
}
