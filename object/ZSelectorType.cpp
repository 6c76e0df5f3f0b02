#include "object/ZSelectorType.h"

#include "core/construct.h"
#include "object/ztype.h"
#include "value/ZVariant.h"

namespace {

const ZSelector& wordsAt(const void* instance) { return *static_cast<const ZSelector*>(instance); }
bool isList(const ZSelector& words) { return words.type() == ZSelector::Names; }
bool hasWord(const void* instance, const ZSelector& word) {
    if (!instance || word.isEmpty()) return false;
    const ZSelector& words = wordsAt(instance);
    return isList(words) ? words.index(word) >= 0 : words == word;
}

} // namespace

ZSelectorType::ZSelectorType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                             const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(package, name, kind, bases, orv::tagFor<ZSelectorType>(type), internal) {}
ZSelectorType::ZSelectorType(const ZSelectorType* source, const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(source, orv::tagFor<ZSelectorType>(type), internal) {}
ZSelectorType::ZSelectorType(const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(nullptr, ZSelector(), Selector, orv::tagFor<ZSelectorType>(type), internal) {}

ZType* ZSelectorType::copy() const { return zmake<ZSelectorType>(this, orv::passType(type())); }
ZMetaType* ZSelectorType::makeVariant(const ZSelector& name) {
    return name.ptrCount() ? ZMetaType::makeVariant(name) : zmake<ZSelectorType>(name, this);
}

bool ZSelectorType::fieldNames(const void* instance, ZArrayT<ZSelector>& names) const {
    if (!instance || wordsAt(instance).isEmpty()) return true;
    const ZSelector& words = wordsAt(instance);
    return isList(words) ? names.append(words.extract()) : names.append(words);
}
uint ZSelectorType::fieldCount(const void* instance) const {
    if (!instance || wordsAt(instance).isEmpty()) return 0;
    return isList(wordsAt(instance)) ? uint(wordsAt(instance).parcount()) : 1;
}
ZMetaType* ZSelectorType::fieldType(const void* instance, const ZSelector& name) const {
    return hasWord(instance, name) ? ztype<bool>() : nullptr;
}
ZVariant ZSelectorType::readField(const void* instance, const ZSelector& name) const {
    return hasWord(instance, name) ? ZVariant(true) : ZVariant();
}

bool ZSelectorType::writeField(void* instance, const ZSelector& name, const ZVariant& value) const {
    bool on;
    if (name.isEmpty() || !value.toBool(&on)) return false;
    ZSelector& words = *static_cast<ZSelector*>(instance);
    if (hasWord(instance, name) == on) return true;
    const ZSelector made = on ? words.add(name) : words.remove(name);
    // What is left of more than one word can only be missing for want of memory.
    if (made.isEmpty() && (on || fieldCount(instance) > 1)) return false;
    words = made;
    return true;
}
bool ZSelectorType::clearField(void* instance, const ZSelector& name) const {
    return hasWord(instance, name) && writeField(instance, name, ZVariant(false));
}
