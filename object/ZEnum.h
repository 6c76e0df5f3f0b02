#pragma once

#include "core/ZArrayT.h"
#include "core/ZHashMapT.h"
#include "core/ZSelector.h"
#include "object/forward.h"
#include "value/forward.h"

/// One name of an enumeration.
struct ORV_API ZEnumItem {
    using ZRelocatable = void;

    ZSelector lowerName; ///< the name in lower case; may be left empty when the item is handed to `ZEnum::add`
    ZSelector name;
    int value = 0;

    ZEnumItem() = default;
    ZEnumItem(const ZSelector& name, int value) : name(name), value(value) {}
    ZEnumItem(const ZSelector& lowerName, const ZSelector& name, int value)
        : lowerName(lowerName), name(name), value(value) {}
    /// By value, then by name.
    int compare(const ZEnumItem& other) const;
    bool operator==(const ZEnumItem& other) const { return compare(other) == 0; }
};

/// The table of one enumeration: names and values, in the order in which they were added. A name is there once; adding
/// it again moves it to the new value. Several names may share a value: the last one added is what the value is called.
/// A copy shares the table until one side writes. One thread at a time writes to a table; several may read it.
///
/// Writing operations answer false when there is no memory; one name is then entered as a whole or not at all, of
/// several those up to it stay.
class ORV_API ZEnum {
public:
    using ZRelocatable = void;

    // Lifetime. A constructor without memory raises a failure and leaves the table empty.

    ZEnum() = default;
    explicit ZEnum(const ZSelector& name) : selector(name) {}
    /// With room for `capacity` names.
    ZEnum(const ZSelector& name, uint capacity);
    ZEnum(const ZEnum& other) = default;
    ZEnum(ZEnum&& other) noexcept = default;
    ZEnum& operator=(const ZEnum& other) = default;
    ZEnum& operator=(ZEnum&& other) noexcept = default;
    void assign(const ZEnum& other) { *this = other; }

    // Changing

    /// All names of another table, with their values.
    bool add(const ZEnum& other);
    bool add(const ZArrayT<ZEnumItem>& items);
    /// The same from an array of items, or, of names, one behind the other; of variants, each may be either. False for
    /// anything else.
    bool add(const ZVArray& items);
    /// With the value behind that of the name added last; 0 for the first.
    bool add(const ZSelector& name);
    /// False for an empty name too.
    bool add(const ZSelector& name, int value);
    /// False if it isn't there. Its value is called by the last of its other names.
    bool remove(const ZSelector& name);
    /// All names of a value.
    bool remove(int value);
    /// Names, values and what `nextValue` has come to; what the enumeration itself is stays.
    void clear();
    /// Makes the table this one's own.
    bool detach();
    bool isDetached() const;

    // By name. A name that isn't there reads as the number that it is the text of, in base 10, or in base 16 behind
    // "0x"; of any other text the value is 0. The forms with `value`, which may be null, ask for names only and leave
    // it as it was when they answer false. LC: by the names in lower case, of which the last one added counts.

    int value(const ZSelector& name) const;
    bool value(const ZSelector& name, int* value) const;
    int valueLC(const ZSelector& lowerName) const;
    bool valueLC(const ZSelector& lowerName, int* value) const;

    // By value. A value without a name gives "0x" and its digits in base 16, in upper case, for LC in lower case.

    ZSelector name(int value) const;
    ZSelector nameLC(int value) const;
    /// The position of a value; -1 if it has no name.
    int valueIndex(int value) const;
    /// What stands behind the value in the order of adding; behind the last, and for a value that has no name, the
    /// first. The value itself in an empty table.
    int nextValue(int value) const { return step(value, 1); }
    /// What stands in front of it; in front of the first, and for a value that has no name, the last.
    int prevValue(int value) const { return step(value, -1); }
    /// The same by names; empty in an empty table.
    ZSelector nextName(const ZSelector& name) const { return stepName(name, 1); }
    ZSelector prevName(const ZSelector& name) const { return stepName(name, -1); }

