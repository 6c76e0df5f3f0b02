#pragma once

#include "core/ZHashMapT.h"
#include "core/ZLock.h"
#include "core/ZSelectorMap.h"
#include "object/ZMetaType.h"
#include "object/ZMethodDispatch.h"
#include "object/ZMethodPtr.h"
#include "object/ZPropertyPtr.h"

/// Declarations that extend existing types from outside: methods, properties, dispatch entries, nested types and bases.
/// A type that it is added to (`ZMetaType::addCategory`) has them as if it had declared them; what a type declares
/// itself, and what an earlier category brings, comes first. A category may name others, which come along with it, also
/// ones of packages that its own uses. Its package holds it.
///
/// Tables are built by the callbacks when they are first asked for, as those of a type are: with no lock held, and seen
/// by others when they are whole. Of a builder that fails nothing is kept, and it runs again. Any thread may ask; set
/// up, and changed, by one thread at a time. Operations that change it answer false, with nothing changed, without
/// memory, and have no effect on types that have the category already until `resetCategory`.
class ORV_API ZTypeCategory : public ZObject {
public:
    /// Places in the callback table: each is a `bool (*)(ZTypeCategory*)` that adds to the category.
    enum CallBack { Initialize, CreateTypes, CreateMethods, CreateProperties, CreateDispatch, CallBackCount };
    using Names = ZArrayT<ZSelector>;
    using MethodTable = ZMetaType::MethodTable;
    using PropertyTable = ZMetaType::PropertyTable;
    using SelectorGroups = ZMetaType::SelectorGroups;
    /// How deep categories may be nested.
    static constexpr int deepest = 64;

    // Lifetime

    ZTypeCategory(ZPackage* package, const ZSelector& name, const __ZPassMetaType* type = nullptr,
                  ZInternal* internal = nullptr);
    /// With a callback that fills it, which runs at once; a failure is raised if that answers false.
    ZTypeCategory(ZPackage* package, const ZSelector& name, ZTypeCallback initialize,
                  const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZTypeCategory(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    ~ZTypeCategory() override;

    ZPackage* package() const override { return toolkit::loadAcquire(ownerPackage); }
    virtual void setPackage(ZPackage* package);
    virtual ZTypeCallback getCallback(CallBack index) const;
    virtual void setCallback(CallBack index, ZTypeCallback function);

    // Bases that an extended type gets

    virtual bool addBaseType(const ZSelector& name);
    virtual bool addBaseType(const ZMetaType* type);
    virtual bool removeBaseType(const ZSelector& name);
    virtual Names getBaseTypes() const;
    virtual bool getBaseTypes(Names& names) const;
    virtual bool setBaseTypes(const Names& names);

    // Categories that come along

    virtual bool addCategory(const ZSelector& name);
    virtual bool addCategory(const ZTypeCategory* category);
    virtual bool removeCategory(const ZSelector& name);
    virtual Names getCategories() const;
    virtual bool getCategories(Names& names) const;
    virtual bool setCategories(const Names& names);

    // Types that it extends by itself: these and what descends from them

    virtual bool addAutoExtend(const ZSelector& name);
    virtual bool addAutoExtend(const ZMetaType* type);
    virtual bool removeAutoExtend(const ZSelector& name);
    virtual Names getAutoExtend() const;
    virtual bool getAutoExtend(Names& names) const;
    virtual bool setAutoExtend(const Names& names);
    virtual bool canExtend(const ZMetaType* type) const;
    /// Adds this category to each type of a package that it can extend; ends at the first that refuses.
    virtual bool setupAutoExtend(ZPackage* package);

    // Tables. A `ZMethod*` is borrowed from the category.

    virtual bool createTypes();
    virtual bool createMethods();
    virtual bool createProperties();
    virtual bool createDispatch();
    virtual bool appendMethod(ZMethod* method);
    virtual bool addPropertyDef(const ZPropertyPtr& property);
    bool addDispatch(const ZMethodDispatch& dispatch) override;
    using ZObject::addDispatch;
    virtual bool addType(ZMetaType* type);
    virtual MethodTable getMethodTypes() const;
    virtual bool getMethodTypes(ZArrayT<ZMethod*>& methods) const;
    virtual PropertyTable getPropertyTypes() const;
    virtual bool getPropertyTypes(Names& names) const;
    virtual DispatchTable getDispatchTypes() const;
    virtual bool getDispatchTypes(Names& names) const;
    virtual bool setMethodTypes(const MethodTable& methods);
    virtual bool setPropertyTypes(const PropertyTable& properties);
    virtual bool setDispatchTypes(const DispatchTable& dispatch);
    virtual bool setTypes(const ZMetaType::Types& types);
    virtual ZMetaType::Types getTypes() const;
    /// One of its own types; null if there is none.
    ZMetaType* findType(const ZSelector& name) const override;
    virtual ZMethod* methodTypeBySelector(const ZSelector& selector, const ZSelector& qualifier) const;
    /// Builds the tables that `findMultimethodType` goes through.
    bool calcMultiMethods() const override;
    /// The overload that fits best, of this category and those that come along; see `ZMetaType::multimethodType`.
    virtual ZMethod* findMultimethodType(int* distance, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                                         bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const;

    // What an extended type gets, from this category and those that come along

    /// Appends what isn't there yet under the same signature, or name.
    virtual bool collectMethods(MethodTable& methods) const;
    virtual bool collectProperties(PropertyTable& properties) const;
    virtual bool collectDispatch(DispatchTable& dispatch) const;
    virtual bool collectSelectorGroups(SelectorGroups& groups) const;
    /// Nested types and bases; ends at the first that the type refuses.
    virtual bool extendTypes(ZMetaType* type) const;
    virtual bool extendDispatch(ZMetaType* type) const;
    /// Runs what its package runs when all its types are there.
    virtual bool setupCategory();
    /// Throws the tables away, to be built anew, also in the types that have the category.
    virtual void resetCategory();
    /// Takes it out of all types that have it.
    void leaveTypes();

    // Selector groups, which an extended type has too

    virtual bool selectorGroupNames(Names& names) const;
    virtual ZSelectorMap selectorGroup(const ZSelector& name) const;
    virtual bool setSelectorGroup(const ZSelector& name, const ZSelectorMap& group);

private:
    friend class ZMetaType;
    struct Nested;

    bool edit(Names& names, const ZSelector& name, bool add);
    template <class T> bool build(CallBack index, T& table, bool (*join)(T& to, const T& from));
    template <class T> T tableOf(bool (ZTypeCategory::*create)(), const T& table) const;
    template <class T> bool setTable(bool (ZTypeCategory::*create)(), T& table, const T& to);
    /// All tables of this category and those that come along: builders run before a type's lock is taken.
    bool buildAll() const;
    static bool joinMethods(MethodTable& to, const MethodTable& from);
    /// Whether the type is one that has this category.
    bool linkType(ZMetaType* type);
    void unlinkType(ZMetaType* type);

    mutable ZLock change; ///< of what follows
    ZPackage* ownerPackage = nullptr;
    ZMetaType::Types types;
    Names baseTypes, categories, autoExtend;
    MethodTable methodTypes;
    PropertyTable propertyTypes;
    DispatchTable dispatchTypes;
    SelectorGroups selectorGroups;
    ZTypeCallback callbacks[CallBackCount] = {};
    byte states[CallBackCount] = {}; ///< orv::TableState of each table
    uint resets = 0;                 ///< a table whose building a reset has overtaken is built again
    ZArrayT<ZMetaType*> extended;    ///< types that have it, not retained: each leaves when it ends
};
