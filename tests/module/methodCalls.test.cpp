#include "object/ZMetaType.h"
#include "object/ZMethodPtr.h"
#include "object/ZMethodRef.h"
#include "object/ZObject.h"
#include "object/names.h"
#include "object/ztype.h"
#include "tests/module/declaredTypes.h"
#include "tests/support/CoreScope.h"
#include "tests/support/TempFolder.h"
#include "toolkit/epoch.h"
#include "value/ZVArray.h"
#include "value/ZVSelectMap.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

// Calls every method that a sandbox of some level would let through with arguments that don't fit.

namespace {

constexpr size_t largestBlock = size_t(64) << 20; // what a call may ask for at once

const toolkit::AllocHooks* outerHooks;
bool smallEnough(size_t size) {
    return size <= largestBlock && (!outerHooks || !outerHooks->allow || outerHooks->allow(size));
}

class MethodCalls : public CoreTest {
protected:
    void SetUp() override {
        CoreTest::SetUp();
        // What methods do to files, they do here.
        std::filesystem::current_path(folder.path());
        setenv("XDG_DATA_HOME", folder.path("data").c_str(), 1);
        ZVArray words(ZString("a b c"));
        values = {ZVariant(),
                  ZVariant(0),
                  ZVariant(1),
                  ZVariant(-1),
                  ZVariant(7),
                  ZVariant(100000),
                  ZVariant(std::numeric_limits<int>::max()),
                  ZVariant(std::numeric_limits<int>::min()),
                  ZVariant(std::numeric_limits<large>::min()),
                  ZVariant(std::numeric_limits<ularge>::max()),
                  ZVariant(true),
                  ZVariant(0.5),
                  ZVariant(-0.0),
                  ZVariant(1e308),
                  ZVariant(std::nan("")),
                  ZVariant(std::numeric_limits<double>::infinity()),
                  ZVariant(ZString("")),
                  ZVariant(ZString("12abc")),
                  ZVariant(ZString(u"gr\u00FCn \xD800")),
                  ZVariant(ZSelector("width")),
                  ZVariant(ZSelector("a.b.c.d")),
                  ZVariant(ZSelector("bool set(const ZVariant&) const")),
                  ZVariant(ZSelector("ZArrayT<ZString>")),
                  ZVariant(ztype<ZString>(), nullptr),
                  ZVariant(static_cast<const ZType*>(ztype<ZObject>())),
                  ZVariant(ztype<ZVArray>(), &words)};
        object = zmake<ZObject>();
        ASSERT_NE(object, nullptr);
        values.push_back(ZVariant(static_cast<const ZType*>(object)));
    }
    void TearDown() override {
        values.clear();
        if (object) object->release();
        unsetenv("XDG_DATA_HOME");
        std::filesystem::current_path(outside);
        CoreTest::TearDown();
    }
    uint next() {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return uint(state >> 33);
    }
    ZArrayT<ZVariant> arguments(int wanted) {
        int count = wanted + int(next() % 4) - 1;
        ZArrayT<ZVariant> made;
        for (int i = 0; i < count; ++i) made.append(values[next() % values.size()]);
        return made;
    }

    std::vector<ZVariant> values;
    ZObject* object = nullptr;
    const std::filesystem::path outside = std::filesystem::current_path();
    TempFolder folder;
    ularge state = 20240229;
};

bool callable(const ZMethod& method, const ZMetaType& type) {
    return !method.isDestructor(&type) && !method.hasOption(zsel<"unsafe">());
}

TEST_F(MethodCalls, ArgumentsThatDoNotFitAreConvertedOrRefused) {
    constexpr int rounds = 24;
    outerHooks = toolkit::allocHooks();
    toolkit::AllocHooks hooks = outerHooks ? *outerHooks : toolkit::AllocHooks{};
    hooks.allow = smallEnough;
    toolkit::setAllocHooks(&hooks);
    int methods = 0, calls = 0, answered = 0;
    for (ZMetaType* type : declaredTypes()) {
        std::vector<ZMethodRef> refs;
        {
            toolkit::EpochGuard guard;
            for (const ZMethodPtr& entry : type->getMethodTypes())
                if (callable(*entry.get(), *type)) refs.emplace_back(entry.get(), nullptr, type);
        }
        for (ZMethodRef& ref : refs) {
            ++methods;
            SCOPED_TRACE(std::string(type->getName().string()) + ": " + ref.selector().string());
            for (int round = 0; round < rounds; ++round) {
                bool needsInstance =
                    !(ref.getMethod()->getFlags() & ZMethod::TypeMethod) && !ref.getMethod()->isConstructor(type);
                void* instance = needsInstance ? type->createInstance() : nullptr;
                if (needsInstance && !instance) break;
                ref.setInstance(instance);
                answered += !ref.invoke(arguments(ref.getMethod()->paramCount())).isNull();
                ++calls;
                ref.setInstance(nullptr);
                if (instance) type->releaseInstance(instance);
                zrecover();
            }
        }
    }
    toolkit::setAllocHooks(outerHooks);
    std::printf("[ CALLS    ] %d methods, %d calls, %d with a result\n", methods, calls, answered);
    EXPECT_GT(methods, 1000);
    EXPECT_GT(answered, calls / 10);
}

} // namespace
