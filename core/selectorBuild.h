#pragma once

#include "core/ZSelectorData.h"

#include <cstring>

namespace orv::detail {

/// Builds the text of a selector: in the object itself while it is short. Once memory is lacking, or the text is longer
/// than a selector can be, it makes the empty selector.
class ORV_API SelectorBuilder {
public:
    SelectorBuilder() = default;
    ~SelectorBuilder() {
        if (out != small) zfree(out);
    }
    SelectorBuilder(const SelectorBuilder&) = delete;
    explicit operator bool() const { return !failed; }

    SelectorBuilder& put(const char* text, size_t bytes) {
        if (ORV_LIKELY(bytes <= room - length) || grow(bytes)) {
            if (bytes) std::memcpy(out + length, text, bytes);
            length += bytes;
        }
        return *this;
    }
    SelectorBuilder& put(const char* text) { return put(text, text ? std::strlen(text) : 0); }
    SelectorBuilder& put(SelectorPart part) { return put(part.text, part.length); }
    SelectorBuilder& put(char c) { return put(&c, 1); }
    /// The selector of the text's normal form.
    ZSelector make() const { return failed ? ZSelector() : ZSelector(out, int(length)); }
    /// The selector of the text as it stands.
    ZSelector make(ZSelector::Type type) const {
        ZSelector made;
        if (!failed) made.set(out, int(length), type);
        return made;
    }

private:
    bool grow(size_t bytes);

    char small[256];
    char* out = small;
    size_t length = 0, room = sizeof small;
    bool failed = false;
};

/// The text of a selector; without text for an empty one.
inline SelectorPart textOf(const ZSelector& sel) { return {sel.string(), size_t(sel.length())}; }
inline SelectorPart partOf(const char* begin, const char* end) { return {begin, size_t(end - begin)}; }
inline bool startsWith(SelectorPart text, SelectorPart start) {
    return text.length >= start.length && (!start.length || std::memcmp(text.text, start.text, start.length) == 0);
}
inline bool endsWith(SelectorPart text, SelectorPart end) {
    return text.length >= end.length &&
           (!end.length || std::memcmp(text.text + text.length - end.length, end.text, end.length) == 0);
}
/// The last blank that doesn't stand in "<" and ">"; null if there is none.
ORV_API const char* lastBlank(SelectorPart text);

/// The entry of a selector with its parts resolved; null for an empty selector, and where memory lacks.
ORV_API ZSelectorData* resolved(const ZSelector& sel);

/// The items of a selector, taken as a list of a type.
class ORV_API SelectorList {
public:
    /// Of its own type; a selector that isn't a list of words, with `words`, is one item.
    explicit SelectorList(const ZSelector& sel, bool words);
    /// Parsed as a list of that type.
    SelectorList(const ZSelector& sel, ZSelector::Type type);
    ~SelectorList();
    SelectorList(const SelectorList&) = delete;

    const ZSelector* begin() const { return items; }
    const ZSelector* end() const { return items + count; }

    const ZSelector* items = nullptr;
    uint count = 0;
    bool failed = false; ///< there was no memory

private:
    void parse(const ZSelector& sel, ZSelector::Type type);
    ZSelector* own = nullptr;
};

} // namespace orv::detail
