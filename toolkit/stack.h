#pragma once

#include "toolkit/types.h"

/// The stack of the running thread.
namespace toolkit {

/// Whether little of it is left: less than 256 KB, or less than a quarter of a small one. For what calls itself as
/// deep as its input says. False where the system doesn't tell.
ORV_API bool stackNearlyFull();

} // namespace toolkit
