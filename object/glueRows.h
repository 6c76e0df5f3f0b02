#pragma once

#include "module/forward.h"
#include "object/forward.h"
#include "object/reflect.h"
#include "object/typeKinds.h"
#include "value/forward.h"

#include <cstddef>

class __ZPassMetaType;

/// What declarations are made of: constant data, without constructors that run. One routine turns a `ClassRow` into a
/// metatype, and the lists of it into tables when somebody asks for them.
namespace orv::glue {

/// The fast entry of a method. Arguments and result are words; a word holds a pointer, the address of what a reference
/// refers to, or in its first bytes a trivially copyable value of at most 8. Which member is set follows from the
/// number of parameters, `MethodRow::fastWords`; a call goes through that member, so no function is called as another
/// type.
union FastEntry {
    using Of0 = void* (*)(const void* instance, ZMethod* method);
    using Of1 = void* (*)(const void*, ZMethod*, const void*);
    using Of2 = void* (*)(const void*, ZMethod*, const void*, const void*);
    using Of3 = void* (*)(const void*, ZMethod*, const void*, const void*, const void*);
    using Of4 = void* (*)(const void*, ZMethod*, const void*, const void*, const void*, const void*);

    Of0 f0 = nullptr;
    Of1 f1;
    Of2 f2;
    Of3 f3;
    Of4 f4;

