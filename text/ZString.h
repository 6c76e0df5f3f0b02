#pragma once

#include "text/ZCharRef.h"
#include "text/textview.h"

/// The general text value: text of one of three widths in a counted record, or the index of an internal text. Copies
/// share the record or the index; the first write to a shared one makes a private copy. The width follows the last
/// whole assignment: appends and inserts convert what they add.
///
/// Positions and lengths count code units unless told otherwise. A value belongs to one thread at a time; copies of it
/// may be on any. An operation that finds no memory answers false, null or -1 and leaves the value as it was; a
/// constructor raises `ZError::fail` and leaves the empty string. Malformed text counts as U+FFFD wherever it is
/// converted, and is kept as it is otherwise.
class ORV_API ZString {
public:
    using ZRelocatable = void;
    using View = orv::detail::TextView;

    /// The form of a string: an index into the table of internal texts, UTF-8, UTF-16, UTF-32.
    enum Type { Internal, Char, WChar, IChar };
    enum NumFormat { Decimal = 1, RomanU, RomanL, AlphaU, AlphaL, LetterU, LetterL };

    /// Bytes of a code unit: 0, 1, 2 or 4.
    static constexpr int unitSize(Type type) { return orv::detail::unitBytes(type); }

    // Lifetime. A negative length goes to the terminator; else exactly so many units are taken.

    ZString() noexcept : record(nullptr), index(0) {}
    ZString(const ZString& other) noexcept : record(other.record), index(other.index) { share(); }
    ZString(ZString&& other) noexcept : record(other.record), index(other.index) { other.forget(); }
    ~ZString() { drop(); }
    /// The internal string of an index, which is retained; empty for an index that nobody holds.
    explicit ZString(int index);
    ZString(const char* text, int length = -1);
    ZString(const wchar* text, int length = -1);
    ZString(const ichar* text, int length = -1);
    explicit ZString(const byte* text, int length = -1);
    /// The texts one after the other; null ones are passed over.
    ZString(const char* const* texts, int count);
    ZString(const wchar* const* texts, int count);
    ZString(const ichar* const* texts, int count);
    explicit ZString(const View& text);
    /// One character; with `Internal` in the narrowest form that has its value in one unit, a byte counting as one.
    /// Raises a failure for a type that is none. The code 0 gives the empty string.
    explicit ZString(const ZChar& character, Type type = Internal);
    explicit ZString(const ZSelector& selector);
    /// The result of running the internal string of an index, as `execResA` does.
    ZString(uint index, const char* types, var_arg* arguments);

    ZString& operator=(const ZString& other) {
        assign(other);
        return *this;
    }
    /// The text that a variant reads as, see `ZVariant::toString`.
    template <class V>
    requires std::is_same_v<V, ZVariant> ZString& operator=(const V& value) {
        setVariant(value);
        return *this;
    }
    bool setVariant(const ZVariant& value);
    ZString& operator=(ZString&& other) noexcept;
    void swap(ZString& other) noexcept;

    // Form and width

    /// `Internal` for an internal string, the empty string among them.
    Type type() const { return record ? Type(record->type) : Internal; }
    /// Converts the text; the width of the empty string is that of what comes next, so it stays as it is. With
    /// `Internal` it is `internalize`. True if the string has the form now, or is empty.
    bool setType(Type type);
    bool isInternal() const { return !record; }
    /// Turns a record into an index, and answers it; 0 if that can't be, with the record as it was.
    uint internalize();
    /// The index of the text with a reference for the caller, to be given to `orv::strtable::release`; 0 for none.
    uint internalized() const;
    /// The same text as an internal string; where that can't be, as it is.
    ZString getInternal() const;
    /// The index, without a reference; 0 for a record.
    uint getIndex() const { return index; }
    /// Turns an internal string into a record.
    bool externalize() { return detachString(); }
    /// Makes the record private, and an index a record.
    bool detachString();
    bool detach() { return detachString(); }
    /// Whether a record is shared with other values; for an internal string, whether its index is held at all.
    bool isDetached() const;
    /// The terminated text in its own width; null for the empty string. The writable one is made private first.
    void* data(Type& type);
    const void* data(Type& type) const;
    /// The text in its own width, which is never `Internal` where there is text. Terminated; valid until the next
    /// change.
    View view() const { return record ? View(record->text(), record->length, record->type) : internalView(); }

