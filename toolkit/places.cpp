#include "toolkit/places.h"

#include "toolkit/binding.h"
#include "toolkit/lock.h"
#include "toolkit/memory.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <unistd.h>

namespace toolkit {

static int executable(char* path) { return executablePath(path, int(pathRoom)) > 0 ? 0 : ENOENT; }

int appFolder(PathText& path) {
    char text[pathRoom];
    if (int error = executable(text)) return error;
    if (!path.assign(text)) return ENOMEM;
    path.cutName();
    return 0;
}

int mainFolder(PathText& path) {
    char text[pathRoom];
    if (int error = executable(text)) return error;
    return path.assign(text, rootFolder(text)) ? 0 : ENOMEM;
}

/// The value of an environment variable that holds an absolute path, else null: others are to be ignored.
static const char* folderVariable(const char* name) {
    const char* value = std::getenv(name);
    return value && value[0] == '/' ? value : nullptr;
}

int userDataFolder(PathText& path) {
    constexpr const char* own = "orvcore";
    if (const char* data = folderVariable("XDG_DATA_HOME")) return path.assign(data) && path.join(own) ? 0 : ENOMEM;
    char record[4096];
    const char* home = folderVariable("HOME");
    if (!home) {
        passwd entry, *found = nullptr;
        if (getpwuid_r(getuid(), &entry, record, sizeof record, &found) != 0 || !found) return ENOENT;
        home = found->pw_dir;
        if (home[0] != '/') return ENOENT;
    }
    return path.assign(home) && path.join(".local/share") && path.join(own) ? 0 : ENOMEM;
}

int tempFolder(PathText& path) {
    const char* folder = folderVariable("TMPDIR");
    return path.assign(folder ? folder : "/tmp") ? 0 : ENOMEM;
}

int workingFolder(PathText& path) {
    char text[PATH_MAX];
    if (!getcwd(text, sizeof text)) return errno;
    return path.assign(text) ? 0 : ENOMEM;
}

int userDataPath(const char* name, PathText& path) {
    if (name[0] != '~' || (name[1] && name[1] != '/')) return EINVAL;
    if (int error = userDataFolder(path)) return error;
    size_t root = path.length();
    for (const char* at = name + 1; *at;) {
        at += std::strspn(at, "/");
        size_t length = std::strcspn(at, "/");
        if (length == 2 && at[0] == '.' && at[1] == '.') {
            if (path.length() == root) return EACCES;
            path.cutName();
        } else if (length && !(length == 1 && at[0] == '.')) {
            if (!path.join(at, length)) return ENOMEM;
        }
        at += length;
    }
    return 0;
}

// Temporary files

namespace {

/// Names noted, each ended by 0. A child process inherits the notes but not the files.
struct Temporary {
    int lock = 0;
    char* names = nullptr;
    size_t used = 0;
    pid_t process = 0;
    bool atExit = false;
} temporary;

struct TemporaryGuard {
    TemporaryGuard() { spinLock(temporary.lock); }
    ~TemporaryGuard() { spinUnlock(temporary.lock); }
};

char* findTemporary(const char* path) {
    for (char* at = temporary.names; at && at < temporary.names + temporary.used; at += std::strlen(at) + 1)
        if (!std::strcmp(at, path)) return at;
    return nullptr;
}

} // namespace

int registerTemporary(const char* path) {
    size_t size = std::strlen(path) + 1;
    TemporaryGuard guard;
    if (temporary.process != getpid()) {
        temporary.process = getpid();
        temporary.used = 0;
    }
    if (findTemporary(path)) return EEXIST;
    if (!temporary.atExit && std::atexit([] { cleanTemporary(); }) != 0) return ENOMEM;
    temporary.atExit = true;
    auto names = static_cast<char*>(reallocBlock(temporary.names, temporary.used + size));
    if (!names) return ENOMEM;
    std::memcpy(names + temporary.used, path, size);
    temporary.names = names;
    temporary.used += size;
    return 0;
}

bool unregisterTemporary(const char* path) {
    TemporaryGuard guard;
    char* at = findTemporary(path);
    if (!at) return false;
    size_t size = std::strlen(at) + 1;
    std::memmove(at, at + size, size_t(temporary.names + temporary.used - at) - size);
    temporary.used -= size;
    if (!temporary.used) {
        freeBlock(temporary.names);
        temporary.names = nullptr;
    }
    return true;
}

int cleanTemporary() {
    char* names;
    size_t used;
    {
        TemporaryGuard guard;
        names = temporary.names;
        used = temporary.process == getpid() ? temporary.used : 0;
        temporary.names = nullptr;
        temporary.used = 0;
    }
    int failures = 0;
    for (char* at = names; at && at < names + used; at += std::strlen(at) + 1) {
        int error = removeFile(at);
        if (error == ENOTEMPTY || error == EEXIST) error = removeTree(at);
        failures += error && error != ENOENT;
    }
    freeBlock(names);
    return failures;
}

void forgetTemporary() {
    TemporaryGuard guard;
    freeBlock(temporary.names);
    temporary.names = nullptr;
    temporary.used = 0;
}

} // namespace toolkit
