#include "toolkit/text.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

struct PropertyRow {
    ichar code;
    int category, direction, combining, decomposition, digit, decimal;
};
const PropertyRow propertyRows[] = {
    {'A', 1, 1, 0, 255, -1, -1},      {'7', 9, 9, 0, 255, 7, 7},        {0x00E9, 2, 1, 0, 0, -1, -1},
    {0x00B2, 11, 9, 0, 8, 2, -1},     {0x00A0, 23, 13, 0, 2, -1, -1},   {0x01C5, 3, 1, 0, 16, -1, -1},
    {0x02B0, 4, 1, 0, 8, -1, -1},     {0x05D0, 5, 4, 0, 255, -1, -1},   {0x0301, 6, 14, 230, 255, -1, -1},
    {0x0903, 7, 1, 0, 255, -1, -1},   {0x20DD, 8, 14, 0, 255, -1, -1},  {0x2160, 10, 1, 0, 16, -1, -1},
    {'_', 12, 19, 0, 255, -1, -1},    {'-', 13, 10, 0, 255, -1, -1},    {'(', 14, 19, 0, 255, -1, -1},
    {']', 15, 19, 0, 255, -1, -1},    {0x00AB, 16, 19, 0, 255, -1, -1}, {0x00BB, 17, 19, 0, 255, -1, -1},
    {'!', 18, 19, 0, 255, -1, -1},    {'+', 19, 10, 0, 255, -1, -1},    {'$', 20, 11, 0, 255, -1, -1},
    {'^', 21, 19, 0, 255, -1, -1},    {0x00A9, 22, 19, 0, 255, -1, -1}, {0x2028, 24, 18, 0, 255, -1, -1},
    {0x2029, 25, 16, 0, 255, -1, -1}, {'\n', 26, 16, 0, 255, -1, -1},   {0x202B, 27, 6, 0, 255, -1, -1},
    {0xD800, 28, 1, 0, 255, -1, -1},  {0xE000, 29, 1, 0, 255, -1, -1},  {0x0378, 30, 1, 0, 255, -1, -1},
    {0x2066, 27, 19, 0, 255, -1, -1}, {0x0627, 5, 5, 0, 255, -1, -1},   {0x0661, 9, 12, 0, 255, 1, 1},
    {0x202A, 27, 2, 0, 255, -1, -1},  {0x202D, 27, 3, 0, 255, -1, -1},  {0x202E, 27, 7, 0, 255, -1, -1},
    {0x202C, 27, 8, 0, 255, -1, -1},  {'\t', 26, 17, 0, 255, -1, -1},   {0x00AD, 27, 15, 0, 255, -1, -1},
    {0xFB50, 5, 5, 0, 6, -1, -1},     {0xFEE7, 5, 5, 0, 3, -1, -1},     {0xFEE8, 5, 5, 0, 4, -1, -1},
    {0xFEE6, 5, 5, 0, 5, -1, -1},     {0x2460, 11, 19, 0, 7, 1, -1},    {0x2080, 11, 9, 0, 9, 0, -1},
    {0xFE30, 18, 19, 0, 10, -1, -1},  {0xFF21, 1, 1, 0, 11, -1, -1},    {0xFF71, 5, 1, 0, 12, -1, -1},
    {0xFE50, 18, 13, 0, 13, -1, -1},  {0x3300, 22, 1, 0, 14, -1, -1},   {0x00BD, 11, 19, 0, 15, -1, -1},
    {0x1D400, 1, 1, 0, 1, -1, -1},    {0xAC00, 5, 1, 0, 0, -1, -1},     {0x110000, 0, 0, 0, 255, -1, -1},
};

} // namespace

