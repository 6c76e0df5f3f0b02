#include "toolkit/files.h"

#include "toolkit/clock.h"
#include "toolkit/memory.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace toolkit {

static FileHook fileHook = nullptr;

FileHook setFileHook(FileHook hook) { return exchange(fileHook, hook); }
int askFileHook(FileCall call) {
    FileHook hook = loadAcquire(fileHook);
    return ORV_UNLIKELY(hook != nullptr) ? hook(call) : 0;
}

namespace {

/// A descriptor that is closed at the end of its scope.
class Descriptor {
public:
    explicit Descriptor(int number) : number(number) {}
    ~Descriptor() {
        if (number >= 0) ::close(number);
    }
    Descriptor(const Descriptor&) = delete;
    int get() const { return number; }
    bool valid() const { return number >= 0; }
    /// The error of closing, which is where some volumes tell that a write failed.
    int close() {
        int error = number >= 0 && ::close(number) != 0 ? errno : 0;
        number = -1;
        return error == EINTR ? 0 : error;
    }

private:
    int number;
};

int openHooked(const char* path, int flags, mode_t mode = 0) {
    if (int error = askFileHook(FileCall::Open)) {
        errno = error;
        return -1;
    }
    int number;
    do number = open(path, flags | O_CLOEXEC, mode);
    while (number < 0 && errno == EINTR);
    return number;
}

ssize_t readSome(int file, void* bytes, size_t size) {
    if (int error = askFileHook(FileCall::Read)) {
        errno = error;
        return -1;
    }
    ssize_t got;
    do got = read(file, bytes, size);
    while (got < 0 && errno == EINTR);
    return got;
}

int writeAll(int file, const char* bytes, size_t size) {
    while (size) {
        if (int error = askFileHook(FileCall::Write)) return error;
        ssize_t done = write(file, bytes, size < (1u << 30) ? size : 1u << 30);
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return done < 0 ? errno : EIO;
        bytes += done;
        size -= size_t(done);
    }
    return 0;
}

int syncFile(int file) {
    if (int error = askFileHook(FileCall::Sync)) return error;
    return fsync(file) == 0 ? 0 : errno;
}

/// Makes a change to a folder's names last; not every volume can, and that is no reason to take the change back.
void syncFolderOf(const char* path) {
    PathText folder;
    if (!folder.assign(path)) return;
    folder.cutName();
    Descriptor opened(open(folder.isEmpty() ? "." : folder.text(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.valid()) syncFile(opened.get());
}

int renameOver(const char* from, const char* to) {
    if (int error = askFileHook(FileCall::Rename)) return error;
    return rename(from, to) == 0 ? 0 : errno;
}

/// Gives `from` the name `to`, which nothing may have.
int renameFresh(const char* from, const char* to) {
    if (int error = askFileHook(FileCall::Rename)) return error;
    if (syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 1 /* don't replace */) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    // The volume can't refuse by itself; between the two calls somebody else may still take the name.
    if (nameTaken(to)) return EEXIST;
    return rename(from, to) == 0 ? 0 : errno;
}

/// The place of a file to be written: what a chain of links leads to, or the path itself; a broken link stands for
/// itself. `old` is the file there, its mode 0 if there is none. Only files that may be written are replaced: the
/// folder alone would allow more.
int finalName(const char* path, PathText& place, struct stat& old) {
    char resolved[PATH_MAX];
    bool link = lstat(path, &old) == 0 && S_ISLNK(old.st_mode);
    if (!place.assign(link && realpath(path, resolved) ? resolved : path)) return ENOMEM;
    if (stat(place.text(), &old) != 0) old.st_mode = 0;
    if (!old.st_mode) return 0;
    if (!S_ISREG(old.st_mode)) return S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
    return faccessat(AT_FDCWD, place.text(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

/// Makes and opens a new file of a name that nothing had; see `createUnique`.
int makeUnique(PathText& path, const char* ending, mode_t mode, int& file) {
    size_t start = path.length();
    int error = EEXIST;
    for (int tries = 0; error == EEXIST && tries < 100; ++tries) {
        char letters[8];
        uint64_t mixed =
            (clockTicks() ^ uint64_t(getpid()) << 40 ^ uint64_t(processClockNanos())) * 0x9E3779B97F4A7C15u;
        mixed = (mixed ^ mixed >> 29) * 0xBF58476D1CE4E5B9u >> 20;
        for (char& letter : letters) {
            letter = "abcdefghijklmnopqrstuvwxyz012345"[mixed & 31];
            mixed >>= 5;
        }
        path.truncate(start);
        if (!path.append(letters, sizeof letters) || !path.append(ending)) {
            error = ENOMEM;
            break;
        }
        file = openHooked(path.text(), O_WRONLY | O_CREAT | O_EXCL, mode);
        if (file >= 0) return 0;
        error = errno;
    }
    path.truncate(start);
    return error;
}

/// A new file beside its final place, removed again unless it is put there.
class NewFile {
public:
    NewFile() : file(-1) {}
    ~NewFile() {
        if (file >= 0) ::close(file);
        if (made) unlink(name.text());
    }
    /// `like`: whose permissions it gets, null for those of any new file; `owner`: its owner too, where that is
    /// allowed.
    int make(const char* place, const struct stat* like, bool owner) {
        if (!name.assign(place)) return ENOMEM;
        name.cutName();
        if (!name.join(".orv-")) return ENOMEM;
        // What is to have narrow permissions never has wider ones on the way.
        if (int error = makeUnique(name, ".tmp", like ? 0600 : 0666, file)) return error;
        made = true;
        if (!like) return 0;
        bool owned = owner && fchown(file, like->st_uid, like->st_gid) == 0;
        // Another's file keeps its group where it can; what runs as its owner must not run as somebody else.
        [[maybe_unused]] int grouped = owner && !owned ? fchown(file, uid_t(-1), like->st_gid) : 0;
        return fchmod(file, like->st_mode & (owned ? 07777 : 0777)) == 0 ? 0 : errno;
    }
    int descriptor() const { return file; }
    int put(const char* place, bool replace) {
        if (int error = syncFile(file)) return error;
        int number = file;
        file = -1;
        if (int error = Descriptor(number).close()) return error;
        if (int error = replace ? renameOver(name.text(), place) : renameFresh(name.text(), place)) return error;
        made = false;
        syncFolderOf(place);
        return 0;
    }

private:
    PathText name;
    int file;
    bool made = false;
};

FileKind kindOf(uint mode) {
    return S_ISREG(mode)   ? FileKind::File
           : S_ISDIR(mode) ? FileKind::Folder
           : S_ISLNK(mode) ? FileKind::Link
                           : FileKind::Other;
}

large millis(const statx_timestamp& time) { return large(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000; }

} // namespace

// Paths

PathText::~PathText() {
    if (bytes != room) freeBlock(bytes);
}

bool PathText::reserve(size_t length) {
    if (ORV_LIKELY(length <= capacity)) return true;
    size_t wanted = length + length / 2;
    bool own = bytes != room;
    auto moved = static_cast<char*>(own ? reallocBlock(bytes, wanted + 1) : allocBlock(wanted + 1));
    if (!moved) return false;
    if (!own) std::memcpy(moved, room, used + 1);
    bytes = moved;
    capacity = wanted;
    return true;
}

bool PathText::append(const char* text, size_t length) {
    if (!reserve(used + length)) return false;
    if (length) std::memcpy(bytes + used, text, length);
    truncate(used + length);
    return true;
}

bool PathText::assign(const char* text, size_t length) {
    if (!reserve(length)) return false;
    used = 0;
    return append(text, length);
}

bool PathText::assign(const char* text) { return assign(text, std::strlen(text)); }
bool PathText::append(const char* text) { return append(text, std::strlen(text)); }
bool PathText::join(const char* name) { return join(name, std::strlen(name)); }

bool PathText::join(const char* name, size_t length) {
    bool separate = used && bytes[used - 1] != '/';
    if (!reserve(used + separate + length)) return false;
    if (separate) append("/", 1);
    return append(name, length);
}

void PathText::cutName() {
    size_t end = used;
    while (end && bytes[end - 1] != '/') --end;
    while (end > 1 && bytes[end - 1] == '/') --end;
    truncate(end);
}

// Questions

int fileStatusAt(int folder, const char* name, FileStatus& status, bool followLink) {
    if (int error = askFileHook(FileCall::Status)) return error;
    struct statx known;
    if (statx(folder, name, followLink ? 0 : AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &known) != 0)
        return errno;
    status.kind = kindOf(known.stx_mode);
    status.size = known.stx_size;
    status.device = ularge(known.stx_dev_major) << 32 | known.stx_dev_minor;
    status.inode = known.stx_ino;
    status.accessTime = millis(known.stx_atime);
    status.writeTime = millis(known.stx_mtime);
    status.changeTime = millis(known.stx_ctime);
    status.creationTime = known.stx_mask & STATX_BTIME ? millis(known.stx_btime) : 0;
    status.mode = known.stx_mode & 07777;
    return 0;
}

int fileStatus(const char* path, FileStatus& status, bool followLink) {
    return fileStatusAt(AT_FDCWD, path, status, followLink);
}

bool nameTaken(const char* path) {
    struct stat status;
    return lstat(path, &status) == 0;
}

uint fileAccess(const char* path) {
    auto may = [&](int what) { return faccessat(AT_FDCWD, path, what, AT_EACCESS) == 0; };
    if (!may(F_OK)) return 0;
    return (may(R_OK) ? mayRead : 0) | (may(W_OK) ? mayWrite : 0) | (may(X_OK) ? mayExecute : 0);
}

static VolumeKind volumeKind(unsigned long magic) {
    switch (magic) {
    case NFS_SUPER_MAGIC:
    case SMB_SUPER_MAGIC:
    case CIFS_SUPER_MAGIC:
    case SMB2_SUPER_MAGIC:
    case AFS_SUPER_MAGIC:
    case CODA_SUPER_MAGIC:
    case CEPH_SUPER_MAGIC:
    case V9FS_MAGIC:
        return VolumeKind::Network;
    case TMPFS_MAGIC:
    case RAMFS_MAGIC:
        return VolumeKind::Memory;
    case ISOFS_SUPER_MAGIC:
    case UDF_SUPER_MAGIC:
        return VolumeKind::Optical;
    case PROC_SUPER_MAGIC:
    case SYSFS_MAGIC:
    case DEVPTS_SUPER_MAGIC:
    case CGROUP_SUPER_MAGIC:
    case CGROUP2_SUPER_MAGIC:
    case DEBUGFS_MAGIC:
    case TRACEFS_MAGIC:
    case SECURITYFS_MAGIC:
        return VolumeKind::Virtual;
    default:
        return VolumeKind::Fixed;
    }
}

int volumeStatus(const char* path, VolumeStatus& status) {
    struct statfs known;
    if (statfs(path, &known) != 0) return errno;
    ularge unit = ularge(known.f_frsize ? known.f_frsize : known.f_bsize);
    status.size = known.f_blocks * unit;
    status.space = known.f_bavail * unit;
    status.kind = volumeKind((unsigned long)(known.f_type) & 0xFFFFFFFF);
    return 0;
}

// Contents

void* readFile(const char* path, size_t limit, size_t& size, int& error) {
    Descriptor file(openHooked(path, O_RDONLY | O_NONBLOCK));
    struct stat status;
    if (!file.valid() || fstat(file.get(), &status) != 0) {
        error = errno;
        return nullptr;
    }
    error = S_ISDIR(status.st_mode) ? EISDIR : !S_ISREG(status.st_mode) ? EINVAL : 0;
    if (!error && ularge(status.st_size) > limit) error = EFBIG;
    if (error) return nullptr;

    // The size is a hint: files grow while they are read, and some of the system's own tell 0.
    constexpr size_t step = 4096;
    size_t room = size_t(status.st_size) ? size_t(status.st_size) : step, used = 0;
    auto bytes = static_cast<char*>(allocBlock(room + 1));
    error = bytes ? 0 : ENOMEM;
    while (!error) {
        if (used == room) {
            // One byte more tells whether the end was met, without a larger block for it.
            char next;
            ssize_t more = readSome(file.get(), &next, 1);
            if (more <= 0) {
                error = more < 0 ? errno : 0;
                break;
            }
            if (used >= limit) {
                error = EFBIG;
                break;
            }
            room += room / 2 + step;
            auto moved = static_cast<char*>(reallocBlock(bytes, room + 1));
            if (!moved) {
                error = ENOMEM;
                break;
            }
            bytes = moved;
            bytes[used++] = next;
        }
        ssize_t got = readSome(file.get(), bytes + used, room - used);
        if (got < 0) error = errno;
        if (got <= 0) break;
        used += size_t(got);
        if (used > limit) error = EFBIG;
    }
    if (!error && used < room) {
        if (auto fitted = static_cast<char*>(reallocBlock(bytes, used + 1))) bytes = fitted;
    }
    if (error) {
        freeBlock(bytes);
        return nullptr;
    }
    bytes[used] = 0;
    size = used;
    return bytes;
}

int writeFile(const char* path, const void* bytes, size_t size) {
    PathText place;
    struct stat old;
    if (int error = finalName(path, place, old)) return error;
    NewFile file;
    if (int error = file.make(place.text(), old.st_mode ? &old : nullptr, true)) return error;
    if (int error = writeAll(file.descriptor(), static_cast<const char*>(bytes), size)) return error;
    return file.put(place.text(), true);
}

int tryWriting(const char* path) {
    int file = openHooked(path, O_WRONLY | O_CREAT | O_EXCL, 0666);
    if (file >= 0) {
        ::close(file);
        return unlink(path) == 0 ? 0 : errno;
    }
    if (errno != EEXIST) return errno;
    Descriptor old(openHooked(path, O_WRONLY | O_NONBLOCK));
    return old.valid() ? 0 : errno;
}

// Files and folders

static int copyContents(int from, int to) {
    constexpr size_t step = 1 << 30;
    bool kernel = true;
    char buffer[32768];
    for (;;) {
        if (int error = askFileHook(FileCall::Copy)) return error;
        if (kernel) {
            ssize_t done = copy_file_range(from, nullptr, to, nullptr, step, 0);
            if (done > 0) continue;
            if (done < 0 && errno == EINTR) continue;
            if (done < 0 && errno != EXDEV && errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) return errno;
            // Some of the system's own files copy as empty that way; reading tells for sure.
            kernel = false;
        }
        ssize_t got = readSome(from, buffer, sizeof buffer);
        if (got <= 0) return got < 0 ? errno : 0;
        if (int error = writeAll(to, buffer, size_t(got))) return error;
    }
}

int copyFile(const char* from, const char* to, bool replace) {
    Descriptor source(openHooked(from, O_RDONLY | O_NONBLOCK));
    struct stat status;
    if (!source.valid() || fstat(source.get(), &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    if (!replace && nameTaken(to)) return EEXIST;
    PathText place;
    struct stat old;
    if (int error = finalName(to, place, old)) return error;
    NewFile file;
    if (int error = file.make(place.text(), &status, false)) return error;
    if (int error = copyContents(source.get(), file.descriptor())) return error;
    return file.put(place.text(), replace);
}

int renameFile(const char* from, const char* to) {
    int error = renameFresh(from, to);
    if (error != EXDEV) {
        if (!error) syncFolderOf(to);
        return error;
    }
    struct stat status;
    if (lstat(from, &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return EXDEV;
    error = copyFile(from, to, false);
    if (error) return error;
    timespec times[] = {status.st_atim, status.st_mtim};
    utimensat(AT_FDCWD, to, times, 0);
    if (unlink(from) == 0) return 0;
    // The source can't go: two files instead of one would be a surprise.
    error = errno;
    unlink(to);
    return error;
}

int removeFile(const char* path) {
    if (unlink(path) == 0) return 0;
    int error = errno;
    if (error != EISDIR && error != EPERM) return error;
    return rmdir(path) == 0 ? 0 : errno == ENOTDIR ? error : errno;
}

static int removeIn(int parent, const char* name, int depth) {
    constexpr int deepest = 256;
    if (depth > deepest) return ELOOP;
    int opened = openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (opened < 0) return errno;
    DIR* folder = fdopendir(opened);
    if (!folder) {
        int error = errno;
        ::close(opened);
        return error;
    }
    int first = 0;
    while (dirent* entry = readdir(folder)) {
        const char* inner = entry->d_name;
        if (!std::strcmp(inner, ".") || !std::strcmp(inner, "..")) continue;
        int error = unlinkat(opened, inner, 0) == 0 ? 0 : errno;
        if (error == EISDIR || error == EPERM) {
            error = removeIn(opened, inner, depth + 1);
            if (!error && unlinkat(opened, inner, AT_REMOVEDIR) != 0) error = errno;
        }
        if (error && error != ENOENT && !first) first = error;
    }
    closedir(folder);
    return first;
}

int removeTree(const char* path) {
    int error = removeIn(AT_FDCWD, path, 0);
    if (error) return error;
    return rmdir(path) == 0 ? 0 : errno;
}

static bool isFolder(const char* path) {
    struct stat status;
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

int createFolder(const char* path, bool parents, uint mode) {
    if (mkdir(path, mode) == 0) return 0;
    int error = errno;
    if (error == EEXIST) return isFolder(path) ? 0 : EEXIST;
    if (error != ENOENT || !parents || !*path) return error;
    PathText part;
    if (!part.assign(path)) return ENOMEM;
    // From the top, so that no depth of missing folders is too large.
    for (size_t end = 1; end <= part.length(); ++end) {
        if (path[end] != '/' && path[end]) continue;
        part.truncate(end);
        error = mkdir(part.text(), mode) == 0 ? 0 : errno;
        if (error && !isFolder(part.text())) return error;
        if (!part.assign(path)) return ENOMEM;
    }
    return 0;
}

int createUnique(PathText& path, const char* ending) {
    int file;
    if (int error = makeUnique(path, ending, 0600, file)) return error;
    ::close(file);
    return 0;
}

} // namespace toolkit
