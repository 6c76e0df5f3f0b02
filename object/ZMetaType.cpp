#include "object/ZMetaType.h"

#include "core/ZInternal.h"
#include "core/construct.h"
#include "core/memlock.h"
#include "object/ZBinding.h"
#include "object/ZInlineType.h"
#include "object/ZMetaTypeData.h"
#include "object/ZObjectData.h"
#include "object/kindValues.h"
#include "object/packageTypes.h"
#include "object/ztype.h"

#include <cstring>

namespace {

constexpr int metaRoom = orv::internalRoom(sizeof(orv::MetaTypeData));

/// The label of the lock of a type that is going: the text with its name goes before the lock does.
constexpr const char* lastLabel = "ZMetaType";
constexpr const char* labelStart = "ZMetaType - ";

/// The tag for a metatype that was given none.
const __ZPassMetaType* ownTag(const __ZPassMetaType* type) { return type ? type : orv::passType(ztype<ZMetaType>()); }

} // namespace

namespace orv {

MetaTypeData::MetaTypeData() {
    change.setLabel("ZMetaType::change_lock", 0);
    basetype.setLabel("ZMetaType::basetype_lock", 0);
    variants.setLabel("ZMetaType::variants_lock", 0);
}

} // namespace orv

// Lifetime

int ZMetaType::internalSizeOfType(bool whole) {
    return metaRoom + (whole ? orv::internalRoom(sizeof(orv::ObjectData)) : 0);
}

ZMetaType::ZMetaType(const __ZPassMetaType* type, ZInternal* given)
    : ZMetaType(nullptr, ZSelector(), Unknown, type, given) {}

ZMetaType::ZMetaType(ZPackage* package, const ZSelector& name, Type kind, const __ZPassMetaType* type, ZInternal* given)
    : ZObject(ownTag(type), ZInternal::direct(nullptr, internalSizeOfType(true), given)) {
    setup(name, kind);
    enterPackage(package);
}

ZMetaType::ZMetaType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& baseNames,
                     const __ZPassMetaType* type, ZInternal* given)
    : ZObject(ownTag(type), ZInternal::direct(nullptr, internalSizeOfType(true), given)) {
    setup(name, kind);
    if (!own) return;
    own->package = package;
    if (!setBaseNames(baseNames)) ZError::fail();
    enterPackage(package);
}

ZMetaType::ZMetaType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZMetaType*>& baseTypes,
                     const __ZPassMetaType* type, ZInternal* given)
    : ZObject(ownTag(type), ZInternal::direct(nullptr, internalSizeOfType(true), given)) {
    setup(name, kind);
    if (!own) return;
    if (!setBaseTypes(baseTypes)) ZError::fail();
    enterPackage(package);
}

ZMetaType::ZMetaType(const ZMetaType* source, const __ZPassMetaType* type, ZInternal* given)
    : ZObject(source, ownTag(type), ZInternal::direct(nullptr, internalSizeOfType(true), given)) {
    setup(source->own->name, source->typeKind);
    if (!own) return;
    typeSize = source->typeSize;
    copyRecord(*source->own);
    updateInline();
    updateWatch();
}

ZMetaType::ZMetaType(ZMetaType* main, const ZSelector& name)
    : ZObject(orv::passType(main->metaType), ZInternal::direct(nullptr, internalSizeOfType(true), nullptr)) {
    const int pointers = name.ptrCount();
    setup(name, pointers ? Pointer : main->typeKind);
    if (!own) return;
    mainType = main;
    own->package = main->own->package;
    own->qualifier = name.qualifier();
    if (!pointers) typeSize = main->typeSize;
    updateInline();
}

void ZMetaType::setup(const ZSelector& name, Type kind) {
    typeKind = kind;
    typeSize = orv::kindSize(kind);
    void* part = ZInternal::getmem(internal, nullptr, metaRoom);
    if (!part || !priv || !makelock(this, true, true)) {
        ZError::fail();
        return;
    }
    own = ::new (part) orv::MetaTypeData;
    labelLock(name);
    own->name = name;
    own->ptrCount = name.ptrCount();
    own->isReference = name.isReference();
    setIsMetaType(true);
    setSelector(name);
    if (!metaType) setTypeName("ZMetaType");
    updateInline();
}

