#include "object/SharedName.h"

#include "toolkit/memory.h"

namespace orv {

/// Under the guard whoever replaces the name leaves its count alone.
ZSelector SharedName::getCounted() const {
    toolkit::EpochGuard guard;
    ZSelector borrowed = ZSelector::adopt(key());
    ZSelector held(borrowed);
    borrowed.forget();
    return held;
}

bool SharedName::set(const ZSelector& name, Former& former) {
    ZSelector fresh(name);
    uint seen = key();
    do {
        if (!isCounted(seen) || former.link) continue;
        former.link = static_cast<Former::Link*>(toolkit::allocZeroedBlock(sizeof(Former::Link)));
        if (!former.link) return false;
    } while (!toolkit::compareExchange(id, seen, fresh.key()));
    fresh.forget();
    if (former.link) former.link->id = seen;
    return true;
}

SharedName::Former::~Former() {
    if (!link) return;
    toolkit::epochRetire(link, [](toolkit::EpochLink* retired) {
        auto link = static_cast<Link*>(retired);
        const ZSelector last = ZSelector::adopt(link->id);
        toolkit::freeBlock(link);
    });
}

} // namespace orv
