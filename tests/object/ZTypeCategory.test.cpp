#include "object/ZTypeCategory.h"

#include "core/construct.h"
#include "module/ZPackage.h"
#include "object/ZEnumType.h"
#include "object/ZMethod.h"
#include "object/ZProperty.h"
#include "object/ztype.h"
#include "tests/support/SelectorScope.h"
#include "tests/support/TypeTest.h"
#include "value/ZVariant.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

using CategoryTest = TypeTest;

struct Release {
    void operator()(ZObject* object) const { object->release(); }
};
template <class T> using Holder = std::unique_ptr<T, Release>;

/// A method whose context tells it from others of its signature.
bool addMethod(ZTypeCategory& category, const char* signature, void* mark) {
    ZMethod* method = ZMethod::create(ZSelector(signature), ZSelector());
    if (!method) return false;
    method->setContext(mark);
    const bool done = category.appendMethod(method);
    ZMethod::release(method);
    return done;
}
bool addProperty(ZTypeCategory& category, const char* name) {
    ZProperty* property = ZProperty::create(ZSelector(name), ztype<int>(), ZProperty::Dynamic);
    if (!property) return false;
    const bool done = category.addPropertyDef(ZPropertyPtr(property));
    property->release();
    return done;
}
/// The mark of the method that a type finds; null if it finds none.
void* markOf(ZMetaType& type, const char* signature) {
    toolkit::EpochGuard guard;
    ZMethod* method = type.methodType(ZSelector(signature), ZSelector());
    return method ? method->getContext() : nullptr;
}

struct Fixture {
    Holder<ZPackage> package{zmake<ZPackage>()};
    Holder<ZMetaType> type{zmake<ZMetaType>(nullptr, ZSelector("TestShape"), ZMetaType::Structure)};
    Holder<ZTypeCategory> category(const char* name) {
        Holder<ZTypeCategory> made(zmake<ZTypeCategory>(package.get(), ZSelector(name)));
        EXPECT_TRUE(made && package->addCategory(made.get()));
        return made;
    }
    Fixture() {
        package->setSelector("test.categories");
        type->setPackage(package.get());
    }
    ~Fixture() {
        package->removeCategory();
        type->setPackage(nullptr);
    }
};

int marks[4];

TEST_F(CategoryTest, ATypeHasWhatItsCategoriesBringAsLongAsTheyAreThere) {
    Fixture test;
    auto first = test.category("First"), second = test.category("Second");
    ASSERT_TRUE(addMethod(*first, "int area()", &marks[0]) && addMethod(*second, "int area()", &marks[1]) &&
                addMethod(*second, "int edge()", &marks[2]) && addProperty(*first, "note") &&
                addProperty(*second, "note"));
    ZSelectorMap shortcuts, own;
    ASSERT_TRUE(shortcuts.set("a", "area") && own.set("e", "edge") && second->setSelectorGroup("short", shortcuts) &&
                test.type->setSelectorGroup("own", own));
    Holder<ZEnumType> nested(zmake<ZEnumType>(nullptr, ZSelector("Mode")));
    ASSERT_TRUE(nested->add("Fast", 3) && first->addType(nested.get()));

    ZMetaType& type = *test.type;
    EXPECT_EQ(markOf(type, "int area()"), nullptr);
    EXPECT_TRUE(type.addCategory(first.get()) && type.addCategory("Second"));
    EXPECT_TRUE(type.addCategory(first.get())) << "it has it already";
    EXPECT_TRUE(type.hasCategory("First") && type.hasCategory(second.get()));
    EXPECT_EQ(type.getCategories().count(), 2u);
    EXPECT_EQ(markOf(type, "int area()"), &marks[0]) << "the earlier one comes first";
    EXPECT_EQ(markOf(type, "int edge()"), &marks[2]);
    EXPECT_TRUE(type.hasPropertyDef("note"));
    EXPECT_EQ(type.findType("Mode"), nested.get());
    EXPECT_EQ(text(type.selectorGroup("short").get("a")), "area");
    EXPECT_EQ(text(type.getNamedSelector("a")), "area");
    EXPECT_EQ(text(type.getNamedSelector("e")), "edge");

    EXPECT_TRUE(type.removeCategory("First"));
    EXPECT_FALSE(type.hasCategory("First"));
    EXPECT_EQ(markOf(type, "int area()"), &marks[1]) << "what the first one hid";
    EXPECT_TRUE(type.hasPropertyDef("note"));
    EXPECT_NE(type.findType("Mode"), nested.get());
    EXPECT_TRUE(type.removeCategory());
    EXPECT_EQ(markOf(type, "int edge()"), nullptr);
    EXPECT_FALSE(type.hasPropertyDef("note"));
    EXPECT_TRUE(type.getNamedSelector("a").isEmpty());
    EXPECT_FALSE(type.removeCategory("First"));
    EXPECT_FALSE(type.addCategory("Gone"));
}

