#include "core/ZToken.h"

#include "tests/support/AllocProbe.h"
#include "text/ZString.h"

#include <gtest/gtest.h>
#include <string>

namespace {
struct Space : ZTokenSpace {
    explicit Space(int referenceStart = 0) {
        EXPECT_TRUE(open());
        setReferenceStart(referenceStart);
    }
};
std::string textOf(const ZToken& token) { return token.string() ? token.string() : ""; }
void someCallback(void*) {}
} // namespace

TEST(ZTokenSpace, OneIdForOneText) {
    Space space(3);
    uint a = space.create("alpha"), b = space.create("alphabet", 4);
    EXPECT_NE(a, 0u);
    EXPECT_NE(a, b);
    EXPECT_EQ(space.create(ZString("alpha")), a);
    EXPECT_EQ(space.create("alpha, beta", 5), a);
    EXPECT_STREQ(space.string(b), "alph");
    EXPECT_EQ(space.length(b), 4);
    EXPECT_EQ(space.nameIndex("alpha"), a);
    EXPECT_EQ(space.nameIndex("beta"), 0u);
    EXPECT_TRUE(space.contains("alph"));
    EXPECT_EQ(space.count(), 2u);
    for (uint id : {space.create(""), space.create("", 0), space.create(nullptr), space.create("x", 0),
                    space.create("x", -4), space.make(nullptr, 2), space.create(ZString())})
        EXPECT_EQ(id, 0u);
    EXPECT_EQ(space.string(99), nullptr);
    EXPECT_EQ(space.refcount(99), 0);
    EXPECT_EQ(space.create("a\0b", 3), space.create("a\0b", 3));
    EXPECT_NE(space.nameIndex("a\0b", 3), space.nameIndex("a\0c", 3));
}

TEST(ZTokenSpace, CountsFromTheReferenceStartOn) {
    Space space(2);
    uint permanent = space.create("permanent"), counted = space.create("counted");
    ASSERT_EQ(permanent, 1u);
    ASSERT_EQ(counted, 2u);
    space.create("permanent");
    EXPECT_EQ(space.refcount(permanent), 1);
    space.create("counted");
    EXPECT_EQ(space.refcount(counted), 2);
    EXPECT_EQ(space.retain(counted), counted);
    EXPECT_EQ(space.refcount(counted), 3);
    EXPECT_EQ(space.retain(55), 0u);
    for (int i = 0; i < 4; ++i) space.remove(permanent);
    EXPECT_EQ(space.nameIndex("permanent"), permanent);
    for (int i = 0; i < 2; ++i) space.remove(counted);
    EXPECT_EQ(space.nameIndex("counted"), counted);
    space.remove(counted);
    EXPECT_EQ(space.nameIndex("counted"), 0u);
    space.remove(counted);
    EXPECT_EQ(space.create("next"), counted) << "the id is used again";
    space.setKeepUnused(true);
    space.remove(counted);
    EXPECT_EQ(space.nameIndex("next"), counted);
    EXPECT_EQ(space.refcount(counted), 1);
}

TEST(ZTokenSpace, NameTokensAndTheirRows) {
    ZTokenSpace space;
    ASSERT_TRUE(space.setNameCount(4)); // as any setting, before or after it opens
    ASSERT_TRUE(space.open());
    space.setReferenceStart(0);
    uint size = space.createName(2, "size", someCallback), far = space.createName(9, "far", nullptr);
    EXPECT_EQ(space.tokenName(2), size);
    EXPECT_STREQ(space.tokenStr(2), "size");
    EXPECT_EQ(space.nameToken(size), 2);
    EXPECT_EQ(space.callback(size), someCallback);
    EXPECT_EQ(space.nameToken(far), 9) << "beyond the rows";
    for (int row : {-1, 0, 3, 4, 9}) {
        EXPECT_EQ(space.tokenName(row), 0u) << row;
        EXPECT_EQ(space.tokenStr(row), nullptr) << row;
    }
    uint made = space.make("made", 3);
    EXPECT_EQ(space.nameToken(made), 3);
    EXPECT_EQ(space.tokenName(3), 0u);
    EXPECT_EQ(space.make("made", 1), made);
    EXPECT_EQ(space.nameToken(made), 3) << "only a new entry takes it";
    EXPECT_EQ(space.createName(1, "made", nullptr), made);
    EXPECT_EQ(space.nameToken(made), 1);
    EXPECT_EQ(space.refcount(made), 3);
    space.remove(size);
    EXPECT_EQ(space.tokenName(2), 0u) << "no row names an id that is gone";
    EXPECT_FALSE(space.setNameCount(-1));
    EXPECT_TRUE(space.open());
    EXPECT_EQ(space.tokenName(1), 0u) << "opened anew";
}

