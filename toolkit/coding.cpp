#include "toolkit/coding.h"

namespace toolkit {

static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

size_t base64Encode(const void* data, size_t length, char* out) {
    auto in = static_cast<const byte*>(data);
    char* at = out;
    for (; length >= 3; length -= 3, in += 3) {
        uint group = uint(in[0]) << 16 | uint(in[1]) << 8 | in[2];
        for (int shift = 18; shift >= 0; shift -= 6) *at++ = alphabet[group >> shift & 63];
    }
    if (length) {
        uint group = uint(in[0]) << 16 | (length > 1 ? uint(in[1]) << 8 : 0);
        *at++ = alphabet[group >> 18];
        *at++ = alphabet[group >> 12 & 63];
        *at++ = length > 1 ? alphabet[group >> 6 & 63] : '=';
        *at++ = '=';
    }
    return size_t(at - out);
}

static int sextet(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    return c == '+' ? 62 : c == '/' ? 63 : -1;
}

size_t base64Decode(const char* text, size_t length, byte* out) {
    byte* at = out;
    uint group = 0;
    int bits = 0;
    for (size_t i = 0; i < length && text[i] != '='; ++i) {
        int value = sextet(text[i]);
        if (value < 0) continue;
        group = group << 6 | uint(value);
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        *at++ = byte(group >> bits);
    }
    return size_t(at - out);
}

size_t hexEncode(const void* data, size_t length, char* out) {
    auto in = static_cast<const byte*>(data);
    for (size_t i = 0; i < length; ++i) {
        out[2 * i] = "0123456789abcdef"[in[i] >> 4];
        out[2 * i + 1] = "0123456789abcdef"[in[i] & 15];
    }
    return 2 * length;
}

static int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

size_t hexDecode(const char* text, size_t length, byte* out) {
    byte* at = out;
    int high = -1;
    for (size_t i = 0; i < length; ++i) {
        int value = hexDigit(text[i]);
        if (value < 0) continue;
        if (high < 0)
            high = value;
        else {
            *at++ = byte(high << 4 | value);
            high = -1;
        }
    }
    return size_t(at - out);
}

} // namespace toolkit
