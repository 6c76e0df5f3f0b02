#pragma once

#include "object/ZMetaType.h"

namespace orv {

/// A metatype whose values have properties that no table holds: names of flags, members, words, keys. What derives from
/// it tells what a value has; the operations of properties, and a variant's typed forwards, come here. Any thread may
/// ask about values that nobody writes meanwhile.
class ORV_API SyntheticType : public ZMetaType {
public:
    uint syntheticPropertyCount(const ZTypedPtr& typed) const override;
    bool syntheticProperty(const ZTypedPtr& typed, const ZSelector& name, ZProperty& found,
                           bool resolve) const override;
    bool syntheticPropertyNames(const ZTypedPtr& typed, ZArrayT<ZSelector>& names) const override;
    bool hasSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const override;
    ZMetaType* getSyntheticPropertyType(const ZTypedPtr& typed, const ZSelector& name) const override;
    /// The null variant without the property, and without an instance.
    ZVariant getSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, bool expand) const override;
    /// False, with the value as it was, without the property, and for what can't be converted.
    bool clearSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const override;
    bool setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                              bool notify) const override;

protected:
    SyntheticType(ZPackage* package, const ZSelector& name, Type kind, const __ZPassMetaType* type,
                  ZInternal* internal);
    SyntheticType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                  const __ZPassMetaType* type, ZInternal* internal);
    SyntheticType(const SyntheticType* source, const __ZPassMetaType* type, ZInternal* internal)
        : ZMetaType(source, type, internal) {}
    /// A variant, which answers as its main type does.
    SyntheticType(const ZSelector& name, ZMetaType* main) : ZMetaType(main, name) {}

    // Of a value: null where a type alone is asked, which may still have properties.

    /// Appends; false without memory.
    virtual bool fieldNames(const void* instance, ZArrayT<ZSelector>& names) const = 0;
    virtual uint fieldCount(const void* instance) const = 0;
    /// Null if it has none of that name.
    virtual ZMetaType* fieldType(const void* instance, const ZSelector& name) const = 0;

    // Of a value that is there. These answer nothing, or false, without the property.

    virtual ZVariant readField(const void* instance, const ZSelector& name) const = 0;
    virtual bool writeField(void* instance, const ZSelector& name, const ZVariant& value) const = 0;
    /// Back to what a new value has.
    virtual bool clearField(void* instance, const ZSelector& name) const = 0;
};

} // namespace orv
