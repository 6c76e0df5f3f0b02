#include "text/ZFileName.h"

#include "core/ZSelector.h"
#include "text/filelookup.h"
#include "text/filetext.h"
#include "toolkit/environment.h"
#include "toolkit/places.h"

#include <cstdio>
#include <cstring>
#include <utility>

using orv::detail::PathUnits;
using toolkit::PathText;

namespace {

bool setPath(ZFileName& name, const PathText& path) { return name.set(path.text(), int(path.length())); }

ZFileName pathFrom(int (*place)(PathText&)) {
    PathText path;
    ZFileName name;
    if (place(path) == 0) setPath(name, path);
    return name;
}

bool isThere(const char* path) {
    toolkit::FileStatus status;
    return toolkit::fileStatus(path, status) == 0;
}

/// Whether something at the path could be written: itself, or what is to be made in its folder.
bool writable(const char* path) {
    if (isThere(path)) return toolkit::fileAccess(path) & toolkit::mayWrite;
    PathText folder;
    if (!folder.assign(path)) return false;
    folder.cutName();
    return toolkit::fileAccess(folder.text()) & toolkit::mayWrite;
}

/// The place of a relative name: the user's copy of a file of the application, or the application's own.
bool placeOf(const char* name, bool forWriting, PathText& path, bool& ofUser) {
    PathText own;
    ofUser = false;
    if (toolkit::appFolder(path) || !path.join(name)) return false;
    const toolkit::Environment* environment = toolkit::environment();
    if (environment && !environment->userPath) return true;
    PathText logical;
    if (!logical.assign("~/") || !logical.append(name)) return false;
    // A name that would lead out of the user's data has no copy there.
    if (toolkit::userDataPath(logical.text(), own)) return true;
    ofUser = isThere(own.text()) || (forWriting && !writable(path.text()));
    return !ofUser || path.assign(own.text(), own.length());
}

bool beginsAbsolute(const ZString& name) {
    PathUnits units(name.view());
    return units.length() && (units[0] == '~' || units[0] == '/');
}

} // namespace

// Conversion

bool ZFileName::toAbsolute(uint flags) {
    bool forWriting = flags & (ForWriting | ForCreation), ofUser = false;
    PathText native, path;
    size_t fixed;
    if (orv::detail::nativeName(view(), native, fixed)) return false;
    if (fixed) {
        ofUser = true;
        if (!path.assign(native.text(), native.length())) return false;
    } else if (isAbsolute()) {
        if (!(flags & DirectoryName)) return true;
        if (!path.assign(native.text(), native.length())) return false;
    } else if (native.text()[0] == '~' || !placeOf(native.text(), forWriting, path, ofUser))
        return false;

    if (flags & DirectoryName) {
        while (path.length() > 1 && path.text()[path.length() - 1] == '/') path.truncate(path.length() - 1);
    }
    if (ofUser && forWriting) {
        PathText folder;
        if (!folder.assign(path.text(), path.length())) return false;
        if (!(flags & DirectoryName)) folder.cutName();
        if (toolkit::createFolder(folder.text(), true, toolkit::usersFolder)) return false;
    }
    return setPath(*this, path);
}

bool ZFileName::toRelative() {
    if (!isAbsolute()) return !isEmpty();
    struct {
        int (*place)(PathText&);
        const char* prefix;
    } rows[] = {{toolkit::userDataFolder, "~/"}, {toolkit::appFolder, ""}};
    for (auto& row : rows) {
        PathText path;
        if (row.place(path)) continue;
        orv::detail::TextView all = view();
        int taken = orv::detail::matchFolder(all, {path.text(), int(path.length())}, false);
        if (taken < 0 || (taken == all.length && !*row.prefix)) continue;
        ZFileName relative(row.prefix);
        ZString rest = end(taken);
        if (rest.length() != all.length - taken || !relative.append(rest)) return false;
        swap(relative);
        return true;
    }
    return false;
}

ZFileName ZFileName::absolute() const {
    ZFileName name(*this);
    name.toAbsolute();
    return name;
}

bool ZFileName::toExternal() { return replace(uint('\\'), uint('/')) >= 0; }

// Names

ZFileName ZFileName::completeFileName(const ZString& folder, const ZString& name) {
    if (name.isEmpty() || beginsAbsolute(name) || ZFileName(name).exists()) return name;
    ZFileName inside;
    return inside.setName(folder, name) && inside.exists() ? inside : ZFileName();
}

ZFileName ZFileName::completeFileName(const ZArrayT<ZString>& folders, const ZString& name) {
    for (const ZString& folder : folders) {
        ZFileName found = completeFileName(ZFileName(folder).absolute(), name);
        if (!found.isEmpty()) return found;
    }
    return {};
}

