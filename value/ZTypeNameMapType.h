#pragma once

#include "value/ZVSelectMapType.h"

/// The type of `ZTypeNameMap`: as that of `ZVSelectMap`, but each property is of the type that the instance under its
/// name has.
class ORV_API ZTypeNameMapType : public ZVSelectMapType {
public:
    ZTypeNameMapType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                     const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZTypeNameMapType(const ZTypeNameMapType* source, const __ZPassMetaType* type = nullptr,
                              ZInternal* internal = nullptr);
    explicit ZTypeNameMapType(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    /// A variant, see `getQualified`.
    ZTypeNameMapType(const ZSelector& name, ZTypeNameMapType* main) : ZVSelectMapType(name, main) {}

    ZType* copy() const override;

protected:
    ZMetaType* makeVariant(const ZSelector& name) override;
    ZMetaType* fieldType(const void* instance, const ZSelector& name) const override;
};
