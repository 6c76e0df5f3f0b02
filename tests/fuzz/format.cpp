// Conversions put together from the input print as snprintf prints them, in every width. Any text is a safe format: the
// measured length holds, nothing is written beyond the size, and the pieces of a sink are the text.
#include "text/format.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

template <class C> bool take(void* to, const C* piece, int length) {
    static_cast<std::basic_string<C>*>(to)->append(piece, size_t(length));
    return true;
}
template <class C> std::basic_string<C> pieces(const C* format, ...) {
    var_arg args;
    va_start(args.list, format);
    std::basic_string<C> all;
    require(orv::formatTo<C>(take<C>, &all, format, &args) == int(all.size()));
    va_end(args.list);
    return all;
}

/// Formats whole, cut and in pieces.
template <class C, class... A> std::basic_string<C> print(const std::string& form, A... args) {
    std::basic_string<C> format;
    for (char c : form) format += C(static_cast<unsigned char>(c));
    int length = orv::format(static_cast<C*>(nullptr), 0, format.c_str(), args...);
    require(length >= 0);
    if (length > 1 << 16) return {};
    std::basic_string<C> whole(size_t(length) + 1, C('#')), cut(size_t(length) / 2 + 1, C('#'));
    require(orv::format(whole.data(), length + 1, format.c_str(), args...) == length && !whole[size_t(length)]);
    whole.pop_back();
    if (length / 2 > 0) {
        require(orv::format(cut.data(), length / 2, format.c_str(), args...) == length);
        require(cut[size_t(length) / 2] == C('#') && cut[size_t(length) / 2 - 1] == 0);
        require(cut.compare(0, size_t(length) / 2 - 1, whole, 0, size_t(length) / 2 - 1) == 0);
    }
    require(pieces(format.c_str(), args...) == whole);
    return whole;
}

template <class... A> void compare(const std::string& form, A... args) {
    std::string expected(size_t(snprintf(nullptr, 0, form.c_str(), args...)) + 1, 0);
    snprintf(expected.data(), expected.size(), form.c_str(), args...);
    expected.pop_back();
    require(print<char>(form, args...) == expected);
    auto wide = print<wchar>(form, args...);
    require(std::string(wide.begin(), wide.end()) == expected);
    auto codes = print<ichar>(form, args...);
    require(std::string(codes.begin(), codes.end()) == expected);
}

struct Input {
    const uint8_t *at, *end;
    uint8_t byte() { return at < end ? *at++ : 0; }
    ularge number() {
        ularge value = 0;
        for (int i = 0; i < 8; ++i) value = value << 8 | byte();
        return value;
    }
};

void known(Input in) {
    static const char letters[] = "diuxXocsfFeEgGaA", *sizes[] = {"", "hh", "h", "l", "ll", "z", "j", "t"};
    char letter = letters[in.byte() % 16];
    uint8_t flags = in.byte(), head = in.byte();
    bool real = std::strchr("fFeEgGaA", letter), text = letter == 's' || letter == 'c';
    std::string form = "<%";
    for (int bit = 0; bit < 5; ++bit)
        if (flags >> bit & 1) form += "-+ #0"[bit];
    // What C leaves undefined isn't compared; of the other form of g, the C library loses digits in rounding up.
    if (text) std::erase_if(form, [](char c) { return c == '0' || c == '#' || c == '+' || c == ' '; });
    if (letter == 'g' || letter == 'G' || std::strchr("diu", letter)) std::erase(form, '#');
    if (head & 1) form += std::to_string(in.byte() * 2);
    if (head & 2 && letter != 'c') form += "." + std::to_string(in.byte() * (head & 4 ? 1 : 8));
    int size = real || text ? 0 : head >> 5;
    // A t is a size of C only where it isn't an array.
    if (size == 7 && std::strchr("di", letter)) size = 4;
    form += sizes[size];
    form += letter;
    form += "|%c>";
    ularge value = in.number();
    if (real) {
        double number;
        std::memcpy(&number, &value, 8);
        compare(form, number, 'x');
    } else if (letter == 's') {
        std::string content;
        while (in.at < in.end)
            if (char c = char(in.byte() & 0x7F)) content += c;
        compare(form, content.c_str(), 'x');
    } else if (letter == 'c')
        compare(form, int(value & 0x7F), 'x');
    else if (size < 3)
        compare(form, int(value), 'x');
    else
        compare(form, value, 'x');
}

template <class C> void any(const std::string& form) {
    print<C>(form, 1LL, -2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL, 9LL, 10LL, 11LL, 12LL, 13LL, 14LL, 15LL, 16LL, 1.5, -2.5,
             1e300, 1e-300, 0.1, 5.0, 6.0, 7.0, 17LL);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    known({data, data + size});
    // Any text but for the conversions that take pointers, with no more of them than there are arguments of either
    // kind.
    std::string form;
    int asked = 0, reals = 0;
    for (size_t i = 0; i < size && asked < 12; ++i) {
        char c = char(data[i]);
        if (c && std::strchr("eEfFgGaAm", c) && ++reals > 8) c = 'd';
        if (c == 0 || c == 's' || c == 'S' || c == 't' || c == 'L') c = 'd';
        asked += c == '%' || c == '*';
        form += c;
    }
    any<char>(form);
    any<wchar>(form);
    any<ichar>(form);
    return 0;
}
