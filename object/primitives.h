#pragma once

#include "object/glueRows.h"

namespace orv::glue {

/// The types that aren't classes, each under every name that signatures use; and the templates, by their names alone.
extern const List<ClassRow> primitiveRows;

} // namespace orv::glue
