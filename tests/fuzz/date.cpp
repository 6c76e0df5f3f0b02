#include "text/calendar.h"

#include <cstdlib>
#include <cstring>

using namespace orv::detail;

static void check(bool holds) {
    if (!holds) std::abort();
}

/// What parses prints as a text that parses to the same moment; what doesn't leaves the fields alone. The bytes also
/// give fields, which have to come back from the moment that they name.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    auto text = reinterpret_cast<const char*>(data);
    DateFields fields{-1, -2, -3};
    large moment = 0;
    if (parseDate(text, size, fields)) {
        check(momentOf(fields, moment) && moment >= 0);
        char printed[dateTextRoom];
        int length = printDate(fields, printed);
        check(length > 0 && length <= dateTextRoom);
        DateFields again;
        large same = -1;
        check(parseDate(printed, size_t(length), again) && momentOf(again, same) && same == moment);
        check(again.dayOfWeek == fields.dayOfWeek && again.zone == fields.zone);
        DateFields utc;
        fieldsOf(moment, utc);
        check(utc.zone == 0 && momentOf(utc, same) && (same == moment || moment == largestValue));
        if (fields.zone == 0 && moment < largestValue)
            check(utc.day == fields.day && utc.millisec == fields.millisec && utc.dayOfWeek == fields.dayOfWeek);
    } else
        check(fields.year == -1 && fields.month == -2 && fields.day == -3);

    if (size < sizeof fields) return 0;
    std::memcpy(&fields, data, sizeof fields);
    if (!momentOf(fields, moment)) return 0;
    check(moment >= 0);
    DateFields known;
    fieldsOf(moment, known);
    large same = -1;
    check(known.month >= 1 && known.month <= 12 && known.day >= 1 && known.day <= 31 && momentOf(known, same) &&
          same == moment);
    return 0;
}
