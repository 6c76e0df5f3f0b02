#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "text/ZString.h"

/// A growing run of bytes with a position, to write text or to read it, one of the two. Written text lies between the
/// start and the position. Text to be read fills the buffer, with the position at its start; the end is behind it.
///
/// Blanks are the bytes from 0 to 32. Codes are single bytes: one above 255 is met nowhere. Readers stop at the end of
/// the buffer whatever the text holds, and take time in proportion to it. A buffer belongs to one thread at a time.
class ORV_API ZCharBuffer {
public:
    static constexpr int defaultSize = 128;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves a buffer of no size.

    /// For writing.
    ZCharBuffer() : ZCharBuffer(defaultSize) {}
    explicit ZCharBuffer(int n);
    /// For reading: a copy of the text as UTF-8.
    explicit ZCharBuffer(const char* text);
    explicit ZCharBuffer(const ZCharStr& text);
    explicit ZCharBuffer(const ZSelector& text);
    explicit ZCharBuffer(const ZString& text);
    /// Written numbers with a blank between. Reals have the decimals of `ZString::precision(value, precision)` at most,
    /// unsigned numbers a radix from 2 to 36.
    explicit ZCharBuffer(const ZArrayT<int>& numbers);
    ZCharBuffer(const ZArrayT<float>& numbers, int precision);
    ZCharBuffer(const ZArrayT<real>& numbers, int precision);
    ZCharBuffer(const uint* numbers, int count, int radix);
    ZCharBuffer(const ZVArray& numbers, int precision);
    /// The items' texts with a blank between; reals with a precision of 6.
    explicit ZCharBuffer(const ZVArray& items);
    ~ZCharBuffer() { zfree(buffer); }
    ZCharBuffer(const ZCharBuffer&) = delete;
    ZCharBuffer& operator=(const ZCharBuffer&) = delete;
    /// Starts over with a new buffer of `n` bytes for writing; without memory nothing changes.
    bool initialize(int n);

    // Position

    char* getPos() const { return pos; }
    /// The position as an offset from the start.
    int dpos() const { return int(pos - buffer); }
    /// Bytes in the buffer.
    int getSize() const { return size; }
    char* end() const { return buffer + size; }
    bool ended() const { return pos >= end(); }
    /// Bytes of the text that `string` gives.
    int length() const;
    /// A position outside of the buffer, its end among them, is ignored.
    void setPos(int offset);
    void setPos(char* place);
    /// Moves on, at most to the end.
    void advance(int n);
    /// Moves back, at most to the start.
    void rewind(int n) { advance(n > 0 ? -n : 0); }
    void rewind() { pos = buffer; }

    // Writing, at the position; a 0 always follows. Without memory the answer is false, with the text as it was. A
    // length below 0 goes to the terminator. The text may be this buffer's own.

    /// The step by which a write grows the buffer at least; 1 to 2^30.
    int getExpand() const { return expandSize; }
    void setExpand(int step);
    /// Room for `n` bytes more than the size: the size doubles, from 128 at least, until it holds them.
    bool expand(int n);
    bool add(int code);
    bool add(const char* text) { return add(text, -1); }
    bool add(const char* text, int n);
    bool add(const ZString& text);
    /// The UTF-8 of a code point; of U+FFFD for what is none.
    bool addCode(uint code);
    /// Formatted text, see text/format.h.
    bool printf(const char* format, ...);
    bool aprintf(const char* format, var_arg* args);
    /// Forgets what was written, and zeroes it.
    void clear();
    /// Back to the start; the old text stays up to what is written next, unless `terminate`.
    void restart(bool terminate);
    /// Removes blanks in front of the position.
    void clearSpaces();

    // Writing with marks

    /// TAB, LF and CR as "\t", "\n", "\r"; a backslash in front of '"' and of a backslash.
    bool addWithEscape(const char* text, int n = -1);
    bool addWithEscape(const ZString& text);
    /// A backslash in front of '"'.
    bool addWithQuote(const char* text, int n = -1);
    bool addWithQuote(const ZString& text);
    /// Comma, TAB (as "\t") and backslash (doubled) each between quotes; quotes doubled.
    bool addCSVString(const char* text, int n = -1);
    bool addCSVString(const ZString& text);
    /// Letters, digits, "*", "-", "." and "_" as they are, every other byte as "%" and two hexadecimal digits.
    bool addSpecial(const char* text, int n = -1);
    bool addSpecial(const ZString& text);
    /// The text with its marks escaped as in `reference`: each of #$%&():;<=>?[\]^{} and the double quote is
    /// looked for there, from behind the one found last, and gets a backslash where it has one. "%1" to "%9" are no
    /// marks. Without memory, `ZError::fail` and an empty text.
    static ZString escapeStringRessource(const ZString& text, const ZString& reference);

