#include "object/ZTypeCategory.h"

#include "core/construct.h"
#include "module/ZPackage.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/tableBuild.h"
#include "object/ztype.h"

namespace {

template <class Tree> bool keyNames(const Tree& tree, ZArrayT<ZSelector>& names) {
    const uint before = names.count();
    for (const auto& entry : tree) {
        if (names.count() > before && names[names.count() - 1] == entry.key()) continue;
        if (names.append(entry.key())) continue;
        names.remove(before, names.count() - before);
        return false;
    }
    return true;
}
bool appendNames(ZArrayT<ZSelector>& to, const ZArrayT<ZSelector>& from) { return to.append(from); }

const ZMethodPtr* findMethod(const ZTypeCategory::MethodTable& table, const ZSelector& selector,
                             const ZSelector& qualifier) {
    const ZSelector key = selector.type() == ZSelector::Method ? selector.methodName() : selector;
    for (const ZMethodPtr* node = table.find(key); node; node = table.findNext(node))
        if (node->get()->getSelector() == selector && node->get()->getQualifier() == qualifier) return node;
    return nullptr;
}

bool joinTypes(ZMetaType::Types& to, const ZMetaType::Types& from) {
    for (const auto& entry : from)
        if (!to.set(entry)) return false;
    return true;
}
bool joinProperties(ZTypeCategory::PropertyTable& to, const ZTypeCategory::PropertyTable& from) {
    if (!to.detach()) return false;
    for (const ZPropertyPtr& entry : from)
        if (!to.contains(entry.key()) && !to.add(entry)) return false;
    return true;
}
bool joinDispatch(ZObject::DispatchTable& to, const ZObject::DispatchTable& from) {
    if (!to.detach()) return false;
    for (const ZMethodDispatch& entry : from)
        if (!to.add(entry)) return false;
    return true;
}

/// Changes a table: that which the running thread builds, or else the category's own under its lock.
template <class T, class F> bool changeTable(const ZTypeCategory* category, ZLock& change, T& table, F&& edit) {
    if (T* building = orv::TableBuild<T>::find(category)) return edit(*building);
    ZScopedLock held(change);
    return edit(table);
}

} // namespace

/// A category and those that come along with it, each once, itself first.
struct ZTypeCategory::Nested {
    ZArrayT<ZRetainPtrT<ZTypeCategory>> all;
    bool whole = true;

    explicit Nested(const ZTypeCategory* first) { add(first, 0); }
    void add(const ZTypeCategory* category, int depth) {
        if (!category || depth >= deepest || !whole) return;
        for (const auto& known : std::as_const(all))
            if (known == category) return;
        whole = all.append(ZRetainPtrT<ZTypeCategory>(category));
        const ZPackage* package = category->package();
        if (!package) package = ZPackage::root();
        if (!package) return;
        for (const ZSelector& name : category->getCategories()) add(package->findCategory(name), depth + 1);
    }
};

// Lifetime

ZTypeCategory::ZTypeCategory(ZPackage* package, const ZSelector& name, const __ZPassMetaType* type, ZInternal* internal)
    : ZTypeCategory(package, name, nullptr, type, internal) {}
ZTypeCategory::ZTypeCategory(ZPackage* package, const ZSelector& name, ZTypeCallback initialize,
                             const __ZPassMetaType* type, ZInternal* internal)
    : ZObject(orv::tagFor<ZTypeCategory>(type), internal), ownerPackage(package) {
    change.setLabel("ZTypeCategory", 0);
    setSelector(name);
    callbacks[Initialize] = initialize;
    if (initialize && !reinterpret_cast<bool (*)(ZTypeCategory*)>(initialize)(this)) ZError::fail();
}
ZTypeCategory::ZTypeCategory(const __ZPassMetaType* type, ZInternal* internal)
    : ZTypeCategory(nullptr, ZSelector(), type, internal) {}
ZTypeCategory::~ZTypeCategory() = default;

void ZTypeCategory::setPackage(ZPackage* package) { toolkit::storeRelease(ownerPackage, package); }
ZTypeCallback ZTypeCategory::getCallback(CallBack index) const {
    return uint(index) < CallBackCount ? toolkit::loadAcquire(callbacks[index]) : nullptr;
}
void ZTypeCategory::setCallback(CallBack index, ZTypeCallback function) {
    if (uint(index) < CallBackCount) toolkit::storeRelease(callbacks[index], function);
}

// Lists of names

bool ZTypeCategory::edit(Names& names, const ZSelector& name, bool add) {
    if (name.isEmpty()) return false;
    ZScopedLock held(change);
    const int at = names.indexOf(name);
    if (add) return at >= 0 || names.append(name);
    return at >= 0 && names.remove(uint(at));
}

