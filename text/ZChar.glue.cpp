#include "text/ZChar.h"

#include "object/glue.h"
#include "text/ZCharRef.h"
#include "text/ZString.h"

namespace orv::glue {

template <> struct Table<ZChar> : Declares<ZChar> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((ichar)),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_METHOD(ichar, value, (), const),
        ORV_METHOD(bool, isNull, (), const),
        ORV_METHOD(int, compare, (const ZChar&), const),
        ORV_METHOD(uint, hashKey, (), const),
        ORV_STATIC(ZChar::Category, category, (ichar)),
        ORV_STATIC(ZChar::Direction, direction, (ichar)),
        ORV_STATIC(int, decompose, (ichar)),
        ORV_STATIC(int, flags, (ichar)),
        ORV_STATIC(int, combiningClass, (ichar)),
        ORV_STATIC(int, digit, (ichar)),
        ORV_STATIC(int, decimal, (ichar)),
        ORV_STATIC(int, block, (ichar)),
        ORV_METHOD(ZChar::Category, category, (), const),
        ORV_METHOD(ZChar::Direction, direction, (), const),
        ORV_METHOD(int, decompose, (), const),
        ORV_METHOD(int, flags, (), const),
        ORV_METHOD(int, combiningClass, (), const),
        ORV_METHOD(int, digit, (), const),
        ORV_METHOD(int, decimal, (), const),
        ORV_METHOD(int, block, (), const),
        ORV_STATIC(int, blockIndex, (const ZString&)),
        ORV_STATIC(ZString, blockName, (int)),
        ORV_STATIC(ZString, name, (ichar)),
        ORV_METHOD(ZString, name, (), const),
        ORV_STATIC(bool, isLetter, (ichar)),
        ORV_STATIC(bool, isMark, (ichar)),
        ORV_STATIC(bool, isNumber, (ichar)),
        ORV_STATIC(bool, isPunct, (ichar)),
        ORV_STATIC(bool, isSymbol, (ichar)),
        ORV_STATIC(bool, isSeparator, (ichar)),
        ORV_STATIC(bool, isOther, (ichar)),
        ORV_METHOD(bool, isLetter, (), const),
        ORV_METHOD(bool, isMark, (), const),
        ORV_METHOD(bool, isNumber, (), const),
        ORV_METHOD(bool, isPunct, (), const),
        ORV_METHOD(bool, isSymbol, (), const),
        ORV_METHOD(bool, isSeparator, (), const),
        ORV_METHOD(bool, isOther, (), const),
        ORV_STATIC(bool, wordSeparator, (int)),
        ORV_STATIC(ichar, mirror, (ichar)),
        ORV_STATIC(bool, hasMirrored, (ichar)),
        ORV_STATIC(ichar, toLower, (ichar)),
        ORV_STATIC(ichar, toUpper, (ichar)),
        ORV_STATIC(ichar, toTitle, (ichar)),
        ORV_METHOD(ZChar, mirror, (), const),
        ORV_METHOD(bool, hasMirrored, (), const),
        ORV_METHOD(ZChar, toLower, (), const),
        ORV_METHOD(ZChar, toUpper, (), const),
        ORV_METHOD(ZChar, toTitle, (), const),
        ORV_STATIC(int, length, (ichar)),
        ORV_METHOD(int, length, (), const),
    };
    static constexpr EnumItemRow categoryItems[] = {
        ORV_ITEM(Category, Uppercase),    ORV_ITEM(Category, Lowercase),  ORV_ITEM(Category, Titlecase),
        ORV_ITEM(Category, Modifier),     ORV_ITEM(Category, Other),      ORV_ITEM(Category, NonSpacing),
        ORV_ITEM(Category, Spacing),      ORV_ITEM(Category, Enclosing),  ORV_ITEM(Category, Digit),
        ORV_ITEM(Category, NumLetter),    ORV_ITEM(Category, NumOther),   ORV_ITEM(Category, Connector),
        ORV_ITEM(Category, Dash),         ORV_ITEM(Category, Open),       ORV_ITEM(Category, Close),
        ORV_ITEM(Category, InitialQuote), ORV_ITEM(Category, FinalQuote), ORV_ITEM(Category, OtherPunct),
        ORV_ITEM(Category, MathSym),      ORV_ITEM(Category, Currency),   ORV_ITEM(Category, ModifierSym),
        ORV_ITEM(Category, OtherSym),     ORV_ITEM(Category, Space),      ORV_ITEM(Category, Line),
        ORV_ITEM(Category, Paragraph),    ORV_ITEM(Category, Control),    ORV_ITEM(Category, Format),
        ORV_ITEM(Category, Surrogate),    ORV_ITEM(Category, Private),    ORV_ITEM(Category, NonAssigned),
        ORV_ITEM(Category, Count)};
    static constexpr EnumItemRow directionItems[] = {
        ORV_ITEM(Direction, DirNeutral), ORV_ITEM(Direction, DirL),   ORV_ITEM(Direction, DirLRE),
        ORV_ITEM(Direction, DirLRO),     ORV_ITEM(Direction, DirR),   ORV_ITEM(Direction, DirAL),
        ORV_ITEM(Direction, DirRLE),     ORV_ITEM(Direction, DirRLO), ORV_ITEM(Direction, DirPDF),
        ORV_ITEM(Direction, DirEN),      ORV_ITEM(Direction, DirES),  ORV_ITEM(Direction, DirET),
        ORV_ITEM(Direction, DirAN),      ORV_ITEM(Direction, DirCS),  ORV_ITEM(Direction, DirNSM),
        ORV_ITEM(Direction, DirBN),      ORV_ITEM(Direction, DirB),   ORV_ITEM(Direction, DirS),
        ORV_ITEM(Direction, DirWS),      ORV_ITEM(Direction, DirON)};
    static constexpr EnumItemRow decompositionItems[] = {
        ORV_ITEM(Decomposition, Canonical), ORV_ITEM(Decomposition, Font),     ORV_ITEM(Decomposition, NoBreak),
        ORV_ITEM(Decomposition, Initial),   ORV_ITEM(Decomposition, Medial),   ORV_ITEM(Decomposition, Final),
        ORV_ITEM(Decomposition, Isolated),  ORV_ITEM(Decomposition, Circle),   ORV_ITEM(Decomposition, Super),
        ORV_ITEM(Decomposition, Sub),       ORV_ITEM(Decomposition, Vertical), ORV_ITEM(Decomposition, Wide),
        ORV_ITEM(Decomposition, Narrow),    ORV_ITEM(Decomposition, Small),    ORV_ITEM(Decomposition, Square),
        ORV_ITEM(Decomposition, Fraction),  ORV_ITEM(Decomposition, Compat)};
    static constexpr EnumItemRow decompMaskItems[] = {
        ORV_ITEM(DecompMask, DecompNone),   ORV_ITEM(DecompMask, MaskCanonical),
        ORV_ITEM(DecompMask, MaskFont),     ORV_ITEM(DecompMask, MaskNoBreak),
        ORV_ITEM(DecompMask, MaskInitial),  ORV_ITEM(DecompMask, MaskMedial),
        ORV_ITEM(DecompMask, MaskFinal),    ORV_ITEM(DecompMask, MaskIsolated),
        ORV_ITEM(DecompMask, MaskCircle),   ORV_ITEM(DecompMask, MaskSuper),
        ORV_ITEM(DecompMask, MaskSub),      ORV_ITEM(DecompMask, MaskVertical),
        ORV_ITEM(DecompMask, MaskWide),     ORV_ITEM(DecompMask, MaskNarrow),
        ORV_ITEM(DecompMask, MaskSmall),    ORV_ITEM(DecompMask, MaskSquare),
        ORV_ITEM(DecompMask, MaskFraction), ORV_ITEM(DecompMask, MaskCompat),
        ORV_ITEM(DecompMask, UseExcluded),  ORV_ITEM(DecompMask, PairFont),
        ORV_ITEM(DecompMask, ExcludeBig),   ORV_ITEM(DecompMask, MaskJamo),
        ORV_ITEM(DecompMask, MaskPair),     ORV_ITEM(DecompMask, Ligature),
        ORV_ITEM(DecompMask, MaskDual),     ORV_ITEM(DecompMask, NoNCanonical),
        ORV_ITEM(DecompMask, MaskBoundary), ORV_ITEM(DecompMask, DecompCanonical),
        ORV_ITEM(DecompMask, MaskAny),      ORV_ITEM(DecompMask, Compatibility)};
    static constexpr EnumItemRow flagsItems[] = {
        ORV_ITEM(Flags, NoFlags),      ORV_ITEM(Flags, CanonicalDecomp), ORV_ITEM(Flags, CanonicalComp),
        ORV_ITEM(Flags, CompatDecomp), ORV_ITEM(Flags, CompatComp),      ORV_ITEM(Flags, BidiMirror),
        ORV_ITEM(Flags, HasUppercase), ORV_ITEM(Flags, HasLowercase),    ORV_ITEM(Flags, HasFoldedcase)};
    static constexpr EnumItemRow combiningClassItems[] = {ORV_ITEM(CombiningClass, BelowLeftAttached),
                                                          ORV_ITEM(CombiningClass, BelowAttached),
                                                          ORV_ITEM(CombiningClass, BelowRightAttached),
                                                          ORV_ITEM(CombiningClass, LeftAttached),
                                                          ORV_ITEM(CombiningClass, RightAttached),
                                                          ORV_ITEM(CombiningClass, AboveLeftAttached),
                                                          ORV_ITEM(CombiningClass, AboveAttached),
                                                          ORV_ITEM(CombiningClass, AboveRightAttached),
                                                          ORV_ITEM(CombiningClass, BelowLeft),
                                                          ORV_ITEM(CombiningClass, Below),
                                                          ORV_ITEM(CombiningClass, BelowRight),
                                                          ORV_ITEM(CombiningClass, Left),
                                                          ORV_ITEM(CombiningClass, Right),
                                                          ORV_ITEM(CombiningClass, AboveLeft),
                                                          ORV_ITEM(CombiningClass, Above),
                                                          ORV_ITEM(CombiningClass, AboveRight),
                                                          ORV_ITEM(CombiningClass, DoubleBelow),
                                                          ORV_ITEM(CombiningClass, DoubleAbove),
                                                          ORV_ITEM(CombiningClass, IotaSubscript)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Category, categoryItems),
                                        ORV_ENUM(Direction, directionItems),
                                        ORV_ENUM(Decomposition, decompositionItems),
                                        ORV_ENUM(DecompMask, decompMaskItems),
                                        ORV_ENUM(Flags, flagsItems),
                                        ORV_ENUM(CombiningClass, combiningClassItems)};
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZChar);
