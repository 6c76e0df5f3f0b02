#include "core/SlotPool.h"

#include "core/debug.h"
#include "tests/support/AllocProbe.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

using toolkit::EpochGuard;

namespace {
struct Record {
    explicit Record(int value, bool fails = false) : value(value) {
        toolkit::increment(alive);
        if (fails) ZError::fail();
    }
    ~Record() {
        value = -1;
        toolkit::decrement(alive);
    }
    int value;
    char zeroed[20]; // not set by the constructor
    static int alive;
};
int Record::alive = 0;

constexpr uint chunk = 64;
orv::SlotPool<Record> pool("records", chunk);

std::string lastLine;

class SlotPool : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(pool.open()); }
    void TearDown() override {
        pool.close();
        EXPECT_EQ(Record::alive, 0);
    }
};

Record* retainFrom(Record* record) { return orv::SlotPool<Record>::retain(record); }
int indexOf(Record* record) { return orv::SlotPool<Record>::index(record); }
} // namespace

TEST_F(SlotPool, GrowsByChunksAndNeverMovesARecord) {
    AllocProbe probe;
    std::vector<Record*> records;
    std::set<int> indexes;
    constexpr int count = chunk * 20 + 1; // beyond the first 8 and 16 places for chunks
    for (int i = 0; i < count; ++i) {
        records.push_back(pool.make(i));
        indexes.insert(indexOf(records.back()));
    }
    EXPECT_EQ(indexes.size(), size_t(count));
    EXPECT_EQ(*indexes.begin(), 0);
    EXPECT_EQ(*indexes.rbegin(), count - 1);
    EXPECT_EQ(pool.live(), count);
    EXPECT_EQ(probe.allocations(), 21 + 2);
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(records[i]->value, i);
        EXPECT_EQ(pool.record(indexOf(records[i])), records[i]);
    }
    for (int none : {-1, int(chunk) * 21, int(chunk) * 32, 0x7FFFFFFF}) EXPECT_EQ(pool.record(none), nullptr) << none;
    EXPECT_NE(pool.record(count), nullptr);
    EXPECT_EQ(pool.retainAt(count), nullptr);
    for (Record* record : records) EXPECT_TRUE(pool.release(record));
    EXPECT_EQ(pool.live(), 0);
}

TEST_F(SlotPool, CountsEndAtZeroAndTheSlotComesBackZeroed) {
    Record* record = pool.make(1);
    int index = indexOf(record);
    std::memset(record->zeroed, 'x', sizeof record->zeroed);
    EXPECT_EQ(retainFrom(record), record);
    EXPECT_EQ(pool.retainAt(index), record);
    EXPECT_EQ(pool.refcount(record), 3);
    EXPECT_FALSE(pool.release(record));
    EXPECT_FALSE(pool.release(record));
    EXPECT_EQ(Record::alive, 1);
    EXPECT_TRUE(pool.release(record));
    EXPECT_EQ(Record::alive, 0);
    // The stale pointer can still be asked.
    EXPECT_EQ(retainFrom(record), nullptr);
    EXPECT_EQ(pool.retainAt(index), nullptr);
    EXPECT_EQ(pool.refcount(record), 0);
    EXPECT_FALSE(pool.release(record));
    Record* next = pool.make(2);
    EXPECT_EQ(next, record);
    EXPECT_EQ(indexOf(next), index);
    for (char c : next->zeroed) EXPECT_EQ(c, 0);
    EXPECT_EQ(retainFrom(nullptr), nullptr);
    EXPECT_EQ(pool.refcount(nullptr), 0);
    EXPECT_FALSE(pool.release(nullptr));
    pool.release(next);
}

TEST_F(SlotPool, FailuresLeaveNothingBehind) {
    pool.close();
    failEachAllocation([](AllocProbe& probe) {
        std::vector<Record*> records;
        bool failed = !pool.open();
        for (uint i = 0; !failed && i < chunk * 9; ++i) {
            Record* record = pool.make(int(i));
            failed = !record;
            if (record) records.push_back(record);
        }
        EXPECT_EQ(failed, probe.failed());
        EXPECT_EQ(pool.live(), int(records.size()));
        for (Record* record : records) EXPECT_TRUE(pool.release(record));
        pool.close();
    });
    EXPECT_EQ(pool.make(1), nullptr);
    ASSERT_TRUE(pool.open());
    EXPECT_EQ(pool.make(1, true), nullptr);
    EXPECT_EQ(zfailcount(), 0);
    EXPECT_EQ(pool.live(), 0);
}

