#pragma once

#include "text/forward.h"

/// A run of whole numbers: where it starts and how many there are. It covers nothing unless it is valid.
class ZRange {
public:
    constexpr ZRange() = default;
    constexpr ZRange(int start, int count) : first(start), number(count) {}

    constexpr int start() const { return first; }
    constexpr int count() const { return number; }
    constexpr void setStart(int start) { first = start; }
    constexpr void setCount(int count) { number = count; }
    constexpr void set(int start, int count) { *this = ZRange(start, count); }
    constexpr bool valid() const { return first >= 0 && number > 0; }

    /// The smallest range that covers both; the other one if one covers nothing. A count that would be too large stops
    /// at the largest.
    constexpr ZRange join(const ZRange& other) const {
        if (!other.valid()) return *this;
        if (!valid()) return other;
        int from = first < other.first ? first : other.first;
        large end = large(first) + number, otherEnd = large(other.first) + other.number;
        large length = (end > otherEnd ? end : otherEnd) - from;
        return {from, length > 0x7FFFFFFF ? 0x7FFFFFFF : int(length)};
    }

    constexpr bool operator==(const ZRange&) const = default;
    /// By the start, then by the count.
    constexpr int compare(const ZRange& other) const {
        if (first != other.first) return first < other.first ? -1 : 1;
        return (number > other.number) - (number < other.number);
    }
    constexpr uint hashKey() const {
        uint mixed = uint(first ^ number);
        return ~mixed >> 16 ^ mixed;
    }

private:
    int first = 0, number = 0;
};
