#include "text/filetext.h"

#include "text/filelookup.h"
#include "toolkit/text.h"

namespace orv::detail {

int PathUnits::last(ichar unit, int end) const {
    while (--end >= 0 && (*this)[end] != unit) {}
    return end;
}

int PathUnits::first(ichar unit) const {
    for (int i = 0; i < length(); ++i)
        if ((*this)[i] == unit) return i;
    return -1;
}

int PathUnits::nameStart(int end) const {
    while (end > 0 && !separatorAt(end - 1)) --end;
    return end;
}

int PathUnits::trimmed(int end) const {
    int cut = end;
    while (cut > 0 && separatorAt(cut - 1)) --cut;
    bool root = cut < end && (cut == 0 || (cut == 2 && hasDriveLetter()));
    return cut + root;
}

int PathUnits::leadingDots(bool bare, int& end) const {
    int steps = 0;
    end = 0;
    while (length() - end >= 2 && isDots(end, end + 2) && (separatorAt(end + 2) || (bare && length() == end + 2))) {
        ++steps;
        end = end + 3 < length() ? end + 3 : length();
    }
    return steps;
}

bool PathUnits::hasDriveLetter() const {
    if (length() < 2 || (*this)[1] != ':') return false;
    ichar letter = (*this)[0] | 0x20;
    return letter >= 'a' && letter <= 'z';
}

int PathUnits::extensionDot(bool strict) const {
    int start = nameStart(), dot = last('.', length());
    return dot >= start + !strict ? dot : length();
}

char PathUnits::separator(char otherwise) const {
    if (first('/') >= 0) return '/';
    return first('\\') >= 0 ? '\\' : otherwise;
}

namespace {

/// Reads the code points of a path, separators as "/".
class PathReader {
public:
    PathReader(const TextView& view, bool fold) : units(view), fold(fold) {}
    bool ended() const { return at >= units.length(); }
    int position() const { return at; }
    ichar next() {
        ichar code = units.view.width == charText    ? take<char>()
                     : units.view.width == wcharText ? take<wchar>()
                                                     : take<ichar>();
        return code == '\\' ? '/' : code;
    }

private:
    template <class C> ichar take() {
        const C *text = static_cast<const C*>(units.view.text), *from = text + at;
        ichar code;
        if constexpr (sizeof(C) == 1) {
            // Bytes that are no text have to differ from each other, so they are compared without decoding.
            code = fold ? foldName(from, text + units.length()) : ichar(byte(*from++));
        } else {
            code = decodeCode(from, text + units.length());
            if (fold) code = toolkit::codeFold(code);
        }
        at = int(from - text);
        return code;
    }

    PathUnits units;
    bool fold;
    int at = 0;
};

} // namespace

int matchFolder(const TextView& name, const TextView& folder, bool ignoreCase) {
    PathUnits nameUnits(name), folderUnits(folder);
    if (!folder.length) {
        bool relative = name.length && !nameUnits.separatorAt(0) && nameUnits[0] != '~' && !nameUnits.hasDriveLetter();
        return relative ? 0 : -1;
    }
    // Two widths have their code points in common only if both are decoded.
    bool decode = ignoreCase || name.width != folder.width;
    TextView trimmed(folder.text, folderUnits.trimmed(folder.length), folder.width);
    PathReader a(name, decode), b(trimmed, decode);
    while (!b.ended())
        if (a.ended() || a.next() != b.next()) return -1;
    int end = a.position();
    bool root = folderUnits.separatorAt(trimmed.length - 1);
    if (!root && end < name.length && !nameUnits.separatorAt(end)) return -1;
    while (nameUnits.separatorAt(end)) ++end;
    return end;
}

} // namespace orv::detail
