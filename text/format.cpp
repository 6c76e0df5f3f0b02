#include "text/format.h"

#include "text/number.h"
#include "text/textview.h"
#include "text/transcode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace orv {
namespace {

using namespace orv::detail;

/// Decimals behind which every value of the type is 0, and digits in front of the point.
template <class T> struct RealRoom;
template <> struct RealRoom<double> { static constexpr int decimals = 1100, digits = 320; };
template <> struct RealRoom<long double> { static constexpr int decimals = 16500, digits = 4960; };

enum class Size : byte { Int, Char, Short, Large, Long, LongReal };

struct Conversion {
    bool left = false, plus = false, blank = false, other = false, zeros = false, cut = false;
    Size size = Size::Int;
    char letter = 0;
    bool array = false;
    int radix = 0;
    int width = 0;
    int precision = -1;
};

/// Where the text goes: a bounded room that counts on when it is full, or a buffer that is emptied into a sink.
template <class C> class Output {
public:
    Output(C* out, int size) : at(out), begin(out), end(out && size > 0 ? out + size - 1 : out) {}
    Output(C* buffer, int size, FormatSink<C> sink, void* context)
        : at(buffer), begin(buffer), end(buffer + size), sink(sink), context(context) {}

    bool stopped() const { return failed; }
    void put(C unit) {
        if (ORV_LIKELY(at < end))
            *at++ = unit;
        else
            overflow(&unit, 1);
    }
    void put(const C* text, size_t count) {
        if (ORV_LIKELY(count <= size_t(end - at)))
            at = copy(at, text, count);
        else
            overflow(text, count);
    }
    /// ASCII in any width.
    void ascii(const char* text, size_t count) {
        if constexpr (sizeof(C) == 1)
            put(text, count);
        else if (ORV_LIKELY(count <= size_t(end - at)))
            for (size_t i = 0; i < count; ++i) *at++ = C(text[i]);
        else
            for (size_t i = 0; i < count; ++i) put(C(text[i]));
    }
    void fill(large count, char with) {
        if (count <= 0) return;
        while (count > 0) {
            if (at == end && !(sink && flush())) {
                passed += count;
                return;
            }
            size_t part = size_t(std::min<large>(count, end - at));
            std::fill_n(at, part, C(with));
            at += part;
            count -= large(part);
        }
    }
    int finish() {
        if (sink)
            flush();
        else if (at)
            *at = 0;
        large length = passed + (at - begin);
        return failed || length > INT32_MAX ? -1 : int(length);
    }

private:
    static C* copy(C* to, const C* from, size_t count) {
        if (count) std::memcpy(to, from, count * sizeof(C));
        return to + count;
    }
    bool hand(const C* text, size_t count) {
        while (count > 0 && !failed) {
            int part = int(std::min<size_t>(count, 1 << 30));
            failed = !sink(context, text, part);
            text += part;
            passed += part;
            count -= size_t(part);
        }
        return !failed;
    }
    bool flush() {
        size_t count = size_t(at - begin);
        at = begin;
        return hand(begin, count);
    }
    [[gnu::noinline]] void overflow(const C* text, size_t count) {
        if (sink) {
            if (!flush()) return;
            if (count > size_t(end - begin))
                hand(text, count);
            else
                at = copy(at, text, count);
            return;
        }
        size_t part = size_t(end - at);
        at = copy(at, text, part);
        passed += large(count - part);
    }

    C *at, *begin, *end;
    FormatSink<C> sink = nullptr;
    void* context = nullptr;
    large passed = 0; ///< units no longer in the room: handed on, or dropped
    bool failed = false;
};

/// Arguments as C passes them: their types are what the format says.
class PassedArguments {
public:
    explicit PassedArguments(var_arg* arguments) { va_copy(args.list, arguments->list); }
    ~PassedArguments() { va_end(args.list); }
    int integer() { return va_arg(args.list, int); }
    large wide() { return va_arg(args.list, large); }
    double real() { return va_arg(args.list, double); }
    long double longReal() { return va_arg(args.list, long double); }
    const void* pointer() { return va_arg(args.list, const void*); }
    FormatArguments::Text text(int width) { return {pointer(), width}; }
    const void* items(char, int& count) {
        const void* items = pointer();
        count = integer();
        return items;
    }

private:
    var_arg args;
};
/// Arguments that know their types.
class TypedArguments {
public:
    explicit TypedArguments(FormatArguments* arguments) : args(*arguments) {}
    int integer() { return int(args.integer()); }
    large wide() { return args.integer(); }
    double real() { return args.real(); }
    long double longReal() { return args.real(); }
    const void* pointer() { return args.pointer(); }
    FormatArguments::Text text(int) { return args.text(); }
    const void* items(char letter, int& count) { return args.items(letter, count); }

private:
    FormatArguments& args;
};

/// One run over a format.
template <class C, class Arguments> class Formatter {
public:
    template <class Given> Formatter(Output<C>& out, Given* arguments) : out(out), args(arguments) {}

    void run(const C* format) {
        const C* from = format;
        while (!out.stopped()) {
            const C* at = from;
            while (*at && *at != '%') ++at;
            if (at > from) out.put(from, size_t(at - from));
            if (!*at) return;
            Conversion how;
            from = parse(at + 1, how);
            if (!convert(how)) out.put(at, size_t(from - at));
        }
    }

private:
    /// Digits or "*"; a number that passes the limit counts as the limit.
    const C* number(const C* at, int& value) {
        if (*at == '*') {
            value = args.integer();
            return at + 1;
        }
        value = 0;
        for (; unitvalue(*at) - '0' < 10; ++at) value = std::min(value * 10 + int(unitvalue(*at) - '0'), 1 << 27);
        return at;
    }
    const C* parse(const C* at, Conversion& how);
    const C* sizeAndLetter(const C* at, Conversion& how);
    bool convert(const Conversion& how);
    bool rareConversion(Conversion how);

    large signedArgument(Size size) {
        switch (size) {
        case Size::Char:
            return static_cast<signed char>(args.integer());
        case Size::Short:
            return static_cast<short>(args.integer());
        case Size::Int:
            return args.integer();
        default:
            return args.wide();
        }
    }
    ularge unsignedArgument(Size size) {
        switch (size) {
        case Size::Char:
            return static_cast<byte>(args.integer());
        case Size::Short:
            return static_cast<word>(args.integer());
        case Size::Int:
            return uint(args.integer());
        default:
            return ularge(args.wide());
        }
    }

    struct Body {
        const char* digits = nullptr;
        int count = 0;
        int split = 0; ///< where in `digits` zeros are put in
        int zeros = 0; ///< how many
        int prefixLength = 0;
        char prefix[3];
        Body() = default;
        Body(const char* text, int length) : digits(text), count(length) {}
        void add(char c) { prefix[prefixLength++] = c; }
        void sign(bool negative, const Conversion& how) {
            if (negative || how.plus || how.blank) add(negative ? '-' : how.plus ? '+' : ' ');
        }
    };
    void put(const Body& body, const Conversion& how, bool fillZeros);
    void integer(ularge magnitude, bool negative, const Conversion& how);
    void signedInteger(large value, const Conversion& how) {
        integer(value < 0 ? 0 - ularge(value) : ularge(value), value < 0, how);
    }
    template <class T> void realNumber(T value, const Conversion& how);
    template <class From> void text(const From* text, const Conversion& how);
    void anyText(FormatArguments::Text given, const Conversion& how) {
        if (given.width == wcharText)
            text(static_cast<const wchar*>(given.units), how);
        else if (given.width == icharText)
            text(static_cast<const ichar*>(given.units), how);
        else
            text(static_cast<const char*>(given.units), how);
    }
    void character(ichar code, const Conversion& how);
    void array(const Conversion& how);

    Output<C>& out;
    Arguments args;
};

/// Takes one flag; false for what is none.
template <class C> bool flag(C unit, Conversion& how) {
    switch (unitvalue(unit)) {
    case '-':
        return how.left = true;
    case '+':
        return how.plus = true;
    case ' ':
        return how.blank = true;
    case '#':
        return how.other = true;
    case '0':
        return how.zeros = true;
    case '!':
        return how.cut = true;
    default:
        return false;
    }
}

template <class C, class Arguments> const C* Formatter<C, Arguments>::parse(const C* at, Conversion& how) {
    for (;;)
        if (*at == '^')
            at = number(at + 1, how.radix);
        else if (flag(*at, how))
            ++at;
        else
            break;
    if (*at == '*' || unitvalue(*at) - '0' < 10) {
        at = number(at, how.width);
        how.left |= how.width < 0;
        how.width = how.width < 0 ? -std::max(how.width, -numberWidthLimit) : std::min(how.width, numberWidthLimit);
    }
    if (*at == '.') {
        at = number(at + 1, how.precision);
        how.precision = std::max(how.precision, -1);
    }
    if (*at == '!') {
        how.cut = true;
        ++at;
    }
    return sizeAndLetter(at, how);
}

template <class C, class Arguments> const C* Formatter<C, Arguments>::sizeAndLetter(const C* at, Conversion& how) {
    auto among = [](C unit, const char* letters) {
        return unit && unitvalue(unit) < 128 && std::strchr(letters, char(unit));
    };
    switch (unitvalue(*at)) {
    case 'h':
        how.size = at[1] == 'h' ? Size::Char : Size::Short;
        at += at[1] == 'h' ? 2 : 1;
        break;
    case 'l':
        if (at[1] == 'l' && among(at[2], "diuxXo")) {
            how.size = Size::Large;
            at += 2;
        } else if (among(at[1], "diuxXof")) {
            how.size = Size::Long;
            at += 1;
        }
        break;
    case 't':
        how.array = among(at[1], "bwid");
        [[fallthrough]];
    case 'z':
    case 'j':
        how.size = Size::Large;
        at += 1;
        break;
    case 'L':
        how.size = Size::LongReal;
        at += 1;
        break;
    }
    if (!*at) return at;
    how.letter = unitvalue(*at) < 128 ? char(*at) : 0;
    return at + 1;
}

/// False for what is no conversion.
template <class C, class Arguments> bool Formatter<C, Arguments>::convert(const Conversion& how) {
    if (how.array) return array(how), true;
    switch (how.letter) {
    case 'd':
    case 'i':
        signedInteger(signedArgument(how.size), how);
        return true;
    case 'u':
    case 'o':
    case 'x':
    case 'X':
        integer(unsignedArgument(how.size), false, how);
        return true;
    case 's':
        anyText(args.text(charText), how);
        return true;
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
        if (how.size == Size::LongReal)
            realNumber(args.longReal(), how);
        else
            realNumber(args.real(), how);
        return true;
    case '%':
        out.put(C('%'));
        return true;
    default:
        return rareConversion(how);
    }
}

template <class C, class Arguments> bool Formatter<C, Arguments>::rareConversion(Conversion how) {
    switch (how.letter) {
    case 'S':
        anyText(args.text(wcharText), how);
        return true;
    case 'c':
        if (int code = args.integer(); sizeof(C) > 1) {
            character(ichar(code), how);
        } else {
            char unit = char(code);
            put({&unit, 1}, how, false);
        }
        return true;
    case 'C':
        character(uint(args.integer()), how);
        return true;
    case 'l':
        how.letter = 'd';
        signedInteger(args.wide(), how);
        return true;
    case 'm':
        how.letter = 'f';
        how.precision = 3;
        realNumber(args.integer() / 1000.0, how);
        return true;
    case 'H':
        how.letter = 'X';
        how.radix = 0;
        how.other = false;
        how.precision = std::max(how.precision, 8);
        integer(unsignedArgument(how.size), false, how);
        return true;
    case 'p':
        how.letter = 'x';
        how.radix = 0;
        how.other = true;
        if (auto value = reinterpret_cast<uintptr_t>(args.pointer()))
            integer(value, false, how);
        else
            put({"(nil)", 5}, how, false);
        return true;
    default:
        return false;
    }
}

template <class C, class Arguments>
void Formatter<C, Arguments>::put(const Body& body, const Conversion& how, bool fillZeros) {
    int missing = how.width - body.prefixLength - body.count - body.zeros;
    fillZeros &= how.zeros && !how.left;
    if (missing > 0 && !how.left && !fillZeros) out.fill(missing, ' ');
    if (body.prefixLength) out.ascii(body.prefix, size_t(body.prefixLength));
    if (missing > 0 && fillZeros) out.fill(missing, '0');
    if (body.zeros == 0)
        out.ascii(body.digits, size_t(body.count));
    else {
        out.ascii(body.digits, size_t(body.split));
        out.fill(body.zeros, '0');
        out.ascii(body.digits + body.split, size_t(body.count - body.split));
    }
    if (missing > 0 && how.left) out.fill(missing, ' ');
}

template <class C, class Arguments>
void Formatter<C, Arguments>::integer(ularge magnitude, bool negative, const Conversion& how) {
    char digits[66];
    Body body;
    bool isSigned = how.letter == 'd' || how.letter == 'i';
    if (isSigned) body.sign(negative, how);
    int radix = how.radix ? how.radix : how.letter == 'o' ? 8 : (how.letter | 0x20) == 'x' ? 16 : 10;
    if (radix < 2 || radix > 36) radix = 10;
    body.count = int(std::to_chars(digits, digits + sizeof digits, magnitude, radix).ptr - digits);
    body.digits = digits;
    if (how.letter == 'X')
        for (int i = 0; i < body.count; ++i)
            if (digits[i] >= 'a') digits[i] -= 32;
    if (how.precision == 0 && magnitude == 0) body.count = 0;
    body.zeros = std::max(std::min(how.precision, numberWidthLimit) - body.count, 0);
    if (how.other && radix == 8 && body.zeros == 0 && (magnitude || body.count == 0)) body.zeros = 1;
    if (how.other && radix == 16 && magnitude) {
        body.add('0');
        body.add(how.letter == 'X' ? 'X' : 'x');
    }
    put(body, how, how.precision < 0);
}

/// The digits of a finite magnitude into `digits`; their end.
template <class T> char* realDigits(char* digits, char* limit, T value, char style, int precision, bool other) {
    if (style == 'f') return std::to_chars(digits, limit, value, std::chars_format::fixed, precision).ptr;
    if (style == 'e') return std::to_chars(digits, limit, value, std::chars_format::scientific, precision).ptr;
    if (style == 'a')
        return precision < 0 ? std::to_chars(digits, limit, value, std::chars_format::hex).ptr
                             : std::to_chars(digits, limit, value, std::chars_format::hex, precision).ptr;
    precision = std::max(precision, 1);
    if (!other) return std::to_chars(digits, limit, value, std::chars_format::general, precision).ptr;
    // The other form keeps the zeros: the exponent after rounding says which notation it is.
    char* end = std::to_chars(digits, limit, value, std::chars_format::scientific, precision - 1).ptr;
    int exponent = 0;
    const char* mark = std::find(digits, end, 'e');
    std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, exponent);
    if (exponent < -4 || exponent >= precision) return end;
    return std::to_chars(digits, limit, value, std::chars_format::fixed, precision - 1 - exponent).ptr;
}

