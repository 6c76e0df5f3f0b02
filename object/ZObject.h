#pragma once

#include "core/ZHashTreeT.h"
#include "core/ZListT.h"
#include "object/ZType.h"

namespace orv {
struct BindingTable;
struct ObjectData;
}

/// A `ZType` with an identity in the running system: it has a place in a tree of objects and in its type's list of
/// instances, methods and a dispatch table of its own, delegates that share its work, and a name under which it can be
/// published.
///
/// A parent holds a reference to each child; an object holds one to each of its delegates. Links of the tree aren't
/// locked: a tree is one thread's at a time. Methods, dispatch and delegates may be looked up and changed by any
/// thread. Pointers to objects in answers are borrowed. No lock is held while methods, handlers or virtual operations
/// of other objects run.
class ORV_API ZObject : public ZType {
public:
    /// What a delegate does for its owner; several bits may be set.
    enum DelegateType : uint {
        None = 0,
        Binder = 1,      ///< answers for methods that the owner and its type don't have
        Dispatch = 2,    ///< gets the signals that the owner dispatches
        Priority = 4,    ///< answers for methods ahead of the owner
        Extension = 8,   ///< brings its own methods to the owner, and gets its signals
        PriorEvent = 16, ///< sees events ahead of the owner
        Event = 32,      ///< sees events that the owner leaves
        Property = 64,   ///< answers for properties
        Resource = 128,  ///< answers for resources
        Child = 256      ///< becomes a child of the owner
    };
    /// Places in the table of fixed methods: what compiled code calls by index, so that a type that is made at run time
    /// may have methods of its own for it. See `fixedMethod`.
    enum FixedMethod {
        DeletingMethod,
        DetachMethod,
        IsDetachedMethod,
        CopyMethod,
        AssignMethod,
        CompareMethod,
        HashKeyMethod,
        DeepCopyMethod,
        SelectorMethod,
        MemberObjectMethod,
        FindObjectMethod,
        DiscardMethod,
        ReviveMethod,
        ReleaseDiscardedMethod,
        SetParentMethod,
        InvokeNameMethod = 20, ///< behind the signals
        AllowNameInvokeMethod,
        CallDispatchMethod,
        DispatchArgsMethod,
        AddDelegateMethod,
        RemoveDelegateMethod,
        HasPropDelegateMethod,
        GetPropDelegateMethod,
        SetPropDelegateMethod,
        RemovePropDelegateMethod,
        GetPropertyMethod,
        SetPropertyMethod,
        HasPropertyMethod,
        BlendFromMethod,
        SetIdentityMethod,
        ReplacePropertyNameMethod,
        DelegatePropertyChangedMethod,
        NotifyResourceMethod,
        ExitLoopMethod,
        RunLoopMethod,
        CreateObjectMethod,
        LoadTypeFromNameMethod,
        FixedMethodCount
    };
    /// Places of the signals that this class itself sends, in the same table: methods that do nothing, to which others
    /// are bound.
    enum Signal {
        FirstSignal = 15,
        DiscardSignal = 15,
        ReviveSignal = 16,
        LoadSignal = 17,
        ExitLoopSignal = 18,
        PostSignal = 19
    };
    /// Copies of children, deep searches and saved forms go this many levels deep.
    static constexpr int depthLimit = 512;

    using MethodTable = ZHashTreeT<ZSelector, ZMethodPtr>;
    using MultiMethodTable = ZHashTreeT<ZSelector, ZNamedMethod>;
    using DispatchTable = ZHashTreeT<ZSelector, ZMethodDispatch>;
    class iterator;

    // Lifetime. A constructor that runs out of memory raises a failure. A copy has the name, methods, dispatch table
    // and delegate settings of its source, and, if `copyMembers` is set there, copies of its children; it has no
    // parent and no delegates. It fails, with a failure raised, when the children go deeper than `depthLimit`.