    // By position. Positions are those of values: names that share one count once.

    uint count() const { return byValue.count(); }
    /// Empty, or 0, out of range.
    ZSelector nameAtIndex(int index) const;
    int valueAtIndex(int index) const;

    // All of it, in the order of adding: each value once, with what it is called. Empty, with a failure raised, without
    // memory. The forms with an array append to it, and answer false, with the array as it was, without memory.

    ZArrayT<ZSelector> names() const;
    ZArrayT<int> values() const;
    ZArrayT<ZEnumItem> items() const;
    bool enumNames(ZArrayT<ZSelector>& names) const;
    bool enumValues(ZArrayT<int>& values) const;
    bool enumItems(ZArrayT<ZEnumItem>& items) const;

    // Sets of flags

    /// Whether no value shares only a part of its bits with the values in front of it, so that values can be joined
    /// and told apart again.
    bool isBitFlags() const { return bitFlags; }
    /// Works that out anew, as each change of the table does by itself.
    void resetBitFlags();
    /// Whether the values exclude each other: they are no flags then, whatever bits they share. False at first; a
    /// declared enumeration whose values count up has it set.
    bool isExclusive() const { return exclusive; }
    void setExclusive(bool on);
    /// Whether a variable of the enumeration may have the value: one that has a name, or of flags one whose bits all
    /// belong to values that have. Of negative values only those with names count. Anything may stand in an empty
    /// table.
    bool holds(int value) const;
    /// The values of a list of words joined by OR; what is no name and no number adds nothing. With `lower` the words
    /// are names in lower case.
    int scan(const ZSelector& words, bool lower) const;
    /// The names of all values of one bit that are set in `flags`, as a list of words.
    ZSelector output(int flags, bool lower) const;

    // Expressions

    /// The value of a name, or of names joined by "|" (or), "+" or "-" (both add) and "&" (subtracts the next from the
    /// value so far), from left to right and without precedence; sums wrap around. "~" in front of a name inverts its
    /// bits. Of a name with a name space only what stands behind that counts. Blanks around names mean nothing; a name
    /// behind another one without an operator between them replaces the value so far. Numbers are read as by `value`.
    int resolve(const ZString& expression) const;
    int resolve(const ZSelector& expression) const;
    /// The same with names in full, "Type::Name", of any enumerations that are known.
    static int resolveEnum(const ZString& expression);
    static int resolveEnum(const ZSelector& expression);
    /// The value of "Type::Name". False, with `value` as it was, if there is no such type or name, or if the type is no
    /// enumeration. Makes no type.
    static bool enumValue(const ZSelector& path, int* value);

    // The enumeration

    /// By name of the enumeration, then by names and values.
    int compare(const ZEnum& other) const;
    bool operator==(const ZEnum& other) const { return compare(other) == 0; }
    const ZSelector& getSelector() const { return selector; }
    void setSelector(const ZSelector& name) { selector = name; }
    /// The type whose table it is, or was copied from; null for none. Borrowed.
    ZEnumType* getType() const { return type; }

private:
    friend class ZEnumType;
    using Names = ZHashMapT<ZSelector, ZKeyValueT<ZSelector, int>>;
    using Items = ZKeyMapT<ZValueKeyT<int>, ZEnumItem>;

    static bool readNumber(const char* text, int length, int& value);
    int resolveText(const char* text, int length) const;
    static int resolveFull(const char* text, int length);
    void joinBits(uint bits);
    bool callByOther(int value);
    int step(int value, int by) const;
    ZSelector stepName(const ZSelector& name, int by) const;

    ZEnumType* type = nullptr;
    ZSelector selector;
    int upcoming = 0; ///< the value of the next name added without one
    Names byName;
    Items byValue;
    Names byLowerName;
    uint seenBits = 0; ///< of all values, as long as they are flags
    byte bitFlags = 1;
    bool exclusive = false;
};
