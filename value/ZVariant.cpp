#include "value/ZVariant.h"

#include "core/ZError.h"
#include "module/ZPackage.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/kindValues.h"
#include "toolkit/thread.h"
#include "value/ZTypedPtr.h"
#include "value/variantTypes.h"

using namespace orv;

namespace {

/// Whether instances are counted elsewhere than in the head of a block.
bool countsItself(const ZMetaType* type) {
    return type && !type->holdsZType() && type->getFlags() & ZMetaType::Retaining;
}
/// A counted reference for a variant: null for what is dead already.
const void* retained(ZMetaType* main, const void* pointer) {
    if (!pointer) return nullptr;
    if (countsItself(main)) return main->retainInstance(const_cast<void*>(pointer));
    return incmemref(pointer, false) > 0 ? pointer : nullptr;
}

const void* pointerAt(const void* place) {
    const void* pointer;
    std::memcpy(&pointer, place, sizeof pointer);
    return pointer;
}

/// Whether values of the type are numbers, and equal ones have this very type.
bool isNumber(const ZMetaType* type) {
    if (!type || !isNumberKind(type->kind()) || type->mainOrSelf() != type) return false;
    const uint size = type->byteSize();
    return size - 1 < sizeof(ularge) && !(size & (size - 1));
}
template <class T> T numberAt(const void* place) {
    T number;
    std::memcpy(&number, place, sizeof number);
    return number;
}

/// Values hold values, to any depth: so deep inside of the release of another one, a value waits until the outermost
/// is done.
class ReleaseLevel {
public:
    static void release(ZMetaType* type, void* instance) {
        if (ORV_UNLIKELY(depth >= deepest && wait(type, instance))) return;
        ++depth;
        type->directInstanceRelease(instance);
        while (ORV_UNLIKELY(depth == 1 && waiting)) {
            Waiting* next = std::exchange(waiting, waiting->next);
            next->type->directInstanceRelease(next->instance);
            zfree(next);
        }
        --depth;
    }

private:
    struct Waiting {
        ZMetaType* type;
        void* instance;
        Waiting* next;
    };
    static constexpr int deepest = 256;
    static inline ORV_THREAD_LOCAL int depth = 0;
    static inline ORV_THREAD_LOCAL Waiting* waiting = nullptr;

    /// False without memory: then it is released where it is.
    static bool wait(ZMetaType* type, void* instance) {
        void* memory = __zalloc(sizeof(Waiting));
        if (!memory) return false;
        waiting = ::new (memory) Waiting{type, instance, waiting};
        return true;
    }
};

bool isConstText(ZMetaType* type) {
    return type->kind() == ZMetaType::Pointer && type->mainOrSelf()->kind() == ZMetaType::Char &&
           type->getPtrCount() == 1 && type->getQualifier().contains("const");
}

} // namespace

ZMetaType* detail::variantType(ZMetaType* type) {
    if (!type || type->mainOrSelf() == type || type->isLocalType()) return type;
    ZMetaType* main = type->getDataType();
    if (!main) return type;
    int pointers = type->getPtrCount();
    return pointers == 0 ? main : pointers == 1 ? main->getPtrType() : type;
}

ZMetaType* detail::pointedType(ZMetaType* type) {
    if (!type || type->kind() != ZMetaType::Pointer) return type;
    ZMetaType* main = type->mainOrSelf();
    return main->kind() > ZMetaType::Void && type->getPtrCount() == 1 ? main : nullptr;
}

bool detail::refersToInstance(const ZMetaType* type) {
    return type && type->kind() == ZMetaType::Pointer && type->mainOrSelf()->holdsZType() && type->getPtrCount() == 1;
}

uintptr_t ZVariant::tagged(ZMetaType* type) {
    auto bits = reinterpret_cast<uintptr_t>(type);
    if (!type || !type->heldInline()) return bits | cared;
    return bits | inside | (type->kind() <= ZMetaType::Real ? 0 : cared);
}

// Construction

