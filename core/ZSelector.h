#pragma once

#include "core/forward.h"
#include "toolkit/atomic.h"

#include <utility>

namespace orv::detail {
/// Ids up to this one are neither retained nor released.
extern ORV_API ularge permanentSelectors;
ORV_API uint retainSelector(uint id);
ORV_API void releaseSelector(uint id);
} // namespace orv::detail

/// An interned name: 32 bits that stand for a text and its syntactic kind. Two selectors are equal when text and kind
/// are. The texts live in the selector space, between `open` and `close`; outside of that a selector can be made,
/// copied and destroyed, but reads as empty. Any thread may make and read selectors; one value is one thread's, as with
/// an int.
///
/// What makes a selector answers an empty one if there is no memory or the text is empty. Texts are UTF-8; their syntax
/// is ASCII.
class ORV_API ZSelector {
public:
    using ZRelocatable = void;

    /// The kind of a text.
    enum Type {
        Any,      ///< fits no other row
        Name,     ///< name characters only
        Names,    ///< items separated by blanks
        UID,      ///< items separated by "."
        Colon,    ///< items separated by ":"
        Bracket,  ///< "[" … "]" around the whole
        Types,    ///< items separated by "::"
        Template, ///< a name, then arguments in "<" and ">"
        Method,   ///< result, name, arguments in "(" and ")", trailing words
        Mixed,    ///< can't be taken apart
        Detect    ///< as an argument: work it out from the text
    };
    /// Bytes in the longest text.
    static constexpr int longestText = 0x7FFFFFFE;

    // The space

    /// Makes the space ready; true when it is. Once for the process, before anything else of the library.
    static bool open();
    /// Frees all texts. Selectors that are still around may be destroyed later.
    static void close();
    /// Texts in the space.
    static uint selectorCount();
    /// 128 entries, not 0 for the characters of names: digits, ASCII letters, "_" and ":".
    static const byte* namechars();

    // Making. Texts are brought into normal form: control characters go, runs of blanks become one, blanks at the ends
    // and in front of "&" and "*" go, ">>" that closes templates becomes "> >". A text of one such character stays as
    // it is. Forms with a type only cut the blanks at the ends.

    constexpr ZSelector() = default;
    ZSelector(const char* text);
    ZSelector(const char* text, int length);
    ZSelector(const ZSelector& other) : id(other.held()) {}
    ZSelector(ZSelector&& other) noexcept : id(other.forget()) {}
    ~ZSelector() { release(); }
    ZSelector& operator=(const ZSelector& other) {
        uint taken = other.held();
        release();
        id = taken;
        return *this;
    }
    ZSelector& operator=(ZSelector&& other) noexcept {
        std::swap(id, other.id);
        return *this;
    }
    void assign(const ZSelector& other) { *this = other; }
    /// These answer whether the selector has a text now.
    bool set(const char* text);
    bool set(const char* text, int length);
    bool set(const char* text, int length, Type type);
    bool set(const char* text, Type type);
    /// Exactly these bytes, their kind worked out.
    bool setBytes(const char* text, int length);
    /// The selector with that `key`; empty if there is none.
    bool setValue(uint value);
    void clear() {
        release();
        id = 0;
    }

    // Looking up: like the constructors, but empty for a text that nobody has made. For readers of outside data.

    static ZSelector find(const char* text);
    static ZSelector find(const char* text, int length);
    static ZSelector find(const char* text, int length, Type type);
    static ZSelector findBytes(const char* text, int length);

    // Under `ZSelectorSpace::lockSpace`: the same for who holds the space's lock.

    bool store(const char* text);
    bool store(const char* text, int length);
    bool store(const char* text, int length, Type type);
    void store(const ZSelector& other);
    void discard();

    // Linking

    /// Takes the selector of a text that stays in memory until `unlink`, as it stands. The text isn't copied. What the
    /// selector held before is forgotten, not given up: it may stem from an earlier run of the library.
    bool link(const char* text, bool variableName);
    /// Before the text goes with its module: others keep the text, this selector becomes empty.
    void unlink();

    // Reading

    bool isEmpty() const { return id == 0; }
    /// The value that stands for the text.
    uint key() const { return id; }
    uint hashKey() const { return id; }
    /// Zero-ended, as long as the selector is held; null for an empty one.
    const char* string() const;
    /// Bytes of text.
    int length() const;
    Type type() const;
    /// How many hold it; 1 for selectors that aren't counted.
    int used() const;
    /// A byte of the text; 0 out of range.
    char at(int index) const;

    bool operator==(const ZSelector& other) const { return id == other.id; }
    /// By value, which has nothing to do with the order of texts.
    bool operator<(const ZSelector& other) const { return id < other.id; }
    int compare(const ZSelector& other) const { return (id > other.id) - (id < other.id); }

    /// Makes the selector empty without giving anything up; answers its value. For who keeps counts by himself.
    uint forget() { return std::exchange(id, 0); }
    /// Takes a value over that somebody counted for this selector.
    static ZSelector adopt(uint value) {
        ZSelector made;
        made.id = value;
        return made;
    }

private:
    uint held() const {
        return ORV_LIKELY(id <= toolkit::load(orv::detail::permanentSelectors)) ? id : orv::detail::retainSelector(id);
    }
    void release() {
        if (ORV_UNLIKELY(id > toolkit::load(orv::detail::permanentSelectors))) orv::detail::releaseSelector(id);
    }
    /// Gives the old value up and takes a counted one over.
    bool take(uint value) {
        release();
        id = value;
        return value != 0;
    }

    uint id = 0;
};
