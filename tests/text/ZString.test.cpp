#include "text/ZString.h"

#include "core/ZError.h"
#include "core/compare.h"
#include "tests/support/AllocProbe.h"
#include "tests/text/textsamples.h"
#include "text/strtable.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace orv;

namespace {
/// In the order of their code points; UTF-16 units would order the last two the other way round.
const std::vector<std::string> ordered = {
    "", "A", "Ab", "a", "\xC3\xA9", "\xE3\x81\x82", "\xEF\xBD\xA1", "\xF0\x9F\x98\x80"};
} // namespace

TEST_F(StringTest, EmptyHasNeitherRecordNorIndex) {
    ZString empty;
    EXPECT_TRUE(empty.isInternal());
    EXPECT_EQ(empty.type(), ZString::Internal);
    EXPECT_EQ(empty.length(), 0);
    EXPECT_EQ(empty.astr(), nullptr);
    EXPECT_EQ(empty.hashKey(), 0u);
    EXPECT_TRUE(empty.setType(ZString::WChar));
    EXPECT_TRUE(empty.isInternal());
    EXPECT_TRUE(empty.expand(100));
    EXPECT_TRUE(empty.resize(100));
    EXPECT_EQ(empty.size(), 0);
    EXPECT_EQ(empty.getExpand(), 32);
    EXPECT_FALSE(empty.isDetached());
    ZString set("text");
    EXPECT_TRUE(set.set("more", 0));
    EXPECT_TRUE(set.isInternal());
    EXPECT_TRUE(ZString(static_cast<const char*>(nullptr)).isEmpty());
}

TEST_F(StringTest, BlanksOutOfNothingAreWide) {
    ZString blanks;
    EXPECT_TRUE(blanks.setLength(3));
    EXPECT_EQ(blanks.type(), ZString::WChar);
    EXPECT_TRUE(blanks == "   ");
    ZString stepped;
    EXPECT_TRUE(stepped.setExpand(0));
    EXPECT_EQ(stepped.type(), ZString::WChar);
    EXPECT_EQ(stepped.getExpand(), 1);
    EXPECT_EQ(stepped.length(), 0);
    EXPECT_GE(stepped.size(), 1);
}

TEST_F(StringTest, EveryFormConvertsToEveryOther) {
    const std::string text = "a\xC3\xA9\xE3\x81\x82\xF0\x9F\x98\x80z";
    const int lengths[] = {0, 11, 6, 5};
    for (ZString::Type from : widths)
        for (ZString::Type to : widths) {
            ZString s = inForm(text, from);
            EXPECT_EQ(s.length(), lengths[from]);
            EXPECT_EQ(s.count(), 5);
            EXPECT_TRUE(s.setType(to));
            EXPECT_EQ(s.type(), to);
            EXPECT_EQ(s.length(), lengths[to]);
            EXPECT_EQ(utf8(s), text);
        }
}

TEST_F(StringTest, NarrowingMakesRoomForTheText) {
    ZString kana(u"\u3042\u3042\u3042\u3042\u3042\u3042\u3042\u3042\u3042\u3042");
    EXPECT_TRUE(kana.setType(ZString::Char));
    EXPECT_EQ(kana.length(), 30);
    ZString wide("abcdefgh");
    EXPECT_TRUE(wide.setType(ZString::IChar));
    EXPECT_EQ(wide.size(), 8);
    EXPECT_TRUE(wide.setType(ZString::WChar));
    EXPECT_EQ(wide.size(), 16);
    wchar* copy = ZString(u"abc").wstr();
    EXPECT_EQ(memsize(copy), 8u);
    zfree(copy);
}

TEST_F(StringTest, CopiesShareUntilOneIsWritten) {
    for (ZString::Type type : widths) {
        ZString a = inForm("shared", type);
        EXPECT_FALSE(a.isDetached());
        ZString b(a), c;
        c = a;
        EXPECT_TRUE(a.isDetached());
        EXPECT_EQ(a.view().text, c.view().text);
        EXPECT_TRUE(b.append("!"));
        EXPECT_EQ(utf8(b), "shared!");
        EXPECT_EQ(utf8(a), "shared");
        EXPECT_TRUE(c.setLength(2));
        EXPECT_EQ(utf8(a), "shared");
        EXPECT_EQ(utf8(c), "sh");
        EXPECT_FALSE(a.isDetached());
    }
}

