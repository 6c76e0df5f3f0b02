#pragma once

#include "module/packages.h"
#include "object/ZProperty.h"
#include "object/ZPropertyPtr.h"
#include "object/names.h"
#include "tests/support/CoreScope.h"

/// A suite that finds the types of the library, whether or not its start has opened the packages.
class TypeTest : public CoreTest {
protected:
    static void SetUpTestSuite() {
        CoreTest::SetUpTestSuite();
        opened = !ZPackage::root();
        if (!opened) return;
        ASSERT_TRUE(ZProperty::open() && ZPropertyPtr::open() && orv::openModule() &&
                    orv::openNames(orv::moduleNames()) && orv::openPackages());
    }
    static void TearDownTestSuite() {
        if (opened) {
            orv::closeModule();
            orv::closeNames(orv::moduleNames());
            ZPropertyPtr::close();
            ZProperty::close();
        }
        CoreTest::TearDownTestSuite();
    }
    static inline bool opened = false;
};
