#include "object/ZMetaType.h"
#include "object/ZType.h"

// What an instance answers about its type, and how it takes another one.

ZMetaType* ZType::type() const { return metaType; }

ZMetaType* ZType::type(bool derefCopies, bool useRoot) const {
    if (!metaType || !derefCopies) return metaType;
    if (useRoot) return metaType->rootType();
    ZMetaType* main = metaType->getMainType();
    return main ? main : metaType;
}

ZObject* ZType::memberObject(const ZSelector&) const { return nullptr; }

bool ZType::setType(ZMetaType* type) {
    if (type) return replaceType(type);
    if (metaType) metaType->endInstance(this);
    metaType = nullptr;
    return true;
}
bool ZType::setType(const ZSelector& name) { return replaceType(findType(name)); }

bool ZType::localType(bool exclusive) const {
    return metaType && metaType->isLocalType() && (!exclusive || metaType->getInstanceCount() == 1);
}

bool ZType::localizeType(bool exclusive) {
    if (!metaType) return false;
    if (localType(exclusive)) return true;
    ZMetaType* local = metaType->copyType();
    const bool done = replaceType(local);
    // The instance has its own reference now.
    if (local) local->release();
    return done;
}

bool ZType::replaceType(ZMetaType* type) {
    if (!type) return false;
    if (type == metaType) return true;
    ZFailGuard guard;
    type->beginInstance(this);
    if (guard.rose()) {
        guard.forget();
        type->endInstance(this);
        return false;
    }
    ZMetaType* old = metaType;
    metaType = type;
    if (old) old->endInstance(this);
    return true;
}

bool ZType::setMetaType(ZMetaType* type) {
    if (!type || !type->isZType()) return false;
    if (metaType && !metaType->typeOf(type) && !type->typeOf(metaType)) return false;
    // What a derived class has behind the base isn't there.
    if (metaType && type->byteSize() > metaType->byteSize()) return false;
    if (!replaceType(type)) return false;
    return !type->hasDynamicProperties() || type->setupProperties(this);
}
bool ZType::setMetaType(const ZSelector& name) { return setMetaType(findType(name)); }
bool ZType::setMetaType(const ZType* other) { return other && setMetaType(other->type()); }

bool ZType::sameType(const ZType* other) const { return other && sameType(other->metaType); }
bool ZType::sameType(const ZMetaType* type) const {
    return metaType == type || (metaType && metaType->isSameType(type));
}
bool ZType::isType(const ZSelector& name) const { return metaType && metaType->typeOf(name); }
bool ZType::isType(const ZMetaType* type) const { return metaType && metaType->typeOf(type); }

bool ZType::hasTypeOption(const ZSelector& word, bool inherited) const {
    return metaType && metaType->hasOption(word, inherited);
}
ZSelector ZType::getTypeExtraFlags() const { return metaType ? metaType->getExtraFlags() : ZSelector(); }
void ZType::setTypeExtraFlags(const ZSelector& words) {
    if (metaType) metaType->setExtraFlags(words);
}
ZSelector ZType::getTypeBlockName() const { return metaType ? metaType->getBlockName() : ZSelector(); }
void ZType::setTypeBlockName(const ZSelector& name) {
    if (metaType) metaType->setBlockName(name);
}
ZSelector ZType::getTypeSandBoxName() const { return metaType ? metaType->getSandBoxName() : ZSelector(); }
void ZType::setTypeSandBoxName(const ZSelector& name) {
    if (metaType) metaType->setSandBoxName(name);
}
int ZType::getTypeSandBoxLevel() const { return metaType ? metaType->getSandBoxLevel() : -1; }
void ZType::setTypeSandBoxLevel(int level) {
    if (metaType) metaType->setSandBoxLevel(level);
}

ZPackage* ZType::package() const { return metaType ? metaType->package() : nullptr; }
bool ZType::isPlugin(const ZSelector& id) const { return metaType && metaType->isPluginType(id); }
bool ZType::isPlugin(const ZPlugin* plugin) const { return metaType && metaType->isPluginType(plugin); }
ZMetaType* ZType::findType(const ZSelector& name) const {
    return metaType ? metaType->findType(name) : ZMetaType::find(name);
}
