#include "object/ZInlineMethod.h"
#include "object/ZMethodDispatch.h"
#include "object/ZMethodRef.h"
#include "object/methodLookup.h"
#include "object/ztype.h"
#include "tests/object/methodShapes.h"
#include "value/ZTypedPtr.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

class Lookups : public MethodTest {
protected:
    toolkit::EpochGuard guard;
    ZMetaType* type = shape();

    static std::string text(const ZSelector& selector) { return selector.isEmpty() ? "" : selector.string(); }
    static std::string named(const ZMethod* method) { return method ? text(method->getSelector()) : "none"; }
    static void* answer(const void*, ZMethod*) { return reinterpret_cast<void*>(41); }
};

} // namespace

TEST_F(Lookups, BySignatureThroughBases) {
    const struct {
        const char *selector, *qualifier, *found;
        size_t offset;
    } rows[] = {
        {"int plain()", "", "int plain()", 0},
        {"int plain()", "const", "int plain()", 0},
        {"int plain()", "virtual", "none", 0},
        {"bool setPlain(int)", "const", "none", 0},
        {"plain", "", "int plain()", 0},
        {"add", "", "int add(int, int)", 0},
        {"int first()", "", "int first()", 0},
        {"int second()", "const", "int second()", sizeof(CallFirst)},
        {"secondPlus", "", "int secondPlus(int)", sizeof(CallFirst)},
        {"int shadowed()", "", "int shadowed()", 0},
        {"int count(int, ...)", "", "none", 0},
        {"int count(int, ZArrayT<ZVariant>&)", "", "int count(int, ZArrayT<ZVariant>&)", 0},
        {"int plain(int)", "", "none", 0},
        {"real plain()", "", "none", 0},
        {"", "", "none", 0},
    };
    for (int again = 0; again < 2; ++again) // out of the tables, then out of the cache
        for (const auto& row : rows) {
            CallShape shape;
            ZTypedPtr typed(type, &shape);
            ZMethod* found = type->methodType(&typed, row.selector, row.qualifier);
            EXPECT_EQ(named(found), row.found) << row.selector;
            int offset = 0;
            type->methodType(&offset, row.selector, row.qualifier);
            EXPECT_EQ(size_t(offset), row.offset) << row.selector;
            if (!found) continue;
            EXPECT_EQ(static_cast<char*>(typed.instance) - reinterpret_cast<char*>(&shape), offset);
        }
    EXPECT_EQ(type->methodType("int shadowed()", {})->getOwner(), type);
}

TEST_F(Lookups, ConstructorsBearTheNameOfTheirType) {
    EXPECT_EQ(named(type->methodType("CallShape(int)", {})), "CallShape(int)");
    // The base has one with an int too, under its own name.
    EXPECT_EQ(named(ztype<CallSecond>()->methodType("CallSecond(int)", {})), "CallSecond(int)");
    EXPECT_EQ(named(type->methodType("CallSecond(int)", {})), "CallSecond(int)");
    ASSERT_TRUE(type->removeMethodType("CallShape(int)", {}));
    int offset = 0;
    EXPECT_EQ(named(type->methodType(&offset, "CallShape(int)", {})), "CallSecond(int)");
    EXPECT_EQ(size_t(offset), sizeof(CallFirst));
    type->resetMethodTypes();
    EXPECT_EQ(named(type->methodType("CallShape(int)", {})), "CallShape(int)");
}

TEST_F(Lookups, OverloadsByDistance) {
    ZMetaType *i = ztype<int>(), *r = ztype<real>(), *s = ztype<ZString>(), *b = ztype<byte>();
    const struct {
        const char* name;
        std::vector<ZMetaType*> types;
        bool implicit, exact;
        const char* found;
        int distance;
    } rows[] = {
        {"add", {i, i}, false, true, "int add(int, int)", 0},
        {"add", {r, r}, false, true, "real add(real, real)", 0},
        {"add", {s, s}, false, true, "ZString add(const ZString&, const ZString&)", 1},
        {"add", {b, i}, false, true, "int add(int, int)", 2},
        {"add", {i, r}, false, true, "int add(int, int)", 3}, // as far as the second, and first in the table
        {"add", {i}, false, true, "none", -1},
        {"add", {i}, false, false, "int add(int, int)", 64},
        {"add", {i, i, i}, false, false, "int add(int, int)", 64},
        {"add", {nullptr, i}, false, true, "int add(int, int)", 2},
        {"add", {s, i}, false, true, "none", -1},
        {"int add(int, int)", {s, i}, false, true, "int add(int, int)", orv::distanceNamed},
        {"secondPlus", {i}, false, true, "int secondPlus(int)", 0},
        {"takes", {i}, true, true, "int takes(const ZVariant&)", orv::distanceVariant},
        {"length", {s}, true, true, "int length(const char*)", orv::distanceImplicit},
        {"length", {i}, true, true, "none", -1},
        {"count", {i, s, s, s}, false, true, "int count(int, ZArrayT<ZVariant>&)", orv::distanceVariant},
        {"count", {i}, false, true, "int count(int, ZArrayT<ZVariant>&)", 0},
    };
    for (int again = 0; again < 2; ++again)
        for (const auto& row : rows) {
            ZArrayT<ZMetaType*> types;
            types.append(nullptr);
            for (ZMetaType* argument : row.types) types.append(argument);
            int distance = -7;
            ZMethod* found =
                type->multimethodType(&distance, nullptr, row.name, types, row.implicit, true, row.exact, {});
            EXPECT_EQ(named(found), row.found) << row.name;
            EXPECT_EQ(distance, row.distance) << row.name << " with " << row.types.size();
        }
}