TEST_F(StringTest, InternalFormIsCountedAndComesBack) {
    uint index;
    {
        ZString a(u"name"), b("name");
        index = a.internalize();
        EXPECT_NE(index, 0u);
        EXPECT_EQ(a.internalize(), index);
        EXPECT_EQ(a.hashKey(), index);
        EXPECT_EQ(a.stringHash(), index);
        EXPECT_NE(b.hashKey(), index);
        EXPECT_EQ(a.length(), 4);
        EXPECT_TRUE(a == b && b == a);
        EXPECT_TRUE(a.isDetached());
        ZString copy(a), byIndex{int(index)};
        EXPECT_EQ(strtable::refcount(index), 3);
        uint more = byIndex.internalized();
        EXPECT_EQ(strtable::refcount(index), 4);
        strtable::release(more);
        ZString::Type type;
        auto text = static_cast<const ZString&>(a).data(type);
        EXPECT_EQ(type, ZString::WChar);
        EXPECT_EQ(static_cast<const wchar*>(text)[4], 0);
        EXPECT_TRUE(a.isInternal());
        EXPECT_TRUE(a.externalize());
        EXPECT_EQ(a.type(), ZString::WChar);
        EXPECT_TRUE(copy.append(U"d"));
        EXPECT_EQ(copy.type(), ZString::WChar);
        EXPECT_EQ(utf8(copy), "named");
        EXPECT_EQ(strtable::refcount(index), 1);
        EXPECT_EQ(utf8(b.getInternal()), "name");
    }
    EXPECT_EQ(strtable::refcount(index), 0);
    EXPECT_TRUE(ZString(int(index)).isEmpty());
    EXPECT_TRUE(ZString(-1).isEmpty());
}

TEST_F(StringTest, WithoutTheTableARecordStays) {
    strtable::close();
    ZString a("text");
    EXPECT_EQ(a.internalize(), 0u);
    EXPECT_EQ(a.type(), ZString::Char);
    EXPECT_FALSE(a.setType(ZString::Internal));
    EXPECT_EQ(utf8(a.getInternal()), "text");
    ASSERT_TRUE(strtable::open());
}

TEST_F(StringTest, OrderIsThatOfCodePointsInEveryForm) {
    for (ZString::Type p : {ZString::Internal, ZString::Char, ZString::WChar, ZString::IChar})
        for (ZString::Type q : {ZString::Internal, ZString::Char, ZString::WChar, ZString::IChar})
            for (size_t i = 0; i < ordered.size(); ++i)
                for (size_t j = 0; j < ordered.size(); ++j) {
                    ZString a = inForm(ordered[i], p), b = inForm(ordered[j], q);
                    int order = a.compare(b);
                    EXPECT_EQ((order > 0) - (order < 0), (i > j) - (i < j))
                        << ordered[i] << " " << ordered[j] << " " << p << q;
                    EXPECT_TRUE(i != j || zhashkey(a) == zhashkey(b)) << ordered[i] << p << q;
                }
}

TEST_F(StringTest, MalformedTextsAreOrderedAndToldApart) {
    // Broken at different places, a replacement character, and its neighbours.
    std::vector<ZString> all = {
        ZString("\xEF\xBF\xBC"), ZString("\xEF\xBF\xBD"), ZString("\xFF"),          ZString("\xFE"),
        ZString("\xE3\x81"),     ZString("\xE3"),         ZString("\xE3\x81\x82"),  ZString("\xE3\x81z"),
        ZString("\x81\x82"),     ZString(u"\xD800"),      ZString(u"\xDC00\xD800"), ZString(u"\xFFFD"),
        ZString(U"\xD800"),      ZString(U"\x110000"),    ZString(u"\xD83D\xDE00"), ZString("\xF0\x9F\x98\x80")};
    for (auto& a : all)
        for (auto& b : all) {
            int ab = a.compare(b);
            EXPECT_EQ((ab > 0) - (ab < 0), (b.compare(a) < 0) - (b.compare(a) > 0));
            EXPECT_TRUE(ab || a.textHash() == b.textHash());
            for (auto& c : all) EXPECT_FALSE(ab <= 0 && b.compare(c) <= 0 && a.compare(c) > 0);
        }
    EXPECT_NE(all[2].compare(all[3]), 0);
    EXPECT_EQ(all[9].compare(all[12]), 0);
    EXPECT_EQ(all[14].compare(all[15]), 0);
}

