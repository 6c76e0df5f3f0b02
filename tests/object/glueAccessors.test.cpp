#include "object/glue.h"

#include "core/construct.h"
#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/ZMethod.h"
#include "object/ZMethodDispatch.h"
#include "tests/support/CoreScope.h"
#include "toolkit/epoch.h"
#include "value/ZVArray.h"
#include "value/ZVSelectMap.h"

#include <gtest/gtest.h>

// The accessors that one line declares are those that properties look for.

namespace {
class GlueAccessors : public CoreTest {};
} // namespace

class GlueRack {
public:
    int width() const { return 1; }
    bool setWidth(const int&) { return true; }
    const ZString& label() const { return text; }
    bool setLabel(const ZString&) { return true; }
    ZObject* owner() const { return nullptr; }
    bool setOwner(const ZObject*) { return true; }

    const ZVArray& line() const { return lines; }
    ZString line(int) const { return ZString(); }
    bool setLine(const ZVArray&) { return true; }
    bool setLine(int, const ZString&) { return true; }
    int countLine() const { return 0; }
    ZString lineByIndex(int) const { return ZString(); }
    bool hasLine(const ZString&) const { return true; }
    int findLineIndex(const ZString&) const { return 0; }
    bool clearLine() { return true; }
    bool removeLine(int) { return true; }
    bool removeLineByIndex(int) { return true; }
    bool insertLine(int, const ZString&) { return true; }
    bool addLine(const ZString&) { return true; }

    const ZVSelectMap& member() const { return members; }
    ZObject* member(const ZSelector&) const { return nullptr; }
    bool setMember(const ZVSelectMap&) { return true; }
    bool setMember(const ZSelector&, const ZObject*) { return true; }
    int countMember() const { return 0; }
    ZObject* memberByIndex(int) const { return nullptr; }
    bool hasMember(const ZObject*) const { return true; }
    ZSelector memberKey(int) const { return ZSelector(); }
    int memberIndex(const ZSelector&) const { return 0; }
    ZSelector findMemberKey(const ZObject*) const { return ZSelector(); }
    int findMemberIndex(const ZObject*) const { return 0; }
    bool clearMember() { return true; }
    bool removeMember(const ZSelector&) { return true; }
    bool removeMemberByIndex(int) { return true; }

    static int sum(int first, ZArrayT<ZVariant>& rest) { return first + int(rest.count()); }

    ZString text;
    ZVArray lines;
    ZVSelectMap members;
};

namespace orv::glue {
template <> struct Table<GlueRack> : Declares<GlueRack> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_VALUE_ACCESSORS(int, width, Width),
        ORV_ACCESSORS(ZString, label, Label),
        ORV_POINTER_ACCESSORS(ZObject, owner, Owner),
        ORV_ARRAY_ACCESSORS(ZVArray, ZString, const ZString&, line, Line),
        ORV_MAP_ACCESSORS(ZVSelectMap, ZSelector, ZObject*, const ZObject*, member, Member),
        ORV_STATIC(int, sum, (int, ...)),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(int, width, ""),
        ORV_PROPERTY(ZString, label, ""),
        ORV_PROPERTY(ZObject*, owner, ""),
        ORV_PROPERTY(ZVArray, line, "collection array").items<ZString>(),
        ORV_PROPERTY(ZVSelectMap, member, "collection").items<ZObject*>().indexed<ZSelector>(),
    };
    static int compare(const void*, const void*) { return 7; }
    static ZString print(const void*) { return ZString("a rack"); }
    static bool dispatch(ZMetaType* type) {
        ZObject::DispatchTable table;
        return table.add(ZMethodDispatch("changed", "redraw")) && type->addTypeDispatch(table);
    }
    static constexpr Callbacks callbacks = {.compare = compare, .toString = print, .createDispatch = dispatch};
    static constexpr ClassInfo info = {.kind = Kind::Class};
};
} // namespace orv::glue
ORV_DECLARE(GlueRack);

TEST_F(GlueAccessors, AreThoseThatPropertiesLookFor) {
    ZPackage* package = zmake<ZPackage>();
    package->setSelector("test.rack");
    ZMetaType* type = orv::makeType(package, orv::glue::Row<GlueRack>::row);
    ASSERT_TRUE(type);
    {
        toolkit::EpochGuard guard;
        struct Row {
            const char* property;
            bool item, byKey;
        };
        for (const Row& row : {Row{"width", false, false}, Row{"label", false, false}, Row{"owner", false, false},
                               Row{"line", true, false}, Row{"member", true, true}}) {
            SCOPED_TRACE(row.property);
            const ZSelector name(row.property);
            for (bool item : {false, true}) {
                if (item && !row.item) continue;
                EXPECT_TRUE(type->getterMethod(nullptr, name, false, true, item)) << item;
                EXPECT_TRUE(type->setterMethod(nullptr, name, item)) << item;
            }
            if (!row.item) continue;
            EXPECT_TRUE(type->counterMethod(nullptr, name));
            EXPECT_TRUE(type->propByIndexMethod(nullptr, name));
            EXPECT_TRUE(type->hasPropMethod(nullptr, name));
            EXPECT_TRUE(type->findIndexMethod(nullptr, name));
            EXPECT_TRUE(type->cleanerMethod(nullptr, name));
            EXPECT_TRUE(type->removerMethod(nullptr, name));
            EXPECT_TRUE(type->removeByIndexMethod(nullptr, name));
            EXPECT_EQ(type->inserterMethod(nullptr, name) != nullptr, !row.byKey);
            EXPECT_EQ(type->adderMethod(nullptr, name) != nullptr, !row.byKey);
            EXPECT_EQ(type->propKeyMethod(nullptr, name) != nullptr, row.byKey);
            EXPECT_EQ(type->propIndexMethod(nullptr, name) != nullptr, row.byKey);
            EXPECT_EQ(type->findKeyMethod(nullptr, name) != nullptr, row.byKey);
        }
    }
    // What a table says itself stands in front of what the class offers.
    ZString text;
    const GlueRack rack, other;
    EXPECT_TRUE(type->toString(&rack, text) && text == "a rack");
    EXPECT_EQ(type->compareInstance(&rack, &other), 1);
    EXPECT_EQ(type->getTypeMethodDispatch().count(), 1u);
    ZArrayT<ZVariant> arguments;
    for (int i = 1; i <= 3; ++i) arguments.append(ZVariant(i));
    {
        toolkit::EpochGuard guard;
        ZMethod* sum = type->methodType("sum");
        EXPECT_TRUE(sum && sum->invoke(nullptr, type, arguments).toInt() == 3);
    }
    package->releasePackage();
    package->release();
}
