#pragma once

#include "core/ZArrayT.h"
#include "core/ZRetainPtrT.h"
#include "core/ZSpinLock.h"
#include "core/ZTreeItemT.h"
#include "object/ZMethodRef.h"

/// A method that is looked up when it is called: the name of a signal, and the method that answers it. An entry of the
/// dispatch table of an object or type, counted. What was looked up last is kept for the next call; any thread may look
/// up.
class ORV_API ZMethodDispatch : public ZTreeItemT<ZSelector, ZMethodDispatch> {
public:
    static bool open();
    static void close();

    ZMethodDispatch() = default;
    /// The signal is answered by the method of its own name.
    explicit ZMethodDispatch(const ZSelector& dispatchName);
    ZMethodDispatch(const ZSelector& dispatchName, const ZSelector& methodName, const ZSelector& qualifier = {});
    /// Always this method.
    ZMethodDispatch(const ZSelector& dispatchName, const ZMethodRef& method);
    ZMethodDispatch(ZObject* object, const ZSelector& dispatchName, const ZSelector& methodName,
                    const ZSelector& qualifier = {});
    ZMethodDispatch(const ZMethodDispatch& other);
    ZMethodDispatch& operator=(const ZMethodDispatch&) = delete;

    const ZSelector& dispatchName() const { return signal; }
    const ZSelector& methodName() const { return name; }
    const ZSelector& qualifier() const { return words; }
    /// The reference that it was made with, or the last lookup's.
    ZMethodRef reference() const;
    /// Whether it is always the method that it was made with.
    bool isBound() const { return bound; }
    /// Forgets what was looked up.
    void reset() const;

    /// The method for a type or object, invalid if there is none; with types, the overload that fits them best.
    ZMethodRef getMethod(const ZMetaType* type) const;
    ZMethodRef getMethod(const ZObject* object) const;
    /// The same for who calls it: where the method is a delegate's, `kept` holds that one until the method has ended.
    ZMethodRef getMethod(const ZObject* object, ZRetainPtrT<ZType>& kept) const;
    ZMethodRef getMethod(const ZMetaType* type, const ZArrayT<ZMetaType*>& types) const;
    ZMethodRef getMethod(const ZObject* object, const ZArrayT<ZMetaType*>& types) const;

    /// Adds this entry to an object's dispatch table.
    bool add(ZObject* object) const;
    /// By the names, then by the method that it is bound to.
    int compare(const ZMethodDispatch& other) const;

    // As a node of a table

    const ZSelector& key() const { return signal; }
    static void getHashInfo(uint& bits, uint& load) {
        bits = 4;
        load = 100;
    }
    static uint calcHashBits(uint count, uint load) { return orv_calchashbits(count, load, 4, 14); }
    static bool isMultiKey() { return true; }
    /// A node of the pool; null when there is no memory.
    static ZMethodDispatch* create(const ZMethodDispatch& source);
    ZMethodDispatch* copy() const { return create(*this); }
    /// Adds a reference to a node of the pool.
    static ZMethodDispatch* retain(const ZMethodDispatch* node);
    void release();
    static int order(const ZMethodDispatch& a, const ZMethodDispatch& b) { return a.signal.compare(b.signal); }

private:
    void keep(ZMethodRef found, ZArrayT<ZMetaType*> types, ularge generation) const;
    bool known(const void* instance, const ZMetaType* type, const ZArrayT<ZMetaType*>& types, ularge generation,
               ZMethodRef& found) const;

    ZSelector signal, name, words;
    mutable ZSpinLock guard; ///< of what follows
    mutable ZMethodRef cache;
    mutable ZArrayT<ZMetaType*> cacheTypes;
    mutable ularge cacheGeneration = 0; ///< of the types and of the object
    bool bound = false;                 ///< to `cache`, for good
};
