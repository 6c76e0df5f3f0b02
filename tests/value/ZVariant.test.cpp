#include "value/ZVariant.h"

#include "tests/value/madeTypes.h"
#include "text/ZBlendPos.h"

#include <gtest/gtest.h>

namespace {
class Variant : public ValueTest {};
using V = ZVariant;
const void* data(const V& value) { return reinterpret_cast<const byte*>(&value) + 8; }
} // namespace

TEST_F(Variant, PlaceOfTheValueFollowsSizeKindAndAlignment) {
    struct Row {
        int size, alignment;
        bool inside;
    };
    for (Row row : {Row{1, 1, true},
                    {8, 8, true},
                    {16, 8, true},
                    {16, 4, true},
                    {17, 1, false},
                    {16, 16, false},
                    {24, 8, false}}) {
        ZMetaType* type = zmake<ZMetaType>(nullptr, ZSelector("TestSized"), ZMetaType::Structure);
        type->setSize(row.size);
        type->setAlignment(row.alignment);
        alignas(16) byte bytes[32] = {1, 2, 3};
        {
            V made(type, bytes);
            EXPECT_EQ(made.getPtr() == data(made), row.inside) << row.size << " " << row.alignment;
            ASSERT_TRUE(made.getPtr());
            EXPECT_EQ(std::memcmp(made.getPtr(), bytes, row.size), 0);
            V copy(made);
            EXPECT_EQ(copy.getPtr() == made.getPtr(), !row.inside);
            EXPECT_EQ(copy.referenceCount(), row.inside ? 0 : 2);
        }
        type->release();
    }
}

TEST_F(Variant, NullAndBareBlocks) {
    V null;
    EXPECT_TRUE(null.isNull());
    EXPECT_EQ(null.getPtr(), nullptr);
    EXPECT_EQ(null.hashKey(), 0u);
    EXPECT_EQ(null.compare(V()), 0);
    EXPECT_EQ(null.toInt(), 0);
    EXPECT_FALSE(null.toBool());
    EXPECT_TRUE(null.toString().isEmpty());
    EXPECT_TRUE(null.toSelector().isEmpty());
    EXPECT_EQ(null.cost(), 24);
    EXPECT_FALSE(integer(0).isNull());

    auto block = static_cast<char*>(__zalloc(4));
    std::memcpy(block, "abc", 4);
    {
        V first;
        EXPECT_TRUE(first.setBlock(block));
        V second(first), third;
        third = second;
        EXPECT_EQ(refcount(block), 4);
        EXPECT_EQ(third.type(), nullptr);
        EXPECT_EQ(third.getPtr(), block);
        EXPECT_TRUE(third.samePtr(first));
        EXPECT_TRUE(third.detach());
        EXPECT_NE(third.getPtr(), block);
        EXPECT_EQ(refcount(block), 3);
        EXPECT_EQ(third.compare(first), 0);
        EXPECT_EQ(third.hashKey(), first.hashKey());
        static_cast<char*>(third.getPtr())[0] = 'b';
        EXPECT_EQ(third.compare(first), 1);
        EXPECT_EQ(block[0], 'a');
    }
    EXPECT_EQ(refcount(block), 1);
    zfree(block);
}

TEST_F(Variant, CopiesOfADeadInstanceHoldNothing) {
    void* block = __zalloc(4);
    V first;
    ASSERT_TRUE(first.setReference((*types)[ZMetaType::Int], block));
    EXPECT_EQ(refcount(block), 2);
    EXPECT_TRUE(first.isPointer());
    decmemref(block);
    decmemref(block);
    V copy(first);
    EXPECT_EQ(copy.type(), first.type());
    EXPECT_EQ(copy.getPtr(), nullptr);
    EXPECT_TRUE(copy.isNull());
    V assigned;
    assigned = first;
    EXPECT_TRUE(assigned.isNull());
    incmemref(block, true); // for `first`
}

