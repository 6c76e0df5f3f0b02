#include "object/ZEnumType.h"

#include "core/construct.h"
#include "object/ZProperty.h"
#include "object/ztype.h"
#include "tests/object/enumText.h"
#include "tests/support/TypeTest.h"
#include "tests/support/invoke.h"
#include "text/ZString.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

using EnumTypeTest = TypeTest;

struct ReleaseType {
    void operator()(ZMetaType* type) const { type->release(); }
};
using EnumTypeHolder = std::unique_ptr<ZEnumType, ReleaseType>;
EnumTypeHolder styleType() {
    ZArrayT<ZEnumItem> items;
    items.append(ZEnumItem("Bold", 1));
    items.append(ZEnumItem("Italic", 2));
    items.append(ZEnumItem("Overline", 4));
    return EnumTypeHolder(zmake<ZEnumType>(nullptr, ZSelector("Style"), items));
}

TEST_F(EnumTypeTest, NamesAreBoolPropertiesOfAValue) {
    EnumTypeHolder type = styleType();
    ASSERT_TRUE(type);
    uint16_t packed[2] = {};
    for (uint size : {1u, 2u, 4u}) {
        // One byte off, so that no value is aligned.
        void* value = reinterpret_cast<byte*>(packed) + (size < 4 ? 1 : 0);
        type->setSize(size);
        type->constructInstance(value);
        const ZTypedPtr at(type.get(), value);
        EXPECT_TRUE(type->setSyntheticProperty(at, "Italic", ZVariant(true), true));
        EXPECT_TRUE(type->setSyntheticProperty(at, "overline", ZVariant(1), true));
        EXPECT_EQ(type->valueOf(value), 6);
        EXPECT_TRUE(type->clearSyntheticProperty(at, "Italic"));
        EXPECT_EQ(type->valueOf(value), 4);
        EXPECT_TRUE(type->getSyntheticProperty(at, "Overline", true).toBool());
        EXPECT_FALSE(type->getSyntheticProperty(at, "bold", true).toBool());
        EXPECT_FALSE(type->setSyntheticProperty(at, "gone", ZVariant(true), true));
        EXPECT_FALSE(type->setSyntheticProperty(at, "Bold", ZVariant("maybe"), true));
        EXPECT_EQ(type->valueOf(value), 4);
    }
    const int value = 2;
    ZProperty found;
    const ZTypedPtr at(type.get(), &value);
    EXPECT_TRUE(type->syntheticProperty(at, "Italic", found, true));
    EXPECT_TRUE(found.getItemType() == ztype<bool>() && found.value().toBool());
    EXPECT_TRUE(type->isSynthetic() && type->hasSyntheticProperty(at, "bold"));
    ZArrayT<ZSelector> names;
    EXPECT_TRUE(type->syntheticPropertyNames(at, names));
    EXPECT_EQ(join(names), "Bold Italic Overline");
    EXPECT_EQ(type->syntheticPropertyCount(at), 3u);
}

TEST_F(EnumTypeTest, NamesOfAChoiceExcludeEachOther) {
    EnumTypeHolder type(zmake<ZEnumType>(nullptr, ZSelector("Unit")));
    ASSERT_TRUE(type && type->add("mm", 1) && type->add("cm", 2) && type->add("inch", 3) && type->add("none", -1));
    EXPECT_FALSE(type->isBitFlags());
    int value = 3;
    const ZTypedPtr at(type.get(), &value);
    EXPECT_FALSE(type->getSyntheticProperty(at, "mm", true).toBool());
    EXPECT_TRUE(type->getSyntheticProperty(at, "inch", true).toBool());
    EXPECT_TRUE(type->setSyntheticProperty(at, "cm", ZVariant(true), true));
    EXPECT_EQ(value, 2);
    EXPECT_TRUE(type->setSyntheticProperty(at, "mm", ZVariant(false), true));
    EXPECT_EQ(value, 2) << "it wasn't that one";
    EXPECT_TRUE(type->setSyntheticProperty(at, "cm", ZVariant(false), true));
    EXPECT_EQ(value, 0);
    type->setSize(1);
    byte small;
    type->setValueOf(&small, -1);
    EXPECT_EQ(type->valueOf(&small), -1) << "a value of one byte may be a negative one";
    EXPECT_EQ(text(type->name(type->valueOf(&small))), "none");
    ZVariant held(type.get(), &small);
    EXPECT_EQ(held.toInt(), -1);
    // One without a name is what its bits say; a value never reads beyond its bytes.
    byte row[] = {200, 0xFF, 0xFF, 0xFF};
    ZString printed;
    EXPECT_TRUE(type->toString(row, printed));
    EXPECT_EQ(text(ZSelector(printed)), "200");
    held = ZVariant(type.get(), row);
    EXPECT_EQ(held.toInt(), 200);
}