TEST_F(Lookups, UserMethodsComeFirstAndOutliveAReset) {
    ZMethodPtr other = method("int plain()", "const");
    other->setFunc(&answer);
    ZMethod* declared = type->methodType("int plain()", {});
    ASSERT_TRUE(type->setUserMethod(other));
    EXPECT_EQ(type->methodType("int plain()", {}), other.get());
    EXPECT_EQ(type->baseMethodType(static_cast<int*>(nullptr), "int plain()", {}), declared);
    EXPECT_FALSE(type->setUserMethod(method("int plain()", "const").get(), false)) << "there is one";
    const uint count = type->methodTypeCount();
    type->resetType(false);
    EXPECT_TRUE(type->typesAreReset());
    EXPECT_EQ(type->methodType("int plain()", {}), other.get());
    EXPECT_EQ(type->methodTypeCount(), count);
    EXPECT_EQ(type->userMethodCount(), 1u);
    ASSERT_TRUE(type->removeUserMethod("int plain()", "const"));
    EXPECT_FALSE(type->removeUserMethod("int plain()", "const"));
    EXPECT_NE(type->methodType("int plain()", {}), other.get());
    // A base that changes is seen through what derives from it.
    EXPECT_EQ(type->methodType("int added()", {}), nullptr);
    ZMethodPtr added = method("int added()");
    ASSERT_TRUE(ztype<CallSecond>()->setMethodType(added));
    EXPECT_EQ(type->methodType("int added()", {}), added.get());
    ztype<CallSecond>()->resetMethodTypes();
    EXPECT_EQ(type->methodType("int added()", {}), nullptr);
}

TEST_F(Lookups, FixedMethodsAndLists) {
    ASSERT_TRUE(type->setFixedMethodCount(2));
    ASSERT_TRUE(type->setFixedMethod(0, "int plain()", "const"));
    ASSERT_TRUE(type->setFixedMethod(1, "int second()", "const"));
    EXPECT_FALSE(type->setFixedMethod(2, "int second()", {}));
    EXPECT_EQ(named(type->getFixedMethod(0)), "int plain()");
    EXPECT_EQ(named(type->getFixedMethod(1)), "int second()");
    EXPECT_EQ(type->getFixedMethod(2), nullptr);
    EXPECT_EQ(type->getFixedMethod(-1), nullptr);

    ZArrayT<ZMethod*> found;
    EXPECT_TRUE(type->getMethodTypes("add", found));
    EXPECT_EQ(found.count(), 3u);
    found.clear();
    EXPECT_TRUE(type->getMethodTypesWithOptions("inner", found));
    ASSERT_EQ(found.count(), 1u);
    EXPECT_EQ(named(found[0]), "int add(int, int)");
    EXPECT_EQ(named(ztype<CallToken>()->getCompareMethod()), "int compare(const CallToken&)");
    EXPECT_EQ(type->getHashMethod(), nullptr);
}

TEST_F(Lookups, FailuresAreExplained) {
    const ZArrayT<ZVariant> args = list(1, ZString("x"));
    char* told = orv::explainLookup(type, "secondPlus", "const", args.data(), 2).astr();
    ASSERT_NE(told, nullptr);
    const std::string explained = told;
    zfree(told);
    for (const char* part : {"\"secondPlus const\" of CallShape", "(int, ZString)",
                             "\"int secondPlus(int) const\" of CallSecond", "expected 1 arguments, actual 2"})
        EXPECT_NE(explained.find(part), std::string::npos) << part << " in\n" << explained;
}

