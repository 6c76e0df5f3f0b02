#pragma once

#include "core/ZArrayT.h"
#include "text/ZString.h"

#include <type_traits>

/// A text that is a path, and the file it leads to. A *logical* name is relative to the application, or begins with
/// "~/", the folder of the user's data; stored files hold such names. An *absolute* name is what the platform
/// understands. Everything below takes names that begin with "~/" as they are; a relative name is the application's
/// only after `toAbsolute`, and else the platform's, from the working folder.
///
/// In questions of text both "/" and "\" separate. To the platform a "\" is a letter like any other, so names that a
/// scan found lead back to their files, whatever their bytes. What reads looks a name up exactly, then in lower case,
/// then ignoring case; what makes, renames or removes takes it exactly. A name whose ".." lead out of the user's data
/// folder has no file.
///
/// Operations that answer a bool leave the name as it is on false. Without memory the answer is false or empty.
class ORV_API ZFileName : public ZString {
public:
    /// What a path is.
    enum Flags { None = 0, Read = 1, Write = 2, Dir = 4, System = 8, Exec = 16 };
    enum Volume { UnknownVolume, FixedVolume, NetworkVolume, MemoryVolume, OpticalVolume, VirtualVolume };
    /// Bits that `toAbsolute` takes; those of streams, of which the others don't matter here.
    enum OpenFlags : uint { ForWriting = 2, ForCreation = 4, Create = 32790, DirectoryName = 0x40000 };

    // Lifetime

    ZFileName() = default;
    ZFileName(const ZString& name) : ZString(name) {}
    ZFileName(ZString&& name) noexcept : ZString(std::move(name)) {}
    ZFileName(const char* name) : ZString(name) {}
    ZFileName(const wchar* name) : ZString(name) {}
    /// As `setName`; raises a failure without memory.
    ZFileName(const ZString& path, const ZString& name);

    // Parts. A name that ends in a separator has an empty file name.

    /// The folder, without a separator at its end unless it is a root; empty if there is none.
    ZFileName path() const;
    /// The folder so many steps up; 1 is `path()`, 0 the name itself.
    ZFileName path(int depth) const;
    /// The whole name without its extension.
    ZString pathName() const;
    ZString fileName() const;
    /// A part between separators, counted from the end: 0 is the last one that isn't empty. Empty if there are fewer.
    ZString fileName(int index) const;
    /// The file name without its extension.
    ZString baseName() const;
    /// What stands behind the last dot of the file name. With `strict` a dot that begins the name counts too.
    ZString extension(bool strict = false) const;
    /// The file name for people: bytes that are no text show as U+FFFD.
    ZString displayName() const;
    /// What ends in ":" at the start, such as "C:"; empty without.
    ZString getDrive() const;
    bool hasPath() const;
    bool hasFile() const;
    /// Whether "*" or "?" occurs.
    bool hasWildcards() const;
    /// The steps "../" at the start.
    int countUp() const;
    /// Where to break the name to show it in lines of `width` units: the units of the first line, up to and with a
    /// separator if it has one. The whole length if it fits.
    int linePos(int width) const;

    // Kind

    bool exists() const;
    bool isFile() const;
    bool isDir() const;
    /// Whether the name itself tells that it is a folder, by a separator at its end, or is that of one.
    bool isPath() const;
    /// Whether it is there and neither a file nor a folder, but a device or the like.
    bool isSystem() const;
    bool isRoot() const;
    /// Whether it begins with a separator or a drive.
    bool isAbsolute() const;
    /// The name made absolute; itself where that can't be.
    ZFileName absolute() const;
    /// Whether a file could have this name: it isn't empty, holds no 0, and keeps to the platform's lengths.
    bool isValid() const;
    /// Whether it is there and can't be written.
    bool readOnly() const;
    /// Whether the file can be opened for writing, made if need be; neither is left behind as a change.
    bool allowWriting() const;
    Flags getFlags() const;
    /// Bytes; 0 if there is no file.
    large getSize() const;
    Volume getVolumeType() const;
    /// Bytes of the volume, and those that are free to this process.
    large diskSize() const;
    large diskSpace() const;

