#include "tools/orv/words.h"

#include "tests/support/AllocProbe.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <map>

using orv::tool::countWords;
using orv::tool::WordOptions;

namespace {

struct Output {
    int exit;
    std::string table, log;
};

std::string contents(std::FILE* file) {
    std::string text(size_t(std::ftell(file)), 0);
    std::rewind(file);
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    return text;
}

Output words(const WordOptions& options) {
    std::FILE *out = std::tmpfile(), *log = std::tmpfile();
    int exit = countWords(options, out, log);
    std::string table = contents(out);
    return {exit, table, contents(log)};
}

class Words : public testing::Test {
protected:
    void SetUp() override { options.folders = {folder.path("texts")}; }
    TempFolder folder;
    WordOptions options;
};

} // namespace

TEST_F(Words, SplitsAtTheCategoriesThatSeparate) {
    // Symbols and numbers belong to words, as do letters of any script; marks, punctuation, blanks and controls
    // separate.
    folder.file("texts/a",
                "it's a+b=c, x_1 (x) 2.5\tgr\xC3\xBCn\ngr\xC3\xBCn\xE2\x80\x94Gr\xC3\xBCn \xE3\x81\x82\x7F$5 ");
    Output got = words(options);
    EXPECT_EQ(got.exit, 0);
    std::map<std::string, int> expected{
        {"it", 1},          {"s", 1},           {"a+b=c", 1},        {"x", 2}, {"1", 1}, {"2", 1}, {"5", 1},
        {"gr\xC3\xBCn", 2}, {"Gr\xC3\xBCn", 1}, {"\xE3\x81\x82", 1}, {"$5", 1}};
    std::map<std::string, int> seen;
    std::istringstream lines(got.table);
    std::string line;
    while (std::getline(lines, line))
        if (line.find("different") == std::string::npos) seen[line.substr(12)] = std::stoi(line);
    EXPECT_EQ(seen, expected);
    EXPECT_NE(got.table.find("words, 11 different"), std::string::npos) << got.table;
}

TEST_F(Words, CountsEachFileOnceAndNamesWhatItPassesOver) {
    std::string a = folder.file("texts/a.txt", "word");
    std::filesystem::create_hard_link(a, folder.path("texts/same.txt"));
    folder.link(a, "texts/link.txt");
    folder.link(folder.path("texts"), "texts/loop");
    folder.file("texts/wide.txt", std::string("\xFF\xFEw\0o\0r\0d\0 \0\x42\x30", 14));
    folder.file("texts/big.txt", std::string("\xFE\xFF\0w\0o\0r\0d", 10));
    folder.file("texts/mark.txt", "\xEF\xBB\xBFword");
    folder.file("texts/binary", std::string("word\0word", 9));
    folder.file("texts/packed.gz", "\x1F\x8B\x08word");
    folder.file("texts/latin", "gr\xFCn");
    options.verbose = true;
    options.folders.push_back(folder.path("texts/a.txt"));
    Output got = words(options);
    EXPECT_EQ(got.table, "         4  word\n         1  \xE3\x81\x82\n         5  words, 2 different\n");
    EXPECT_NE(got.log.find("4 texts, 1 binary, 1 compressed, 1 undecodable"), std::string::npos) << got.log;
    EXPECT_NE(got.log.find("undecodable: " + folder.path("texts/latin") + "\n"), std::string::npos) << got.log;
    options.match = "*.txt";
    EXPECT_NE(words(options).log.find("4 texts;"), std::string::npos);
}

TEST_F(Words, OrdersByCountOrCollationWithTiesByText) {
    folder.file("texts/a", "b b B B a A \xC3\xA4 c c c Z");
    EXPECT_EQ(words(options).table.substr(0, 5 * 14 + 15),
              "         3  c\n         2  b\n         2  B\n         1  a\n         1  A\n         1  \xC3\xA4\n");
    options.byText = true;
    std::string all = words(options).table;
    EXPECT_EQ(all.substr(0, 4 * 14 + 15),
              "         1  a\n         1  A\n         1  \xC3\xA4\n         2  b\n         2  B\n");
    options.top = 2;
    EXPECT_EQ(words(options).table, "         1  a\n         1  A\n        11  words, 7 different\n");
    options.byText = false;
    EXPECT_EQ(words(options).table, "         3  c\n         2  b\n        11  words, 7 different\n");
}

TEST_F(Words, JsonEscapesWhatItMust) {
    folder.file("texts/a", "a`b a`b <\"> \\x");
    options.json = true;
    options.top = 1;
    Output got = words(options);
    EXPECT_NE(got.table.find("{\"total\": 5, \"different\": "), std::string::npos) << got.table;
    EXPECT_NE(got.table.find("{\"text\": \"a`b\", \"count\": 2}"), std::string::npos) << got.table;
}

TEST_F(Words, ThreadsAndRestartsGiveTheSameTableAndLeaveNothing) {
    for (int file = 0; file < 40; ++file) {
        std::string text;
        for (int i = 0; i < 3000; ++i) text += "w" + std::to_string((i * (file + 7)) % 1999) + (i % 9 ? " " : ",\n");
        folder.file("texts/" + std::to_string(file), text);
    }
    options.threads = 1;
    AllocProbe probe;
    Output first = words(options);
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
    for (int threads : {8, 3, 8}) {
        options.threads = threads;
        EXPECT_EQ(words(options).table, first.table) << threads;
        EXPECT_EQ(probe.live(), 0) << probe.leaks();
    }
    EXPECT_NE(first.table.find("    120000  words, 1999 different"), std::string::npos)
        << first.table.substr(first.table.size() - 60);
}

TEST_F(Words, OutOfMemoryIsToldAndLeavesNothing) {
    folder.file("texts/a", "one two three");
    folder.file("texts/deeper/b", "three \xC3\xA4");
    options.threads = 1;
    std::string whole = words(options).table;
    for (bool onwards : {false, true}) {
        AllocProbe probe;
        bool failed = true;
        (void)words(options);
        // Most are those of the library's start, which has a test that lets each of them fail; the last are the tool's.
        const long all = probe.allocations();
        for (long n = 1 + onwards; failed && n < 2 * all; n += n < all * 7 / 8 ? 4 : 1) {
            probe.failAt(n, onwards);
            Output got = words(options);
            failed = probe.failed();
            probe.failAt(0);
            ASSERT_EQ(probe.live(), 0) << n << ": " << probe.leaks();
            EXPECT_TRUE(got.exit == 1 || got.table == whole) << n << "\n" << got.table << got.log;
        }
        EXPECT_FALSE(failed);
    }
}
