#pragma once

#include "core/ZHashMapT.h"
#include "object/ZObject.h"
#include "object/ZTypePtrKey.h"

/// The state of one deep copy: what was already copied, so that two references to one object become references to one
/// copy. A detach begins with the outermost call of an operation here, or with `startDetach`, and ends with it. It
/// belongs to the thread that made it. Operations that answer a bool answer false without memory, and when values hold
/// each other in more than `deepest` levels; what is held then may in part be detached, with equal values.
///
/// Of an instance, what its stored properties and its dynamic ones hold is detached, but for those with the flags
/// `NoDetach` and `Linked`.
class ORV_API ZDetachContext : public ZObject {
public:
    static constexpr int deepest = 512;

    explicit ZDetachContext(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    ~ZDetachContext() override;

    /// Makes the calls until `endDetach` one detach.
    void startDetach() { ++level; }
    void endDetach();
    /// The instance to be held instead of another: a detached copy of an object that others hold too, else the instance
    /// itself, with all that it holds detached. It is retained for the caller; null for null, and on failure.
    ZType* detachType(ZType* instance);
    /// What stands for an instance in the present detach, borrowed; null if it wasn't met yet.
    ZType* detached(const ZType* instance) const;
    /// Lets `made` stand for an instance until the detach ends, both retained.
    bool setDetached(const ZType* instance, ZType* made);

    // Values in place: what they share becomes theirs, and instances in them are replaced as by `detachType`, also
    // shared ones that are no objects.

    bool detachVariant(ZVariant& value);
    bool detachArray(ZVArray& values);
    bool detachHashSet(ZVHashSet& values);
    bool detachSelectMap(ZVSelectMap& map);
    bool detachKeyMap(ZVKeyMap& map);
    bool detachArray(ZArrayT<ZVariant>& values);
    bool detachArray(ZTypeArray& values);
    bool detachNamedTypeArray(ZNamedTypeArray& values);
    bool detachContentMap(ZContentMap& map);
    bool detachTypeNameMap(ZTypeNameMap& map);
    /// The instance that is held; the holder's reference goes over to what replaces it.
    bool detachHeld(ZType*& instance);
    /// The same as those above, in a detach of its own.
    static bool detachValue(ZVariant& value);
    static bool detachValue(ZType*& instance);
    static bool detachValue(ZVArray& values);
    static bool detachValue(ZVHashSet& values);
    static bool detachValue(ZVSelectMap& map);
    static bool detachValue(ZVKeyMap& map);
    static bool detachValue(ZTypeArray& values);
    static bool detachValue(ZNamedTypeArray& values);
    static bool detachValue(ZContentMap& map);
    static bool detachValue(ZTypeNameMap& map);

    /// The object whose document the copies go to; retained.
    ZObject* documentState() const { return document; }
    void setDocumentState(ZObject* object);
    /// Whether what was copied is remembered from one detach to the next, until `endDetach`.
    bool referenceMapping() const { return keepsMap; }
    void setReferenceMapping(bool on) { keepsMap = on; }

private:
    class Level;
    using Map = ZHashMapT<ZTypePtrKey, ZKeyValueT<ZTypePtrKey, ZTypePtrKey>>;

    ZType* replacement(ZType* instance, bool copyShared);
    template <class F> bool within(F&& detach);
    template <class T> static bool alone(T& value, bool (ZDetachContext::*detach)(T&));

    Map map;
    ZObject* document = nullptr;
    int level = 0; ///< detaches that are open
    int depth = 0; ///< instances and containers that the innermost one is in
    bool keepsMap = false;
};
