#include "object/glue.h"

#include "core/ZArrayT.h"
#include "core/ZHashMapT.h"
#include "core/ZSelector.h"
#include "text/ZString.h"

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

// A value class.
class GlueGauge {
public:
    ORV_REFLECT(GlueGauge);
    enum Mode { Idle, Busy = 4 };
    enum FixedMethod { FixedWidth, FixedSetWidth };
    using Widths = ZHashMapT<ZSelector, int>;

    GlueGauge() { ++alive; }
    GlueGauge(int w, float factor) : w(int(float(w) * factor)) { ++alive; }
    explicit GlueGauge(int w) : w(w) { ++alive; }
    GlueGauge(const ZString& text) : w(int(text.length())) { ++alive; }
    GlueGauge(const GlueGauge& other) : w(other.w), text(other.text) { ++alive; }
    ~GlueGauge() { --alive; }

    int width() const { return w; }
    bool setWidth(const int& value) {
        w = value;
        return true;
    }
    bool set(int a, float f, const ZString& s) {
        w = a * 100 + int(f * 10);
        text = s;
        return true;
    }
    bool set(const ZString& s) {
        text = s;
        return true;
    }
    const ZString& label() const { return text; }
    ZString& label() { return text; }
    ZString both(const ZString& behind) const { return text + behind; }
    Mode mode() const { return w > 10 ? Busy : Idle; }
    const Widths& widths() const { return map; }
    int compare(const GlueGauge& other) const { return w - other.w; }
    void clear() { w = 0; }
    static int count(char a, large b, byte c, double d) { return int(a + b + c + d); }
    bool mixed(byte a, double b, int16 c, const void* d) const { return a + b + c == 6.5 && d == this; }
    bool log(const ZString& first, ZArrayT<ZVariant>& rest) {
        text = first;
        opened = &rest;
        return true;
    }
    ZArrayT<ZVariant>* opened = nullptr;
    static int alive;

private:
    double ratio(double x) const { return x * w; }
    int w = 3;
    ZString text;
    Widths map;
};
int GlueGauge::alive = 0;

// A class with two bases, of which the second stands behind the first.
struct GlueFirst {
    virtual ~GlueFirst() = default;
    int first() const { return one; }
    int one = 1;
};
struct GlueSecond {
    int second(int add) const { return two + add; }
    int two = 2;
};
class GlueBoth : public GlueFirst, public GlueSecond {
public:
    ORV_REFLECT(GlueBoth);
    GlueBoth(const __ZPassMetaType* tag = nullptr) : tag(tag) {}
    const __ZPassMetaType* tag;
};

// A template.
template <class T> struct GlueBox {
    T item{};
    bool put(const T& value) {
        item = value;
        return true;
    }
    const T& get() const { return item; }
    ZArrayT<T> list() const { return {}; }
};

namespace orv::glue {

template <> struct Table<GlueGauge> : Declares<GlueGauge> {
    using Widths = GlueGauge::Widths;
    static constexpr int defaultWidth = 7;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int, float)),
        ORV_CONSTRUCTOR((int)),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_DESTRUCTOR(),
        ORV_VALUE_ACCESSORS(int, width, Width),
        ORV_METHOD(bool, set, (int, float, const ZString&), , "bind inner sb2"),
        ORV_METHOD(bool, set, (const ZString&), ),
        ORV_METHOD(double, ratio, (real), const, "private"),
        ORV_METHOD(const ZString&, label, (), const),
        ORV_METHOD(ZString&, label, (), ),
        ORV_METHOD(ZString, both, (const ZString&), const),
        ORV_METHOD(GlueGauge::Mode, mode, (), const),
        ORV_TYPED_METHOD(const Widths&, widths, (), const),
        ORV_METHOD(int, compare, (const GlueGauge&), const),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(bool, log, (const ZString&, ...), ),
        ORV_STATIC(int, count, (char, large, byte, double)),
        ORV_METHOD(bool, mixed, (byte, real, int16, const void*), const),
        ORV_ADAPTER(int, doubled, (int), const, [](const Self& gauge, int times) { return gauge.width() * times; }),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(int, width, "store .changed v3 sb2").initially(defaultWidth).at(offsetof(Self, w)),
        ORV_PROPERTY(ZString, label, "store"),
        ORV_DYNAMIC_PROPERTY(ZArrayT<ZSelector>, names, "optional").items<ZSelector>(),
    };
    static constexpr EnumItemRow modes[] = {ORV_ITEM(Mode, Idle), ORV_ITEM(Mode, Busy)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Mode, modes)};
    static constexpr FixedRow fixed[] = {ORV_FIXED(FixedWidth, int, width, (), const),
                                         ORV_FIXED(FixedSetWidth, bool, setWidth, (const int&), )};
    static constexpr SelectorPairRow pairs[] = {{"w", "width"}};
    static constexpr GroupRow groups[] = {ORV_GROUP("short", pairs)};
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic, .words = "internal fixed"};
};

