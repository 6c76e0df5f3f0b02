#include "text/ZFileInfo.h"

#include "core/ZSelector.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/TempFolder.h"
#include "tests/text/textsamples.h"
#include "toolkit/places.h"

#include <algorithm>
#include <map>
#include <unistd.h>
#include <vector>

namespace {
ZFileName named(const std::string& name) { return ZFileName(name.c_str()); }
ZString text(const std::string& bytes) { return ZString(bytes.c_str()); }
std::string contents(const ZFileName& name) {
    size_t size = 0;
    auto bytes = static_cast<char*>(name.read(size));
    if (!bytes) return "(none)";
    std::string read(bytes, size);
    zfree(bytes);
    return read;
}

/// A folder with the user's data in it, and the working folder there too.
class FileNames : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", folder.path("data").c_str(), 1);
        ASSERT_EQ(chdir(folder.path().c_str()), 0);
    }
    void TearDown() override {
        unsetenv("XDG_DATA_HOME");
        ASSERT_EQ(chdir("/"), 0);
    }
    std::vector<std::string> sorted(const ZFileName::Names& found) {
        std::vector<std::string> names;
        for (auto& name : found) names.push_back(plain(name));
        std::sort(names.begin(), names.end());
        return names;
    }
    TempFolder folder;
};
using List = std::vector<std::string>;
} // namespace

TEST_F(FileNames, ReadingIgnoresCaseAndMakingDoesNot) {
    folder.file("Data/Sub/File.TXT", "mixed");
    folder.file("lower/name.txt", "lower");
    folder.file("\xc3\x84rger/x", "umlaut");
    folder.file("two/AB", "AB");
    folder.file("two/Ab", "Ab");
    struct Row {
        const char *name, *contents;
    } rows[] = {{"Data/Sub/File.TXT", "mixed"},
                {"data/sub/file.txt", "mixed"},
                {"DATA/SUB/FILE.TXT", "mixed"},
                {"Lower/NAME.txt", "lower"},
                {"\xc3\xa4RGER/X", "umlaut"},
                {"two/Ab", "Ab"},
                {"two/aB", "AB"},
                {"data/none/file.txt", "(none)"},
                {"data\\sub\\file.txt", "(none)"}};
    for (auto& row : rows) EXPECT_EQ(contents(row.name), row.contents) << row.name;
    EXPECT_TRUE(ZFileName("DATA/").isDir());
    for (const char* name : {"lower/name.txt/", "LOWER/name.txt/"}) EXPECT_FALSE(ZFileName(name).exists()) << name;
    EXPECT_EQ(ZFileName("LOWER/NAME.TXT").getSize(), 5);

    EXPECT_FALSE(ZFileName("LOWER/name.txt").remove());
    EXPECT_FALSE(ZFileName("LOWER/name.txt").rename("x"));
    EXPECT_TRUE(ZFileName("lower/NAME.TXT").write("new", 3));
    EXPECT_EQ(folder.read("lower/name.txt"), "lower");
    EXPECT_EQ(folder.read("lower/NAME.TXT"), "new");
    EXPECT_TRUE(ZFileName("DATA").createDir(false));
    EXPECT_TRUE(std::filesystem::exists(folder.path("DATA")));
}

TEST_F(FileNames, FileWork) {
    EXPECT_TRUE(named("a/b").createDir(true));
    EXPECT_TRUE(named("a/one").write("1", 1));
    EXPECT_TRUE(named("a/one").copy("a/two"));
    EXPECT_TRUE(named("a/three").write("3", 1));
    EXPECT_FALSE(named("a/one").copy("a/three"));
    EXPECT_EQ(folder.read("a/three"), "3");
    EXPECT_TRUE(named("a/one").copyTo("a/three"));
    EXPECT_EQ(folder.read("a/three"), "1");
    EXPECT_TRUE(named("a/one").write("x", 1));
    EXPECT_TRUE(named("a/two").copyFrom("a/one"));
    EXPECT_EQ(folder.read("a/two"), "x");
    EXPECT_TRUE(named("a/one").rename("a/four"));
    EXPECT_TRUE(named("a/b").remove());
    EXPECT_FALSE(named("~/../../a/four").remove());
    EXPECT_FALSE(named("~/../../a/new").write("", 0));
    EXPECT_EQ(contents("~/../../a/four"), "(none)");
    EXPECT_EQ(folder.read("a/four"), "x");

    EXPECT_TRUE(named("~/sub/file").write("user", 4));
    EXPECT_EQ(folder.read("data/orvcore/sub/file"), "user");
    EXPECT_EQ(std::filesystem::status(folder.path("data/orvcore")).permissions(), std::filesystem::perms::owner_all);
    EXPECT_EQ(contents("~/SUB/file"), "user");
    EXPECT_TRUE(ZFileName::removeUserData());
    EXPECT_FALSE(std::filesystem::exists(folder.path("data/orvcore")));
    EXPECT_TRUE(ZFileName::removeUserData());
}