    // Times, on the wall clock; 0 if there is no file

    ZTime accessTime() const;
    /// 0 too where the volume doesn't keep it.
    ZTime creationTime() const;
    ZTime writeTime() const;
    /// When the contents or the properties changed last.
    ZTime modifyTime() const;
    /// Whether the write time isn't the one that a date text names; without a fraction in the text, to the second. Also
    /// true for a text that is no date, and if there is no file.
    bool changed(const ZString& text) const;

    // Editing

    /// `name` in the folder `path`: each "../" at its start goes up one folder, and no further than the path goes. An
    /// empty path gives the name alone.
    bool setName(const ZString& path, const ZString& name);
    /// Looks for `name` in the folder `path`, or in that of the file `path`, then upwards. False if no folder has it. A
    /// name that begins with "~" or "/" is taken as it is.
    bool selectName(const ZString& path, const ZString& name);
    bool addFileName(const ZString& name);
    bool addExtension(const ZString& text);
    /// Takes the place of the extension; an empty one removes it.
    bool setExtension(const ZString& text);
    /// Down one folder.
    bool enter(const ZString& folder) { return addFileName(folder); }
    /// Up one folder; false at the top.
    bool exit();
    /// Has it end in a separator: "\" if the text uses no other, else "/".
    bool completePath();
    /// Takes a name without a separator, or one that begins with "..", from the folder `base`; others stand.
    bool resolve(const ZString& base);
    /// Makes a name below the folder of `base` relative to that, ignoring case. With `all` goes up from there too, at
    /// most 64 folders. False if that doesn't reach it.
    bool relativeName(const ZString& base, bool all);

    // Conversion

    /// A relative name leads to the user's copy of an application's file where there is one, else to the application.
    /// With `ForWriting` or `ForCreation` it leads to the user's data if the application's place can't be written, and
    /// the folders of the user's data that it needs are made. With `DirectoryName` the name is that of a folder: it has
    /// no separator at its end, and is made itself with the folders. False for an empty name and one without a place.
    bool toAbsolute(uint flags = 0);
    /// The logical name for an absolute one; false if it lies neither in the user's data nor in the application.
    bool toRelative();
    /// Takes `folder` and the separator behind it off the front, ignoring case, and puts `prefix` there.
    bool toRelative(const ZString& folder, const ZString& prefix);
    /// Every "\" becomes "/".
    bool toExternal();

    // Names

    /// Adds the extension unless the name ends in it, ignoring case. It may have dots in it itself, as in "tar.gz".
    static ZFileName appendExtension(const ZString& name, const ZString& text);
    /// Adds the first of the extensions that isn't empty, unless the name has one of them; an empty one is that of
    /// names without.
    static ZFileName appendExtension(const ZString& name, const ZArrayT<ZString>& extensions);
    /// A name that begins with "~" or "/", or that exists, as it is; else the one in `folder` if that exists; else
    /// empty.
    static ZFileName completeFileName(const ZString& folder, const ZString& name);
    /// The first folder, made absolute, that gives an answer.
    static ZFileName completeFileName(const ZArrayT<ZString>& folders, const ZString& name);
    /// The first of "base_1.extension" to "base_65534.extension" that nothing in the folder has; empty if all are
    /// taken.
    static ZFileName createNewFileName(const ZString& folder, const ZString& base, const ZString& extension);
    /// The name relative to the first of the folders, made absolute, that it lies in; else the name, and for one of the
    /// folders itself.
    static ZFileName shrinkFileName(const ZArrayT<ZString>& folders, const ZString& name);
    /// The name in lines of at most `width` units, broken as by `linePos`, for a message.
    static ZString splitAlertName(const ZString& name, int width);
    /// This name with a number: "base 001.extension", from `index` up to below `limit`; the first that nothing has, or
    /// the next one at once with `overwrite`. `index` goes behind it. With `folder` the names lie in a folder of the
    /// base name, which is made. Empty when the limit is reached.
    ZFileName incrementalName(int& index, int limit, bool folder, bool overwrite) const;

