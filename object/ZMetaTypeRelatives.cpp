#include "core/construct.h"
#include "core/debug.h"
#include "object/ZMetaTypeData.h"

// Qualified variants, local copies, and the types that a type stands for.

namespace {

/// A name says what its variant is: words in front, "*" behind, "&" at the end.
constexpr int mostPointers = 4;

bool allowedVariant(const ZMetaType* main, const ZSelector& name) {
    const ZSelector plain = name.mainType();
    return name.ptrCount() <= mostPointers && (plain == main->getName() || plain == main->signatureName());
}

/// The name with one "*" less, or without its "&".
ZSelector derefName(const ZSelector& name) {
    const int length = name.length();
    const char end = name.at(length - 1);
    return end == '*' || end == '&' ? ZSelector(name.string(), length - 1) : name;
}

} // namespace

// What a type stands for

ZMetaType* ZMetaType::getMainType() const { return mainType; }

ZMetaType* ZMetaType::rootType() const {
    const ZMetaType* type = this;
    while (type->mainType) type = type->mainType;
    return const_cast<ZMetaType*>(type);
}

ZMetaType* ZMetaType::getDataType() const { return const_cast<ZMetaType*>(described()); }

ZMetaType* ZMetaType::getValueType() const {
    if (!mainType || own->localType) return const_cast<ZMetaType*>(this);
    if (!own->ptrCount && !own->isReference) return mainType;
    // A reference to a pointer: what it refers to is a pointer.
    const ZSelector name = own->isReference ? derefName(own->name) : own->name;
    return name == own->name ? const_cast<ZMetaType*>(this) : name.ptrCount() ? mainType->getQualified(name) : mainType;
}

ZMetaType* ZMetaType::derefType() const {
    if (!mainType || own->localType) return const_cast<ZMetaType*>(this);
    const ZSelector name = derefName(own->name);
    if (name == own->name) return mainType;
    return name == mainType->own->name ? mainType : mainType->getQualified(name);
}

ZMetaType* ZMetaType::getOwnerType() const { return toolkit::loadAcquire(described()->own->ownerType); }

// Qualified variants

ZMetaType* ZMetaType::findQualified(const ZSelector& name) const {
    const ZMetaType* main = relationType();
    if (name == main->own->name) return const_cast<ZMetaType*>(main);
    ZScopedReadLock held(main->own->variants);
    const auto* known = std::as_const(main->own->qualified).get(name);
    return known ? known->get() : nullptr;
}

ZMetaType* ZMetaType::getQualified(const ZSelector& name) const {
    if (ZMetaType* known = findQualified(name)) return known;
    return const_cast<ZMetaType*>(relationType())->createQualified(name);
}

ZMetaType* ZMetaType::makeVariant(const ZSelector& name) { return zmake<ZMetaType>(this, name); }

ZMetaType* ZMetaType::createQualified(const ZSelector& name) {
    if (relationType() != this) return const_cast<ZMetaType*>(relationType())->createQualified(name);
    if (!allowedVariant(this, name)) {
        zdebug("%s is no variant of type %s\n", name.string(), own->name.string());
        return nullptr;
    }
    ZMetaType* made = makeVariant(name);
    if (!made) return nullptr;
    ZMetaType* known = nullptr;
    {
        ZScopedLock held(own->variants);
        if (const auto* there = std::as_const(own->qualified).get(name))
            known = there->get();
        else if (own->qualified.set(ZRetainKeyT<ZSelector, ZMetaType>(name, made)))
            known = made;
    }
    // The table holds it; or it came too late, or there was no memory.
    made->release();
    return known;
}

ZMetaType* ZMetaType::getPtrType() const {
    const ZMetaType* main = relationType();
    if (main == this)
        if (ZMetaType* known = toolkit::loadAcquire(own->pointerType)) return known;
    ZMetaType* found = getQualified(derefReference().ptrName(1));
    if (main == this && found) toolkit::storeRelease(own->pointerType, found);
    return found;
}
ZMetaType* ZMetaType::getConstType() const {
    return own->qualifier.contains("const") ? const_cast<ZMetaType*>(this)
                                            : getQualified(ZSelector("const").combine(own->name));
}
ZMetaType* ZMetaType::getConstPtrType() const {
    const ZMetaType* main = relationType();
    if (main == this)
        if (ZMetaType* known = toolkit::loadAcquire(own->constPointerType)) return known;
    const ZSelector pointer = derefReference().ptrName(1);
    ZMetaType* found = getQualified(own->qualifier.contains("const") ? pointer : ZSelector("const").combine(pointer));
    if (main == this && found) toolkit::storeRelease(own->constPointerType, found);
    return found;
}
ZSelector ZMetaType::derefReference() const { return own->isReference ? derefName(own->name) : own->name; }