TEST_F(FileNames, KindsAndTimes) {
    folder.file("file", "12345");
    folder.folder("sub");
    EXPECT_EQ(named("file").getFlags(), ZFileName::Read | ZFileName::Write);
    EXPECT_EQ(named("sub").getFlags(), ZFileName::Read | ZFileName::Write | ZFileName::Exec | ZFileName::Dir);
    EXPECT_EQ(named("none").getFlags(), ZFileName::None);
    EXPECT_TRUE(named("/dev/null").getFlags() & ZFileName::System);
    EXPECT_TRUE(named("/dev/null").isSystem());
    EXPECT_TRUE(named("file").isFile());
    EXPECT_TRUE(named("sub").isPath());
    EXPECT_TRUE(named("none/").isPath());
    EXPECT_FALSE(named("file").isPath());
    EXPECT_FALSE(named("none").readOnly());
    EXPECT_TRUE(named("new").allowWriting());
    EXPECT_FALSE(named("none/new").allowWriting());
    EXPECT_FALSE(named("new").exists());
    EXPECT_GT(named("none/below").diskSize(), named("none/below").diskSpace());
    EXPECT_EQ(named("/proc").getVolumeType(), ZFileName::VirtualVolume);

    ZTime written = named("file").writeTime();
    EXPECT_LT(ZTime::systemTime().value() - written.value(), 60'000);
    EXPECT_FALSE(named("none").writeTime().isValid());
    EXPECT_FALSE(named("file").changed(written.toString()));
    ZTime second = written;
    second.setMSec(0);
    EXPECT_FALSE(named("file").changed(second.toString()));
    second.addSecond(1);
    EXPECT_TRUE(named("file").changed(second.toString()));
    EXPECT_TRUE(named("file").changed("yesterday"));
    EXPECT_TRUE(named("none").changed(written.toString()));
    ZFileInfo info(named("file"), 3);
    EXPECT_EQ(info.size(), 5);
    EXPECT_EQ(info.writeTime(), written);
    EXPECT_EQ(info.level(), 3);
}

TEST_F(FileNames, AbsoluteAndBack) {
    ZFileName app = ZFileName::appPath();
    std::string data = folder.path("data/orvcore"), own = plain(app);
    struct Row {
        std::string name;
        uint flags;
        std::string absolute;
    } rows[] = {{"~/a/b", 0, data + "/a/b"},
                {"~", 0, data},
                {"/x/y/", 0, "/x/y/"},
                {"/x/y/", ZFileName::DirectoryName, "/x/y"},
                {"~other/x", 0, ""},
                {"", 0, ""},
                {"not there", 0, own + "/not there"},
                {"../not there", 0, own + "/../not there"}};
    for (auto& row : rows) {
        ZFileName name = named(row.name);
        EXPECT_EQ(name.toAbsolute(row.flags), !row.absolute.empty()) << row.name;
        EXPECT_EQ(plain(name), row.absolute.empty() ? row.name : row.absolute) << row.name;
    }
    for (auto& [absolute, relative] : std::map<std::string, std::string>{{data + "/a/b", "~/a/b"},
                                                                         {data, "~/"},
                                                                         {own + "/x", "x"},
                                                                         {"~/x", "~/x"},
                                                                         {"/nowhere", ""},
                                                                         {data + "2/x", ""}}) {
        ZFileName name = named(absolute);
        EXPECT_EQ(name.toRelative(), !relative.empty()) << absolute;
        EXPECT_EQ(plain(name), relative.empty() ? absolute : relative);
    }
    // The user's copy of a file of the application comes first.
    folder.file("data/orvcore/mine", "x");
    EXPECT_EQ(plain(named("mine").absolute()), data + "/mine");
    ZFileName forWriting("~/new/sub/file");
    EXPECT_TRUE(forWriting.toAbsolute(ZFileName::Create));
    EXPECT_TRUE(std::filesystem::is_directory(data + "/new/sub"));
    EXPECT_FALSE(std::filesystem::exists(data + "/new/sub/file"));
    EXPECT_EQ(plain(ZFileName::userFolder("~/made/here/")), data + "/made/here");
    EXPECT_TRUE(std::filesystem::is_directory(data + "/made/here"));
    EXPECT_EQ(plain(ZFileName::userFolder("~/../out")), "~/../out");
    EXPECT_EQ(plain(ZFileName::hulePath()), plain(ZFileName::mainPath()) + "/hule");
}

TEST_F(FileNames, FindsNames) {
    folder.file("a/b/c/file");
    folder.file("a/up");
    folder.file("a/data");
    struct Row {
        const char *path, *name, *found;
    } rows[] = {{"a/b/c", "up", "a/up"},
                {"a/b/c/file", "up", "a/up"},
                {"a/b/c", "b/c/file", "a/b/c/file"},
                {"a/b/c", "data", "a/data"},
                {"a/b", "a", "a"},
                {"a/b/c", "none", nullptr},
                {"a/b/c", "~/none", "~/none"},
                {"a/b/c", "/none", "/none"},
                {"../..", "none", nullptr},
                {"none/../..", "none", nullptr}};
    for (auto& row : rows) {
        ZFileName name("old");
        EXPECT_EQ(name.selectName(row.path, row.name), row.found != nullptr) << row.name;
        EXPECT_EQ(plain(name), row.found ? row.found : "old") << row.name;
    }
    EXPECT_EQ(plain(ZFileName::completeFileName("a", "up")), "a/up");
    EXPECT_EQ(plain(ZFileName::completeFileName("a", "none")), "");
    EXPECT_EQ(plain(ZFileName::completeFileName("b", "a/up")), "a/up");
    EXPECT_EQ(plain(ZFileName::completeFileName("a", "~up")), "~up");
    ZArrayT<ZString> folders;
    for (const std::string& name : {folder.path("none"), folder.path("a")}) folders.append(text(name));
    EXPECT_EQ(plain(ZFileName::completeFileName(folders, "up")), folder.path("a/up"));
    EXPECT_EQ(plain(ZFileName::completeFileName(folders, "down")), "");
    EXPECT_EQ(plain(ZFileName::shrinkFileName(folders, text(folder.path("a/b/c")))), "b/c");
    for (const std::string& name : {std::string("/x"), folder.path("a")})
        EXPECT_EQ(plain(ZFileName::shrinkFileName(folders, text(name))), name);
}

TEST_F(FileNames, MakesNewNames) {
    folder.file("x_1.txt");
    EXPECT_EQ(plain(ZFileName::createNewFileName("", "x", "txt")), "x_2.txt");
    EXPECT_EQ(plain(ZFileName::createNewFileName("", "X", "txt")), "X_1.txt");
    folder.link("nowhere", "y_1");
    EXPECT_EQ(plain(ZFileName::createNewFileName(text(folder.path()), "y", "")), folder.path("y_2"));

    folder.file("sub/shot 003.png");
    ZFileName shot("sub/shot.png");
    int index = 3;
    EXPECT_EQ(plain(shot.incrementalName(index, 10, false, false)), "sub/shot 004.png");
    EXPECT_EQ(index, 5);
    index = 3;
    EXPECT_EQ(plain(shot.incrementalName(index, 10, false, true)), "sub/shot 003.png");
    EXPECT_EQ(index, 4);
    index = 3;
    EXPECT_EQ(plain(shot.incrementalName(index, 4, false, false)), "");
    index = 1000;
    EXPECT_EQ(plain(shot.incrementalName(index, 2000, true, false)), "sub/shot/shot 1000.png");
    EXPECT_TRUE(std::filesystem::is_directory(folder.path("sub/shot")));
}

TEST_F(FileNames, BringsOldFilesOver) {
    ASSERT_TRUE(ZSelector::open());
    {
        ZSelector old("old.settings");
        std::string data = folder.path("data/orvcore");
        EXPECT_EQ(plain(ZFileName::userPath(old)), data + "/old.settings");
        EXPECT_TRUE(std::filesystem::is_directory(data + "/old.settings"));
        EXPECT_EQ(plain(ZFileName::userFile(old, "../a")), data + "/a");
        EXPECT_EQ(plain(ZFileName::userFile(old, "x/../../../a")), "");
        EXPECT_EQ(plain(ZFileName::userPath(ZSelector())), "");
        EXPECT_EQ(plain(ZFileName::userPath(ZSelector(".."))), "");

        folder.file("data/orvcore/old.settings/set/one.x", "1");
        folder.file("data/orvcore/old.settings/set/sub/two.x", "2");
        folder.file("data/orvcore/old.settings/set/three.y", "3");
        EXPECT_TRUE(named("~/set/one.x").copyLegacyFile("~/", old));
        EXPECT_EQ(folder.read("data/orvcore/set/one.x"), "1");
        folder.file("data/orvcore/set/one.x", "newer");
        EXPECT_FALSE(named("~/set/one.x").copyLegacyFile("~/", old));
        EXPECT_FALSE(named("~/set/none.x").copyLegacyFile("~/", old));
        EXPECT_TRUE(named("~/set").copyLegacyFolder("~/", old, "x"));
        EXPECT_EQ(folder.read("data/orvcore/set/one.x"), "newer");
        EXPECT_EQ(folder.read("data/orvcore/set/sub/two.x"), "2");
        EXPECT_EQ(folder.read("data/orvcore/set/three.y"), "(none)");
        EXPECT_FALSE(named("~/none").copyLegacyFolder("~/", old, "x"));
    }
    ZSelector::close();
}

TEST_F(FileNames, TemporaryFiles) {
    ZFileName one = ZFileName::temporary(), two = ZFileName::temporary("png");
    EXPECT_TRUE(one.isFile());
    EXPECT_EQ(plain(two.extension()), "png");
    EXPECT_EQ(plain(two.path()), plain(ZFileName::tempPath()));
    folder.file("own");
    EXPECT_TRUE(named("own").registerTemp());
    EXPECT_FALSE(named("own").registerTemp());
    folder.file("kept");
    EXPECT_TRUE(named("kept").registerTemp());
    EXPECT_TRUE(named("kept").unRegisterTemp());
    EXPECT_FALSE(named("kept").removeTemp());
    EXPECT_TRUE(one.removeTemp());
    EXPECT_FALSE(one.exists());
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_TRUE(ZFileName::cleanTemporary());
    EXPECT_FALSE(two.exists());
    EXPECT_EQ(folder.read("own"), "(none)");
    EXPECT_EQ(folder.read("kept"), "x");
}

TEST_F(FileNames, ResourceForks) {
    std::string head("\x00\x05\x16\x07\x00\x02\x00\x00", 8), filler(16, 0);
    auto number = [](uint value) {
        return std::string{char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
    };
    auto fork = [&](uint from, uint length) {
        folder.file("._f", head + filler + std::string("\0\2", 2) + number(9) + number(50) + number(2) + number(2) +
                               number(from) + number(length) + "abcdefgh");
        size_t size = 99;
        auto bytes = static_cast<char*>(ZFileName("f").readFork(size));
        std::string read = bytes ? std::string(bytes, size) : "(none)";
        zfree(bytes);
        return read;
    };
    folder.file("f");
    EXPECT_EQ(fork(52, 3), "cde");
    EXPECT_EQ(fork(50, 8), "abcdefgh");
    EXPECT_EQ(fork(50, 9), "(none)");
    EXPECT_EQ(fork(0xFFFFFFFF, 0xFFFFFFFF), "(none)");
    for (std::string broken : {"", "\x00\x05\x16\x07", "x"}) {
        folder.file("._f", broken);
        size_t size;
        EXPECT_EQ(ZFileName("f").readFork(size), nullptr);
    }
}

TEST_F(FileNames, Scans) {
    folder.file("s/a.txt");
    folder.file("s/b.TXT");
    folder.file("s/c.png");
    folder.file("s/.txt");
    folder.file("s/sub/d.txt");
    folder.file("s/raw\xff.txt");
    folder.file("s/back\\slash.txt");
    folder.link("nowhere", "s/broken.txt");
    folder.link("..", "s/sub/loop");
    ZFileName::Names found, extensions, none;
    extensions.append(ZString("txt"));
    EXPECT_TRUE(named("s").scanFiles(found, true, extensions));
    EXPECT_EQ(sorted(found), (List{"s/a.txt", "s/b.TXT", "s/back\\slash.txt", "s/raw\xff.txt", "s/sub/d.txt"}));
    for (auto& name : found) EXPECT_EQ(contents(name), "x") << plain(name);

    found.clear();
    extensions.append(ZString(u".png"));
    EXPECT_TRUE(ZFileName::scan(found, "s/", false, true, extensions));
    EXPECT_EQ(sorted(found), (List{"s/a.txt", "s/b.TXT", "s/back\\slash.txt", "s/c.png", "s/raw\xff.txt", "s/sub"}));

    found.clear();
    std::vector<std::string> asked;
    auto filter = [&](const ZString& name, bool isFolder) {
        asked.push_back(plain(name));
        return !isFolder && name.length() < 8;
    };
    EXPECT_TRUE(ZFileName::scan(found, "s", true, true, none, filter));
    EXPECT_EQ(sorted(found), (List{"s/.txt", "s/a.txt", "s/b.TXT", "s/c.png"}));
    EXPECT_TRUE(std::count(asked.begin(), asked.end(), "s/sub/d.txt"));
    EXPECT_TRUE(std::count(asked.begin(), asked.end(), "s/sub"));

    // What several starts have in common is found once; those that aren't there are passed over.
    found.clear();
    ZFileName::Names starts;
    for (const char* start : {"none", "s/sub", "s"}) starts.append(ZString(start));
    EXPECT_TRUE(ZFileName::scanFiles(found, starts, true));
    EXPECT_EQ(std::count_if(found.begin(), found.end(), [](auto& name) { return plain(name) == "s/sub/d.txt"; }), 1);
    EXPECT_FALSE(ZFileName::scanFiles(found, "none", true));

    folder.file("data/orvcore/p/q.x");
    found.clear();
    EXPECT_TRUE(ZFileName::scanFiles(found, "~/", true));
    EXPECT_EQ(sorted(found), List{"~/p/q.x"});
    found.clear();
    EXPECT_TRUE(ZFileName("S/SUB").scanFiles(found, false));
    EXPECT_EQ(sorted(found), List{"s/sub/d.txt"});

    ZFileName::Infos infos;
    EXPECT_TRUE(named("s").scanInfo(infos, true, true));
    std::map<std::string, ZFileInfo> byName;
    for (auto& info : infos) byName[plain(info.fileName())] = info;
    EXPECT_EQ(byName.size(), 9u);
    EXPECT_TRUE(byName["s/sub"].isDir());
    EXPECT_EQ(byName["s/sub"].size(), 0);
    EXPECT_EQ(byName["s/sub/d.txt"].level(), 1);
    EXPECT_EQ(byName["s/a.txt"].size(), 1);
    EXPECT_EQ(byName["s/a.txt"].flags(), ZFileName::Read | ZFileName::Write);
    EXPECT_TRUE(byName["s/a.txt"].writeTime().isValid());
    infos.clear();
    EXPECT_TRUE(named("s").scanFileInfo(infos, false));
    EXPECT_EQ(infos.count(), 6u);
}

TEST_F(FileNames, ScansOfTheWorkingFolder) {
    folder.file("a/b/c");
    folder.file("~/d");
    ZFileName::Names found;
    EXPECT_TRUE(ZFileName().scan(found, true, true));
    // What is called "~" can't be taken for the user's data.
    EXPECT_EQ(sorted(found), (List{"./~", "./~/d", "a", "a/b", "a/b/c"}));
}

TEST_F(FileNames, ScansWithoutMemoryFindNothing) {
    for (int i = 0; i < 40; ++i) folder.file("s/" + std::string(40, 'n') + std::to_string(i));
    failEachAllocation([&](AllocProbe& probe) {
        ZFileName::Names found;
        ZFileName start("s");
        bool whole = start.scanFiles(found, true);
        if (!probe.failed()) {
            EXPECT_TRUE(whole);
            EXPECT_EQ(found.count(), 40u);
        } else if (!whole) {
            EXPECT_EQ(found.count(), 0u);
        }
        zresetfail();
        zrecover();
    });
}
