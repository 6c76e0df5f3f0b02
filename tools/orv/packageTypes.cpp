#include "tools/orv/packageTypes.h"

#include "object/ztype.h"
#include "value/ZVariant.h"

#include <algorithm>
#include <string_view>

// Sections

std::function<void(const PackageSection& section, large before)> PackageSection::changed;

PackageSection::PackageSection(const __ZPassMetaType* type, ZInternal* internal)
    : ZObject(orv::tagFor<PackageSection>(type), internal) {}

bool PackageSection::setTotal(const large& size) {
    if (size == sum) return true;
    const large before = std::exchange(sum, size);
    if (changed) changed(*this, before);
    callPropertyBindings(zsel<"total">(), ZVariant(size));
    return true;
}

int PackageSection::packages() const {
    int count = 0;
    for (const ZObject* child = getFirst(nullptr, ZSelector()); child; child = child->getNext())
        count += child->type() == ztype<PackageSection>() ? static_cast<const PackageSection*>(child)->packages() : 1;
    return count;
}

real PackageSection::meanSize() const {
    const int count = packages();
    return count ? real(sum) / count : 0;
}

void PackageSection::resum() {
    large size = 0;
    for (const ZObject* child = getFirst(nullptr, ZSelector()); child; child = child->getNext()) {
        const large more = child->type() == ztype<PackageSection>()
                               ? static_cast<const PackageSection*>(child)->sum
                               : child->getProperty(zsel<"Installed-Size">()).toLarge();
        // Sizes are at least 0; what is beyond all numbers stays the largest.
        if (__builtin_add_overflow(size, more, &size)) size = INT64_MAX;
    }
    setTotal(size);
}

ChangeCounter::ChangeCounter(const __ZPassMetaType* type, ZInternal* internal)
    : ZObject(orv::tagFor<ChangeCounter>(type), internal) {}

// Versions

namespace {

std::string_view bytes(const ZString& text) {
    const auto view = text.view();
    return {static_cast<const char*>(view.text), size_t(view.length)};
}
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

struct Parts {
    std::string_view epoch, upstream, revision;
};
Parts partsOf(std::string_view version) {
    Parts parts;
    if (size_t colon = version.find(':'); colon != version.npos) {
        parts.epoch = version.substr(0, colon);
        version.remove_prefix(colon + 1);
    }
    if (size_t dash = version.rfind('-'); dash != version.npos) {
        parts.revision = version.substr(dash + 1);
        version = version.substr(0, dash);
    }
    parts.upstream = version;
    return parts;
}

/// A tilde comes before the end, the end before letters, letters before all else.
int orderOf(std::string_view text, size_t at) {
    if (at == text.size() || isDigit(text[at])) return 0;
    return text[at] == '~' ? -1 : isLetter(text[at]) ? text[at] : text[at] + 256;
}
int compareNumbers(std::string_view a, std::string_view b) {
    auto drop = [](std::string_view& number) {
        number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    };
    drop(a);
    drop(b);
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}
/// By turns, what isn't digits and then what is.
int compareParts(std::string_view a, std::string_view b) {
    size_t i = 0, j = 0;
    while (i < a.size() || j < b.size()) {
        while ((i < a.size() && !isDigit(a[i])) || (j < b.size() && !isDigit(b[j]))) {
            const int difference = orderOf(a, i) - orderOf(b, j);
            if (difference) return difference;
            ++i;
            ++j;
        }
        const size_t from = i, to = j;
        while (i < a.size() && isDigit(a[i])) ++i;
        while (j < b.size() && isDigit(b[j])) ++j;
        if (int difference = compareNumbers(a.substr(from, i - from), b.substr(to, j - to))) return difference;
    }
    return 0;
}

} // namespace

bool PackageVersion::fromString(const ZString& version) {
    const auto view = version.view();
    if (view.width != orv::detail::charText || view.length == 0 || view.length > 4096) return false;
    const std::string_view all(static_cast<const char*>(view.text), size_t(view.length));
    for (char c : all)
        if (!isDigit(c) && !isLetter(c) && std::string_view(".+-~:").find(c) == std::string_view::npos) return false;
    const Parts parts = partsOf(all);
    if (all.find(':') != all.npos &&
        (parts.epoch.empty() || !std::all_of(parts.epoch.begin(), parts.epoch.end(), isDigit)))
        return false;
    if (parts.upstream.empty() || (all.find('-') != all.npos && parts.revision.empty())) return false;
    text = version;
    return text.length() == version.length();
}

int PackageVersion::compare(const PackageVersion& other) const {
    const Parts a = partsOf(bytes(text)), b = partsOf(bytes(other.text));
    if (int difference = compareNumbers(a.epoch, b.epoch)) return difference < 0 ? -1 : 1;
    if (int difference = compareParts(a.upstream, b.upstream)) return difference < 0 ? -1 : 1;
    const int difference = compareParts(a.revision, b.revision);
    return difference < 0 ? -1 : difference > 0;
}
