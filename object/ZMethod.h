#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/forward.h"
#include "toolkit/atomic.h"
#include "value/forward.h"

namespace orv {
struct MethodParams;
template <class T> class SlotPool;

/// The fast entries of methods with arguments: words, as many as `ZMethod::fastWords` says. A word is a pointer, the
/// address of what a reference refers to, or holds a value of at most 8 bytes.
using MethodWords1 = void* (*)(const void* instance, ZMethod* method, const void*);
using MethodWords2 = void* (*)(const void* instance, ZMethod* method, const void*, const void*);
using MethodWords3 = void* (*)(const void* instance, ZMethod* method, const void*, const void*, const void*);
using MethodWords4 = void* (*)(const void* instance, ZMethod* method, const void*, const void*, const void*,
                               const void*);
} // namespace orv

/// A named callable that a type declares or an object gets at run time: a signature, a qualifier, flags and two
/// entries. Records stand in a pool, are counted, and handed about as pointers; tables and `ZMethodRef` hold
/// references, others borrow under a `toolkit::EpochGuard`. A record that stands in a published table is read by any
/// thread and changed by nobody, apart from what it works out for itself; setters are for who has it alone.
class ORV_API ZMethod {
public:
    /// The fast entry: takes no arguments; the answer is a word, see `orv::MethodWords1`. It is called only as a
    /// function of the type that `fastWords` tells.
    using Func = void* (*)(const void* instance, ZMethod* method);
    /// The entry that reads its arguments from a block, see `orv::glue::StackedEntry`.
    using Stacked = void (*)(const void* instance, ZMethod* method, void* args);

    enum Flags : uint {
        Local = 0,
        None = 0,
        Fixed = 1,
        Dynamic = 2,
        MultiMethod = 3,
        MethodMode = 3, ///< mask of the modes above
        Private = 4,
        TypeMethod = 8, ///< needs no instance
        BaseMethod = 16,
        Internal = 32,
        Virtual = 64,
        Export = 128,
        Property = 256, ///< an accessor; `getName` is the property
        Lock = 512,
        Explicit = 1024,
        Template = 2048,
        Protected = 4096,
        Bindable = 8192,
        AutoBind = 16384,
        Anonymous = 32768,
        Synthetic = 0x10000,
        Return = 0x20000,
        Manage = 0x40000,
        Creator = 0x80000, ///< the result is a new reference that the caller owns
        Interface = 0x100000,
        Publish = 0x200000,
        Variadic = 0x400000,
        CollectArgs = 0x800000, ///< the entry takes all arguments as one `ZVArray`
        PassVariant = 0x1000000, ///< as the destination of a binding it gets the variant itself
        ReadLock = 0x2000000,
        WriteLock = 0x4000000,
        DWrap = 0x8000000,
        SWrap = 0x10000000
    };

    // The pool

    static bool open();
    /// Records that are still held stay usable until they are released.
    static void close();

    // Making and holding. Null when there is no memory, or before `open`. The answer is the caller's reference.

    static ZMethod* create();
    static ZMethod* create(const ZSelector& selector, const ZSelector& qualifier = {});
    static ZMethod* create(const ZSelector& selector, const ZSelector& qualifier, uint flags, Func func,
                           Stacked stacked);
    /// A record of the same contents that shares nothing.
    static ZMethod* create(const ZMethod& source);
    ZMethod* copy() const { return create(*this); }
    /// Adds a reference; null for null, and for a record whose last reference has gone.
    static ZMethod* retain(const ZMethod* method);
    /// Gives a reference up; with the last one the record goes once no reader can hold it. Null is fine.
    static void release(const ZMethod* method);
    static int refcount(const ZMethod* method);
    ZMethod& operator=(const ZMethod&) = delete;

    // Contents. Setters answer false, with nothing changed, when there is no memory.

    /// Takes over everything but owner, context and the method that this one is a local copy of.
    bool assign(const ZMethod& source);
    /// Takes over everything.
    bool copyFrom(const ZMethod& source);
    /// Forgets what was worked out from the signature.
    void reset();
    /// Makes it a new record.
    void clear();
    /// Has a signature or name.
    bool isValid() const { return !signature.isEmpty(); }
    /// By signature, qualifier, flags, options, then entries.
    int compare(const ZMethod& other) const;

