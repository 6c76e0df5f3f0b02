#include "object/ztype.h"
#include "tests/object/HandMade.h"
#include "tests/support/CoreScope.h"
#include "text/ZBlendPos.h"
#include "value/ZVariant.h"

#include <gtest/gtest.h>
#include <string>

using Kind = ZMetaType::Type;

namespace {

class MetaTypeConvert : public CoreTest {};

/// The text of what a value becomes as one of another kind; "(none)" where it can't be converted.
std::string converted(Kind to, Kind from, const char* text) {
    TypePtr source = makeType("ConvertFrom", from), target = makeType("ConvertTo", to);
    void* value = source->createInstance();
    EXPECT_TRUE(source->fromString(value, text)) << text;
    alignas(16) byte room[16];
    std::string out = "(none)";
    const bool done = target->constructFrom(room, ZVariant(source, value));
    if (done) {
        ZString printed;
        EXPECT_TRUE(target->toString(room, printed));
        char* bytes = printed.astr();
        out = bytes ? bytes : "";
        zfree(bytes);
        target->destructInstance(room);
    }
    source->releaseInstance(value);
    return out;
}
/// The same for what lies between two values.
std::string blended(Kind kind, const char* a, const char* b, double pos) {
    TypePtr type = makeType("Blended", kind);
    void *first = a ? type->createInstance() : nullptr, *second = b ? type->createInstance() : nullptr;
    if (a) { EXPECT_TRUE(type->fromString(first, a)); }
    if (b) { EXPECT_TRUE(type->fromString(second, b)); }
    void* made = type->blendInstance(first, second, ZBlendPos(pos));
    ZString printed;
    EXPECT_TRUE(made && type->toString(made, printed));
    char* bytes = printed.astr();
    std::string out = bytes ? bytes : "";
    zfree(bytes);
    for (void* instance : {first, second, made}) type->releaseInstance(instance);
    return out;
}

} // namespace

