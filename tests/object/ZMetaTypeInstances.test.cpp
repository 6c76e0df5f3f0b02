#include "object/ZType.h"
#include "object/ZDetachContext.h"
#include "object/glueRows.h"
#include "object/ztype.h"
#include "tests/object/HandMade.h"
#include "tests/support/CoreScope.h"

#include <cstring>
#include <gtest/gtest.h>

using Kind = ZMetaType::Type;

namespace {

class MetaTypeInstances : public CoreTest {};

/// A class by callbacks that owns a block.
struct Owner {
    int value = 0;
    void* block = nullptr;

    static inline int alive = 0;
    static bool construct(void* at, ZMetaType*) {
        void* block = __zalloc(8);
        if (!block) return false;
        ::new (at) Owner{7, block};
        ++alive;
        return true;
    }
    static bool destruct(void* at) {
        zfree(static_cast<Owner*>(at)->block);
        --alive;
        return true;
    }
    static bool copy(void* at, const void* source) {
        if (!construct(at, nullptr)) return false;
        static_cast<Owner*>(at)->value = static_cast<const Owner*>(source)->value;
        return true;
    }
    static int compare(const void* a, const void* b) {
        return (static_cast<const Owner*>(a)->value - static_cast<const Owner*>(b)->value) * 10;
    }
    static TypePtr makeOne() {
        TypePtr made = makeSized("Owner", Kind::Class, sizeof(Owner));
        made->setCallback(ZMetaType::ConstructInstance, asCallback(construct));
        made->setCallback(ZMetaType::DestructInstance, asCallback(destruct));
        made->setCallback(ZMetaType::CopyInstance1, asCallback(copy));
        made->setCallback(ZMetaType::CompareInstance, asCallback(compare));
        return made;
    }
};

/// A class of types, with room behind it for who derives at run time.
struct Counted : ZType {
    int number = 3;
    static inline int alive = 0;

    explicit Counted(const __ZPassMetaType* type) : ZType(type) { ++alive; }
    Counted(const Counted* source, const __ZPassMetaType* type) : ZType(source, type), number(source->number) {
        ++alive;
    }
    ~Counted() override { --alive; }
    int compare(const ZType* other) const override {
        const int theirs = static_cast<const Counted*>(other)->number;
        return (number > theirs) - (number < theirs);
    }
    static bool construct(void* at, ZMetaType* type) {
        ::new (at) Counted(orv::passType(type));
        return true;
    }
    static bool copy(void* at, const void* source) {
        auto from = static_cast<const Counted*>(source);
        ::new (at) Counted(from, orv::passType(from->type()));
        return true;
    }
    static TypePtr makeOne() {
        TypePtr made = makeSized("Counted", Kind::Dynamic, sizeof(Counted));
        made->setCallback(ZMetaType::ConstructInstance, asCallback(construct));
        made->setCallback(ZMetaType::CopyInstance1, asCallback(copy));
        return made;
    }
};

} // namespace

TEST_F(MetaTypeInstances, EveryKindIsMadeCopiedComparedAndEnded) {
    struct Row {
        Kind kind;
        uint size;
        const char* text;
    };
    const Row rows[] = {
        {Kind::Bool, 1, "yes"},   {Kind::Char, 1, "-5"},          {Kind::Byte, 1, "200"},
        {Kind::Short, 2, "-300"}, {Kind::Word, 2, "60000"},       {Kind::Int, 4, "-70000"},
        {Kind::UInt, 4, "7"},     {Kind::Large, 8, "-1"},         {Kind::ULarge, 8, "1"},
        {Kind::Enum, 4, "3"},     {Kind::Float, 4, "0.5"},        {Kind::Double, 8, "2.5"},
        {Kind::Real, 8, "-1.25"}, {Kind::Selector, 4, "made"},    {Kind::String, 16, "text"},
        {Kind::Void, 6, nullptr}, {Kind::Structure, 20, nullptr}, {Kind::Composite, 12, nullptr},
    };
    for (const Row& row : rows) {
        TypePtr type = makeSized("Any", row.kind, row.size);
        void *a = type->createInstance(), *b = type->createInstance();
        ASSERT_TRUE(a && b);
        EXPECT_TRUE(type->isNullData(a)) << int(row.kind);
        EXPECT_EQ(type->compareInstance(a, b), 0);
        EXPECT_EQ(type->compareInstance(a, nullptr), -1);
        EXPECT_EQ(type->compareInstance(nullptr, b), 1);
        EXPECT_EQ(type->compareInstance(nullptr, nullptr), 0);
        if (row.text) {
            EXPECT_TRUE(type->fromString(a, row.text)) << row.text;
            ZString text;
            EXPECT_TRUE(type->toString(a, text));
            EXPECT_EQ(text, row.text);
            EXPECT_NE(type->compareInstance(a, b), 0) << row.text;
        } else
            std::memset(a, 1, row.size);
        EXPECT_FALSE(type->isNullData(a)) << int(row.kind);
        void* copy = type->copyInstance(a);
        ASSERT_TRUE(copy) << int(row.kind);
        EXPECT_EQ(type->compareInstance(a, copy), 0);
        EXPECT_TRUE(type->detachInstance(copy));
        EXPECT_TRUE(type->isDetachedInstance(copy)) << int(row.kind);
        EXPECT_EQ(type->retainInstance(copy), copy);
        type->releaseInstance(copy);
        EXPECT_EQ(refcount(copy), 1);
        for (void* instance : {a, b, copy}) type->releaseInstance(instance);
    }
}

