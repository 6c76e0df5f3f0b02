#pragma once

#include "core/debug.h"

#include <algorithm>
#include <string>
#include <vector>

/// The lines of the debug log, kept for the life of this.
struct CaptureDebug {
    static inline std::vector<std::string> lines;
    CaptureDebug() {
        lines.clear();
        zsetdebugsink([](const char* line) { lines.push_back(line); });
    }
    ~CaptureDebug() { zsetdebugsink(nullptr); }
    CaptureDebug(const CaptureDebug&) = delete;
    /// Whether a line begins so.
    static bool has(const std::string& text) {
        return std::any_of(lines.begin(), lines.end(), [&](auto& line) { return line.rfind(text, 0) == 0; });
    }
    /// The last line.
    static std::string last() { return lines.empty() ? "" : lines.back(); }
};
