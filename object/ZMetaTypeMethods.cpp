#include "core/ZHashSetT.h"
#include "object/ZBinding.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/glueRows.h"
#include "object/inlineLinks.h"
#include "object/methodLookup.h"
#include "object/names.h"
#include "object/tableBuild.h"
#include "value/ZTypedPtr.h"

// The methods of a metatype: its tables, and what is asked of them.

namespace orv {

/// What a thread fills for `ZMetaType::createMethods`.
struct MethodBuild {
    MethodTable* table = nullptr;
    CategoryCopies categories;

    ~MethodBuild() { zrelease(table); }
};
using MethodBuilding = TableBuild<MethodBuild>;

const MethodTree* methodsUnderConstruction(const ZMetaType* type) {
    const MethodBuild* building = MethodBuilding::find(type);
    return building ? &building->table->declared : nullptr;
}

namespace {

void reclaimTable(toolkit::EpochLink* link) { zrelease(static_cast<MethodTable*>(link)); }

ZMethodPtr* findEntry(MethodTree& tree, const ZSelector& selector, const ZSelector& qualifier) {
    const ZSelector key = selector.type() == ZSelector::Method ? selector.methodName() : selector;
    for (const ZMethodPtr* node = tree.find(key); node; node = tree.findNext(node))
        if (node->get()->getSelector() == selector && node->get()->getQualifier() == qualifier)
            return const_cast<ZMethodPtr*>(node);
    return nullptr;
}
bool addEntry(MethodTree& tree, ZMethod* method) {
    ZMethodPtr* node = ZMethodPtr::create(method);
    if (!node) return false;
    if (tree.add(node)) return true;
    node->release();
    return false;
}
bool setEntry(MethodTree& tree, ZMethod* method, bool replace) {
    if (!tree.detach()) return false;
    if (ZMethodPtr* old = findEntry(tree, method->getSelector(), method->getQualifier())) {
        if (old->get() == method) return true;
        if (!replace || !addEntry(tree, method)) return false;
        return tree.remove(old);
    }
    return addEntry(tree, method);
}
bool setEntries(MethodTree& tree, const MethodTree& from) {
    for (const ZMethodPtr& entry : from)
        if (!setEntry(tree, entry.get(), true)) return false;
    return true;
}
void adopt(ZMetaType* type, ZMethod* method) {
    if (!method->getOwner()) method->setOwner(type);
}

/// Publishes other tables: `change` gets a copy and answers whether that is to be the one.
template <class F> bool edit(ZMetaType* type, F change) {
    MethodTables& tables = type->record().methods;
    MethodTable* old;
    for (;;) {
        if (!type->createMethods()) return false;
        ZScopedLock held(type->record().change);
        old = tables.published.load();
        // It may have been reset again by now.
        if (!old) continue;
        MethodTable* fresh = zmake<MethodTable>(*old);
        if (!fresh) return false;
        fresh->next = nullptr;
        if (!change(*fresh)) {
            zrelease(fresh);
            return false;
        }
        tables.user = fresh->user;
        (void)tables.published.publish(fresh);
        break;
    }
    typesChanged();
    toolkit::epochRetire(old, reclaimTable);
    ZBinding::resetType(type);
    return true;
}

const MethodTree& noMethods() {
    static constinit const MethodTree none;
    return none;
}
template <class F> bool collect(const MethodTree& tree, F take) {
    for (const ZMethodPtr& entry : tree)
        if (!take(entry.get())) return false;
    return true;
}
bool collectNamed(const MethodTree& tree, const ZSelector& name, ZArrayT<ZMethod*>& methods) {
    for (const ZMethodPtr* node = tree.find(name); node; node = tree.findNext(node))
        if (!methods.append(node->get())) return false;
    return true;
}
bool collectWithOptions(const MethodTree& tree, const ZSelector& words, ZArrayT<ZMethod*>& methods) {
    return collect(tree, [&](ZMethod* m) { return !m->hasOption(words) || methods.append(m); });
}
/// Sees to it that a typed pointer is at the part on which the method is called.
ZMethod* aim(ZTypedPtr* typed, const MethodHit& hit) {
    if (!hit.method || !typed) return hit.method;
    typed->type = hit.type;
    if (typed->instance) typed->instance = static_cast<char*>(typed->instance) + hit.offset;
    return hit.method;
}
ZMethod* aim(int* offset, const MethodHit& hit) {
    if (offset) *offset = hit.offset;
    return hit.method;
}
byte lookFlags(bool implicit, bool skipResult, bool exact) {
    return byte((implicit ? LookImplicit : 0) | (skipResult ? LookSkipResult : 0) | (exact ? LookExact : 0));
}

struct OperationText {
    const char* ofType;  ///< for `ZType` classes; "%s" stands for the name of the type
    const char* ofValue; ///< for others; null for the same
    bool isConst;
};
constexpr OperationText operationTexts[] = {
    {"int compare(const %s*)", "int compare(const %s&)", true},
    {"int internalSize()", nullptr, true},
    {"uint hashKey()", nullptr, true},
    {"bool blendFrom(const %s*, const %s*, const ZBlendPos&)", "bool blendFrom(const %s&, const %s&, const ZBlendPos&)",
     false},
    {"bool blendLocal(const %s*, const %s*, const ZBlendPos&)",
     "bool blendLocal(const %s&, const %s&, const ZBlendPos&)", false},
    {"bool setIdentity()", nullptr, false},
    {"bool setLocalIdentity()", nullptr, false},
    {"bool markcsp(ZCSPMarker*)", nullptr, true},
    {"bool markLocal(ZCSPMarker*)", nullptr, true},
    {"bool updatecsp(const ZColorContext*)", nullptr, false},
    {"bool updateLocal(const ZColorContext*)", nullptr, false},
};
static_assert(sizeof operationTexts / sizeof *operationTexts == size_t(TypeOperation::Count));

ZMethod* findOperation(const ZMetaType* type, TypeOperation which) {
    MethodTables& tables = const_cast<ZMetaType*>(type)->record().methods;
    const OperationText& text = operationTexts[int(which)];
    const uint bit = 1u << int(which);
    if (ORV_UNLIKELY(!(toolkit::loadAcquire(tables.operationsKnown) & bit))) {
        const ZSelector name = type->mainOrSelf()->getName();
        const char* format = type->isZType() || !text.ofValue ? text.ofType : text.ofValue;
        ZSelector signature;
        if (!signature.printf(format, name.string(), name.string())) return nullptr;
        ZScopedLock held(type->record().change);
        if (!(tables.operationsKnown & bit)) {
            tables.operations[int(which)] = signature;
            toolkit::storeRelease(tables.operationsKnown, tables.operationsKnown | bit);
        }
    }
    toolkit::EpochGuard guard;
    return lookUpMethod(type, tables.operations[int(which)], text.isConst ? zsel<"const">() : ZSelector(), false)
        .method;
}

} // namespace

const MethodTable* methodTable(const ZMetaType* type) {
    const MethodTables& tables = type->record().methods;
    for (;;) {
        if (const MethodTable* known = tables.published.load()) return known;
        // What was built may have been reset again by now.
        if (!const_cast<ZMetaType*>(type)->createMethods()) return tables.published.load();
    }
}
bool reserveMethods(ZMetaType* type, uint count) {
    MethodBuild* building = MethodBuilding::find(type);
    return building && building->table->declared.init(count, 100);
}

MethodTables::~MethodTables() {
    typesRemoved();
    InlineLinks::drop(*this);
    dropCaches(*this);
    if (MethodTable* table = published.publish(nullptr)) {
        // Who still holds a method finds that it has no type any more.
        for (const MethodTree* tree : {&table->declared, &table->user})
            for (const ZMethodPtr& entry : *tree) {
                ZMetaType* owner = entry.get()->getOwner();
                if (owner && &owner->record().methods == this) entry.get()->setOwner(nullptr);
            }
        toolkit::epochRetire(table, reclaimTable);
    }
}

} // namespace orv

