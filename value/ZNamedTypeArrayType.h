#pragma once

#include "object/SyntheticType.h"

/// The type of `ZNamedTypeArray` and what derives from it: the names of a value are its properties, with the instances
/// under them, each of the type that the instance has. Setting one puts another instance under the name, clearing one
/// none; the name stays. Names are added and removed by the operations of the array.
class ORV_API ZNamedTypeArrayType : public orv::SyntheticType {
public:
    ZNamedTypeArrayType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                        const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZNamedTypeArrayType(const ZNamedTypeArrayType* source, const __ZPassMetaType* type = nullptr,
                                 ZInternal* internal = nullptr);
    explicit ZNamedTypeArrayType(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    /// A variant, see `getQualified`.
    ZNamedTypeArrayType(const ZSelector& name, ZNamedTypeArrayType* main) : SyntheticType(name, main) {}

    ZType* copy() const override;

protected:
    ZMetaType* makeVariant(const ZSelector& name) override;
    bool fieldNames(const void* instance, ZArrayT<ZSelector>& names) const override;
    uint fieldCount(const void* instance) const override;
    ZMetaType* fieldType(const void* instance, const ZSelector& name) const override;
    ZVariant readField(const void* instance, const ZSelector& name) const override;
    bool writeField(void* instance, const ZSelector& name, const ZVariant& value) const override;
    bool clearField(void* instance, const ZSelector& name) const override;
};
