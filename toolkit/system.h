#pragma once

#include "toolkit/types.h"

/// The process as a whole: crashes, memory figures, leak tracking, the system's name.
namespace toolkit {

/// Called with the signal's number when the process is about to die of one; null for none. It runs in the signal
/// handler: only what is safe there may be called. The old callback comes back.
using CrashCallback = void (*)(int signal);
ORV_API CrashCallback setCrashCallback(CrashCallback callback);
/// Remembers a line that is written to standard error should the process crash. The newest 32 lines of at most 160
/// bytes are kept.
ORV_API void crashLog(const char* text);
/// Names whoever works with the process, for crash reports. Texts are copied up to 127 bytes.
ORV_API void userInformation(const char* user, const char* information);

/// Writes used, free and peak memory to standard error under a label.
ORV_API void memoryState(const char* label);
/// Gives memory that isn't used back to the system.
ORV_API void drain();
/// Empties the caches of this layer, then drains.
ORV_API void purgePools();
/// Most memory the process has used, in bytes.
ORV_API ularge peakMemory();

/// Switches leak tracking. While it is on, every block made is noted; switching it off forgets them.
ORV_API void trackLeaks(bool on);
/// Blocks made since tracking was switched on and still there; -1 while it is off.
ORV_API long liveBlocks();
/// Calls `line` for each type with blocks still there, by name, then for each size of those without a type, with their
/// number; the blocks are those at the time of the call. No calls when there is no memory for the report.
ORV_API void reportLeaks(void (*line)(void* context, const char* type, long count), void* context);
/// Switches a line on standard error for each block made or freed while leaks are tracked.
ORV_API void logMemory(bool on);

/// System, release and machine, such as "Linux 6.1.0 x86_64", in at most `room` bytes with the terminator.
ORV_API void systemVersion(char* out, size_t room);

/// A function that a debugger or a key press may call with a number; null for none.
ORV_API void setDebugFunction(void (*function)(int code));
/// Calls it; false if there is none.
ORV_API bool callDebug(int code);

} // namespace toolkit
