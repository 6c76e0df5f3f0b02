#include "object/ZDetachContext.h"

#include "object/ZMetaType.h"
#include "object/ztype.h"
#include "value/ZContentMap.h"
#include "value/ZTypeArray.h"
#include "value/ZTypeNameMap.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

/// An operation that detaches; the outermost one is a detach of its own. With `steps` 1 it goes into an instance or a
/// container.
class ZDetachContext::Level {
public:
    Level(ZDetachContext& context, int steps) : context(context), steps(steps) {
        ++context.level;
        context.depth += steps;
    }
    ~Level() {
        context.depth -= steps;
        if (--context.level == 0 && !context.keepsMap) context.map.clear();
    }
    Level(const Level&) = delete;
    bool tooDeep() const { return context.depth > deepest; }

private:
    ZDetachContext& context;
    const int steps;
};

ZDetachContext::ZDetachContext(const __ZPassMetaType* type, ZInternal* internal)
    : ZObject(type ? type : orv::passType(ztype<ZDetachContext>()), internal) {}
ZDetachContext::~ZDetachContext() {
    if (document) document->release();
}

void ZDetachContext::endDetach() {
    if (level > 0) --level;
    if (level == 0) map.clear();
}

ZType* ZDetachContext::detached(const ZType* instance) const {
    if (!instance) return nullptr;
    const auto* made = map.get(ZTypePtrKey(instance));
    return made ? made->instance() : nullptr;
}
bool ZDetachContext::setDetached(const ZType* instance, ZType* made) {
    if (!instance || !made) return false;
    return map.set(ZTypePtrKey(instance), ZTypePtrKey(made));
}

ZType* ZDetachContext::replacement(ZType* instance, bool copyShared) {
    if (!instance) return nullptr;
    if (ZType* known = detached(instance)) return known->retain();
    Level deeper(*this, 1);
    if (deeper.tooDeep()) return nullptr;
    const bool copies = (copyShared || instance->isObject()) && instance->refcount() > 1;
    ZType* made = copies ? instance->detachCopy(this) : instance->retain();
    if (!made) return nullptr;
    // Known before what it holds is looked at: that may hold the instance.
    if (setDetached(instance, made) && (!copies || made->detach()) && made->deepDetachValue(this)) return made;
    map.remove(ZTypePtrKey(instance));
    made->release();
    return nullptr;
}

ZType* ZDetachContext::detachType(ZType* instance) {
    Level whole(*this, 0);
    return replacement(instance, false);
}

bool ZDetachContext::detachHeld(ZType*& instance) {
    if (!instance) return true;
    Level whole(*this, 0);
    ZType* made = replacement(instance, true);
    if (!made) return false;
    ZType* old = instance;
    instance = made;
    old->release();
    return true;
}

template <class F> bool ZDetachContext::within(F&& detach) {
    Level whole(*this, 1);
    return !whole.tooDeep() && detach();
}

bool ZDetachContext::detachVariant(ZVariant& value) {
    ZType* instance = value.toType();
    if (!instance) return within([&] { return value.detach() && value.deepDetach(this); });
    instance = instance->retain();
    if (!instance) return false;
    // The variant's reference would count as somebody else's.
    value.clear();
    const bool done = detachHeld(instance);
    const bool kept = value.setType(instance);
    instance->release();
    return done && kept;
}
bool ZDetachContext::detachArray(ZVArray& values) {
    return within([&] { return values.deepDetach(this); });
}
bool ZDetachContext::detachHashSet(ZVHashSet& values) {
    return within([&] { return values.deepDetach(this); });
}
bool ZDetachContext::detachSelectMap(ZVSelectMap& map) {
    return within([&] { return map.deepDetach(this); });
}
bool ZDetachContext::detachKeyMap(ZVKeyMap& map) {
    return within([&] { return map.deepDetach(this); });
}
bool ZDetachContext::detachArray(ZTypeArray& values) {
    return within([&] { return values.deepDetach(this); });
}
bool ZDetachContext::detachNamedTypeArray(ZNamedTypeArray& values) {
    return within([&] { return values.deepDetach(this); });
}
bool ZDetachContext::detachContentMap(ZContentMap& map) {
    return within([&] { return map.deepDetach(this); });
}
bool ZDetachContext::detachTypeNameMap(ZTypeNameMap& map) {
    return within([&] { return map.deepDetach(this); });
}
bool ZDetachContext::detachArray(ZArrayT<ZVariant>& values) {
    return within([&] {
        for (uint i = 0; i < values.count(); ++i) {
            ZVariant* value = values.entry(i);
            if (!value || !detachVariant(*value)) return false;
        }
        return true;
    });
}

template <class T> bool ZDetachContext::alone(T& value, bool (ZDetachContext::*detach)(T&)) {
    ZDetachContext* context = zmake<ZDetachContext>();
    if (!context) return false;
    const bool done = (context->*detach)(value);
    context->release();
    return done;
}
bool ZDetachContext::detachValue(ZVariant& value) { return alone(value, &ZDetachContext::detachVariant); }
bool ZDetachContext::detachValue(ZType*& instance) { return alone(instance, &ZDetachContext::detachHeld); }
bool ZDetachContext::detachValue(ZVArray& values) { return alone<ZVArray>(values, &ZDetachContext::detachArray); }
bool ZDetachContext::detachValue(ZVHashSet& values) { return alone(values, &ZDetachContext::detachHashSet); }
bool ZDetachContext::detachValue(ZVSelectMap& map) { return alone(map, &ZDetachContext::detachSelectMap); }
bool ZDetachContext::detachValue(ZVKeyMap& map) { return alone(map, &ZDetachContext::detachKeyMap); }
bool ZDetachContext::detachValue(ZTypeArray& values) { return alone<ZTypeArray>(values, &ZDetachContext::detachArray); }
bool ZDetachContext::detachValue(ZNamedTypeArray& values) {
    return alone(values, &ZDetachContext::detachNamedTypeArray);
}
bool ZDetachContext::detachValue(ZContentMap& map) { return alone(map, &ZDetachContext::detachContentMap); }
bool ZDetachContext::detachValue(ZTypeNameMap& map) { return alone(map, &ZDetachContext::detachTypeNameMap); }

void ZDetachContext::setDocumentState(ZObject* object) {
    ZObject* old = document;
    document = object ? static_cast<ZObject*>(object->retain()) : nullptr;
    if (old) old->release();
}