    // Places; empty where the platform has none

    /// A folder of logical name, made and ready for writing; the name as it is where that can't be.
    static ZFileName userFolder(const ZString& name);
    /// The folder of that name in the user's data, made and absolute.
    static ZFileName userPath(const ZSelector& folder);
    /// A file in it, which need not be there; empty too for a name that leads out of the user's data.
    static ZFileName userFile(const ZSelector& folder, const ZString& name);
    /// The folder of the executable.
    static ZFileName appPath();
    /// The root folder of the installation, and its library folder.
    static ZFileName mainPath();
    static ZFileName hulePath();
    static ZFileName tempPath();
    /// A new empty file in the folder for temporary files, which goes at the end of the process.
    static ZFileName temporary();
    static ZFileName temporary(const ZString& extension);
    /// Removes all temporary files now; true if none is left.
    static bool cleanTemporary();
    /// Removes the folder of the user's data with all that is in it.
    static bool removeUserData();

    // File work. A file is replaced whole: readers see the old or the new one, and a failure leaves the old one.

    /// True as well for a folder that is there already.
    bool createDir(bool parents) const;
    using ZString::remove;
    /// The file, or a folder that is empty.
    bool remove() const;
    /// Gives the file another name, which must be free; this name stays as it is.
    bool rename(const ZString& name) const;
    /// Copies the file to a name that must be free; `copyTo` and `copyFrom` replace the file there.
    bool copy(const ZString& name) const;
    bool copyTo(const ZString& name) const;
    bool copyFrom(const ZString& name) const;
    static constexpr size_t readLimit = size_t(1) << 31;
    /// The contents in a new block, to be freed with `zfree`; a 0 follows that `size` doesn't count. Null if it can't
    /// be read or is above `limit` bytes.
    void* read(size_t& size, size_t limit = readLimit) const;
    bool write(const void* bytes, size_t size) const;
    /// The resource fork, which lies in the file "._name" beside it in the AppleDouble form; as `read`.
    void* readFork(size_t& size, size_t limit = readLimit) const;
    /// Has the file removed at the end of the process.
    bool registerTemp() const;
    /// Removes it now, if it was registered.
    bool removeTemp() const;
    /// Lets it stay.
    bool unRegisterTemp() const;
    /// Brings a file over from where it used to lie: what this name is without `prefix`, in the user's folder `folder`,
    /// is copied to this name, made absolute for writing. False if it isn't there; a file that has this name stays.
    bool copyLegacyFile(const ZString& prefix, const ZSelector& folder) const;
    /// The same for all files of an extension in and below such a folder; those that are in the new place stay. False
    /// if there is no such folder or a file couldn't be copied; the others are all the same.
    bool copyLegacyFolder(const ZString& prefix, const ZSelector& folder, const ZString& extension) const;
    /// Whether the extension is this one, ignoring case.
    bool checkExt(const ZString& text) const;

    // Scans: of the folder of this name, of another, or of several. Each adds what it found to `found`, as the name of
    // the start with what follows, in no set order, and answers false without memory or if no start can be read; what
    // else can't be read is passed over. Files have one of the extensions, ignoring case, if there are any.
    // Links are followed, each folder is read once. What is neither file nor folder isn't found.

    /// Decides what a scan keeps; it doesn't keep a scan out of a folder. `keep` may be null. It may be made of
    /// anything that can be called so, which has to outlive the scan.
    struct Filter {
        bool (*keep)(void* context, const ZString& name, bool isFolder);
        void* context;

        Filter() : keep(nullptr), context(nullptr) {}
        Filter(bool (*keep)(void*, const ZString&, bool), void* context) : keep(keep), context(context) {}
        /// A method with two arguments, name and folder; one that isn't valid keeps everything.
        Filter(const ZMethodRef& method);
        template <class F>
        requires requires(F& call, const ZString& name) { bool(call(name, true)); }
        Filter(F&& call)
            : keep([](void* target, const ZString& name, bool isFolder) {
                  return bool((*static_cast<std::remove_reference_t<F>*>(target))(name, isFolder));
              }),
              context(const_cast<void*>(static_cast<const void*>(&call))) {}
    };
    using Names = ZArrayT<ZString>;
    using Infos = ZArrayT<ZFileInfo>;

