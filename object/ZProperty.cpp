#include "object/ZProperty.h"

#include "core/ZError.h"
#include "object/ZMetaType.h"
#include "object/propertyContainers.h"
#include "object/ztype.h"
#include "text/ZBlendPos.h"

namespace {
constexpr uint chunkRecords = 4096;
template <class T> int order(T a, T b) { return (a > b) - (a < b); }
} // namespace

constinit orv::SlotPool<ZProperty> ZProperty::records("ZProperty", chunkRecords);

bool ZProperty::open() { return records.open(); }
void ZProperty::close() { records.close(); }

ZProperty* ZProperty::retain() const {
    return pooled ? orv::SlotPool<ZProperty>::retain(const_cast<ZProperty*>(this)) : nullptr;
}

void ZProperty::release() const {
    if (pooled) records.release(const_cast<ZProperty*>(this));
}

int ZProperty::refcount() const { return pooled ? records.refcount(this) : 0; }

// Lifetime

ZProperty::ZProperty(const ZProperty& other)
    : bits(other.bits), versionNumber(other.versionNumber), level(other.level), fieldOffset(other.fieldOffset),
      selector(other.selector), words(other.words), updaters(other.updaters), itemType(other.itemType),
      index(other.index), held(other.held) {}

ZProperty::ZProperty(const ZVariant& value) { setValue(value); }

ZProperty::ZProperty(const ZSelector& name, const ZVariant& value, uint flags) : bits(flags), selector(name) {
    addVariableWord();
    if (value.type() || !value.isNull())
        setValue(value);
    else
        setValue(ZVariant(ztype<ZVariant>()));
}

ZProperty::ZProperty(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType, ZMetaType* indexType, uint flags)
    : bits(flags), selector(name), itemType(itemType), index(indexType), held(valueType) {
    addVariableWord();
    if (!itemType) this->itemType = held.mainType();
}

ZProperty::ZProperty(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType, uint flags)
    : ZProperty(name, valueType, itemType, nullptr, flags) {}

ZProperty::ZProperty(const ZSelector& name, ZMetaType* valueType, uint flags)
    : bits(flags), selector(name), held(valueType) {
    addVariableWord();
    resetType();
}

ZProperty::ZProperty(const ZProperty* a, const ZProperty* b, const ZBlendPos& pos) { blendFrom(a, b, pos); }

ZProperty& ZProperty::operator=(const ZProperty& other) {
    if (this == &other) return *this;
    takeFields(other);
    held = other.held;
    return *this;
}

/// All but the value.
void ZProperty::takeFields(const ZProperty& other) {
    bits = other.bits;
    versionNumber = other.versionNumber;
    level = other.level;
    fieldOffset = other.fieldOffset;
    selector = other.selector;
    words = other.words;
    updaters = other.updaters;
    itemType = other.itemType;
    index = other.index;
}

// Fields

void ZProperty::addVariableWord() {
    if (variable()) words = words.add(ZSelector("variable"));
}

void ZProperty::setFlags(uint flags) {
    bits = flags;
    addVariableWord();
}

void ZProperty::setOptions(const ZSelector& options) {
    words = options;
    updaters = extractUpdate(options);
    addVariableWord();
}

void ZProperty::setValue(const ZVariant& value) {
    held = value.type() && value.type() == ztype<ZVariant>() && !value.isNull() ? value.expand() : value;
    if ((bits & Copy) && !held.detach()) ZError::fail();
    resetType();
}

void ZProperty::resetType() {
    ZMetaType* type = held.mainType();
    orv::ContainerTypes types;
    bool container = type && orv::containerTypes(held, types);
    if (bits & Fixed) {
        if (!container && !itemType) itemType = type;
        return;
    }
    itemType = types.item;
    if (container) {
        if (types.kind == orv::ContainerTypes::SelectMap || types.kind == orv::ContainerTypes::KeyMap)
            index = types.index;
        if (bits & External) bits |= types.flags();
    }
    if (!itemType) itemType = type;
}

bool ZProperty::setupContainer() { return (bits & Fixed) || orv::makeContainer(held, itemType, index); }

void ZProperty::setupDynamic(const ZVariant& value, const ZSelector& options) {
    bits = Dynamic | Alias | Delegate;
    if (value.isPointer()) bits |= Retain;
    orv::ContainerTypes types;
    itemType = index = nullptr;
    if (value.type() && orv::containerTypes(value, types)) {
        itemType = types.item;
        const bool byPosition = types.kind == orv::ContainerTypes::Array || types.kind == orv::ContainerTypes::HashSet;
        index = byPosition ? ztype<int>() : types.index;
        bits |= types.flags();
    }
    setOptions(options);
    held = value;
    if (!itemType) itemType = held.mainType();
}

bool ZProperty::detach() { return held.detach(); }

// Comparison, blending

int ZProperty::compare(const ZProperty& other) const {
    if (int by = selector.compare(other.selector)) return by;
    if (int by = held.compare(other.held)) return by;
    if (int by = order(bits, other.bits)) return by;
    if (int by = words.compare(other.words)) return by;
    if (int by = order(versionNumber, other.versionNumber)) return by;
    if (int by = order(level, other.level)) return by;
    if (int by = order(itemType, other.itemType)) return by;
    return order(index, other.index);
}

void ZProperty::blendFrom(const ZProperty* a, const ZProperty* b, const ZBlendPos& pos) {
    if (a || b) {
        ZVariant blended;
        blended.blendFrom(a ? &a->held : nullptr, b ? &b->held : nullptr, pos);
        int version = a && b ? (a->versionNumber < b->versionNumber ? a->versionNumber : b->versionNumber)
                             : (a ? a : b)->versionNumber;
        int sandBox = a && b ? (a->level > b->level ? a->level : b->level) : (a ? a : b)->level;
        if ((a ? a : b) != this) takeFields(a ? *a : *b);
        versionNumber = version;
        level = sandBox;
        held = std::move(blended);
    }
    if (!itemType) itemType = held.mainType();
}

void ZProperty::blendValue(const ZVariant& a, const ZVariant& b, const ZBlendPos& pos) {
    ZVariant blended;
    blended.blendFrom(&a, &b, pos);
    held = std::move(blended);
}

// Tests

bool ZProperty::retainedObject() const {
    return held.type() && (bits & (ReadOnly | Retain)) == Retain &&
           held.type()->getDataType()->getType() == ZMetaType::Object;
}

bool ZProperty::isTraversed() const {
    if (!held.type() || (bits & Linked)) return false;
    if (bits & Traverse) return true;
    return !(bits & Alias) && held.type()->isTraversed();
}

bool ZProperty::beginUpdate() { return !(bits & Linked) && !toolkit::exchange(updating, byte(1)); }
