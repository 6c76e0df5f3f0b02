#include "text/filelookup.h"

#include "text/ZFileName.h"
#include "toolkit/folders.h"
#include "toolkit/places.h"
#include "toolkit/text.h"

#include <cerrno>
#include <cstring>

namespace orv::detail {

using toolkit::PathText;

ichar foldName(const char*& at, const char* end) {
    const char* start = at;
    ichar code = decodeCode(at, end);
    if (ORV_LIKELY(code != replacementCode)) return toolkit::codeFold(code);
    if (at - start == 3 && !std::memcmp(start, "\xEF\xBF\xBD", 3)) return code;
    at = start + 1;
    return lastCode + 1 + byte(*start);
}

bool sameName(const char* a, size_t lengthA, const char* b, size_t lengthB) {
    const char *endA = a + lengthA, *endB = b + lengthB;
    while (a < endA && b < endB)
        if (foldName(a, endA) != foldName(b, endB)) return false;
    return a == endA && b == endB;
}

int nativeName(const TextView& name, PathText& path, size_t& fixed) {
    TextIn<char> bytes(name);
    fixed = 0;
    if (bytes.failed) return ENOMEM;
    size_t length = size_t(bytes.length);
    if (!length || std::memchr(bytes.text, 0, length)) return EINVAL;
    if (!path.assign(bytes.text, length)) return ENOMEM;
    if (path.text()[0] != '~' || (path.text()[1] && path.text()[1] != '/')) return 0;
    PathText place;
    if (int error = toolkit::userDataFolder(place)) return error;
    fixed = place.length();
    if (int error = toolkit::userDataPath(path.text(), place)) return error;
    return path.assign(place.text(), place.length()) ? 0 : ENOMEM;
}

namespace {

bool exists(const char* path) {
    toolkit::FileStatus status;
    return toolkit::fileStatus(path, status) == 0;
}

/// Appends a name in lower case; without memory, or where that changes nothing, false.
bool appendLower(PathText& path, const char* name, size_t length) {
    bool changed = false;
    for (const char *at = name, *end = name + length; at < end;) {
        const char* start = at;
        ichar code = decodeCode(at, end), lower = toolkit::codeLower(code);
        char encoded[4];
        bool same = lower == code;
        changed |= !same;
        if (!(same ? path.append(start, size_t(at - start)) : path.append(encoded, size_t(encodeCode(encoded, lower)))))
            return false;
    }
    return changed;
}

/// Whether any letter of the name has a case.
bool hasCase(const char* name, size_t length) {
    for (const char *at = name, *end = name + length; at < end;) {
        ichar code = decodeCode(at, end);
        if (toolkit::codeLower(code) != code || toolkit::codeUpper(code) != code) return true;
    }
    return false;
}

/// Appends the first name of the folder that differs in case only.
int joinBlind(PathText& path, const char* name, size_t length) {
    if (!hasCase(name, length)) return ENOENT;
    toolkit::FolderReader folder;
    if (int error = folder.open(path.isEmpty() ? "." : path.text())) return error == ENOMEM ? ENOMEM : ENOENT;
    PathText best;
    toolkit::FolderEntry entry;
    while (folder.next(entry)) {
        if (!sameName(entry.name, entry.length, name, length)) continue;
        if ((best.isEmpty() || std::strcmp(entry.name, best.text()) < 0) && !best.assign(entry.name, entry.length))
            return ENOMEM;
    }
    if (best.isEmpty()) return ENOENT;
    return path.join(best.text(), best.length()) ? 0 : ENOMEM;
}

/// Walks down the name and takes at each step what is there.
int findStepwise(const char* name, size_t fixed, PathText& found) {
    const char* at = name + fixed;
    if (!found.assign(name, fixed) || (!fixed && *at == '/' && !found.append("/", 1))) return ENOMEM;
    for (at += std::strspn(at, "/"); *at; at += std::strspn(at, "/")) {
        size_t length = std::strcspn(at, "/"), before = found.length();
        if (!found.join(at, length)) return ENOMEM;
        if (!exists(found.text())) {
            found.truncate(before);
            if (before && found.text()[before - 1] != '/' && !found.append("/", 1)) return ENOMEM;
            if (!appendLower(found, at, length) || !exists(found.text())) {
                found.truncate(before);
                if (int error = joinBlind(found, at, length)) return error;
            }
        }
        at += length;
    }
    // A separator at the end asks for a folder.
    if (at > name + fixed && at[-1] == '/' && !found.join("", 0)) return ENOMEM;
    return exists(found.text()) ? 0 : ENOENT;
}

} // namespace

int existingName(const TextView& name, PathText& path) {
    size_t fixed;
    if (int error = nativeName(name, path, fixed)) return error;
    toolkit::FileStatus status;
    int error = toolkit::fileStatus(path.text(), status);
    if (error != ENOENT && error != ENOTDIR) return error;

    PathText other;
    if (!other.assign(path.text(), fixed)) return ENOMEM;
    bool lower = appendLower(other, path.text() + fixed, path.length() - fixed) && exists(other.text());
    if (!lower) {
        int missing = findStepwise(path.text(), fixed, other);
        if (missing) return missing == ENOMEM ? ENOMEM : error;
    }
    return path.assign(other.text(), other.length()) ? 0 : ENOMEM;
}

int fileFacts(const char* path, toolkit::FileStatus& status, uint& flags) {
    static_assert(ZFileName::Read == toolkit::mayRead && ZFileName::Write == toolkit::mayWrite &&
                  ZFileName::Exec == toolkit::mayExecute);
    if (int error = toolkit::fileStatus(path, status)) return error;
    flags = toolkit::fileAccess(path) | (status.kind == toolkit::FileKind::Folder ? ZFileName::Dir : 0) |
            (status.kind == toolkit::FileKind::Other ? ZFileName::System : 0);
    return 0;
}

} // namespace orv::detail
