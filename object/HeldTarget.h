#pragma once

#include "core/ZRetainPtrT.h"
#include "value/ZTypedPtr.h"

namespace orv {

/// Where a call goes, and who stays alive for it. A method that is found at a delegate, or behind a path of properties,
/// is called on an object that the caller doesn't hold: its owner may let it go on another thread, or in the method
/// itself. A lookup through this leaves a reference to it here, taken while its owner still had it; who calls keeps
/// this until the method has ended, and lets it go with no lock held. For one's own methods nothing is retained.
class HeldTarget {
public:
    HeldTarget() = default;
    explicit HeldTarget(const ZTypedPtr& start) : typed(start) {}
    HeldTarget(const HeldTarget&) = delete;

    /// The lookups of an instance, with `typed` as what tells where the method was found.
    ZMethod* method(const ZType* instance, const ZSelector& selector, const ZSelector& qualifier);
    ZMethod* multimethod(int* distance, const ZType* instance, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                         bool implicit, bool skipResult, bool exact, const ZSelector& qualifier);

    ZTypedPtr typed;
    ZRetainPtrT<ZType> kept; ///< null where the method is the instance's own

    /// While one is open, lookups of this thread that are given `typed` keep for the target what they find.
    class Lookup {
    public:
        explicit Lookup(HeldTarget& target);
        ~Lookup();
        Lookup(const Lookup&) = delete;

    private:
        friend class HeldTarget;
        HeldTarget& target;
        Lookup* const outer;
    };

    // For lookups

    /// Who is looking; null if the answer is only borrowed.
    static HeldTarget* lookingFor(const ZTypedPtr* typed);
    /// The answer that `typed` has now was found at this object, which the caller holds. One that is kept for the same
    /// answer stays: it was found farther in.
    void keep(const ZType* found);

private:
    const void* keptFor = nullptr;
};

} // namespace orv
