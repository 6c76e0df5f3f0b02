#include "object/ZMethod.h"

#include "object/ZMethodPtr.h"
#include "object/ZMethodRef.h"
#include "object/ztype.h"
#include "tests/object/methodShapes.h"

#include <gtest/gtest.h>
#include <string>

namespace {
using Methods = MethodTest;

std::string text(const ZSelector& selector) { return selector.isEmpty() ? "" : selector.string(); }
} // namespace

TEST_F(Methods, WordsOfOptions) {
    const struct {
        const char* words;
        uint flags;
        const char* rest;
    } rows[] = {
        {"", 0, ""},
        {"fixed", ZMethod::Fixed, ""},
        {"fixed dynamic", ZMethod::Dynamic, ""},
        {"dynamic fixed", ZMethod::Dynamic, ""}, // in the order of the table
        {"local multimethod", ZMethod::MultiMethod, ""},
        {"fixed local", ZMethod::Fixed, ""},
        {"bind sb3", 0x18002000, ""},
        {"wrap inner static sbx", 0x18000008, "inner sbx"},
        {"private creator collect", ZMethod::Private | ZMethod::Creator | ZMethod::CollectArgs, ""},
        {"internal variadic", 0, "internal variadic"}, // these flags have no word
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ZMethod::scanFlags(row.words), row.flags) << row.words;
        EXPECT_EQ(text(ZMethod::extractOptions(row.words)), row.rest) << row.words;
    }
}

TEST_F(Methods, SignaturesAreTakenApart) {
    const struct {
        const char* signature;
        const char* stored;
        int open, params;
        bool returns;
        const char* name;
    } rows[] = {
        {"void f(int, ...)", "void f(int, ZArrayT<ZVariant>&)", 1, 2, false, "f"},
        {"int g(...)", "int g(ZArrayT<ZVariant>&)", 0, 1, true, "g"},
        {"ZShape(int)", "ZShape(int)", -1, 1, false, "ZShape"},
        {"bool h()", "bool h()", -1, 0, true, "h"},
        {"plainName", "plainName", -1, 0, false, "plainName"},
    };
    for (const auto& row : rows) {
        ZMethodPtr made = method(row.signature);
        ASSERT_TRUE(made);
        EXPECT_EQ(text(made->getSelector()), row.stored);
        EXPECT_EQ(made->openArgument(), row.open) << row.signature;
        EXPECT_EQ(made->paramCount(), row.params) << row.signature;
        EXPECT_EQ(made->hasReturn(), row.returns) << row.signature;
        EXPECT_EQ(text(made->methodName()), row.name);
        EXPECT_EQ(text(made.key()), row.name);
    }
    EXPECT_EQ(text(method("bool f(const ZString&, int)")->paramType(1)), "const ZString&");
    EXPECT_EQ(text(method("bool f(const ZString&, int)")->paramType(0)), "bool");
    EXPECT_EQ(text(method("bool f()")->paramType(1)), "");
}

TEST_F(Methods, Qualifiers) {
    ZMethodPtr made = method("int f()", "const virtual");
    for (const char* words : {"", "const", "virtual", "const virtual", "virtual const"})
        EXPECT_TRUE(made->qualify(words)) << words;
    for (const char* words : {"static", "const static"}) EXPECT_FALSE(made->qualify(words)) << words;
    EXPECT_FALSE(method("int f()")->qualify("const"));
}

TEST_F(Methods, ParametersAndBlockSizes) {
    const struct {
        const char* signature;
        int bytes;
        bool passVariant;
    } rows[] = {
        {"void f()", 0, false},
        {"void f(bool, byte, short)", 12, false},
        {"void f(int, large, float, real)", 28, false},
        {"void f(const ZString&, ZObject*)", 16, false},
        {"void f(NoSuchType)", 8, false},
        {"void f(const ZVariant&)", 8, true},
        {"void f(ZVariant, int)", 28, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(method(row.signature)->getStackSize(), row.bytes) << row.signature;
        EXPECT_EQ(method(row.signature)->passVariant(), row.passVariant) << row.signature;
    }
    ZArrayT<ZMetaType*> types = method("real f(const ZString&, int*)")->paramTypes();
    ASSERT_EQ(types.count(), 3u);
    EXPECT_EQ(types[0], type("real"));
    EXPECT_EQ(types[1]->getDataType(), type("ZString"));
    EXPECT_EQ(types[2]->getPtrCount(), 1);
}

TEST_F(Methods, RecordsAreCounted) {
    ZMethod* record = ZMethod::create("int f()");
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->invoke(this, nullptr, {}).type(), nullptr) << "the default entries aren't called";
    {
        ZMethodPtr other(record);
        EXPECT_EQ(ZMethod::refcount(record), 2);
        ZMethodPtr copy(other);
        EXPECT_EQ(ZMethod::refcount(record), 3);
        copy.set(nullptr);
        EXPECT_EQ(ZMethod::refcount(record), 2);
    }
    toolkit::EpochGuard guard;
    ZMethod::release(record);
    // A reader may still look at it, but nobody gets a reference any more.
    EXPECT_EQ(ZMethod::retain(record), nullptr);
    EXPECT_EQ(text(record->getSelector()), "int f()");
}

