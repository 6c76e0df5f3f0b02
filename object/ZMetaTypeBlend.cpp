#include "object/ZDetachContext.h"
#include "object/ZMetaTypeData.h"
#include "object/ZProperty.h"
#include "object/kindValues.h"
#include "text/ZBlendPos.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

#include <cmath>
#include <cstring>

// Blending, identity and colour marks of values of a type, through untyped pointers.

namespace {

/// How deep values may stand in each other.
constexpr int deepest = 512;

ZType* asType(void* instance) { return static_cast<ZType*>(instance); }
const ZType* asType(const void* instance) { return static_cast<const ZType*>(instance); }
void* pointee(const void* instance) {
    void* held;
    std::memcpy(&held, instance, sizeof held);
    return held;
}
/// Of two values of which one may be missing, the one that the position is nearer to; null if that one is missing.
const void* nearer(const void* a, const void* b, const ZBlendPos& pos) { return pos.pos() > 0.5 ? b : a; }

/// Puts a copy of a value in the place of a constructed one. On failure the place holds the value that means nothing.
bool replaceValue(const ZMetaType* type, void* target, const void* source) {
    if (target == source) return true;
    if (orv::isPlainKind(type->kind())) {
        orv::copyKind(type->kind(), target, source, type->byteSize());
        return true;
    }
    if (type->holdsZType()) return asType(target)->assign(asType(source));
    // The new value first: what the old one holds may be all that keeps the source alive.
    alignas(16) byte small[64];
    const uint size = type->byteSize();
    void* room = size <= sizeof small ? small : __zalloc(size);
    if (!room) return false;
    const bool done = type->copyInstance(room, source);
    if (done) {
        type->destructInstance(target);
        std::memcpy(target, room, size);
    }
    if (room != small) zfree(room);
    return done;
}

/// A number between two. Integers are rounded to the nearest; 64 bits of them survive.
void blendNumbers(int kind, void* target, const void* a, const void* b, double pos) {
    if (orv::isRealKind(kind)) {
        double first = 0, second = 0;
        orv::kindToReal(kind, a, first);
        orv::kindToReal(kind, b, second);
        const double between = pos <= 0 ? first : pos >= 1 ? second : first + (second - first) * pos;
        orv::convertKind(kind, target, ZMetaType::Real, &between);
        return;
    }
    const bool wide = kind == ZMetaType::ULarge;
    large low = 0, high = 0;
    orv::kindToLarge(kind, a, low);
    orv::kindToLarge(kind, b, high);
    const long double first = wide ? (long double)(ularge(low)) : (long double)(low);
    const long double second = wide ? (long double)(ularge(high)) : (long double)(high);
    const long double place = pos <= 0 ? first : pos >= 1 ? second : first + (second - first) * (long double)(pos);
    const long double rounded = std::roundl(place);
    const large whole = wide ? large(ularge(rounded)) : large(rounded);
    orv::convertKind(kind, target, ZMetaType::Large, &whole);
}

/// Calls a declared operation with up to two words behind the instance; false if it answers so, or `otherwise` if the
/// type declares none.
bool callBool(const ZMetaType* type, ZMethod* method, const void* instance, const void* const* words, int count,
              bool otherwise) {
    if (!method || method->fastWords() != count) return otherwise;
    int offset = 0;
    if (method->getOwner() && !type->upcastOffset(method->getOwner(), offset)) return otherwise;
    const void* at = static_cast<const char*>(instance) + offset;
    auto entry = reinterpret_cast<ZTypeCallback>(method->getFunc());
    void* word = count == 0   ? method->getFunc()(at, method)
                 : count == 1 ? reinterpret_cast<orv::MethodWords1>(entry)(at, method, words[0])
                              : reinterpret_cast<orv::MethodWords3>(entry)(at, method, words[0], words[1], words[2]);
    bool answer;
    std::memcpy(&answer, &word, sizeof answer);
    return answer;
}
bool callBlend(const ZMetaType* type, ZMethod* method, void* instance, const void* a, const void* b,
               const ZBlendPos& pos) {
    const void* words[] = {a, b, &pos};
    return callBool(type, method, instance, words, 3, true);
}

/// Calls `use(entry)` for each stored property that isn't left out by `without`, until one answers false.
template <class F> bool eachStored(const ZMetaType* type, uint without, F use) {
    toolkit::EpochGuard guard;
    const orv::StoredList* list = orv::storedOf(type);
    if (!list) return false;
    for (uint i = 0; i < list->count; ++i) {
        const orv::StoredProperty& entry = list->entries()[i];
        if (!(entry.property->flags() & without) && !use(entry)) return false;
    }
    return true;
}
/// The field of a stored property, where it can be written in place; null if accessors have to be asked.
char* plainField(void* instance, const orv::StoredProperty& entry) {
    const ZMetaType* type = entry.property->value().type();
    const bool direct = type && entry.offset >= 0 && type->kind() != ZMetaType::Pointer && !type->holdsZType();
    return instance && direct ? static_cast<char*>(instance) + entry.offset : nullptr;
}
const char* plainField(const void* instance, const orv::StoredProperty& entry) {
    return plainField(const_cast<void*>(instance), entry);
}
ZVariant readStored(const ZMetaType* type, const void* instance, const ZSelector& name) {
    return instance ? ZTypedPtr(const_cast<ZMetaType*>(type), instance).getProperty(name) : ZVariant();
}
bool writeStored(const ZMetaType* type, void* instance, const ZSelector& name, const ZVariant& value) {
    return ZTypedPtr(const_cast<ZMetaType*>(type), instance).setProperty(name, value);
}

} // namespace

