#include "text/ZFileInfo.h"

#include "text/filelookup.h"
#include "toolkit/folders.h"

#include <cerrno>
#include <cstring>

using toolkit::FileKind;
using toolkit::PathText;

namespace {

/// What is known of the file at a path; false if there is none.
bool infoOf(const ZString& name, const char* path, int level, ZFileInfo& info) {
    toolkit::FileStatus status;
    uint flags;
    if (orv::detail::fileFacts(path, status, flags)) return false;
    info = ZFileInfo(name, status.kind == FileKind::File ? large(status.size) : 0, ZFileName::Flags(flags),
                     ZTime(status.writeTime + orv::detail::unixEpoch), level);
    return true;
}

using orv::detail::TextIn;
using Names = ZFileName::Names;
using Infos = ZFileName::Infos;

/// One scan: what is wanted, and where it goes.
class Scan {
public:
    Scan(bool recurse, bool folders, const ZFileName::Filter& filter)
        : recurse(recurse), folders(folders), filter(filter) {}

    Names* names = nullptr;
    Infos* infos = nullptr;

    bool setExtensions(const Names& wanted);
    /// An error number of the system.
    int run(const ZString& start);

private:
    bool accepts(const toolkit::WalkEntry& entry) const;
    bool add(const ZString& name, const toolkit::WalkEntry& entry);

    bool recurse, folders;
    const ZFileName::Filter& filter;
    Names extensions; ///< as bytes, without a dot in front
    toolkit::FolderWalk walk;
    bool further = false;
};

bool Scan::setExtensions(const Names& wanted) {
    for (const ZString& text : wanted) {
        TextIn<char> bytes(text.view());
        bool dot = bytes.length && bytes.text[0] == '.';
        ZString kept;
        if (bytes.failed || !kept.set(bytes.text + dot, bytes.length - dot) || !extensions.append(kept)) return false;
    }
    return true;
}

bool Scan::accepts(const toolkit::WalkEntry& entry) const {
    if (entry.kind == FileKind::Folder) return folders;
    if (entry.kind != FileKind::File) return false;
    if (extensions.isEmpty()) return true;
    const char *name = entry.path + entry.nameAt, *end = entry.path + entry.length;
    // As in `extension()`: a dot that begins the name is none of an extension.
    const char* dot = std::strrchr(name, '.');
    const char* text = dot && dot > name ? dot + 1 : end;
    for (const ZString& wanted : extensions) {
        orv::detail::TextView view = wanted.view();
        if (orv::detail::sameName(text, size_t(end - text), static_cast<const char*>(view.text), size_t(view.length)))
            return true;
    }
    return false;
}

bool Scan::add(const ZString& name, const toolkit::WalkEntry& entry) {
    if (names) return names->append(name);
    ZFileInfo info;
    // What has gone meanwhile isn't found.
    return !infoOf(name, entry.path, int(entry.depth), info) || infos->append(info);
}

int Scan::run(const ZString& start) {
    PathText native, shown;
    TextIn<char> given(start.view());
    if (given.failed) return ENOMEM;
    int error = given.length ? orv::detail::existingName(start.view(), native) : 0;
    if (!error) error = walk.start(native.text(), recurse, further);
    if (error) return error;
    further = true;

    // A logical start stays in front of what is found; another is told as it was found. What is called "~" in the
    // working folder must not be taken for a logical name.
    bool logical = given.length && given.text[0] == '~' && native.text()[0] != '~';
    size_t prefix = native.length();
    while (prefix && native.text()[prefix - 1] == '/') --prefix;
    size_t shownLength = size_t(given.length);
    while (shownLength && given.text[shownLength - 1] == '/') --shownLength;
    if (!(given.length ? shown.assign(given.text, shownLength) : shown.assign("./"))) return ENOMEM;
    shownLength = shown.length();

    toolkit::WalkEntry entry;
    while (walk.next(entry)) {
        if (!accepts(entry)) continue;
        const char* path = entry.path;
        size_t length = entry.length;
        if (logical || (path[0] == '~' && (!path[1] || path[1] == '/'))) {
            shown.truncate(shownLength);
            if (!shown.append(path + prefix, length - prefix)) return ENOMEM;
            path = shown.text();
            length = shown.length();
        }
        ZString name;
        if (!name.set(path, int(length))) return ENOMEM;
        if (filter.keep && !filter.keep(filter.context, name, entry.kind == FileKind::Folder)) continue;
        if (!add(name, entry)) return ENOMEM;
    }
    return walk.error();
}

template <class List>
bool collect(List& found, const ZString* starts, uint count, bool recurse, bool folders, const Names& extensions,
             const ZFileName::Filter& filter) {
    Scan scan(recurse, folders, filter);
    if constexpr (std::is_same_v<List, Names>)
        scan.names = &found;
    else
        scan.infos = &found;
    if (!scan.setExtensions(extensions)) return false;
    uint before = found.count();
    bool any = count == 0;
    for (uint i = 0; i < count; ++i) {
        int error = scan.run(starts[i]);
        any |= error == 0;
        if (error != ENOMEM) continue;
        found.remove(before, found.count() - before);
        return false;
    }
    return any;
}

} // namespace

#define ORV_SCANS(name, List, folders, ...)                                                                            \
    bool ZFileName::name(List& found, bool recurse __VA_ARGS__, const Names& extensions, const Filter& filter) const { \
        return collect(found, this, 1, recurse, folders, extensions, filter);                                          \
    }                                                                                                                  \
    bool ZFileName::name(List& found, const ZString& folder, bool recurse __VA_ARGS__, const Names& extensions,        \
                         const Filter& filter) {                                                                       \
        return collect(found, &folder, 1, recurse, folders, extensions, filter);                                       \
    }                                                                                                                  \
    bool ZFileName::name(List& found, const Names& starts, bool recurse __VA_ARGS__, const Names& extensions,          \
                         const Filter& filter) {                                                                       \
        Names kept(starts);                                                                                            \
        return collect(found, kept.data(), kept.count(), recurse, folders, extensions, filter);                        \
    }
ORV_SCANS(scan, Names, folders, , bool folders)
ORV_SCANS(scanFiles, Names, false)
ORV_SCANS(scanInfo, Infos, folders, , bool folders)
ORV_SCANS(scanFileInfo, Infos, false)
#undef ORV_SCANS

ZFileInfo::ZFileInfo(const ZFileName& file, int level) : name(file), depth(level) {
    PathText path;
    if (orv::detail::existingName(file.view(), path) == 0) infoOf(file, path.text(), level, *this);
}