TEST(TextServices, PropertiesInTheirOwnNumbers) {
    for (auto& row : propertyRows) {
        EXPECT_EQ(toolkit::codeCategory(row.code), row.category) << std::hex << uint(row.code);
        EXPECT_EQ(toolkit::codeDirection(row.code), row.direction) << std::hex << uint(row.code);
        EXPECT_EQ(toolkit::codeCombiningClass(row.code), row.combining) << std::hex << uint(row.code);
        EXPECT_EQ(toolkit::codeDecomposition(row.code), row.decomposition) << std::hex << uint(row.code);
        EXPECT_EQ(toolkit::codeDigit(row.code), row.digit) << std::hex << uint(row.code);
        EXPECT_EQ(toolkit::codeDecimal(row.code), row.decimal) << std::hex << uint(row.code);
    }
    for (ichar code = 0; code < 256; ++code)
        EXPECT_EQ(toolkit::codeCategory(code), toolkit::wideCategory(code)) << uint(code);
}

TEST(TextServices, FlagsMirrorsAndCase) {
    EXPECT_EQ(toolkit::codeFlags('b'), 32);
    EXPECT_EQ(toolkit::codeFlags('B'), 64 + 128);
    EXPECT_EQ(toolkit::codeFlags('('), 16);
    EXPECT_EQ(toolkit::codeFlags(0xE9), 1 + 4 + 32);
    EXPECT_EQ(toolkit::codeFlags(0x301), 2 + 8) << "composes with what stands before it";
    EXPECT_EQ(toolkit::codeFlags(0xFB01), 4 + 8);
    EXPECT_EQ(toolkit::codeMirror('<'), ichar('>'));
    EXPECT_EQ(toolkit::codeMirror('a'), ichar('a'));
    struct {
        ichar code, lower, upper, title, fold;
    } rows[] = {{'Q', 'q', 'Q', 'Q', 'q'},
                {'@', '@', '@', '@', '@'},
                {'[', '[', '[', '[', '['},
                {0x1C6, 0x1C6, 0x1C4, 0x1C5, 0x1C6},
                {0x212A, 'k', 0x212A, 0x212A, 'k'},
                {0x17F, 0x17F, 'S', 'S', 's'},
                {0xDF, 0xDF, 0xDF, 0xDF, 0xDF},
                {0x3C2, 0x3C2, 0x3A3, 0x3A3, 0x3C3},
                {0x10400, 0x10428, 0x10400, 0x10400, 0x10428},
                {0x110000, 0x110000, 0x110000, 0x110000, 0x110000}};
    for (auto& row : rows) {
        EXPECT_EQ(toolkit::codeLower(row.code), row.lower) << std::hex << uint(row.code);
        EXPECT_EQ(toolkit::codeUpper(row.code), row.upper) << std::hex << uint(row.code);
        EXPECT_EQ(toolkit::codeTitle(row.code), row.title) << std::hex << uint(row.code);
        EXPECT_EQ(toolkit::codeFold(row.code), row.fold) << std::hex << uint(row.code);
    }
    for (ichar code = 0; code < 0x80; ++code) {
        EXPECT_EQ(toolkit::codeLower(code), toolkit::wideLower(code));
        EXPECT_EQ(toolkit::codeFold(code), toolkit::wideFold(code));
    }
}

TEST(TextServices, BlocksAndNames) {
    char name[64] = "";
    int cyrillic = toolkit::codeBlock(0x416);
    EXPECT_EQ(toolkit::blockName(cyrillic, name, sizeof name), 8);
    EXPECT_STREQ(name, "Cyrillic");
    EXPECT_EQ(toolkit::blockIndex("cyrillic"), cyrillic);
    EXPECT_EQ(toolkit::blockName(toolkit::codeBlock('a'), name, sizeof name), 11);
    EXPECT_STREQ(name, "Basic Latin");
    EXPECT_EQ(toolkit::blockName(toolkit::codeBlock('a'), name, 6), 11);
    EXPECT_STREQ(name, "Basic");
    EXPECT_EQ(toolkit::blockIndex("no such block"), -1);
    EXPECT_EQ(toolkit::blockName(-1, name, sizeof name), 0);
    EXPECT_EQ(toolkit::blockName(toolkit::blockCount(), name, sizeof name), 0);
    EXPECT_EQ(toolkit::codeName(0xE9, name, sizeof name), 31);
    EXPECT_STREQ(name, "LATIN SMALL LETTER E WITH ACUTE");
    EXPECT_GT(toolkit::codeName(9, name, sizeof name), 0);
    EXPECT_STREQ(name, "<control-0009>");
    EXPECT_EQ(toolkit::codeName(0x110000, name, sizeof name), 0);
}

