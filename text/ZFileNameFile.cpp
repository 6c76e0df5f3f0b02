#include "text/ZFileName.h"

#include "text/ZDateTime.h"
#include "text/filelookup.h"
#include "text/filetext.h"
#include "toolkit/places.h"

#include <cstring>

using toolkit::FileKind;
using toolkit::FileStatus;
using toolkit::PathText;

namespace {

bool statusOf(const ZFileName& name, FileStatus& status) {
    PathText path;
    return orv::detail::existingName(name.view(), path) == 0 && toolkit::fileStatus(path.text(), status) == 0;
}

bool isKind(const ZFileName& name, FileKind kind) {
    FileStatus status;
    return statusOf(name, status) && status.kind == kind;
}

ZTime timeOf(const ZFileName& name, large FileStatus::*field) {
    FileStatus status;
    bool known = statusOf(name, status) && status.*field;
    return known ? ZTime(status.*field + orv::detail::unixEpoch) : ZTime();
}

/// The volume that a file is on, or would be.
bool volumeOf(const ZFileName& name, toolkit::VolumeStatus& status) {
    PathText path;
    size_t fixed;
    if (orv::detail::existingName(name.view(), path) && orv::detail::nativeName(name.view(), path, fixed)) return false;
    while (toolkit::volumeStatus(path.text(), status)) {
        size_t before = path.length();
        path.cutName();
        if (path.isEmpty() && before) return toolkit::volumeStatus(".", status) == 0;
        if (path.length() == before) return false;
    }
    return true;
}

/// The exact name of what is to be made or changed. The folders of the user's data are made as they are needed.
bool placeFor(const ZFileName& name, bool make, PathText& path) {
    size_t fixed;
    if (orv::detail::nativeName(name.view(), path, fixed)) return false;
    if (!fixed || !make) return true;
    PathText folder;
    if (!folder.assign(path.text(), path.length())) return false;
    folder.cutName();
    return toolkit::createFolder(folder.text(), true, toolkit::usersFolder) == 0;
}

bool copyTo(const ZFileName& from, const ZFileName& to, bool replace) {
    PathText source, target;
    return orv::detail::existingName(from.view(), source) == 0 && placeFor(to, true, target) &&
           toolkit::copyFile(source.text(), target.text(), replace) == 0;
}

/// The absolute path, which holds when the working folder changes.
bool temporaryPath(const ZFileName& name, PathText& path) {
    PathText native;
    if (!placeFor(name, false, native)) return false;
    if (native.text()[0] == '/') return path.assign(native.text(), native.length());
    return toolkit::workingFolder(path) == 0 && path.join(native.text(), native.length());
}

uint32_t bigEndian(const byte* at) { return uint32_t(at[0]) << 24 | at[1] << 16 | at[2] << 8 | at[3]; }

} // namespace

// Kind

bool ZFileName::exists() const {
    PathText path;
    return orv::detail::existingName(view(), path) == 0;
}
bool ZFileName::isFile() const { return isKind(*this, FileKind::File); }
bool ZFileName::isDir() const { return isKind(*this, FileKind::Folder); }
bool ZFileName::isPath() const {
    orv::detail::PathUnits units(view());
    return units.separatorAt(units.length() - 1) || isDir();
}
bool ZFileName::isSystem() const { return isKind(*this, FileKind::Other); }

bool ZFileName::readOnly() const {
    PathText path;
    return orv::detail::existingName(view(), path) == 0 && !(toolkit::fileAccess(path.text()) & toolkit::mayWrite);
}

bool ZFileName::allowWriting() const {
    PathText path;
    return placeFor(*this, true, path) && toolkit::tryWriting(path.text()) == 0;
}

ZFileName::Flags ZFileName::getFlags() const {
    PathText path;
    FileStatus status;
    uint flags;
    bool known = orv::detail::existingName(view(), path) == 0 && !orv::detail::fileFacts(path.text(), status, flags);
    return known ? Flags(flags) : None;
}

large ZFileName::getSize() const {
    FileStatus status;
    return statusOf(*this, status) && status.kind == FileKind::File ? large(status.size) : 0;
}