    /// A trailing "..." is stored as "ZArrayT<ZVariant>&", and `openArgument` tells its place.
    bool setSelector(const ZSelector& selector);
    const ZSelector& getSelector() const { return signature; }
    /// What tables have the method under: the function's name, or the whole selector of what is no function.
    ZSelector methodName() const;
    /// The property that an accessor belongs to; else empty.
    const ZSelector& getName() const { return name; }
    void setName(const ZSelector& property) { name = property; }
    ZSelector property() const { return flags & Property ? name : ZSelector(); }
    const ZSelector& getQualifier() const { return qualifier; }
    void setQualifier(const ZSelector& words) { qualifier = words; }
    /// Whether `words` is empty, the qualifier, or among its words.
    bool qualify(const ZSelector& words) const {
        return words.isEmpty() || words == qualifier || (!qualifier.isEmpty() && qualifier.contains(words));
    }
    const ZSelector& getOptions() const { return options; }
    void setOptions(const ZSelector& words) { options = words; }
    void addOptions(const ZSelector& words) { options = options.add(words); }
    bool hasOption(const ZSelector& word) const { return options.contains(word); }
    uint getFlags() const { return flags; }
    void setFlags(uint bits) { flags = bits; }
    /// -1 for none.
    int getSandBoxLevel() const { return sandBoxLevel; }
    void setSandBoxLevel(int level) { sandBoxLevel = level; }
    /// A name for it elsewhere.
    ZSelector getXName() const;
    bool setXName(const ZSelector& external);
    /// Free for who made the method.
    void* getContext() const { return context; }
    void setContext(void* pointer) { context = pointer; }
    /// The type that declares it; null for one of an object.
    ZMetaType* getOwner() const { return toolkit::loadAcquire(owner); }
    void setOwner(ZMetaType* type) { toolkit::storeRelease(owner, type); }
    /// The method that this one was copied from by `ZMethodRef::localize`; borrowed.
    ZMethod* getBaseMethod() const { return baseMethod; }
    void setBaseMethod(const ZMethod* method);

    // Data of its own, kept as a map from names to values; `getData` is that map or what `setData` put there

    ZVariant getData() const;
    bool setData(const ZVariant& value);
    bool set(const ZSelector& key, const ZVariant& value);
    ZVariant item(const ZSelector& key) const;
    bool remove(const ZSelector& key);

    // Entries

    Func getFunc() const { return func; }
    /// `words`: how many argument words the entry takes; it is called only as a function of that many.
    void setFunc(Func entry, int words = 0);
    Stacked getStacked() const { return stacked; }
    void setStacked(Stacked entry);
    /// Arguments of the fast entry; -1 while that is the default one.
    int fastWords() const { return wordCount; }
    bool hasFunc() const { return func != &emptyFunc; }
    bool hasStacked() const { return stacked != &emptyStacked; }
    /// The default entries: the first answers 0, both do nothing.
    static void* emptyFunc(const void* instance, ZMethod* method);
    static void emptyStacked(const void* instance, ZMethod* method, void* args);

    // Parameters. Places count from 0, the result; types are resolved on the first demand, as seen from the owner, or
    // from `type` if there is no owner. What isn't known is null, and looked for again when types have come or gone.

    /// Without the result.
    int paramCount() const;
    /// The type as the signature names it; empty out of range.
    ZSelector paramType(int index) const;
    ZMetaType* parType(int index, const ZMetaType* type = nullptr) const;
    /// Entry 0 is the result's type. Empty without memory.
    ZArrayT<ZMetaType*> paramTypes(const ZMetaType* type = nullptr) const;
    ZMetaType* resultType(const ZMetaType* type = nullptr) const { return parType(0, type); }
    /// Whether the signature names a result other than "void".
    bool hasReturn() const;
    /// The place of the open argument among the parameters, from 0; -1 for none.
    int openArgument() const { return openIndex; }
    void setOpenArgument(int index) { openIndex = index; }
    /// Bytes of arguments in a block, without the word in front of them.
    int getStackSize(const ZMetaType* type = nullptr) const;
    /// Whether its only parameter is a `ZVariant`.
    bool passVariant(const ZMetaType* type = nullptr) const;
    bool collectArgs() const { return flags & CollectArgs; }
    void setCollectArgs(bool on) { flags = on ? flags | CollectArgs : flags & ~uint(CollectArgs); }
    bool autoBind() const { return flags & AutoBind; }
    bool synthetic() const { return flags & Synthetic; }
    bool isConstructor(const ZMetaType* type = nullptr) const;
    bool isDestructor(const ZMetaType* type = nullptr) const;
    /// All of that at once, borrowed under a guard; null without memory.
    const orv::MethodParams* params(const ZMetaType* type = nullptr) const;