ZMetaType::Types ZMetaType::getVariants() const {
    ZScopedReadLock held(own->variants);
    return own->qualified;
}
bool ZMetaType::getVariants(ZArrayT<ZMetaType*>& variants) const {
    for (const auto& entry : getVariants())
        if (!variants.append(entry.value().get())) return false;
    return true;
}

void ZMetaType::clearVariants() {
    toolkit::storeRelease(own->pointerType, nullptr);
    toolkit::storeRelease(own->constPointerType, nullptr);
    Types gone;
    {
        ZScopedLock held(own->variants);
        gone.swap(own->qualified);
    }
    if (gone.isEmpty()) return;
    orv::typesRemoved();
    // Whoever still holds one has a type of its own now, with what it knew of this one.
    for (const auto& entry : std::as_const(gone)) entry.value()->standAlone();
}

void ZMetaType::standAlone() {
    if (mainType) own->flags = mainType->own->flags;
    mainType = nullptr;
}

// Sameness and copies

bool ZMetaType::isSameType(const ZMetaType* other) const {
    return other && (other == this || (own->ptrCount == other->own->ptrCount && rootType() == other->rootType()));
}

bool ZMetaType::canCopyType() const { return relationType() == this; }

ZMetaType* ZMetaType::copyType() const {
    if (!canCopyType()) return nullptr;
    using Copy = ZMetaType* (*)(const ZMetaType*);
    auto callback = getCallback(CopyType);
    auto made = callback ? reinterpret_cast<Copy>(callback)(this) : static_cast<ZMetaType*>(copy());
    if (!made) return nullptr;
    auto main = const_cast<ZMetaType*>(this);
    bool listed;
    {
        ZScopedLock held(own->variants);
        listed = own->copies.append(made);
    }
    if (!listed) {
        made->release();
        return nullptr;
    }
    // A copy may outlive its package, but not what it was made from.
    main->retain();
    made->mainType = main;
    made->setLocalType(true);
    return made;
}

void ZMetaType::leaveMainType() {
    ZMetaType* main = std::exchange(mainType, nullptr);
    if (!main || !own->localType) return;
    {
        ZScopedLock held(main->own->variants);
        main->own->copies.remove(this);
    }
    main->release();
}

bool ZMetaType::isLocalOf(const ZMetaType* other) const {
    if (!own->localType) return false;
    for (const ZMetaType* type = mainType; type; type = type->mainType)
        if (type == other) return true;
    return false;
}

template <class F> static ZMetaType* findCopy(const orv::MetaTypeData& data, F&& matches) {
    ZScopedReadLock held(data.variants);
    for (ZMetaType* type : data.copies)
        if (matches(type)) return type;
    return nullptr;
}
ZMetaType* ZMetaType::findCopyType(const ZSelector& name) const {
    return findCopy(*own, [&](const ZMetaType* type) { return type->selector() == name; });
}
ZMetaType* ZMetaType::findLocal(const ZSelector& name) const {
    return findCopy(*own, [&](const ZMetaType* type) { return type->getLocalName() == name; });
}
ZArrayT<ZMetaType*> ZMetaType::getCopies() const {
    ZArrayT<ZMetaType*> types;
    ZScopedReadLock held(own->variants);
    for (ZMetaType* type : own->copies)
        if (!types.append(type)) ZError::fail();
    return types;
}

// Links that hold types in a circle

void ZMetaType::clearLinkedTypes() {
    releaseBases();
    releaseAliases();
    clearImplicitMap();
    ZListT<ZMetaType*> targets;
    {
        ZScopedLock held(own->basetype);
        targets = std::exchange(own->implicitTo, {});
    }
    for (ZMetaType* target : targets) {
        ZScopedLock held(target->own->basetype);
        target->own->implicitFrom.remove(this);
    }
    toolkit::storeRelease(own->templateType, nullptr);
}