template <> struct Table<GlueBoth> : Declares<GlueBoth> {
    using BaseTypes = Bases<GlueFirst, GlueSecond>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_METHOD(int, first, (), const),
        ORV_METHOD(int, second, (int), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Class};
};

template <class T> struct Table<GlueBox<T>> : Declares<GlueBox<T>> {
    using Self = GlueBox<T>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_TYPED_METHOD(bool, put, (const T&), ),
        ORV_TYPED_METHOD(const T&, get, (), const),
        ORV_TYPED_METHOD(ZArrayT<T>, list, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Class};
};

} // namespace orv::glue
ORV_DECLARE(GlueGauge);
ORV_DECLARE(GlueBoth);
ORV_DECLARE(GlueBox<ZArrayT<ZSelector>>);

using namespace orv::glue;

namespace {

/// An argument block as callers build it.
struct Block {
    alignas(4) char bytes[64] = {};
    int at = 8;

    explicit Block(const void* result) { std::memcpy(bytes, &result, 8); }
    template <class T> Block& add(T value) {
        std::memcpy(bytes + at, &value, sizeof value);
        at += int(sizeof value + 3) & ~3;
        return *this;
    }
    template <class T> T* result() const {
        T* word;
        std::memcpy(&word, bytes, 8);
        return word;
    }
};

const MethodRow* method(const ClassRow& row, const std::string& text) {
    for (const MethodRow& found : row.methods)
        if (text == found.text) return &found;
    ADD_FAILURE() << row.name << " has no " << text;
    return nullptr;
}

const ClassRow& gauge = Row<GlueGauge>::row;

} // namespace

TEST(Glue, RowsSayWhatWasDeclared) {
    EXPECT_STREQ(gauge.name, "GlueGauge");
    EXPECT_EQ(gauge.size, sizeof(GlueGauge));
    EXPECT_EQ(gauge.alignment, alignof(GlueGauge));
    EXPECT_EQ(gauge.bases.count, 0);

    const struct {
        const char* text;
        uint flags;
        int words, open, sandBox;
        bool isConst;
        const char* options;
    } expected[] = {
        {"GlueGauge()", 0, -1, -1, -1, false, nullptr},
        {"GlueGauge(int, float)", 0, -1, -1, -1, false, nullptr},
        {"GlueGauge(int)", 1024, -1, -1, -1, false, nullptr},
        {"GlueGauge(const ZString&)", 0, -1, -1, -1, false, nullptr},
        {"~GlueGauge()", 0, -1, -1, -1, false, nullptr},
        {"int width()", 0, 0, -1, -1, true, nullptr},
        {"bool set(int, float, const ZString&)", 0x18002000, 3, -1, 2, false, "bind inner sb2"},
        {"double ratio(real)", 4, 1, -1, -1, true, nullptr},
        {"ZString both(const ZString&)", 0, -1, -1, -1, true, nullptr},
        {"const ZHashMapT<ZSelector, int>& widths()", 0, 0, -1, -1, true, nullptr},
        {"void clear()", 0, 0, -1, -1, false, nullptr},
        {"int count(char, large, byte, double)", 8, 4, -1, -1, false, nullptr},
        {"bool log(const ZString&, ...)", 0x400000, 2, 1, -1, false, nullptr},
    };
    for (const auto& row : expected) {
        const MethodRow* found = method(gauge, row.text);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->flags, row.flags) << row.text;
        EXPECT_EQ(found->fastWords, row.words) << row.text;
        EXPECT_EQ(found->open, row.open) << row.text;
        EXPECT_EQ(found->sandBox, row.sandBox) << row.text;
        EXPECT_EQ(found->isConst, row.isConst) << row.text;
        EXPECT_STREQ(found->options, row.options) << row.text;
    }

    const PropertyRow& width = gauge.properties.rows[0];
    EXPECT_STREQ(width.name, "width");
    EXPECT_STREQ(width.type, "int");
    EXPECT_EQ(width.flags, 0x20080u); // the getter gives it by value
    EXPECT_EQ(width.version, 3);
    EXPECT_EQ(width.sandBox, 2);
    EXPECT_GT(width.offset, -1);
    EXPECT_EQ(*static_cast<const int*>(width.value), 7);
    const PropertyRow& names = gauge.properties.rows[2];
    EXPECT_EQ(names.flags, 0x60u);
    EXPECT_STREQ(names.item, "ZSelector");
    EXPECT_EQ(names.index, nullptr);

    EXPECT_EQ(gauge.enums.rows[0].items[1].value, 4);
    EXPECT_STREQ(gauge.fixed.rows[GlueGauge::FixedSetWidth].text, "bool setWidth(const int&)");
    EXPECT_STREQ(gauge.groups.rows[0].pairs[0].value, "width");
}

