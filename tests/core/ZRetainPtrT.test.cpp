#include "core/ZRetainPtrT.h"

#include "core/ZArrayT.h"
#include "core/ZWrapPtrT.h"
#include "tests/support/AllocProbe.h"

#include <gtest/gtest.h>

namespace {
struct Plain {
    int value = 7;
};

/// Counts by itself; refuses once it is closed.
template <class Answer> struct Counted {
    int references = 1;
    bool closed = false;
    Answer retain() {
        if (!closed) ++references;
        if constexpr (std::is_pointer_v<Answer>)
            return closed ? nullptr : this;
        else if constexpr (!std::is_void_v<Answer>)
            return closed ? 0 : references;
    }
    void release() { --references; }
};

template <class T> class Retaining : public testing::Test {};
using Answers = testing::Types<void*, int, bool>;
TYPED_TEST_SUITE(Retaining, Answers);
} // namespace

TYPED_TEST(Retaining, ByTheClassItself) {
    Counted<TypeParam> object;
    using Pointer = ZRetainPtrT<Counted<TypeParam>>;
    {
        Pointer one(&object), two(one), three;
        EXPECT_EQ(object.references, 3);
        three = two;
        three = *&three;
        EXPECT_EQ(object.references, 4);
        two = std::move(three);
        EXPECT_EQ(object.references, 3);
        object.closed = true;
        Pointer refused(one);
        EXPECT_TRUE(refused.isNull());
        EXPECT_EQ(one.compare(two), 0);
        EXPECT_GT(one.compare(refused), 0);
    }
    EXPECT_EQ(object.references, 1);
}

TEST(RetainPtr, ByTheBlock) {
    AllocProbe probe;
    {
        auto pointer = ZRetainPtrT<Plain>::adopt(zmake<Plain>());
        ZArrayT<ZRetainPtrT<Plain>> array;
        for (int i = 0; i < 10; ++i) ASSERT_TRUE(array.insert(0, pointer));
        EXPECT_EQ(refcount(pointer.get()), 11);
        ASSERT_TRUE(array.remove(2, 5));
        EXPECT_EQ(refcount(pointer.get()), 6);
        EXPECT_EQ(array.indexOf(pointer), 0);
        array.clear();
        Plain* own = pointer.give();
        EXPECT_TRUE(pointer.isNull());
        EXPECT_EQ(refcount(own), 1);
        zrelease(own);
        EXPECT_TRUE(ZRetainPtrT<Plain>(nullptr).isNull());
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(WrapPtr, HoldsNothing) {
    Counted<int> object;
    ZWrapPtrT<Counted<int>> one(&object), two(one);
    EXPECT_EQ(object.references, 1);
    EXPECT_EQ(one.compare(two), 0);
    EXPECT_EQ(one->references, 1);
}
