#include "core/construct.h"
#include "module/ZPackage.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/ZProperty.h"
#include "object/ZTypeCategory.h"
#include "object/dispatchEntries.h"
#include "object/tableBuild.h"

// How categories extend a type, and the signals that a type's instances answer because of it.

namespace {

using orv::CategoryLink;
using orv::CategoryMethod;
using MethodTable = ZMetaType::MethodTable;
using PropertyTable = ZMetaType::PropertyTable;
using DispatchTable = ZObject::DispatchTable;

bool declares(const MethodTable& table, const ZMethod* method) {
    const ZSelector selector = method->getSelector();
    const ZSelector key = selector.type() == ZSelector::Method ? selector.methodName() : selector;
    for (const ZMethodPtr* node = table.find(key); node; node = table.findNext(node))
        if (node->get()->getSelector() == selector && node->get()->getQualifier() == method->getQualifier())
            return true;
    return false;
}

/// Each extended type has methods of its own, since a method knows its type.
bool joinMethods(ZMetaType* type, CategoryLink& link) {
    MethodTable all;
    if (!link.category->collectMethods(all)) return false;
    const MethodTable* building = orv::methodsUnderConstruction(type);
    auto known = [&](const ZMethod* method) {
        toolkit::EpochGuard guard;
        return declares(building ? *building : type->getMethodTypes(), method);
    };
    for (const ZMethodPtr& entry : std::as_const(all)) {
        if (known(entry.get())) continue;
        ZMethod* own = entry.get()->copy();
        CategoryMethod brought;
        brought.selector = entry.get()->getSelector();
        brought.qualifier = entry.get()->getQualifier();
        brought.method = own;
        bool done = own && link.methods.append(brought);
        if (done) done = building ? type->appendMethod(own) : type->setMethodType(own, false) || known(own);
        ZMethod::release(own);
        if (!done) return false;
    }
    return true;
}

bool joinProperties(ZMetaType* type, CategoryLink& link) {
    PropertyTable all;
    if (!link.category->collectProperties(all)) return false;
    auto known = [&](const ZSelector& name) {
        toolkit::EpochGuard guard;
        return type->getPropertyTypes().contains(name);
    };
    for (const ZPropertyPtr& entry : std::as_const(all)) {
        if (known(entry.key())) continue;
        if (!link.properties.append(entry.key())) return false;
        // Another thread may bring it at the same time.
        if (!type->addPropertyDef(entry) && !known(entry.key())) return false;
    }
    return true;
}

/// Nested types and bases that the type hadn't before.
bool joinTypes(ZMetaType* type, CategoryLink& link) {
    const ZMetaType::Types before = type->getTypes();
    const ZArrayT<ZSelector> bases = type->getBaseNames();
    const bool done = link.category->extendTypes(type);
    for (const auto& entry : type->getTypes())
        if (!before.haskey(entry.key()) && !link.types.append(entry.key())) return false;
    for (const ZSelector& name : type->getBaseNames())
        if (!bases.contains(name) && !link.bases.append(name)) return false;
    return done;
}

/// Takes away what the type has from a category that it is linked to no more.
void undo(ZMetaType* type, const CategoryLink& link) {
    for (const CategoryMethod& brought : link.methods) {
        toolkit::EpochGuard guard;
        if (type->methodTypeBySelector(brought.selector, brought.qualifier) == brought.method)
            type->removeMethodType(brought.selector, brought.qualifier);
    }
    for (const ZSelector& name : link.properties) type->removePropertyDef(name);
    for (const ZSelector& name : link.types) type->removeType(name);
    if (!link.bases.isEmpty()) {
        // Without memory the bases stay: one too many is better than one of the type's own gone.
        ZFailGuard failures;
        ZArrayT<ZSelector> bases;
        bool whole = true;
        for (const ZSelector& name : type->getBaseNames())
            if (!link.bases.contains(name)) whole = bases.append(name) && whole;
        if (whole && !failures.rose()) type->setBaseNames(bases);
        failures.forget();
    }
    DispatchTable gone;
    if (link.category->collectDispatch(gone)) type->removeTypeDispatch(gone);
}

/// The link of a category; null if there is none. Under the type's change lock.
CategoryLink* linkOf(orv::MetaTypeData& data, const ZTypeCategory* category) {
    for (uint i = 0; i < data.categories.count(); ++i)
        if (std::as_const(data.categories)[i].category == category) return &data.categories[i];
    return nullptr;
}

/// What a thread fills for `ZMetaType::createDispatch`.
using DispatchBuilding = orv::TableBuild<DispatchTable>;

bool addEntries(DispatchTable& table, const DispatchTable& from) {
    if (from.isEmpty()) return true;
    if (!table.detach()) return false;
    for (const ZMethodDispatch& entry : from)
        if (!table.add(entry)) return false;
    return true;
}

ZTypeCategory* findCategory(const ZMetaType* type, const ZSelector& name) {
    const ZPackage* package = type ? type->package() : nullptr;
    if (!package) package = ZPackage::root();
    return package ? package->findCategory(name) : nullptr;
}

} // namespace

