#include "core/ZSelectorMap.h"

#include "core/ZCompactRBMap.h"
#include "core/construct.h"

namespace {
struct SelectorItem : ZCompactRBItem {
    ZSelector key, value;
};
const SelectorItem& itemOf(const ZCompactRBItem* item) { return *static_cast<const SelectorItem*>(item); }
SelectorItem& itemOf(ZCompactRBItem* item) { return *static_cast<SelectorItem*>(item); }
} // namespace

class ZSelectorMap::Items : public ZCompactRBMap {
public:
    Items() : ZCompactRBMap(0, sizeof(SelectorItem), 100, 0, 100) {}
    ~Items() override { clear(); }

    const SelectorItem* at(int index) const {
        return index >= 0 && uint(index) < count() ? &itemOf(itemStart(uint(index))) : nullptr;
    }
    SelectorItem& writable(uint index) { return itemOf(itemStart(index)); }
    const SelectorItem* find(const ZSelector& key) const { return at(findIndex(&key)); }

protected:
    void freeItem(ZCompactRBItem* item) override {
        itemOf(item).key.clear();
        itemOf(item).value.clear();
    }
    bool copyItem(ZCompactRBItem* to, const ZCompactRBItem* from) override {
        itemOf(to).key = itemOf(from).key;
        itemOf(to).value = itemOf(from).value;
        return true;
    }
    int compareItem(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
        int order = itemOf(a).key.compare(itemOf(b).key);
        return order ? order : itemOf(a).value.compare(itemOf(b).value);
    }
    int compareItemKey(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
        return itemOf(a).key.compare(itemOf(b).key);
    }
    int compareItemValue(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
        return itemOf(a).value.compare(itemOf(b).value);
    }
    int compareKey(const ZCompactRBItem* item, const void* key) const override {
        return itemOf(item).key.compare(*static_cast<const ZSelector*>(key));
    }
    int compareValue(const ZCompactRBItem* item, const void* value) const override {
        return itemOf(item).value.compare(*static_cast<const ZSelector*>(value));
    }
    uint hashKey(const void* key) const override { return static_cast<const ZSelector*>(key)->hashKey(); }
    uint hashValue(const void* value) const override { return static_cast<const ZSelector*>(value)->hashKey(); }
    uint hashItem(const ZCompactRBItem* item) const override { return itemOf(item).key.hashKey(); }
};

ZSelectorMap::ZSelectorMap(const ZSelectorMap& other) : items(other.items) {
    if (items) items->retain();
}
ZSelectorMap::~ZSelectorMap() { clear(); }

void ZSelectorMap::assign(const ZSelectorMap& other) {
    Items* taken = other.items;
    if (taken) taken->retain();
    clear();
    items = taken;
}
void ZSelectorMap::clear() {
    if (Items* old = std::exchange(items, nullptr)) old->release();
}

bool ZSelectorMap::detach() {
    if (items && refcount(items) == 1) return true;
    Items* own = zmake<Items>();
    if (!own) return false;
    if (items && !own->ZCompactRBMap::assign(*items, false)) {
        own->release();
        return false;
    }
    clear();
    items = own;
    return true;
}

uint ZSelectorMap::count() const { return items ? items->count() : 0; }
bool ZSelectorMap::contains(const ZSelector& key) const { return items && items->find(key); }

ZSelector ZSelectorMap::get(const ZSelector& key) const {
    const SelectorItem* item = items ? items->find(key) : nullptr;
    return item ? item->value : ZSelector();
}
ZSelector ZSelectorMap::get(int index) const {
    const SelectorItem* item = items ? items->at(index) : nullptr;
    return item ? item->value : ZSelector();
}
ZSelector ZSelectorMap::key(int index) const {
    const SelectorItem* item = items ? items->at(index) : nullptr;
    return item ? item->key : ZSelector();
}

bool ZSelectorMap::set(const ZSelector& key, const ZSelector& value) {
    if (key.isEmpty() || !detach()) return false;
    int index = items->findIndex(&key);
    if (index >= 0) {
        items->writable(uint(index)).value = value;
        return true;
    }
    if (!items->append(1, false)) return false;
    uint last = items->count() - 1;
    items->writable(last).key = key;
    items->writable(last).value = value;
    items->addNode(int(last));
    return true;
}

bool ZSelectorMap::append(const ZSelectorMap& other) {
    ZSelectorMap result(*this), added(other);
    for (uint i = 0; i < added.count(); ++i)
        if (!result.set(added.key(int(i)), added.get(int(i)))) return false;
    *this = std::move(result);
    return true;
}

int ZSelectorMap::compare(const ZSelectorMap& other) const {
    if (items == other.items) return 0;
    if (isEmpty() || other.isEmpty()) return int(count() > 0) - int(other.count() > 0);
    return items->compare(*other.items);
}

uint ZSelectorMap::hashKey() const {
    uint hash = 0;
    for (uint i = 0; i < count(); ++i) {
        const SelectorItem* item = items->at(int(i));
        hash ^= (item->key.key() * 0x9E3779B1u ^ item->value.key()) * 0x85EBCA6Bu;
    }
    return hash;
}
