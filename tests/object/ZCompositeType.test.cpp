#include "object/ZCompositeType.h"

#include "core/construct.h"
#include "object/ZProperty.h"
#include "object/ztype.h"
#include "tests/support/SelectorScope.h"
#include "tests/support/TypeTest.h"
#include "tests/support/invoke.h"
#include "text/ZBlendPos.h"
#include "text/ZString.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

#include <cstring>
#include <memory>
#include <vector>

namespace {

using CompositeTest = TypeTest;

struct ReleaseType {
    void operator()(ZMetaType* type) const { type->release(); }
};
template <class T> using Holder = std::unique_ptr<T, ReleaseType>;

struct Member {
    const char* name;
    ZMetaType* type;
};
Holder<ZCompositeType> composite(const char* name, const std::vector<Member>& members) {
    Holder<ZCompositeType> made(zmake<ZCompositeType>(nullptr, ZSelector(name)));
    for (const Member& member : members) EXPECT_TRUE(made && made->setMember(ZSelector(member.name), member.type));
    return made;
}
/// A bool in front, so that nothing behind it is aligned.
Holder<ZCompositeType> person() {
    return composite("Person", {{"known", ztype<bool>()},
                                {"name", ztype<ZString>()},
                                {"age", ztype<int>()},
                                {"kind", ztype<ZSelector>()},
                                {"height", ztype<double>()}});
}
std::string print(const ZCompositeType& type, const void* value) {
    ZString written;
    EXPECT_TRUE(type.toString(value, written));
    return text(ZSelector(written));
}

/// A type whose values count, and whose construction fails on demand.
struct Counted {
    static inline int alive = 0, failAt = -1;
    static inline std::vector<int> ended;
    int number;