/// The label's text isn't copied by the lock; the type keeps it.
void ZMetaType::labelLock(const ZSelector& name) {
    const size_t start = std::strlen(labelStart), length = size_t(name.length());
    auto text = static_cast<char*>(__zalloc(start + length + 1));
    if (!text) {
        ZError::fail();
        return;
    }
    std::memcpy(text, labelStart, start);
    if (length) std::memcpy(text + start, name.string(), length);
    text[start + length] = 0;
    own->lockLabel = text;
    setmemlocklabel(this, text, 0);
}

void ZMetaType::copyRecord(const orv::MetaTypeData& source) {
    {
        ZScopedReadLock held(source.change);
        copyFields(source);
    }
    if (!copyBases(source)) ZError::fail();
}
void ZMetaType::copyFields(const orv::MetaTypeData& source) {
    orv::MetaTypeData& to = *own;
    to.package = source.package;
    to.qualifier = source.qualifier;
    to.alignment = source.alignment;
    to.pluginId = source.pluginId;
    to.pluginPrefix = source.pluginPrefix;
    to.localName = source.localName;
    to.nameLabel = source.nameLabel;
    to.extraFlags = source.extraFlags;
    to.blockName = source.blockName;
    to.sandBoxName = source.sandBoxName;
    to.sandBoxLevel = source.sandBoxLevel;
    to.indexLabel = source.indexLabel;
    to.flags = source.flags;
    to.synthetic = source.synthetic;
    to.hasDynamicProperties = source.hasDynamicProperties;
    to.internalSize = source.internalSize;
    to.internalOffset = source.internalOffset;
    to.dynamicInternal = source.dynamicInternal;
    to.templateType = source.templateType;
    to.ownerType = source.ownerType;
    to.declaration = source.declaration;
    to.selectorGroups = source.selectorGroups;
    std::memcpy(to.callbacks, source.callbacks, sizeof to.callbacks);
}

ZMetaType::~ZMetaType() {
    if (!own) return;
    // Only an instance knows its private copy.
    if (!own->localType) {
        orv::typesRemoved();
        ZInlineType::forget(this);
    }
    ZBinding::removeType(this);
    dropObjects();
    dropCategories();
    clearVariants();
    clearLinkedTypes();
    clearSubTypes();
    setSingleton(nullptr);
    setTypeDelegates({});
    leaveMainType();
    if (own->package && !mainType) orv::unlinkPackageType(own->package, this);
    setmemlocklabel(this, lastLabel, 0);
    zfree(own->lockLabel);
    orv::retireAncestors(own->ancestors.publish(nullptr));
    orv::retireStored(own->stored.publish(nullptr));
    own->~MetaTypeData();
    own = nullptr;
}

ZType* ZMetaType::copy() const { return zmake<ZMetaType>(this, orv::passType(metaType)); }

bool ZMetaType::initialize() {
    using Callback = bool (*)(ZMetaType*);
    auto callback = getCallback(Initialize);
    return !callback || reinterpret_cast<Callback>(callback)(this);
}

const orv::glue::ClassRow* ZMetaType::declaration() const { return own->declaration; }
void ZMetaType::setDeclaration(const orv::glue::ClassRow* row) { own->declaration = row; }

/// A type without a package isn't found by name; whoever made it holds it.
void ZMetaType::enterPackage(ZPackage* package) {
    if (!own) return;
    own->package = package;
    if (own->name.type() == ZSelector::Template) initTemplateType(own->name);
    if (package && !orv::linkPackageType(package, this)) {
        own->package = nullptr;
        ZError::fail();
    }
}

// Size and kind

