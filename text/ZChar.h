#pragma once

#include "text/forward.h"
#include "text/transcode.h"
#include "toolkit/text.h"

#include <type_traits>

/// One code point, 0 when nothing was put in. Every question stands twice: of the character, and of a code as a static
/// function. Values that are no code points have no properties and map to themselves.
class ORV_API ZChar {
public:
    using ZRelocatable = void;

    enum Category : uint {
        Uppercase = 1,
        Lowercase,
        Titlecase,
        Modifier,
        Other,
        NonSpacing,
        Spacing,
        Enclosing,
        Digit,
        NumLetter,
        NumOther,
        Connector,
        Dash,
        Open,
        Close,
        InitialQuote,
        FinalQuote,
        OtherPunct,
        MathSym,
        Currency,
        ModifierSym,
        OtherSym,
        Space,
        Line,
        Paragraph,
        Control,
        Format,
        Surrogate,
        Private,
        NonAssigned,
        Count
    };
    enum Direction : uint {
        DirNeutral,
        DirL,
        DirLRE,
        DirLRO,
        DirR,
        DirAL,
        DirRLE,
        DirRLO,
        DirPDF,
        DirEN,
        DirES,
        DirET,
        DirAN,
        DirCS,
        DirNSM,
        DirBN,
        DirB,
        DirS,
        DirWS,
        DirON
    };
    enum Decomposition : uint {
        Canonical,
        Font,
        NoBreak,
        Initial,
        Medial,
        Final,
        Isolated,
        Circle,
        Super,
        Sub,
        Vertical,
        Wide,
        Narrow,
        Small,
        Square,
        Fraction,
        Compat
    };
    enum DecompMask : uint {
        DecompNone = 0,
        MaskCanonical = 1u << Canonical,
        MaskFont = 1u << Font,
        MaskNoBreak = 1u << NoBreak,
        MaskInitial = 1u << Initial,
        MaskMedial = 1u << Medial,
        MaskFinal = 1u << Final,
        MaskIsolated = 1u << Isolated,
        MaskCircle = 1u << Circle,
        MaskSuper = 1u << Super,
        MaskSub = 1u << Sub,
        MaskVertical = 1u << Vertical,
        MaskWide = 1u << Wide,
        MaskNarrow = 1u << Narrow,
        MaskSmall = 1u << Small,
        MaskSquare = 1u << Square,
        MaskFraction = 1u << Fraction,
        MaskCompat = 1u << Compat,
        UseExcluded = 0x4000000,
        PairFont = 0x8000000,
        ExcludeBig = 0x10000000,
        MaskJamo = 0x20000000,
        MaskPair = 0x40000000,
        Ligature = 0x80000000,
        MaskDual = MaskPair | Ligature,
        NoNCanonical = 4094,
        MaskBoundary = MaskInitial | MaskMedial | MaskFinal | MaskIsolated,
        DecompCanonical = MaskCanonical | MaskJamo | MaskPair,
        MaskAny = 0xFFFFFFFF,
        Compatibility = 0xFFFFFFFF
    };
    /// The first four tell whether a normal form changes the character, or for a composed form may change it together
    /// with what stands before.
    enum Flags : uint {
        NoFlags = 0,
        CanonicalDecomp = 1,
        CanonicalComp = 2,
        CompatDecomp = 4,
        CompatComp = 8,
        BidiMirror = 16,
        HasUppercase = 32,
        HasLowercase = 64,
        HasFoldedcase = 128
    };
    enum CombiningClass : uint {
        BelowLeftAttached = 200,
        BelowAttached = 202,
        BelowRightAttached = 204,
        LeftAttached = 208,
        RightAttached = 210,
        AboveLeftAttached = 212,
        AboveAttached = 214,
        AboveRightAttached = 216,
        BelowLeft = 218,
        Below = 220,
        BelowRight = 222,
        Left = 224,
        Right = 226,
        AboveLeft = 228,
        Above = 230,
        AboveRight = 232,
        DoubleBelow = 233,
        DoubleAbove = 234,
        IotaSubscript = 240
    };

    // Lifetime and value

    constexpr ZChar() = default;
    constexpr ZChar(ichar code) : code(code) {}
    /// U+0000 to U+00FF, whether a char has a sign or not.
    template <class C>
    requires std::is_same_v<C, char>
    constexpr ZChar(C code) : code(static_cast<unsigned char>(code)) {}
    /// What stands at a place in a string.
    ZChar(const ZCharRef& place);
    /// The first character of UTF-8 text; 0 for null and for a length below 1.
    ZChar(const char* text, int length);
    /// The first character of a string; 0 for the empty string.
    explicit ZChar(const ZString& text);

