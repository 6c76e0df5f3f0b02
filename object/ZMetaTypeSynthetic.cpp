#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/names.h"
#include "object/syntheticMethods.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

#include <cstring>
#include <new>

namespace {

using orv::Synthetic;

/// The signatures under which a type declares these operations, in the order of `Synthetic`.
constexpr const char* signatures[] = {
    "uint propertyCount()",
    "bool property(ZTypedPtr*, const ZSelector&, ZProperty&, bool)",
    "bool propertyNames(ZArrayT<ZSelector>&)",
    "bool hasProperty(ZTypedPtr*, const ZSelector&)",
    "ZMetaType* getPropertyType(const ZSelector&)",
    "ZVariant getProperty(ZTypedPtr*, const ZSelector&, bool)",
    "ZVariant getPropertyItem(ZTypedPtr*, const ZSelector&, int)",
    "ZVariant getPropertyItem(ZTypedPtr*, const ZSelector&, const ZSelector&)",
    "ZVariant getPropertyItem(ZTypedPtr*, const ZSelector&, const void*)",
    "ZVariant getPropertyItem(ZTypedPtr*, const ZSelector&, const ZVariant&)",
    "int getPropertyCount(ZTypedPtr*, const ZSelector&)",
    "bool hasPropertyValue(ZTypedPtr*, const ZSelector&, const ZVariant&)",
    "ZVariant getPropertyKey(ZTypedPtr*, const ZSelector&, int)",
    "int getPropertyKeyIndex(ZTypedPtr*, const ZSelector&, const ZVariant&)",
    "ZVariant findPropertyKey(ZTypedPtr*, const ZSelector&, const ZVariant&)",
    "int findPropertyIndex(ZTypedPtr*, const ZSelector&, const ZVariant&)",
    "bool clearProperty(ZTypedPtr*, const ZSelector&)",
    "bool removePropertyItem(ZTypedPtr*, const ZSelector&, const ZVariant&)",
    "bool removePropertyItem(ZTypedPtr*, const ZSelector&, int)",
    "bool insertPropertyItem(ZTypedPtr*, const ZSelector&, const ZVariant&, const ZVariant&, bool)",
    "bool addPropertyItem(ZTypedPtr*, const ZSelector&, const ZVariant&, bool)",
    "bool setProperty(ZTypedPtr*, const ZSelector&, const ZVariant&, bool)",
    "bool setPropertyItem(ZTypedPtr*, const ZSelector&, int, const ZVariant&, bool)",
    "bool setPropertyItem(ZTypedPtr*, const ZSelector&, const ZSelector&, const ZVariant&, bool)",
    "bool setPropertyItem(ZTypedPtr*, const ZSelector&, const ZVariant&, const ZVariant&, bool)",
};
static_assert(sizeof signatures / sizeof *signatures == orv::syntheticCount);

/// An argument as its slot holds it: an object by its address, a number or a pointer as it is.
template <class T> const void* slot(const T& object) { return &object; }
const void* slot(const void* pointer) { return pointer; }
int slot(int number) { return number; }
int slot(bool flag) { return flag; }

/// The method by which a type answers an operation, and the part of the instance that it is called on.
struct Answering {
    ZMethod* method = nullptr;
    const void* instance = nullptr;

    Answering(const ZMetaType* type, Synthetic operation, const ZTypedPtr& typed) {
        orv::SyntheticMethods* methods = typed.instance ? orv::syntheticMethods(type) : nullptr;
        if (!methods) return;
        orv::CachedMethod& place = methods->places[int(operation)];
        int offset = 0;
        ZMethod* found = orv::cachedMethod(
            type, place, [&] { return ZSelector(signatures[int(operation)]); }, zsel<"const">(), offset);
        if (!found || !found->hasStacked()) return;
        method = found;
        instance = static_cast<char*>(typed.instance) + offset;
    }
};

/// Calls the method that answers an operation; `otherwise` if the type has none.
template <class R, class... A>
R ask(R otherwise, const ZMetaType* type, Synthetic operation, const ZTypedPtr& typed, const A&... given) {
    toolkit::EpochGuard guard;
    const Answering answering(type, operation, typed);
    if (!answering.method) return otherwise;
    alignas(R) byte room[sizeof(R)];
    byte block[8 + 8 * sizeof...(A)], *end = block;
    auto add = [&end](auto word) {
        std::memcpy(end, &word, sizeof word);
        end += sizeof word;
    };
    add(static_cast<void*>(room));
    (add(slot(given)), ...);
    answering.method->getStacked()(answering.instance, answering.method, block);
    auto made = std::launder(reinterpret_cast<R*>(room));
    R result(std::move(*made));
    made->~R();
    return result;
}
/// The same for operations that also say which instance owns what was found, and may say that it is another one.
template <class R, class... A>
R askAt(R otherwise, const ZMetaType* type, Synthetic operation, const ZTypedPtr& typed, const A&... given) {
    ZTypedPtr owner(typed);
    return ask(std::move(otherwise), type, operation, typed, owner, given...);
}

} // namespace

