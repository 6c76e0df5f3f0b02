#include "tests/support/AllocProbe.h"
#include "tests/support/SelectorScope.h"
#include "tests/support/TempFolder.h"
#include "tests/text/textsamples.h"

#include <cstdlib>

using StringFile = StringTest;
using namespace std::string_literals;

TEST_F(StringFile, TheMarkTellsTheWidth) {
    TempFolder folder;
    struct {
        std::string bytes;
        ZString::Type type;
        const char* text;
    } rows[] = {
        {"a\xE3\x81\x82", ZString::Char, "a\xE3\x81\x82"},
        {"\xEF\xBB\xBF"
         "a\xE3\x81\x82",
         ZString::Char, "a\xE3\x81\x82"},
        {"\xFF\xFE"
         "a\0\x42\x30"s,
         ZString::WChar, "a\xE3\x81\x82"},
        {"\xFE\xFF\0a\x30\x42"s, ZString::WChar, "a\xE3\x81\x82"},
        {"\xFF\xFE\0\0a\0\0\0"s, ZString::IChar, "a"},
        {"\0\0\xFE\xFF\0\x01\xF6\0"s, ZString::IChar, "\xF0\x9F\x98\x80"},
        {"\xFE\xFF\0ax"s, ZString::WChar, "a"},
        {"\xFF\xFE"s, ZString::Internal, ""},
        {"", ZString::Internal, ""},
    };
    for (auto& row : rows) {
        bool loaded = false;
        ZString s = ZString::load(folder.file("text", row.bytes).c_str(), &loaded);
        EXPECT_TRUE(loaded);
        EXPECT_EQ(s.type(), row.type) << row.text;
        EXPECT_EQ(utf8(s), row.text);
    }
    bool loaded = true;
    EXPECT_TRUE(ZString::load(folder.path("none").c_str(), &loaded).isEmpty());
    EXPECT_FALSE(loaded);
}

TEST_F(StringFile, SavedTextComesBack) {
    TempFolder folder;
    ZString path(folder.path("out").c_str());
    inEveryForm("line\n\xE3\x81\x82\xF0\x9F\x98\x80", [&](const ZString& s, ZString::Type) {
        EXPECT_TRUE(s.save(path));
        EXPECT_EQ(folder.read("out"), "line\n\xE3\x81\x82\xF0\x9F\x98\x80");
        EXPECT_EQ(ZString::load(path).compare(s), 0);
    });
    EXPECT_TRUE(ZString().save(path, true));
    EXPECT_EQ(folder.read("out"), "");
    EXPECT_FALSE(ZString("x").save(folder.path("no/such/folder").c_str(), true));
    EXPECT_EQ(utf8(path.fileName()), folder.path("out"));
}

TEST_F(StringFile, LoadingWithoutMemory) {
    TempFolder folder;
    std::string path = folder.file("text", "\xFF\xFE"
                                           "a\0b\0"s);
    orv::strtable::close();
    failEachAllocation([&](AllocProbe& probe) {
        bool loaded = false;
        ZString s = ZString::load(path.c_str(), &loaded);
        EXPECT_EQ(loaded, !probe.failed());
        EXPECT_EQ(s.length(), loaded ? 2 : 0);
        zrecover();
    });
    ASSERT_TRUE(orv::strtable::open());
}

TEST_F(StringFile, TextsOfTheUser) {
    TempFolder folder;
    SelectorScope selectors;
    setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
    {
        ZSelector name("string.test");
        EXPECT_TRUE(ZString::loadUser(name).isEmpty());
        EXPECT_TRUE(ZString(u"kept \x3042").storeUser(name));
        EXPECT_EQ(utf8(ZString::loadUser(name)), "kept \xE3\x81\x82");
        EXPECT_FALSE(ZString("a\x01").storeUser(name));
        EXPECT_FALSE(ZString("a").storeUser(ZSelector()));
        EXPECT_EQ(utf8(ZString::loadUser(name)), "kept \xE3\x81\x82");
        EXPECT_TRUE(ZString().storeUser(name));
        EXPECT_TRUE(ZString::loadUser(name).isEmpty() && ZString::loadUser(ZSelector()).isEmpty());
    }
    unsetenv("XDG_DATA_HOME");
}

TEST_F(StringFile, ResourceTextsAfterAReference) {
    struct {
        const char *text, *reference, *result;
    } rows[] = {{"  .name. ", "", "name"},
                {" 5% (of)", "a\\%", "5\\% (of)"},
                {"%1 (of)", "\\(", "%1 \\(of)"},
                {"a(b", "\\(", "a(b"}};
    for (auto& row : rows)
        inEveryForm(row.text, [&](const ZString& s, ZString::Type) {
            EXPECT_EQ(utf8(s.adjustResource(row.reference)), row.result) << row.text;
        });
}
