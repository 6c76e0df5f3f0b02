#include "module/packages.h"
#include "object/ZProperty.h"
#include "object/ZType.h"
#include "object/glue.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "text/ZBlendPos.h"
#include "value/ZVariant.h"

#include <string>

/// Tells in which order its operations are called.
class BlendShape : public ZType {
public:
    ORV_REFLECT(BlendShape);
    explicit BlendShape(const __ZPassMetaType* tag = nullptr) : ZType(tag ? tag : orv::passType(ztype<BlendShape>())) {}
    BlendShape(const BlendShape* source, const __ZPassMetaType* tag = nullptr)
        : ZType(source, tag ? tag : orv::passType(ztype<BlendShape>())), s(source->s), f(source->f) {}

    real size() const { return s; }
    bool setSize(const real& value) {
        s = value;
        return true;
    }
    int fixed() const { return f; }
    bool setFixed(const int& value) {
        f = value;
        return true;
    }

    bool blendProperties(const ZType* a, const ZType* b, const ZBlendPos& pos) override {
        return tell('p') && ZType::blendProperties(a, b, pos);
    }
    bool blendLocal(const ZType*, const ZType*, const ZBlendPos&) override { return tell('l'); }
    bool blendDynamicProperties(const ZType* a, const ZType* b, const ZBlendPos& pos) override {
        return tell('d') && ZType::blendDynamicProperties(a, b, pos);
    }
    bool setIdentityProperties() override { return tell('p') && ZType::setIdentityProperties(); }
    bool setLocalIdentity() override { return tell('l'); }
    bool setIdentityDynamicProperties() override { return tell('d') && ZType::setIdentityDynamicProperties(); }
    bool markLocal(ZCSPMarker*) const override { return tell('m'); }
    bool updateLocal(const ZColorContext*) override { return tell('u'); }

    bool tell(char step) const {
        steps += step;
        return step != refused;
    }
    real s = 2;
    int f = 1;
    char refused = 0;
    mutable std::string steps;
};

namespace orv::glue {
template <> struct Table<BlendShape> : Declares<BlendShape> {
    using BaseTypes = Bases<ZType>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_VALUE_ACCESSORS(real, size, Size),
        ORV_VALUE_ACCESSORS(int, fixed, Fixed),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(real, size, "store").at(offsetof(Self, s)),
        ORV_PROPERTY(int, fixed, "store noblend"),
    };
    static constexpr ClassInfo info = {.kind = Kind::Dynamic, .flags = typePublic | typePolymorphic};
};
} // namespace orv::glue
ORV_DECLARE(BlendShape);

namespace {

class TypeBlend : public CoreTest {
protected:
    static void SetUpTestSuite() {
        CoreTest::SetUpTestSuite();
        ZMetaType* type = orv::makeType(ZPackage::findPackage("orv.core.base"), orv::glue::Row<BlendShape>::row);
        ASSERT_TRUE(type && type->resetBase());
    }
    static ZSelector name(const char* text) { return ZSelector(text); }
    static int number(const ZType* instance, const char* property) {
        return instance->getProperty(ZSelector(property)).toInt();
    }
};
struct Shape {
    BlendShape* shape = zmake<BlendShape>();
    ~Shape() { shape->release(); }
    BlendShape* operator->() const { return shape; }
};

} // namespace

TEST_F(TypeBlend, DeclaredThenLocalThenDynamic) {
    Shape a, b, made;
    b->s = 6;
    b->f = 9;
    a->addProperty(name("note"), ZVariant(10));
    b->addProperty(name("note"), ZVariant(20));
    a->addProperty(name("stays"), ZVariant(1), uint(ZProperty::Default | ZProperty::NoBlend));
    b->addProperty(name("stays"), ZVariant(7), uint(ZProperty::Default | ZProperty::NoBlend));
    b->addProperty(name("late"), ZVariant("text"));
    ASSERT_TRUE(made->blendFrom(a.shape, b.shape, ZBlendPos(0.75)));
    EXPECT_EQ(made->steps, "pld");
    EXPECT_EQ(made->s, 5);
    EXPECT_EQ(made->f, 1) << "left out";
    EXPECT_EQ(number(made.shape, "note"), 18) << "17.5 rounded";
    EXPECT_EQ(number(made.shape, "stays"), 1);
    EXPECT_EQ(made->getProperty(name("late")).toString(), ZString("text"));
    EXPECT_EQ(number(a.shape, "note"), 10) << "nothing is shared with the result";
    // One of the two may be the target, or missing.
    ASSERT_TRUE(a->blendFrom(a.shape, b.shape, ZBlendPos(0.5)));
    EXPECT_EQ(a->s, 4);
    EXPECT_EQ(number(a.shape, "note"), 15);
    EXPECT_FALSE(made->blendFrom(nullptr, nullptr, ZBlendPos(0.5)));
    EXPECT_EQ(number(made.shape, "note"), 18);
    // Who refuses ends the rest.
    made->refused = 'l';
    made->steps.clear();
    EXPECT_FALSE(made->blendFrom(a.shape, b.shape, ZBlendPos(0.5)));
    EXPECT_EQ(made->steps, "pl");
}