uint ZMetaType::syntheticPropertyCount(const ZTypedPtr& typed) const { return ask(0u, this, Synthetic::Count, typed); }
bool ZMetaType::syntheticProperty(const ZTypedPtr& typed, const ZSelector& name, ZProperty& found, bool resolve) const {
    return askAt(false, this, Synthetic::Property, typed, name, found, resolve);
}
bool ZMetaType::syntheticPropertyNames(const ZTypedPtr& typed, ZArrayT<ZSelector>& names) const {
    return ask(false, this, Synthetic::Names, typed, names);
}
bool ZMetaType::hasSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const {
    return askAt(false, this, Synthetic::Has, typed, name);
}
ZMetaType* ZMetaType::getSyntheticPropertyType(const ZTypedPtr& typed, const ZSelector& name) const {
    return ask(static_cast<ZMetaType*>(nullptr), this, Synthetic::Type, typed, name);
}
ZVariant ZMetaType::getSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, bool expand) const {
    return askAt(ZVariant(), this, Synthetic::Get, typed, name, expand);
}
ZVariant ZMetaType::getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index) const {
    return askAt(ZVariant(), this, Synthetic::GetItemAt, typed, name, index);
}
ZVariant ZMetaType::getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name,
                                             const ZSelector& key) const {
    return askAt(ZVariant(), this, Synthetic::GetItemNamed, typed, name, key);
}
ZVariant ZMetaType::getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const void* key) const {
    return askAt(ZVariant(), this, Synthetic::GetItemOf, typed, name, key);
}
ZVariant ZMetaType::getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const {
    return askAt(ZVariant(), this, Synthetic::GetItem, typed, name, key);
}
int ZMetaType::getSyntheticPropertyCount(const ZTypedPtr& typed, const ZSelector& name) const {
    return askAt(0, this, Synthetic::ItemCount, typed, name);
}
bool ZMetaType::hasSyntheticPropertyValue(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value) const {
    return askAt(false, this, Synthetic::HasValue, typed, name, value);
}
ZVariant ZMetaType::getSyntheticPropertyKey(const ZTypedPtr& typed, const ZSelector& name, int index) const {
    return askAt(ZVariant(), this, Synthetic::Key, typed, name, index);
}
int ZMetaType::getSyntheticPropertyKeyIndex(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const {
    return askAt(-1, this, Synthetic::KeyIndex, typed, name, key);
}
ZVariant ZMetaType::findSyntheticPropertyKey(const ZTypedPtr& typed, const ZSelector& name,
                                             const ZVariant& value) const {
    return askAt(ZVariant(), this, Synthetic::FindKey, typed, name, value);
}
int ZMetaType::findSyntheticPropertyIndex(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value) const {
    return askAt(-1, this, Synthetic::FindIndex, typed, name, value);
}
bool ZMetaType::clearSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const {
    return askAt(false, this, Synthetic::Clear, typed, name);
}
bool ZMetaType::removeSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const {
    return askAt(false, this, Synthetic::RemoveItem, typed, name, key);
}
bool ZMetaType::removeSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index) const {
    return askAt(false, this, Synthetic::RemoveItemAt, typed, name, index);
}
bool ZMetaType::insertSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key,
                                            const ZVariant& value, bool notify) const {
    return askAt(false, this, Synthetic::InsertItem, typed, name, key, value, notify);
}
bool ZMetaType::addSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                         bool notify) const {
    return askAt(false, this, Synthetic::AddItem, typed, name, value, notify);
}
bool ZMetaType::setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                     bool notify) const {
    return askAt(false, this, Synthetic::Set, typed, name, value, notify);
}
bool ZMetaType::setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index,
                                         const ZVariant& value, bool notify) const {
    return askAt(false, this, Synthetic::SetItemAt, typed, name, index, value, notify);
}
bool ZMetaType::setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZSelector& key,
                                         const ZVariant& value, bool notify) const {
    return askAt(false, this, Synthetic::SetItemNamed, typed, name, key, value, notify);
}
bool ZMetaType::setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key,
                                         const ZVariant& value, bool notify) const {
    return askAt(false, this, Synthetic::SetItem, typed, name, key, value, notify);
}