TEST_F(Lookups, RegisteredReferences) {
    CallShape shape, other;
    ZMethodRef plain(&shape, type, "int plain()"), elsewhere(&other, type, "int plain()");
    ASSERT_TRUE(plain.isValid());
    EXPECT_EQ(ZMethodRef().registerMethod(), 0);
    EXPECT_EQ(plain.registerMethod(), 1);
    EXPECT_EQ(elsewhere.registerMethod(), 2);
    EXPECT_EQ(plain.registerMethod(), 1) << "once";
    EXPECT_EQ(elsewhere.registryIndex(), 2);
    EXPECT_TRUE(ZMethodRef::getRegistered(1) == plain);
    EXPECT_FALSE(ZMethodRef::getRegistered(3).isValid());
    EXPECT_TRUE(plain.registerMethod("named"));
    EXPECT_TRUE(ZMethodRef::getNamed("named") == plain);
    ZMethodRef::dropInstance(&shape);
    EXPECT_FALSE(ZMethodRef::getRegistered(1).isValid());
    EXPECT_FALSE(ZMethodRef::getNamed("named").isValid());
    EXPECT_FALSE(plain.unregister());
    EXPECT_TRUE(elsewhere.unregister());
    EXPECT_EQ(elsewhere.registryIndex(), 0);
    std::vector<CallShape> many(100);
    for (CallShape& each : many) EXPECT_GT(ZMethodRef(&each, type, "int plain()").registerMethod(), 0);
    for (CallShape& each : many) EXPECT_GT(ZMethodRef(&each, type, "int plain()").registryIndex(), 0);
    for (CallShape& each : many) ZMethodRef::dropInstance(&each);
    for (CallShape& each : many) EXPECT_EQ(ZMethodRef(&each, type, "int plain()").registryIndex(), 0);
}

TEST_F(Lookups, DispatchEntriesRemember) {
    ZMethodDispatch byName("signal", "plain");
    EXPECT_EQ(named(byName.getMethod(type).getMethod()), "int plain()");
    ZMethodPtr other = method("int plain()", "const");
    ASSERT_TRUE(type->setUserMethod(other));
    EXPECT_EQ(byName.getMethod(type).getMethod(), other.get());
    ASSERT_TRUE(type->removeUserMethod("int plain()", "const"));
    EXPECT_NE(byName.getMethod(type).getMethod(), other.get());
    ZArrayT<ZMetaType*> types;
    for (ZMetaType* each : {static_cast<ZMetaType*>(nullptr), ztype<real>(), ztype<real>()}) types.append(each);
    ZMethodDispatch add("signal", "add");
    EXPECT_EQ(named(add.getMethod(type, types).getMethod()), "real add(real, real)");
    types.remove(2);
    *types.entry(1) = ztype<int>();
    types.append(ztype<int>());
    EXPECT_EQ(named(add.getMethod(type, types).getMethod()), "int add(int, int)");
    CallShape shape;
    ZMethodDispatch bound("signal", ZMethodRef(&shape, type, "int plain()"));
    EXPECT_EQ(bound.getMethod(ztype<CallSecond>()).getInstance(), &shape);
    EXPECT_NE(bound.compare(byName), 0);
    EXPECT_EQ(bound.compare(ZMethodDispatch(bound)), 0);
}

/// Lookups and calls on eight threads while tables are thrown away and methods come and go.
TEST_F(Lookups, ThreadsWhileTablesAreReset) {
    std::atomic<bool> stop{false};
    std::atomic<long> calls{0}, wrong{0};
    std::vector<std::thread> threads;
    const ZMethodDispatch shared("signal", "first");
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            CallShape shape(t);
            const ZArrayT<ZVariant> numbers = list(t, 1), none = list();
            ZInlineMethod plain;
            plain.init(type, "int plain()");
            while (!stop) {
                wrong += orv::invokeByType(&shape, type, "add", numbers.data(), 2).toInt() != t + 1;
                wrong += orv::invokeByType(&shape, type, "second", nullptr, 0).toInt() != 2;
                const int inlined = int(reinterpret_cast<intptr_t>(plain.call(&shape)));
                wrong += inlined != t && inlined != 41;
                wrong += !ZMethodRef(&shape, type, "int first()").isValid();
                wrong += shared.getMethod(type).getMethod() == nullptr;
                wrong += orv::invokeByType(&shape, type, "marks", &numbers.data()[1], 1).toInt() != 1;
                ++calls;
            }
        });
    for (int i = 0; i < 200 || calls < 2000; ++i) {
        type->resetType(i % 2);
        ztype<CallSecond>()->resetMethodTypes();
        ZMethodPtr other = method("int plain()", "const");
        other->setFunc(&answer);
        type->setUserMethod(other);
        type->removeUserMethod("int plain()", "const");
    }
    stop = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}
