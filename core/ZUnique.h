#pragma once

#include "core/forward.h"

/// A counted identifier of this run of the process, without a text: 32 bits, 0 for none. Each new one differs from all
/// others that somebody holds. Copies name the same; with the last of them the value may be used again. Any thread may
/// make and copy uniques; one value is one thread's, as with an int.
///
/// They can be made between `open` and `close`; outside of that a new one is none, and one that is left over may be
/// destroyed.
class ORV_API ZUnique {
public:
    using ZRelocatable = void;

    /// A new one. Raises a failure when there is no memory, and is none then.
    ZUnique();
    /// None, whatever the number: for places that get their value later.
    explicit ZUnique(const int&) : id(0) {}
    ZUnique(const ZUnique& other);
    /// The one that the value is; none for any other value.
    explicit ZUnique(const ZVariant& value);
    ZUnique(ZUnique&& other) noexcept : id(other.id) { other.id = 0; }
    ~ZUnique() { clear(); }
    ZUnique& operator=(const ZUnique& other) {
        assign(other);
        return *this;
    }

    void assign(const ZUnique& other);
    /// Becomes none.
    void clear();
    /// Becomes a new one, which differs from the old one. None when there is no memory.
    void reset();

    bool isEmpty() const { return id == 0; }
    /// How many hold it; 0 for none.
    int refcount() const;
    /// By value: -1, 0 or 1; always 0 under `ignoreComparison`.
    int compare(const ZUnique& other) const;
    /// By value, in any case.
    bool operator==(const ZUnique& other) const { return id == other.id; }
    uint hashKey() const { return id; }

    // The space of all of them

    static bool open();
    static void close();
    /// How many are in use.
    static uint count();
    /// Writes their number to the debug log if the space has at least `line` places.
    static void check(const char* file, int line);
    /// While on, all uniques compare equal, in all threads: for comparing stored data by everything else. Maps with
    /// uniques as keys can't be searched meanwhile.
    static void ignoreComparison(bool on);

private:
    friend class ZUniqueIgnoreScope;
    static void countIgnoreScope(int more);

    uint id;
};

/// Lets all uniques compare equal for a scope; scopes may overlap, also of several threads.
class [[nodiscard]] ZUniqueIgnoreScope {
public:
    ZUniqueIgnoreScope() { ZUnique::countIgnoreScope(1); }
    ~ZUniqueIgnoreScope() { ZUnique::countIgnoreScope(-1); }
    ZUniqueIgnoreScope(const ZUniqueIgnoreScope&) = delete;
};
