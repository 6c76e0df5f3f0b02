#include "value/ZSampleTime.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZSampleTime> : Declares<ZSampleTime> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZSampleTime&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, start, (), ),
        ORV_METHOD(bool, stop, (), ),
        ORV_METHOD(real, average, (), ),
        ORV_METHOD(const ZVArray&, samples, (), const),
        ORV_METHOD(int, samplingCount, (), const),
        ORV_METHOD(void, setSamplingCount, (int), ),
        ORV_METHOD(real, minimumTime, (), const),
        ORV_METHOD(void, setMinimumTime, (real), ),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZSampleTime);
