#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace orv::tool {

struct PackageOptions {
    std::vector<std::string> files; ///< "-" is the standard input; a folder stands for the package lists in it
    std::string where;              ///< see `Where`
    std::string section;
    std::string match;            ///< a regular expression that a part of the name matches
    std::string show;             ///< one package with all its fields
    std::vector<std::string> set; ///< "NAME.PROPERTY=VALUE"
    bool json = false;
};

/// Starts the library, makes objects of all packages that the files tell of, prints what is asked of them to `out` and
/// everything else to `log`, and stops the library. Answers the exit status: 1 if something couldn't be read, found or
/// set; what could be read is printed all the same.
int listPackages(const PackageOptions& options, std::FILE* out, std::FILE* log);

} // namespace orv::tool
