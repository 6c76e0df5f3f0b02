#pragma once

#include "toolkit/types.h"

/// What the process knows of itself: names, folders, switches and numbered settings.
namespace toolkit {

struct Environment {
    char* appName;     ///< counted block, owned; may be null
    char* appLongName; ///< counted block, owned; may be null
    large eventTime;   ///< of the newest event, on the process clock
    byte userPath;     ///< files of the user may be used
    byte applicationLoaded;
    byte clearTemporary; ///< temporary files go at the end
};

/// The environment while the layer is up, else null.
ORV_API Environment* environment();

inline constexpr int configSlots = 64;
/// A numbered setting; 0 outside 0 to `configSlots` - 1.
ORV_API int getConfig(int slot);
ORV_API void setConfig(int slot, int value);

/// Replaces a text of the environment by a copy; null on no memory.
ORV_API void setText(char*& text, const char* value);

bool openEnvironment();
void closeEnvironment();

} // namespace toolkit
