#pragma once

#include "core/ZHashTreeT.h"
#include "core/ZListT.h"
#include "object/ZType.h"

namespace orv {
struct ObjectData;
}

/// A `ZType` with an identity in the running system: it has a place in a tree of objects and in its type's list of
/// instances, methods and a dispatch table of its own, delegates that share its work, and a name under which it can be
/// published. A parent holds a reference to each child. Tree links aren't locked: a tree is one thread's at a time.
class ORV_API ZObject : public ZType {
public:
    /// What a delegate does for its owner; several bits may be set.
    enum DelegateType : uint {
        None = 0,
        Binder = 1,
        Dispatch = 2,
        Priority = 4,
        Extension = 8,
        PriorEvent = 16,
        Event = 32,
        Property = 64,
        Resource = 128,
        Child = 256
    };
    /// Places of the signals that this class itself sends, in its table of fixed methods.
    enum Signal {
        FirstSignal = 15,
        DiscardSignal = 15,
        ReviveSignal = 16,
        LoadSignal = 17,
        ExitLoopSignal = 18,
        PostSignal = 19
    };

    explicit ZObject(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZObject(const ZObject* source, const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    ~ZObject() override;

    bool isObject() const override { return true; }
    virtual bool isMetaType() const;
    virtual void setIsMetaType(bool on);
    /// The object's own name.
    virtual ZSelector selector() const;
    virtual void setSelector(const ZSelector& name);

protected:
    friend class ZMetaType;

    ZObject* parent = nullptr;
    ZObject* firstChild = nullptr;
    ZObject* lastChild = nullptr;
    ZObject* nextSibling = nullptr;
    ZObject* prevSibling = nullptr;
    ZObject* typeNext = nullptr;
    ZObject* typePrev = nullptr;
    int bindingSrc = -1;
    int bindingDst = -1;
    ZInternal* internal = nullptr;
    orv::ObjectData* priv = nullptr;
};
