#pragma once

#include "object/forward.h"
#include "toolkit/types.h"

class ZSelector;

namespace orv {

/// Types by name for readers without a lock, or anything else that is written: open addressing over the ids of
/// selectors, published whole when it grows. Outgrown tables, half the size each, stay until the index ends. It holds
/// types and names without references. Writers have a lock of their own; no reader is there when it ends.
class ORV_API TypeIndex {
public:
    TypeIndex() = default;
    ~TypeIndex();
    TypeIndex(const TypeIndex&) = delete;
    TypeIndex& operator=(const TypeIndex&) = delete;

    /// Null for a name that isn't there.
    ZMetaType* find(const ZSelector& name) const;
    /// Replaces the type of the name; false without memory.
    bool put(const ZSelector& name, ZMetaType* type);
    /// Takes a name out if it stands for that type.
    void drop(const ZSelector& name, const ZMetaType* type);
    /// Room for so many more; false without memory.
    bool reserve(uint more);
    void clear();
    uint count() const { return used; }
    /// Calls `visit(type)` for each; for writers.
    template <class F> void each(F&& visit) const;

private:
    struct Place {
        uint key;        ///< 0 for a free place; stored last
        ZMetaType* type; ///< null for a name that was taken out
    };
    struct Table {
        Table* outgrown;
        uint mask;
        uint filled; ///< places in use, those taken out among them
        Place places[1];
    };
    static Table* make(uint places);
    static Place& placeOf(Table& table, uint key);

    Table* table = nullptr; ///< atomic
    uint used = 0;
};

template <class F> void TypeIndex::each(F&& visit) const {
    for (uint i = 0; table && i <= table->mask; ++i)
        if (ZMetaType* type = table->places[i].type) visit(type);
}

} // namespace orv
