#include "tests/object/bindingTypes.h"

#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/glue.h"
#include "object/names.h"

namespace orv::glue {

template <> struct Table<Bell> : Declares<Bell> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_VALUE_ACCESSORS(int, width, Width),
        ORV_METHOD(void, struck, (), , "autobind"),
        ORV_METHOD(void, moved, (int, const ZString&), , "bind"),
        ORV_METHOD(int, asked, (), , "bind"),
        ORV_METHOD(ZString, named, (), , "bind"),
        ORV_METHOD(Bell*, found, (), , "bind"),
        ORV_METHOD(void, ring, (), ),
        ORV_METHOD(void, hear, (int), ),
        ORV_METHOD(void, hear, (const ZString&), ),
        ORV_METHOD(void, both, (int, const ZString&, int), ),
        ORV_METHOD(bool, any, (const ZVariant&, const ZSelector&), ),
        ORV_METHOD(int, seven, (), ),
        ORV_METHOD(real, half, (), ),
        ORV_METHOD(ZString, title, (), ),
        ORV_METHOD(Bell*, self, (), ),
        ORV_METHOD(Bell*, fresh, (), , "creator"),
        ORV_METHOD(int, answers, (), ),
        ORV_METHOD(void, all, (...), ),
        ORV_STATIC(void, shared, ()),
    };
    static constexpr PropertyRow properties[] = {ORV_PROPERTY(int, width, "store bind")};
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};
template <> struct Table<SmallBell> : Declares<SmallBell> {
    using BaseTypes = Bases<Bell>;
    static constexpr MethodRow methods[] = {ORV_METHOD(void, struck, (), , "autobind")};
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

} // namespace orv::glue

ORV_DECLARE(Bell);
ORV_DECLARE(SmallBell);

namespace {
bool own = false; ///< this suite opened the packages
} // namespace

void BindingTest::SetUpTestSuite() {
    CoreTest::SetUpTestSuite();
    own = !ZPackage::root() && orv::openModule() && orv::openPackages();
    ASSERT_TRUE(orv::openNames(orv::moduleNames()));
    ZPackage* package = ZPackage::findPackage(ZSelector("orv.core.base"));
    ASSERT_NE(package, nullptr);
    for (const orv::glue::ClassRow* row : {&orv::glue::Row<Bell>::row, &orv::glue::Row<SmallBell>::row}) {
        ZMetaType* type = orv::makeType(package, *row);
        ASSERT_NE(type, nullptr) << row->name;
        type->resetBase();
    }
}
void BindingTest::TearDownTestSuite() {
    orv::closeNames(orv::moduleNames());
    if (own) {
        orv::closePackages();
        orv::closeModule();
    }
    CoreTest::TearDownTestSuite();
}
