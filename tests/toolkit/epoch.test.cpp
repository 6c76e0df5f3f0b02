#include "toolkit/epoch.h"

#include "tests/support/AllocProbe.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

using toolkit::EpochGuard;
using toolkit::EpochLink;
using toolkit::EpochPtr;

namespace {
int reclaimed = 0;

struct Table : EpochLink {
    explicit Table(int value) : first(value), second(-value) { toolkit::increment(alive); }
    ~Table() {
        first = second = 1;
        toolkit::decrement(alive);
    }
    static void reclaim(EpochLink* link) {
        toolkit::increment(reclaimed);
        delete static_cast<Table*>(link);
    }
    int first, second;
    static int alive;
};
int Table::alive = 0;

void retire(Table* table) { toolkit::epochRetire(table, Table::reclaim); }

/// Threads that stand inside a guard until they are sent on.
class Readers {
public:
    explicit Readers(int count) {
        for (int i = 0; i < count; ++i)
            threads.emplace_back([this] {
                EpochGuard guard;
                toolkit::increment(inside);
                while (!toolkit::loadAcquire(leave)) std::this_thread::yield();
            });
        while (toolkit::loadAcquire(inside) < count) std::this_thread::yield();
    }
    ~Readers() {
        toolkit::storeRelease(leave, 1);
        for (auto& thread : threads) thread.join();
    }

private:
    int inside = 0, leave = 0;
    std::vector<std::thread> threads;
};

class Epoch : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(toolkit::epochDrain());
        reclaimed = 0;
    }
    void TearDown() override {
        EXPECT_TRUE(toolkit::epochDrain());
        EXPECT_EQ(Table::alive, 0);
        EXPECT_EQ(toolkit::epochWaiting(), 0);
    }
};
} // namespace

TEST_F(Epoch, OnlyGuardsThatWereOpenHoldAnObject) {
    auto before = std::make_unique<Readers>(1);
    retire(new Table(1));
    toolkit::epochCollect();
    EXPECT_EQ(reclaimed, 0);
    Readers after(1);
    // What is retired later waits for the later guard too, and doesn't keep the first waiting.
    retire(new Table(2));
    before.reset();
    toolkit::epochCollect();
    EXPECT_EQ(reclaimed, 1);
    toolkit::epochCollect();
    EXPECT_EQ(reclaimed, 1);
    EXPECT_EQ(toolkit::epochWaiting(), 1);
}

TEST_F(Epoch, NestedGuardsHoldUntilTheOutermostCloses) {
    {
        EpochGuard outer;
        retire(new Table(1));
        {
            EpochGuard inner;
            EXPECT_TRUE(EpochGuard::open());
        }
        EXPECT_TRUE(EpochGuard::open());
        toolkit::epochCollect();
        EXPECT_FALSE(toolkit::epochDrain());
        EXPECT_EQ(reclaimed, 0);
    }
    EXPECT_FALSE(EpochGuard::open());
    toolkit::epochCollect();
    EXPECT_EQ(reclaimed, 1);
}

TEST_F(Epoch, ReadersOfASwappedTableNeverSeeAReclaimedOne) {
    constexpr int readers = 3, enough = 3000;
    EpochPtr<Table> published(new Table(2));
    int stop = 0, wrong = 0, reads = 0, swaps = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < readers; ++i)
        threads.emplace_back([&] {
            while (!toolkit::loadAcquire(stop)) {
                EpochGuard guard;
                const Table* table = published.load();
                EpochGuard nested;
                if (table->first + table->second != 0 || table->first < 2) toolkit::increment(wrong);
                toolkit::increment(reads);
            }
        });
    std::vector<std::thread> writers;
    for (int i = 0; i < 2; ++i)
        writers.emplace_back([&] {
            while (toolkit::loadAcquire(reclaimed) < enough || toolkit::load(reads) < enough) {
                retire(published.publish(new Table(toolkit::increment(swaps) + 2)));
                // On few processors readers are mostly interrupted inside their guards.
                if (toolkit::load(swaps) % 64 == 0) std::this_thread::yield();
            }
        });
    for (auto& thread : writers) thread.join();
    toolkit::storeRelease(stop, 1);
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    retire(published.publish(nullptr));
    EXPECT_TRUE(toolkit::epochDrain());
    EXPECT_EQ(reclaimed, swaps + 1);
}

