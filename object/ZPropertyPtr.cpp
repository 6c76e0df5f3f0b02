#include "object/ZPropertyPtr.h"

#include "object/ZMetaType.h"

namespace {
constexpr uint chunkEntries = 4096;
}

constinit orv::SlotPool<ZPropertyPtr> ZPropertyPtr::entries("ZPropertyPtr", chunkEntries);

bool ZPropertyPtr::open() { return entries.open(); }
void ZPropertyPtr::close() { entries.close(); }

ZPropertyPtr* ZPropertyPtr::copy() const { return create(*this); }
void ZPropertyPtr::release() { entries.release(this); }

/// Takes a new record over, with the entry's name; null raises a failure.
void ZPropertyPtr::take(ZProperty* fresh) {
    record = fresh;
    if (fresh)
        selector = fresh->name();
    else
        ZError::fail();
}

ZPropertyPtr::ZPropertyPtr(const ZPropertyPtr& other)
    : ZTreeItemT(other), selector(other.selector), record(other.record ? other.record->retain() : nullptr) {}

ZPropertyPtr::ZPropertyPtr(const ZProperty* property) : record(property ? property->retain() : nullptr) {
    if (property) selector = property->name();
}

ZPropertyPtr::ZPropertyPtr(const ZVariant& value) { take(ZProperty::create(value)); }

ZPropertyPtr::ZPropertyPtr(const ZSelector& name, const ZVariant& value, uint flags) {
    take(ZProperty::create(name, value, flags));
}

ZPropertyPtr::ZPropertyPtr(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType, ZMetaType* indexType,
                           uint flags) {
    take(ZProperty::create(name, valueType, itemType, indexType, flags));
}

ZPropertyPtr::ZPropertyPtr(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType, uint flags) {
    take(ZProperty::create(name, valueType, itemType, flags));
}

ZPropertyPtr::ZPropertyPtr(const ZSelector& name, ZMetaType* valueType, uint flags) {
    take(ZProperty::create(name, valueType, flags));
}

ZPropertyPtr::ZPropertyPtr(const ZProperty* a, const ZProperty* b, const ZBlendPos& pos) {
    take(ZProperty::create(a, b, pos));
}

ZPropertyPtr::~ZPropertyPtr() {
    if (record) record->release();
}

ZPropertyPtr& ZPropertyPtr::operator=(const ZPropertyPtr& other) {
    ZProperty* fresh = other.record ? other.record->retain() : nullptr;
    selector = other.selector;
    if (ZProperty* old = std::exchange(record, fresh)) old->release();
    return *this;
}

void ZPropertyPtr::clear() {
    if (ZProperty* old = std::exchange(record, nullptr)) old->release();
}

bool ZPropertyPtr::set(const ZProperty* property) {
    ZProperty* fresh = property ? property->retain() : nullptr;
    if (property && !fresh) return false;
    if (ZProperty* old = std::exchange(record, fresh)) old->release();
    return true;
}

bool ZPropertyPtr::detach() {
    if (!record || record->refcount() < 2) return true;
    ZProperty* own = record->copy();
    if (!own) return false;
    toolkit::store(own->methodsSetup, toolkit::load(record->methodsSetup));
    toolkit::store(own->updating, toolkit::load(record->updating));
    std::exchange(record, own)->release();
    return true;
}

int ZPropertyPtr::compare(const ZPropertyPtr& other) const {
    if (int by = selector.compare(other.selector)) return by;
    if (!record || !other.record) return (record != nullptr) - (other.record != nullptr);
    return record == other.record ? 0 : record->compare(*other.record);
}

bool ZPropertyPtr::blendFrom(const ZPropertyPtr* a, const ZPropertyPtr* b, const ZBlendPos& pos) {
    ZProperty* fresh = ZProperty::create(a ? a->record : nullptr, b ? b->record : nullptr, pos);
    if (!fresh) return false;
    if (ZProperty* old = std::exchange(record, fresh)) old->release();
    return true;
}
