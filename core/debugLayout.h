#pragma once

#include "toolkit/types.h"

namespace orv::detail {

/// One fact of a private layout, for debuggers: tools/gdb/orv_printers.py reads the tables below from the memory of a
/// process or a core file, so that it needs no debug information of the library.
struct DebugRow {
    char name[24];
    const void* place; ///< an object of the library, or null
    ularge number;     ///< an offset, a size or a count
};
static_assert(sizeof(DebugRow) == 40);

} // namespace orv::detail

// Each ends with a row without a name.
extern "C" {
extern ORV_API const orv::detail::DebugRow orv_debug_core[];
extern ORV_API const orv::detail::DebugRow orv_debug_strings[];
extern ORV_API const orv::detail::DebugRow orv_debug_text[];
extern ORV_API const orv::detail::DebugRow orv_debug_object[];
}