TEST_F(Epoch, PublishOverAnotherObjectChangesNothing) {
    Table first(2), second(3), third(4);
    EpochPtr<Table> published(&first);
    EXPECT_FALSE(published.publishOver(&second, &third));
    EXPECT_EQ(published.load(), &first);
    EXPECT_TRUE(published.publishOver(&first, &third));
    EXPECT_EQ(published.load(), &third);
}

TEST_F(Epoch, RetirementAloneKeepsWhatWaitsSmall) {
    int most = 0;
    for (int i = 0; i < 10'000; ++i) {
        // A guard that was opened behind the earlier retirements doesn't hold these.
        EpochGuard guard;
        retire(new Table(i));
        most = std::max(most, toolkit::epochWaiting());
    }
    EXPECT_LE(most, 200);
    {
        Readers reader(1);
        for (int i = 0; i < 1000; ++i) retire(new Table(i));
        EXPECT_GE(toolkit::epochWaiting(), 900);
    }
    for (int i = 0; i < 100; ++i) retire(new Table(i));
    EXPECT_LE(toolkit::epochWaiting(), 100);
}

TEST_F(Epoch, AnyNumberOfThreadsReadAndMayEndWithObjectsWaiting) {
    auto readers = std::make_unique<Readers>(100);
    std::thread([] {
        retire(new Table(1));
        EpochGuard guard;
        retire(new Table(2));
    }).join();
    toolkit::epochCollect();
    EXPECT_EQ(reclaimed, 0);
    readers.reset();
    toolkit::epochCollect();
    EXPECT_EQ(reclaimed, 2);
    // Slots come back: more threads after one another than ever stood side by side need no memory.
    AllocProbe probe;
    for (int i = 0; i < 200; ++i) std::thread([] { EpochGuard guard; }).join();
    probe.failAt(1);
    std::thread([] { EpochGuard guard; }).join();
    EXPECT_FALSE(probe.failed());
}

TEST_F(Epoch, GuardsHoldWithoutMemoryForASlot) {
    AllocProbe probe;
    probe.failAt(1, true);
    auto readers = std::make_unique<Readers>(400);
    EXPECT_TRUE(probe.failed());
    auto table = std::make_unique<Table>(1);
    retire(table.release());
    toolkit::epochCollect();
    EXPECT_EQ(reclaimed, 0);
    readers.reset();
    toolkit::epochCollect();
    EXPECT_EQ(reclaimed, 1);
}

TEST_F(Epoch, ReclaimFunctionsMayRetireAndReadButNotDrain) {
    struct Chain : EpochLink {
        int left;
        static void reclaim(EpochLink* link) {
            auto chain = static_cast<Chain*>(link);
            EpochGuard guard;
            EXPECT_FALSE(toolkit::epochDrain());
            toolkit::increment(reclaimed);
            if (chain->left-- > 0)
                toolkit::epochRetire(chain, reclaim);
            else
                delete chain;
        }
    };
    auto chain = new Chain;
    chain->left = 500;
    toolkit::epochDefer(chain, Chain::reclaim);
    EXPECT_EQ(reclaimed, 0);
    EXPECT_TRUE(toolkit::epochDrain());
    EXPECT_EQ(reclaimed, 501);
}

TEST_F(Epoch, ObjectsWithoutALinkStayTheCallersWhenThereIsNoMemory) {
    failEachAllocation([](AllocProbe& probe) {
        auto value = new int(7);
        bool done = toolkit::epochRetire(value, [](void* object) {
            toolkit::increment(reclaimed);
            delete static_cast<int*>(object);
        });
        EXPECT_EQ(done, !probe.failed());
        if (!done) delete value;
        EXPECT_TRUE(toolkit::epochDrain());
    });
    EXPECT_EQ(reclaimed, 1);
}
