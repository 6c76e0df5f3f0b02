#include "core/ZArrayT.h"
#include "core/ZSelectorSpace.h"
#include "core/selectorBuild.h"

#include <algorithm>

using orv::detail::resolved;
using orv::detail::SelectorBuilder;
using orv::detail::SelectorList;
using orv::detail::SelectorPart;
using orv::detail::textOf;

namespace orv::detail {

ZSelectorData* resolved(const ZSelector& sel) { return orv::detail::selectorSpace.resolve(sel.key()); }

bool SelectorBuilder::grow(size_t bytes) {
    if (failed) return false;
    size_t needed = length + bytes, wanted = needed > 2 * room ? needed : 2 * room;
    char* larger = needed <= size_t(ZSelector::longestText) ? static_cast<char*>(__zalloc(wanted)) : nullptr;
    if (!larger) {
        failed = true;
        return false;
    }
    std::memcpy(larger, out, length);
    if (out != small) zfree(out);
    out = larger;
    room = wanted;
    return true;
}

SelectorList::SelectorList(const ZSelector& sel, bool words) {
    if (sel.isEmpty()) return;
    if (words && sel.type() != ZSelector::Names) {
        items = &sel;
        count = 1;
        return;
    }
    ZSelectorData* entry = resolved(sel);
    failed = !entry;
    if (failed) return;
    items = entry->params;
    count = entry->paramCount;
}

SelectorList::SelectorList(const ZSelector& sel, ZSelector::Type type) {
    if (type == ZSelector::Detect || type == sel.type()) {
        if (ZSelectorData* entry = resolved(sel)) {
            items = entry->params;
            count = entry->paramCount;
        } else
            failed = !sel.isEmpty();
    } else
        parse(sel, type);
}

void SelectorList::parse(const ZSelector& sel, ZSelector::Type type) {
    SelectorPart text = textOf(sel);
    ZSelector result, name;
    int parsed = ZSelectorData::extractParams(text.text, text.length, type, result, name, own);
    failed = parsed < 0;
    if (failed) return;
    items = own;
    count = uint(parsed);
}

SelectorList::~SelectorList() { zreleasearray(own); }

} // namespace orv::detail

// Making from parts

ZSelector::ZSelector(const ZSelector& name, const ZSelector& result, const ZSelector* params, int count, Type type)
    : id(orv::detail::selectorSpace.create(name, result, params, count, type, true)) {}
ZSelector::ZSelector(const ZSelector& name, const ZSelector& result, Type type)
    : ZSelector(name, result, nullptr, 0, type) {}
ZSelector::ZSelector(const ZSelector* items, int count, Type type)
    : ZSelector(ZSelector(), ZSelector(), items, count, type) {}
ZSelector::ZSelector(const ZArrayT<ZSelector>& items, Type type) : ZSelector(items.data(), int(items.count()), type) {}

bool ZSelector::set(const ZSelector& name, const ZSelector& result, const ZSelector* params, int count, Type type) {
    return take(orv::detail::selectorSpace.create(name, result, params, count, type, true));
}
bool ZSelector::set(const ZSelector& name, const ZSelector& result, Type type) {
    return set(name, result, nullptr, 0, type);
}
bool ZSelector::set(const ZSelector* items, int count, Type type) {
    return set(ZSelector(), ZSelector(), items, count, type);
}
bool ZSelector::set(const ZArrayT<ZSelector>& items, Type type) { return set(items.data(), int(items.count()), type); }

// Parts

int ZSelector::parcount() const {
    ZSelectorData* entry = resolved(*this);
    return entry ? int(entry->paramCount) : 0;
}
const ZSelector* ZSelector::params() const {
    ZSelectorData* entry = resolved(*this);
    return entry ? entry->params : nullptr;
}
ZSelector ZSelector::param(int index) const {
    ZSelectorData* entry = resolved(*this);
    return entry && index >= 0 && uint(index) < entry->paramCount ? entry->params[index] : ZSelector();
}

bool ZSelector::setParam(int index, const ZSelector& value) {
    ZSelectorData* entry = resolved(*this);
    if (!entry || index < 0 || uint(index) >= entry->paramCount) return false;
    ZSelector* items = zmakearray<ZSelector>(entry->paramCount);
    if (!items) return false;
    std::copy_n(entry->params, entry->paramCount, items);
    items[index] = value;
    ZSelector made(entry->nameSel, entry->resultSel, items, int(entry->paramCount), entry->type);
    zreleasearray(items);
    if (entry->type == Method && !made.isEmpty()) {
        ZSelector words = methodQualifier();
        if (!words.isEmpty()) made = SelectorBuilder().put(textOf(made)).put(' ').put(textOf(words)).make(Method);
    }
    if (made.isEmpty()) return false;
    *this = std::move(made);
    return true;
}

ZArrayT<ZSelector> ZSelector::extract(Type type) const {
    ZArrayT<ZSelector> items;
    SelectorList list(*this, type);
    items.append(list.items, list.count);
    return items;
}

ZSelector ZSelector::extract(int start, int end) const {
    ZSelectorData* entry = resolved(*this);
    if (!entry) return ZSelector();
    start = std::max(start, 0);
    end = std::min(end, int(entry->paramCount));
    if (start >= end) return ZSelector();
    return ZSelector(entry->nameSel, entry->resultSel, entry->params + start, end - start, entry->type);
}

bool ZSelector::separate(ZSelector& before, ZSelector& rest, int index) const {
    int count = parcount();
    if (index < 0 || index >= count) return false;
    ZSelector first = extract(0, index), second = extract(index, count);
    before = std::move(first);
    rest = std::move(second);
    return true;
}

int ZSelector::index(const ZSelector& sel) const {
    SelectorList list(*this, Detect);
    auto hit = std::find(list.begin(), list.end(), sel);
    return hit == list.end() ? -1 : int(hit - list.begin());
}

int ZSelector::countItems(const ZArrayT<ZSelector>& items) const {
    return int(std::count_if(items.begin(), items.end(), [&](const ZSelector& item) { return contains(item); }));
}

ZSelector ZSelector::sorted(Type type) const {
    if (type == Detect) type = this->type();
    SelectorList list(*this, type);
    if (!list.count) return ZSelector();
    ZSelector* items = zmakearray<ZSelector>(list.count);
    if (!items) return ZSelector();
    std::copy(list.begin(), list.end(), items);
    std::sort(items, items + list.count, [](const ZSelector& a, const ZSelector& b) {
        int order = a.compareStr(b);
        return order < 0 || (order == 0 && a.type() < b.type());
    });
    ZSelectorData* entry = resolved(*this);
    ZSelector made;
    if (entry) made.set(entry->nameSel, entry->resultSel, items, int(list.count), type);
    zreleasearray(items);
    return made;
}
