#pragma once

#include "toolkit/types.h"

/// Clocks. Times are in milliseconds unless told otherwise.
namespace toolkit {

/// Milliseconds on a clock that never goes back, from the start of the process.
ORV_API large processClock();
/// The same clock in nanoseconds.
ORV_API large processClockNanos();
/// The wall clock in milliseconds since 1970-01-01 UTC.
ORV_API large wallClock();
/// The wall clock at the start of the process, in milliseconds since 1970-01-01 UTC.
ORV_API large processStart();
/// A fast counter that differs from call to call; its unit isn't told.
ORV_API ularge clockTicks();
/// Minutes that local time is ahead of UTC at that moment (milliseconds since 1970).
ORV_API int zoneMinutes(large wallMillis);

} // namespace toolkit
