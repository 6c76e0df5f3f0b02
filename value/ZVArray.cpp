#include "value/ZVArray.h"

#include "core/arrayMoves.h"
#include "object/names.h"
#include "object/ztype.h"
#include "value/ZNamedTypeArray.h"
#include "value/ZTypeArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/itemType.h"

#include <algorithm>

using namespace orv;

namespace {

constexpr uint headSize = 24;

/// Where the items begin: behind the head of the block, aligned for their type.
uint itemsOffset(const ZMetaType* type) {
    return !item::plain(type) && item::alignmentOf(type) > 8 ? (headSize + 15) & ~15u : headSize;
}

} // namespace

// Blocks

/// An empty block; null without memory or for a type that can't be held.
ZVArray::Block* ZVArray::makeBlock(ularge capacity) const {
    const uint size = data ? data->itemSize : item::sizeOf(type, 0);
    if (!size || capacity > itemLimit || (type && !item::holdable(type))) return nullptr;
    const uint offset = itemsOffset(type);
    auto block = static_cast<Block*>(__zalloc(offset + capacity * size));
    if (!block) return nullptr;
    *block = {0,
              uint(capacity),
              size,
              int16(data ? data->expand : 100),
              false,
              data && data->endian,
              reinterpret_cast<byte*>(block) + offset};
    return block;
}

/// Gives up a reference; the last one ends the items, last to first.
void ZVArray::freeBlock(ZMetaType* type, Block* block) {
    if (!block || decmemref(block) > 0) return;
    if (!item::plain(type))
        while (block->count > 0) item::end(type, block->items + size_t(--block->count) * block->itemSize);
    toolkit::freeBlock(block);
}

/// Gives the array a block of its own with this capacity.
bool ZVArray::changeBlock(ularge capacity) {
    if (!data) return (data = makeBlock(capacity)) != nullptr;
    capacity = std::max<ularge>(capacity, data->count);
    if (isDetached()) {
        if (capacity > itemLimit) return false;
        const ularge offset = ularge(data->items - reinterpret_cast<byte*>(data));
        auto moved = static_cast<Block*>(__zrealloc(data, offset + capacity * data->itemSize));
        if (!moved) return false;
        moved->items = reinterpret_cast<byte*>(moved) + offset;
        moved->capacity = uint(capacity);
        data = moved;
        return true;
    }
    Block* own = makeBlock(capacity);
    if (!own) return false;
    const uint count = data->count, size = data->itemSize;
    if (item::plain(type)) {
        std::memcpy(own->items, data->items, size_t(count) * size);
        own->count = count;
    } else
        for (; own->count < count; ++own->count)
            if (!item::copy(type, own->items + size_t(own->count) * size, at(own->count), size)) {
                freeBlock(type, own);
                return false;
            }
    own->sorted = data->sorted;
    freeBlock(type, std::exchange(data, own));
    return true;
}

bool ZVArray::detach(bool grow) { return isDetached() || changeBlock(grow ? data->capacity : data->count); }

bool ZVArray::expand(uint more) {
    if (more > itemLimit) return false;
    if (!data) return more == 0 || changeBlock(more);
    const ularge least = ularge(data->count) + more;
    if (least <= data->capacity) return isDetached() || changeBlock(data->capacity);
    const ularge capacity = detail::grownCapacity(data->count, data->capacity, data->expand, more);
    return changeBlock(capacity);
}

bool ZVArray::setSpace(int count) {
    if (count < 0) return false;
    if (count == 0 && !data) return true;
    const int all = int(this->count());
    // The room first: an array that can't have it keeps its items.
    if ((uint(count) > maxcount() || !isDetached()) && !changeBlock(uint(std::max(count, all)))) return false;
    if (!remove(count, all - count)) return false;
    // What can't be given back stays, beyond what was asked for.
    if (maxcount() > uint(count)) changeBlock(uint(count));
    return true;
}
bool ZVArray::setExpand(int16 expand) {
    if (data ? !detach(true) : !changeBlock(0)) return false;
    data->expand = expand;
    return true;
}
bool ZVArray::setEndian(bool endian) {
    if (data ? !detach(true) : !changeBlock(0)) return false;
    data->endian = endian;
    return true;
}
bool ZVArray::trim() { return !data || data->capacity == data->count || changeBlock(data->count); }

// Lifetime

