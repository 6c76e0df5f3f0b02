#include "text/ZTextCopyT.h"

#include "core/memory.h"
#include "tests/support/AllocProbe.h"
#include "tests/text/widths.h"

namespace {

template <class C> class TextCopy : public testing::Test {};
TYPED_TEST_SUITE(TextCopy, Widths);

/// Calls `write(out, size)` with every size up to what is needed and checks that the size is kept, that whole
/// characters of the result are written and that the answer is always the same. Answers the result.
template <class C, class F> std::string everySize(F&& write) {
    int length = write(static_cast<C*>(nullptr), 0);
    std::basic_string<C> whole(size_t(length) + 1, C(1));
    EXPECT_EQ(write(whole.data(), length + 1), length);
    EXPECT_EQ(whole.back(), C(0));
    whole.pop_back();
    for (int size = 0; size <= length; ++size) {
        std::basic_string<C> part(size_t(size) + 1, C(1));
        EXPECT_EQ(write(part.data(), size), length) << size;
        EXPECT_EQ(part[size_t(size)], C(1)) << "past the size " << size;
        if (!size) continue;
        std::basic_string<C> written = part.c_str();
        EXPECT_GE(written.size() + size_t(orv::detail::longestCode<C>), size_t(size));
        EXPECT_EQ(written, whole.substr(0, written.size()));
        EXPECT_EQ(out(written), out(whole).substr(0, out(written).size())) << "a character was split at " << size;
    }
    return out(whole);
}

const char* const mixed = "ab\u00E9\u3042\U0001F600z";

} // namespace

TYPED_TEST(TextCopy, Lengths) {
    using Text = ZTextCopyT<TypeParam>;
    auto text = in<TypeParam>(mixed);
    EXPECT_EQ(Text::length(text.c_str()), int(text.size()));
    EXPECT_EQ(Text::strcount(text.c_str()), 6);
    EXPECT_EQ(Text::strncount(text.c_str(), int(text.size()) - 1), 5);
    EXPECT_EQ(Text::strnlen(text.c_str(), 2), 2);
    EXPECT_EQ(Text::strnlen(text.c_str(), 999), int(text.size()));
    EXPECT_EQ(Text::length(nullptr), 0);
    EXPECT_EQ(Text::strncount(nullptr, 5), 0);
}

TYPED_TEST(TextCopy, CopiesKeepToTheirSize) {
    using C = TypeParam;
    using Text = ZTextCopyT<C>;
    auto text = in<C>(mixed);
    EXPECT_EQ(everySize<C>([&](C* out, int size) { return Text::strcopy(out, size, text.c_str()); }), mixed);
    EXPECT_EQ(everySize<C>([&](C* out, int size) { return Text::strcopy(out, size, text.c_str(), 2); }), "ab");
    EXPECT_EQ(everySize<C>([&](C* out, int size) { return Text::stricopy(out, size, in<ichar>(mixed).c_str()); }),
              mixed);
    if constexpr (sizeof(C) != 2) {
        EXPECT_EQ(everySize<C>([&](C* out, int size) { return Text::strwcopy(out, size, in<wchar>(mixed).c_str()); }),
                  mixed);
    }
    if constexpr (sizeof(C) != 1) {
        EXPECT_EQ(everySize<C>([&](C* out, int size) { return Text::stracopy(out, size, mixed, 4); }), "ab\u00E9");
    }
    EXPECT_EQ(everySize<C>([&](C* out, int size) { return Text::strnset(out, size, 0x3042, 3); }),
              "\u3042\u3042\u3042");
    EXPECT_EQ(everySize<C>([&](C* out, int size) { return Text::strnset(out, size, 'a', -3); }), "");
    EXPECT_EQ(Text::strnset(nullptr, 0, 'a', 2000000000), 2000000000);

    C room[8] = {};
    EXPECT_EQ(Text::strcat(room, 8, in<C>("abc").c_str()), 3);
    EXPECT_EQ(Text::strcat(room, 8, in<C>("defgh").c_str(), 2), 5);
    EXPECT_EQ(Text::strcat(room, 8, in<C>("xyz").c_str()), 8);
    EXPECT_EQ(out<C>(room), "abcdexy");
    EXPECT_EQ(Text::strmove(room + 1, 7, room), 7);
    EXPECT_EQ(out<C>(room), "aabcdex");
    for (C& unit : room) unit = 'q';
    EXPECT_EQ(Text::strcat(room, 8, in<C>("xyz").c_str()), 11);
    EXPECT_EQ(room[7], C('q')) << "a text without its end isn't touched";
}

