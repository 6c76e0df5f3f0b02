#include "toolkit/folders.h"

#include "toolkit/memory.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace toolkit {

namespace {

constexpr size_t bufferSize = 32768;

/// An entry as the kernel writes it.
struct KernelEntry {
    uint64_t inode;
    int64_t offset;
    uint16_t size;
    unsigned char type;
    char name[];
};

FileKind kindOfEntry(unsigned char type) {
    switch (type) {
    case DT_REG:
        return FileKind::File;
    case DT_DIR:
        return FileKind::Folder;
    case DT_LNK:
        return FileKind::Link;
    case DT_UNKNOWN:
        return FileKind::None;
    default:
        return FileKind::Other;
    }
}

bool isDots(const char* name) { return name[0] == '.' && (!name[1] || (name[1] == '.' && !name[2])); }

} // namespace

// One folder

FolderReader::~FolderReader() {
    close();
    freeBlock(buffer);
}

void FolderReader::close() {
    if (folder >= 0) ::close(folder);
    folder = -1;
    at = filled = 0;
}

int FolderReader::release() {
    int released = folder;
    folder = -1;
    close();
    return released;
}

int FolderReader::open(const char* path, int parent, bool followLink) {
    close();
    failure = askFileHook(FileCall::Open);
    if (failure) return failure;
    if (!buffer && !(buffer = static_cast<byte*>(allocBlock(bufferSize)))) return failure = ENOMEM;
    int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | (followLink ? 0 : O_NOFOLLOW);
    do folder = openat(parent < 0 ? AT_FDCWD : parent, path, flags);
    while (folder < 0 && errno == EINTR);
    return failure = folder < 0 ? errno : 0;
}

bool FolderReader::fill() {
    at = filled = 0;
    failure = askFileHook(FileCall::ReadFolder);
    if (failure) return false;
    long got;
    do got = syscall(SYS_getdents64, folder, buffer, bufferSize);
    while (got < 0 && errno == EINTR);
    // A folder that was removed while it is read is at its end.
    if (got < 0 && errno != ENOENT) failure = errno;
    filled = got > 0 ? size_t(got) : 0;
    return filled != 0;
}

bool FolderReader::next(FolderEntry& entry) {
    if (folder < 0) return false;
    for (;;) {
        if (at >= filled && !fill()) return false;
        auto raw = reinterpret_cast<const KernelEntry*>(buffer + at);
        at += raw->size;
        if (isDots(raw->name)) continue;
        entry.name = raw->name;
        entry.length = std::strlen(raw->name);
        entry.kind = kindOfEntry(raw->type);
        entry.inode = raw->inode;
        return true;
    }
}

// A folder and what is below it

struct FolderWalk::Visited {
    ularge device, inode;
};

/// Stands at the top of a stack of pending folders, behind the bytes of the path.
struct FolderWalk::Pending {
    uint length, depth;
};

FolderWalk::FolderWalk() {
    for (int& folder : held) folder = -1;
}

FolderWalk::~FolderWalk() {
    for (int folder : held)
        if (folder >= 0) ::close(folder);
    freeBlock(visited);
}

void FolderWalk::leave() {
    if (branches && depth < heldRoom) {
        if (held[depth] >= 0) ::close(held[depth]);
        held[depth] = reader.release();
    } else
        reader.close();
    branches = false;
}

/// Notes a folder; inode 0 marks a free place, since no folder has that.
bool FolderWalk::visit(ularge device, ularge inode, bool& fresh) {
    auto place = [&](Visited* table, size_t room, ularge dev, ularge ino) {
        size_t i = size_t((ino ^ dev << 7) * 0x9E3779B97F4A7C15u >> 20);
        while (table[i & (room - 1)].inode &&
               (table[i & (room - 1)].inode != ino || table[i & (room - 1)].device != dev))
            ++i;
        return table + (i & (room - 1));
    };
    if (visitedCount * 2 >= visitedRoom) {
        size_t room = visitedRoom ? visitedRoom * 2 : 128;
        auto table = static_cast<Visited*>(allocZeroedBlock(room * sizeof(Visited)));
        if (!table) return false;
        for (size_t i = 0; i < visitedRoom; ++i)
            if (visited[i].inode) *place(table, room, visited[i].device, visited[i].inode) = visited[i];
        freeBlock(visited);
        visited = table;
        visitedRoom = room;
    }
    Visited* slot = place(visited, visitedRoom, device, inode);
    fresh = !slot->inode;
    if (fresh) {
        *slot = {device, inode};
        ++visitedCount;
    }
    return true;
}

