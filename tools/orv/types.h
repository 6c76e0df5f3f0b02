#pragma once

#include <cstdio>
#include <string>

namespace orv::tool {

struct TypeOptions {
    std::string name; ///< one type in full; empty for a list of all
    bool methods = false;
    bool unsafe = false; ///< of the methods only those that no sandbox calls, and of the types those that have any
    bool properties = false;
    bool json = false;
};

/// Starts the library, prints what its packages declare to `out` and complaints to `log`, and stops the library.
/// Answers the exit status: 1 if there is no type of that name; types that are named alike are then told.
int printTypes(const TypeOptions& options, std::FILE* out, std::FILE* log);

} // namespace orv::tool
