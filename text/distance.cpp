#include "text/distance.h"

#include "toolkit/memory.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace orv::detail {

namespace {

constexpr large never = std::numeric_limits<large>::max() / 2;

/// The codes of both texts without what they share at their ends, and one row of costs.
class Table {
public:
    ~Table() { toolkit::freeBlock(block); }
    template <class C> bool build(Run<C> a, Run<C> b) {
        if (a.size() < b.size()) std::swap(a, b);
        // A row of the shorter text; codes are never more than units.
        size_t room = (b.size() + 1) * sizeof(large) + (a.size() + b.size()) * sizeof(ichar);
        block = toolkit::allocBlock(room);
        if (!block) return false;
        row = static_cast<large*>(block);
        codesB = reinterpret_cast<ichar*>(row + b.size() + 1);
        codesA = codesB + b.size();
        for (const C* at = a.begin; at < a.end;) codesA[countA++] = readCode(at, a.end, Case::Exact);
        for (const C* at = b.begin; at < b.end;) codesB[countB++] = readCode(at, b.end, Case::Exact);
        while (countA && countB && codesA[countA - 1] == codesB[countB - 1]) --countA, --countB;
        while (countA && countB && *codesA == *codesB) ++codesA, ++codesB, --countA, --countB;
        return true;
    }

    /// The cost, or `limit` for one that isn't below it. With `enough`, any cost known to be below may be answered.
    large run(large gap, large change, large limit, bool enough) {
        change = std::min(change, 2 * gap);
        large rows = large(countA), columns = large(countB);
        if (std::llabs(rows - columns) * gap >= limit) return limit;
        if (enough && bound(0, rows, columns, gap, change) < limit) return limit - 1;
        // Cells further from the diagonal than this cost too much to get there.
        large band = gap ? std::min(columns + rows, (limit - 1) / gap) : columns + rows;
        for (large j = 0; j <= columns; ++j) row[j] = j <= band ? j * gap : never;
        for (large i = 1; i <= rows; ++i) {
            large first = std::max(large(1), i - band), last = std::min(columns, i + band);
            large diagonal = row[first - 1], least = never, leastAt = first - 1;
            row[first - 1] = first == 1 && i <= band ? i * gap : never;
            if (row[first - 1] < never) least = row[first - 1];
            for (large j = first; j <= last; ++j) {
                large cost = diagonal + (codesA[i - 1] == codesB[j - 1] ? 0 : change);
                diagonal = row[j];
                cost = std::min({cost, row[j] + gap, row[j - 1] + gap});
                row[j] = cost;
                if (cost < least) least = cost, leastAt = j;
            }
            if (least >= limit) return limit;
            if (enough && bound(least, rows - i, columns - leastAt, gap, change) < limit) return limit - 1;
        }
        return std::min(row[columns], limit);
    }

private:
    /// What it costs at most when `rows` and `columns` are left.
    static large bound(large cost, large rows, large columns, large gap, large change) {
        return cost + std::min(rows, columns) * change + std::llabs(rows - columns) * gap;
    }

    void* block = nullptr;
    large* row = nullptr;
    ichar *codesA = nullptr, *codesB = nullptr;
    size_t countA = 0, countB = 0;
};

} // namespace

template <class C> int distanceOf(Run<C> a, Run<C> b, int gap, int change) {
    Table table;
    if (!table.build(a, b)) return -1;
    large cost = table.run(std::max(gap, 0), std::max(change, 0), never, false);
    return int(std::min(cost, large(std::numeric_limits<int>::max())));
}

template <class C> bool distanceBelow(Run<C> a, Run<C> b, int gap, int change, int limit) {
    if (limit < 1) return false;
    Table table;
    return table.build(a, b) && table.run(std::max(gap, 0), std::max(change, 0), limit, true) < limit;
}

#define ORV_DISTANCE(C)                                                                                                \
    template int distanceOf(Run<C>, Run<C>, int, int);                                                                 \
    template bool distanceBelow(Run<C>, Run<C>, int, int, int);
ORV_DISTANCE(char)
ORV_DISTANCE(wchar)
ORV_DISTANCE(ichar)

} // namespace orv::detail
