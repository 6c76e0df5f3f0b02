#include "text/ZFileName.h"

#include "text/filelookup.h"
#include "text/filetext.h"
#include "toolkit/utf8.h"

#include <utility>

using orv::detail::PathUnits;
using orv::detail::TextView;

namespace {

/// The text from a position on, where it stands.
TextView tailFrom(const ZString& name, int from) {
    TextView all = name.view();
    int skipped = from < all.length ? from : all.length;
    return {static_cast<const byte*>(all.text) + size_t(skipped) * size_t(orv::detail::unitBytes(all.width)),
            all.length - skipped, all.width};
}

/// Cuts a name at a position; false without memory.
bool cutAt(ZFileName& name, int length) {
    TextView all = name.view();
    if (length >= all.length) return true;
    ZString front;
    if (!front.set(TextView(all.text, length, all.width))) return false;
    name.swap(front);
    return true;
}

bool cutToFolder(ZFileName& name) {
    PathUnits units(name.view());
    return cutAt(name, units.trimmed(units.nameStart()));
}

bool completeWith(ZFileName& name, char separator) {
    PathUnits units(name.view());
    return !units.length() || units.separatorAt(units.length() - 1) || name.append(&separator, 1);
}

/// Bytes that are no text stay as they are: for them the whole name goes over to bytes.
bool appendBytes(ZFileName& name, const TextView& more) {
    bool raw = more.width == orv::detail::charText && name.type() != ZString::Char &&
               !toolkit::utf8Valid(static_cast<const char*>(more.text), size_t(more.length));
    return (!raw || name.setType(ZString::Char)) && name.append(more);
}

bool joinName(ZFileName& folder, const TextView& name, char separator) {
    return completeWith(folder, separator) && appendBytes(folder, name);
}

char separatorOf(const ZString& path, const ZString& name) {
    return PathUnits(path.view()).separator(PathUnits(name.view()).separator('/'));
}

/// Whether the name ends in that extension, which may have dots in it itself.
bool hasExtension(const ZFileName& name, const ZString& text) {
    if (name.checkExt(text)) return true;
    PathUnits units(name.view()), wanted(text.view());
    int dot = units.length();
    for (int at = wanted.length(); at >= 0 && dot >= 0; at = wanted.last('.', at)) dot = units.last('.', dot);
    return dot > units.nameStart() && orv::detail::compareTextFolded(tailFrom(name, dot + 1), text.view()) == 0;
}

} // namespace

ZFileName::ZFileName(const ZString& path, const ZString& name) {
    if (!setName(path, name)) ZError::fail();
}

// Parts

ZFileName ZFileName::path() const {
    PathUnits units(view());
    return start(units.trimmed(units.nameStart()));
}

ZFileName ZFileName::path(int depth) const {
    ZFileName folder(*this);
    for (; depth > 0 && !folder.isEmpty(); --depth) {
        ZFileName above = folder.path();
        if (above.length() == folder.length()) break;
        folder = std::move(above);
    }
    return folder;
}

ZString ZFileName::pathName() const { return start(PathUnits(view()).extensionDot(false)); }
ZString ZFileName::fileName() const { return end(PathUnits(view()).nameStart()); }

ZString ZFileName::fileName(int index) const {
    PathUnits units(view());
    for (int end = units.length(); end > 0;) {
        while (end > 0 && units.separatorAt(end - 1)) --end;
        int start = units.nameStart(end);
        if (start < end && index-- == 0) return extract(start, end - start);
        end = start;
    }
    return {};
}

ZString ZFileName::baseName() const {
    PathUnits units(view());
    int start = units.nameStart();
    return extract(start, units.extensionDot(false) - start);
}

ZString ZFileName::extension(bool strict) const { return end(PathUnits(view()).extensionDot(strict) + 1); }

ZString ZFileName::displayName() const {
    ZString name = fileName();
    if (name.type() != Char) return name;
    return name.setType(IChar) && name.setType(Char) ? name : ZString();
}

