#include "core/ZSelectorSpace.h"
#include "object/ZInlineMethod.h"
#include "object/ZMetaType.h"
#include "object/ZMethodDispatch.h"
#include "object/ZObject.h"
#include "tests/support/CoreScope.h"
#include "toolkit/epoch.h"
#include "toolkit/lock.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

// Who stays alive while methods are looked up and run, on one thread and on several.

namespace {

class ObjectThreads : public CoreTest {};

void answer(void* args, int value) {
    int* result;
    std::memcpy(&result, args, sizeof result);
    *result = value;
}
bool give(ZObject* object, const char* signature, ZMethod::Stacked entry, const ZVariant& data = {}) {
    ZMethod* method = ZMethod::create(signature, {}, 0, ZMethod::emptyFunc, entry);
    if (!method) return false;
    method->setData(data);
    const bool done = object->setMethod(method, true);
    ZMethod::release(method);
    return done;
}

/// Something that tells of its end.
class Ending : public ZObject {
public:
    explicit Ending(std::function<void()> told, uint type = None) : told(std::move(told)) {
        setDelegateType(DelegateType(type));
    }
    ~Ending() override { told(); }

private:
    std::function<void()> told;
};

ZObject* owner;
bool ended;
int calls;

struct CallRow {
    const char* way;
    void (*call)();
};
TEST_F(ObjectThreads, ADelegateLeavesInItsOwnMethod) {
    const CallRow rows[] = {
        {"invoke", [] { owner->invoke("leave", {}); }},
        {"callV", [] { owner->callV("leave"); }},
        {"invokeName", [] { owner->invokeName("leave"); }},
        {"typed pointer", [] { ZTypedPtr(owner).callV("leave"); }},
        {"signal", [] { owner->dispatchArgs("go", {}); }},
        {"record",
         [] {
             ZInlineMethod record;
             record.setMethod(owner, "int leave()", {});
             record.invoke(owner, nullptr, 0);
         }},
        {"fast call",
         [] {
             ZInlineMethod record;
             record.setMethod(owner, "int leave()", {});
             record.call(owner);
         }},
        {"path", [] { owner->invoke("part.leave", {}); }},
        {"path of words", [] { owner->invokeName("int part.leave()"); }},
    };
    for (const CallRow& row : rows) {
        owner = zmake<ZObject>();
        owner->addDispatch("go", "int leave()", {});
        auto leaver = zmake<Ending>([] { ended = true; }, uint(ZObject::Binder));
        give(leaver, "int leave()", [](const void*, ZMethod*, void* args) {
            owner->removeProperty("part");
            while (owner->hasDelegate()) owner->removeDelegate(*owner->getDelegates().first());
            answer(args, 1);
            calls += !ended;
        });
        if (std::strncmp(row.way, "path", 4) == 0)
            owner->addProperty("part", ZVariant(static_cast<const ZType*>(leaver)));
        else
            owner->addDelegate(leaver, false);
        leaver->release();
        ended = false;
        calls = 0;
        row.call();
        EXPECT_EQ(calls, 1) << row.way;
        EXPECT_TRUE(ended) << row.way << ": nothing holds it any more";
        owner->release();
    }
}

/// Delegates come and go on one thread, others call what they have.
TEST_F(ObjectThreads, DelegatesGoWhileOthersCallThem) {
    owner = zmake<ZObject>();
    owner->addDispatch("go", "int number()", {});
    bool stop = false;
    std::atomic<int> wrong{0}, called{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&, i] {
            while (!toolkit::loadAcquire(stop)) {
                const ZVariant number = i ? owner->invoke("number", {}) : ZVariant();
                if (!i) owner->dispatchArgs("go", {});
                if (i == 1) owner->callV("number");
                called += !number.isNull();
                wrong += !number.isNull() && number.toInt() != 7;
                owner->findDelegate("guest");
                owner->getPropDelegate("none");
            }
        });
    std::atomic<int> gone{0};
    const int rounds = 300;
    for (int round = 0; round < rounds || (called < 20 && round < 100000); ++round) {
        auto guest = zmake<Ending>([&] { ++gone; }, uint(round % 2 ? ZObject::Priority : ZObject::Binder));
        guest->setSelector("guest");
        give(guest, "int number()", [](const void* instance, ZMethod*, void* args) {
            std::this_thread::yield();
            // The object is read: it has to be there.
            auto self = static_cast<const ZObject*>(static_cast<const ZType*>(instance));
            answer(args, self->delegateType() != ZObject::None && self->refcount() > 0 ? 7 : 0);
        });
        wrong += !owner->addDelegate(guest, false);
        guest->release();
        std::this_thread::yield();
        wrong += !owner->removeDelegate(ZSelector("guest"));
    }
    toolkit::storeRelease(stop, true);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GE(gone, rounds);
    EXPECT_GT(called, 0);
    owner->release();
}