// Blending

bool ZMetaType::blendStoredLocal(void* instance, const void* a, const void* b, const ZBlendPos& pos) const {
    if (!instance) return false;
    if (typeKind >= Dynamic) return asType(instance)->blendLocal(asType(a), asType(b), pos);
    toolkit::EpochGuard guard;
    return callBlend(this, getBlendLocalMethod(), instance, a, b, pos);
}

bool ZMetaType::blendStoredProperties(void* instance, const void* a, const void* b, const ZBlendPos& pos) const {
    if (!instance) return false;
    return eachStored(this, ZProperty::NoBlend | ZProperty::ReadOnly, [&](const orv::StoredProperty& entry) {
        const ZSelector& name = entry.property->name();
        const ZBlendPos part = pos.fieldBlend(name);
        if (char* field = plainField(instance, entry)) {
            const ZMetaType* type = entry.property->value().type();
            return type->blendInstance(field, plainField(a, entry), plainField(b, entry), part);
        }
        ZVariant first = readStored(this, a, name), second = readStored(this, b, name);
        if (typeKind >= Dynamic) {
            // A class may align values, or leave one out.
            if (a && !asType(a)->adjustBlendProperty(name, first)) return true;
            if (b && !asType(b)->adjustBlendProperty(name, second)) return true;
        }
        return writeStored(this, instance, name, ZVariant(a ? &first : nullptr, b ? &second : nullptr, part));
    });
}

bool ZMetaType::blendInstance(void* instance, const void* a, const void* b, const ZBlendPos& pos) const {
    if (!instance || (!a && !b)) return false;
    if (typeKind >= Dynamic) return asType(instance)->blendFrom(asType(a), asType(b), pos);
    const bool picked = typeKind <= Bool || typeKind == Enum || typeKind == Selector || typeKind == String;
    if (picked) {
        const void* taken = nearer(a, b, pos);
        return !taken || replaceValue(this, instance, taken);
    }
    if (orv::isNumberKind(typeKind)) {
        if (!a || !b) return replaceValue(this, instance, a ? a : b);
        blendNumbers(typeKind, instance, a, b, pos.pos());
        return true;
    }
    if (typeKind == Pointer) return blendPointer(instance, a, b, pos);
    if (a && b && blendable()) {
        toolkit::EpochGuard guard;
        if (ZMethod* method = getBlendMethod()) return callBlend(this, method, instance, a, b, pos);
        if (storedPropertyCount() > 0) {
            if (!replaceValue(this, instance, nearer(a, b, pos))) return false;
            return blendStoredProperties(instance, a, b, pos) && blendStoredLocal(instance, a, b, pos);
        }
    }
    return replaceValue(this, instance, a && b ? nearer(a, b, pos) : a ? a : b);
}

bool ZMetaType::blendPointer(void* instance, const void* a, const void* b, const ZBlendPos& pos) const {
    void *first = a ? pointee(a) : nullptr, *second = b ? pointee(b) : nullptr;
    ZMetaType* target = derefType();
    if (!target || target->kind() == Pointer)
        return replaceValue(this, instance, a && b ? nearer(a, b, pos) : a ? a : b);
    void* made = nullptr;
    if (first && second && target->actualType(first) == target->actualType(second)) {
        made = target->actualType(first)->blendInstance(first, second, pos);
        if (!made) return false;
    } else if (void* taken = const_cast<void*>(first && second ? nearer(first, second, pos) : first ? first : second))
        made = target->actualType(taken)->retainInstance(taken);
    void* old = pointee(instance);
    std::memcpy(instance, &made, sizeof made);
    if (old) target->actualType(old)->releaseInstance(old);
    return true;
}

