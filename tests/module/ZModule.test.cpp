#include "module/ZModule.h"

#include "core/construct.h"
#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"

namespace {

using Module = CoreTest;

bool makeTypes(ZPackage* package, bool finished) {
    if (finished) return true;
    auto made = zmake<ZMetaType>(package, ZSelector("OfLinked"), ZMetaType::Class, orv::passType(ztype<ZMetaType>()));
    if (made) made->release();
    // One that uses the other in turn, and one that nobody has.
    package->use(ZSelector(package->selector().check("test.linked") ? "test.other" : "test.linked"));
    EXPECT_FALSE(package->use(ZSelector("test.missing")));
    return made != nullptr;
}
int opened = 0;
ZPackage* openLinked(ZModule*, const ZSelector& name) {
    if (!name.check("test.linked") && !name.check("test.other")) return nullptr;
    ++opened;
    auto package = zmake<ZPackage>();
    if (!package) return nullptr;
    package->setSelector(name);
    package->setSetupFunc(makeTypes);
    return package;
}

} // namespace

TEST_F(Module, TheLibraryIsOne) {
    ZModule* own = ZModule::findModule(ZSelector("orvcore"));
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(ZModule::findModule(ZString("orvcore")), own);
    EXPECT_EQ(own->type(), ztype<ZModule>());
    EXPECT_EQ(ZPackage::root()->type(), ztype<ZPackage>());
    EXPECT_EQ(own->getPackageCount(), orv::corePackages().count);
    EXPECT_EQ(own->getLoadMode(), ZModule::LoadApplication);
    const ZPackage* base = ZPackage::findPackage(ZSelector("orv.core.base"));
    EXPECT_EQ(base->getModule(), own);
    EXPECT_EQ(base->getLoadMode(), ZModule::LoadAlways);
    EXPECT_EQ(own->openPackage(ZSelector("no.such.package")), nullptr);
    EXPECT_EQ(own->getPackageCount(), orv::corePackages().count);
}

TEST_F(Module, WhatAnApplicationLinksIsOpenedByUse) {
    opened = 0;
    auto module = zmake<ZModule>(ZString("linked"), openLinked);
    ASSERT_NE(module, nullptr);
    auto user = zmake<ZPackage>();
    user->setSelector(ZSelector("test.user"));
    EXPECT_FALSE(user->use(ZSelector("test.linked")));
    EXPECT_TRUE(module->appendModule() && module->appendModule());
    auto twin = zmake<ZModule>(ZString("linked"), openLinked);
    EXPECT_FALSE(twin->appendModule());
    twin->release();
    EXPECT_EQ(ZModule::getModules().count(), 2u);

    EXPECT_TRUE(user->use(ZSelector("test.linked")));
    EXPECT_EQ(opened, 2) << "the two use each other";
    EXPECT_EQ(module->getPackageCount(), 2);
    const ZPackage* other = ZPackage::findPackage(ZSelector("test.other"));
    ASSERT_NE(other, nullptr);
    EXPECT_TRUE(other->uses(ZPackage::findPackage(ZSelector("test.linked"))));
    EXPECT_NE(user->findType(ZSelector("OfLinked")), nullptr);
    EXPECT_NE(user->findType(ZSelector("test.other::OfLinked")), nullptr);
    EXPECT_EQ(user->findType(ZSelector("test.missing::OfLinked")), nullptr);
    EXPECT_TRUE(user->unuse(ZSelector("test.linked")));
    user->releasePackage();
    user->release();
    module->release();
    // Both stay until the library ends, with the module that the list holds.
    EXPECT_EQ(ZModule::findModule(ZSelector("linked")), module);
    EXPECT_EQ(module->getPackageCount(), 2);
}

TEST_F(Module, CountsItsPackagesToTheirEnd) {
    auto module = zmake<ZModule>(ZString("counted"), openLinked);
    ZPackage* first = module->openPackage(ZSelector("test.other"));
    ZPackage* second = module->openPackage(ZSelector("test.other"));
    EXPECT_EQ(first->getModule(), module);
    EXPECT_EQ(module->getPackageCount(), 2);
    first->retain();
    first->release();
    EXPECT_EQ(module->getPackageCount(), 2);
    first->release();
    EXPECT_EQ(module->getPackageCount(), 1);
    second->releasePackage();
    EXPECT_EQ(module->getPackageCount(), 0);
    EXPECT_EQ(second->getModule(), nullptr);
    second->release();
    EXPECT_EQ(module->getPackageCount(), 0);
    module->openPackage(ZSelector("test.other"))->unload();
    EXPECT_EQ(module->getPackageCount(), 0);
    module->release();

    // Without code there is nothing to open, and it isn't tried again.
    auto empty = zmake<ZModule>();
    EXPECT_FALSE(empty->appendModule()) << "it has no name";
    EXPECT_EQ(empty->getLoadMode(), ZModule::LoadIfNeed);
    EXPECT_EQ(empty->openPackage(ZSelector("test.other")), nullptr);
    EXPECT_EQ(empty->getLoadMode(), ZModule::LoadInvalid);
    EXPECT_FALSE(empty->setLoadMode(ZModule::LoadMode(9)));
    empty->release();
}

TEST_F(Module, ConstructorsSurviveEveryFailingAllocation) {
    const ZString text("failing");
    auto run = [&] {
        auto module = zmake<ZModule>(text, openLinked);
        auto package = zmake<ZPackage>();
        const bool both = module && package;
        if (module) module->release();
        if (package) package->release();
        return both;
    };
    // Types make their lists of ancestors anew as packages go: so the end of the suite counts what is left.
    AllocProbe probe;
    for (long n = 1, failed = 1; failed; ++n) {
        probe.failAt(n);
        const bool made = run();
        failed = probe.failed();
        EXPECT_TRUE(made || failed) << n;
        ASSERT_LT(n, 100);
    }
}
