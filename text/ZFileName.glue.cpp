#include "text/ZFileName.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/ZMethodRef.h"
#include "object/glue.h"
#include "object/ztype.h"
#include "text/ZFileInfo.h"
#include "text/ZString.h"
#include "text/ZTime.h"
#include "value/ZVArray.h"

// A scan of this folder, of another one and of several. Behind the name and what is found: its other parameters.
#define ORV_SCAN_INTO(Found, name, ...)                                                                                \
    ORV_ADAPTER(                                                                                                       \
        bool, name, (Found&, __VA_ARGS__), const, [](const Self& at, auto&&... given) { return at.name(given...); },   \
        "sb1"),                                                                                                        \
        ORV_STATIC_ADAPTER(                                                                                            \
            bool, name, (Found&, const ZString&, __VA_ARGS__), [](auto&&... given) { return Self::name(given...); },   \
            "sb1"),                                                                                                    \
        ORV_STATIC_ADAPTER(                                                                                            \
            bool, name, (Found&, const ZArrayT<ZString>&, __VA_ARGS__),                                                \
            [](auto&&... given) { return Self::name(given...); }, "sb1")
// The same into both kinds of arrays.
#define ORV_SCAN(name, Item, ...)                                                                                      \
    ORV_SCAN_INTO(ZArrayT<Item>, name, __VA_ARGS__), ORV_SCAN_INTO(ZVArray, name, __VA_ARGS__)