template <class C, class Arguments>
template <class T>
void Formatter<C, Arguments>::realNumber(T value, const Conversion& how) {
    constexpr int most = RealRoom<T>::decimals;
    char digits[RealRoom<T>::digits + most + 16];
    Body body;
    body.digits = digits;
    bool upper = how.letter < 'a', negative = std::signbit(value);
    char style = char(how.letter | 0x20);
    if (!std::isfinite(value)) {
        body.sign(negative, how);
        body.digits = std::isnan(value) ? (upper ? "NAN" : "nan") : upper ? "INF" : "inf";
        body.count = 3;
        return put(body, how, false);
    }
    int asked = how.precision < 0 && style != 'a' ? 6 : std::min(how.precision, numberWidthLimit);
    int precision = std::min(asked, most);
    char* end = realDigits(digits, digits + sizeof digits, negative ? -value : value, style, precision, how.other);
    char* mark = style == 'f' ? end : std::find(digits, end, style == 'a' ? 'p' : 'e');
    bool cut = how.cut && style == 'f';
    if (cut) {
        if (precision > 0) {
            while (end[-1] == '0') --end;
            if (end[-1] == '.') --end;
        }
        negative &= end != digits + 1 || *digits != '0';
        mark = end;
    }
    if (how.other && !std::memchr(digits, '.', size_t(mark - digits))) {
        std::memmove(mark + 1, mark, size_t(end - mark));
        *mark++ = '.';
        ++end;
    }
    body.sign(negative, how);
    if (style == 'a') {
        body.add('0');
        body.add(upper ? 'X' : 'x');
    }
    if (upper)
        for (char* c = digits; c < end; ++c)
            if (*c >= 'a') *c -= 32;
    body.count = int(end - digits);
    body.split = int(mark - digits);
    // What is asked beyond all digits of the type is zeros; the short form of g has none.
    if (!cut && (style != 'g' || how.other)) body.zeros = asked - precision;
    put(body, how, true);
}

