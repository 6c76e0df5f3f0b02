#include "text/ZDateTime.h"

#include "text/ZString.h"
#include "toolkit/clock.h"

using orv::detail::DateFields;

ZDateTime::ZDateTime(int year, int month, int day, int hour, int minute, int second, int millisec) {
    setFields(DateFields{year, month, day, hour, minute, second, millisec});
    large moment;
    if (!orv::detail::momentOf(fields(), moment)) return;
    DateFields known;
    orv::detail::fieldsOf(moment, known);
    weekField = byte(known.dayOfWeek);
}

ZDateTime ZDateTime::currentDate() {
    large now = toolkit::wallClock();
    int zone = toolkit::zoneMinutes(now);
    ZDateTime date;
    date.setValue(now + orv::detail::unixEpoch + zone * orv::detail::minuteMillis);
    date.setZone(zone);
    return date;
}

void ZDateTime::setZone(int minutes) {
    constexpr int most = orv::detail::zoneLimit;
    zoneField = int16(minutes > most ? most : minutes < -most ? -most : minutes);
}

void ZDateTime::setHMS(int hour, int minute, int second) {
    setHour(hour);
    setMinute(minute);
    setSecond(second);
}

DateFields ZDateTime::fields() const {
    return {yearField, monthField, dayField, hourField, minuteField, secondField, milliField, zoneField, weekField};
}

void ZDateTime::setFields(const DateFields& fields) {
    setYear(fields.year);
    setMonth(fields.month);
    setDay(fields.day);
    setDayOfWeek(fields.dayOfWeek);
    setHMS(fields.hour, fields.minute, fields.second);
    setZone(fields.zone);
    setMSec(fields.millisec);
}

large ZDateTime::value() const {
    large moment = 0;
    return orv::detail::momentOf(fields(), moment) ? moment : 0;
}

void ZDateTime::setValue(large milliseconds) {
    DateFields fields;
    orv::detail::fieldsOf(orv::detail::magnitude(milliseconds), fields);
    yearField = fields.year;
    monthField = byte(fields.month);
    dayField = byte(fields.day);
    weekField = byte(fields.dayOfWeek);
    hourField = byte(fields.hour);
    minuteField = byte(fields.minute);
    secondField = byte(fields.second);
    zoneField = 0;
    milliField = word(fields.millisec);
}

/// Brings the fields into their ranges and takes them over; the zone stays out of it.
bool ZDateTime::setMoment(DateFields fields) {
    int zone = fields.zone;
    fields.zone = 0;
    large moment;
    if (!orv::detail::momentOf(fields, moment)) return false;
    orv::detail::fieldsOf(moment, fields);
    fields.zone = zone;
    setFields(fields);
    return true;
}

bool ZDateTime::addYear(int years) {
    DateFields changed = fields();
    orv::detail::addYears(changed, years);
    return setMoment(changed);
}

bool ZDateTime::addMonth(int months) {
    DateFields changed = fields();
    orv::detail::addMonths(changed, months);
    return setMoment(changed);
}

bool ZDateTime::addSpan(large count, large unit) {
    DateFields now = fields();
    now.zone = 0;
    large moment;
    if (!orv::detail::momentOf(now, moment)) return false;
    moment = orv::detail::addSaturated(moment, orv::detail::mulSaturated(count, unit));
    if (moment < 0) return false;
    orv::detail::fieldsOf(moment, now);
    now.zone = zoneField;
    setFields(now);
    return true;
}

bool ZDateTime::setString(const ZString& text) {
    orv::detail::TextIn<char> bytes(text.view());
    DateFields fields;
    bool valid = orv::detail::parseDate(bytes.text, size_t(bytes.length), fields);
    setFields(fields);
    return valid;
}

ZString ZDateTime::toString() const {
    ZDateTime carried(*this);
    if (!carried.setMoment(fields())) return {};
    char text[orv::detail::dateTextRoom];
    int length = orv::detail::printDate(carried.fields(), text);
    ZString printed;
    printed.set(text, length);
    return printed;
}

ZString ZDateTime::toString(const ZString& format) const {
    ZString text(format);
    return text.execResA("iiiiii", year(), month(), day(), hour(), minute(), second()) ? text : ZString();
}