#define ORV_CATEGORY_NAMES(Names_, names)                                                                              \
    ZTypeCategory::Names ZTypeCategory::get##Names_() const {                                                          \
        ZScopedReadLock held(change);                                                                                  \
        return names;                                                                                                  \
    }                                                                                                                  \
    bool ZTypeCategory::get##Names_(Names& all) const { return appendNames(all, get##Names_()); }                      \
    bool ZTypeCategory::set##Names_(const Names& all) {                                                                \
        ZScopedLock held(change);                                                                                      \
        names = all;                                                                                                   \
        return true;                                                                                                   \
    }
ORV_CATEGORY_NAMES(BaseTypes, baseTypes)
ORV_CATEGORY_NAMES(Categories, categories)
ORV_CATEGORY_NAMES(AutoExtend, autoExtend)
#undef ORV_CATEGORY_NAMES

bool ZTypeCategory::addBaseType(const ZSelector& name) { return edit(baseTypes, name, true); }
bool ZTypeCategory::addBaseType(const ZMetaType* type) { return type && addBaseType(type->fullName()); }
bool ZTypeCategory::removeBaseType(const ZSelector& name) { return edit(baseTypes, name, false); }
bool ZTypeCategory::addCategory(const ZSelector& name) { return name != selector() && edit(categories, name, true); }
bool ZTypeCategory::addCategory(const ZTypeCategory* category) { return category && addCategory(category->selector()); }
bool ZTypeCategory::removeCategory(const ZSelector& name) { return edit(categories, name, false); }
bool ZTypeCategory::addAutoExtend(const ZSelector& name) { return edit(autoExtend, name, true); }
bool ZTypeCategory::addAutoExtend(const ZMetaType* type) { return type && addAutoExtend(type->fullName()); }
bool ZTypeCategory::removeAutoExtend(const ZSelector& name) { return edit(autoExtend, name, false); }

bool ZTypeCategory::canExtend(const ZMetaType* type) const {
    if (!type) return false;
    for (const ZSelector& name : getAutoExtend())
        if (type->getName() == name || type->fullName() == name || type->isBase(name)) return true;
    return false;
}
bool ZTypeCategory::setupAutoExtend(ZPackage* target) {
    if (!target || getAutoExtend().isEmpty()) return true;
    for (const auto& entry : target->getTypes()) {
        ZMetaType* type = entry.value();
        if (canExtend(type) && !type->hasCategory(this) && !type->addCategory(this)) return false;
    }
    return true;
}

// Tables

/// Joins what a builder makes to the table.
template <class T> bool ZTypeCategory::build(CallBack index, T& table, bool (*join)(T& to, const T& from)) {
    for (;;) {
        if (toolkit::loadAcquire(states[index]) == orv::tableBuilt) return true;
        // Asked by its own builder, who gets what it has so far.
        if (orv::TableBuild<T>::find(this)) return true;
        orv::TableBuild<T> building(this);
        const uint before = toolkit::loadAcquire(resets);
        auto run = reinterpret_cast<bool (*)(ZTypeCategory*)>(getCallback(index));
        if (run && !run(this)) return false;
        ZScopedLock held(change);
        if (states[index] == orv::tableBuilt || resets != before) continue;
        T all = table;
        if (!join(all, building.table)) return false;
        std::swap(table, all);
        toolkit::storeRelease(states[index], byte(orv::tableBuilt));
        return true;
    }
}
template <class T> T ZTypeCategory::tableOf(bool (ZTypeCategory::*create)(), const T& table) const {
    if (const T* building = orv::TableBuild<T>::find(this)) return *building;
    (const_cast<ZTypeCategory*>(this)->*create)();
    ZScopedReadLock held(change);
    return table;
}
template <class T> bool ZTypeCategory::setTable(bool (ZTypeCategory::*create)(), T& table, const T& to) {
    (this->*create)();
    return changeTable(this, change, table, [&](T& at) {
        at = to;
        return true;
    });
}

bool ZTypeCategory::buildAll() const {
    const Nested nested(this);
    for (const auto& category : nested.all)
        if (!category->createTypes() || !category->createMethods() || !category->createProperties() ||
            !category->createDispatch())
            return false;
    return nested.whole;
}
bool ZTypeCategory::createTypes() { return build(CreateTypes, types, joinTypes); }
bool ZTypeCategory::createMethods() { return build(CreateMethods, methodTypes, joinMethods); }
bool ZTypeCategory::createProperties() { return build(CreateProperties, propertyTypes, joinProperties); }
bool ZTypeCategory::createDispatch() { return build(CreateDispatch, dispatchTypes, joinDispatch); }

