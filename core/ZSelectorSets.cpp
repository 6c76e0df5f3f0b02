#include "core/ZSelectorSpace.h"
#include "core/selectorBuild.h"

#include <algorithm>

using orv::detail::isList;
using orv::detail::SelectorBuilder;
using orv::detail::SelectorList;

namespace {

/// The words of two lists with the order of their first appearance, sorted so that equal ones meet.
class WordTable {
public:
    WordTable(const SelectorList& first, const SelectorList& second)
        : first(first), second(second), count(size_t(first.count) + second.count) {
        if (!count || first.failed || second.failed) return;
        rows = static_cast<Row*>(__zalloc(count * sizeof(Row)));
        if (!rows) return;
        size_t at = 0;
        for (auto& word : first) rows[at] = {word.key(), at}, ++at;
        for (auto& word : second) rows[at] = {word.key(), at}, ++at;
        std::sort(rows, rows + count, [](Row a, Row b) { return a.id != b.id ? a.id < b.id : a.at < b.at; });
    }
    ~WordTable() { zfree(rows); }
    WordTable(const WordTable&) = delete;

    /// Makes a list of the words for which `keep(in the first, in the second)` is true.
    template <class F> ZSelector select(ZSelector::Type type, F keep) {
        if (!rows) return ZSelector();
        size_t kept = 0;
        for (size_t i = 0; i < count;) {
            size_t next = i;
            bool inFirst = rows[i].at < first.count, inSecond = false;
            for (; next < count && rows[next].id == rows[i].id; ++next) inSecond |= rows[next].at >= first.count;
            if (keep(inFirst, inSecond)) rows[kept++] = rows[i];
            i = next;
        }
        std::sort(rows, rows + kept, [](Row a, Row b) { return a.at < b.at; });
        if (kept == 1 && type <= ZSelector::Colon) return at(rows[0]);
        SelectorBuilder text;
        const char* separator = type == ZSelector::UID     ? "."
                                : type == ZSelector::Colon ? ":"
                                : type == ZSelector::Types ? "::"
                                                           : " ";
        for (size_t i = 0; i < kept; ++i) {
            if (i) text.put(separator);
            text.put(orv::detail::textOf(at(rows[i])));
        }
        return text.make(type);
    }
    /// Whether all words of the second list are in the first.
    bool covers() const {
        if (!rows) return !count;
        for (size_t i = 0; i < count; ++i) {
            bool starts = i == 0 || rows[i].id != rows[i - 1].id;
            if (starts && rows[i].at >= first.count) return false;
        }
        return true;
    }
    bool common() const {
        for (size_t i = 1; rows && i < count; ++i)
            if (rows[i].id == rows[i - 1].id && rows[i - 1].at < first.count && rows[i].at >= first.count) return true;
        return false;
    }

private:
    struct Row {
        uint id;
        size_t at;
    };
    const ZSelector& at(Row row) const {
        return row.at < first.count ? first.items[row.at] : second.items[row.at - first.count];
    }

    const SelectorList &first, &second;
    size_t count;
    Row* rows = nullptr;
};

bool both(bool inFirst, bool inSecond) { return inFirst && inSecond; }
bool either(bool, bool) { return true; }
bool firstOnly(bool inFirst, bool inSecond) { return inFirst && !inSecond; }
bool oneOnly(bool inFirst, bool inSecond) { return inFirst != inSecond; }

template <class F> ZSelector ofWords(const ZSelector& a, const ZSelector& b, F keep) {
    SelectorList first(a, true), second(b, true);
    return WordTable(first, second).select(ZSelector::Names, keep);
}
template <class F> ZSelector ofType(const ZSelector& a, const ZSelector& b, ZSelector::Type type, F keep) {
    if (type == ZSelector::Detect) type = a.type();
    if (!isList(type)) return ofWords(a, b, keep);
    SelectorList first(a, type), second(b, type);
    return WordTable(first, second).select(type, keep);
}

} // namespace