using namespace orv;

// Building and resetting

bool ZMetaType::createMethods() {
    MethodTables& tables = own->methods;
    for (;;) {
        if (tables.published.load()) return true;
        // Asked by its own builder: there is nothing yet.
        if (MethodBuilding::find(this)) return false;
        MethodBuilding building(this);
        MethodBuild& fresh = building.table;
        const uint resets = toolkit::loadAcquire(tables.resets);
        fresh.table = zmake<orv::MethodTable>();
        if (!fresh.table) return false;
        if (own->declaration) reserveMethods(this, uint(own->declaration->methods.count));
        auto build = reinterpret_cast<bool (*)(ZMetaType*)>(getCallback(CreateMethods));
        if ((build && !build(this)) || !orv::joinCategoryMethods(this, fresh.categories)) return false;
        ZScopedLock held(own->change);
        if (tables.published.load() || tables.resets != resets) continue;
        fresh.categories.keep(*own, &CategoryLink::methods);
        fresh.table->user = tables.user;
        (void)tables.published.publish(std::exchange(fresh.table, nullptr));
        return true;
    }
}
bool ZMetaType::appendMethod(ZMethod* method) {
    if (!method) return false;
    if (MethodBuild* building = MethodBuilding::find(this)) {
        adopt(this, method);
        method->setDeclared(true);
        return addEntry(building->table->declared, method);
    }
    return edit(this, [&](orv::MethodTable& table) {
        if (!addEntry(table.declared, method)) return false;
        adopt(this, method);
        return true;
    });
}
void ZMetaType::resetMethodTypes() {
    orv::MethodTable* old;
    {
        ZScopedLock held(own->change);
        toolkit::addFetch(own->methods.resets, 1u);
        old = own->methods.published.publish(nullptr);
    }
    typesChanged();
    if (old) toolkit::epochRetire(old, reclaimTable);
    resetInlineMethodTypes();
    ZBinding::resetType(this);
}

