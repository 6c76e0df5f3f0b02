#include "text/number.h"

#include "text/transcode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace orv {
namespace {

/// Writes into a bounded text and counts on where it is full.
template <class C> class Writer {
public:
    Writer(C* out, int size) : out(out && size > 0 ? out : nullptr), room(this->out ? size - 1 : 0) {}
    void fill(int count, ichar code) {
        if (count <= 0) return;
        int end = std::min(length + count, room);
        for (int i = length; i < end; ++i) out[i] = C(code);
        length += count;
    }
    void put(const char* ascii, int count) {
        int end = std::min(length + count, room);
        for (int i = length; i < end; ++i) out[i] = C(byte(*ascii++));
        length += count;
    }
    void put(ichar code) {
        C units[detail::longestCode<C>];
        int count = detail::encodeCode(units, code);
        for (int i = 0; i < count; ++i) fill(1, units[i]);
    }
    int finish() {
        if (out) out[std::min(length, room)] = 0;
        return length;
    }

private:
    C* out;
    int room, length = 0;
};

template <class C>
int integer(C* out, int size, ularge magnitude, bool negative, int radix, int width, bool zeros, bool upper) {
    char digits[64];
    if (radix < 2 || radix > 36) radix = 10;
    int count = int(std::to_chars(digits, digits + sizeof digits, magnitude, radix).ptr - digits);
    if (upper && radix > 10)
        for (int i = 0; i < count; ++i)
            if (digits[i] >= 'a') digits[i] -= 'a' - 'A';
    int missing = std::clamp(width, 0, numberWidthLimit) - count - negative;
    Writer<C> writer(out, size);
    if (!zeros) writer.fill(missing, ' ');
    if (negative) writer.put("-", 1);
    if (zeros) writer.fill(missing, '0');
    writer.put(digits, count);
    return writer.finish();
}

/// The value of a digit in any radix up to 36; 36 for what isn't one.
inline uint digitValue(uint c) {
    if (c - '0' < 10) return c - '0';
    uint letter = (c | 0x20) - 'a';
    return c < 128 && letter < 26 ? letter + 10 : 36;
}

template <class C> const C* radixPrefix(const C* at, const C* end, int& radix, bool sign, bool& negative) {
    negative = false;
    while (at < end && unitvalue(*at) <= 32) ++at;
    if (at < end && (*at == '+' || (*at == '-' && sign))) negative = *at++ == '-';
    if (end - at > 2 && *at == '0') {
        uint mark = unitvalue(at[1]) | 0x20, value = digitValue(unitvalue(at[2]));
        if (mark == 'x' && (radix == 10 || radix == 16) && value < 16) {
            radix = 16;
            at += 2;
        } else if (mark == 'b' && (radix == 10 || radix == 2) && value < 2) {
            radix = 2;
            at += 2;
        }
    }
    return at;
}

/// Compares with a lower-case word, ignoring case.
template <class C> bool startsWith(const C* at, const C* end, const char* word) {
    for (; *word; ++word, ++at)
        if (at == end || (unitvalue(*at) | 0x20) != byte(*word)) return false;
    return true;
}

/// Finite decimal text, made narrow and short: all digits that can decide the value, and the place of the point.
class DecimalText {
public:
    /// Digits past these can only tell that the value isn't exactly half-way.
    static constexpr int digitLimit = 800;