TEST(Glue, StackedEntries) {
    GlueGauge g;
    bool yes = false;
    ZString text("abc");
    method(gauge, "bool set(int, float, const ZString&)")
        ->stacked(&g, nullptr, Block(&yes).add(5).add(2.5).add(&text).bytes);
    EXPECT_TRUE(yes);
    EXPECT_EQ(g.width(), 525);
    EXPECT_EQ(g.label(), "abc");

    double ratio = 0;
    method(gauge, "double ratio(real)")->stacked(&g, nullptr, Block(&ratio).add(2.0).bytes);
    EXPECT_EQ(ratio, 1050);

    // A value is constructed in raw memory, a reference replaces the word.
    alignas(ZString) char raw[sizeof(ZString)];
    Block both(raw);
    method(gauge, "ZString both(const ZString&)")->stacked(&g, nullptr, both.add(&text).bytes);
    EXPECT_EQ(*both.result<ZString>(), "abcabc");
    both.result<ZString>()->~ZString();
    Block label(nullptr);
    method(gauge, "const ZString& label()")->stacked(&g, nullptr, label.bytes);
    EXPECT_EQ(label.result<ZString>(), &g.label());

    // An open argument is one array.
    char array[1];
    method(gauge, "bool log(const ZString&, ...)")->stacked(&g, nullptr, Block(&yes).add(&text).add(&array[0]).bytes);
    EXPECT_EQ(static_cast<void*>(g.opened), array);

    int count = 0;
    method(gauge, "int count(char, large, byte, double)")
        ->stacked(nullptr, nullptr, Block(&count).add('\1').add(large(2)).add(byte(3)).add(4.0).bytes);
    EXPECT_EQ(count, 10);
    method(gauge, "int doubled(int)")->stacked(&g, nullptr, Block(&count).add(3).bytes);
    EXPECT_EQ(count, 1575);
    method(gauge, "void clear()")->stacked(&g, nullptr, Block(nullptr).bytes);
    EXPECT_EQ(g.width(), 0);
}

TEST(Glue, FastEntries) {
    GlueGauge g, other;
    g.setWidth(-5);
    void* word = method(gauge, "int width()")->fast.f0(&g, nullptr);
    EXPECT_EQ(fromWord<int>(word), -5);
    int twelve = 12;
    word = method(gauge, "bool setWidth(const int&)")->fast.f1(&g, nullptr, &twelve);
    EXPECT_TRUE(fromWord<bool>(word));
    EXPECT_EQ(fromWord<GlueGauge::Mode>(method(gauge, "GlueGauge::Mode mode()")->fast.f0(&g, nullptr)),
              GlueGauge::Busy);
    EXPECT_EQ(method(gauge, "ZString& label()")->fast.f0(&g, nullptr), &g.label());
    word = method(gauge, "int compare(const GlueGauge&)")->fast.f1(&g, nullptr, &other);
    EXPECT_EQ(fromWord<int>(word), 9);
    word = method(gauge, "bool mixed(byte, real, int16, const void*)")
               ->fast.f4(&g, nullptr, toWord(byte(3)), toWord(1.5), toWord(int16(2)), &g);
    EXPECT_TRUE(fromWord<bool>(word));
    EXPECT_EQ(method(gauge, "void clear()")->fast.f0(&g, nullptr), nullptr);
    EXPECT_EQ(g.width(), 0);
}