TEST_F(MetaTypeConvert, PlainKindsBecomeEachOther) {
    struct Row {
        Kind to, from;
        const char *text, *result;
    };
    const Row rows[] = {
        {Kind::Int, Kind::Real, "2.75", "2"},        {Kind::Byte, Kind::Real, "-4", "0"},
        {Kind::Real, Kind::Int, "-3", "-3"},         {Kind::Bool, Kind::Int, "7", "yes"},
        {Kind::String, Kind::Int, "42", "42"},       {Kind::Selector, Kind::Bool, "no", "no"},
        {Kind::Int, Kind::String, "17", "17"},       {Kind::Real, Kind::Selector, "1.5", "1.5"},
        {Kind::Int, Kind::String, "many", "(none)"}, {Kind::String, Kind::Selector, "a name", "a name"},
        {Kind::Byte, Kind::String, "256", "(none)"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(converted(row.to, row.from, row.text), row.result)
            << row.text << " of kind " << int(row.from) << " to " << int(row.to);
}

TEST_F(MetaTypeConvert, WhatHasNothingInCommonIsRefused) {
    TypePtr base = makeSized("ConvBase", Kind::Structure, 8), type = makeType("ConvType", Kind::Structure, {base}),
            other = makeSized("ConvOther", Kind::Structure, 8);
    type->setSize(16);
    type->setBaseOffset(0, 8);
    large pair[2] = {1, 2}, out = 0;
    const ZVariant value(type, pair);
    EXPECT_TRUE(base->constructFrom(&out, value)) << "the part of the base";
    EXPECT_EQ(out, 2);
    EXPECT_FALSE(other->constructFrom(&out, value));
    EXPECT_FALSE(type->constructFrom(pair, ZVariant(base, &out))) << "a base isn't enough";
    EXPECT_FALSE(base->constructFrom(&out, ZVariant()));
    EXPECT_EQ(other->createFrom(value), nullptr);
    EXPECT_FALSE(base->getPtrType()->constructFrom(&out, value)) << "a value has no block of its own";
    EXPECT_EQ(type->implicitDistance(other), -1);
    base->clearVariants();
}

TEST_F(MetaTypeConvert, VariantsAreTakenByAnyParameterThatAsksForThem) {
    TypePtr any = makeType("AnyValue", Kind::Class), type = makeType("SomeValue", Kind::Class);
    any->setIndexLabel(ZMetaType::Variant);
    EXPECT_EQ(type->distance(any, false), -1);
    EXPECT_EQ(type->distance(any, true), 1 << 26);
    EXPECT_EQ(type->distance(any->getQualified("const AnyValue&"), true), 1 << 26);
    ZArrayT<ZMetaType*> arguments, parameters;
    for (int i = 0; i < 2; ++i) arguments.append(type.get());
    parameters.append(type.get());
    parameters.append(any.get());
    EXPECT_EQ(ZMetaType::distance(arguments, parameters, true, true, true), 1 << 26);
    arguments.append(type.get());
    EXPECT_EQ(ZMetaType::distance(arguments, parameters, true, false, true), (1 << 26) + 64);
    any->clearVariants();
}

TEST_F(MetaTypeConvert, ConstructorsThatConvertCountForWhatIsNearToTheirArgument) {
    ZMetaType *time = ztype<ZAtomicInt>(), *number = ztype<int>(), *single = ztype<float>();
    EXPECT_TRUE(time->getImplicitFrom().contains(number)) << "of a package that opens later too";
    EXPECT_TRUE(number->getImplicitTo().contains(time));
    constexpr int converted = 1 << 25;
    EXPECT_EQ(number->distance(time, false), -1);
    EXPECT_EQ(number->distance(time, true), converted);
    EXPECT_EQ(ztype<byte>()->distance(time, true), converted + 2);
    EXPECT_EQ(single->distance(time, true), converted + 3);
    EXPECT_EQ(ztype<ZString>()->distance(time, true), -1);
}

TEST_F(MetaTypeConvert, BlendsLieBetween) {
    struct Row {
        Kind kind;
        const char *a, *b;
        double pos;
        const char* result;
    };
    const Row rows[] = {
        {Kind::Int, "0", "10", 0.25, "3"},
        {Kind::Int, "-2147483648", "2147483647", 1, "2147483647"},
        {Kind::Byte, "0", "255", 0.5, "128"},
        {Kind::ULarge, "18446744073709551615", "18446744073709551613", 0.5, "18446744073709551614"},
        {Kind::Large, "9223372036854775807", "9223372036854775807", 0.3, "9223372036854775807"},
        {Kind::Real, "1", "2", 0.5, "1.5"},
        {Kind::Real, "1", "2", 0, "1"},
        {Kind::Bool, "no", "yes", 0.5, "no"},
        {Kind::Bool, "no", "yes", 0.51, "yes"},
        {Kind::String, "left", "right", 0.5, "left"},
        {Kind::String, "left", "right", 0.75, "right"},
        {Kind::Selector, "one", "two", 1, "two"},
        {Kind::Real, "4", nullptr, 0.5, "4"},
        {Kind::Int, nullptr, "9", 0.1, "9"},
        {Kind::String, "only", nullptr, 0.9, "only"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(blended(row.kind, row.a, row.b, row.pos), row.result)
            << (row.a ? row.a : "null") << " and " << (row.b ? row.b : "null") << " at " << row.pos;
    TypePtr text = makeType("Identity", Kind::String);
    void* value = text->createInstance();
    EXPECT_TRUE(text->fromString(value, "something"));
    EXPECT_TRUE(text->setIdentityInstance(value));
    EXPECT_TRUE(text->isNullData(value));
    text->releaseInstance(value);
    EXPECT_EQ(text->blendInstance(nullptr, nullptr, ZBlendPos(0.5)), nullptr);
}