bool ZMetaType::typesAreReset() const { return !own->methods.published.load() && !own->properties.types.load(); }
void ZMetaType::resetType(bool build) {
    resetMethodTypes();
    orv::resetProperties(this);
    if (!build) return;
    createTypes();
    createMethods();
    createProperties();
    createDispatch();
}

// Declared methods

uint ZMetaType::methodTypeCount() const {
    toolkit::EpochGuard guard;
    const orv::MethodTable* table = methodTable(this);
    return table ? table->declared.count() : 0;
}
const ZMetaType::MethodTable& ZMetaType::getMethodTypes() const {
    toolkit::EpochGuard guard;
    const orv::MethodTable* table = methodTable(this);
    return table ? table->declared : noMethods();
}
bool ZMetaType::getMethodTypes(ZArrayT<ZMethod*>& methods) const {
    toolkit::EpochGuard guard;
    return collect(getMethodTypes(), [&](ZMethod* m) { return methods.append(m); });
}
bool ZMetaType::getMethodTypes(const ZSelector& name, ZArrayT<ZMethod*>& methods) const {
    toolkit::EpochGuard guard;
    return collectNamed(getMethodTypes(), name, methods);
}
bool ZMetaType::getMethodTypes(ZArrayT<ZSelector>& signatures) const {
    toolkit::EpochGuard guard;
    return collect(getMethodTypes(), [&](ZMethod* m) { return signatures.append(m->getSelector()); });
}
bool ZMetaType::getMethodTypes(ZHashSetT<ZSelector>& signatures) const {
    toolkit::EpochGuard guard;
    return collect(getMethodTypes(), [&](ZMethod* m) { return bool(signatures.add(m->getSelector())); });
}
bool ZMetaType::getMethodTypesWithOptions(const ZSelector& words, ZArrayT<ZMethod*>& methods) const {
    toolkit::EpochGuard guard;
    return collectWithOptions(getMethodTypes(), words, methods);
}
bool ZMetaType::getAutoBindMethodTypes(ZArrayT<ZMethod*>& methods) const {
    toolkit::EpochGuard guard;
    return collect(getMethodTypes(), [&](ZMethod* m) { return !m->autoBind() || methods.append(m); });
}
bool ZMetaType::setMethodType(ZMethod* method, bool replace) {
    if (!method) return false;
    return edit(this, [&](orv::MethodTable& table) {
        if (!setEntry(table.declared, method, replace)) return false;
        adopt(this, method);
        return true;
    });
}
bool ZMetaType::setMethodType(const ZMethodPtr& method) { return setMethodType(method.get(), true); }
bool ZMetaType::addMethodTypes(const MethodTable& methods) {
    return edit(this, [&](orv::MethodTable& table) { return setEntries(table.declared, methods); });
}
bool ZMetaType::addMethodTypes(const ZMetaType* source) {
    if (!source) return false;
    toolkit::EpochGuard guard;
    return addMethodTypes(source->getMethodTypes());
}
bool ZMetaType::removeMethodType(const ZSelector& selector, const ZSelector& qualifier) {
    return edit(this, [&](orv::MethodTable& table) {
        if (!table.declared.detach()) return false;
        ZMethodPtr* entry = findEntry(table.declared, selector, qualifier);
        return entry && table.declared.remove(entry);
    });
}