namespace orv::glue {

template <> struct Table<ZFileName> : Declares<ZFileName> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_CONSTRUCTOR((const ZString&, const ZString&)),
        ORV_METHOD(ZFileName, path, (), const),
        ORV_METHOD(ZFileName, path, (int), const),
        ORV_METHOD(ZString, pathName, (), const),
        ORV_METHOD(ZString, fileName, (), const),
        ORV_METHOD(ZString, fileName, (int), const),
        ORV_METHOD(ZString, baseName, (), const),
        ORV_METHOD(ZString, extension, (bool), const),
        ORV_METHOD(ZString, displayName, (), const),
        ORV_METHOD(ZString, getDrive, (), const),
        ORV_METHOD(bool, hasPath, (), const),
        ORV_METHOD(bool, hasFile, (), const),
        ORV_METHOD(bool, hasWildcards, (), const),
        ORV_METHOD(int, countUp, (), const),
        ORV_METHOD(int, linePos, (int), const),
        ORV_METHOD(bool, exists, (), const),
        ORV_METHOD(bool, isFile, (), const),
        ORV_METHOD(bool, isDir, (), const),
        ORV_METHOD(bool, isPath, (), const),
        ORV_METHOD(bool, isSystem, (), const),
        ORV_METHOD(bool, isRoot, (), const),
        ORV_METHOD(bool, isAbsolute, (), const),
        ORV_METHOD(ZFileName, absolute, (), const),
        ORV_METHOD(bool, isValid, (), const),
        ORV_METHOD(bool, readOnly, (), const),
        ORV_METHOD(bool, allowWriting, (), const),
        ORV_METHOD(ZFileName::Flags, getFlags, (), const),
        ORV_METHOD(large, getSize, (), const),
        ORV_METHOD(ZFileName::Volume, getVolumeType, (), const),
        ORV_METHOD(large, diskSize, (), const),
        ORV_METHOD(large, diskSpace, (), const),
        ORV_METHOD(ZTime, accessTime, (), const),
        ORV_METHOD(ZTime, creationTime, (), const),
        ORV_METHOD(ZTime, writeTime, (), const),
        ORV_METHOD(ZTime, modifyTime, (), const),
        ORV_METHOD(bool, changed, (const ZString&), const),
        ORV_METHOD(bool, setName, (const ZString&, const ZString&), ),
        ORV_METHOD(bool, selectName, (const ZString&, const ZString&), ),
        ORV_METHOD(bool, addFileName, (const ZString&), ),
        ORV_METHOD(bool, addExtension, (const ZString&), ),
        ORV_METHOD(bool, setExtension, (const ZString&), ),
        ORV_METHOD(bool, enter, (const ZString&), ),
        ORV_METHOD(bool, exit, (), ),
        ORV_METHOD(bool, completePath, (), ),
        ORV_METHOD(bool, resolve, (const ZString&), ),
        ORV_METHOD(bool, relativeName, (const ZString&, bool), ),
        ORV_METHOD(bool, toAbsolute, (uint), ),
        ORV_METHOD(bool, toRelative, (), ),
        ORV_METHOD(bool, toRelative, (const ZString&, const ZString&), ),
        ORV_METHOD(bool, toExternal, (), ),
        ORV_STATIC(ZFileName, appendExtension, (const ZString&, const ZString&)),
        ORV_STATIC(ZFileName, appendExtension, (const ZString&, const ZArrayT<ZString>&)),
        ORV_STATIC(ZFileName, completeFileName, (const ZString&, const ZString&)),
        ORV_STATIC(ZFileName, completeFileName, (const ZArrayT<ZString>&, const ZString&)),
        ORV_STATIC(ZFileName, createNewFileName, (const ZString&, const ZString&, const ZString&), "sb1"),
        ORV_STATIC(ZFileName, shrinkFileName, (const ZArrayT<ZString>&, const ZString&)),
        ORV_STATIC(ZString, splitAlertName, (const ZString&, int)),
        ORV_METHOD(ZFileName, incrementalName, (int&, int, bool, bool), const),
        ORV_STATIC(ZFileName, userFolder, (const ZString&)),
        ORV_STATIC(ZFileName, userPath, (const ZSelector&)),
        ORV_STATIC(ZFileName, userFile, (const ZSelector&, const ZString&)),
        ORV_STATIC(ZFileName, appPath, ()),
        ORV_STATIC(ZFileName, mainPath, ()),
        ORV_STATIC(ZFileName, hulePath, ()),
        ORV_STATIC(ZFileName, tempPath, ()),
        ORV_STATIC(ZFileName, temporary, (), "sb1"),
        ORV_STATIC(ZFileName, temporary, (const ZString&), "sb1"),
        ORV_STATIC(bool, cleanTemporary, (), "sb1"),
        ORV_STATIC(bool, removeUserData, (), "sb1"),
        ORV_METHOD(bool, createDir, (bool), const, "sb1"),
        ORV_METHOD(bool, remove, (), const, "sb1"),
        ORV_METHOD(bool, rename, (const ZString&), const, "sb1"),
        ORV_METHOD(bool, copy, (const ZString&), const, "sb1"),
        ORV_METHOD(bool, copyTo, (const ZString&), const, "sb1"),
        ORV_METHOD(bool, copyFrom, (const ZString&), const, "sb1"),
        ORV_METHOD(bool, registerTemp, (), const, "sb1"),
        ORV_METHOD(bool, removeTemp, (), const, "sb1"),
        ORV_METHOD(bool, unRegisterTemp, (), const, "sb1"),
        ORV_METHOD(bool, copyLegacyFile, (const ZString&, const ZSelector&), const, "sb1"),
        ORV_METHOD(bool, copyLegacyFolder, (const ZString&, const ZSelector&, const ZString&), const, "sb1"),
        ORV_METHOD(bool, checkExt, (const ZString&), const),
        ORV_SCAN(scan, ZString, bool, bool, const ZArrayT<ZString>&),
        ORV_SCAN(scan, ZString, bool, bool, const ZArrayT<ZString>&, const ZMethodRef&),
        ORV_SCAN(scanFiles, ZString, bool, const ZArrayT<ZString>&),
        ORV_SCAN(scanFiles, ZString, bool, const ZArrayT<ZString>&, const ZMethodRef&),
        ORV_SCAN(scanInfo, ZFileInfo, bool, bool, const ZArrayT<ZString>&),
        ORV_SCAN(scanInfo, ZFileInfo, bool, bool, const ZArrayT<ZString>&, const ZMethodRef&),
        ORV_SCAN(scanFileInfo, ZFileInfo, bool, const ZArrayT<ZString>&),
        ORV_SCAN(scanFileInfo, ZFileInfo, bool, const ZArrayT<ZString>&, const ZMethodRef&),
    };
    static constexpr EnumItemRow flagsItems[] = {ORV_ITEM(Flags, None), ORV_ITEM(Flags, Read),   ORV_ITEM(Flags, Write),
                                                 ORV_ITEM(Flags, Dir),  ORV_ITEM(Flags, System), ORV_ITEM(Flags, Exec)};
    static constexpr EnumItemRow volumeItems[] = {ORV_ITEM(Volume, UnknownVolume), ORV_ITEM(Volume, FixedVolume),
                                                  ORV_ITEM(Volume, NetworkVolume), ORV_ITEM(Volume, MemoryVolume),
                                                  ORV_ITEM(Volume, OpticalVolume), ORV_ITEM(Volume, VirtualVolume)};
    static constexpr EnumItemRow openFlagsItems[] = {ORV_ITEM(OpenFlags, ForWriting), ORV_ITEM(OpenFlags, ForCreation),
                                                     ORV_ITEM(OpenFlags, Create), ORV_ITEM(OpenFlags, DirectoryName)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Flags, flagsItems), ORV_ENUM(Volume, volumeItems),
                                        ORV_ENUM(OpenFlags, openFlagsItems)};
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZFileName);

#undef ORV_SCAN
