#pragma once

#include "core/ZHashMapT.h"
#include "core/ZListT.h"
#include "core/ZSelectorMap.h"
#include "object/ZObject.h"
#include "object/typeKinds.h"

namespace orv {
struct BaseLink;
struct MetaTypeData;
struct MethodTables;
struct PropertyTables;
namespace glue {
struct ClassRow;
}
} // namespace orv

/// A callback of a metatype as its table stores it; read back as exactly the type that its index has.
using ZTypeCallback = void (*)();

/// The run-time description of a type: name, kind, size, bases, methods, properties, flags, option words, and how
/// instances of it are made, ended, copied, compared, converted and blended through untyped pointers. A metatype is an
/// object. Its package owns it; any thread may look things up in it. Tables are built when first asked for, published
/// whole and never changed in place: a lookup takes no lock. The kinds (`ZMetaType::Int` …) and flags are those of
/// `orv::TypeKinds`.
class ORV_API ZMetaType : public ZObject, public orv::TypeKinds {
public:
    /// Places in the callback table, with the function type of each. The type given is the one whose instance is made,
    /// which may be derived from the one that has the callback.
    enum CallBack {
        CopyType,           ///< ZMetaType* (*)(const ZMetaType*)
        CreateInstance,     ///< void* (*)(ZMetaType*)
        DeleteInstance,     ///< void (*)(void*)
        ReleaseInstance,    ///< void (*)(void*)
        RetainInstance,     ///< void* (*)(void*)
        ConstructInstance,  ///< bool (*)(void*, ZMetaType*)
        DestructInstance,   ///< bool (*)(void*)
        CopyInstance1,      ///< bool (*)(void* target, const void* source)
        CopyInstance2,      ///< void* (*)(const void* source)
        DetachInstance,     ///< bool (*)(void*)
        IsDetachedInstance, ///< bool (*)(const void*)
        CompareInstance,    ///< int (*)(const void*, const void*)
        FromString1,        ///< bool (*)(void*, const ZString&)
        FromString2,        ///< void* (*)(const ZString&)
        ToString,           ///< ZString (*)(const void*)
        Initialize,         ///< bool (*)(ZMetaType*), as the following: each adds to the tables of the type
        CreateTypes,
        CreateMethods,
        CreateProperties,
        CreateDispatch,
        CallBackCount
    };
    /// Labels of kinds of values that are asked for often; the higher ones name classes of the application.
    enum TypeIndexLabel {
        NoLabel,
        Variant,
        Array,
        HashSet,
        SelectMap,
        KeyMap,
        VariableGenerator,
        Transform,
        Color,
        LinearColor,
        GradientStyle,
        Image,
        MaskedImage,
        FillStyle,
        StrokeType,
        Shape,
        ShapeFilter,
        ImageFilter,
        Content,
        ElementContent,
        SoftMask,
        Element
    };

    using Types = ZHashMapT<ZSelector, ZRetainKeyT<ZSelector, ZMetaType>>;
    using MethodTable = ZHashTreeT<ZSelector, ZMethodPtr>;
    using PropertyTable = ZHashTreeT<ZSelector, ZPropertyPtr>;
    using SelectorGroups = ZHashMapT<ZSelector, ZKeyValueT<ZSelector, ZSelectorMap>>;

    // Lifetime. A constructor that runs out of memory raises a failure.