    void digit(char c, bool behindPoint) {
        any = true;
        if (count < digitLimit) {
            if (count || c != '0')
                text[count++] = c;
            else if (behindPoint)
                --exponent;
            if (count && behindPoint) --exponent;
        } else {
            rest |= c != '0';
            if (!behindPoint) ++exponent;
        }
    }
    void raise(large by) { exponent += by; }
    bool hasDigits() const { return any; }
    /// False if the value is too large for the type, and infinite.
    template <class T> bool value(T& out) {
        out = 0;
        if (count == 0) return true;
        large top = exponent + count;
        if (rest) {
            text[count++] = '1';
            --exponent;
        }
        text[count++] = 'e';
        // Far outside every type, yet inside what an exponent can say.
        char* end = std::to_chars(text + count, text + sizeof text, std::clamp<large>(exponent, -100000, 100000)).ptr;
        auto result = std::from_chars(text, end, out);
        if (result.ec == std::errc() && !std::isinf(out)) return true;
        out = top > 0 ? std::numeric_limits<T>::infinity() : 0;
        return top <= 0;
    }

private:
    large exponent = 0;
    int count = 0;
    bool any = false, rest = false;
    char text[digitLimit + 32];
};

/// Digits, decimal character and exponent from `at`; null if there is no digit.
template <class C, class T> const C* scanFinite(const C* at, const C* end, T& out, ichar decimal, bool& fits) {
    DecimalText number;
    C point[detail::longestCode<C>];
    int pointUnits = detail::encodeCode(point, decimal);
    for (bool behindPoint = false; at < end; ++at) {
        uint c = unitvalue(*at);
        if (c - '0' < 10)
            number.digit(char(c), behindPoint);
        else if (!behindPoint && end - at >= pointUnits && std::equal(point, point + pointUnits, at)) {
            behindPoint = true;
            at += pointUnits - 1;
        } else
            break;
    }
    if (!number.hasDigits()) return nullptr;
    if (end - at > 1 && (unitvalue(*at) | 0x20) == 'e') {
        const C* digits = at + 1;
        bool negative = *digits == '-';
        if (negative || *digits == '+') ++digits;
        large power = 0;
        const C* stop = digits;
        for (; stop < end && unitvalue(*stop) - '0' < 10; ++stop)
            power = std::min<large>(power * 10 + (unitvalue(*stop) - '0'), 1LL << 40);
        if (stop > digits) {
            number.raise(negative ? -power : power);
            at = stop;
        }
    }
    fits = number.value(out);
    return at;
}

template <class C, class T> const C* realAt(const C* at, const C* end, T& out, ichar decimal, bool& fits) {
    fits = true;
    while (at < end && unitvalue(*at) <= 32) ++at;
    bool negative = at < end && *at == '-';
    if (negative || (at < end && *at == '+')) ++at;
    if (at == end) return nullptr;
    const C* stop = nullptr;
    if (startsWith(at, end, "inf")) {
        out = std::numeric_limits<T>::infinity();
        stop = at + (startsWith(at, end, "infinity") ? 8 : 3);
    } else if (startsWith(at, end, "nan")) {
        out = std::numeric_limits<T>::quiet_NaN();
        stop = at + 3;
    } else {
        if constexpr (sizeof(C) == 1) {
            if (decimal == '.' && *at != '-') {
                T value;
                auto result = std::from_chars(at, end, value);
                if (result.ec == std::errc() && !std::isinf(value)) {
                    out = value;
                    stop = result.ptr;
                }
            }
        }
        if (!stop) stop = scanFinite(at, end, out, decimal, fits);
    }
    if (stop && negative) out = -out;
    return stop;
}

} // namespace

template <class C> int inttostr(C* out, int size, large value, int radix, int width, bool zeros, bool upper) {
    return integer(out, size, value < 0 ? 0 - ularge(value) : ularge(value), value < 0, radix, width, zeros, upper);
}
template <class C> int uinttostr(C* out, int size, ularge value, int radix, int width, bool zeros, bool upper) {
    return integer(out, size, value, false, radix, width, zeros, upper);
}

template <class C> int realtostr(C* out, int size, double value, int width, int precision, ichar decimal) {
    // The largest double has 309 digits in front of the point; behind it, none is other than 0 past 1074.
    char text[1400];
    int count;
    bool finite = std::isfinite(value);
    if (finite) {
        precision = precision < 0 ? 6 : std::min(precision, 1074);
        char* end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, precision).ptr;
        if (precision > 0) {
            while (end[-1] == '0') --end;
            if (end[-1] == '.') --end;
        }
        count = int(end - text);
        if (count == 2 && text[0] == '-' && text[1] == '0') *text = '0', count = 1;
    } else {
        const char* word = std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
        count = int(std::strlen(word));
        std::memcpy(text, word, size_t(count));
    }
    Writer<C> writer(out, size);
    auto point = finite ? static_cast<const char*>(std::memchr(text, '.', size_t(count))) : nullptr;
    int whole = point ? int(point - text) : count;
    if (width > count) {
        // The decimal character may take several units, which count.
        int units = 1;
        if (point) {
            Writer<C> measure(nullptr, 0);
            measure.put(decimal);
            units = measure.finish();
        }
        writer.fill(std::min(width, numberWidthLimit) - count - (units - 1), ' ');
    }
    writer.put(text, whole);
    if (point) {
        writer.put(decimal);
        writer.put(point + 1, count - whole - 1);
    }
    return writer.finish();
}

int realPrecision(double value, int asked) {
    int precision = asked == 0 ? 6 : asked;
    return std::fabs(value) < 10.0 ? std::max(precision, 8) : precision;
}

