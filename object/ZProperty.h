#pragma once

#include "core/SlotPool.h"
#include "core/ZSelector.h"
#include "object/forward.h"
#include "toolkit/atomic.h"
#include "value/ZVariant.h"

class ZBlendPos;

/// A named, typed slot with a declared behaviour. One record serves for three things: a declaration in the tables of a
/// metatype, a dynamic property of an instance, and a property handed around by value.
///
/// Records of tables and instances come from a pool and are counted by it; they are made by `create` and shared through
/// `ZPropertyPtr` and `ZPropertyRef`. A record made on the stack isn't counted. Counts are atomic; the fields belong to
/// whoever owns the record alone, and don't change once a metatype has published it.
class ORV_API ZProperty {
public:
    enum Flags : uint {
        Alias = 0x1,           ///< shows a value of something else; getters give it by value
        Hidden = 0x2,          ///< carried
        ReadOnly = 0x4,        ///< has no setter; writing is refused
        Retain = 0x8,          ///< retains what it holds
        Copy = 0x10,           ///< holds a copy of what it is given
        Dynamic = 0x20,        ///< held as a value in the record, not in a field of the class
        Optional = 0x40,       ///< dynamic, and given to an instance only on demand
        Store = 0x80,          ///< written when the instance is stored
        Lock = 0x100,          ///< written under the write lock of the instance
        Bindable = 0x200,      ///< carried
        Linked = 0x400,        ///< a link to something owned elsewhere: not traversed, not walked for updates
        Mutable = 0x800,       ///< carried
        Delegate = 0x1000,     ///< a dynamic property whose value answers property and method requests for its owner
        Resolve = 0x2000,      ///< the value is a reference to resolve; accessors use the item type
        Collection = 0x4000,   ///< a container: has a counter and item accessors
        Array = 0x8000,        ///< a container indexed by position
        Interface = 0x10000,   ///< carried
        Value = 0x20000,       ///< the getter gives the value by value
        NoBlend = 0x40000,     ///< left out when the stored properties of an instance are blended or set to identity
        NoMark = 0x80000,      ///< carried
        NoUpdate = 0x100000,   ///< carried
        NoCopy = 0x200000,     ///< carried
        Virtual = 0x400000,    ///< carried
        Fixed = 0x800000,      ///< its types are left alone when the value changes
        Traverse = 0x1000000,  ///< walks over objects follow it
        NoDetach = 0x2000000,  ///< carried
        DWrap = 0x4000000,     ///< carried
        SWrap = 0x8000000,     ///< carried
        PassPtr = 0x10000000,  ///< item setters take a pointer to the type
        Compact = 0x20000000,  ///< stored in the short record form
        Variable = 0x40000000, ///< the value's type can vary; brings the option word "variable"

        External = Alias | Dynamic | Optional,
        Default = Compact | Store | Dynamic
    };

    // Pool

    /// Makes the pool of records; true when it is there. Before any type exists.
    static bool open();
    /// Gives the pool up, with all records that nobody holds any more.
    static void close();
    // A pooled record with one reference, from the arguments of each constructor; null without memory.
    [[nodiscard]] static ZProperty* create() { return make(); }
    [[nodiscard]] static ZProperty* create(const ZProperty& other) { return make(other); }
    [[nodiscard]] static ZProperty* create(const ZVariant& value) { return make(value); }
    [[nodiscard]] static ZProperty* create(const ZSelector& name, const ZVariant& value, uint flags = Default) {
        return make(name, value, flags);
    }
    [[nodiscard]] static ZProperty* create(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType,
                                           ZMetaType* indexType, uint flags = Default) {
        return make(name, valueType, itemType, indexType, flags);
    }
    [[nodiscard]] static ZProperty* create(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType,
                                           uint flags = Default) {
        return make(name, valueType, itemType, flags);
    }
    [[nodiscard]] static ZProperty* create(const ZSelector& name, ZMetaType* valueType, uint flags = Default) {
        return make(name, valueType, flags);
    }
    [[nodiscard]] static ZProperty* create(const ZProperty* a, const ZProperty* b, const ZBlendPos& pos) {
        return make(a, b, pos);
    }
    /// This record with another reference; null if it is on its way out, or isn't pooled.
    ZProperty* retain() const;
    /// Gives up one reference; with the last the record goes back to the pool.
    void release() const;
    /// 0 for a record that isn't pooled, and once the pool has gone.
    int refcount() const;
    /// A new pooled record of its own; null without memory.
    [[nodiscard]] ZProperty* copy() const { return create(*this); }

