#include "object/ZMethodCall.h"

#include "core/ZInternal.h"
#include "object/ZMethodRef.h"
#include "object/ZObject.h"
#include "object/methodLookup.h"
#include "object/ztype.h"
#include "tests/object/methodShapes.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/CaptureDebug.h"
#include "value/ZTypedPtr.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace {

std::string text(const ZString& string) {
    char* bytes = string.astr();
    std::string copy = bytes ? bytes : "";
    zfree(bytes);
    return copy;
}
/// What a variant holds, with its type in front; "null" for none.
std::string shown(const ZVariant& value) {
    if (!value.type()) return "null";
    ZSelector name = value.mainType()->getName();
    if (value.mainType() == ztype<CallToken>())
        return "token " + std::to_string(static_cast<const CallToken*>(value.getPtr())->number);
    return std::string(name.string()) + " " + text(value.toString());
}

constexpr char mixedSignature[] = "ZString mixed(bool, byte, short, large, float, const ZString&, const ZSelector&)";

std::vector<std::string> quoted(std::vector<std::string> lines) {
    for (std::string& line : lines) std::replace(line.begin(), line.end(), '`', '"');
    return lines;
}

class MethodCalls : public MethodTest {
protected:
    CallShape shape;

    ZVariant call(const char* name, const ZArrayT<ZVariant>& args) {
        return orv::invokeByType(&shape, MethodTest::shape(), ZSelector(name), args.data(), int(args.count()));
    }
    /// By signature, so that no overload is chosen.
    ZVariant exact(const char* signature, const ZArrayT<ZVariant>& args) {
        return ZMethodRef(&shape, MethodTest::shape(), ZSelector(signature)).invoke(args);
    }
    static ZVariant number(ZMetaType* type, int number) { return ZVariant(type, &number); }
    static ZVariant token(int number) {
        CallToken value(number);
        return ZVariant(ztype<CallToken>(), &value);
    }
};

} // namespace

TEST_F(MethodCalls, ArgumentsAreConverted) {
    CallSecond two(5);
    const struct {
        const char* name;
        ZArrayT<ZVariant> args;
        const char* result;
    } rows[] = {
        {"plain", list(), "int 7"},
        {"add", list(3, 4), "int 7"},
        {"add", list(3.5, 4.5), "real 8"},
        {"add", list(3, 4.5), "int 7"}, // both as far: the first in the table
        {"add", list(ZString("a"), ZString("b")), "ZString ab"},
        {"ZString add(const ZString&, const ZString&)", list(ZSelector("a"), 5), "ZString a5"},
        {"int add(int, int)", list(ZString("3"), byte(4)), "int 7"},
        {"int add(int, int) const", list(1, 2), "int 3"},
        {"mixed", list(true, 2, 3, 4, 2.5, ZString("f"), ZSelector("g")), "ZString 1 2 3 4 2.5 f g"},
        {mixedSignature, list(ZString("yes"), ZString("2"), 3.9, 4, ZString("2.5"), 7, 8), "ZString 1 2 3 4 2.5 7 8"},
        {"half", list(5.0), "float 2.5"},
        {"half", list(5), "float 2.5"},
        {"length", list(ZString("four")), "int 4"},
        {"length", list(ZSelector("three")), "int 5"},
        {"takes", list(12), "int 12"},
        {"takes", list(ZString("12")), "int 12"},
        {"changes", list(ZString("text")), "bool yes"},
        {"getLabel", list(), "ZString label"},
        {"rawLabel", list(), "ZString raw"},
        {"twice", list(21), "int 42"},
        {"token", list(9), "token 9"},
        {"tokenNumber", list(token(8)), "int 8"},
        {"tokenPointer", list(token(8)), "int 8"},
        {"secondOf", list(ZVariant(ztype<CallSecond>(), &two)), "int 5"},
        {"bool movesPointer(const CallToken*&)", list(token(8)), "bool yes"},
        {"bool movesPointer(const CallToken*&)", list(), "bool no"},
        {"bool movesPointer(const CallToken*&)", list(1), "null"},
        {"nothing", list(), "null"},
        // Surplus arguments go to an open one, and are left out otherwise; missing ones are constructed.
        {"count", list(1), "int 100"},
        {"count", list(1, 2, ZString("3"), token(4)), "int 103"},
        {"all", list(), "int 0"},
        {"all", list(1, 2), "int 2"},
        {"gather", list(1, 2, 3), "int -3"},
        {"int add(int, int)", list(3), "int 3"},
        {"int add(int, int)", list(3, 4, 5), "int 7"},
        {"tokenNumber", list(), "int 0"},
        {"tokenPointer", list(), "int 0"},
        {"takes", list(), "int 0"},
        {"getLabel", list(1, 2), "ZString label"},
        // The null value is 0 as a number, no instance as a pointer, and nothing as anything else.
        {"int add(int, int)", list(ZVariant(), 4), "int 4"},
        {"tokenPointer", list(ZVariant()), "int -1"},
        {"takes", list(ZVariant()), "int 0"},
        {"tokenNumber", list(ZVariant()), "null"},
        // What can't be converted refuses the call.
        {"int add(int, int)", list(token(1), 2), "null"},
        {"int add(int, int)", list(ZString("x"), 2), "null"},
        {"tokenNumber", list(ZVariant(ztype<CallSecond>(), &two)), "null"},
        {"tokenPointer", list(ZString("token")), "null"},
        {"length", list(token(1)), "null"},
        {"secondOf", list(token(1)), "null"},
        {"nosuch", list(), "null"},
        // Of enums only what a variable of them may have: an item, joined items of flags, and 0 where none was given.
        {"stepNumber", list(5), "int 5"},
        {"int stepNumber(CallShape::Step)", list(ZString("First")), "int 3"},
        {"int stepNumber(CallShape::Step)", list(ZSelector("Second")), "int 5"},
        {"stepNumber", list(), "int 0"},
        {"stepNumber", list(4), "null"},
        {"stepNumber", list(large(1) << 32 | 5), "null"},
        {"int stepNumber(CallShape::Step)", list(ZString("4")), "null"},
        {"stepNumber", list(number(type("CallShape::Step"), 5)), "int 5"},
        {"stepNumber", list(number(type("CallShape::Step"), 4)), "null"},
        {"setStep", list(number(type("CallShape::Step"), 4)), "null"},
        {"setStep", list(4), "null"},
        {"setStep", list(5), "bool yes"},
        {"marks", list(11), "int 11"},
        {"int marks(CallShape::Mark)", list(ZString("Red Blue")), "int 9"},
        {"marks", list(4), "null"},
        {"marks", list(-1), "null"},
        {"small", list(7), "int 7"},
        {"small", list(256 + 1), "null"}, // not cut to the enum's one byte
        {"small", list(-255), "null"},
    };
    const int before = CallToken::alive;
    for (const auto& row : rows) EXPECT_EQ(shown(call(row.name, row.args)), row.result) << row.name;
    EXPECT_EQ(CallToken::alive, before) << "what calls construct they destruct";
}

