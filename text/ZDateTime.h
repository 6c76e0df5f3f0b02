#pragma once

#include "text/ZTime.h"

/// A moment as calendar fields, with the zone they are told in. 16 bytes; all 0 is the empty date. A field keeps what
/// it was set to, held within its own size; converting to a value carries what is out of range over into the next
/// field.
class ORV_API ZDateTime {
public:
    constexpr ZDateTime() = default;
    /// The moment of the absolute value, in UTC.
    explicit ZDateTime(const ZTime& time) { setValue(time.value()); }
    ZDateTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int millisec = 0);
    /// The wall clock, in the local zone.
    static ZDateTime currentDate();

    /// Whether any of year, month, day, hour, minute, second and millisecond is set.
    bool isValid() const {
        return yearField | monthField | dayField | hourField | minuteField | secondField | milliField;
    }

    int year() const { return yearField; }
    int month() const { return monthField; }
    int day() const { return dayField; }
    /// 0 is Sunday. Set by whatever makes a whole date; the setters of single fields leave it.
    int dayOfWeek() const { return weekField; }
    int hour() const { return hourField; }
    int minute() const { return minuteField; }
    int second() const { return secondField; }
    int msec() const { return milliField; }
    /// Minutes that the fields are ahead of UTC.
    int zone() const { return zoneField; }
    void setYear(int year) { yearField = year; }
    void setMonth(int month) { monthField = clip(month); }
    void setDay(int day) { dayField = clip(day); }
    void setDayOfWeek(int day) { weekField = clip(day); }
    void setHour(int hour) { hourField = clip(hour); }
    void setMinute(int minute) { minuteField = clip(minute); }
    void setSecond(int second) { secondField = clip(second); }
    void setMSec(int msec) { milliField = word(msec < 0 ? 0 : msec > 0xFFFF ? 0xFFFF : msec); }
    void setZone(int minutes);
    void setHMS(int hour, int minute, int second);

    /// The moment in UTC, in milliseconds since 1601; 0 for one before that, the largest for one beyond the range.
    large value() const;
    /// Takes the absolute value, in UTC.
    void setValue(large milliseconds);
    ZTime time() const { return ZTime(value()); }

    // Sums: the zone stays. A day past the month's end carries over. False, with the old date, for a moment before
    // 1601.
    bool addYear(int years);
    bool addMonth(int months);
    bool addDay(int days) { return addSpan(days, orv::detail::dayMillis); }
    bool addHour(int hours) { return addSpan(hours, orv::detail::hourMillis); }
    bool addMinute(int minutes) { return addSpan(minutes, orv::detail::minuteMillis); }
    bool addSecond(int seconds) { return addSpan(seconds, orv::detail::secondMillis); }
    bool addMSec(int msecs) { return addSpan(msecs, 1); }

    // Text

    /// Reads "YYYY-MM-DDThh:mm:ss", then perhaps a fraction of a second, then perhaps "Z", "+hh:mm" or "-hh:mm", the
    /// zone. False, with the date empty, for any other text, for a day that its month doesn't have, and for a moment
    /// before 1601. Nothing may stand before or behind it.
    bool setString(const ZString& text);
    /// The same form; milliseconds stand there if they aren't 0. Fields out of their range are carried over first.
    /// Empty for a date that is no moment from 1601 on, and without memory.
    ZString toString() const;
    /// A resource string run with year, month, day, hour, minute and second as %1 to %6; an internal one goes by its
    /// index.
    ZString toString(const ZString& format) const;

    /// Equal fields; the same moment in two zones isn't equal.
    bool operator==(const ZDateTime& other) const = default;
    /// By the moment.
    int compare(const ZDateTime& other) const { return time().compare(other.time()); }
    uint hashKey() const { return time().hashKey(); }

    orv::detail::DateFields fields() const;
    void setFields(const orv::detail::DateFields& fields);

private:
    static byte clip(int value) { return byte(value < 0 ? 0 : value > 0xFF ? 0xFF : value); }
    bool setMoment(orv::detail::DateFields fields);
    bool addSpan(large count, large unit);

    int yearField = 0;
    byte monthField = 0, dayField = 0, weekField = 0, hourField = 0, minuteField = 0, secondField = 0;
    int16 zoneField = 0;
    word milliField = 0;
};
static_assert(sizeof(ZDateTime) == 16);