namespace orv {

CategoryCopies::~CategoryCopies() {
    for (const CategoryLink& link : std::as_const(links)) link.category->release();
}
bool CategoryCopies::take(const MetaTypeData& of) {
    ZScopedReadLock held(of.change);
    for (const CategoryLink& link : of.categories) {
        if (!links.append(link)) return false;
        link.category->retain();
    }
    return true;
}
template <class T> void CategoryCopies::keep(MetaTypeData& of, T CategoryLink::*what) const {
    for (const CategoryLink& link : links)
        if (CategoryLink* now = linkOf(of, link.category)) now->*what = link.*what;
}
template void CategoryCopies::keep(MetaTypeData&, ZArrayT<CategoryMethod> CategoryLink::*) const;
template void CategoryCopies::keep(MetaTypeData&, ZArrayT<ZSelector> CategoryLink::*) const;

bool joinCategoryMethods(ZMetaType* type, CategoryCopies& categories) {
    if (!categories.take(type->record())) return false;
    for (uint i = 0; i < categories.links.count(); ++i) {
        categories.links[i].methods.clear();
        if (!joinMethods(type, categories.links[i])) return false;
    }
    return true;
}
bool joinCategoryProperties(ZMetaType* type, CategoryCopies& categories) {
    if (!categories.take(type->record())) return false;
    for (uint i = 0; i < categories.links.count(); ++i) {
        categories.links[i].properties.clear();
        if (!joinProperties(type, categories.links[i])) return false;
    }
    return true;
}

} // namespace orv

// Categories

bool ZMetaType::addCategory(const ZSelector& name) { return addCategory(findCategory(this, name)); }

bool ZMetaType::addCategory(ZTypeCategory* category) {
    auto type = const_cast<ZMetaType*>(relationType());
    if (type != this) return type->addCategory(category);
    if (!category) return false;
    if (hasCategory(category)) return true;
    // What there is to be joined with.
    if (!createTypes() || !createMethods() || !createProperties() || !createDispatch() || !category->buildAll())
        return false;
    CategoryLink link;
    link.name = category->selector();
    link.category = category;
    bool done = category->linkType(this);
    {
        ZScopedLock held(own->change);
        if (done && linkOf(*own, category)) return true;
        done = done && own->categories.append(link);
        if (done) category->retain();
    }
    if (!done) {
        category->unlinkType(this);
        return false;
    }
    if (!joinCategory(category)) {
        removeCategory(category);
        return false;
    }
    orv::typesChanged();
    return true;
}

/// Brings into built tables what a linked category has.
bool ZMetaType::joinCategory(ZTypeCategory* category) {
    return rejoinCategory(category) && (!hasCategory(category) || category->extendDispatch(this));
}

