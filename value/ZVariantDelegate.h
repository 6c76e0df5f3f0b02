#pragma once

#include "object/ZObject.h"

/// A plain bag of named values, which are its dynamic properties: the delegate "property" that an object makes when a
/// property is delegated to it. Names are whole; what isn't in the bag isn't looked for elsewhere.
class ORV_API ZVariantDelegate : public ZObject {
public:
    explicit ZVariantDelegate(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZVariantDelegate(const ZVariantDelegate* source, const __ZPassMetaType* type = nullptr,
                              ZInternal* internal = nullptr);

    ZType* copy() const override;
    ZProperty* findProperty(ZTypedPtr* typed, const ZSelector& name, bool localOnly) const override;
    bool property(ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve) const override;
    bool property(const ZSelector& name, ZProperty& found, bool resolve) const override;
    bool property(const ZSelector& name, ZProperty& found) const override;
    bool hasPropDelegate(const ZSelector& name) const override;
    ZVariant getPropDelegate(const ZSelector& name) const override;
    /// Makes the value where there is none of that name; not of an empty name.
    bool setPropDelegate(const ZSelector& name, const ZVariant& value) override;
    bool removePropDelegate(const ZSelector& name) override;
};
