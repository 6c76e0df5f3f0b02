#include "text/ZTime.h"

#include "object/glue.h"
#include "text/ZDateTime.h"
#include "text/ZString.h"

namespace orv::glue {

template <> struct Table<ZTime> : Declares<ZTime> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((large)),
        ORV_CONSTRUCTOR((const ZDateTime&)),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_CONSTRUCTOR((int, int, real)),
        ORV_CONSTRUCTOR((int, int, int, int, int, real)),
        ORV_STATIC(ZTime, currentTime, ()),
        ORV_STATIC(real, currentSeconds, ()),
        ORV_STATIC(ZTime, systemTime, ()),
        ORV_STATIC(ZTime, startTime, ()),
        ORV_METHOD(void, start, (), ),
        ORV_METHOD(void, stop, (), ),
        ORV_METHOD(ZTime, restart, (), ),
        ORV_METHOD(ZTime, ellapsed, (), const),
        ORV_METHOD(real, ellapsedSeconds, (), const),
        ORV_METHOD(ZTime&, toAbsolute, (), ),
        ORV_METHOD(ZTime&, toSystem, (), ),
        ORV_METHOD(large, value, (), const),
        ORV_METHOD(void, setValue, (large), ),
        ORV_METHOD(real, seconds, (), const),
        ORV_METHOD(void, setSeconds, (real), ),
        ORV_METHOD(bool, isValid, (), const),
        ORV_METHOD(bool, negative, (), const),
        ORV_METHOD(int, year, (), const),
        ORV_METHOD(int, month, (), const),
        ORV_METHOD(int, day, (), const),
        ORV_METHOD(int, dayOfWeek, (), const),
        ORV_METHOD(int, hour, (), const),
        ORV_METHOD(int, minute, (), const),
        ORV_METHOD(int, second, (), const),
        ORV_METHOD(int, msec, (), const),
        ORV_METHOD(int, zone, (), const),
        ORV_METHOD(bool, setYear, (int), ),
        ORV_METHOD(bool, setMonth, (int), ),
        ORV_METHOD(bool, setDay, (int), ),
        ORV_METHOD(bool, setHour, (int), ),
        ORV_METHOD(bool, setMinute, (int), ),
        ORV_METHOD(bool, setSecond, (int), ),
        ORV_METHOD(bool, setMSec, (int), ),
        ORV_METHOD(bool, setZone, (int), ),
        ORV_METHOD(bool, setHMS, (int, int, int), ),
        ORV_METHOD(bool, setDateTime, (const ZDateTime&), ),
        ORV_METHOD(bool, addYear, (int), ),
        ORV_METHOD(bool, addMonth, (int), ),
        ORV_METHOD(void, addDay, (int), ),
        ORV_METHOD(void, addHour, (int), ),
        ORV_METHOD(void, addMinute, (int), ),
        ORV_METHOD(void, addSecond, (int), ),
        ORV_METHOD(void, addMSec, (int), ),
        ORV_METHOD(int, compare, (const ZTime&), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_METHOD(bool, setString, (const ZString&), ),
        ORV_METHOD(ZString, toString, (), const),
        ORV_METHOD(ZString, toString, (const ZString&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZTime);
