#pragma once

#include "core/ZHashSetT.h"
#include "object/ZMethodRef.h"
#include "object/ZProperty.h"
#include "object/bindingTables.h"

namespace orv {

/// One side of a binding, as a name leads to it: an object and what of it is meant.
struct BindingEnd {
    ZObject* object;
    ZSelector name, qualifier;
    ZProperty* property = nullptr; ///< retained; null for a method
    ZSelector setter;              ///< of the property; empty if it is read-only

    BindingEnd(ZObject* from, const ZSelector& name, const ZSelector& qualifier);
    BindingEnd(const BindingEnd&) = delete;
    ~BindingEnd();
    /// Looks for a property of that name.
    void findProperty();
    /// Works out the setter; with `make` the object gets it where it is missing. False without memory.
    bool prepare(bool make);
    bool hasMethodNamed() const;
};

/// A method that was found, borrowed under a guard, and what it is called on.
struct BindingMethod {
    ZMethod* method = nullptr;
    ZObject* object = nullptr;
    ZMetaType* type = nullptr;
    int offset = 0;

    /// False if there is none.
    bool find(ZObject* on, ZMetaType* of, const ZSelector& name, const ZSelector& qualifier);
    /// Gives the object, or the type, an empty method of that signature.
    bool makeMissing(ZObject* on, ZMetaType* of, const ZSelector& signature, const ZSelector& qualifier);

private:
    void take(ZMethod* found, ZObject* on, ZMetaType* of, const ZTypedPtr& at);
};

inline BindingRequest requestFor(const BindingMethod& source, const BindingMethod& destination) {
    BindingRequest request;
    request.src = source.object;
    request.dst = destination.object;
    request.srcType = source.type;
    request.dstType = destination.type;
    request.srcMethod = source.method;
    request.dstMethod = destination.method;
    request.dstOffset = destination.offset;
    return request;
}

/// All overloads of a plain name, each signature once. False without memory.
bool overloads(ZObject* object, ZMetaType* type, const ZSelector& name, const ZSelector& qualifier,
               ZArrayT<ZMethodRef>& all);
bool autoBindMethods(ZObject* object, ZArrayT<ZMethodRef>& all);
/// The plain names of all methods that one calls on the object, each once. False without memory.
bool methodNames(ZObject* object, ZHashSetT<ZSelector>& names);

} // namespace orv
