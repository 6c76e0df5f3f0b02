#include "text/ZBlendPos.h"

#include "core/construct.h"
#include "tests/support/AllocProbe.h"

#include <gtest/gtest.h>

namespace {
class BlendPos : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(ZSelector::open()); }
    void TearDown() override { ZSelector::close(); }
};
/// A position with three parts, two of which have positions of their own.
ZBlendPos withParts() {
    ZBlendPos whole(0.25);
    EXPECT_TRUE(whole.setCount(3));
    EXPECT_TRUE(whole.setName(0, ZSelector("width")));
    EXPECT_TRUE(whole.setName(1, ZSelector("fill")));
    EXPECT_TRUE(whole.setPos(0, 0.75));
    ZBlendPos inner(0.5);
    EXPECT_TRUE(inner.setCount(1));
    EXPECT_TRUE(inner.setName(0, ZSelector("red")));
    EXPECT_TRUE(inner.setPos(0, 0.125));
    EXPECT_TRUE(whole.setBlend(1, inner));
    return whole;
}
} // namespace

TEST_F(BlendPos, PartsByIndexAndName) {
    EXPECT_EQ(ZBlendPos().pos(), 0.5);
    EXPECT_EQ(ZBlendPos().basePos(), 0.5);
    ZBlendPos whole = withParts();
    whole.setPerceptual(true);
    whole.setCMS(&whole);
    struct Row {
        int index;
        const char* name;
        real pos;
        int parts;
    } rows[] = {
        {0, "width", 0.75, 0}, {1, "fill", 0.5, 1}, {2, "", 0.25, 3}, {3, "none", 0.25, 3}, {-1, "red", 0.25, 3}};
    for (auto& row : rows) {
        EXPECT_EQ(whole.fieldPos(row.index), row.pos) << row.index;
        EXPECT_EQ(whole.fieldPos(ZSelector(row.name)), row.pos) << row.name;
        for (const ZBlendPos& field : {whole.fieldBlend(row.index), whole.fieldBlend(ZSelector(row.name))}) {
            EXPECT_EQ(field.count(), row.parts) << row.name;
            EXPECT_EQ(field.pos(), 0.25);
            EXPECT_EQ(field.cms(), &whole);
            EXPECT_TRUE(field.perceptual());
        }
    }
    EXPECT_EQ(whole.fieldBlend(1).fieldPos(ZSelector("red")), 0.125);
    EXPECT_TRUE(whole.blendItems());
    for (int index : {-1, 3}) {
        EXPECT_FALSE(whole.setPos(index, 1));
        EXPECT_FALSE(whole.setName(index, ZSelector("x")));
        EXPECT_FALSE(whole.setBlend(index, whole));
    }
    EXPECT_FALSE(whole.setCount(-1));
    EXPECT_FALSE(whole.setCount(INT_MAX));
    EXPECT_TRUE(whole.setCount(1));
    EXPECT_EQ(whole.fieldPos(0), 0.75);
    EXPECT_EQ(whole.fieldPos(1), 0.25);
    EXPECT_TRUE(whole.setCount(0));
    EXPECT_FALSE(whole.blendItems());
}

TEST_F(BlendPos, CopiesDontFollow) {
    ZBlendPos whole = withParts(), copy(whole);
    EXPECT_TRUE(copy.setPos(0, 0.5));
    EXPECT_TRUE(copy.setPos(1, 1.0));
    EXPECT_TRUE(copy.setPos(0.875));
    EXPECT_TRUE(copy.setPathData(&copy));
    EXPECT_EQ(whole.fieldPos(0), 0.75);
    EXPECT_EQ(whole.fieldPos(1), 0.5);
    EXPECT_EQ(whole.pos(), 0.25);
    EXPECT_EQ(whole.pathData(), nullptr);
    EXPECT_EQ(copy.pathData(), &copy);
    EXPECT_EQ(copy.native()->pos, 0.875f);

    // A position may become a part of itself: as it was then.
    EXPECT_TRUE(whole.setBlend(2, whole));
    EXPECT_EQ(whole.fieldBlend(2).fieldBlend(2).fieldPos(0), 0.75);
    EXPECT_EQ(whole.fieldPos(2), 0.25);
    ZBlendPos nested(0.1);
    int depth = 1;
    for (; depth < 2000; ++depth) {
        ZBlendPos outer(0.1);
        outer.setCount(1);
        if (!outer.setBlend(0, nested)) break;
        nested = outer;
    }
    EXPECT_EQ(depth, orv::BlendRecord::deepest);
}

TEST_F(BlendPos, RecordsAreCounted) {
    ZBlendPos first(0.25);
    orv::BlendRecord* record = first.native();
    EXPECT_EQ(record->pos, 0.25f);
    EXPECT_EQ(first.native(), record);
    record->basePos = 0.75f;
    {
        ZBlendPos second(record);
        EXPECT_EQ(refcount(record), 2);
        EXPECT_EQ(second.basePos(), 0.75);
        second = second;
        EXPECT_EQ(refcount(record), 2);
    }
    EXPECT_EQ(refcount(record), 1);
    EXPECT_EQ(ZBlendPos(static_cast<orv::BlendRecord*>(nullptr)).pos(), 0.5);
}

TEST_F(BlendPos, NothingChangesWithoutMemory) {
    ZSelector name("name");
    ZBlendPos whole = withParts();
    failEachAllocation([&](AllocProbe& probe) {
        ZBlendPos copy(whole);
        bool counted = copy.setCount(5);
        EXPECT_EQ(copy.count(), counted ? 5 : 3);
        bool named = copy.setName(2, name), moved = copy.setPos(1, 0.0), nested = copy.setBlend(2, whole);
        EXPECT_EQ(copy.fieldPos(1), moved ? 0.0 : 0.5);
        EXPECT_EQ(copy.fieldPos(name), named && nested ? 0.25 : copy.pos());
        EXPECT_EQ(counted && named && moved && nested, !probe.failed());
    });
    EXPECT_EQ(whole.fieldPos(1), 0.5);
}
