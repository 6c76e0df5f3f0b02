#pragma once

#include "core/ZRetainPtrT.h"
#include "tools/orv/packageTypes.h"
#include "tools/orv/stanzas.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"

#include <functional>
#include <string>
#include <unordered_map>

class ZCompositeType;
class ZEnumType;

namespace orv::tool {

/// Packages as objects: each stanza an object under that of its section, its fields dynamic properties. Sections stand
/// under one object for all. Packages are found by "name:architecture=version"; as names contain "." and "-", never by
/// a path.
///
/// Fields have the type of their property: Installed-Size and Size a large, Version a `PackageVersion`, Section and
/// Architecture a selector, and two types that are made at run time: Priority an enumeration, Maintainer a composite of
/// name and address. All others are strings.
class Catalogue {
public:
    /// The library is started. Check `isOpen` before anything else.
    Catalogue();
    ~Catalogue();
    Catalogue(const Catalogue&) = delete;
    bool isOpen() const { return open; }

    /// Adds what a file gives; damage is told by line. A package that an earlier file has told of is passed over: lists
    /// overlap. False without memory.
    bool load(const StanzaReader::Source& source, const std::function<void(const Damage&)>& tell);
    /// Works out the totals, and binds them: a package's size to its section, a section's total to all. False without
    /// memory.
    bool bindTotals();

    PackageSection* all() const { return root.get(); }
    int count() const { return int(packages.count()); }
    ZObject* package(int index) const;
    /// "name:architecture=version"
    std::string key(int index) const;
    ZObject* find(const std::string& key) const;
    /// Those of a key, a name, or a name with its architecture.
    std::vector<int> findAll(const std::string& name) const;
    /// Null if there is none of that name.
    PackageSection* section(const std::string& name) const;
    static std::string keyOf(const std::string& name, const std::string& architecture, const std::string& version);

    /// A value for a field from the text that stands for it; null if it stands for none. Sizes aren't negative.
    ZVariant read(const std::string& field, std::string_view text) const;
    /// The type that a field has, or "Maintainer.name" and "Maintainer.address"; null for one that no package has.
    ZMetaType* fieldType(const std::string& name) const;

private:
    struct NameHash {
        using is_transparent = void;
        size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
    };
    // Names of fields are the same in upper and lower case.
    struct FieldHash {
        using is_transparent = void;
        size_t operator()(std::string_view name) const;
    };
    struct FieldEqual {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const { return sameField(a, b); }
    };
    struct FieldKind {
        ZSelector name;
        ZMetaType* type;
    };

    bool makeTypes();
    FieldKind& fieldKind(std::string_view name);
    bool add(const std::vector<StanzaReader::Field>& fields, size_t line,
             const std::function<void(const Damage&)>& tell);
    ZVariant readAs(ZMetaType* type, std::string_view text) const;
    ZVariant maintainer(std::string_view text) const;
    PackageSection* sectionFor(std::string_view name);

    bool open = false;
    ZEnumType* priorityType = nullptr;        // of the package of this program
    ZCompositeType* maintainerType = nullptr; // the same
    ZRetainPtrT<PackageSection> root;
    ZVKeyMap packages;
    int firstOfFile = 0; ///< the first package of the file being read
    std::unordered_map<std::string, FieldKind, FieldHash, FieldEqual> fields;
    std::unordered_map<std::string, PackageSection*, NameHash, std::equal_to<>> sections;
};

/// The text of any value, for people: names of enumerations, "name <address>" of a maintainer.
std::string printed(const ZVariant& value);

} // namespace orv::tool