ZVArray::ZVArray(ZMetaType* given) {
    if (!takeType(given)) ZError::fail();
}
ZVArray::ZVArray(ZMetaType* given, uint capacity, int16 expand) : ZVArray(given) {
    if (!type) return;
    if (changeBlock(capacity))
        data->expand = expand;
    else
        ZError::fail();
}
ZVArray::ZVArray(ZMetaType* given, const void* items, int count) : ZVArray(given) {
    if (count > 0 && !appendItems(items, uint(count))) ZError::fail();
}
ZVArray::ZVArray(const char* text) : ZVArray(ZString(text)) {}
ZVArray::ZVArray(const ZString& text) : ZVArray(ztype<ZSelector>()) {
    const ZSelector name(text);
    if (name.isEmpty()) {
        if (!text.isEmpty()) ZError::fail();
        return;
    }
    const bool done = name.type() == ZSelector::Name ? appendItem(&name) : append(name.extract());
    if (!done) ZError::fail();
}
ZVArray::ZVArray(const ZVariant& value) {
    const void* held = value.getPtr();
    if (!held) return;
    ZFailGuard guard;
    switch (value.typeIndexLabel()) {
    case ZMetaType::Array:
        assign(*static_cast<const ZVArray*>(held));
        return;
    case ZMetaType::HashSet:
        *this = static_cast<const ZVHashSet*>(held)->array();
        return;
    case ZMetaType::SelectMap:
        *this = static_cast<const ZVSelectMap*>(held)->values();
        return;
    case ZMetaType::KeyMap:
        *this = static_cast<const ZVKeyMap*>(held)->values();
        return;
    default:
        break;
    }
    const ZSelector name = value.typeName();
    if (name == zsel<"ZTypeArray">()) {
        *this = static_cast<const ZTypeArray*>(held)->array();
        return;
    }
    if (name == zsel<"ZNamedTypeArray">() || name == zsel<"ZContentMap">()) {
        *this = static_cast<const ZNamedTypeArray*>(held)->array();
        return;
    }
    const int kind = value.typeType();
    if (kind == ZMetaType::Selector || kind == ZMetaType::String)
        *this = ZVArray(value.toString());
    else if (!append(value))
        ZError::fail();
}
ZVArray::ZVArray(const ZVHashSet& values) : ZVArray(values.array()) {}
ZVArray::ZVArray(const ZVArray* a, const ZVArray* b, const ZBlendPos& pos) {
    if (!blendFrom(a, b, pos)) ZError::fail();
}
ZVArray::ZVArray(const ZVArray& other)
    : type(other.type), data(retain(other.data)), typeName(other.typeName), kind(other.kind) {
    item::retainType(type);
}
ZVArray& ZVArray::operator=(const ZVArray& other) {
    ZVArray made(other);
    swap(made);
    return *this;
}
ZVArray& ZVArray::operator=(ZVArray&& other) noexcept {
    ZVArray made(std::move(other));
    swap(made);
    return *this;
}
void ZVArray::swap(ZVArray& other) noexcept {
    std::swap(type, other.type);
    std::swap(data, other.data);
    std::swap(typeName, other.typeName);
    std::swap(kind, other.kind);
}
void ZVArray::clear() { freeBlock(type, std::exchange(data, nullptr)); }
void ZVArray::clearAll() {
    ZMetaType* old = std::exchange(type, nullptr);
    kind = 0;
    freeBlock(old, std::exchange(data, nullptr));
    item::releaseType(old);
    typeName.clear();
}

// Type

/// The type for an array that has none; null is fine.
bool ZVArray::takeType(ZMetaType* wanted) {
    ZMetaType* normal = item::normalType(wanted);
    if (wanted && (!normal || !item::holdable(normal))) return false;
    item::retainType(normal);
    type = normal;
    kind = normal ? byte(normal->kind()) : 0;
    return true;
}
bool ZVArray::setType(ZMetaType* wanted) {
    if (count()) return false;
    ZVArray made;
    if (!made.takeType(wanted)) return false;
    if (!made.type) made.typeName = typeName;
    swap(made);
    return true;
}
/// An array without items that says the same of them.
ZVArray ZVArray::likeThis() const {
    ZVArray made(type);
    made.typeName = typeName;
    if (type || !data) return made;
    if (made.setItemSize(data->itemSize))
        made.data->endian = data->endian;
    else
        ZError::fail();
    return made;
}
bool ZVArray::setItemSize(uint bytes) {
    if (type || count() || !bytes || bytes > 0x7FFFFFFF) return false;
    const uint size = item::spacing(bytes);
    if (data && data->itemSize == size) return true;
    auto block = static_cast<Block*>(__zalloc(headSize));
    if (!block) return false;
    *block = {0, 0, size, expand(), false, endian(), reinterpret_cast<byte*>(block) + headSize};
    freeBlock(nullptr, std::exchange(data, block));
    return true;
}
ZSelector ZVArray::getTypeName() const { return type ? type->getName() : typeName; }
void ZVArray::setTypeName(const ZSelector& name) {
    if (!type) typeName = name;
}
bool ZVArray::isType(const ZMetaType* wanted) const { return item::isOf(type, wanted); }
bool ZVArray::isType(const ZSelector& name) const { return item::isOf(type, name); }
bool ZVArray::isSelectorType() const { return type && type->kind() == ZMetaType::Selector; }
bool ZVArray::isZType() const { return item::instances(type); }
ZMetaType* ZVArray::typeByIndex(int index) const { return row().typeAt(index); }

