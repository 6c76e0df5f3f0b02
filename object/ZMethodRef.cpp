#include "object/ZMethodRef.h"

#include "core/ZError.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethodCall.h"
#include "object/ZObject.h"
#include "object/methodArguments.h"
#include "object/methodLookup.h"
#include "object/ztype.h"
#include "value/ZTypedPtr.h"
#include "value/ZVArray.h"

#include <cstring>

// Lifetime

ZMethodRef::ZMethodRef(const ZObject* object, const ZSelector& selector, const ZSelector& qualifier)
    : ZMethodRef(static_cast<const ZType*>(object), selector, qualifier) {}
ZMethodRef::ZMethodRef(const ZType* target, const ZSelector& selector, const ZSelector& qualifier) {
    if (!target) return;
    toolkit::EpochGuard guard;
    ZTypedPtr typed(target);
    const ZMethod* found = target->method(&typed, selector, qualifier);
    set(found, typed.instance ? typed.instance : target, typed.type ? typed.type : target->type());
}
ZMethodRef::ZMethodRef(const ZMetaType* seen, const ZSelector& selector, const ZSelector& qualifier) {
    toolkit::EpochGuard guard;
    set(seen ? seen->methodType(selector, qualifier) : nullptr, nullptr, seen);
}
ZMethodRef::ZMethodRef(const void* target, const ZMetaType* seen, const ZSelector& selector,
                       const ZSelector& qualifier) {
    if (!seen) return;
    toolkit::EpochGuard guard;
    ZTypedPtr typed(const_cast<ZMetaType*>(seen), target);
    const ZMethod* found = seen->methodType(&typed, selector, qualifier);
    set(found, typed.instance, typed.type);
}
ZMethodRef::ZMethodRef(const ZMethod* called, const void* target, const ZMetaType* seen) { set(called, target, seen); }
ZMethodRef::ZMethodRef(const ZTypedPtr& typed, const ZMethod* called) { set(called, typed.instance, typed.type); }
ZMethodRef::ZMethodRef(const ZVariant& value) {
    const ZMetaType* own = ztype<ZMethodRef>();
    if (own && value.mainType() == own && value.getPtr()) *this = *static_cast<const ZMethodRef*>(value.getPtr());
}
ZMethodRef::ZMethodRef(const ZMethodRef& other)
    : method(ZMethod::retain(other.method)), instance(other.instance), type(other.type) {}
ZMethodRef::~ZMethodRef() { ZMethod::release(method); }
ZMethodRef& ZMethodRef::operator=(const ZMethodRef& other) {
    set(other.method, other.instance, other.type);
    return *this;
}
ZMethodRef& ZMethodRef::operator=(ZMethodRef&& other) noexcept {
    std::swap(method, other.method);
    std::swap(instance, other.instance);
    std::swap(type, other.type);
    return *this;
}
void ZMethodRef::clear() { set(nullptr, nullptr, nullptr); }
int ZMethodRef::compare(const ZMethodRef& other) const {
    auto order = [](const void* a, const void* b) { return (a > b) - (a < b); };
    if (int found = order(method, other.method)) return found;
    if (int found = order(instance, other.instance)) return found;
    return order(type, other.type);
}
void ZMethodRef::setMethod(const ZMethod* other) { ZMethod::release(std::exchange(method, ZMethod::retain(other))); }
void ZMethodRef::set(const ZMethod* called, const void* target, const ZMetaType* seen) {
    setMethod(called);
    instance = target;
    type = const_cast<ZMetaType*>(seen);
}

ZSelector ZMethodRef::name() const { return method ? method->methodName() : ZSelector(); }
ZSelector ZMethodRef::selector() const { return method ? method->getSelector() : ZSelector(); }
ZSelector ZMethodRef::options() const { return method ? method->getOptions() : ZSelector(); }
ZSelector ZMethodRef::property() const { return method ? method->property() : ZSelector(); }

// Calling

namespace {

/// A new instance by a constructor; the null variant if an argument doesn't fit, or the constructor fails.
ZVariant construct(const ZMethod* constructor, ZMetaType* type, const ZVariant* args, int count) {
    const uint size = type->byteSize();
    void* memory = size ? __znalloc(size) : nullptr;
    if (!memory) return {};
    ZFailGuard guard;
    bool built;
    {
        ZMethodCall call;
        built = call.setup(memory, constructor, type, true);
        for (int i = 0; built && i < count && i + 1 < call.getParCount(); ++i) built = call.add(args[i]);
        built = built && call.invoke();
    }
    if (!built || guard.rose()) {
        if (built) type->destructInstance(memory);
        guard.forget();
        zfree(memory);
        return {};
    }
    ZVariant made;
    ZMetaType* kept = type->holdsZType() ? type->getPtrType() : type;
    if (kept && made.setValue(kept, memory, false, false)) {
        // The bytes were taken, not the block.
        if (kept->heldInline() || kept->isVariant()) zfree(memory);
    } else {
        type->releaseInstance(memory);
    }
    return made;
}

} // namespace

