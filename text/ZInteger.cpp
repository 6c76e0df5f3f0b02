#include "text/ZInteger.h"

static ularge divisor(large a, large b) {
    ularge x = ularge(a < 0 ? -a : a), y = ularge(b < 0 ? -b : b);
    while (y) {
        ularge rest = x % y;
        x = y;
        y = rest;
    }
    return x;
}

static int clip(ularge value) { return value > 0x7FFFFFFF ? 0x7FFFFFFF : int(value); }

int ZInteger::gcd(int a, int b) { return clip(divisor(a, b)); }

int ZInteger::lcm(int a, int b) {
    if (!a || !b) return 0;
    large product = large(a) * b;
    return clip(ularge(product < 0 ? -product : product) / divisor(a, b));
}
