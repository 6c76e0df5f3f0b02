#pragma once

#include "text/textview.h"

/// Paths as plain text: where separators stand. No file is looked at.
namespace orv::detail {

inline constexpr bool isSeparator(ichar unit) { return unit == '/' || unit == '\\'; }

/// The units of a path in any width.
struct PathUnits {
    TextView view;

    explicit PathUnits(const TextView& view) : view(view) {}
    int length() const { return view.length; }
    ichar operator[](int at) const {
        return view.width == charText    ? static_cast<const byte*>(view.text)[at]
               : view.width == wcharText ? static_cast<const wchar*>(view.text)[at]
                                         : static_cast<const ichar*>(view.text)[at];
    }
    bool separatorAt(int at) const { return at >= 0 && at < length() && isSeparator((*this)[at]); }
    /// The position of the last unit below `end` that is `unit`; -1 if there is none.
    int last(ichar unit, int end) const;
    int first(ichar unit) const;
    /// Where the last name begins: behind the last separator below `end`.
    int nameStart(int end) const;
    int nameStart() const { return nameStart(length()); }
    /// `end` less the separators in front of it, of which a root keeps one.
    int trimmed(int end) const;
    bool isDots(int from, int end) const { return end - from == 2 && (*this)[from] == '.' && (*this)[from + 1] == '.'; }
    /// The leading ".." with the separators behind them; `end` goes there. A ".." at the end counts if `bare`.
    int leadingDots(bool bare, int& end) const;
    /// Whether it begins with a letter and ":".
    bool hasDriveLetter() const;
    /// The position of the dot in front of the extension, else the length. Strict: a dot that begins the name counts.
    int extensionDot(bool strict) const;
    /// The separator to append: "\" if the text uses no other, `otherwise` if it uses none.
    char separator(char otherwise) const;
};

/// How many units of `name` the folder and the separators behind it take; -1 if the name doesn't lie in it. Both
/// separators are the same; a folder without text holds what is relative.
ORV_API int matchFolder(const TextView& name, const TextView& folder, bool ignoreCase);

} // namespace orv::detail
