#pragma once

#include "core/ZSelector.h"
#include "toolkit/epoch.h"

namespace orv {

/// A name that any thread reads while another gives a new one. Who reads takes no lock of it, and writes no shared word
/// unless the name is counted; a counted name that was replaced is given up once nobody can be looking at it any more.
class SharedName {
public:
    SharedName() = default;
    SharedName(const SharedName&) = delete;
    ~SharedName() { const ZSelector last = ZSelector::adopt(id); }

    ZSelector get() const {
        const uint seen = key();
        return ORV_LIKELY(!isCounted(seen)) ? ZSelector::adopt(seen) : getCounted();
    }
    /// To be compared with names that the caller holds.
    uint key() const { return toolkit::loadAcquire(id); }
    bool is(const ZSelector& name) const { return key() == name.key(); }

    /// What a change replaced. It goes with no lock held.
    class Former {
    public:
        Former() = default;
        Former(const Former&) = delete;
        ~Former();

    private:
        friend class SharedName;
        struct Link : toolkit::EpochLink {
            uint id;
        };
        Link* link = nullptr;
    };
    /// False, with nothing changed, if there is no memory to hold a counted name back.
    bool set(const ZSelector& name, Former& former);

private:
    static bool isCounted(uint key) { return key > toolkit::load(detail::permanentSelectors); }
    ZSelector getCounted() const;

    uint id = 0;
};

} // namespace orv