    /// Files and, with `folders`, folders.
    bool scan(Names& found, bool recurse, bool folders, const Names& extensions = {}, const Filter& filter = {}) const;
    static bool scan(Names& found, const ZString& folder, bool recurse, bool folders, const Names& extensions = {},
                     const Filter& filter = {});
    static bool scan(Names& found, const Names& starts, bool recurse, bool folders, const Names& extensions = {},
                     const Filter& filter = {});
    /// Files only.
    bool scanFiles(Names& found, bool recurse, const Names& extensions = {}, const Filter& filter = {}) const;
    static bool scanFiles(Names& found, const ZString& folder, bool recurse, const Names& extensions = {},
                          const Filter& filter = {});
    static bool scanFiles(Names& found, const Names& starts, bool recurse, const Names& extensions = {},
                          const Filter& filter = {});
    /// The same with what is known of each entry.
    bool scanInfo(Infos& found, bool recurse, bool folders, const Names& extensions = {},
                  const Filter& filter = {}) const;
    static bool scanInfo(Infos& found, const ZString& folder, bool recurse, bool folders, const Names& extensions = {},
                         const Filter& filter = {});
    static bool scanInfo(Infos& found, const Names& starts, bool recurse, bool folders, const Names& extensions = {},
                         const Filter& filter = {});
    bool scanFileInfo(Infos& found, bool recurse, const Names& extensions = {}, const Filter& filter = {}) const;
    static bool scanFileInfo(Infos& found, const ZString& folder, bool recurse, const Names& extensions = {},
                             const Filter& filter = {});
    static bool scanFileInfo(Infos& found, const Names& starts, bool recurse, const Names& extensions = {},
                             const Filter& filter = {});

    // The same into arrays of texts, and of `ZFileInfo`

    bool scan(ZVArray& found, bool recurse, bool folders, const Names& extensions = {},
              const Filter& filter = {}) const;
    static bool scan(ZVArray& found, const ZString& folder, bool recurse, bool folders, const Names& extensions = {},
                     const Filter& filter = {});
    static bool scan(ZVArray& found, const Names& starts, bool recurse, bool folders, const Names& extensions = {},
                     const Filter& filter = {});
    bool scanFiles(ZVArray& found, bool recurse, const Names& extensions = {}, const Filter& filter = {}) const;
    static bool scanFiles(ZVArray& found, const ZString& folder, bool recurse, const Names& extensions = {},
                          const Filter& filter = {});
    static bool scanFiles(ZVArray& found, const Names& starts, bool recurse, const Names& extensions = {},
                          const Filter& filter = {});
    bool scanInfo(ZVArray& found, bool recurse, bool folders, const Names& extensions = {},
                  const Filter& filter = {}) const;
    static bool scanInfo(ZVArray& found, const ZString& folder, bool recurse, bool folders,
                         const Names& extensions = {}, const Filter& filter = {});
    static bool scanInfo(ZVArray& found, const Names& starts, bool recurse, bool folders, const Names& extensions = {},
                         const Filter& filter = {});
    bool scanFileInfo(ZVArray& found, bool recurse, const Names& extensions = {}, const Filter& filter = {}) const;
    static bool scanFileInfo(ZVArray& found, const ZString& folder, bool recurse, const Names& extensions = {},
                             const Filter& filter = {});
    static bool scanFileInfo(ZVArray& found, const Names& starts, bool recurse, const Names& extensions = {},
                             const Filter& filter = {});

private:
    enum class Step { Done, Top, NoMemory };
    Step stepUp();
    /// Up so many folders, or to the top.
    bool stepsUp(int steps);
};
static_assert(sizeof(ZFileName) == sizeof(ZString));