TEST_F(EnumTypeTest, DeclaredTypesAnswerByName) {
    ZMetaType* flags = ZMetaType::find("ZMetaType::Flags");
    ASSERT_TRUE(flags);
    EXPECT_EQ(flags->type(), ztype<ZEnumType>());
    ZVariant type(static_cast<const ZType*>(flags));
    EXPECT_EQ(invoke(type, "value", ZSelector("Polymorphic")).toInt(), 4);
    EXPECT_TRUE(invoke(type, "isBitFlags").toBool());
    EXPECT_EQ(ztype<ZSelector>()->type()->getName(), ZSelector("ZSelectorType"));
    // Made and filled by name.
    const ZEnum none;
    ZVariant names(ztype<ZEnum>(), &none);
    EXPECT_TRUE(invoke(names, "add", ZSelector("a b"), 5).toBool());
    EXPECT_EQ(invoke(invoke(invoke(names, "items"), "get", 0u), "value").toInt(), 5);
}

TEST_F(EnumTypeTest, TextsBecomeValues) {
    EnumTypeHolder type = styleType();
    struct {
        const char* text;
        int value; ///< -1: refused
    } rows[] = {{"Italic", 2}, {" Bold  Overline ", 5}, {"7", 7},       {"0x4", 4},
                {"Bold 8", 9}, {"Bold gone", -1},       {"italic", -1}, {"", -1}};
    for (const auto& row : rows) {
        int value = -1;
        EXPECT_EQ(type->fromString(&value, ZString(row.text)), row.value != -1) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
    EXPECT_TRUE(type->remove("Bold") && type->add("Odd", 3) && type->add("Part", 6));
    int value = -1;
    EXPECT_FALSE(type->fromString(&value, "Odd Italic")) << "no flags any more";
}

TEST_F(EnumTypeTest, TypesCopyCompareAndStep) {
    EnumTypeHolder type = styleType(), same = styleType();
    EXPECT_EQ(type->compare(same.get()), 0);
    EXPECT_TRUE(same->add("Underline", 8));
    EXPECT_NE(type->compare(same.get()), 0);
    EnumTypeHolder copy(static_cast<ZEnumType*>(same->copy()));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->data().getType(), copy.get());
    EXPECT_EQ(print(copy->data()), "Bold=1 Italic=2 Overline=4 Underline=8");
    EXPECT_TRUE(copy->remove(8));
    EXPECT_EQ(same->value("Underline"), 8);
    EXPECT_EQ(text(type->nextEnumName("Overline")), "Bold");
    EXPECT_EQ(type->prevEnumValue(1), 4);
    ZMetaType* variant = type->getQualified("const Style");
    ASSERT_TRUE(variant);
    EXPECT_EQ(variant->nextEnumValue(1), 2);
    EXPECT_EQ(variant->enumType(), type.get());
    std::unique_ptr<ZMetaType, ReleaseType> plain(zmake<ZMetaType>(nullptr, ZSelector("Plain"), ZMetaType::Int));
    EXPECT_EQ(plain->nextEnumValue(5), 5);
    EXPECT_TRUE(plain->nextEnumName("a").isEmpty());
}

TEST_F(EnumTypeTest, EachFailingAllocationLeavesTheTypeAsItWas) {
    const ZSelector added("Added");
    added.lowerCase();
    EnumTypeHolder type = styleType();
    for (long n = 1, failed = 1; failed; ++n) {
        AllocProbe probe;
        probe.failAt(n);
        const bool done = type->add(added, 9);
        failed = probe.failed();
        probe.failAt(0);
        EXPECT_NE(done, failed != 0);
        EXPECT_EQ(type->value(added, nullptr), done);
        if (done) { EXPECT_TRUE(type->remove(added)); }
        toolkit::epochDrain();
        EXPECT_EQ(print(type->data()), "Bold=1 Italic=2 Overline=4");
    }
}

TEST_F(EnumTypeTest, ReadersGoOnWhileTheTableChanges) {
    EnumTypeHolder type = styleType();
    std::atomic<bool> over{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([&] {
            const ZSelector name("Italic");
            const int value = 2;
            const ZTypedPtr at(type.get(), &value);
            while (!over)
                wrong += type->value(name) != 2 || !(type->name(2) == name) ||
                         !type->getSyntheticProperty(at, name, true).toBool() ||
                         type->resolve(ZString("Bold|Italic")) != 3;
        });
    for (int i = 0; i < 300; ++i) EXPECT_TRUE(type->add("Added", 8) && type->remove("Added"));
    over = true;
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
