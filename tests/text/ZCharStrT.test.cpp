#include "text/ZCharStrT.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/SelectorScope.h"
#include "tests/text/widths.h"
#include "text/ZChar.h"
#include "text/ZStringArg.h"

#include <chrono>

namespace {

template <class C> class CharStr : public testing::Test {
public:
    using Str = ZCharStrT<C>;
    static Str str(const char* bytes) { return Str(in<C>(bytes).c_str()); }
    static std::string parts(const ZArrayT<Str>& parts) {
        std::string text;
        for (auto& part : parts) text += "[" + out(part.text()) + "]";
        return text;
    }
};
TYPED_TEST_SUITE(CharStr, Widths);

template <class C> std::string out(const ZCharStrT<C>& text) {
    EXPECT_EQ(text.length(), ZTextCopyT<C>::length(text.data())) << "the length that is known";
    EXPECT_TRUE(text.isEmpty() || text.size() >= text.length());
    return ::out(text.text());
}

} // namespace

TYPED_TEST(CharStr, State) {
    using Str = ZCharStrT<TypeParam>;
    Str none, room(10), text = this->str("a\u3042\U0001F600");
    EXPECT_EQ(none.length(), 0);
    EXPECT_EQ(none.at(0), TypeParam(0));
    EXPECT_EQ(none.size(), 0);
    EXPECT_EQ(none.data(), nullptr);
    EXPECT_TRUE(none.isDetached() && none.isEmpty());
    EXPECT_EQ(room.size(), 10);
    EXPECT_EQ(room.length(), 0);
    EXPECT_EQ(text.count(), 3);
    EXPECT_EQ(text.length(), int(in<TypeParam>("a\u3042\U0001F600").size()));
    EXPECT_EQ(text.size(), text.length());
    EXPECT_EQ(text.at(0), TypeParam('a'));
    EXPECT_EQ(text.at(-1), TypeParam(0));
    EXPECT_EQ(text.at(text.length()), TypeParam(0));
    if constexpr (sizeof(TypeParam) == 4) {
        EXPECT_EQ(text.unicode(1), ZChar(0x3042));
        EXPECT_EQ(text.unicode(9), ZChar());
    }
    static_assert(sizeof(Str) == sizeof(void*));
    TypeParam buffer[8];
    EXPECT_EQ(Str::printf(buffer, 8, in<TypeParam>("%d").c_str(), 12345678), 8);
    EXPECT_EQ(Str::length(buffer), 7) << "the static functions stand beside the members of their names";
    EXPECT_TRUE(Str::match(buffer, in<TypeParam>("1*7").c_str()));
}

TYPED_TEST(CharStr, CopiesShareUntilTheFirstWrite) {
    using Str = ZCharStrT<TypeParam>;
    Str first(10);
    first.append(this->str("abc"));
    Str second(first);
    EXPECT_FALSE(first.isDetached());
    const Str& constant = second;
    EXPECT_EQ(constant.data(), std::as_const(first).data());
    EXPECT_TRUE(second.append(TypeParam('d')));
    EXPECT_EQ(out(first), "abc");
    EXPECT_EQ(out(second), "abcd");
    EXPECT_EQ(second.size(), 10);
    EXPECT_TRUE(first.isDetached() && second.isDetached());
    Str third(first);
    third.data()[1] = TypeParam(0);
    EXPECT_EQ(out(third), "a") << "a terminator written through the pointer counts";
    EXPECT_EQ(out(first), "abc");
    third.append(TypeParam('z'));
    EXPECT_EQ(out(third), "az");
    Str moved(std::move(third));
    EXPECT_TRUE(third.isEmpty());
    first = moved;
    EXPECT_EQ(out(first), "az");
    first = std::as_const(first);
    EXPECT_EQ(out(first), "az");
}

