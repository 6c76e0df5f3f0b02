#pragma once

#include "core/ZArrayT.h"
#include "object/ZBindingStack.h"
#include "object/ZMethod.h"
#include "object/ZObject.h"
#include "value/ZVariant.h"

namespace orv {
struct BindingRequest;
struct BindingSignal;
extern ORV_API int typeBindings;
} // namespace orv

/// A standing rule: when this method of this source fires, call that method of that destination. Sources and
/// destinations are objects, or, with a null object, all instances of a type and of those that descend from it. A
/// binding of two properties is one between their setters.
///
/// **Who holds what.** All bindings of the process are records of one table (`ZMethodBindings`), in chunks that never
/// move, and are told by their places, small numbers from 0. Objects, types and methods hold the places of the first
/// records of their lists; a record stands in six lists at once. It retains its two methods and neither its objects nor
/// its types: these take their records out of the table before they go.
///
/// **Order.** The list of a source has the records of each method together, in falling priority, and among equals in
/// order of making. A firing calls the records of the object, then those of its type and of the types above it. What is
/// bound, or given another priority, while a firing is under way takes part from the next one on.
///
/// **Locks.** One spin lock guards lists, and whatever changes records; nothing is called under it, and of other locks
/// only those of memory and of names are taken. Firing walks without it. Methods are looked up ahead of it.
///
/// **The life of a record** is one word, `active`: idle, taking, running, gone. Who fires turns idle to running and
/// back; a record that is running isn't entered a second time. Who leads it to another method takes it meanwhile, which
/// is all that others ever wait for. Who removes a record takes it out of the lists, then turns idle
/// to gone and clears it; a record that runs is marked, and whoever runs it clears it afterwards. An object that goes
/// while it is being called as a destination is left to the thread that calls: it ends when that call has ended. A
/// second thread that comes to a running record of two properties marks it "again": the destination is then set once
/// more, to the value that the source has by then; other records it passes by.
///
/// Any thread may bind, unbind and fire; who fires holds the source. A destination that goes takes its bindings along;
/// one whose last reference has gone isn't called any more.
class ORV_API ZBinding {
public:
    enum Priority : int { Low = 1000, Normal = 5000, High = 10000 };
    /// Of `active`; the last three stand beside `Running`.
    enum State : uint {
        Idle = 0,
        Taking = 1, ///< being led to another method: everybody else waits
        Running = 2,
        Gone = 4,  ///< out of the lists; with `Running`, cleared by who runs it
        Again = 8, ///< another thread has come meanwhile
        Owed = 16  ///< the destination would have gone: who runs it releases it
    };
    /// Firings within firings go this deep on a thread, or less deep where its stack is nearly full; what is bound
    /// below that isn't called, and the debug log tells.
    static constexpr int depthLimit = 4096;

    // Start and stop

    /// Makes the table; false without memory.
    static bool open();
    /// Drops all records and the table. Nothing fires meanwhile.
    static void close();
    /// Drops all records, whoever made them.
    static void clear();

    // Making. A place, or below 0 if there is nothing to bind, if the parameters don't match, and without memory. The
    // same pair is bound once: binding it again answers its place and counts.

    /// By the names of methods or properties, which may be paths. A side whose name is a property of its object is that
    /// property; where the other side has neither property nor method of its name, it gets a dynamic property of it. A
    /// signature stands for one method, which is made where it is missing; the plain name of a method for all overloads
    /// that match, and the last place is answered. What can't be bound is told to the debug log.
    static int bind(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                    const ZSelector& srcQualifier = {}, const ZSelector& dstQualifier = {});
    static int bind(ZObject* src, ZObject* dst, const char* srcName, const char* dstName);
    /// Each method of `src` whose plain name one pattern matches as a whole to each of `dst` that the other one does,
    /// where their parameters match; the last place is answered. Nothing is made for them.
    static int bind(ZObject* src, ZObject* dst, const ZRegExp& srcNames, const ZRegExp& dstNames);
    /// As methods only.
    static int bindmethod(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                          const ZSelector& srcQualifier, const ZSelector& dstQualifier, bool quiet);
    /// The same where any side may be a type.
    static int bindmethod(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, const ZSelector& srcName,
                          const ZSelector& dstName, const ZSelector& srcQualifier, const ZSelector& dstQualifier,
                          bool quiet);
    /// Two properties, whose types have to agree, or a property and a method. A property may be null: then the side's
    /// name is that of a method; else it is the property's, and the setter its signature.
    static int bindprop(ZObject* src, ZObject* dst, const ZProperty* srcProp, const ZProperty* dstProp,
                        const ZSelector& srcSetter, const ZSelector& dstSetter, const ZSelector& srcName,
                        const ZSelector& dstName, const ZSelector& srcQualifier, const ZSelector& dstQualifier);
    /// From any instance of `srcType`, or from one object, to any instance of `dstType`, or to one object. A method of
    /// a type that needs no instance is called once.
    static int bindtype(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, const ZSelector& srcName,
                        const ZSelector& dstName);
    /// The record itself. An object's type may be left out.
    static int bind(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, ZMethod* srcMethod,
                    ZMethod* dstMethod);
    /// Each method of `src` that is marked for it to the one of the same signature at `dst`; with `both`, the other way
    /// too. True if any binding came to be, or was.
    static bool autobind(ZObject* src, ZObject* dst, bool both);

