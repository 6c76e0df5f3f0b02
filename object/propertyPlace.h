#pragma once

#include "object/ZMetaType.h"
#include "object/propertyTables.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

/// Where a `ZType` instance has a property: the search that reading, writing and item operations share.
namespace orv {

/// What is left of a longer path is never made a name of its own.
inline constexpr int longestWholePath = 512;

/// The answer holds as long as this does and the instance's properties don't change. The order of the search: the
/// instance's own properties, the declared ones, the dynamic properties with the flag `Delegate`, the first part of a
/// path, the delegates that the type tells.
class PropertyPlace {
    toolkit::EpochGuard guard;

public:
    enum Kind : byte { Nowhere, Dynamic, Declared, Synthetic, Elsewhere };

    /// `name` as today's name, see `ZType::replacePropertyName`. With `localOnly` nothing else than the instance itself
    /// is asked.
    PropertyPlace(const ZType* self, const ZSelector& name, bool localOnly = false);
    PropertyPlace(const PropertyPlace&) = delete;

    Kind kind = Nowhere;
    ZProperty* property = nullptr; ///< `Dynamic`, `Declared`
    PropertyLookup* row = nullptr; ///< `Declared`
    ZMetaType* type = nullptr;     ///< that of the instance
    const ZType* self;
    const ZSelector* name;
    ZTypedPtr other;        ///< `Elsewhere`: who has it
    ZSelector otherName;    ///< under which name
    int pathParts = 0;      ///< `Elsewhere`: how many parts of the path led there; 0 if none did
    bool writeBack = false; ///< `Elsewhere`: it is a value: a copy is to be changed and put back
    ZSelector delegate;     ///< `Elsewhere`: the dynamic property that holds it; else empty
    ZVariant holder;        ///< keeps `other` alive

    /// Where to tell who has the property. What goes with the search can't be told: then the pointer is made null.
    ZTypedPtr* lend(ZTypedPtr* typed) const;

private:
    bool findOwn();
    bool findDelegate();
    bool findPath();
    bool findTypeDelegate();
};

/// Whether what is held is a variant of its own.
inline bool holdsVariant(const ZVariant& value) {
    return value.type() && !value.type()->heldInline() && value.type()->isVariant();
}

bool isSelectMap(const ZVariant& value);

/// The value of a property as `ZType::getProperty` gives it without expanding; false if there is none.
bool readProperty(const ZType* self, ZTypedPtr* typed, const ZSelector& name, bool resolve, ZVariant& value);
/// The same at a place.
bool readPlace(const PropertyPlace& place, ZTypedPtr* typed, bool resolve, ZVariant& value);

/// Calls the update methods of a declared property that has changed, and, with `notify`, what is bound to it.
void tellDeclared(ZType* self, const PropertyPlace& place, bool notify);
/// Puts the value that a place holds back where it was found. False where the path there is too long.
bool writeBack(ZType* self, const PropertyPlace& place, bool notify);
/// Writes a path of at least two parts.
bool setPath(ZType* self, ZTypedPtr* typed, const ZSelector& path, const ZVariant& value, bool notify);
/// The words of an option text that a record keeps: options proper, and update methods with their dots.
ZSelector optionsAndUpdaters(const ZSelector& words);

} // namespace orv