void* ZMetaType::blendInstance(const void* a, const void* b, const ZBlendPos& pos) const {
    if (!a && !b) return nullptr;
    if (typeKind >= Dynamic) return blendType(asType(a), asType(b), pos);
    void* made = copyInstance(a ? a : b);
    if (!made || blendInstance(made, a, b, pos)) return made;
    releaseInstance(made);
    return nullptr;
}

ZType* ZMetaType::blendType(const ZType* a, const ZType* b, const ZBlendPos& pos) const {
    const ZType* taken = a && b ? (pos.pos() > 0.5 ? b : a) : a ? a : b;
    if (!taken) return nullptr;
    ZType* made = taken->copy();
    // Instances of different types have nothing between them.
    if (!made || !a || !b || !a->sameType(b) || !blendable() || made->blendFrom(a, b, pos)) return made;
    made->release();
    return nullptr;
}

// Deep copies

/// Makes what a property holds its own. An object has an identity: without somebody who maps old to new it stays the
/// one it is.
static bool deepDetachHeld(ZVariant& value, ZDetachContext* context) {
    if (context) return context->detachVariant(value);
    return value.mainType()->isZObject() || value.deepDetach();
}
/// Numbers and texts are nobody's but their holder's.
static bool sharesNothing(const ZVariant& value) {
    const ZMetaType* type = value.mainType();
    return !type || type->kind() <= ZMetaType::Pointer;
}

static bool deepDetachDynamic(ZType& instance, ZDetachContext* context) {
    ZType::DynamicProperties& tree = instance.getDynamicProperties();
    if (tree.isEmpty()) return true;
    ZArrayT<ZSelector> names;
    if (!tree.detach() || !instance.dynamicPropertyNames(names)) return false;
    for (const ZSelector& name : names) {
        const ZPropertyPtr* known = tree.find(name);
        const ZProperty* property = known ? known->property() : nullptr;
        if (!property || (property->flags() & (ZProperty::NoDetach | ZProperty::Linked))) continue;
        if (sharesNothing(property->value())) continue;
        ZPropertyPtr* own = tree.edit(known);
        ZProperty* record = own && own->detach() ? own->property()->retain() : nullptr;
        if (!record) return false;
        const bool done = deepDetachHeld(const_cast<ZVariant&>(record->value()), context);
        record->release();
        if (!done) return false;
    }
    return true;
}

bool ZMetaType::deepDetachProperties(void* instance, ZDetachContext* context) const {
    if (!instance) return false;
    const bool done = eachStored(
        this, ZProperty::NoDetach | ZProperty::ReadOnly | ZProperty::Linked, [&](const orv::StoredProperty& entry) {
            if (char* field = plainField(instance, entry))
                return entry.property->value().type()->deepDetachInstance(field, context);
            ZVariant value = readStored(this, instance, entry.property->name());
            if (sharesNothing(value) || (!context && value.mainType()->isZObject())) return true;
            return deepDetachHeld(value, context) && writeStored(this, instance, entry.property->name(), value);
        });
    return done && (typeKind < Dynamic || deepDetachDynamic(*asType(instance), context));
}

bool ZMetaType::deepDetachInstance(void* instance, ZDetachContext* context) const {
    static constinit thread_local int depth = 0;
    if (!instance || depth >= deepest) return false;
    ++depth;
    bool done = detachInstance(instance);
    if (done && typeKind > Pointer) {
        const ZMetaType* actual = actualType(instance);
        toolkit::EpochGuard guard;
        const void* word = context;
        if (ZMethod* within =
                context ? actual->inlineOperation(orv::MetaTypeData::inlineDeepDetachWithin).getMethod() : nullptr)
            done = callBool(actual, within, instance, &word, 1, true);
        else if (ZMethod* alone = actual->inlineOperation(orv::MetaTypeData::inlineDeepDetach).getMethod())
            done = callBool(actual, alone, instance, nullptr, 0, true);
        else
            done = actual->deepDetachProperties(instance, context);
    }
    --depth;
    return done;
}

// Identity

bool ZMetaType::setIdentityStoredLocal(void* instance) const {
    if (!instance) return false;
    if (typeKind >= Dynamic) return asType(instance)->setLocalIdentity();
    toolkit::EpochGuard guard;
    return callBool(this, getSetLocalIdentityMethod(), instance, nullptr, 0, true);
}

bool ZMetaType::setIdentityStoredProperties(void* instance) const {
    if (!instance) return false;
    return eachStored(this, ZProperty::NoBlend | ZProperty::ReadOnly, [&](const orv::StoredProperty& entry) {
        if (char* field = plainField(instance, entry))
            return entry.property->value().type()->setIdentityInstance(field);
        ZVariant value = readStored(this, instance, entry.property->name());
        return value.isNull() || (value.setIdentity() && writeStored(this, instance, entry.property->name(), value));
    });
}

