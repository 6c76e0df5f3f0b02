#include "object/ZMetaType.h"
#include "object/ZPropertyPtr.h"
#include "object/ZType.h"
#include "text/ZBlendPos.h"
#include "value/ZVariant.h"

// Blending, identity and colour marks: what the class itself does is in its own overrides of the local operations; the
// rest goes over the declared and the dynamic properties.

namespace {

using Properties = ZType::DynamicProperties;

bool blended(const ZPropertyPtr* entry) {
    return entry && entry->property() && !entry->property()->hasFlags(ZProperty::NoBlend);
}
/// Puts the blend of two entries of one name, of which one may be missing, into a tree that is being built.
bool addBlended(Properties& tree, const ZPropertyPtr* a, const ZPropertyPtr* b, const ZBlendPos& pos) {
    ZPropertyPtr* made = (a ? a : b)->copy();
    if (!made) return false;
    const ZPropertyPtr* second = blended(b) ? b : nullptr;
    const bool kept = !blended(a) && !second;
    if ((kept || made->blendFrom(blended(a) ? a : nullptr, second, pos.fieldBlend(made->key()))) && tree.add(made))
        return true;
    made->release();
    return false;
}

/// The value of a property without a type of its own stays.
bool setIdentityOf(ZProperty& property) {
    if (!property.detach()) return false;
    ZVariant value = property.value();
    ZMetaType* type = value.mainType();
    if (!type) return true;
    if (!type->setIdentityInstance(value.getPtr())) return false;
    property.setValue(value);
    return true;
}

} // namespace

bool ZType::blendDynamicProperties(const ZType* a, const ZType* b, const ZBlendPos& pos) {
    // Values are blended by foreign code, which may change what it finds: so the trees are held.
    const Properties first = a ? a->dynamicProperties : Properties(), second = b ? b->dynamicProperties : Properties();
    Properties tree;
    for (const ZPropertyPtr& entry : first)
        if (!addBlended(tree, &entry, second.find(entry.key()), pos)) return false;
    for (const ZPropertyPtr& entry : second)
        if (!first.contains(entry.key()) && !addBlended(tree, nullptr, &entry, pos)) return false;
    dynamicProperties = std::move(tree);
    return true;
}

bool ZType::blendProperties(const ZType* a, const ZType* b, const ZBlendPos& pos) {
    return !metaType || metaType->blendStoredProperties(this, a, b, pos);
}
bool ZType::blendLocal(const ZType*, const ZType*, const ZBlendPos&) { return true; }
bool ZType::blendIdentity() const { return hasTypeOption("blendidentity", true); }
bool ZType::blendFrom(const ZType* a, const ZType* b, const ZBlendPos& pos) {
    return blendProperties(a, b, pos) && blendLocal(a, b, pos) && blendDynamicProperties(a, b, pos);
}

bool ZType::setIdentity() { return setIdentityProperties() && setLocalIdentity() && setIdentityDynamicProperties(); }
bool ZType::setIdentityProperties() { return !metaType || metaType->setIdentityStoredProperties(this); }
bool ZType::setLocalIdentity() { return true; }

bool ZType::setIdentityDynamicProperties() {
    const Properties held = dynamicProperties;
    Properties tree;
    for (const ZPropertyPtr& entry : held) {
        ZPropertyPtr* made = entry.copy();
        if (made && (!blended(made) || (made->detach() && setIdentityOf(*made->property()))) && tree.add(made))
            continue;
        if (made) made->release();
        return false;
    }
    dynamicProperties = std::move(tree);
    return true;
}

bool ZType::markLocal(ZCSPMarker*) const { return true; }
bool ZType::markcsp(ZCSPMarker* marker) const {
    return (!metaType || metaType->markCSPStoredProperties(this, marker)) && markLocal(marker);
}
bool ZType::updateLocal(const ZColorContext*) { return true; }
bool ZType::updatecsp(const ZColorContext* context) {
    return (!metaType || metaType->updateCSPStoredProperties(this, context)) && updateLocal(context);
}
