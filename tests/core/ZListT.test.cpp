#include "core/ZQueueT.h"

#include "tests/support/AllocProbe.h"
#include "tests/support/Tracked.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace {
using List = ZListT<Tracked>;
using Values = std::vector<int>;

List make(std::initializer_list<int> values) {
    List list;
    for (int value : values) EXPECT_TRUE(list.append(Tracked(value)));
    return list;
}
/// Both ways, so that every link is seen.
Values values(const List& list) {
    Values out, back;
    auto last = list.end();
    for (auto at = list.begin(); at != list.end(); ++at) {
        out.push_back(at->value);
        last = at;
    }
    for (; last != list.end(); --last) back.push_back(last->value);
    std::reverse(back.begin(), back.end());
    EXPECT_EQ(out, back);
    EXPECT_EQ(list.count(), out.size());
    return out;
}
} // namespace

TEST(List, AgreesWithVector) {
    std::mt19937 random(3);
    List list;
    Values model;
    for (int step = 0; step < 3000; ++step) {
        int value = int(random() % 12);
        size_t at = model.empty() ? 0 : random() % model.size();
        auto place = list.begin();
        for (size_t i = 0; i < at; ++i) ++place;
        switch (random() % 7) {
        case 0:
            ASSERT_TRUE(list.append(Tracked(value)));
            model.push_back(value);
            break;
        case 1:
            ASSERT_TRUE(list.prepend(Tracked(value)));
            model.insert(model.begin(), value);
            break;
        case 2:
            ASSERT_TRUE(list.insert(place, Tracked(value)));
            model.insert(model.begin() + at, value);
            break;
        case 3: {
            auto hit = std::find(model.begin(), model.end(), value);
            ASSERT_EQ(list.remove(Tracked(value)), hit != model.end());
            if (hit != model.end()) model.erase(hit);
            break;
        }
        case 4:
            if (!model.empty()) {
                list.remove(place);
                model.erase(model.begin() + at);
            }
            break;
        case 5:
            ASSERT_EQ(list.pop(), !model.empty());
            if (!model.empty()) model.erase(model.begin());
            break;
        case 6:
            if (model.size() < 10) { // its own items, and itself
                if (!model.empty()) {
                    ASSERT_TRUE(list.prepend(*list.last()));
                    model.insert(model.begin(), Values(model).back());
                }
                ASSERT_TRUE(list.append(list));
                Values twice(model);
                model.insert(model.end(), twice.begin(), twice.end());
            }
        }
        ASSERT_EQ(values(list), model) << "step " << step;
    }
}

TEST(List, CopiesAreApart) {
    List list = make({1, 2}), copy(list);
    ASSERT_TRUE(copy.append(Tracked(3)));
    EXPECT_EQ(values(list), (Values{1, 2}));
    EXPECT_GT(copy.compare(list), 0);
    EXPECT_LT(make({1, 1, 9}).compare(list), 0);
    list.item(list.begin()).value = 8;
    EXPECT_EQ(values(list), (Values{8, 2}));
    list = copy;
    list = *&list;
    List moved(std::move(copy));
    EXPECT_EQ(values(list), (Values{1, 2, 3}));
    EXPECT_EQ(values(moved), (Values{1, 2, 3}));
    EXPECT_TRUE(copy.isEmpty());
    EXPECT_EQ(sizeof(List), 2 * sizeof(void*));
    AllocProbe probe;
    ZListT<void*> pointers;
    ASSERT_TRUE(pointers.append(nullptr));
    EXPECT_EQ(memsize(pointers.first() - 2), 24u);
}

TEST(List, EachAllocationFailing) {
    failEachAllocation([](AllocProbe& probe) {
        zrecover();
        Tracked sources[] = {1, 2, 3};
        if (zrecover()) return;
        List list(sources, 3);
        if (zrecover()) {
            EXPECT_TRUE(list.isEmpty());
            return;
        }
        auto settled = [&](bool done, Values before, Values after) {
            EXPECT_EQ(values(list), done ? after : before);
            EXPECT_TRUE(done || probe.failed());
        };
        settled(list.append(sources[0]), {1, 2, 3}, {1, 2, 3, 1});
        list.pop();
        Values now = values(list), twice = now;
        twice.insert(twice.end(), now.begin(), now.end());
        settled(list.append(list), now, twice);
        List other(sources, 1);
        zrecover();
        Values before = values(list);
        bool done = list.assign(other);
        EXPECT_EQ(values(list), done ? values(other) : before);
        zrecover();
    });
}

TEST(List, DestructorsThatComeBack) {
    AllocProbe probe;
    {
        List list = make({1, 2, 3, 4});
        Tracked::onDeath = [&](Tracked& item) {
            if (item.value == 2) { EXPECT_TRUE(list.remove(Tracked(30)) || list.remove(Tracked(3))); }
        };
        list.remove(++list.begin());
        EXPECT_EQ(values(list), (Values{1, 4}));
        Tracked::onDeath = [&](Tracked& item) {
            if (item.value == 4) { EXPECT_TRUE(list.append(Tracked(9))); }
        };
        list.clear();
        EXPECT_EQ(values(list), (Values{9}));
        Tracked::onDeath = nullptr;
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(Queue, FirstInFirstOut) {
    ZQueueT<Tracked> queue;
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(queue.push(Tracked(i)));
    Tracked out;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(queue.top()->value, i);
        ASSERT_TRUE(queue.pop(out));
        EXPECT_EQ(out.value, i);
    }
    EXPECT_FALSE(queue.pop(out));
    EXPECT_EQ(queue.top(), nullptr);
}