void ZMetaType::updateInline() {
    const uint alignment = getAlignment();
    inlineValue = typeKind < Dynamic && typeKind != Pointer && typeSize <= 16 && alignment <= 8;
    ZScopedReadLock held(own->variants);
    for (const auto& entry : own->qualified) {
        ZMetaType* variant = entry.value();
        if (variant->own->ptrCount) continue;
        variant->typeKind = typeKind;
        variant->typeSize = typeSize;
        variant->inlineValue = inlineValue;
    }
}

ZMetaType::Type ZMetaType::getType() const { return typeKind; }
ZMetaType::Type ZMetaType::getType(bool data) const { return data ? getDataType()->typeKind : typeKind; }
void ZMetaType::setTypeType(Type kind) {
    typeKind = kind;
    updateInline();
    orv::typesChanged();
}
uint ZMetaType::getSize() const { return typeSize; }
void ZMetaType::setSize(uint bytes) {
    typeSize = bytes;
    updateInline();
}

uint ZMetaType::getAlignment() const {
    const ZMetaType* type = typeKind == Pointer ? this : described();
    if (type->own->alignment) return type->own->alignment;
    if (typeKind >= Dynamic) return 16;
    if (typeKind == Composite) return 1;
    const uint size = typeSize;
    // The largest power of two that divides the size bounds the alignment that a class of that size can have.
    const uint divisor = size & (0 - size);
    return divisor == 0 ? 1 : divisor < 8 ? divisor : 8;
}
void ZMetaType::setAlignment(uint bytes) {
    own->alignment = bytes;
    updateInline();
}

bool ZMetaType::isZType() const { return typeKind >= Dynamic; }
bool ZMetaType::isZObject() const { return typeKind >= Object; }
bool ZMetaType::isReference() const { return own->isReference; }
bool ZMetaType::isPointer() const { return typeKind == Pointer; }
bool ZMetaType::primitive() const { return typeKind < Selector; }
int ZMetaType::getPtrCount() const { return own->ptrCount; }
bool ZMetaType::nullableStore() const { return isZType() || isPointer(); }
bool ZMetaType::atomicData() const {
    if (typeKind < Structure || typeKind == Atomic) return true;
    return typeKind <= Class && typeSize < 17;
}
bool ZMetaType::isVariant() const { return indexLabel() == Variant; }
bool ZMetaType::isZeroable() const { return typeKind <= Pointer || typeKind == Enum; }

// Flags

const ZMetaType* ZMetaType::described() const { return mainType && !own->localType ? mainType : this; }

uint ZMetaType::getFlags() const { return toolkit::load(described()->own->flags); }
void ZMetaType::setFlags(uint flags) {
    const uint old = toolkit::exchange(own->flags, flags);
    updateWatch();
    if ((old ^ flags) & Wrapper)
        orv::eachBase(this, [](ZMetaType* base) {
            base->resetWrapper();
            return true;
        });
    if (old != flags) orv::typesChanged();
}
bool ZMetaType::polymorphic() const { return getFlags() & Polymorphic; }
bool ZMetaType::storable() const { return getFlags() & Storable; }
bool ZMetaType::storageBase() const { return getFlags() & StorageBase; }
bool ZMetaType::pointerKey() const { return getFlags() & PointerKey; }
bool ZMetaType::isTraversed() const { return getFlags() & Traverse; }
bool ZMetaType::isContainer() const { return getFlags() & Container; }
bool ZMetaType::isVariable() const { return getFlags() & Variable; }
bool ZMetaType::spinLock() const { return !(getFlags() & Mutex); }

bool ZMetaType::hasWrapper() const { return (getFlags() & Wrapper) || toolkit::load(described()->own->wrapped); }
void ZMetaType::resetWrapper() {
    byte wrapped = 0;
    {
        ZScopedReadLock held(own->basetype);
        for (ZMetaType* type : own->descendants) wrapped |= byte(type->hasWrapper());
    }
    if (toolkit::exchange(own->wrapped, wrapped) == wrapped) return;
    orv::eachBase(this, [](ZMetaType* base) {
        base->resetWrapper();
        return true;
    });
}

