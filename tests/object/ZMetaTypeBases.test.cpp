#include "object/ZMetaTypeData.h"
#include "tests/object/HandMade.h"
#include "tests/support/CoreScope.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using Kind = ZMetaType::Type;

namespace {
class MetaTypeBases : public CoreTest {};
} // namespace

TEST_F(MetaTypeBases, TheGraphIsSeenFromBothEnds) {
    TypePtr root = makeType("Root"), left = makeType("Left", Kind::Class, {root}),
            right = makeType("Right", Kind::Class, {root}), both = makeType("Both", Kind::Class, {left, right}),
            leaf = makeType("Leaf", Kind::Class, {both}), alone = makeType("Alone");
    EXPECT_EQ(both->primaryBase(), left.get());
    EXPECT_FALSE(both->isSingleBase());
    EXPECT_EQ(both->baseCount(), 2);
    EXPECT_EQ(both->baseType(1), right.get());
    EXPECT_EQ(both->baseType(2), nullptr);
    EXPECT_TRUE(left->isSingleBase());
    EXPECT_FALSE(leaf->isSingleBase()) << "its base has two";
    EXPECT_EQ(root->primaryBase(), nullptr);
    EXPECT_FALSE(root->isSingleBase()) << "it has none";
    struct Row {
        ZMetaType *type, *other;
        bool isBase;
    };
    const Row rows[] = {{leaf, root, true},  {leaf, right, true},  {leaf, both, true},   {both, leaf, false},
                        {root, root, false}, {leaf, alone, false}, {left, right, false}, {right, root, true}};
    for (const Row& row : rows) {
        EXPECT_EQ(row.type->isBase(row.other), row.isBase) << row.type->getName().string();
        EXPECT_EQ(row.other->isDescendant(row.type), row.isBase);
        EXPECT_EQ(row.type->typeOf(row.other), row.isBase || row.type == row.other);
        EXPECT_EQ(row.type->isBase(row.other->getName()), row.isBase);
        EXPECT_EQ(row.type->typeOf(row.other->getName()), row.isBase || row.type == row.other);
    }
    EXPECT_FALSE(leaf->isBase(static_cast<const ZMetaType*>(nullptr)));
    ZArrayT<ZMetaType*> all;
    EXPECT_TRUE(root->getDescendants(all));
    EXPECT_EQ(all.count(), 4u);
    all.clear();
    EXPECT_TRUE(leaf->getBaseTypes(all));
    ASSERT_EQ(all.count(), 4u);
    EXPECT_EQ(all[0], both.get()) << "nearest first";
    EXPECT_EQ(all[3], root.get());
    // Pointers relate as what they point to, if they have as many "*".
    EXPECT_TRUE(leaf->getQualified("const Leaf*")->typeOf(root->getQualified("Root*")));
    EXPECT_FALSE(leaf->getQualified("Leaf**")->typeOf(root->getQualified("Root*")));
    EXPECT_FALSE(leaf->typeOf(root->getQualified("Root*")));
    for (ZMetaType* type : {leaf.get(), root.get()}) type->clearVariants();
}

TEST_F(MetaTypeBases, CirclesAreRefused) {
    TypePtr a = makeType("A"), b = makeType("B", Kind::Class, {a}), c = makeType("C", Kind::Class, {b});
    EXPECT_FALSE(a->addBase(a));
    EXPECT_FALSE(a->addBase(c));
    EXPECT_FALSE(a->addBase(a->getQualified("const A*")));
    EXPECT_EQ(a->baseCount(), 0);
    EXPECT_TRUE(c->addBase(a));
    EXPECT_TRUE(c->addBase(a)) << "once more";
    EXPECT_EQ(c->baseCount(), 2);
    ZArrayT<ZMetaType*> circle;
    circle.append(c.get());
    EXPECT_FALSE(b->setBaseTypes(circle));
    EXPECT_EQ(b->baseCount(), 0);
    EXPECT_FALSE(b->addAlias(b));
    EXPECT_TRUE(b->addAlias(c));
    EXPECT_TRUE(c->addAlias(b)) << "aliases may go both ways";
    EXPECT_TRUE(b->typeOf(c) && c->typeOf(b));
    b->clearLinkedTypes();
    c->clearLinkedTypes();
    a->clearVariants();
}

TEST_F(MetaTypeBases, AliasesCountForTypeOfAlone) {
    TypePtr shown = makeType("Shown"), base = makeType("AliasBase"), type = makeType("Aliasing", Kind::Class, {base});
    EXPECT_TRUE(base->addAlias(shown));
    EXPECT_TRUE(type->typeOf(shown));
    EXPECT_TRUE(type->typeOf("Shown"));
    EXPECT_FALSE(type->isBase(shown));
    EXPECT_TRUE(base->isAliasOf(shown) && base->isAliasOf("Shown"));
    EXPECT_FALSE(type->isAliasOf(shown));
    int offset = 0;
    EXPECT_FALSE(type->upcastOffset(shown, offset));
    // A way through bases alone is better.
    EXPECT_TRUE(type->addBase(shown));
    EXPECT_TRUE(type->isBase(shown));
    EXPECT_TRUE(type->upcastOffset(shown, offset));
}