/// The most units that a character takes which begins like this.
template <class C> int sequenceLimit(C first) {
    if constexpr (sizeof(C) == 1)
        return byte(first) < 0xC0 ? 1 : byte(first) < 0xE0 ? 2 : byte(first) < 0xF0 ? 3 : 4;
    else
        return leadSurrogate(first) ? 2 : 1;
}

/// Converted text, of which `limit` units at most are written.
template <class C, class Arguments>
template <class From>
void Formatter<C, Arguments>::text(const From* text, const Conversion& how) {
    static constexpr From null[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
    if (!text) text = null;
    if constexpr (sizeof(From) == sizeof(C)) {
        size_t length = how.precision < 0 ? textLength(text) : textLength(text, size_t(how.precision));
        large missing = how.width > 0 ? how.width - large(length) : 0;
        if (!how.left) out.fill(missing, ' ');
        out.put(text, length);
        if (how.left) out.fill(missing, ' ');
        return;
    } else {
        size_t limit = how.precision < 0 ? ~size_t(0) : size_t(how.precision);
        // One pass to write, and one before it if blanks go first.
        for (bool writing = how.left || how.width == 0;; writing = true) {
            const From* at = text;
            size_t length = 0;
            while (length < limit && *at) {
                // Nothing is looked at that can't belong to the character: there may be no terminator.
                const From *end = at + 1, *longest = at + sequenceLimit(*at);
                while (end < longest && *end) ++end;
                ichar code = decodeCode(at, end);
                int units = codeUnits<C>(code);
                if (length + size_t(units) > limit) break;
                length += size_t(units);
                if (!writing) continue;
                C encoded[longestCode<C>];
                encodeCode(encoded, code);
                for (int i = 0; i < units; ++i) out.put(encoded[i]);
            }
            if (!writing || how.left) out.fill(how.width - large(length), ' ');
            if (writing) return;
        }
    }
}

template <class C, class Arguments> void Formatter<C, Arguments>::character(ichar code, const Conversion& how) {
    C encoded[longestCode<C>];
    int units = encodeCode(encoded, code);
    if (!how.left) out.fill(how.width - units, ' ');
    out.put(encoded, size_t(units));
    if (how.left) out.fill(how.width - units, ' ');
}

template <class C, class Arguments> void Formatter<C, Arguments>::array(const Conversion& how) {
    int count = 0;
    const void* items = args.items(how.letter, count);
    if (!items) count = 0;
    for (int i = 0; i < count && !out.stopped(); ++i) {
        if (i > 0) out.ascii(", ", 2);
        if (how.letter == 'd') {
            double value = static_cast<const double*>(items)[i];
            if (how.precision >= 0 || !std::isfinite(value)) {
                Conversion real;
                real.letter = 'f';
                real.precision = how.precision;
                real.cut = true;
                realNumber(value, real);
            } else {
                char digits[32];
                out.ascii(digits, size_t(std::to_chars(digits, digits + sizeof digits, value).ptr - digits));
            }
            continue;
        }
        large value = how.letter == 'b'   ? static_cast<const byte*>(items)[i]
                      : how.letter == 'w' ? static_cast<const word*>(items)[i]
                                          : static_cast<const int*>(items)[i];
        char digits[24];
        out.ascii(digits, size_t(std::to_chars(digits, digits + sizeof digits, value).ptr - digits));
    }
}

} // namespace

