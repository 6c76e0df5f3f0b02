#include "text/ZBlendPos.h"

#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZBlendPos> : Declares<ZBlendPos> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((real)),
        ORV_CONSTRUCTOR((const ZBlendPos&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(real, pos, (), const),
        ORV_METHOD(bool, setPos, (real), ),
        ORV_METHOD(real, basePos, (), const),
        ORV_METHOD(bool, setBasePos, (real), ),
        ORV_METHOD(uint, blendFlags, (), const),
        ORV_METHOD(void, setBlendFlags, (uint), ),
        ORV_METHOD(bool, perceptual, (), const),
        ORV_METHOD(void, setPerceptual, (bool), ),
        ORV_METHOD(ZMetaType*, metaType, (), const),
        ORV_METHOD(int, count, (), const),
        ORV_METHOD(bool, setCount, (int), ),
        ORV_METHOD(bool, setName, (int, const ZSelector&), ),
        ORV_METHOD(bool, setPos, (int, real), ),
        ORV_METHOD(bool, setBlend, (int, const ZBlendPos&), ),
        ORV_METHOD(bool, blendItems, (), const),
        ORV_METHOD(ZBlendPos, fieldBlend, (int), const),
        ORV_METHOD(ZBlendPos, fieldBlend, (const ZSelector&), const),
        ORV_METHOD(real, fieldPos, (int), const),
        ORV_METHOD(real, fieldPos, (const ZSelector&), const),
    };
    static constexpr EnumItemRow flagsItems[] = {ORV_ITEM(Flags, Perceptual)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Flags, flagsItems)};
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZBlendPos);
