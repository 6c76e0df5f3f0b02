#include "core/ZUnique.h"

#include "core/ZUniqueSpace.h"
#include "core/construct.h"

namespace {
ZUniqueSpace* openSpace = nullptr;
/// Bit 0 is set by `ignoreComparison`; the rest counts scopes.
int ignoring = 0;
constexpr int scopeStep = 2;

ZUniqueSpace* space() { return toolkit::loadAcquire(openSpace); }
uint makeId() {
    ZUniqueSpace* from = space();
    uint id = from ? from->create() : 0;
    if (from && !id) ZError::fail();
    return id;
}
uint retainId(uint id) {
    ZUniqueSpace* from = id ? space() : nullptr;
    return from ? from->retain(id) : 0;
}
void releaseId(uint id) {
    if (!id) return;
    if (ZUniqueSpace* from = space()) from->release(id);
}
} // namespace

ZUnique::ZUnique() : id(makeId()) {}
ZUnique::ZUnique(const ZUnique& other) : id(retainId(other.id)) {}

void ZUnique::assign(const ZUnique& other) {
    uint taken = retainId(other.id);
    releaseId(id);
    id = taken;
}

void ZUnique::clear() {
    releaseId(id);
    id = 0;
}

void ZUnique::reset() {
    uint made = makeId();
    releaseId(id);
    id = made;
}

int ZUnique::refcount() const {
    ZUniqueSpace* from = id ? space() : nullptr;
    return from ? from->refcount(id) : 0;
}

int ZUnique::compare(const ZUnique& other) const {
    if (ORV_UNLIKELY(toolkit::loadAcquire(ignoring) != 0)) return 0;
    return (id > other.id) - (id < other.id);
}

bool ZUnique::open() {
    if (space()) return true;
    ZUniqueSpace* made = zmake<ZUniqueSpace>();
    if (made && made->open()) {
        toolkit::storeRelease(openSpace, made);
        return true;
    }
    zrelease(made);
    return false;
}

void ZUnique::close() { zrelease(toolkit::exchange(openSpace, static_cast<ZUniqueSpace*>(nullptr))); }

uint ZUnique::count() {
    ZUniqueSpace* from = space();
    return from ? from->uniqueCount() : 0;
}

void ZUnique::check(const char* file, int line) {
    if (ZUniqueSpace* from = space()) from->checkLimit(file, line);
}

void ZUnique::ignoreComparison(bool on) {
    if (on)
        __atomic_fetch_or(&ignoring, 1, __ATOMIC_ACQ_REL);
    else
        __atomic_fetch_and(&ignoring, ~1, __ATOMIC_ACQ_REL);
}

void ZUnique::countIgnoreScope(int more) { toolkit::addFetch(ignoring, more * scopeStep); }
