#pragma once

#include "object/forward.h"
#include "toolkit/types.h"

namespace orv {

/// A table that the running thread fills for a type, or a category: what its builder adds goes here until it is whole.
/// Nobody else sees it and no lock is held meanwhile, so a builder may ask and call what it likes. Where two threads
/// build the same table, that of the first is published and the other one's is thrown away.
class TableBuildBase {
public:
    TableBuildBase(const TableBuildBase&) = delete;
    TableBuildBase& operator=(const TableBuildBase&) = delete;

protected:
    TableBuildBase(const void* owner, const void* kind);
    ~TableBuildBase();
    /// What the running thread is filling; null if it fills none such.
    static TableBuildBase* find(const void* owner, const void* kind);

private:
    const void* owner;
    const void* kind;
    TableBuildBase* outer;
};

/// Whether the running thread fills some table: what it looks up meanwhile may be missing only so far, and isn't kept.
bool buildsTables();

/// The C++ type of the table tells which one of its owner's it is.
template <class T> class TableBuild : TableBuildBase {
public:
    explicit TableBuild(const void* owner) : TableBuildBase(owner, &kind) {}
    static T* find(const void* owner) {
        TableBuildBase* found = TableBuildBase::find(owner, &kind);
        return found ? &static_cast<TableBuild*>(found)->table : nullptr;
    }

    T table{};

private:
    static inline char kind = 0;
};

} // namespace orv
