#pragma once

#include "object/ZInlineType.h"
#include "object/names.h"

namespace orv::detail {

template <class T> struct [[gnu::visibility("hidden")]] TypePlace {
    static constinit inline ZInlineType record{};
    static constexpr auto text = glue::typeText<T>;
};

} // namespace orv::detail

/// The type of a C++ type, at a load and a test: `ztype<ZString>()`. Null before its package is open. A type that has
/// two names (`real` and `double`) answers the first.
template <class T> [[gnu::always_inline]] inline ZMetaType* ztype() {
    using Place = orv::detail::TypePlace<std::remove_cv_t<T>>;
    ORV_NAME_ROW("orv_types", Place::record, Place::text);
    return Place::record.type(Place::text);
}

namespace orv {

/// What a constructor of `T` hands to its base: the tag that it was given, so that the most derived class names the
/// type, else that of `T`.
template <class T> inline const __ZPassMetaType* tagFor(const __ZPassMetaType* given) {
    return given ? given : reinterpret_cast<const __ZPassMetaType*>(ztype<T>());
}

} // namespace orv