TEST_F(MetaTypeBases, OffsetsAddUp) {
    TypePtr root = makeType("OffRoot"), first = makeType("OffFirst"),
            second = makeType("OffSecond", Kind::Class, {root}),
            type = makeType("OffType", Kind::Class, {first, second});
    second->setBaseOffset(0, 8);
    type->setBaseOffset(1, 32);
    int offset = -1;
    EXPECT_TRUE(type->upcastOffset(root, offset));
    EXPECT_EQ(offset, 40);
    EXPECT_TRUE(type->upcastOffset(first, offset));
    EXPECT_EQ(offset, 0);
    EXPECT_TRUE(type->upcastOffset(type, offset));
    EXPECT_EQ(offset, 0);
    EXPECT_FALSE(first->upcastOffset(type, offset));
    EXPECT_EQ(type->baseOffset(1), 32);
    EXPECT_EQ(type->calcInternalSize(true), 0);
    root->setInternalSize(20);
    type->setInternalSize(1);
    EXPECT_EQ(type->calcInternalSize(true), 48);
}

TEST_F(MetaTypeBases, Distances) {
    TypePtr root = makeType("DRoot"), middle = makeType("DMiddle", Kind::Class, {root}),
            leaf = makeType("DLeaf", Kind::Class, {middle}), other = makeType("DOther"),
            two = makeType("DTwo", Kind::Class, {other, leaf}), integer = makeType("int", Kind::Int),
            real = makeType("double", Kind::Double), single = makeType("float", Kind::Float),
            byteType = makeType("byte", Kind::Byte), nothing = makeType("void", Kind::Void);
    auto of = [](const TypePtr& type, const char* name) { return name ? type->getQualified(name) : type.get(); };
    struct Row {
        const TypePtr& from;
        const char* fromName;
        const TypePtr* to;
        const char* toName;
        int distance;
    };
    const Row rows[] = {
        {leaf, nullptr, &leaf, nullptr, 0},
        {leaf, nullptr, &middle, nullptr, 5},
        {leaf, nullptr, &root, nullptr, 4 * 5 + 8},
        {root, nullptr, &leaf, nullptr, -1},
        {two, nullptr, &other, nullptr, 5},
        {two, nullptr, &leaf, nullptr, 5},
        {two, nullptr, &root, nullptr, (28 + 2) * 4},
        {leaf, "DLeaf*", &root, "DRoot*", 28},
        {leaf, "DLeaf*", &root, "const DRoot*", 29},
        {leaf, "const DLeaf*", &root, "DRoot*", -1},
        {leaf, "const DLeaf*", &leaf, "const DLeaf*", 0},
        {leaf, "DLeaf*", &leaf, nullptr, -1},
        {leaf, nullptr, &leaf, "const DLeaf&", 1},
        {leaf, nullptr, &leaf, "DLeaf&", 0},
        {integer, nullptr, &byteType, nullptr, 2},
        {single, nullptr, &real, nullptr, 2},
        {integer, nullptr, &real, nullptr, 3},
        {integer, "int*", &byteType, "byte*", -1},
        {integer, nullptr, &leaf, nullptr, -1},
        {nothing, nullptr, nullptr, nullptr, 0},
        {integer, nullptr, nullptr, nullptr, 2},
        {leaf, nullptr, nullptr, nullptr, -1},
    };
    for (const Row& row : rows) {
        ZMetaType *from = of(row.from, row.fromName), *to = row.to ? of(*row.to, row.toName) : nullptr;
        EXPECT_EQ(from->distance(to, false), row.distance)
            << from->getName().string() << " for " << (to ? to->getName().string() : "null");
    }
    // An alias is as near as a base.
    EXPECT_TRUE(root->addAlias(other));
    EXPECT_EQ(root->distance(other, false), 5);
    // What is made of a number serves for other numbers as that number does, further up the line.
    TypePtr angle = makeType("DAngle", Kind::TypeDef, {real}), turn = makeType("DTurn", Kind::TypeDef, {angle});
    EXPECT_EQ(angle->distance(single, false), 4 * 2 + 8);
    EXPECT_EQ(turn->distance(integer, false), 4 * (4 * 3 + 8) + 8);
    EXPECT_EQ(turn->distance(real, false), 28);

    // Lists: the worst argument decides, and each one too many or too few costs.
    auto list = [](std::initializer_list<ZMetaType*> types) {
        ZArrayT<ZMetaType*> made;
        for (ZMetaType* type : types) made.append(type);
        return made;
    };
    ZMetaType *i = integer, *d = real, *l = leaf, *m = middle, *o = other;
    EXPECT_EQ(ZMetaType::distance(list({d, i, l}), list({i, i, m}), true, true, false), 5);
    EXPECT_EQ(ZMetaType::distance(list({d, i, l}), list({o, i, m}), false, true, false), -1);
    EXPECT_EQ(ZMetaType::distance(list({d, i}), list({i, i, m}), true, true, false), 64);
    EXPECT_EQ(ZMetaType::distance(list({d, i, l, i}), list({i, i}), true, true, false), -1);
    EXPECT_EQ(ZMetaType::distance(list({d, i, l, i}), list({i, d}), true, false, false), 3 + 128);
    EXPECT_EQ(ZMetaType::distance(list({}), list({}), true, true, false), 0);
    EXPECT_EQ(ZMetaType::distance(list({d, nullptr}), list({d, i}), true, true, false), 2);
    EXPECT_EQ(ZMetaType::distance(list({d, nullptr}), list({d, l}), true, true, false), -1);
    for (const TypePtr* type : {&root, &middle, &leaf, &integer, &byteType}) (*type)->clearVariants();
}