    constexpr FastEntry() = default;
    constexpr FastEntry(Of0 entry) : f0(entry) {}
    constexpr FastEntry(Of1 entry) : f1(entry) {}
    constexpr FastEntry(Of2 entry) : f2(entry) {}
    constexpr FastEntry(Of3 entry) : f3(entry) {}
    constexpr FastEntry(Of4 entry) : f4(entry) {}
};

/// The stacked entry of a method. `args` is a block of bytes, aligned to 4:
///
/// - Word 0, 8 bytes. With a value as result: the address of raw memory for it, where the entry constructs the result;
///   the caller destroys it, and only if the entry ran. With a reference as result: the entry replaces the word by the
///   address of what it refers to. Of a constructor: the tag, a `const __ZPassMetaType*`, null for the class's own
///   type.
/// - Then each argument, in slots of whole 4 bytes without padding between them: pointers, and addresses for
///   references, in 8; a float as a double in 8; another trivially copyable value of at most 8 bytes in its size,
///   rounded up. Other class values can't be parameters: they are passed by const reference.
///
/// A constructor builds at `instance`, raw zeroed memory of the metatype's size.
using StackedEntry = void (*)(const void* instance, ZMethod* method, void* args);

/// Flags that rows set without a word: values of `ZMethod::Flags`.
enum MethodFlags : uint { staticMethod = 8, variadicMethod = 0x400000 };

struct MethodRow {
    const char* text; ///< "RESULT NAME(PARAMETERS)"; "..." for an open argument
    FastEntry fast;
    StackedEntry stacked;
    const char* options; ///< words with an option proper among them; else null
    uint flags;
    int16 sandBox;  ///< -1 for none
    int8 fastWords; ///< parameters of the fast entry; -1 without one
    int8 open;      ///< the index of the open argument; -1 for none
    bool isConst;   ///< the qualifier is "const", else empty
    bool isLife;    ///< a constructor or the destructor
};

/// Bytes in the words of a row, with their end.
inline constexpr size_t longestWords = 256;

struct PropertyRow {
    const char* name;
    const char* type;
    const char* item;    ///< null for none
    const char* index;   ///< null for none
    const char* options; ///< null without words
    const void* value;   ///< the default, an instance of the type; null for a new one
    uint flags;
    int offset; ///< of the stored field, -1 for none
    int16 version, sandBox;
};

struct EnumItemRow {
    const char* name;
    int value;
};
struct EnumRow {
    const char* name;
    const EnumItemRow* items;
    int count;
    int size;       ///< bytes of the C++ type
    bool exclusive; ///< whether its values exclude each other, whatever their bits are
};

/// A method that code calls by index.
struct FixedRow {
    int index;
    const char* text;
    const char* qualifier;
};

struct SelectorPairRow {
    const char *name, *value;
};
/// A named map of selectors.
struct GroupRow {
    const char* name;
    const SelectorPairRow* pairs;
    int count;
};

struct BaseRow {
    const char* name;
    /// From the address of an instance to that of its base.
    const void* (*upcast)(const void* instance);
};

/// The callbacks of a type, see `ZMetaType::CallBack`. Instances have the metatype's size: there may be room behind the
/// C++ class. Null members are left to the metatype's own way.
struct Callbacks {
    ZMetaType* (*copyType)(const ZMetaType* type) = nullptr;
    /// A new instance. Null: allocate, zero, construct.
    void* (*create)(ZMetaType* type) = nullptr;
    /// Builds in raw zeroed memory. False: nothing stands there, nothing is to be destructed.
    bool (*construct)(void* instance, ZMetaType* type) = nullptr;
    bool (*destruct)(void* instance) = nullptr;
    /// Builds a copy in raw zeroed memory; as for `construct`.
    bool (*copy)(void* target, const void* source) = nullptr;
    void* (*copyNew)(const void* source) = nullptr;
    bool (*detach)(void* instance) = nullptr;
    bool (*isDetached)(const void* instance) = nullptr;
    int (*compare)(const void* a, const void* b) = nullptr;
    bool (*fromString)(void* instance, const ZString& text) = nullptr;
    void* (*newFromString)(const ZString& text) = nullptr;
    ZString (*toString)(const void* instance) = nullptr;
    void (*destroy)(void* instance) = nullptr; ///< `DeleteInstance`
    void (*release)(void* instance) = nullptr;
    void* (*retain)(void* instance) = nullptr;
    /// Called once the type has what its row says; tables aside.
    bool (*initialize)(ZMetaType* type) = nullptr;
    bool (*createDispatch)(ZMetaType* type) = nullptr;
};

using Kind = TypeKinds::Type;

/// The flags of a type, as rows name them.
enum TypeFlags : uint {
    typeFinal = TypeKinds::Final,
    typePublic = TypeKinds::Public,
    typePolymorphic = TypeKinds::Polymorphic,
    typeLockable = TypeKinds::Lockable,
    typeWrapper = TypeKinds::Wrapper,
    typeContainer = TypeKinds::Container,
    typeCreated = TypeKinds::Created,
    typeRefStore = TypeKinds::RefStore,
    typeTraverse = TypeKinds::Traverse,
    typeStorable = TypeKinds::Storable,
    typeMutex = TypeKinds::Mutex,
    typeVariable = TypeKinds::Variable,
    typeStorageBase = TypeKinds::StorageBase,
    typeRetaining = TypeKinds::Retaining,
    typePointerKey = TypeKinds::PointerKey,
    typePrimaryBase = TypeKinds::PrimaryBase,
};

/// What a type is made as, see object/metaClass.h.
struct MetaClass {
    /// With one reference beside the package's; null without memory.
    ZMetaType* (*make)(ZPackage* package, const ZSelector& name, int kind, const ZArrayT<ZSelector>& bases);
    /// Its own type, as far as that is there.
    ZMetaType* (*type)();
};

/// What a class says of itself beside its lists.
struct ClassInfo {
    Kind kind = Kind::Class;
    uint flags = 0;              ///< `TypeFlags`
    const char* words = nullptr; ///< the option words
    const char* blockName = nullptr;
    const char* sandBoxName = nullptr;
    const char* pluginId = nullptr;
    const char* pluginPrefix = nullptr;
    int sandBoxLevel = -1;
    int indexLabel = 0; ///< `ZMetaType::TypeIndexLabel`
    uint internalSize = 0, internalOffset = 0;
    bool dynamicInternal = false;
    bool (*initialize)(ZMetaType* type) = nullptr;
    const MetaClass* meta = nullptr; ///< of the type itself; null for a plain `ZMetaType`
};

template <class R> struct List {
    const R* rows = nullptr;
    int count = 0;

    constexpr List() = default;
    template <size_t N> constexpr List(const R (&from)[N]) : rows(from), count(int(N)) {}
    constexpr const R* begin() const { return rows; }
    constexpr const R* end() const { return rows + count; }
};

/// A class's declaration.
struct ClassRow {
    const char* name;
    uint size, alignment;
    const ClassInfo* info;
    const Callbacks* callbacks;
    List<BaseRow> bases;
    List<MethodRow> methods;
    List<PropertyRow> properties;
    List<EnumRow> enums;
    List<const ClassRow*> types; ///< nested classes
    List<FixedRow> fixed;
    List<GroupRow> groups;
};

/// The row of exactly this class. A class that declares nothing has none: asking for it doesn't link.
template <class T> struct Row { static const ClassRow row; };

#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wundefined-var-template"
#endif
/// The row of a class that is declared in another file, for the list of a package.
template <class T> constexpr const ClassRow* rowOf() { return &Row<T>::row; }
#ifdef __clang__
#pragma clang diagnostic pop
#endif

} // namespace orv::glue