TEST_F(MethodCalls, RefusalsAreTold) {
    const std::string exes(50, 'x');
    const struct {
        const char* name;
        ZArrayT<ZVariant> args;
        std::vector<std::string> lines; // "`" for a quote
    } rows[] = {
        {"stepNumber",
         list(4),
         {"argument 1 of `int stepNumber(CallShape::Step)` of CallShape can't be had: expected `CallShape::Step`, "
          "actual `int` 4, none of its values"}},
        {"int add(int, int)",
         list(1, ZString(exes.c_str())),
         {"argument 2 of `int add(int, int)` of CallShape can't be had: expected `int`, actual `ZString` " +
          exes.substr(0, 40) + "..."}},
        {"int plain()", list(), {"method `int plain()` of CallShape needs an instance"}},
    };
    for (const auto& row : rows) {
        CaptureDebug log;
        const bool isCall = row.args.count() > 0;
        EXPECT_EQ(shown(isCall ? exact(row.name, row.args) : ZMethodRef(MethodTest::shape(), row.name).invoke(list())),
                  "null");
        EXPECT_EQ(log.lines, quoted(row.lines));
    }
    const struct {
        const char* name;
        ZArrayT<ZVariant> args;
        std::vector<std::string> lines;
    } lookups[] = {
        {"secondPlus",
         list(token(1)),
         {"no method `secondPlus` of CallShape fits; arguments (CallToken)",
          "  candidate `int secondPlus(int) const` of CallSecond: argument 1, expected `int`, actual `CallToken`"}},
        {"nosuch", list(), {"no method `nosuch` of CallShape fits; arguments ()", "  no candidate has that name"}},
    };
    for (const auto& row : lookups) {
        CaptureDebug log;
        EXPECT_EQ(shown(call(row.name, row.args)), "null");
        EXPECT_EQ(log.lines, quoted(row.lines));
    }
}

TEST_F(MethodCalls, PropertiesOfEnumsTakeWhatTheyHold) {
    ZTypedPtr typed(MethodTest::shape(), &shape);
    EXPECT_TRUE(typed.setProperty("step", ZVariant(5)));
    EXPECT_FALSE(typed.setProperty("step", ZVariant(4)));
    EXPECT_FALSE(typed.setProperty("step", ZVariant(type("CallShape::Step"), ZString("6"))));
    EXPECT_EQ(shape.now, CallShape::Second);
    EXPECT_TRUE(typed.setProperty("step", ZVariant(ZString("First"))));
    EXPECT_EQ(shape.now, CallShape::First);
}