TEST(Glue, ConstructorsAndCallbacks) {
    ASSERT_EQ(GlueGauge::alive, 0);
    alignas(GlueGauge) char raw[sizeof(GlueGauge)], second[sizeof(GlueGauge)];
    auto made = reinterpret_cast<GlueGauge*>(raw);
    method(gauge, "GlueGauge(int, float)")->stacked(raw, nullptr, Block(nullptr).add(7).add(3.0).bytes);
    EXPECT_EQ(made->width(), 21);
    EXPECT_EQ(GlueGauge::alive, 1);

    const Callbacks& life = *gauge.callbacks;
    EXPECT_TRUE(life.copy(second, raw));
    EXPECT_EQ(life.compare(raw, second), 0);
    made->setWidth(20);
    EXPECT_LT(life.compare(raw, second), 0);
    EXPECT_TRUE(life.destruct(second));
    method(gauge, "~GlueGauge()")->stacked(raw, nullptr, Block(nullptr).bytes);
    EXPECT_EQ(GlueGauge::alive, 0);
    EXPECT_TRUE(life.construct(raw, nullptr));
    EXPECT_EQ(made->width(), 3);
    life.destruct(raw);
    // What the class hasn't, nobody is told to call.
    EXPECT_EQ(life.detach, nullptr);
    EXPECT_EQ(life.toString, nullptr);
    EXPECT_EQ(life.retain, nullptr);
}

TEST(Glue, BasesTagsAndInheritedMembers) {
    const ClassRow& row = Row<GlueBoth>::row;
    ASSERT_EQ(row.bases.count, 2);
    EXPECT_STREQ(row.bases.rows[1].name, "GlueSecond");
    auto tag = reinterpret_cast<const __ZPassMetaType*>(&row);
    alignas(GlueBoth) char raw[sizeof(GlueBoth)];
    method(row, "GlueBoth()")->stacked(raw, nullptr, Block(tag).bytes);
    auto both = reinterpret_cast<GlueBoth*>(raw);
    EXPECT_EQ(both->tag, tag);
    EXPECT_EQ(row.bases.rows[0].upcast(both), static_cast<GlueFirst*>(both));
    EXPECT_EQ(row.bases.rows[1].upcast(both), static_cast<GlueSecond*>(both));
    EXPECT_NE(row.bases.rows[1].upcast(both), both);
    EXPECT_EQ(fromWord<int>(method(row, "int first()")->fast.f0(both, nullptr)), 1);
    EXPECT_EQ(fromWord<int>(method(row, "int second(int)")->fast.f1(both, nullptr, toWord(40))), 42);
    row.callbacks->destruct(raw);
    EXPECT_TRUE(row.callbacks->construct(raw, nullptr));
    EXPECT_EQ(both->tag, nullptr);
    row.callbacks->destruct(raw);
}

TEST(Glue, TemplatesAreNamedByTheirArguments) {
    const ClassRow& row = Row<GlueBox<ZArrayT<ZSelector>>>::row;
    EXPECT_STREQ(row.name, "GlueBox<ZArrayT<ZSelector> >");
    EXPECT_NE(method(row, "GlueBox<ZArrayT<ZSelector> >()"), nullptr);
    EXPECT_NE(method(row, "ZArrayT<ZArrayT<ZSelector> > list()"), nullptr);
    EXPECT_NE(method(row, "bool put(const ZArrayT<ZSelector>&)"), nullptr);
    EXPECT_STREQ((typeText<ZHashMapT<const char*, GlueBox<real>>>), "ZHashMapT<const char*, GlueBox<real> >");
    EXPECT_STREQ(typeText<const GlueGauge::Mode&>, "const GlueGauge::Mode&");
    EXPECT_STREQ(typeText<const void* const*>, "const void* const*");
}
