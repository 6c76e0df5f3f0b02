#pragma once

#include "core/ZHashMapT.h"
#include "core/ZSelectorMap.h"
#include "module/ZModule.h"
#include "module/typeIndex.h"
#include "object/ZInlineType.h"
#include "object/ZMetaType.h"

/// Fills a package. First with `finished` false: makes the types and uses other packages. Then with true, when all
/// bases are resolved.
using TSetupPackage = bool (*)(ZPackage* package, bool finished);
using TClosePackage = void (*)(ZPackage* package);

/// One package uses another. It stands in two lists: those that the user uses, and those that use the used one.
struct ZPackageLink {
    ZPackage* user = nullptr;
    ZPackage* used = nullptr;
    ZPackageLink* usedByPrev = nullptr;
    ZPackageLink* usedByNext = nullptr;
    ZPackageLink* usesPrev = nullptr;
    ZPackageLink* usesNext = nullptr;
    int count = 0; ///< how many times `use` was called for the pair
    byte linked = 0;
    byte active = 0; ///< of an ordering that is under way

    /// Whether both ends take part in an ordering that hasn't reached them.
    bool activeLink() const;
    void link();
    void unlink();
    void clear();
    void assign(const ZPackageLink& other);
};

/// A counted set of types that a module hands out under one name. It owns its types; those of the packages that it uses
/// it finds too, and, as every package does, those of the root package, the first one made, which uses every public
/// one. Any thread may look types up, without a lock, also while others are made by name, entered and taken out, and
/// while packages are used and given up. A package is set up and closed by one thread, with nobody else in it.
class ORV_API ZPackage : public ZObject {
public:
    enum Flags : uint { None = 0, Public = 1, Plugin = 2, Dynamic = 4 };
    using Types = ZMetaType::Types;