bool ZMetaType::isSynthetic() const { return toolkit::load(described()->own->synthetic); }
void ZMetaType::setSynthetic(bool on) { toolkit::store(own->synthetic, on); }
bool ZMetaType::hasDynamicProperties() const { return toolkit::load(described()->own->hasDynamicProperties); }
void ZMetaType::setDynamicProperties(bool on) {
    toolkit::store(own->hasDynamicProperties, on);
    updateWatch();
    if (!on) return;
    for (ZMetaType* type : getDescendants())
        if (!type->hasDynamicProperties()) type->setDynamicProperties(true);
}
bool ZMetaType::isLocalType() const { return own->localType; }
void ZMetaType::setLocalType(bool on) {
    own->localType = on;
    updateWatch();
}
bool ZMetaType::retainedType() const { return own->retainedType; }
void ZMetaType::setRetainedType(bool on) {
    own->retainedType = on;
    updateWatch();
}
void ZMetaType::updateWatch() {
    toolkit::store(watchesInstances, own->localType || own->retainedType || toolkit::load(own->hasDynamicProperties) ||
                                         (toolkit::load(own->flags) & Lockable));
}
int ZMetaType::indexLabel() const { return described()->own->indexLabel; }
void ZMetaType::setIndexLabel(int label) { own->indexLabel = label; }

// Private parts of instances

uint ZMetaType::getInternalSize() const { return (own->internalSize + 15) & ~15u; }
void ZMetaType::setInternalSize(uint bytes) {
    if (own->internalSize == bytes) return;
    own->internalSize = bytes;
    orv::typesChanged();
}
bool ZMetaType::dynamicInternal() const { return own->dynamicInternal; }
void ZMetaType::setDynamicInternal(bool on) { own->dynamicInternal = on; }
int ZMetaType::internalOffset() const { return own->internalOffset; }
void ZMetaType::setInternalOffset(int bytes) { own->internalOffset = bytes; }

/// Asked for each new instance, so the sum is kept until types change.
int ZMetaType::calcInternalSize(bool whole) const {
    ularge size = getInternalSize();
    if (!whole) return int(size);
    const uint now = uint(orv::typeGeneration());
    const ularge known = toolkit::load(own->wholeInternalSize);
    if (ORV_LIKELY(uint(known >> 32) == now)) return int(uint(known));
    toolkit::EpochGuard guard;
    const orv::AncestorList* list = orv::ancestorsOf(this);
    if (!list) return -1;
    for (const orv::Ancestor *at = list->entries(), *end = at + list->count; at < end; ++at)
        if (!at->isAlias) size += at->type->getInternalSize();
    const int whole32 = size > 0x7FFFFFFF ? -1 : int(size);
    toolkit::store(own->wholeInternalSize, ularge(now) << 32 | uint(whole32));
    return whole32;
}

// Callbacks

ZTypeCallback ZMetaType::getCallback(CallBack index) const {
    if (uint(index) >= CallBackCount) return nullptr;
    // What a pointer points to has its own callbacks.
    const ZMetaType* type = typeKind == Pointer ? this : described();
    return toolkit::loadAcquire(type->own->callbacks[index]);
}
void ZMetaType::setCallback(CallBack index, ZTypeCallback function) {
    if (uint(index) >= CallBackCount) return;
    toolkit::storeRelease(own->callbacks[index], function);
    // A table that somebody asked for before is built anew.
    if (index == CreateMethods) resetMethodTypes();
    if (index == CreateProperties) orv::resetProperties(this);
    if (index != CreateTypes && index != CreateDispatch) return;
    ZScopedLock held(own->change);
    toolkit::addFetch(index == CreateTypes ? own->typesResets : own->dispatchResets, 1u);
    toolkit::storeRelease(index == CreateTypes ? own->typesState : own->dispatchState, byte(orv::tableUnbuilt));
}
