#include "core/ZLock.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZLock> : Declares<ZLock> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((bool)),
        ORV_CONSTRUCTOR((uint)),
        ORV_CONSTRUCTOR((const ZLock&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(void, assign, (const ZLock&), ),
        ORV_METHOD(uint, getId, (), const),
        ORV_METHOD(bool, isValid, (), const),
        ORV_METHOD(int, compare, (const ZLock&), const),
        ORV_METHOD(int, lockCount, (), const),
        ORV_METHOD(uint, thread, (), const),
        ORV_METHOD(int, getIndex, (int), const),
        ORV_METHOD(void, setIndex, (int, int), ),
        ORV_METHOD(uint, getNumber, (), const),
        ORV_METHOD(void, setSpinning, (bool), ),
        ORV_STATIC(bool, openGLRegion, ()),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZLock);