bool ZMetaType::setIdentityInstance(void* instance) const {
    if (!instance) return false;
    if (typeKind >= Dynamic) return asType(instance)->setIdentity();
    if (orv::isPlainKind(typeKind)) {
        orv::destructKind(typeKind, instance);
        orv::constructKind(typeKind, instance, typeSize);
        return true;
    }
    if (typeKind == Pointer) {
        void* held = pointee(instance);
        ZMetaType* target = derefType();
        if (!held || !target || target->kind() == Pointer) return true;
        // What is pointed to may be shared.
        ZMetaType* actual = target->actualType(held);
        void* made = actual->copyInstance(held);
        if (!made) return false;
        if (!actual->setIdentityInstance(made)) {
            actual->releaseInstance(made);
            return false;
        }
        std::memcpy(instance, &made, sizeof made);
        actual->releaseInstance(held);
        return true;
    }
    toolkit::EpochGuard guard;
    if (ZMethod* method = getSetIdentityMethod()) return callBool(this, method, instance, nullptr, 0, true);
    return setIdentityStoredProperties(instance) && setIdentityStoredLocal(instance);
}

// Colour marks. What marks and contexts are, the classes know that declare such operations.

bool ZMetaType::markCSPStoredLocal(const void* instance, ZCSPMarker* marker) const {
    if (!instance) return false;
    if (typeKind >= Dynamic) return asType(instance)->markLocal(marker);
    toolkit::EpochGuard guard;
    const void* word = marker;
    return callBool(this, getMarkLocalCSPMethod(), instance, &word, 1, true);
}
bool ZMetaType::markCSPStoredProperties(const void* instance, ZCSPMarker* marker) const {
    if (!instance || !allowCSPMark()) return instance != nullptr;
    return eachStored(this, ZProperty::NoMark, [&](const orv::StoredProperty& entry) {
        if (const char* field = plainField(instance, entry))
            return entry.property->value().type()->markCSPInstance(field, marker);
        const ZVariant value = readStored(this, instance, entry.property->name());
        const ZMetaType* type = value.mainType();
        return !type || !value.getPtr() || type->markCSPInstance(value.getPtr(), marker);
    });
}
bool ZMetaType::markCSPInstance(const void* instance, ZCSPMarker* marker) const {
    if (!instance || !allowCSPMark() || typeKind <= Pointer) return instance != nullptr;
    if (typeKind >= Dynamic) return asType(instance)->markcsp(marker);
    toolkit::EpochGuard guard;
    const void* word = marker;
    if (ZMethod* method = getMarkCSPMethod()) return callBool(this, method, instance, &word, 1, true);
    return markCSPStoredProperties(instance, marker) && markCSPStoredLocal(instance, marker);
}

bool ZMetaType::updateCSPStoredLocal(void* instance, const ZColorContext* context) const {
    if (!instance) return false;
    if (typeKind >= Dynamic) return asType(instance)->updateLocal(context);
    toolkit::EpochGuard guard;
    const void* word = context;
    return callBool(this, getUpdateLocalCSPMethod(), instance, &word, 1, true);
}
bool ZMetaType::updateCSPStoredProperties(void* instance, const ZColorContext* context) const {
    if (!instance || !allowCSPUpdate()) return instance != nullptr;
    return eachStored(this, ZProperty::NoUpdate | ZProperty::ReadOnly, [&](const orv::StoredProperty& entry) {
        if (char* field = plainField(instance, entry))
            return entry.property->value().type()->updateCSPInstance(field, context);
        ZVariant value = readStored(this, instance, entry.property->name());
        const ZMetaType* type = value.mainType();
        if (!type || !value.getPtr() || type->kind() <= Pointer) return true;
        return value.detach() && type->updateCSPInstance(value.getPtr(), context) &&
               writeStored(this, instance, entry.property->name(), value);
    });
}
bool ZMetaType::updateCSPInstance(void* instance, const ZColorContext* context) const {
    if (!instance || !allowCSPUpdate() || typeKind <= Pointer) return instance != nullptr;
    if (typeKind >= Dynamic) return asType(instance)->updatecsp(context);
    toolkit::EpochGuard guard;
    const void* word = context;
    if (ZMethod* method = getUpdateCSPMethod()) return callBool(this, method, instance, &word, 1, true);
    return updateCSPStoredProperties(instance, context) && updateCSPStoredLocal(instance, context);
}
