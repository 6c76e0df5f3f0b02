#include "object/ZType.h"

#include "object/ZPropertyPtr.h"
#include "object/ZPropertyRef.h"
#include "object/ztype.h"
#include "tests/object/HandMade.h"
#include "tests/support/CoreScope.h"
#include "value/ZVariant.h"

#include <gtest/gtest.h>

using Kind = ZMetaType::Type;

namespace {

/// With the pools of properties open, whether or not the library's start has opened them.
class TypeKernel : public CoreTest {
protected:
    static void SetUpTestSuite() {
        CoreTest::SetUpTestSuite();
        ZPropertyPtr* entry = ZPropertyPtr::create(ZSelector("first"));
        opened = !entry && ZProperty::open() && ZPropertyPtr::open();
        if (entry) entry->release();
    }
    static void TearDownTestSuite() {
        if (opened) ZPropertyPtr::close();
        if (opened) ZProperty::close();
        CoreTest::TearDownTestSuite();
    }
    static inline bool opened = false;
};

void addProperty(ZType* instance, const char* name) {
    ZPropertyPtr* entry = ZPropertyPtr::create(ZSelector(name), ZVariant());
    ASSERT_TRUE(entry && instance->getDynamicProperties().add(entry));
}

struct Watched : ZType {
    static inline int ended = 0, destroyed = 0;
    using ZType::ZType;
    ~Watched() override { ++destroyed; }
    void deleting() override {
        EXPECT_EQ(destroyed, ended);
        EXPECT_EQ(retain(), nullptr) << "it is on its way out";
        ++ended;
    }
};

} // namespace

TEST_F(TypeKernel, LivesByItsCount) {
    Watched::ended = Watched::destroyed = 0;
    auto made = zmake<Watched>();
    EXPECT_EQ(made->refcount(), 1);
    EXPECT_EQ(made->retain(), made);
    made->release();
    EXPECT_EQ(Watched::ended, 0);
    made->release();
    EXPECT_EQ(Watched::ended, 1);
    EXPECT_EQ(Watched::destroyed, 1);
    zrelease(zmake<Watched>());
    EXPECT_EQ(Watched::ended, 2) << "the construction pattern ends it the same way";
}

TEST_F(TypeKernel, CopiesShareDynamicPropertiesUntilAWrite) {
    TypePtr type = makeSized("Bag", Kind::Dynamic, sizeof(ZType));
    auto first = zmake<ZType>(orv::passType(type));
    addProperty(first, "one");
    EXPECT_TRUE(first->isDetached());
    ZType* second = first->copy();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->type(), type.get());
    EXPECT_FALSE(first->isDetached() || second->isDetached());
    EXPECT_EQ(first->compare(second), 0);
    addProperty(second, "two");
    EXPECT_TRUE(first->isDetached() && second->isDetached());
    EXPECT_EQ(first->getDynamicProperties().count(), 1u);
    EXPECT_NE(first->compare(second), 0);
    EXPECT_EQ(first->compare(second), -second->compare(first));
    EXPECT_TRUE(first->assign(second));
    EXPECT_EQ(first->compare(second), 0);
    EXPECT_TRUE(first->detach() && first->isDetached());
    first->release();
    second->release();
}

TEST_F(TypeKernel, WithoutATypeItIsABag) {
    auto bag = zmake<ZType>();
    EXPECT_EQ(bag->type(), ztype<ZType>());
    ASSERT_TRUE(bag->setType(static_cast<ZMetaType*>(nullptr)));
    auto from = zmake<ZType>();
    ASSERT_TRUE(from->addProperty("inner", ZVariant(3)) && from->addProperty("outer", ZVariant(4)));
    *bag += ZPropertyRef(from, "inner");
    *bag += ZPropertyRef(from, "outer");
    *bag += ZPropertyRef();
    *bag -= ZPropertyRef(from, "outer");
    from->release();
    EXPECT_EQ(bag->propertyCount(), 1u);
    EXPECT_EQ(bag->getProperty("inner").toInt(), 3);
    EXPECT_FALSE(bag->setProperty("other", ZVariant(1)));
    ZType* copy = bag->copy();
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->type(), nullptr);
    EXPECT_EQ(copy->compare(bag), 0);
    EXPECT_TRUE(bag->setProperty("inner", ZVariant(5)));
    EXPECT_EQ(copy->getProperty("inner").toInt(), 3);
    copy->release();
    bag->release();
}

