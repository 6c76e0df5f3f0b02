#pragma once

#include "text/forward.h"
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

    ZString& operator=(const ZString& other) {
        assign(other);
        return *this;
    }
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
    ZString operator+(const ZString& other) const;

    // Parts, in the string's own width

    /// The first `n` units.
    ZString start(int n) const;
    /// What is left without the first `n` units.
    ZString end(int n) const;
    ZString extract(int pos, int n) const;

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
    /// The capacity after growing for `need` units.
    large grownCapacity(large need) const;

    Record* record;
    uint index;
};

static_assert(sizeof(ZString) == sizeof(void*) + 8);