    // Lifetime. A record without flags has `Default`. Forms with types hold the null value of that type.

    ZProperty() = default;
    ZProperty(const ZProperty& other);
    explicit ZProperty(const ZVariant& value);
    ZProperty(const ZSelector& name, const ZVariant& value, uint flags = Default);
    ZProperty(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType, ZMetaType* indexType,
              uint flags = Default);
    ZProperty(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType, uint flags = Default);
    ZProperty(const ZSelector& name, ZMetaType* valueType, uint flags = Default);
    /// The blend of two, see `blendFrom`.
    ZProperty(const ZProperty* a, const ZProperty* b, const ZBlendPos& pos);
    ~ZProperty() = default;
    ZProperty& operator=(const ZProperty& other);
    void assign(const ZProperty& other) { *this = other; }

    // Fields

    const ZSelector& name() const { return selector; }
    void setName(const ZSelector& name) { selector = name; }
    uint flags() const { return bits; }
    void setFlags(uint flags);
    bool hasFlags(uint flags) const { return (bits & flags) == flags; }
    /// The option words, and the update methods with their dots, as they were set.
    const ZSelector& options() const { return words; }
    void setOptions(const ZSelector& options);
    /// -1 for none.
    int version() const { return versionNumber; }
    void setVersion(int version) { versionNumber = version; }
    /// -1 for none.
    int sandBoxLevel() const { return level; }
    void setSandBoxLevel(int sandBoxLevel) { level = sandBoxLevel; }
    /// Where the field stands in an instance, in bytes; -1 for none.
    int offset() const { return fieldOffset; }
    void setOffset(int offset) { fieldOffset = offset; }
    /// The type of the value, or that of the elements of a container.
    ZMetaType* getItemType() const { return itemType; }
    void setItemType(ZMetaType* type) { itemType = type; }
    /// The key type of a map; null for an array and for a plain value.
    ZMetaType* getIndex() const { return index; }
    void setIndex(ZMetaType* type) { index = type; }
    /// The default of a declaration; the value of a dynamic property.
    const ZVariant& value() const { return held; }
    /// Sets the value, that of the content for a variant that holds a variant, and works the types out anew.
    void setValue(const ZVariant& value);
    /// Sets the value and leaves the types as they are.
    void replaceValue(ZVariant value) { held = std::move(value); }
    ZProperty& operator=(const ZVariant& value) {
        setValue(value);
        return *this;
    }
    operator ZVariant() const { return held; }
    /// Works the item type, and for containers the index type and the collection flags, out from the value. Types of a
    /// `Fixed` property that holds a container stay as they are.
    void resetType();
    /// Puts an empty container in place of a missing one, where the value's type is a container. False without memory.
    bool setupContainer();
    /// Makes this the dynamic property that shows a value of something else.
    void setupDynamic(const ZVariant& value, const ZSelector& options);
    /// Makes a shared value private. False without memory.
    bool detach();

    // Comparison, blending

    /// By name, then by value, flags, options, version, sandbox level and types: -1, 0 or 1.
    int compare(const ZProperty& other) const;
    int compare(const ZSelector& name) const { return selector.compare(name); }
    /// Takes the fields of `a`, or of `b` if there is no `a`, with the smaller version and the larger sandbox level of
    /// both, and the blend of their values. The item type is the value's where there is none.
    void blendFrom(const ZProperty* a, const ZProperty* b, const ZBlendPos& pos);
    void blendValue(const ZVariant& a, const ZVariant& b, const ZBlendPos& pos);

