#include "module/packages.h"

#include "object/primitives.h"

// A type that is declared in `<Class>.glue.cpp` enters its package by one line here, behind its bases. Packages are
// opened in the order of the last list.

// Each row is defined beside its class.
#ifdef __clang__
#pragma clang diagnostic ignored "-Wundefined-var-template"
#endif

namespace orv {

namespace {

using glue::ClassRow;
using glue::Row;

constexpr const ClassRow* ztlTypes[] = {
    &Row<ZSelector>::row,           &Row<ZSelectorMap>::row,       &Row<ZSelectorPair>::row,
    &Row<ZSelectString>::row,       &Row<ZArrayT<bool>>::row,      &Row<ZArrayT<byte>>::row,
    &Row<ZArrayT<int>>::row,        &Row<ZArrayT<uint>>::row,      &Row<ZArrayT<large>>::row,
    &Row<ZArrayT<float>>::row,      &Row<ZArrayT<real>>::row,      &Row<ZArrayT<ZSelector>>::row,
    &Row<ZArrayT<ZString>>::row,    &Row<ZArrayT<ZFileInfo>>::row, &Row<ZArrayT<ZVariant>>::row,
    &Row<ZArrayT<ZMetaType*>>::row, &Row<ZArrayT<ZEnumItem>>::row,
};

constexpr const ClassRow* baseTypes[] = {
    &Row<ZAtomicInt>::row,  &Row<ZLock>::row,        &Row<ZUnique>::row,     &Row<ZChar>::row,
    &Row<ZString>::row,     &Row<ZStringPair>::row,  &Row<ZInteger>::row,    &Row<ZCharBuffer>::row,
    &Row<ZRange>::row,      &Row<ZTime>::row,        &Row<ZDateTime>::row,   &Row<ZBlendPos>::row,
    &Row<ZFileName>::row,   &Row<ZFileInfo>::row,    &Row<ZTypedPtr>::row,   &Row<ZVariant>::row,
    &Row<ZVArray>::row,     &Row<ZVHashSet>::row,    &Row<ZVSelectMap>::row, &Row<ZVKeyMap>::row,
    &Row<ZVMatrix>::row,    &Row<ZSampleTime>::row,  &Row<ZTypeArray>::row,  &Row<ZNamedTypeArray>::row,
    &Row<ZContentMap>::row, &Row<ZTypeNameMap>::row, &Row<ZRegExp>::row,     &Row<ZLongestCommonSubsequence>::row,
};

constexpr const ClassRow* objectTypes[] = {
    &Row<ZType>::row,
    &Row<ZObject>::row,
    &Row<ZMetaType>::row,
    &Row<ZEnumItem>::row,
    &Row<ZEnum>::row,
    &Row<ZMethod>::row,
    &Row<ZMethodRef>::row,
    &Row<ZMethodDispatch>::row,
    &Row<ZProperty>::row,
    &Row<ZPropertyRef>::row,
    &Row<ZDetachContext>::row,
    &Row<ZEnumType>::row,
    &Row<ZSelectorType>::row,
    &Row<ZVSelectMapType>::row,
    &Row<ZCompositeType>::row,
    &Row<ZTypeCategory>::row,
    &Row<ZBinding>::row,
    &Row<ZBindingLink>::row,
    &Row<ZBindingItem>::row,
    &Row<ZBindingSet>::row,
    &Row<ZPackage>::row,
    &Row<ZModule>::row,
    &Row<ZUnknownData>::row,
    &Row<ZVariantDelegate>::row,
    &Row<ZNamedTypeArrayType>::row,
    &Row<ZTypeNameMapType>::row,
};

constexpr const char* ztlUses[] = {"orv.core.base", "orv.core.object"};
constexpr const char* baseUses[] = {"orv.core.ztl", "orv.core.object"};
constexpr const char* objectUses[] = {"orv.core.ztl", "orv.core.base"};

constexpr PackageRow rows[] = {
    {"orv.core.ztl", ZPackage::Public, ztlTypes, ztlUses, &glue::primitiveRows},
    {"orv.core.base", ZPackage::Public, baseTypes, baseUses},
    {"orv.core.object", ZPackage::Public, objectTypes, objectUses},
};

} // namespace

glue::List<PackageRow> corePackages() { return rows; }

} // namespace orv
