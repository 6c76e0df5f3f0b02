#pragma once

#include "text/forward.h"

/// Operations on whole numbers. Signs don't matter to them, and a result beyond the range is the largest int.
class ORV_API ZInteger {
public:
    /// The greatest common divisor; the other's absolute value if one is 0.
    static int gcd(int a, int b);
    /// The least common multiple; 0 if either is 0.
    static int lcm(int a, int b);
};
