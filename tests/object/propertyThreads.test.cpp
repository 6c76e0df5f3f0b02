#include "object/ZProperty.h"
#include "object/ZPropertyPtr.h"
#include "object/ZPropertyRef.h"
#include "tests/object/propertyTypes.h"
#include "toolkit/lock.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

// Property tables change while other threads read them.

namespace {
using PropertyThreads = PropertyTest;

constexpr int readers = 8;

/// Runs `read` on threads of its own until `write` has been called so often.
void race(int writes, const std::function<void(int round)>& write, const std::function<void()>& read) {
    std::atomic<bool> ended{false};
    std::atomic<int> running{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < readers; ++i)
        threads.emplace_back([&] {
            ++running;
            while (!ended) read();
        });
    while (running < readers) std::this_thread::yield();
    for (int round = 0; round < writes; ++round) write(round);
    ended = true;
    for (std::thread& thread : threads) thread.join();
}

bool countVisit(const ZProperty&, ZVariant&, void* context) {
    ++*static_cast<int*>(context);
    return true;
}
} // namespace

TEST_F(PropertyThreads, DeclarationsComeAndGo) {
    auto both = zmake<TestTagged>();
    ZMetaType *tag = ztype<TestTag>(), *tagged = ztype<TestTagged>();
    const ZSelector later("later"), number("tag"), width("width"), given("given");
    std::atomic<int> wrong{0}, seen{0};
    race(
        150,
        [&](int round) {
            if (!tag->addUserProperty(ZProperty(later, ZVariant(round)))) ++wrong;
            if (round % 5 == 0) tagged->resetType(false);
            if (round % 7 == 0) tag->resetType(round % 2);
            if (!tag->removeUserProperty(later)) ++wrong;
        },
        [&] {
            // What stays is always there, at its place.
            if (both->getProperty(number).toInt() != 7 || both->getProperty(width).toInt() != 3) ++wrong;
            if (both->getProperty(given).toInt() != 11 || !tagged->hasPropertyDef(width)) ++wrong;
            int count = 0;
            if (!both->enumerateProperties(countVisit, &count) || count < 12 || count > 13) ++wrong;
            {
                toolkit::EpochGuard guard;
                if (ZProperty* found = tagged->findPropertyDef(nullptr, later)) seen += found->name() == later;
            }
            ZPropertyRef ref(both, later);
            if (!ref.isNull() && ref.name() != later) ++wrong;
        });
    EXPECT_EQ(wrong, 0);
    EXPECT_FALSE(tagged->hasPropertyDef(later));
    both->release();
}

TEST_F(PropertyThreads, EditsOfSeveralThreadsAllCount) {
    ZMetaType* type = ztype<TestPoint>();
    constexpr int each = 40;
    std::atomic<int> failed{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < readers; ++i)
        threads.emplace_back([&, i] {
            for (int n = 0; n < each; ++n) {
                const ZSelector made(("edit" + std::to_string(i * each + n)).c_str());
                if (!type->addUserProperty(ZProperty(made, ZVariant(n)))) ++failed;
                if (n % 2 && !type->removeUserProperty(made)) ++failed;
                if (n % 10 == 0) type->resetType(false);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failed, 0);
    ZArrayT<ZSelector> names;
    ASSERT_TRUE(type->getUserProperties(names));
    EXPECT_EQ(names.count(), uint(readers * each / 2));
    EXPECT_TRUE(type->hasPropertyDef(name("left")));
    for (const ZSelector& made : names) EXPECT_TRUE(type->removeUserProperty(made));
}

TEST_F(PropertyThreads, TablesAreBuiltOnceWhoeverIsFirst) {
    auto shape = zmake<TestShape>();
    for (int round = 0; round < 20; ++round) {
        ztype<TestShape>()->resetType(false);
        std::atomic<int> waiting{readers}, wrong{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < readers; ++i)
            threads.emplace_back([&] {
                --waiting;
                while (waiting > 0) std::this_thread::yield();
                if (shape->getProperty(ZSelector("width")).toInt() != 3) ++wrong;
                if (ztype<TestShape>()->propertyDefCount() != 11) ++wrong;
                if (!shape->setProperty(ZSelector("nothing"), ZVariant(1))) return;
                ++wrong;
            });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(wrong, 0);
    }
    shape->release();
}

TEST_F(PropertyThreads, WalksOverCopiesThatShareRecords) {
    auto shape = zmake<TestShape>();
    ASSERT_TRUE(shape->addProperty(name("note"), ZVariant(1)));
    ASSERT_TRUE(shape->addProperty(name("text"), ZVariant("kept")));
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < readers; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 50; ++round) {
                auto copy = zmake<TestShape>(shape);
                int add = i + 1;
                copy->updateProperties(
                    nullptr, nullptr,
                    [](const ZProperty& property, ZVariant& value, void* context) {
                        if (property.name() != ZSelector("note")) return false;
                        return value.setInt(value.toInt() + *static_cast<int*>(context));
                    },
                    &add, true, round % 2);
                if (copy->getProperty(ZSelector("note")).toInt() != 1 + add) ++wrong;
                copy->release();
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(shape->getProperty(name("note")).toInt(), 1);
    shape->release();
}

/// A value is saved on another thread, while this one waits to save, or to bring one back: neither gets lost.
TEST_F(PropertyThreads, PushesOfSeveralThreadsAllCount) {
    for (const bool pop : {false, true}) {
        auto shape = zmake<TestShape>();
        ASSERT_TRUE(shape->makeLock(true, true) && shape->addProperty(name("note"), ZVariant(1)));
        for (int i = 0; i < 4; ++i) ASSERT_TRUE(shape->pushProperty(name("note")));
        std::atomic<bool> held{false};
        bool done = false;
        std::thread other([&] {
            shape->writeLock();
            held = true;
            for (int i = 0; i < 500 && !toolkit::waiterCount(toolkit::blockLock(shape)); ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            done = shape->pushProperty(ZSelector("note"));
            shape->unlock();
        });
        while (!held) std::this_thread::yield();
        EXPECT_TRUE(pop ? shape->popProperty(name("note")) : shape->pushProperty(name("note")));
        other.join();
        EXPECT_TRUE(done);
        int saved = 0;
        while (shape->popProperty(name("note"))) ++saved;
        EXPECT_EQ(saved, pop ? 4 : 6);
        EXPECT_EQ(shape->getProperty(name("note")).toInt(), 1);
        shape->release();
    }
}