    static Holder<ZMetaType> type() {
        Holder<ZMetaType> made(zmake<ZMetaType>(nullptr, ZSelector("TestCounted"), ZMetaType::Structure));
        made->setSize(sizeof(Counted));
        made->setAlignment(alignof(Counted));
        made->setCallback(ZMetaType::ConstructInstance,
                          reinterpret_cast<ZTypeCallback>(+[](void* place, ZMetaType*) { return make(place); }));
        made->setCallback(ZMetaType::CopyInstance1,
                          reinterpret_cast<ZTypeCallback>(+[](void* place, const void*) { return make(place); }));
        made->setCallback(ZMetaType::DestructInstance, reinterpret_cast<ZTypeCallback>(+[](void* value) {
                              EXPECT_EQ(uintptr_t(value) % alignof(Counted), 0u);
                              ended.push_back(static_cast<Counted*>(value)->number);
                              --alive;
                              return true;
                          }));
        return made;
    }
    static bool make(void* place) {
        EXPECT_EQ(uintptr_t(place) % alignof(Counted), 0u);
        if (alive == failAt) return false;
        static_cast<Counted*>(place)->number = alive++;
        return true;
    }
};

TEST_F(CompositeTest, MembersLieWithoutPadding) {
    auto type = composite("Pair", {{"i", ztype<int>()}, {"d", ztype<double>()}});
    EXPECT_EQ(type->getSize(), 12u);
    EXPECT_EQ(type->kind(), ZMetaType::Composite);
    byte place[12] = {};
    EXPECT_EQ(type->field(place, "i"), place);
    EXPECT_EQ(type->field(place, "d"), place + 4);
    EXPECT_EQ(type->field(place, "gone"), nullptr);
    EXPECT_TRUE(type->setMember("b", ztype<byte>()));
    EXPECT_TRUE(type->setMember("i", ztype<large>())) << "keeps its place";
    EXPECT_EQ(type->getSize(), 17u);
    EXPECT_EQ(type->countMember(), 3);
    EXPECT_EQ(type->memberIndex("d"), 1);
    EXPECT_EQ(text(type->memberKey(2)), "b");
    EXPECT_EQ(type->member("i"), ztype<large>());
    EXPECT_EQ(type->memberByIndex(3), nullptr);
    EXPECT_EQ(text(type->findMemberKey(ztype<double>())), "d");
    EXPECT_TRUE(type->hasMember(ztype<byte>()));
    EXPECT_FALSE(type->hasMember(ztype<int>()));

    auto other = composite("Other", {});
    EXPECT_TRUE(other->setMember(type->member()));
    EXPECT_EQ(other->getSize(), 17u);
    EXPECT_TRUE(other->removeMember("d") && other->removeMemberByIndex(0));
    EXPECT_EQ(other->getSize(), 1u);
    EXPECT_FALSE(other->removeMember("d") || other->removeMemberByIndex(-1));
    EXPECT_TRUE(other->clearMember());
    EXPECT_EQ(other->getSize(), 0u);
}

TEST_F(CompositeTest, MembersAreAPropertyOfTheType) {
    auto type = composite("Named", {{"a", ztype<int>()}});
    ASSERT_EQ(type->type(), ztype<ZCompositeType>());
    EXPECT_EQ(type->getPropertyCount("member"), 1);
    EXPECT_EQ(type->getPropertyItem("member", ZSelector("a")).toObject(), ztype<int>());
    ZVSelectMap members(ztype<ZMetaType*>());
    for (const char* name : {"x", "y"}) EXPECT_TRUE(members.set(name, ZVariant(static_cast<ZType*>(ztype<double>()))));
    EXPECT_TRUE(type->setProperty("member", ZVariant(ztype<ZVSelectMap>(), &members)));
    EXPECT_EQ(type->getSize(), 16u);
    const ZVariant held(static_cast<const ZType*>(type.get()));
    EXPECT_EQ(invoke(held, "memberIndex", ZSelector("y")).toInt(), 1);
    EXPECT_TRUE(invoke(held, "setMember", ZSelector("z"), static_cast<const ZType*>(ztype<byte>())).toBool());
    EXPECT_EQ(type->getSize(), 17u);
}

TEST_F(CompositeTest, WhatCanNotBeAMemberIsRefused) {
    auto type = composite("Outer", {{"i", ztype<int>()}});
    auto inner = composite("Inner", {{"a", ztype<byte>()}});
    EXPECT_FALSE(type->setMember("v", nullptr));
    EXPECT_FALSE(type->setMember("v", ztype<void>()));
    EXPECT_FALSE(type->setMember("self", type.get()));
    EXPECT_FALSE(type->setMember(ZSelector(), ztype<int>()));
    EXPECT_FALSE(type->setMember("o", ztype<ZObject>())) << "its pointer type would do";
    EXPECT_TRUE(type->setMember("p", ztype<ZObject>()->getPtrType()));
    EXPECT_TRUE(type->setMember("in", inner.get()));
    EXPECT_FALSE(inner->setMember("out", type.get())) << "would hold itself";
    EXPECT_FALSE(inner->setMember("more", ztype<int>())) << "another one counts on its size";
    EXPECT_EQ(type->getSize(), 13u);

    void* made = type->createInstance();
    ASSERT_TRUE(made);
    EXPECT_FALSE(type->removeMember("i")) << "there is an instance";
    type->releaseInstance(made);
    EXPECT_TRUE(type->removeMember("in"));
    EXPECT_TRUE(inner->setMember("more", ztype<int>()));

    Holder<ZCompositeType> nested = composite("Level", {{"i", ztype<byte>()}});
    std::vector<Holder<ZCompositeType>> levels;
    int depth = 1;
    for (; depth < 200; ++depth) {
        Holder<ZCompositeType> outer(zmake<ZCompositeType>(nullptr, ZSelector("Level")));
        if (!outer->setMember("in", nested.get())) break;
        levels.push_back(std::move(nested));
        nested = std::move(outer);
    }
    EXPECT_EQ(depth, ZCompositeType::deepest);
    while (!levels.empty()) {
        nested = std::move(levels.back());
        levels.pop_back();
    }
}

TEST_F(CompositeTest, ValuesCopyCompareAndReadAsTextAtAnyAddress) {
    auto type = person();
    ASSERT_EQ(type->getSize(), 1 + sizeof(ZString) + 4 + 4 + 8);
    struct {
        const char *text, *same; ///< as it is written; null: refused
    } rows[] = {
        {"yes Ann 41 tall 1.75", "yes Ann 41 tall 1.75"},
        {R"(no "two words" -1 "a \"b\" \\c" 0)", R"(no "two words" -1 "a \"b\" \\c" 0)"},
        {R"(  no Ann   3  ""  2.5 )", R"(no Ann 3 "" 2.5)"},
        {"yes Ann 41 tall", nullptr},
        {"yes Ann 41 tall 1.75 more", nullptr},
        {"yes Ann x tall 1.75", nullptr},
        {"yes \"Ann 41 tall 1.75", nullptr},
        {"", nullptr},
    };
    byte places[2][64] = {};
    for (uint shift : {0u, 3u}) {
        void *value = places[0] + shift, *copy = places[1] + 1;
        ASSERT_TRUE(type->constructInstance(value));
        EXPECT_TRUE(type->isNullData(value));
        std::string before = print(*type, value);
        for (const auto& row : rows) {
            EXPECT_EQ(type->fromString(value, ZString(row.text)), row.same != nullptr) << row.text;
            if (row.same) before = row.same;
            EXPECT_EQ(print(*type, value), before) << row.text;
        }
        ASSERT_TRUE(type->copyInstance(copy, value));
        EXPECT_EQ(type->compareInstance(value, copy), 0);
        EXPECT_TRUE(type->fromString(copy, ZString("no Ann 4 \"\" 2.5")));
        EXPECT_EQ(type->compareInstance(value, copy), -1) << "3 years and 4";
        EXPECT_EQ(type->compareInstance(copy, value), 1);
        EXPECT_EQ(type->compareInstance(value, nullptr), -1);
        EXPECT_EQ(type->compareInstance(nullptr, nullptr), 0);
        EXPECT_TRUE(type->detachInstance(copy));
        EXPECT_TRUE(type->blendInstance(value, value, copy, ZBlendPos(0.75)));
        EXPECT_EQ(print(*type, value), "no Ann 4 \"\" 2.5");
        EXPECT_TRUE(type->setIdentityInstance(value));
        EXPECT_TRUE(type->isNullData(value));
        EXPECT_TRUE(type->destructInstance(value) && type->destructInstance(copy));
    }
}

TEST_F(CompositeTest, MembersArePropertiesOfAValue) {
    auto type = person();
    byte place[64] = {};
    void* value = place + 1;
    ASSERT_TRUE(type->constructInstance(value));
    ZTypedPtr at(type.get(), value);
    EXPECT_TRUE(type->isSynthetic());
    EXPECT_TRUE(at.setProperty("name", ZVariant("Ann")));
    EXPECT_TRUE(at.setProperty("age", ZVariant("41")));
    EXPECT_TRUE(at.setProperty("height", ZVariant(1.5)));
    EXPECT_FALSE(at.setProperty("age", ZVariant("old")));
    EXPECT_FALSE(at.setProperty("gone", ZVariant(1)));
    EXPECT_EQ(print(*type, value), "no Ann 41 \"\" 1.5");
    EXPECT_EQ(at.getProperty("age").toInt(), 41);
    EXPECT_EQ(at.getPropertyType("height"), ztype<double>());
    EXPECT_TRUE(at.getProperty("gone").isNull());
    ZProperty found;
    EXPECT_TRUE(type->syntheticProperty(at, "age", found, true));
    EXPECT_EQ(found.value().toInt(), 41);
    ZArrayT<ZSelector> names;
    EXPECT_TRUE(type->syntheticPropertyNames(at, names));
    EXPECT_EQ(names.count(), 5u);
    EXPECT_TRUE(type->clearSyntheticProperty(at, "name"));
    EXPECT_EQ(print(*type, value), "no \"\" 41 \"\" 1.5");
    ZMetaType* constant = type->getQualified("const Person");
    ASSERT_TRUE(constant);
    EXPECT_EQ(constant->compositeType(), type.get());
    EXPECT_EQ(ZTypedPtr(constant, value).getProperty("age").toInt(), 41);
    EXPECT_TRUE(type->destructInstance(value));
}

TEST_F(CompositeTest, AFailingMemberEndsThoseBeforeItBackwards) {
    auto counted = Counted::type();
    auto type = composite("Row", {{"flag", ztype<bool>()},
                                  {"a", counted.get()},
                                  {"name", ztype<ZString>()},
                                  {"b", counted.get()},
                                  {"c", counted.get()}});
    byte place[64], source[64];
    void *value = place + 1, *from = source + 2;
    ASSERT_TRUE(type->constructInstance(from));
    for (int failAt = 3; failAt <= 5; ++failAt)
        for (bool copies : {false, true}) {
            Counted::failAt = failAt;
            Counted::ended.clear();
            EXPECT_FALSE(copies ? type->copyInstance(value, from) : type->constructInstance(value));
            std::vector<int> backwards;
            for (int i = failAt; i-- > 3;) backwards.push_back(i);
            EXPECT_EQ(Counted::ended, backwards);
            EXPECT_EQ(Counted::alive, 3);
        }
    Counted::failAt = -1;
    EXPECT_TRUE(type->destructInstance(from));
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_TRUE(type->clearMember()) << "failed values don't count as instances";
}

TEST_F(CompositeTest, EachFailingAllocationLeavesTheOldState) {
    person();
    auto type = person();
    const ZString long1("yes \"a text that is too long for any small place\" 41 tall 1.75");
    byte place[64] = {};
    void* value = place + 1;
    ASSERT_TRUE(type->constructInstance(value) && type->fromString(value, long1));
    const std::string before = print(*type, value);
    failEachAllocation([&](AllocProbe&) {
        void* made = type->copyInstance(value);
        if (!made) return;
        EXPECT_EQ(type->compareInstance(made, value), 0);
        type->releaseInstance(made);
    });
    for (long n = 1, failed = 1; failed; ++n) {
        AllocProbe probe;
        probe.failAt(n);
        const bool done = type->fromString(value, long1);
        failed = probe.failed();
        probe.failAt(0);
        EXPECT_TRUE(done || failed);
        EXPECT_EQ(print(*type, value), before);
    }
    EXPECT_TRUE(type->destructInstance(value));
    const ZSelector extra("extra");
    for (long n = 1, failed = 1; failed; ++n) {
        AllocProbe probe;
        probe.failAt(n);
        const bool done = type->setMember(extra, ztype<ZString>());
        failed = probe.failed();
        probe.failAt(0);
        EXPECT_NE(done, failed != 0);
        EXPECT_EQ(type->countMember(), done ? 6 : 5);
        EXPECT_EQ(type->getSize(), 17 + sizeof(ZString) * (done ? 2 : 1));
        if (done) { EXPECT_TRUE(type->removeMember(extra)); }
        toolkit::epochDrain();
    }
}

} // namespace
