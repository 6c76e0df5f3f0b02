#include "object/names.h"

#include "tests/support/SelectorScope.h"

#include <gtest/gtest.h>

namespace {
const ZSelector& inFunction() { return zsel<"names test width">(); }
template <class T> const ZSelector& inTemplate() { return zsel<"int names(test)">(); }
} // namespace

TEST(Names, AreLinkedWhileTheirModuleIsOpen) {
    for (int run = 0; run < 2; ++run) {
        SelectorScope scope;
        EXPECT_TRUE(inFunction().isEmpty());
        ASSERT_TRUE(orv::openNames(orv::moduleNames()));
        EXPECT_EQ(inFunction(), ZSelector("names test width"));
        EXPECT_EQ(inFunction().type(), ZSelector::Names);
        EXPECT_EQ(&inFunction(), &zsel<"names test width">());
        EXPECT_EQ(inTemplate<int>(), ZSelector("int names(test)"));
        EXPECT_EQ(&inTemplate<int>(), &inTemplate<char>());
        ZSelector kept = inFunction();
        orv::closeNames(orv::moduleNames());
        EXPECT_TRUE(inFunction().isEmpty());
        EXPECT_STREQ(kept.string(), "names test width");
    }
}