TEST_F(StringTest, LongTextsHashAlikeInEveryForm) {
    std::string text;
    for (int i = 0; i < 900; ++i) {
        text += i % 3 ? "x" : "\xE3\x81\x82";
        EXPECT_EQ(inForm(text, ZString::Char).textHash(), inForm(text, ZString::WChar).textHash()) << text.size();
        EXPECT_EQ(inForm(text, ZString::Char).textHash(), inForm(text, ZString::IChar).textHash()) << text.size();
    }
}

TEST_F(StringTest, ComparesWithCaseAsideAndAsAReader) {
    EXPECT_EQ(ZString("STRA\xC3\x9F"
                      "E")
                  .icompare(ZString(u"stra\xDF"
                                    u"e")),
              0);
    EXPECT_EQ(ZString("\xE2\x84\xAA").icompare(ZString("k")), 0);
    EXPECT_LT(ZString("a").icompare(ZString("B")), 0);
    EXPECT_GT(ZString("a").compare(ZString("B")), 0);
    EXPECT_LT(ZString("a").compareString(ZString(u"B")), 0);
    EXPECT_LT(ZString(u"\xE4pfel").compareString(ZString(U"Birne")), 0);
    EXPECT_LT(ZString().compareString(ZString("a")), 0);
    EXPECT_GT(ZString(u"a").compareString(ZString()), 0);
}

TEST_F(StringTest, AssignmentDecidesTheWidthAndAppendsKeepIt) {
    ZString s("abc");
    EXPECT_TRUE(s.set(u"\x3042"));
    EXPECT_EQ(s.type(), ZString::WChar);
    for (ZString::Type type : widths) {
        ZString t = inForm("\xE3\x81\x82", type);
        EXPECT_TRUE(t.append("\xC3\xA9") && t.append(u"\xD83D\xDE00") && t.append(U"\x1F600", 1) && t.append(s));
        EXPECT_EQ(t.type(), type);
        EXPECT_EQ(utf8(t), "\xE3\x81\x82\xC3\xA9\xF0\x9F\x98\x80\xF0\x9F\x98\x80\xE3\x81\x82");
        ZString empty;
        EXPECT_TRUE(empty.append(t));
        EXPECT_EQ(empty.type(), type);
        EXPECT_EQ((t + s).type(), type);
    }
}

TEST_F(StringTest, OwnTextAsSource) {
    for (ZString::Type type : widths) {
        ZString s = inForm("0123456789", type);
        ASSERT_TRUE(s.append(s));
        EXPECT_EQ(utf8(s), "01234567890123456789");
        for (int i = 0; i < 6; ++i) ASSERT_TRUE(s.append(s.view()));
        EXPECT_EQ(s.length(), 20 * 64);
        ZString::View tail = s.view();
        tail.text = static_cast<const char*>(tail.text) + 3 * ZString::unitSize(type);
        tail.length = 5;
        ASSERT_TRUE(s.set(tail));
        EXPECT_EQ(utf8(s), "34567");
        ZString shared(s);
        tail = s.view();
        tail.length = 2;
        ASSERT_TRUE(s.set(tail));
        EXPECT_EQ(utf8(s), "34");
        EXPECT_EQ(utf8(shared), "34567");
    }
}

TEST_F(StringTest, CapacityGrowsBySteps) {
    ZString s("abc");
    EXPECT_EQ(s.size(), 3);
    EXPECT_TRUE(s.append("d"));
    EXPECT_EQ(s.size(), 32); // 4 + 3 + 32, rounded down
    EXPECT_TRUE(s.append("012345678901234567890123456"));
    EXPECT_EQ(s.length(), 31);
    EXPECT_EQ(s.size(), 32);
    EXPECT_TRUE(s.append("x"));
    EXPECT_EQ(s.size(), 64);
    EXPECT_TRUE(s.expand(29));
    EXPECT_EQ(s.size(), 64); // 61 + 4 is 65, but 61 is below the capacity
    EXPECT_TRUE(s.expand(32));
    EXPECT_EQ(s.size(), 96);
    EXPECT_TRUE(s.setExpand(1));
    EXPECT_TRUE(s.expand(64));
    EXPECT_EQ(s.size(), 100);
    EXPECT_TRUE(s.setExpand(100));
    EXPECT_TRUE(s.expand(70));
    EXPECT_EQ(s.size(), 200);
    EXPECT_TRUE(s.resize(10));
    EXPECT_EQ(utf8(s), "abcd012345");
    EXPECT_EQ(s.size(), 10);
    EXPECT_TRUE(s.resize(50) && s.trim());
    EXPECT_EQ(s.size(), 10);
    EXPECT_TRUE(s.truncate(4));
    EXPECT_EQ(s.size(), 4);
    EXPECT_TRUE(s.truncate(9));
    EXPECT_EQ(utf8(s), "abcd");
    EXPECT_TRUE(s.truncate(-1));
    EXPECT_TRUE(s.isInternal());
    EXPECT_FALSE(ZString("a").expand(0x7FFFFFFF));
}

