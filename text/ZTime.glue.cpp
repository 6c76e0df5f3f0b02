#include "text/ZTime.h"

#include "object/glue.h"
#include "text/ZDateTime.h"
#include "text/ZString.h"
#include "text/dateRows.h"

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
        ORV_METHOD(real, seconds, (), const),
        ORV_METHOD(void, setSeconds, (real), ),
        ORV_METHOD(bool, negative, (), const),
        ORV_DATE_ROWS(bool, void),
        ORV_METHOD(bool, setDateTime, (const ZDateTime&), ),
        ORV_METHOD(int, compare, (const ZTime&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZTime);