ZVariant ZMethodRef::invoke(const ZVariant* args, int count) const {
    if (!method) return {};
    toolkit::EpochGuard guard;
    const orv::MethodParams* params = method->params(type);
    if (!params || params->destructor) return {};
    if (!params->constructor) return method->invoke(instance, type, args, count);
    ZMetaType* built = type ? type : method->getOwner();
    return instance || !built ? ZVariant() : construct(method, built, args, count);
}
ZVariant ZMethodRef::invoke(const ZArrayT<ZVariant>& args) const { return invoke(args.data(), int(args.count())); }

ZVariant ZMethodRef::invoke(std::initializer_list<ZVariant> args) const {
    return invoke(args.begin(), int(args.size()));
}
ZVariant ZMethodRef::invoke(const ZVArray& args) const {
    const ZArrayT<ZVariant> list = orv::variantList(args);
    return list.count() == args.count() ? invoke(list) : ZVariant();
}

// At objects

bool ZMethodRef::isAtObject() const { return method && instance && type && type->isZObject(); }
bool ZMethodRef::detach() {
    if (!isAtObject()) return true;
    ZMethod* own = method->copy();
    if (!own) return false;
    ZMethod::release(std::exchange(method, own));
    return true;
}
bool ZMethodRef::localize() {
    if (!isAtObject()) return false;
    ZMethodRef former = *this;
    if (!detach()) return false;
    method->setBaseMethod(former.method);
    return true;
}
bool ZMethodRef::add(ZObject* object, bool replace) const {
    const ZMetaType* other = object ? object->type() : nullptr;
    if (!method || !type || !other || !(type->typeOf(other) || other->typeOf(type))) return false;
    return object->setMethod(method, replace);
}
bool ZMethodRef::move(ZObject* object, bool replace) {
    if (!add(object, replace)) return false;
    toolkit::EpochGuard guard;
    const ZMethod* own = object->methodBySelector(method->getSelector(), method->getQualifier());
    set(own ? own : method, object, object->type());
    return true;
}
bool ZMethodRef::remove() {
    if (!isAtObject()) return false;
    auto object = static_cast<ZObject*>(static_cast<ZType*>(const_cast<void*>(instance)));
    return object->removeMethod(method->getSelector(), method->getQualifier());
}

// The table of registered references

namespace {

struct Registry {
    struct Slot {
        ZMethodRef ref;
        int next = -1; ///< of the same chain, or the next free one
    };
    struct Named {
        ZSelector name;
        ZMethodRef ref;
    };

    ZLock lock;
    ZArrayT<Slot> slots;
    ZArrayT<int> heads; ///< chains by instance; their number is a power of two
    ZArrayT<Named> named;
    int firstFree = -1;

    uint chain(const void* instance) const {
        const auto bits = reinterpret_cast<uintptr_t>(instance);
        return uint(bits >> 4 ^ bits >> 14) & (heads.count() - 1);
    }
    int find(const ZMethodRef& ref) const {
        if (heads.isEmpty()) return -1;
        int at = heads.data()[chain(ref.getInstance())];
        while (at >= 0 && !(slots.data()[at].ref == ref)) at = slots.data()[at].next;
        return at;
    }
    int add(const ZMethodRef& ref) {
        if (int known = find(ref); known >= 0) return known;
        if (slots.count() >= heads.count() && !rehash(heads.isEmpty() ? 16 : heads.count() * 2)) return -1;
        int at = firstFree;
        if (at >= 0)
            firstFree = slots.data()[at].next;
        else if (slots.append(Slot()))
            at = int(slots.count()) - 1;
        else
            return -1;
        Slot& slot = *slots.entry(uint(at));
        slot.ref = ref;
        link(at);
        return at;
    }
    void link(int at) {
        Slot& slot = *slots.entry(uint(at));
        int& head = *heads.entry(chain(slot.ref.getInstance()));
        slot.next = std::exchange(head, at);
    }
    bool rehash(uint count) {
        ZArrayT<int> fresh;
        if (!fresh.setCount(count)) return false;
        for (uint i = 0; i < count; ++i) *fresh.entry(i) = -1;
        heads = std::move(fresh);
        for (uint i = 0; i < slots.count(); ++i)
            if (slots.data()[i].ref.isValid()) link(int(i));
        return true;
    }
    ZMethodRef remove(int at) {
        Slot& slot = *slots.entry(uint(at));
        int* place = heads.entry(chain(slot.ref.getInstance()));
        while (*place != at) place = &slots.entry(uint(*place))->next;
        *place = slot.next;
        slot.next = std::exchange(firstFree, at);
        return std::move(slot.ref);
    }
    int indexOf(const ZSelector& name) const {
        for (uint i = 0; i < named.count(); ++i)
            if (named.data()[i].name == name) return int(i);
        return -1;
    }
};

constinit Registry* registry = nullptr;
/// How often something was registered, so that objects needn't look where nobody does.
constinit int registered = 0;

Registry* openRegistry() {
    if (Registry* known = toolkit::loadAcquire(registry)) return known;
    auto fresh = zmake<Registry>();
    Registry* none = nullptr;
    if (fresh && toolkit::compareExchange(registry, none, fresh)) return fresh;
    zrelease(fresh);
    return none;
}

} // namespace