TEST_F(Methods, VariantsHoldRecordsOfThePool) {
    const ZVariant made = ZMethodRef(ztype<ZMethod>(), "ZMethod* create(const ZSelector&, const ZSelector&)")
                              .invoke(list(ZSelector("int f()"), ZSelector("const")));
    ASSERT_EQ(made.mainType(), ztype<ZMethod>());
    auto record = static_cast<const ZMethod*>(made.getPtr());
    EXPECT_EQ(ZMethod::refcount(record), 1);
    {
        const ZVariant shared(made);
        EXPECT_EQ(shared.getPtr(), record);
        EXPECT_EQ(ZMethod::refcount(record), 2);
        ZVariant own(shared);
        ASSERT_TRUE(own.detach());
        EXPECT_NE(own.getPtr(), record);
        EXPECT_EQ(own.compare(made), 0);
        const ZVariant value(ztype<ZMethod>(), record);
        EXPECT_NE(value.getPtr(), record) << "a record of its own";
        ZMethodRef ref(record, this, ztype<ZVariant>());
        const ZVariant got = ZMethodRef(&ref, ztype<ZMethodRef>(), "ZMethod* getMethod()").invoke(list());
        EXPECT_EQ(got.getPtr(), record);
        EXPECT_EQ(ZMethod::refcount(record), 4);
    }
    EXPECT_EQ(ZMethod::refcount(record), 1);
    EXPECT_EQ(text(ZMethodRef(record, ztype<ZMethod>(), "methodName").invoke(list()).toSelector()), "f");
    char raw[sizeof(ZMethod)];
    EXPECT_FALSE(ztype<ZMethod>()->constructInstance(raw));
}

TEST_F(Methods, CopiesAndData) {
    ZMethodPtr made = method("int f(int, ...)", "const");
    made->setOptions("inner");
    made->setFlags(ZMethod::Bindable);
    made->setSandBoxLevel(3);
    ASSERT_TRUE(made->setXName("external"));
    ASSERT_TRUE(made->setData(ZVariant(5)));
    ZMethod* copy = made->copy();
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->compare(*made.get()), 0);
    EXPECT_EQ(copy->openArgument(), 1);
    EXPECT_EQ(copy->getSandBoxLevel(), 3);
    EXPECT_EQ(text(copy->getXName()), "external");
    EXPECT_EQ(copy->getData().toInt(), 5);
    copy->setQualifier({});
    EXPECT_NE(copy->compare(*made.get()), 0);
    copy->clear();
    EXPECT_FALSE(copy->isValid());
    ZMethod::release(copy);
}

TEST_F(Methods, EndsOfBindings) {
    const struct {
        const char *source, *destination;
        bool match, needsCall, convertFirst, dropRest;
    } rows[] = {
        {"void f(int)", "void g(int)", true, false, true, false},
        {"void f(int)", "void g()", true, false, true, true},
        {"void f()", "void g(int)", true, true, true, false},
        {"void f(int)", "void g(ZString)", false, true, true, false},
        {"void f(int)", "void g(ZVariant)", true, true, true, false},
        {"int f(CallShape*)", "int g(CallFirst*)", true, true, true, false},
        {"int f(CallFirst*)", "int g(CallShape*)", false, true, true, false},
        {"ZString f()", "int g()", true, false, false, false},
    };
    for (const auto& row : rows) {
        ZMethodPtr source = method(row.source), destination = method(row.destination);
        bool needsCall, convertFirst, dropRest;
        source->fetchBindingOptions(destination.get(), needsCall, convertFirst, dropRest);
        EXPECT_EQ(source->matchBinding(destination.get()), row.match) << row.source << " to " << row.destination;
        EXPECT_EQ(needsCall, row.needsCall) << row.source << " to " << row.destination;
        EXPECT_EQ(convertFirst, row.convertFirst) << row.source << " to " << row.destination;
        EXPECT_EQ(dropRest, row.dropRest) << row.source << " to " << row.destination;
    }
}
