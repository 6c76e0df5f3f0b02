#include "text/ZDateTime.h"

#include "object/glue.h"
#include "text/ZString.h"
#include "text/ZTime.h"

namespace orv::glue {

template <> struct Table<ZDateTime> : Declares<ZDateTime> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZTime&)),
        ORV_CONSTRUCTOR((int, int, int, int, int, int, int)),
        ORV_STATIC(ZDateTime, currentDate, ()),
        ORV_METHOD(bool, isValid, (), const),
        ORV_METHOD(int, year, (), const),
        ORV_METHOD(int, month, (), const),
        ORV_METHOD(int, day, (), const),
        ORV_METHOD(int, dayOfWeek, (), const),
        ORV_METHOD(int, hour, (), const),
        ORV_METHOD(int, minute, (), const),
        ORV_METHOD(int, second, (), const),
        ORV_METHOD(int, msec, (), const),
        ORV_METHOD(int, zone, (), const),
        ORV_METHOD(void, setYear, (int), ),
        ORV_METHOD(void, setMonth, (int), ),
        ORV_METHOD(void, setDay, (int), ),
        ORV_METHOD(void, setDayOfWeek, (int), ),
        ORV_METHOD(void, setHour, (int), ),
        ORV_METHOD(void, setMinute, (int), ),
        ORV_METHOD(void, setSecond, (int), ),
        ORV_METHOD(void, setMSec, (int), ),
        ORV_METHOD(void, setZone, (int), ),
        ORV_METHOD(void, setHMS, (int, int, int), ),
        ORV_METHOD(large, value, (), const),
        ORV_METHOD(void, setValue, (large), ),
        ORV_METHOD(ZTime, time, (), const),
        ORV_METHOD(bool, addYear, (int), ),
        ORV_METHOD(bool, addMonth, (int), ),
        ORV_METHOD(bool, addDay, (int), ),
        ORV_METHOD(bool, addHour, (int), ),
        ORV_METHOD(bool, addMinute, (int), ),
        ORV_METHOD(bool, addSecond, (int), ),
        ORV_METHOD(bool, addMSec, (int), ),
        ORV_METHOD(bool, setString, (const ZString&), ),
        ORV_METHOD(ZString, toString, (), const),
        ORV_METHOD(ZString, toString, (const ZString&), const),
        ORV_METHOD(int, compare, (const ZDateTime&), const),
        ORV_METHOD(uint, hashKey, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZDateTime);
