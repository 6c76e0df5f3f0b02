#pragma once

#include "object/ZMethod.h"
#include "value/ZVariant.h"

/// A prepared call: a method, an instance, and the block of arguments that its stacked entry reads. It lives on the
/// stack of who calls; a method with the usual few parameters needs no allocation. Places count from 0, the result;
/// arguments go in one after the other, from the call index on, 1 at first.
///
/// An argument is converted to the type of its parameter. If that isn't possible the call is refused: it runs nothing
/// and answers nothing. Parameters that nobody gave are constructed. The result is destroyed only if the entry ran.
///
/// It borrows the method, its parameters and the variants that are added: it lives within an open `toolkit::EpochGuard`
/// of the thread, or shorter than the tables that the method stands in, and the variants live longer than it.
class ORV_API ZMethodCall {
public:
    /// What is known of one parameter.
    struct Argument {
        ZMetaType* type;
        void* value; ///< the address of the value; null while there is none
        ularge flags;
    };
    enum ArgumentFlags : ularge {
        Given = 1,   ///< in the block
        Made = 2,    ///< a value that the call constructed and destructs
        Created = 4, ///< an instance that the call created and releases
    };

    ZMethodCall();
    /// Raises a failure when there is no memory.
    ZMethodCall(const void* instance, const ZMethod* method, const ZMetaType* type = nullptr,
                bool isConstructor = false);
    ~ZMethodCall();
    ZMethodCall(const ZMethodCall&) = delete;
    ZMethodCall& operator=(const ZMethodCall&) = delete;

    /// Drops what there was and begins a call; false, with a failure raised, when there is no memory.
    bool setup(const void* instance, const ZMethod* method, const ZMetaType* type = nullptr,
               bool isConstructor = false);
    /// Aims the arguments as they are at another method, whose parameters agree with them.
    void setcall(const void* instance, const ZMethod* method);
    void clear();

    // Adding arguments. False if one doesn't fit, or there are no parameters left.

    bool add(const ZVariant& value);
    bool addi(int value);
    bool addl(large value);
    bool addr(real value);
    /// The address of a value of the parameter's type, which isn't checked; for a pointer, the pointer.
    bool addp(const void* value);
    /// The variant itself to a parameter that is one; else as `add`.
    bool addv(const ZVariant& value);
    /// The next argument of a C argument list, read as the parameter's type asks; with `fromList`, all of them.
    bool addarg(var_arg* arguments, bool fromList);
    /// The arguments of another call, from its place `from` on, converted where types differ.
    bool copyarg(const ZMethodCall& source, int from = 1);
    bool copyarg(const ZMethodCall& source, int from, int count);

    // Places

    int getParCount() const { return count; }
    bool hasReturn() const;
    /// The address of the value at a place; null if there is none.
    void* param(int index) const;
    ZMetaType* parType(int index) const;
    /// A copy of the value; after the call place 0 is the result.
    ZVariant getParam(int index) const;
    bool setParam(int index, const ZVariant& value);
    /// As `addp`.
    bool setParam(int index, const void* value);
    bool setVariant(int index, const ZVariant& value) { return setParam(index, value); }
    /// A value of exactly the parameter's C++ type.
    template <class T> bool setT(int index, const T& value) {
        if constexpr (std::is_pointer_v<T>)
            return setParam(index, static_cast<const void*>(value));
        else
            return setParam(index, static_cast<const void*>(&value));
    }
    /// The result as a value, which is the call's no more; the null variant if the entry didn't run.
    ZVariant takeResult();
    /// Constructs a value for the parameter; for a pointer, creates an instance.
    bool initParam(int index);
    /// For all that nobody gave.
    bool initParams();
    void resetParam(int index);
    /// Copies of all arguments; what went to an open argument as that array.
    ZArrayT<ZVariant> argArray() const;
    void setIndex(int next) { index = next; }

    // What the call frees: arguments that it constructed; the result; instances that it created for pointers

    void setFreeParam(bool on) { freeParam = on; }
    void setFreeReturn(bool on) { freeReturn = on; }
    void setFreePointer(bool on) { freePointer = on; }
    /// Two words that the script layer passes on; with them, this is a stack call.
    void setStackCall(const void* first, const void* second);
    /// The words of the stack call under way on this thread; false if there is none.
    static bool stackWords(const void*& first, const void*& second);
    /// The type that a constructor builds; null for the owner of the method.
    void setMetaType(const ZMetaType* other) { tag = other; }
    /// The block in which a constructor places the private parts of its class, see `ZInternal`; borrowed, and null for
    /// one of its own.
    void setInternal(ZInternal* other) { internal = other; }

    // Calling. Each answers whether the entry ran, or what it answered; 0 if it didn't run.

    bool invoke();
    bool call() { return invoke(); }
    void callv() { invoke(); }
    int calli();
    real callr();
    void* callp();

private:
    static constexpr int room = 8;
    static constexpr int blockRoom = 8 + room * 8;
    static constexpr int scratchRoom = 96;

    bool put(int at, const void* value);
    bool store(int at, const void* value);
    bool putPointer(int at, const void* pointer);
    bool putValue(int at, const ZVariant& value);
    bool putNumber(int at, const ZVariant& value);
    bool putPointerCell(int at, const ZVariant& value);
    bool putText(int at, const ZVariant& value);
    bool putMade(int at, const ZVariant& value, bool convert);
    bool takesRest() const;
    bool addHeld(const ZVariant& value);
    const void* directly(int at, const ZVariant& value) const;
    bool take(const ZVariant& value);
    bool refuse(int at, const ZVariant& given);
    void* scratch(size_t size);
    bool packArguments();
    bool prepareResult();
    void callEntry();
    bool copiesNothing() const;
    void logRefusal(const char* why) const;
    void dropResult();
    void* resultAddress() const;

    const void* instance = nullptr;
    ZMethod* method = nullptr;
    const ZMetaType* type = nullptr;
    const ZMetaType* tag = nullptr;
    ZInternal* internal = nullptr;
    const orv::MethodParams* params = nullptr;
    Argument* arguments = nullptr;
    char* block = nullptr;
    void* result = nullptr;   ///< raw memory for it, the value once the entry ran
    void* overflow = nullptr; ///< a chain of blocks for what doesn't fit below
    int count = 0;
    int index = 1;
    int open = -1; ///< the place that takes what is left over
    int scratchUsed = 0;
    bool freeParam = true, freeReturn = true, freePointer = true;
    bool collects = false, constructs = false, refused = false, ran = false, stackCall = false;
    const void* words[2] = {};
    ZArrayT<ZVariant> rest; ///< what goes to the open argument, or all arguments as one array
    ZArrayT<ZVariant> kept; ///< values whose addresses stand in the block
    Argument ownArguments[room + 1];
    alignas(16) char ownBlock[blockRoom];
    alignas(16) char ownScratch[scratchRoom];
};
