#include "text/ZFileInfo.h"

#include "object/glue.h"
#include "text/ZFileName.h"
#include "text/ZString.h"
#include "text/ZTime.h"

namespace orv::glue {

template <> struct Table<ZFileInfo> : Declares<ZFileInfo> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZString&, large, ZFileName::Flags, const ZTime&, int)),
        ORV_CONSTRUCTOR((const ZFileName&, int)),
        ORV_METHOD(const ZString&, fileName, (), const),
        ORV_METHOD(void, setFileName, (const ZString&), ),
        ORV_METHOD(large, size, (), const),
        ORV_METHOD(void, setSize, (large), ),
        ORV_METHOD(ZFileName::Flags, flags, (), const),
        ORV_METHOD(void, setFlags, (ZFileName::Flags), ),
        ORV_METHOD(bool, isDir, (), const),
        ORV_METHOD(const ZTime&, writeTime, (), const),
        ORV_METHOD(void, setWriteTime, (const ZTime&), ),
        ORV_METHOD(int, level, (), const),
        ORV_METHOD(void, setLevel, (int), ),
        ORV_METHOD(int, compare, (const ZFileInfo&), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZFileInfo);