TEST_F(MetaTypeInstances, CallbacksComeFirst) {
    TypePtr type = Owner::makeOne();
    ZMetaType* reference = type->getQualified("const Owner&");
    void *a = reference->createInstance(), *b = type->createInstance();
    ASSERT_TRUE(a && b);
    EXPECT_EQ(static_cast<Owner*>(a)->value, 7);
    static_cast<Owner*>(b)->value = 9;
    EXPECT_EQ(type->compareInstance(a, b), -1) << "any negative number means less";
    void* copy = type->copyInstance(b);
    EXPECT_EQ(static_cast<Owner*>(copy)->value, 9);
    for (void* instance : {a, b, copy}) type->releaseInstance(instance);
    EXPECT_EQ(Owner::alive, 0);
    type->clearVariants();
}

TEST_F(MetaTypeInstances, PointersHoldWhatTheyPointTo) {
    TypePtr type = Owner::makeOne();
    ZMetaType* pointer = type->getPtrType();
    alignas(8) byte room[8], copy[8];
    EXPECT_TRUE(pointer->constructInstance(room));
    void* held;
    std::memcpy(&held, room, sizeof held);
    ASSERT_TRUE(held);
    EXPECT_EQ(Owner::alive, 1);
    EXPECT_TRUE(pointer->copyInstance(copy, room));
    EXPECT_EQ(refcount(held), 2);
    EXPECT_EQ(pointer->compareInstance(room, copy), 0);
    void* none = nullptr;
    EXPECT_EQ(pointer->compareInstance(&none, room), -1) << "null is first among pointers";
    EXPECT_TRUE(pointer->isNullData(&none));
    EXPECT_FALSE(pointer->isNullData(room));
    EXPECT_TRUE(pointer->destructInstance(room));
    EXPECT_EQ(Owner::alive, 1);
    EXPECT_TRUE(pointer->destructInstance(copy));
    EXPECT_EQ(Owner::alive, 0);
    type->clearVariants();
}

TEST_F(MetaTypeInstances, ClassesOfTypesBelongToTheTypeThatMadeThem) {
    TypePtr type = Counted::makeOne(), wider = makeType("Wider", Kind::Dynamic, {type});
    wider->setSize(sizeof(Counted) + 40);
    auto made = static_cast<Counted*>(wider->createInstance());
    ASSERT_TRUE(made) << "by what its base has";
    EXPECT_EQ(made->type(), wider.get());
    EXPECT_EQ(memsize(made), sizeof(Counted) + 40);
    EXPECT_EQ(type->actualType(made), wider.get());
    made->number = 5;
    auto copy = static_cast<Counted*>(type->copyInstance(made));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->type(), wider.get());
    EXPECT_EQ(copy->number, 5);
    EXPECT_EQ(memsize(copy), sizeof(Counted) + 40);
    EXPECT_EQ(type->compareInstance(made, copy), 0);
    copy->number = 4;
    EXPECT_EQ(type->compareInstance(made, copy), 1);
    EXPECT_EQ(wider->retainInstance(made), made);
    wider->releaseInstance(made);
    EXPECT_EQ(Counted::alive, 2);
    wider->deleteInstance(copy);
    wider->releaseInstance(made);
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_EQ(makeType("Empty", Kind::Dynamic)->createInstance(), nullptr) << "no class stands behind it";
    // A class that is declared, and not as one that can be made or copied, isn't made as its base.
    static constexpr orv::glue::ClassRow row{};
    TypePtr strict = makeType("Strict", Kind::Dynamic, {type});
    strict->setSize(sizeof(Counted) + 40);
    strict->setDeclaration(&row);
    EXPECT_EQ(strict->createInstance(), nullptr);
    alignas(16) byte room[sizeof(Counted) + 40];
    void* source = type->createInstance();
    EXPECT_FALSE(strict->copyInstance(room, source));
    type->releaseInstance(source);
    EXPECT_EQ(Counted::alive, 0);
    ZObject* context = static_cast<ZObject*>(ztype<ZDetachContext>()->createInstance());
    ASSERT_TRUE(context);
    EXPECT_EQ(context->copy(), nullptr) << "an object of another class would bear its type";
    context->release();
}

TEST_F(MetaTypeInstances, WhatCantBeMadeLeavesNothing) {
    TypePtr type = Owner::makeOne();
    failEachAllocation([&](AllocProbe& probe) {
        void* made = type->createInstance();
        EXPECT_EQ(made == nullptr, probe.failed());
        type->releaseInstance(made);
    });
    void* source = type->createInstance();
    failEachAllocation([&](AllocProbe& probe) {
        void* copy = type->copyInstance(source);
        EXPECT_EQ(copy == nullptr, probe.failed());
        type->releaseInstance(copy);
    });
    type->releaseInstance(source);
    EXPECT_EQ(Owner::alive, 0);
    type->setAlignment(64);
    EXPECT_EQ(type->createInstance(), nullptr) << "no block is aligned so";
    EXPECT_FALSE(type->heldInline());
    // What has a destructor but no way to be copied isn't copied by its bytes.
    TypePtr guarded = makeSized("Guarded", Kind::Structure, 8);
    guarded->setCallback(ZMetaType::DestructInstance, asCallback(Owner::destruct));
    alignas(8) byte from[8] = {}, to[8];
    EXPECT_FALSE(guarded->copyInstance(to, from));
}
