#include "tests/support/TempFolder.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

struct Result {
    int exit;
    std::string out, error;
};

Result orv(const TempFolder& folder, const std::string& arguments) {
    std::string out = folder.path("out"), error = folder.path("error");
    int status = std::system((std::string(ORV_PROGRAM) + " " + arguments + " >" + out + " 2>" + error).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("out"), folder.read("error")};
}

} // namespace

TEST(Command, ExitStatusAndWhereThingsGo) {
    TempFolder folder;
    folder.file("texts/a.txt", "one two two");
    struct Row {
        std::string arguments;
        int exit;
        const char *out, *error; // text that has to occur
    } rows[] = {
        {"--help", 0, "words", ""},
        {"words --help", 0, "--threads", ""},
        {"--version", 0, "v1.3.004", ""},
        {"", 2, "", "subcommand"},
        {"word", 2, "", "unknown command \"word\""},
        {"packages --help", 0, "--where", ""},
        {"packages --where 'Package ='", 2, "", "--where, column 10"},
        {"packages --show bash --where 'Package = x'", 2, "", "excludes"},
        {"packages --section none-such", 1, "", "no section"},
        {"packages none-such", 1, "all", "none-such: No such file"},
        {"words", 2, "", "folder"},
        {"words --top 0 " + folder.path("texts"), 2, "", "--top"},
        {"words --sort size " + folder.path("texts"), 2, "", "--sort"},
        {"types --help", 0, "--methods", ""},
        {"types", 0, "orv.core.object : ZMetaType\n", ""},
        {"types ZObject --methods --properties", 0, "ZObject* findObject(const ZSelector&, bool) const\n", ""},
        {"types ZObject --methods --properties", 0, "ZSelector selector  \"store value\"\n", ""},
        {"types ZMethod --methods", 0, "ZMethod* create()  \"static creator\"\n", ""},
        {"types ZObject", 0, "ZObject : ZType\n", ""},
        {"types ZObject --methods", 0, "  fixed methods\n      0 ", ""},
        {"types ZObject --methods", 0, "\n     15 void discarded()\n", ""},
        {"types --methods --unsafe", 0, "void setPackage(ZPackage*)  \"unsafe\"\n", ""},
        {"types ZRange --methods --unsafe", 0, "\n  0 methods\n", ""},
        {"types --unsafe", 2, "", "--methods"},
        {"types ZSring", 1, "", "no type \"ZSring\"; did you mean ZString"},
        {"types ZRange --json", 0, "{\"name\": \"ZRange\", \"package\": \"orv.core.base\"", ""},
        {"words " + folder.path("texts"), 0, "         2  two\n         1  one\n", "1 texts"},
        {"words " + folder.path("none") + " " + folder.path("texts"), 1, "         2  two\n", "none: can't be read"},
    };
    for (auto& row : rows) {
        Result result = orv(folder, row.arguments);
        EXPECT_EQ(result.exit, row.exit) << row.arguments;
        EXPECT_NE(result.out.find(row.out), std::string::npos) << row.arguments << "\n" << result.out;
        EXPECT_NE(result.error.find(row.error), std::string::npos) << row.arguments << "\n" << result.error;
        EXPECT_TRUE(row.exit != 2 || result.out.empty()) << result.out;
    }
}

TEST(Command, TypesAsJsonAreJson) {
    TempFolder folder;
    Result result = orv(folder, "types --methods --properties --json");
    EXPECT_EQ(result.exit, 0) << result.error;
    folder.file("types.json", result.out);
    std::string check =
        "python3 -c 'import json, sys; rows = json.load(open(sys.argv[1])); "
        "sys.exit(not (any(m[\"signature\"] == \"uint hashKey()\" for r in rows for m in r[\"methods\"]) and "
        "any(\"void discarded()\" in r[\"fixed\"] for r in rows) and all(type(r[\"groups\"]) is dict for r in "
        "rows)))' ";
    EXPECT_EQ(std::system((check + folder.path("types.json")).c_str()), 0);
}

TEST(Command, AFullDiskIsAFailure) {
    TempFolder folder;
    folder.file("texts/a.txt", "one");
    for (const std::string& arguments :
         {"words " + folder.path("texts"), std::string("packages"), std::string("types ZObject")}) {
        const int status =
            std::system((std::string(ORV_PROGRAM) + " " + arguments + " >/dev/full 2>/dev/null").c_str());
        EXPECT_EQ(WEXITSTATUS(status), 1) << arguments;
    }
}
