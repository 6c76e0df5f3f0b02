#include "value/ZVariantDelegate.h"

#include "core/construct.h"
#include "object/ZProperty.h"
#include "object/ztype.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

namespace {
const __ZPassMetaType* tagOr(const __ZPassMetaType* type) {
    return type ? type : orv::passType(ztype<ZVariantDelegate>());
}
} // namespace

ZVariantDelegate::ZVariantDelegate(const __ZPassMetaType* type, ZInternal* internal) : ZObject(tagOr(type), internal) {}
ZVariantDelegate::ZVariantDelegate(const ZVariantDelegate* source, const __ZPassMetaType* type, ZInternal* internal)
    : ZObject(source, tagOr(type), internal) {}

ZType* ZVariantDelegate::copy() const { return zmake<ZVariantDelegate>(this, orv::passType(metaType)); }

ZProperty* ZVariantDelegate::findProperty(ZTypedPtr* typed, const ZSelector& name, bool) const {
    ZProperty* found = dynamicProperty(name);
    if (found && typed) *typed = ZTypedPtr(this);
    return found;
}
bool ZVariantDelegate::property(ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool) const {
    if (!dynamicProperty(name, found)) return false;
    if (typed) *typed = ZTypedPtr(this);
    return true;
}
bool ZVariantDelegate::property(const ZSelector& name, ZProperty& found, bool resolve) const {
    return property(nullptr, name, found, resolve);
}
bool ZVariantDelegate::property(const ZSelector& name, ZProperty& found) const {
    return property(nullptr, name, found, false);
}

bool ZVariantDelegate::hasPropDelegate(const ZSelector& name) const { return hasDynamicProperty(name); }
ZVariant ZVariantDelegate::getPropDelegate(const ZSelector& name) const { return getDynamicProperty(name); }
bool ZVariantDelegate::setPropDelegate(const ZSelector& name, const ZVariant& value) {
    return !name.isEmpty() && setDynamicProperty(name, value, true);
}
bool ZVariantDelegate::removePropDelegate(const ZSelector& name) { return removeProperty(name); }
