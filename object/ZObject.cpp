#include "object/ZObject.h"

#include "core/ZInternal.h"
#include "core/construct.h"
#include "core/debug.h"
#include "core/state.h"
#include "object/ZBinding.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethodRef.h"
#include "object/ZObjectData.h"
#include "object/ZPropertyPtr.h"
#include "object/inlineLinks.h"
#include "object/ztype.h"
#include "toolkit/thread.h"

using orv::ObjectData;

namespace {

constexpr int room = orv::internalRoom(sizeof(ObjectData));

/// Objects whose last reference went while so many others are being destroyed on this thread wait for these: so the
/// depth of a tree doesn't count.
constexpr int destroyLimit = 48;
struct Destroying {
    int depth;
    ZObject *first, *last;
};
ORV_THREAD_LOCAL Destroying destroying{};

/// Copies under way on this thread, one within the other.
ORV_THREAD_LOCAL int copyDepth = 0;

/// The type of an object whose class didn't say: none while types are still without one themselves.
const __ZPassMetaType* ownType(const __ZPassMetaType* given) {
    return given || !ztype<ZMetaType>() ? given : orv::passType(ztype<ZObject>());
}
ZInternal* internalBlock(const ZMetaType* type, ZInternal* given) {
    if (given) return ZInternal::create(nullptr, room, given);
    const int whole = type ? type->calcInternalSize(true) : room;
    return ZInternal::create(nullptr, whole > room ? whole : room, nullptr);
}
ObjectData* makePart(ZObject* object, ZInternal* block) {
    if (void* memory = ZInternal::getmem(block, nullptr, room)) return ::new (memory) ObjectData(object);
    ZError::fail();
    return nullptr;
}

} // namespace

namespace orv {

bool LazyLock::lock(const char* label) {
    TLockId known = toolkit::loadAcquire(id);
    if (ORV_UNLIKELY(!known)) {
        if (!toolkit::load(coreState.bound) || !toolkit::load(coreState.allowLocking)) return true;
        const TLockId made = toolkit::createLock(true, true);
        if (!made) return false;
        toolkit::setLockLabel(made, label, 0);
        if (toolkit::compareExchange(id, known, made))
            known = made;
        else
            toolkit::destroyLock(made, false);
    }
    toolkit::lockAlone(known);
    return true;
}

void ObjectData::set(uint mask, bool on) {
    uint seen = toolkit::load(bits);
    while (!toolkit::compareExchange(bits, seen, on ? seen | mask : seen & ~mask)) {}
}

// Open addressing; a name leads to its place by multiplication.

NameIndex* NameIndex::make(uint count) {
    uint places = 16;
    while (places < count * 2) places *= 2;
    auto index = static_cast<NameIndex*>(toolkit::allocZeroedBlock(sizeof(NameIndex) + size_t(places) * sizeof(Entry)));
    if (!index) return nullptr;
    index->mask = places - 1;
    index->free = places * 3 / 4;
    return index;
}
void NameIndex::drop(NameIndex*& index) { zfree(toolkit::exchange(index, nullptr)); }
NameIndex::Entry* NameIndex::entry(uint name) const {
    for (uint at = name * 0x9E3779B1u;; ++at) {
        Entry* place = entries() + (at & mask);
        if (place->name == name || !place->name) return place;
    }
}
bool NameIndex::add(ZObject* object) {
    const uint name = ObjectData::at(object).selector.key();
    if (!name) return true;
    Entry* place = entry(name);
    if (place->name) return true;
    if (!free) return false;
    --free;
    *place = {name, object};
    return true;
}

} // namespace orv

// Lifetime

ZObject::ZObject(const __ZPassMetaType* type, ZInternal* given)
    : ZType(ownType(type)), internal(internalBlock(metaType, given)), priv(makePart(this, internal)) {
    if (priv) enlist();
}

