#include "core/ZSpinLock.h"
#include "object/ZMetaTypeData.h"
#include "object/ZTypeCategory.h"
#include "object/packageTypes.h"

// Names, option words, what follows from them, and the groups of selectors that a type declares.

namespace {

/// Block names that were given to types by name, for those that don't have one of their own.
struct BlockNames {
    ZSpinLock lock;
    ZSelectMapT<ZSelector>* names = nullptr;
};
BlockNames blockNames;

struct FlagWord {
    const char* word;
    uint flag;
};
constexpr FlagWord flagWords[] = {
    {"final", ZMetaType::Final}, {"public", ZMetaType::Public}, {"lock", ZMetaType::Lockable}};

/// The selector of a format that the type's name is put into.
template <class... A> ZSelector formatted(const char* format, const A&... names) {
    ZSelector made;
    made.printf(format, names.string()...);
    return made;
}
bool has(const ZMetaType* type, const char* word) { return type->hasOption(word, true); }

} // namespace

bool ZMetaType::open() { return true; }
void ZMetaType::close() {
    ZSelectMapT<ZSelector>* names;
    {
        ZScopedLock held(blockNames.lock);
        names = std::exchange(blockNames.names, nullptr);
    }
    zrelease(names);
}

bool ZMetaType::addTypeBlockName(const ZSelector& type, const ZSelector& block) {
    auto fresh = zmake<ZSelectMapT<ZSelector>>();
    bool done = false;
    if (fresh) {
        ZScopedLock held(blockNames.lock);
        if (!blockNames.names) blockNames.names = std::exchange(fresh, nullptr);
        ZSelectMapT<ZSelector> names = *blockNames.names;
        done = names.set(type, block);
        if (done) blockNames.names->swap(names);
    }
    zrelease(fresh);
    return done;
}
bool ZMetaType::removeTypeBlockName(const ZSelector& type) {
    ZScopedLock held(blockNames.lock);
    return blockNames.names && blockNames.names->remove(type);
}

// Names

ZSelector ZMetaType::getName() const { return own->name; }
ZSelector ZMetaType::typeSelector() const { return own->name; }
ZSelector ZMetaType::getQualifier() const { return own->qualifier; }
void ZMetaType::setQualifier(const ZSelector& qualifier) { own->qualifier = qualifier; }

ZSelector ZMetaType::signatureName() const {
    const ZMetaType* owner = getOwnerType();
    return owner ? ZSelector::combine(owner->signatureName(), own->name, "::") : own->name;
}
ZSelector ZMetaType::fullName() const {
    const ZSelector package = orv::packageName(own->package);
    return package.isEmpty() ? own->name : ZSelector::combine(package, own->name, "::");
}
ZSelector ZMetaType::externalName() const { return orv::isPublicPackage(own->package) ? own->name : fullName(); }
ZSelector ZMetaType::externalName(const ZSelector& prefix) const {
    return prefix.isEmpty() ? externalName() : ZSelector::combine(prefix, own->name, "::");
}

namespace {
ZSelector readField(const orv::MetaTypeData& data, const ZSelector& field) {
    ZScopedReadLock held(data.change);
    return field;
}
/// Sets a field; true if that changed it.
bool writeField(orv::MetaTypeData& data, ZSelector& field, const ZSelector& value) {
    ZScopedLock held(data.change);
    const bool changes = !(field == value);
    field = value;
    return changes;
}
} // namespace

ZSelector ZMetaType::getPluginId() const { return readField(*described()->own, described()->own->pluginId); }
void ZMetaType::setPluginId(const ZSelector& id) { writeField(*own, own->pluginId, id); }
ZSelector ZMetaType::getPluginPrefix() const { return readField(*described()->own, described()->own->pluginPrefix); }
void ZMetaType::setPluginPrefix(const ZSelector& prefix) { writeField(*own, own->pluginPrefix, prefix); }
ZSelector ZMetaType::getLocalName() const { return readField(*own, own->localName); }
void ZMetaType::setLocalName(const ZSelector& name) { writeField(*own, own->localName, name); }
ZSelector ZMetaType::nameLabel() const {
    const ZSelector label = readField(*described()->own, described()->own->nameLabel);
    return label.isEmpty() ? own->name : label;
}
void ZMetaType::setNameLabel(const ZSelector& label) { writeField(*own, own->nameLabel, label); }
ZSelector ZMetaType::getExtraFlags() const { return readField(*described()->own, described()->own->extraFlags); }
void ZMetaType::setExtraFlags(const ZSelector& words) {
    if (writeField(*own, own->extraFlags, words)) orv::typesChanged();
}
ZSelector ZMetaType::getSandBoxName() const { return readField(*described()->own, described()->own->sandBoxName); }
void ZMetaType::setSandBoxName(const ZSelector& name) { writeField(*own, own->sandBoxName, name); }
int ZMetaType::getSandBoxLevel() const { return toolkit::load(described()->own->sandBoxLevel); }
void ZMetaType::setSandBoxLevel(int level) { toolkit::store(own->sandBoxLevel, level); }

ZSelector ZMetaType::getBlockName() const {
    const ZSelector name = readField(*described()->own, described()->own->blockName);
    if (!name.isEmpty()) return name;
    ZScopedLock held(blockNames.lock);
    const ZSelector* known = blockNames.names ? std::as_const(*blockNames.names).get(described()->own->name) : nullptr;
    return known ? *known : ZSelector();
}
void ZMetaType::setBlockName(const ZSelector& name) { writeField(*own, own->blockName, name); }