    // New terminated copies in a width, freed by the caller with `zfree`. Null for an empty string.

    char* astr() const;
    wchar* wstr() const;
    ichar* istr() const;
    void* str(Type type) const;
    /// The same by the type's number; null for a number that is none.
    void* charString(int type) const { return str(Type(type)); }

    // Size

    int length() const { return record ? record->length : index ? internalView().length : 0; }
    /// Code points.
    int count() const;
    /// Units that fit without growing.
    int size() const { return record ? record->capacity : length(); }
    bool isEmpty() const { return length() == 0; }
    /// Makes sure that `n` more units fit, growing by steps. The empty string stays so.
    bool expand(int n);
    /// Makes the capacity exactly `n`, cutting the text to it; 0 clears, a negative `n` and the empty string stay.
    bool resize(int n);
    /// Cuts, or pads with blanks. From the empty string it makes blanks of the type `WChar`.
    bool setLength(int n);
    /// The growth step in units, 1 to 65535. The empty string becomes a record of the type `WChar`.
    bool setExpand(int n);
    int getExpand() const { return record ? int(record->expand & 0xFFFF) : defaultExpand; }
    /// Cuts to `n` units at most, and gives the surplus back.
    bool truncate(int n);
    /// Gives the surplus back.
    bool trim();
    void clear();

    // Whole assignment. The string takes the width of the text.

    bool assign(const ZString& other);
    bool set(const char* text, int length = -1) { return set(View(text, orv::detail::givenLength(text, length))); }
    bool set(const wchar* text, int length = -1) { return set(View(text, orv::detail::givenLength(text, length))); }
    bool set(const ichar* text, int length = -1) { return set(View(text, orv::detail::givenLength(text, length))); }
    bool set(const View& text);
    bool setSelector(const ZSelector& selector);
    /// "yes" or "no".
    bool setBool(bool value) { return value ? set("yes", 3) : set("no", 2); }

    // Change. Added text takes the string's width; an empty string takes that of the text.

    bool append(const ZString& other) { return append(other.view()); }
    bool append(const char* text, int length = -1) {
        return append(View(text, orv::detail::givenLength(text, length)));
    }
    bool append(const wchar* text, int length = -1) {
        return append(View(text, orv::detail::givenLength(text, length)));
    }
    bool append(const ichar* text, int length = -1) {
        return append(View(text, orv::detail::givenLength(text, length)));
    }
    bool append(const View& text);
    /// A character of the code 0 adds nothing.
    bool append(const ZChar& character) { return insertCode(length(), character.value()); }
    bool append(const ZSelector& selector);
    /// Appends `n` terminated UTF-8 texts; null ones are passed over.
    bool appendn(int n, ...);
    /// The position is held within the text.
    bool insert(int pos, const ZString& text);
    bool insert(int pos, const ZChar& character) { return insertCode(pos, character.value()); }
    /// Removes the units from `pos` to `pos + n`, as far as the text has them. False if there are none.
    bool remove(int pos, int n);
    /// Writes one unit, cutting the value to it. False for a position outside the text.
    bool set(int pos, char unit) { return setUnit(pos, static_cast<unsigned char>(unit)); }
    bool set(int pos, wchar unit) { return setUnit(pos, unit); }
    bool set(int pos, ichar unit) { return setUnit(pos, unit); }
    bool set(int pos, ZChar unit) { return setUnit(pos, unit.value()); }
    /// Overwrites from a position on with the first `n` units of a text, all of them if `n` is negative. What would
    /// stand behind the end is left out.
    bool set(int pos, const ZString& text, int n = -1);
    /// As often as it fits into the length; blanks fill the rest.
    bool fill(const ZChar& character);
    /// A negative code is that of a char with a sign.
    bool fill(int code) { return fill(code < 0 ? ZChar(char(code)) : ZChar(ichar(code))); }
    bool lower();
    bool upper();
    /// Replaces every code point, and answers how many; -1 without memory. 0 as the other code takes it out.
    int replace(uint code, uint other);
    /// Replaces the first occurrence until none is left, and answers how many; -1 without memory. Where the replacement
    /// contains what it replaces, the search goes on behind it. Replacements that never come to an end are given up:
    /// -1, the text as it was.
    int replace(const ZString& needle, const ZString& other);

