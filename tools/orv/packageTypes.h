#pragma once

#include "object/ZObject.h"
#include "object/reflect.h"
#include "text/ZString.h"

#include <functional>

// The types that this program has of its own, in the package "orv.tool.packages".

/// A section of the archive, with its packages as children, or all of them, with the sections as children.
class PackageSection : public ZObject {
public:
    ORV_REFLECT(PackageSection);

    explicit PackageSection(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);

    /// What its packages take when they are installed, in KiB.
    large total() const { return sum; }
    bool setTotal(const large& size);
    int packages() const;
    /// KiB a package; 0 without packages.
    real meanSize() const;
    /// Adds the children up anew.
    void resum();

    /// Called with each section whose total changed, and with what it was; may be empty.
    static std::function<void(const PackageSection& section, large before)> changed;

private:
    large sum = 0;
};

/// Counts how often what it is bound to happens.
class ChangeCounter : public ZObject {
public:
    ORV_REFLECT(ChangeCounter);

    explicit ChangeCounter(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);

    int count() const { return times; }
    void add() { ++times; }

private:
    int times = 0;
};

/// A version of a package: compared by the rules of deb-version(7), not as a text.
class PackageVersion {
public:
    ORV_REFLECT(PackageVersion);

    PackageVersion() = default;
    explicit PackageVersion(const ZString& text) { fromString(text); }

    /// False, with nothing changed, for a text that is no version.
    bool fromString(const ZString& version);
    ZString toString() const { return text; }
    int compare(const PackageVersion& other) const;

private:
    ZString text;
};