ZString ZFileName::getDrive() const {
    PathUnits units(view());
    int colon = units.first(':');
    return colon >= 0 && units.nameStart(colon) == 0 ? start(colon + 1) : ZString();
}

bool ZFileName::hasPath() const { return PathUnits(view()).nameStart() > 0; }
bool ZFileName::hasFile() const { return PathUnits(view()).nameStart() < length(); }

bool ZFileName::hasWildcards() const {
    PathUnits units(view());
    return units.first('*') >= 0 || units.first('?') >= 0;
}

int ZFileName::countUp() const {
    int end;
    return PathUnits(view()).leadingDots(false, end);
}

int ZFileName::linePos(int width) const {
    PathUnits units(view());
    if (units.length() <= width) return units.length();
    if (width < 1) width = 1;
    int behind = units.nameStart(width);
    if (behind > 0) return behind;
    // Between code points, and not before the first.
    auto inside = [&](int at) {
        return type() == Char    ? (units[at] & 0xC0) == 0x80
               : type() == WChar ? orv::detail::trailSurrogate(units[at])
                                 : false;
    };
    int at = width;
    while (at > 0 && inside(at)) --at;
    if (!at)
        for (at = width; at < units.length() && inside(at);) ++at;
    return at;
}

bool ZFileName::isRoot() const {
    PathUnits units(view());
    int length = units.length(), colon = units.first(':');
    if (length == 1 && units.separatorAt(0)) return true;
    return colon >= 0 && (colon == length - 1 || (colon == length - 2 && units.separatorAt(length - 1)));
}

bool ZFileName::isAbsolute() const {
    PathUnits units(view());
    return units.separatorAt(0) || units.hasDriveLetter();
}

bool ZFileName::isValid() const {
    constexpr size_t longestName = 255, longestPath = 4095;
    toolkit::PathText native;
    size_t fixed, run = 0;
    if (orv::detail::nativeName(view(), native, fixed) || native.length() > longestPath) return false;
    for (const char* at = native.text(); *at; ++at) {
        run = *at == '/' ? 0 : run + 1;
        if (run > longestName) return false;
    }
    return true;
}

bool ZFileName::checkExt(const ZString& text) const {
    TextView own = tailFrom(*this, PathUnits(view()).extensionDot(false) + 1);
    return orv::detail::compareTextFolded(own, text.view()) == 0;
}

// Editing

bool ZFileName::setName(const ZString& path, const ZString& name) {
    if (path.isEmpty()) return assign(name);
    int behind, steps = PathUnits(name.view()).leadingDots(false, behind);
    ZFileName folder(path);
    if (!folder.stepsUp(steps) || !joinName(folder, tailFrom(name, behind), separatorOf(path, name))) return false;
    swap(folder);
    return true;
}

bool ZFileName::selectName(const ZString& path, const ZString& name) {
    PathUnits units(name.view());
    if (units.length() && (units[0] == '~' || units[0] == '/')) return assign(name);
    ZFileName folder(path);
    if (!folder.isDir() && !cutToFolder(folder)) return false;
    // Above the top ".." leads back to the top, however long the name gets.
    toolkit::FileStatus status, below;
    for (;;) {
        ZFileName candidate(folder);
        if (!candidate.addFileName(name)) return false;
        if (candidate.exists()) {
            swap(candidate);
            return true;
        }
        below = status;
        toolkit::PathText path;
        bool known =
            orv::detail::existingName(folder.view(), path) == 0 && toolkit::fileStatus(path.text(), status) == 0;
        if (!known) status = {};
        if (known && status.device == below.device && status.inode == below.inode) return false;
        int before = folder.length();
        if (folder.stepUp() != Step::Done) return false;
        // Each further ".." behind what isn't there leads nowhere, and there is always one more.
        if (!known && folder.length() > before) return false;
    }
}

bool ZFileName::addFileName(const ZString& name) {
    ZFileName joined(*this);
    if (!joinName(joined, name.view(), separatorOf(*this, name))) return false;
    swap(joined);
    return true;
}