bool ZMethodRef::open() {
    close();
    return true;
}
void ZMethodRef::close() {
    toolkit::store(registered, 0);
    zrelease(toolkit::exchange(registry, nullptr));
}
int ZMethodRef::registerMethod() const {
    Registry* table = method ? openRegistry() : nullptr;
    if (!table) return 0;
    ZScopedLock held(table->lock);
    const int at = table->add(*this);
    if (at < 0) return 0;
    method->setRegistryIndex(at);
    toolkit::increment(registered);
    return at + 1;
}
bool ZMethodRef::registerMethod(const ZSelector& name) const {
    Registry* table = method && !name.isEmpty() ? openRegistry() : nullptr;
    if (!table) return false;
    ZMethodRef old;
    ZScopedLock held(table->lock);
    toolkit::increment(registered);
    if (const int at = table->indexOf(name); at >= 0) {
        Registry::Named* entry = table->named.entry(uint(at));
        if (!entry) return false;
        old = std::exchange(entry->ref, *this);
        return true;
    }
    return table->named.append(Registry::Named{name, *this});
}
int ZMethodRef::registryIndex() const {
    Registry* table = method ? toolkit::loadAcquire(registry) : nullptr;
    if (!table) return 0;
    ZScopedLock held(table->lock);
    return table->find(*this) + 1;
}
bool ZMethodRef::unregister() const {
    Registry* table = method ? toolkit::loadAcquire(registry) : nullptr;
    if (!table) return false;
    // What goes is released without the lock.
    ZMethodRef gone;
    ZScopedLock held(table->lock);
    bool found = false;
    if (const int at = table->find(*this); at >= 0) {
        gone = table->remove(at);
        gone.method->setRegistryIndex(-1);
        found = true;
    }
    for (uint i = table->named.count(); i-- > 0;) {
        if (!(table->named.data()[i].ref == *this)) continue;
        found |= table->named.remove(i);
    }
    return found;
}
ZMethodRef ZMethodRef::getNamed(const ZSelector& name) {
    Registry* table = toolkit::loadAcquire(registry);
    if (!table) return {};
    ZScopedLock held(table->lock);
    const int at = table->indexOf(name);
    return at >= 0 ? table->named.data()[at].ref : ZMethodRef();
}
ZMethodRef ZMethodRef::getRegistered(int index) {
    Registry* table = toolkit::loadAcquire(registry);
    if (!table) return {};
    ZScopedLock held(table->lock);
    return index > 0 && uint(index) <= table->slots.count() ? table->slots.data()[index - 1].ref : ZMethodRef();
}
void ZMethodRef::dropInstance(const void* gone) {
    if (ORV_LIKELY(toolkit::load(registered) == 0) || !gone) return;
    Registry* table = toolkit::loadAcquire(registry);
    if (!table) return;
    for (;;) {
        ZMethodRef dropped;
        ZScopedLock held(table->lock);
        int at = table->heads.isEmpty() ? -1 : table->heads.data()[table->chain(gone)];
        while (at >= 0 && table->slots.data()[at].ref.instance != gone) at = table->slots.data()[at].next;
        if (at >= 0) {
            dropped = table->remove(at);
            dropped.method->setRegistryIndex(-1);
            continue;
        }
        uint i = table->named.count();
        while (i > 0 && table->named.data()[i - 1].ref.instance != gone) --i;
        if (i == 0) return;
        dropped = table->named.data()[i - 1].ref;
        table->named.remove(i - 1);
    }
}
