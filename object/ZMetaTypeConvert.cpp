#include "core/construct.h"
#include "object/ZEnumType.h"
#include "object/ZMetaTypeData.h"
#include "object/glueRows.h"
#include "object/kindValues.h"
#include "object/methodArguments.h"
#include "object/packageTypes.h"
#include "value/ZVariant.h"
#include "value/variantTypes.h"

#include <cstring>

// Values of one type out of those of another: numbers and texts by their kinds, everything else by constructors that
// take one argument and aren't marked explicit.

namespace {

/// Calls `use(parameter)` with the parameter's type of each constructor that converts, until one answers false. The
/// rows of a declared type are asked, so that its table isn't built for this.
template <class F> void eachConversion(const ZMetaType* type, F use) {
    auto offer = [&](const ZSelector& signature) {
        if (signature.parcount() != 1) return true;
        // What is pointed to can't be converted in place.
        const ZSelector parameter = signature.param(0);
        if (parameter.ptrCount() > 0) return true;
        // Signatures spell a nested type behind its owner, so that the package finds it too, and builds nothing for it.
        const ZMetaType* source = orv::findPackageType(type->package(), parameter.mainType(), false);
        return !source || source->relationType() == type || use(const_cast<ZMetaType*>(source->relationType()));
    };
    if (const orv::glue::ClassRow* row = type->declaration()) {
        for (const orv::glue::MethodRow& method : row->methods)
            if (method.isLife && method.text[0] != '~' && !(method.flags & ZMethod::Explicit) && !offer(method.text))
                return;
        return;
    }
    toolkit::EpochGuard guard;
    ZArrayT<ZMethod*> methods;
    type->getMethodTypes(type->getName(), methods);
    for (const ZMethod* method : std::as_const(methods))
        if (method->isConstructor(type) && !(method->getFlags() & ZMethod::Explicit) && !offer(method->getSelector()))
            return;
}

/// What a variant holds, as the address of the value and the type of that.
struct Source {
    explicit Source(const ZVariant& variant)
        : type(variant.mainType()), value(const_cast<void*>(variant.getPtr())),
          counted(variant.type() && (variant.type()->isPointer() || variant.type()->holdsZType())) {}
    const ZMetaType* type;
    void* value;
    bool counted; ///< the value stands in a block of its own that can be retained
};

} // namespace

void ZMetaType::setupImplicitMap() {
    if (relationType() != this) return;
    ZListT<ZMetaType*> from;
    eachConversion(this, [&](ZMetaType* source) { return from.contains(source) || from.append(source); });
    clearImplicitMap();
    // A source that doesn't know of this type couldn't leave its list.
    ZListT<ZMetaType*> known;
    for (ZMetaType* source : from)
        if (known.append(source) && !source->changeImplicitTo(this, true)) known.remove(source);
    ZScopedLock held(own->basetype);
    own->implicitFrom = std::move(known);
}

bool ZMetaType::changeImplicitTo(ZMetaType* type, bool add) {
    ZScopedLock held(own->basetype);
    own->implicitTo.remove(type);
    return !add || own->implicitTo.append(type);
}
/// Forgets what this type can be made of.
void ZMetaType::clearImplicitMap() {
    ZListT<ZMetaType*> old;
    {
        ZScopedLock held(own->basetype);
        old = std::exchange(own->implicitFrom, {});
    }
    for (ZMetaType* source : old) source->changeImplicitTo(this, false);
}

template <class L> static ZArrayT<ZMetaType*> listed(const orv::MetaTypeData& data, const L& list) {
    ZArrayT<ZMetaType*> types;
    ZScopedReadLock held(data.basetype);
    for (ZMetaType* type : list)
        if (!types.append(type)) ZError::fail();
    return types;
}
ZArrayT<ZMetaType*> ZMetaType::getImplicitTo() const {
    const orv::MetaTypeData& data = *relationType()->own;
    return listed(data, data.implicitTo);
}
ZArrayT<ZMetaType*> ZMetaType::getImplicitFrom() const {
    const orv::MetaTypeData& data = *relationType()->own;
    return listed(data, data.implicitFrom);
}

ZMethod* ZMetaType::findImplicitConstructor(const ZMetaType* source) const {
    if (!source) return nullptr;
    const ZMetaType* type = relationType();
    toolkit::EpochGuard guard;
    ZArrayT<ZMethod*> methods;
    if (!type->getMethodTypes(type->own->name, methods)) return nullptr;
    ZMethod* best = nullptr;
    int nearest = 0;
    for (ZMethod* method : std::as_const(methods)) {
        if (method->paramCount() != 1 || (method->getFlags() & ZMethod::Explicit) || !method->isConstructor(type))
            continue;
        const ZMetaType* parameter = method->parType(1, type);
        if (!parameter || parameter->own->ptrCount || parameter->relationType() == type) continue;
        const int distance = source->distance(parameter, false);
        if (distance < 0 || (best && distance >= nearest)) continue;
        best = method;
        nearest = distance;
    }
    return best;
}