TEST_F(Variant, ValuesOfStructuresAreCopiedSharedAndDetached) {
    failEachAllocation([](AllocProbe&) {
        ZFailGuard guard;
        Small small;
        Large24 large;
        if (guard.rose()) return guard.forget();
        small.setNumber(5);
        large.setNumber(7);
        V a(types->small, &small), b(types->large, &large);
        if (!guard.rose()) {
            EXPECT_EQ(static_cast<Small*>(a.getPtr())->number(), 5);
            EXPECT_EQ(static_cast<Large24*>(b.getPtr())->number(), 7);
            V c(a), d(b);
            EXPECT_EQ(d.getPtr(), b.getPtr());
            EXPECT_EQ(c.isNull(), guard.rose());
            if (d.detach()) {
                EXPECT_NE(d.getPtr(), b.getPtr());
                EXPECT_EQ(d.compare(b), 0);
                EXPECT_EQ(b.referenceCount(), 1);
                static_cast<Large24*>(d.getPtr())->setNumber(8);
                EXPECT_EQ(d.compare(b), 1);
            } else
                EXPECT_EQ(d.getPtr(), b.getPtr());
            const V three = integer(3);
            V e(three);
            const V& expected = e.assign(a) ? a : three;
            EXPECT_EQ(e.compare(expected), 0);
            const V& same = e;
            e = same;
            EXPECT_EQ(e.compare(expected), 0);
        }
        guard.forget();
    });
}

TEST_F(Variant, CopiesOfTextAndNamesShareIt) {
    V first = text("a text that is longer than any inline form");
    V second(first), third(std::move(first));
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(third.compare(second), 0);
    EXPECT_EQ(third.toString(), "a text that is longer than any inline form");
    second = integer(1);
    second = second;
    EXPECT_EQ(second.toInt(), 1);
    V word = name("some word");
    EXPECT_EQ(V(word).toSelector(), ZSelector("some word"));
    word.swap(second);
    EXPECT_EQ(second.toSelector(), ZSelector("some word"));
    EXPECT_EQ(word.toInt(), 1);
    // What is assigned may be part of what goes.
    ZString kept("kept");
    V holder((*types)[ZMetaType::String], &kept);
    holder.setValue(holder.getPtr());
    EXPECT_EQ(holder.toString(), "kept");
}

TEST_F(Variant, ValuesChangeHandsWithoutCopy) {
    long before;
    ASSERT_TRUE(types->large->getPtrType());
    {
        AllocProbe probe;
        alignas(Small) byte memory[sizeof(Small)];
        auto small = ::new (memory) Small();
        small->setNumber(9);
        V taken;
        EXPECT_TRUE(taken.setValue(types->small, small, false, false));
        EXPECT_EQ(static_cast<Small*>(taken.getPtr())->number(), 9);
        auto large = zmake<Large24>();
        before = probe.allocations();
        EXPECT_TRUE(taken.setValue(types->large, large, false, false));
        EXPECT_EQ(taken.getPtr(), large);
        EXPECT_EQ(taken.referenceCount(), 1);
        EXPECT_EQ(probe.allocations(), before);
        // As a counted pointer, given directly and by its address.
        V pointer, other;
        EXPECT_TRUE(pointer.setReference(types->large, large));
        EXPECT_EQ(refcount(large), 2);
        EXPECT_EQ(pointer.type(), types->large->getPtrType());
        EXPECT_TRUE(other.setValue(pointer.type(), &large, true, true));
        EXPECT_EQ(other.getPtr(), large);
        EXPECT_EQ(refcount(large), 3);
        EXPECT_EQ(V(pointer.type(), &large).getPtr(), large);
        EXPECT_EQ(pointer.mainType(), types->large);
        EXPECT_TRUE(pointer.isType(types->large));
        EXPECT_EQ(pointer.compare(other), 0);
        taken.clear();
        pointer.clear();
        other.clear();
        EXPECT_EQ(probe.live(), 0) << probe.leaks();
    }
}