TEST_F(CategoryTest, OneInstanceIsExtended) {
    Fixture test;
    auto first = test.category("First"), second = test.category("Second");
    ASSERT_TRUE(addMethod(*first, "int area()", &marks[0]) && addMethod(*second, "int edge()", &marks[1]));
    Holder<ZMetaType> type(zmake<ZMetaType>(nullptr, ZSelector("Extended"), ZMetaType::Object));
    type->setPackage(test.package.get());
    Holder<ZObject> one(zmake<ZObject>(orv::passType(type.get()))), other(zmake<ZObject>(orv::passType(type.get())));
    const auto has = [](const Holder<ZObject>& object, const char* signature) {
        return object->hasMethod(ZSelector(signature), {});
    };
    EXPECT_FALSE(one->removeExtension() || one->removeExtension("First")) << "there is none";
    EXPECT_TRUE(one->extend("First") && one->extend(second.get()));
    EXPECT_TRUE(has(one, "int area()") && has(one, "int edge()"));
    EXPECT_FALSE(has(other, "int area()") || has(other, "int edge()"));
    EXPECT_TRUE(one->removeExtension("First"));
    EXPECT_FALSE(has(one, "int area()"));
    EXPECT_FALSE(one->removeExtension("First") || one->removeExtension(first.get()) || other->removeExtension());
    EXPECT_TRUE(one->extend(first.get()) && one->removeExtension(second.get()));
    EXPECT_TRUE(has(one, "int area()") && !has(one, "int edge()"));
    EXPECT_TRUE(one->removeExtension());
    EXPECT_FALSE(has(one, "int area()"));
    type->setPackage(nullptr);
}

TEST_F(CategoryTest, CategoriesNestAlsoAcrossPackagesAndInCircles) {
    Fixture test;
    Holder<ZPackage> other(zmake<ZPackage>());
    other->setSelector("test.others");
    auto outer = test.category("Outer"), inner = test.category("Inner");
    Holder<ZTypeCategory> far(zmake<ZTypeCategory>(other.get(), ZSelector("Far")));
    ASSERT_TRUE(other->addCategory(far.get()) && test.package->use(other.get()));
    ASSERT_TRUE(addMethod(*inner, "int inside()", &marks[0]) && addMethod(*far, "int away()", &marks[1]));
    EXPECT_TRUE(outer->addCategory("Inner") && outer->addCategory("Far") && inner->addCategory("Outer"));
    EXPECT_FALSE(outer->addCategory("Outer"));
    EXPECT_TRUE(test.type->addCategory(outer.get()));
    EXPECT_EQ(markOf(*test.type, "int inside()"), &marks[0]);
    EXPECT_EQ(markOf(*test.type, "int away()"), &marks[1]);
    EXPECT_TRUE(outer->calcMultiMethods());
    int distance = 7;
    ZMethod* found =
        outer->findMultimethodType(&distance, "away", ZArrayT<ZMetaType*>(), true, true, true, ZSelector());
    EXPECT_TRUE(found && found->getContext() == &marks[1]);
    EXPECT_TRUE(test.package->removeCategory("Outer"));
    EXPECT_FALSE(test.type->hasCategory("Outer")) << "a category that goes leaves the types";
    EXPECT_EQ(markOf(*test.type, "int away()"), nullptr);
    EXPECT_TRUE(test.package->unuse(other.get()) && other->removeCategory());
}

TEST_F(CategoryTest, TypesAreExtendedByTheirBases) {
    Fixture test;
    auto category = test.category("Auto");
    Holder<ZMetaType> derived(zmake<ZMetaType>(nullptr, ZSelector("TestCircle"), ZMetaType::Structure));
    ASSERT_TRUE(derived->addBase(test.type.get()) && category->addAutoExtend("TestShape"));
    EXPECT_TRUE(category->canExtend(test.type.get()) && category->canExtend(derived.get()));
    EXPECT_FALSE(category->canExtend(ztype<int>()) || category->canExtend(nullptr));
    EXPECT_TRUE(category->removeAutoExtend("TestShape"));
    EXPECT_FALSE(category->canExtend(derived.get()));
}

