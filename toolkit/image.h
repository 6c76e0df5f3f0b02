#pragma once

#include "toolkit/types.h"

/// The program images in memory.
namespace toolkit {

/// Whether an address lies in the program or in the image of this library, which stay mapped as long as our code runs.
/// The heap, the stack and libraries that may be unloaded answer false.
ORV_API bool mappedForGood(const void* p);

} // namespace toolkit
