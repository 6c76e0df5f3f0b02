#include "module/ZPackage.h"

#include "core/construct.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "toolkit/epoch.h"

#include <thread>
#include <vector>

namespace {

using Package = CoreTest;

/// A package of its own that goes with all its types.
struct Made {
    ZPackage* package;
    explicit Made(const char* name, uint flags = 0) : package(zmake<ZPackage>()) {
        if (!package) return;
        package->setSelector(ZSelector(name));
        package->setFlags(flags);
    }
    ~Made() {
        if (!package) return;
        package->releasePackage();
        package->release();
    }
    Made(const Made&) = delete;
    ZPackage* operator->() const { return package; }

    ZMetaType* type(const char* name, ZMetaType::Type kind = ZMetaType::Class) const {
        auto made = zmake<ZMetaType>(package, ZSelector(name), kind, orv::passType(ztype<ZMetaType>()));
        if (made) made->release();
        return made;
    }
};

} // namespace

TEST_F(Package, UsesAreCounted) {
    Made a("test.a"), b("test.b");
    EXPECT_FALSE(a->use(static_cast<ZPackage*>(nullptr)));
    EXPECT_TRUE(a->use(b.package));
    EXPECT_TRUE(a->use(b.package));
    EXPECT_EQ(b->refcount(), 3);
    EXPECT_TRUE(a->unuse(b.package));
    EXPECT_TRUE(a->uses(b.package));
    EXPECT_FALSE(b->uses(a.package));
    EXPECT_TRUE(a->unuse(ZSelector("test.b")));
    EXPECT_FALSE(a->uses(b.package));
    EXPECT_FALSE(a->unuse(b.package));
    EXPECT_EQ(b->refcount(), 1);
    EXPECT_FALSE(ZPackage::root()->publish(nullptr));
    EXPECT_FALSE(a->use(ZSelector("no.such.package")));
    EXPECT_EQ(ZPackage::findPackage(ZSelector("test.a")), a.package);
}

TEST_F(Package, FindsTypesOfUsedPackages) {
    Made a("test.a"), b("test.b"), open("test.open", ZPackage::Public);
    ZMetaType* early = b.type("EarlyInB");
    EXPECT_EQ(a->findType(ZSelector("EarlyInB")), nullptr);
    ASSERT_TRUE(a->use(b.package));
    ZMetaType* late = b.type("LateInB");
    EXPECT_EQ(a->findType(ZSelector("EarlyInB")), early);
    EXPECT_EQ(a->findType(ZSelector("LateInB")), late);
    EXPECT_EQ(a->findPackageType(ZSelector("LateInB")), nullptr);
    EXPECT_EQ(ZMetaType::find(ZSelector("LateInB")), nullptr);
    EXPECT_EQ(a->findType(ZSelector("test.b::LateInB")), late);
    EXPECT_EQ(a->getUsedTypes().count(), 2u);

    // A public one is found through the root.
    ZMetaType* shown = open.type("Shown");
    EXPECT_EQ(a->findType(ZSelector("Shown")), nullptr);
    ASSERT_TRUE(open->publish(nullptr));
    EXPECT_EQ(a->findType(ZSelector("Shown")), shown);
    ASSERT_TRUE(a->use(open.package));
    EXPECT_EQ(a->getUsedTypes().count(), 2u);

    b->unlinkType(late);
    EXPECT_EQ(a->findType(ZSelector("LateInB")), nullptr);
    EXPECT_TRUE(a->unuse(b.package));
    EXPECT_EQ(a->findType(ZSelector("EarlyInB")), nullptr);
}

