#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "core/ZSpinLock.h"
#include "module/forward.h"
#include "object/ZMethod.h"
#include "object/typeGeneration.h"

#include <type_traits>

namespace orv {
class HeldTarget;
struct InlineLinks;
struct MethodHit;
} // namespace orv

/// A record by which compiled code refers to a method: names that are looked up at the first use, and the entry after
/// that, until types change. Records are static, embedded in a type, or on the stack of who needs one for a while. Any
/// thread may call through a record; the setters are for who has it alone.
class ORV_API ZInlineMethod {
public:
    enum Flags : uint { TypeMethod = 1, BaseMethod = 2, MultiMethod = 4 };

    constexpr ZInlineMethod() = default;
    ZInlineMethod(const ZInlineMethod& other);
    ZInlineMethod& operator=(const ZInlineMethod& other) {
        assign(other);
        return *this;
    }
    ~ZInlineMethod() { clear(); }

    // What it stands for. Each setter forgets what was looked up.

    /// The method `name` of `type`; with `multi` the overload is chosen by the arguments.
    void init(const ZMetaType* type, const ZSelector& name, bool multi = false, bool isBase = false);
    /// A signature; with the name of its type; with a package, or a qualifier, as well. The type is looked up by its
    /// name.
    void setSelector(const ZSelector& signature, const ZSelector& qualifier);
    void setSelector(const ZSelector& typeName, const ZSelector& signature, const ZSelector& qualifier);
    void setSelector(const ZSelector& package, const ZSelector& typeName, const ZSelector& signature,
                     const ZSelector& qualifier);
    /// Looks a method up now; false if there is none that the record may call.
    bool setMethod(const ZMetaType* type, const ZSelector& signature, const ZSelector& qualifier);
    bool setMethod(const ZObject* object, const ZSelector& signature, const ZSelector& qualifier);
    /// The overload for these argument types, entry 0 being the result's.
    bool setMethod(const ZMetaType* type, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                   const ZSelector& qualifier);
    void setMode(uint flags);
    void setBaseMethod(bool on);
    void setMultiMethod(bool on);
    void setTypeMethod(bool on);
    void setPackage(const ZSelector& name);
    void setQualifier(const ZSelector& words);

    // What it stands for and what it found. Looked up if need be; null or the default entry if there is none.

    /// Borrowed.
    ZMethod* getMethod() const;
    ZMethod::Func getFunc() const;
    ZSelector getName() const { return name; }
    ZSelector getPackage() const { return package; }
    ZMetaType* getParamType(int index) const;
    ZSelector getQualifier() const { return qualifier; }
    ZSelector getSelector() const { return signature; }
    ZSelector getTypeName() const { return typeName; }
    bool isBaseMethod() const { return isBase; }
    bool isMultiMethod() const { return isMulti; }
    bool isTypeMethod() const { return isType; }
    /// Whether the method was looked up on an object.
    bool isZObject() const { return ownerObject != nullptr; }
    /// Whether what it found still holds.
    bool isValid() const { return toolkit::loadAcquire(stamp) == orv::typeGeneration(); }

    // Calling. What isn't found does nothing and answers 0.

    /// The fast entry with as many words as the method has parameters; the answer is a word. See `orv::MethodWords1`.
    template <class... W> void* call(const void* instance, W... words) const {
        static_assert(sizeof...(W) <= 4 && (std::is_convertible_v<W, const void*> && ...));
        const ularge seen = toolkit::loadAcquire(stamp);
        auto entry = toolkit::loadAcquire(func);
        auto record = toolkit::loadAcquire(method);
        const auto part = toolkit::loadAcquire(offset);
        const auto taken = toolkit::loadAcquire(taking);
        if (ORV_UNLIKELY(seen != orv::typeGeneration() || toolkit::load(stamp) != seen || taken != sizeof...(W))) {
            const void* const given[sizeof...(W) + 1] = {words...};
            return callSlow(instance, given, int(sizeof...(W)));
        }
        return Entry<W...>::of(entry)(static_cast<const char*>(instance) + part, record, words...);
    }
    /// The same with plain values of at most 8 bytes, pointers, and references, of exactly the types of the method's
    /// parameters and result.
    template <class R, class... A> R callAs(const void* instance, A... arguments) const {
        return fromWord<R>(call(instance, toWord(arguments)...));
    }
    /// With arguments that are converted.
    ZVariant invoke(const void* instance, const ZVariant* args, int count) const;