TYPED_TEST(CharStr, WholeAssignment) {
    using Str = ZCharStrT<TypeParam>;
    Str text;
    EXPECT_TRUE(text.set("a\xE3\x81\x82x", 4));
    EXPECT_EQ(out(text), "a\u3042");
    EXPECT_TRUE(text.set(u"\U0001F600b"));
    EXPECT_EQ(out(text), "\U0001F600b");
    EXPECT_TRUE(text.set(U"\u00E9\U0010FFFF", 99));
    EXPECT_EQ(out(text), "\u00E9\U0010FFFF");
    EXPECT_TRUE(text.assign(ZString(u"wide \u3042")));
    EXPECT_EQ(out(text), "wide \u3042");
    EXPECT_TRUE(text.string() == "wide \u3042");
    EXPECT_TRUE(text.set(std::as_const(text).data() + 5, -1)) << "a part of itself";
    EXPECT_EQ(out(text), "\u3042");
    EXPECT_TRUE(text.assign(ZString()));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_TRUE(text.set(static_cast<const char*>(nullptr)));
    EXPECT_TRUE(text.set("", -1));
    EXPECT_EQ(text.size(), 0);
    EXPECT_EQ(out(Str(ZString(U"\u3042"))), "\u3042");
    EXPECT_EQ(out(Str(in<TypeParam>("abcdef").c_str(), 3)), "abc");

    SelectorScope space;
    ZSelector name("some.name");
    EXPECT_TRUE(text.setSelector(name));
    EXPECT_EQ(out(text), "some.name");
    EXPECT_TRUE(text.append(name));
    EXPECT_EQ(out(text), "some.namesome.name");
    EXPECT_TRUE(Str(name).toSelector() == name);
    EXPECT_TRUE(Str().toSelector().isEmpty());
}

TYPED_TEST(CharStr, GrowthAndChange) {
    using Str = ZCharStrT<TypeParam>;
    Str text = this->str("one");
    EXPECT_TRUE(text.append(Str()));
    EXPECT_TRUE(text.append(static_cast<const TypeParam*>(nullptr)));
    EXPECT_TRUE(text.append(text));
    EXPECT_EQ(out(text), "oneone");
    EXPECT_EQ(text.size(), 6) << "no growth margin";
    EXPECT_TRUE(text.append(in<TypeParam>("xyz").c_str(), 2));
    EXPECT_EQ(out(text), "oneonexy");
    EXPECT_TRUE(text.append(std::as_const(text).data() + 6));
    EXPECT_EQ(out(text), "oneonexyxy") << "a part of itself";
    EXPECT_TRUE(text.append(ZString(u"\u3042")));
    EXPECT_EQ(out(text), "oneonexyxy\u3042");

    Str many = this->str("1");
    auto a = in<TypeParam>("two"), b = in<TypeParam>("three");
    const TypeParam *none = nullptr, *same = std::as_const(many).data();
    EXPECT_TRUE(many.appendn(0));
    EXPECT_TRUE(many.appendn(1, none));
    EXPECT_EQ(std::as_const(many).data(), same);
    EXPECT_TRUE(many.appendn(4, a.c_str(), none, same, b.c_str()));
    EXPECT_EQ(out(many), "1two1three");
    const TypeParam* p = a.c_str();
    EXPECT_TRUE(many.appendn(17, p, p, p, p, p, p, p, p, p, p, p, p, p, p, p, p, p));
    EXPECT_EQ(many.length(), 10 + 17 * 3);

    struct {
        int position;
        const char *added, *result;
    } inserts[] = {{0, "xy", "xyabcd"},  {2, "xy", "abxycd"},  {4, "xy", "abcdxy"},
                   {99, "xy", "abcdxy"}, {-9, "xy", "xyabcd"}, {2, "", "abcd"}};
    for (auto& row : inserts) {
        Str into = this->str("abcd"), roomy(20);
        roomy.append(into);
        EXPECT_TRUE(into.insert(row.position, this->str(row.added)));
        EXPECT_TRUE(roomy.insert(row.position, this->str(row.added)));
        EXPECT_EQ(out(into), row.result);
        EXPECT_EQ(out(roomy), row.result);
        EXPECT_EQ(roomy.size(), 20);
    }
    Str self = this->str("abcd");
    EXPECT_TRUE(self.insert(2, self));
    EXPECT_EQ(out(self), "ababcdcd");
    EXPECT_TRUE(self.insert(1, TypeParam('-')));
    EXPECT_EQ(out(self), "a-babcdcd");
    EXPECT_TRUE(self.set(3, self));
    EXPECT_EQ(out(self), "a-ba-babc");
    EXPECT_TRUE(self.set(0, TypeParam('#')));
    EXPECT_FALSE(self.set(9, TypeParam('#')));
    EXPECT_FALSE(self.set(-1, this->str("#")));
    EXPECT_EQ(self.replace(TypeParam('b'), TypeParam('.')), 3);
    EXPECT_EQ(self.replace(TypeParam('?'), TypeParam('.')), 0);
    EXPECT_EQ(out(self), "#-.a-.a.c");
    EXPECT_TRUE(self.set(4, TypeParam(0)));
    EXPECT_EQ(out(self), "#-.a");

    struct {
        int position, n;
        bool done;
        const char* result;
    } removes[] = {{0, 2, true, "cdef"},     {-2, 3, true, "bcdef"},   {4, 99, true, "abcd"},
                   {2, 2, true, "abef"},     {6, 1, false, "abcdef"},  {2, 0, false, "abcdef"},
                   {-3, 3, false, "abcdef"}, {0, 2147483647, true, ""}};
    for (auto& row : removes) {
        Str from = this->str("abcdef"), copy(from);
        EXPECT_EQ(from.remove(row.position, row.n), row.done);
        EXPECT_EQ(out(from), row.result);
        EXPECT_EQ(out(copy), "abcdef");
    }
}

