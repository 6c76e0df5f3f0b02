#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/forward.h"
#include "text/ZString.h"
#include "value/forward.h"

/// Where the arguments of a list are: handed to code that reads them one by one. It holds as long as the `ZArgument`
/// that it comes from isn't changed.
struct ZArgumentList {
    const byte* next; ///< the argument at `index`
    int index;        ///< counts from 1; 0 is the result
    const ZArgument* owner;
};

/// Typed values laid out one after another in memory, for the format engine and for calls of methods: each argument at
/// an offset that its type's alignment asks for, texts as pointers to zero-ended text of a chosen width that this list
/// owns. Entry 0 of the types is the result, which takes no room. One thread.
///
/// Operations that answer a bool answer false, with the list as it was, without memory, for an index that has no
/// argument, and for a value that doesn't convert to the argument's type.
class ORV_API ZArgument {
public:
    /// Arguments in a list.
    static constexpr int mostArguments = 1 << 16;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves a list without arguments.

    ZArgument() = default;
    explicit ZArgument(int capacity);
    ZArgument(ZMetaType** types, int count);
    /// The types of a signature that a type's method has; without arguments if it has none.
    ZArgument(ZMetaType* type, const ZSelector& signature);
    ZArgument(ZMetaType* type, ZMethod* method);
    /// The values as they are. With `owned` the list keeps values and counts references; without it, it only points to
    /// what the caller keeps.
    ZArgument(const ZVArray& values, ZString::Type stringType, bool owned);
    ZArgument(const ZArrayT<ZVariant>& values, ZString::Type stringType, bool owned);
    ZArgument(const ZArgument&) = delete;
    ZArgument& operator=(const ZArgument&) = delete;
    ~ZArgument();

    // Types. A change of them asks for `reset` before values are set.

    /// The first one added is that of the result.
    bool addType(ZMetaType* type);
    bool addType(const ZSelector& name);
    /// Null out of range.
    ZMetaType* getType(int index) const;
    /// Arguments, without the result.
    int count() const { return types.count() ? int(types.count()) - 1 : 0; }
    /// Lays the arguments out anew; all are zero then.
    bool reset();
    bool setStringType(ZString::Type type);
    ZString::Type stringType() const { return textType; }

    // Values, by the index of their type: the first argument is 1

    bool set(int index, int value);
    bool set(int index, large value);
    bool set(int index, real value);
    bool set(int index, const ZString& value);
    bool set(int index, const ZSelector& value);
    bool set(int index, const ZVariant& value);
    /// The first arguments, one by one.
    bool set(const ZVArray& values);
    bool set(const ZArrayT<ZVariant>& values);

    // Reading

    /// Bytes of the arguments, a multiple of 8.
    uint size() const { return bytes; }
    /// Where an argument stands in the list; -1 out of range.
    int offset(int index) const;
    ZArgumentList getArgs() const { return getArgs(1); }
    /// From an argument on; without a place out of range.
    ZArgumentList getArgs(int index) const;

private:
    void dropValues();
    bool setAll(const ZVariant* values, int count);

    ZArrayT<ZMetaType*> types;
    byte* buffer = nullptr;
    int* offsets = nullptr;
    uint bytes = 0;
    bool owned = true;
    ZString::Type textType = ZString::Char;
};
