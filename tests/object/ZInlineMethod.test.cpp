#include "object/ZInlineMethod.h"

#include "object/ztype.h"
#include "tests/object/methodShapes.h"

#include <gtest/gtest.h>

namespace {

class InlineMethods : public MethodTest {
protected:
    CallShape instance;
    ZMetaType* type = shape();
    static int number(void* word) { return int(reinterpret_cast<intptr_t>(word)); }
    static void* answer(const void*, ZMethod*) { return reinterpret_cast<void*>(41); }
};

} // namespace

TEST_F(InlineMethods, FindByTypeOrName) {
    ZInlineMethod plain, byName, onBase, missing;
    plain.init(type, "int plain()");
    EXPECT_FALSE(plain.isValid());
    EXPECT_EQ(number(plain.call(&instance)), 7);
    EXPECT_TRUE(plain.isValid());
    byName.setSelector("CallShape", "int plain()", "const");
    EXPECT_EQ(number(byName.call(&instance)), 7);
    onBase.init(type, "int second()");
    EXPECT_EQ(number(onBase.call(&instance)), 2) << "called on its part";
    ZInlineMethod add;
    add.init(type, "int add(int, int)");
    for (int again = 0; again < 2; ++again) EXPECT_EQ((add.callAs<int>(&instance, 40, 2)), 42);
    EXPECT_EQ(add.call(&instance), nullptr) << "not with so many words";
    missing.setSelector("NoSuchType", "int plain()", "const");
    EXPECT_EQ(missing.call(&instance), nullptr);
    EXPECT_EQ(missing.getFunc(), &ZMethod::emptyFunc);
    EXPECT_EQ(missing.getMethod(), nullptr);
}

TEST_F(InlineMethods, WhatMayNotBeCalled) {
    ZInlineMethod record;
    EXPECT_FALSE(record.setMethod(type, "int hidden()", {})) << "private";
    EXPECT_TRUE(record.setMethod(type, "int plain()", "const"));
    record.setMode(ZInlineMethod::TypeMethod);
    EXPECT_EQ(record.getMethod(), nullptr) << "needs an instance";
    EXPECT_TRUE(record.setMethod(type, "int twice(int)", {}));
    const ZVariant four(4);
    EXPECT_EQ(record.invoke(nullptr, &four, 1).toInt(), 8);
}

TEST_F(InlineMethods, ChangesAreSeen) {
    ZInlineMethod plain;
    plain.init(type, "int plain()");
    EXPECT_EQ(number(plain.call(&instance)), 7);
    ZMethodPtr other = method("int plain()", "const");
    other->setFunc(&answer);
    ASSERT_TRUE(type->setUserMethod(other));
    EXPECT_FALSE(plain.isValid());
    EXPECT_EQ(number(plain.call(&instance)), 41);
    plain.setBaseMethod(true);
    EXPECT_EQ(number(plain.call(&instance)), 7) << "what the class declares";
    plain.setBaseMethod(false);
    ASSERT_TRUE(type->removeUserMethod("int plain()", "const"));
    EXPECT_EQ(number(plain.call(&instance)), 7);
    ZInlineMethod copy(plain);
    type->resetMethodTypes();
    EXPECT_EQ(number(copy.call(&instance)), 7);
}

TEST_F(InlineMethods, OverloadsByTypes) {
    ZArrayT<ZMetaType*> types;
    for (ZMetaType* each : {static_cast<ZMetaType*>(nullptr), ztype<real>(), ztype<real>()}) types.append(each);
    ZInlineMethod add;
    ASSERT_TRUE(add.setMethod(type, "add", types, {}));
    EXPECT_TRUE(add.isMultiMethod());
    EXPECT_EQ(add.getParamType(1), ztype<real>());
    const ZVariant args[] = {ZVariant(1.5), ZVariant(2.0)};
    EXPECT_EQ(add.invoke(&instance, args, 2).toReal(), 3.5);
    {
        ZInlineMethod::Stack kept(add);
        EXPECT_EQ(ZInlineMethod::stack(), &kept);
        types.setCount(1);
        for (int i = 0; i < 2; ++i) types.append(ztype<int>());
        ASSERT_TRUE(add.setMethod(type, "add", types, {}));
        EXPECT_EQ(add.getParamType(1), ztype<int>());
    }
    EXPECT_EQ(ZInlineMethod::stack(), nullptr);
    EXPECT_EQ(add.getParamType(1), ztype<real>()) << "back to what the outer call had";
    ZInlineMethod::clearMultiMethods(ztype<real>());
    EXPECT_EQ(add.invoke(&instance, args, 2).toReal(), 3.5) << "now by the arguments";
}
