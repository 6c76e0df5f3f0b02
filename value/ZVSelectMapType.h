#pragma once

#include "object/SyntheticType.h"

/// The type of `ZVSelectMap`: the keys of a value are its properties, with the values under them. Setting one converts
/// to the type of the map, clearing one puts a new value of that type under the key, which stays. A property that isn't
/// there is set only by those who say that it is to be added; keys are removed by the operations of the map.
class ORV_API ZVSelectMapType : public orv::SyntheticType {
public:
    ZVSelectMapType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                    const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZVSelectMapType(const ZVSelectMapType* source, const __ZPassMetaType* type = nullptr,
                             ZInternal* internal = nullptr);
    explicit ZVSelectMapType(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    /// A variant, see `getQualified`.
    ZVSelectMapType(const ZSelector& name, ZVSelectMapType* main) : SyntheticType(name, main) {}

    ZType* copy() const override;
    bool setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                              bool add) const override;

protected:
    ZMetaType* makeVariant(const ZSelector& name) override;
    bool fieldNames(const void* instance, ZArrayT<ZSelector>& names) const override;
    uint fieldCount(const void* instance) const override;
    ZMetaType* fieldType(const void* instance, const ZSelector& name) const override;
    ZVariant readField(const void* instance, const ZSelector& name) const override;
    bool writeField(void* instance, const ZSelector& name, const ZVariant& value) const override;
    bool clearField(void* instance, const ZSelector& name) const override;
};
