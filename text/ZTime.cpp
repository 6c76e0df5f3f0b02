#include "text/ZTime.h"

#include "core/debug.h"
#include "text/ZDateTime.h"
#include "text/ZString.h"
#include "toolkit/clock.h"

#include <cstdio>

using orv::detail::DateFields;

ZTime::ZTime(const ZDateTime& date) : millis(date.value()) {}

ZTime::ZTime(int a, int b, real c)
    : millis(orv::detail::addSaturated((large(a) * 60 + b) * 60, orv::detail::truncSaturated(c * 1000))) {}

ZTime::ZTime(int year, int month, int day, int hour, int minute, real seconds) {
    large whole = orv::detail::truncSaturated(seconds);
    constexpr large most = 0x7FFFFFFF;
    whole = whole > most ? most : whole < -most ? -most : whole;
    setFields(DateFields{year, month, day, hour, minute, int(whole)});
}

ZTime ZTime::currentTime() { return ZTime(toolkit::processClock()); }
real ZTime::currentSeconds() { return real(toolkit::processClockNanos()) / 1e9; }
ZTime ZTime::systemTime() { return ZTime(toolkit::wallClock() + orv::detail::unixEpoch); }
ZTime ZTime::startTime() { return ZTime(toolkit::processStart() + orv::detail::unixEpoch); }

ZTime ZTime::restart() {
    ZTime now = currentTime(), span = now - *this;
    *this = now;
    return span;
}

DateFields ZTime::fields() const {
    DateFields fields;
    orv::detail::fieldsOf(orv::detail::magnitude(millis), fields);
    return fields;
}

bool ZTime::setFields(const DateFields& fields) {
    large moment;
    if (!orv::detail::momentOf(fields, moment)) return false;
    millis = negative() ? -moment : moment;
    return true;
}

bool ZTime::setField(int DateFields::*field, int value) {
    DateFields changed = fields();
    changed.*field = value;
    return setFields(changed);
}

bool ZTime::setZone(int minutes) {
    constexpr int most = orv::detail::zoneLimit;
    return setField(&DateFields::zone, minutes > most ? most : minutes < -most ? -most : minutes);
}

bool ZTime::setHMS(int hour, int minute, int second) {
    DateFields changed = fields();
    changed.hour = hour;
    changed.minute = minute;
    changed.second = second;
    return setFields(changed);
}

bool ZTime::setDateTime(const ZDateTime& date) { return setFields(date.fields()); }

ZTime ZTime::operator-(const ZTime& other) const {
    large difference;
    if (__builtin_sub_overflow(millis, other.millis, &difference))
        difference = negative() ? -orv::detail::largestValue - 1 : orv::detail::largestValue;
    return ZTime(difference);
}

bool ZTime::addYear(int years) {
    DateFields changed = fields();
    orv::detail::addYears(changed, years);
    return setFields(changed);
}

bool ZTime::addMonth(int months) {
    DateFields changed = fields();
    orv::detail::addMonths(changed, months);
    return setFields(changed);
}

void ZTime::addSpan(large count, large unit) {
    millis = orv::detail::addSaturated(millis, orv::detail::mulSaturated(count, unit));
}

bool ZTime::setString(const ZString& text) {
    orv::detail::TextIn<char> bytes(text.view());
    DateFields fields;
    millis = 0;
    return orv::detail::parseDate(bytes.text, size_t(bytes.length), fields) && setFields(fields);
}

ZString ZTime::toString() const { return ZDateTime(*this).toString(); }
ZString ZTime::toString(const ZString& format) const { return ZDateTime(*this).toString(format); }

void ZTime::print(const char* label) const {
    DateFields at = fields();
    std::printf("%s: %.2d:%.2d:%.3d\n", label ? label : "", at.minute, at.second, at.millisec);
}

void ZTime::log(const char* label) const {
    DateFields at = fields();
    char line[128];
    std::snprintf(line, sizeof line, "%s: %.2d:%.2d:%.3d", label ? label : "", at.minute, at.second, at.millisec);
    zdebug("%s", line);
}

void ZTime::log(const char* label, int count) const {
    DateFields at = fields();
    char line[128];
    std::snprintf(line, sizeof line, "%s[%d]: %.2d:%.2d:%.3d", label ? label : "", count, at.minute, at.second,
                  at.millisec);
    zdebug("%s", line);
}
