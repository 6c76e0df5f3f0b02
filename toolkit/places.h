#pragma once

#include "toolkit/files.h"

/// Where things lie on this machine: the folders of the application and of the user, and temporary files. Functions
/// that answer an int answer an error number of the system, 0 for success. Any thread.
namespace toolkit {

/// The folder of the running executable.
ORV_API int appFolder(PathText& path);
/// The root folder of the installation, see `rootFolder`.
ORV_API int mainFolder(PathText& path);
/// The folder that user data of this library lies in, by the XDG base directories; it need not be there yet. It is
/// made for the user alone.
ORV_API int userDataFolder(PathText& path);
/// The folder for temporary files.
ORV_API int tempFolder(PathText& path);

/// The working folder of the process.
ORV_API int workingFolder(PathText& path);

/// The place that a name which begins with "~/" stands for; a "~" alone is the folder of the user data. EINVAL for a
/// name of another form, EACCES for one whose ".." lead out of that folder.
ORV_API int userDataPath(const char* name, PathText& path);

/// Has a file, or a folder with all that is in it, removed when the process ends. EEXIST if it is noted already.
ORV_API int registerTemporary(const char* path);
/// Forgets that; false if it wasn't noted.
ORV_API bool unregisterTemporary(const char* path);
/// Removes all that is noted, and forgets it. The answer is how many couldn't be removed.
ORV_API int cleanTemporary();
/// Forgets all that is noted and gives the memory back.
ORV_API void forgetTemporary();

} // namespace toolkit
