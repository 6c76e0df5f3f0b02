#include "core/memfind.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {
template <class T> void checkPositions(large (*firstOf)(const T*, T, size_t), large (*lastOf)(const T*, T, size_t)) {
    std::mt19937 random(7);
    for (size_t count : {0, 1, 7, 31, 32, 33, 64, 200}) {
        std::vector<T> range(count);
        for (T& item : range) item = T(random() % 90);
        for (T value = 0; value < 92; ++value) {
            auto first = std::find(range.begin(), range.end(), value);
            auto last = std::find(range.rbegin(), range.rend(), value);
            EXPECT_EQ(firstOf(range.data(), value, count), first == range.end() ? -1 : first - range.begin());
            EXPECT_EQ(lastOf(range.data(), value, count), last == range.rend() ? -1 : range.rend() - last - 1);
        }
    }
}
large firstByte(const byte* range, byte value, size_t count) { return memposc(range, value, count); }
large lastByte(const byte* range, byte value, size_t count) { return memrposc(range, value, count); }
} // namespace

TEST(MemFind, FirstAndLastPosition) {
    checkPositions<byte>(firstByte, lastByte);
    checkPositions<word>(memposw, memrposw);
    checkPositions<uint>(memposi, memrposi);
    EXPECT_EQ(memposc(nullptr, 0, 0), -1);
    EXPECT_EQ(memrposw(nullptr, 0, 0), -1);
}

TEST(MemFind, ByteStrings) {
    std::mt19937 random(9);
    for (int round = 0; round < 3000; ++round) {
        std::string text(random() % 40, 0), wanted(random() % 5, 0);
        for (char& c : text) c = char('a' + random() % 2);
        for (char& c : wanted) c = char('a' + random() % 2);
        auto place = [](size_t at) { return at == std::string::npos ? -1 : large(at); };
        EXPECT_EQ(memfind(text.data(), text.size(), wanted.data(), wanted.size()), place(text.find(wanted)));
        EXPECT_EQ(memrfind(text.data(), text.size(), wanted.data(), wanted.size()), place(text.rfind(wanted)))
            << text << " " << wanted;
        EXPECT_EQ(memposc2(text.data(), 'a', 'b', text.size()), place(text.find("ab")));
        EXPECT_EQ(memrposc2(text.data(), 'b', 'b', text.size()), place(text.rfind("bb")));
    }
    // A million near misses stay linear.
    std::string text(1000000, 'a'), wanted = "b" + std::string(100000, 'a');
    EXPECT_EQ(memrfind(text.data(), text.size(), wanted.data(), wanted.size()), -1);
}

TEST(MemFind, Patterns) {
    for (size_t count : {0, 1, 2, 3, 4, 100, 9001}) {
        for (auto& pattern : {std::vector<uint>{7}, {7, 8}, {7, 8, 9}}) {
            std::vector<byte> bytes(count + 1, 99);
            std::vector<word> words(count + 1, 99);
            std::vector<uint> ints(count + 1, 99);
            switch (pattern.size()) {
            case 1:
                memsetc(bytes.data(), 7, count);
                memsetw(words.data(), 7, count);
                memseti(ints.data(), 7, count);
                break;
            case 2:
                memsetc2(bytes.data(), 7, 8, count);
                memsetw2(words.data(), 7, 8, count);
                memseti2(ints.data(), 7, 8, count);
                break;
            case 3:
                memsetc3(bytes.data(), 7, 8, 9, count);
                memsetw3(words.data(), 7, 8, 9, count);
                memseti3(ints.data(), 7, 8, 9, count);
            }
            for (size_t i = 0; i <= count; ++i) {
                uint expected = i < count ? pattern[i % pattern.size()] : 99;
                ASSERT_EQ(bytes[i], expected);
                ASSERT_EQ(words[i], expected);
                ASSERT_EQ(ints[i], expected);
            }
        }
    }
}

TEST(MemFind, Matrices) {
    byte bytes[4][6] = {};
    word words[4][6] = {};
    uint ints[4][6] = {};
    memsetmc(&bytes[1][2], 5, 3, 2, 6);
    memsetmw(&words[2][2], 5, 3, 2, -6); // upwards
    memsetmi(&ints[1][2], 5, 3, 2, 6);
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 6; ++column) {
            uint expected = (row == 1 || row == 2) && column >= 2 && column < 5 ? 5 : 0;
            EXPECT_EQ(bytes[row][column], expected);
            EXPECT_EQ(words[row][column], expected);
            EXPECT_EQ(ints[row][column], expected);
        }
}

TEST(MemFind, StridedSearches) {
    // Records of three, the field second.
    int ints[30];
    uint uints[30];
    word words[30];
    for (int i = 0; i < 30; ++i) {
        bool field = i % 3 == 1;
        ints[i] = field ? i * 4 - 40 : 1000;
        uints[i] = field ? 0xFFFFFFF0u - 30 + uint(i) : 1;
        words[i] = word(field ? 65000 + i : 1);
    }
    for (int i = 0; i < 10; ++i) {
        int at = 1 + i * 3;
        EXPECT_EQ(binary_searchi(ints, ints[at], 10, 1, 3), i);
        EXPECT_EQ(linear_searchi(ints, ints[at], 10, 1, 3), i);
        EXPECT_EQ(binary_searchu(uints, uints[at], 10, 1, 3), i);
        EXPECT_EQ(linear_searchu(uints, uints[at], 10, 1, 3), i);
        EXPECT_EQ(binary_searchw(words, words[at], 10, 1, 3), i);
        EXPECT_EQ(linear_searchw(words, words[at], 10, 1, 3), i);
    }
    for (int missing : {-1000, 1000, 1, 5}) {
        EXPECT_EQ(binary_searchi(ints, missing, 10, 1, 3), -1);
        EXPECT_EQ(linear_searchi(ints, missing, 10, 1, 3), -1);
    }
    EXPECT_EQ(binary_searchu(uints, 1, 10, 1, 3), -1);
    EXPECT_EQ(binary_searchi(nullptr, 1, 0, 0, 1), -1);
    EXPECT_EQ(linear_searchi(ints, 1000, 0, 0, 1), -1);
}
