#include "text/ZCharBuffer.h"

#include "tests/support/AllocProbe.h"
#include "tests/text/textsamples.h"
#include "text/ZCharStrT.h"

#include <cmath>
#include <cstring>

namespace {

std::string str(const ZString& text) { return utf8(text); }
std::string str(const ZSelector& text) { return text.isEmpty() ? "" : text.string(); }

class CharBuffer : public testing::Test {
public:
    static void SetUpTestSuite() { ASSERT_TRUE(ZSelector::open()); }
    static void TearDownTestSuite() { ZSelector::close(); }
};

} // namespace

TEST_F(CharBuffer, GrowsByDoubling) {
    struct Row {
        int size, by, after;
    };
    for (Row row : {Row{128, 1, 256}, {128, 1000, 2048}, {0, 1, 128}, {10, 200, 256}, {100, 60, 200}}) {
        ZCharBuffer buffer(row.size);
        EXPECT_TRUE(buffer.expand(row.by));
        EXPECT_EQ(buffer.getSize(), row.after);
    }
    ZCharBuffer buffer;
    EXPECT_FALSE(buffer.expand(-1));
    buffer.add(std::string(128, 'x').c_str());
    EXPECT_EQ(buffer.getSize(), 128);
    buffer.setPos(5);
    buffer.expand(1);
    EXPECT_EQ(buffer.dpos(), 5);
    EXPECT_EQ(str(buffer.string()), std::string(128, 'x'));
    buffer.setExpand(1000);
    buffer.setPos(255);
    buffer.add("ab");
    EXPECT_EQ(buffer.getSize(), 2048);
    EXPECT_EQ(memsize(buffer.getPos() - buffer.dpos()), 2056u);
}

TEST_F(CharBuffer, PositionsStayInside) {
    ZCharBuffer text("hello");
    text.setPos(5);
    text.setPos(-1);
    text.setPos(text.end());
    text.setPos(static_cast<char*>(nullptr));
    EXPECT_EQ(text.dpos(), 0);
    text.setPos(text.end() - 1);
    EXPECT_TRUE(text.peek() == 'o' && text.get() == 'o');
    EXPECT_TRUE(text.get() == -1 && text.peek() == -1 && text.ended());
    text.rewind(2);
    EXPECT_EQ(str(text.stringFromPos()), "lo");
    text.rewind(-2);
    EXPECT_EQ(text.dpos(), 3);
    text.advance(INT32_MAX);
    EXPECT_TRUE(text.ended());
    text.rewind(INT32_MAX);
    EXPECT_EQ(str(text.stringFromPos()), "hello");
    EXPECT_EQ(ZCharBuffer("").get(), -1);
    EXPECT_EQ(ZCharBuffer("").copyAStr(), nullptr);
    EXPECT_EQ(ZCharBuffer("\xFF").get(), 255);
}

TEST_F(CharBuffer, WritesText) {
    ZCharBuffer out(4);
    EXPECT_TRUE(out.add('a') && out.add("bc") && out.add("defgh", 2) && out.add(ZString(u"\u3042")) &&
                out.addCode(0x1F600));
    EXPECT_TRUE(out.add("") && out.add(nullptr) && out.add(ZString()));
    EXPECT_EQ(str(out.string()), "abcde\u3042\U0001F600");
    EXPECT_EQ(out.length(), out.dpos());
    out.addCode(0xD800);
    EXPECT_TRUE(out.printf("%s|%d|%.*!f", "x", -5, 2, 1.5));
    EXPECT_EQ(str(out.string()), "abcde\u3042\U0001F600\uFFFDx|-5|1.5");
    out.restart(false);
    out.add("xyz");
    EXPECT_EQ(str(out.string()), "xyz");
    out.restart(false);
    EXPECT_TRUE(out.add(""));
    EXPECT_EQ(out.length(), 0);
    out.restart(true);
    out.add("ab \t\n");
    out.clearSpaces();
    EXPECT_EQ(str(out.string()), "ab");
    out.clear();
    EXPECT_EQ(out.length(), 0);
    out.add(" \t");
    out.clearSpaces();
    EXPECT_EQ(out.dpos(), 0);
    // Its own text, over several growths.
    out.add("12");
    for (int i = 0; i < 12; ++i) ASSERT_TRUE(out.add(out.getPos() - out.dpos(), out.dpos()));
    EXPECT_EQ(out.dpos(), 2 << 12);
    std::string all = str(out.string());
    const char* own = out.getPos() - out.dpos();
    ASSERT_TRUE(out.printf("<%s|%s>", own, own));
    EXPECT_EQ(str(out.string()), all + "<" + all + "|" + all + ">");
    all = str(out.string());
    ASSERT_TRUE(out.addWithQuote(out.getPos() - out.dpos(), out.dpos()));
    EXPECT_EQ(str(out.string()), all + all);
}

