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
    /// The kind of a text as it stands.
    static Type stringType(const char* text, int length);
    /// The zero-ended normal form of a text in a new block, to be freed by `zfree`, with its kind and length; null for
    /// an empty text, and when there is no memory.
    static char* normalize(const char* text, int length, Type& type, int& newLength);

    // Making. Texts are brought into normal form: control characters go, runs of blanks become one, blanks at the ends
    // and in front of "&" and "*" go, ">>" that closes templates becomes "> >". A text of one such character stays as
    // it is. Forms with a type only cut the blanks at the ends.

    constexpr ZSelector() = default;
    ZSelector(const char* text);
    ZSelector(const char* text, int length);
    ZSelector(const ZString& text);
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
    bool set(const ZString& text);
    /// Exactly these bytes, their kind worked out.
    bool setBytes(const char* text, int length);
    /// The selector with that `key`; empty if there is none.
    bool setValue(uint value);
    void clear() {
        release();
        id = 0;
    }

    // Making from parts: of a list the items with their separator between them, of a template name and items, of a
    // function result, name and items. One item alone in a list of words, a path or a colon list is that item, its kind
    // worked out anew; so is the kind of words joined for `Detect`. The parts are read from the text later: they are
    // what it says, whatever kinds the items had. Empty items are left out. Types without parts give an empty selector.

    ZSelector(const ZSelector& name, const ZSelector& result, const ZSelector* params, int count, Type type);
    ZSelector(const ZSelector& name, const ZSelector& result, Type type);
    ZSelector(const ZSelector* items, int count, Type type);
    explicit ZSelector(const ZArrayT<ZSelector>& items, Type type = Names);
    bool set(const ZSelector& name, const ZSelector& result, const ZSelector* params, int count, Type type);
    bool set(const ZSelector& name, const ZSelector& result, Type type);
    bool set(const ZSelector* items, int count, Type type);
    bool set(const ZArrayT<ZSelector>& items, Type type = Names);

    /// The texts of the items.
    explicit ZSelector(const ZVArray& items, Type type = Names);
    explicit ZSelector(const ZVHashSet& items, Type type = Names);
    bool set(const ZVArray& items, Type type = Names);
    bool set(const ZVHashSet& items, Type type = Names);
    /// A signature from the names of types; empty if one is null.
    ZSelector(const ZSelector& name, const ZMetaType* result, const ZMetaType* const* params, int count);

    // Looking up: like the constructors, but empty for a text that nobody has made. For readers of outside data.

    static ZSelector find(const char* text);
    static ZSelector find(const char* text, int length);
    static ZSelector find(const char* text, int length, Type type);
    static ZSelector find(const ZString& text);
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

    // Parts, parsed on the first demand and kept. They are the items of a list, the arguments of a template or
    // function. Forms with a type parse the text as if it had that one; `Detect` stands for the selector's own.

    int parcount() const;
    /// Null if there are none; as long as the selector is held.
    const ZSelector* params() const;
    /// Empty out of range.
    ZSelector param(int index) const;
    /// Makes it the selector with another item at `index`; false out of range.
    bool setParam(int index, const ZSelector& value);
    ZArrayT<ZSelector> extract(Type type = Detect) const;
    /// The same as an array of selectors, or a set. Empty, with a failure raised, without memory.
    ZVArray separate(Type type = Detect) const;
    ZVHashSet separateSet(Type type = Detect) const;
    /// The items from `start` up to, without, `end`, as a selector of the same kind; the range is clipped.
    ZSelector extract(int start, int end) const;
    /// The items in front of `index`, and those from it on; false, with both as they were, out of range.
    bool separate(ZSelector& before, ZSelector& rest, int index) const;
    /// The position of an item; -1 if it is none.
    int index(const ZSelector& sel) const;
    /// How many of the array's selectors are contained in this one.
    int countItems(const ZArrayT<ZSelector>& items) const;
    /// The items in the order of their texts.
    ZSelector sorted(Type type = Detect) const;

    // Set algebra on lists of words. A selector that is no such list counts as one word. Words come in the order of
    // their first appearance, each once. Forms with a type take both texts as lists of that type.

    /// All words of both.
    ZSelector add(const ZSelector& sel) const;
    ZSelector add(const ZSelector& sel, Type type) const;
    /// The words that `sel` doesn't have.
    ZSelector remove(const ZSelector& sel) const;
    ZSelector remove(const ZSelector& sel, Type type) const;
    /// The words of both.
    ZSelector intersect(const ZSelector& sel) const;
    ZSelector intersect(const ZSelector& sel, Type type) const;
    bool intersects(const ZSelector& sel) const;
    bool intersects(const ZSelector& sel, Type type) const;
    /// The words that are in one of both only: those of `sel` are removed if present, else added.
    ZSelector swap(const ZSelector& sel) const;
    ZSelector swap(const ZSelector& sel, Type type) const;
    /// Whether it is `sel`, or has it, or all its words. Of items that aren't words only those of its own kind are
    /// looked for; a selector without items contains only itself.
    bool contains(const ZSelector& sel) const;
    bool contains(const ZSelector& sel, Type type) const;
    /// Equal, or lists of one kind and length with all items of `sel` in this one.
    bool matches(const ZSelector& sel) const;
    /// Whether the items are the first ones of `sel`, or the first item of `sel` is this selector.
    bool matchId(const ZSelector& sel) const;

    // Joining: texts put together and brought into normal form

    ZSelector join(const ZSelector& sel) const;
    ZSelector join(const char* text) const;
    /// The text, then `prefix`, `sel` and `suffix`.
    ZSelector join(const char* prefix, const ZSelector& sel, const char* suffix) const;
    ZSelector operator+(const ZSelector& sel) const { return join(sel); }
    /// With a blank between them; one that is empty gives the other.
    ZSelector combine(const ZSelector& sel) const;
    ZSelector operator|(const ZSelector& sel) const { return combine(sel); }
    static ZSelector combine(const ZSelector& a, const ZSelector& b, const char* separator);
    /// All items but the last; all but the first.
    ZSelector prefix() const;
    ZSelector suffix() const;
    /// What stands in front of `sel` at the end, without blanks, ".", "/" and ":" at its own end; empty if the text
    /// doesn't end so. With a character, that one has to stand between both and nothing else is cut.
    ZSelector prefix(const ZSelector& sel) const;
    ZSelector prefix(const ZSelector& sel, char between) const;
    /// The same from the start: what stands behind `sel`.
    ZSelector suffix(const ZSelector& sel) const;
    ZSelector suffix(const ZSelector& sel, char between) const;
    /// Whether the text begins, or ends, with that of `sel`; with a character, whether that one stands next to it.
    bool isPrefix(const ZSelector& sel) const;
    bool isPrefix(const ZSelector& sel, char between) const;
    bool isSuffix(const ZSelector& sel) const;
    bool isSuffix(const ZSelector& sel, char between) const;
    /// Whether the text is `prefix` and an integer.
    bool prefixedInt(const ZSelector& prefix, int& value, int radix = 10) const;
    /// A format that counts on from this name: "image%d" for "image" and for "image12".
    ZSelector prefixMask() const;

    // Functions

    /// The text up to the ")" if a blank follows it, else the whole; empty for what is no function.
    ZSelector method() const;
    static ZSelector method(const char* text);
    /// The words behind that blank.
    ZSelector methodQualifier() const;
    static ZSelector qualifier(const char* text);
    /// The name of a function or template; of others, the selector itself.
    ZSelector methodName() const;
    /// The name without its name space.
    ZSelector functionName() const { return methodName().baseName(); }
    /// The types of the result and the parameters, as names seen from `type`, or in all packages for null; null for a
    /// name that isn't known. Nothing for an empty selector; without memory too, with a failure raised.
    ZArrayT<ZMetaType*> metaTypes(const ZMetaType* type) const;
    /// Whether arguments of another signature's types fit this one's parameters, its names being seen from `type` and
    /// those of the other from `otherType`. With `checkResult` the results have to fit too; with `exact` there have to
    /// be as many parameters, else the first ones count.
    bool matchTypes(const ZMetaType* type, const ZMetaType* otherType, const ZSelector& other, bool checkResult,
                    bool exact) const;
    /// The type of this name, as `metaTypes` finds it.
    ZMetaType* nameType(const ZMetaType* type) const;
    ZSelector result() const;
    /// Makes it the same function or template under another name; false for what is neither.
    bool setMethodName(const ZSelector& name);
    /// A function without result, named as the type; with an empty type, named in upper case.
    bool isConstructor(const ZSelector& typeName) const;
    /// A function without result, named as the type behind a "~"; with an empty type, as any.
    bool isDestructor(const ZSelector& typeName) const;

    // Derived names, each worked out once and kept. Blanks and "::" inside of "<" and ">" don't count.

    /// Behind a "::" at the start; else empty.
    ZSelector rootName() const;
    /// Without "&", "*" and blanks at the end, what stands behind the last blank.
    ZSelector mainType() const;
    /// What stands behind the last blank; in front of it.
    ZSelector unqualified() const;
    ZSelector qualifier() const;
    /// What stands in front of the first ":", if that begins a "::" and has a "." before it; else empty.
    ZSelector package() const;
    /// Behind the first "::"; else empty.
    ZSelector typeName() const;
    /// In front of the last "::", from behind a blank; else in front of the last "."; else empty. Of a function, of its
    /// name.
    ZSelector nameSpace() const;
    /// Behind the last "::", of a function without its name space in the arguments either; else behind the last ".",
    /// with what stands in front of the last blank; else the selector itself.
    ZSelector baseName() const;

    // Marks: one character in front

    bool hasSelectorMark(char mark = '@') const { return at(0) == mark && mark; }
    ZSelector marked(char mark = '@') const;
    ZSelector unmarked(char mark = '@') const;

    // Numbers as text, formatted and read as by strings. They are put into normal form too.

    bool setInt(int value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    bool setUInt(uint value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    bool setLong(long value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    bool setULong(unsigned long value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    bool setLarge(large value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    bool setULarge(ularge value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    /// A precision of 0 is 6; values below 10 have at least 8 decimals.
    bool setReal(real value, int width = 0, int precision = 0, int decimal = '.');
    bool setRealNumber(real value, int width, int precision, int decimal);
    /// "yes" or "no".
    bool setBool(bool value);
    static ZSelector number(int value);
    static ZSelector number(uint value);
    static ZSelector number(large value);
    static ZSelector number(ularge value);
    static ZSelector number(real value);
    /// False, with `out` as it was, unless the whole text is a number that fits.
    bool toInt(int& out, int radix = 10) const;
    bool toUInt(uint& out, int radix = 10) const;
    bool toInt8(int8& out, int radix = 10) const;
    bool toInt16(int16& out, int radix = 10) const;
    bool toByte(byte& out, int radix = 10) const;
    bool toWord(word& out, int radix = 10) const;
    bool toLarge(large& out, int radix = 10) const;
    bool toULarge(ularge& out, int radix = 10) const;
    bool toFloat(float& out, int decimal = '.') const;
    bool toDouble(double& out, int decimal = '.') const;
    bool toReal(real& out, int decimal = '.') const { return toDouble(out, decimal); }
    /// "yes" and "true", "no" and "false".
    bool toBool(bool& out) const;
    /// Whether the text is exactly one decimal digit; or `prefix` and one.
    bool integerKey(int& value) const;
    bool integerKey(const ZSelector& prefix, int& value) const;

    // Text

    ZSelector lowerCase() const;
    ZSelector upperCase() const;
    /// The first character in upper case.
    ZSelector capitalize() const;
    /// Without the word behind the last blank, and without the blanks before it.
    ZSelector removeName() const;
    /// Without any blank.
    ZSelector removeSpaces() const;
    /// Without what isn't a letter at the end.
    ZSelector removeSuffix() const;
    /// What stands in the brackets of a `Bracket`; else the selector itself.
    ZSelector debracket() const;
    /// How many "*" stand at the end; with `count` more of them.
    int ptrCount() const;
    ZSelector ptrName(int count) const;
    /// The word behind the last blank, if it is a name; else empty.
    ZSelector varName() const;
    /// A list of words or a path.
    bool deepName() const;
    /// Whether it names a variable: an empty selector, a path, and what was linked or set as one.
    bool variableName() const;
    /// For all holders of the selector. A path stays one.
    void setVariableName(bool on);
    bool isReference() const;
    bool isTemplate() const { return type() == Template; }
    /// Whether there are others than characters of names.
    bool specialChars() const;
    static bool isName(const char* text);
    /// Whether it is the selector of a text, which is looked up and not made.
    bool check(const char* text) const;
    bool hasstr(const char* text) const;
    /// By bytes: negative, 0 or positive. Null counts as the empty text.
    int cmpstr(const char* text) const;
    int compareStr(const ZSelector& sel) const;
    /// Formats and makes the selector of the result; false, with the old value, if that is empty.
    bool printf(const char* format, ...) ORV_PRINTF(2, 3);
    bool aprintf(const char* format, var_arg* arguments);
    /// Arguments are converted to what the format asks for; missing ones are 0 and empty.
    bool xprintf(const char* format, const ZArrayT<ZVariant>& arguments);

    // Signals. A signature stands for the method of that signature in the type of the reference, on whatever instance;
    // the reference is called when an instance of the type, or of one that descends from it, fires the method. False
    // if there is no such method, without memory, and for any other selector.

    bool bind(const ZMethodRef& method) const;
    /// False if it isn't bound.
    bool unbind(const ZMethodRef& method) const;
    bool operator+=(const ZMethodRef& method) const { return bind(method); }
    bool operator-=(const ZMethodRef& method) const { return unbind(method); }

    // Comparison

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
