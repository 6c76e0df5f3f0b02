#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

/// A subcommand of `orv`: adds its options to the application and, when it was chosen, runs.
namespace orv::tool {

/// What a run answers to the shell.
enum Exit { Done = 0, Failed = 1, Usage = 2 };

/// Prints "orv COMMAND: message".
inline void complain(const char* command, const std::string& message, std::FILE* log) {
    std::fprintf(log, "orv %s: %s\n", command, message.c_str());
}

/// Sums up the packages of the machine.
void addPackages(CLI::App& app, int& exit);
/// Lists the registered types.
void addTypes(CLI::App& app, int& exit);
/// Counts the words of all texts under some folders.
void addWords(CLI::App& app, int& exit);

} // namespace orv::tool