ZObject::ZObject(const ZObject* source, const __ZPassMetaType* type, ZInternal* given)
    : ZType(source, ownType(type)), internal(internalBlock(metaType, given)), priv(makePart(this, internal)) {
    if (!priv) return;
    enlist();
    ObjectData* from = source ? ObjectData::of(source) : nullptr;
    if (!from) return;
    if (orv::SharedName::Former none; !priv->selector.set(from->selector.get(), none)) ZError::fail();
    // The copy has no delegates from which methods of extensions could be worked out later.
    if (from->has(ObjectData::ExtStale) && !orv::freshExtension(source)) {
        ZError::fail();
        return;
    }
    priv->delegateType = toolkit::load(from->delegateType);
    priv->parentDelegate = from->parentDelegate;
    priv->set(toolkit::load(from->bits) & ObjectData::Copied, true);
    if (from->has(ObjectData::Methods | ObjectData::ExtMethods | ObjectData::Dispatch)) {
        orv::ObjectWrite own(this);
        if (!own) {
            ZError::fail();
            return;
        }
        orv::ObjectRead held(*from);
        priv->methods = from->methods;
        priv->extMethods = from->extMethods;
        priv->dispatch = from->dispatch;
        // What entries find belongs to one object; copies of them haven't found anything.
        if (!priv->dispatch.detach()) {
            ZError::fail();
            return;
        }
        priv->set(toolkit::load(from->bits) & (ObjectData::Methods | ObjectData::ExtMethods | ObjectData::Dispatch),
                  true);
    }
    if (!from->has(ObjectData::CopyMembers) || !source->firstChild) return;
    if (++copyDepth > depthLimit) {
        ZError::fail();
    } else {
        for (ZObject* child = source->firstChild; child; child = child->nextSibling) {
            auto copied = static_cast<ZObject*>(child->copy());
            if (!copied) {
                ZError::fail();
                break;
            }
            copied->setParent(this);
            copied->release();
        }
    }
    --copyDepth;
}

ZObject::~ZObject() {
    if (priv) {
        if (priv->has(ObjectData::Published)) orv::forgetPublished(this);
        if (priv->has(ObjectData::PropertyDelegate)) orv::forgetPropertyDelegate(this);
        if (bindingSrc >= 0 || bindingDst >= 0 || orv::bindingStackTop) ZBinding::removeObject(this);
        ZMethodRef::dropInstance(this);
        for (ZInlineMethod* record : std::as_const(priv->inlineRecords)) orv::InlineLinks::forgetObject(record);
        while (ZObject* child = firstChild) {
            child->ZObject::unlink();
            child->release();
        }
        if (parent) ZObject::unlink();
        if (metaType && priv->has(ObjectData::TypeLinked)) metaType->unlinkObject(this);
        orv::dropDelegates(this);
        if (priv->has(ObjectData::ExtendTypes))
            for (ZMetaType* type : std::as_const(priv->extendTypes)) type->release();
        orv::dropPosts(*priv);
        orv::NameIndex::drop(priv->childNames);
        orv::NameIndex::drop(priv->delegateNames);
        priv->~ObjectData();
    }
    zfree(internal);
}

void ZObject::release() {
    if (decmemref(this) > 0) return;
    // Whoever gives up a reference that it got meanwhile comes here again.
    if (priv) {
        if (priv->has(ObjectData::Deleting)) return;
        // Who is calling it as the destination of a binding keeps it until that has ended.
        if (ORV_UNLIKELY(toolkit::loadAcquire(bindingDst) >= 0) && !ZBinding::leaveDestination(this)) return;
        priv->set(ObjectData::Deleting, true);
    }
    deleting();
    Destroying& now = destroying;
    if (priv && now.depth >= destroyLimit) {
        (now.last ? ObjectData::at(now.last).nextToDelete : now.first) = this;
        now.last = this;
        return;
    }
    ++now.depth;
    delete this;
    while (now.depth == 1 && now.first) {
        ZObject* waiting = now.first;
        now.first = ObjectData::at(waiting).nextToDelete;
        if (!now.first) now.last = nullptr;
        delete waiting;
    }
    --now.depth;
}

ZType* ZObject::copy() const {
    if (metaType && (metaType->instanceCallback(ZMetaType::CopyInstance1) || orv::isDeclared(metaType)))
        return ZType::copy();
    return zmake<ZObject>(this, orv::passType(metaType));
}

ZObject* ZObject::create(const ZSelector& typeName) {
    ZMetaType* type = ZMetaType::findExisting(typeName);
    return type && type->isZObject() ? static_cast<ZObject*>(type->createInstance()) : nullptr;
}

int ZObject::internalSizeOfType(bool) { return room; }

bool ZObject::log_verify() const {
    bool sound = checkMemory("ZObject", this) && checkMemory("ZObject internal", internal);
    uint count = 0;
    const ZObject* before = nullptr;
    for (const ZObject* child = firstChild; child && sound; before = child, child = child->nextSibling, ++count)
        sound = child->parent == this && child->prevSibling == before;
    if (!sound || before != lastChild || (priv && count != priv->childCount)) {
        zdebug("object %p: links of child %u are damaged", static_cast<const void*>(this), count);
        return false;
    }
    return true;
}

// Type

void ZObject::enlist() {
    if (!metaType) return;
    // Nobody knows the object yet.
    priv->bits |= ObjectData::TypeLinked;
    metaType->linkObject(this);
}
void ZObject::typeLink() {
    if (!priv || !metaType || priv->has(ObjectData::TypeLinked)) return;
    metaType->linkObject(this);
    priv->set(ObjectData::TypeLinked, true);
}
void ZObject::typeUnlink() {
    if (!priv || !priv->has(ObjectData::TypeLinked)) return;
    priv->set(ObjectData::TypeLinked, false);
    if (metaType) metaType->unlinkObject(this);
}
bool ZObject::isTypeLinked() const { return priv && priv->has(ObjectData::TypeLinked); }
ZObject* ZObject::getTypeNext() const { return typeNext; }
ZObject* ZObject::getTypePrev() const { return typePrev; }