TEST_F(CharBuffer, WritesMarks) {
    struct Row {
        const char *text, *escape, *quote, *csv, *special;
    };
    static const Row rows[] = {
        {"", "", "", "", ""},
        {"a\tb\nc\rd", "a\\tb\\nc\\rd", "a\tb\nc\rd", "a\"\\t\"b\nc\rd", "a%09b%0Ac%0Dd"},
        {"\"\\", "\\\"\\\\", "\\\"\\", "\"\"\"\\\\\"", "%22%5C"},
        {"1,2", "1,2", "1,2", "1\",\"2", "1%2C2"},
        {"*-._+/[z{A", "*-._+/[z{A", "*-._+/[z{A", "*-._+/[z{A", "*-._%2B%2F%5Bz%7BA"},
        {"\u00E9", "\u00E9", "\u00E9", "\u00E9", "%C3%A9"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        ZCharBuffer out(1);
        auto check = [&](bool good, const char* expected) {
            EXPECT_TRUE(good);
            EXPECT_EQ(str(out.string()), expected);
            out.clear();
        };
        ZString wide(row.text);
        wide.setType(ZString::WChar);
        check(out.addWithEscape(wide), row.escape);
        check(out.addWithQuote(wide), row.quote);
        check(out.addCSVString(wide), row.csv);
        check(out.addSpecial(wide), row.special);
    }
}

TEST_F(CharBuffer, EscapesAsInAReference) {
    struct Row {
        const char *text, *reference, *result;
    };
    static const Row rows[] = {
        {"50% (of)", "10\\% (von)", "50\\% (of)"},
        {"a(b)c", "\\(x\\)", "a\\(b\\)c"},
        {"a;b;c", "x\\;y;z", "a\\;b;c"},
        {"a;b", "x;y\\;", "a;b"},
        {"100%1 %9%", "\\%1 %9\\%", "100%1 %9\\%"},
        {")(", "\\(\\)", "\\)("},
        {"\\;", "\\(\\\\\\;", "\\\\\\;"},
        {"=", "", "="},
        {"", "\\=", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(str(ZCharBuffer::escapeStringRessource(ZString(row.text), ZString(row.reference))), row.result)
            << row.text;
    // Marks that the reference lacks aren't searched for again and again.
    ZString marks(std::string(1000000, ';').c_str()), others(std::string(1000000, 'x').c_str());
    EXPECT_TRUE(ZCharBuffer::escapeStringRessource(marks, others) == marks);
}

TEST_F(CharBuffer, NumberLists) {
    static const int ints[] = {1, -2, INT32_MIN};
    static const real reals[] = {0.5, -100.123456789, 1e10, 9.123456789};
    static const float floats[] = {0.5f, 20};
    static const uint unsigneds[] = {0, 255, UINT32_MAX};
    EXPECT_EQ(str(ZCharBuffer(ZArrayT<int>(ints, 3)).string()), "1 -2 -2147483648");
    EXPECT_EQ(str(ZCharBuffer(ZArrayT<real>(reals, 4), 0).string()), "0.5 -100.123457 10000000000 9.12345679");
    EXPECT_EQ(str(ZCharBuffer(ZArrayT<float>(floats, 2), 3).string()), "0.5 20");
    EXPECT_EQ(str(ZCharBuffer(unsigneds, 3, 16).string()), "0 ff ffffffff");
}

TEST_F(CharBuffer, Skipping) {
    ZCharBuffer written;
    written.add("  a b \n");
    written.skipSpaces();
    EXPECT_EQ(str(written.stringFromPos()), "a b");
    EXPECT_EQ(written.getSize(), 128);
    ZCharBuffer text("\t a,b  ");
    text.advance(5);
    text.skipSpaces();
    EXPECT_EQ(str(text.stringFromPos()), "a,b");
    EXPECT_EQ(text.end() - text.getPos(), 3);
    ZCharBuffer separated(" ,\t,, \xC3x");
    separated.skipSeparator();
    EXPECT_EQ(separated.peek(), 0xC3);
    ZCharBuffer codes("ab = c=d");
    EXPECT_FALSE(ZCharBuffer("d").skipTo('d' + 256));
    EXPECT_TRUE(codes.skipTo('=') && codes.dpos() == 4);
    EXPECT_FALSE(codes.skipTo(' '));
    EXPECT_TRUE(codes.ended());
}

TEST_F(CharBuffer, WordsAndFields) {
    auto words = [](const char* text, auto next) {
        ZCharBuffer buffer(text);
        std::string all;
        for (int i = 0; i < 99 && !buffer.ended(); ++i) all += str(next(buffer)) + "|";
        EXPECT_TRUE(buffer.ended());
        return all;
    };
    struct Row {
        const char *text, *token, *name, *upToEqual, *upToEqualBlanks, *fields;
    };
    static const Row rows[] = {
        {"", "", "", "", "", ""},
        {"a1_b = c", "a1_b|=|c|", "a|1|_|b|=|c|", "a1_b||c|", "a1_b|c|", "a1_b = c|"},
        {"x@[`{z", "x|@|[|`|{|z|", "x|@|[|`|{|z|", "x@[`{z|", "x@[`{z|", "x@[`{z|"},
        {"\u00E9\u3042z", "\u00E9|\u3042|z|", "\u00E9|\u3042|z|", "\u00E9\u3042z|", "\u00E9\u3042z|", "\u00E9\u3042z|"},
        {"'a,b' , \"c\",d e,,f", "'|a|,|b|'|,|\"|c|\"|,|d|e|,|,|f|", "'|a|,|b|'|,|\"|c|\"|,|d|e|,|,|f|",
         "'a,b'|,|\"c\",d|e,,f|", "'a,b' , \"c\",d e,,f|", "a,b|c|d e|f|"},
        {"\"open, to the end", "\"|open|,|to|the|end|", "\"|open|,|to|the|end|", "\"open,|to|the|end|",
         "\"open, to the end|", "open, to the end|"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(words(row.text, [](ZCharBuffer& b) { return b.token(); }), row.token);
        EXPECT_EQ(words(row.text, [](ZCharBuffer& b) { return b.pureName(); }), row.name);
        EXPECT_EQ(words(row.text, [](ZCharBuffer& b) { return b.token('=', false); }), row.upToEqual);
        EXPECT_EQ(words(row.text, [](ZCharBuffer& b) { return b.token('=', true); }), row.upToEqualBlanks);
        EXPECT_EQ(words(row.text, [](ZCharBuffer& b) { return b.separateString(','); }), row.fields);
    }
    ZCharBuffer text("a,b;c");
    bool second = true;
    for (const char* part : {"a,", "b;", "c."}) {
        EXPECT_EQ(str(text.stringTo(',', ';', second)), std::string(part, 1));
        EXPECT_EQ(second, part[1] == ';');
    }
    ZCharBuffer source("ab;cd"), out;
    EXPECT_TRUE(source.copyTillCode(out, ';'));
    EXPECT_FALSE(source.copyTillCode(out, ';'));
    EXPECT_EQ(str(out.string()), "abcd");
}

TEST_F(CharBuffer, BalancedText) {
    struct Row {
        const char *text, *inside, *behind;
    };
    static const Row rows[] = {
        {"(a(b)c)d", "a(b)c", "d"},
        {"a(b[c]{d})e)f", "a(b[c]{d})e", "f"},
        {"<a<b>c>d", "a<b>c", "d"},
        {"(a\\)b)", "a\\", "b)"},
        {"(\")\" ')' x)y", "\")\" ')' x", "y"},
        {"(open", "open", ""},
        {"(\"open)", "\"open)", ""},
        {")x", "", "x"},
    };
    for (const Row& row : rows) {
        ZCharBuffer text(row.text);
        bool angle = *row.text == '<';
        EXPECT_EQ(str(text.extract(angle ? '<' : '(', angle ? '>' : ')')), row.inside) << row.text;
        EXPECT_EQ(str(text.stringFromPos()), row.behind) << row.text;
    }
    ZCharBuffer formula("blur (3, (4)) + edge-x )");
    std::string words;
    for (int i = 0; i < 20 && !formula.ended(); ++i) {
        ZString arguments;
        words += str(formula.extract(arguments, '(', ')', ZString("+-")));
        words += "<" + str(arguments) + ">";
    }
    EXPECT_EQ(words, "blur<3, (4)>+<>edge<>-<>x<><>");

    EXPECT_EQ(ZCharBuffer(std::string(1000000, '(').c_str()).extract('(', ')').length(), 999999);
}

TEST_F(CharBuffer, CharacterReferences) {
    struct Row {
        const char *text, *result;
    };
    static const Row rows[] = {
        {"a &lt;b&gt; &amp;&apos;&quot;", "a <b> &'\""},
        {"&#65;&#255;&#256;&#0;&#999999;x", "A\xFFx"},
        {"&#6553600;|&#65536000;|", "|&#65536000;|"},
        {"&unknown;|&unknowns;|&toolongs1;", "||&toolongs1;"},
        {"a & b; & &; &a b; R&D costs;&", "a & b; & &; &a b; R&D costs;&"},
        {"&amp;lt;", "&lt;"},
        {"&#x41;&#;&LT;&amp", "&amp"},
    };
    for (const Row& row : rows) {
        ZCharBuffer text(row.text);
        EXPECT_EQ(str(text.parseXMLCharacters()), row.result) << row.text;
        EXPECT_TRUE(text.ended());
    }
}

TEST_F(CharBuffer, ScansNumbers) {
    ZCharBuffer text(" ,12, 0x1f;-3 99999999999 1.5");
    int value = 0;
    EXPECT_TRUE(text.scanInt(&value, 10) && value == 12);
    EXPECT_TRUE(text.scanInt(&value, 10) && value == 31);
    EXPECT_FALSE(text.scanInt(&value, 10));
    EXPECT_EQ(text.get(), ';');
    uint unsigneds[4] = {7, 7, 7, 7};
    EXPECT_FALSE(text.scanUnsigned(unsigneds, 4, 10));
    EXPECT_TRUE(text.scanInt(&value, 10) && value == -3);
    EXPECT_TRUE(text.scanInt(&value, 10) && value == INT32_MAX);
    float single = 0;
    EXPECT_TRUE(text.scanFloat(&single, '.') && single == 1.5f);
    EXPECT_FALSE(text.scanFloat(&single, '.'));

    ZCharBuffer list("ff,0 100000000 x");
    EXPECT_TRUE(list.scanUnsigned(unsigneds, 4, 16));
    EXPECT_TRUE(unsigneds[0] == 255 && unsigneds[2] == UINT32_MAX && unsigneds[3] == 7);
    list.rewind();
    EXPECT_TRUE(list.scanUnsigned(unsigneds, 1, 16));
    EXPECT_EQ(str(list.stringFromPos()), ",0 100000000 x");

    EXPECT_EQ(ZCharBuffer("1 -2,0b11 z 4").scanInt(10).count(), 3u);
    ZArrayT<real> reals = ZCharBuffer("0.5 1e999 -1e999 1e-999 nan").scanReal('.');
    ASSERT_EQ(reals.count(), 5u);
    EXPECT_TRUE(reals[1] == HUGE_VAL && reals[2] == -HUGE_VAL && reals[3] == 0);
    ZArrayT<float> floats = ZCharBuffer("0,5 1e39 2").scanFloat(',');
    ASSERT_EQ(floats.count(), 3u);
    EXPECT_TRUE(floats[0] == 0.5f && floats[1] == HUGE_VALF);
}

TEST_F(CharBuffer, HexadecimalInPlace) {
    struct Row {
        const char *text, *bytes;
    };
    for (Row row : {Row{"4a4B", "JK"}, {"4 a\n4-Bf", "JK"}, {"xyz", ""}, {"", ""}, {"g7", ""}}) {
        ZCharBuffer text(row.text);
        EXPECT_EQ(text.scanBlock(), int(strlen(row.bytes)));
        EXPECT_EQ(str(text.string()), row.bytes);
    }
    ZCharBuffer zero("head:0041");
    zero.skipTo(':');
    EXPECT_EQ(zero.scanBlock(), 2);
    zero.rewind();
    EXPECT_TRUE(zero.get() == 0 && zero.get() == 'A');
}

TEST_F(CharBuffer, TextAsAValue) {
    ZCharBuffer text("a b");
    EXPECT_EQ(str(text.selector()), "a b");
    char* copy = text.copyAStr();
    EXPECT_STREQ(copy, "a b");
    zfree(copy);
    EXPECT_EQ(str(ZCharBuffer(text.selector()).string()), "a b");
    EXPECT_EQ(str(ZCharBuffer(ZCharStr("c d")).string()), "c d");
    EXPECT_TRUE(text.initialize(4) && text.getSize() == 4 && text.length() == 0);
    EXPECT_TRUE(text.initialize(0) && text.add("again"));
    EXPECT_EQ(str(text.string()), "again");
}

TEST_F(CharBuffer, EveryAllocationFails) {
    std::string longText(1000, 'x');
    ZString kana(u"\u3042");
    zrecover();
    failEachAllocation([&](AllocProbe& probe) {
        ZCharBuffer out;
        EXPECT_EQ(zresetfail(), probe.failed());
        zrecover();
        std::string written;
        auto step = [&](bool good, const std::string& text) {
            if (good) written += text;
            EXPECT_EQ(out.dpos(), int(written.size()));
            EXPECT_EQ(out.length(), int(written.size()));
            EXPECT_TRUE(good || probe.failed());
        };
        step(out.add("0123456789", 10), "0123456789");
        step(out.printf("%s,%150d", "ab", 7), "ab," + std::string(149, ' ') + "7");
        step(out.addWithEscape(("\n" + longText).c_str()), "\\n" + longText);
        step(out.addCSVString(kana), "\u3042");
    });
    failEachAllocation([&](AllocProbe& probe) {
        static const uint numbers[40] = {UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX};
        ZCharBuffer list(numbers, 40, 2);
        EXPECT_EQ(zresetfail(), probe.failed());
        EXPECT_EQ(list.dpos(), probe.failed() ? 0 : 5 * 32 + 35 + 39);
        zrecover();
    });
    failEachAllocation([&](AllocProbe& probe) {
        ZCharBuffer text(longText.c_str());
        ZString copy = text.parseXMLCharacters();
        EXPECT_EQ(zresetfail(), probe.failed());
        EXPECT_EQ(copy.length(), probe.failed() ? 0 : 1000);
        zrecover();
    });
    ZCharBuffer numbers("1 2 3 4 5 6 7 8 9;"), out(1);
    failEachAllocation([&](AllocProbe& probe) {
        numbers.rewind();
        ZArrayT<int> all = numbers.scanInt(10);
        EXPECT_EQ(zrecover(), probe.failed());
        EXPECT_EQ(all.count(), probe.failed() ? 0u : 9u);
        EXPECT_EQ(numbers.dpos(), probe.failed() ? 0 : 17);
    });
    numbers.rewind();
    AllocProbe probe;
    probe.failAt(1);
    EXPECT_FALSE(numbers.copyTillCode(out, ';'));
    EXPECT_EQ(numbers.dpos(), 0);
}