    explicit ZPackage(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    ~ZPackage() override;

    /// The first package made; null before it and after its end.
    static ZPackage* root() { return toolkit::loadAcquire(rootPackage); }
    /// An open package by its name; null if it isn't open.
    static ZPackage* findPackage(const ZSelector& name);
    /// The same with a reference for the caller; null too for one that is on its way out.
    static ZPackage* retainPackage(const ZSelector& name);

    // What it is

    uint getFlags() const { return flags; }
    void setFlags(uint bits) { flags = bits; }
    bool isPublic() const { return flags & Public; }
    const ZSelector& getOptions() const { return options; }
    void setOptions(const ZSelector& words) { options = words; }
    bool hasOption(const ZSelector& word) const { return options.contains(word); }
    int getSandBoxLevel() const { return sandBoxLevel; }
    void setSandBoxLevel(int level) { sandBoxLevel = level; }
    ZModule* getModule() const { return module; }
    void setModule(ZModule* owner) { module = owner; }
    /// Those of a package's plugin; without one it is loaded always, which can't be changed.
    ZModule::LoadMode getLoadMode() const { return ZModule::LoadAlways; }
    bool setLoadMode(ZModule::LoadMode) { return false; }
    ZPackage* package() const override { return const_cast<ZPackage*>(this); }
    /// The name under which it is found.
    void setSelector(const ZSelector& name) override;

    // Start and stop

    void setSetupFunc(TSetupPackage function) { setupFunc = function; }
    void setCloseFunc(TClosePackage function) { closeFunc = function; }
    /// Room for so many; false without memory.
    bool setTypeCount(uint count);
    bool setCategoryCount(uint count);
    /// Makes the types, publishes a public package, resolves bases and works out implicit conversions. The answer is
    /// that of the setup function's second call.
    bool setup();
    void setupImplicitMap();
    /// Resolves the bases that are open by name; types that were made before `ZMetaType` had a type get theirs.
    void resetBases();
    /// Calls the close function, once.
    void closePack();
    /// Lets the values go that its types hold, defaults of properties among them.
    void dropValues();
    /// Takes the types of its types and its own away, so that packages can end in any order. No lookup runs any more.
    void forgetMetaTypes();
    /// The module hears of the end.
    void release() override;
    /// Ends it, whoever holds it. No thread is in it.
    void unload();
    /// Lets everything go: types, links to and from other packages, inline records. Once; later calls do nothing.
    void releasePackage();

    // Using other packages

    /// Counts one more use; false without memory, though the types are then found all the same. Null: false.
    bool use(ZPackage* other);
    /// Opens that package if need be. False if there is none.
    bool use(const ZSelector& name);
    /// Gives one use up; false if there is none.
    bool unuse(ZPackage* other);
    bool unuse(const ZSelector& name);
    bool uses(const ZPackage* other) const;
    /// Lets another package, for null the root, use this one; false for itself and with no root.
    bool publish(ZPackage* target);
    /// Users in front of what they use, whatever cycles there are. False without memory, with the order as it was.
    static bool topologicalOrdering(ZArrayT<ZPackage*>& packages);
    /// Of those that an ordering hasn't reached, the one with the fewest users; null for none.
    static ZPackage* findLeastUsed(const ZArrayT<ZPackage*>& packages);

    // Types. What is found is borrowed from its package.

    /// Enters a type under its name, or takes it out.
    bool linkType(ZMetaType* type);
    void unlinkType(ZMetaType* type);
    bool addTypes(const ZArrayT<ZMetaType*>& types);
    /// By name, here, in used packages, in the root; makes qualified variants and template instances.
    ZMetaType* findType(const ZSelector& name) const override;
    /// The same, but makes nothing and opens nothing.
    ZMetaType* findExisting(const ZSelector& name) const;
    /// The same without variants and instances.
    ZMetaType* findMetaType(const ZSelector& name) const;
    /// An enumeration by its name, as `findExisting`.
    ZEnumType* findEnum(const ZSelector& name) const override;
    /// Of its own.
    ZMetaType* findPackageType(const ZSelector& name) const;
    /// Where an instance of a template belongs: the most dependent of the packages of template and parameters;
    /// null without memory to find it.
    const ZPackage* findTemplateOwner(const ZSelector& name) const;
    /// A type by its plugin identifier; for the empty one, the first that is a plugin type and a `ZType`.
    ZMetaType* pluginType(const ZSelector& id) const;
    /// A copy, in order of making.
    Types getTypes() const;
    ZArrayT<ZMetaType*> getUsedTypes() const;
    void resetUsedTypes() const;
    bool addUsedPackageTypes(ZPackage* other);

    // Inline records

    InlineTypeList& inlines() const { return inlineTypes; }
    void clearInlines();
    /// Counts the inline methods that point into the package.
    void changeInlines(bool added);

    // Categories. A name is there once.

    /// Retains it.
    bool addCategory(ZTypeCategory* category);
    /// Of its own; null if there is none.
    ZTypeCategory* getCategory(const ZSelector& name) const override;
    /// Here, in used packages, in those that the root uses.
    ZTypeCategory* findCategory(const ZSelector& name) const;
    ZArrayT<ZTypeCategory*> getCategories() const;
    /// Types that have it lose what they have from it.
    bool removeCategory();
    bool removeCategory(const ZSelector& name);
    bool removeCategory(ZTypeCategory* category);
    void resetCategory(const ZSelector& name);
    /// Lets each category extend those of the package's types that it asks for; ends at the first failure.
    bool autoExtend();

    // Selector groups

    bool selectorGroupNames(ZArrayT<ZSelector>& names) const;
    /// Empty if there is none.
    ZSelectorMap selectorGroup(const ZSelector& name) const;
    bool setSelectorGroup(const ZSelector& name, const ZSelectorMap& group);
    /// The selector that a name stands for; `localOnly`: in this package's groups.
    ZSelector getNamedSelector(const ZSelector& name, bool localOnly) const;
    /// Adds what all groups of this package map; false without memory.
    bool collectSelectors(ZSelectorMap& selectors) const;

    // Counting

    int instanceCount() const { return toolkit::load(instances); }
    void addInstance() { toolkit::increment(instances); }
    void removeInstance() { toolkit::decrement(instances); }

private:
    friend struct ZPackageLink;
    friend struct LoadedPackages;

    static ZPackage* rootPackage;

    ZPackageLink* findLink(const ZPackage* other) const;
    bool seesTypesOf(const ZPackage* other) const;
    /// Here and in used packages.
    ZMetaType* indexed(const ZSelector& name) const {
        if (ZMetaType* own = typeIndex.find(name)) return own;
        if (ORV_UNLIKELY(toolkit::loadAcquire(usedTypesDirty))) resetUsedTypes();
        return usedIndex.find(name);
    }
    ZMetaType* find(const ZSelector& name, bool make, int depth) const;
    ZMetaType* findNested(const ZSelector& name, bool make, int depth) const;
    ZMetaType* findInstance(const ZSelector& name, int depth);
    ZMetaType* enterType(ZMetaType* type, bool replace);
    void tellUsers(const ZSelector& name, const ZMetaType* gone);
    using Packages = ZArrayT<ZRetainPtrT<ZPackage>>;
    /// Those that it uses; empty without memory too.
    Packages usedPackages() const;
    ZSelector localSelector(const ZSelector& name) const;
    void releaseLinks();
    void releaseTypes();

    ZPackageLink* usedByHead = nullptr;
    ZPackageLink* usedByTail = nullptr;
    ZPackageLink* usesHead = nullptr;
    ZPackageLink* usesTail = nullptr;
    // Of an ordering that is under way
    ZPackageLink* scanLink = nullptr;
    int degree = 0;
    byte visited = 0;

    ZPackage* nextOpen = nullptr;
    ZPackage* nextLoaded = nullptr; ///< of those that were opened by name
    ZSelector packageName;          ///< its selector, read under the lock of the list of packages
    ZModule* module = nullptr;
    Types types;
    orv::TypeIndex typeIndex;            ///< of `types`
    mutable orv::TypeIndex usedIndex;    ///< of the used packages, not retained; changed under the lock of uses
    mutable bool usedTypesDirty = false; ///< `usedIndex` may lack types, or have too many
    bool released = false;
    mutable bool selectorIndexDirty = true;
    ZHashMapT<ZSelector, ZKeyValueT<ZSelector, ZSelectorMap>> selectorGroups;
    mutable ZSelectorMap selectorIndex;
    mutable InlineTypeList inlineTypes;
    int inlineMethodCount = 0;
    ZArrayT<ZTypeCategory*> categories; ///< each with one reference
    ZSelector options;
    int sandBoxLevel = 0;
    uint flags = 0;
    TSetupPackage setupFunc = nullptr;
    TClosePackage closeFunc = nullptr;
    int instances = 0;
};
