#include "toolkit/memory.h"

#include "toolkit/hash.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <string>

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
    EXPECT_LT(toolkit::hashData(0, "abc", 3, 7), 7u);
    EXPECT_EQ(toolkit::hashData(0, "abc", 3, 0), 0u);
    EXPECT_NE(toolkit::hashData(0, "abc", 3, 0xFFFFFFFF), toolkit::hashData(1, "abc", 3, 0xFFFFFFFF));
}