bool ZTypeCategory::appendMethod(ZMethod* method) {
    if (!method) return false;
    return changeTable(this, change, methodTypes, [&](MethodTable& table) {
        if (!table.detach()) return false;
        ZMethodPtr* node = ZMethodPtr::create(method);
        if (node && table.add(node)) return true;
        if (node) node->release();
        return false;
    });
}
bool ZTypeCategory::addPropertyDef(const ZPropertyPtr& property) {
    if (!property.property() || property.key().isEmpty()) return false;
    return changeTable(this, change, propertyTypes, [&](PropertyTable& table) {
        return !table.contains(property.key()) && table.detach() && table.add(property) != nullptr;
    });
}
bool ZTypeCategory::addDispatch(const ZMethodDispatch& dispatch) {
    if (dispatch.dispatchName().isEmpty()) return false;
    return changeTable(this, change, dispatchTypes,
                       [&](DispatchTable& table) { return table.detach() && table.add(dispatch) != nullptr; });
}
bool ZTypeCategory::addType(ZMetaType* type) {
    if (!type) return false;
    const ZRetainKeyT<ZSelector, ZMetaType> entry(type->getName(), type);
    return changeTable(this, change, types, [&](ZMetaType::Types& table) { return bool(table.set(entry)); });
}

ZTypeCategory::MethodTable ZTypeCategory::getMethodTypes() const {
    return tableOf(&ZTypeCategory::createMethods, methodTypes);
}
bool ZTypeCategory::getMethodTypes(ZArrayT<ZMethod*>& methods) const {
    const uint before = methods.count();
    for (const ZMethodPtr& entry : getMethodTypes())
        if (!methods.append(entry.get())) {
            methods.remove(before, methods.count() - before);
            return false;
        }
    return true;
}
ZTypeCategory::PropertyTable ZTypeCategory::getPropertyTypes() const {
    return tableOf(&ZTypeCategory::createProperties, propertyTypes);
}
bool ZTypeCategory::getPropertyTypes(Names& names) const { return keyNames(getPropertyTypes(), names); }
ZObject::DispatchTable ZTypeCategory::getDispatchTypes() const {
    return tableOf(&ZTypeCategory::createDispatch, dispatchTypes);
}
bool ZTypeCategory::getDispatchTypes(Names& names) const { return keyNames(getDispatchTypes(), names); }
ZMetaType::Types ZTypeCategory::getTypes() const { return tableOf(&ZTypeCategory::createTypes, types); }

bool ZTypeCategory::setMethodTypes(const MethodTable& methods) {
    return setTable(&ZTypeCategory::createMethods, methodTypes, methods);
}
bool ZTypeCategory::setPropertyTypes(const PropertyTable& properties) {
    return setTable(&ZTypeCategory::createProperties, propertyTypes, properties);
}
bool ZTypeCategory::setDispatchTypes(const DispatchTable& dispatch) {
    return setTable(&ZTypeCategory::createDispatch, dispatchTypes, dispatch);
}
bool ZTypeCategory::setTypes(const ZMetaType::Types& all) { return setTable(&ZTypeCategory::createTypes, types, all); }

// Finding

ZMetaType* ZTypeCategory::findType(const ZSelector& name) const {
    return ZMetaType::findInTypeNameMap(getTypes(), name);
}
ZMethod* ZTypeCategory::methodTypeBySelector(const ZSelector& sel, const ZSelector& qualifier) const {
    const MethodTable table = getMethodTypes();
    const ZMethodPtr* found = findMethod(table, sel, qualifier);
    return found ? found->get() : nullptr;
}
bool ZTypeCategory::calcMultiMethods() const {
    const Nested nested(this);
    for (const auto& category : nested.all)
        if (!category->createMethods()) return false;
    return nested.whole;
}
ZMethod* ZTypeCategory::findMultimethodType(int* distance, const ZSelector& name, const ZArrayT<ZMetaType*>& wanted,
                                            bool implicit, bool skipResult, bool exact,
                                            const ZSelector& qualifier) const {
    ZMethod* best = nullptr;
    int nearest = -1;
    for (const auto& category : Nested(this).all) {
        const MethodTable table = category->getMethodTypes();
        for (const ZMethodPtr* node = table.find(name); node; node = table.findNext(node)) {
            ZMethod* method = node->get();
            if (!method->qualify(qualifier)) continue;
            const int away = ZMetaType::distance(wanted, method->paramTypes(nullptr), skipResult, exact, implicit);
            if (away < 0 || (nearest >= 0 && away >= nearest)) continue;
            best = method;
            nearest = away;
        }
    }
    if (distance) *distance = nearest;
    return best;
}

