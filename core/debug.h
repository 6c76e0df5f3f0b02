#pragma once

#include "toolkit/types.h"

/// Writes a line to the debug log: nowhere in a release configuration without a sink. Arguments are those of
/// text/format.h; a line is cut at 1023 bytes, and a line break at its end is left out.
ORV_API void zdebug(const char* format, ...) ORV_PRINTF(1, 2);
/// Whether lines go anywhere, so that one that takes work is worth its making.
ORV_API bool zdebugasked();
/// Replaces the sink of the debug log in any configuration; null goes back to the default (standard error in a
/// development configuration, nothing in a release). The sink must be safe to call from any thread.
ORV_API void zsetdebugsink(void (*sink)(const char* line));

/// These end the process: they guard programming errors only; nothing that a user can do may reach them.
[[noreturn]] ORV_API void orv_assert(const char* text, const char* file, int line);
[[noreturn]] ORV_API void orv_assertt(const char* text, const char* file, int line);
[[noreturn]] ORV_API void orv_assertw(const char* text1, const char* text2, const char* file, int line);

/// Once the library is loaded: writes `label` and the address to the debug log, then a line for each of the innermost
/// `depth` callers (64 at most, and for 0): address, function or file, and the bytes into it.
ORV_API void logstack(const char* label, const void* p, int depth);

#ifndef NDEBUG
#define ORV_DEBUG_ASSERT(condition) ((condition) ? (void)0 : orv_assertt(#condition, __FILE__, __LINE__))
#else
#define ORV_DEBUG_ASSERT(condition) ((void)0)
#endif
