#include "object/ZMethod.h"
#include "object/ZProperty.h"
#include "object/ztype.h"
#include "tests/object/HandMade.h"
#include "tests/support/CoreScope.h"
#include "value/ZVariant.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

class MetaTypeTables : public CoreTest {};

using Build = bool (ZMetaType::*)();
int runs = 0;
Build running = nullptr;

/// What another thread does while a builder runs: it changes the type, and builds the same table.
void meanwhile(ZMetaType* type) {
    if (++runs != 1) return;
    std::thread([type] {
        type->setNameLabel("changed");
        EXPECT_TRUE((type->*running)());
    }).join();
}

bool fillTypes(ZMetaType* type) {
    meanwhile(type);
    TypePtr nested = makeType("Nested");
    return type->addType(nested) && type->getTypes().count() == 1;
}
bool fillMethods(ZMetaType* type) {
    meanwhile(type);
    ZMethod* method = ZMethod::create(ZSelector("void one()"), ZSelector());
    const bool done = method && type->appendMethod(method) && type->methodTypeCount() == 0;
    ZMethod::release(method);
    return done;
}
bool fillProperties(ZMetaType* type) {
    meanwhile(type);
    return type->addPropertyDef(ZPropertyPtr(ZSelector("one"), ztype<int>())) && type->fixedPropertyCount() == 1;
}
bool fillDispatch(ZMetaType* type) {
    meanwhile(type);
    ZObject::DispatchTable table;
    return table.add(ZMethodDispatch("changed", "redraw")) && type->addTypeDispatch(table) &&
           type->getTypeMethodDispatch().count() == 1;
}

struct Row {
    ZMetaType::CallBack index;
    bool (*fill)(ZMetaType*);
    Build build;
    uint (*count)(const ZMetaType&);
};
const Row rows[] = {
    {ZMetaType::CreateTypes, fillTypes, &ZMetaType::createTypes,
     [](const ZMetaType& type) { return type.getTypes().count(); }},
    {ZMetaType::CreateMethods, fillMethods, &ZMetaType::createMethods,
     [](const ZMetaType& type) { return type.methodTypeCount(); }},
    {ZMetaType::CreateProperties, fillProperties, &ZMetaType::createProperties,
     [](const ZMetaType& type) { return type.fixedPropertyCount(); }},
    {ZMetaType::CreateDispatch, fillDispatch, &ZMetaType::createDispatch,
     [](const ZMetaType& type) { return type.getTypeMethodDispatch().count(); }},
};

} // namespace

TEST_F(MetaTypeTables, AreBuiltAtTheFirstDemandWithNoLockHeld) {
    for (const Row& row : rows) {
        SCOPED_TRACE(int(row.index));
        TypePtr type = makeType("Built");
        runs = 0;
        running = row.build;
        type->setCallback(row.index, asCallback(row.fill));
        EXPECT_EQ(runs, 0);
        // Two threads build it; what one of them made is there, once.
        EXPECT_EQ(row.count(*type), 1u);
        EXPECT_EQ(runs, 2);
        EXPECT_EQ(row.count(*type), 1u);
        EXPECT_EQ(runs, 2) << "it is there now";
        EXPECT_EQ(type->nameLabel(), ZSelector("changed"));
    }
}

TEST_F(MetaTypeTables, AreThrownAwayAndBuiltAnew) {
    TypePtr type = makeType("Reset");
    for (const Row& row : rows) type->setCallback(row.index, asCallback(row.fill));
    EXPECT_TRUE(type->typesAreReset());
    type->resetType(true);
    EXPECT_FALSE(type->typesAreReset());
    runs = 2;
    type->resetType(false);
    EXPECT_TRUE(type->typesAreReset());
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(type->methodTypeCount() + type->fixedPropertyCount(), 2u);
    EXPECT_EQ(runs, 4);
    type->resetSubTypes();
    EXPECT_EQ(type->getTypes().count(), 1u);
    EXPECT_EQ(runs, 5);
    // A builder that fails leaves nothing, and is asked again.
    type->setCallback(ZMetaType::CreateMethods, asCallback(+[](ZMetaType* to) { return fillMethods(to) && runs > 6; }));
    EXPECT_EQ(type->methodTypeCount(), 0u);
    EXPECT_EQ(type->methodTypeCount(), 1u);
}

// What a builder asks of its own type while the table isn't whole isn't remembered.
TEST_F(MetaTypeTables, LookupsWhileBuildingAreAnsweredAnew) {
    TypePtr type = makeType("Asked");
    runs = 2;
    type->setCallback(ZMetaType::CreateProperties, asCallback(+[](ZMetaType* to) {
                          EXPECT_FALSE(to->hasPropertyDef("one"));
                          EXPECT_EQ(to->storedPropertyCount(), 0);
                          return fillProperties(to);
                      }));
    type->setCallback(ZMetaType::CreateMethods, asCallback(+[](ZMetaType* to) {
                          EXPECT_EQ(to->methodType("void one()"), nullptr);
                          return fillMethods(to);
                      }));
    EXPECT_EQ(type->fixedPropertyCount(), 1u);
    EXPECT_TRUE(type->hasPropertyDef("one"));
    EXPECT_EQ(type->methodTypeCount(), 1u);
    EXPECT_TRUE(type->methodType("void one()"));
}

// A builder that throws its own table away, as a reload of its plugin does, is run again.
TEST_F(MetaTypeTables, AResetWhileBuildingCounts) {
    TypePtr type = makeType("Reset");
    runs = 2;
    type->setCallback(ZMetaType::CreateMethods, asCallback(+[](ZMetaType* to) {
                          if (runs == 2) to->resetMethodTypes();
                          return fillMethods(to);
                      }));
    EXPECT_EQ(type->methodTypeCount(), 1u);
    EXPECT_EQ(runs, 4);
}