TEST_F(Package, VariantsAndInstancesAreMadeOnce) {
    Made a("test.a"), b("test.b");
    ASSERT_TRUE(b->use(a.package));
    ZMetaType* box = a.type("BoxT");
    a.type("InA");
    b.type("InB");
    ZMetaType* pointer = b->findType(ZSelector("const InB*"));
    ASSERT_NE(pointer, nullptr);
    EXPECT_EQ(b->findType(ZSelector("const InB*")), pointer);
    EXPECT_EQ(b->findExisting(ZSelector("const InB*")), pointer);
    EXPECT_EQ(b->findExisting(ZSelector("InB&")), nullptr);

    const struct {
        const char* name;
        ZPackage* owner;
    } rows[] = {
        {"BoxT<InA>", a.package},        {"BoxT<InB>", b.package},      {"BoxT<InA, InB>", b.package},
        {"BoxT<BoxT<InB> >", b.package}, {"BoxT<NoSuchType>", nullptr}, {"NoSuchT<InA>", nullptr},
        {"InB****", b.package},          {"InB*****", nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(b->findExisting(ZSelector(row.name)), nullptr) << row.name;
        ZMetaType* made = b->findType(ZSelector(row.name));
        ASSERT_EQ(made != nullptr, row.owner != nullptr) << row.name;
        if (!made) continue;
        EXPECT_EQ(made->package(), row.owner) << row.name;
        EXPECT_EQ(b->findType(ZSelector(row.name)), made) << row.name;
    }
    EXPECT_EQ(b->findType(ZSelector("BoxT<InA>"))->getTemplateType(), box);
    std::string deep = "InB";
    for (int i = 0; i < 400; ++i) deep = "BoxT<" + deep + (deep.back() == '>' ? " >" : ">");
    EXPECT_EQ(b->findType(ZSelector(deep.c_str())), nullptr);
}

TEST_F(Package, WithoutMemoryAnInstanceHasTheRightOwnerOrNone) {
    Made a("test.a"), b("test.b");
    ASSERT_TRUE(b->use(a.package) && a.type("BoxT") && a.type("InA") && b.type("InB"));
    const ZSelector name("BoxT<InA, InB>");
    ASSERT_EQ(b->findTemplateOwner(name), b.package);
    failEachAllocation([&](AllocProbe& probe) {
        const ZPackage* owner = b->findTemplateOwner(name);
        EXPECT_TRUE(owner == b.package || (!owner && probe.failed()));
        zresetfail();
    });
}

TEST_F(Package, UsersStandInFrontOfWhatTheyUse) {
    Made a("test.a"), b("test.b"), c("test.c"), d("test.d");
    auto order = [&](std::vector<ZPackage*> from) {
        ZArrayT<ZPackage*> all;
        for (ZPackage* package : from) all.append(package);
        EXPECT_TRUE(ZPackage::topologicalOrdering(all));
        std::string names;
        for (ZPackage* package : std::as_const(all)) names += package->selector().string()[5];
        return names;
    };
    EXPECT_EQ(order({}), "");
    ASSERT_TRUE(a->use(b.package) && b->use(c.package));
    EXPECT_EQ(order({c.package, b.package, a.package}), "abc");
    EXPECT_EQ(order({c.package, a.package}), "ac"); // what isn't in the list makes no order
    ASSERT_TRUE(d->use(c.package) && d->use(a.package));
    EXPECT_EQ(order({c.package, b.package, a.package, d.package}), "dabc");
    // In a circle the one with the fewest users goes first, of several the first.
    ASSERT_TRUE(b->use(a.package));
    EXPECT_EQ(order({b.package, a.package, c.package}), "bac");
    ASSERT_TRUE(c->use(b.package));
    EXPECT_EQ(order({c.package, b.package, a.package}), "cba");
    EXPECT_EQ(order({b.package, a.package, c.package, d.package}), "dabc");
}

TEST_F(Package, InlineRecordsFollowTheirPackage) {
    static constinit ZInlineType record;
    record.setSelector(ZSelector("test.inline::Held"));
    EXPECT_EQ(record.type(), nullptr);
    {
        Made a("test.inline");
        ZMetaType* held = a.type("Held");
        EXPECT_EQ(record.type(), held);
        EXPECT_FALSE(record.unresolved());
        record.extend(ZSelector("Other"));
        EXPECT_EQ(record.type(), nullptr);
        ZMetaType* other = a.type("Other");
        EXPECT_EQ(record.type(), other);
    }
    EXPECT_TRUE(record.unresolved());
    EXPECT_EQ(record.type(), nullptr);
    // So they do one type that goes, in its package or in another type.
    record.setSelector(ZSelector("ZFileName::Flags"));
    ZMetaType* flags = record.type();
    ASSERT_TRUE(flags);
    ztype<ZFileName>()->resetSubTypes();
    EXPECT_TRUE(record.unresolved());
    EXPECT_STREQ(record.type()->signatureName().string(), "ZFileName::Flags");
    Made b("test.one");
    ZMetaType* held = b.type("Held");
    record.setSelector(ZSelector("test.one::Held"));
    EXPECT_EQ(record.type(), held);
    b->unlinkType(held);
    EXPECT_EQ(record.type(), nullptr);
    record.clear();
}

TEST_F(Package, NamedSelectors) {
    Made a("test.a"), b("test.b");
    ZSelectorMap group;
    group.set(ZSelector("w"), ZSelector("width"));
    ASSERT_TRUE(b->setSelectorGroup(ZSelector("short"), group));
    EXPECT_EQ(b->getNamedSelector(ZSelector("w"), true), ZSelector("width"));
    EXPECT_TRUE(a->getNamedSelector(ZSelector("w"), false).isEmpty());
    ASSERT_TRUE(a->use(b.package));
    EXPECT_EQ(a->getNamedSelector(ZSelector("w"), false), ZSelector("width"));
    EXPECT_TRUE(a->getNamedSelector(ZSelector("w"), true).isEmpty());
}

TEST_F(Package, LivesThroughFailedAllocations) {
    // Packages are made ahead, and have room for their types after the first run: they keep it.
    Made a("test.a"), b("test.b");
    auto run = [&] {
        const bool used = a->use(b.package);
        b.type("BoxT");
        ZMetaType* first = b.type("First");
        EXPECT_EQ(b->findPackageType(ZSelector("First")), first);
        ZMetaType* found = a->findType(ZSelector("First"));
        EXPECT_TRUE(found == first || !found);
        if (ZMetaType* made = a->findType(ZSelector("BoxT<First>"))) {
            EXPECT_EQ(a->findType(ZSelector("BoxT<First>")), made);
        }
        for (ZPackage* package : {a.package, b.package}) {
            std::vector<ZMetaType*> all;
            for (const auto& entry : package->getTypes()) all.push_back(entry.value());
            for (ZMetaType* type : all) package->unlinkType(type);
        }
        if (used) { EXPECT_TRUE(a->unuse(b.package)); }
        EXPECT_EQ(b->refcount(), 1);
    };
    // Types keep a list of their ancestors for as long as no type changes: it is made anew before blocks are counted.
    auto settle = [] {
        EXPECT_TRUE(ztype<ZMetaType>()->isBase(ztype<ZObject>()));
        EXPECT_TRUE(ztype<ZObject>()->isBase(ztype<ZType>()));
        toolkit::epochDrain();
    };
    AllocProbe probe;
    run();
    settle();
    const long before = probe.live();
    for (long n = 1;; ++n) {
        probe.failAt(n);
        run();
        const bool failed = probe.failed();
        probe.failAt(0);
        settle();
        ASSERT_EQ(probe.live(), before) << "after allocation " << n << " failed:\n" << probe.leaks();
        if (!failed) break;
        ASSERT_LT(n, 1000);
    }
}

/// Instances of templates made, uses given up and taken up, orders worked out, all at once.
TEST_F(Package, LookupsGoOnWhileUsesChangeAndInstancesAreMade) {
    Made a("test.a"), b("test.b"), c("test.c");
    ASSERT_TRUE(a->use(b.package) && a->use(c.package));
    ZMetaType *fixed = b.type("Fixed"), *also = c.type("InC");
    b.type("BoxT");
    constexpr int count = 60, makers = 2;
    std::vector<ZSelector> boxes;
    for (int i = 0; i < count; ++i) {
        const std::string argument = "Item" + std::to_string(i);
        b.type(argument.c_str());
        boxes.emplace_back(("BoxT<" + argument + ">").c_str());
    }
    const ZSelector name("Fixed"), other("InC");
    std::vector<ZMetaType*> made[makers];
    bool stop = false;
    std::vector<std::thread> threads;
    for (auto& mine : made)
        threads.emplace_back([&] {
            for (const ZSelector& box : boxes) mine.push_back(a->findType(box));
        });
    std::thread uses([&] {
        while (!toolkit::load(stop)) {
            EXPECT_TRUE(a->unuse(c.package) && a->use(c.package));
            EXPECT_EQ(a->findType(other), also);
        }
    });
    std::thread orders([&] {
        while (!toolkit::load(stop)) {
            ZArrayT<ZPackage*> all;
            EXPECT_TRUE(all.append(b.package) && all.append(a.package) && ZPackage::topologicalOrdering(all));
            EXPECT_EQ(std::as_const(all)[0], a.package);
            EXPECT_EQ(a->findType(name), fixed);
            EXPECT_EQ(a->findCategory(name), nullptr);
        }
    });
    for (auto& thread : threads) thread.join();
    toolkit::store(stop, true);
    uses.join();
    orders.join();
    EXPECT_EQ(made[0], made[1]);
    for (ZMetaType* box : made[0]) {
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(a->findType(box->getName()), box);
        EXPECT_TRUE(box->package() == b.package && box->getTemplateType());
    }
}

TEST_F(Package, OneOfTwoTypesOfANameTakesTheOthersPlace) {
    Made a("test.a"), b("test.b"), c("test.c");
    ASSERT_TRUE(a->use(b.package) && a->use(c.package));
    b.type("Same");
    ZMetaType* last = b.type("Same");
    EXPECT_EQ(a->findType(ZSelector("Same")), last);
    ZMetaType* inC = c.type("Same");
    EXPECT_EQ(a->findType(ZSelector("Same")), inC);
    // What stood under the name before shows again when the other one's package isn't used any more.
    EXPECT_TRUE(a->unuse(c.package));
    EXPECT_EQ(a->findType(ZSelector("Same")), last);
    b->unlinkType(last);
    EXPECT_EQ(a->findType(ZSelector("Same")), nullptr);
}

TEST_F(Package, TypesAreFoundWhileOthersComeAndGo) {
    Made a("test.a"), b("test.b");
    ASSERT_TRUE(a->use(b.package));
    ZMetaType* fixed = b.type("Fixed");
    const ZSelector name("Fixed");
    bool stop = false;
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i)
        readers.emplace_back([&] {
            while (!toolkit::load(stop)) {
                if (a->findType(name) != fixed) ADD_FAILURE() << "lost";
            }
        });
    for (int round = 0; round < 20; ++round) {
        std::vector<ZMetaType*> made;
        for (int i = 0; i < 40; ++i) {
            std::string text = "Comes" + std::to_string(i);
            made.push_back(b.type(text.c_str()));
            EXPECT_EQ(a->findType(ZSelector(text.c_str())), made.back());
        }
        for (ZMetaType* type : made) b->unlinkType(type);
    }
    toolkit::store(stop, true);
    for (auto& reader : readers) reader.join();
}