ZVariant::ZVariant(const char* text) {
    ZFailGuard guard;
    ZString made(text);
    if (!guard.rose()) setString(made);
}
ZVariant::ZVariant(const ZString& text) { setString(text); }
ZVariant::ZVariant(const ZSelector& name) { setSelector(name); }
ZVariant::ZVariant(const ZTypedPtr& value) {
    if (!setFromTypedPtr(value)) ZError::fail();
}
ZVariant::ZVariant(const ZType* instance) {
    if (!initInstance(instance, true)) ZError::fail();
}
ZVariant::ZVariant(const void* block) { setVoidP(block); }
ZVariant::ZVariant(ZMetaType* type) {
    if (!initType(type)) ZError::fail();
}
ZVariant::ZVariant(ZMetaType* type, const void* value) {
    if (!init(type, value, true)) ZError::fail();
}
ZVariant::ZVariant(ZMetaType* type, const ZVariant& value) {
    ZMetaType* target = type ? type->getDataType() : nullptr;
    if (!target || target->isVariant()) {
        assign(value);
        return;
    }
    ZFailGuard guard;
    if (initFrom(target, value)) return;
    guard.forget();
    if (!initType(type)) ZError::fail();
}
ZVariant::ZVariant(ZMetaType* type, const ZString& text) {
    ZFailGuard guard;
    if (!initText(type, text)) {
        guard.forget();
        if (!initType(type)) ZError::fail();
    }
}
ZVariant::ZVariant(const ZPackage* package, const ZSelector& typeName, const ZString& text) {
    ZMetaType* type = package ? package->findType(typeName) : ZMetaType::find(typeName);
    if (type) *this = ZVariant(type, text);
}
ZVariant::ZVariant(const ZVariant* a, const ZVariant* b, const ZBlendPos& pos) {
    if (!blendFrom(a, b, pos)) ZError::fail();
}

/// Only for a variant that is null. False leaves it so.
bool ZVariant::copyFrom(const ZVariant& other) {
    if (other.isInline()) {
        ZMetaType* type = other.type();
        if (type->kind() == ZMetaType::String)
            ::new (data) ZString(*reinterpret_cast<const ZString*>(other.data));
        else if (type->kind() == ZMetaType::Selector)
            ::new (data) ZSelector(*reinterpret_cast<const ZSelector*>(other.data));
        else if (!type->copyInstance(data, other.data)) {
            forget();
            ZError::fail();
            return false;
        }
    } else {
        ZMetaType* type = other.type();
        const void* pointer = retained(detail::pointedType(type), other.held());
        if (!type && !pointer) return true;
        setHeld(pointer);
    }
    typeBits = other.typeBits;
    return true;
}

bool ZVariant::assignFrom(const ZVariant& other) {
    ZFailGuard guard;
    ZVariant made;
    if (other.plain())
        made.takeBytes(other);
    else if (!made.copyFrom(other)) {
        guard.forget();
        return false;
    }
    swap(made);
    return true;
}

void ZVariant::swap(ZVariant& other) noexcept {
    std::swap(typeBits, other.typeBits);
    byte kept[sizeof data];
    std::memcpy(kept, data, sizeof data);
    std::memcpy(data, other.data, sizeof data);
    std::memcpy(other.data, kept, sizeof data);
}

/// What ends may look at this variant, which is null by then.
void ZVariant::release() {
    ZMetaType* type = this->type();
    if (isInline()) {
        alignas(8) byte value[sizeof data];
        std::memcpy(value, data, sizeof data);
        forget();
        if (type->kind() == ZMetaType::String)
            reinterpret_cast<ZString*>(value)->~ZString();
        else if (type->kind() == ZMetaType::Selector)
            reinterpret_cast<ZSelector*>(value)->~ZSelector();
        else
            type->destructInstance(value);
        return;
    }
    void* pointer = held();
    forget();
    if (!pointer) return;
    if (ZMetaType* held = detail::pointedType(type))
        ReleaseLevel::release(held, pointer);
    else
        zfree(pointer);
}

// The init… operations build the value of a variant that is null; where they answer false, it still is.

bool ZVariant::initType(ZMetaType* type) {
    type = detail::variantType(type);
    if (type && type->holdsZType()) type = type->getPtrType();
    if (!type) return true;
    if (type->heldInline() && type->kind() > ZMetaType::Pointer && !type->isZeroable() &&
        !type->constructInstance(data)) {
        forget();
        return false;
    }
    typeBits = tagged(type);
    return true;
}

bool ZVariant::init(ZMetaType* type, const void* value, bool copy) {
    if (!value) return initType(type);
    if (!type) {
        const void* block = pointerAt(value);
        if (copy) block = retained(nullptr, block);
        if (!block) return true;
        setHeld(block);
        typeBits = cared;
        return true;
    }
    if (isConstText(type)) {
        ZFailGuard guard;
        ZString text(static_cast<const char*>(pointerAt(value)));
        return !guard.rose() && setString(text);
    }
    ZMetaType* kept = detail::variantType(type);
    if (!kept) return false;
    if (kept->kind() == ZMetaType::Pointer || kept->holdsZType()) return initPointer(kept, pointerAt(value), copy);
    if (kept->heldInline()) {
        if (!copy || kept->kind() <= ZMetaType::Real)
            std::memcpy(data, value, kept->byteSize());
        else if (!kept->copyInstance(data, value)) {
            forget();
            return false;
        }
    } else if (kept->isVariant()) {
        auto& source = *static_cast<const ZVariant*>(value);
        if (copy) return source.plain() ? (takeBytes(source), true) : copyFrom(source);
        takeBytes(source);
        return true;
    } else {
        const void* instance = copy ? kept->copyInstance(value) : value;
        if (!instance) return false;
        setHeld(instance);
    }
    typeBits = tagged(kept);
    return true;
}

