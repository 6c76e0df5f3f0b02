#include "tools/orv/where.h"

#include "core/construct.h"
#include "object/ZObject.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"

namespace {

using orv::tool::TextFault;
using orv::tool::Where;

struct WhereTest : CoreTest {
    void SetUp() override {
        CoreTest::SetUp();
        object = zmake<ZObject>();
        object->setDynamicProperty("size", ZVariant(large(200)), true);
        object->setDynamicProperty("Multi-Arch", ZString("same"), true);
        object->setDynamicProperty("depends", ZString("libc6 (>= 2.36), zlib"), true);
    }
    void TearDown() override {
        object->release();
        CoreTest::TearDown();
    }
    static ZMetaType* typeOf(const std::string& name) {
        if (name == "size" || name == "small") return ztype<large>();
        if (name == "narrow") return ztype<byte>();
        return name == "Multi-Arch" || name == "depends" || name == "missing" ? ztype<ZString>() : nullptr;
    }
    /// "yes", "no", or the column of the fault and its words.
    std::string check(const std::string& text) {
        TextFault fault;
        auto read = Where::read(text, typeOf, fault);
        if (!read) return std::to_string(fault.column) + " " + fault.what;
        return read->matches(*object) ? "yes" : "no";
    }

    ZObject* object = nullptr;
};

} // namespace

TEST_F(WhereTest, WhatAConditionSays) {
    struct Row {
        const char *text, *answer;
    } rows[] = {
        {"size > 100", "yes"},
        {"size>100", "yes"},
        {"size = 200", "yes"},
        {"size == 200 and size != 200", "no"},
        {"size < 100 or size > 100", "yes"},
        {"size greater 100", "yes"},
        {"size > -5", "yes"},
        {"not size > 100", "no"},
        {"not not size > 100", "yes"},
        // "and" binds closer than "or", "not" closer than both.
        {"size = 200 or size = 1 and size = 2", "yes"},
        {"(size = 200 or size = 1) and size = 2", "no"},
        {"not size = 1 and size = 200", "yes"},
        {"not (size = 1 or size = 200)", "no"},
        {"Multi-Arch = same", "yes"},
        {"Multi-Arch = 'same'", "yes"},
        {"depends contains \"libc6 (>\"", "yes"},
        {"depends misses zlib", "no"},
        {"Multi-Arch = \"a\\\"b\\\\\"", "no"},
        {"size in (1, 200,3)", "yes"},
        {"size in 7", "no"},
        // What isn't there matches nothing.
        {"missing != x", "no"},
        {"missing misses x", "no"},
        {"not missing = x", "yes"},
        {"small < 5", "no"},
    };
    for (const Row& row : rows) EXPECT_EQ(check(row.text), row.answer) << row.text;
}

TEST_F(WhereTest, WhereAConditionIsWrong) {
    struct Row {
        const char *text, *fault;
    } rows[] = {
        {"", "1 expected a name"},
        {"   ", "4 expected a name"},
        {"size", "5 expected an operation"},
        {"size ~ 5", "6 expected an operation"},
        {"size =! 5", "6 expected an operation"},
        {"size =", "7 expected a value, found the end"},
        {"size = 5 6", "10 expected \"and\", \"or\" or the end, found \"6\""},
        {"size = 5x", "8 \"5x\" is no large"},
        {"size = 99999999999999999999", "8 "},
        {"narrow = 256", "10 "},
        {"narrow = -1", "10 "},
        {"colour = red", "1 there is no field \"colour\""},
        {"Multi-Arch = gr\xC3\xBCn and colour = 1", "23 there is no field"},
        {"size = 1 and", "13 expected a name"},
        {"and size = 1", "1 expected a name"},
        {"(size = 1", "10 expected \")\", found the end"},
        {"size = 1)", "9 expected \"and\""},
        {"depends = \"open", "11 the text has no closing quote"},
        {"size in (1, x)", "13 \"x\" is no large"},
        {"size in (1 2)", "12 expected \",\""},
    };
    for (const Row& row : rows) {
        const std::string said = check(row.text);
        EXPECT_EQ(said.substr(0, std::strlen(row.fault)), row.fault) << row.text << ": " << said;
    }
    auto nested = [](int depth) {
        return std::string(size_t(depth), '(') + "size = 200" + std::string(size_t(depth), ')');
    };
    EXPECT_EQ(check(nested(Where::deepest - 1)), "yes");
    EXPECT_NE(check(nested(10000)).find("nested too deep"), std::string::npos);
    std::string longest = "size = 200", nots;
    for (int i = 0; i < 2000; ++i) longest += " and size = 200", nots += "not ";
    EXPECT_EQ(check(longest), "yes");
    EXPECT_NE(check(nots + "size = 1").find("nested too deep"), std::string::npos);
}
