#include "tests/object/methodShapes.h"

#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/glue.h"
#include "object/names.h"

namespace orv::glue {

template <> struct Table<CallToken> : Declares<CallToken> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(int, get, (), const),
        ORV_METHOD(int, compare, (const CallToken&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic};
};
template <> struct Table<CallFirst> : Declares<CallFirst> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_METHOD(int, first, (), const),
        ORV_METHOD(int, shadowed, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic};
};
template <> struct Table<CallSecond> : Declares<CallSecond> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int)),
        ORV_METHOD(int, second, (), const),
        ORV_METHOD(int, secondPlus, (int), const),
        ORV_METHOD(int, shadowed, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic};
};
template <> struct Table<CallShape> : Declares<CallShape> {
    using BaseTypes = Bases<CallFirst, CallSecond>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int)),
        ORV_CONSTRUCTOR((int, const ZString&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(int, plain, (), const),
        ORV_METHOD(bool, setPlain, (int), ),
        ORV_METHOD(int, add, (int, int), const, "inner"),
        ORV_METHOD(real, add, (real, real), const),
        ORV_METHOD(ZString, add, (const ZString&, const ZString&), const),
        ORV_METHOD(ZString, mixed, (bool, byte, short, large, float, const ZString&, const ZSelector&), const),
        ORV_METHOD(float, half, (float), const),
        ORV_METHOD(int, length, (const char*), const),
        ORV_METHOD(int, takes, (const ZVariant&), const),
        ORV_METHOD(bool, changes, (ZString&), const),
        ORV_METHOD(const ZString&, getLabel, (), const),
        ORV_METHOD(const char*, rawLabel, (), const),
        ORV_METHOD(CallToken, token, (int), const),
        ORV_METHOD(int, tokenNumber, (const CallToken&), const),
        ORV_METHOD(int, tokenPointer, (const CallToken*), const),
        ORV_METHOD(bool, movesPointer, (const CallToken*&), const),
        ORV_METHOD(int, secondOf, (const CallSecond&), const),
        ORV_METHOD(int, count, (int, ...), const),
        ORV_METHOD(int, all, (...), const),
        ORV_METHOD(int, gather, (const ZArrayT<ZVariant>&), const, "collect"),
        ORV_METHOD(int, gatherValues, (const ZVArray&), const, "collect"),
        ORV_METHOD(int, shadowed, (), const),
        ORV_METHOD(CallShape::Step, step, (), const),
        ORV_METHOD(bool, setStep, (const CallShape::Step&), ),
        ORV_METHOD(int, stepNumber, (CallShape::Step), const),
        ORV_METHOD(int, marks, (CallShape::Mark), const),
        ORV_METHOD(int, small, (CallShape::Small), const),
        ORV_METHOD(void, nothing, (), const),
        ORV_METHOD(int, hidden, (), const, "private"),
        ORV_STATIC(int, twice, (int)),
    };
    static constexpr PropertyRow properties[] = {ORV_PROPERTY(CallShape::Step, step, "")};
    static constexpr EnumItemRow steps[] = {ORV_ITEM(Step, First), ORV_ITEM(Step, Second)};
    static constexpr EnumItemRow marks[] = {ORV_ITEM(Mark, Red), ORV_ITEM(Mark, Green), ORV_ITEM(Mark, Blue)};
    static constexpr EnumItemRow smalls[] = {ORV_ITEM(Small, Low), ORV_ITEM(Small, High)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Step, steps), ORV_ENUM(Mark, marks), ORV_ENUM(Small, smalls)};
    static constexpr FixedRow fixed[] = {{0, "int plain()", "const"}, {1, "int first()", "const"}};
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic};
};

} // namespace orv::glue
ORV_DECLARE(CallToken);
ORV_DECLARE(CallFirst);
ORV_DECLARE(CallSecond);
ORV_DECLARE(CallShape);

namespace {
ZPackage* package = nullptr;
bool opened = false; ///< the packages, by this fixture
} // namespace

void MethodTest::SetUpTestSuite() {
    CoreTest::SetUpTestSuite();
    using namespace orv::glue;
    opened = !ZPackage::root() && orv::openModule() && orv::openPackages() && orv::openNames(orv::moduleNames());
    package = ZPackage::findPackage("orv.core.base");
    ASSERT_NE(package, nullptr);
    for (const ClassRow* row :
         {&Row<CallToken>::row, &Row<CallFirst>::row, &Row<CallSecond>::row, &Row<CallShape>::row})
        ASSERT_NE(orv::makeType(package, *row), nullptr) << row->name;
    package->resetBases();
}
void MethodTest::TearDownTestSuite() {
    if (opened) {
        orv::closeNames(orv::moduleNames());
        orv::closePackages();
        orv::closeModule();
    }
    CoreTest::TearDownTestSuite();
}
ZMetaType* MethodTest::shape() { return type("CallShape"); }