TEST_F(TypeBlend, AnIdentityIsACopyThatMeansNothing) {
    Shape shape;
    shape->addProperty(name("note"), ZVariant(10));
    shape->addProperty(name("stays"), ZVariant(3), uint(ZProperty::Default | ZProperty::NoBlend));
    auto nothing = static_cast<BlendShape*>(shape->createIdentity());
    ASSERT_TRUE(nothing);
    EXPECT_EQ(nothing->type(), ztype<BlendShape>());
    EXPECT_EQ(nothing->steps, "pld");
    EXPECT_EQ(nothing->s, 0);
    EXPECT_EQ(nothing->f, 1);
    EXPECT_EQ(number(nothing, "note"), 0);
    EXPECT_EQ(number(nothing, "stays"), 3);
    EXPECT_EQ(number(shape.shape, "note"), 10);
    nothing->release();
    failEachAllocation([&](AllocProbe& probe) {
        ZType* made = shape->createIdentity();
        EXPECT_TRUE(made || probe.failed());
        if (!made) return;
        EXPECT_EQ(number(made, "note"), 0);
        EXPECT_EQ(static_cast<BlendShape*>(made)->s, 0);
        made->release();
        EXPECT_EQ(number(shape.shape, "note"), 10);
    });
}

TEST_F(TypeBlend, MarksReachWhatTheClassHasItself) {
    Shape shape;
    EXPECT_TRUE(shape->markcsp(nullptr) && shape->updatecsp(nullptr));
    EXPECT_TRUE(shape->type()->markCSPInstance(shape.shape, nullptr));
    EXPECT_EQ(shape->steps, "mum");
    EXPECT_FALSE(shape->blendIdentity());
}

TEST_F(TypeBlend, TheMostDerivedTagSurvives) {
    // A type of its own without a class: what is made for it is one of the base's class, and knows its type.
    ZArrayT<ZMetaType*> bases;
    ASSERT_TRUE(bases.append(ztype<BlendShape>()));
    auto leaf = zmake<ZMetaType>(nullptr, name("BlendLeaf"), ZMetaType::Dynamic, bases);
    ASSERT_TRUE(leaf);
    leaf->setSize(sizeof(BlendShape) + 16);
    auto made = static_cast<BlendShape*>(leaf->createType());
    ASSERT_TRUE(made);
    EXPECT_EQ(made->type(), leaf);
    EXPECT_EQ(number(made, "fixed"), 1);
    ZType* copy = made->copy();
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->type(), leaf);
    // Up to the base and back there is room; a smaller instance can't become one.
    Shape plain;
    EXPECT_FALSE(plain->setMetaType(leaf));
    EXPECT_TRUE(copy->setMetaType(ztype<BlendShape>()));
    copy->release();
    made->release();
    leaf->release();
}

TEST_F(TypeBlend, ALocalTypeAddsToWhatItCopied) {
    Shape shape, other;
    ASSERT_TRUE(shape->localizeType(true));
    ZMetaType* local = shape->type();
    EXPECT_TRUE(local->addUserProperty(ZProperty(name("mine"), ZVariant(4))));
    EXPECT_TRUE(local->addUserProperty(ZProperty(name("fixed"), ZVariant(40))));
    EXPECT_TRUE(shape->hasProperty(name("mine")));
    EXPECT_FALSE(other->hasProperty(name("mine")));
    ZProperty found;
    ASSERT_TRUE(local->propertyDef(name("fixed"), found));
    EXPECT_EQ(found.value().toInt(), 40) << "its own come first";
    EXPECT_EQ(shape->getProperty(name("size")).toReal(), 2);
    EXPECT_TRUE(shape->setProperty(name("size"), ZVariant(3.0)));
    EXPECT_EQ(shape->s, 3);
    EXPECT_EQ(shape->invoke(name("size"), ZArrayT<ZVariant>()).toReal(), 3);
    EXPECT_EQ(shape->type(true, false), ztype<BlendShape>());
    EXPECT_EQ(shape->type(true, true), ztype<BlendShape>());
    EXPECT_TRUE(shape->sameType(other.shape) && shape->isType(ztype<BlendShape>()));
    ZType* copy = shape->copy();
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->type(), local);
    EXPECT_EQ(local->getInstanceCount(), 2);
    copy->release();
    EXPECT_EQ(local->getInstanceCount(), 1);
    EXPECT_TRUE(shape->setType(ztype<BlendShape>()));
}
