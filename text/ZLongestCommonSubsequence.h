#pragma once

#include "text/ZCharStrT.h"

/// How alike two sequences are. A plain value; nothing is kept between calls. Without memory an answer is 0.
///
/// Lengths below 0 count as 0, and for texts mean all of the text; a length above that of a text is cut to it.
/// Sequences have less than 2^30 elements; the answer for longer ones is 0.
class ORV_API ZLongestCommonSubsequence {
public:
    /// The cost of one element in place of another; 1 at first.
    int substitutionCost() const { return exchanged; }
    void setSubstitutionCost(int cost) { exchanged = cost; }
    /// The cost of an element that the other sequence doesn't have; 2 at first.
    int indelCost() const { return added; }
    void setIndelCost(int cost) { added = cost; }

    /// The length of the longest sequence that can be made from both by leaving out elements. The time goes with the
    /// product of the lengths, 256 elements to a step; the memory with `lengthB`.
    large longest(const int* a, const int* b, large lengthA, large lengthB) const;
    large longest(const ZICharStr& a, const ZICharStr& b, int lengthA = -1, int lengthB = -1) const;

    /// The last cell of the table of both sequences, the shorter one padded with blanks (32), whose first row and
    /// column are 0, and each other cell the least of: the upper left one, with `substitutionCost` added for elements
    /// that differ; the left one and the upper one with `indelCost` added. The time goes with the square of the longer
    /// length, the memory with that.
    large distance(const int* a, const int* b, large lengthA, large lengthB) const;
    large distance(const ZICharStr& a, const ZICharStr& b, int lengthA = -1, int lengthB = -1) const;

private:
    int exchanged = 1;
    int added = 2;
};