    ZMetaType(ZPackage* package, const ZSelector& name, Type kind, const __ZPassMetaType* type = nullptr,
              ZInternal* internal = nullptr);
    ZMetaType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& baseNames,
              const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    ZMetaType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZMetaType*>& baseTypes,
              const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZMetaType(const ZMetaType* source, const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZMetaType(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    /// The qualified variant of that name of a type that is none itself. `getQualified` makes these.
    ZMetaType(ZMetaType* main, const ZSelector& name);
    ~ZMetaType() override;

    // Finding

    /// By name in the root package and what it uses; makes qualified variants and template instances. Null with no root
    /// package.
    static ZMetaType* find(const ZSelector& name);
    /// The same, but makes nothing: for names from files, scripts and tools.
    static ZMetaType* findExisting(const ZSelector& name);
    static ZMetaType* findInTypeMap(const Types& types, const ZSelector& name);
    static ZMetaType* findInTypeNameMap(const Types& types, const ZSelector& name);
    static uint scanFlags(const ZSelector& words);
    static ZSelector extractOptions(const ZSelector& words);
    static bool addTypeBlockName(const ZSelector& type, const ZSelector& block);
    static bool removeTypeBlockName(const ZSelector& type);
    /// How well arguments fit parameters, entry 0 of both being the result; smaller is better, -1 no match. With
    /// `exactCount` false surplus or missing entries cost 64 each.
    static int distance(const ZArrayT<ZMetaType*>& arguments, const ZArrayT<ZMetaType*>& parameters, bool skipResult,
                        bool exactCount, bool implicit);
    static bool hasPackage(const ZArrayT<ZMetaType*>& types, const ZPackage* package);
    static void useTypes(const ZArrayT<ZMetaType*>& types);
    static void unuseTypes(const ZArrayT<ZMetaType*>& types);
    static int internalSizeOfType(bool whole);
    static bool open();
    static void close();

    // Asked on hot paths, without a virtual call

    Type kind() const { return typeKind; }
    uint byteSize() const { return typeSize; }
    /// Whether a variant holds a value of the type in its own 16 bytes.
    bool heldInline() const { return inlineValue; }
    bool holdsZType() const { return typeKind >= Dynamic; }
    /// What each instance calls as it starts and as it ends.
    void beginInstance(ZType* instance) {
        if (toolkit::load(watchesInstances)) addInstance(instance);
    }
    void endInstance(ZType* instance) {
        if (toolkit::load(watchesInstances)) removeInstance(instance);
    }
    ZMetaType* mainOrSelf() const { return mainType ? mainType : const_cast<ZMetaType*>(this); }
    /// The callback that instances of the type have: its own, its main type's, or, for a `ZType` class, that of its
    /// primary base.
    ZTypeCallback instanceCallback(CallBack index) const;
    /// A copy of a value in a counted block of its own, built by what builds copies in place; null if that fails.
    void* copyToBlock(const void* source) const;
    /// The record of an operation that is called on instances, see `orv::MetaTypeData::InlineOperation`.
    const ZInlineMethod& inlineOperation(int which) const;
    /// The type whose bases count for this one: that of a qualified variant is its main type.
    const ZMetaType* relationType() const;
    /// The declared bases and aliases as they are now.
    void copyLinks(ZArrayT<orv::BaseLink>& bases, ZArrayT<orv::BaseLink>& aliases) const;
    /// Where the part of a base, at whatever distance, lies in an instance; false if it is no base.
    bool upcastOffset(const ZMetaType* base, int& offset) const;
    const orv::MetaTypeData& record() const { return *own; }
    orv::MetaTypeData& record() { return *own; }
    /// What the type was declared from; null for types made at run time.
    const orv::glue::ClassRow* declaration() const;
    void setDeclaration(const orv::glue::ClassRow* row);

    // Reset

    virtual void clearLinkedTypes();
    virtual void clearVariants();
    virtual void clearSubTypes();
    virtual void removeSubTypes();
    virtual bool initialize();
    /// The ends of the list of this type's objects, in the order of creation. Objects come and go on any thread: a walk
    /// along them is for who knows that none does, all others ask `getTypeObjects`.
    virtual ZObject* getTypeFirst() const;
    virtual ZObject* getTypeLast() const;
    /// Adds the objects of this type, each retained. False, with none added, without memory.
    bool getTypeObjects(ZArrayT<ZRetainPtrT<ZObject>>& objects) const;
    virtual void changed();

    // Names

    virtual ZSelector getName() const;
    /// The name that signatures spell: behind that of the type that this one is nested in, if there is one.
    ZSelector signatureName() const;
    virtual ZSelector fullName() const;
    virtual ZSelector getQualifier() const;
    virtual void setQualifier(const ZSelector& qualifier);
    virtual ZSelector getPluginId() const;
    virtual void setPluginId(const ZSelector& id);
    virtual ZSelector getPluginPrefix() const;
    virtual void setPluginPrefix(const ZSelector& prefix);
    virtual ZSelector getLocalName() const;
    virtual void setLocalName(const ZSelector& name);
    virtual ZSelector nameLabel() const;
    virtual void setNameLabel(const ZSelector& label);
    virtual ZSelector typeSelector() const;
    /// Whether the option words have `word`; with `inherited`, or those of the main type or a base.
    virtual bool hasOption(const ZSelector& word, bool inherited) const;
    virtual ZSelector getExtraFlags() const;
    virtual void setExtraFlags(const ZSelector& words);
    virtual ZSelector getBlockName() const;
    virtual void setBlockName(const ZSelector& name);
    virtual ZSelector getSandBoxName() const;
    virtual void setSandBoxName(const ZSelector& name);
    virtual int getSandBoxLevel() const;
    virtual void setSandBoxLevel(int level);
    /// Whether new instances get dynamic properties that the type or one of its bases declares.
    virtual bool hasDynamicProperties() const;
    virtual void setDynamicProperties(bool on);
    virtual ZSelector constructorName() const;
    virtual ZSelector destructorName() const;
    virtual ZSelector copyConstructorName() const;
    virtual ZSelector streamConstructorName() const;
    virtual ZSelector loadConstructorName(bool withName) const;
    virtual bool canCopyType() const;
    virtual bool isContainer() const;
    virtual bool isVariable() const;
    virtual ZSelector externalName() const;
    virtual ZSelector externalName(const ZSelector& prefix) const;
    virtual void setPackage(ZPackage* package);
    virtual bool isPluginType(const ZSelector& id) const;
    virtual bool isPluginType(const ZPlugin* plugin) const;
    virtual void setRetainedMode();

    // Kind

    virtual Type getType() const;
    /// Of what a pointer, reference or qualified variant stands for.
    virtual Type getType(bool data) const;
    virtual void setTypeType(Type kind);
    virtual void resetWrapper();
    virtual bool hasWrapper() const;
    virtual bool hasCreator() const;
    virtual bool referenceStore() const;
    virtual bool skipMemberSearch() const;
    virtual bool isZType() const;
    virtual bool isZObject() const;
    virtual bool isReference() const;
    virtual bool isPointer() const;
    virtual bool polymorphic() const;
    virtual bool storable() const;
    virtual bool storageBase() const;
    virtual bool pointerKey() const;
    virtual bool isTraversed() const;
    virtual bool primitive() const;
    virtual bool binaryXSTValue() const;
    virtual ZMetaType* storageAliasType() const;
    virtual ZMetaType* aliasedStoreType() const;
    virtual bool storageAlias() const;
    virtual bool aliasedStore() const;
    virtual bool blendable() const;
    virtual bool allowCSPMark() const;
    virtual bool allowCSPUpdate() const;
    virtual bool isSynthetic() const;
    virtual void setSynthetic(bool on);
    virtual bool isLocalType() const;
    virtual void setLocalType(bool on);
    virtual bool atomicData() const;
    virtual bool nullableStore() const;
    virtual int getPtrCount() const;
    virtual int getInstanceCount() const;
    virtual uint getFlags() const;
    virtual void setFlags(uint flags);
    virtual bool spinLock() const;

    // Relatives

    virtual bool isLocalOf(const ZMetaType* other) const;
    virtual ZMetaType* rootType() const;
    virtual ZMetaType* findCopyType(const ZSelector& name) const;
    virtual ZMetaType* findLocal(const ZSelector& name) const;
    virtual bool isSameType(const ZMetaType* other) const;
    /// A private copy for one instance, with the count 1; null without memory.
    virtual ZMetaType* copyType() const;
    virtual ZMetaType* createQualified(const ZSelector& name);
    virtual ZMetaType* getPtrType() const;
    virtual ZMetaType* getConstType() const;
    virtual ZMetaType* getConstPtrType() const;
    /// The variant of that name ("const ZType*"), made on the first demand; one for each name.
    virtual ZMetaType* getQualified(const ZSelector& name) const;
    /// The same, but makes nothing; null if it isn't there yet.
    ZMetaType* findQualified(const ZSelector& name) const;

    // Enum steps and selector groups

    /// The enumeration that this is the type of, or a variant of; null for other types.
    virtual ZEnumType* enumType() const;
    /// The same for a composite.
    virtual ZCompositeType* compositeType() const;
    virtual ZSelector nextEnumName(const ZSelector& name) const;
    virtual ZSelector prevEnumName(const ZSelector& name) const;
    virtual int nextEnumValue(int value) const;
    virtual int prevEnumValue(int value) const;
    virtual bool selectorGroupNames(ZArrayT<ZSelector>& names) const;
    /// Empty if there is none.
    virtual ZSelectorMap selectorGroup(const ZSelector& name) const;
    virtual bool setSelectorGroup(const ZSelector& name, const ZSelectorMap& group);
    virtual ZSelector getNamedSelector(const ZSelector& name) const;

    // Resources

    virtual ZVariant loadResource(const ZSelector& name) const;
    virtual ZVariant loadResource(const ZSelector& group, const ZSelector& name) const;
    virtual ZVariant loadTypeResource(const ZSelector& name) const;
    virtual ZMetaType* loadResourceType(const ZSelector& name) const;
    virtual bool storeResource(const ZSelector& name, const ZVariant& value);
    virtual bool storeResource(const ZSelector& name, int value);
    virtual bool storeResource(const ZSelector& name, bool value);
    virtual bool storeResource(const ZSelector& name, const ZType* value);
    virtual bool storeResource(const ZSelector& group, const ZSelector& name, const ZVariant& value);
    virtual bool storeResource(const ZSelector& group, const ZSelector& name, int value);
    virtual bool storeResource(const ZSelector& group, const ZSelector& name, bool value);
    virtual bool storeResource(const ZSelector& group, const ZSelector& name, const ZType* value);
    virtual bool deleteResource(const ZSelector& name);
    virtual bool deleteResource(const ZSelector& group, const ZSelector& name);
    virtual bool selectStyle(const ZSelector& name);
    virtual bool selectStyle(const ZSelector& group, const ZSelector& name);

    // Layout. Sizes and offsets are bytes.

    virtual ZMetaType* getMainType() const;
    virtual ZMetaType* getOwnerType() const;
    /// One "*" less, or without "&".
    virtual ZMetaType* derefType() const;
    /// The main type, whatever qualifiers and "*" stand on this one.
    virtual ZMetaType* getDataType() const;
    virtual ZMetaType* getValueType() const;
    virtual uint getSize() const;
    virtual void setSize(uint bytes);
    virtual uint getAlignment() const;
    virtual void setAlignment(uint bytes);
    /// Rounded up to 16.
    virtual uint getInternalSize() const;
    virtual void setInternalSize(uint bytes);
    virtual bool dynamicInternal() const;
    virtual void setDynamicInternal(bool on);
    virtual int internalOffset() const;
    virtual void setInternalOffset(int bytes);
    virtual ZTypeCallback getCallback(CallBack index) const;
    virtual void setCallback(CallBack index, ZTypeCallback function);

    // Table builders: they run the callback at the first demand, with no lock held. What the callback adds to the type
    // is seen by nobody else until it has answered true; false leaves nothing. Two threads may run it for one table:
    // what the first made counts.

    virtual bool createTypes();
    virtual bool createMethods();
    virtual bool createProperties();
    virtual bool createDispatch();

    // Stored properties: the declared ones with the word "store", in order of declaration, bases first

    virtual int storedPropertyCount() const;
    virtual ZProperty* storedPropertyDef(int index) const;
    virtual ZProperty* storedPropertyDef(const ZSelector& name) const;
    virtual int storedPropertyOffset(int index) const;
    virtual ZSelector storedPropertyName(int index) const;
    virtual ZMetaType* storedPropertyType(int index) const;
    virtual void* storedPropertyInstance(void* instance, int index) const;
    virtual const void* storedPropertyInstance(const void* instance, int index) const;
    virtual void* localPropertyInstance(void* instance, const ZSelector& name) const;
    virtual const void* localPropertyInstance(const void* instance, const ZSelector& name) const;

    // Instances, through untyped pointers

    /// The type of the instance itself, which may be derived from this one.
    virtual ZMetaType* actualType(const void* instance) const;
    virtual bool isVariant() const;
    /// Whether all bytes zero are a constructed value.
    virtual bool isZeroable() const;
    /// A new instance on a counted block; null without memory or when it can't be made.
    virtual void* createInstance();
    virtual void deleteInstance(void* instance) const;
    virtual void releaseInstance(void* instance) const;
    virtual void directInstanceRelease(void* instance) const;
    virtual void* retainInstance(void* instance) const;
    /// Builds a value in `getSize` bytes of raw memory; false, with nothing built, if that fails.
    virtual bool constructInstance(void* instance);
    virtual bool destructInstance(void* instance) const;
    /// Builds a copy of `source` in raw memory.
    virtual bool copyInstance(void* target, const void* source) const;
    virtual void* copyInstance(const void* source) const;
    /// -1, 0, 1; equal addresses are equal values, null comes last.
    virtual int compareInstance(const void* a, const void* b) const;
    virtual bool detachInstance(void* instance) const;
    virtual bool deepDetachProperties(void* instance, ZDetachContext* context) const;
    virtual bool deepDetachInstance(void* instance, ZDetachContext* context) const;
    virtual bool isDetachedInstance(const void* instance) const;
    virtual bool isNullData(const void* instance) const;
    virtual bool fromString(void* instance, const ZString& text) const;
    virtual void* fromString(const ZString& text) const;
    virtual bool toString(const void* instance, ZString& text) const;
    virtual bool readInstance(void* instance, ZStream* stream) const;
    virtual void* readInstance(ZStream* stream) const;
    virtual bool writeInstance(ZStream* stream, const void* instance) const;
    virtual bool loadFromXST(void* instance, const ZXSTNode* node) const;
    virtual bool loadFromXST(void* instance, const ZXSTNode* node, const ZSelector& name) const;
    virtual void* loadFromXST(const ZXSTNode* node) const;
    virtual void* loadFromXST(const ZXSTNode* node, const ZSelector& name) const;
    virtual bool storeToXST(const void* instance, ZXSTNode* node) const;
    virtual bool storeToXST(const void* instance, ZXSTNode* node, const ZSelector& name) const;
    virtual bool blendStoredLocal(void* instance, const void* a, const void* b, const ZBlendPos& pos) const;
    virtual bool blendStoredProperties(void* instance, const void* a, const void* b, const ZBlendPos& pos) const;
    virtual bool blendInstance(void* instance, const void* a, const void* b, const ZBlendPos& pos) const;
    virtual void* blendInstance(const void* a, const void* b, const ZBlendPos& pos) const;
    virtual bool setIdentityStoredLocal(void* instance) const;
    virtual bool setIdentityStoredProperties(void* instance) const;
    virtual bool setIdentityInstance(void* instance) const;
    virtual bool markCSPStoredLocal(const void* instance, ZCSPMarker* marker) const;
    virtual bool markCSPStoredProperties(const void* instance, ZCSPMarker* marker) const;
    virtual bool updateCSPStoredLocal(void* instance, const ZColorContext* context) const;
    virtual bool updateCSPStoredProperties(void* instance, const ZColorContext* context) const;
    virtual bool markCSPInstance(const void* instance, ZCSPMarker* marker) const;
    virtual bool updateCSPInstance(void* instance, const ZColorContext* context) const;
    virtual ZType* createType();
    virtual ZType* createType(ZStream* stream);
    virtual ZType* createType(const ZXSTNode* node);
    virtual ZType* blendType(const ZType* a, const ZType* b, const ZBlendPos& pos) const;
    /// The value that an accessor method gives for `instance`, with a key for an item accessor.
    virtual ZVariant getVariant(ZMethod* method, const void* instance) const;
    virtual ZVariant getVariant(ZMethod* method, const void* instance, int key) const;
    virtual ZVariant getVariant(ZMethod* method, const void* instance, const ZSelector& key) const;
    virtual ZVariant getVariant(ZMethod* method, const void* instance, const void* key) const;
    virtual ZVariant getVariant(ZMethod* method, const void* instance, const ZVariant& key) const;
    virtual bool setVariant(ZMethod* method, const void* instance, const ZVariant& value) const;
    virtual bool setVariant(ZMethod* method, const void* instance, int key, const ZVariant& value) const;
    virtual bool setVariant(ZMethod* method, const void* instance, const ZSelector& key, const ZVariant& value) const;
    virtual bool setVariant(ZMethod* method, const void* instance, const ZVariant& key, const ZVariant& value) const;
    virtual int findVariant(ZMethod* method, const void* instance, const ZVariant& value) const;

    // Conversion

    virtual int calcInternalSize(bool whole) const;
    /// How well a value converts by a constructor of `other`: what is nearest to the constructor's argument decides.
    virtual int implicitDistance(const ZMetaType* other) const;
    virtual void setupImplicitMap();
    virtual ZMethod* findImplicitConstructor(const ZMetaType* source) const;
    /// Builds a value in raw memory out of what `source` holds; false if it can't be converted.
    virtual bool constructFrom(void* instance, const ZVariant& source);
    virtual void* createFrom(const ZVariant& source);

    // Base graph

    virtual bool addDescendant(ZMetaType* type);
    virtual void removeDescendant(ZMetaType* type);
    virtual ZArrayT<ZMetaType*> getBaseTypes() const;
    virtual bool getBaseTypes(ZArrayT<ZMetaType*>& all) const;
    /// As declared, those that aren't resolved among them.
    virtual ZArrayT<ZSelector> getBaseNames() const;
    virtual ZArrayT<ZMetaType*> getDescendants() const;
    virtual bool getDescendants(ZArrayT<ZMetaType*>& all) const;
    virtual ZSelector getTemplatePar(int index) const;
    /// The types that can be made of this one by a constructor of theirs; and those that this one can be made of.
    virtual ZArrayT<ZMetaType*> getImplicitTo() const;
    virtual ZArrayT<ZMetaType*> getImplicitFrom() const;
    virtual ZArrayT<ZMetaType*> getCopies() const;
    virtual ZMetaType* getTemplateType() const;
    /// The types nested in this one, by name.
    virtual Types getTypes() const;
    virtual bool getTypes(ZArrayT<ZMetaType*>& types) const;

    // Tables, as they are now. One that is answered by reference is borrowed, with its entries, under an epoch guard
    // that the caller has opened before: without one it may be freed while it is read, as soon as somebody changes the
    // type. Copies and lists are the caller's, but methods and properties in lists are borrowed as well. Short walks
    // only: an open guard holds up what all threads retire.

    virtual const MethodTable& getMethodTypes() const;
    virtual bool getMethodTypes(ZArrayT<ZMethod*>& methods) const;
    virtual bool getMethodTypes(const ZSelector& name, ZArrayT<ZMethod*>& methods) const;
    virtual bool getMethodTypes(ZArrayT<ZSelector>& signatures) const;
    virtual bool getMethodTypes(ZHashSetT<ZSelector>& signatures) const;
    virtual const MethodTable& getUserMethods() const;
    virtual bool getUserMethods(ZArrayT<ZMethod*>& methods) const;
    virtual bool getUserMethods(const ZSelector& name, ZArrayT<ZMethod*>& methods) const;
    virtual bool getUserMethods(ZArrayT<ZSelector>& signatures) const;
    virtual bool getUserMethods(ZHashSetT<ZSelector>& signatures) const;
    virtual const PropertyTable& getPropertyTypes() const;
    virtual bool getPropertyTypes(ZArrayT<ZSelector>& names) const;
    virtual const PropertyTable& getUserProperties() const;
    virtual bool getUserProperties(ZArrayT<ZSelector>& names) const;
    virtual Types getVariants() const;
    virtual bool getVariants(ZArrayT<ZMetaType*>& variants) const;
    virtual ZArrayT<ZTypeCategory*> getCategories() const;
    virtual bool getCategories(ZArrayT<ZSelector>& names) const;
    virtual const ZArrayT<ZFixedMethod>& getFixedMethods() const;
    virtual bool setBaseTypes(const ZArrayT<ZMetaType*>& types);
    virtual bool setBaseNames(const ZArrayT<ZSelector>& names);
    virtual bool setTypes(const Types& types);
    virtual bool setUserMethods(const MethodTable& methods);
    virtual bool setPropertyTypes(const PropertyTable& properties);
    virtual bool setUserProperties(const PropertyTable& properties);
    virtual bool setTypeMethodDispatch(const ZHashTreeT<ZSelector, ZMethodDispatch>& dispatch);
    virtual bool setCategories(const ZArrayT<ZTypeCategory*>& categories);
    virtual bool useFixedMethods();
    virtual bool resetBase();
    virtual int baseCount() const;
    virtual ZMetaType* baseType(int index) const;
    /// Where the base's part lies in an instance.
    virtual int baseOffset(int index) const;
    virtual void setBaseOffset(int index, int bytes);
    virtual bool addBase(ZMetaType* type);
    virtual bool addBase(const ZSelector& name);
    /// Whether there is one base, and no base above it has several.
    virtual bool isSingleBase() const;
    virtual ZMetaType* primaryBase() const;
    virtual bool isBase(const ZMetaType* other) const;
    virtual bool isBase(const ZSelector& name) const;
    virtual bool isDescendant(const ZMetaType* other) const;
    virtual bool isDescendant(const ZSelector& name) const;
    virtual bool addAlias(ZMetaType* type);
    virtual bool addAlias(const ZSelector& name);
    virtual bool isAliasOf(const ZMetaType* other) const;
    virtual bool isAliasOf(const ZSelector& name) const;
    /// The same type, a base, an alias or a category.
    virtual bool typeOf(const ZMetaType* other) const;
    virtual bool typeOf(const ZSelector& name) const;
    /// How well a value of this type fits a parameter of type `other`.
    virtual int distance(const ZMetaType* other, bool implicit) const;

    // Instance list

    /// Fires the method of that name of an instance: calls what is bound to it. False if there is no such method.
    virtual bool callInstance(ZObject* instance, const ZSelector& name) const;
    virtual void addInstance(ZType* instance);
    virtual void removeInstance(ZType* instance);
    /// The type is an object too: binds each method of the instance that is marked for it, or the one of that name, to
    /// the method of the same signature that the type has as an object.
    virtual bool bindInstance(ZObject* instance);
    virtual bool bindInstance(ZObject* instance, const ZSelector& name);
    virtual bool unbindInstance(ZObject* instance);
    virtual bool unbindInstance(ZObject* instance, const ZSelector& name);
    virtual bool hasSingleton() const;
    virtual ZObject* getSingleton() const;
    virtual void setSingleton(ZObject* object);

    // Type delegates

    virtual ZListT<ZObject*> getTypeDelegates() const;
    virtual bool setTypeDelegates(const ZListT<ZObject*>& delegates);
    virtual bool addTypeDelegate(ZObject* delegate);
    virtual bool removeTypeDelegate(ZObject* delegate);
    virtual void setupDelegates(ZObject* instance);
    virtual void updateDelegate(ZObject* delegate);
    virtual bool addType(ZMetaType* type);
    virtual bool removeType(const ZMetaType* type);
    virtual bool removeType(const ZSelector& name);

    // Methods. A qualifier that is asked for has to equal that of the method or be among its words.

    virtual uint methodTypeCount() const;
    virtual bool getMethodTypesWithOptions(const ZSelector& words, ZArrayT<ZMethod*>& methods) const;
    virtual bool getAutoBindMethodTypes(ZArrayT<ZMethod*>& methods) const;
    virtual bool setFixedMethodCount(int count);
    virtual bool setFixedMethod(int index, const ZSelector& signature, const ZSelector& qualifier);
    virtual ZMethod* getFixedMethod(int index) const;
    virtual ZMethod* getCompareMethod() const;
    virtual ZMethod* getInternalMethod() const;
    virtual ZMethod* getHashMethod() const;
    virtual ZMethod* getBlendMethod() const;
    virtual ZMethod* getBlendLocalMethod() const;
    virtual ZMethod* getSetIdentityMethod() const;
    virtual ZMethod* getSetLocalIdentityMethod() const;
    virtual ZMethod* getMarkCSPMethod() const;
    virtual ZMethod* getMarkLocalCSPMethod() const;
    virtual ZMethod* getUpdateCSPMethod() const;
    virtual ZMethod* getUpdateLocalCSPMethod() const;
    virtual const ZMethodPtr* methodTypeNode(const ZSelector& selector) const;
    virtual ZMethod* methodTypeBySelector(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual bool hasMethodType(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual bool hasMultimethodType(const ZSelector& name, const ZSelector& qualifier) const;
    virtual ZMethod* findMultimethodType(int* distance, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                                         bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;
    virtual bool implementMethod(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual bool implementMethod(const ZMethod* method) const;
    virtual bool implementMethod(const ZSelector& selector) const;
    virtual ZMethod* methodType(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* methodType(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* methodType(const ZSelector& selector) const;
    /// With the offset of the part that the method is called on.
    virtual ZMethod* methodType(int* offset, const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* baseMethodType(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* baseMethodType(int* offset, const ZSelector& selector, const ZSelector& qualifier) const;
    virtual ZMethod* multimethodType(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                     const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                     const ZSelector& qualifier) const;
    virtual ZMethod* multimethodType(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const;
    virtual ZMethod* baseMultimethodType(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                         const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                         const ZSelector& qualifier) const;
    /// Adds a method to the table that is being built, or to the published one.
    virtual bool appendMethod(ZMethod* method);
    virtual bool setMethodType(const ZMethodPtr& method);
    virtual bool setMethodType(ZMethod* method, bool replace);
    virtual bool addMethodTypes(const MethodTable& methods);
    virtual bool addMethodTypes(const ZMetaType* source);
    virtual bool removeMethodType(const ZSelector& selector, const ZSelector& qualifier);
    virtual bool typesAreReset() const;
    virtual void resetType(bool build);
    virtual void resetMethodTypes();
    virtual void resetFixedMethods();
    virtual bool collectSelectors(ZSelectorMap& selectors) const;
    virtual bool collectEnums(ZArrayT<ZEnumType*>& enums) const;
    /// Bindings of the type's instances that lead from or to a method of that name are looked up again.
    virtual void changeInstanceBindings(ZMethod* method);
    virtual void initTemplateType(const ZSelector& name);
    virtual void resetInlineMethodTypes();
    virtual void resetInlineMethodTypes(const ZSelector& name);
    virtual void linkInlineMethodType(ZInlineMethod* record);
    virtual void unlinkInlineMethodType(ZInlineMethod* record);
    virtual uint userMethodCount() const;
    virtual bool getUserMethodsWithOptions(const ZSelector& words, ZArrayT<ZMethod*>& methods) const;
    virtual const ZMethodPtr* userMethodNode(const ZSelector& selector) const;
    virtual ZMethod* userMethodBySelector(const ZSelector& selector, const ZSelector& qualifier) const;
    virtual bool setUserMethod(const ZMethodPtr& method);
    virtual bool setUserMethod(ZMethod* method, bool replace);
    virtual bool addUserMethods(const MethodTable& methods);
    virtual bool addUserMethods(const ZMetaType* source);
    virtual bool removeUserMethod(const ZSelector& selector, const ZSelector& qualifier);

    // Properties

    virtual bool addUserProperty(const ZProperty& property);
    virtual bool addUserProperties(const PropertyTable& properties);
    virtual bool addUserProperties(const ZMetaType* source);
    virtual bool removeUserProperty(const ZSelector& name);
    virtual uint fixedPropertyCount() const;
    virtual uint propertyDefCount() const;
    virtual bool propertyDef(ZTypedPtr* typed, const ZSelector& name, ZProperty& found) const;
    virtual bool propertyDef(const ZSelector& name, ZProperty& found) const;
    virtual ZProperty* findPropertyOfType(const ZMetaType* type) const;
    virtual bool propertyDefNames(ZArrayT<ZSelector>& names) const;
    virtual bool collectProperties(PropertyTable& properties) const;
    virtual bool propertyDefsWithOptions(const ZSelector& words, ZArrayT<ZSelector>& names) const;
    virtual bool propertyDefsWithOptions(const ZSelector& words, PropertyTable& properties) const;
    virtual bool collectRetainedObjectNames(ZArrayT<ZSelector>& names) const;
    virtual bool collectPropertyDefNames(ZHashSetT<ZSelector>& names) const;
    virtual bool hasStoredVariableName(const void* instance, const ZSelector& name) const;
    /// See `ZType::enumerateProperties`: visits run within an epoch guard, and shouldn't wait.
    virtual bool enumeratePropertyDefs(const void* instance, orv::PropertyVisit visit, void* context) const;
    virtual bool updatePropertyDefs(ZTypedPtr* typed, orv::PropertyVisit filter, orv::PropertyVisit update,
                                    void* context, bool recursive, bool detached) const;
    /// Gives, one after the other, what answers for the type's instance; false past the last.
    virtual bool delegateProperties(const ZType* instance, int index, ZTypedPtr& typed) const;
    virtual bool delegatePropertyRef(const ZType* instance, const ZSelector& name, ZPropertyRef& ref) const;
    virtual ZProperty* findPropertyDef(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZProperty* findPropertyDef(const ZSelector& name) const;
    virtual int propertyDefVersion(const ZSelector& name) const;
    virtual uint propertyDefFlags(const ZSelector& name) const;
    virtual bool isDynamicPropertyDef(const ZSelector& name) const;
    virtual bool isResolvedPropertyDef(const ZSelector& name) const;
    virtual bool isCollectionPropertyDef(const ZSelector& name) const;
    virtual bool hasPropertyDef(ZTypedPtr* typed, const ZSelector& name) const;
    virtual bool hasPropertyDef(const ZSelector& name) const;
    virtual bool getPropertyDef(ZTypedPtr* typed, const ZSelector& name, ZVariant& value) const;
    virtual bool getPropertyDef(const ZProperty* property, const void* instance, ZVariant& value) const;
    virtual ZMetaType* propertyDefType(const ZSelector& name) const;
    virtual ZMetaType* propertyDefType(ZTypedPtr* typed, const ZSelector& name) const;
    virtual bool setPropertyDef(const ZProperty& property);
    virtual bool addPropertyDef(const ZPropertyPtr& property);
    virtual bool addPropertyDefs(const PropertyTable& properties);
    virtual bool addPropertyDefs(const ZMetaType* source);
    virtual bool removePropertyDef(const ZSelector& name);
    virtual ZMethod* getterMethod(ZTypedPtr* typed, const ZSelector& name, bool ptrForm, bool constForm,
                                  bool item) const;
    virtual ZMethod* getterMethod(ZTypedPtr* typed, const ZProperty* prop, bool ptrForm, bool constForm,
                                  bool item) const;
    virtual ZMethod* setterMethod(ZTypedPtr* typed, const ZSelector& name, bool item) const;
    virtual ZMethod* setterMethod(ZTypedPtr* typed, const ZProperty* prop, bool item) const;
    virtual ZMethod* counterMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* counterMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* propByIndexMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* propByIndexMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* hasPropMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* hasPropMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* propKeyMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* propKeyMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* propIndexMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* propIndexMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* findKeyMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* findKeyMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* findIndexMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* findIndexMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* cleanerMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* cleanerMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* removerMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* removerMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* removeByIndexMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* removeByIndexMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* inserterMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* inserterMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    virtual ZMethod* adderMethod(ZTypedPtr* typed, const ZSelector& name) const;
    virtual ZMethod* adderMethod(ZTypedPtr* typed, const ZProperty* prop) const;
    /// Gives a new instance the declared dynamic properties with their defaults.
    virtual bool setupProperties(ZType* instance);

    // Synthetic properties: names that no table holds and that the type answers for. `typed` is the instance.

    virtual uint syntheticPropertyCount(const ZTypedPtr& typed) const;
    virtual bool syntheticProperty(const ZTypedPtr& typed, const ZSelector& name, ZProperty& found, bool resolve) const;
    virtual bool syntheticPropertyNames(const ZTypedPtr& typed, ZArrayT<ZSelector>& names) const;
    virtual bool hasSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const;
    virtual ZMetaType* getSyntheticPropertyType(const ZTypedPtr& typed, const ZSelector& name) const;
    virtual ZVariant getSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, bool expand) const;
    virtual ZVariant getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index) const;
    virtual ZVariant getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name,
                                              const ZSelector& key) const;
    virtual ZVariant getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const void* key) const;
    virtual ZVariant getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const;
    virtual int getSyntheticPropertyCount(const ZTypedPtr& typed, const ZSelector& name) const;
    virtual bool hasSyntheticPropertyValue(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value) const;
    virtual ZVariant getSyntheticPropertyKey(const ZTypedPtr& typed, const ZSelector& name, int index) const;
    virtual int getSyntheticPropertyKeyIndex(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const;
    virtual ZVariant findSyntheticPropertyKey(const ZTypedPtr& typed, const ZSelector& name,
                                              const ZVariant& value) const;
    virtual int findSyntheticPropertyIndex(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value) const;
    virtual bool clearSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const;
    virtual bool removeSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const;
    virtual bool removeSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index) const;
    virtual bool insertSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key,
                                             const ZVariant& value, bool notify) const;
    virtual bool addSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                          bool notify) const;
    virtual bool setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                      bool notify) const;
    virtual bool setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index,
                                          const ZVariant& value, bool notify) const;
    virtual bool setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZSelector& key,
                                          const ZVariant& value, bool notify) const;
    virtual bool setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key,
                                          const ZVariant& value, bool notify) const;

    // Categories and dispatch

    virtual void resetSubTypes();
    virtual bool hasCategory(const ZSelector& name) const;
    virtual bool hasCategory(const ZTypeCategory* category) const;
    virtual bool addCategory(const ZSelector& name);
    virtual bool addCategory(ZTypeCategory* category);
    virtual bool removeCategory();
    virtual bool removeCategory(const ZSelector& name);
    virtual bool removeCategory(ZTypeCategory* category);
    virtual void useTypeDispatch();
    virtual void cleanTypeDispatch();
    virtual bool typeCallDispatch(ZObject* object, const ZSelector& name, const ZArrayT<ZVariant>& arguments);
    virtual bool typeCallDispatch(ZObject* object, const ZSelector& name);
    /// A copy of the type's table of signals, which is built if need be.
    DispatchTable getTypeMethodDispatch() const;
    bool addTypeDispatch(const DispatchTable& dispatch);
    bool removeTypeDispatch(const DispatchTable& dispatch);
    virtual bool typeDispatch(ZObject* object, const ZSelector& name, const ZArrayT<ZVariant>& arguments);

    // Declared

    virtual int indexLabel() const;
    virtual void setIndexLabel(int label);
    /// Whether each instance holds a reference to the type.
    virtual bool retainedType() const;
    virtual void setRetainedType(bool on);

    // Inherited operations for which a metatype has an answer of its own

    ZType* copy() const override;
    ZPackage* package() const override;
    ZMetaType* findType(const ZSelector& name) const override;
    /// Brings what the type has from its categories up to date.
    void resetCategories() override;

protected:
    friend class ZObject;
    friend struct orv::detail::ObjectLayout;

    /// Makes the private part; a failure is raised without memory.
    void setup(const ZSelector& name, Type kind);
    void labelLock(const ZSelector& name);
    void copyRecord(const orv::MetaTypeData& source);
    void copyFields(const orv::MetaTypeData& source);
    bool copyBases(const orv::MetaTypeData& source);
    void enterPackage(ZPackage* package);
    void leaveMainType();
    SelectorGroups allSelectorGroups() const;
    bool joinCategory(ZTypeCategory* category);
    bool rejoinCategory(ZTypeCategory* category);
    void dropCategories();
    template <class F> bool eachDispatch(F&& call);
    template <class F> bool changeDispatch(F&& change);
    void publishDispatch(const DispatchTable& dispatch);
    static void leaveOwner(ZMetaType* type);
    /// A new variant of this type, with one reference. Where the class has operations of its own on instances, variants
    /// that are no pointers are of the class too.
    virtual ZMetaType* makeVariant(const ZSelector& name);
    ZSelector operationName(int which) const;
    /// The type that flags, words and callbacks stand in: that of a qualified variant is its main type.
    const ZMetaType* described() const;
    bool blendPointer(void* instance, const void* a, const void* b, const ZBlendPos& pos) const;
    bool changeImplicitTo(ZMetaType* type, bool add);
    void clearImplicitMap();
    bool constructByMethod(void* instance, const ZVariant& source);
    bool constructNumber(void* instance, const ZMetaType& type, const void* value) const;
    bool constructPointer(void* instance, const ZVariant& source);
    bool buildInstance(void* zeroed);
    ZSelector derefReference() const;
    ZMetaType* findNested(const ZSelector& name) const;
    const ZMetaType* existing(const ZSelector& name) const;
    /// Lets the main type go, which goes itself.
    void standAlone();
    bool acceptsBase(const ZMetaType* base) const;
    void basesWereSet();
    void dropBase(ZMetaType* type);
    void releaseBases();
    void releaseAliases();
    /// To be called after each change of kind, size, alignment or pointer count: also tells the qualified variants.
    void updateInline();
    void updateWatch();
    bool predicate(int which, bool (*compute)(const ZMetaType*)) const;
    /// Joins, and leaves, the list of instances; takes the write lock.
    void linkObject(ZObject* object);
    void unlinkObject(ZObject* object);
    /// Objects that are left when the type goes have none any more.
    void dropObjects();

    ZMetaType* mainType = nullptr;
    Type typeKind = Unknown;
    bool inlineValue = false;
    bool watchesInstances = false;
    uint typeSize = 0;
    int instanceCount = 0;
    orv::MetaTypeData* own = nullptr;
};