bool ZVariant::initInstance(const ZType* instance, bool copy) {
    if (!instance) return true;
    ZMetaType* type = instance->type();
    if (!type) type = ztype<ZType>();
    type = type ? type->getPtrType() : nullptr;
    if (!type) return false;
    setHeld(copy ? retained(nullptr, instance) : instance);
    typeBits = tagged(type);
    return true;
}

bool ZVariant::initPointer(ZMetaType* type, const void* pointer, bool copy) {
    if (type->holdsZType()) type = type->getPtrType();
    if (!type) return false;
    if (pointer && detail::refersToInstance(type) && (!copy || refcount(pointer) > 0))
        return initInstance(static_cast<const ZType*>(pointer), copy);
    setHeld(copy ? retained(detail::pointedType(type), pointer) : pointer);
    typeBits = tagged(type);
    return true;
}

bool ZVariant::initText(ZMetaType* type, const ZString& text) {
    type = type ? type->getDataType() : nullptr;
    if (!type) return false;
    if (type->heldInline()) {
        if (!type->constructInstance(data)) {
            forget();
            return false;
        }
        typeBits = tagged(type);
        // Enums read the names of their items too.
        const int kind = type->kind();
        int number;
        if (kind == ZMetaType::Enum && text.toInt(number)) {
            if (detail::setEnumNumber(type, data, number)) return true;
            clear();
            return false;
        }
        if (isPlainKind(kind) && kind != ZMetaType::Enum ? kindFromString(kind, data, text)
                                                         : type->fromString(data, text))
            return true;
        clear();
        return false;
    }
    if (type->isVariant()) return setString(text);
    void* instance = type->fromString(text);
    if (!instance) return false;
    return type->holdsZType() ? initInstance(static_cast<ZType*>(instance), false) : init(type, instance, false);
}

// Setting

/// Takes over what was made, or reports that nothing was.
bool ZVariant::take(ZVariant& made, bool done) {
    if (done) swap(made);
    return done;
}

bool ZVariant::setSelector(const ZSelector& name) {
    ZMetaType* type = ztype<ZSelector>();
    ZVariant old; // may hold `name`
    swap(old);
    if (!type) return false;
    ::new (data) ZSelector(name);
    typeBits = reinterpret_cast<uintptr_t>(type) | inside | cared;
    return true;
}
bool ZVariant::setString(const ZString& text) {
    ZMetaType* type = ztype<ZString>();
    ZVariant old;
    swap(old);
    if (!type) return false;
    ::new (data) ZString(text);
    typeBits = reinterpret_cast<uintptr_t>(type) | inside | cared;
    return true;
}
bool ZVariant::setBlock(const void* block) {
    ZVariant made;
    return take(made, made.init(nullptr, &block, true));
}
bool ZVariant::setVoidP(const void* block) {
    ZMetaType* type = ztype<void>();
    type = type ? type->getPtrType() : nullptr;
    ZVariant made;
    return take(made, type && made.initPointer(type, block, true));
}
bool ZVariant::setType(const ZType* instance) {
    ZVariant made;
    return take(made, made.initInstance(instance, true));
}
bool ZVariant::setObject(const ZObject* object) { return setType(object); }
bool ZVariant::setFromTypedPtr(const ZTypedPtr& value) {
    ZVariant made;
    if (value.type && value.type->holdsZType())
        return take(made, value.instance ? made.initInstance(static_cast<const ZType*>(value.instance), true)
                                         : made.initType(value.type));
    return take(made, value.type ? made.init(value.type, value.instance, true) : true);
}
bool ZVariant::setReference(ZMetaType* type, const void* value) {
    ZMetaType* main = type ? type->mainOrSelf() : nullptr;
    if (!main) return setBlock(value);
    ZVariant made;
    if (main->holdsZType())
        return take(made, value ? made.initInstance(static_cast<const ZType*>(value), true) : made.initType(main));
    ZMetaType* pointer = type->kind() == ZMetaType::Pointer ? type : main->getPtrType();
    return take(made, pointer && made.initPointer(pointer, value, true));
}
bool ZVariant::setValue(const void* value) {
    ZVariant made;
    return take(made, made.init(type(), value, true));
}
bool ZVariant::setValue(ZMetaType* type, const ZString& text) {
    ZFailGuard guard;
    ZVariant made;
    bool done = take(made, made.initText(type, text));
    if (!done) guard.forget();
    return done;
}
bool ZVariant::setValue(ZMetaType* type, const void* value, bool copy, bool dereference) {
    if (ORV_LIKELY(value && !dereference && isNumber(type))) {
        // It may stand in this variant.
        const uint size = type->byteSize();
        if (size == 4) return resetNumber(type, numberAt<uint>(value));
        if (size == 8) return resetNumber(type, numberAt<ularge>(value));
        return size == 1 ? resetNumber(type, numberAt<byte>(value)) : resetNumber(type, numberAt<word>(value));
    }
    if (dereference && value) value = pointerAt(value);
    ZMetaType* kept = detail::variantType(type);
    const bool byPointer = !kept || kept->kind() == ZMetaType::Pointer || kept->holdsZType();
    ZVariant made;
    return take(made, made.init(type, byPointer && value ? &value : value, copy));
}
bool ZVariant::clearValue() {
    ZVariant made;
    return take(made, made.initType(type()));
}
bool ZVariant::resetValue() {
    ZMetaType* type = this->type();
    if (!type || (type->heldInline() && type->kind() <= ZMetaType::String)) return clearValue();
    ZVariant made;
    if (type->heldInline()) {
        if (!type->constructInstance(made.data)) {
            made.forget();
            return false;
        }
        made.typeBits = typeBits;
    } else {
        // A pointer gets a new instance to point to.
        ZMetaType* main = detail::pointedType(type);
        void* instance = main ? main->createInstance() : nullptr;
        if (!instance) return false;
        if (main->holdsZType()) return take(made, made.initInstance(static_cast<ZType*>(instance), false));
        made.setHeld(instance);
        made.typeBits = typeBits;
    }
    swap(made);
    return true;
}
bool ZVariant::resetType() {
    if (!detail::refersToInstance(type()) || !held()) return true;
    ZMetaType* actual = static_cast<ZType*>(held())->type();
    actual = actual ? actual->getPtrType() : nullptr;
    if (!actual) return false;
    typeBits = tagged(actual);
    return true;
}