    // Calling

    /// Calls it with arguments that are converted to its parameters; missing ones are constructed, surplus ones are
    /// left out unless there is an open argument, which takes them. The null variant if there is no entry or an
    /// argument can't be converted: nothing is called then. A constructor builds in the raw memory `instance`, of the
    /// size of `type`.
    ZVariant invoke(const void* instance, const ZMetaType* type, const ZArrayT<ZVariant>& args) const;
    ZVariant invoke(const void* instance, const ZMetaType* type, const ZVariant* args, int count) const;

    // As ends of a binding. Parameters are compared from place 1 on, as far as the shorter list goes.

    /// Whether a call of this method can be passed on: each pair is unknown, equal, of the destination's type, or one
    /// is a variant. A destination with `CollectArgs` takes anything, and so does an open argument.
    bool matchBinding(const ZMethod* destination) const { return matchBinding(destination, nullptr, nullptr); }
    bool matchBinding(const ZMethod* destination, const ZMetaType* type, const ZMetaType* destinationType) const;
    /// Whether the block of a call of this method serves the destination as it is.
    bool matchBindCall(const ZMethod* destination) const;
    /// Whether the destination's result can be this method's.
    bool matchReturn(const ZMethod* destination) const;
    /// Whether each parameter can be had from the one of `source` at its place, implicit conversions included.
    bool matchMap(const ZMethod* source) const;
    /// `needsCall`: the destination's block has to be built anew; `convertFirst`: the results agree; `dropRest`: only
    /// the source has parameters.
    void fetchBindingOptions(const ZMethod* destination, bool& needsCall, bool& convertFirst, bool& dropRest) const;

    // Option words

    /// The flags of the words in a list, in the order of the table of words whatever that of the list: "local" clears
    /// the mode first; of "fixed" and "dynamic" the latter wins.
    static uint scanFlags(const ZSelector& words);
    /// What is neither a word of a flag nor a sandbox level.
    static ZSelector extractOptions(const ZSelector& words);

    // Heads of lists that others keep; -1 for none

    int getRegistryIndex() const { return toolkit::load(registryIndex); }
    void setRegistryIndex(int index) const { toolkit::store(registryIndex, index); }
    int getBinding(bool destination) const { return toolkit::load(bindings[destination]); }
    void setBinding(bool destination, int index) const { toolkit::store(bindings[destination], index); }
    /// The first binding for which any instance is a source, see `ZBinding`.
    int getTypeBinding() const { return toolkit::load(typeBinding); }
    void setTypeBinding(int index) const { toolkit::store(typeBinding, index); }

    /// Set by tables of declared methods: the entries don't look at the record.
    bool isDeclared() const { return declared; }
    void setDeclared(bool on) { declared = on; }

private:
    friend class orv::SlotPool<ZMethod>;
    /// What few methods have.
    struct Extra;

    ZMethod() = default;
    explicit ZMethod(const ZMethod& source);
    ZMethod(const ZSelector& selector, const ZSelector& words) : qualifier(words) { setSelector(selector); }
    ~ZMethod();
    Extra* extras();
    void dropParams();
    const orv::MethodParams* resolveParams(const ZMetaType* type) const;

    ZSelector signature, qualifier, options, name;
    Func func = &emptyFunc;
    Stacked stacked = &emptyStacked;
    mutable orv::MethodParams* resolved = nullptr;
    ZMetaType* owner = nullptr;
    ZMethod* baseMethod = nullptr;
    void* context = nullptr;
    Extra* extra = nullptr;
    uint flags = 0;
    int sandBoxLevel = -1;
    int openIndex = -1;
    mutable int registryIndex = -1;
    mutable int bindings[2] = {-1, -1};
    mutable int typeBinding = -1;
    int8 wordCount = -1;
    bool declared = false;
};