    // Parts, in the string's own width

    ZString operator+(const ZString& other) const;
    /// The first `n` units.
    ZString start(int n) const;
    /// What is left without the first `n` units.
    ZString end(int n) const;
    ZString extract(int pos, int n) const;
    /// The text in front of the n-th blank; all of it if there are fewer.
    ZString words(int n) const;
    /// The unit at a position; 0 outside the text, and without memory to make the string private.
    ZChar at(int pos) { return own(0) ? constAt(pos) : ZChar(); }
    /// The same without making the string private.
    ZChar constAt(int pos) const;
    ZCharRef operator[](int pos) { return {this, pos}; }
    ZChar operator[](int pos) const { return constAt(pos); }

    // Search: the position of a unit, -1 if it isn't there. What is looked for takes the string's width; an empty text
    // is found at once. With `from` the search starts there. An `i` ignores case by simple folding.

    int pos(const ZString& text) const { return find(text.view(), 0, false, false); }
    int pos(int from, const ZString& text) const { return find(text.view(), from, false, false); }
    int posi(const ZString& text) const { return find(text.view(), 0, false, true); }
    int posi(int from, const ZString& text) const { return find(text.view(), from, false, true); }
    /// The last occurrence.
    int rpos(const ZString& text) const { return find(text.view(), 0, true, false); }
    int rposi(const ZString& text) const { return find(text.view(), 0, true, true); }
    /// A code point. The code 0 and what is no code point are nowhere.
    int codePos(ichar code) const { return findCode(code, 0, false, false); }
    int codePos(int from, ichar code) const { return findCode(code, from, false, false); }
    int codePosI(ichar code) const { return findCode(code, 0, false, true); }
    int codePosI(int from, ichar code) const { return findCode(code, from, false, true); }
    int codeRPos(ichar code) const { return findCode(code, 0, true, false); }
    int codeRPosI(ichar code) const { return findCode(code, 0, true, true); }
    int pos(char code) const { return codePos(static_cast<unsigned char>(code)); }
    int pos(wchar code) const { return codePos(code); }
    int pos(ichar code) const { return codePos(code); }
    int pos(int from, char code) const { return codePos(from, static_cast<unsigned char>(code)); }
    int pos(int from, wchar code) const { return codePos(from, code); }
    int pos(int from, ichar code) const { return codePos(from, code); }
    int rpos(char code) const { return codeRPos(static_cast<unsigned char>(code)); }
    int rpos(wchar code) const { return codeRPos(code); }
    int rpos(ichar code) const { return codeRPos(code); }
    bool starts(const ZString& text) const { return startsWith(text.view(), false); }
    bool startsI(const ZString& text) const { return startsWith(text.view(), true); }
    bool ends(const ZString& text) const { return endsWith(text.view(), false); }
    bool endsI(const ZString& text) const { return endsWith(text.view(), true); }

    // Likeness

    /// Whether a pattern covers the whole text: `*` stands for any run of code points, `?` for one.
    bool match(const ZString& pattern) const { return matches(pattern.view(), false); }
    bool matchi(const ZString& pattern) const { return matches(pattern.view(), true); }
    /// The least cost of making the other text from this one: a code point added or removed costs `gap`, one exchanged
    /// `change`. -1 without memory.
    int distance(const ZString& other, int gap = 1, int change = 1) const;
    /// Whether the distance is below `limit`; it answers as soon as that is known. False without memory.
    bool shorterDistance(const ZString& other, int limit, int gap = 1, int change = 1) const;
    /// The length in code points of the longest text that can be made from both by leaving out code points. -1 without
    /// memory.
    int longestSubsequence(const ZString& other) const;

    // Parts between separators, in the string's own width. Without memory a failure is raised and there are none. A
    // part of nothing between two separators is there with `keepEmpty`; behind the last one it never is.

