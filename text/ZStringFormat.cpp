#include "text/ZString.h"

#include "text/format.h"

#include <cstring>

using namespace orv;

// The text is written aside, since the arguments may be the string's own.
template <class C> bool ZString::setFormatted(const C* format, var_arg* arguments) {
    constexpr int roomUnits = 256;
    C room[roomUnits];
    int need = aformat(room, roomUnits, format, arguments);
    if (need < 1) return false;
    if (need < roomUnits && record && record->type == detail::widthOf<C> && !shared() && setCapacity(need, false)) {
        std::memcpy(record->text(), room, size_t(need) * sizeof(C));
        setEnd(record, need);
        return true;
    }
    Record* made = newRecord(detail::widthOf<C>, need, need);
    if (!made) return false;
    if (need < roomUnits)
        std::memcpy(made->text(), room, size_t(need) * sizeof(C));
    else
        aformat(made->units<C>(), need + 1, format, arguments);
    if (record && record->type == made->type) made->expand = record->expand;
    take(made);
    return true;
}

bool ZString::aprintf(const char* format, var_arg* arguments) { return setFormatted(format, arguments); }
bool ZString::aprintf(const wchar* format, var_arg* arguments) { return setFormatted(format, arguments); }
bool ZString::aprintf(const ichar* format, var_arg* arguments) { return setFormatted(format, arguments); }

bool ZString::printf(const char* format, ...) {
    var_arg arguments;
    va_start(arguments.list, format);
    bool done = setFormatted(format, &arguments);
    va_end(arguments.list);
    return done;
}
bool ZString::printf(const wchar* format, ...) {
    var_arg arguments;
    va_start(arguments.list, format);
    bool done = setFormatted(format, &arguments);
    va_end(arguments.list);
    return done;
}
bool ZString::printf(const ichar* format, ...) {
    var_arg arguments;
    va_start(arguments.list, format);
    bool done = setFormatted(format, &arguments);
    va_end(arguments.list);
    return done;
}
