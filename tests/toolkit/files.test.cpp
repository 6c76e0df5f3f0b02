#include "toolkit/files.h"

#include "tests/support/AllocProbe.h"
#include "tests/support/TempFolder.h"
#include "toolkit/places.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace toolkit;

namespace {
int failAt = 0, calls = 0;
bool failed = false;
/// Runs `work` with the first, second, third … call of the file layer failing, until none does.
template <class F> void failEachCall(F&& work) {
    for (failAt = 1; failAt < 500; ++failAt) {
        calls = 0;
        failed = false;
        setFileHook([](FileCall) { return ++calls == failAt ? (failed = true, ENOSPC) : 0; });
        work();
        setFileHook(nullptr);
        if (!failed) return;
    }
    FAIL() << "still failing";
}
std::string contents(const std::string& path, size_t limit = 1 << 20) {
    size_t size = 0;
    int error = 0;
    auto bytes = static_cast<char*>(readFile(path.c_str(), limit, size, error));
    if (!bytes) return "error " + std::to_string(error);
    EXPECT_EQ(bytes[size], 0);
    std::string text(bytes, size);
    freeBlock(bytes);
    return text;
}
uint modeOf(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}
} // namespace

TEST(Files, ReadsWholeWithinALimit) {
    TempFolder folder;
    std::string large(300'000, 'a');
    EXPECT_EQ(contents(folder.file("a", "hello")), "hello");
    EXPECT_EQ(contents(folder.file("empty", "")), "");
    EXPECT_EQ(contents(folder.file("large", large)), large);
    EXPECT_EQ(contents(folder.path("a"), 5), "hello");
    EXPECT_EQ(contents(folder.path("a"), 4), "error " + std::to_string(EFBIG));
    EXPECT_EQ(contents(folder.path("none")), "error " + std::to_string(ENOENT));
    EXPECT_EQ(contents(folder.path()), "error " + std::to_string(EISDIR));
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(contents(folder.path("pipe")), "error " + std::to_string(EINVAL));
    // A file of the system that tells the size 0.
    EXPECT_NE(contents("/proc/self/status").find("Pid:"), std::string::npos);
    EXPECT_EQ(contents("/proc/self/status", 10), "error " + std::to_string(EFBIG));
}

TEST(Files, WritingLosesNothingWhateverFails) {
    TempFolder folder;
    folder.file("a", "old");
    failEachCall([&] {
        int error = writeFile(folder.path("a").c_str(), "new", 3);
        // The last sync is of the folder's names: by then the new contents stand.
        EXPECT_EQ(folder.read("a"), error ? "old" : "new");
        EXPECT_EQ(folder.entries(), 1) << "call " << failAt;
        folder.file("a", "old");
    });
    failEachCall([&] {
        int error = copyFile(folder.path("a").c_str(), folder.path("b").c_str(), false);
        EXPECT_EQ(folder.read("b"), error ? "(none)" : "old");
        EXPECT_EQ(folder.entries(), error ? 1 : 2) << "call " << failAt;
        unlink(folder.path("b").c_str());
    });
    failEachAllocation([&](AllocProbe& probe) {
        int error = writeFile(folder.path("a").c_str(), "new", 3);
        if (error) { EXPECT_TRUE(probe.failed()); }
        EXPECT_EQ(folder.read("a"), error ? "old" : "new");
        EXPECT_EQ(folder.entries(), 1);
        folder.file("a", "old");
    });
    failEachAllocation([&](AllocProbe&) { EXPECT_TRUE(contents(folder.path("a")) != "new"); });
}

TEST(Files, WritingKeepsPermissionsAndLinks) {
    TempFolder folder;
    std::string script = folder.file("script", "old");
    chmod(script.c_str(), 0750);
    folder.link("script", "link");
    EXPECT_EQ(writeFile(folder.path("link").c_str(), "new", 3), 0);
    EXPECT_EQ(folder.read("script"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
    EXPECT_EQ(modeOf(script), 0750u);
    EXPECT_EQ(copyFile(script.c_str(), folder.path("copy").c_str(), false), 0);
    EXPECT_EQ(modeOf(folder.path("copy")), 0750u);

    mode_t mask = umask(027);
    EXPECT_EQ(writeFile(folder.path("fresh").c_str(), "", 0), 0);
    umask(mask);
    EXPECT_EQ(modeOf(folder.path("fresh")), 0640u);

    folder.folder("sub");
    EXPECT_EQ(writeFile(folder.path("sub").c_str(), "x", 1), EISDIR);
    EXPECT_EQ(writeFile(folder.path("none/x").c_str(), "x", 1), ENOENT);
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(writeFile(folder.path("pipe").c_str(), "x", 1), EINVAL);
    EXPECT_EQ(copyFile(script.c_str(), folder.path("pipe").c_str(), true), EINVAL);
}

TEST(Files, TryingToWriteChangesNothing) {
    TempFolder folder;
    folder.file("a", "old");
    EXPECT_EQ(tryWriting(folder.path("a").c_str()), 0);
    EXPECT_EQ(folder.read("a"), "old");
    EXPECT_EQ(tryWriting(folder.path("b").c_str()), 0);
    EXPECT_FALSE(nameTaken(folder.path("b").c_str()));
    EXPECT_EQ(tryWriting(folder.path().c_str()), EISDIR);
}

TEST(Files, CopiesAndRenamesDontReplaceUnasked) {
    TempFolder folder;
    std::string a = folder.file("a", "aa"), b = folder.file("b", "bb");
    EXPECT_EQ(copyFile(a.c_str(), b.c_str(), false), EEXIST);
    EXPECT_EQ(renameFile(a.c_str(), b.c_str()), EEXIST);
    EXPECT_EQ(folder.read("b"), "bb");
    EXPECT_EQ(copyFile(a.c_str(), b.c_str(), true), 0);
    EXPECT_EQ(folder.read("b"), "aa");
    EXPECT_EQ(copyFile(a.c_str(), a.c_str(), true), 0);
    EXPECT_EQ(folder.read("a"), "aa");
    EXPECT_EQ(renameFile(a.c_str(), folder.path("c").c_str()), 0);
    EXPECT_EQ(folder.read("a"), "(none)");
    EXPECT_EQ(folder.read("c"), "aa");
    EXPECT_EQ(copyFile(folder.path().c_str(), folder.path("d").c_str(), false), EISDIR);
    std::string large(3'000'000, 'z');
    folder.file("large", large);
    EXPECT_EQ(copyFile(folder.path("large").c_str(), folder.path("large2").c_str(), false), 0);
    EXPECT_EQ(folder.read("large2"), large);
    EXPECT_EQ(copyFile("/proc/self/cmdline", folder.path("cmd").c_str(), false), 0);
    EXPECT_NE(folder.read("cmd"), "");
}

TEST(Files, RenamesToAnotherVolumeCopy) {
    TempFolder folder;
    std::string from = folder.file("from", "text"), to = folder.path("to");
    folder.folder("sub");
    FileStatus before, after;
    ASSERT_EQ(fileStatus(from.c_str(), before), 0);
    usleep(20'000);
    auto renameApart = [](const std::string& from, const std::string& to) {
        calls = 0;
        setFileHook([](FileCall call) { return call == FileCall::Rename && ++calls == 1 ? EXDEV : 0; });
        int error = renameFile(from.c_str(), to.c_str());
        setFileHook(nullptr);
        return error;
    };
    EXPECT_EQ(renameApart(from, to), 0);
    EXPECT_EQ(folder.read("to"), "text");
    EXPECT_FALSE(nameTaken(from.c_str()));
    ASSERT_EQ(fileStatus(to.c_str(), after), 0);
    EXPECT_EQ(after.writeTime, before.writeTime);
    EXPECT_EQ(renameApart(folder.path("sub"), folder.path("sub2")), EXDEV);
}

TEST(Files, MakesAndRemovesFolders) {
    TempFolder folder;
    EXPECT_EQ(createFolder("", true), ENOENT);
    EXPECT_EQ(createFolder(folder.path("a/b/c").c_str(), false), ENOENT);
    EXPECT_EQ(createFolder(folder.path("a//b/c/").c_str(), true), 0);
    EXPECT_EQ(createFolder(folder.path("a/b").c_str(), false), 0);
    folder.file("a/file");
    EXPECT_EQ(createFolder(folder.path("a/file").c_str(), true), EEXIST);
    EXPECT_EQ(createFolder(folder.path("a/file/x").c_str(), true), ENOTDIR);
    EXPECT_EQ(removeFile(folder.path("a/b").c_str()), ENOTEMPTY);
    EXPECT_EQ(removeFile(folder.path("a/b/c").c_str()), 0);

    folder.file("kept/file");
    folder.link("../kept", "a/link");
    EXPECT_EQ(removeTree(folder.path("a").c_str()), 0);
    EXPECT_FALSE(nameTaken(folder.path("a").c_str()));
    EXPECT_EQ(folder.read("kept/file"), "x");
    folder.link("kept", "link");
    EXPECT_NE(removeTree(folder.path("link").c_str()), 0);
    EXPECT_EQ(folder.read("kept/file"), "x");
}

TEST(Files, BrokenLinksAreThereAsLinksOnly) {
    TempFolder folder;
    folder.link("nowhere", "broken");
    FileStatus status;
    EXPECT_EQ(fileStatus(folder.path("broken").c_str(), status), ENOENT);
    EXPECT_EQ(fileStatus(folder.path("broken").c_str(), status, false), 0);
    EXPECT_EQ(status.kind, FileKind::Link);
    EXPECT_TRUE(nameTaken(folder.path("broken").c_str()));
    EXPECT_EQ(fileAccess(folder.path("broken").c_str()), 0u);
}

TEST(PathText, JoinsCutsAndGrows) {
    PathText path;
    for (auto [start, cut] : {std::pair{"/a/b", "/a"}, {"/a", "/"}, {"/", "/"}, {"a", ""}, {"", ""}, {"a//b", "a"}}) {
        path.assign(start);
        path.cutName();
        EXPECT_STREQ(path.text(), cut) << start;
    }
    path.assign("/");
    path.join("a");
    path.join("b");
    EXPECT_STREQ(path.text(), "/a/b");
    std::string name(300, 'n');
    ASSERT_TRUE(path.join(name.c_str()));
    EXPECT_EQ(path.text(), "/a/b/" + name);
    failEachAllocation([&](AllocProbe&) {
        PathText text;
        text.assign("start");
        if (!text.append(name.c_str())) { EXPECT_STREQ(text.text(), "start"); }
    });
}

TEST(Places, UserDataLiesUnderXdgAndCantBeLeft) {
    struct Row {
        const char *name, *place;
        int error;
    } rows[] = {
        {"~", "/data/orvcore", 0},          {"~/", "/data/orvcore", 0}, {"~/a/./b//c", "/data/orvcore/a/b/c", 0},
        {"~/a/../b", "/data/orvcore/b", 0}, {"~/..", "", EACCES},       {"~/../..", "", EACCES},
        {"~/a/../../orvcore", "", EACCES},  {"~other/a", "", EINVAL},   {"/a", "", EINVAL}};
    setenv("XDG_DATA_HOME", "/data", 1);
    for (auto& row : rows) {
        PathText path;
        EXPECT_EQ(userDataPath(row.name, path), row.error) << row.name;
        if (!row.error) { EXPECT_STREQ(path.text(), row.place); }
    }
    // A relative folder there doesn't count.
    setenv("XDG_DATA_HOME", "data", 1);
    std::string home = getenv("HOME") ? getenv("HOME") : "";
    setenv("HOME", "/home/me", 1);
    PathText path;
    EXPECT_EQ(userDataPath("~/a", path), 0);
    EXPECT_STREQ(path.text(), "/home/me/.local/share/orvcore/a");
    unsetenv("XDG_DATA_HOME");
    home.empty() ? unsetenv("HOME") : setenv("HOME", home.c_str(), 1);

    ASSERT_EQ(appFolder(path), 0);
    EXPECT_EQ(path.text(), std::filesystem::read_symlink("/proc/self/exe").parent_path().string());
}

TEST(Places, TemporaryFilesGoAtTheEndOfTheirProcess) {
    TempFolder folder;
    std::string a = folder.file("a"), b = folder.file("b/inner");
    EXPECT_EQ(registerTemporary(a.c_str()), 0);
    EXPECT_EQ(registerTemporary(folder.path("b").c_str()), 0);

    // A child that ends takes its own, not those of its parent.
    pid_t child = fork();
    if (child == 0) {
        std::string own = folder.file("own");
        registerTemporary(own.c_str());
        exit(0);
    }
    int status;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(folder.read("own"), "(none)");
    EXPECT_EQ(folder.read("a"), "x");

    EXPECT_EQ(cleanTemporary(), 0);
    EXPECT_EQ(folder.read("a"), "(none)");
    EXPECT_FALSE(nameTaken(folder.path("b").c_str()));
}