    /// Units at or below the blank separate.
    ZArrayT<ZString> split() const;
    ZArrayT<ZString> split(uint code, bool keepEmpty) const;
    /// Every code point of `codes` separates.
    ZArrayT<ZString> split(const ZString& codes, bool keepEmpty) const;
    /// The whole of `delimiter` separates; with an empty one the string is the only part.
    ZArrayT<ZString> splitString(const ZString& delimiter, bool keepEmpty = true) const;
    /// The parts that aren't empty, their units below the blank as blanks.
    ZArrayT<ZString> extractNames(uint code) const;
    /// The same as these, as arrays of strings. Empty, with a failure raised, without memory.
    ZVArray separate() const;
    ZVArray separate(uint code, bool keepEmpty) const;
    ZVArray separate(const ZString& codes, bool keepEmpty) const;
    ZVArray separateString(const ZString& delimiter, bool keepEmpty = true) const;
    /// The texts of the items as lines.
    static ZString combineNames(const ZVArray& items);
    static ZString join(const ZArrayT<ZString>& parts, const ZString& separator = ZString());

    // Numbers out. A `WChar` or `IChar` string keeps its width, any other becomes `Char`. A width fills up on the left
    // with blanks, or with zeros behind the sign; digits above 9 are lower-case letters unless `upper`.

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
    bool setLarge(large value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    bool setULarge(ularge value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    /// A real with `precision(value, precision)` decimals, zeros at the end cut.
    bool setReal(double value, int width = 0, int precision = 0, int decimal = '.');
    /// A real with just so many decimals, zeros at the end cut.
    bool setRealNumber(double value, int width, int precision, int decimal);
    /// A numeral; false for a value that the format has none for.
    bool setNumber(uint value, NumFormat format);
    static ZString number(int value) { return number(large(value)); }
    static ZString number(uint value) { return number(ularge(value)); }
    static ZString number(long value) { return number(large(value)); }
    static ZString number(unsigned long value) { return number(ularge(value)); }
    static ZString number(large value);
    static ZString number(ularge value);
    static ZString number(double value);
    /// Decimals for a real: 6 if `asked` is 0, else `asked`; at least 8 for magnitudes below 10.
    static int precision(double value, int asked);
    /// The decimal character of the platform.
    static ichar decimal();

    // Numbers in: the whole text, with blanks around it. False, with `out` as it was, for anything else.

    /// "yes" or "true", "no" or "false", in lower case.
    bool toBool(bool& out) const;
    bool toByte(byte& out, int radix = 10) const;
    bool toChar(int8& out, int radix = 10) const { return toInt8(out, radix); }
    bool toInt8(int8& out, int radix = 10) const;
    bool toInt16(int16& out, int radix = 10) const;
    bool toWord(word& out, int radix = 10) const;
    bool toInt(int& out, int radix = 10) const;
    bool toUInt(uint& out, int radix = 10) const;
    bool toLong(long& out, int radix = 10) const;
    bool toULong(unsigned long& out, int radix = 10) const;
    bool toLarge(large& out, int radix = 10) const;
    bool toULarge(ularge& out, int radix = 10) const;
    bool toFloat(float& out, int decimal = '.') const;
    bool toDouble(double& out, int decimal = '.') const { return toReal(out, decimal); }
    bool toReal(double& out, int decimal = '.') const;
    /// Whether the text starts with a prefix and the rest is an integer.
    bool prefixedInt(const char* prefix, int& value, int radix = 10) const;
    /// Takes the text apart at its first run of decimal digits. False, with nothing changed, if there is none, or none
    /// that an int holds.
    bool splitAtNumber(ZString& before, ZString& after, int& number) const;

    // Formatted text (see text/format.h). The string takes the format's width. A result of nothing answers false and
    // leaves the text. Arguments may be the string's own text.

    bool printf(const char* format, ...);
    bool printf(const wchar* format, ...);
    bool printf(const ichar* format, ...);
    bool aprintf(const char* format, var_arg* arguments);
    bool aprintf(const wchar* format, var_arg* arguments);
    bool aprintf(const ichar* format, var_arg* arguments);
    /// Arguments are converted to what the format asks for; missing ones are 0 and "(null)".
    bool xprintf(const char* format, const ZArrayT<ZVariant>& arguments);
    bool xprintf(const wchar* format, const ZArrayT<ZVariant>& arguments);
    bool xprintf(const ichar* format, const ZArrayT<ZVariant>& arguments);
    bool printfArg(const char* format, const ZVArray& arguments);
    bool printfArg(const wchar* format, const ZVArray& arguments);
    bool printfArg(const ichar* format, const ZVArray& arguments);
    bool printfArg(const char* format, const ZArgument& arguments);
    bool printfArg(const wchar* format, const ZArgument& arguments);
    bool printfArg(const ichar* format, const ZArgument& arguments);

    // Resource strings: texts with the placeholders %1 to %9 for arguments. "%%" is a percent sign, and a backslash
    // takes the meaning from one of "#$%&():;<=>?[\]^{} behind it; %0 is the code where one is given. What names no
    // argument stays. Integers are written in decimal, reals with `precision(value, 0)`. The result replaces the text,
    // in the width of the letter: A `Char`, W `WChar`, I `IChar`.
    //
    // `types` has a letter for each argument: i an int, r a double, s a terminated text of the result's width, a blank
    // a pointer that gives no text.

    bool execResA(const char* types, ...);
    bool execResW(const char* types, ...);
    bool execResI(const char* types, ...);
    bool execResA(uint code, const char* types, ...);
    bool execResW(uint code, const char* types, ...);
    bool execResI(uint code, const char* types, ...);
    bool execResAArg(const ZStringArg* values, int count);
    bool execResWArg(const ZStringArg* values, int count);
    bool execResIArg(const ZStringArg* values, int count);
    bool execResAArg(uint code, const ZStringArg* values, int count);
    bool execResWArg(uint code, const ZStringArg* values, int count);
    bool execResIArg(uint code, const ZStringArg* values, int count);
    /// Integers, reals, texts and names stand for themselves; other values give no text.
    bool execXResA(const ZArrayT<ZVariant>& values);
    bool execXResW(const ZArrayT<ZVariant>& values);
    bool execXResI(const ZArrayT<ZVariant>& values);
    bool execXResA(uint code, const ZArrayT<ZVariant>& values);
    bool execXResW(uint code, const ZArrayT<ZVariant>& values);
    bool execXResI(uint code, const ZArrayT<ZVariant>& values);
    bool execResAArg(const ZVArray& values);
    bool execResWArg(const ZVArray& values);
    bool execResIArg(const ZVArray& values);
    bool execResAArg(uint code, const ZVArray& values);
    bool execResWArg(uint code, const ZVArray& values);
    bool execResIArg(uint code, const ZVArray& values);
    /// The letters that stand for the values in `types`.
    static ZString createParamType(const ZArrayT<ZVariant>& values);
    static ZString createParamType(const ZVArray& values);

    // Tidying. Codes are code points.

    /// Removes runs of a code at the start and at the end.
    bool trimEndings(uint code);
    /// Without a run of `a` at the start and a run of `b` behind it. Either may be missing.
    ZString removePrefix(uint a, uint b) const;
    /// Without a run of `a` at the end and a run of `b` before it.
    ZString removeSuffix(uint a, uint b) const;
    /// Without the prefix, if the text starts with it.
    ZString removePrefix(const ZString& prefix) const;
    /// Without the mark of a list item: dashes and blanks at both ends, then bullets and blanks at the start. A text of
    /// dashes and blanks alone is empty.
    ZString adjustListName() const;
    /// In the text of a number that has a decimal character: removes `fill` at the end down to it, and it as well if
    /// nothing is left behind it. Then does what `clipDecimal` does.
    bool removeTrailing(uint decimal, uint fill);
    /// In a text of more than two units: removes a "0" at the end that follows on "." or `decimal`, with that.
    bool clipDecimal(uint decimal);
    /// As `Char` text, every run of CR and LF one LF, without those at the start.
    ZString cleanupLines() const;
    /// Whether every byte of the UTF-8 text occurs in that of the alphabet.
    bool checkAlphabet(const ZString& alphabet) const;
    /// Whether the text is `min` to `max` hexadecimal digits, with `hash` the first one perhaps a "#". The empty string
    /// is if `min` is 0.
    bool checkHexadecimal(int min, int max, bool hash) const;

    /// The text of an entry made after another: without blanks, then without dots at its ends, and with its marks
    /// escaped as in the other, if it has a "%".
    ZString adjustResource(const ZString& reference) const;

    // Selectors, files and texts of the user

    /// The selector of the UTF-8 text.
    ZSelector toSelector() const;
    /// The bytes of the text, read in the encoding `from`, as text of the encoding `to`. The one pair is "shiftjis" to
    /// "unicode": `WChar` text with U+FFFD for each malformed part. Any other gives the empty string.
    ZString convert(const ZSelector& to, const ZSelector& from) const;
    /// The text of a file: UTF-8 with or without a mark at its start, UTF-16 or UTF-32 with one. A relative path is
    /// logical (see `ZFileName`). Empty for an empty file, and with `loaded` false where it can't be read.
    static ZString load(const ZString& path, bool* loaded = nullptr);
    /// Writes the UTF-8 text, whole or not at all. A relative path is logical and may lead to the user's data; with
    /// `originalPlace` the path is the platform's.
    bool save(const ZString& path, bool originalPlace = false) const;
    /// What the platform calls the file that the text is the logical path of.
    ZString fileName() const;
    /// The text kept for the user under a name; empty for none.
    static ZString loadUser(const ZSelector& name);
    /// Keeps the UTF-8 text; the empty string removes it. False for a text that can't be kept: with control characters
    /// other than tab and line feed, or too long.
    bool storeUser(const ZSelector& name) const;

    // Comparison: negative, 0 or positive

    /// The order by code points, whatever the widths.
    int compare(const ZString& other) const;
    int compstr(const char* text, int length = -1) const;
    int compstr(const wchar* text, int length = -1) const;
    int compstr(const ichar* text, int length = -1) const;
    /// The order that ignores case.
    int icompare(const ZString& other) const { return orv::detail::compareTextFolded(view(), other.view()); }
    /// The order that a reader expects. Texts that differ can be equal in it.
    int compareString(const ZString& other) const;

    bool operator==(const ZString& other) const { return compare(other) == 0; }
    bool operator==(const char* text) const { return compstr(text) == 0; }
    bool operator<(const ZString& other) const { return compare(other) < 0; }

    /// The index of an internal string, else a hash of the UTF-8 form: equal texts in several forms hash apart.
    uint hashKey() const;
    /// The index of an internal string, else a hash of the units.
    uint stringHash() const;
    /// A hash that is equal for equal texts of any form; maps use this one.
    uint textHash() const { return orv::detail::hashText(view()); }

protected:
    /// The head of a record; the units and two of zero follow.
    struct Record {
        int type;
        uint expand; ///< growth step in the low 16 bits
        int length;
        int capacity;
        void* text() { return this + 1; }
        template <class C> C* units() { return reinterpret_cast<C*>(this + 1); }
    };
    static constexpr int defaultExpand = 32;
    static constexpr large maxCapacity = 0x7FFFFFE0;

    /// A record of the larger of the two sizes, terminated at `length`, its text undefined. Null for a size below 1.
    static Record* newRecord(int type, large capacity, int length);
    static size_t recordBytes(int type, large capacity);
    /// Ends the text of a private record at `length`.
    static void setEnd(Record* record, int length);

private:
    void share() {
        if (record)
            toolkit::increment(toolkit::blockHead(record)->count);
        else if (index)
            shareIndex();
    }
    void drop() {
        if (record)
            zfree(record);
        else if (index)
            dropIndex();
    }
    void forget() {
        record = nullptr;
        index = 0;
    }
    void shareIndex();
    void dropIndex();
    View internalView() const;
    /// Gives up what it holds and takes over a record.
    void take(Record* wanted);
    bool shared() const { return record && refcount(record) > 1; }
    /// Makes the string a private record of at least a capacity.
    bool own(large capacity);
    bool setCapacity(large capacity, bool exact);
    /// Replaces `removed` units at `pos`, both within the text.
    bool splice(int pos, int removed, const View& text);
    bool insertCode(int pos, ichar code);
    bool setUnit(int pos, ichar unit);
    bool mapCase(bool upper);
    int replace(const View& needle, const View& other);
    int find(const View& text, int from, bool last, bool ignoreCase) const;
    int findCode(ichar code, int from, bool last, bool ignoreCase) const;
    bool startsWith(const View& text, bool ignoreCase) const;
    bool endsWith(const View& text, bool ignoreCase) const;
    bool matches(const View& pattern, bool ignoreCase) const;
    /// Keeps the units from one position to another.
    bool keep(int from, int to);
    template <class C> bool runResource(const void* prepared);
    /// Sets what `write(out, size)` writes in the string's width.
    template <class F> bool setWritten(F write);
    template <class C> bool setFormatted(const C* format, var_arg* arguments);
    /// The capacity after growing for `need` units.
    large grownCapacity(large need) const;

    Record* record;
    uint index;
};

static_assert(sizeof(ZString) == sizeof(void*) + 8);