bool ZMetaType::removeCategory() {
    ZArrayT<ZTypeCategory*> all = getCategories();
    for (ZTypeCategory* category : std::as_const(all))
        if (!removeCategory(category)) return false;
    return true;
}
bool ZMetaType::removeCategory(const ZSelector& name) {
    const ZArrayT<ZTypeCategory*> all = getCategories();
    for (ZTypeCategory* category : all)
        if (category->selector() == name) return removeCategory(category);
    return false;
}
bool ZMetaType::removeCategory(ZTypeCategory* category) {
    auto type = const_cast<ZMetaType*>(relationType());
    if (type != this) return type->removeCategory(category);
    CategoryLink link;
    ZArrayT<ZTypeCategory*> others;
    {
        ZScopedLock held(own->change);
        for (uint i = 0; i < own->categories.count(); ++i) {
            const CategoryLink& at = std::as_const(own->categories)[i];
            if (at.category == category)
                link = at;
            else if (!others.append(at.category))
                return false;
        }
        const CategoryLink* found = linkOf(*own, category);
        if (!found || !own->categories.remove(uint(found - own->categories.data()))) return false;
    }
    undo(this, link);
    category->unlinkType(this);
    // What it stood in front of comes in its place.
    bool done = true;
    for (ZTypeCategory* other : std::as_const(others)) done &= rejoinCategory(other);
    category->release();
    orv::typesChanged();
    return done;
}

/// Brings what a category has and the type hasn't; signals aside.
bool ZMetaType::rejoinCategory(ZTypeCategory* category) {
    CategoryLink joined;
    {
        ZScopedReadLock held(own->change);
        const CategoryLink* link = linkOf(*own, category);
        if (!link) return true;
        joined = *link;
    }
    const bool done = joinTypes(this, joined) && joinMethods(this, joined) && joinProperties(this, joined);
    // Whatever came of it can be undone.
    ZScopedLock held(own->change);
    if (CategoryLink* now = linkOf(*own, category)) *now = joined;
    return done;
}

void ZMetaType::dropCategories() {
    for (const CategoryLink& link : std::as_const(own->categories)) {
        link.category->unlinkType(this);
        link.category->release();
    }
    own->categories.clear();
}

bool ZMetaType::setCategories(const ZArrayT<ZTypeCategory*>& categories) {
    ZArrayT<ZTypeCategory*> had = getCategories();
    for (ZTypeCategory* category : std::as_const(had))
        if (!categories.contains(category) && !removeCategory(category)) return false;
    for (ZTypeCategory* category : categories)
        if (!addCategory(category)) return false;
    return true;
}

void ZMetaType::resetCategories() {
    const ZArrayT<ZTypeCategory*> all = getCategories();
    ZArrayT<ZRetainPtrT<ZTypeCategory>> kept;
    for (ZTypeCategory* category : all)
        if (!kept.append(ZRetainPtrT<ZTypeCategory>(category))) return;
    for (const auto& category : std::as_const(kept)) removeCategory(category.get());
    for (const auto& category : std::as_const(kept)) addCategory(category.get());
}

// Signals

bool ZMetaType::createDispatch() {
    for (;;) {
        if (ORV_LIKELY(toolkit::loadAcquire(own->dispatchState) == orv::tableBuilt)) return true;
        if (DispatchBuilding::find(this)) return true;
        DispatchBuilding building(this);
        const uint resets = toolkit::loadAcquire(own->dispatchResets);
        auto build = reinterpret_cast<bool (*)(ZMetaType*)>(getCallback(CreateDispatch));
        if (build && !build(this)) return false;
        ZScopedLock held(own->change);
        if (own->dispatchState == orv::tableBuilt || own->dispatchResets != resets) continue;
        if (!addEntries(building.table, own->dispatch)) return false;
        publishDispatch(building.table);
        toolkit::storeRelease(own->dispatchState, byte(orv::tableBuilt));
        return true;
    }
}