TEST_F(StringTest, MemoryOfARecordIsExactUntilItGrows) {
    for (ZString::Type type : widths) {
        ZString s = inForm("abcdef", type);
        ASSERT_TRUE(s.trim());
        EXPECT_EQ(memsize(static_cast<const char*>(s.view().text) - 16), size_t(8 * ZString::unitSize(type) + 16));
    }
}

TEST_F(StringTest, AMillionAppendsMoveTheTextSeldom) {
    AllocProbe probe;
    ZString s("a");
    probe.failAt(0);
    for (int i = 0; i < 1000000; ++i) ASSERT_TRUE(s.append("b", 1));
    EXPECT_EQ(s.length(), 1000001);
    EXPECT_LT(probe.allocations(), 60);
    EXPECT_TRUE(s.trim());
    EXPECT_EQ(memsize(static_cast<const char*>(s.view().text) - 16), 1000001u + 2 + 16);
}

TEST_F(StringTest, PartsAreClipped) {
    for (ZString::Type type : {ZString::Internal, ZString::Char, ZString::WChar, ZString::IChar}) {
        ZString s = inForm("abcdef", type);
        EXPECT_EQ(utf8(s.start(2)), "ab");
        EXPECT_EQ(utf8(s.start(99)), "abcdef");
        EXPECT_EQ(utf8(s.start(-1)), "");
        EXPECT_EQ(utf8(s.end(2)), "cdef");
        EXPECT_EQ(utf8(s.end(-2)), "abcdef");
        EXPECT_EQ(utf8(s.end(6)), "");
        EXPECT_EQ(utf8(s.extract(-3, 2)), "ab");
        EXPECT_EQ(utf8(s.extract(4, 0x7FFFFFFF)), "ef");
        EXPECT_EQ(s.end(1).type(), type ? type : ZString::Char);
        EXPECT_EQ(s.type(), type);
    }
}

TEST_F(StringTest, JoinedTexts) {
    const char* parts[] = {"ab", nullptr, "", "cd"};
    const wchar* wide[] = {u"x", u"\x3042"};
    EXPECT_EQ(utf8(ZString(parts, 4)), "abcd");
    EXPECT_EQ(utf8(ZString(wide, 2)), "x\xE3\x81\x82");
    EXPECT_TRUE(ZString(parts, 0).isEmpty());
}

TEST_F(StringTest, AFailedAllocationLeavesTheOldText) {
    using Change = bool (*)(ZString&);
    const Change changes[] = {
        [](ZString& s) { return s.append("0123456789012345678901234567890123456789"); },
        [](ZString& s) { return s.append(U"\x3042 0123456789012345678901234567890123456789"); },
        [](ZString& s) { return s.append(s); },
        [](ZString& s) { return s.set("a rather longer text than before"); },
        [](ZString& s) { return s.setType(ZString::IChar); },
        [](ZString& s) { return s.setType(ZString::Char); },
        [](ZString& s) { return s.setLength(500); },
        [](ZString& s) { return s.resize(3); },
        [](ZString& s) { return s.resize(300); },
        [](ZString& s) { return s.setExpand(9); },
        [](ZString& s) { return s.detach(); },
        [](ZString& s) { return s.expand(40); },
        [](ZString& s) { return s.externalize() && s.internalize() != 0; },
    };
    strtable::close();
    for (auto& change : changes)
        for (bool shared : {false, true})
            failEachAllocation([&](AllocProbe& probe) {
                strtable::open();
                {
                    ZString s(u"Before \x3042"), other;
                    if (shared) other = s;
                    bool whole = !s.isEmpty();
                    if (whole && !change(s)) {
                        EXPECT_TRUE(probe.failed());
                        EXPECT_TRUE(s == "Before \xE3\x81\x82");
                    }
                    EXPECT_TRUE(!whole || !shared || other == "Before \xE3\x81\x82");
                    EXPECT_EQ(zrecover(), whole ? 0 : 1);
                }
                strtable::close();
            });
    ASSERT_TRUE(strtable::open());
}
