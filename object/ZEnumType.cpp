#include "object/ZEnumType.h"

#include "core/construct.h"
#include "object/ZMetaTypeData.h"
#include "object/glueRows.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "text/number.h"
#include "value/ZVariant.h"

#include <cstring>

namespace orv {

/// The published table of an enumeration; it doesn't change any more, but for `ZEnumType::data` of a new type.
struct EnumTable : toolkit::EpochLink {
    ZEnum data;

    EnumTable() = default;
    explicit EnumTable(const ZEnum& data) : data(data) {}
};

} // namespace orv

namespace {

using orv::EnumTable;

void freeTable(toolkit::EpochLink* link) { zrelease(static_cast<EnumTable*>(link)); }

/// Values of fewer bytes than an int may stand for negative ones.
int signExtended(int value, uint size) { return size == 1 ? int8(value) : size == 2 ? int16(value) : value; }

} // namespace

// Lifetime

ZEnumType::ZEnumType(ZPackage* package, const ZSelector& name, const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(package, name, Enum, orv::tagFor<ZEnumType>(type), internal) {}
ZEnumType::ZEnumType(ZPackage* package, const ZSelector& name, const ZArrayT<ZEnumItem>& items,
                     const __ZPassMetaType* type, ZInternal* internal)
    : ZEnumType(package, name, type, internal) {
    if (!add(items)) ZError::fail();
}
ZEnumType::ZEnumType(const ZEnumType* source, const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(source, orv::tagFor<ZEnumType>(type), internal), row(source->row) {
    toolkit::EpochGuard guard;
    if (source->published.load() && !setData(source->data())) ZError::fail();
}
ZEnumType::ZEnumType(const __ZPassMetaType* type, ZInternal* internal)
    : ZEnumType(nullptr, ZSelector(), type, internal) {}
ZEnumType::~ZEnumType() { zrelease(published.publish(nullptr)); }

ZType* ZEnumType::copy() const { return zmake<ZEnumType>(this, orv::passType(type())); }

ZMetaType* ZEnumType::makeVariant(const ZSelector& name) {
    return name.ptrCount() ? ZMetaType::makeVariant(name) : zmake<ZEnumType>(name, this);
}

void ZEnumType::setRow(const orv::glue::EnumRow* declared) {
    row = declared;
    setSize(uint(declared->size));
}

// The table

EnumTable* ZEnumType::table() const {
    if (const ZEnumType* main = tableType(); main != this) return main->table();
    if (EnumTable* known = published.load(); ORV_LIKELY(known != nullptr)) return known;
    if (!own) return nullptr;
    ZScopedLock held(own->change);
    return buildTable();
}

/// Under the lock.
EnumTable* ZEnumType::buildTable() const {
    if (EnumTable* known = published.load()) return known;
    auto made = zmake<EnumTable>(ZEnum(own->name, row ? uint(row->count) : 0));
    if (!made) return nullptr;
    made->data.type = const_cast<ZEnumType*>(this);
    made->data.setExclusive(row && row->exclusive);
    for (int i = 0; row && i < row->count; ++i) {
        if (made->data.add(ZSelector(row->items[i].name), row->items[i].value)) continue;
        zrelease(made);
        return nullptr;
    }
    (void)published.publish(made);
    return made;
}

/// Publishes an edited copy of the table.
template <class F> bool ZEnumType::change(F&& edit) {
    if (!own) return false;
    if (const ZEnumType* main = tableType(); main != this) return const_cast<ZEnumType*>(main)->change(edit);
    EnumTable* old;
    {
        ZScopedLock held(own->change);
        const EnumTable* known = buildTable();
        EnumTable* made = known ? zmake<EnumTable>(known->data) : nullptr;
        if (!made) return false;
        if (!edit(made->data)) {
            zrelease(made);
            return false;
        }
        made->data.type = this;
        old = published.publish(made);
    }
    toolkit::epochRetire(old, freeTable);
    return true;
}

const ZEnum& ZEnumType::data() const {
    const EnumTable* known = table();
    return known ? known->data : spare;
}
ZEnum& ZEnumType::data() {
    EnumTable* known = table();
    return known ? known->data : spare;
}
bool ZEnumType::setData(const ZEnum& data) {
    return change([&](ZEnum& table) {
        table = data;
        if (table.getSelector().isEmpty()) table.setSelector(own->name);
        return true;
    });
}

bool ZEnumType::add(const ZArrayT<ZEnumItem>& items) {
    return change([&](ZEnum& table) { return table.add(items); });
}
bool ZEnumType::add(const ZSelector& name, int value) {
    return change([&](ZEnum& table) { return table.add(name, value); });
}
bool ZEnumType::remove(const ZSelector& name) {
    return change([&](ZEnum& table) { return table.remove(name); });
}
bool ZEnumType::remove(int value) {
    return change([&](ZEnum& table) { return table.remove(value); });
}
bool ZEnumType::remove(const ZArrayT<ZSelector>& names) {
    return change([&](ZEnum& table) {
        bool any = false;
        for (const ZSelector& name : names) {
            if (!table.value(name, nullptr)) continue;
            if (!table.remove(name)) return false;
            any = true;
        }
        return any;
    });
}
bool ZEnumType::remove(const ZEnum& other) {
    ZArrayT<ZSelector> names;
    for (const auto& entry : other.byName)
        if (!names.append(entry.key())) return false;
    return remove(names);
}

bool ZEnumType::detach() {
    return ZMetaType::detach() && change([](ZEnum& table) { return table.detach(); });
}

int ZEnumType::compare(const ZType* other) const {
    if (int order = ZMetaType::compare(other)) return order;
    auto object = other->isObject() ? static_cast<const ZObject*>(other) : nullptr;
    const ZEnumType* items =
        object && object->isMetaType() ? static_cast<const ZMetaType*>(object)->enumType() : nullptr;
    toolkit::EpochGuard guard;
    return items ? data().compare(items->data()) : 0;
}

// Asked of the table

ZSelector ZEnumType::name(int value) const {
    toolkit::EpochGuard guard;
    return data().name(value);
}
bool ZEnumType::names(ZArrayT<ZSelector>& names) const {
    toolkit::EpochGuard guard;
    return data().enumNames(names);
}
int ZEnumType::value(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    return data().value(name);
}
bool ZEnumType::value(const ZSelector& name, int* value) const {
    toolkit::EpochGuard guard;
    return data().value(name, value);
}
bool ZEnumType::values(ZArrayT<int>& values) const {
    toolkit::EpochGuard guard;
    return data().enumValues(values);
}
int ZEnumType::resolve(const ZString& expression) const {
    toolkit::EpochGuard guard;
    return data().resolve(expression);
}
bool ZEnumType::isBitFlags() const {
    toolkit::EpochGuard guard;
    return data().isBitFlags();
}

bool ZEnumType::holds(large value) const {
    toolkit::EpochGuard guard;
    const ZEnum& items = data();
    return items.count() == 0 || (value == int(value) && items.holds(int(value)));
}

// Values

bool ZEnumType::isHeld(const void* instance) const {
    large number = 0;
    if (getSize() < sizeof number) return holds(valueOf(instance));
    std::memcpy(&number, instance, sizeof number);
    return holds(number);
}
int ZEnumType::valueOf(const void* instance) const {
    const uint size = getSize();
    byte bytes[4] = {};
    std::memcpy(bytes, instance, size < 4 ? size : 4);
    const int value = int(uint(bytes[0]) | uint(bytes[1]) << 8 | uint(bytes[2]) << 16 | uint(bytes[3]) << 24);
    const int negative = signExtended(value, size);
    if (negative == value) return value;
    toolkit::EpochGuard guard;
    const ZEnum& items = data();
    return items.valueIndex(value) < 0 && items.valueIndex(negative) >= 0 ? negative : value;
}
void ZEnumType::setValueOf(void* instance, int value) const {
    const large wide = value;
    const uint size = getSize();
    std::memcpy(instance, &wide, size < 8 ? size : 8);
}

bool ZEnumType::constructInstance(void* instance) {
    std::memset(instance, 0, getSize());
    return true;
}
bool ZEnumType::destructInstance(void* instance) const { return instance != nullptr; }
bool ZEnumType::copyInstance(void* target, const void* source) const {
    if (!target || !source) return false;
    std::memmove(target, source, getSize());
    return true;
}
int ZEnumType::compareInstance(const void* a, const void* b) const {
    if (a == b || !a || !b) return a == b ? 0 : a ? -1 : 1;
    ularge first = 0, second = 0;
    const uint size = getSize() < 8 ? getSize() : 8;
    std::memcpy(&first, a, size);
    std::memcpy(&second, b, size);
    return zcompare(first, second);
}
bool ZEnumType::isNullData(const void* instance) const {
    if (instance)
        for (uint i = 0; i < getSize(); ++i)
            if (static_cast<const byte*>(instance)[i]) return false;
    return true;
}

/// Reads one name, looked up and not made, or one number.
bool ZEnumType::readWord(const char* text, int length, int& value) const {
    const ZSelector name = ZSelector::find(text, length);
    return data().value(name, &value) || ZEnum::readNumber(text, length, value);
}

bool ZEnumType::fromString(void* instance, const ZString& text) const {
    if (!instance) return false;
    const orv::detail::TextIn<char> in(text.view());
    int value = 0;
    toolkit::EpochGuard guard;
    if (!readWord(in.text, in.length, value)) {
        if (!data().isBitFlags()) return false;
        // Words: all of them have to be known.
        uint flags = 0;
        bool any = false;
        const char *at = in.text, *const end = at + in.length;
        for (;;) {
            while (at < end && byte(*at) <= ' ') ++at;
            if (at == end) break;
            const char* start = at;
            while (at < end && byte(*at) > ' ') ++at;
            if (!readWord(start, int(at - start), value)) return false;
            flags |= uint(value);
            any = true;
        }
        if (!any) return false;
        value = int(flags);
    }
    setValueOf(instance, value);
    return true;
}

bool ZEnumType::toString(const void* instance, ZString& text) const {
    return instance && text.setInt(valueOf(instance));
}

// Names as properties of a value

bool ZEnumType::known(const ZSelector& name, int& value) const {
    toolkit::EpochGuard guard;
    const ZEnum& items = data();
    return items.value(name, &value) || items.valueLC(name, &value);
}

bool ZEnumType::isSet(const void* instance, int item) const {
    const int value = valueOf(instance);
    return isBitFlags() ? (value & item) == item : value == item;
}

uint ZEnumType::fieldCount(const void*) const {
    toolkit::EpochGuard guard;
    return data().count();
}
ZMetaType* ZEnumType::fieldType(const void*, const ZSelector& name) const {
    int item;
    return known(name, item) ? ztype<bool>() : nullptr;
}
ZVariant ZEnumType::readField(const void* instance, const ZSelector& name) const {
    int item;
    return known(name, item) ? ZVariant(isSet(instance, item)) : ZVariant();
}
bool ZEnumType::writeField(void* instance, const ZSelector& name, const ZVariant& value) const {
    bool on;
    int item;
    if (!known(name, item) || !value.toBool(&on)) return false;
    const int old = valueOf(instance);
    if (isBitFlags())
        setValueOf(instance, on ? old | item : old & ~item);
    else if (on || old == item)
        setValueOf(instance, on ? item : 0);
    return true;
}
bool ZEnumType::clearField(void* instance, const ZSelector& name) const {
    return writeField(instance, name, ZVariant(false));
}