bool ZFileName::addExtension(const ZString& text) {
    ZFileName longer(*this);
    if (!longer.append(".", 1) || !appendBytes(longer, text.view())) return false;
    swap(longer);
    return true;
}

bool ZFileName::setExtension(const ZString& text) {
    ZFileName changed(*this);
    if (!cutAt(changed, PathUnits(view()).extensionDot(false))) return false;
    if (!text.isEmpty() && !changed.addExtension(text)) return false;
    swap(changed);
    return true;
}

ZFileName::Step ZFileName::stepUp() {
    PathUnits units(view());
    auto step = [](bool done) { return done ? Step::Done : Step::NoMemory; };
    for (int end = units.length();;) {
        end = units.trimmed(end);
        int start = units.nameStart(end);
        if (start == end || (start == 0 && isRoot())) return Step::Top;
        if (start == 0 && end == 1 && units[0] == '~') return Step::Top;
        if (units.isDots(start, end)) return step(addFileName(".."));
        if (end - start > 1 || units[start] != '.') return step(cutAt(*this, units.trimmed(start)));
        // A single dot leads nowhere, so what is in front of it decides.
        if (start == 0) return step(set("..", 2));
        end = start;
    }
}

bool ZFileName::stepsUp(int steps) {
    Step step = Step::Done;
    while (steps-- > 0 && step == Step::Done) step = stepUp();
    return step != Step::NoMemory;
}

bool ZFileName::exit() { return stepUp() == Step::Done; }

bool ZFileName::completePath() { return completeWith(*this, PathUnits(view()).separator('/')); }

bool ZFileName::resolve(const ZString& base) {
    PathUnits units(view());
    int behind, steps = units.leadingDots(true, behind);
    if (!steps && (units.nameStart() > 0 || units.first(':') >= 0)) return true;
    ZFileName folder(base);
    if (!folder.stepsUp(steps)) return false;
    TextView rest = tailFrom(*this, behind);
    if (rest.length && !joinName(folder, rest, separatorOf(base, *this))) return false;
    swap(folder);
    return true;
}

bool ZFileName::relativeName(const ZString& base, bool all) {
    constexpr int mostSteps = 64;
    ZFileName folder(base);
    int steps = 0, taken;
    if (!cutToFolder(folder)) return false;
    while ((taken = orv::detail::matchFolder(view(), folder.view(), true)) < 0)
        if (!all || ++steps > mostSteps || folder.stepUp() != Step::Done) return false;
    ZFileName relative;
    for (int i = 0; i < steps; ++i)
        if (!relative.append("../", 3)) return false;
    if (!relative.append(tailFrom(*this, taken)) || (relative.isEmpty() && !relative.append(".", 1))) return false;
    swap(relative);
    return true;
}

bool ZFileName::toRelative(const ZString& folder, const ZString& prefix) {
    int taken = folder.isEmpty() ? -1 : orv::detail::matchFolder(view(), folder.view(), true);
    if (taken < 0) return false;
    ZFileName relative(prefix);
    if (!appendBytes(relative, tailFrom(*this, taken))) return false;
    swap(relative);
    return true;
}

// Names

ZFileName ZFileName::appendExtension(const ZString& name, const ZString& text) {
    ZFileName result(name);
    return text.isEmpty() || hasExtension(result, text) || result.addExtension(text) ? result : ZFileName();
}

ZFileName ZFileName::appendExtension(const ZString& name, const ZArrayT<ZString>& extensions) {
    ZFileName result(name);
    for (const ZString& text : extensions)
        if (hasExtension(result, text)) return result;
    for (const ZString& text : extensions)
        if (!text.isEmpty()) return result.addExtension(text) ? result : ZFileName();
    return result;
}

ZString ZFileName::splitAlertName(const ZString& name, int width) {
    ZFileName rest(name);
    ZString lines;
    for (;;) {
        int position = rest.linePos(width);
        bool whole = position == rest.length();
        if (!lines.append(rest.start(position))) return {};
        if (whole) return lines;
        if (!lines.append("\n", 1)) return {};
        rest = ZFileName(rest.end(position));
    }
}