TEST(TextServices, FullCaseMapping) {
    wchar out[16];
    EXPECT_EQ(toolkit::mapCase(toolkit::TextCase::Upper, nullptr, 0, u"Stra\u00DFe", 6), 7u);
    EXPECT_EQ(toolkit::mapCase(toolkit::TextCase::Upper, out, 16, u"Stra\u00DFe", 6), 7u);
    EXPECT_EQ(std::u16string(out, 7), u"STRASSE");
    EXPECT_EQ(toolkit::mapCase(toolkit::TextCase::Lower, out, 16, u"\u039F\u03A3", 2), 2u);
    EXPECT_EQ(std::u16string(out, 2), u"\u03BF\u03C2");
    EXPECT_EQ(toolkit::mapCase(toolkit::TextCase::Title, out, 16, u"two words", 9), 9u);
    EXPECT_EQ(std::u16string(out, 9), u"Two Words");
    EXPECT_EQ(toolkit::mapCase(toolkit::TextCase::Fold, out, 3, u"\u00DF\u00DF", 2), 4u);
}

TEST(TextServices, CollationInThreeWidthsAndKeys) {
    // Each comes before the next for a reader, in another order by code.
    const std::u16string words[] = {u"", u"\u00E4pfel", u"apple", u"Apple", u"zebra", u"\u03B1"};
    auto key = [](const std::u16string& text) {
        std::string bytes(toolkit::sortKey(nullptr, 0, text.data(), text.size()), '\0');
        EXPECT_EQ(toolkit::sortKey(reinterpret_cast<byte*>(bytes.data()), bytes.size(), text.data(), text.size()),
                  bytes.size());
        return bytes;
    };
    for (size_t i = 0; i + 1 < std::size(words); ++i) {
        auto &a = words[i], &b = words[i + 1];
        EXPECT_LT(toolkit::collate(a.data(), a.size(), b.data(), b.size()), 0) << i;
        EXPECT_GT(toolkit::collate(b.data(), b.size(), a.data(), a.size()), 0) << i;
        EXPECT_LT(key(a), key(b)) << i;
    }
    EXPECT_LT(toolkit::collate("\xC3\xA4pfel", 6, "zebra", 5), 0);
    EXPECT_LT(toolkit::collate(U"\u00E4pfel", 5, U"zebra", 5), 0);
    std::string longA(1000, 'a'), longB = longA + "\xC3\xA4";
    EXPECT_LT(toolkit::collate(longA.data(), longA.size(), longB.data(), longB.size()), 0);
    byte bytes[64], wide[64];
    size_t size = toolkit::sortKey(bytes, sizeof bytes, "\xC3\xA4pfel", 6);
    ASSERT_EQ(toolkit::sortKey(wide, sizeof wide, U"\u00E4pfel", 5), size);
    EXPECT_EQ(std::string(bytes, bytes + size), std::string(wide, wide + size));
}

TEST(TextServices, CollationOpensOnceForManyThreads) {
    toolkit::closeText();
    std::vector<std::thread> threads;
    int before[8] = {};
    for (int& result : before) threads.emplace_back([&result] { result = toolkit::collate("a", 1, "b", 1); });
    for (auto& thread : threads) thread.join();
    for (int result : before) EXPECT_LT(result, 0);
    toolkit::closeText();
    EXPECT_TRUE(toolkit::openText());
}
