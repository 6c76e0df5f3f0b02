#pragma once

#include "text/ZFileName.h"
#include "text/ZTime.h"

/// One entry of a folder scan. A value.
class ORV_API ZFileInfo {
public:
    using ZRelocatable = void;

    ZFileInfo() = default;
    ZFileInfo(const ZString& fileName, large size, ZFileName::Flags flags, const ZTime& writeTime, int level)
        : name(fileName), bytes(size), kind(flags), written(writeTime), depth(level) {}
    /// Of a file as it is now; empty, with the name, if there is none.
    explicit ZFileInfo(const ZFileName& file, int level = 0);

    const ZString& fileName() const { return name; }
    void setFileName(const ZString& fileName) { name = fileName; }
    /// Bytes; 0 for a folder.
    large size() const { return bytes; }
    void setSize(large size) { bytes = size; }
    ZFileName::Flags flags() const { return kind; }
    void setFlags(ZFileName::Flags flags) { kind = flags; }
    bool isDir() const { return kind & ZFileName::Dir; }
    const ZTime& writeTime() const { return written; }
    void setWriteTime(const ZTime& time) { written = time; }
    /// How many folders below the start of the scan; 0 in the start folder itself.
    int level() const { return depth; }
    void setLevel(int level) { depth = level; }

    bool operator==(const ZFileInfo&) const = default;
    /// By the name.
    int compare(const ZFileInfo& other) const { return name.compare(other.name); }

private:
    ZString name;
    large bytes = 0;
    ZFileName::Flags kind = ZFileName::None;
    ZTime written;
    int depth = 0;
};
