#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/names.h"
#include "object/syntheticMethods.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

#include <cstring>

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

/// One call: finds the method, then its arguments go into a block, then it runs.
class SyntheticCall {
public:
    SyntheticCall(const ZMetaType* type, Synthetic operation, const ZTypedPtr& typed) : owner(typed) {
        if (!typed.instance) return;
        orv::SyntheticMethods* methods = orv::syntheticMethods(type);
        if (!methods) return;
        orv::CachedMethod& place = methods->places[int(operation)];
        ZSelector signature;
        if (toolkit::loadAcquire(place.state) == orv::CachedMethod::Unknown)
            signature = ZSelector(signatures[int(operation)]);
        int offset = 0;
        ZMethod* found = orv::cachedMethod(type, place, signature, zsel<"const">(), offset);
        if (!found || !found->hasStacked()) return;
        method = found;
        instance = static_cast<char*>(typed.instance) + offset;
    }
    SyntheticCall(const SyntheticCall&) = delete;

    explicit operator bool() const { return method != nullptr; }
    /// The argument for the instance that owns what is found.
    SyntheticCall& place() { return add(static_cast<const void*>(&owner)); }
    template <class T> SyntheticCall& reference(const T& value) { return add(static_cast<const void*>(&value)); }
    SyntheticCall& pointer(const void* value) { return add(value); }
    SyntheticCall& number(int value) { return add(value); }
    /// Runs it with room for its result; false, with `result` as it was, if there is no method.
    bool run(void* result) {
        if (!method) return false;
        std::memcpy(block, &result, sizeof result);
        method->getStacked()(instance, method, block);
        return true;
    }
    template <class R> R answer() {
        R result{};
        run(&result);
        return result;
    }
    ZVariant value() {
        alignas(ZVariant) byte room[sizeof(ZVariant)];
        if (!run(room)) return ZVariant();
        auto made = reinterpret_cast<ZVariant*>(room);
        ZVariant result(std::move(*made));
        made->~ZVariant();
        return result;
    }

private:
    template <class T> SyntheticCall& add(const T& value) {
        std::memcpy(block + filled, &value, sizeof value);
        filled += sizeof value;
        return *this;
    }

    toolkit::EpochGuard guard;
    ZMethod* method = nullptr;
    const void* instance = nullptr;
    ZTypedPtr owner;
    size_t filled = 8;
    alignas(8) byte block[48];
};

} // namespace

uint ZMetaType::syntheticPropertyCount(const ZTypedPtr& typed) const {
    return SyntheticCall(this, Synthetic::Count, typed).answer<uint>();
}

bool ZMetaType::syntheticProperty(const ZTypedPtr& typed, const ZSelector& name, ZProperty& found, bool resolve) const {
    return SyntheticCall(this, Synthetic::Property, typed)
        .place()
        .reference(name)
        .reference(found)
        .number(resolve)
        .answer<bool>();
}

bool ZMetaType::syntheticPropertyNames(const ZTypedPtr& typed, ZArrayT<ZSelector>& names) const {
    return SyntheticCall(this, Synthetic::Names, typed).reference(names).answer<bool>();
}

bool ZMetaType::hasSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const {
    return SyntheticCall(this, Synthetic::Has, typed).place().reference(name).answer<bool>();
}

ZMetaType* ZMetaType::getSyntheticPropertyType(const ZTypedPtr& typed, const ZSelector& name) const {
    return SyntheticCall(this, Synthetic::Type, typed).reference(name).answer<ZMetaType*>();
}

ZVariant ZMetaType::getSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, bool expand) const {
    return SyntheticCall(this, Synthetic::Get, typed).place().reference(name).number(expand).value();
}

ZVariant ZMetaType::getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index) const {
    return SyntheticCall(this, Synthetic::GetItemAt, typed).place().reference(name).number(index).value();
}