/// Opens a folder that hasn't been read yet; EEXIST for one that has.
int FolderWalk::enter(const char* folderPath, int parent, bool followLink) {
    if (int error = reader.open(folderPath, parent, followLink)) return error;
    struct stat status;
    bool fresh = false;
    if (fstat(reader.descriptor(), &status) != 0) return errno;
    if (!visit(status.st_dev, status.st_ino, fresh)) return ENOMEM;
    return fresh ? 0 : EEXIST;
}

int FolderWalk::start(const char* startPath, bool recurse, bool further) {
    recursive = recurse;
    if (!further) {
        if (visited) std::memset(static_cast<void*>(visited), 0, visitedRoom * sizeof(Visited));
        visitedCount = 0;
    }
    pending[0].truncate(0);
    pending[1].truncate(0);
    depth = skips = 0;
    branches = false;
    failure = path.assign(startPath) && path.join("") ? enter(*startPath ? startPath : ".", -1, true) : ENOMEM;
    folderLength = path.length();
    if (failure) reader.close();
    if (failure == EEXIST) failure = 0;
    return failure;
}

bool FolderWalk::push(const char* bytes, size_t length, bool link) {
    PathText& stack = pending[link];
    Pending mark{uint(length), depth + 1};
    size_t before = stack.length();
    if (stack.append(bytes, length) && stack.append("", 1) &&
        stack.append(reinterpret_cast<const char*>(&mark), sizeof mark)) {
        branches |= !link;
        return true;
    }
    stack.truncate(before);
    failure = ENOMEM;
    return false;
}

bool FolderWalk::openNext() {
    constexpr uint deepest = 512;
    for (;;) {
        bool link = pending[0].isEmpty();
        PathText& stack = pending[link];
        if (stack.isEmpty()) return false;
        Pending mark;
        std::memcpy(&mark, stack.text() + stack.length() - sizeof mark, sizeof mark);
        size_t begin = stack.length() - sizeof mark - 1 - mark.length;
        bool whole = path.assign(stack.text() + begin, mark.length);
        stack.truncate(begin);
        // The stack holds the subfolders of the folder above on top, so that is the one held. Links come later.
        int parent = !link && mark.depth <= heldRoom ? held[mark.depth - 1] : -1;
        const char* slash = parent < 0 ? nullptr : std::strrchr(path.text(), '/');
        const char* name = slash ? slash + 1 : path.text();
        int error = !whole ? ENOMEM : mark.depth > deepest ? ELOOP : enter(name, parent, link);
        if (error == ENOMEM || (!error && !path.join(""))) {
            failure = ENOMEM;
            reader.close();
            return false;
        }
        if (error) {
            skips += error != EEXIST;
            continue;
        }
        folderLength = path.length();
        depth = mark.depth;
        return true;
    }
}

bool FolderWalk::next(WalkEntry& entry) {
    if (failure) return false;
    FolderEntry found;
    while (!reader.next(found)) {
        skips += reader.error() != 0;
        leave();
        if (!openNext()) return false;
    }
    path.truncate(folderLength);
    if (!path.append(found.name, found.length)) {
        failure = ENOMEM;
        return false;
    }
    entry.link = found.kind == FileKind::Link;
    entry.kind = found.kind;
    FileStatus status;
    if (found.kind == FileKind::None && fileStatusAt(reader.descriptor(), found.name, status, false) == 0) {
        entry.link = status.kind == FileKind::Link;
        entry.kind = status.kind;
    }
    if (entry.link && fileStatusAt(reader.descriptor(), found.name, status, true) == 0) entry.kind = status.kind;
    if (recursive && entry.kind == FileKind::Folder && !push(path.text(), path.length(), entry.link)) return false;
    entry.path = path.text();
    entry.length = path.length();
    entry.nameAt = folderLength;
    entry.depth = depth;
    return true;
}

} // namespace toolkit
