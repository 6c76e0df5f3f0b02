// Any bytes, as number text and as numbers: the three widths read alike, what strtod reads as a whole gives the same
// real, and what is written reads back.
#include "text/number.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

template <class To> std::basic_string<To> widen(const std::string& text) {
    std::basic_string<To> wide;
    for (char c : text) wide += To(static_cast<unsigned char>(c));
    return wide;
}

/// Reads in all widths; whether there is a number.
template <class T> bool readAll(const std::string& text, T& out, int parameter) {
    T values[3] = {42, 42, 42};
    auto wide = widen<wchar>(text);
    auto codes = widen<ichar>(text);
    bool good = orv::strtonumber(text.data(), int(text.size()), values[0], parameter);
    require(orv::strtonumber(wide.data(), int(wide.size()), values[1], parameter) == good);
    require(orv::strtonumber(codes.data(), int(codes.size()), values[2], parameter) == good);
    require(std::memcmp(&values[0], &values[1], sizeof(T)) == 0 && std::memcmp(&values[0], &values[2], sizeof(T)) == 0);
    require(good || values[0] == 42);
    out = values[0];
    return good;
}

template <class T> void integers(const std::string& text, int radix, bool zeros, int width) {
    T value, back = 0;
    if (!readAll(text, value, radix)) return;
    wchar written[200];
    int length = std::is_signed_v<T> ? orv::inttostr(written, 200, large(value), radix, width, zeros, zeros)
                                     : orv::uinttostr(written, 200, ularge(value), radix, width, zeros, zeros);
    require(length < 200 && length >= width);
    require(orv::strtonumber(written, length, back, radix) && back == value);
}

template <class T> bool same(T a, T b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0 || (std::isnan(a) && std::isnan(b));
}

void reals(const std::string& text) {
    double value;
    float single;
    bool good = readAll(text, value, '.');
    require(readAll(text, single, '.') ? good : !good || std::fabs(value) > 3e38);
    std::string comma = text;
    for (char& c : comma) c = c == '.' ? ',' : c == ',' ? '.' : c;
    double other = 0;
    require(readAll(comma, other, ',') == good && (!good || same(value, other)));
    if (text.find('\0') != text.npos || text.find_first_of("xX(") != text.npos) return;
    char* end;
    const char* from = text.c_str();
    while (*from && static_cast<unsigned char>(*from) <= 32) ++from;
    double expected = std::strtod(from, &end);
    bool finite =
        std::isfinite(expected) || text.find_first_of("iI") != text.npos || text.find_first_of("nN") != text.npos;
    if (good) require(same(value, expected));
    if (end > from && !*end && finite) require(good);
}

void written(const uint8_t* data) {
    double value;
    std::memcpy(&value, data, 8);
    char text[1500];
    int precision = data[8] % 40, length = orv::realtostr(text, 1500, value, 0, precision, '.');
    double back = 0;
    require(length < 1500 && orv::strtonumber(text, length, back, '.'));
    if (std::isfinite(value))
        require(std::fabs(back - value) <= 0.5000001 * std::pow(10, -precision) + std::fabs(value) * 1e-15);
    else
        require(std::isnan(value) ? std::isnan(back) : back == value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 9) return 0;
    written(data);
    std::string text(reinterpret_cast<const char*>(data) + 3, size - 3);
    int radix = data[0] % 40, width = data[1] % 100;
    integers<large>(text, radix, data[2] & 1, width);
    integers<ularge>(text, radix, data[2] & 1, width);
    integers<int>(text, radix, data[2] & 1, width);
    integers<byte>(text, radix, data[2] & 1, width);
    reals(text);
    return 0;
}