// User methods

uint ZMetaType::userMethodCount() const {
    toolkit::EpochGuard guard;
    return getUserMethods().count();
}
const ZMetaType::MethodTable& ZMetaType::getUserMethods() const {
    toolkit::EpochGuard guard;
    const orv::MethodTable* table = methodTable(this);
    return table ? table->user : noMethods();
}
bool ZMetaType::getUserMethods(ZArrayT<ZMethod*>& methods) const {
    toolkit::EpochGuard guard;
    return collect(getUserMethods(), [&](ZMethod* m) { return methods.append(m); });
}
bool ZMetaType::getUserMethods(const ZSelector& name, ZArrayT<ZMethod*>& methods) const {
    toolkit::EpochGuard guard;
    return collectNamed(getUserMethods(), name, methods);
}
bool ZMetaType::getUserMethods(ZArrayT<ZSelector>& signatures) const {
    toolkit::EpochGuard guard;
    return collect(getUserMethods(), [&](ZMethod* m) { return signatures.append(m->getSelector()); });
}
bool ZMetaType::getUserMethods(ZHashSetT<ZSelector>& signatures) const {
    toolkit::EpochGuard guard;
    return collect(getUserMethods(), [&](ZMethod* m) { return bool(signatures.add(m->getSelector())); });
}
bool ZMetaType::getUserMethodsWithOptions(const ZSelector& words, ZArrayT<ZMethod*>& methods) const {
    toolkit::EpochGuard guard;
    return collectWithOptions(getUserMethods(), words, methods);
}
const ZMethodPtr* ZMetaType::userMethodNode(const ZSelector& selector) const {
    toolkit::EpochGuard guard;
    const MethodTable& tree = getUserMethods();
    return tree.find(selector.type() == ZSelector::Method ? selector.methodName() : selector);
}
ZMethod* ZMetaType::userMethodBySelector(const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    orv::MethodTable only;
    only.user = getUserMethods();
    return pickMethod(&only, selector, qualifier, false);
}
bool ZMetaType::setUserMethods(const MethodTable& methods) {
    return edit(this, [&](orv::MethodTable& table) {
        table.user = methods;
        return true;
    });
}
bool ZMetaType::setUserMethod(ZMethod* method, bool replace) {
    if (!method) return false;
    return edit(this, [&](orv::MethodTable& table) {
        if (!setEntry(table.user, method, replace)) return false;
        adopt(this, method);
        return true;
    });
}
bool ZMetaType::setUserMethod(const ZMethodPtr& method) { return setUserMethod(method.get(), true); }
bool ZMetaType::addUserMethods(const MethodTable& methods) {
    return edit(this, [&](orv::MethodTable& table) { return setEntries(table.user, methods); });
}
bool ZMetaType::addUserMethods(const ZMetaType* source) {
    if (!source) return false;
    toolkit::EpochGuard guard;
    return addUserMethods(source->getUserMethods());
}
bool ZMetaType::removeUserMethod(const ZSelector& selector, const ZSelector& qualifier) {
    return edit(this, [&](orv::MethodTable& table) {
        if (!table.user.detach()) return false;
        ZMethodPtr* entry = findEntry(table.user, selector, qualifier);
        return entry && table.user.remove(entry);
    });
}