    // Registration with the owner, so that a change of its methods resets the record

    void link() const;
    void unlink() const;
    /// Forgets what was looked up.
    void reset() const;
    /// For an object that ends, once the record has left its list.
    void forgetObject();
    /// Forgets everything.
    void clear();
    void assign(const ZInlineMethod& other);
    /// Resets the multi-method records whose argument types have to do with a type, or package, that goes.
    static void clearMultiMethods(const ZMetaType* type);
    static void clearMultiMethods(const ZPackage* package);

    /// Keeps the call target of a record over a call: calls in between may aim the record elsewhere.
    class ORV_API Stack {
    public:
        explicit Stack(ZInlineMethod& record);
        ~Stack();
        Stack(const Stack&) = delete;
        Stack& operator=(const Stack&) = delete;

        ZInlineMethod& record() const { return kept; }
        Stack* outer() const { return below; }
        ZMethod* method() const { return target; }

    private:
        ZInlineMethod& kept;
        Stack* below;
        ZMethod* target;
        ZArrayT<ZMetaType*> types;
        ZMetaType* owner;
        const ZObject* object;
    };
    /// The innermost call of the running thread that a `Stack` keeps; null for none.
    static Stack* stack();

private:
    template <class... W> struct Entry {
        template <class> using Word = const void*;
        using Type = void* (*)(const void*, ZMethod*, Word<W>...);
        /// Back to what the entry was made as.
        static Type of(ZMethod::Func entry) { return reinterpret_cast<Type>(reinterpret_cast<void (*)()>(entry)); }
    };
    template <class T> static const void* toWord(const T& value) {
        static_assert(sizeof(T) <= sizeof(void*) && std::is_trivially_copyable_v<T>);
        const void* word = nullptr;
        __builtin_memcpy(&word, &value, sizeof value);
        return word;
    }
    template <class R> static R fromWord(void* word) {
        if constexpr (std::is_reference_v<R>) {
            return *static_cast<std::remove_reference_t<R>*>(word);
        } else if constexpr (!std::is_void_v<R>) {
            static_assert(sizeof(R) <= sizeof(void*) && std::is_trivially_copyable_v<R>);
            R value;
            __builtin_memcpy(&value, &word, sizeof value);
            return value;
        }
    }

    friend class Stack;
    friend struct orv::InlineLinks;

    ZArrayT<ZMetaType*> shareTypes() const;
    void dropTypes();
    orv::MethodHit find(orv::HeldTarget& target) const;
    orv::MethodHit resolve(orv::HeldTarget& target) const;
    orv::MethodHit resolve() const;
    void publish(const orv::MethodHit& hit, ularge generation) const;
    ZMetaType* findOwner() const;
    void* callSlow(const void* instance, const void* const* words, int count) const;

    // The target, read without a lock: good as long as `stamp` is the generation of types, and the same before and
    // after the others were read. Only entries that don't look at the record are kept here.
    mutable ularge stamp = 0;
    mutable ZMethod::Func func = nullptr;
    mutable ZMethod* method = nullptr;
    mutable int offset = 0;
    mutable uint taking = 0; ///< the words that `func` takes

    mutable ZInlineMethod* next = nullptr;
    mutable ZInlineMethod* prev = nullptr;
    mutable ZMetaType* linkedTo = nullptr;
    mutable ZInlineMethod* nextMulti = nullptr;
    mutable ZInlineMethod* prevMulti = nullptr;
    mutable bool listed = false;
    mutable ZSpinLock guard; ///< of the target's change
    bool isBase = false, isMulti = false, isType = false;
    const ZObject* ownerObject = nullptr;
    mutable ZMetaType* ownerType = nullptr; ///< given, or found by its name
    ZSelector package, typeName, signature, name, qualifier;
    mutable ZArrayT<ZMetaType*> paramTypes;
};
