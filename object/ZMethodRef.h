#pragma once

#include "core/ZSelector.h"
#include "object/forward.h"
#include "value/forward.h"

#include <initializer_list>
#include <utility>

/// A method together with what it is to be called on: three words. The method is retained, the instance isn't, also
/// where the method was found at a delegate: who keeps a reference sees to it that the instance lives; an object that
/// dies drops the registered ones that point to it. A plain value of one thread.
class ORV_API ZMethodRef {
public:
    using ZRelocatable = void;

    static bool open();
    /// Forgets all registered references.
    static void close();

    // Lifetime. A method that isn't found gives an invalid reference that keeps instance and type.

    ZMethodRef() = default;
    ZMethodRef(const ZObject* object, const ZSelector& selector, const ZSelector& qualifier = {});
    ZMethodRef(const ZType* instance, const ZSelector& selector, const ZSelector& qualifier = {});
    /// A method that needs no instance, or whose instance is set later.
    ZMethodRef(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier = {});
    ZMethodRef(const void* instance, const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier = {});
    ZMethodRef(const ZMethod* method, const void* instance, const ZMetaType* type);
    ZMethodRef(const ZTypedPtr& typed, const ZMethod* method);
    /// The reference that a variant holds; invalid if it holds none.
    explicit ZMethodRef(const ZVariant& value);
    ZMethodRef(const ZMethodRef& other);
    ZMethodRef(ZMethodRef&& other) noexcept
        : method(std::exchange(other.method, nullptr)), instance(std::exchange(other.instance, nullptr)),
          type(std::exchange(other.type, nullptr)) {}
    ~ZMethodRef();
    ZMethodRef& operator=(const ZMethodRef& other);
    ZMethodRef& operator=(ZMethodRef&& other) noexcept;
    void clear();
    /// By method, instance and type, as addresses.
    int compare(const ZMethodRef& other) const;
    bool operator==(const ZMethodRef& other) const = default;

    bool isValid() const { return method != nullptr; }
    /// Borrowed from the reference.
    ZMethod* getMethod() const { return method; }
    const void* getInstance() const { return instance; }
    ZMetaType* getType() const { return type; }
    void setMethod(const ZMethod* other);
    void setInstance(const void* other) { instance = other; }
    void setType(const ZMetaType* other) { type = const_cast<ZMetaType*>(other); }
    void set(const ZMethod* method, const void* instance, const ZMetaType* type);

    // What the method says; empty without one

    ZSelector name() const;
    ZSelector selector() const;
    ZSelector options() const;
    ZSelector property() const;

    // Calling, see `ZMethod::invoke`. A constructor makes a new instance and answers it; on an existing instance
    // neither it nor a destructor is called.

    ZVariant invoke(const ZArrayT<ZVariant>& args) const;
    ZVariant invoke(const ZVArray& args) const;
    ZVariant invoke(std::initializer_list<ZVariant> args) const;
    ZVariant invoke(const ZVariant* args, int count) const;

    // At objects

    /// Makes the method a private copy of this reference, if the instance is an object; false without memory. A method
    /// of another value is the type's, which nobody changes through a reference: it stays as it is.
    bool detach();
    /// Makes the copy in any case, and it knows the former method as its base; false if the instance is no object.
    bool localize();
    /// Gives `object` the method, if its type and the reference's are related.
    bool add(ZObject* object, bool replace) const;
    /// The same, and the reference points there afterwards.
    bool move(ZObject* object, bool replace);
    /// Takes the method from the object.
    bool remove();

    // The table of registered references of the process

    /// Its place in the table, counted from 1, which it keeps until it is unregistered; 0 if it is invalid or there is
    /// no memory. The same reference registers once.
    int registerMethod() const;
    /// Under a name, instead of what was there.
    bool registerMethod(const ZSelector& name) const;
    /// As `registerMethod` answered; 0 if it isn't registered.
    int registryIndex() const;
    /// Takes it out of the table and from all names; false if it was in neither.
    bool unregister() const;
    static ZMethodRef getNamed(const ZSelector& name);
    /// `index` as `registerMethod` answered.
    static ZMethodRef getRegistered(int index);
    /// Drops what is registered for an instance that goes.
    static void dropInstance(const void* instance);

    // Bindings: when this method of its object is fired, the other one is called; see `ZBinding`. Both ends are at
    // objects, or nothing happens. `-=` removes them.

    ZMethodRef& operator+=(const ZMethodRef& destination);
    ZMethodRef& operator-=(const ZMethodRef& destination);
    /// The method that the entry is bound to, or finds at the entry's object, else at this one's.
    ZMethodRef& operator+=(const ZMethodDispatch& destination);
    ZMethodRef& operator-=(const ZMethodDispatch& destination);
    /// The setter of the property.
    ZMethodRef& operator+=(const ZPropertyRef& destination);
    ZMethodRef& operator-=(const ZPropertyRef& destination);
    /// A method or property of the same object.
    ZMethodRef& operator+=(const ZSelector& destination);
    ZMethodRef& operator-=(const ZSelector& destination);
    /// The method of the same signature.
    ZMethodRef& operator+=(ZObject* destination);
    ZMethodRef& operator-=(ZObject* destination);

private:
    bool isAtObject() const;
    ZObject* object() const;

    ZMethod* method = nullptr;
    const void* instance = nullptr;
    ZMetaType* type = nullptr;
};
