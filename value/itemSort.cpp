#include "core/memory.h"
#include "text/ZString.h"
#include "value/itemRow.h"
#include "value/itemType.h"
#include "value/numberKinds.h"

#include <cstring>

namespace orv {
namespace {

// Numbers are sorted by the bits of a key, eight at a time from the lowest on, which keeps equal ones in order.

template <size_t Bytes> struct BitsOf;
template <> struct BitsOf<1> { using Type = byte; };
template <> struct BitsOf<2> { using Type = word; };
template <> struct BitsOf<4> { using Type = uint; };
template <> struct BitsOf<8> { using Type = ularge; };

/// Bits whose unsigned order is the exact order of the numbers: 0 and -0 alike, not-a-number behind all.
template <class T> typename BitsOf<sizeof(T)>::Type sortKey(T value) {
    using Bits = typename BitsOf<sizeof(T)>::Type;
    constexpr Bits top = Bits(Bits(1) << (sizeof(T) * 8 - 1));
    Bits bits;
    std::memcpy(&bits, &value, sizeof bits);
    if constexpr (std::is_floating_point_v<T>) {
        if (value != value) return Bits(~Bits(0));
        if (value == 0) return top;
        return Bits(bits & top ? ~bits : bits ^ top);
    } else
        return std::is_signed_v<T> ? Bits(bits ^ top) : bits;
}

/// A record's key is the number itself, or stands in it beside the position.
template <class T> struct Direct {
    T value;
    auto key() const { return sortKey(value); }
};
template <class Bits> struct Placed {
    Bits bits;
    int index;
    Bits key() const { return bits; }
};

/// Stable; `scratch` has room for all. `behind(a, b)` says whether `a` has to stand behind `b`, which follows it.
template <class R, class F> void mergeRecords(R* items, size_t count, R* scratch, const F& behind) {
    constexpr size_t shortRun = 12;
    if (count <= shortRun) {
        for (size_t i = 1; i < count; ++i) {
            const R record = items[i];
            size_t to = i;
            for (; to > 0 && behind(items[to - 1], record); --to) items[to] = items[to - 1];
            items[to] = record;
        }
        return;
    }
    const size_t half = count / 2;
    mergeRecords(items, half, scratch, behind);
    mergeRecords(items + half, count - half, scratch, behind);
    if (!behind(items[half - 1], items[half])) return;
    std::memcpy(static_cast<void*>(scratch), items, half * sizeof(R));
    const R *left = scratch, *leftEnd = scratch + half, *right = items + half, *rightEnd = items + count;
    R* out = items;
    while (left < leftEnd && right < rightEnd) *out++ = behind(*left, *right) ? *right++ : *left++;
    std::memcpy(static_cast<void*>(out), left, size_t(leftEnd - left) * sizeof(R));
}

template <class R> void sortRecords(R* items, size_t count, R* scratch) {
    using Bits = decltype(items->key());
    constexpr size_t few = 128;
    bool ordered = true;
    for (size_t i = 1; ordered && i < count; ++i) ordered = !(items[i].key() < items[i - 1].key());
    if (ordered) return;
    if (count < few) return mergeRecords(items, count, scratch, [](R a, R b) { return b.key() < a.key(); });
    uint counts[sizeof(Bits)][256] = {};
    for (size_t i = 0; i < count; ++i) {
        const Bits key = items[i].key();
        for (size_t digit = 0; digit < sizeof(Bits); ++digit) ++counts[digit][byte(key >> digit * 8)];
    }
    R *from = items, *to = scratch;
    for (size_t digit = 0; digit < sizeof(Bits); ++digit) {
        uint* places = counts[digit];
        // All alike in this digit.
        if (places[byte(from->key() >> digit * 8)] == count) continue;
        uint place = 0;
        for (int i = 0; i < 256; ++i) place += std::exchange(places[i], place);
        for (size_t i = 0; i < count; ++i) to[places[byte(from[i].key() >> digit * 8)]++] = from[i];
        std::swap(from, to);
    }
    if (from != items) std::memcpy(static_cast<void*>(items), from, count * sizeof(R));
}

/// Room for two rows of records; null without memory.
template <class R> R* makeRecords(size_t count) { return static_cast<R*>(__zalloc(count * 2 * sizeof(R))); }

template <class R> bool takePositions(R* records, size_t count, int* positions) {
    for (size_t i = 0; i < count; ++i) positions[i] = records[i].index;
    zfree(records);
    return true;
}

template <class T> bool orderNumbers(const ItemRow& row, int* positions, bool ascending) {
    using R = Placed<typename BitsOf<sizeof(T)>::Type>;
    R* records = makeRecords<R>(row.count);
    if (!records) return false;
    for (uint i = 0; i < row.count; ++i) {
        T value;
        std::memcpy(&value, row.at(i), sizeof value);
        const auto key = sortKey(value);
        records[i] = {ascending ? key : decltype(key)(~key), int(i)};
    }
    sortRecords(records, row.count, records + row.count);
    return takePositions(records, row.count, positions);
}

// Texts are sorted by eight of their characters at a time, which their records carry, so that most are looked at once.

/// How many characters two texts share from `start` on, as far as these are ASCII and no more than `most`.
template <class C> uint sharedStart(const C* text, uint length, const char* other, uint start, uint most) {
    uint same = 0;
    while (same < most && start + same < length && text[start + same] == C(other[start + same])) ++same;
    return same;
}
/// Up to eight characters from `start` on, as a number in their order. Beyond ASCII only that it is so: two such texts
/// are equal by this.
template <class C> ularge charactersAt(const C* text, uint length, uint start) {
    ularge number = 0;
    for (uint i = 0; i < 8; ++i) {
        const ularge unit = start + i < length ? std::make_unsigned_t<C>(text[start + i]) : 0;
        if (unit >= 0x80) return (number << 8 | 0x80) << 8 * (7 - i);
        number = number << 8 | unit;
    }
    return number;
}
/// Whether the text goes on behind these.
bool eightASCII(ularge bits) {
    constexpr ularge ones = 0x0101010101010101, tops = ones * 0x80;
    return !(bits & tops) && !((bits - ones) & tops);
}

class TextSort {
public:
    using R = Placed<ularge>;

