#include "object/ZEnum.h"
#include "object/ZEnumType.h"
#include "object/ZMetaType.h"
#include "object/ZMethodPtr.h"
#include "object/ZMethodRef.h"
#include "object/ZProperty.h"
#include "object/ZPropertyPtr.h"
#include "object/names.h"
#include "tests/module/declaredTypes.h"
#include "tests/support/CoreScope.h"
#include "toolkit/epoch.h"
#include "value/ZTypedPtr.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

// Walks every type that the library registers, without exceptions.

namespace {

std::string text(const ZSelector& name) { return name.isEmpty() ? "(empty)" : name.string(); }

class Audit : public CoreTest {
protected:
    /// The signature with its type and qualifier, for messages.
    static std::string place(const ZMetaType& type, const ZMethod& method) {
        return text(type.getName()) + ": " + text(method.getSelector()) + " " + text(method.getQualifier());
    }
    /// What a script must not be given: an address without a type, or of a value that nobody counts.
    static bool takesRawPointer(const ZSelector& signature) {
        for (int i = 0; i < signature.parcount(); ++i) {
            ZSelector par = signature.param(i);
            if (par.ptrCount() == 0) continue;
            const ZMetaType* type = ZMetaType::findExisting(par.mainType());
            if (!type || type->kind() <= ZMetaType::Pointer || par.ptrCount() > 1 ||
                par.mainType() == zsel<"ZTypedPtr">())
                return true;
        }
        return false;
    }
};

TEST_F(Audit, TypesAreFoundAndTheirBasesAreThere) {
    ASSERT_GT(declaredTypes().size(), 50u);
    for (const ZMetaType* type : declaredTypes()) {
        SCOPED_TRACE(text(type->fullName()));
        EXPECT_FALSE(type->getName().isEmpty());
        EXPECT_NE(type->package(), nullptr);
        const ZMetaType* owner = type->getOwnerType();
        EXPECT_EQ(owner ? owner->findType(type->getName()) : ZMetaType::find(type->fullName()), type);
        EXPECT_EQ(type->baseCount(), int(type->getBaseNames().count()));
        for (int i = 0; i < type->baseCount(); ++i) {
            const ZMetaType* base = type->baseType(i);
            ASSERT_NE(base, nullptr);
            EXPECT_TRUE(type->isDescendant(base) || type->isBase(base)) << text(base->getName());
            EXPECT_GE(type->baseOffset(i), 0);
            EXPECT_LE(type->baseOffset(i) + int(base->getSize()), int(type->getSize()));
        }
        EXPECT_TRUE(type->getSize() % type->getAlignment() == 0);
    }
}

TEST_F(Audit, MethodsHaveEntriesAndKnownParameters) {
    toolkit::EpochGuard guard;
    int methods = 0, refused = 0;
    for (ZMetaType* type : declaredTypes())
        for (const ZMethodPtr& entry : type->getMethodTypes()) {
            const ZMethod& method = *entry.get();
            SCOPED_TRACE(place(*type, method));
            ++methods;
            EXPECT_TRUE(method.hasStacked() || method.hasFunc());
            EXPECT_EQ(method.getOwner(), type);
            ZArrayT<ZMetaType*> parameters = method.paramTypes(type);
            EXPECT_EQ(int(parameters.count()), method.paramCount() + 1);
            bool life = method.isConstructor(type) || method.isDestructor(type);
            for (uint i = life ? 1 : 0; i < parameters.count(); ++i) {
                const ZMetaType* parameter = std::as_const(parameters)[i];
                EXPECT_NE(parameter, nullptr) << "type " << i << ", " << text(method.paramType(int(i)));
            }
            // Found again by what it says of itself, in overload and signature.
            EXPECT_EQ(type->methodType(method.getSelector(), method.getQualifier()), &method);
            bool marked = method.hasOption(zsel<"unsafe">());
            refused += marked;
            EXPECT_TRUE(marked || !takesRawPointer(method.getSelector()));
        }
    std::printf("[ AUDIT    ] %zu types, %d methods, %d refused by a sandbox\n", declaredTypes().size(), methods,
                refused);
}

TEST_F(Audit, PropertiesHaveTypesAndAccessors) {
    toolkit::EpochGuard guard;
    int properties = 0;
    for (ZMetaType* type : declaredTypes())
        for (const ZPropertyPtr& entry : type->getPropertyTypes()) {
            ASSERT_NE(entry.property(), nullptr);
            const ZProperty& property = *entry.property();
            SCOPED_TRACE(text(type->getName()) + "." + text(property.name()));
            ++properties;
            EXPECT_NE(property.value().type(), nullptr);
            EXPECT_NE(property.getItemType(), nullptr);
            if (property.dynamic()) continue;
            ZTypedPtr typed(type, nullptr);
            EXPECT_TRUE(type->getterMethod(&typed, &property, false, true, false) ||
                        type->getterMethod(&typed, &property, false, false, false) ||
                        type->getterMethod(&typed, &property, true, true, false))
                << "no method " << text(property.getter(false, true, false));
            EXPECT_TRUE(property.readOnly() || type->setterMethod(&typed, &property, false))
                << "no method " << text(property.setter(false));
            EXPECT_TRUE(!property.collection() || type->counterMethod(&typed, &property))
                << "no method " << text(property.counter());
        }
    EXPECT_GT(properties, 0);
    std::printf("[ AUDIT    ] %d properties\n", properties);
}

TEST_F(Audit, EnumsAgreeWithTheirFlags) {
    int enums = 0, items = 0;
    for (ZMetaType* type : declaredTypes()) {
        if (type->kind() != ZMetaType::Enum) continue;
        SCOPED_TRACE(text(type->fullName()));
        ++enums;
        const ZEnum& names = static_cast<const ZEnumType*>(type)->data();
        EXPECT_GT(names.count(), 0u);
        uint seen = 0;
        bool flags = true, series = true;
        for (uint i = 0; i < names.count(); ++i) {
            int value = names.valueAtIndex(int(i));
            ZSelector name = names.nameAtIndex(int(i));
            ++items;
            EXPECT_EQ(names.value(name), value) << text(name);
            EXPECT_EQ(names.name(value), name);
            if (uint overlap = seen & uint(value); overlap && overlap != uint(value)) flags = false;
            seen |= uint(value);
            series &= i == 0 || value == names.valueAtIndex(int(i) - 1) + 1;
        }
        EXPECT_EQ(names.isBitFlags(), flags && !names.isExclusive());
        // The next one of a series is none of its values.
        if (series && names.count() > 2) { EXPECT_FALSE(names.holds(names.valueAtIndex(int(names.count()) - 1) + 1)); }
    }
    EXPECT_GT(enums, 0);
    std::printf("[ AUDIT    ] %d enums with %d items\n", enums, items);
}

/// Made, copied, compared and ended, twice: the second time nothing may be left that the first one didn't leave.
TEST_F(Audit, InstancesComeAndGo) {
    auto cycle = [](ZMetaType* type) {
        void* made = type->createInstance();
        if (!made) return false;
        EXPECT_EQ(type->compareInstance(made, made), 0);
        if (void* copy = type->copyInstance(static_cast<const void*>(made))) {
            EXPECT_NE(copy, made);
            EXPECT_EQ(type->compareInstance(made, copy), 0);
            EXPECT_TRUE(type->detachInstance(copy));
            EXPECT_EQ(type->compareInstance(made, copy), 0);
            type->releaseInstance(copy);
        }
        type->releaseInstance(made);
        return true;
    };
    int made = 0;
    for (ZMetaType* type : declaredTypes()) {
        if (type->kind() <= ZMetaType::Void) continue;
        SCOPED_TRACE(text(type->fullName()));
        made += cycle(type);
        cycle(type);
        // Caches that were replaced go first.
        EXPECT_TRUE(toolkit::epochDrain());
        auto before = CoreScope::liveBlocks();
        cycle(type);
        EXPECT_TRUE(toolkit::epochDrain());
        EXPECT_EQ(CoreScope::liveBlocks(), before);
    }
    EXPECT_GT(made, 50);
    std::printf("[ AUDIT    ] %d types with instances\n", made);
}

/// Runs `cycle` with each of its allocations failing in turn: no failure is left raised, and no block behind. Types
/// that end make others anew what they keep about types, so what is there is counted, not what was made.
template <class F> void failEach(const ZMetaType* type, F&& cycle) {
    auto count = [type] {
        type->calcInternalSize(true);
        toolkit::epochDrain();
        long live = 0;
        for (const auto& [label, blocks] : CoreScope::liveBlocks()) live += blocks;
        return live;
    };
    const long before = count();
    AllocProbe probe;
    for (long n = 1, failed = 1; failed; ++n) {
        probe.failAt(n);
        cycle();
        failed = probe.failed();
        probe.failAt(0);
        EXPECT_EQ(zfailcount(), 0) << "after allocation " << n;
        zrecover();
        ASSERT_LE(count(), before) << "left after allocation " << n << " failed: " << probe.leaks();
    }
}

/// A caller sees null or a whole instance, whatever is missing meanwhile.
TEST_F(Audit, AnyAllocationOfAnInstanceMayFail) {
    int made = 0;
    for (ZMetaType* type : declaredTypes()) {
        if (type->kind() <= ZMetaType::Void) continue;
        SCOPED_TRACE(text(type->fullName()));
        auto cycle = [type] {
            void* instance = type->createInstance();
            if (!instance) return false;
            type->releaseInstance(type->copyInstance(static_cast<const void*>(instance)));
            type->releaseInstance(instance);
            return true;
        };
        made += cycle();
        failEach(type, cycle);
    }
    EXPECT_GT(made, 50);
}

/// What a script would give: an instance of its own for a pointer, else a value.
ZVariant argument(ZMetaType* type, const ZSelector& parameter) {
    if (parameter.ptrCount()) {
        auto instance = type->isZType() ? static_cast<ZType*>(type->createInstance()) : nullptr;
        ZVariant held(static_cast<const ZType*>(instance));
        if (instance) instance->release();
        return held;
    }
    const bool plain = type->kind() <= ZMetaType::String && type->kind() != ZMetaType::Enum;
    return plain ? ZVariant(type, ZVariant("7")) : ZVariant(type);
}

/// The same for constructors with arguments. Without memory for these nobody calls them.
TEST_F(Audit, AnyAllocationOfAConstructorMayFail) {
    int built = 0, constructors = 0;
    for (ZMetaType* type : declaredTypes()) {
        std::vector<ZMethodRef> refs;
        {
            toolkit::EpochGuard guard;
            for (const ZMethodPtr& entry : type->getMethodTypes())
                if (entry->isConstructor(type) && entry->paramCount() && !takesRawPointer(entry->getSelector()))
                    refs.emplace_back(entry.get(), nullptr, type);
        }
        for (ZMethodRef& ref : refs) {
            SCOPED_TRACE(text(type->fullName()) + ": " + text(ref.selector()));
            const ZArrayT<ZMetaType*> parameters = ref.getMethod()->paramTypes(type);
            auto cycle = [&] {
                ZArrayT<ZVariant> arguments;
                bool whole = true;
                for (uint i = 1; i < parameters.count() && whole; ++i) {
                    const ZSelector parameter = ref.selector().param(int(i) - 1);
                    const ZVariant given = argument(parameters[i]->mainOrSelf(), parameter);
                    whole = arguments.append(given) && !(parameter.ptrCount() && given.isNull()) && !zfailed();
                }
                if (!whole) zrecover();
                return whole && !ref.invoke(arguments).isNull();
            };
            ++constructors;
            built += cycle();
            failEach(type, cycle);
        }
    }
    EXPECT_GT(built, constructors / 2);
    std::printf("[ AUDIT    ] %d constructors with arguments, %d built\n", constructors, built);
}

} // namespace
