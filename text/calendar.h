#pragma once

#include "toolkit/types.h"

/// Calendar arithmetic on milliseconds since 1601-01-01T00:00:00Z, in the Gregorian calendar, without leap seconds.
/// Pure functions: no state, no locale, no time zone data.
namespace orv::detail {

inline constexpr large dayMillis = 86'400'000, hourMillis = 3'600'000, minuteMillis = 60'000, secondMillis = 1000;
/// 1970-01-01 on this calendar's scale.
inline constexpr large unixEpoch = 11'644'473'600'000;
inline constexpr large largestValue = 0x7FFFFFFFFFFFFFFF;
/// Zones lie within so many minutes of UTC.
inline constexpr int zoneLimit = 14 * 60;

/// Calendar fields with room to spare: a field out of its range carries over into the next when it is converted.
struct DateFields {
    int year = 0, month = 0, day = 0;
    int hour = 0, minute = 0, second = 0, millisec = 0;
    int zone = 0;      ///< minutes that the other fields are ahead of UTC
    int dayOfWeek = 0; ///< 0 is Sunday; ignored on the way back
};

/// The absolute value; that of the smallest number is the largest.
inline large magnitude(large value) { return value >= 0 ? value : value == -largestValue - 1 ? largestValue : -value; }
/// Sums and products that stop at the ends of the range.
inline large addSaturated(large a, large b) {
    large sum;
    return __builtin_add_overflow(a, b, &sum) ? (b > 0 ? largestValue : -largestValue - 1) : sum;
}
inline large mulSaturated(large a, large b) {
    large product;
    return __builtin_mul_overflow(a, b, &product) ? ((a > 0) == (b > 0) ? largestValue : -largestValue - 1) : product;
}
/// The whole part of a real; beyond the range its nearest end, and 0 for what isn't a number.
inline large truncSaturated(real value) {
    if (!(value == value)) return 0;
    if (value >= 9223372036854775808.0) return largestValue;
    if (value < -9223372036854775808.0) return -largestValue - 1;
    return large(value);
}

/// The fields of a moment in UTC. `value` must not be negative.
ORV_API void fieldsOf(large value, DateFields& fields);
/// The moment that the fields name. False, with `value` kept, for one before 1601; one beyond the range gives the
/// largest.
ORV_API bool momentOf(const DateFields& fields, large& value);

/// Adds to the year, or to the month with its carry; the day stays. The year stops at the ends of an int.
ORV_API void addYears(DateFields& fields, int years);
ORV_API void addMonths(DateFields& fields, int months);

/// Reads "YYYY-MM-DDThh:mm:ss", then perhaps a fraction of a second (digits past the third are dropped), then perhaps
/// "Z" or "+hh:mm" or "-hh:mm"; without either it is UTC. Years have four to nine digits, and a fifth only if the first
/// isn't 0. False, with `fields` kept, for any other text, for a day that its month doesn't have, and for a moment
/// before 1601. Nothing may stand before or behind.
ORV_API bool parseDate(const char* text, size_t length, DateFields& fields);
/// Writes fields that are in their ranges in that form and answers the length; no terminator. The fraction stands there
/// if it isn't 0, in three digits; "Z" stands for zone 0. `out` has room for `dateTextRoom` characters.
ORV_API int printDate(const DateFields& fields, char* out);
inline constexpr int dateTextRoom = 48;

} // namespace orv::detail
