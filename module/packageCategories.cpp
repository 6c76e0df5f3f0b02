#include "core/construct.h"
#include "module/ZPackage.h"
#include "object/ZTypeCategory.h"

// The categories of a package.

bool ZPackage::addCategory(ZTypeCategory* category) {
    if (!category || category->selector().isEmpty() || released) return false;
    {
        ZScopedLock held(*static_cast<const ZPackage*>(this));
        for (const ZTypeCategory* known : std::as_const(categories))
            if (known == category || known->selector() == category->selector()) return known == category;
        if (!categories.append(category)) return false;
        category->retain();
    }
    category->setPackage(this);
    return true;
}

bool ZPackage::setCategoryCount(uint count) {
    ZScopedLock held(*static_cast<const ZPackage*>(this));
    return count <= categories.count() || categories.reserve(count - categories.count());
}

ZTypeCategory* ZPackage::getCategory(const ZSelector& name) const {
    ZScopedLock held(*this);
    for (ZTypeCategory* category : categories)
        if (category->selector() == name) return category;
    return nullptr;
}
ZTypeCategory* ZPackage::findCategory(const ZSelector& name) const {
    if (name.isEmpty()) return nullptr;
    if (ZTypeCategory* own = getCategory(name)) return own;
    const ZPackage* above = root() != this ? root() : nullptr;
    for (const ZPackage* user : {this, above})
        if (user)
            for (const auto& used : user->usedPackages())
                if (ZTypeCategory* found = used->getCategory(name)) return found;
    return above ? above->getCategory(name) : nullptr;
}
ZArrayT<ZTypeCategory*> ZPackage::getCategories() const {
    ZScopedLock held(*this);
    return categories;
}

bool ZPackage::removeCategory(ZTypeCategory* category) {
    {
        ZScopedLock held(*static_cast<const ZPackage*>(this));
        const int at = categories.indexOf(category);
        if (at < 0 || !categories.remove(uint(at))) return false;
    }
    category->leaveTypes();
    category->setPackage(nullptr);
    category->release();
    return true;
}
bool ZPackage::removeCategory(const ZSelector& name) {
    ZTypeCategory* category = getCategory(name);
    return category && removeCategory(category);
}
bool ZPackage::removeCategory() {
    bool done = true;
    for (ZTypeCategory* category : getCategories()) done &= removeCategory(category);
    return done;
}

void ZPackage::resetCategory(const ZSelector& name) {
    if (ZTypeCategory* category = getCategory(name)) category->resetCategory();
}
bool ZPackage::autoExtend() {
    for (ZTypeCategory* category : getCategories())
        if (!category->setupAutoExtend(this)) return false;
    return true;
}
