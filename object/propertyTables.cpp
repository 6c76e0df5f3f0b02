#include "object/propertyTables.h"

#include "core/ZHashMapT.h"
#include "object/ZMetaTypeData.h"
#include "object/names.h"
#include "object/propertyAccess.h"
#include "object/syntheticMethods.h"
#include "object/tableBuild.h"

#include <cstring>

namespace orv {

namespace {

constexpr uint firstPlaces = 16;
/// Names that a type doesn't declare are remembered up to here: they come from outside.
constexpr uint mostMisses = 256;

const PropertyTree noProperties;

/// Whether what this thread hasn't found since may be kept as not being there.
class Search {
public:
    bool ranOutOfMemory() const { return toolkit::refusedAllocations() != refused; }

private:
    const uint refused = toolkit::refusedAllocations();
};

void freeLookup(PropertyLookup* row) {
    if (row->property) row->property->release();
    auto drop = [](CachedMethod& place) { ZMethod::release(place.method); };
    drop(row->read);
    drop(row->write);
    for (CachedMethod& place : row->getters) drop(place);
    for (CachedMethod& place : row->places) drop(place);
    zrelease(row);
}
void reclaimLookup(toolkit::EpochLink* link) { freeLookup(static_cast<PropertyLookup*>(link)); }

void freeCache(PropertyCache* cache) {
    for (uint i = 0; !cache->outgrown && i <= cache->mask; ++i)
        if (cache->rows()[i]) freeLookup(cache->rows()[i]);
    cache->~PropertyCache();
    zfree(cache);
}
void reclaimCache(toolkit::EpochLink* link) { freeCache(static_cast<PropertyCache*>(link)); }
void reclaimProperties(toolkit::EpochLink* link) { zrelease(static_cast<PublishedProperties*>(link)); }

PropertyCache* makeCache(uint places, ularge generation) {
    void* memory = toolkit::allocZeroedBlock(sizeof(PropertyCache) + places * sizeof(PropertyLookup*));
    if (!memory) return nullptr;
    auto cache = ::new (memory) PropertyCache;
    cache->generation = generation;
    cache->mask = places - 1;
    return cache;
}

void put(PropertyCache* cache, PropertyLookup* row) {
    uint at = cache->place(row->name.key());
    while (cache->rows()[at]) at = (at + 1) & cache->mask;
    toolkit::storeRelease(cache->rows()[at], row);
    ++cache->count;
    cache->misses += row->property == nullptr;
}

/// Puts a row into the cache of its type, unless the types have changed since it was looked up. Answers the row that
/// stands there now; null if it couldn't be put in. `old` is to be retired, if it isn't null.
PropertyLookup* keep(PropertyTables& tables, PropertyLookup* row, ularge generation, PropertyCache*& old) {
    ZScopedLock held(tables.lock);
    PropertyCache* cache = tables.cache.load();
    if (typeGeneration() != generation || (cache && cache->generation > generation)) return nullptr;
    if (cache && cache->generation == generation) {
        if (PropertyLookup* known = cache->find(row->name.key())) return known;
        if (!row->property && cache->misses >= mostMisses) return nullptr;
        if (cache->count * 2 <= cache->mask) {
            put(cache, row);
            return row;
        }
    }
    bool grows = cache && cache->generation == generation;
    PropertyCache* fresh = makeCache(grows ? (cache->mask + 1) * 2 : firstPlaces, generation);
    if (!fresh) return nullptr;
    for (uint i = 0; grows && i <= cache->mask; ++i)
        if (cache->rows()[i]) put(fresh, cache->rows()[i]);
    if (grows) cache->outgrown = true;
    put(fresh, row);
    old = tables.cache.publish(fresh);
    return row;
}

/// What a lookup of a name found.
struct Declared {
    ZProperty* property = nullptr;
    ZMetaType* owner = nullptr;
    int offset = 0;
};

ZProperty* inTree(const PropertyTree& tree, const ZSelector& name) {
    const ZPropertyPtr* entry = tree.find(name);
    return entry ? entry->property() : nullptr;
}

/// Own tables, those of the template, the bases, the type that this one is a variant or copy of.
bool findDeclared(const ZMetaType* type, const ZSelector& name, Declared& found, int depth) {
    constexpr int deepest = 512;
    if (depth > deepest) return false;
    found.property = inTree(userProperties(type), name);
    if (!found.property) found.property = inTree(declaredProperties(type), name);
    const ZMetaType* templateType = type->getTemplateType();
    if (!found.property && templateType && templateType != type) {
        found.property = inTree(userProperties(templateType), name);
        if (!found.property) found.property = inTree(declaredProperties(templateType), name);
    }
    if (found.property) {
        found.owner = const_cast<ZMetaType*>(type);
        return true;
    }
    if (!type->isContainer())
        for (int i = 0, count = type->baseCount(); i < count; ++i) {
            const ZMetaType* base = type->baseType(i);
            if (!base || !findDeclared(base, name, found, depth + 1)) continue;
            found.offset += type->baseOffset(i);
            return true;
        }
    const ZMetaType* main = type->getMainType();
    return main && main != type && findDeclared(main, name, found, depth + 1);
}

PropertyTables& tablesOf(const ZMetaType* type) { return const_cast<ZMetaType*>(type)->record().properties; }

/// Puts what a lookup found into its place, once, after `prepare`.
template <class F> void fill(PropertyTables& tables, CachedMethod& place, ZMethod* method, int offset, F prepare) {
    ZMethod* kept = ZMethod::retain(method);
    {
        ZScopedLock held(tables.lock);
        if (place.state == CachedMethod::Unknown) {
            prepare();
            place.method = std::exchange(kept, nullptr);
            place.offset = offset;
            toolkit::storeRelease(place.state, place.method ? CachedMethod::Found : CachedMethod::Absent);
        }
    }
    ZMethod::release(kept);
}

} // namespace

PropertyTables::~PropertyTables() { clear(); }

void PropertyTables::clear() {
    for (auto place : {&types, &users})
        if (PublishedProperties* old = place->publish(nullptr)) zrelease(old);
    if (PropertyCache* old = cache.publish(nullptr)) freeCache(old);
    if (PropertyCatalogue* old = catalogue.publish(nullptr)) zrelease(old);
    if (SyntheticMethods* old = synthetic.publish(nullptr)) freeSynthetic(old);
}

void resetProperties(ZMetaType* type) {
    PropertyTables& tables = type->record().properties;
    PublishedProperties* old;
    {
        ZScopedLock held(tables.lock);
        old = tables.types.publish(nullptr);
        toolkit::storeRelease(tables.edits, tables.edits + 1);
    }
    typesChanged();
    if (old) toolkit::epochRetire(old, reclaimProperties);
}

PropertyPublish publishProperties(PropertyTables& tables, toolkit::EpochPtr<PublishedProperties>& place,
                                  PropertyTree& tree, uint seen, bool change) {
    auto fresh = zmake<PublishedProperties>();
    if (!fresh) return PropertyPublish::NoMemory;
    fresh->tree = std::move(tree);
    PublishedProperties* old = fresh;
    {
        ZScopedLock held(tables.lock);
        if (tables.edits == seen) {
            // Whoever sees the new count sees the new table too.
            old = place.publish(fresh);
            toolkit::storeRelease(tables.edits, seen + 1);
        }
    }
    if (old == fresh) {
        tree = std::move(fresh->tree);
        zrelease(fresh);
        return PropertyPublish::Outdated;
    }
    if (change) typesChanged();
    if (old) toolkit::epochRetire(old, reclaimProperties);
    return PropertyPublish::Done;
}

const PropertyTree& declaredProperties(const ZMetaType* type) {
    const PropertyTables& tables = type->record().properties;
    PublishedProperties* published = tables.types.load();
    if (ORV_UNLIKELY(!published)) {
        if (const PropertyTree* building = propertiesUnderConstruction(type)) return *building;
        const_cast<ZMetaType*>(type)->createProperties();
        published = tables.types.load();
    }
    return published ? published->tree : noProperties;
}

const PropertyTree& userProperties(const ZMetaType* type) {
    PublishedProperties* published = type->record().properties.users.load();
    return published ? published->tree : noProperties;
}

PropertyLookup* lookUpProperty(const ZMetaType* type, const ZSelector& name) {
    PropertyTables& tables = tablesOf(type);
    ularge generation = typeGeneration();
    PropertyCache* cache = tables.cache.load();
    if (ORV_LIKELY(cache && cache->generation == generation))
        if (PropertyLookup* row = cache->find(name.key()); ORV_LIKELY(row != nullptr))
            return row->property ? row : nullptr;

    if (buildsTables()) generation = 0;
    const Search search;
    Declared found;
    bool known = findDeclared(type, name, found, 0);
    auto row = zmake<PropertyLookup>();
    if (!row) return nullptr;
    row->name = name;
    if (known) {
        row->property = found.property->retain();
        row->owner = found.owner;
        row->offset = found.offset;
    }
    PropertyCache* old = nullptr;
    PropertyLookup* kept = search.ranOutOfMemory() ? nullptr : keep(tables, row, generation, old);
    if (old) toolkit::epochRetire(old, reclaimCache);
    // What can't be kept holds until the caller's guard closes.
    if (kept != row) toolkit::epochRetire(row, reclaimLookup);
    if (!kept) kept = row;
    return kept->property ? kept : nullptr;
}

bool findCachedMethod(const ZMetaType* type, CachedMethod& place, const ZSelector& signature,
                      const ZSelector& qualifier, uint refused) {
    int at = 0;
    ZMethod* method = signature.isEmpty() ? nullptr : type->methodType(&at, signature, qualifier);
    if (!method && toolkit::refusedAllocations() != refused) return false;
    fill(tablesOf(type), place, method, at, [] {});
    return true;
}

const CachedMethod* findReadAccessor(const ZMetaType* type, PropertyLookup* row) {
    const Search search;
    // A const getter is asked before one that could change the instance, a pointer last.
    static constexpr int forms[] = {2, 0, 3, 1};
    ZMethod* method = nullptr;
    ReadPlan plan;
    int offset = 0;
    for (int form : forms) {
        bool constForm = form & 2, ptrForm = form & 1;
        method = cachedMethod(
            type, row->getters[form], [&] { return row->property->getter(ptrForm, constForm, false); },
            constForm ? zsel<"const">() : ZSelector(), offset);
        if (!method) continue;
        plan = readPlan(method, type);
        if (ptrForm && plan.shape == ReadPlan::Pointer && !plan.type->getDataType()->holdsZType()) {
            plan.type = plan.type->getDataType();
            plan.shape = ReadPlan::Address;
        }
        if (plan.shape != ReadPlan::Nothing) break;
        method = nullptr;
    }
    if (!method && search.ranOutOfMemory()) return nullptr;
    fill(tablesOf(type), row->read, method, offset, [&] { row->readPlan = plan; });
    return row->read.method ? &row->read : nullptr;
}

const CachedMethod* readAccessor(const ZMetaType* type, const PropertyCatalogue::Entry& entry) {
    if (ORV_UNLIKELY(toolkit::loadAcquire(entry.read.state) == CachedMethod::Unknown)) {
        PropertyLookup* row = lookUpProperty(type, entry.property->name());
        if (!row || row->property != entry.property) return nullptr;
        const CachedMethod* found = readAccessor(type, row);
        if (!found && toolkit::loadAcquire(row->read.state) == CachedMethod::Unknown) return nullptr;
        fill(tablesOf(type), entry.read, found ? found->method : nullptr, found ? found->offset : 0,
             [&] { entry.readPlan = row->readPlan; });
    }
    return entry.read.method ? &entry.read : nullptr;
}

const CachedMethod* findWriteAccessor(const ZMetaType* type, PropertyLookup* row) {
    const Search search;
    int offset = 0;
    ZMethod* method = cachedMethod(
        type, row->places[int(Accessor::Setter) - 1], [&] { return row->property->setter(false); }, ZSelector(),
        offset);
    WritePlan plan;
    if (method) plan = writePlan(method, 1, type);
    if (!plan.usable) method = nullptr;
    if (!method && search.ranOutOfMemory()) return nullptr;
    fill(tablesOf(type), row->write, method, offset, [&] { row->writePlan = plan; });
    return row->write.method ? &row->write : nullptr;
}

namespace {

using Entry = PropertyCatalogue::Entry;
using Places = ZSelectMapT<int>;

/// Adds the properties of one tree. A name that is there already is replaced if it stands at `start` or behind.
bool addTree(PropertyCatalogue& into, Places& places, const PropertyTree& tree, ZMetaType* owner, int offset,
             uint start) {
    for (const ZPropertyPtr& node : tree) {
        ZProperty* property = node.property() ? node.property()->retain() : nullptr;
        if (!property) continue;
        Entry entry{property, owner, offset, {}, {}};
        if (const int* at = std::as_const(places).get(node.key())) {
            if (uint(*at) < start) {
                property->release();
                continue;
            }
            Entry* old = into.entries.entry(uint(*at));
            std::swap(*old, entry);
            entry.property->release();
        } else if (!places.set(node.key(), int(into.entries.count())) || !into.entries.append(entry)) {
            property->release();
            return false;
        }
    }
    return true;
}

bool collect(PropertyCatalogue& into, Places& places, const ZMetaType* type, int offset, int depth) {
    constexpr int deepest = 512;
    if (depth > deepest) return true;
    uint start = into.entries.count();
    auto self = const_cast<ZMetaType*>(type);
    const ZMetaType* main = type->getMainType();
    if (main && main != type) {
        if (!collect(into, places, main, offset, depth + 1)) return false;
    } else if (!type->isContainer()) {
        for (int i = 0, count = type->baseCount(); i < count; ++i)
            if (const ZMetaType* base = type->baseType(i))
                if (!collect(into, places, base, offset + type->baseOffset(i), depth + 1)) return false;
    }
    const ZMetaType* templateType = type->getTemplateType();
    if (templateType && templateType != type &&
        !(addTree(into, places, declaredProperties(templateType), self, offset, start) &&
          addTree(into, places, userProperties(templateType), self, offset, start)))
        return false;
    return addTree(into, places, declaredProperties(type), self, offset, start) &&
           addTree(into, places, userProperties(type), self, offset, start);
}

void reclaimCatalogue(toolkit::EpochLink* link) { zrelease(static_cast<PropertyCatalogue*>(link)); }

} // namespace

PropertyCatalogue::~PropertyCatalogue() {
    for (const Entry& entry : entries) {
        entry.property->release();
        ZMethod::release(entry.read.method);
    }
}

const PropertyCatalogue* propertyCatalogue(const ZMetaType* type) {
    PropertyTables& tables = tablesOf(type);
    ularge generation = typeGeneration();
    PropertyCatalogue* known = tables.catalogue.load();
    if (ORV_LIKELY(known && known->generation == generation)) return known;
    if (buildsTables()) generation = 0;
    const Search search;
    auto fresh = zmake<PropertyCatalogue>();
    if (!fresh) return nullptr;
    Places places;
    if (!collect(*fresh, places, type, 0, 0) || search.ranOutOfMemory()) {
        zrelease(fresh);
        return nullptr;
    }
    fresh->generation = generation;
    for (const Entry& entry : fresh->entries) {
        fresh->delegates |= entry.property->hasFlags(ZProperty::Delegate);
        fresh->dynamic |= (entry.property->flags() & (ZProperty::Dynamic | ZProperty::Optional)) == ZProperty::Dynamic;
    }
    if (PropertyCatalogue* old = tables.catalogue.publish(fresh)) toolkit::epochRetire(old, reclaimCatalogue);
    return fresh;
}

// Synthetic methods

void freeSynthetic(SyntheticMethods* methods) {
    for (CachedMethod& place : methods->places) ZMethod::release(place.method);
    zrelease(methods);
}

SyntheticMethods* syntheticMethods(const ZMetaType* type) {
    PropertyTables& tables = tablesOf(type);
    ularge generation = typeGeneration();
    SyntheticMethods* known = tables.synthetic.load();
    if (ORV_LIKELY(known && known->generation == generation)) return known;
    auto fresh = zmake<SyntheticMethods>();
    if (!fresh) return nullptr;
    fresh->generation = generation;
    if (SyntheticMethods* old = tables.synthetic.publish(fresh))
        toolkit::epochRetire(old,
                             [](toolkit::EpochLink* link) { freeSynthetic(static_cast<SyntheticMethods*>(link)); });
    return fresh;
}

} // namespace orv
