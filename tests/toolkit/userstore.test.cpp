#include "toolkit/userstore.h"

#include "toolkit/memory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

using namespace toolkit;
namespace fs = std::filesystem;

namespace {
/// A user's data folder of the test's own.
class UserStore : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/orv-store-XXXXXX";
        folder = mkdtemp(name);
        setenv("XDG_DATA_HOME", folder.c_str(), 1);
    }
    void TearDown() override {
        unsetenv("XDG_DATA_HOME");
        fs::remove_all(folder);
    }
    static std::string load(const char* name) {
        size_t length;
        char* text = loadUserText(name, length);
        std::string copy = text ? std::string(text, length) : "(none)";
        freeBlock(text);
        return copy;
    }
    fs::path onlyFile() {
        fs::path found;
        for (auto& entry : fs::recursive_directory_iterator(folder))
            if (entry.is_regular_file()) found = entry.path();
        return found;
    }
    fs::path folder;
};
} // namespace

TEST_F(UserStore, KeepsTextsUnderAnyName) {
    EXPECT_EQ(load("token"), "(none)");
    for (const char* name : {"token", "../up", "a/b", "\xc3\xa4%", "."}) {
        std::string text = std::string("value of ") + name;
        ASSERT_TRUE(storeUserText(name, text.data(), text.size())) << name;
        EXPECT_EQ(load(name), text);
    }
    EXPECT_TRUE(storeUserText("token", "two\nlines", 9));
    EXPECT_EQ(load("token"), "two\nlines");
    EXPECT_TRUE(storeUserText("token", "", 0));
    EXPECT_TRUE(storeUserText("token", "", 0));
    EXPECT_EQ(load("token"), "(none)");
    EXPECT_FALSE(storeUserText("", "x", 1));
    EXPECT_TRUE(fs::exists(folder) && !fs::exists(folder.parent_path() / "up"));
}

TEST_F(UserStore, DamagedFilesCountAsNone) {
    ASSERT_TRUE(storeUserText("token", "good", 4));
    fs::path file = onlyFile();
    std::string rows[] = {"",
                          "cut off",
                          "zero\0inside\n",
                          "bad \xC3( utf-8\n",
                          "sur\xED\xA0\x80rogate\n",
                          "bell\a\n",
                          "\n",
                          std::string(userTextLimit + 2, 'x') + "\n"};
    rows[2] = std::string("zero\0inside\n", 12);
    for (auto& row : rows) {
        std::ofstream(file, std::ios::binary) << row;
        EXPECT_EQ(load("token"), "(none)") << row.substr(0, 20);
    }
    EXPECT_FALSE(storeUserText("token", "bad \xC3(", 6));
    EXPECT_TRUE(storeUserText("token", "again", 5));
    EXPECT_EQ(load("token"), "again");
}
