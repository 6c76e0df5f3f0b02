#include "tools/orv/packages.h"

#include "tests/support/TempFolder.h"

#include <cstdio>
#include <gtest/gtest.h>

namespace {

using orv::tool::PackageOptions;

std::string contents(std::FILE* file) {
    std::string text(size_t(std::ftell(file)), 0);
    std::rewind(file);
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    return text;
}

class Packages : public testing::Test {
protected:
    void SetUp() override {
        options.files = {folder.file("status",
                                     "Package: libx1.2\nSection: libs\nPriority: optional\nArchitecture: amd64\n"
                                     "Version: 1:2.9-1\nInstalled-Size: 100\nMaintainer: Ann Lee <ann@x.org>\n"
                                     "\n"
                                     "Package: tool\nSection: utils\nPriority: required\nArchitecture: all\n"
                                     "Version: 2.36\nInstalled-Size: 40\nDescription: short\n more\n"
                                     "\n"
                                     "Package: tool-doc\nSection: doc\nArchitecture: all\nVersion: 2.4~rc1\n"
                                     "\n"
                                     "Package: liby\nSection: libs\nArchitecture: amd64\nVersion: 3.0\n"
                                     "Installed-Size: 20\n")};
    }
    /// What is printed, then what is complained of, and the exit status if it isn't 0.
    std::string run() {
        std::FILE *out = std::tmpfile(), *log = std::tmpfile();
        const int exit = listPackages(options, out, log);
        const std::string printed = contents(out);
        return printed + contents(log) + (exit ? "exit " + std::to_string(exit) : "");
    }
    std::string where(const std::string& condition) {
        options.where = condition;
        const std::string printed = run();
        std::string keys;
        for (size_t at = 0, end; (end = printed.find('\n', at)) != printed.npos; at = end + 1)
            if (printed.find('=', at) < end) keys += printed.substr(at, printed.find(':', at) - at) + " ";
        return keys;
    }

    TempFolder folder;
    PackageOptions options;
};

} // namespace

TEST_F(Packages, AreSummedUpBySection) {
    EXPECT_EQ(run(), "section                      packages          KiB\n"
                     "doc                                 1            0\n"
                     "libs                                2          120\n"
                     "utils                               1           40\n"
                     "all                                 4          160   40.0 KiB a package\n");
    options.json = true;
    EXPECT_NE(run().find("\"packages\": 4, \"installedSize\": 160, \"meanSize\": 40.0}"), std::string::npos);
}

TEST_F(Packages, AreChosenByConditions) {
    const struct {
        const char *condition, *names;
    } rows[] = {
        {"Installed-Size > 20", "libx1.2 tool "},
        {"not Installed-Size > 20", "tool-doc liby "},
        {"Section = libs", "libx1.2 liby "},
        {"Priority = required", "tool "},
        {"Priority < optional", "tool "},
        {"Priority in (optional, required)", "libx1.2 tool "},
        {"Maintainer.address contains x.org", "libx1.2 "},
        {"Description contains more", "tool "},
        // As versions, in which digits count as numbers, an epoch comes first, and a tilde comes before the end.
        {"Version > 2.9", "libx1.2 tool liby "},
        {"Version < 2.4", "tool-doc "},
        {"Version = 2.036", "tool "},
    };
    for (auto& row : rows) EXPECT_EQ(where(row.condition), row.names) << row.condition;
    options.section = "libs";
    EXPECT_EQ(where("Installed-Size < 50"), "liby ");
    for (const char* wrong :
         {"Priority = best", "Priority = 99", "Version = 1_0", "Installed-Size = many", "Colour = red"}) {
        options.where = wrong;
        EXPECT_NE(run().find("--where, column "), std::string::npos) << wrong;
    }
    options.where = "";
    options.section = "";
    options.match = "^lib[xy]";
    EXPECT_NE(run().find("2 packages, 120 KiB"), std::string::npos);
    options.match = "\xC3\xA4[";
    EXPECT_NE(run().find("--match, column 3"), std::string::npos) << run();
}