TEST(ZTokenSpace, ClosedSpacesAnswerNothing) {
    ZTokenSpace space;
    EXPECT_TRUE(space.isClosed());
    EXPECT_EQ(space.create("x"), 0u);
    EXPECT_EQ(space.createName(0, "x", nullptr), 0u);
    EXPECT_EQ(space.nameIndex("x"), 0u);
    ASSERT_TRUE(space.open());
    space.setReferenceStart(0);
    {
        ZToken token(&space, "left over");
        EXPECT_FALSE(token.isEmpty());
        space.close();
        EXPECT_EQ(token.string(), nullptr);
        EXPECT_EQ(ZToken(token).key(), 0u);
    }
    EXPECT_EQ(space.count(), 0u);
}

TEST(ZTokenSpace, CopiesShareUntilOneChanges) {
    Space space;
    space.setNameCount(2);
    space.createName(1, "one", nullptr);
    uint two = space.create("two");
    ZTokenSpace copy(space);
    EXPECT_EQ(copy.compare(space), 0);
    copy.retain(two);
    EXPECT_EQ(copy.refcount(two), 2);
    EXPECT_EQ(space.refcount(two), 1);
    EXPECT_NE(copy.string(two), space.string(two));
    copy.create("three");
    EXPECT_EQ(copy.compare(space), 1);
    EXPECT_EQ(space.compare(copy), -1);
    EXPECT_EQ(space.nameIndex("three"), 0u);
    EXPECT_TRUE(copy.detach());
    space.close();
    EXPECT_STREQ(copy.tokenStr(1), "one");
    Space other;
    other.setMap(copy.getMap());
    other.setName_id(copy.getName_id());
    EXPECT_EQ(other.compare(copy), 0);
    EXPECT_STREQ(other.tokenStr(1), "one");
}

TEST(ZTokenSpace, AnyAllocationMayFail) {
    failEachAllocation([](AllocProbe& probe) {
        ZTokenSpace space;
        space.setSlotLength(2);
        bool whole = space.open();
        space.setReferenceStart(0);
        whole &= space.setNameCount(3);
        for (int i = 0; i < 6; ++i) {
            std::string text = "token " + std::to_string(i);
            uint before = space.count(),
                 id = i % 2 ? space.create(text.c_str()) : space.createName(i, text.c_str(), nullptr);
            EXPECT_EQ(space.count(), before + (id != 0));
            whole &= id != 0;
        }
        ZTokenSpace copy(space);
        uint first = space.nameIndex("token 1");
        copy.remove(first);
        EXPECT_EQ(space.nameIndex("token 1"), first);
        whole &= !copy.contains("token 1");
        EXPECT_TRUE(whole || probe.failed());
    });
}

TEST(ZToken, TextForms) {
    Space space;
    ZToken empty(&space);
    struct {
        const char* text;
        ZToken (*call)(const ZToken&);
        const char* result;
    } rows[] = {
        {"width", [](const ZToken& t) { return t.capitalize(); }, "Width"},
        {"\xC3\xA4hre N", [](const ZToken& t) { return t.capitalize(); }, "\xC3\x84hre N"},
        {"\xC3\x9Fx", [](const ZToken& t) { return t.capitalize(); }, "\xC3\x9Fx"}, // one for one
        {"Width \xC3\x84", [](const ZToken& t) { return t.lowerCase(); }, "width \xC3\xA4"},
        {" a b  c ", [](const ZToken& t) { return t.removeSpaces(); }, "abc"},
        {"   ", [](const ZToken& t) { return t.removeSpaces(); }, ""},
        {"size", [](const ZToken& t) { return t.marked('@'); }, "@size"},
        {"@size", [](const ZToken& t) { return t.marked('@'); }, "@size"},
        {"size", [](const ZToken& t) { return t.marked(0); }, "size"},
        {"x", [](const ZToken& t) { return t.number(-12); }, "-12"},
        {"x", [](const ZToken& t) { return t.number(4000000000u); }, "4000000000"},
        {"x", [](const ZToken& t) { return t.number(-9000000000ll); }, "-9000000000"},
        {"x", [](const ZToken& t) { return t.number(18000000000000000000ull); }, "18000000000000000000"},
        {"x", [](const ZToken& t) { return t.number(2.5); }, "2.5"},
    };
    for (auto& row : rows) {
        ZToken token(&space, row.text), result = row.call(token);
        EXPECT_EQ(textOf(result), row.result) << row.text;
        EXPECT_EQ(result.key(), space.nameIndex(row.result)) << row.text;
        EXPECT_EQ(row.call(empty).isEmpty(), row.text[0] != 'x') << row.text;
    }
    EXPECT_EQ(space.count(), 0u) << "all of them were given up";
}

