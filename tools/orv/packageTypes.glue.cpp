#include "tools/orv/packageTypes.h"

#include "object/glue.h"

namespace orv::glue {

template <> struct Table<PackageSection> : Declares<PackageSection> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_DESTRUCTOR(),
        ORV_METHOD(large, total, (), const),
        ORV_METHOD(bool, setTotal, (const large&), ),
        ORV_METHOD(int, packages, (), const),
        ORV_METHOD(real, meanSize, (), const),
        ORV_METHOD(void, resum, (), ),
    };
    static constexpr PropertyRow properties[] = {
        ORV_PROPERTY(large, total, ""),
        ORV_PROPERTY(int, packages, ""),
        ORV_PROPERTY(real, meanSize, ""),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

template <> struct Table<ChangeCounter> : Declares<ChangeCounter> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_DESTRUCTOR(),
        ORV_METHOD(int, count, (), const),
        ORV_METHOD(void, add, (), ),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};

template <> struct Table<PackageVersion> : Declares<PackageVersion> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(bool, fromString, (const ZString&), ),
        ORV_METHOD(ZString, toString, (), const),
        ORV_METHOD(int, compare, (const PackageVersion&), const),
    };
    static constexpr ClassInfo info = {.flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(PackageSection);
ORV_DECLARE(ChangeCounter);
ORV_DECLARE(PackageVersion);