TYPED_TEST(CharStr, Room) {
    using Str = ZCharStrT<TypeParam>;
    Str text = this->str("abc");
    EXPECT_TRUE(text.expand(5));
    EXPECT_EQ(text.size(), 8);
    EXPECT_TRUE(text.expand(2));
    EXPECT_EQ(text.size(), 8);
    EXPECT_TRUE(text.trim());
    EXPECT_EQ(text.size(), 3);
    EXPECT_TRUE(text.resize(6));
    EXPECT_EQ(out(text), "abc");
    EXPECT_EQ(text.size(), 6);
    EXPECT_TRUE(text.resize(2));
    EXPECT_EQ(out(text), "ab");
    EXPECT_FALSE(text.resize(-1));
    EXPECT_TRUE(text.setLength(5));
    EXPECT_EQ(out(text), "ab   ");
    EXPECT_TRUE(text.setLength(1));
    EXPECT_EQ(out(text), "a");
    EXPECT_EQ(text.size(), 5);
    EXPECT_TRUE(text.setLength(3));
    EXPECT_EQ(out(text), "a  ");
    EXPECT_TRUE(text.truncate(7));
    EXPECT_EQ(text.size(), 5);
    EXPECT_TRUE(text.truncate(2));
    EXPECT_EQ(out(text), "a ");
    EXPECT_EQ(text.size(), 2);
    EXPECT_TRUE(text.truncate(-3));
    EXPECT_EQ(text.size(), 0);
    EXPECT_TRUE(text.setLength(2));
    EXPECT_EQ(out(text), "  ");
    EXPECT_FALSE(text.expand(0x7FFFFFFF));
    EXPECT_EQ(out(text), "  ");
}

TYPED_TEST(CharStr, PartsAndSearch) {
    auto text = this->str("one two one");
    EXPECT_EQ(out(text.start(3)), "one");
    EXPECT_EQ(out(text.end(4)), "two one");
    EXPECT_EQ(out(text.extract(4, 3)), "two");
    EXPECT_EQ(out(text.extract(-2, 5)), "one");
    EXPECT_EQ(out(text.extract(8, 2147483647)), "one");
    EXPECT_EQ(out(text.end(-4)), "one two one");
    EXPECT_TRUE(text.start(-1).isEmpty());
    EXPECT_TRUE(text.end(11).isEmpty());
    EXPECT_EQ(text.pos(this->str("one")), 0);
    EXPECT_EQ(text.rpos(this->str("one")), 8);
    EXPECT_EQ(text.pos(in<TypeParam>("two").c_str()), 4);
    EXPECT_EQ(text.rpos(in<TypeParam>("three").c_str()), -1);
    EXPECT_EQ(text.pos(TypeParam('e')), 2);
    EXPECT_EQ(text.rpos(TypeParam('e')), 10);
    EXPECT_EQ(text.rpos(TypeParam('x')), -1);
    EXPECT_EQ(text.compare(text), 0);
    EXPECT_LT(text.compare(this->str("one two onf")), 0);
    EXPECT_EQ(text.icompare(this->str("ONE Two one")), 0);
    EXPECT_TRUE(text.match(this->str("one*?ne")));
    EXPECT_FALSE(text.match(this->str("One*")));
    EXPECT_TRUE(text.matchi(this->str("One*")));
    EXPECT_EQ(text.distance(this->str("one two oxx")), 2);
    EXPECT_TRUE(text.shorterDistance(this->str("one two oxx"), 3));
    EXPECT_FALSE(text.shorterDistance(this->str("one two oxx"), 2));
    EXPECT_TRUE(text == in<TypeParam>("one two one").c_str());
    EXPECT_EQ(text.hashKey(), ZString("one two one").textHash());
}

