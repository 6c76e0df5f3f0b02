#pragma once

#include "object/SyntheticType.h"

/// The type of selectors. The words of a value are properties of kind bool, true for each that it has; a selector that
/// is no list of words is one word. Clearing a word, or setting it false, takes it out of the list, setting one that
/// isn't there to true adds it. The type itself has no properties without a value.
class ORV_API ZSelectorType : public orv::SyntheticType {
public:
    ZSelectorType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                  const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZSelectorType(const ZSelectorType* source, const __ZPassMetaType* type = nullptr,
                           ZInternal* internal = nullptr);
    explicit ZSelectorType(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    /// A variant, see `getQualified`.
    ZSelectorType(const ZSelector& name, ZSelectorType* main) : SyntheticType(name, main) {}

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