/// Graphs grow at both ends and shrink, and stay free of cycles: of two edges that would close one, one is refused.
TEST_F(ObjectThreads, EdgesOnSeveralThreads) {
    constexpr int count = 24;
    ZObject* all[count];
    for (int i = 0; i < count; ++i) {
        all[i] = zmake<ZObject>();
        all[i]->setSelector(("n" + std::to_string(i)).c_str());
    }
    std::vector<std::thread> threads;
    for (uint t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            uint random = t + 1;
            for (int round = 0; round < 3000; ++round) {
                random = random * 1664525u + 1013904223u;
                ZObject *from = all[(random >> 8) % count], *to = all[(random >> 16) % count];
                if (round % 3)
                    from->addDelegate(to, false);
                else
                    from->removeDelegate(to);
                if (round % 50 == 0) to->setSelector(("n" + std::to_string(random % 1000)).c_str());
                from->hasDelegate(to);
                from->findDelegate(to->selector());
            }
        });
    for (std::thread& thread : threads) thread.join();
    int edges = 0;
    for (ZObject* from : all)
        for (ZObject* to : from->getDelegates()) {
            ++edges;
            EXPECT_TRUE(from->hasDelegate(to));
            EXPECT_EQ(from->findDelegate(to->selector()) != nullptr, !to->selector().isEmpty());
            EXPECT_FALSE(to->addDelegate(from, false)) << "a cycle";
        }
    EXPECT_GT(edges, 0);
    for (ZObject* object : all) object->release();
}

TEST_F(ObjectThreads, AddingWithoutMemoryChangesNothing) {
    failEachAllocation([](AllocProbe& probe) {
        auto from = zmake<ZObject>(), to = zmake<ZObject>();
        bool added = false;
        if (from && to) {
            added = from->addDelegate(to, false);
            EXPECT_TRUE(added || probe.failed());
            EXPECT_EQ(from->hasDelegate(to), added);
            EXPECT_EQ(to->refcount(), added ? 2 : 1);
            EXPECT_FALSE(added && from->detachDelegates() && from->hasDelegate(to)) << "it is held elsewhere too";
        }
        for (ZObject* end : {from, to})
            if (end) end->release();
        zresetfail();
        toolkit::epochDrain();
    });
}

/// With many delegates names are found by an index, which follows what comes, goes and is renamed.
TEST_F(ObjectThreads, NamesOfManyDelegates) {
    owner = zmake<ZObject>();
    std::vector<ZObject*> all;
    const auto named = [](int i) { return ZSelector(("d" + std::to_string(i)).c_str()); };
    for (int i = 0; i < 200; ++i) {
        all.push_back(zmake<ZObject>());
        all.back()->setSelector(named(i));
        ASSERT_TRUE(owner->addDelegate(all.back(), false));
        ASSERT_EQ(owner->findDelegate(named(i / 2)), all[size_t(i / 2)]) << i;
    }
    all[50]->setSelector("other");
    EXPECT_EQ(owner->findDelegate("other"), all[50]);
    EXPECT_EQ(owner->findDelegate(named(50)), nullptr);
    EXPECT_TRUE(owner->removeDelegate(named(51)));
    EXPECT_EQ(owner->findDelegate(named(51)), nullptr);
    all[51]->setSelector(named(52));
    EXPECT_FALSE(owner->addDelegate(all[51], false)) << "a name twice";
    for (ZObject* object : all) object->release();
    owner->release();
}

