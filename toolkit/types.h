#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

/// The value types of the library's public interface, under the names that signatures use.
using byte = unsigned char;
using uint = unsigned int;
using word = unsigned short;
using int8 = signed char;
using int16 = short;
using large = long long;
using ularge = unsigned long long;
using ulong = unsigned long;
using real = double;
/// One UTF-16 code unit.
using wchar = char16_t;
/// One UTF-32 code unit: a code point.
using ichar = char32_t;
/// The number of a lock or signal; 0 means none.
using TLockId = unsigned int;

/// A variable argument list that can be passed on by pointer.
struct var_arg {
    va_list list;
};

/// Marks what the shared library exports.
#define ORV_API __attribute__((visibility("default")))
/// For functions whose arguments follow printf; positions count from 1, `this` included.
#define ORV_PRINTF(text, first) __attribute__((format(printf, text, first)))

#define ORV_LIKELY(x) __builtin_expect(!!(x), 1)
#define ORV_UNLIKELY(x) __builtin_expect(!!(x), 0)