TEST_F(MethodCalls, APartOfTheRightClassIsPassed) {
    CallShape other;
    other.two = 77;
    EXPECT_EQ(call("secondOf", list(ZVariant(MethodTest::shape(), &other))).toInt(), 77);
    shape.two = 40;
    EXPECT_EQ(call("secondPlus", list(2)).toInt(), 42) << "called on the base, which stands behind the first";
}

TEST_F(MethodCalls, SharedValuesAreNotWritten) {
    ZArrayT<ZVariant> args = list(ZString("text"));
    ZArrayT<ZVariant> shared = args;
    EXPECT_TRUE(call("changes", args).toBool());
    EXPECT_EQ(text(shared.data()[0].toString()), "text");
    toolkit::EpochGuard guard;
    ZMethodCall prepared(&shape, MethodTest::shape()->methodType("bool changes(ZString&)", {}), MethodTest::shape());
    ASSERT_TRUE(prepared.add(args.data()[0]));
    ASSERT_TRUE(prepared.invoke());
    EXPECT_EQ(text(prepared.getParam(1).toString()), "text!") << "what was written shows in the call";
}

TEST_F(MethodCalls, CollectedArgumentsOfACallMadeTwice) {
    toolkit::EpochGuard guard;
    const auto callTwice = [&] {
        ZMethodCall prepared(&shape, MethodTest::shape()->methodType("int gatherValues(const ZVArray&)", {}),
                             MethodTest::shape());
        for (int i = 0; i < 2; ++i) {
            ASSERT_TRUE(prepared.add(ZVariant(i)));
            ASSERT_TRUE(prepared.invoke());
            EXPECT_EQ(prepared.takeResult().toInt(), -101 - i);
        }
    };
    callTwice(); // what is looked up once stays
    AllocProbe probe;
    callTwice();
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST_F(MethodCalls, ConstructorsAndInstances) {
    EXPECT_EQ(shown(call("CallShape", list(3))), "null") << "what lives isn't built again";
    EXPECT_EQ(shown(call("~CallShape", list())), "null");
    EXPECT_EQ(shown(ZMethodRef(MethodTest::shape(), "int plain()").invoke(list())), "null") << "no instance";
    EXPECT_EQ(shown(ZMethodRef(MethodTest::shape(), "int twice(int)").invoke(list(4))), "int 8");
    EXPECT_EQ(shown(ZMethodRef(MethodTest::shape(), "int twice(int)").invoke({4})), "int 8");

    const ZVariant made =
        ZMethodRef(MethodTest::shape(), "CallShape(int, const ZString&)").invoke(list(3, ZString("made")));
    ASSERT_EQ(made.mainType(), MethodTest::shape());
    EXPECT_EQ(static_cast<const CallShape*>(made.getPtr())->value, 3);
    EXPECT_EQ(text(static_cast<const CallShape*>(made.getPtr())->label), "made");
    EXPECT_EQ(shown(ZMethodRef(ztype<CallToken>(), "CallToken(int)").invoke(list(6))), "token 6");
    EXPECT_EQ(shown(ZMethodRef(ztype<CallToken>(), "CallToken(int)").invoke(list(ZString("x")))), "null");
    EXPECT_EQ(shown(ZMethodRef(ztype<ZVariant>(), "ZVariant(int)").invoke(list(3))), "int 3");

    // A class places its private parts where it is told to.
    toolkit::EpochGuard guard;
    ZMetaType* type = ztype<ZObject>();
    ZInternal* block = ZInternal::create(nullptr, 4096, nullptr);
    void* memory = __znalloc(type->byteSize());
    ZMethodCall build(memory, type->methodType("ZObject()", {}), type, true);
    build.setInternal(block);
    ASSERT_TRUE(build.invoke());
    EXPECT_EQ(refcount(block), 2);
    static_cast<ZObject*>(memory)->release();
    EXPECT_EQ(refcount(block), 1);
    zfree(block);
}

TEST_F(MethodCalls, Places) {
    toolkit::EpochGuard guard;
    ZMetaType* type = MethodTest::shape();
    const ZSelector mixed(mixedSignature);
    ZMethodCall call(&shape, type->methodType(mixed, {}), type);
    ASSERT_EQ(call.getParCount(), 8);
    EXPECT_TRUE(call.hasReturn());
    EXPECT_TRUE(call.addi(1) && call.addl(2) && call.addi(3) && call.addl(4) && call.addr(2.5));
    const ZString label("f");
    EXPECT_TRUE(call.addp(&label));
    const ZVariant last(ZSelector("g"));
    EXPECT_TRUE(call.addv(last));
    EXPECT_FALSE(call.addi(9)) << "no place left";
    EXPECT_EQ(call.getParam(5).toReal(), 2.5);
    EXPECT_EQ(call.parType(4), ztype<large>());
    EXPECT_TRUE(call.setParam(2, ZVariant(20)));
    EXPECT_TRUE(call.setT(3, short(30)));
    EXPECT_FALSE(call.setParam(8, ZVariant(1)));
    ASSERT_TRUE(call.invoke());
    EXPECT_EQ(text(call.getParam(0).toString()), "1 20 30 4 2.5 f g");
    EXPECT_EQ(call.argArray().count(), 7u);
    // The same arguments once more, by another call.
    ZMethodCall second(&shape, type->methodType(mixed, {}), type);
    ASSERT_TRUE(second.copyarg(call));
    ASSERT_TRUE(second.invoke());
    EXPECT_EQ(text(second.takeResult().toString()), "1 20 30 4 2.5 f g");
    EXPECT_EQ(second.getParam(0).type(), nullptr) << "taken";
    // Across types each is converted.
    ZMethodCall sum(&shape, type->methodType("real add(real, real)", {}), type);
    ASSERT_TRUE(sum.copyarg(call, 3, 2));
    EXPECT_EQ(sum.callr(), 34);
    // What went to an open argument goes on to the next one; there is room for many.
    ZMethodCall many(&shape, type->methodType("count", {}), type), more(&shape, type->methodType("count", {}), type);
    for (int i = 0; i < 40; ++i) ASSERT_TRUE(many.addl(i));
    EXPECT_EQ(many.calli(), 39);
    ASSERT_TRUE(more.addi(1) && more.copyarg(many, 2));
    EXPECT_EQ(more.calli(), 139);
}

struct SeenWords {
    const void *first = nullptr, *second = nullptr;
    bool set = false;

    static SeenWords now() {
        SeenWords seen;
        seen.set = ZMethodCall::stackWords(seen.first, seen.second);
        return seen;
    }
    bool operator==(const SeenWords&) const = default;
};
SeenWords seenFirst, seenInner, seenAfter;

/// An entry sees the words of its own call, also behind another call that it makes.
TEST_F(MethodCalls, StackCallsPassTwoWords) {
    static int depth;
    depth = 0;
    seenFirst = seenInner = seenAfter = {};
    static ZMethod* method;
    method = ZMethod::create("void nested()", {}, 0, nullptr, [](const void* instance, ZMethod*, void*) {
        if (depth++) {
            (depth == 2 ? seenInner : seenFirst) = SeenWords::now();
            return;
        }
        seenFirst = SeenWords::now();
        ZMethodCall inner(instance, method, MethodTest::shape());
        inner.setStackCall(&depth, nullptr);
        inner.invoke();
        seenAfter = SeenWords::now();
    });
    ZMethodCall outer(&shape, method, MethodTest::shape());
    outer.setStackCall(&shape, &outer);
    EXPECT_TRUE(outer.invoke());
    const SeenWords ofOuter{&shape, &outer, true}, ofInner{&depth, nullptr, true};
    EXPECT_TRUE(seenFirst == ofOuter && seenInner == ofInner && seenAfter == ofOuter);
    EXPECT_FALSE(SeenWords::now().set);
    ZMethodCall plain(&shape, method, MethodTest::shape());
    EXPECT_TRUE(plain.invoke());
    EXPECT_FALSE(seenFirst.set) << "a call without words";
    ZMethod::release(method);
}

TEST_F(MethodCalls, ArgumentLists) {
    struct Lists {
        static int call(CallShape* shape, ZMetaType* type, int count, ...) {
            var_arg arguments;
            va_start(arguments.list, count);
            ZMethodCall call(shape, type->methodType("int add(int, int)", {}), type);
            const bool added = call.addarg(&arguments, true);
            va_end(arguments.list);
            return added ? call.calli() : -1;
        }
    };
    toolkit::EpochGuard guard;
    EXPECT_EQ(Lists::call(&shape, MethodTest::shape(), 2, 40, 2), 42);
}

TEST_F(MethodCalls, NoMemoryIsARefusal) {
    auto every = [&] {
        int found = 0;
        found += call("ZString add(const ZString&, const ZString&)", list(ZSelector("a"), 5)).isNull();
        found += call("count", list(1, 2, 3, 4)).isNull();
        found += call("token", list(3)).isNull();
        found += call("tokenNumber", list()).isNull();
        found += call("mixed", list(true, 2, 3, 4, 2.5, ZString("f"), ZSelector("g"))).isNull();
        found += ZMethodRef(ztype<CallToken>(), "CallToken(int)").invoke(list(6)).isNull();
        return found;
    };
    ASSERT_EQ(every(), 0);
    failEachAllocation([&](AllocProbe&) {
        every();
        zrecover();
    });
    EXPECT_EQ(CallToken::alive, 0);
}
