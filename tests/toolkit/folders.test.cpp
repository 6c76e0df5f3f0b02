#include "toolkit/folders.h"

#include "tests/support/AllocProbe.h"
#include "tests/support/TempFolder.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <vector>

using namespace toolkit;

namespace {
/// All paths below `start`, less the start, sorted; folders end in "/", what is behind a link in "@".
std::vector<std::string> walk(const std::string& start, bool recurse = true) {
    FolderWalk walk;
    EXPECT_EQ(walk.start(start.c_str(), recurse), 0);
    std::vector<std::string> found;
    WalkEntry entry;
    while (walk.next(entry)) {
        EXPECT_EQ(std::string(entry.path).size(), entry.length);
        EXPECT_EQ(entry.path[entry.nameAt - 1], '/');
        found.push_back(std::string(entry.path).substr(start.size() + 1) + (entry.kind == FileKind::Folder ? "/" : "") +
                        (entry.link ? "@" : ""));
    }
    EXPECT_EQ(walk.error(), 0);
    std::sort(found.begin(), found.end());
    return found;
}
using Names = std::vector<std::string>;
} // namespace

TEST(FolderWalk, EntersFoldersOnce) {
    TempFolder folder;
    folder.file("a/one");
    folder.file("a/b/two");
    folder.file("three");
    folder.folder("empty");
    folder.link("..", "a/up");   // a loop
    folder.link("a/b", "again"); // a folder that is read anyway
    folder.link("nowhere", "broken");
    folder.link("three", "alias");
    folder.link("loop", "loop");
    EXPECT_EQ(walk(folder.path()), (Names{"a/", "a/b/", "a/b/two", "a/one", "a/up/@", "again/@", "alias@", "broken@",
                                          "empty/", "loop@", "three"}));
    EXPECT_EQ(walk(folder.path(), false), (Names{"a/", "again/@", "alias@", "broken@", "empty/", "loop@", "three"}));
    // From below, the link up leads to what hasn't been read.
    Names below = walk(folder.path("a"));
    EXPECT_TRUE(std::count(below.begin(), below.end(), "up/three")) << ::testing::PrintToString(below);
    EXPECT_EQ(std::count(below.begin(), below.end(), "up/a/one"), 0);
}

TEST(FolderWalk, RawNamesAndManyEntries) {
    TempFolder folder;
    std::set<std::string> names{"\xff\xfe", "back\\slash", "a b", "\xc3\xa4"};
    for (int i = 0; i < 3000; ++i) names.insert("file with a rather long name " + std::to_string(i));
    for (auto& name : names) folder.file(name);
    Names found = walk(folder.path());
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), names);
    EXPECT_EQ(found.size(), names.size());
}

TEST(FolderWalk, DeepFoldersAreBounded) {
    TempFolder folder;
    std::string name;
    for (int i = 0; i < 600; ++i) name += "/d";
    folder.folder(name);
    FolderWalk walk;
    ASSERT_EQ(walk.start(folder.path().c_str(), true), 0);
    WalkEntry entry;
    uint count = 0;
    while (walk.next(entry)) EXPECT_EQ(entry.depth, count++);
    EXPECT_EQ(count, 513u);
    EXPECT_EQ(walk.skipped(), 1u);
}

TEST(FolderWalk, FilesAndFoldersVanish) {
    TempFolder folder;
    for (int i = 0; i < 20; ++i) folder.file("d" + std::to_string(i) + "/file");
    FolderWalk walk;
    ASSERT_EQ(walk.start(folder.path().c_str(), true), 0);
    WalkEntry entry;
    ASSERT_TRUE(walk.next(entry));
    std::filesystem::remove_all(folder.path());
    while (walk.next(entry)) EXPECT_EQ(entry.depth, 0u);
    EXPECT_EQ(walk.error(), 0);
    EXPECT_GT(walk.skipped(), 0u);
    EXPECT_EQ(walk.start(folder.path().c_str(), true), ENOENT);
    EXPECT_FALSE(walk.next(entry));
    EXPECT_EQ(walk.start("/proc/self/status", true), ENOTDIR);
}

TEST(FolderWalk, EveryFailureIsTold) {
    TempFolder folder;
    folder.file(std::string(200, 'a') + "/" + std::string(200, 'b') + "/file");
    for (int i = 0; i < 150; ++i) folder.folder("d" + std::to_string(i));
    failEachAllocation([&](AllocProbe& probe) {
        FolderWalk walk;
        int error = walk.start(folder.path().c_str(), true);
        WalkEntry entry;
        int count = 0;
        while (walk.next(entry)) ++count;
        EXPECT_EQ(walk.error() == ENOMEM, probe.failed());
        if (!error && !walk.error()) { EXPECT_EQ(count, 153); }
    });
    setFileHook([](FileCall call) { return call == FileCall::ReadFolder ? EIO : 0; });
    FolderReader reader;
    FolderEntry entry;
    EXPECT_EQ(reader.open(folder.path().c_str()), 0);
    EXPECT_FALSE(reader.next(entry));
    EXPECT_EQ(reader.error(), EIO);
    setFileHook(nullptr);
    EXPECT_TRUE(reader.next(entry));
}
