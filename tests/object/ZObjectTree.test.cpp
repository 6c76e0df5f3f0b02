#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZPropertyPtr.h"
#include "tests/support/CoreScope.h"
#include "value/ZVariant.h"

#include <string>
#include <vector>

namespace {

class ZObjectTree : public CoreTest {};

ZObject* child(ZObject* parent, const char* name) {
    auto object = zmake<ZObject>();
    object->setSelector(name);
    if (parent) {
        object->setParent(parent);
        object->release();
    }
    return object;
}
std::string names(const ZObject* parent) {
    std::string text;
    for (ZObject::iterator at(parent); at; ++at) text += at->selector().string();
    return text;
}

TEST_F(ZObjectTree, LinksKeepOrder) {
    ZObject* root = child(nullptr, "root");
    ZObject *a = child(root, "a"), *b = child(root, "b"), *c = child(root, "c");
    EXPECT_EQ(names(root), "abc");
    EXPECT_EQ(a->refcount(), 1);
    c->link(root, a); // from its place to another
    EXPECT_EQ(names(root), "cab");
    EXPECT_EQ(root->countObjects(), 3);
    a->link(root, child(b, "elsewhere")); // in front of somebody else's child: at the end
    EXPECT_EQ(names(root), "cba");
    b->setParent(a);
    EXPECT_EQ(names(root), "ca");
    EXPECT_EQ(b->refcount(), 1);
    EXPECT_TRUE(b->isDescendantOf(root) && root->isParentOf(b) && !b->isDescendantOf(b));
    root->setParent(b); // a descendant can't become the parent
    root->setParent(root);
    root->linkParent(b);
    root->link(root, nullptr);
    EXPECT_EQ(root->getParent(), nullptr);
    a->linkParent(b);
    EXPECT_EQ(a->getParent(), root) << "it stays where it is";
    EXPECT_TRUE(root->log_verify() && a->log_verify());
    root->release();
}

TEST_F(ZObjectTree, ParentHoldsOneReference) {
    ZObject *one = child(nullptr, "one"), *two = child(nullptr, "two"), *object = child(nullptr, "object");
    object->setParent(one);
    EXPECT_EQ(object->refcount(), 2);
    object->setParent(two);
    EXPECT_EQ(object->refcount(), 2);
    object->setParent(nullptr);
    EXPECT_EQ(object->refcount(), 1);
    object->setParent(one);
    object->release();
    object->setParent(nullptr); // the last reference goes over to the caller
    EXPECT_EQ(object->refcount(), 1);
    for (ZObject* end : {one, two, object}) end->release();
}

TEST_F(ZObjectTree, Neighbours) {
    ZObject* root = child(nullptr, "root");
    const char* order[] = {"x", "y", "x", "z", "x"};
    std::vector<ZObject*> all;
    for (const char* name : order) all.push_back(child(root, name));
    EXPECT_EQ(root->getFirst(ZSelector("z")), all[3]);
    EXPECT_EQ(root->getLast(ZSelector("x")), all[4]);
    EXPECT_EQ(all[0]->getNext(ZSelector("x")), all[2]);
    EXPECT_EQ(all[4]->getPrev(ZSelector("y")), all[1]);
    EXPECT_EQ(all[4]->getNext(), nullptr);
    EXPECT_EQ(root->getFirst(ZSelector("none")), nullptr);
    EXPECT_EQ(root->getObjects("x").count(), 3u);

    ZObject::iterator at(root);
    EXPECT_EQ(at[2], all[2]);
    EXPECT_EQ(at[7], nullptr);
    EXPECT_EQ((at + 4) - at, 4);
    EXPECT_TRUE(at < at + 1 && at + 5 > at + 4 && at + 2 >= at + 2);
    EXPECT_EQ(*((at + 5) - 1), all[4]);
    EXPECT_EQ((at - 3).object(), all[0]);
    at += 1;
    EXPECT_TRUE(at.remove());
    EXPECT_EQ(at.nextObject(), all[2]);
    EXPECT_EQ(at.prevObject(), all[2]);
    EXPECT_EQ(names(root), "xxzx");
    root->release();
}

TEST_F(ZObjectTree, SharedAncestor) {
    ZObject *root = child(nullptr, "root"), *a = child(root, "a"), *b = child(a, "b"), *c = child(a, "c");
    ZObject* other = child(nullptr, "other");
    EXPECT_EQ(b->sharedAncestor(c), a);
    EXPECT_EQ(c->sharedAncestor(root), nullptr);
    EXPECT_EQ(b->sharedAncestor(a), root);
    EXPECT_EQ(a->sharedAncestor(b), a);
    EXPECT_EQ(a->sharedAncestor(a), root);
    EXPECT_EQ(b->sharedAncestor(other), nullptr);
    for (ZObject* end : {root, other}) end->release();
}

/// The first of a name is found, whatever came, went or was renamed before.
TEST_F(ZObjectTree, ManyChildrenByName) {
    ZObject* root = child(nullptr, "root");
    for (int i = 0; i < 300; ++i) child(root, ("n" + std::to_string(i % 200)).c_str());
    auto check = [&] {
        for (int i = 0; i < 210; ++i) {
            const ZSelector name(("n" + std::to_string(i)).c_str());
            ZObject* expected = nullptr;
            for (ZObject* at = root->first(); at && !expected; at = at->next())
                if (at->selector() == name) expected = at;
            ASSERT_EQ(root->getFirst(name), expected) << i;
        }
    };
    check();
    child(root, "n205");
    ZObject* late = child(root, "n7");
    check();
    late->link(root, root->first());
    check();
    for (int i = 0; i < 20; ++i) ZObject::iterator(root, root->getFirst(ZSelector("n9"))).remove();
    check();
    root->first()->setSelector("n206");
    root->last()->setSelector("n0");
    check();
    root->release();
}

TEST_F(ZObjectTree, Paths) {
    ZObject *root = child(nullptr, "root"), *a = child(root, "a"), *b = child(a, "b"), *c = child(b, "c");
    EXPECT_EQ(root->findObject("self", false), root);
    EXPECT_EQ(a->findObject("parent", false), root);
    EXPECT_EQ(root->findObject(ZSelector(), false), a);
    EXPECT_EQ(root->findObject("a.b.c", false), c);
    EXPECT_EQ(root->findObject("a.self.b.parent", false), a);
    EXPECT_EQ(root->findObject("c", false), nullptr);
    EXPECT_EQ(root->findObject("c", true), c);
    EXPECT_EQ(root->findObject("a.c", true), nullptr);
    EXPECT_EQ(root->memberObject("a.b"), b);
    ZSelector rest;
    EXPECT_EQ(root->findObject("a.b.width.first", rest), b);
    EXPECT_STREQ(rest.string(), "width.first");
    EXPECT_EQ(c->findObject("parent.parent.none", rest), a);
    EXPECT_STREQ(rest.string(), "none");
    EXPECT_EQ(root->findObject("a.b", rest), b);
    EXPECT_TRUE(rest.isEmpty());

    ZSelector field, qualifier;
    EXPECT_EQ(root->resolveObjectName("a.b.c.width", field), c);
    EXPECT_STREQ(field.string(), "width");
    EXPECT_EQ(root->resolveObjectName("a.none.width", field), a);
    EXPECT_STREQ(field.string(), "none.width");
    EXPECT_EQ(root->resolveObjectName("width", field), root);
    EXPECT_STREQ(field.string(), "width");
    EXPECT_EQ(root->resolveFieldName("int a.b.count(int, bool) const", field, qualifier), b);
    EXPECT_STREQ(field.string(), "int count(int, bool)");
    EXPECT_STREQ(qualifier.string(), "const");
    root->release();
}

/// Makes what its property "made" answers anew each time.
class Maker : public ZObject {
public:
    using ZObject::getProperty;
    ZVariant getProperty(ZTypedPtr* typed, const ZSelector& name, bool resolve) const override {
        if (name != ZSelector("made")) return ZObject::getProperty(typed, name, resolve);
        ZObject* made = zmake<ZObject>();
        ZVariant answer(static_cast<const ZType*>(made));
        made->release();
        return answer;
    }
    ZVariant getProperty(const ZSelector& name) const override { return getProperty(nullptr, name, true); }
};
TEST_F(ZObjectTree, PathsThroughProperties) {
    ZObject *root = child(nullptr, "root"), *a = child(root, "a"), *held = child(nullptr, "held");
    EXPECT_TRUE(a->addProperty("holder", ZVariant(static_cast<const ZType*>(held))));
    ZObject* inside = child(held, "inside");
    ZSelector rest;
    EXPECT_EQ(root->findObject("a.holder", false), held);
    EXPECT_EQ(root->findObject("a.holder.inside", false), inside);
    EXPECT_EQ(root->findObject("a.holder.inside.none", rest), inside);
    EXPECT_EQ(a->resolveObjectName("holder.width", rest), held);
    EXPECT_STREQ(rest.string(), "width");
    // One object knows the end of the path by a name of several parts.
    ZObject* named = child(a, "b.c");
    EXPECT_EQ(root->findObject("a.b.c", false), named);
    EXPECT_EQ(root->findObject("a.b.d", false), nullptr);

    Maker* maker = zmake<Maker>();
    EXPECT_NE(maker->getProperty("made").toObject(), nullptr);
    EXPECT_EQ(maker->resolveObjectName("made.width", rest), maker) << "nobody would hold it";
    EXPECT_EQ(maker->findObject("made", false), nullptr);
    for (ZObject* end : {static_cast<ZObject*>(maker), root, held}) end->release();
}

TEST_F(ZObjectTree, LongPaths) {
    constexpr int parts = 100000;
    ZObject* root = child(nullptr, "root");
    child(root, "a");
    std::string text = "a";
    for (int i = 1; i < parts; ++i) text += i % 2 ? ".parent" : ".a";
    const ZSelector path(text.c_str());
    EXPECT_EQ(root->findObject(path, false), root);
    ZSelector rest;
    EXPECT_EQ(root->findObject(path, rest), root);
    EXPECT_TRUE(rest.isEmpty());
    EXPECT_EQ(root->resolveObjectName(path, rest), root->first());
    EXPECT_EQ(rest.parcount(), parts - 1);
    root->release();
}

TEST_F(ZObjectTree, Searches) {
    ZObject *root = child(nullptr, "root"), *a = child(root, "a"), *b = child(a, "b"), *c = child(root, "c");
    b->setDynamicProperty("mark", ZVariant(ZSelector("found")), true);
    c->setDynamicProperty("mark", ZVariant(ZSelector("found")), true);
    const ZVariant wanted{ZSelector("found")};
    EXPECT_EQ(root->objectByProperty("mark", wanted, false), c);
    EXPECT_EQ(a->objectByProperty("mark", wanted, false), b);
    EXPECT_EQ(c->objectByProperty("mark", wanted, true), nullptr);
    EXPECT_EQ(root->objectByProperty("mark", {}, true), nullptr);
    EXPECT_EQ(root->objectOfType(nullptr, "b"), b);
    root->release();
}

TEST_F(ZObjectTree, PublishedNames) {
    ZObject *first = child(nullptr, "desk"), *second = child(nullptr, "desk"), *plain = zmake<ZObject>();
    EXPECT_FALSE(plain->publishNamed());
    EXPECT_TRUE(first->publishNamed());
    EXPECT_EQ(ZObject::publishedObject("desk"), first);
    EXPECT_EQ(ZObject::propertyDelegate("desk"), nullptr);
    EXPECT_TRUE(second->publishNamed());
    EXPECT_EQ(ZObject::publishedObject("desk"), second);
    first->release(); // doesn't take the name away from the other
    EXPECT_EQ(ZObject::publishedObject("desk"), second);
    EXPECT_TRUE(second->setPropertyDelegate(true));
    second->setSelector("table");
    EXPECT_EQ(ZObject::publishedObject("desk"), nullptr);
    EXPECT_EQ(ZObject::publishedObject("table"), second);
    EXPECT_EQ(ZObject::propertyDelegate("table"), second);
    EXPECT_TRUE(second->setPropertyDelegate(false));
    EXPECT_EQ(ZObject::propertyDelegate("table"), nullptr);
    EXPECT_EQ(second->refcount(), 1);
    second->release();
    EXPECT_EQ(ZObject::publishedObject("table"), nullptr);
    plain->setGlobalNamed(true); // as soon as it has a name
    plain->setSelector("late");
    EXPECT_EQ(ZObject::publishedObject("late"), plain);
    plain->setGlobalNamed(false);
    EXPECT_EQ(ZObject::publishedObject("late"), nullptr);
    plain->release();
}

/// Made, searched, refused as a copy, and destroyed without recursion.
TEST_F(ZObjectTree, HundredThousandLevels) {
    constexpr int levels = 100000;
    ZObject* root = child(nullptr, "root");
    ZObject* at = root;
    for (int i = 0; i < levels; ++i) {
        at->setCopyMembers(true);
        at = child(at, "level");
    }
    at->setSelector("deepest");
    EXPECT_EQ(root->findObject("deepest", true), at);
    EXPECT_EQ(root->objectOfType(nullptr, "deepest"), at);
    EXPECT_EQ(at->sharedAncestor(root->first()), root);
    {
        AllocProbe probe;
        EXPECT_EQ(root->copy(), nullptr);
        EXPECT_EQ(root->deepCopy(), nullptr);
        EXPECT_EQ(probe.live(), 0) << probe.leaks();
    }
    root->release();
}

TEST_F(ZObjectTree, DeepestCopy) {
    for (int levels : {ZObject::depthLimit, ZObject::depthLimit + 1}) {
        ZObject* root = child(nullptr, "root");
        ZObject* at = root;
        for (int i = 0; i < levels; ++i) {
            at->setCopyMembers(true);
            at = child(at, "level");
        }
        auto copied = static_cast<ZObject*>(root->copy());
        EXPECT_EQ(copied != nullptr, levels == ZObject::depthLimit);
        if (copied) copied->release();
        root->release();
    }
}

} // namespace
