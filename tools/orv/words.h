#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace orv::tool {

struct WordOptions {
    std::vector<std::string> folders;
    int top = 0;         ///< rows to print; 0 for all
    bool byText = false; ///< in collation order instead of by falling count
    int threads = 0;     ///< 0 for one a processor
    std::string match;   ///< only files whose name matches; empty for all
    bool json = false;
    bool verbose = false; ///< name the files that were passed over
};

/// Starts the library, counts, writes the table to `out` and everything else to `log`, and stops the library. A word is
/// a longest run of characters of which none separates words, case kept. Each file counts once, whatever its names. The
/// table doesn't depend on the number of threads. Answers the exit status: 1 if a folder or a file couldn't be read, or
/// there was no memory.
int countWords(const WordOptions& options, std::FILE* out, std::FILE* log);

} // namespace orv::tool