TEST_F(MetaTypeBases, DeepGraphsSaturateAndDontWalkTwice) {
    // Each level has two ways to the one above: 2^60 ways in all.
    std::vector<TypePtr> types;
    types.push_back(makeType("Deep0"));
    for (int i = 1; i <= 60; ++i) {
        const std::string name = "Deep" + std::to_string(i), side = "Side" + std::to_string(i);
        TypePtr top = types.back(), way = makeType(side.c_str(), Kind::Class, {top});
        types.push_back(way);
        types.push_back(makeType(name.c_str(), Kind::Class, {top, way}));
    }
    EXPECT_EQ(types.back()->distance(types.front(), false), 1 << 24);
    EXPECT_TRUE(types.back()->isBase(types.front()));
    types.front()->setExtraFlags("noblend");
    EXPECT_FALSE(types[3]->blendable());
    // Those that descend go first.
    while (!types.empty()) types.pop_back();
}

TEST_F(MetaTypeBases, EachChangeIsSeenAtOnce) {
    TypePtr a = makeType("SeenA"), b = makeType("SeenB"), c = makeType("SeenC", Kind::Class, {b});
    EXPECT_FALSE(c->typeOf(a));
    EXPECT_TRUE(b->addBase(a));
    EXPECT_TRUE(c->typeOf(a));
    b->clearLinkedTypes();
    EXPECT_FALSE(c->typeOf(a));
    EXPECT_EQ(a->getDescendants().count(), 0u);
    EXPECT_EQ(a->refcount(), 1);
}

TEST_F(MetaTypeBases, WithoutMemoryAnswersStayRight) {
    TypePtr a = makeType("MemA"), b = makeType("MemB", Kind::Class, {a}), c = makeType("MemC", Kind::Class, {b}),
            extra = makeType("MemExtra");
    failEachAllocation([&](AllocProbe&) {
        orv::typesChanged();
        EXPECT_TRUE(c->isBase(a));
        EXPECT_FALSE(a->isBase(c));
        EXPECT_EQ(zrecover(), 0);
        forgetLists({a, b, c});
    });
    failEachAllocation([&](AllocProbe& probe) {
        const bool added = extra->addBase(b);
        EXPECT_TRUE(added || probe.failed());
        EXPECT_EQ(extra->baseCount(), int(added));
        EXPECT_EQ(zrecover(), 0);
        extra->clearLinkedTypes();
        forgetLists({a, b, extra});
    });
    EXPECT_EQ(b->getDescendants().count(), 1u);
    EXPECT_EQ(b->refcount(), 2);
}

TEST_F(MetaTypeBases, LookupsOnEightThreadsWhileTypesReset) {
    TypePtr root = makeType("ThreadRoot"), middle = makeType("ThreadMiddle", Kind::Class, {root}),
            leaf = makeType("ThreadLeaf", Kind::Class, {middle}), extra = makeType("ThreadExtra");
    std::atomic<bool> stop = false;
    std::atomic<long> wrong = 0;
    std::vector<std::thread> readers;
    for (int i = 0; i < 8; ++i)
        readers.emplace_back([&] {
            int offset;
            while (!stop) {
                wrong += !leaf->isBase(root);
                wrong += root->isBase(leaf);
                wrong += !leaf->typeOf(middle);
                wrong += leaf->distance(root, false) != 28;
                wrong += !leaf->upcastOffset(root, offset);
                wrong += leaf->getQualified("const ThreadLeaf*")->getPtrCount() != 1;
                wrong += leaf->hasOption("nomark", true);
                leaf->blendable();
            }
        });
    for (int i = 0; i < 2000; ++i) {
        leaf->addBase(extra);
        middle->setExtraFlags(i % 2 ? "noblend" : "");
        leaf->setFlags(i % 2 ? uint(ZMetaType::Public) : 0u);
        if (i % 64 == 0) {
            TypePtr local = TypePtr::adopt(leaf->copyType());
            wrong += !local->isBase(root);
        }
    }
    stop = true;
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(wrong, 0);
    leaf->clearVariants();
}
