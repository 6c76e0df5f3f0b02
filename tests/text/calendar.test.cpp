#include "text/calendar.h"

#include "core/debug.h"
#include "text/ZDateTime.h"
#include "text/ZString.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

using namespace orv::detail;

namespace {
std::string printed(const DateFields& fields) {
    char text[dateTextRoom];
    return std::string(text, size_t(printDate(fields, text)));
}
std::string printed(large value) {
    DateFields fields;
    fieldsOf(value, fields);
    return printed(fields);
}
DateFields fieldsFrom(const std::string& text) {
    DateFields fields;
    EXPECT_TRUE(parseDate(text.data(), text.size(), fields)) << text;
    return fields;
}
large momentFrom(const std::string& text) {
    large value = -1;
    EXPECT_TRUE(momentOf(fieldsFrom(text), value)) << text;
    return value;
}
} // namespace

TEST(Calendar, KnownMoments) {
    struct Row {
        large value;
        const char* text;
        int dayOfWeek;
    } rows[] = {
        {0, "1601-01-01T00:00:00Z", 1},
        {dayMillis - 1, "1601-01-01T23:59:59.999Z", 1},
        {unixEpoch, "1970-01-01T00:00:00Z", 4},
        {unixEpoch + 951'782'400'000, "2000-02-29T00:00:00Z", 2},
        {unixEpoch + 4'107'542'399'000, "2100-02-28T23:59:59Z", 0},
        {unixEpoch + 253'402'300'799'999, "9999-12-31T23:59:59.999Z", 5},
        {unixEpoch + 253'402'300'800'000, "10000-01-01T00:00:00Z", 6},
    };
    for (auto& row : rows) {
        EXPECT_EQ(printed(row.value), row.text);
        EXPECT_EQ(momentFrom(row.text), row.value) << row.text;
        EXPECT_EQ(fieldsFrom(row.text).dayOfWeek, row.dayOfWeek) << row.text;
        EXPECT_EQ(ZTime(row.value).dayOfWeek(), row.dayOfWeek) << row.text;
    }
}

/// Every day of two eras, counted by the rules of the calendar.
TEST(Calendar, DaysFollowEachOther) {
    int year = 1601, month = 1, day = 1;
    for (large count = 0; count < 2 * 146'097; ++count) {
        DateFields fields;
        fieldsOf(count * dayMillis, fields);
        ASSERT_EQ(fields.year, year);
        ASSERT_EQ(fields.month, month);
        ASSERT_EQ(fields.day, day);
        ASSERT_EQ(fields.dayOfWeek, (count + 1) % 7);
        large back = -1;
        ASSERT_TRUE(momentOf(fields, back));
        ASSERT_EQ(back, count * dayMillis);
        bool leap = year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
        int last = month == 2 ? 28 + leap : month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
        if (++day > last) {
            day = 1;
            if (++month > 12) month = 1, ++year;
        }
    }
}

TEST(Calendar, ParsesZonesAndFractions) {
    struct Row {
        const char *text, *utc;
    } rows[] = {
        {"2023-06-01T00:30:00+02:00", "2023-05-31T22:30:00Z"},
        {"2023-12-31T23:30:00-01:45", "2024-01-01T01:15:00Z"},
        {"2023-06-01T12:00:00", "2023-06-01T12:00:00Z"},
        {"2023-06-01T12:00:00.5", "2023-06-01T12:00:00.500Z"},
        {"2023-06-01T12:00:00.12999", "2023-06-01T12:00:00.129Z"},
        {"1600-12-31T23:00:00-02:00", "1601-01-01T01:00:00Z"},
        {"2023-06-01T12:00:00.007+14:00", "2023-05-31T22:00:00.007Z"},
    };
    for (auto& row : rows) EXPECT_EQ(printed(momentFrom(row.text)), row.utc) << row.text;
    EXPECT_EQ(printed(fieldsFrom("2023-06-01T00:30:00-02:05")), "2023-06-01T00:30:00-02:05");
    EXPECT_EQ(fieldsFrom("1600-12-31T23:00:00-02:00").dayOfWeek, 0);
    EXPECT_EQ(momentFrom("999999999-01-01T00:00:00Z"), largestValue);
}

TEST(Calendar, RefusesWhatIsNoDate) {
    std::vector<std::string> rows = {"", "2023", "1600-12-31T23:59:59Z", "1601-01-01T00:00:00+00:01",
                                     "2023-01-01 00:00:00Z"};
    for (std::string date :
         {"2023-02-30", "2023-02-29", "1900-02-29", "2023-00-10", "2023-13-10", "2023-04-31", "2023-04-00", "2023-1-01",
          " 2023-01-01", "-2023-01-01", "02023-01-01", "1000000000-01-01", "202-01-01"})
        rows.push_back(date + "T00:00:00.00Z");
    for (std::string time :
         {"24:00:00Z", "00:60:00Z", "00:00:60Z", "00:00:00z", "00:00:00.Z", "00:00:00+14:01", "00:00:00+01:60",
          "00:00:00+1:00", "00:00:00+01:00 ", "00:00:00ZZ", "00:00:0", "00:00:00.1+"})
        rows.push_back("2023-01-01T" + time);
    for (const std::string& text : rows) {
        DateFields fields{7, 7, 7};
        EXPECT_FALSE(parseDate(text.data(), text.size(), fields)) << text;
        EXPECT_EQ(fields.year, 7) << text;
    }
    std::string zero("2023-01-01T00:00:00\0", 20);
    DateFields fields;
    EXPECT_FALSE(parseDate(zero.data(), zero.size(), fields));
}

TEST(Time, CarriesOverWhatIsOutOfRange) {
    using Change = bool (*)(ZTime&);
    struct Row {
        const char* from;
        Change change;
        const char* to; ///< null if it is refused
    } rows[] = {
        {"2024-01-15T00:00:00Z", [](ZTime& t) { return t.addMonth(-1); }, "2023-12-15T00:00:00Z"},
        {"2024-06-15T00:00:00Z", [](ZTime& t) { return t.addMonth(12); }, "2025-06-15T00:00:00Z"},
        {"2024-12-15T00:00:00Z", [](ZTime& t) { return t.addMonth(1); }, "2025-01-15T00:00:00Z"},
        {"2024-01-15T00:00:00Z", [](ZTime& t) { return t.addMonth(-25); }, "2021-12-15T00:00:00Z"},
        {"2024-01-15T00:00:00Z", [](ZTime& t) { return t.addMonth(400); }, "2057-05-15T00:00:00Z"},
        {"2023-01-31T10:00:00Z", [](ZTime& t) { return t.addMonth(1); }, "2023-03-03T10:00:00Z"},
        {"2024-02-29T00:00:00Z", [](ZTime& t) { return t.addYear(1); }, "2025-03-01T00:00:00Z"},
        {"2023-06-15T00:00:00Z", [](ZTime& t) { return t.setDay(31); }, "2023-07-01T00:00:00Z"},
        {"2023-06-15T00:00:00Z", [](ZTime& t) { return t.setDay(0); }, "2023-05-31T00:00:00Z"},
        {"2023-06-15T00:00:00Z", [](ZTime& t) { return t.setMonth(-11); }, "2022-01-15T00:00:00Z"},
        {"2023-06-15T00:00:00Z", [](ZTime& t) { return t.setMonth(25); }, "2025-01-15T00:00:00Z"},
        {"2023-06-15T00:00:00Z", [](ZTime& t) { return t.setMSec(-1); }, "2023-06-14T23:59:59.999Z"},
        {"2023-06-15T12:00:00Z", [](ZTime& t) { return t.setHMS(25, 61, 61); }, "2023-06-16T02:02:01Z"},
        {"2023-06-15T12:00:00Z", [](ZTime& t) { return t.setZone(90); }, "2023-06-15T10:30:00Z"},
        {"2023-06-15T12:00:00Z", [](ZTime& t) { return t.setYear(1600); }, nullptr},
        {"1601-03-15T12:00:00Z", [](ZTime& t) { return t.addMonth(-3); }, nullptr},
        {"2023-06-15T12:00:00Z", [](ZTime& t) { return t.addYear(INT_MIN); }, nullptr},
    };
    for (auto& row : rows) {
        for (int sign : {1, -1}) {
            large from = sign * momentFrom(row.from);
            ZTime time(from);
            ASSERT_EQ(row.change(time), row.to != nullptr) << row.from << " to " << (row.to ? row.to : "nothing");
            EXPECT_EQ(time.value(), row.to ? sign * momentFrom(row.to) : from) << row.from << " to " << row.to;
        }
    }
}

TEST(Time, ConversionsStopAtTheEndsOfTheRange) {
    ZTime time;
    for (auto [seconds, value] : {std::pair{std::nan(""), 0LL},
                                  {std::numeric_limits<double>::infinity(), largestValue},
                                  {-1e300, -largestValue - 1},
                                  {1.9999, 1999LL},
                                  {-1.9999, -1999LL}}) {
        time.setSeconds(seconds);
        EXPECT_EQ(time.value(), value) << seconds;
    }
    ZTime smallest(-largestValue - 1), largest(largestValue);
    EXPECT_EQ(smallest.year(), largest.year());
    EXPECT_EQ(smallest.msec(), 807);
    EXPECT_EQ((smallest + smallest).value(), smallest.value());
    EXPECT_EQ((largest + largest).value(), largestValue);
    EXPECT_EQ((smallest - largest).value(), smallest.value());
    EXPECT_EQ((largest - smallest).value(), largestValue);
    largest.addDay(INT_MAX);
    EXPECT_EQ(largest.value(), largestValue);
    EXPECT_TRUE(largest.setYear(1'000'000'000));
    EXPECT_EQ(largest.value(), largestValue);
    EXPECT_TRUE(largest.addYear(INT_MAX));
    EXPECT_EQ(largest.value(), largestValue);
    EXPECT_EQ(ZTime(1'000'000'000, 1, 1, 0, 0, 0).value(), largestValue);
    EXPECT_EQ(ZTime(2023, 1, 1, 0, 0, std::nan("")), ZTime(momentFrom("2023-01-01T00:00:00Z")));
    EXPECT_EQ(ZTime(2, 3, 1.9999).value(), 2 * 60 * 60 + 3 * 60 + 1999);
    EXPECT_EQ(ZTime(INT_MAX, INT_MAX, 1e300).value(), largestValue);
}

TEST(Time, StopWatchWorksInPlace) {
    ZTime watch, before = ZTime::currentTime();
    watch.stop();
    EXPECT_GE(watch, before);
    watch = ZTime(ZTime::currentTime().value() - 5000);
    EXPECT_GE(watch.ellapsedSeconds(), 5.0);
    ZTime span = watch.restart();
    EXPECT_GE(span.value(), 5000);
    EXPECT_LT(watch.ellapsed().value(), 5000);
    EXPECT_NEAR(ZTime::currentSeconds(), ZTime::currentTime().seconds(), 1.0);

    ZTime now = ZTime::currentTime(), wall = now;
    wall.toAbsolute();
    EXPECT_NEAR(real(wall.value()), real(ZTime::systemTime().value()), 2000);
    EXPECT_GE(wall.year(), 2020);
    EXPECT_EQ(wall.toSystem(), now);
}

TEST(Time, Prints) {
    static std::string line;
    zsetdebugsink([](const char* text) { line = text; });
    ZTime span((61 * 60 + 7) * 1000 + 42);
    span.log("draw");
    EXPECT_EQ(line, "draw: 01:07:042");
    span.log("draw", 12);
    EXPECT_EQ(line, "draw[12]: 01:07:042");
    ZTime(-5).log(std::string(300, 'x').c_str());
    EXPECT_EQ(line, std::string(127, 'x'));
    zsetdebugsink(nullptr);
    testing::internal::CaptureStdout();
    span.print("draw");
    span.print(nullptr);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "draw: 01:07:042\n: 01:07:042\n");
}

TEST(DateTime, FieldsStandInOrder) {
    ZDateTime date(2023, 6, 15, 12, 34, 56, 789);
    date.setZone(-90);
    auto bytes = reinterpret_cast<const byte*>(&date);
    auto at16 = [&](int at) { return int16(bytes[at] | bytes[at + 1] << 8); };
    EXPECT_EQ(at16(0), 2023);
    EXPECT_EQ(std::vector<int>(bytes + 4, bytes + 10), (std::vector<int>{6, 15, 4, 12, 34, 56}));
    EXPECT_EQ(at16(10), -90);
    EXPECT_EQ(at16(12), 789);
    EXPECT_EQ(date.value(), momentFrom("2023-06-15T12:34:56.789-01:30"));
}

TEST(DateTime, EmptyAndExtremeDates) {
    ZDateTime date;
    EXPECT_FALSE(date.isValid());
    EXPECT_EQ(date.value(), 0);
    date.setDayOfWeek(3);
    date.setZone(60);
    EXPECT_FALSE(date.isValid());
    date.setMSec(1);
    EXPECT_TRUE(date.isValid());
    date.setValue(-largestValue - 1);
    EXPECT_EQ(date.value(), largestValue);
    date.setMonth(300);
    date.setZone(100'000);
    EXPECT_EQ(date.month(), 255);
    EXPECT_EQ(date.zone(), zoneLimit);
    EXPECT_EQ(ZDateTime(1500, 1, 1).value(), 0);
    EXPECT_EQ(ZTime(ZDateTime(ZTime(-5'000))).value(), 5'000);
}

TEST(DateTime, TextForms) {
    ZDateTime date;
    for (const ZString& text : {ZString("2023-06-15T12:34:56.789+02:00"), ZString(u"2023-06-15T12:34:56.789+02:00")}) {
        ASSERT_TRUE(date.setString(text));
        EXPECT_EQ(date.dayOfWeek(), 4);
        EXPECT_EQ(date.value(), momentFrom("2023-06-15T10:34:56.789Z"));
        EXPECT_TRUE(date.toString() == "2023-06-15T12:34:56.789+02:00");
        EXPECT_TRUE(ZTime(text).toString() == "2023-06-15T10:34:56.789Z");
    }
    EXPECT_TRUE(date.toString("%3.%2.%1 %4-%5-%6") == "15.6.2023 12-34-56");
    EXPECT_TRUE(ZTime(date).toString("%4") == "10");
    date.setDay(31);
    EXPECT_TRUE(date.toString() == "2023-07-01T12:34:56.789+02:00");
    EXPECT_FALSE(date.setString("2023-02-30T00:00:00Z"));
    EXPECT_FALSE(date.isValid());
    EXPECT_TRUE(date.toString().isEmpty());
    ZTime time(5);
    EXPECT_FALSE(time.setString("x"));
    EXPECT_EQ(time.value(), 0);
    EXPECT_TRUE(ZTime(-1000).toString() == "1601-01-01T00:00:01Z");
}

TEST(DateTime, SumsKeepTheZone) {
    ZDateTime date(2023, 12, 31, 23, 30);
    date.setZone(120);
    EXPECT_TRUE(date.addHour(1));
    EXPECT_EQ(printed(date.fields()), "2024-01-01T00:30:00+02:00");
    EXPECT_EQ(date.dayOfWeek(), 1);
    EXPECT_TRUE(date.addMonth(1));
    EXPECT_TRUE(date.addDay(29));
    EXPECT_EQ(printed(date.fields()), "2024-03-01T00:30:00+02:00");
    EXPECT_FALSE(date.addYear(-500));
    EXPECT_FALSE(date.addDay(INT_MIN));
    EXPECT_EQ(printed(date.fields()), "2024-03-01T00:30:00+02:00");
    ZDateTime now = ZDateTime::currentDate();
    EXPECT_NEAR(real(now.value()), real(ZTime::systemTime().value()), 2000);
}