TEST_F(SlotPool, RecordsLeftAtTheCloseKeepTheMemoryUntilTheyGo) {
    AllocProbe probe;
    zsetdebugsink([](const char* line) { lastLine = line; });
    pool.close(); // the fixture's
    for (bool reopened : {false, true}) {
        ASSERT_TRUE(pool.open());
        Record *first = pool.make(1), *second = pool.make(2);
        pool.release(pool.make(3));
        lastLine.clear();
        pool.close();
        EXPECT_EQ(lastLine, "records: 2 records still in use");
        EXPECT_EQ(pool.make(4), nullptr);
        EXPECT_EQ(retainFrom(second), second);
        EXPECT_FALSE(pool.release(second));
        EXPECT_TRUE(pool.release(first));
        EXPECT_EQ(second->value, 2);
        if (reopened) {
            ASSERT_TRUE(pool.open());
            std::set<Record*> places;
            for (uint i = 1; i < chunk; ++i) places.insert(pool.make(5));
            EXPECT_EQ(places.size(), chunk - 1);
            EXPECT_FALSE(places.count(second));
            for (Record* record : places) pool.release(record);
            pool.close();
        }
        EXPECT_GT(probe.live(), 0);
        EXPECT_TRUE(pool.release(second));
        EXPECT_EQ(probe.live(), 0);
        // The memory has gone by now.
        EXPECT_EQ(pool.refcount(second), 0);
        EXPECT_FALSE(pool.release(second));
    }
    zsetdebugsink(nullptr);
}

TEST_F(SlotPool, RetainIsRefusedOrComesBeforeTheLastRelease) {
    constexpr int rounds = 20'000, enough = 100;
    Record* shared = nullptr;
    int stop = 0, got = 0, wrong = 0;
    std::thread other([&] {
        while (!toolkit::loadAcquire(stop)) {
            Record* record = retainFrom(toolkit::loadAcquire(shared));
            if (!record) continue;
            toolkit::increment(got);
            // It may be another record than the one looked for, but it is alive.
            if (pool.refcount(record) < 1 || pool.refcount(record) > 2) ++wrong;
            pool.release(record);
        }
    });
    for (int i = 0; i < rounds || (toolkit::load(got) < enough && i < rounds * 100); ++i) {
        Record* record = pool.make(i);
        toolkit::storeRelease(shared, record);
        if (i % 64 == 0) std::this_thread::yield();
        pool.release(record);
    }
    toolkit::storeRelease(stop, 1);
    other.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GE(got, enough);
    EXPECT_EQ(pool.live(), 0);
}

TEST_F(SlotPool, ThreadsMakeAndReleaseSideBySide) {
    constexpr int threads = 4, rounds = 400, held = 40;
    int wrong = 0;
    std::vector<std::thread> all;
    for (int t = 0; t < threads; ++t)
        all.emplace_back([&, t] {
            Record* mine[held] = {};
            for (int i = 0; i < rounds * held; ++i) {
                Record*& record = mine[i * 7 % held];
                if (record && (record->value != t || !pool.release(record))) toolkit::increment(wrong);
                record = pool.make(t);
                if (pool.record(indexOf(record)) != record) toolkit::increment(wrong);
            }
            for (Record* record : mine)
                if (!record || record->value != t || !pool.release(record)) toolkit::increment(wrong);
        });
    for (auto& thread : all) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(pool.live(), 0);
}

TEST_F(SlotPool, BorrowedRecordsStayWholeUntilTheGuardCloses) {
    {
        EpochGuard guard;
        Record* records[5];
        for (int i = 0; i < 5; ++i) records[i] = pool.make(i);
        for (Record* record : records) EXPECT_TRUE(pool.releaseLater(record));
        toolkit::epochCollect();
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(records[i]->value, i);
            EXPECT_EQ(pool.record(indexOf(records[i])), records[i]);
            EXPECT_EQ(retainFrom(records[i]), nullptr);
            EXPECT_EQ(pool.refcount(records[i]), 0);
            EXPECT_FALSE(pool.releaseLater(records[i]));
        }
        EXPECT_EQ(Record::alive, 5);
        EXPECT_EQ(pool.live(), 0);
    }
    EXPECT_TRUE(toolkit::epochDrain());
    EXPECT_EQ(Record::alive, 0);
    // What still waits when the pool closes is destroyed then.
    pool.releaseLater(pool.make(1));
    EXPECT_EQ(Record::alive, 1);
    lastLine.clear();
    pool.close();
    EXPECT_EQ(Record::alive, 0);
}

TEST_F(SlotPool, BorrowersNeverSeeARecordDestroyed) {
    toolkit::EpochPtr<Record> published(pool.make(1));
    constexpr int rounds = 5000;
    int stop = 0, wrong = 0, reads = 0;
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([&] {
            while (!toolkit::loadAcquire(stop)) {
                EpochGuard guard;
                if (published.load()->value < 1) toolkit::increment(wrong);
                toolkit::increment(reads);
            }
        });
    for (int i = 0; i < rounds || toolkit::load(reads) < rounds; ++i)
        pool.releaseLater(published.publish(pool.make(i + 1)));
    toolkit::storeRelease(stop, 1);
    for (auto& thread : readers) thread.join();
    EXPECT_EQ(wrong, 0);
    pool.releaseLater(published.publish(nullptr));
}
