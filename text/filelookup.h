#pragma once

#include "text/textview.h"
#include "toolkit/files.h"

/// From a name as text to bytes that the platform takes. Functions that answer an int answer an error number of the
/// system, 0 for success.
namespace orv::detail {

/// The code point at `at`, folded for comparisons that ignore case. A byte that is no UTF-8 stands for itself alone,
/// above all code points.
ORV_API ichar foldName(const char*& at, const char* end);
/// Whether two names are the same but for case.
ORV_API bool sameName(const char* a, size_t lengthA, const char* b, size_t lengthB);

/// The bytes of a name, UTF-8 where the text isn't bytes already; a name that begins with "~/" goes to the user data
/// folder. EINVAL for an empty name and for one with a 0 in it, EACCES for one that leads out of that folder. `fixed`
/// is the length in front that doesn't stem from the name.
ORV_API int nativeName(const TextView& name, toolkit::PathText& path, size_t& fixed);
/// For reading: the name exactly; else in lower case; else, folder by folder, exactly, in lower case, or the first in
/// the order of bytes that differs in case only. ENOENT, with `path` as `nativeName` gives it, if nothing has it.
ORV_API int existingName(const TextView& name, toolkit::PathText& path);

/// What is known of a file: its status, and the `ZFileName::Flags` of it. An error number of the system.
ORV_API int fileFacts(const char* path, toolkit::FileStatus& status, uint& flags);

} // namespace orv::detail