TEST(ZToken, SettersReplaceTheText) {
    Space space;
    ZToken token(&space);
    struct {
        bool (*call)(ZToken&);
        const char* result;
    } rows[] = {
        {[](ZToken& t) { return t.set("plain"); }, "plain"},
        {[](ZToken& t) { return t.set("cut here", 3); }, "cut"},
        {[](ZToken& t) { return t.set(ZString(U"\u00e9", 1)); }, "\xC3\xA9"},
        {[](ZToken& t) { return t.setBool(true); }, "yes"},
        {[](ZToken& t) { return t.setBool(false); }, "no"},
        {[](ZToken& t) { return t.setInt(255, 16, 4, true, true); }, "00FF"},
        {[](ZToken& t) { return t.setLong(-5); }, "-5"},
        {[](ZToken& t) { return t.setLarge(1ll << 40); }, "1099511627776"},
        {[](ZToken& t) { return t.printf("%s-%d", "item", 7); }, "item-7"},
    };
    for (auto& row : rows) {
        EXPECT_TRUE(row.call(token)) << row.result;
        EXPECT_EQ(textOf(token), row.result);
        EXPECT_EQ(space.count(), 1u);
        EXPECT_EQ(space.refcount(token.key()), 1);
    }
    EXPECT_FALSE(token.printf("%s", ""));
    EXPECT_EQ(textOf(token), "item-7");
    EXPECT_TRUE(token.set("item-7"));
    EXPECT_EQ(space.refcount(token.key()), 1);
    EXPECT_FALSE(token.set(""));
    EXPECT_TRUE(token.isEmpty());
    ZToken none;
    EXPECT_FALSE(none.set("x") || none.printf("x") || none.setCallback(someCallback) || none.check("x"));
    EXPECT_TRUE(none.capitalize().isEmpty());
}

TEST(ZToken, ReadingAndSharing) {
    Space space;
    space.setNameCount(8);
    space.createName(5, "line:width", nullptr);
    ZToken a(&space, "line:width"), b(a), c(&space, a.key()), odd(&space, "a-b");
    EXPECT_EQ(space.refcount(a.key()), 4);
    EXPECT_TRUE(a == b && b == c);
    EXPECT_EQ(a.compare(c), 0);
    EXPECT_NE(a.compare(odd), 0);
    EXPECT_TRUE(a.isToken(5));
    EXPECT_FALSE(a.isToken(4) || ZToken(&space).isToken(0));
    EXPECT_TRUE(a.isName());
    EXPECT_FALSE(odd.isName());
    EXPECT_TRUE(a.setCallback(someCallback));
    EXPECT_EQ(b.callback(), someCallback);
    EXPECT_EQ(a.at(4), ':');
    EXPECT_EQ(a.at(-1), 0);
    EXPECT_EQ(a.at(10), 0);
    EXPECT_TRUE(a.hasstr("width") && !a.hasstr("height") && a.hasMarker('l') && !a.hasMarker('i'));
    EXPECT_EQ(a.cmpstr("line:width"), 0);
    EXPECT_LT(a.cmpstr("line:width2"), 0);
    EXPECT_GT(a.cmpstr("line"), 0);
    EXPECT_GT(a.cmpstr(nullptr), 0);
    EXPECT_TRUE(a.check("line:width"));
    EXPECT_FALSE(a.check("line"));
    b = b;
    b = odd;
    c.remove();
    EXPECT_EQ(space.refcount(a.key()), 2);
    EXPECT_EQ(space.refcount(odd.key()), 2);
}