TEST_F(CategoryTest, TablesAreBuiltOnceAndAnewAfterAReset) {
    static int built;
    built = 0;
    Fixture test;
    auto category = test.category("Lazy");
    category->setCallback(ZTypeCategory::CreateMethods, reinterpret_cast<ZTypeCallback>(+[](ZTypeCategory* to) {
                              return addMethod(*to, "int lazy()", &marks[++built]);
                          }));
    EXPECT_EQ(built, 0);
    EXPECT_TRUE(test.type->addCategory(category.get()));
    EXPECT_EQ(markOf(*test.type, "int lazy()"), &marks[1]);
    EXPECT_EQ(category->getMethodTypes().count(), 1u);
    EXPECT_EQ(built, 1);
    category->resetCategory();
    EXPECT_EQ(markOf(*test.type, "int lazy()"), &marks[2]);
    test.type->resetMethodTypes();
    EXPECT_EQ(markOf(*test.type, "int lazy()"), &marks[2]) << "a table built anew has it too";
    EXPECT_TRUE(test.type->removeCategory("Lazy"));
    EXPECT_EQ(markOf(*test.type, "int lazy()"), nullptr);
}

/// Others may ask the category meanwhile, and see the table when it is whole.
TEST_F(CategoryTest, BuildersRunWithoutALockAndLeaveNothingWhenTheyFail) {
    static int runs;
    static uint seenWithin, seenOutside;
    runs = 0;
    Fixture test;
    auto category = test.category("Lazy");
    ASSERT_TRUE(addMethod(*category, "int early()", &marks[0]));
    category->setCallback(ZTypeCategory::CreateMethods, reinterpret_cast<ZTypeCallback>(+[](ZTypeCategory* to) {
                              if (!addMethod(*to, "int lazy()", &marks[1])) return false;
                              seenWithin = to->getMethodTypes().count();
                              if (++runs == 1) return false;
                              if (runs > 2) return true;
                              std::thread([to] { seenOutside = to->getMethodTypes().count(); }).join();
                              return true;
                          }));
    EXPECT_FALSE(category->createMethods());
    EXPECT_TRUE(category->createMethods());
    EXPECT_EQ(seenWithin, 1u);
    EXPECT_EQ(seenOutside, 2u) << "the other thread has built it itself";
    EXPECT_EQ(category->getMethodTypes().count(), 2u);
    EXPECT_EQ(runs, 3);
}

TEST_F(CategoryTest, SignalsComeAndGoWithTheCategory) {
    Fixture test;
    auto category = test.category("Signals");
    ASSERT_TRUE(category->addDispatch(ZMethodDispatch("changed", "redraw")));
    ZObject::DispatchTable own;
    ASSERT_TRUE(own.add(ZMethodDispatch("changed", "log")));
    EXPECT_TRUE(test.type->setTypeMethodDispatch(own));
    EXPECT_TRUE(test.type->addCategory(category.get()));
    EXPECT_EQ(test.type->getTypeMethodDispatch().count(), 2u);
    EXPECT_TRUE(test.type->removeCategory(category.get()));
    ASSERT_EQ(test.type->getTypeMethodDispatch().count(), 1u);
    EXPECT_EQ(text(test.type->getTypeMethodDispatch().find("changed")->methodName()), "log");
}

TEST_F(CategoryTest, EachFailingAllocationLeavesTheTypeWithoutTheCategory) {
    Fixture test;
    auto category = test.category("Costly");
    ASSERT_TRUE(addMethod(*category, "int area()", &marks[0]) && addProperty(*category, "note") &&
                category->addDispatch(ZMethodDispatch("changed", "redraw")));
    ASSERT_TRUE(test.type->addCategory(category.get()) && test.type->removeCategory(category.get()));
    for (long n = 1;; ++n) {
        AllocProbe probe;
        probe.failAt(n);
        const bool done = test.type->addCategory(category.get());
        const bool failed = probe.failed();
        probe.failAt(0);
        ASSERT_EQ(test.type->hasCategory(category.get()), done) << n;
        ASSERT_EQ(markOf(*test.type, "int area()"), done ? &marks[0] : nullptr) << n;
        ASSERT_EQ(test.type->hasPropertyDef("note"), done) << n;
        if (!failed) break;
        if (done) { ASSERT_TRUE(test.type->removeCategory(category.get())); }
        ASSERT_LT(n, 500);
    }
    EXPECT_TRUE(test.type->removeCategory(category.get()));
}

TEST_F(CategoryTest, LookupsGoOnWhileCategoriesComeAndGo) {
    Fixture test;
    auto first = test.category("First"), second = test.category("Second");
    ASSERT_TRUE(addMethod(*first, "int area()", &marks[0]) && addMethod(*second, "int area()", &marks[1]) &&
                test.type->addCategory(second.get()));
    std::atomic<bool> over{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([&] {
            while (!over) {
                void* mark = markOf(*test.type, "int area()");
                wrong += mark && mark != &marks[0] && mark != &marks[1];
                wrong += !test.type->hasCategory("Second");
            }
        });
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(test.type->addCategory(first.get()) && test.type->removeCategory("First"));
    over = true;
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(markOf(*test.type, "int area()"), &marks[1]);
}

} // namespace
