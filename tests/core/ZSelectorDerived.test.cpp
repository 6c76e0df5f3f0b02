#include "core/ZSelectorData.h"
#include "core/ZSelectorSpace.h"
#include "tests/support/SelectorScope.h"

#include <gtest/gtest.h>
#include <string>

TEST(SelectorDerived, Names) {
    SelectorScope scope;
    struct Row {
        const char *text, *root, *main, *unqualified, *qualifier, *package, *type, *space, *base;
    };
    const Row rows[] = {
        {"name", "", "name", "name", "", "", "", "", "name"},
        {"::A::B", "A::B", "::A::B", "::A::B", "", "", "A::B", "::A", "B"},
        {"const A::B&", "", "A::B", "A::B&", "const", "", "B&", "A", "B&"},
        {"const A<B, C>* &", "", "A<B, C>", "A<B, C>*&", "const", "", "", "", "const A<B, C>*&"},
        {"A<B::C>", "", "A<B::C>", "A<B::C>", "", "", "C>", "", "A<B::C>"},
        {"funcxy.core::A::B", "", "funcxy.core::A::B", "funcxy.core::A::B", "", "funcxy.core", "A::B", "funcxy.core::A",
         "B"},
        {"core::A", "", "core::A", "core::A", "", "", "A", "core", "A"},
        {"a.b.c", "", "a.b.c", "a.b.c", "", "", "", "a.b", "c"},
        {"const a.b", "", "a.b", "a.b", "const", "", "", "const a", "const b"},
        {"a:b.c::D", "", "a:b.c::D", "a:b.c::D", "", "", "D", "a:b.c", "D"},
        {"void A::B::f(A::B::C, A::D)", "", "A::D)", "A::D)", "void A::B::f(A::B::C,", "", "B::f(A::B::C, A::D)",
         "A::B", "f(C, A::D)"},
        {"A::B f(int)", "", "f(int)", "f(int)", "A::B", "", "B f(int)", "", "A::B f(int)"},
        {"void a.f(b.c)", "", "a.f(b.c)", "a.f(b.c)", "void", "", "", "a", "void f(b.c)"},
        {"&*", "", "", "&*", "", "", "", "", "&*"},
    };
    for (const Row& row : rows) {
        ZSelector sel(row.text);
        for (int round = 0; round < 2; ++round) { // worked out, and kept
            EXPECT_EQ(text(sel.rootName()), row.root) << row.text;
            EXPECT_EQ(text(sel.mainType()), row.main) << row.text;
            EXPECT_EQ(text(sel.unqualified()), row.unqualified) << row.text;
            EXPECT_EQ(text(sel.qualifier()), row.qualifier) << row.text;
            EXPECT_EQ(text(sel.package()), row.package) << row.text;
            EXPECT_EQ(text(sel.typeName()), row.type) << row.text;
            EXPECT_EQ(text(sel.nameSpace()), row.space) << row.text;
            EXPECT_EQ(text(sel.baseName()), row.base) << row.text;
        }
        EXPECT_EQ(ZSelectorSpace::space().get(sel)->flags & 0x1FEu, 0x1FEu) << row.text;
    }
    EXPECT_TRUE(ZSelector().baseName().isEmpty());
    ZSelector spaced("int *");
    EXPECT_EQ(spaced.mainType(), ZSelector("int"));
    EXPECT_EQ(spaced.mainType().type(), ZSelector::Name);
}

TEST(SelectorDerived, Functions) {
    SelectorScope scope;
    struct Row {
        const char *text, *method, *qualifier, *name, *function;
    };
    const Row rows[] = {
        {"bool A::f(int) const final", "bool A::f(int)", "const final", "A::f", "f"},
        {"f(a)", "f(a)", "", "f", "f"},
        {"bool operator()(int) const", "bool operator()(int)", "const", "operator()", "operator()"},
        {"f(a)x", "f(a)x", "", "f", "f"},
        {"A<b>", "", "", "A", "A"},
        {"a.b", "", "", "a.b", "b"},
    };
    for (const Row& row : rows) {
        ZSelector sel(row.text);
        EXPECT_EQ(text(sel.method()), row.method) << row.text;
        EXPECT_EQ(text(sel.methodQualifier()), row.qualifier) << row.text;
        EXPECT_EQ(text(ZSelector::method(row.text)), row.method) << row.text;
        EXPECT_EQ(text(ZSelector::qualifier(row.text)), row.qualifier) << row.text;
        EXPECT_EQ(text(sel.methodName()), row.name) << row.text;
        EXPECT_EQ(text(sel.functionName()), row.function) << row.text;
    }
    ZSelector type("core::A"), none;
    EXPECT_TRUE(ZSelector("A(int)").isConstructor(type));
    EXPECT_TRUE(ZSelector("x::A()").isConstructor(type));
    EXPECT_FALSE(ZSelector("void A()").isConstructor(type));
    EXPECT_FALSE(ZSelector("B()").isConstructor(type));
    EXPECT_FALSE(ZSelector("A").isConstructor(type));
    EXPECT_TRUE(ZSelector("B()").isConstructor(none));
    EXPECT_FALSE(ZSelector("b()").isConstructor(none));
    EXPECT_TRUE(ZSelector("~A()").isDestructor(type));
    EXPECT_TRUE(ZSelector("~B()").isDestructor(none));
    EXPECT_FALSE(ZSelector("~B()").isDestructor(type));
    EXPECT_FALSE(ZSelector("A()").isDestructor(type));
}
