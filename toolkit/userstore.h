#pragma once

#include "toolkit/types.h"

/// Small named texts that are kept for the user between runs: one file each in the folder `user` of the user's data.
namespace toolkit {

inline constexpr size_t userTextLimit = 65536; ///< bytes

/// The text of a name as a new terminated block, its length in `length`; null if there is none. What can't be a stored
/// text (too long, cut off, control characters, not UTF-8) counts as none, so that it is made anew.
ORV_API char* loadUserText(const char* name, size_t& length);
/// Stores a text, or with a length of 0 removes it. The old one stays unless the new one is stored whole. False for an
/// empty name, for a text that `loadUserText` would refuse, and where the file can't be written.
ORV_API bool storeUserText(const char* name, const char* text, size_t length);

} // namespace toolkit
