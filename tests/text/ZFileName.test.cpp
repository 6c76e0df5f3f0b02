#include "text/ZFileName.h"

#include "tests/support/AllocProbe.h"
#include "tests/text/textsamples.h"

namespace {
using Edit = bool (*)(ZFileName&, const ZString&);
struct EditRow {
    const char *from, *argument, *to; ///< `to` null if it is refused
};
/// Runs rows in all combinations of widths; the name has to keep its own.
template <size_t N> void checkEdits(Edit edit, const EditRow (&rows)[N]) {
    for (auto& row : rows)
        for (ZString::Type from : widths)
            for (ZString::Type argument : widths) {
                ZFileName name(inForm(row.from, from));
                EXPECT_EQ(edit(name, inForm(row.argument, argument)), row.to != nullptr)
                    << row.from << ", " << row.argument;
                EXPECT_EQ(plain(name), row.to ? row.to : row.from) << row.from << ", " << row.argument;
            }
}
} // namespace

TEST(FileName, Parts) {
    struct Row {
        const char *name, *path, *fileName, *baseName, *extension, *strict, *pathName;
    } rows[] = {
        {"/a/b.c", "/a", "b.c", "b", "c", "c", "/a/b"},
        {"a.b\\c", "a.b", "c", "c", "", "", "a.b\\c"},
        {"a.b\\c.d", "a.b", "c.d", "c", "d", "d", "a.b\\c"},
        {"/.profile", "/", ".profile", ".profile", "", "profile", "/.profile"},
        {"/a.tar.gz", "/", "a.tar.gz", "a.tar", "gz", "gz", "/a.tar"},
        {"name", "", "name", "name", "", "", "name"},
        {"/a/b/", "/a/b", "", "", "", "", "/a/b/"},
        {"a//b", "a", "b", "b", "", "", "a//b"},
        {"C:\\x.y", "C:\\", "x.y", "x", "y", "y", "C:\\x"},
        {"a.", "", "a.", "a", "", "", "a"},
        {"", "", "", "", "", "", ""},
        {"/", "/", "", "", "", "", "/"},
        {"\xc3\xa4/\xff.\xc3\xb6", "\xc3\xa4", "\xff.\xc3\xb6", "\xff", "\xc3\xb6", "\xc3\xb6", "\xc3\xa4/\xff"},
    };
    for (auto& row : rows) {
        ZFileName name(row.name);
        EXPECT_EQ(plain(name.path()), row.path) << row.name;
        EXPECT_EQ(plain(name.fileName()), row.fileName) << row.name;
        EXPECT_EQ(plain(name.baseName()), row.baseName) << row.name;
        EXPECT_EQ(plain(name.extension()), row.extension) << row.name;
        EXPECT_EQ(plain(name.extension(true)), row.strict) << row.name;
        EXPECT_EQ(plain(name.pathName()), row.pathName) << row.name;
        EXPECT_EQ(name.hasFile(), *row.fileName != 0) << row.name;
        EXPECT_EQ(name.hasPath(), *row.path != 0) << row.name;
    }
    ZFileName deep("/a/b\\c//d/");
    const char* parts[] = {"d", "c", "b", "a", ""};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(plain(deep.fileName(i)), parts[i]) << i;
    EXPECT_EQ(plain(ZFileName("/a/b/c").path(0)), "/a/b/c");
    EXPECT_EQ(plain(ZFileName("/a/b/c").path(2)), "/a");
    EXPECT_EQ(plain(ZFileName("/a/b/c").path(9)), "/");
    EXPECT_EQ(plain(ZFileName("/x/\xff\xc3\xa4").displayName()), "\xEF\xBF\xBD\xc3\xa4");
    EXPECT_EQ(plain(ZFileName("C:\\x").getDrive()), "C:");
    EXPECT_EQ(plain(ZFileName("/x/a:b").getDrive()), "");
    EXPECT_EQ(ZFileName("../..\\../x/../y").countUp(), 3);
    EXPECT_EQ(ZFileName("..a/../x").countUp(), 0);
    EXPECT_TRUE(ZFileName("a?b").hasWildcards());
    EXPECT_FALSE(ZFileName("a.b").hasWildcards());
    EXPECT_TRUE(ZFileName("a.JPG").checkExt("jpg"));
}

TEST(FileName, RootsAndAbsoluteNames) {
    struct Row {
        const char* name;
        bool root, absolute;
    } rows[] = {{"/", true, true},      {"\\", true, true},     {"C:", true, true},    {"C:\\", true, true},
                {"vol:/", true, false}, {"C:\\a", false, true}, {"/a", false, true},   {"a:b", false, true},
                {"ab:c", false, false}, {"a", false, false},    {"~/a", false, false}, {"", false, false}};
    for (auto& row : rows) {
        EXPECT_EQ(ZFileName(row.name).isRoot(), row.root) << row.name;
        EXPECT_EQ(ZFileName(row.name).isAbsolute(), row.absolute) << row.name;
    }
    std::string longName(256, 'a'), longPath;
    for (int i = 0; i < 50; ++i) longPath += "/" + std::string(100, 'b');
    EXPECT_TRUE(ZFileName("a/b").isValid());
    EXPECT_TRUE(ZFileName(("x/" + longName.substr(1)).c_str()).isValid());
    EXPECT_FALSE(ZFileName(longName.c_str()).isValid());
    EXPECT_FALSE(ZFileName(longPath.c_str()).isValid());
    EXPECT_FALSE(ZFileName("").isValid());
    EXPECT_FALSE(ZFileName(ZString("a\0b", 3)).isValid());
    EXPECT_FALSE(ZFileName("~/../x").isValid());
}

