#pragma once

#include "text/calendar.h"
#include "text/forward.h"

/// A signed count of milliseconds: a moment counted from 1601-01-01 UTC, a span, or a stop-watch. A moment isn't
/// negative; calendar operations work on the absolute value and put the sign back. Sums stop at the ends of the range.
class ORV_API ZTime {
public:
    constexpr ZTime() = default;
    constexpr explicit ZTime(large milliseconds) : millis(milliseconds) {}
    /// The moment of a date; 0 for a date before 1601, hence for an empty one.
    explicit ZTime(const ZDateTime& date);
    /// The moment that a text names; 0 for a text that is no date.
    explicit ZTime(const ZString& text) { setString(text); }
    /// `(a * 60 + b) * 60 + trunc(c * 1000)`: the two integers come out as seconds beside a value in milliseconds.
    ZTime(int a, int b, real c);
    /// The moment of these fields in UTC; parts of a second are dropped. Fields out of their range carry over; 0 for a
    /// moment before 1601.
    ZTime(int year, int month, int day, int hour, int minute, real seconds);

    // Clock
    /// Milliseconds since the process began.
    static ZTime currentTime();
    /// Seconds since the process began, to the nanosecond.
    static real currentSeconds();
    /// The wall clock.
    static ZTime systemTime();
    /// When the process began, on the wall clock.
    static ZTime startTime();
    void start() { *this = currentTime(); }
    /// From now on holds the span since `start`; the whole clock if it wasn't started.
    void stop() { *this = ellapsed(); }
    /// The span since `start`, which starts anew.
    ZTime restart();
    ZTime ellapsed() const { return currentTime() - *this; }
    real ellapsedSeconds() const { return ellapsed().seconds(); }
    /// From the process clock to the wall clock, in place, and back.
    ZTime& toAbsolute() { return *this = *this + startTime(); }
    ZTime& toSystem() { return *this = *this - startTime(); }

    // Value
    constexpr large value() const { return millis; }
    constexpr void setValue(large milliseconds) { millis = milliseconds; }
    real seconds() const { return real(millis) / 1000.0; }
    /// Parts of a millisecond are dropped; 0 for what isn't a number.
    void setSeconds(real seconds) { millis = orv::detail::truncSaturated(seconds * 1000.0); }
    constexpr bool isValid() const { return millis != 0; }
    constexpr bool negative() const { return millis < 0; }

    // Calendar, read: of the absolute value, in UTC
    int year() const { return fields().year; }
    int month() const { return fields().month; }
    int day() const { return fields().day; }
    /// 0 is Sunday.
    int dayOfWeek() const { return fields().dayOfWeek; }
    int hour() const { return fields().hour; }
    int minute() const { return fields().minute; }
    int second() const { return fields().second; }
    int msec() const { return fields().millisec; }
    /// Minutes ahead of UTC: always 0, since a moment has no zone of its own.
    int zone() const { return fields().zone; }

    // Calendar, write: a field out of its range carries over (the 31st of June is the 1st of July). False, with the old
    // value, for a moment before 1601.
    bool setYear(int year) { return setField(&orv::detail::DateFields::year, year); }
    bool setMonth(int month) { return setField(&orv::detail::DateFields::month, month); }
    bool setDay(int day) { return setField(&orv::detail::DateFields::day, day); }
    bool setHour(int hour) { return setField(&orv::detail::DateFields::hour, hour); }
    bool setMinute(int minute) { return setField(&orv::detail::DateFields::minute, minute); }
    bool setSecond(int second) { return setField(&orv::detail::DateFields::second, second); }
    bool setMSec(int msec) { return setField(&orv::detail::DateFields::millisec, msec); }
    /// Takes the fields as those of a zone so many minutes ahead of UTC, and goes to the moment in UTC.
    bool setZone(int minutes);
    bool setHMS(int hour, int minute, int second);
    bool setDateTime(const ZDateTime& date);

    // Arithmetic
    ZTime operator+(const ZTime& other) const { return ZTime(orv::detail::addSaturated(millis, other.millis)); }
    ZTime operator-(const ZTime& other) const;
    /// A day past the month's end carries over into the next month. False as for the calendar writes.
    bool addYear(int years);
    bool addMonth(int months);
    void addDay(int days) { addSpan(days, orv::detail::dayMillis); }
    void addHour(int hours) { addSpan(hours, orv::detail::hourMillis); }
    void addMinute(int minutes) { addSpan(minutes, orv::detail::minuteMillis); }
    void addSecond(int seconds) { addSpan(seconds, orv::detail::secondMillis); }
    void addMSec(int msecs) { addSpan(msecs, 1); }

    constexpr bool operator==(const ZTime& other) const { return millis == other.millis; }
    constexpr bool operator<(const ZTime& other) const { return millis < other.millis; }
    constexpr bool operator>(const ZTime& other) const { return millis > other.millis; }
    constexpr bool operator<=(const ZTime& other) const { return millis <= other.millis; }
    constexpr bool operator>=(const ZTime& other) const { return millis >= other.millis; }
    int compare(const ZTime& other) const { return (millis > other.millis) - (millis < other.millis); }
    uint hashKey() const { return uint(millis) ^ uint(ularge(millis) >> 32); }

    // Text: "YYYY-MM-DDThh:mm:ss", perhaps with milliseconds and a zone, see `ZDateTime::setString`
    /// False, with the value 0, for a text that is no date.
    bool setString(const ZString& text);
    /// The date of the absolute value, in UTC; empty without memory.
    ZString toString() const;
    /// A resource string run with year, month, day, hour, minute and second as %1 to %6; an internal one goes by its
    /// index.
    ZString toString(const ZString& format) const;
    /// Writes "label: mm:ss:mmm" and a line end to the standard output.
    void print(const char* label) const;
    /// Writes the same, without a line end and at most 127 characters, to the debug log; with a count, "label[count]:
    /// …".
    void log(const char* label) const;
    void log(const char* label, int count) const;

private:
    orv::detail::DateFields fields() const;
    bool setFields(const orv::detail::DateFields& fields);
    bool setField(int orv::detail::DateFields::*field, int value);
    void addSpan(large count, large unit);

    large millis = 0;
};
static_assert(sizeof(ZTime) == 8);
