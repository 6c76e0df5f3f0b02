#include "module/ZPackage.h"
#include "object/ZMetaTypeData.h"

// What the instances of a type are given: delegates, and whether they hold the type. And what is told of a type beside
// its bases: categories, template.

namespace {

/// The objects of a type, each retained while `use` sees it; no lock is held then.
template <class F> void eachObject(const ZMetaType* type, F use) {
    ZArrayT<ZRetainPtrT<ZObject>> objects;
    type->getTypeObjects(objects);
    for (const auto& object : std::as_const(objects)) use(object.get());
}

} // namespace

void ZMetaType::setRetainedMode() {
    const ZPackage* package = this->package();
    // A package that may go before the library does has to stay as long as there are instances of its types.
    setRetainedType(package && (package->getFlags() & (ZPackage::Plugin | ZPackage::Dynamic)));
}

void ZMetaType::setupDelegates(ZObject* instance) {
    if (!instance) return;
    for (ZObject* delegate : getTypeDelegates()) instance->addDelegate(delegate, false);
    orv::eachBase(this, [&](ZMetaType* base) {
        base->setupDelegates(instance);
        return true;
    });
}

void ZMetaType::updateDelegate(ZObject* delegate) {
    if (!delegate) return;
    const bool mine = getTypeDelegates().contains(delegate);
    eachObject(this, [&](ZObject* object) {
        if (mine)
            object->addDelegate(delegate, false);
        else
            object->removeDelegate(delegate);
    });
    ZArrayT<ZMetaType*> types = getDescendants();
    for (ZMetaType* type : std::as_const(types)) type->updateDelegate(delegate);
}

void ZMetaType::changed() {
    orv::typesChanged();
    eachObject(this, [](ZObject* object) { object->resetMethods(); });
}

// Categories

ZArrayT<ZTypeCategory*> ZMetaType::getCategories() const {
    const orv::MetaTypeData& data = *described()->own;
    ZArrayT<ZTypeCategory*> categories;
    ZScopedReadLock held(data.change);
    for (const orv::CategoryLink& link : data.categories)
        if (!categories.append(link.category)) ZError::fail();
    return categories;
}
bool ZMetaType::getCategories(ZArrayT<ZSelector>& names) const {
    const orv::MetaTypeData& data = *described()->own;
    ZScopedReadLock held(data.change);
    for (const orv::CategoryLink& link : data.categories)
        if (!names.append(link.name)) return false;
    return true;
}
bool ZMetaType::hasCategory(const ZSelector& name) const {
    const orv::MetaTypeData& data = *described()->own;
    ZScopedReadLock held(data.change);
    for (const orv::CategoryLink& link : data.categories)
        if (link.name == name) return true;
    return false;
}
bool ZMetaType::hasCategory(const ZTypeCategory* category) const {
    const orv::MetaTypeData& data = *described()->own;
    ZScopedReadLock held(data.change);
    for (const orv::CategoryLink& link : data.categories)
        if (link.category == category) return true;
    return false;
}

// Templates

ZMetaType* ZMetaType::getTemplateType() const { return toolkit::loadAcquire(described()->own->templateType); }
ZSelector ZMetaType::getTemplatePar(int index) const {
    const ZSelector& name = described()->own->name;
    return name.type() == ZSelector::Template ? name.param(index) : ZSelector();
}