TYPED_TEST(CharStr, Split) {
    using Str = ZCharStrT<TypeParam>;
    auto comma = this->str(",");
    struct {
        const char *text, *without, *with;
    } rows[] = {{",one,,two,", "[one][two]", "[][one][][two]"},
                {"", "", ""},
                {",", "", "[]"},
                {"a", "[a]", "[a]"},
                {"a,b", "[a][b]", "[a][b]"}};
    for (auto& row : rows) {
        auto text = this->str(row.text);
        EXPECT_EQ(this->parts(text.split(comma, false)), row.without) << row.text;
        EXPECT_EQ(this->parts(text.split(comma, true)), row.with) << row.text;
        const TypeParam* parts[2] = {};
        int lengths[2] = {7, 7}, all = int(text.split(comma, true).count());
        EXPECT_EQ(Str::split(parts, lengths, 2, text.text(), -1, TypeParam(','), true), all);
        EXPECT_EQ(Str::split(nullptr, nullptr, 0, text.text(), text.length(), TypeParam(','), true), all);
        EXPECT_EQ(Str::split(parts, lengths, 1, text.text(), -1, TypeParam(','), false),
                  int(text.split(comma, false).count()));
    }
    EXPECT_EQ(this->parts(this->str(" one\ttwo  \u3042\n").split()), "[one][two][\u3042]");
    EXPECT_EQ(this->parts(this->str("a,b;c,;").split(this->str(";,"), true)), "[a][b][c][]");
    if constexpr (sizeof(TypeParam) > 1) {
        EXPECT_EQ(this->parts(this->str("a\u3042b").split(this->str("\u3042"), true)), "[a][b]");
    }
    const TypeParam* parts[2] = {};
    int lengths[2] = {};
    auto text = this->str("one,two,three");
    EXPECT_EQ(Str::split(parts, lengths, 2, text.text(), 9, TypeParam(','), false), 3);
    EXPECT_EQ(parts[1] - text.text(), 4);
    EXPECT_EQ(lengths[1], 3);
}

TYPED_TEST(CharStr, Values) {
    using Str = ZCharStrT<TypeParam>;
    Str text;
    EXPECT_TRUE(text.setInt(-7, 10, 4, true));
    EXPECT_EQ(out(text), "-007");
    int number = 0;
    EXPECT_TRUE(text.toInt(number) && number == -7);
    EXPECT_TRUE(text.setULarge(~0ull, 16, 0, false, true));
    EXPECT_EQ(out(text), "FFFFFFFFFFFFFFFF");
    ularge all = 0;
    long some = 5;
    EXPECT_TRUE(text.toULarge(all, 16) && all == ~0ull);
    EXPECT_FALSE(text.toLong(some, 16));
    EXPECT_TRUE(text.setReal(5.0));
    EXPECT_EQ(out(text), "5");
    EXPECT_TRUE(text.setRealNumber(1.0 / 3, 8, 3, ','));
    EXPECT_EQ(out(text), "   0,333");
    double real = 0;
    EXPECT_TRUE(text.toReal(real, ',') && real == 0.333);
    EXPECT_TRUE(text.setNumber(4, ZString::RomanU));
    EXPECT_EQ(out(text), "IV");
    EXPECT_FALSE(text.setNumber(0, ZString::RomanU));
    EXPECT_EQ(out(text), "IV");
    struct {
        const char* text;
        bool known, value;
    } rows[] = {{"yes", true, true},   {"true", true, true}, {"no", true, false},  {"false", true, false},
                {"Yes", false, false}, {"", false, false},   {"ye", false, false}, {"nope", false, false}};
    for (auto& row : rows)
        for (bool before : {false, true}) {
            bool value = before;
            EXPECT_EQ(this->str(row.text).toBool(value), row.known) << row.text;
            EXPECT_EQ(value, row.known ? row.value : before) << row.text;
        }
    EXPECT_TRUE(text.setBool(true));
    EXPECT_EQ(out(text), "yes");
    EXPECT_TRUE(text.printf(in<TypeParam>("%d-%s").c_str(), 5, "x"));
    EXPECT_EQ(out(text), "5-x");
    EXPECT_FALSE(text.printf(in<TypeParam>("%s").c_str(), ""));
    EXPECT_EQ(out(text), "5-x");
    if constexpr (sizeof(TypeParam) == 1) {
        EXPECT_TRUE(text.printf("%s%s", text.text(), text.text()));
        EXPECT_EQ(out(text), "5-x5-x") << "its own text among the arguments";
    }
    text = this->str("%2 of %1: %3");
    EXPECT_TRUE(text.execRes("irs", 7, 2.5, in<TypeParam>("\u3042").c_str()));
    EXPECT_EQ(out(text), "2.5 of 7: \u3042");
}