thread_local bool asking = false;
/// Memory is asked for, and given back, where another thread gets its answers about delegates meanwhile.
TEST_F(ObjectThreads, DelegatesAreAskedWhileOthersGetMemory) {
    static ZObject *asked, *part;
    static int stuck, answered;
    stuck = answered = 0;
    static const auto ask = [] {
        if (!asking || stuck) return;
        auto done = std::make_shared<std::atomic<bool>>(false);
        std::thread other([done] { *done = asked->hasDelegate(part); });
        for (int i = 0; i < 3000 && !*done; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ++(*done ? answered : stuck);
        *done ? other.join() : other.detach();
    };
    static const toolkit::AllocHooks* outer = nullptr;
    static const toolkit::AllocHooks hooks{
        [](size_t size) {
            ask();
            return outer->allow(size);
        },
        [](void* payload, size_t size, const char* type) { outer->made(payload, size, type); },
        [](void* payload) {
            ask();
            outer->gone(payload);
        },
        [](void* payload, const char* file, int line) { outer->mark(payload, file, line); }};
    owner = zmake<ZObject>();
    asked = zmake<ZObject>();
    part = zmake<ZObject>();
    asked->addDelegate(part, false);
    std::vector<ZObject*> all;
    for (int i = 0; i < 40; ++i) {
        all.push_back(zmake<ZObject>());
        all.back()->setSelector(("d" + std::to_string(i)).c_str());
    }
    const ZSelector renamed("renamed");
    outer = toolkit::setAllocHooks(&hooks);
    asking = true;
    for (ZObject* object : all) owner->addDelegate(object, false);
    all[3]->setSelector(renamed);
    EXPECT_EQ(owner->findDelegate(renamed), all[3]);
    for (ZObject* object : {all[30], all[31]}) EXPECT_TRUE(all[32]->addDelegate(object, false));
    EXPECT_TRUE(owner->removeDelegate(renamed) && owner->detachDelegates());
    owner->release();
    asking = false;
    toolkit::setAllocHooks(outer);
    EXPECT_EQ(stuck, 0);
    EXPECT_GT(answered, 5);
    all.insert(all.end(), {asked, part});
    for (ZObject* object : all) object->release();
}

thread_local int locksHeld = 0;
/// Ends of methods may call anybody.
TEST_F(ObjectThreads, WhatEntriesFoundGoesWithNoLockHeld) {
    static int ends, heldAtEnd;
    ends = heldAtEnd = 0;
    auto object = zmake<ZObject>();
    for (int i = 0; i < 4; ++i) {
        auto probe = zmake<Ending>([] {
            ++ends;
            heldAtEnd += locksHeld;
        });
        const std::string signature = "int heard" + std::to_string(i) + "()";
        give(
            object, signature.c_str(), [](const void*, ZMethod*, void* args) { answer(args, 1); },
            ZVariant(static_cast<const ZType*>(probe)));
        probe->release();
        object->addDispatch("go", signature.c_str(), {});
    }
    ASSERT_TRUE(object->dispatchArgs("go", {}));
    ASSERT_TRUE(object->removeMethods());
    EXPECT_EQ(ends, 0) << "the entries hold them";
    static const toolkit::LockObserver observer{nullptr, [](void*, TLockId) { ++locksHeld; },
                                                [](void*, TLockId) { --locksHeld; }};
    // So many wait already that the next one that retires something reclaims what it can.
    std::vector<toolkit::EpochLink> waiting(100);
    for (toolkit::EpochLink& link : waiting) toolkit::epochDefer(&link, [](toolkit::EpochLink*) {});
    const toolkit::LockObserver* before = toolkit::setLockObserver(&observer);
    object->cleanDispatch();
    toolkit::setLockObserver(before);
    EXPECT_GT(ends, 0);
    EXPECT_EQ(heldAtEnd, 0);
    EXPECT_FALSE(object->dispatchArgs("go", {}));
    toolkit::epochDrain();
    EXPECT_EQ(ends, 4);
    object->release();
}

/// Extended methods that nobody has asked for yet come along too.
TEST_F(ObjectThreads, CopiesHaveWhatExtensionsBring) {
    for (const bool asked : {true, false}) {
        auto from = zmake<ZObject>(), extension = zmake<ZObject>();
        extension->setDelegateType(ZObject::Extension);
        give(extension, "int run()", [](const void*, ZMethod*, void* args) { answer(args, 5); });
        from->addDelegate(extension, false);
        EXPECT_EQ(asked ? from->invoke("run", {}).toInt() : 5, 5);
        auto copied = static_cast<ZObject*>(from->copy());
        for (ZObject* end : {from, extension}) end->release();
        EXPECT_EQ(copied->invoke("run", {}).toInt(), 5) << asked;
        copied->release();
    }
}

/// In a suite of its own: names are counted from here on, until the library stops.
class ObjectNamesCounted : public CoreTest {};
TEST_F(ObjectNamesCounted, NamesChangeWhileOthersRead) {
    auto object = zmake<ZObject>();
    ZSelectorSpace::space().setPermanentLimit(ZSelector::selectorCount());
    object->setSelector("counted first");
    bool stop = false;
    std::atomic<int> wrong{0}, read{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            while (!toolkit::loadAcquire(stop)) {
                const ZSelector name = object->selector();
                wrong += std::strncmp(name.string(), "counted ", 8) != 0;
                ++read;
            }
        });
    for (int round = 0; round < 5000 || read < 100; ++round)
        object->setSelector(("counted " + std::to_string(round)).c_str());
    toolkit::storeRelease(stop, true);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    const uint names = ZSelector::selectorCount();
    object->setSelector({});
    toolkit::epochDrain();
    EXPECT_LT(ZSelector::selectorCount(), names) << "the last one is given up";
    object->release();
}

} // namespace
