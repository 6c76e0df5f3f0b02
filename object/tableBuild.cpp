#include "object/tableBuild.h"

#include "toolkit/thread.h"

namespace orv {

static ORV_THREAD_LOCAL TableBuildBase* innermost = nullptr;

TableBuildBase::TableBuildBase(const void* owner, const void* kind) : owner(owner), kind(kind), outer(innermost) {
    innermost = this;
}
TableBuildBase::~TableBuildBase() { innermost = outer; }

bool buildsTables() { return innermost != nullptr; }

TableBuildBase* TableBuildBase::find(const void* owner, const void* kind) {
    for (TableBuildBase* at = innermost; at; at = at->outer)
        if (at->owner == owner && at->kind == kind) return at;
    return nullptr;
}

} // namespace orv
