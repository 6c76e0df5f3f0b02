#pragma once

/// The light half of the declaration layer, for class headers. The rows of a class stand in `<Class>.glue.cpp`, which
/// includes "object/glue.h"; docs/declaring-types.md tells how.
namespace orv::glue {
struct ClassRow;
/// What a class declares. Specialised for the exact class, so that none inherits what its base declares.
template <class T> struct Table;
/// How instances of a class come and go.
template <class T> struct Life;
} // namespace orv::glue

/// In a class: lets its rows name private members and its instances be made by name. Classes below this layer do
/// without and declare their public members.
#define ORV_REFLECT(Class)                                                                                             \
    template <class> friend struct ::orv::glue::Table;                                                                 \
    template <class> friend struct ::orv::glue::Life
