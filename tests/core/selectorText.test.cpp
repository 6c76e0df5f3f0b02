#include "core/selectorText.h"

#include "toolkit/sanitized.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace orv::detail;
using Type = ZSelector::Type;

namespace {

std::string normalized(const std::string& text, Type& type) {
    std::string out(2 * text.size(), '#');
    out.resize(normalizeSelector(text.data(), text.size(), type, out.data()));
    Type measured;
    EXPECT_EQ(normalizeSelector(text.data(), text.size(), measured, nullptr), out.size()) << text;
    EXPECT_EQ(measured, type);
    return out;
}

std::string items(const std::string& text, Type type) {
    SelectorItems walk(text.data(), text.size(), type);
    std::string all;
    if (walk.result.length) all += "{" + std::string(walk.result.text, walk.result.length) + "}";
    if (walk.name.length) all += "=" + std::string(walk.name.text, walk.name.length) + "=";
    SelectorPart item;
    while (walk.next(item)) all += "[" + std::string(item.text, item.length) + "]";
    return all;
}

} // namespace

TEST(SelectorText, NormalFormAndKind) {
    struct Row {
        const char *text, *normal;
        int type;
    };
    const Row rows[] = {
        {"name", "name", 1},
        {"a_Z09", "a_Z09", 1},
        {"  a   b  ", "a b", 2},
        {"ab ", "ab", 2}, // the blank goes, but it counts
        {"  ab", "ab", 1},
        {"a\tb\nc", "abc", 1},
        {"a \n b", "a b", 2},
        {"a\n b", "ab", 1}, // only a kept character keeps a blank
        {"int *", "int*", 2},
        {"int*", "int*", 1},
        {"int  &", "int&", 2},
        {"a * *", "a**", 2},
        {"* x", "* x", 2},
        {"@", "@", 1}, // one character is a name whatever it is
        {" ", " ", 1},
        {" a", " a", 1}, // so it stays as it is with all that would go
        {"\n", "\n", 1},
        {"a.b", "a.b", 3},
        {"a-b.c", "a-b.c", 3},
        {"a:b", "a:b", 4},
        {"a.b:c", "a.b:c", 4},
        {"a:b.c", "a:b.c", 4},
        {"a b.c", "a b.c", 2},
        {"a.b c", "a.b c", 2},
        {"[a]", "[a]", 5},
        {"[a] ", "[a]", 5},
        {"[a b]", "[a b]", 5},
        {"[a.b]", "[a.b]", 9},
        {"[a:b]", "[a:b]", 5},
        {"[a::b]", "[a::b]", 6},
        {"[a", "[a", 0},
        {"a[]", "a[]", 0},
        {"A::B", "A::B", 6},
        {"::B", "::B", 6},
        {"A::", "A::", 4}, // at the end these are two single colons
        {"a.b::C", "a.b::C", 6},
        {"A::b.c", "A::b.c", 6},
        {"a:b::c", "a:b::c", 6},
        {"A::B:c", "A::B:c", 6},
        {"const A::B", "const A::B", 2},
        {"A::B const", "A::B const", 2},
        {"A<int>", "A<int>", 7},
        {"A<B::C>", "A<B::C>", 7},
        {"A<B>::C", "A<B>::C", 6},
        {"const A<b> c", "const A<b> c", 7},
        {"A<b.c>", "A<b.c>", 9},
        {"a.b<c>", "a.b<c>", 7},
        {"ZArrayT<ZArrayT<int>>", "ZArrayT<ZArrayT<int> >", 7},
        {"A<B<C<d>>>", "A<B<C<d> > >", 7},
        {"A<B<c> >", "A<B<c> >", 7},
        {"A<B<c>\n>", "A<B<c> >", 7},
        {"a>>b", "a>>b", 1}, // closes no template
        {"void f(A<B<c>>)", "void f(A<B<c> >)", 8},
        {"f()", "f()", 8},
        {"f(a::b)", "f(a::b)", 8},
        {"f(a.b)", "f(a.b)", 8},
        {"f<a>(b)", "f<a>(b)", 8},
        {"[(]", "[(]", 8},
        {"bool f(int) const", "bool f(int) const", 8},
        {"operator<(int)", "operator<(int)", 8},
        {"operator<", "operator<", 1},
        {"operator<<", "operator<<", 7},
        {"oper\nator<", "operator<", 1},
        {"operatoperator<", "operatoperator<", 1},
        {"operatooperator<", "operatooperator<", 1},
        {"operator<a>", "operator<a>", 1},
        {"operator ()(int)", "operator ()(int)", 8},
        {"A<b>.c", "A<b>.c", 9},
        {"A<b>.c(d)", "A<b>.c(d)", 9},
        {"A<b>.c<d>", "A<b>.c<d>", 9},
        {"A<b>.c::d e:f", "A<b>.c::d e:f", 9},
        {"a-b", "a-b", 0},
        {"a,b c", "a,b c", 2},
        {"a c,b", "a c,b", 0},
        {"A::B-c", "A::B-c", 6},
        {"~a", "~a", 1},
        {"a]", "a]", 1},
        {"\xC3\xA4", "\xC3\xA4", 0},
        {"-.", "-.", 3},
    };
    for (const Row& row : rows) {
        Type type;
        EXPECT_EQ(normalized(row.text, type), row.normal) << "\"" << row.text << "\"";
        EXPECT_EQ(type, row.type) << "\"" << row.text << "\"";
    }
}

