#pragma once

/// Rows of a class that reads and writes a date by its fields. `set` and `add` are what its setters, and `addDay` and
/// those of shorter times, answer. For files that have the declaration layer.
#define ORV_DATE_ROWS(set, add)                                                                                        \
    ORV_METHOD(bool, isValid, (), const), ORV_METHOD(int, year, (), const), ORV_METHOD(int, month, (), const),         \
        ORV_METHOD(int, day, (), const), ORV_METHOD(int, dayOfWeek, (), const), ORV_METHOD(int, hour, (), const),      \
        ORV_METHOD(int, minute, (), const), ORV_METHOD(int, second, (), const), ORV_METHOD(int, msec, (), const),      \
        ORV_METHOD(int, zone, (), const), ORV_METHOD(set, setYear, (int), ), ORV_METHOD(set, setMonth, (int), ),       \
        ORV_METHOD(set, setDay, (int), ), ORV_METHOD(set, setHour, (int), ), ORV_METHOD(set, setMinute, (int), ),      \
        ORV_METHOD(set, setSecond, (int), ), ORV_METHOD(set, setMSec, (int), ), ORV_METHOD(set, setZone, (int), ),     \
        ORV_METHOD(set, setHMS, (int, int, int), ), ORV_METHOD(large, value, (), const),                               \
        ORV_METHOD(void, setValue, (large), ), ORV_METHOD(bool, addYear, (int), ),                                     \
        ORV_METHOD(bool, addMonth, (int), ), ORV_METHOD(add, addDay, (int), ), ORV_METHOD(add, addHour, (int), ),      \
        ORV_METHOD(add, addMinute, (int), ), ORV_METHOD(add, addSecond, (int), ), ORV_METHOD(add, addMSec, (int), ),   \
        ORV_METHOD(bool, setString, (const ZString&), ), ORV_METHOD(ZString, toString, (), const),                     \
        ORV_METHOD(ZString, toString, (const ZString&), const), ORV_METHOD(uint, hashKey, (), const)