template <class C> int romanNumeral(C* out, int size, uint value, bool upper) {
    static constexpr char letters[] = "mdclxvi";
    static constexpr const char* patterns[] = {"", "2", "22", "222", "21", "1", "12", "122", "1222", "20"};
    Writer<C> writer(out, size);
    if (value > 3999) value = 0;
    uint unitValue = 1000;
    for (int place = 0; place < 4; ++place, unitValue /= 10) {
        // A pattern's digits count back from the letter of the place: 2 itself, 1 its five-fold, 0 its ten-fold.
        for (const char* p = patterns[value / unitValue % 10]; *p; ++p)
            writer.fill(1, uint(letters[2 * place - 2 + (*p - '0')]) - (upper ? 32 : 0));
    }
    return writer.finish();
}

template <class C> int alphaNumeral(C* out, int size, uint value, bool upper) {
    char text[8];
    int at = 8;
    for (; value > 0; value = (value - 1) / 26) text[--at] = char((upper ? 'A' : 'a') + (value - 1) % 26);
    Writer<C> writer(out, size);
    writer.put(text + at, 8 - at);
    return writer.finish();
}

template <class C> int letterNumeral(C* out, int size, uint value, bool upper) {
    Writer<C> writer(out, size);
    uint count = value == 0 ? 0 : (value - 1) / 26 + 1;
    if (count <= uint(numberWidthLimit)) writer.fill(int(count), (upper ? 'A' : 'a') + (value - 1) % 26);
    return writer.finish();
}

template <class C> int numeral(C* out, int size, uint value, int kind) {
    switch (kind) {
    case numeralDecimal:
        return uinttostr(out, size, value, 10, 0, false, false);
    case numeralRomanU:
    case numeralRomanL:
        return romanNumeral(out, size, value, kind == numeralRomanU);
    case numeralAlphaU:
    case numeralAlphaL:
        return alphaNumeral(out, size, value, kind == numeralAlphaU);
    case numeralLetterU:
    case numeralLetterL:
        return letterNumeral(out, size, value, kind == numeralLetterU);
    default:
        return Writer<C>(out, size).finish();
    }
}

int strradix(const char* text, int length, int* radix, bool sign, bool* negative) {
    bool minus = false;
    int base = radix ? *radix : 10;
    const char* at = text ? radixPrefix(text, textend(text, length), base, sign, minus) : text;
    if (radix) *radix = base;
    if (negative) *negative = minus;
    return int(at - text);
}

template <class C>
const C* scanInteger(const C* text, const C* end, int radix, bool sign, ularge& magnitude, bool& negative, bool& fits) {
    if (radix < 2 || radix > 36) radix = 10;
    const C* first = radixPrefix(text, end, radix, sign, negative);
    const C* at = first;
    ularge value = 0;
    fits = true;
    for (; at < end; ++at) {
        uint digit = digitValue(unitvalue(*at));
        if (digit >= uint(radix)) break;
        if (__builtin_mul_overflow(value, ularge(radix), &value) ||
            __builtin_add_overflow(value, ularge(digit), &value))
            fits = false;
    }
    magnitude = value;
    return at > first ? at : nullptr;
}

template <class C> const C* scanReal(const C* text, const C* end, double& out, ichar decimal, bool& fits) {
    return realAt(text, end, out, decimal, fits);
}
template <class C> const C* scanReal(const C* text, const C* end, float& out, ichar decimal, bool& fits) {
    return realAt(text, end, out, decimal, fits);
}

#define ORV_NUMBERS(C)                                                                                                 \
    template ORV_API int inttostr(C*, int, large, int, int, bool, bool);                                               \
    template ORV_API int uinttostr(C*, int, ularge, int, int, bool, bool);                                             \
    template ORV_API int realtostr(C*, int, double, int, int, ichar);                                                  \
    template ORV_API int romanNumeral(C*, int, uint, bool);                                                            \
    template ORV_API int alphaNumeral(C*, int, uint, bool);                                                            \
    template ORV_API int letterNumeral(C*, int, uint, bool);                                                           \
    template ORV_API int numeral(C*, int, uint, int);                                                                  \
    template ORV_API const C* scanInteger(const C*, const C*, int, bool, ularge&, bool&, bool&);                       \
    template ORV_API const C* scanReal(const C*, const C*, double&, ichar, bool&);                                     \
    template ORV_API const C* scanReal(const C*, const C*, float&, ichar, bool&);
ORV_NUMBERS(char)
ORV_NUMBERS(wchar)
ORV_NUMBERS(ichar)
#undef ORV_NUMBERS

} // namespace orv
