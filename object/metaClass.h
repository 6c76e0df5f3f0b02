#pragma once

#include "core/construct.h"
#include "object/ZMetaType.h"
#include "object/glueRows.h"
#include "object/ztype.h"

namespace orv::glue {

/// For `ClassInfo::meta`: types of that row are of the class `M`, which is built from package, name, kind and bases.
template <class M> struct MetaClassOf {
    static ZMetaType* make(ZPackage* package, const ZSelector& name, int kind, const ZArrayT<ZSelector>& bases) {
        return zmake<M>(package, name, ZMetaType::Type(kind), bases, passType(ztype<M>()));
    }
    static ZMetaType* type() { return ztype<M>(); }
    static constexpr MetaClass row = {&make, &type};
};

} // namespace orv::glue
