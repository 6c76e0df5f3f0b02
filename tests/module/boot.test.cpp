#include "module/packages.h"

#include "core/construct.h"
#include "object/ZEnumType.h"
#include "object/ZMethod.h"
#include "object/ZProperty.h"
#include "object/glue.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

namespace {
using Boot = CoreTest;
} // namespace

class BootPlain {
public:
    ORV_REFLECT(BootPlain);
    enum Mode { Idle, Busy = 4 };
    enum Level { Low, Middle, High };
    enum Sides { NoSide, Left, Right };
    class Inner {
    public:
        int depth = 1;
    };

    BootPlain() = default;
    BootPlain(int width) : w(width) {}
    int width() const { return w; }
    bool setWidth(const int& width) {
        w = width;
        return true;
    }
    int sum(int a, int b) const { return a + b + w; }
    int compare(const BootPlain& other) const { return w - other.w; }

private:
    int w = 3;
    ZString text{"text"};
};
class BootFirst {
public:
    virtual ~BootFirst() = default;
    int first = 1;
};
class BootBoth : public BootFirst, public BootPlain {};

namespace orv::glue {

template <> struct Table<BootPlain::Inner> : Declares<BootPlain::Inner> {
    static constexpr MethodRow methods[] = {ORV_CONSTRUCTOR(())};
    static constexpr ClassInfo info = {.kind = Kind::Structure};
};
template <> struct Table<BootPlain> : Declares<BootPlain> {
    static constexpr int seven = 7;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int)),
        ORV_DESTRUCTOR(),
        ORV_VALUE_ACCESSORS(int, width, Width),
        ORV_METHOD(int, sum, (int, int), const, "bind inner sb2"),
        ORV_METHOD(int, compare, (const BootPlain&), const),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(int, width, "store .changed inner v3 sb2").initially(seven).at(offsetof(Self, w)),
        ORV_DYNAMIC_PROPERTY(ZString, note, ""),
    };
    static constexpr EnumItemRow modes[] = {ORV_ITEM(Mode, Idle), ORV_ITEM(Mode, Busy)};
    static constexpr EnumItemRow levels[] = {ORV_ITEM(Level, High), ORV_ITEM(Level, Low), ORV_ITEM(Level, Middle)};
    static constexpr EnumItemRow sides[] = {ORV_ITEM(Sides, NoSide), ORV_ITEM(Sides, Left), ORV_ITEM(Sides, Right)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Mode, modes), ORV_ENUM(Level, levels), ORV_FLAGS(Sides, sides)};
    static constexpr const ClassRow* types[] = {&Row<BootPlain::Inner>::row};
    static constexpr SelectorPairRow pairs[] = {{"w", "width"}};
    static constexpr GroupRow groups[] = {ORV_GROUP("short", pairs)};
    static constexpr ClassInfo info = {.kind = Kind::Class, .words = "noblend internal", .blockName = "plai"};
};
template <> struct Table<BootFirst> : Declares<BootFirst> { static constexpr ClassInfo info = {}; };
template <> struct Table<BootBoth> : Declares<BootBoth> {
    using BaseTypes = Bases<BootFirst, BootPlain>;
    static constexpr ClassInfo info = {};
};

} // namespace orv::glue
ORV_DECLARE(BootPlain::Inner);
ORV_DECLARE(BootPlain);
ORV_DECLARE(BootFirst);
ORV_DECLARE(BootBoth);

TEST_F(Boot, PackagesAreOpenAndTypesResolve) {
    for (const orv::PackageRow& row : orv::corePackages()) {
        ZPackage* package = ZPackage::findPackage(ZSelector(row.name));
        ASSERT_NE(package, nullptr) << row.name;
        EXPECT_TRUE(package->isPublic());
        EXPECT_TRUE(ZPackage::root()->uses(package));
        for (const orv::glue::ClassRow* type : row.types) {
            ZMetaType* found = ZMetaType::find(ZSelector(type->name));
            ASSERT_NE(found, nullptr) << type->name;
            EXPECT_EQ(found->package(), package) << type->name;
            EXPECT_EQ(found->getSize(), type->size) << type->name;
            EXPECT_EQ(found->baseCount(), type->bases.count) << type->name;
            for (int i = 0; i < found->baseCount(); ++i) EXPECT_NE(found->baseType(i), nullptr) << type->name;
            const orv::glue::MetaClass* meta = type->info->meta;
            EXPECT_EQ(found->type(), meta ? meta->type() : ztype<ZMetaType>()) << type->name;
            EXPECT_EQ(int(found->methodTypeCount()), type->methods.count) << type->name;
        }
    }
    EXPECT_EQ(ZMetaType::find(ZSelector("int")), ztype<int>());
    EXPECT_EQ(ztype<int>()->getType(), ZMetaType::Int);
    EXPECT_EQ(ztype<real>()->getName(), ZSelector("real"));
    EXPECT_EQ(ZMetaType::find(ZSelector("double"))->getType(), ZMetaType::Double);
    EXPECT_EQ(ztype<ZString>()->getType(), ZMetaType::String);
    EXPECT_TRUE(ztype<ZMetaType>()->isBase(ztype<ZType>()));
    EXPECT_EQ(ZMetaType::find(ZSelector("NoSuchType")), nullptr);
}