TEST(FileName, SetNameGoesUpAndNoFurther) {
    const EditRow rows[] = {
        {"a\\b", "..\\c", "a\\c"},
        {"", "../c", "../c"},
        {"/a/b", "c", "/a/b/c"},
        {"/a/b/", "c", "/a/b/c"},
        {"/a/b", "../c", "/a/c"},
        {"/a/b", "../../../../c", "/c"},
        {"a", "../../c", "c"},
        {"/a/b", "../../c/../d", "/c/../d"},
        {"C:\\a", "..\\..\\b", "C:\\b"},
        {"a\\b/c", "d", "a\\b/c/d"},
        {"a", "b\\c", "a\\b\\c"},
        {"~/a", "../../../c", "~/c"},
        {"..", "../c", "../../c"},
        {"./a/.", "../c", "./c"},
        {"\xc3\xa4/b", "../\xc3\xb6", "\xc3\xa4/\xc3\xb6"},
    };
    checkEdits([](ZFileName& name, const ZString& argument) { return name.setName(ZString(name), argument); }, rows);
    EXPECT_EQ(plain(ZFileName("/a", "../b")), "/b");
    // Bytes that are no text survive in a folder of another width.
    EXPECT_EQ(plain(ZFileName(ZString(u"\u00e4"), "\xff")), "\xc3\xa4/\xff");
}

TEST(FileName, ExitStopsAtTheTop) {
    const EditRow rows[] = {
        {"/a/b/", "", "/a"}, {"/a", "", "/"},           {"/", "", nullptr},    {"a", "", ""},       {"", "", nullptr},
        {"..", "", "../.."}, {"../..", "", "../../.."}, {".", "", ".."},       {"a/.", "", ""},     {"~", "", nullptr},
        {"~/a", "", "~"},    {"C:\\a", "", "C:\\"},     {"C:\\", "", nullptr}, {"C:", "", nullptr}, {"a\\b", "", "a"}};
    checkEdits([](ZFileName& name, const ZString&) { return name.exit(); }, rows);
}

TEST(FileName, ExtensionsAndSeparators) {
    const EditRow extensions[] = {
        {"/a.b/c", "d", "/a.b/c.d"}, {"c.x", "d", "c.d"}, {"c.x.y", "", "c.x"}, {".x", "d", ".x.d"}};
    checkEdits([](ZFileName& name, const ZString& argument) { return name.setExtension(argument); }, extensions);
    const EditRow complete[] = {{"a", "", "a/"},  {"a\\b", "", "a\\b\\"}, {"a/b\\c", "", "a/b\\c/"},
                                {"a/", "", "a/"}, {"a\\", "", "a\\"},     {"", "", ""}};
    checkEdits([](ZFileName& name, const ZString&) { return name.completePath(); }, complete);
    const EditRow external[] = {{"a\\b\\", "", "a/b/"}, {"a/b", "", "a/b"}};
    checkEdits([](ZFileName& name, const ZString&) { return name.toExternal(); }, external);
    const EditRow append[] = {{"a", "x", "a.x"},
                              {"a.X", "x", "a.X"},
                              {"a.y", "x", "a.y.x"},
                              {"a.tar.GZ", "tar.gz", "a.tar.GZ"},
                              {"a.gz", "tar.gz", "a.gz.tar.gz"},
                              {".tar.gz", "tar.gz", ".tar.gz.tar.gz"},
                              {"a.y", "", "a.y"}};
    checkEdits(
        [](ZFileName& name, const ZString& argument) {
            name = ZFileName::appendExtension(name, argument);
            return true;
        },
        append);

    ZArrayT<ZString> list;
    for (const char* text : {"jpg", "png", "x.y"}) list.append(ZString(text));
    for (auto [from, to] : {std::pair{"a.PNG", "a.PNG"}, {"a", "a.jpg"}, {"a.txt", "a.txt.jpg"}, {"a.X.y", "a.X.y"}})
        EXPECT_EQ(plain(ZFileName::appendExtension(ZString(from), list)), to);
    // An empty entry stands for names without an extension, and is never added.
    list.insert(0, ZString());
    for (auto [from, to] : {std::pair{"a", "a"}, {"a.txt", "a.txt.jpg"}})
        EXPECT_EQ(plain(ZFileName::appendExtension(ZString(from), list)), to);
}

