#include "object/ZType.h"

#include "core/construct.h"
#include "core/memlock.h"
#include "object/ZMetaTypeData.h"
#include "object/ZPropertyPtr.h"
#include "object/ZPropertyRef.h"
#include "object/ztype.h"

namespace {

/// How deep values stand in each other that are compared, and that end, on the stack.
constexpr int deepest = 512, deepestEnd = 64;
ORV_THREAD_LOCAL int compareDepth = 0;

/// Instances whose last reference went while others that held them were ending: the outermost of these ends them, so
/// that a long chain needs no deep stack. Without memory for the list the stack is used.
struct Ending {
    ZType** waiting = nullptr;
    uint count = 0, room = 0;
    int depth = 0;

    bool add(ZType* instance) {
        if (count == room) {
            const uint wanted = room ? room * 2 : 16;
            auto grown = static_cast<ZType**>(__zrealloc(waiting, wanted * sizeof(ZType*)));
            if (!grown) return false;
            waiting = grown;
            room = wanted;
        }
        waiting[count++] = instance;
        return true;
    }
};
ORV_THREAD_LOCAL Ending ending;

} // namespace

// Lifetime

ZType::ZType(const __ZPassMetaType* type) : metaType(type ? orv::passedType(type) : ztype<ZType>()) {
    if (metaType) metaType->beginInstance(this);
}
ZType::ZType(const ZType* source, const __ZPassMetaType* type)
    : metaType(type ? orv::passedType(type) : ztype<ZType>()) {
    if (source) dynamicProperties = source->dynamicProperties;
    if (metaType) metaType->beginInstance(this);
}
ZType::~ZType() {
    if (metaType) metaType->endInstance(this);
}

void* ZType::operator new(size_t size) noexcept { return __znalloc(size); }
void ZType::operator delete(void* instance) noexcept { zdfree(instance); }

bool ZType::detach() { return dynamicProperties.detach(); }
bool ZType::isDetached() const { return dynamicProperties.isDetached(); }

bool ZType::deepDetachValue(ZDetachContext* context) {
    return !metaType || metaType->deepDetachInstance(this, context);
}

bool ZType::copyDynamicPropertiesFrom(const ZType* source) {
    if (!source) return false;
    dynamicProperties = source->dynamicProperties;
    return true;
}

bool ZType::assign(const ZType* other) {
    if (!other || other->metaType != metaType) return false;
    dynamicProperties = other->dynamicProperties;
    return true;
}

int ZType::compare(const ZType* other) const {
    if (other == this) return 0;
    if (!other) return 1;
    if (metaType != other->metaType) return metaType < other->metaType ? -1 : 1;
    if (compareDepth >= deepest) return this < other ? -1 : 1;
    ++compareDepth;
    const int order = dynamicProperties.compare(other->dynamicProperties);
    --compareDepth;
    return (order > 0) - (order < 0);
}
int ZType::compareContent(const ZType* other) const { return compare(other); }

// Locks

bool ZType::lockable() const { return ::lockable(this); }
bool ZType::lockObject() const { return !::lockable(this) || lockmem(this); }
bool ZType::makeLock(bool spinning, bool recursive) { return makelock(this, spinning, recursive); }
bool ZType::setSpinLock(bool on) { return setspinlock(this, on); }
bool ZType::lock() const { return lockmem(this); }
bool ZType::lock(bool tryOnly) const { return tryOnly ? trylockmem(this) : lockmem(this); }
bool ZType::writeLock() const { return lockmem(this); }
bool ZType::readLock() const { return readlockmem(this); }
bool ZType::tryLock() const { return trylockmem(this); }
bool ZType::tryWriteLock() const { return trywritelockmem(this); }
bool ZType::tryReadLock() const { return tryreadlockmem(this); }
bool ZType::unlock() const { return unlockmem(this); }
bool ZType::canLock() const { return canlockmem(this); }
const char* ZType::lockLabel(int* index) const { return memlocklabel(this, index); }
bool ZType::setLockLabel(const char* label, int index) { return setmemlocklabel(this, label, index); }
int ZType::lockIndex(int slot) const { return memlockindex(this, slot); }
bool ZType::setLockIndex(int slot, int value) { return setmemlockindex(this, slot, value); }
uint ZType::lockNumber() const { return getmemlocknumber(this); }

// Count

int ZType::refcount() const { return ::refcount(this); }
ZType* ZType::retain() const { return ::retain(const_cast<ZType*>(this)); }

void ZType::release() {
    if (decmemref(this) > 0) return;
    deleting();
    Ending& now = ending;
    if (ORV_UNLIKELY(now.depth >= deepestEnd) && now.add(this)) return;
    ++now.depth;
    delete this;
    if (now.depth == 1) {
        while (now.count) delete now.waiting[--now.count];
        if (now.waiting) {
            zfree(std::exchange(now.waiting, nullptr));
            now.room = 0;
        }
    }
    --now.depth;
}

ZType* ZType::copy() const {
    if (metaType && metaType->instanceCallback(ZMetaType::CopyInstance1))
        return static_cast<ZType*>(metaType->copyToBlock(this));
    // A class that can't be copied isn't copied as its base.
    if (orv::isDeclared(metaType)) return nullptr;
    ZType* made = zmake<ZType>(this, orv::passType(metaType));
    // No tag stands for the class's own type.
    if (made && !metaType) made->setType(static_cast<ZMetaType*>(nullptr));
    return made;
}

// Identity

ZSelector ZType::key() const { return metaType ? metaType->getName() : ZSelector(); }
uint ZType::hashKey() const { return key().key(); }
bool ZType::isTypeLabel(const ZSelector& label) const { return typeLabel() == label; }
bool ZType::isTypeIndexLabel(int label) const { return typeIndexLabel() == label; }
ZType* ZType::detachCopy(ZDetachContext*) const { return copy(); }
bool ZType::setPublicValue(const ZVariant&) { return false; }
bool ZType::adjustBlendProperty(const ZSelector&, ZVariant&) const { return true; }

ZType& ZType::operator+=(const ZPropertyRef& property) {
    if (property.property()) addProperty(*property.property());
    return *this;
}
ZType& ZType::operator-=(const ZPropertyRef& property) {
    if (!property.isNull()) removeProperty(property.name());
    return *this;
}

ZType* ZType::createIdentity() const {
    ZType* made = copy();
    if (!made || made->setIdentity()) return made;
    made->release();
    return nullptr;
}

// Names

ZSelector ZType::typeName() const { return metaType ? metaType->getName() : ZSelector(); }
ZSelector ZType::typeLabel() const { return metaType ? metaType->nameLabel() : ZSelector(); }
int ZType::typeIndexLabel() const { return metaType ? metaType->indexLabel() : 0; }
ZSelector ZType::pluginId() const { return metaType ? metaType->getPluginId() : ZSelector(); }
ZSelector ZType::pluginPrefix() const { return metaType ? metaType->getPluginPrefix() : ZSelector(); }

ZSelector ZType::pluginName() const {
    const ZSelector id = pluginId();
    return id.isEmpty() ? id : pluginPrefix().join(id);
}

ZSelector ZType::storedName() const { return storedName(typeLabel()); }

ZSelector ZType::storedName(const ZSelector& label) const {
    const ZSelector plugin = pluginName();
    if (label.isEmpty()) return plugin.isEmpty() ? typeName() : plugin;
    const ZSelector behind = plugin.suffix(label, '.');
    return behind.isEmpty() ? label : behind;
}