// Methods by index

bool ZMetaType::setFixedMethodCount(int count) {
    if (count < 0) return false;
    ZScopedLock held(own->change);
    return own->methods.fixedMethods.setCount(uint(count));
}
bool ZMetaType::setFixedMethod(int index, const ZSelector& signature, const ZSelector& qualifier) {
    ZScopedLock held(own->change);
    return index >= 0 && own->methods.fixedMethods.set(uint(index), ZFixedMethod(signature, qualifier));
}
const ZArrayT<ZFixedMethod>& ZMetaType::getFixedMethods() const { return own->methods.fixedMethods; }
bool ZMetaType::useFixedMethods() {
    const ZMetaType* base = primaryBase();
    if (!own->methods.fixedMethods.isEmpty()) return true;
    if (!base || base->getFixedMethods().isEmpty()) return false;
    ZScopedLock held(own->change);
    own->methods.fixedMethods = base->getFixedMethods();
    return true;
}
ZMethod* ZMetaType::getFixedMethod(int index) const {
    const ZMetaType* listed = this;
    // A type without a list of its own is called by that of its base, and answers with its own methods.
    for (int depth = 0; listed && listed->getFixedMethods().isEmpty() && depth < 512; ++depth)
        listed = listed->mainOrSelf() != listed ? listed->mainOrSelf() : listed->primaryBase();
    const ZFixedMethod* row = listed && index >= 0 ? listed->getFixedMethods().entry(uint(index)) : nullptr;
    if (!row) return nullptr;
    toolkit::EpochGuard guard;
    return lookUpMethod(this, row->getSignature(), row->getQualifier(), false).method;
}
void ZMetaType::resetFixedMethods() { typesChanged(); }

// What the metatype asks its own type for

ZMethod* ZMetaType::getCompareMethod() const { return findOperation(this, TypeOperation::Compare); }
ZMethod* ZMetaType::getInternalMethod() const { return findOperation(this, TypeOperation::Internal); }
ZMethod* ZMetaType::getHashMethod() const { return findOperation(this, TypeOperation::Hash); }
ZMethod* ZMetaType::getBlendMethod() const { return findOperation(this, TypeOperation::Blend); }
ZMethod* ZMetaType::getBlendLocalMethod() const { return findOperation(this, TypeOperation::BlendLocal); }
ZMethod* ZMetaType::getSetIdentityMethod() const { return findOperation(this, TypeOperation::SetIdentity); }
ZMethod* ZMetaType::getSetLocalIdentityMethod() const { return findOperation(this, TypeOperation::SetLocalIdentity); }
ZMethod* ZMetaType::getMarkCSPMethod() const { return findOperation(this, TypeOperation::MarkCSP); }
ZMethod* ZMetaType::getMarkLocalCSPMethod() const { return findOperation(this, TypeOperation::MarkLocalCSP); }
ZMethod* ZMetaType::getUpdateCSPMethod() const { return findOperation(this, TypeOperation::UpdateCSP); }
ZMethod* ZMetaType::getUpdateLocalCSPMethod() const { return findOperation(this, TypeOperation::UpdateLocalCSP); }

// Lookups in this type alone