ZSelector ZMetaType::constructorName() const { return formatted("%s()", described()->own->name); }
ZSelector ZMetaType::destructorName() const { return formatted("~%s()", described()->own->name); }
ZSelector ZMetaType::copyConstructorName() const {
    const ZSelector& name = described()->own->name;
    return formatted("%s(const %s*)", name, name);
}
ZSelector ZMetaType::streamConstructorName() const { return formatted("%s(const ZStream*)", described()->own->name); }
ZSelector ZMetaType::loadConstructorName(bool withName) const {
    return formatted(withName ? "%s(const ZXSTNode*, const ZSelector&)" : "%s(const ZXSTNode*)",
                     described()->own->name);
}

// Option words

uint ZMetaType::scanFlags(const ZSelector& words) {
    uint flags = 0;
    for (const FlagWord& row : flagWords)
        if (words.contains(row.word)) flags |= row.flag;
    return flags;
}
ZSelector ZMetaType::extractOptions(const ZSelector& words) { return words.remove("final public noblend lock"); }

bool ZMetaType::hasOption(const ZSelector& word, bool inherited) const {
    if (word.isEmpty()) return false;
    if (readField(*own, own->extraFlags).contains(word)) return true;
    if (mainType && (inherited || !own->localType)) return mainType->hasOption(word, inherited);
    bool found = false;
    if (inherited) orv::eachBase(this, [&](ZMetaType* base) { return !(found = base->hasOption(word, true)); });
    return found;
}

bool ZMetaType::predicate(int which, bool (*compute)(const ZMetaType*)) const {
    ularge& cell = own->predicates[which];
    const ularge now = orv::typeGeneration();
    const ularge known = toolkit::loadAcquire(cell);
    if (ORV_LIKELY(known >> 1 == now)) return known & 1;
    const bool value = compute(this);
    toolkit::storeRelease(cell, now << 1 | ularge(value));
    return value;
}
bool ZMetaType::blendable() const {
    return predicate(orv::predBlendable, [](const ZMetaType* type) { return !has(type, "noblend"); });
}
bool ZMetaType::allowCSPMark() const {
    return predicate(orv::predAllowMark,
                     [](const ZMetaType* type) { return !has(type, "nomark") && !has(type, "nocsp"); });
}
bool ZMetaType::allowCSPUpdate() const {
    return predicate(orv::predAllowUpdate,
                     [](const ZMetaType* type) { return !has(type, "noupdate") && !has(type, "nocsp"); });
}
bool ZMetaType::binaryXSTValue() const {
    if (typeKind <= String) return true;
    return predicate(orv::predBinaryXST, [](const ZMetaType* type) { return has(type, "binaryxst"); });
}
bool ZMetaType::storageAlias() const {
    return predicate(orv::predStorageAlias, [](const ZMetaType* type) { return has(type, "storagealias"); });
}
bool ZMetaType::aliasedStore() const {
    return predicate(orv::predAliasedStore,
                     [](const ZMetaType* type) { return type->hasOption("aliasedstore", false); });
}
bool ZMetaType::skipMemberSearch() const {
    return predicate(orv::predSkipMember, [](const ZMetaType* type) { return has(type, "nomember"); });
}
bool ZMetaType::hasCreator() const { return getFlags() & Created; }
bool ZMetaType::referenceStore() const {
    return predicate(orv::predRefStore, [](const ZMetaType* type) {
        if (type->getFlags() & RefStore) return true;
        bool found = false;
        orv::eachBase(type, [&](ZMetaType* base) { return !(found = base->referenceStore()); });
        return found;
    });
}

ZMetaType* ZMetaType::aliasedStoreType() const {
    if (aliasedStore()) return const_cast<ZMetaType*>(described());
    ZMetaType* found = nullptr;
    orv::eachAncestor(this, [&](const orv::Ancestor& at) {
        if (!at.type->hasOption("aliasedstore", false)) return true;
        found = const_cast<ZMetaType*>(at.type);
        return false;
    });
    return found;
}
ZMetaType* ZMetaType::storageAliasType() const { return storageAlias() ? aliasedStoreType() : nullptr; }

// Groups of selectors

/// The groups of this type: its own, then those of its categories in their order.
ZMetaType::SelectorGroups ZMetaType::allSelectorGroups() const {
    SelectorGroups groups;
    {
        ZScopedReadLock held(own->change);
        groups = own->selectorGroups;
    }
    for (ZTypeCategory* category : getCategories())
        if (!category->collectSelectorGroups(groups)) ZError::fail();
    return groups;
}
bool ZMetaType::selectorGroupNames(ZArrayT<ZSelector>& names) const {
    ZFailGuard guard;
    for (const auto& group : allSelectorGroups())
        if (!names.append(group.key())) return false;
    return !guard.rose();
}
ZSelectorMap ZMetaType::selectorGroup(const ZSelector& name) const {
    const SelectorGroups groups = allSelectorGroups();
    const ZSelectorMap* group = groups.get(name);
    return group ? *group : ZSelectorMap();
}
bool ZMetaType::setSelectorGroup(const ZSelector& name, const ZSelectorMap& group) {
    ZScopedLock held(own->change);
    return own->selectorGroups.set(name, group);
}
ZSelector ZMetaType::getNamedSelector(const ZSelector& name) const {
    ZSelector found;
    for (const auto& group : allSelectorGroups())
        if (!(found = group.value().get(name)).isEmpty()) return found;
    orv::eachBase(this, [&](ZMetaType* base) { return (found = base->getNamedSelector(name)).isEmpty(); });
    return found.isEmpty() && mainType ? mainType->getNamedSelector(name) : found;
}
