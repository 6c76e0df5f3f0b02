#include "core/ZAtomicInt.h"
#include "core/ZUnique.h"
#include "object/ZMethodRef.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "tests/support/TempFolder.h"
#include "text/ZBlendPos.h"
#include "text/ZCharBuffer.h"
#include "text/ZFileInfo.h"
#include "text/ZFileName.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

#include <gtest/gtest.h>

namespace {

class TextVariants : public CoreTest {
protected:
    template <class T> static ZVArray items(std::initializer_list<T> values) {
        return ZVArray(ztype<T>(), values.begin(), int(values.size()));
    }
    static ZArrayT<ZVariant> values(std::initializer_list<ZVariant> list) {
        ZArrayT<ZVariant> made;
        for (const ZVariant& value : list) EXPECT_TRUE(made.append(value));
        return made;
    }
};

} // namespace

TEST_F(TextVariants, ListsOfItemsAreWritten) {
    struct Row {
        ZVArray items;
        const char* text;
    };
    ZVArray mixed(ztype<ZVariant>());
    for (const ZVariant& value : {ZVariant(1), ZVariant("two"), ZVariant(2.5)}) ASSERT_TRUE(mixed.append(value));
    const Row rows[] = {
        {items<int>({1, -2, 3}), "1 -2 3"},
        {items<word>({65535}), "65535"},
        {items<real>({0.5, 12.25}), "0.5 12.25"},
        {items<float>({1.5f}), "1.5"},
        {items<ZSelector>({"red", "a b"}), "red a b"},
        {items<ZString>({}), ""},
        {mixed, "1 two 2.5"},
    };
    for (const Row& row : rows) EXPECT_EQ(ZCharBuffer(row.items).string(), row.text);
    EXPECT_EQ(ZCharBuffer(items<real>({0.125, 3}), 2).string(), "0.125 3");
    failEachAllocation([&](AllocProbe&) {
        ZFailGuard guard;
        const ZString text = ZCharBuffer(rows[2].items).string();
        if (!guard.rose()) { EXPECT_EQ(text, rows[2].text); }
        guard.forget();
    });
}

TEST_F(TextVariants, ListsOfNumbersAreRead) {
    const ZVArray integers = ZCharBuffer("12, -7 300").scanIntArray(10);
    EXPECT_EQ(integers.getValueType(), ztype<int>());
    ASSERT_EQ(integers.count(), 3u);
    EXPECT_EQ(integers.variant(1).toInt(), -7);
    const ZVArray reals = ZCharBuffer("0,5 1,25 x").scanRealArray(',');
    ASSERT_EQ(reals.count(), 2u);
    EXPECT_EQ(reals.variant(1).toReal(), 1.25);
    EXPECT_EQ(ZCharBuffer("1.5").scanFloatArray('.').getValueType(), ztype<float>());
    EXPECT_TRUE(ZCharBuffer("none").scanIntArray(10).isEmpty());
}

TEST_F(TextVariants, ResourceStringsTakeValues) {
    const auto list = values({ZVariant(5), ZVariant("five"), ZVariant(ZSelector("name")), ZVariant(), ZVariant(2.5),
                              ZVariant(~0ull), ZVariant(true)});
    EXPECT_EQ(ZString::createParamType(list), "iss ri ");
    ZString text("%1=%2 (%3) [%4] %6 %0");
    EXPECT_TRUE(text.execXResA(list));
    EXPECT_EQ(text, "5=five (name) [] 18446744073709551615 %0");
    text = "%0: %2";
    EXPECT_TRUE(text.execXResW(12, list));
    EXPECT_EQ(text.type(), ZString::WChar);
    EXPECT_EQ(text, "12: five");
    text = "%1, %2";
    EXPECT_TRUE(text.execResAArg(items<int>({3, 4})));
    EXPECT_EQ(text, "3, 4");
}

TEST_F(TextVariants, ScansFillArrays) {
    TempFolder folder;
    folder.file("a.txt", "abc");
    folder.file("below/b.txt");
    folder.file("c.bin");
    const ZFileName name(ZString(folder.path().c_str()));
    ZVArray found, infos;
    EXPECT_TRUE(name.scanFiles(found, true));
    EXPECT_EQ(found.count(), 3u);
    EXPECT_EQ(found.getValueType(), ztype<ZString>());
    ZFileName::Names extensions;
    ASSERT_TRUE(extensions.append("txt"));
    EXPECT_TRUE(ZFileName::scanInfo(infos, name, false, false, extensions));
    ASSERT_EQ(infos.count(), 1u);
    EXPECT_EQ(static_cast<const ZFileInfo*>(std::as_const(infos).get(0))->size(), 3);
    // By name, into an array that is there already.
    ZVariant array(ztype<ZVArray>(), &found), list(ztype<ZFileName::Names>(), &extensions);
    EXPECT_TRUE(ZVariant(ztype<ZFileName>(), &name).invoke("scan", values({array, false, true, list})).toBool());
    EXPECT_FALSE(ZFileName(ZString("/no/such/folder")).scan(found, true, true));
    EXPECT_EQ(found.count(), 3u);
}

TEST_F(TextVariants, CountersAndUniquesFromValues) {
    EXPECT_EQ(ZAtomicInt(ZVariant("17")).get(), 17);
    const ZUnique one;
    EXPECT_TRUE(ZUnique(ZVariant(ztype<ZUnique>(), &one)) == one);
    EXPECT_TRUE(ZUnique(ZVariant(5)).isEmpty());
}

TEST_F(TextVariants, PositionsOfParts) {
    ZBlendPos whole(0.25);
    const ZBlendPos part = whole.create(ztype<int>());
    EXPECT_EQ(part.pos(), 0.25);
    EXPECT_EQ(part.metaType(), ztype<int>());
    EXPECT_EQ(part.parent(), &whole);
    EXPECT_EQ(whole.create(static_cast<const ZType*>(nullptr)).metaType(), nullptr);
    EXPECT_EQ(ZBlendPos(part).metaType(), ztype<int>());
}
