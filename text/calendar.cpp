#include "text/calendar.h"

namespace orv::detail {

namespace {

// The day counts follow Howard Hinnant, "chrono-Compatible Low-Level Date Algorithms": years begin in March, so that
// the leap day is a year's last, and 400 of them make an era of equal length. Here the eras begin on 1600-03-01.
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
    ularge shifted = ularge(year - 1600 - (month <= 2));
    ularge era = shifted / 400, yearOfEra = shifted % 400;
    ularge dayOfYear = (153 * uint(month > 2 ? month - 3 : month + 9) + 2) / 5;
    return large(era * eraDays + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear) - daysBefore1601;
}

/// The years to add so that the month comes to lie in 1 to 12.
large yearsIn(large month) { return month > 12 ? (month - 13) / 12 + 1 : month < 1 ? month / 12 - 1 : 0; }

/// Reads exactly `count` digits at `at`.
bool digits(const char* at, int count, uint& value) {
    uint sum = 0;
    for (int i = 0; i < count; ++i) {
        uint digit = uint(byte(at[i])) - '0';
        if (digit > 9) return false;
        sum = sum * 10 + digit;
    }
    value = sum;
    return true;
}

char* put(char* out, uint value, int count) {
    for (int i = count; i > 0; value /= 10) out[--i] = char('0' + value % 10);
    return out + count;
}

} // namespace

void fieldsOf(large value, DateFields& fields) {
    ularge days = ularge(value) / ularge(dayMillis);
    uint rest = uint(ularge(value) % ularge(dayMillis));
    ularge shifted = days + ularge(daysBefore1601);
    ularge era = shifted / eraDays;
    uint dayOfEra = uint(shifted % eraDays);
    uint yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    uint dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    uint month = (5 * dayOfYear + 2) / 153;
    fields.day = int(dayOfYear - (153 * month + 2) / 5 + 1);
    fields.month = int(month < 10 ? month + 3 : month - 9);
    fields.year = int(1600 + yearOfEra + era * 400 + (fields.month <= 2));
    fields.dayOfWeek = int((days + 1) % 7);
    fields.hour = int(rest / uint(hourMillis));
    fields.minute = int(rest / uint(minuteMillis) % 60);
    fields.second = int(rest / 1000 % 60);
    fields.millisec = int(rest % 1000);
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
    days += rest / dayMillis;
    rest %= dayMillis;
    if (rest < 0) {
        rest += dayMillis;
        --days;
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
    if (length < 19) return false;
    size_t yearDigits = 4;
    while (yearDigits < 10 && text[yearDigits] != '-') ++yearDigits;
    if (yearDigits > 9 || length < yearDigits + 15 || (yearDigits > 4 && text[0] == '0')) return false;

    uint year, month, day, hour, minute, second, millisec = 0;
    const char *at = text + yearDigits, *end = text + length;
    if (!digits(text, int(yearDigits), year) || at[0] != '-' || !digits(at + 1, 2, month) || at[3] != '-' ||
        !digits(at + 4, 2, day) || at[6] != 'T' || !digits(at + 7, 2, hour) || at[9] != ':' ||
        !digits(at + 10, 2, minute) || at[12] != ':' || !digits(at + 13, 2, second))
        return false;
    if (month < 1 || month > 12 || day < 1 || day > daysIn(year, month) || hour > 23 || minute > 59 || second > 59)
        return false;
    at += 15;

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
        uint hours, minutes;
        if ((*at != '+' && *at != '-') || end - at != 6 || !digits(at + 1, 2, hours) || at[3] != ':' ||
            !digits(at + 4, 2, minutes) || minutes > 59 || hours * 60 + minutes > uint(zoneLimit))
            return false;
        zone = int(hours * 60 + minutes);
        if (*at == '-') zone = -zone;
        at += 6;
    }
    if (at != end) return false;

    DateFields read{int(year), int(month), int(day), int(hour), int(minute), int(second), int(millisec), zone};
    // Only the days around the first can fall before it by their zone.
    large value;
    if (year <= 1601 && !momentOf(read, value)) return false;
    // 400 years are whole weeks.
    read.dayOfWeek = int((daysTo(year < 1601 ? year + 400 : year, int(month)) + large(day)) % 7);
    fields = read;
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
