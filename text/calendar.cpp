#include "text/calendar.h"

namespace orv::detail {

namespace {

// The day counts follow Cassio Neri and Lorenz Schneider, "Euclidean affine functions and their application to calendar
// algorithms" (2022). Their years begin in March, so that the leap day is a year's last; here they are counted from
// 1600, whose like, 400 years on, makes an era of equal length.
constexpr ularge eraDays = 146'097;
constexpr large daysBefore1601 = 306;
constexpr large mostDays = largestValue / dayMillis;

bool isLeap(uint year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

uint daysIn(uint year, uint month) {
    constexpr byte days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return days[month - 1] + (month == 2 && isLeap(year));
}

/// Days from 1601-01-01 to the first of a month; the month is 1 to 12, the year not before 1601.
large daysTo(large year, int month) {
    bool late = month <= 2;
    ularge shifted = ularge(year - 1600 - late), centuries = shifted / 100;
    uint fromMarch = uint(late ? month + 12 : month);
    return large(shifted * 1461 / 4 - centuries + centuries / 4 + (979 * fromMarch - 2919) / 32) - daysBefore1601;
}

/// The years to add so that the month comes to lie in 1 to 12.
large yearsIn(large month) { return month > 12 ? (month - 13) / 12 + 1 : month < 1 ? month / 12 - 1 : 0; }

/// Whether a minute of a day is not before the first day of all; the minute may lie in the days around.
bool reaches1601(int year, int month, int day, int minute) {
    constexpr int minutesOfDay = 24 * 60;
    if (year == 1600) return month == 12 && day == 31 && minute >= minutesOfDay;
    return year == 1601 && (month > 1 || day > 1 || minute >= 0);
}

char* put(char* out, uint value, int count) {
    for (int i = count; i > 0; value /= 10) out[--i] = char('0' + value % 10);
    return out + count;
}

} // namespace

void fieldsOf(large value, DateFields& fields) {
    ularge days = ularge(value) / ularge(dayMillis), shifted = days + ularge(daysBefore1601);
    uint rest = uint(ularge(value) - days * ularge(dayMillis));
    constexpr ularge narrow = 1 << 30;
    ularge eras = ORV_LIKELY(shifted < narrow) ? 0 : shifted / eraDays;
    uint quarters = 4 * uint(shifted - eras * eraDays) + 3;
    uint century = quarters / uint(eraDays), dayOfCentury = quarters % uint(eraDays) / 4;
    uint64_t product = uint64_t(2'939'745) * (4 * dayOfCentury + 3);
    uint yearOfCentury = uint(product >> 32), dayOfYear = uint(product) / 2'939'745 / 4;
    uint months = 2141 * dayOfYear + 197'913;
    bool late = dayOfYear >= 306;
    fields.day = int((months & 0xFFFF) / 2141 + 1);
    fields.month = int(months >> 16) - (late ? 12 : 0);
    fields.year = int(1600 + 100 * century + yearOfCentury + eras * 400 + late);
    // The eras are whole weeks.
    fields.dayOfWeek = int((quarters / 4 + 3) % 7);
    uint seconds = rest / uint(secondMillis), minutes = rest / uint(minuteMillis), hours = rest / uint(hourMillis);
    fields.hour = int(hours);
    fields.minute = int(minutes - hours * 60);
    fields.second = int(seconds - minutes * 60);
    fields.millisec = int(rest - seconds * uint(secondMillis));
    fields.zone = 0;
}

bool momentOf(const DateFields& fields, large& value) {
    large year = fields.year;
    int month = fields.month;
    if (ORV_UNLIKELY(month < 1 || month > 12)) {
        large carry = yearsIn(month);
        year += carry;
        month = int(month - carry * 12);
    }
    // From here on every sum fits: the fields are ints, and only the product of the days needs care.
    large rest = (large(fields.hour) * 60 + fields.minute - fields.zone) * minuteMillis +
                 large(fields.second) * secondMillis + fields.millisec;
    // Other fields may bring a moment forward out of the years before 1601, so the count starts at any year.
    large cycles = 0;
    if (ORV_UNLIKELY(year < 1601)) cycles = (1601 - year + 399) / 400;
    large days = daysTo(year + cycles * 400, month) - cycles * large(eraDays) + fields.day - 1;
    if (ORV_UNLIKELY(ularge(rest) >= ularge(dayMillis))) {
        large whole = rest / dayMillis - (rest % dayMillis < 0);
        days += whole;
        rest -= whole * dayMillis;
    }
    if (days < 0) return false;
    value = days > mostDays ? largestValue : addSaturated(days * dayMillis, rest);
    return true;
}

void addYears(DateFields& fields, int years) {
    large sum = large(fields.year) + years;
    constexpr large most = 0x7FFFFFFF;
    fields.year = int(sum > most ? most : sum < -most ? -most : sum);
}

void addMonths(DateFields& fields, int months) {
    large month = large(fields.month) + months;
    large carry = yearsIn(month);
    addYears(fields, int(carry));
    fields.month = int(month - carry * 12);
}

bool parseDate(const char* text, size_t length, DateFields& fields) {
    constexpr size_t shortest = 19, restOfDate = 15;
    if (length < shortest) return false;
    size_t yearDigits = 4;
    while (yearDigits < 10 && text[yearDigits] != '-') ++yearDigits;
    if (yearDigits > 9 || length < yearDigits + restOfDate || (yearDigits > 4 && text[0] == '0')) return false;

    // A byte that is no digit shows in `wrong`, whatever its place.
    uint wrong = 0, year = 0, millisec = 0;
    auto pair = [&](const char* from) {
        uint tens = uint(byte(from[0])) - '0', ones = uint(byte(from[1])) - '0';
        wrong |= uint(tens > 9) | uint(ones > 9);
        return tens * 10 + ones;
    };
    for (size_t i = 0; i < yearDigits; ++i) {
        uint digit = uint(byte(text[i])) - '0';
        wrong |= digit > 9;
        year = year * 10 + digit;
    }
    const char *at = text + yearDigits, *end = text + length;
    uint month = pair(at + 1), day = pair(at + 4), hour = pair(at + 7), minute = pair(at + 10), second = pair(at + 13);
    if (wrong || at[0] != '-' || at[3] != '-' || at[6] != 'T' || at[9] != ':' || at[12] != ':') return false;
    if (month < 1 || month > 12 || day < 1 || day > daysIn(year, month) || hour > 23 || minute > 59 || second > 59)
        return false;
    at += restOfDate;

    if (at < end && *at == '.') {
        uint scale = 100;
        const char* first = ++at;
        for (uint digit; at < end && (digit = uint(byte(*at)) - '0') <= 9; ++at, scale /= 10) millisec += digit * scale;
        if (at == first) return false;
    }
    int zone = 0;
    if (at < end && *at == 'Z') {
        ++at;
    } else if (at < end) {
        if ((*at != '+' && *at != '-') || end - at != 6 || at[3] != ':') return false;
        uint hours = pair(at + 1), minutes = pair(at + 4);
        if (wrong || minutes > 59 || hours * 60 + minutes > uint(zoneLimit)) return false;
        zone = int(hours * 60 + minutes);
        if (*at == '-') zone = -zone;
        at += 6;
    }
    if (at != end) return false;

    // Only the days around the first can fall before it by their zone.
    if (year <= 1601 && !reaches1601(int(year), int(month), int(day), int(hour) * 60 + int(minute) - zone))
        return false;
    fields.year = int(year);
    fields.month = int(month);
    fields.day = int(day);
    fields.hour = int(hour);
    fields.minute = int(minute);
    fields.second = int(second);
    fields.millisec = int(millisec);
    fields.zone = zone;
    // 400 years are whole weeks.
    fields.dayOfWeek = int(ularge(daysTo(year < 1601 ? year + 400 : year, int(month)) + large(day)) % 7);
    return true;
}

int printDate(const DateFields& fields, char* out) {
    char* at = out;
    uint year = uint(fields.year);
    int yearDigits = 4;
    for (uint rest = year / 10000; rest; rest /= 10) ++yearDigits;
    at = put(at, year, yearDigits);
    *at++ = '-';
    at = put(at, uint(fields.month), 2);
    *at++ = '-';
    at = put(at, uint(fields.day), 2);
    *at++ = 'T';
    at = put(at, uint(fields.hour), 2);
    *at++ = ':';
    at = put(at, uint(fields.minute), 2);
    *at++ = ':';
    at = put(at, uint(fields.second), 2);
    if (fields.millisec) {
        *at++ = '.';
        at = put(at, uint(fields.millisec), 3);
    }
    if (!fields.zone) {
        *at++ = 'Z';
        return int(at - out);
    }
    uint zone = uint(fields.zone < 0 ? -fields.zone : fields.zone);
    *at++ = fields.zone < 0 ? '-' : '+';
    at = put(at, zone / 60, 2);
    *at++ = ':';
    at = put(at, zone % 60, 2);
    return int(at - out);
}

} // namespace orv::detail