/// Under the change lock.
void ZMetaType::publishDispatch(const DispatchTable& dispatch) {
    own->dispatch = dispatch;
    toolkit::storeRelease(own->hasDispatch, !dispatch.isEmpty());
}
/// Changes the table that this thread is building, or a copy of the type's, which then takes its place.
template <class F> bool ZMetaType::changeDispatch(F&& change) {
    if (DispatchTable* building = DispatchBuilding::find(this)) return change(*building);
    ZScopedLock held(own->change);
    DispatchTable table(own->dispatch);
    if (!change(table)) return false;
    publishDispatch(table);
    return true;
}
bool ZMetaType::setTypeMethodDispatch(const DispatchTable& dispatch) {
    return changeDispatch([&](DispatchTable& table) {
        table = dispatch;
        return true;
    });
}
ZObject::DispatchTable ZMetaType::getTypeMethodDispatch() const {
    if (const DispatchTable* building = DispatchBuilding::find(this)) return *building;
    const_cast<ZMetaType*>(this)->createDispatch();
    if (!toolkit::loadAcquire(own->hasDispatch)) return {};
    ZScopedReadLock held(own->change);
    return own->dispatch;
}
bool ZMetaType::addTypeDispatch(const DispatchTable& dispatch) {
    return changeDispatch([&](DispatchTable& table) { return addEntries(table, dispatch); });
}
/// Takes an equal entry away for each of these.
bool ZMetaType::removeTypeDispatch(const DispatchTable& dispatch) {
    return changeDispatch([&](DispatchTable& table) {
        if (dispatch.isEmpty() || table.isEmpty()) return true;
        if (!table.detach()) return false;
        for (const ZMethodDispatch& gone : dispatch)
            for (const ZMethodDispatch* at = table.find(gone.key()); at; at = table.findNext(at))
                if (at->compare(gone) == 0) {
                    table.remove(at);
                    break;
                }
        return true;
    });
}

void ZMetaType::useTypeDispatch() { toolkit::storeRelease(own->dispatchStale, true); }
void ZMetaType::cleanTypeDispatch() {
    if (!toolkit::loadAcquire(own->dispatchStale)) return;
    toolkit::storeRelease(own->dispatchStale, false);
    for (const ZMethodDispatch& entry : getTypeMethodDispatch()) entry.reset();
}

/// Calls `call` with the table of this type, of the type that it is a copy of, and of each base.
template <class F> bool ZMetaType::eachDispatch(F&& call) {
    bool answered = false;
    ZArrayT<ZRetainPtrT<ZMetaType>> bases;
    for (ZMetaType* type = const_cast<ZMetaType*>(relationType()); type; type = type->mainType) {
        type->cleanTypeDispatch();
        answered |= call(type->getTypeMethodDispatch());
    }
    orv::eachAncestor(this, [&](const orv::Ancestor& at) {
        auto base = const_cast<ZMetaType*>(at.type);
        return at.isAlias || !base->createDispatch() || !toolkit::loadAcquire(base->own->hasDispatch) ||
               bases.append(ZRetainPtrT<ZMetaType>(base));
    });
    for (const auto& base : std::as_const(bases)) {
        base->cleanTypeDispatch();
        answered |= call(base->getTypeMethodDispatch());
    }
    return answered;
}
bool ZMetaType::typeCallDispatch(ZObject* object, const ZSelector& name, const ZArrayT<ZVariant>& arguments) {
    return object && eachDispatch([&](const DispatchTable& table) {
               return orv::callEntries(table, object, name, arguments, true);
           });
}
bool ZMetaType::typeCallDispatch(ZObject* object, const ZSelector& name) {
    return typeCallDispatch(object, name, ZArrayT<ZVariant>());
}
bool ZMetaType::typeDispatch(ZObject* object, const ZSelector& name, const ZArrayT<ZVariant>& arguments) {
    return object && eachDispatch([&](const DispatchTable& table) {
               return orv::callEntries(table, object, name, arguments, false);
           });
}

// An instance that is extended alone has a type of its own

ZTypeCategory* ZType::getCategory(const ZSelector& name) const { return findCategory(metaType, name); }
bool ZType::extend(const ZSelector& category) { return extend(getCategory(category)); }
bool ZType::extend(ZTypeCategory* category) {
    return category && metaType && localizeType(true) && metaType->addCategory(category);
}
bool ZType::removeExtension() { return localType(true) && metaType->removeCategory(); }
bool ZType::removeExtension(const ZSelector& category) { return localType(true) && metaType->removeCategory(category); }
bool ZType::removeExtension(ZTypeCategory* category) { return localType(true) && metaType->removeCategory(category); }
void ZType::resetCategories() {
    if (localType(false)) metaType->resetCategories();
}
