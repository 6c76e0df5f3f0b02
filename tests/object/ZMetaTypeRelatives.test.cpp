#include "core/memlock.h"
#include "object/ZObject.h"
#include "tests/object/HandMade.h"
#include "tests/support/CoreScope.h"

#include <gtest/gtest.h>

using Kind = ZMetaType::Type;

namespace {
class MetaTypeRelatives : public CoreTest {};
ZSelector nameOf(const ZMetaType* type) { return type ? type->getName() : ZSelector("(none)"); }
} // namespace

TEST_F(MetaTypeRelatives, VariantsSayWhatTheyStandFor) {
    TypePtr type = makeSized("ZThing", Kind::Structure, 12);
    struct Row {
        const char *name, *deref, *value, *pointer, *constant;
        int pointers;
        bool reference;
        Kind kind;
    };
    const Row rows[] = {
        {"const ZThing", "ZThing", "ZThing", "const ZThing*", "const ZThing", 0, false, Kind::Structure},
        {"ZThing&", "ZThing", "ZThing", "ZThing*", "const ZThing&", 0, true, Kind::Structure},
        {"const ZThing&", "const ZThing", "ZThing", "const ZThing*", "const ZThing&", 0, true, Kind::Structure},
        {"ZThing*", "ZThing", "ZThing*", "ZThing**", "const ZThing*", 1, false, Kind::Pointer},
        {"const ZThing*", "const ZThing", "const ZThing*", "const ZThing**", "const ZThing*", 1, false, Kind::Pointer},
        {"const ZThing**", "const ZThing*", "const ZThing**", "const ZThing***", "const ZThing**", 2, false,
         Kind::Pointer},
    };
    for (const Row& row : rows) {
        ZMetaType* variant = type->getQualified(row.name);
        ASSERT_TRUE(variant) << row.name;
        EXPECT_EQ(variant, type->getQualified(row.name)) << row.name;
        EXPECT_EQ(variant, type->findQualified(row.name)) << row.name;
        EXPECT_EQ(variant, variant->getQualified(row.name)) << row.name;
        EXPECT_EQ(nameOf(variant), ZSelector(row.name));
        EXPECT_EQ(variant->getMainType(), type.get());
        EXPECT_EQ(variant->rootType(), type.get());
        EXPECT_EQ(variant->getDataType(), type.get());
        EXPECT_EQ(nameOf(variant->derefType()), ZSelector(row.deref)) << row.name;
        EXPECT_EQ(nameOf(variant->getValueType()), ZSelector(row.value)) << row.name;
        EXPECT_EQ(nameOf(variant->getPtrType()), ZSelector(row.pointer)) << row.name;
        EXPECT_EQ(nameOf(variant->getConstType()), ZSelector(row.constant)) << row.name;
        EXPECT_EQ(variant->getPtrCount(), row.pointers) << row.name;
        EXPECT_EQ(variant->isReference(), row.reference) << row.name;
        EXPECT_EQ(variant->kind(), row.kind) << row.name;
        EXPECT_EQ(variant->getType(true), Kind::Structure);
        EXPECT_EQ(variant->byteSize(), row.kind == Kind::Pointer ? 8u : 12u);
        EXPECT_EQ(variant->heldInline(), row.kind != Kind::Pointer);
        EXPECT_EQ(variant->isSameType(type), row.pointers == 0) << row.name;
    }
    EXPECT_EQ(type->getMainType(), nullptr);
    EXPECT_EQ(type->getPtrType(), type->getQualified("ZThing*"));
    EXPECT_EQ(type->getConstPtrType(), type->getQualified("const ZThing*"));
    EXPECT_EQ(type->getQualified("ZThing"), type.get());
    // What is no variant of this type, or has too many "*", isn't made.
    EXPECT_EQ(type->getQualified("const ZOther*"), nullptr);
    EXPECT_TRUE(type->getQualified("ZThing****"));
    EXPECT_EQ(type->getQualified("ZThing*****"), nullptr);
    EXPECT_EQ(type->findQualified("volatile ZThing*"), nullptr);
    // A later change of the type shows in those that aren't pointers.
    type->setSize(40);
    EXPECT_EQ(type->getQualified("const ZThing&")->byteSize(), 40u);
    EXPECT_FALSE(type->getQualified("const ZThing&")->heldInline());
    // One that somebody holds goes on without the type.
    TypePtr kept = type->getQualified("ZThing*");
    type->clearVariants();
    EXPECT_EQ(kept->getMainType(), nullptr);
    EXPECT_NE(type->getPtrType(), kept.get());
    type->clearVariants();
}

