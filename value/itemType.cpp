#include "value/itemType.h"

#include "object/ZDetachContext.h"
#include "object/kindValues.h"
#include "value/valueOrder.h"
#include "value/variantTypes.h"

namespace orv::item {
namespace {

int orderBytes(const void* a, const void* b, uint size) {
    int order = size ? std::memcmp(a, b, size) : 0;
    return (order > 0) - (order < 0);
}

} // namespace

ZMetaType* normalType(ZMetaType* type) {
    if (!type || type->kind() < ZMetaType::Selector) return type ? detail::variantType(type) : nullptr;
    type = detail::variantType(type);
    return type && type->holdsZType() ? type->getPtrType() : type;
}

void retainType(ZMetaType* type) {
    if (plain(type)) return;
    if (type->isLocalType()) retain(type);
    if (ZMetaType* main = type->mainOrSelf(); main != type && main->isLocalType()) retain(main);
}
void releaseType(ZMetaType* type) {
    if (plain(type)) return;
    ZMetaType* main = type->mainOrSelf();
    if (main == type || !main->isLocalType()) main = nullptr;
    if (type->isLocalType()) type->release();
    if (main) main->release();
}

bool holdable(const ZMetaType* type) { return type->byteSize() > 0 && alignmentOf(type) <= mostAlignment; }

uint alignmentOf(const ZMetaType* type) {
    if (!type) return 1;
    const uint alignment = type->getAlignment();
    return alignment ? alignment : 1;
}

bool isOf(const ZMetaType* type, const ZMetaType* wanted) {
    if (!type || !wanted) return false;
    const ZMetaType* main = type->mainOrSelf();
    return type == wanted || main == wanted || main->isBase(wanted);
}
bool isOf(const ZMetaType* type, const ZSelector& name) {
    if (!type || name.isEmpty()) return false;
    const ZMetaType* main = type->mainOrSelf();
    return type->getName() == name || main->getName() == name || main->isBase(name);
}
bool instances(const ZMetaType* type) { return detail::refersToInstance(type); }

bool make(ZMetaType* type, void* place, uint size) {
    if (plain(type) || type->kind() == ZMetaType::Pointer) {
        std::memset(place, 0, size);
        return true;
    }
    return type->constructInstance(place);
}

bool copy(const ZMetaType* type, void* place, const void* value, uint size) {
    if (plain(type)) {
        std::memcpy(place, value, type ? type->byteSize() : size);
        return true;
    }
    ZFailGuard guard;
    if (!type->copyInstance(place, value)) {
        guard.forget();
        return false;
    }
    if (!guard.rose()) return true;
    end(type, place);
    guard.forget();
    return false;
}

void end(const ZMetaType* type, void* value) {
    if (!plain(type)) type->destructInstance(value);
}

int order(const ZMetaType* type, const void* a, const void* b, uint size) {
    return type ? orderValues(type, a, b) : orderBytes(a, b, size);
}
uint hash(const ZMetaType* type, const void* value, uint size) {
    return type ? hashValue(type, value) : orv::hashKind(ZMetaType::Void, value, size);
}
int compare(const ZMetaType* type, const void* a, const void* b, uint size) {
    if (!type) return orderBytes(a, b, size);
    return plain(type) ? compareKind(type->kind(), a, b, type->byteSize()) : type->compareInstance(a, b);
}

bool deepDetach(ZMetaType* type, void* value, ZDetachContext& context) {
    if (plain(type)) return true;
    if (type->isVariant()) return context.detachVariant(*static_cast<ZVariant*>(value));
    if (!instances(type)) return type->detachInstance(value) && type->deepDetachInstance(value, &context);
    return context.detachHeld(*static_cast<ZType**>(value));
}

Given::Given(ZMetaType* type, const ZVariant& value) {
    if (!type) return;
    const ZVariant* source = &value;
    if (type->isVariant()) {
        raw = source;
        return;
    }
    if (type->kind() == ZMetaType::Pointer) {
        pointer = value.getPtr();
        if (value.type() == type)
            raw = &pointer;
        else if (instances(type)) {
            // A derived instance fits too, and so does none at all.
            if (!value.type() ? !pointer : value.isZType() && (!pointer || value.isType(type->mainOrSelf())))
                raw = &pointer;
        }
        return;
    }
    if (value.type() != type) {
        ZFailGuard guard;
        converted = value;
        if (guard.rose() || !converted.convert(type)) {
            guard.forget();
            return;
        }
        source = &converted;
    }
    raw = source->getPtr();
}

} // namespace orv::item
