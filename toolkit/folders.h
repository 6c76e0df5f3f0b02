#pragma once

#include "toolkit/files.h"

/// Reading folders.
namespace toolkit {

struct FolderEntry {
    const char* name; ///< bytes as the volume has them, ended by 0; gone with the next call
    size_t length;
    FileKind kind; ///< `None` where the volume doesn't tell
    ularge inode;
};

/// The entries of one folder, without "." and "..", in the order in which the volume gives them. One thread.
class ORV_API FolderReader {
public:
    FolderReader() = default;
    ~FolderReader();
    FolderReader(const FolderReader&) = delete;

    /// Starts on a folder, `path` taken from the open folder `parent` unless it is absolute; -1 for the working folder.
    /// Ends with a folder that was open. Links to folders are followed unless `followLink` is false.
    int open(const char* path, int parent = -1, bool followLink = true);
    /// False at the end, and for an error, which `error` tells then. A folder that goes away ends without one.
    bool next(FolderEntry& entry);
    int error() const { return failure; }
    /// The descriptor while the folder is open, else -1.
    int descriptor() const { return folder; }
    /// Ends reading and hands the descriptor over to the caller, who closes it.
    int release();
    void close();

private:
    bool fill();

    int folder = -1;
    int failure = 0;
    byte* buffer = nullptr;
    size_t at = 0, filled = 0;
};

struct WalkEntry {
    const char* path; ///< the start as it was given, and what follows; ended by 0; gone with the next call
    size_t length;
    size_t nameAt; ///< where the name begins in it
    FileKind kind; ///< of what a link leads to; `Link` for a broken one
    uint depth;    ///< 0 in the start folder
    bool link;
};

/// A folder and, if asked for, all below it: first the entries of a folder, then those of its subfolders. Folders are
/// told apart by device and inode and each is read once, those behind links last, so that loops end and what a real
/// path leads to is told under that. A folder that can't be read, has gone meanwhile, or lies deeper than 512, is
/// passed over. One thread.
class ORV_API FolderWalk {
public:
    FolderWalk();
    ~FolderWalk();
    FolderWalk(const FolderWalk&) = delete;

    /// An error of the start folder itself, or ENOMEM. With `further`, folders that were read before stay read; a start
    /// that was isn't an error.
    int start(const char* path, bool recurse, bool further = false);
    /// False at the end; `error` tells then whether it came too early (ENOMEM).
    bool next(WalkEntry& entry);
    int error() const { return failure; }
    /// Folders that were passed over so far.
    uint skipped() const { return skips; }

private:
    struct Pending;
    struct Visited;

    bool openNext();
    int enter(const char* path, int parent, bool followLink);
    /// Ends with the folder that was read. It is kept open while its subfolders are read, unless it lies too deep.
    void leave();
    bool visit(ularge device, ularge inode, bool& fresh);
    bool push(const char* bytes, size_t length, bool link);

    FolderReader reader;
    PathText path;
    static constexpr uint heldRoom = 24;
    int held[heldRoom];      ///< by depth, the folder above the one being read; -1 for none
    bool branches = false;   ///< the folder being read has subfolders that are still to be read
    size_t folderLength = 0; ///< of `path`, up to where names begin
    uint depth = 0;
    bool recursive = false;
    int failure = 0;
    uint skips = 0;
    PathText pending[2]; ///< stacks of folders still to be read: found as such, found behind links
    Visited* visited = nullptr;
    size_t visitedRoom = 0, visitedCount = 0;
};

} // namespace toolkit