    // Removing. A pair that was bound several times goes with the last `unbind`, if it counts. False if there was none.

    static bool unbind(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                       const ZSelector& srcQualifier = {}, const ZSelector& dstQualifier = {});
    static bool unbind(ZObject* src, ZObject* dst, const char* srcName, const char* dstName);
    static bool unbind(ZObject* src, ZObject* dst, const ZRegExp& srcNames, const ZRegExp& dstNames);
    static bool unbind(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, ZMethod* srcMethod,
                       ZMethod* dstMethod);
    static bool unbindmethod(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                             const ZSelector& srcQualifier, const ZSelector& dstQualifier);
    static bool unbindprop(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName);
    static bool unbindtype(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, const ZSelector& srcName,
                           const ZSelector& dstName);
    // Whatever counts. An empty name stands for all.
    static bool unbindsrc(ZObject* object, const ZSelector& name, const ZSelector& qualifier = {});
    static bool unbinddst(ZObject* object, const ZSelector& name, const ZSelector& qualifier = {});
    static bool unbindLabeled(ZObject* src, ZObject* dst, const ZSelector& label);
    static bool unbindLabeled(ZObject* src, const ZSelector& label);
    /// With `all`, whatever counts.
    static bool remove(int index, bool all);
    static bool remove(const ZArrayT<int>& places);
    bool remove() { return remove(getIndex(), true); }

    // For objects, types and methods that go: everything that names them

    static void removeObject(ZObject* object);
    static void removeType(ZMetaType* type);
    static void removeMethod(ZMethod* method);
    /// For methods that have changed: each binding is led to the method that its signature and qualifier find now; one
    /// that finds none goes. With a name, those of methods of that plain name.
    static void resetObject(ZObject* object, const ZSelector& name = {});
    /// Those of its instances, and of the types that descend from it, too.
    static void resetType(ZMetaType* type, const ZSelector& name = {});
    /// The last reference of an object has gone: it isn't a destination any more. False if a call of it is under way:
    /// who calls has a reference then, and the object lives on until that is given up.
    static bool leaveDestination(ZObject* object);

    // Questions