/// Builds a value in raw zeroed memory by a constructor that takes what the source holds.
bool ZMetaType::constructByMethod(void* instance, const ZVariant& source) {
    const Source from(source);
    if (!from.type || !from.value) return false;
    toolkit::EpochGuard guard;
    ZMethod* method = findImplicitConstructor(from.type->getDataType());
    if (!method || !method->hasStacked()) return false;
    const ZMetaType* parameter = method->parType(1, this);
    // The argument block: the tag, then the address for a reference or the bytes of a small value.
    struct [[gnu::packed]] {
        const __ZPassMetaType* tag;
        byte slot[8];
    } block{orv::passType(this), {}};
    alignas(8) byte number[8] = {};
    const void* value = from.value;
    int offset = 0;
    const int kind = parameter->kind(), sourceKind = from.type->kind();
    if (kind != sourceKind && orv::isNumberKind(kind)) {
        if (!orv::isNumberKind(sourceKind) || !parameter->constructNumber(number, *from.type, value)) return false;
        value = number;
    } else if (from.type->upcastOffset(parameter, offset))
        value = static_cast<const char*>(value) + offset;
    else
        return false;
    if (!orv::isPassable(parameter->getDataType(), value)) return false;
    if (parameter->isReference())
        std::memcpy(block.slot, &value, sizeof value);
    else if (kind == Float) {
        double wide = 0;
        orv::kindToReal(Float, value, wide);
        std::memcpy(block.slot, &wide, sizeof wide);
    } else if (parameter->byteSize() <= sizeof block.slot)
        std::memcpy(block.slot, value, parameter->byteSize());
    else
        return false;
    ZFailGuard failures;
    method->getStacked()(instance, method, &block);
    if (!failures.rose()) return true;
    destructInstance(instance);
    failures.forget();
    return false;
}

/// A number of this type out of another one; enumerations have sizes of their own.
bool ZMetaType::constructNumber(void* instance, const ZMetaType& type, const void* value) const {
    int kind = type.kind(), number;
    if (const ZEnumType* items = kind == Enum ? type.enumType() : nullptr) {
        number = items->valueOf(value);
        value = &number;
        kind = Int;
    }
    large wide;
    if (typeKind != Enum) return orv::convertKind(typeKind, instance, kind, value);
    return orv::kindToLarge(kind, value, wide) && orv::detail::setEnumNumber(this, instance, wide);
}

bool ZMetaType::constructFrom(void* instance, const ZVariant& source) {
    if (relationType() != this && !own->ptrCount)
        return const_cast<ZMetaType*>(relationType())->constructFrom(instance, source);
    const Source from(source);
    if (!instance || !from.type || typeKind >= Dynamic) return false;
    std::memset(instance, 0, typeSize);
    if (typeKind == Pointer) return constructPointer(instance, source);
    if (!from.value) return false;
    const int kind = from.type->kind();
    if (orv::isNumberKind(typeKind) && orv::isNumberKind(kind))
        return constructNumber(instance, *from.type, from.value);
    if (typeKind > Void && orv::isPlainKind(typeKind) && kind > Void && orv::isPlainKind(kind)) {
        orv::constructKind(typeKind, instance, typeSize);
        ZFailGuard guard;
        if (kind == typeKind)
            orv::copyKind(typeKind, instance, from.value, typeSize);
        else if (!fromString(instance, orv::kindToString(kind, from.value))) {
            orv::destructKind(typeKind, instance);
            return false;
        }
        if (!guard.rose()) return true;
        orv::destructKind(typeKind, instance);
        guard.forget();
        return false;
    }
    int offset = 0;
    if (from.type->upcastOffset(this, offset))
        return copyInstance(instance, static_cast<const char*>(from.value) + offset);
    if (constructByMethod(instance, source)) return true;
    // A text may stand for a value, and a value has a text.
    if (typeKind == String || typeKind == Selector) {
        ZString text;
        if (!from.type->toString(from.value, text)) return false;
        orv::constructKind(typeKind, instance, typeSize);
        return orv::kindFromString(typeKind, instance, text);
    }
    if ((kind != String && kind != Selector) || !instanceCallback(FromString1)) return false;
    std::memset(instance, 0, typeSize);
    if (!constructInstance(instance)) return false;
    if (fromString(instance, orv::kindToString(kind, from.value))) return true;
    destructInstance(instance);
    return false;
}

bool ZMetaType::constructPointer(void* instance, const ZVariant& source) {
    const Source from(source);
    ZMetaType* target = derefType();
    if (!target || target->kind() == Pointer || !from.counted) return false;
    void* held = nullptr;
    if (from.value) {
        int offset = 0;
        // A reference is counted in the head of the block, so it can't be one to a part further in.
        if (!from.type->upcastOffset(target, offset) || offset != 0) return false;
        held = target->actualType(from.value)->retainInstance(from.value);
        if (!held) return false;
    }
    std::memcpy(instance, &held, sizeof held);
    return true;
}

void* ZMetaType::createFrom(const ZVariant& source) {
    const Source from(source);
    if (!from.type || getAlignment() > 16) return nullptr;
    if (typeKind >= Dynamic && from.value && from.type->holdsZType() && from.type->typeOf(this))
        return static_cast<ZType*>(from.value)->copy();
    ZTypeLabel<ZMetaType> label;
    void* instance = __znalloc(typeSize);
    if (!instance) return nullptr;
    const bool done = typeKind >= Dynamic ? constructByMethod(instance, source) : constructFrom(instance, source);
    if (done) return instance;
    toolkit::freeBlock(instance);
    return nullptr;
}