    TextSort(const ItemRow& row, bool ascending, R* scratch) : row(row), ascending(ascending), scratch(scratch) {}

    /// All of the records begin with the same `start` ASCII characters.
    void sort(R* records, uint count, uint start, int depth) {
        if (count < few || depth > deepest) return compareWhole(records, count);
        start += commonStart(records, count, start);
        for (uint i = 0; i < count; ++i) {
            const ularge bits = detail::withText(
                view(records[i]), [&](auto text, int length) { return charactersAt(text, uint(length), start); });
            records[i].bits = ascending ? bits : ~bits;
        }
        sortRecords(records, count, scratch);
        for (uint from = 0, to; from < count; from = to) {
            const ularge bits = records[from].bits;
            for (to = from + 1; to < count && records[to].bits == bits;) ++to;
            if (to - from == 1) continue;
            if (eightASCII(ascending ? bits : ~bits))
                sort(records + from, to - from, start + 8, depth + 1);
            else
                compareWhole(records + from, to - from);
        }
    }

private:
    static constexpr uint few = 4;
    static constexpr int deepest = 64;

    const ZString& text(const R& record) const { return *reinterpret_cast<const ZString*>(row.at(uint(record.index))); }
    detail::TextView view(const R& record) const { return text(record).view(); }

    uint commonStart(const R* records, uint count, uint start) const {
        const detail::TextView first = view(*records);
        if (first.width != detail::charText) return 0;
        const auto other = static_cast<const char*>(first.text);
        uint shared = 0;
        while (start + shared < uint(first.length) && byte(other[start + shared]) < 0x80) ++shared;
        for (uint i = 1; shared && i < count; ++i)
            shared = detail::withText(view(records[i]), [&](auto text, int length) {
                return sharedStart(text, uint(length), other, start, shared);
            });
        return shared;
    }
    void compareWhole(R* records, uint count) {
        mergeRecords(records, count, scratch, [&](const R& a, const R& b) {
            const int order = text(a).compare(text(b));
            return ascending ? order > 0 : order < 0;
        });
    }

    const ItemRow& row;
    bool ascending;
    R* scratch;
};

bool orderTexts(const ItemRow& row, int* positions, bool ascending) {
    using R = TextSort::R;
    R* records = makeRecords<R>(row.count);
    if (!records) return false;
    for (uint i = 0; i < row.count; ++i) records[i] = {0, int(i)};
    TextSort(row, ascending, records + row.count).sort(records, row.count, 0, 0);
    return takePositions(records, row.count, positions);
}

} // namespace

bool ItemRow::order(int* positions, bool ascending) const {
    for (uint i = 0; i < count; ++i) positions[i] = int(i);
    if (count < 2) return true;
    bool done = false;
    if (withNumber(type, [&]<class T>(NumberOf<T>) { done = orderNumbers<T>(*this, positions, ascending); }))
        return done;
    if (type && type->kind() == ZMetaType::String) return orderTexts(*this, positions, ascending);
    auto scratch = static_cast<int*>(__zalloc(count * sizeof(int)));
    if (!scratch) return false;
    mergeRecords(positions, count, scratch, [&](int a, int b) {
        const int order = item::order(type, at(uint(a)), at(uint(b)), size);
        return ascending ? order > 0 : order < 0;
    });
    zfree(scratch);
    return true;
}

bool ItemRow::order(int* positions, const ZMethodRef& method, bool ascending) const {
    for (uint i = 0; i < count; ++i) positions[i] = int(i);
    if (count < 2) return true;
    auto scratch = static_cast<int*>(__zalloc(count * sizeof(int)));
    if (!scratch) return false;
    mergeRecords(positions, count, scratch, [&](int a, int b) {
        const int order = item::askOrder(method, variant(a), variant(b));
        return ascending ? order > 0 : order < 0;
    });
    zfree(scratch);
    return true;
}

bool sortInPlace(const ZMetaType* type, void* items, uint count, bool& done) {
    done = true;
    return withNumber(type, [&]<class T>(NumberOf<T>) {
        using R = Direct<T>;
        if (count < 2) return;
        R* scratch = static_cast<R*>(__zalloc(count * sizeof(R)));
        done = scratch != nullptr;
        if (done) sortRecords(static_cast<R*>(items), count, scratch);
        zfree(scratch);
    });
}

} // namespace orv