TEST_F(Boot, RowsBecomeTypesAndTables) {
    ZPackage* package = zmake<ZPackage>();
    ASSERT_NE(package, nullptr);
    package->setSelector(ZSelector("test.rows"));
    ZMetaType* plain = orv::makeType(package, orv::glue::Row<BootPlain>::row);
    ASSERT_NE(plain, nullptr);
    ASSERT_NE(orv::makeType(package, orv::glue::Row<BootFirst>::row), nullptr);
    ZMetaType* both = orv::makeType(package, orv::glue::Row<BootBoth>::row);
    ASSERT_NE(both, nullptr);
    package->resetBases();

    EXPECT_TRUE(plain->hasOption(ZSelector("noblend"), false));
    EXPECT_EQ(plain->getBlockName(), ZSelector("plai"));
    EXPECT_EQ(plain->getNamedSelector(ZSelector("w")), ZSelector("width"));
    EXPECT_EQ(both->baseOffset(0), 0);
    EXPECT_EQ(both->baseOffset(1), int(sizeof(BootFirst)));

    // Nested types
    auto mode = dynamic_cast<ZEnumType*>(package->findType(ZSelector("BootPlain::Mode")));
    ASSERT_NE(mode, nullptr);
    EXPECT_EQ(mode->value(ZSelector("Busy")), 4);
    EXPECT_EQ(mode->getSize(), sizeof(BootPlain::Mode));
    const ZEnumType* level = package->findEnum(ZSelector("BootPlain::Level"));
    const ZEnumType* sides = package->findEnum(ZSelector("BootPlain::Sides"));
    ASSERT_TRUE(level && sides);
    EXPECT_TRUE(level->holds(2) && sides->holds(3) && sides->isBitFlags());
    EXPECT_FALSE(level->holds(3) || level->isBitFlags()) << "values that count up are no flags";
    ZEnum edited = level->data();
    EXPECT_TRUE(edited.remove(1) && edited.isExclusive() && !edited.isBitFlags());
    edited.setExclusive(false);
    EXPECT_TRUE(edited.isBitFlags());
    ZMetaType* inner = package->findType(ZSelector("BootPlain::Inner"));
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(inner->getSize(), sizeof(BootPlain::Inner));
    EXPECT_EQ(inner->getOwnerType(), plain);
    EXPECT_NE(package->findType(ZSelector("const BootPlain::Inner*")), nullptr);

    // Methods
    ZMethod* sum = plain->methodTypeBySelector(ZSelector("int sum(int, int)"), ZSelector("const"));
    ASSERT_NE(sum, nullptr);
    EXPECT_EQ(sum->getOptions(), ZSelector("inner"));
    EXPECT_EQ(sum->getSandBoxLevel(), 2);
    EXPECT_TRUE(sum->getFlags() & ZMethod::Bindable);
    EXPECT_EQ(sum->fastWords(), 2);
    EXPECT_EQ(plain->methodTypeCount(), 7u);

    // Instances
    auto made = static_cast<BootPlain*>(plain->createInstance());
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->width(), 3);
    auto copy = static_cast<BootPlain*>(plain->copyInstance(made));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(plain->compareInstance(made, copy), 0);
    copy->setWidth(9);
    EXPECT_NE(plain->compareInstance(made, copy), 0);
    plain->releaseInstance(made);
    plain->releaseInstance(copy);

    // Properties
    ZProperty* width = plain->findPropertyDef(ZSelector("width"));
    ASSERT_NE(width, nullptr);
    EXPECT_EQ(width->flags() & uint(ZProperty::Store), uint(ZProperty::Store));
    EXPECT_EQ(width->version(), 3);
    EXPECT_EQ(width->sandBoxLevel(), 2);
    EXPECT_GT(width->offset(), -1);
    EXPECT_EQ(width->getUpdaters(), ZSelector("changed"));
    EXPECT_TRUE(width->hasOption(ZSelector("inner")));
    EXPECT_EQ(width->value().toInt(), 7);
    EXPECT_TRUE(plain->hasDynamicProperties());

    package->releasePackage();
    package->release();
}

TEST_F(Boot, StartsAgainAndAgain) {
    // Opening nests; packages are loaded once.
    EXPECT_TRUE(orv::openModule());
    ZPackage* object = orv::loadPackage(ZSelector("orv.core.object"));
    EXPECT_EQ(object, ZPackage::findPackage(ZSelector("orv.core.object")));
    ASSERT_NE(object, nullptr);
    object->release();
    orv::closeModule();
    EXPECT_EQ(ZMetaType::find(ZSelector("ZObject")), ztype<ZObject>());
    EXPECT_EQ(orv::loadPackage(ZSelector("no.such.package")), nullptr);
}