TEST_F(MetaTypeRelatives, NestedTypesAreFoundByPath) {
    TypePtr outer = makeType("Outer"), inner = makeType("Outer::Inner", Kind::Enum), plain = makeType("Plain");
    EXPECT_TRUE(outer->addType(inner));
    EXPECT_FALSE(outer->addType(outer));
    EXPECT_EQ(inner->getOwnerType(), outer.get());
    EXPECT_EQ(outer->findType("Inner"), inner.get());
    EXPECT_EQ(inner->findType("Inner"), inner.get());
    ZMetaType::Types types;
    for (const TypePtr* type : {&outer, &plain})
        types.set(ZRetainKeyT<ZSelector, ZMetaType>((*type)->getName(), type->get()));
    EXPECT_EQ(ZMetaType::findInTypeMap(types, "Plain"), plain.get());
    EXPECT_EQ(ZMetaType::findInTypeMap(types, "Outer::Inner"), inner.get());
    EXPECT_EQ(ZMetaType::findInTypeMap(types, "const Outer::Inner&"), inner->getQualified("const Outer::Inner&"));
    EXPECT_EQ(ZMetaType::findInTypeMap(types, "Outer::Other"), nullptr);
    EXPECT_EQ(ZMetaType::findInTypeNameMap(types, "const Plain*"), plain->getQualified("const Plain*"));
    EXPECT_EQ(ZMetaType::findInTypeNameMap(types, "Missing*"), nullptr);
    EXPECT_TRUE(outer->removeType(inner));
    EXPECT_FALSE(outer->removeType("Inner"));
    EXPECT_EQ(inner->getOwnerType(), nullptr);
    for (const TypePtr* type : {&inner, &plain}) (*type)->clearVariants();
}

TEST_F(MetaTypeRelatives, LocalTypesAreHeldByTheirInstances) {
    TypePtr base = makeType("LocBase", Kind::Object), type = makeType("LocType", Kind::Object, {base});
    type->setSize(sizeof(ZObject));
    auto first = zmake<ZObject>(orv::passType(type)), second = zmake<ZObject>(orv::passType(type));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(type->getInstanceCount(), 0) << "only a type of its own is counted";
    EXPECT_EQ(type->refcount(), 1);
    EXPECT_FALSE(first->localType(false));
    EXPECT_TRUE(first->localizeType(true));
    ZMetaType* local = first->type();
    ASSERT_NE(local, type.get());
    EXPECT_TRUE(local->isLocalType() && local->isLocalOf(type));
    EXPECT_EQ(local->getInstanceCount(), 1);
    EXPECT_EQ(local->refcount(), 1) << "the instance alone holds it";
    EXPECT_EQ(type->refcount(), 2) << "a copy keeps what it was made from";
    EXPECT_TRUE(first->localType(true));
    EXPECT_TRUE(first->sameType(second));
    EXPECT_TRUE(first->isType(base.get()) && first->isType("LocBase") && first->isType("LocType"));
    EXPECT_EQ(first->type(true, false), type.get());
    EXPECT_EQ(first->type(true, true), type.get());
    EXPECT_EQ(type->getCopies().count(), 1u);
    // Shared between two it isn't exclusive; localizing exclusively makes another one.
    EXPECT_TRUE(second->replaceType(local));
    EXPECT_EQ(local->getInstanceCount(), 2);
    EXPECT_FALSE(first->localType(true));
    EXPECT_TRUE(first->localType(false));
    EXPECT_TRUE(second->replaceType(local)) << "the type that it has already";
    EXPECT_EQ(local->getInstanceCount(), 2);
    EXPECT_FALSE(second->replaceType(nullptr));
    EXPECT_TRUE(second->localizeType(true));
    EXPECT_NE(second->type(), local);
    EXPECT_TRUE(second->type()->isLocalOf(local) && second->type()->isLocalOf(type));
    EXPECT_EQ(local->getInstanceCount(), 1);
    // And back: nothing is left.
    EXPECT_TRUE(second->replaceType(type));
    EXPECT_TRUE(first->setType(type));
    EXPECT_EQ(type->getCopies().count(), 0u);
    EXPECT_EQ(type->refcount(), 1);
    first->release();
    second->release();
}

TEST_F(MetaTypeRelatives, RetainedAndLockableTypes) {
    TypePtr type = makeType("Retained", Kind::Dynamic);
    auto early = zmake<ZType>(orv::passType(type));
    type->setRetainedType(true);
    type->setFlags(ZMetaType::Lockable);
    auto late = zmake<ZType>(orv::passType(type));
    EXPECT_EQ(type->getInstanceCount(), 1);
    EXPECT_EQ(type->refcount(), 2);
    EXPECT_FALSE(early->lockable());
    EXPECT_TRUE(late->lockable());
    late->release();
    early->release();
    EXPECT_EQ(type->getInstanceCount(), 0);
    EXPECT_EQ(type->refcount(), 1);
}

TEST_F(MetaTypeRelatives, SingletonAndDelegatesAreHeld) {
    TypePtr type = makeType("Keeper", Kind::Object);
    auto object = zmake<ZObject>();
    type->setSingleton(object);
    type->setSingleton(object);
    EXPECT_TRUE(type->hasSingleton());
    EXPECT_EQ(object->refcount(), 2);
    EXPECT_TRUE(type->addTypeDelegate(object));
    EXPECT_TRUE(type->addTypeDelegate(object)) << "once more";
    EXPECT_EQ(object->refcount(), 3);
    EXPECT_EQ(type->getTypeDelegates().count(), 1u);
    EXPECT_TRUE(type->removeTypeDelegate(object));
    EXPECT_FALSE(type->removeTypeDelegate(object));
    type->setSingleton(nullptr);
    EXPECT_EQ(object->refcount(), 1);
    EXPECT_TRUE(type->addTypeDelegate(object));
    object->release();
    // The type gives up what it holds when it goes.
}