    /// Below 0 if it isn't bound. The forms by names tell two properties, or two methods, as `bind` does; of several
    /// overloads the first that is bound.
    static int find(const ZObject* src, const ZObject* dst, const ZMethod* srcMethod, const ZMethod* dstMethod);
    static int find(const ZObject* src, const ZObject* dst, const ZMetaType* srcType, const ZMetaType* dstType,
                    const ZMethod* srcMethod, const ZMethod* dstMethod);
    static int find(const ZObject* src, const ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                    const ZSelector& srcQualifier = {}, const ZSelector& dstQualifier = {});
    static int find(const ZObject* src, const ZObject* dst, const char* srcName, const char* dstName);
    /// The record of a place; null for a place that has none. It holds until the binding is removed.
    static ZBinding* get(int index);
    static ZMethodBindings* bindings();
    /// The first record of that method on that object; with a null object, the first for which any instance is a
    /// source.
    static int first(const ZObject* object, const ZMethod* method);
    // All places: of a source; of one method of it; of a pair. False without memory.
    static bool bindings(const ZObject* src, ZArrayT<int>& places);
    static bool bindings(const ZObject* src, const ZMethod* method, ZArrayT<int>& places);
    static bool bindings(const ZObject* src, const ZObject* dst, ZArrayT<int>& places);
    /// Of any object.
    static bool bindings(const ZMethod* srcMethod, ZArrayT<int>& places);
    /// Of a destination.
    static bool bindingsTo(const ZObject* dst, ZArrayT<int>& places);
    /// `Normal` for a place that has no record.
    static int getPriority(int index);
    /// The record moves behind those that have this priority already; false for a place that has none.
    static bool setPriority(int index, int priority);
    static ZSelector bindingLabel(int index);
    static bool setBindingLabel(int index, const ZSelector& label);
    /// A record that isn't enabled is passed by.
    static bool enable(int index, bool on);
    /// Whether binding the pair again counts; without, one `unbind` removes it.
    static bool countReference(int index, bool on);
    /// Fixed arguments, put in between those of the source: `position` counts the arguments ahead of them.
    static bool setParams(int index, int position, const ZArrayT<ZVariant>& values);
    static bool setParam(int index, int position, const ZVariant& value);
    /// The innermost firing of this thread.
    static ZBindingStack* stack() { return orv::bindingStackTop; }
    /// Whether a method can be called on it: null, or not on its way out.
    static bool validate(const ZObject* object, const ZMethod* method);
    /// The method that a name leads to on an object, or on a type, borrowed under a guard; `at` is what it is called
    /// on.
    static ZMethod* method(const ZObject* object, const ZMetaType* type, const ZSelector& name,
                           const ZSelector& qualifier, ZTypedPtr* at);

    // Firing: calls what is bound to the method of the object, or with a null object to the method on any instance. It
    // costs a test of one or two words while nothing is bound. Destinations that take less get the first arguments;
    // what they take more is constructed. The answer is that of the last destination that was called, 0 if it has no
    // result or one that can't be converted; a destination can give another by `ZObject::callerReturn`. Pointers that
    // `callX` answers are borrowed, unless the destination makes what it answers: then they are the caller's.

    static void callV(ZObject* object, const ZMethod* method) {
        if (ORV_UNLIKELY(isBound(object, method))) fireV(object, method, nullptr);
    }
    static int callI(ZObject* object, const ZMethod* method) {
        return ORV_UNLIKELY(isBound(object, method)) ? fireI(object, method, nullptr) : 0;
    }
    static bool callB(ZObject* object, const ZMethod* method) { return callI(object, method) != 0; }
    static real callR(ZObject* object, const ZMethod* method) {
        return ORV_UNLIKELY(isBound(object, method)) ? fireR(object, method, nullptr) : 0;
    }
    static void* callX(ZObject* object, const ZMethod* method) {
        return ORV_UNLIKELY(isBound(object, method)) ? fireX(object, method, nullptr) : nullptr;
    }
    // With the arguments of the method, read from a C argument list.
    static void callVA(ZObject* object, const ZMethod* method, var_arg* arguments) {
        if (ORV_UNLIKELY(isBound(object, method))) fireV(object, method, arguments);
    }
    static int callIA(ZObject* object, const ZMethod* method, var_arg* arguments) {
        return ORV_UNLIKELY(isBound(object, method)) ? fireI(object, method, arguments) : 0;
    }
    static bool callBA(ZObject* object, const ZMethod* method, var_arg* arguments) {
        return callIA(object, method, arguments) != 0;
    }
    static real callRA(ZObject* object, const ZMethod* method, var_arg* arguments) {
        return ORV_UNLIKELY(isBound(object, method)) ? fireR(object, method, arguments) : 0;
    }
    static void* callXA(ZObject* object, const ZMethod* method, var_arg* arguments) {
        return ORV_UNLIKELY(isBound(object, method)) ? fireX(object, method, arguments) : nullptr;
    }
    /// `result` becomes the answer of the last destination that has one, and stays as it is if none has.
    static void callCA(ZObject* object, const ZMethod* method, var_arg* arguments, ZVariant& result) {
        if (ORV_UNLIKELY(isBound(object, method))) fireC(object, method, arguments, result);
    }
    /// With arguments as variants; true if anything was called. The answer goes to `result` unless that is null.
    static bool callArgs(ZObject* object, const ZMethod* method, const ZVariant* arguments, int count,
                         ZVariant* result = nullptr) {
        return ORV_UNLIKELY(isBound(object, method)) && fireArgs(object, method, arguments, count, result);
    }
    /// Fires the setter of a property.
    static bool callProperty(ZObject* object, const ZMethod* method, const ZVariant& value) {
        return ORV_UNLIKELY(isBound(object, method)) && fireProperty(object, method, value);
    }
    /// Whether firing may call anything.
    static bool isBound(const ZObject* object, const ZMethod* method) {
        return object ? object->hasBindings() || toolkit::load(orv::typeBindings) > 0
                      : method && method->getTypeBinding() >= 0;
    }