TEST_F(TypeKernel, LongChainsNeedNoDeepStack) {
    constexpr int links = 100000;
    auto chain = [](int length) {
        ZType* last = zmake<ZType>();
        last->addProperty("end", ZVariant(7));
        for (int i = 0; i < length; ++i) {
            auto holder = zmake<ZType>();
            EXPECT_TRUE(holder->addProperty("next", ZVariant(last), uint(ZProperty::Dynamic | ZProperty::Delegate)));
            last->release();
            last = holder;
        }
        return last;
    };
    ZType *near = chain(100), *first = chain(links), *second = chain(links);
    EXPECT_EQ(near->getProperty("end").toInt(), 7) << "each asks the one behind it";
    EXPECT_TRUE(first->getProperty("end").isNull()) << "but not without an end";
    EXPECT_NE(first->compare(second), 0);
    EXPECT_EQ(first->compare(second), -second->compare(first));
    for (ZType* each : {near, first, second}) each->release();
}

TEST_F(TypeKernel, ComparisonAndAssignmentAskTheType) {
    TypePtr type = makeType("Asked", Kind::Dynamic), other = makeType("Other", Kind::Dynamic);
    auto a = zmake<ZType>(orv::passType(type)), b = zmake<ZType>(orv::passType(other));
    EXPECT_EQ(a->compare(a), 0);
    EXPECT_EQ(a->compare(nullptr), 1) << "null is first";
    EXPECT_EQ(a->compare(b), type.get() < other.get() ? -1 : 1);
    addProperty(b, "kept");
    EXPECT_FALSE(a->assign(b));
    EXPECT_FALSE(a->assign(nullptr));
    EXPECT_TRUE(a->getDynamicProperties().isEmpty());
    EXPECT_EQ(a->key(), ZSelector("Asked"));
    EXPECT_EQ(a->hashKey(), ZSelector("Asked").key());
    EXPECT_FALSE(a->sameType(b));
    EXPECT_TRUE(a->isType("Asked"));
    EXPECT_FALSE(a->isType("Other"));
    EXPECT_FALSE(a->setMetaType(other)) << "the two have nothing to do with each other";
    EXPECT_TRUE(a->setType(static_cast<ZMetaType*>(nullptr)));
    EXPECT_EQ(a->type(), nullptr);
    EXPECT_TRUE(a->key().isEmpty());
    EXPECT_FALSE(a->localizeType(true));
    EXPECT_TRUE(a->setMetaType(b));
    EXPECT_EQ(a->type(), other.get());
    a->release();
    b->release();
}

TEST_F(TypeKernel, StoredNamesLeaveOutThePrefixOfThePlugin) {
    TypePtr type = makeType("ZGamma", Kind::Dynamic);
    auto made = zmake<ZType>(orv::passType(type));
    EXPECT_EQ(made->storedName(), ZSelector("ZGamma"));
    type->setNameLabel("gamma");
    EXPECT_TRUE(made->isTypeLabel("gamma"));
    EXPECT_EQ(made->storedName(), ZSelector("gamma"));
    EXPECT_EQ(made->storedName({}), ZSelector("ZGamma"));
    type->setPluginPrefix("plg.funcxy.");
    type->setPluginId("gamma");
    EXPECT_EQ(made->pluginName(), ZSelector("plg.funcxy.gamma"));
    EXPECT_TRUE(made->isPlugin("gamma"));
    EXPECT_EQ(made->storedName({}), ZSelector("plg.funcxy.gamma"));
    EXPECT_EQ(made->storedName("plg.funcxy"), ZSelector("gamma"));
    EXPECT_EQ(made->storedName("gamma"), ZSelector("gamma"));
    made->release();
}

TEST_F(TypeKernel, LocksAreThoseOfTheBlock) {
    auto made = zmake<ZType>();
    EXPECT_FALSE(made->lockable() || made->lock() || made->unlock());
    EXPECT_TRUE(made->lockObject()) << "nothing to take";
    EXPECT_TRUE(made->makeLock(true, true));
    EXPECT_TRUE(made->setLockLabel("of this test", 4));
    int index = 0;
    EXPECT_STREQ(made->lockLabel(&index), "of this test");
    EXPECT_EQ(index, 4);
    EXPECT_TRUE(made->lock() && made->tryWriteLock());
    EXPECT_TRUE(made->unlock() && made->unlock());
    EXPECT_FALSE(made->unlock());
    EXPECT_TRUE(made->readLock() && made->unlock());
    EXPECT_NE(made->lockNumber(), 0u);
    made->release();
}

TEST_F(TypeKernel, EveryConstructorSurvivesEveryFailingAllocation) {
    TypePtr type = makeSized("Failing", Kind::Dynamic, sizeof(ZType));
    type->setFlags(ZMetaType::Lockable);
    auto source = zmake<ZType>(orv::passType(type));
    addProperty(source, "shared");
    failEachAllocation([&](AllocProbe& probe) {
        ZType *plain = zmake<ZType>(orv::passType(type)), *copy = source->copy();
        EXPECT_EQ(!plain || !copy, probe.failed());
        EXPECT_EQ(zfailcount(), 0);
        if (plain) plain->release();
        if (copy) copy->release();
    });
    EXPECT_TRUE(source->isDetached());
    source->release();
}
