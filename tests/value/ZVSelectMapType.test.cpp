#include "value/ZVSelectMapType.h"

#include "object/ZProperty.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "value/ZTypedPtr.h"
#include "value/ZVSelectMap.h"

#include <gtest/gtest.h>

namespace {
class SelectMapType : public CoreTest {};
} // namespace

TEST_F(SelectMapType, KeysAreProperties) {
    ZMetaType* type = ztype<ZVSelectMap>();
    ZVSelectMap map(ztype<ZVariant>());
    ASSERT_TRUE(map.set("width", ZVariant(7)) && map.set("label", ZVariant(ZString("a box"))) && map.set("none", {}));
    ZTypedPtr at(type, &map);
    EXPECT_TRUE(type->isSynthetic());
    EXPECT_TRUE(at.hasProperty("width"));
    EXPECT_FALSE(at.hasProperty("height"));
    EXPECT_EQ(at.getProperty("width").toInt(), 7);
    EXPECT_TRUE(at.getProperty("height").isNull());
    EXPECT_TRUE(at.setProperty("width", ZVariant(8)));
    EXPECT_EQ(map.variant("width").toInt(), 8);
    EXPECT_FALSE(at.setProperty("height", ZVariant(1))) << "setting adds no key";
    EXPECT_EQ(map.count(), 3u);

    EXPECT_EQ(type->syntheticPropertyCount(at), 3u);
    ZArrayT<ZSelector> names;
    EXPECT_TRUE(type->syntheticPropertyNames(at, names));
    ASSERT_EQ(names.count(), 3u);
    EXPECT_EQ(names[1], ZSelector("label"));
    EXPECT_EQ(type->getSyntheticPropertyType(at, "label"), ztype<ZString>());
    EXPECT_EQ(type->getSyntheticPropertyType(at, "none"), ztype<ZVariant>());
    ZProperty found;
    ASSERT_TRUE(type->syntheticProperty(at, "label", found, true));
    EXPECT_EQ(found.name(), ZSelector("label"));
    EXPECT_TRUE(found.value().toString() == "a box");
    EXPECT_TRUE(type->clearSyntheticProperty(at, "label"));
    EXPECT_FALSE(map.haskey("label"));
    // Variants and copies of the type answer too, and without an instance there is nothing.
    EXPECT_TRUE(type->getConstType()->hasSyntheticProperty(at, "width"));
    EXPECT_FALSE(type->hasSyntheticProperty(ZTypedPtr(type, nullptr), "width"));
    // A path goes on from key to key.
    ZVSelectMap inner(ztype<ZVariant>());
    ASSERT_TRUE(inner.set("x", ZVariant(1)) && map.set("pos", ZVariant(type, &inner)));
    EXPECT_EQ(at.getProperty("pos.x").toInt(), 1);
    EXPECT_TRUE(at.setProperty("pos.x", ZVariant(2)));
    EXPECT_EQ(at.getProperty("pos.x").toInt(), 2);
    EXPECT_EQ(inner.variant("x").toInt(), 1) << "the map in the variable is another one";
}
