#include "text/subsequence.h"

#include "toolkit/hash.h"
#include "toolkit/memory.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace orv::detail {

namespace {

// The rows of the table are bits, 64 to a word, and a step of the second sequence is one addition over them, see
// H. Hyyrö, "Bit-parallel LCS-length computation revisited", 2004. Rows are done in blocks of four words, each block
// against the whole second sequence, with the carries between blocks kept as bits: so the masks of the elements that a
// block has stand in a table with a place for each element that the second sequence has, and no more.

constexpr int blockWords = 4;
constexpr large blockRows = 64 * blockWords;
struct Mask {
    uint64_t words[blockWords];
};

/// Numbers from 1 for the different elements of a sequence; 0 is what it doesn't have.
class Numbers {
public:
    explicit Numbers(size_t most) : mask(std::bit_ceil(std::max<size_t>(most * 2, 16)) - 1) {}
    ~Numbers() { toolkit::freeBlock(slots); }
    Numbers(const Numbers&) = delete;

    bool open() { return (slots = static_cast<Slot*>(toolkit::allocZeroedBlock((mask + 1) * sizeof(Slot)))); }
    uint find(uint element) const { return slots[place(element)].number; }
    uint add(uint element) {
        Slot& slot = slots[place(element)];
        if (!slot.number) slot = {element, ++count};
        return slot.number;
    }
    uint count = 0;

private:
    struct Slot {
        uint element, number;
    };
    size_t place(uint element) const {
        // With its own address in it: which elements collide can't be known ahead.
        size_t at = toolkit::hashWord(element ^ uint64_t(reinterpret_cast<uintptr_t>(slots)) << 20) & mask;
        while (slots[at].number && slots[at].element != element) at = (at + 1) & mask;
        return at;
    }
    Slot* slots = nullptr;
    size_t mask;
};

/// A block of rows against the whole of `b`; the carries at its start become those at its end. Answers how many of its
/// rows count.
int runBlock(const uint* b, large lengthB, const Mask* masks, uint64_t* carries, large rows) {
    uint64_t row[blockWords];
    std::memset(row, 0xFF, sizeof row);
    for (large from = 0; from < lengthB; from += 64) {
        const int steps = int(std::min<large>(64, lengthB - from));
        uint64_t in = carries[from / 64], out = 0;
        for (int i = 0; i < steps; ++i, in >>= 1) {
            const Mask& same = masks[b[from + i]];
            unsigned long long carry = in & 1;
            for (int w = 0; w < blockWords; ++w) {
                const uint64_t kept = row[w], shared = kept & same.words[w];
                uint64_t sum;
                unsigned long long over = __builtin_add_overflow(kept, shared, &sum);
                over |= __builtin_add_overflow(sum, carry, &sum);
                carry = over;
                row[w] = sum | (kept - shared);
            }
            out |= uint64_t(carry) << i;
        }
        carries[from / 64] = out;
    }
    int zeros = 0;
    for (int w = 0; w < blockWords && rows > 0; ++w, rows -= 64)
        zeros += std::popcount(~row[w] & (rows < 64 ? (uint64_t(1) << rows) - 1 : ~uint64_t(0)));
    return zeros;
}

} // namespace

large longestSubsequence(const int* a, large lengthA, const int* b, large lengthB) {
    // What both have at an end is common.
    large common = 0;
    for (; lengthA > 0 && lengthB > 0 && a[lengthA - 1] == b[lengthB - 1]; --lengthA, --lengthB) ++common;
    for (; lengthA > 0 && lengthB > 0 && *a == *b; ++a, ++b, --lengthA, --lengthB) ++common;
    if (lengthA < 1 || lengthB < 1) return common;
    // Elements are numbered in 32 bits, which is far beyond what there is time for.
    if (std::max(lengthA, lengthB) >= large(1) << 30) return -1;
    Numbers numbers{size_t(lengthB)};
    const large words = (lengthB + 63) / 64;
    auto carries =
        static_cast<uint64_t*>(toolkit::allocZeroedBlock(size_t(words) * 8 + size_t(lengthB) * sizeof(uint)));
    bool done = false;
    if (carries && numbers.open()) {
        auto named = reinterpret_cast<uint*>(carries + words);
        for (large i = 0; i < lengthB; ++i) named[i] = numbers.add(uint(b[i]));
        if (auto masks = static_cast<Mask*>(toolkit::allocZeroedBlock((numbers.count + 1) * sizeof(Mask)))) {
            for (large first = 0; first < lengthA; first += blockRows) {
                const large rows = std::min(blockRows, lengthA - first);
                for (large i = 0; i < rows; ++i)
                    if (uint number = numbers.find(uint(a[first + i])))
                        masks[number].words[i / 64] |= uint64_t(1) << (i % 64);
                common += runBlock(named, lengthB, masks, carries, rows);
                for (large i = 0; i < rows; ++i) masks[numbers.find(uint(a[first + i]))] = {};
            }
            toolkit::freeBlock(masks);
            done = true;
        }
    }
    toolkit::freeBlock(carries);
    return done ? common : -1;
}

} // namespace orv::detail