TEST_F(Variant, ATypeAloneAndItsFirstValue) {
    V number((*types)[ZMetaType::Int]), nothing(types->large), small(types->small);
    EXPECT_FALSE(number.isNull());
    EXPECT_TRUE(number.isNullData());
    EXPECT_EQ(number.toInt(), 0);
    EXPECT_TRUE(nothing.isNull());
    EXPECT_TRUE(nothing.isNullData());
    EXPECT_EQ(nothing.mainType(), types->large);
    EXPECT_FALSE(small.isNull());
    V copy(nothing);
    EXPECT_TRUE(copy.isNull());
    EXPECT_EQ(copy.type(), types->large);
    EXPECT_TRUE(copy.resetValue());
    EXPECT_FALSE(copy.isNull());
    EXPECT_EQ(nothing.compare(copy) < 0, nothing.getPtr() < copy.getPtr());
    EXPECT_TRUE(copy.clearValue());
    EXPECT_TRUE(copy.isNull());
    V word = name("word");
    EXPECT_TRUE(word.clearValue());
    EXPECT_TRUE(word.toSelector().isEmpty());
    EXPECT_EQ(word.type(), (*types)[ZMetaType::Selector]);
}

TEST_F(Variant, QualifiedTypesAreHeldAsPlainOnes) {
    ZMetaType* integers = (*types)[ZMetaType::Int];
    int seven = 7;
    V constant(integers->getConstType(), &seven);
    EXPECT_EQ(constant.type(), integers);
    EXPECT_EQ(constant.compare(integer(7)), 0);
}

TEST_F(Variant, CopiesAreMadeOwnAndFallBackToNull) {
    failEachAllocation([](AllocProbe&) {
        ZFailGuard guard;
        Large24 large;
        if (guard.rose()) return guard.forget();
        V a(types->large, &large);
        if (!guard.rose()) {
            V b = a.copy();
            if (!b.isNull()) {
                EXPECT_NE(b.getPtr(), a.getPtr());
                EXPECT_EQ(b.referenceCount(), 1);
            }
            EXPECT_EQ(a.referenceCount(), 1);
            void* own = a.copyValue();
            EXPECT_NE(own, a.getPtr());
            types->large->directInstanceRelease(own);
        }
        guard.forget();
    });
}

TEST_F(Variant, BlendingPicksWhatItCant) {
    V low = text("low"), high = text("high"), number = integer(1);
    ZBlendPos early(0.2), middle(0.5), late(0.7);
    V made;
    EXPECT_TRUE(made.blendFrom(&low, &number, early));
    EXPECT_EQ(made.compare(low), 0);
    EXPECT_TRUE(made.blendFrom(&low, &number, middle));
    EXPECT_EQ(made.compare(low), 0);
    EXPECT_TRUE(made.blendFrom(&low, &number, late));
    EXPECT_EQ(made.compare(number), 0);
    EXPECT_TRUE(made.blendFrom(&low, nullptr, late));
    EXPECT_EQ(made.compare(low), 0);
    EXPECT_TRUE(made.blendFrom(nullptr, &high, early));
    EXPECT_EQ(made.compare(high), 0);
    EXPECT_TRUE(made.blendFrom(nullptr, nullptr, early));
    EXPECT_TRUE(made.isNull());
    V null;
    EXPECT_TRUE(made.blendFrom(&null, &high, early));
    EXPECT_TRUE(made.isNull());
    EXPECT_TRUE(made.blendFrom(&high, &high, early));
    EXPECT_EQ(made.compare(high), 0);
    EXPECT_TRUE(made.blendFrom(&made, &low, late));
    EXPECT_EQ(made.compare(low), 0);
    // No instance has no identity either.
    V nothing(ztype<ZObject>());
    EXPECT_TRUE(made.blendFrom(&nothing, &null, early));
    EXPECT_TRUE(made.isNull());
    EXPECT_TRUE(made.blendFrom(&nothing, nullptr, early));
    EXPECT_EQ(made.type(), nothing.type());
}