const ZMethodPtr* ZMetaType::methodTypeNode(const ZSelector& selector) const {
    toolkit::EpochGuard guard;
    const MethodTable& tree = getMethodTypes();
    return tree.find(selector.type() == ZSelector::Method ? selector.methodName() : selector);
}
ZMethod* ZMetaType::methodTypeBySelector(const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    const ZSelector mine = getQualifier();
    return pickMethod(methodTable(this), selector, mine.isEmpty() ? qualifier : mine.add(qualifier), false);
}
bool ZMetaType::hasMethodType(const ZSelector& selector, const ZSelector& qualifier) const {
    return methodTypeBySelector(selector, qualifier) != nullptr;
}
bool ZMetaType::hasMultimethodType(const ZSelector& name, const ZSelector& qualifier) const {
    return methodTypeBySelector(name, qualifier) != nullptr;
}
ZMethod* ZMetaType::findMultimethodType(int* distance, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                                        bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    const MethodHit hit = pickOverload(this, methodTable(this), name, types.data(), int(types.count()),
                                       lookFlags(implicit, skipResult, exact), qualifier, false);
    if (distance) *distance = hit.distance;
    return hit.method;
}

// Lookups in this type and what it inherits from

bool ZMetaType::implementMethod(const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    const ZMethod* method = lookUpMethod(this, selector, qualifier, false).method;
    return method && (method->hasFunc() || method->hasStacked());
}
bool ZMetaType::implementMethod(const ZMethod* method) const {
    return method && implementMethod(method->getSelector(), method->getQualifier());
}
bool ZMetaType::implementMethod(const ZSelector& selector) const { return implementMethod(selector, {}); }

ZMethod* ZMetaType::methodType(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    return aim(typed, lookUpMethod(this, selector, qualifier, false));
}
ZMethod* ZMetaType::methodType(const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    return lookUpMethod(this, selector, qualifier, false).method;
}
ZMethod* ZMetaType::methodType(const ZSelector& selector) const { return methodType(selector, {}); }
ZMethod* ZMetaType::methodType(int* offset, const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    return aim(offset, lookUpMethod(this, selector, qualifier, false));
}
ZMethod* ZMetaType::baseMethodType(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    return aim(typed, lookUpMethod(this, selector, qualifier, true));
}
ZMethod* ZMetaType::baseMethodType(int* offset, const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    return aim(offset, lookUpMethod(this, selector, qualifier, true));
}
ZMethod* ZMetaType::multimethodType(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                    const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                    const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    const MethodHit hit = lookUpOverload(this, name, types.data(), int(types.count()),
                                         lookFlags(implicit, skipResult, exact), qualifier, false);
    if (distance) *distance = hit.distance;
    return aim(typed, hit);
}
ZMethod* ZMetaType::multimethodType(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const {
    return multimethodType(nullptr, nullptr, name, types, false, true, false, {});
}
ZMethod* ZMetaType::baseMultimethodType(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                        const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                        const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    const MethodHit hit = lookUpOverload(this, name, types.data(), int(types.count()),
                                         lookFlags(implicit, skipResult, exact), qualifier, true);
    if (distance) *distance = hit.distance;
    return aim(typed, hit);
}

// Names and kin

void ZMetaType::initTemplateType(const ZSelector& name) {
    ZMetaType* made = name.type() == ZSelector::Template ? findType(name.methodName()) : nullptr;
    ZScopedLock held(own->change);
    own->templateType = made == this ? nullptr : made;
}
bool ZMetaType::collectSelectors(ZSelectorMap& selectors) const {
    toolkit::EpochGuard guard;
    auto take = [&](ZMethod* m) { return selectors.set(m->getSelector(), m->getQualifier()); };
    return collect(getUserMethods(), take) && collect(getMethodTypes(), take);
}

// Inline methods

void ZMetaType::linkInlineMethodType(ZInlineMethod* record) {
    if (record) InlineLinks::link(own->methods, record);
}
void ZMetaType::unlinkInlineMethodType(ZInlineMethod* record) {
    if (record) InlineLinks::unlink(own->methods, record);
}
void ZMetaType::resetInlineMethodTypes() { InlineLinks::reset(own->methods, nullptr); }
void ZMetaType::resetInlineMethodTypes(const ZSelector& name) { InlineLinks::reset(own->methods, &name); }