    // Tests

    bool dynamic() const { return (bits & (Dynamic | Optional)) != 0; }
    bool collection() const { return index || (bits & Collection); }
    bool isArray() const { return (bits & Collection) && (!index || (bits & Array)); }
    bool readOnly() const { return (bits & ReadOnly) != 0; }
    bool resolved() const { return (bits & Resolve) != 0; }
    bool retained() const { return (bits & (Retain | Copy)) != 0; }
    /// Whether it keeps an object alive: retained, not read-only, and of an object type.
    bool retainedObject() const;
    bool storable() const { return (bits & Store) != 0; }
    bool variable() const { return (bits & Variable) != 0; }
    /// Whether walks over objects follow the value.
    bool isTraversed() const;
    bool hasOption(const ZSelector& word) const { return words.contains(word); }

    // The option language

    static uint scanFlags(const ZSelector& words);
    /// The number behind a letter in a word that is nothing else; -1 without such a word.
    static int scanVersion(const ZSelector& words, char letter = 'v');
    /// The number behind "sb"; -1 without such a word.
    static int scanSBLevel(const ZSelector& words);
    /// The words that are neither flags nor numbers nor update methods.
    static ZSelector extractOptions(const ZSelector& words);
    /// The update methods without their dots: empty, a name, or a list of words.
    static ZSelector extractUpdate(const ZSelector& words);
    /// The update methods that the options name.
    const ZSelector& getUpdaters() const { return updaters; }

    // Signatures of the accessor methods, as function selectors; empty where the property has no such accessor.

    /// `ptrForm`: the getter of a pointer to the value. `item`: the getter of one item.
    ZSelector getter(bool ptrForm, bool constForm, bool item) const;
    ZSelector setter(bool item) const;
    ZSelector counter() const;
    ZSelector byindex() const;
    ZSelector hasProp() const;
    ZSelector propKey() const;
    ZSelector propIndex() const;
    ZSelector findKey() const;
    ZSelector findIndex() const;
    ZSelector cleaner() const;
    ZSelector remover() const;
    ZSelector removeByIndex() const;
    ZSelector inserter() const;
    ZSelector adder() const;
    /// The text of the key parameter, with a comma in front of it or behind it; empty without a key.
    ZString getkey(bool commaBefore, bool commaBehind) const;

    // Work

    /// How many items an instance of the type has of the property: what its counter method answers. 0 for what is no
    /// container, and without a counter.
    int countItems(ZMetaType* type, const void* instance) const;
    /// Gives the object, which has this record as a dynamic property, methods that set it: the setter and, of a
    /// container, that of an item. They can be called, and bound to. Done once for a record unless `force` asks for it;
    /// a read-only property gets none. False without memory, and for null.
    bool setupMethods(ZObject* object, bool force);
    /// Marks the record as being walked; false if it is, or is a link. Other instances may share the record: a walk of
    /// theirs, too, finds it marked.
    bool beginUpdate();
    void endUpdate() { toolkit::store(updating, byte(0)); }
    bool isUpdating() const { return toolkit::load(updating) != 0; }

private:
    friend class ZPropertyPtr;

    static orv::SlotPool<ZProperty> records;

    template <class... A> static ZProperty* make(const A&... arguments) {
        ZProperty* record = records.make(arguments...);
        if (ORV_LIKELY(record != nullptr)) record->pooled = 1;
        return record;
    }
    ZMetaType* signatureType(bool item) const;
    void addVariableWord();
    void takeFields(const ZProperty& other);
    void nameContainerTypes(uint collectionFlags);

    uint bits = Default; ///< of `Flags`
    byte pooled = 0;
    byte methodsSetup = 0;
    byte updating = 0;
    int versionNumber = -1;
    int level = -1;
    int fieldOffset = -1;
    ZSelector selector;
    ZSelector words;
    ZSelector updaters;
    ZMetaType* itemType = nullptr;
    ZMetaType* index = nullptr;
    ZVariant held;
};