bool ZObject::setType(ZMetaType* type) {
    if (type) return replaceType(type);
    typeUnlink();
    const bool done = ZType::setType(type);
    ZBinding::resetObject(this);
    return done;
}
bool ZObject::replaceType(ZMetaType* type) {
    if (!type || type == metaType) return type != nullptr;
    typeUnlink();
    const bool done = ZType::replaceType(type);
    typeLink();
    ZBinding::resetObject(this);
    return done;
}

ZSelector ZObject::getTypeName() const {
    if (metaType) return metaType->getName();
    return priv && !priv->typeName.isEmpty() ? priv->typeName : ZSelector("ZObject");
}
void ZObject::setTypeName(const ZSelector& name) {
    if (!metaType && priv) priv->typeName = name;
}
ZSelector ZObject::typeName() const { return getTypeName(); }
bool ZObject::isMetaType() const { return priv && priv->has(ObjectData::IsMetaType); }
void ZObject::setIsMetaType(bool on) {
    if (priv) priv->set(ObjectData::IsMetaType, on);
}

// Declared properties

ZSelector ZObject::selector() const { return priv ? priv->selector.get() : ZSelector(); }
void ZObject::setSelector(const ZSelector& name) {
    if (!priv || priv->selector.is(name)) return;
    if (!orv::rename(this, name)) {
        ZError::fail();
        return;
    }
    orv::nameChanged(this);
    if (globalNamed()) publishNamed();
}

ZObject::DelegateType ZObject::delegateType() const {
    return priv ? DelegateType(toolkit::load(priv->delegateType)) : None;
}
void ZObject::setDelegateType(DelegateType type) {
    if (priv) orv::delegateTypeChanged(this, type);
}
ZObject::DelegateType ZObject::parentDelegate() const { return priv ? DelegateType(priv->parentDelegate) : None; }
void ZObject::setParentDelegate(DelegateType type) {
    if (priv) priv->parentDelegate = type;
}

ZObject::DelegateType ZObject::scanDelegate(const ZSelector& words) {
    static constexpr struct {
        const char* word;
        DelegateType bit;
    } table[] = {{"binder", Binder}, {"dispatch", Dispatch}, {"priority", Priority}, {"extension", Extension},
                 {"event", Event},   {"property", Property}, {"resource", Resource}, {"child", Child}};
    if (words.isEmpty()) return Extension;
    uint bits = None;
    for (const auto& row : table)
        if (const ZSelector word = ZSelector::find(row.word); !word.isEmpty() && words.contains(word)) bits |= row.bit;
    return DelegateType(bits);
}

bool ZObject::getAutoBind() const { return priv && priv->has(ObjectData::AutoBind); }
void ZObject::setAutoBind(bool on) {
    if (priv) priv->set(ObjectData::AutoBind, on);
}
bool ZObject::mainQueuePosting() const { return priv && priv->has(ObjectData::MainQueuePosting); }
void ZObject::setMainQueuePosting(bool on) {
    if (priv) priv->set(ObjectData::MainQueuePosting, on);
}
bool ZObject::copyMembers() const { return priv && priv->has(ObjectData::CopyMembers); }
void ZObject::setCopyMembers(bool on) {
    if (priv) priv->set(ObjectData::CopyMembers, on);
}
bool ZObject::typeDelegate() const { return priv && priv->has(ObjectData::TypeDelegate); }
void ZObject::setTypeDelegate(bool on) {
    if (priv) priv->set(ObjectData::TypeDelegate, on);
}
bool ZObject::globalNamed() const { return priv && priv->has(ObjectData::GlobalNamed); }
void ZObject::setGlobalNamed(bool on) {
    if (!priv || on == globalNamed()) return;
    priv->set(ObjectData::GlobalNamed, on);
    if (on)
        publishNamed();
    else
        removeNamed();
}

// What the object's surroundings keep here

ZThread* ZObject::objectThread() const { return priv ? priv->thread : nullptr; }
void ZObject::setObjectThread(ZThread* thread) {
    if (priv) priv->thread = thread;
}
ZAnimation* ZObject::objectAnimation() const { return priv ? priv->animation : nullptr; }
void ZObject::setObjectAnimation(ZAnimation* animation) {
    if (priv) priv->animation = animation;
}
ZEvent* ZObject::currentEvent() const { return priv ? priv->currentEvent : nullptr; }
void ZObject::setCurrentEvent(ZEvent* event) {
    if (priv) priv->currentEvent = event;
}
