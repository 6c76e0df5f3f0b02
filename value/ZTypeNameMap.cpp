#include "value/ZTypeNameMap.h"

#include "text/ZBlendPos.h"
#include "value/ZNamedTypeArray.h"

using namespace orv;

ZTypeNameMap::ZTypeNameMap() : ZVSelectMap(ztype<ZType>()) {}
ZTypeNameMap::ZTypeNameMap(uint capacity, int16 expand, uint hashBits)
    : ZVSelectMap(ztype<ZType>(), capacity, expand, hashBits) {}
ZTypeNameMap::ZTypeNameMap(const ZVariant& value) : ZTypeNameMap() {
    ZFailGuard guard;
    const ZNamedTypeArray items(value);
    if (guard.rose()) return;
    for (int i = 0; uint(i) < items.count(); ++i)
        if (!set(*items.keyPtr(i), items.get(i))) {
            clear();
            ZError::fail();
            return;
        }
}
ZTypeNameMap::ZTypeNameMap(const ZTypeNameMap* a, const ZTypeNameMap* b, const ZBlendPos& pos) : ZTypeNameMap() {
    if (!blendFrom(a, b, pos)) ZError::fail();
}

ZType* ZTypeNameMap::item(int index) const {
    const void* raw = valuePtr(index);
    return raw && isZType() ? *static_cast<ZType* const*>(raw) : nullptr;
}
bool ZTypeNameMap::set(const ZSelector& name, const ZType* instance) {
    // Made before the packages were open, it may lack its type.
    if (!isZType() && !setType(ztype<ZType>())) return false;
    return isZType() && (!instance || instance->refcount() > 0) && setItem(name, &instance);
}
int ZTypeNameMap::findPointer(const ZType* instance) const {
    for (int i = 0; uint(i) < count(); ++i)
        if (item(i) == instance) return i;
    return -1;
}