// Reading

void* ZVArray::get(int index) {
    if (!inRange(index) || !detach()) return nullptr;
    data->sorted = false;
    return at(uint(index));
}
const void* ZVArray::valuePtr(int index) const { return row().target(index); }
ZVariant ZVArray::variant(int index) const { return row().variant(index); }

// Writing

/// Builds `count` items behind the last one, by `build`, then brings them to their place. They count only when all are
/// there.
template <class F> static bool buildItems(ZMetaType* type, byte* place, uint size, uint count, F&& build) {
    for (uint i = 0; i < count; ++i)
        if (!build(place + size_t(i) * size, i)) {
            while (i > 0) item::end(type, place + size_t(--i) * size);
            return false;
        }
    return true;
}

/// Counts what was built behind the last item, and brings it to its place.
bool ZVArray::placeItems(uint index, uint count) {
    data->count += count;
    data->sorted = false;
    if (index + count < data->count)
        detail::rotateBytes(data->items, data->itemSize, index, data->count - count, data->count);
    return true;
}

static uint clamped(int index, uint count) { return index < 0 ? 0 : std::min(uint(index), count); }

bool ZVArray::insertItems(int index, const void* items, uint count) {
    if (!count) return true;
    if (!items) return false;
    const uint where = clamped(index, this->count());
    auto from = static_cast<const byte*>(items);
    const bool inside = data && from >= data->items && from < at(data->count);
    const ZVArray kept = inside ? *this : ZVArray();
    if (!expand(count)) return false;
    const uint size = data->itemSize;
    byte* place = at(data->count);
    if (item::plain(type))
        std::memcpy(place, from, size_t(count) * size);
    else if (!buildItems(type, place, size, count,
                         [&](byte* to, uint i) { return item::copy(type, to, from + size_t(i) * size, size); }))
        return false;
    return placeItems(where, count);
}

bool ZVArray::insertNew(int index, uint count) {
    if (!count) return true;
    const uint where = clamped(index, this->count());
    if (!expand(count)) return false;
    const uint size = data->itemSize;
    byte* place = at(data->count);
    if (item::plain(type))
        std::memset(place, 0, size_t(count) * size);
    else if (!buildItems(type, place, size, count, [&](byte* to, uint) { return item::make(type, to, size); }))
        return false;
    return placeItems(where, count);
}

bool ZVArray::insert(int index, const ZVariant& value) {
    if (!type && !data) {
        ZVArray made(value.type());
        if (!made.type || !made.insert(0, value)) return false;
        swap(made);
        return true;
    }
    item::Given given(type, value);
    return given.address() && insertItems(index, given.address(), 1);
}

bool ZVArray::insertArray(int index, const ZVArray& other) {
    if (other.isEmpty()) return true;
    if (!type && !data) {
        assign(other);
        return true;
    }
    const ZVArray kept(other);
    if (type == kept.type && (type || data->itemSize == kept.data->itemSize))
        return insertItems(index, kept.values(), kept.count());
    if (!type || !kept.type) return false;
    ZVArray made(type);
    if (!made.expand(kept.count())) return false;
    for (uint i = 0; i < kept.count(); ++i)
        if (!made.append(kept.variant(int(i)))) return false;
    return insertItems(index, made.values(), made.count());
}