TYPED_TEST(TextCopy, NewTexts) {
    using C = TypeParam;
    using Text = ZTextCopyT<C>;
    auto a = in<C>("one"), b = in<C>("\u3042"), c = in<C>("three");
    const C *none = nullptr, *table[] = {a.c_str(), nullptr, b.c_str(), c.c_str()};
    EXPECT_EQ(taken(Text::strdup(a.c_str())), "one");
    EXPECT_EQ(Text::strdup(nullptr), nullptr);
    EXPECT_EQ(taken(Text::strndup(c.c_str(), 2)), "th");
    EXPECT_EQ(taken(Text::strndup(c.c_str(), 99)), "three");
    EXPECT_EQ(taken(Text::joinstr(a.c_str(), b.c_str())), "one\u3042");
    EXPECT_EQ(taken(Text::joinstr(nullptr, nullptr)), "");
    EXPECT_EQ(taken(Text::joinnstr(4, a.c_str(), b.c_str(), none, c.c_str())), "one\u3042three");
    EXPECT_EQ(taken(Text::joinnstr(-1)), "");
    EXPECT_EQ(taken(Text::joinnstrtab(4, table)), "one\u3042three");
    struct {
        int position;
        const char* result;
    } inserts[] = {{0, "onethree"}, {2, "thoneree"}, {5, "threeone"}, {99, "threeone"}, {-4, "onethree"}};
    for (auto& row : inserts) EXPECT_EQ(taken(Text::insertstr(c.c_str(), row.position, a.c_str())), row.result);
    struct {
        int position, n;
        const char* result;
    } deletes[] = {{0, 2, "ree"},   {1, 3, "te"},     {3, 99, "thr"},   {-2, 3, "hree"},
                   {5, 1, "three"}, {2, -1, "three"}, {-9, 3, "three"}, {0, 2147483647, ""}};
    for (auto& row : deletes)
        EXPECT_EQ(taken(Text::deletestr(c.c_str(), row.position, row.n)), row.result) << row.position;
    C* room = Text::allocstr(10);
    EXPECT_EQ(memsize(room), 11 * sizeof(C));
    EXPECT_EQ(Text::length(room), 0);
    zfree(room);
}

TYPED_TEST(TextCopy, LineBreaks) {
    using C = TypeParam;
    using Text = ZTextCopyT<C>;
    struct {
        const char* text;
        int width;
        const char* result;
    } rows[] = {
        {"the quick brown fox", 9, "the quick\nbrown fox"},
        {"the quick brown fox", 10, "the quick\nbrown fox"},
        {"the quick brown fox", 0, "the quick brown fox"},
        {"the quick brown fox", 1, "t\nh\ne\nq\nu\ni\nc\nk\nb\nr\no\nw\nn\nf\no\nx"},
        {"abcdefgh ij", 3, "abc\ndef\ngh\nij"},
        {"one\ntwo three\r\n\nx", 5, "one\ntwo\nthree\r\n\nx"},
        {"  indented text", 10, "  indented\ntext"},
        {"gap     here", 6, "gap\nhere"},
        {"trailing   ", 8, "trailing"},
        {"\u3042\u3044\u3046\u3048\u304A", 2, "\u3042\u3044\n\u3046\u3048\n\u304A"},
        {"aae\u0301b", 3, "aae\u0301\nb"},
        {"a\u00A0b c", 3, "a\u00A0b\nc"},
        {"", 5, ""},
    };
    for (auto& row : rows) {
        auto text = in<C>(row.text);
        EXPECT_EQ(taken(Text::breakstr(text.c_str(), row.width)), row.result) << row.text;
        EXPECT_EQ(everySize<C>([&](C* out, int size) { return Text::breaklines(out, size, text.c_str(), row.width); }),
                  row.result);
    }
    EXPECT_EQ(taken(Text::breakstr(in<C>("ab cd").c_str(), 2, in<C>("\r\n").c_str())), "ab\r\ncd");
}

TYPED_TEST(TextCopy, NoMemory) {
    using C = TypeParam;
    using Text = ZTextCopyT<C>;
    auto a = in<C>("one"), b = in<C>("two");
    AllocProbe probe;
    probe.failAt(1, true);
    EXPECT_EQ(Text::allocstr(3), nullptr);
    EXPECT_EQ(Text::strdup(a.c_str()), nullptr);
    EXPECT_EQ(Text::joinnstr(2, a.c_str(), b.c_str()), nullptr);
    EXPECT_EQ(Text::insertstr(a.c_str(), 1, b.c_str()), nullptr);
    EXPECT_EQ(Text::breakstr(a.c_str(), 1), nullptr);
}

TEST(TextCopyBytes, SingleCodePoints) {
    using Text = ZTextCopyT<char>;
    char room[5] = "####";
    struct {
        ichar code;
        int size, bytes;
    } rows[] = {{'a', 1, 1},     {'a', 0, 0},    {0x3042, 2, 0},  {0x3042, 3, 3},
                {0x1F600, 4, 4}, {0xD800, 4, 0}, {0x110000, 4, 0}};
    for (auto& row : rows) EXPECT_EQ(Text::addchar(room, row.code, row.size), row.bytes) << uint(row.code);
    EXPECT_EQ(Text::codeLen(0x1F600), 4);
    const ichar codes[] = {'a', 'b', 0xE9, 0x3042, 0x1F600, 'z', 0, 0};
    int position = 0;
    for (ichar code : codes) EXPECT_EQ(Text::strchar(mixed, &position), code);
    EXPECT_EQ(position, int(std::string(mixed).size()));
    EXPECT_EQ(taken(Text::wstrdup(u"\u3042\xD800!")), "\u3042\uFFFD!");
    EXPECT_EQ(taken(Text::istrdup(U"\u3042xyz", 2)), "\u3042x");
}
