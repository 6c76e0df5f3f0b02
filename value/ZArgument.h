#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/forward.h"
#include "text/ZString.h"
#include "text/format.h"
#include "value/forward.h"

class ZArgument;

/// A walk over the arguments of a list, handed to code that takes them one by one, as the format engine does: each
/// answer is the next argument as what is asked for, converted where its type is another. It holds as long as the list
/// isn't changed, and answers 0 and null behind the last argument.
class ORV_API ZArgumentList final : public orv::FormatArguments {
public:
    ZArgumentList(const ZArgument& owner, int index) : owner(&owner), at(index) {}

    /// The index of the next argument.
    int index() const { return at; }
    /// Where it stands in the list; null behind the last.
    const void* place() const;

    large integer() override;
    double real() override;
    const void* pointer() override;
    /// Holds until the next text is asked for.
    Text text() override;
    /// The items of an array of bytes, words, ints or reals.
    const void* items(char letter, int& count) override;

private:
    const ZArgument* owner;
    int at;
    ZString converted;
};

/// Typed values laid out one after another in memory, for the format engine and for calls: each argument at an offset
/// that its type's alignment asks for. Numbers stand there themselves, small ones as an int, floats as a double; texts
/// and selectors as pointers to zero-ended text of a chosen width; all other values as pointers to them. Entry 0 of the
/// types is the result, which takes no room. One thread.
///
/// Operations that answer a bool answer false, with the list as it was, without memory, for an index that has no
/// argument, and for a value that doesn't convert to the argument's type.
class ORV_API ZArgument {
public:
    /// Arguments of a list, at most.
    static constexpr int mostArguments = 1 << 16;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves a list without arguments.

    ZArgument() = default;
    explicit ZArgument(int capacity);
    ZArgument(ZMetaType** types, int count);
    /// The types of a signature, as names seen from a type; null for none.
    ZArgument(ZMetaType* type, const ZSelector& signature);
    /// The types of a method, as seen from a type; null for none.
    ZArgument(ZMetaType* type, ZMethod* method);
    /// The values of an array as arguments of their types. With `owned` the list keeps what it points to; without it
    /// texts in the right width, and values, are the caller's, who keeps them.
    ZArgument(const ZVArray& values, ZString::Type stringType, bool owned);
    ZArgument(const ZArrayT<ZVariant>& values, ZString::Type stringType, bool owned);
    ZArgument(const ZArgument&) = delete;
    ZArgument& operator=(const ZArgument&) = delete;
    ~ZArgument();

    // Types. A change drops the values; `reset` makes room for new ones.

    /// The first one added is that of the result. Null stands for a pointer to anything.
    bool addType(ZMetaType* type);
    bool addType(const ZSelector& name);
    /// Null out of range.
    ZMetaType* getType(int index) const { return index >= 0 && index <= count() ? types[uint(index)] : nullptr; }
    /// Arguments, without the result.
    int count() const { return types.isEmpty() ? 0 : int(types.count()) - 1; }
    /// Lays the arguments out anew; all are 0 and null then.
    bool reset();
    /// The width of texts that are set from now on.
    bool setStringType(ZString::Type type);
    ZString::Type stringType() const { return textType; }

    // Values, by the index of their type: the first argument is 1

    bool set(int index, int value) { return set(index, large(value)); }
    bool set(int index, large value);
    bool set(int index, real value);
    bool set(int index, const ZString& value);
    bool set(int index, const ZSelector& value);
    bool set(int index, const ZVariant& value);
    /// One by one from the first; surplus ones are left out.
    bool set(const ZVArray& values);
    bool set(const ZArrayT<ZVariant>& values);

    // Reading

    /// Bytes of the arguments, a multiple of 8.
    uint size() const { return bytes; }
    /// Where an argument stands in the list; -1 out of range, and ahead of `reset`.
    int offset(int index) const { return hasPlace(index) ? offsets[index - 1] : -1; }
    ZArgumentList getArgs() const { return getArgs(1); }
    /// From an argument on.
    ZArgumentList getArgs(int index) const { return {*this, index}; }

private:
    friend class ZArgumentList;
    /// What an argument's place holds besides its bytes.
    enum Holding : byte { Nothing, Text, Value };

    bool hasPlace(int index) const { return buffer && index > 0 && index <= count(); }
    byte* placeOf(int index) const { return buffer + offsets[index - 1]; }
    byte& holding(int index) const { return reinterpret_cast<byte*>(offsets + count())[index - 1]; }
    void drop(int index);
    void dropValues();
    /// Whether the text outlives this or has to be kept.
    enum Lifetime : bool { Lasting, Passing };
    bool setText(int index, const ZString& value, Lifetime lifetime);
    bool setPointer(int index, const void* pointer, Holding holds);

    ZArrayT<ZMetaType*> types;
    byte* buffer = nullptr;
    int* offsets = nullptr;
    uint bytes = 0;
    bool owned = true;
    ZString::Type textType = ZString::Char;
};