// What an extended type gets

bool ZTypeCategory::joinMethods(MethodTable& to, const MethodTable& from) {
    if (!to.detach()) return false;
    for (const ZMethodPtr& entry : from) {
        if (findMethod(to, entry.get()->getSelector(), entry.get()->getQualifier())) continue;
        ZMethodPtr* node = ZMethodPtr::create(entry.get());
        if (node && to.add(node)) continue;
        if (node) node->release();
        return false;
    }
    return true;
}
bool ZTypeCategory::collectMethods(MethodTable& methods) const {
    const Nested nested(this);
    for (const auto& category : nested.all)
        if (!joinMethods(methods, category->getMethodTypes())) return false;
    return nested.whole;
}
bool ZTypeCategory::collectProperties(PropertyTable& properties) const {
    const Nested nested(this);
    for (const auto& category : nested.all)
        if (!joinProperties(properties, category->getPropertyTypes())) return false;
    return nested.whole;
}
bool ZTypeCategory::collectDispatch(DispatchTable& dispatch) const {
    const Nested nested(this);
    for (const auto& category : nested.all)
        if (!joinDispatch(dispatch, category->getDispatchTypes())) return false;
    return nested.whole;
}
bool ZTypeCategory::collectSelectorGroups(SelectorGroups& groups) const {
    const Nested nested(this);
    for (const auto& category : nested.all) {
        ZScopedReadLock held(category->change);
        for (const auto& group : category->selectorGroups)
            if (!groups.haskey(group.key()) && !groups.set(group.key(), group.value())) return false;
    }
    return nested.whole;
}
bool ZTypeCategory::extendTypes(ZMetaType* type) const {
    if (!type) return false;
    const Nested nested(this);
    for (const auto& category : nested.all) {
        for (const auto& entry : category->getTypes())
            if (!type->addType(entry.value())) return false;
        for (const ZSelector& name : category->getBaseTypes())
            if (!type->isBase(name) && !type->addBase(name)) return false;
    }
    return nested.whole;
}
bool ZTypeCategory::extendDispatch(ZMetaType* type) const {
    DispatchTable table;
    return type && collectDispatch(table) && type->addTypeDispatch(table);
}

bool ZTypeCategory::setupCategory() { return setupAutoExtend(package()); }

void ZTypeCategory::resetCategory() {
    ZMetaType::Types goneTypes;
    MethodTable goneMethods;
    PropertyTable goneProperties;
    DispatchTable goneDispatch;
    ZArrayT<ZMetaType*> users;
    {
        ZScopedLock held(change);
        // What no callback makes anew stays.
        if (callbacks[CreateTypes]) goneTypes.swap(types);
        if (callbacks[CreateMethods]) std::swap(goneMethods, methodTypes);
        if (callbacks[CreateProperties]) std::swap(goneProperties, propertyTypes);
        if (callbacks[CreateDispatch]) std::swap(goneDispatch, dispatchTypes);
        toolkit::addFetch(resets, 1u);
        for (byte& state : states) toolkit::store(state, byte(orv::tableUnbuilt));
        users = extended;
    }
    for (ZMetaType* type : std::as_const(users)) type->resetCategories();
}

void ZTypeCategory::leaveTypes() {
    ZArrayT<ZMetaType*> users;
    {
        ZScopedReadLock held(change);
        users = extended;
    }
    for (ZMetaType* type : std::as_const(users)) type->removeCategory(this);
}

bool ZTypeCategory::linkType(ZMetaType* type) {
    ZScopedLock held(change);
    return extended.indexOf(type) >= 0 || extended.append(type);
}
void ZTypeCategory::unlinkType(ZMetaType* type) {
    ZScopedLock held(change);
    if (const int at = extended.indexOf(type); at >= 0) extended.remove(uint(at));
}

// Selector groups

bool ZTypeCategory::selectorGroupNames(Names& names) const {
    ZScopedReadLock held(change);
    for (const auto& group : selectorGroups)
        if (!names.append(group.key())) return false;
    return true;
}
ZSelectorMap ZTypeCategory::selectorGroup(const ZSelector& name) const {
    ZScopedReadLock held(change);
    const ZSelectorMap* group = std::as_const(selectorGroups).get(name);
    return group ? *group : ZSelectorMap();
}
bool ZTypeCategory::setSelectorGroup(const ZSelector& name, const ZSelectorMap& group) {
    ZScopedLock held(change);
    return selectorGroups.set(name, group);
}