// Life

int ZVariant::referenceCount() const {
    if (isInline()) return 0;
    const void* pointer = held();
    if (pointer && ORV_UNLIKELY(countsItself(detail::pointedType(type())))) return 2;
    return refcount(pointer);
}
void* ZVariant::retain() const {
    return isInline() ? nullptr : const_cast<void*>(retained(detail::pointedType(type()), held()));
}

/// Before a write into the value: an instance, and the target of a pointer, is shared by all who refer to it; any other
/// value is this variant's own.
bool ZVariant::ownValue() {
    return isInline() || !type() || type()->kind() == ZMetaType::Pointer || referenceCount() < 2 || detach();
}

const void* ZVariant::partAs(const ZMetaType* wanted) const {
    const ZMetaType* main = mainType();
    const void* value = getPtr();
    int offset = 0;
    if (!main || !wanted || !value) return nullptr;
    if (main == wanted) return value;
    const ZMetaType* own = main->getDataType();
    return own && own->upcastOffset(wanted, offset) ? static_cast<const char*>(value) + offset : nullptr;
}

void* ZVariant::copyValue() const {
    const void* value = getPtr();
    if (!value) return nullptr;
    ZMetaType* own = valueType();
    return own ? own->copyInstance(value) : __zmemdup(value);
}

bool ZVariant::getValue(void* target, bool retain) const {
    if (!isInline()) {
        const void* pointer = retain ? this->retain() : held();
        std::memcpy(target, &pointer, sizeof pointer);
        return !retain || pointer || !held();
    }
    ZMetaType* type = this->type();
    if (type->kind() <= ZMetaType::Real) {
        std::memcpy(target, data, type->byteSize());
        return true;
    }
    return type->copyInstance(target, data);
}

bool ZVariant::detach() {
    if (isInline()) return plain() || type()->detachInstance(data);
    void* value = held();
    if (!value) return true;
    ZMetaType* own = valueType();
    if (referenceCount() > 1) {
        void* made = own ? own->copyInstance(value) : __zmemdup(value);
        if (!made) return false;
        ZVariant old;
        old.takeBytes(*this);
        setHeld(made);
        return true;
    }
    return !own || own->detachInstance(value);
}

bool ZVariant::deepDetach() { return deepDetach(nullptr); }
bool ZVariant::deepDetach(ZDetachContext* context) {
    if (!detach()) return false;
    void* value = getPtr();
    ZMetaType* own = valueType();
    return !value || !own || plain() || own->deepDetachInstance(value, context);
}

ZVariant ZVariant::copy() const {
    ZVariant made(*this);
    if (!made.detach()) made.clear();
    return made;
}

ZVariant ZVariant::expand() const {
    ZMetaType* type = this->type();
    if (!type || isInline() || !type->mainOrSelf()->isVariant()) return *this;
    return held() ? static_cast<const ZVariant*>(held())->expand() : ZVariant();
}
