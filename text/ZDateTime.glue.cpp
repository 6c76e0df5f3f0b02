#include "text/ZDateTime.h"

#include "object/glue.h"
#include "text/ZString.h"
#include "text/ZTime.h"
#include "text/dateRows.h"

namespace orv::glue {

template <> struct Table<ZDateTime> : Declares<ZDateTime> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZTime&)),
        ORV_CONSTRUCTOR((int, int, int, int, int, int, int)),
        ORV_STATIC(ZDateTime, currentDate, ()),
        ORV_DATE_ROWS(void, bool),
        ORV_METHOD(void, setDayOfWeek, (int), ),
        ORV_METHOD(ZTime, time, (), const),
        ORV_METHOD(int, compare, (const ZDateTime&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZDateTime);