bool ZVArray::insert(int index, const ZArrayT<ZVariant>& values) {
    ZVArray made;
    if (!made.takeType(type)) return false;
    if (!type && data) return values.isEmpty();
    for (const ZVariant& value : values)
        if (!made.append(value)) return false;
    return insertArray(index, made);
}
bool ZVArray::append(const ZVHashSet& values) {
    ZFailGuard guard;
    const ZVArray made(values);
    if (!guard.rose()) return append(made);
    guard.forget();
    return false;
}
bool ZVArray::append(const ZArrayT<ZSelector>& names) {
    if (names.isEmpty()) return true;
    ZVArray made(ztype<ZSelector>());
    return made.type && made.appendItems(names.data(), names.count()) && append(made);
}

bool ZVArray::storeItem(int index, const void* item) {
    if (!inRange(index) || !item) return false;
    const uint size = data->itemSize;
    if (item::plain(type)) {
        const ZVArray kept = isDetached() ? ZVArray() : *this;
        if (!detach()) return false;
        std::memmove(at(uint(index)), item, size);
        data->sorted = false;
        return true;
    }
    item::Scratch made(size);
    if (!made.memory() || !item::copy(type, made.memory(), item, size)) return false;
    if (!inRange(index) || !detach()) {
        item::end(type, made.memory());
        return false;
    }
    std::swap_ranges(made.memory(), made.memory() + size, at(uint(index)));
    data->sorted = false;
    item::end(type, made.memory());
    return true;
}
bool ZVArray::store(int index, const ZVariant& value) {
    if (!inRange(index)) return false;
    item::Given given(type, value);
    return given.address() && storeItem(index, given.address());
}
bool ZVArray::set(int index, const ZVariant& value) {
    return index >= 0 && uint(index) == count() ? append(value) : store(index, value);
}

bool ZVArray::remove(int index, int count) {
    large first = std::max(index, 0), last = std::min(large(index) + count, large(this->count()));
    if (count <= 0 || first >= last) return true;
    if (!detach()) return false;
    const size_t size = data->itemSize;
    byte* start = data->items;
    const uint all = data->count, left = all - uint(last - first);
    if (item::plain(type)) {
        std::memmove(start + size_t(first) * size, start + size_t(last) * size, size_t(all - uint(last)) * size);
        data->count = left;
        return true;
    }
    detail::rotateBytes(start, size, size_t(first), size_t(last), all);
    data->count = left;
    // What ends may come back to this array: while the block is held, a write there makes another one.
    Block* held = retain(data);
    for (uint i = all; i > left; --i) item::end(type, start + size_t(i - 1) * size);
    freeBlock(type, held);
    return true;
}
bool ZVArray::removeValue(const ZVariant& value) { return removeIndex(findValue(value)); }
ZVariant ZVArray::pop() {
    const int last = int(count()) - 1;
    ZVariant value = variant(last);
    return removeIndex(last) ? value : ZVariant();
}
bool ZVArray::setCount(int wanted) {
    if (wanted < 0) return false;
    const int all = int(count());
    return wanted < all ? remove(wanted, all - wanted) : appendNew(uint(wanted - all));
}
bool ZVArray::removeItems(const ZArrayT<int>& indexes) {
    ZArrayT<int> rest(indexes), gone;
    if (isEmpty() || indexes.isEmpty()) return true;
    if (!invertIndex(rest) || rest.count() == count()) return rest.count() == count();
    const uint left = rest.count();
    gone = rest;
    // The rest in order, then what goes.
    if (!invertIndex(gone) || !rest.append(gone) || !detach() || !reorder(rest.data())) return false;
    return remove(int(left), int(gone.count()));
}
bool ZVArray::changePlace(int from, int count, int to) {
    const large all = this->count();
    if (from < 0 || to < 0 || count < 0 || large(from) + count > all || large(to) + count > all || !detach())
        return false;
    if (from == to || count == 0) return true;
    if (from < to)
        detail::rotateBytes(data->items, data->itemSize, uint(from), uint(from + count), uint(to + count));
    else
        detail::rotateBytes(data->items, data->itemSize, uint(to), uint(from), uint(from + count));
    data->sorted = false;
    return true;
}
bool ZVArray::changePlace(const ZArrayT<int>& from, int to) {
    ZArrayT<int> order(from);
    if (!invertIndex(order)) return false;
    // A position that isn't there, or is listed twice, leaves too few others.
    if (order.count() + from.count() != count() || to < 0 || uint(to) > order.count()) return false;
    return from.isEmpty() || (order.insert(uint(to), from.data(), from.count()) && detach() && reorder(order.data()));
}
