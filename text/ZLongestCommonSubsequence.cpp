#include "text/ZLongestCommonSubsequence.h"

#include "core/memory.h"
#include "text/subsequence.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int padding = 32;

/// With cells of `Cell`, which holds the largest sum. Only the row before the current one is needed.
template <class Cell>
bool fillRows(const int* a, large lengthA, const int* b, large lengthB, Cell change, Cell gap, large& cost) {
    const large length = std::max(lengthA, lengthB);
    const size_t rowBytes = size_t(length + 1) * sizeof(Cell);
    auto rows = static_cast<Cell*>(toolkit::allocZeroedBlock(2 * rowBytes + size_t(length) * sizeof(int)));
    if (!rows) return false;
    Cell *above = rows, *row = rows + length + 1;
    auto padded = reinterpret_cast<int*>(row + length + 1);
    if (lengthB > 0) std::copy_n(b, lengthB, padded);
    std::fill(padded + lengthB, padded + length, padding);
    for (large i = 0; i < length; ++i) {
        const int element = i < lengthA ? a[i] : padding;
        Cell left = 0;
        row[0] = 0;
        for (large j = 0; j < length; ++j) {
            const Cell other = std::min<Cell>(above[j] + (padded[j] == element ? 0 : change), above[j + 1] + gap);
            left = std::min<Cell>(other, left + gap);
            row[j + 1] = left;
        }
        std::swap(above, row);
    }
    cost = above[length];
    toolkit::freeBlock(rows);
    return true;
}

/// The length that is meant of a text.
int lengthOf(const ZICharStr& text, int length) {
    const int all = text.length();
    return length < 0 || length > all ? all : length;
}
const int* elements(const ZICharStr& text) { return reinterpret_cast<const int*>(text.text()); }

} // namespace

large ZLongestCommonSubsequence::longest(const int* a, const int* b, large lengthA, large lengthB) const {
    return a && b ? std::max<large>(orv::detail::longestSubsequence(a, lengthA, b, lengthB), 0) : 0;
}
large ZLongestCommonSubsequence::longest(const ZICharStr& a, const ZICharStr& b, int lengthA, int lengthB) const {
    return longest(elements(a), elements(b), lengthOf(a, lengthA), lengthOf(b, lengthB));
}

large ZLongestCommonSubsequence::distance(const int* a, const int* b, large lengthA, large lengthB) const {
    lengthA = std::max<large>(a ? lengthA : 0, 0);
    lengthB = std::max<large>(b ? lengthB : 0, 0);
    const large length = std::max(lengthA, lengthB),
                highest = std::max(std::abs(large(exchanged)), std::abs(large(added)));
    if (length >= large(1) << 30) return 0;
    large cost = 0;
    // No cell is further from 0 than a way along both sides.
    if (highest * 2 * (length + 1) < INT32_MAX)
        fillRows<int>(a, lengthA, b, lengthB, exchanged, added, cost);
    else
        fillRows<large>(a, lengthA, b, lengthB, exchanged, added, cost);
    return cost;
}
large ZLongestCommonSubsequence::distance(const ZICharStr& a, const ZICharStr& b, int lengthA, int lengthB) const {
    return distance(elements(a), elements(b), lengthOf(a, lengthA), lengthOf(b, lengthB));
}
