#include "core/ZError.h"
#include "object/ZMetaType.h"
#include "object/kindValues.h"
#include "text/ZBlendPos.h"
#include "value/ZVariant.h"
#include "value/variantTypes.h"

using namespace orv;

namespace {

/// Whether there is a value of the same type that means "nothing" to blend with.
bool hasIdentity(const ZVariant& value) {
    ZMetaType* main = value.mainType();
    if (!main || value.isNull()) return false;
    if (const ZType* instance = value.toType()) return instance->blendIdentity();
    return main->hasOption("blendidentity", true);
}

/// A detached copy that is the type's identity.
bool makeIdentity(const ZVariant& value, ZVariant& identity) {
    identity = value.copy();
    return !identity.isNull() && identity.setIdentity();
}

} // namespace

bool ZVariant::setIdentity() {
    void* value = getPtr();
    ZMetaType* own = valueType();
    if (!value || !own) return false;
    if (detail::hasPlainKind(own) && isInline()) {
        destructKind(own->kind(), value);
        constructKind(own->kind(), value, own->byteSize());
        return true;
    }
    return detach() && valueType()->setIdentityInstance(getPtr());
}

/// The blend of two values of one type, in a null variant; false leaves it null. `blended` is false where the type has
/// no blend for them.
bool ZVariant::initBlend(const ZVariant& a, const ZVariant& b, const ZBlendPos& pos, bool& blended) {
    ZMetaType* type = a.type();
    blended = true;
    if (a.isInline()) {
        if (!type->constructInstance(data)) {
            forget();
            return false;
        }
        typeBits = a.typeBits;
        if (type->blendInstance(data, a.data, b.data, pos)) return true;
        clear();
        blended = false;
        return true;
    }
    ZMetaType* own = a.valueType();
    if (!own || !a.held() || !b.held()) {
        blended = false;
        return true;
    }
    void* made = own->blendInstance(a.held(), b.held(), pos);
    if (!made) return false;
    if (own->holdsZType()) return initInstance(static_cast<ZType*>(made), false);
    setHeld(made);
    typeBits = a.typeBits;
    return true;
}

bool ZVariant::blendFrom(const ZVariant* a, const ZVariant* b, const ZBlendPos& pos) {
    ZFailGuard guard;
    ZVariant made, identity;
    bool done = true, blended = false;
    if (a && b) {
        if (a == b) return assign(*a);
        if (!a->type() != !b->type()) {
            const ZVariant& typed = a->type() ? *a : *b;
            if (hasIdentity(typed)) {
                if (!makeIdentity(typed, identity)) return guard.forget(), false;
                (a->type() ? b : a) = &identity;
            }
        }
        if (a->type() && a->type() == b->type()) done = made.initBlend(*a, *b, pos, blended);
        if (done && !blended) done = made.assign(pos.pos() > 0.5 ? *b : *a);
    } else if (const ZVariant* one = a ? a : b) {
        if (hasIdentity(*one)) {
            if (!makeIdentity(*one, identity)) return guard.forget(), false;
            (a ? b : a) = &identity;
            done = made.initBlend(*a, *b, pos, blended);
            if (done && !blended) done = made.assign(pos.pos() > 0.5 ? *b : *a);
        } else
            done = made.assign(*one);
    }
    if (!done) guard.forget();
    return take(made, done);
}