    constexpr ichar value() const { return code; }
    constexpr bool isNull() const { return code == 0; }
    int compare(const ZChar& other) const { return (code > other.code) - (code < other.code); }
    uint hashKey() const { return code; }
    friend constexpr bool operator==(ZChar a, ZChar b) { return a.code == b.code; }
    friend constexpr bool operator<(ZChar a, ZChar b) { return a.code < b.code; }

    // Properties

    /// 0 for what is no code point.
    static Category category(ichar code) { return Category(toolkit::codeCategory(code)); }
    static Direction direction(ichar code) { return Direction(toolkit::codeDirection(code)); }
    /// The kind of decomposition by the numbers of `Decomposition`; 255 if there is none.
    static int decompose(ichar code) { return toolkit::codeDecomposition(code); }
    static int flags(ichar code) { return toolkit::codeFlags(code); }
    static int combiningClass(ichar code) { return toolkit::codeCombiningClass(code); }
    /// The value of a digit in a wide sense, superscripts and circled ones among them; -1 for anything else.
    static int digit(ichar code) { return toolkit::codeDigit(code); }
    /// The value of a digit of decimal numbers; -1 for anything else.
    static int decimal(ichar code) { return toolkit::codeDecimal(code); }
    /// The index of the Unicode block; 0 for none.
    static int block(ichar code) { return toolkit::codeBlock(code); }
    Category category() const { return category(code); }
    Direction direction() const { return direction(code); }
    int decompose() const { return decompose(code); }
    int flags() const { return flags(code); }
    int combiningClass() const { return combiningClass(code); }
    int digit() const { return digit(code); }
    int decimal() const { return decimal(code); }
    int block() const { return block(code); }

    /// The block with a name, whatever its case, blanks and hyphens; -1 for an unknown one and for the empty string.
    static int blockIndex(const ZString& name);
    /// The name of a block, such as "Basic Latin"; empty for an index that is none.
    static ZString blockName(int index);
    /// The Unicode name, or for a character without one a label such as "<control-0009>"; empty for no code point.
    static ZString name(ichar code);
    ZString name() const;

    // Groups of categories

    static bool isLetter(ichar code) { return within(code, Uppercase, Other); }
    static bool isMark(ichar code) { return within(code, NonSpacing, Enclosing); }
    static bool isNumber(ichar code) { return within(code, Digit, NumOther); }
    static bool isPunct(ichar code) { return within(code, Connector, OtherPunct); }
    static bool isSymbol(ichar code) { return within(code, MathSym, OtherSym); }
    static bool isSeparator(ichar code) { return within(code, Space, Paragraph); }
    static bool isOther(ichar code) { return within(code, Control, NonAssigned); }
    bool isLetter() const { return isLetter(code); }
    bool isMark() const { return isMark(code); }
    bool isNumber() const { return isNumber(code); }
    bool isPunct() const { return isPunct(code); }
    bool isSymbol() const { return isSymbol(code); }
    bool isSeparator() const { return isSeparator(code); }
    bool isOther() const { return isOther(code); }
    /// Whether characters of a category part words: marks, punctuation, separators, controls and format characters do.
    static bool wordSeparator(int category) { return uint(category) < Count && (wordSeparators >> category & 1); }

    // Mapping, one character to one

    static ichar mirror(ichar code) { return toolkit::codeMirror(code); }
    static bool hasMirrored(ichar code) { return mirror(code) != code; }
    static ichar toLower(ichar code) { return toolkit::codeLower(code); }
    static ichar toUpper(ichar code) { return toolkit::codeUpper(code); }
    static ichar toTitle(ichar code) { return toolkit::codeTitle(code); }
    ZChar mirror() const { return mirror(code); }
    bool hasMirrored() const { return hasMirrored(code); }
    ZChar toLower() const { return toLower(code); }
    ZChar toUpper() const { return toUpper(code); }
    ZChar toTitle() const { return toTitle(code); }

    /// Bytes in UTF-8.
    static int length(ichar code) { return orv::detail::codeUnits<char>(code); }
    int length() const { return length(code); }

private:
    // One bit for each category: 6 to 8, 12 to 18, 23 to 27.
    static constexpr uint wordSeparators = 7u << NonSpacing | 127u << Connector | 31u << Space;
    static bool within(ichar code, Category first, Category last) {
        return uint(category(code)) - first <= last - first;
    }

    ichar code = 0;
};