ZFileName::Volume ZFileName::getVolumeType() const {
    toolkit::VolumeStatus status;
    return volumeOf(*this, status) ? Volume(status.kind) : UnknownVolume;
}
large ZFileName::diskSize() const {
    toolkit::VolumeStatus status;
    return volumeOf(*this, status) ? large(status.size) : 0;
}
large ZFileName::diskSpace() const {
    toolkit::VolumeStatus status;
    return volumeOf(*this, status) ? large(status.space) : 0;
}

// Times

ZTime ZFileName::accessTime() const { return timeOf(*this, &FileStatus::accessTime); }
ZTime ZFileName::creationTime() const { return timeOf(*this, &FileStatus::creationTime); }
ZTime ZFileName::writeTime() const { return timeOf(*this, &FileStatus::writeTime); }
ZTime ZFileName::modifyTime() const { return timeOf(*this, &FileStatus::changeTime); }

bool ZFileName::changed(const ZString& text) const {
    ZTime then, now = writeTime();
    if (!then.setString(text) || !now.isValid()) return true;
    if (orv::detail::PathUnits(text.view()).first('.') < 0) now.setMSec(0);
    return now.value() != then.value();
}

// File work

bool ZFileName::createDir(bool parents) const {
    PathText path;
    return placeFor(*this, true, path) && toolkit::createFolder(path.text(), parents) == 0;
}

bool ZFileName::remove() const {
    PathText path;
    return placeFor(*this, false, path) && toolkit::removeFile(path.text()) == 0;
}

bool ZFileName::rename(const ZString& name) const {
    PathText from, to;
    return placeFor(*this, false, from) && placeFor(name, true, to) && toolkit::renameFile(from.text(), to.text()) == 0;
}

bool ZFileName::copy(const ZString& name) const { return ::copyTo(*this, name, false); }
bool ZFileName::copyTo(const ZString& name) const { return ::copyTo(*this, name, true); }
bool ZFileName::copyFrom(const ZString& name) const { return ::copyTo(name, *this, true); }

void* ZFileName::read(size_t& size, size_t limit) const {
    PathText path;
    int error;
    if (orv::detail::existingName(view(), path)) return nullptr;
    return toolkit::readFile(path.text(), limit, size, error);
}

bool ZFileName::write(const void* bytes, size_t size) const {
    PathText path;
    return placeFor(*this, true, path) && toolkit::writeFile(path.text(), bytes, size) == 0;
}

void* ZFileName::readFork(size_t& size, size_t limit) const {
    constexpr uint32_t magic = 0x00051607, version = 0x00020000, resourceFork = 2;
    constexpr size_t head = 26, row = 12;
    PathText path;
    if (orv::detail::existingName(view(), path)) return nullptr;
    const char* slash = std::strrchr(path.text(), '/');
    PathText name, beside;
    if (!name.assign(slash ? slash + 1 : path.text()) || !beside.assign(path.text(), path.length())) return nullptr;
    beside.cutName();
    if (!beside.join("._") || !beside.append(name.text(), name.length())) return nullptr;

    size_t length = 0;
    int error;
    auto bytes = static_cast<byte*>(toolkit::readFile(beside.text(), limit, length, error));
    void* fork = nullptr;
    bool valid = bytes && length >= head && bigEndian(bytes) == magic && bigEndian(bytes + 4) == version;
    for (size_t count = valid ? size_t(bytes[24] << 8 | bytes[25]) : 0, i = 0; i < count; ++i) {
        const byte* entry = bytes + head + i * row;
        if (head + (i + 1) * row > length) break;
        if (bigEndian(entry) != resourceFork) continue;
        size_t from = bigEndian(entry + 4), part = bigEndian(entry + 8);
        if (from > length || part > length - from) break;
        if ((fork = __zalloc(part + 1))) {
            std::memcpy(fork, bytes + from, part);
            static_cast<char*>(fork)[part] = 0;
            size = part;
        }
        break;
    }
    zfree(bytes);
    return fork;
}

bool ZFileName::registerTemp() const {
    PathText path;
    return temporaryPath(*this, path) && toolkit::registerTemporary(path.text()) == 0;
}

bool ZFileName::removeTemp() const {
    PathText path;
    return temporaryPath(*this, path) && toolkit::unregisterTemporary(path.text()) &&
           toolkit::removeFile(path.text()) == 0;
}

bool ZFileName::unRegisterTemp() const {
    PathText path;
    return temporaryPath(*this, path) && toolkit::unregisterTemporary(path.text());
}