ZVariant ZMetaType::getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name,
                                             const ZSelector& key) const {
    return SyntheticCall(this, Synthetic::GetItemNamed, typed).place().reference(name).reference(key).value();
}

ZVariant ZMetaType::getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const void* key) const {
    return SyntheticCall(this, Synthetic::GetItemOf, typed).place().reference(name).pointer(key).value();
}

ZVariant ZMetaType::getSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const {
    return SyntheticCall(this, Synthetic::GetItem, typed).place().reference(name).reference(key).value();
}

int ZMetaType::getSyntheticPropertyCount(const ZTypedPtr& typed, const ZSelector& name) const {
    return SyntheticCall(this, Synthetic::ItemCount, typed).place().reference(name).answer<int>();
}

bool ZMetaType::hasSyntheticPropertyValue(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value) const {
    return SyntheticCall(this, Synthetic::HasValue, typed).place().reference(name).reference(value).answer<bool>();
}

ZVariant ZMetaType::getSyntheticPropertyKey(const ZTypedPtr& typed, const ZSelector& name, int index) const {
    return SyntheticCall(this, Synthetic::Key, typed).place().reference(name).number(index).value();
}

int ZMetaType::getSyntheticPropertyKeyIndex(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const {
    int index = -1;
    SyntheticCall(this, Synthetic::KeyIndex, typed).place().reference(name).reference(key).run(&index);
    return index;
}

ZVariant ZMetaType::findSyntheticPropertyKey(const ZTypedPtr& typed, const ZSelector& name,
                                             const ZVariant& value) const {
    return SyntheticCall(this, Synthetic::FindKey, typed).place().reference(name).reference(value).value();
}

int ZMetaType::findSyntheticPropertyIndex(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value) const {
    int index = -1;
    SyntheticCall(this, Synthetic::FindIndex, typed).place().reference(name).reference(value).run(&index);
    return index;
}

bool ZMetaType::clearSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const {
    return SyntheticCall(this, Synthetic::Clear, typed).place().reference(name).answer<bool>();
}

bool ZMetaType::removeSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key) const {
    return SyntheticCall(this, Synthetic::RemoveItem, typed).place().reference(name).reference(key).answer<bool>();
}

bool ZMetaType::removeSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index) const {
    return SyntheticCall(this, Synthetic::RemoveItemAt, typed).place().reference(name).number(index).answer<bool>();
}

bool ZMetaType::insertSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key,
                                            const ZVariant& value, bool notify) const {
    return SyntheticCall(this, Synthetic::InsertItem, typed)
        .place()
        .reference(name)
        .reference(key)
        .reference(value)
        .number(notify)
        .answer<bool>();
}

bool ZMetaType::addSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                         bool notify) const {
    return SyntheticCall(this, Synthetic::AddItem, typed)
        .place()
        .reference(name)
        .reference(value)
        .number(notify)
        .answer<bool>();
}

bool ZMetaType::setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                     bool notify) const {
    return SyntheticCall(this, Synthetic::Set, typed)
        .place()
        .reference(name)
        .reference(value)
        .number(notify)
        .answer<bool>();
}

bool ZMetaType::setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, int index,
                                         const ZVariant& value, bool notify) const {
    return SyntheticCall(this, Synthetic::SetItemAt, typed)
        .place()
        .reference(name)
        .number(index)
        .reference(value)
        .number(notify)
        .answer<bool>();
}

bool ZMetaType::setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZSelector& key,
                                         const ZVariant& value, bool notify) const {
    return SyntheticCall(this, Synthetic::SetItemNamed, typed)
        .place()
        .reference(name)
        .reference(key)
        .reference(value)
        .number(notify)
        .answer<bool>();
}

bool ZMetaType::setSyntheticPropertyItem(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& key,
                                         const ZVariant& value, bool notify) const {
    return SyntheticCall(this, Synthetic::SetItem, typed)
        .place()
        .reference(name)
        .reference(key)
        .reference(value)
        .number(notify)
        .answer<bool>();
}
