#include "object/HeldTarget.h"

#include "object/ZMetaType.h"
#include "toolkit/thread.h"

namespace {
ORV_THREAD_LOCAL orv::HeldTarget::Lookup* innermost = nullptr;
} // namespace

namespace orv {

HeldTarget::Lookup::Lookup(HeldTarget& target) : target(target), outer(innermost) { innermost = this; }
HeldTarget::Lookup::~Lookup() { innermost = outer; }

HeldTarget* HeldTarget::lookingFor(const ZTypedPtr* typed) {
    if (!typed) return nullptr;
    const Lookup* at = innermost;
    while (at && &at->target.typed != typed) at = at->outer;
    return at ? &at->target : nullptr;
}
void HeldTarget::keep(const ZType* found) {
    if (kept.get() && keptFor == typed.instance) return;
    kept = ZRetainPtrT<ZType>(found);
    keptFor = typed.instance;
}

ZMethod* HeldTarget::method(const ZType* instance, const ZSelector& selector, const ZSelector& qualifier) {
    Lookup looking(*this);
    return instance->method(&typed, selector, qualifier);
}
ZMethod* HeldTarget::multimethod(int* distance, const ZType* instance, const ZSelector& name,
                                 const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                 const ZSelector& qualifier) {
    Lookup looking(*this);
    return instance->multimethod(distance, &typed, name, types, implicit, skipResult, exact, qualifier);
}

} // namespace orv
