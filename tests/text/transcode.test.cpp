#include "text/transcode.h"

#include "toolkit/utf8.h"

#include <gtest/gtest.h>
#include <string>

using namespace orv::detail;

namespace {

template <class To, class From> std::basic_string<To> convert(const std::basic_string<From>& text) {
    std::basic_string<To> out(transcode<To>(static_cast<To*>(nullptr), 0, text.data(), text.size()), To());
    EXPECT_EQ(transcode(out.data(), out.size(), text.data(), text.size()), out.size());
    return out;
}

template <class C> std::u32string readForwards(const std::basic_string<C>& text) {
    std::u32string codes;
    for (const C *at = text.data(), *end = at + text.size(); at < end;) codes += decodeCode(at, end);
    return codes;
}
template <class C> std::u32string readBackwards(const std::basic_string<C>& text) {
    std::u32string codes;
    for (const C *begin = text.data(), *at = begin + text.size(); at > begin;) codes += decodeBefore(at, begin);
    return {codes.rbegin(), codes.rend()};
}

const ichar R = replacementCode;

struct BytesRow {
    const char* what;
    std::string bytes;
    std::u32string codes;
};
const BytesRow bytesRows[] = {
    {"whole characters", "a\xC3\xA9\xE3\x81\x82\xF0\x9F\x98\x80", U"a\u00E9\u3042\U0001F600"},
    {"edges of each length", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
     U"\x7F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"},
    {"the practice of the standard's table of maximal subparts",
     "\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64",
     {'a', R, R, R, 'b', R, 'c', R, R, 'd'}},
    {"overlong", "\xC0\x80\xC1\xBF\xE0\x80\x80\xF0\x80\x80\x80", {R, R, R, R, R, R, R, R, R, R, R}},
    {"surrogates", "\xED\xA0\x80\xED\xBF\xBF\xED\x9F\xBF", {R, R, R, R, R, R, 0xD7FF}},
    {"beyond the last code point", "\xF4\x90\x80\x80\xF5\x80\xFF", {R, R, R, R, R, R, R}},
    {"cut at the end", "x\xF0\x9F\x98", {'x', R}},
    {"a zero inside", std::string("a\0b", 3), {'a', 0, 'b'}},
    {"bad bytes behind a long plain run", "0123456789abcdef0123456789\x80z", U"0123456789abcdef0123456789\uFFFDz"},
};

} // namespace

TEST(Transcode, BytesToCodePoints) {
    for (auto& row : bytesRows) {
        EXPECT_EQ(convert<ichar>(row.bytes), row.codes) << row.what;
        EXPECT_EQ(readForwards(row.bytes), row.codes) << row.what;
        EXPECT_EQ(readBackwards(row.bytes), row.codes) << row.what;
        EXPECT_EQ(countCodes(row.bytes.data(), row.bytes.size()), row.codes.size()) << row.what;
        EXPECT_EQ(convert<ichar>(convert<wchar>(row.bytes)), row.codes) << row.what;
        EXPECT_EQ(convert<char>(row.bytes), convert<char>(row.codes)) << row.what;
        // Repairing leaves exactly the well-formed texts as they are.
        for (size_t before = 0; before < 9; ++before) {
            std::string bytes = std::string(before, 'x') + row.bytes;
            EXPECT_EQ(toolkit::utf8Valid(bytes.data(), bytes.size()), convert<char>(row.codes) == row.bytes)
                << row.what << ", " << before;
        }
        EXPECT_TRUE(toolkit::utf8Valid(convert<char>(row.codes).data(), convert<char>(row.codes).size())) << row.what;
    }
}

TEST(Transcode, LoneSurrogatesAndValuesThatAreNoCodePoint) {
    std::u16string units = {0xD83D, 'a', 0xDE00, 0xD83D, 0xD83D, 0xDE00, 0xD800};
    std::u32string codes = {R, 'a', R, R, 0x1F600, R};
    EXPECT_EQ(convert<ichar>(units), codes);
    EXPECT_EQ(readBackwards(units), codes);
    EXPECT_EQ(convert<ichar>(convert<char>(units)), codes);
    EXPECT_EQ(convert<wchar>(std::u32string{0xD800, 0x110000, 0xFFFFFFFF}), (std::u16string{0xFFFD, 0xFFFD, 0xFFFD}));
    EXPECT_EQ(convert<char>(std::u32string{0xDFFF, 0x110000}), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Transcode, EveryCodePointSurvivesEveryWidth) {
    std::u32string all;
    for (ichar code = 0; code <= lastCode; ++code)
        if (validCode(code)) all += code;
    std::string bytes = convert<char>(all);
    std::u16string units = convert<wchar>(all);
    EXPECT_EQ(bytes.size(), 128u + 1920 * 2 + (65536 - 2048 - 2048) * 3 + 1048576u * 4);
    EXPECT_TRUE(convert<ichar>(bytes) == all);
    EXPECT_TRUE(convert<ichar>(units) == all);
    EXPECT_TRUE(convert<wchar>(bytes) == units);
    EXPECT_TRUE(convert<char>(units) == bytes);
    EXPECT_TRUE(readBackwards(bytes.substr(bytes.size() - 4000)) == all.substr(all.size() - 1000));
}

TEST(Transcode, WritesWholeCharactersWhileTheyFit) {
    std::string text = "abcdefghijklmnopqrstuvw\xC3\xA9\xE3\x81\x82\xF0\x9F\x98\x80 zzzzzzzzzzzzzzzzzzzz\xE3\x81\x82q";
    std::u16string whole = convert<wchar>(text);
    for (size_t room = 0; room <= whole.size(); ++room) {
        std::u16string out(room + 1, u'#');
        EXPECT_EQ(transcode(out.data(), room, text.data(), text.size()), whole.size());
        EXPECT_EQ(out[room], u'#') << room;
        size_t fits = room && leadSurrogate(whole[room - 1]) ? room - 1 : room;
        EXPECT_EQ(out.substr(0, fits), whole.substr(0, fits)) << room;
        std::string back(room + 1, '#');
        EXPECT_EQ(transcode(back.data(), room, whole.data(), whole.size()), text.size());
        EXPECT_EQ(back[room], '#') << room;
    }
}

TEST(Transcode, Lengths) {
    EXPECT_EQ(textLength(static_cast<const char*>(nullptr)), 0u);
    EXPECT_EQ(textLength(u"abc"), 3u);
    EXPECT_EQ(textLength(U"abc", 2), 2u);
    EXPECT_EQ(textLength("abc", 9), 3u);
    for (size_t length = 0; length < 70; ++length)
        EXPECT_EQ(asciiPrefix((std::u16string(length, u'x') + u"\u0080xxxxxxxxxxxxxxxxxx").data(), length + 10),
                  length);
}