    // Reading bytes: -1 at the end

    int peek() const { return ended() ? -1 : byte(*pos); }
    int get() { return ended() ? -1 : byte(*pos++); }

    // Skipping

    /// Removes blanks at the end of the text, whether written or to be read, then goes to its first byte that is none.
    void skipSpaces();
    /// Passes blanks and commas.
    void skipSeparator();
    /// Goes behind the next byte equal to the code; blanks never are. False if there is none, and the position is the
    /// end.
    bool skipTo(uint code);

    // Words and fields. At the end they answer empty values.

    /// From the first byte that is no blank to the code, which is passed, or to the next blank unless `blanks`.
    ZSelector token(int code, bool blanks);
    /// A run of letters, digits and "_", or a single other character. Blanks in front are passed.
    ZSelector token();
    /// A run of letters, or a single other character. Blanks in front are passed.
    ZSelector pureName();
    /// The next field, up to the code, which is passed. Blanks in front are passed; all others belong to the field. One
    /// that begins with a quote, single or double, or with the code, goes from there to the next byte like it, and the
    /// code behind a closing quote is passed too; so there are no empty fields but quoted ones. Without an end, the
    /// rest.
    ZString separateString(uint code);
    ZSelector separateSelector(uint code);
    /// The text up to the first byte equal to `a` or `b`, which is passed; `second` tells whether it was `b`.
    ZString stringTo(uint a, uint b, bool& second);
    /// The text between balanced delimiters, from the position, or from behind `open` if it comes first, to the closing
    /// one, which is passed. `open`, "{", "(" and "[" count against `close`, "}", ")" and "]". Each quote, single or
    /// double, switches a quoted state on or off, in which they don't count. A backslash is a byte like others. Without
    /// a closing one, the rest.
    ZString extract(uint open, uint close);
    /// A word, and into `text` what `extract` gives if `open` follows it, else nothing. Words end at a blank, at `open`
    /// and `close`, and at the bytes of `tokens`, each of which is a word of its own.
    ZSelector extract(ZString& text, uint open, uint close, const ZString& tokens);
    /// Copies to `out` up to the code, which is passed. False if there was none, with the rest copied; false too
    /// without memory, with nothing copied and the position as it was.
    bool copyTillCode(ZCharBuffer& out, int code);
    /// The rest, its character references resolved: "&#n;" gives the byte n for 1 to 255; "&lt;", "&gt;", "&amp;",
    /// "&apos;" and "&quot;" their characters. Other references, of 1 to 8 letters, digits and "#", are dropped. A "&"
    /// that begins none stays.
    ZString parseXMLCharacters();

    // Numbers: at the position, behind blanks and commas, and moving behind the number. False, without moving, if there
    // is none. What the type can't hold gives its nearest value.

    bool scanInt(int* out, int radix);
    /// Up to `most` numbers; those that aren't there leave `out` as it was.
    bool scanUnsigned(uint* out, int most, int radix);
    bool scanFloat(float* out, int decimal);
    bool scanReal(double* out, int decimal);
    /// All numbers up to the end, or to what is none. Without memory, `ZError::fail` and no numbers, with the position
    /// as it was.
    ZArrayT<int> scanInt(int radix);
    ZArrayT<float> scanFloat(int decimal);
    ZArrayT<real> scanReal(int decimal);
    ZVArray scanIntArray(int radix);
    ZVArray scanFloatArray(int decimal);
    ZVArray scanRealArray(int decimal);
    /// Turns hexadecimal text from the position on into bytes, from the start of the buffer on, and goes behind them.
    /// Other characters are passed; two digits make a byte, a lone last one is dropped. Answers the bytes.
    int scanBlock();

    // The text as a value: up to the first 0 byte, or the end

    ZString string() const { return ZString(buffer, length()); }
    ZString stringFromPos() const;
    ZSelector selector() const;
    /// A terminated copy that the caller frees with `zfree`; null for an empty text.
    char* copyAStr() const;

private:
    void copy(const char* text, int n);
    bool room(int n);
    /// Gives up what was written from an offset on.
    bool undo(int offset);
    template <class F> bool addEach(const char* text, int n, F write);
    template <class F> bool addEach(const ZString& text, F write);
    template <class T> void addNumbers(const ZArrayT<T>& numbers, int precision);
    uint here() const { return byte(*pos); }
    void skipBlanks();
    const char* field(uint code, int& length);
    const char* balanced(uint open, uint close, int& length);
    template <class T> bool scan(T* out, int parameter);
    template <class T> ZArrayT<T> scanAll(int parameter);

    char* buffer = nullptr; ///< counted, 8 bytes longer than `size`
    char* pos = nullptr;
    int size = 0;
    int expandSize = defaultSize;
};