ZSelector ZSelector::add(const ZSelector& sel) const { return ofWords(*this, sel, either); }
ZSelector ZSelector::add(const ZSelector& sel, Type type) const { return ofType(*this, sel, type, either); }
ZSelector ZSelector::remove(const ZSelector& sel) const { return ofWords(*this, sel, firstOnly); }
ZSelector ZSelector::remove(const ZSelector& sel, Type type) const { return ofType(*this, sel, type, firstOnly); }
ZSelector ZSelector::intersect(const ZSelector& sel) const { return ofWords(*this, sel, both); }
ZSelector ZSelector::intersect(const ZSelector& sel, Type type) const { return ofType(*this, sel, type, both); }
ZSelector ZSelector::swap(const ZSelector& sel) const { return ofWords(*this, sel, oneOnly); }
ZSelector ZSelector::swap(const ZSelector& sel, Type type) const { return ofType(*this, sel, type, oneOnly); }

bool ZSelector::intersects(const ZSelector& sel) const {
    SelectorList first(*this, true), second(sel, true);
    return WordTable(first, second).common();
}
bool ZSelector::intersects(const ZSelector& sel, Type type) const {
    if (type == Detect) type = this->type();
    if (!isList(type)) return intersects(sel);
    SelectorList first(*this, type), second(sel, type);
    return WordTable(first, second).common();
}

namespace {
/// Whether a value is among some, of which four are compared at a time.
inline bool amongFew(const ZSelector* items, uint count, uint key) {
    using Four = uint __attribute__((vector_size(16)));
    using Two = ularge __attribute__((vector_size(16)));
    if (ORV_UNLIKELY(count < 4)) {
        bool found = false;
        for (uint at = 0; at < count; ++at) found |= items[at].key() == key;
        return found;
    }
    auto hitsAt = [wanted = Four{key, key, key, key}](const ZSelector* at) {
        Four four;
        __builtin_memcpy(&four, at, sizeof four);
        return Four(four == wanted);
    };
    const ZSelector* last = items + count - 4; // overlaps the others where four don't go into the count
    Four hits = hitsAt(last);
    for (; items < last; items += 4) hits |= hitsAt(items);
    Two halves = Two(hits);
    return (halves[0] | halves[1]) != 0;
}

/// All but the question for one word in a short list, which is asked most and stays short.
[[gnu::noinline]] bool hasWords(ZSelectorData& entry, const ZSelector& sel) {
    if (!isList(entry.type) || !orv::detail::selectorSpace.resolve(entry.self)) return false;
    if (sel.isEmpty()) return entry.type == ZSelector::Names;
    auto has = [&entry](const ZSelector& word) {
        return entry.wordMask ? amongFew(entry.params, entry.paramCount, word.key()) : entry.containsSorted(word);
    };
    if (has(sel)) return true;
    if (sel.type() != entry.type) return false;
    SelectorList words(sel, ZSelector::Detect);
    return !words.failed && std::all_of(words.begin(), words.end(), has);
}
} // namespace

bool ZSelector::contains(const ZSelector& sel) const {
    uint wanted = sel.id;
    if (id == wanted) return true;
    ZSelectorSpace& space = orv::detail::selectorSpace;
    ZSelectorData* entry = space.get(id);
    if (!entry) return false;
    ularge mask = toolkit::loadAcquire(entry->wordMask);
    if (ORV_UNLIKELY(!mask)) return hasWords(*entry, sel);
    if (mask & ZSelectorData::wordBit(wanted) && amongFew(entry->params, entry->paramCount, wanted)) return true;
    const ZSelectorData* other = space.get(wanted);
    if (ORV_LIKELY(other && other->type != entry->type)) return false;
    return hasWords(*entry, sel);
}

bool ZSelector::contains(const ZSelector& sel, Type type) const {
    if (type == Detect) type = this->type();
    if (id == sel.id || !isList(type)) return contains(sel);
    SelectorList first(*this, type), second(sel, type);
    return WordTable(first, second).covers();
}

bool ZSelector::matches(const ZSelector& sel) const {
    if (id == sel.id) return true;
    if (!isList(type()) || type() != sel.type() || parcount() != sel.parcount()) return false;
    return contains(sel);
}

bool ZSelector::matchId(const ZSelector& sel) const {
    SelectorList own(*this, Detect), other(sel, Detect);
    if (own.count && own.count <= other.count) return std::equal(own.begin(), own.end(), other.begin());
    return !isEmpty() && *this == (other.count ? other.items[0] : sel);
}
