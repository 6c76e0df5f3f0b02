#pragma once

#include "core/ZSpinLock.h"
#include "module/forward.h"
#include "object/SelectorCell.h"
#include "object/forward.h"

/// A record of static storage by which compiled code refers to a type by name. It is resolved at the first use and then
/// answers at a load and a test, on any thread. It stands in a list of the type's package, which resets it when the
/// package goes; types without a package have theirs in one list of the process. A name that isn't found is looked for
/// again once types have changed.
///
/// The setters are for whoever opens or closes a module. Nothing is done at the end of a record's life: `clear` comes
/// before its memory goes.
class ORV_API ZInlineType {
public:
    constexpr ZInlineType() = default;
    ZInlineType(const ZInlineType&) = delete;
    ZInlineType& operator=(const ZInlineType&) = delete;

    /// Borrowed from its package; null if there is no such type. `text` names it as long as nothing was set.
    ZMetaType* type(const char* text = nullptr) const {
        ZMetaType* known = toolkit::loadAcquire(metaType);
        return ORV_LIKELY(known != nullptr) ? known : resolve(text);
    }
    bool unresolved() const { return !toolkit::load(metaType); }

    // What it stands for. Each setter forgets what was found.

    /// A name of the root package; in the form "package.name::type", of that package.
    void setSelector(const ZSelector& name);
    void setPackage(const ZSelector& package, const ZSelector& name);
    /// As the package finds it, or, as one nested in `owner`; both look at once.
    void setType(const ZPackage* package, const ZSelector& name);
    void setType(const ZMetaType* owner, const ZSelector& name);
    /// Another name in the same package or owner; looks at once.
    void extend(const ZSelector& name);
    void assign(const ZInlineType& other);
    const ZSelector& getSelector() const { return name.get(); }
    const ZSelector& getPackage() const { return package.get(); }

    /// Forgets what was found.
    void reset() const;
    /// Forgets everything.
    void clear();
    /// Resets the records of types without a package.
    static void resetInvalid();
    /// Resets the records of a type that goes; `orv::typesRemoved` comes first.
    static void forget(const ZMetaType* type);

private:
    friend struct InlineTypeList;

    ZMetaType* resolve(const char* text) const;
    ZMetaType* find(const ZSelector& selector) const;

    mutable ZInlineType* next = nullptr;
    mutable ZInlineType* prev = nullptr;
    mutable ZSpinLock guard;
    orv::SelectorCell name{}, package{};
    mutable ZMetaType* metaType = nullptr;
    const ZMetaType* ownerType = nullptr;
    const ZPackage* ownerPackage = nullptr;
    mutable struct InlineTypeList* list = nullptr;
    /// The `orv::typeGeneration` at which the name wasn't found.
    mutable ularge missed = 0;
};

/// Records that a package, or the process, resets together.
struct InlineTypeList {
    ZSpinLock guard;
    const ZInlineType* first = nullptr;

    /// Also unlinks them.
    ORV_API void resetAll();
    /// Only those of that type.
    void reset(const ZMetaType* type);

private:
    friend class ZInlineType;
    void link(const ZInlineType& record);
    void unlink(const ZInlineType& record);
};
