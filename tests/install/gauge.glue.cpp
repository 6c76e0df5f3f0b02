#include "gauge.h"

#include <object/glue.h>

namespace orv::glue {

template <> struct Table<Gauge> : Declares<Gauge> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_DESTRUCTOR(),
        ORV_VALUE_ACCESSORS(int, level, Level),
        ORV_METHOD(Gauge::State, state, (), const),
        ORV_METHOD(bool, setState, (const Gauge::State&), ),
        ORV_METHOD(int, above, (int), const),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(int, level, "store"),
        ORV_PROPERTY(Gauge::State, state, "store"),
    };
    static constexpr EnumItemRow states[] = {ORV_ITEM(State, Idle), ORV_ITEM(State, Running), ORV_ITEM(State, Alarm)};
    static constexpr EnumRow enums[] = {ORV_ENUM(State, states)};
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

template <> struct Table<Reading> : Declares<Reading> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int, double)),
        ORV_METHOD(double, scaled, (), const),
    };
    static constexpr ClassInfo info = {.flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(Gauge);
ORV_DECLARE(Reading);