TEST(FileName, ResolvesAgainstABase) {
    const EditRow rows[] = {{"c", "/a/b", "/a/b/c"},          {"x/c", "/a/b", "x/c"},  {"a:c", "/a/b", "a:c"},
                            {"../c", "/a/b", "/a/c"},         {"..", "/a/b", "/a"},    {"../../../c", "/a/b", "/c"},
                            {"..\\..\\c", "a\\b\\d", "a\\c"}, {"..c", "/a", "/a/..c"}, {"/c", "/a", "/c"}};
    checkEdits([](ZFileName& name, const ZString& base) { return name.resolve(base); }, rows);
}

TEST(FileName, RelativeNames) {
    const EditRow below[] = {
        {"/a/b/c", "/a/x", "b/c"}, {"/A/b", "/a/x", "b"},  {"/ab/c", "/a/x", nullptr},          {"/a", "/a/x", "."},
        {"a\\b", "a/x", "b"},      {"/a/b", "x", nullptr}, {"/\xc3\x84/b", "/\xc3\xa4/x", "b"}, {"/a/b", "/x", "a/b"},
        {"~/b", "x", nullptr}};
    checkEdits([](ZFileName& name, const ZString& base) { return name.relativeName(base, false); }, below);
    const EditRow all[] = {{"/a/b/c", "/a/x/y/z", "../../b/c"},
                           {"/c", "/a/x", "../c"},
                           {"/a/b", "/a/b/c/d", "../"},
                           {"a/b", "x/y", "../a/b"},
                           {"/a", "x/y", nullptr},
                           {"C:\\a", "/b/c", nullptr},
                           {"/a", "../../x", nullptr}};
    checkEdits([](ZFileName& name, const ZString& base) { return name.relativeName(base, true); }, all);
    std::string deep = "/", up;
    for (int i = 0; i < 64; ++i) deep += "d/", up += "../";
    ZFileName name("/x");
    EXPECT_TRUE(name.relativeName((deep + "f").c_str(), true));
    EXPECT_EQ(plain(name), up + "x");
    name = "/x";
    EXPECT_FALSE(name.relativeName((deep + "d/f").c_str(), true));
    // Bytes that are no text count as themselves.
    name = "/\xff/a";
    EXPECT_FALSE(name.relativeName("/\xfe/x", false));
    EXPECT_TRUE(name.relativeName("/\xff/x", false));

    const EditRow folders[] = {{"/a/b/c", "/A/b", "P:c"}, {"/a/b/c", "/a/b/", "P:c"}, {"/a/bc", "/a/b", nullptr},
                               {"/a", "/a/b", nullptr},   {"a\\b", "a", "P:b"},       {"/a", "/", "P:a"}};
    checkEdits([](ZFileName& name, const ZString& folder) { return name.toRelative(folder, ZString("P:")); }, folders);
}

TEST(FileName, BreaksIntoLines) {
    struct Row {
        const char* name;
        int width;
        const char* lines;
    } rows[] = {{"/one/two/three", 9, "/one/two/\nthree"},
                {"/one/two", 20, "/one/two"},
                {"abcdef", 4, "abcd\nef"},
                {"a\xc3\xa4\xc3\xa4", 2, "a\n\xc3\xa4\n\xc3\xa4"},
                {"\xc3\xa4\xc3\xa4", 1, "\xc3\xa4\n\xc3\xa4"},
                {"", 5, ""}};
    for (auto& row : rows) EXPECT_EQ(plain(ZFileName::splitAlertName(row.name, row.width)), row.lines) << row.name;
}

TEST(FileName, EditsKeepTheNameWithoutMemory) {
    ZString longName(("../" + std::string(100, 'n')).c_str()), base("/a/x/y/z");
    struct Row {
        const char* what;
        const ZString& argument;
        Edit edit;
    } rows[] = {
        {"setName", longName, [](ZFileName& name, const ZString& a) { return name.setName(ZString(name), a); }},
        {"exit", base, [](ZFileName& name, const ZString&) { return name.exit(); }},
        {"completePath", base, [](ZFileName& name, const ZString&) { return name.completePath(); }},
        {"setExtension", longName, [](ZFileName& name, const ZString& a) { return name.setExtension(a); }},
        {"resolve", base, [](ZFileName& name, const ZString& a) { return name.resolve(a); }},
        {"relativeName", base, [](ZFileName& name, const ZString& a) { return name.relativeName(a, true); }},
        {"toRelative", base, [](ZFileName& name, const ZString& a) { return name.toRelative(name.path(), a); }},
        {"toAbsolute", base, [](ZFileName& name, const ZString&) { return name.toAbsolute(); }},
        {"toExternal", base, [](ZFileName& name, const ZString&) { return name.toExternal(); }},
    };
    for (auto& row : rows)
        for (const char* start : {"/a/b/c/a longer name than what fits in place", "../a\\b", "a\\b"}) {
            ZFileName before(start), after(before);
            bool possible = row.edit(after, row.argument);
            failEachAllocation([&](AllocProbe& probe) {
                ZFileName name(before);
                bool edited = row.edit(name, row.argument);
                EXPECT_EQ(plain(name), edited ? plain(after) : plain(before)) << row.what << " of " << start;
                EXPECT_TRUE(probe.failed() || edited == possible) << row.what << " of " << start;
                zrecover();
            });
        }
}
