#pragma once

#include "core/memory.h"
#include "text/ZTextCopyT.h"
#include "text/ZTextNumberT.h"
#include "text/ZTextSearchT.h"
#include "text/forward.h"

#include <utility>

struct ZStringArg;

/// A terminated text of one width: `ZCharStr` is UTF-8, `ZWCharStr` UTF-16, `ZICharStr` UTF-32. The only member is a
/// pointer to counted memory, null for the empty text. Copies share the memory; the first write to a shared one makes a
/// private copy. The functions on plain texts are static members too.
///
/// Positions and lengths count code units. A value belongs to one thread at a time; copies of it may be on any. Changes
/// answer false when there is no memory, and the text stays as it was; only `assign` and `set` of a whole text leave
/// the empty text then. A constructor without memory raises a failure and leaves the empty text. What is handed in may
/// be the text's own.
template <class C> class ORV_API ZCharStrT : public ZTextSearchT<C>, public ZTextCopyT<C>, public ZTextNumberT<C> {
public:
    using ZRelocatable = void;
    using Unit = C;
    using ZTextCopyT<C>::length;
    using ZTextSearchT<C>::match;
    using ZTextNumberT<C>::printf;
    using ZTextNumberT<C>::aprintf;

    // Lifetime. A length ends a text early, below 0 it doesn't.

    ZCharStrT() = default;
    ZCharStrT(const ZCharStrT& other) noexcept : block(retain(other.block)) {}
    ZCharStrT(ZCharStrT&& other) noexcept : block(std::exchange(other.block, nullptr)) {}
    /// Room for `n` units, empty so far.
    explicit ZCharStrT(int n);
    ZCharStrT(const C* text, int n = -1);
    explicit ZCharStrT(const ZString& text);
    explicit ZCharStrT(const ZSelector& name);
    ~ZCharStrT() { zfree(block); }
    ZCharStrT& operator=(const ZCharStrT& other) {
        assign(other);
        return *this;
    }
    ZCharStrT& operator=(ZCharStrT&& other) noexcept {
        std::swap(block, other.block);
        return *this;
    }

    // State

    int length() const { return block ? known() ? known() - 1 : ZTextCopyT<C>::length(block) : 0; }
    /// Code points.
    int count() const;
    /// Units that there is room for.
    int size() const { return block ? int(memsize(block) / sizeof(C)) - 1 : 0; }
    bool isEmpty() const { return !block || !*block; }
    /// Whether nobody shares the memory.
    bool isDetached() const { return refcount(block) < 2; }
    bool detach();
    /// 0 outside the text.
    C at(int position) const { return position >= 0 && position < length() ? block[position] : C(0); }
    /// The units to write to, up to the terminator; valid until the next change. Null for a text that never had room.
    C* data();
    const C* data() const { return block; }
    /// The terminated text, never null.
    const C* text() const { return block ? block : noText; }
    /// The character at a position; 0 outside the text.
    ZChar unicode(int position) const requires(sizeof(C) == 4);

    // Whole assignment. True unless text was lost for want of memory.

    bool assign(const ZCharStrT& other);
    bool assign(const ZString& text);
    bool set(const char* text, int n = -1);
    bool set(const wchar* text, int n = -1);
    bool set(const ichar* text, int n = -1);
    bool setSelector(const ZSelector& name);
    void clear() { zfree(std::exchange(block, nullptr)); }

    // Writing in place. False for a position outside the text; what would stand behind its end is left out.

    bool set(int position, C unit);
    bool set(int position, const ZCharStrT& text);

    // Growth. Adding nothing answers true. What is longer than the room gets memory for just the joined text.

    bool append(const ZCharStrT& other) { return appendUnits(other.block, other.length()); }
    bool append(const ZString& text);
    bool append(const ZSelector& name);
    bool append(C unit) { return appendUnits(&unit, unit ? 1 : 0); }
    bool append(const C* text, int n = -1);
    /// Appends `n` texts, each a `const C*`, in one step.
    bool appendn(int n, ...);
    /// A position outside the text means its end or its start.
    bool insert(int position, const ZCharStrT& text);
    bool insert(int position, C unit);
    /// Removes the units from `position` to `position + n`, as far as the text has them. False if there are none.
    bool remove(int position, int n);

    // Room

    /// Makes room for `n` more units.
    bool expand(int n);
    /// Makes the room exactly `n` units, cutting the text to it. A negative `n` answers false.
    bool resize(int n);
    /// Cuts, or pads with blanks.
    bool setLength(int n);
    /// Cuts to `n` units at most, and gives the rest of the room back.
    bool truncate(int n);
    /// Gives back the room that isn't in use.
    bool trim();

    // Parts, clipped to the text. Without memory a failure is raised and they are empty.

    /// The first `n` units.
    ZCharStrT start(int n) const { return extract(0, n); }
    /// What is left without the first `n` units.
    ZCharStrT end(int n) const { return extract(n > 0 ? n : 0, length()); }
    ZCharStrT extract(int position, int n) const;

    // Search: the position of a unit, -1 if it isn't there

    int pos(const ZCharStrT& needle) const { return place(this->strstr(block, needle.text())); }
    int pos(const C* needle) const { return place(this->strstr(block, needle)); }
    int pos(C unit) const { return place(this->strpos(block, unit)); }
    int rpos(const ZCharStrT& needle) const { return place(this->strrstr(block, needle.text())); }
    int rpos(const C* needle) const { return place(this->strrstr(block, needle)); }
    int rpos(C unit) const;
    /// Exchanges every such unit and answers how many there were; -1 without memory.
    int replace(C unit, C other);

    // Comparison by code points, and likeness; see the functions on plain texts.

    int compare(const ZCharStrT& other) const { return block == other.block ? 0 : this->strcomp(block, other.block); }
    int icompare(const ZCharStrT& other) const { return this->stricomp(block, other.block); }
    bool match(const ZCharStrT& pattern) const { return ZTextSearchT<C>::match(block, pattern.block); }
    bool matchi(const ZCharStrT& pattern) const { return this->imatch(block, pattern.block); }
    int distance(const ZCharStrT& other, int gap = 1, int change = 1) const {
        return this->editDistance(block, -1, other.block, -1, gap, change);
    }
    bool shorterDistance(const ZCharStrT& other, int limit, int gap = 1, int change = 1) const {
        return this->shorterEditDistance(block, -1, other.block, -1, gap, change, limit);
    }
    bool operator==(const ZCharStrT& other) const { return compare(other) == 0; }
    bool operator==(const C* other) const { return this->strcomp(block, other) == 0; }
    bool operator<(const ZCharStrT& other) const { return compare(other) < 0; }
    uint hashKey() const;

    // Parts between separators. A part of nothing in front of a separator is there with `keepEmpty`; behind the last
    // one it never is. Without memory a failure is raised and there are none.

    /// Units at or below the blank separate.
    ZArrayT<ZCharStrT> split() const;
    /// Every unit of `separators` separates.
    ZArrayT<ZCharStrT> split(const ZCharStrT& separators, bool keepEmpty) const;
    /// Stores where the first `maximum` parts are and how long, and answers how many there are in all.
    static int split(const C** parts, int* lengths, int maximum, const C* text, int length, C separator,
                     bool keepEmpty);

    // Numbers out. A width fills up on the left with blanks, or with zeros behind the sign.

    bool setInt(int value, int radix = 10, int width = 0, bool zeros = false, bool upper = false) {
        return setLarge(value, radix, width, zeros, upper);
    }
    bool setUInt(uint value, int radix = 10, int width = 0, bool zeros = false, bool upper = false) {
        return setULarge(value, radix, width, zeros, upper);
    }
    bool setLong(long value, int radix = 10, int width = 0, bool zeros = false, bool upper = false) {
        return setLarge(value, radix, width, zeros, upper);
    }
    bool setULong(unsigned long value, int radix = 10, int width = 0, bool zeros = false, bool upper = false) {
        return setULarge(value, radix, width, zeros, upper);
    }
    bool setLarge(large value, int radix = 10, int width = 0, bool zeros = false, bool upper = false) {
        return takeNew(this->largetostr(value, radix, width, zeros, upper));
    }
    bool setULarge(ularge value, int radix = 10, int width = 0, bool zeros = false, bool upper = false) {
        return takeNew(this->ulargetostr(value, radix, width, zeros, upper));
    }
    /// A real with 6 decimals for the precision 0, at least 8 for magnitudes below 10; zeros at the end are cut.
    bool setReal(double value, int width = 0, int precision = 0, int decimal = '.');
    /// A real with just so many decimals, zeros at the end cut.
    bool setRealNumber(double value, int width, int precision, int decimal) {
        return takeNew(this->floattostr(value, width, precision, ichar(decimal)));
    }
    /// "yes" or "no".
    bool setBool(bool value);
    /// A numeral, its format one of `ZString::NumFormat`; false for a value that the format has none for.
    bool setNumber(uint value, int format);

    // Numbers in: the whole text, with blanks around it. False, with `out` as it was, for anything else.

    /// "yes" or "true", "no" or "false", in lower case.
    bool toBool(bool& out) const;
    bool toByte(byte& out, int radix = 10) const { return this->strtobyte(block, -1, out, radix); }
    bool toChar(int8& out, int radix = 10) const { return this->strtoint8(block, -1, out, radix); }
    bool toInt8(int8& out, int radix = 10) const { return this->strtoint8(block, -1, out, radix); }
    bool toInt16(int16& out, int radix = 10) const { return this->strtoint16(block, -1, out, radix); }
    bool toWord(word& out, int radix = 10) const { return this->strtoword(block, -1, out, radix); }
    bool toInt(int& out, int radix = 10) const { return this->strtoint(block, -1, out, radix); }
    bool toUInt(uint& out, int radix = 10) const { return this->strtouint(block, -1, out, radix); }
    bool toLong(long& out, int radix = 10) const;
    bool toULong(unsigned long& out, int radix = 10) const;
    bool toLarge(large& out, int radix = 10) const { return this->strtolarge(block, -1, out, radix); }
    bool toULarge(ularge& out, int radix = 10) const { return this->strtoularge(block, -1, out, radix); }
    bool toFloat(float& out, int decimal = '.') const { return this->strtofloat(block, -1, out, decimal); }
    bool toDouble(double& out, int decimal = '.') const { return toReal(out, decimal); }
    bool toReal(double& out, int decimal = '.') const { return this->strtoreal(block, -1, out, decimal); }

    // Formatted text (see text/format.h). A result of nothing answers false and leaves the text.

    bool printf(const C* format, ...);
    bool aprintf(const C* format, var_arg* arguments);

    /// The text run as a resource string, see `ZString`; texts among the arguments are `const C*`.
    bool execRes(const char* types, ...);
    bool execRes(const ZStringArg* values, int count);

    // Case, by the full mapping: a text may change its length.

    bool lower();
    bool upper();

    // Other types

    ZString string() const;
    ZSelector toSelector() const;

private:
    static constexpr C noText[1] = {C(0)};

    /// What the length is known to be, and 1; 0 if it isn't known. It stands in the head of the block, and is written
    /// by changes only.
    int known() const { return toolkit::blockHead(block)->elements; }
    void setKnown(int length) { toolkit::blockHead(block)->elements = length + 1; }
    int place(const C* hit) const { return hit ? int(hit - block) : -1; }
    /// Takes a new text over in place of the old one; false, with the old one, for null.
    bool takeNew(C* made);
    /// The same, but the text is empty for null.
    bool takeWhole(C* made, bool wanted);
    /// A private block with room for `room` units at least and the text in it. With `exact`, for just those.
    bool own(large room, bool exact);
    bool appendUnits(const C* units, int n);
    bool insertUnits(int position, const C* units, int n);
    void setEnd(int length);
    bool mapCase(bool toUpper);

    C* block = nullptr;
};

extern template class ZCharStrT<char>;
extern template class ZCharStrT<wchar>;
extern template class ZCharStrT<ichar>;
