#pragma once

#include "toolkit/types.h"

/// Files and folders of the platform. Names are bytes ended by 0 and are used as they are: no logical names, no second
/// look in another case. A function that answers an int answers an error number of the system, 0 for success. Any
/// thread.
namespace toolkit {

/// Bytes ended by 0 that grow: a path in the making. No copies.
class ORV_API PathText {
public:
    PathText() { room[0] = 0; }
    ~PathText();
    PathText(const PathText&) = delete;

    const char* text() const { return bytes; }
    size_t length() const { return used; }
    bool isEmpty() const { return used == 0; }
    /// Without memory these answer false and leave the text. The bytes must not be the text's own.
    bool assign(const char* text, size_t length);
    bool assign(const char* text);
    bool append(const char* text, size_t length);
    bool append(const char* text);
    /// Appends with a "/" between, unless the text is empty or ends in one.
    bool join(const char* name, size_t length);
    bool join(const char* name);
    /// Cuts at a length that isn't above the present one.
    void truncate(size_t length) { bytes[used = length] = 0; }
    /// Cuts the last name and the "/" in front of it; the root stays. The text without a "/" becomes empty.
    void cutName();

private:
    bool reserve(size_t length);

    char* bytes = room;
    size_t used = 0, capacity = sizeof room - 1;
    char room[224];
};

enum class FileKind : byte { None = 0, File = 1, Folder = 2, Link = 3, Other = 4 };

struct FileStatus {
    FileKind kind = FileKind::None;
    ularge size = 0;
    ularge device = 0, inode = 0;
    /// Milliseconds since 1970.
    large accessTime = 0, writeTime = 0, changeTime = 0;
    large creationTime = 0; ///< 0 where the volume doesn't keep it
    uint mode = 0;          ///< permission bits
};

// Questions

/// With `followLink`, of what a link leads to.
ORV_API int fileStatus(const char* path, FileStatus& status, bool followLink = true);
/// The same for a name in an open folder.
ORV_API int fileStatusAt(int folder, const char* name, FileStatus& status, bool followLink);
/// Whether something has that name, a broken link included.
ORV_API bool nameTaken(const char* path);
inline constexpr uint mayRead = 1, mayWrite = 2, mayExecute = 16;
/// What this process may do with the file; 0 if there is none.
ORV_API uint fileAccess(const char* path);

enum class VolumeKind { Unknown = 0, Fixed = 1, Network = 2, Memory = 3, Optical = 4, Virtual = 5 };
struct VolumeStatus {
    ularge size = 0, space = 0; ///< bytes; the space is what this process may still use
    VolumeKind kind = VolumeKind::Unknown;
};
ORV_API int volumeStatus(const char* path, VolumeStatus& status);

// Contents

/// A whole file in a new counted block, with a 0 behind it that `size` doesn't count. Null with `error` set: EFBIG for
/// one above `limit` bytes, EISDIR for a folder, EINVAL for a device or pipe, which are never waited for.
ORV_API void* readFile(const char* path, size_t limit, size_t& size, int& error);
/// Replaces or makes a file whole: readers see the old contents or the new, also after a crash, and a failure leaves
/// the old file. Permissions of an old file stay, and its owner where this process may set it; a link keeps leading to
/// the file that is replaced. Only a file that may be written is: else EACCES, EISDIR, or EINVAL for a device or pipe.
/// The new contents lie in the same folder until then, as ".orv-" with letters and ".tmp", which is also what a crash
/// may leave.
ORV_API int writeFile(const char* path, const void* bytes, size_t size);
/// Opens a file that may be made for writing and closes it again. Nothing is changed: what was made for it goes away.
ORV_API int tryWriting(const char* path);

// Files and folders

/// The copy has the permissions of the source, and appears whole or not at all. EEXIST if `to` is taken, unless
/// `replace`, which replaces as `writeFile` does.
ORV_API int copyFile(const char* from, const char* to, bool replace);
/// Renames a file or a folder; EEXIST if `to` is taken. A file goes to another volume as a copy with its times; EXDEV
/// for anything else.
ORV_API int renameFile(const char* from, const char* to);
/// Removes a file, a link or an empty folder.
ORV_API int removeFile(const char* path);
/// Removes a folder and all that is in it, without following links. What can't be removed stays, and the first such
/// error is answered; ELOOP where it is deeper than 256 folders.
ORV_API int removeTree(const char* path);
inline constexpr uint anybodysFolder = 0777, usersFolder = 0700;
/// Makes a folder, with `parents` those above it too. One that is there already is fine. `mode`: the permissions of all
/// that is made, less the mask of the process.
ORV_API int createFolder(const char* path, bool parents, uint mode = anybodysFolder);
/// Makes a new empty file of a name that nothing had: `path`, a few letters and digits, `ending`. The name goes to
/// `path`.
ORV_API int createUnique(PathText& path, const char* ending);

// Watching, for tests

enum class FileCall { Open, Read, Write, Sync, Rename, Copy, Status, ReadFolder };
/// Asked before each such call of this layer: an error number makes the call fail with it, 0 lets it pass. Null for
/// none. Answers the old one.
using FileHook = int (*)(FileCall call);
ORV_API FileHook setFileHook(FileHook hook);
/// What the hook says; 0 without one.
ORV_API int askFileHook(FileCall call);

} // namespace toolkit