TEST(SelectorText, Items) {
    struct Row {
        const char* text;
        int type;
        const char* items;
    };
    const Row rows[] = {
        {"a b  c", 2, "[a][b][c]"},
        {"A<x, y> b", 2, "[A<x, y>][b]"},
        {"operator< b", 2, "[operator<][b]"},
        {".a..b.", 3, "[a][b]"},
        {"a.B<c.d>.e", 3, "[a][B<c.d>][e]"},
        {":a::b", 4, "[a][b]"},
        {"a: :b :", 4, "[a][b]"},
        {"::A::B<C::D>::E", 6, "[A][B<C::D>][E]"},
        {"a:b::c", 6, "[a:b][c]"},
        {"x>y<a::b", 6, "[x>y<a::b]"}, // never closed: the rest is one item
        {"const A<b, C<d, e>, f>&", 7, "=A=[b][C<d, e>][f]"},
        {"A<>", 7, "=A="},
        {"A< b>", 7, "=A=[b]"},
        {"A<b", 7, "=A=[b]"},
        {"bool hasMethodId(const ZUnique&)", 8, "{bool}=hasMethodId=[const ZUnique&]"},
        {"f()", 8, "=f="},
        {"const A<b, c>& g(d, E<f, g>, h) const", 8, "{const A<b, c>&}=g=[d][E<f, g>][h]"},
        {"bool operator()(int, int)", 8, "{bool}=operator()=[int][int]"},
        {"bool operator()", 8, "{bool}=operator="},
        {"operator bool()", 8, "=operator bool="},
        {"A operator ==(b)", 8, "{A}=operator ===[b]"},
        {"A& operator<<(b)", 8, "{A&}=operator<<=[b]"},
        {"bool operator<(int)", 8, "{bool}=operator<=[int]"},
        {"A* operator->()", 8, "{A*}=operator->="},
        {"void f (a)", 8, "{void}=f=[a]"},
        {"f(a,, b", 8, "=f=[a][b]"},
        {"A<void(b)> c(d)", 8, "{A<void(b)>}=c=[d]"},
        {"A<b(c", 8, ""},
        {"a b", 9, ""},
        {"[a b]", 5, ""},
        {"a b", 1, ""},
    };
    for (const Row& row : rows) EXPECT_EQ(items(row.text, Type(row.type)), row.items) << row.text;
}

TEST(SelectorText, HostileTextsTakeLinearTime) {
    const size_t size = toolkit::sanitized ? 1 << 18 : 2 << 20;
    for (const char* unit : {"<", ">", "(", "::", "a ", " ", "[", ".", "operator<", "operator(", "\n ", "<a>", ", *"}) {
        std::string text;
        while (text.size() < size) text += unit;
        NormalText normal(text.data(), text.size());
        ASSERT_TRUE(bool(normal));
        ASSERT_LE(normal.length, 2 * text.size());
        for (int type = ZSelector::Names; type <= ZSelector::Method; ++type) {
            SelectorItems walk(normal.text, normal.length, Type(type));
            SelectorPart item;
            size_t total = 0;
            while (walk.next(item)) total += item.length;
            ASSERT_LE(total, normal.length);
        }
    }
}