TEST_F(Packages, OneIsShownByNameOrKey) {
    for (const char* name : {"tool", "tool:all", "tool:all=2.36"}) {
        options.show = name;
        EXPECT_EQ(run(), "Package: tool\nSection: utils\nPriority: required\nArchitecture: all\nVersion: 2.36\n"
                         "Installed-Size: 40\nDescription: short\n more\n");
    }
    options.show = "libx1.2";
    options.json = true;
    EXPECT_NE(run().find("\"Installed-Size\": 100, \"Maintainer\": \"Ann Lee <ann@x.org>\""), std::string::npos);
    options.show = "none";
    EXPECT_NE(run().find("there is no package \"none\""), std::string::npos);
}

TEST_F(Packages, AChangeTravelsToTheTotals) {
    options.set = {"libx1.2.Installed-Size=1", "libx1.2:amd64=1:2.9-1.Installed-Size=7"};
    EXPECT_EQ(run(), "libx1.2:amd64=1:2.9-1.Installed-Size: 100 -> 1\n"
                     "  libs.total: 120 -> 21\n"
                     "  all.total: 160 -> 61\n"
                     "  a twin that is bound both ways: 100 -> 1, after 2 settings\n"
                     "libx1.2:amd64=1:2.9-1.Installed-Size: 1 -> 7\n"
                     "  libs.total: 21 -> 27\n"
                     "  all.total: 61 -> 67\n"
                     "  a twin that is bound both ways: 1 -> 7, after 2 settings\n");
    options.set = {"libx1.2.Maintainer.name=Lee, Ann"};
    EXPECT_NE(run().find("Maintainer.name: Ann Lee -> Lee, Ann\n"), std::string::npos) << run();
    options.set = {"libx1.2.Maintainer=Lee <lee@y.org>"};
    EXPECT_NE(run().find(" -> Lee <lee@y.org>\n"), std::string::npos);
    for (const char* wrong :
         {"libx1.2", "libx1.2.Installed-Size=x", "libx1.2.Installed-Size=-1", "tool.Priority=7", "tool.Section=libs",
          "libx1.2.Colour=1", "none.Installed-Size=1", "tool-doc.Installed-Size=1"}) {
        options.set = {wrong};
        EXPECT_NE(run().find("exit 1"), std::string::npos) << wrong;
    }
}

TEST_F(Packages, SizesAddUpToTheLargestNumberAtMost) {
    const std::string most = "9223372036854775807";
    options.files = {folder.file("large", "Package: a\nVersion: 1\nInstalled-Size: " + most +
                                              "\n\nPackage: b\nVersion: 1\nInstalled-Size: " + most +
                                              "\n\nPackage: c\nVersion: 1\nInstalled-size: -5\n")};
    const std::string said = run();
    EXPECT_NE(said.find("3 " + most), std::string::npos) << said;
    EXPECT_NE(said.find("Installed-size is left out: \"-5\""), std::string::npos) << said;
}

TEST_F(Packages, DamageIsToldByLineAndTheRestIsShown) {
    options.files = {folder.file("damaged", "Package: a\nVersion: 1\nInstalled-Size: 3\n\n"
                                            "Package: b\nVersion: \x01\n\n"
                                            "Package: c\n\n"
                                            "Package: d\nVersion: 1\nInstalled-Size: many\n\n"
                                            "Package: a\nVersion: 1\n\n"
                                            "Package: e\nVersion: 1\nInstalled-Si")};
    const std::string said = run();
    EXPECT_NE(said.find("all                                 2            3"), std::string::npos) << said;
    for (const char* told : {"damaged:6: byte 1 at column 10", "damaged:8: the stanza has no field Version",
                             "damaged:10: d:=1: Installed-Size is left out: \"many\"",
                             "damaged:14: a:=1 is there twice", "damaged:19: the file ends within the line", "exit 1"})
        EXPECT_NE(said.find(told), std::string::npos) << told << " in:\n" << said;
    // Lists overlap: what an earlier file has told of doesn't count again.
    options.files = {folder.file("one", "Package: a\nVersion: 1\n"), folder.file("two", "Package: a\nVersion: 1\n"),
                     folder.path("missing")};
    const std::string both = run();
    EXPECT_NE(both.find("all                                 1"), std::string::npos) << both;
    EXPECT_NE(both.find("missing: No such file"), std::string::npos) << both;
}