template <class C> int aformat(C* text, int size, const C* format, var_arg* args) {
    Output<C> out(size > 0 ? text : nullptr, size);
    Formatter<C, PassedArguments>(out, args).run(format);
    return out.finish();
}
template <class C> int format(C* text, int size, const C* format, ...) {
    var_arg args;
    va_start(args.list, format);
    int length = aformat(text, size, format, &args);
    va_end(args.list);
    return length;
}
template <class C> int formatTo(FormatSink<C> sink, void* context, const C* format, var_arg* args) {
    C buffer[256];
    Output<C> out(buffer, 256, sink, context);
    Formatter<C, PassedArguments>(out, args).run(format);
    return out.finish();
}

template <class C> int formatTo(FormatSink<C> sink, void* context, const C* format, FormatArguments& args) {
    C buffer[256];
    Output<C> out(buffer, 256, sink, context);
    Formatter<C, TypedArguments>(out, &args).run(format);
    return out.finish();
}

#define ORV_FORMAT(C)                                                                                                  \
    template ORV_API int aformat(C*, int, const C*, var_arg*);                                                         \
    template ORV_API int format(C*, int, const C*, ...);                                                               \
    template ORV_API int formatTo(FormatSink<C>, void*, const C*, var_arg*);                                           \
    template ORV_API int formatTo(FormatSink<C>, void*, const C*, FormatArguments&);
ORV_FORMAT(char)
ORV_FORMAT(wchar)
ORV_FORMAT(ichar)
#undef ORV_FORMAT

} // namespace orv