TYPED_TEST(CharStr, CaseMapping) {
    struct {
        const char *text, *lower, *upper;
    } rows[] = {{"", "", ""},
                {"MiXed 12", "mixed 12", "MIXED 12"},
                {"Stra\u00DFe", "stra\u00DFe", "STRASSE"},
                {"\u039F\u03A3", "\u03BF\u03C2", "\u039F\u03A3"},
                {"\U00010428", "\U00010428", "\U00010400"}};
    for (auto& row : rows) {
        auto low = this->str(row.text), high = low, same = low;
        EXPECT_TRUE(low.lower());
        EXPECT_TRUE(high.upper());
        EXPECT_EQ(out(low), row.lower);
        EXPECT_EQ(out(high), row.upper);
        EXPECT_EQ(out(same), row.text);
    }
}

TYPED_TEST(CharStr, AMillionAppends) {
    ZCharStrT<TypeParam> text, other;
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 1000000; ++i) {
        text.append(TypeParam('a'));
        other.append(TypeParam('b'));
    }
    EXPECT_EQ(text.length(), 1000000);
    EXPECT_EQ(text.size(), 1000000);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3)) << "a quadratic way takes minutes";
}

TYPED_TEST(CharStr, EveryAllocationMayFail) {
    using Str = ZCharStrT<TypeParam>;
    const char* wide =
        "a much longer text than any room on the stack holds, with \u3042\U0001F600 and as many words again behind it";
    auto units = in<TypeParam>(wide);
    struct {
        const char* what;
        bool (*change)(Str&);
        bool keeps; ///< the old text is there after a failure
    } rows[] = {
        {"append", [](Str& s) { return s.append(in<TypeParam>("more").c_str()); }, true},
        {"append itself", [](Str& s) { return s.append(s); }, true},
        {"append a string", [](Str& s) { return s.append(ZString(u"wide")); }, true},
        {"appendn", [](Str& s) { return s.appendn(1, in<TypeParam>("x").c_str()); }, true},
        {"insert", [](Str& s) { return s.insert(1, Str(s)); }, true},
        {"set a unit", [](Str& s) { return Str(s), s.set(0, TypeParam('z')); }, true},
        {"expand", [](Str& s) { return s.expand(100); }, true},
        {"resize", [](Str& s) { return s.resize(1000); }, true},
        {"setLength", [](Str& s) { return s.setLength(1000); }, true},
        {"truncate", [](Str& s) { return s.truncate(2); }, true},
        {"upper", [](Str& s) { return s.upper(); }, true},
        {"printf", [](Str& s) { return s.printf(in<TypeParam>("%d").c_str(), 5); }, true},
        {"setInt", [](Str& s) { return s.setInt(5); }, true},
        {"set UTF-8", [](Str& s) { return s.set("abc"); }, false},
        {"set UTF-16", [](Str& s) { return s.set(u"abc"); }, false},
        {"set UTF-32", [](Str& s) { return s.set(U"abc"); }, false},
    };
    for (auto& row : rows)
        failEachAllocation([&](AllocProbe& probe) {
            {
                ZFailGuard guard;
                Str text(units.c_str()), shared(text);
                if (!guard.rose()) {
                    bool done = row.change(text);
                    bool broke = guard.rose(); // an argument couldn't be made
                    EXPECT_TRUE(done || probe.failed() || broke) << row.what;
                    EXPECT_TRUE(done || ::out(text.text()) == (row.keeps ? wide : "")) << row.what;
                    EXPECT_EQ(::out(shared.text()), wide) << row.what;
                }
                guard.forget();
            }
        });
    failEachAllocation([&](AllocProbe& probe) {
        ZFailGuard guard;
        {
            Str text(units.c_str());
            auto parts = text.split();
            EXPECT_EQ(guard.rose(), probe.failed());
            EXPECT_EQ(parts.count(), guard.rose() ? 0u : 20u);
        }
        guard.forget();
    });
}