    // The record

    int getIndex() const { return toolkit::load(index); }
    int getRefs() const { return toolkit::load(refs); }
    ZObject* source() const { return toolkit::load(src); }
    ZObject* destination() const { return toolkit::load(dst); }
    ZMetaType* sourceType() const { return srcType; }
    ZMetaType* destinationType() const { return dstType; }
    ZMethod* sourceMethod() const { return toolkit::load(srcMethod); }
    ZMethod* destinationMethod() const { return dstMethod; }
    /// The name of a property, else empty.
    ZSelector sourceName() const { return selector0; }
    ZSelector destinationName() const { return selector1; }
    bool isEnabled() const { return toolkit::load(enabled); }
    /// The options of the pair, see `ZMethod::fetchBindingOptions`.
    bool callIsBuilt() const { return needsCall; }
    bool dropsRest() const { return dropRest; }

private:
    friend class ZMethodBindings;
    friend class ZObject;
    friend struct orv::BindingSignal;

    ZBinding() = default;

    static void fireV(ZObject* object, const ZMethod* method, var_arg* arguments);
    static int fireI(ZObject* object, const ZMethod* method, var_arg* arguments);
    static real fireR(ZObject* object, const ZMethod* method, var_arg* arguments);
    static void* fireX(ZObject* object, const ZMethod* method, var_arg* arguments);
    static void fireC(ZObject* object, const ZMethod* method, var_arg* arguments, ZVariant& result);
    static bool fireArgs(ZObject* object, const ZMethod* method, const ZVariant* arguments, int count,
                         ZVariant* result);
    static bool fireProperty(ZObject* object, const ZMethod* method, const ZVariant& value);
    static int make(const orv::BindingRequest& request);
    static int nearBinding(ZObject* src, const ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                           const ZSelector& srcQualifier, const ZSelector& dstQualifier);
    static const ZMethod* boundSetter(const ZObject* object, const ZMethod* declared, const ZSelector& name);

    // What a walk reads without the lock is loaded and stored as whole words.

    int index = -1; ///< -1 in a free record
    int refs = 0;
    ZObject* src = nullptr;
    ZObject* dst = nullptr;
    ZMetaType* srcType = nullptr;
    ZMetaType* dstType = nullptr;
    ZMethod* srcMethod = nullptr; ///< the primary method
    ZMethod* dstMethod = nullptr;
    ZSelector selector0, selector1;   ///< names of properties
    ZSelector mSelector0, mSelector1; ///< signatures
    ZSelector qualifier0, qualifier1;
    ZSelector label;
    ZArrayT<ZVariant> params; ///< copied under the lock
    int paramPos = 0;
    int priority = Normal;
    int nextSrc = -1, nextDst = -1, prevSrc = -1, prevDst = -1;
    int nextSType = -1, nextDType = -1, prevSType = -1, prevDType = -1;
    int next0 = -1, next1 = -1, prev0 = -1, prev1 = -1;
    byte enabled = 1;
    byte countReferences = 1;
    byte needsCall = 0;
    byte convertFirst = 0;
    byte hasParams = 0;
    byte dropRest = 0;
    byte byProperty = 0; ///< the destination is set by its name, so that it tells those bound to it
    byte direct = 0;     ///< the destination is called without arguments, and nothing of it is kept
    byte toAll = 0;      ///< without a destination from the beginning
    uint active = Gone;
    int level = -1;     ///< its place in the order of its source
    int groupNext = -1; ///< of the first record of a method: the first one of the source's next method
    int nextEqual = -1; ///< in the index of pairs; the next free record
    int number = -1;    ///< its place, whatever stands there
    int dstOffset = 0;  ///< of the part of the destination that the method is called on
    ularge serial = 0;  ///< when it was made or moved: one number stands for one record at one place; stored last
};