ZFileName ZFileName::createNewFileName(const ZString& folder, const ZString& base, const ZString& extension) {
    constexpr int most = 65534;
    for (int number = 1; number <= most; ++number) {
        char text[16];
        int length = std::snprintf(text, sizeof text, "_%d", number);
        ZFileName name;
        if (!name.setName(folder, base) || !name.append(text, length)) return {};
        if (!extension.isEmpty() && !name.addExtension(extension)) return {};
        PathText native;
        size_t fixed;
        if (orv::detail::nativeName(name.view(), native, fixed)) return {};
        if (!toolkit::nameTaken(native.text())) return name;
    }
    return {};
}

ZFileName ZFileName::shrinkFileName(const ZArrayT<ZString>& folders, const ZString& name) {
    for (const ZString& folder : folders) {
        ZFileName shorter(name);
        if (shorter.toRelative(ZFileName(folder).absolute(), ZString()) && !shorter.isEmpty()) return shorter;
    }
    return name;
}

ZFileName ZFileName::incrementalName(int& index, int limit, bool folder, bool overwrite) const {
    ZString base = baseName(), ending = extension();
    ZFileName place = path();
    if (folder && (!place.setName(place, base) || !place.createDir(true))) return {};
    while (index < limit) {
        char text[16];
        int length = std::snprintf(text, sizeof text, " %.3d", index);
        ZFileName name;
        if (!name.setName(place, base) || !name.append(text, length)) return {};
        if (!ending.isEmpty() && !name.addExtension(ending)) return {};
        PathText native;
        size_t fixed;
        if (orv::detail::nativeName(name.view(), native, fixed)) return {};
        ++index;
        if (overwrite || !toolkit::nameTaken(native.text())) return name;
    }
    return {};
}

// Places

ZFileName ZFileName::userFolder(const ZString& name) {
    ZFileName folder(name);
    folder.toAbsolute(Create | DirectoryName);
    return folder;
}

ZFileName ZFileName::userPath(const ZSelector& folder) {
    ZFileName path("~/");
    bool made =
        !folder.isEmpty() && path.append(folder.string(), folder.length()) && path.toAbsolute(Create | DirectoryName);
    return made ? path : ZFileName();
}

ZFileName ZFileName::userFile(const ZSelector& folder, const ZString& name) {
    ZFileName path("~/");
    if (userPath(folder).isEmpty() || !path.append(folder.string(), folder.length())) return {};
    return path.setName(path, name) && path.toAbsolute() ? path : ZFileName();
}

ZFileName ZFileName::appPath() { return pathFrom(toolkit::appFolder); }
ZFileName ZFileName::mainPath() { return pathFrom(toolkit::mainFolder); }
ZFileName ZFileName::tempPath() { return pathFrom(toolkit::tempFolder); }

ZFileName ZFileName::hulePath() {
    ZFileName path = mainPath();
    return !path.isEmpty() && path.addFileName("hule") ? path : ZFileName();
}

ZFileName ZFileName::temporary() { return temporary(ZString()); }

ZFileName ZFileName::temporary(const ZString& extension) {
    orv::detail::TextIn<char> bytes(extension.view());
    PathText path, ending;
    bool ready = !bytes.failed && !std::memchr(bytes.text, 0, size_t(bytes.length)) &&
                 (!bytes.length || (ending.assign(".") && ending.append(bytes.text, size_t(bytes.length))));
    if (!ready || toolkit::tempFolder(path) || !path.join("orv-")) return {};
    ZFileName name;
    if (toolkit::createUnique(path, ending.text())) return {};
    if (setPath(name, path) && toolkit::registerTemporary(path.text()) == 0) return name;
    toolkit::removeFile(path.text());
    return {};
}

bool ZFileName::cleanTemporary() { return toolkit::cleanTemporary() == 0; }

bool ZFileName::removeUserData() {
    PathText path;
    return toolkit::userDataFolder(path) == 0 &&
           (!toolkit::nameTaken(path.text()) || toolkit::removeTree(path.text()) == 0);
}

// What moved

bool ZFileName::copyLegacyFile(const ZString& prefix, const ZSelector& folder) const {
    ZFileName old = userFile(folder, removePrefix(prefix)), place(*this);
    return old.isFile() && place.toAbsolute(Create) && old.copy(place);
}

bool ZFileName::copyLegacyFolder(const ZString& prefix, const ZSelector& folder, const ZString& extension) const {
    ZFileName old = userFile(folder, removePrefix(prefix));
    Names files, extensions;
    if (!old.isDir() || !extensions.append(extension) || !old.scanFiles(files, true, extensions)) return false;
    bool whole = true;
    for (const ZString& file : files) {
        ZFileName rest(file), place;
        bool named = rest.toRelative(old, ZString()) && place.setName(*this, rest) && place.toAbsolute(Create);
        PathText native;
        size_t fixed;
        whole &= named && !orv::detail::nativeName(place.view(), native, fixed) &&
                 (toolkit::nameTaken(native.text()) || ZFileName(file).copy(place));
    }
    return whole;
}
