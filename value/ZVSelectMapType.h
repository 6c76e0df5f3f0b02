#pragma once

#include "object/ZMetaType.h"

/// The type of `ZVSelectMap`: the keys of a map are properties of it, so that a map reads and is written like an
/// instance of a class. Who sets a property doesn't add a key; `ZVSelectMap::set` does.
class ORV_API ZVSelectMapType : public ZMetaType {
public:
    ZVSelectMapType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& baseNames,
                    const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZVSelectMapType(const ZVSelectMapType* source, const __ZPassMetaType* type = nullptr,
                             ZInternal* internal = nullptr);
    /// A variant, see `getQualified`.
    ZVSelectMapType(const ZSelector& name, ZVSelectMapType* main) : ZMetaType(main, name) {}

    // Inherited operations that have an answer of their own

    ZType* copy() const override;
    uint syntheticPropertyCount(const ZTypedPtr& typed) const override;
    /// With `resolve`, with the value of the key.
    bool syntheticProperty(const ZTypedPtr& typed, const ZSelector& name, ZProperty& found,
                           bool resolve) const override;
    bool syntheticPropertyNames(const ZTypedPtr& typed, ZArrayT<ZSelector>& names) const override;
    bool hasSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const override;
    /// That of the value, which is the map's unless the map holds variants.
    ZMetaType* getSyntheticPropertyType(const ZTypedPtr& typed, const ZSelector& name) const override;
    ZVariant getSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, bool expand) const override;
    /// Removes the key.
    bool clearSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const override;
    bool setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                              bool notify) const override;

protected:
    ZMetaType* makeVariant(const ZSelector& name) override;
};