    explicit ZObject(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZObject(const ZObject* source, const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    ~ZObject() override;

    /// A new object of a registered type; null if there is none of that name, if it is no type of objects, and without
    /// memory.
    static ZObject* create(const ZSelector& typeName);
    /// Bytes that this class takes in the internal block of an instance; with `whole`, with its bases' parts.
    static int internalSizeOfType(bool whole);

    // The two tables of names, which hold no references. A name stands for the object that came last.

    static bool openNamed();
    /// Forgets all names.
    static void closeNamed();
    static ZObject* publishedObject(const ZSelector& name);
    static ZObject* propertyDelegate(const ZSelector& name);

    /// The bits of the words "binder", "dispatch", "priority", "extension", "event", "property", "resource", "child";
    /// `Extension` for an empty list.
    static DelegateType scanDelegate(const ZSelector& words);
    /// Tells all objects that a resource has changed.
    static void resourceChanged(const ZSelector& name);
    static void resourceChanged(ZResource* resource);

    // Links of the tree, without a virtual call

    ZObject* getParent() const { return parent; }
    ZObject* first() const { return firstChild; }
    ZObject* last() const { return lastChild; }
    ZObject* next() const { return nextSibling; }
    ZObject* previous() const { return prevSibling; }

    // Inherited operations for which an object has an answer of its own

    bool isObject() const override { return true; }
    void release() override;
    ZType* copy() const override;
    ZSelector typeName() const override;
    bool setType(ZMetaType* type) override;
    bool replaceType(ZMetaType* type) override;
    /// A child, by a deep name part for part.
    ZObject* memberObject(const ZSelector& name) const override;
    bool hasLocalMethod(const ZSelector& selector, const ZSelector& qualifier) const override;
    bool definesName(const ZSelector& name) const override;
    bool implements(const ZSelector& selector, const ZSelector& qualifier) const override;
    ZMethod* method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const override;
    ZMethod* method(const ZSelector& selector, const ZSelector& qualifier) const override;
    ZMethod* multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                         bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const override;
    ZMethod* multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const override;
    using ZType::baseMethod;
    using ZType::baseMultimethod;
    using ZType::setType;
    void propertyDelegationChanged(const ZProperty&) override { resetPropertyDelegates(); }

    // Life. A discarded object is released late, by its queue; without one `discard` answers false and does nothing.

    /// Whether its block and its links are sound; what isn't is told to the debug log.
    virtual bool log_verify() const;
    virtual void cancelDiscarded();
    virtual void releaseDiscarded();
    virtual bool isDiscarded() const;
    virtual bool markForDiscard();
    virtual bool discard();
    /// Called when an event is queued for this object.
    virtual void addedToEvent(ZEvent*) {}
    /// Takes it back from the queue; false if it wasn't discarded.
    virtual bool revive();

    // Names. `publishNamed` and `setPropertyDelegate` enter the object in a table of the process under its selector, in
    // place of what stood there; it leaves when it goes. False without a selector, and without memory.

    virtual bool publishNamed();
    virtual bool removeNamed();
    virtual bool setPropertyDelegate(bool on);

    // Copy and identity

    /// A copy with copies of the children and delegates; delegates and properties that held children hold their
    /// copies. Null without memory, and when the children go deeper than `depthLimit`.
    virtual ZObject* deepCopy() const;
    /// Whether the object is the source of a binding.
    bool hasBindings() const { return toolkit::load(bindingSrc) >= 0; }
    /// The first binding of a method on this object; -1 for none.
    virtual int binding(const ZMethod* method) const;
    virtual bool isMetaType() const;
    virtual void setIsMetaType(bool on);
    virtual bool isTypeLinked() const;
    virtual ZObject* getTypeNext() const;
    virtual ZObject* getTypePrev() const;

    // Tree. An empty name and a null type match any.

    virtual ZObject* getFirst(const ZMetaType* type, const ZSelector& name) const;
    virtual ZObject* getFirst(const ZMetaType* type) const;
    virtual ZObject* getFirst(const ZSelector& name) const;
    virtual ZObject* getLast(const ZMetaType* type, const ZSelector& name) const;
    virtual ZObject* getLast(const ZMetaType* type) const;
    virtual ZObject* getLast(const ZSelector& name) const;
    virtual ZObject* getNext() const;
    virtual ZObject* getNext(const ZMetaType* type, const ZSelector& name) const;
    virtual ZObject* getNext(const ZMetaType* type) const;
    virtual ZObject* getNext(const ZSelector& name) const;
    virtual ZObject* getPrev() const;
    virtual ZObject* getPrev(const ZMetaType* type, const ZSelector& name) const;
    virtual ZObject* getPrev(const ZMetaType* type) const;
    virtual ZObject* getPrev(const ZSelector& name) const;
    /// An object doesn't descend from itself.
    virtual bool isDescendantOf(const ZObject* other) const;
    virtual bool isParentOf(const ZObject* other) const;
    /// The nearest of this object and its ancestors that `other` descends from; null if there is none.
    virtual ZObject* sharedAncestor(const ZObject* other) const;
    /// The object that the longest prefix of a deep name leads to, through children or properties, `field` being the
    /// rest, which has a part at least; this object, and the whole name, if none does. Here as in `findObject`, a
    /// property whose value is made anew for each question leads nowhere: nobody would hold the answer.
    virtual ZObject* resolveObjectName(const ZSelector& name, ZSelector& field) const;
    /// The same for the name of a function, whose words go to `qualifier`.
    virtual ZObject* resolveFieldName(const ZSelector& name, ZSelector& field) const;
    virtual ZObject* resolveFieldName(const ZSelector& name, ZSelector& field, ZSelector& qualifier) const;
    /// A child, "self", "parent", or the value of a property that holds an object; by a deep name part for part. With
    /// `deep`, then any descendant, in the order of the tree. An empty name stands for the first child.
    virtual ZObject* findObject(const ZSelector& name, bool deep) const;
    /// As far as the path leads; `rest` is what is left of it.
    virtual ZObject* findObject(const ZSelector& name, ZSelector& rest) const;
    virtual ZObject* objectByProperty(const ZSelector& name, const ZVariant& value, bool deep) const;
    /// Among all descendants, children first.
    virtual ZObject* objectOfType(const ZMetaType* type, const ZSelector& name) const;
    /// The children of that name.
    virtual ZArrayT<ZObject*> getObjects(const ZSelector& name) const;
    virtual int countObjects() const;
    /// Moves the object to the end of another parent's children, null for none. References are the caller's affair.
    virtual void linkParent(ZObject* parent);
    /// The same with references: the first parent retains the object; null releases it, unless that was the last
    /// reference, which is the caller's then. Nothing happens for the object itself and for its descendants.
    virtual void setParent(ZObject* parent);
    /// In front of `before`, a child of `parent`; at the end for null. The object has no parent before. Nothing
    /// happens, here and in `linkParent`, where the object would become its own ancestor.
    virtual void link(ZObject* parent, ZObject* before);
    virtual void unlink();
    virtual ZSelector getTypeName() const;
    /// For an object without a type.
    virtual void setTypeName(const ZSelector& name);
    virtual void typeLink();
    virtual void typeUnlink();

    // Methods of this object. `ZMethod*` and nodes are borrowed. Writing answers false, with nothing changed, without
    // memory.

    virtual bool hasMethods() const;
    virtual int methodCount() const;
    virtual MethodTable getMethods() const;
    virtual bool getMethods(ZArrayT<ZMethod*>& methods) const;
    virtual bool getMethods(const ZSelector& name, ZArrayT<ZMethod*>& methods) const;
    virtual bool getMethods(ZArrayT<ZSelector>& signatures) const;
    virtual bool getMethods(ZHashSetT<ZSelector>& signatures) const;
    virtual bool getMethodsWithOptions(const ZSelector& words, ZArrayT<ZMethod*>& methods) const;
    virtual bool getAutoBindMethods(ZArrayT<ZMethod*>& methods) const;
    /// The first entry with the name of that selector, in the own table; in that of extensions.
    virtual const ZMethodPtr* methodNode(const ZSelector& selector) const;
    virtual const ZMethodPtr* extMethodNode(const ZSelector& selector) const;
    virtual MultiMethodTable multiMethods() const;
    /// Of the object's own and those of its extensions.
    virtual ZMethod* methodBySelector(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* findMultimethod(int* distance, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                                     bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;
    virtual bool implements(const ZMethod* method) const;
    virtual bool implements(const ZSelector& selector) const;
    virtual ZMethod* method(ZTypedPtr* typed, const ZSelector& selector) const;
    virtual ZMethod* method(const ZSelector& selector) const;
    virtual ZMethod* baseMethod(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* baseMethod(const ZSelector& selector) const;
    virtual ZMethod* multimethod(int* distance, const ZSelector& name, const ZArrayT<ZMetaType*>& types, bool implicit,
                                 bool skipResult, bool exact, const ZSelector& qualifier) const;
    virtual ZMethod* multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                                 const ZSelector& qualifier) const;
    virtual ZMethod* baseMultimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const;
    /// With `replace` instead of one of the same signature and qualifier; without, false if there is one.
    virtual bool setMethod(const ZMethodPtr& method);
    virtual bool setMethod(ZMethod* method, bool replace);
    /// False if there is none.
    virtual bool removeMethod(const ZSelector& selector, const ZSelector& qualifier);
    virtual bool removeMethods();
    /// All of that name.
    virtual bool removeMethods(const ZSelector& name);
    /// After a change of what delegates bring; also forgets what calls have found.
    virtual void resetMethods();
    /// Brings the table of multi-methods up to date; false without memory.
    virtual bool calcMultiMethods() const;
    virtual void linkInlineMethod(ZInlineMethod* record);
    virtual void unlinkInlineMethod(ZInlineMethod* record);
    virtual void resetInlineMethods();
    virtual void resetInlineMethods(const ZSelector& name);
    /// Whether `invokeName` would find something.
    virtual bool allowNameInvoke(const ZSelector& name) const;
    /// Dispatches a name, or, if nobody answers or it is a signature, calls the method. Null if there is none.
    virtual ZVariant invokeName(const ZSelector& name);

    // Dispatch: signals, each answered by any number of methods. Answers true if anybody did. A name of several parts
    // goes along properties that hold objects; one of more than `depthLimit` parts concerns only whom it leads to.
    // Whoever is asked stays alive until it has answered. Handlers run within an epoch guard, see `ZType::invoke`: one
    // that waits holds up what all threads retire.

    /// What calls have found isn't used again.
    virtual void useDispatch();
    virtual void cleanDispatch();
    virtual bool hasDispatch() const;
    /// In this object's own table.
    virtual bool hasDispatch(const ZSelector& name) const;
    virtual const ZMethodDispatch* findDispatch(const ZSelector& name) const;
    virtual const ZMethodDispatch* findDispatch(const ZMethodDispatch& dispatch) const;
    virtual DispatchTable getMethodDispatch() const;
    virtual bool getMethodDispatch(ZArrayT<ZSelector>& names) const;
    /// An entry that is bound to a method brings the method along.
    virtual bool addDispatch(const ZMethodDispatch& dispatch);
    virtual bool addDispatch(const ZSelector& name);
    virtual bool addDispatch(const ZSelector& name, const ZSelector& methodName, const ZSelector& qualifier);
    virtual bool addDispatch(const ZSelector& name, const ZMethodRef& method);
    virtual bool addDispatch(const DispatchTable& dispatch);
    virtual bool removeDispatch();
    /// False if there is none.
    virtual bool removeDispatch(const ZSelector& name);
    virtual bool removeDispatch(const ZMethodDispatch& dispatch);
    /// The methods take all arguments as one "ZArrayT<ZVariant>&"; those with other parameters aren't called.
    virtual bool callDispatch(const ZSelector& name, const ZArrayT<ZVariant>& arguments);
    virtual bool callDispatch(const ZSelector& name);
    virtual bool callDispatch(const ZSelector& name, const ZVariant& argument);
    /// The same, each method getting the arguments as its own parameters.
    virtual bool dispatchArgs(const ZSelector& name, const ZArrayT<ZVariant>& arguments);

    // Delegates, in the order of adding. In a walk through delegates and theirs each object answers once. It is asked
    // by the virtual operation that was called on the owner; a class that overrides one, and doesn't call that of its
    // base, answers for its own delegates too.

    virtual ZListT<ZObject*> getDelegates() const;
    virtual bool getDelegates(ZArrayT<ZObject*>& delegates) const;
    /// The delegates with `Extension`.
    virtual ZListT<ZObject*> getExtend() const;
    virtual bool getExtend(ZArrayT<ZObject*>& delegates) const;
    virtual ZListT<ZMetaType*> getExtendTypes() const;
    virtual bool getExtendTypes(ZArrayT<ZMetaType*>& types) const;
    /// A type whose methods this object answers to behind its own, as an extension. Retained.
    virtual bool addExtendType(ZMetaType* type);
    virtual bool removeExtendType(ZMetaType* type);
    virtual bool hasDelegate() const;
    virtual bool hasDelegate(const ZObject* object) const;
    virtual bool hasDelegate(const ZSelector& name) const;
    virtual bool getAutoBind() const;
    virtual void setAutoBind(bool on);
    /// True also if it is a delegate already. False for null, for another delegate's name, for this object itself, for
    /// one that has this object among its delegates or theirs, and without memory.
    virtual bool addDelegate(ZObject* object, bool bind);
    virtual bool removeDelegate(ZObject* object);
    virtual bool removeDelegate(const ZSelector& name);
    /// Makes an object of the type `kind`, names it `name` and adds it; binds it if it is a `Binder`. True, with
    /// nothing done, for an empty kind.
    virtual bool loadDelegate(const ZSelector& name, const ZSelector& kind);
    /// Null for an empty name. Borrowed: who shares the object with other threads asks only while nobody removes.
    virtual ZObject* findDelegate(const ZSelector& name) const;
    /// Puts a copy in the place of each delegate that others hold too; false without memory.
    virtual bool detachDelegates();

    // Bindings, see `ZBinding`. This object is the source and `target` the destination, methods or properties. Numbers
    // are places in the table of bindings, below 0 for none.

    virtual int findBinding(const ZObject* target, const ZSelector& name, const ZSelector& targetName,
                            const ZSelector& qualifier = {}, const ZSelector& targetQualifier = {}) const;
    virtual int bind(ZObject* target, const ZSelector& name, const ZSelector& targetName,
                     const ZSelector& qualifier = {}, const ZSelector& targetQualifier = {});
    /// In both directions; both bindings come to be, or none.
    virtual bool xbind(ZObject* target, const ZSelector& name, const ZSelector& targetName,
                       const ZSelector& qualifier = {}, const ZSelector& targetQualifier = {});
    virtual bool xunbind(ZObject* target, const ZSelector& name, const ZSelector& targetName,
                         const ZSelector& qualifier = {}, const ZSelector& targetQualifier = {});
    /// With fixed arguments, put in behind `position` of the source's.
    virtual int bindArg(ZObject* target, const ZSelector& name, const ZSelector& targetName,
                        const ZArrayT<ZVariant>& arguments, int position);
    /// To the object that is published under the name of a service: -1 if there is none.
    virtual int bindService(const ZSelector& service, const ZSelector& name, const ZSelector& targetName);
    /// Binds each method that is marked for it to the one of the same signature that the target has; with `both`, the
    /// target's to this object's too. True if any binding came to be.
    virtual bool autobind(ZObject* target, bool both);
    virtual bool unbind(ZObject* target, const ZSelector& name, const ZSelector& targetName,
                        const ZSelector& qualifier = {}, const ZSelector& targetQualifier = {});
    /// All bindings of which this object is the source, or the destination, with that method or property; with an empty
    /// name all. False if there was none.
    virtual bool unbindsrc(const ZSelector& name, const ZSelector& qualifier = {});
    virtual bool unbinddst(const ZSelector& name, const ZSelector& qualifier = {});
    virtual bool unbindLabeled(const ZSelector& label);
    virtual bool unbindLabeled(ZObject* target, const ZSelector& label);
    virtual bool unbindService(const ZSelector& service, const ZSelector& name, const ZSelector& targetName);
    /// From the object that is published under that name to this one.
    virtual int sbind(const ZSelector& source, const ZSelector& name, const ZSelector& targetName);
    virtual bool sxbind(const ZSelector& source, const ZSelector& name, const ZSelector& targetName);
    /// With a label, by which `unbindLabeled` finds it.
    virtual int lbind(const ZSelector& label, ZObject* target, const ZSelector& name, const ZSelector& targetName);
    virtual bool lxbind(const ZSelector& label, ZObject* target, const ZSelector& name, const ZSelector& targetName);
    /// The places of all bindings of which this object is the source; of those of one method; of those to one target.
    /// False without memory.
    virtual bool bindings(ZArrayT<int>& places) const;
    virtual bool bindings(const ZMethod* method, ZArrayT<int>& places) const;
    virtual bool bindings(const ZObject* target, ZArrayT<int>& places) const;
    /// From any instance of the type, or of one that descends from it, to this object.
    virtual int bindType(ZMetaType* type, const ZSelector& name, const ZSelector& targetName);
    virtual bool unbindType(ZMetaType* type, const ZSelector& name, const ZSelector& targetName);
    /// The object whose bindings are being called on this thread, the innermost one; null for none.
    virtual ZObject* caller() const;
    /// What the innermost firing answers, instead of what the last destination did: converted to `callerRetType`. False
    /// if nothing is being called, and if there is no such conversion.
    virtual bool callerReturn(const ZVariant& value);
    /// The type of the result of the method that is fired; null without a result.
    virtual ZMetaType* callerRetType() const;
    /// Fires a method of this object with these arguments; true if anything is bound to it.
    virtual bool callMethodBindings(ZMethod* method, const ZArrayT<ZVariant>& arguments);
    /// Fires the setter of a property: calls what is bound to it with the value.
    virtual bool callPropertyBindings(const ZSelector& name, const ZVariant& value);
    /// Sets the property without calling what is bound to it; then that, with the value that the property has.
    virtual bool invokePropertyBindings(const ZSelector& name, const ZVariant& value);

    // Property delegates: a delegate named "property" that is a bag of values, made on the first `setPropDelegate`

    /// For classes that keep something about the properties that delegate: they have changed.
    virtual void resetPropertyDelegates() {}
    virtual bool hasPropDelegate(const ZSelector& name) const;
    virtual ZVariant getPropDelegate(const ZSelector& name) const;
    virtual bool setPropDelegate(const ZSelector& name, const ZVariant& value);
    virtual bool removePropDelegate(const ZSelector& name);
    /// For classes that use resources: one of that name has changed.
    virtual void notifyResource(const ZSelector&) {}

    // Strings, see object/absentResources.cpp

    virtual ZStringResource* getObjectStringRes() const;
    virtual ZStringResource* getStringResource() const;
    virtual bool setStringRes(ZStringResource* resource);
    virtual bool setStringRes(const ZSelector& name);

    // Thread. An object belongs to its thread, else to the running one.

    virtual ZThread* objectThread() const;
    virtual void setObjectThread(ZThread* thread);
    virtual bool addWatchdog(const ZSelector& name, real seconds);
    virtual bool removeWatchdog(const ZSelector& name);

    // Animation

    virtual ZAnimation* objectAnimation() const;
    virtual void setObjectAnimation(ZAnimation* animation);
    virtual bool addObjectAnimation(ZAnimation* animation);

    // Events, see object/absentEvents.cpp

    virtual ZEventQueue* queue() const;
    virtual ZEventQueue* postingQueue() const;
    virtual bool linkEvent(ZEvent* event);
    virtual bool unlinkEvent(ZEvent* event);
    virtual void removeFromEvents();
    virtual bool handleEvent(ZEvent* event);
    virtual bool forwardEvent(ZEvent* event, bool post);
    virtual bool forwardCurrentEvent(bool post);
    virtual bool sendEvent(ZEvent* event);
    virtual bool runLoop(bool wait);

    // Posting: methods to be called soon, or later. None, 0 and false without a queue, but for the ids noted by name.

    virtual ZUnique postMethod(const ZMethodRef& method);
    virtual bool postMethod(const ZUnique& id, const ZMethodRef& method);
    virtual ZUnique timedMethod(const ZMethodRef& method, real seconds);
    virtual bool timedMethod(const ZUnique& id, const ZMethodRef& method, real seconds);
    virtual ZUnique postedMethodId(const ZSelector& name) const;
    virtual bool hasPostMethod(const ZUnique& id) const;
    virtual bool hasTimedMethod(const ZUnique& id) const;
    virtual bool isTimedPost(const ZSelector& name) const;
    virtual bool hasMethodPost(const ZSelector& name) const;
    virtual int startTimer(real seconds, bool repeat);
    virtual int startTimer(const ZMethodRef& method, real seconds);
    virtual bool stopTimer(int id);
    virtual bool removePostMethod(const ZUnique& id);
    virtual bool removeTimedMethod(const ZUnique& id);
    virtual bool setPostedMethodId(const ZSelector& name, const ZUnique& id);
    virtual bool removeMethodPost(const ZSelector& name);
    virtual bool addMethodPost(const ZSelector& name, const ZMethodRef& method);
    virtual bool addMethodPost(const ZSelector& name, const ZMethodRef& method, real seconds);
    virtual bool addMethodPost(const ZSelector& name, const ZSelector& method);
    virtual bool addMethodPost(const ZSelector& name, const ZSelector& method, real seconds);
    /// The method of that name.
    virtual bool addMethodPost(const ZSelector& name);
    virtual bool addMethodPost(const ZSelector& name, real seconds);
    virtual void exitLoop();
    virtual bool postEvent(ZEvent* event);

    // Loading

    /// The registered type of that name; null if there is none.
    virtual ZMetaType* loadTypeFromName(const ZSelector& name) const;
    virtual ZObject* loadObject(ZMetaType* type, const ZSelector& name, const ZSelector& loader);
    /// A new child of that type and name, built by the constructor for the arguments; null if there is none, and
    /// without memory.
    virtual ZObject* createObject(const ZSelector& type, const ZSelector& name, const ZVArray& arguments);

    // Declared properties

    virtual ZUnique namedMethodPostId(const ZSelector& name) const;
    virtual bool setNamedMethodPostId(const ZSelector& name, const ZUnique& id);
    virtual ZEvent* currentEvent() const;
    virtual void setCurrentEvent(ZEvent* event);
    /// The object's own name. Any thread may ask, while another renames; a failure is raised where there is no memory
    /// for that, and the old name stays.
    virtual ZSelector selector() const;
    virtual void setSelector(const ZSelector& name);
    /// What it does as a delegate; nothing at first.
    virtual DelegateType delegateType() const;
    virtual void setDelegateType(DelegateType type);
    /// What its parent does for it; with `Dispatch`, the parent gets its signals.
    virtual DelegateType parentDelegate() const;
    virtual void setParentDelegate(DelegateType type);
    virtual bool mainQueuePosting() const;
    virtual void setMainQueuePosting(bool on);
    /// Whether a copy has copies of the children.
    virtual bool copyMembers() const;
    virtual void setCopyMembers(bool on);
    virtual bool typeDelegate() const;
    virtual void setTypeDelegate(bool on);
    virtual bool globalNamed() const;
    virtual void setGlobalNamed(bool on);

    // Operators for tables: add, and remove. A failure is raised without memory.

    using ZType::operator+=;
    using ZType::operator-=;
    ZObject& operator+=(const ZMethodDispatch& dispatch);
    ZObject& operator-=(const ZMethodDispatch& dispatch);
    ZObject& operator+=(const ZMethodPtr& method);
    ZObject& operator-=(const ZMethodPtr& method);
    ZObject& operator+=(const ZMethodRef& method);
    ZObject& operator-=(const ZMethodRef& method);

protected:
    friend class ZMetaType;
    friend struct orv::BindingTable;
    friend struct orv::ObjectData;
    friend struct orv::detail::ObjectLayout;

    /// Enters a new object in the list of its type.
    void enlist();

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

/// A place among the children of an object, which may be behind the last one. It holds as long as its child stays
/// where it is.
class ORV_API ZObject::iterator {
public:
    iterator() = default;
    /// At the first child.
    explicit iterator(const ZObject* parent) : owner(parent), at(parent ? parent->first() : nullptr) {}
    /// At a child; behind the last one for null.
    iterator(const ZObject* parent, ZObject* child) : owner(parent), at(child) {}

    /// Null behind the last child.
    ZObject* object() const { return at; }
    ZObject* operator*() const { return at; }
    ZObject* operator->() const { return at; }
    explicit operator bool() const { return at != nullptr; }
    /// The child that many places away; null out of range.
    ZObject* operator[](int steps) const { return (*this + steps).at; }
    /// Answers the child that it leaves.
    ZObject* nextObject();
    /// Answers the child that it moves to; null, with nothing changed, at the first.
    ZObject* prevObject();
    /// Takes the child out of the tree, whose reference is given up, and moves on to the next; false behind the last.
    bool remove();

    iterator& operator++() { return *this += 1; }
    iterator& operator--() { return *this += -1; }
    iterator& operator+=(int steps);
    iterator& operator-=(int steps) { return *this += -steps; }
    iterator operator+(int steps) const { return iterator(*this) += steps; }
    iterator operator-(int steps) const { return iterator(*this) += -steps; }
    /// Places from `other` to this one, among the children of one object.
    int operator-(const iterator& other) const { return place() - other.place(); }

    bool operator==(const iterator& other) const { return at == other.at; }
    bool operator<(const iterator& other) const { return *this - other < 0; }
    bool operator>(const iterator& other) const { return *this - other > 0; }
    bool operator<=(const iterator& other) const { return *this - other <= 0; }
    bool operator>=(const iterator& other) const { return *this - other >= 0; }

private:
    int place() const;

    const ZObject* owner = nullptr;
    ZObject* at = nullptr;
};
