#pragma once

#include "object/propertyTables.h"

/// The methods by which a type answers for properties that no table holds.
namespace orv {

enum class Synthetic : byte {
    Count,
    Property,
    Names,
    Has,
    Type,
    Get,
    GetItemAt,
    GetItemNamed,
    GetItemOf,
    GetItem,
    ItemCount,
    HasValue,
    Key,
    KeyIndex,
    FindKey,
    FindIndex,
    Clear,
    RemoveItem,
    RemoveItemAt,
    InsertItem,
    AddItem,
    Set,
    SetItemAt,
    SetItemNamed,
    SetItem
};
inline constexpr int syntheticCount = int(Synthetic::SetItem) + 1;

/// What a type has of them, each looked up at the first demand.
struct SyntheticMethods : toolkit::EpochLink {
    ularge generation = 0;
    CachedMethod places[syntheticCount];
};

void freeSynthetic(SyntheticMethods* methods);
/// Borrowed under an open guard; null without memory.
SyntheticMethods* syntheticMethods(const ZMetaType* type);

} // namespace orv
