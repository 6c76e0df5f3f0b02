#pragma once

#include "core/ZArrayT.h"
#include "value/ZVariant.h"

/// Calls a method by name on what a variant holds, with whatever a variant can be made of.
template <class... A> ZVariant invoke(const ZVariant& on, const char* name, const A&... arguments) {
    return on.invoke(name, {ZVariant(arguments)...});
}
