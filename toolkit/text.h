#pragma once

#include "toolkit/types.h"

/// Questions on characters and texts that the Unicode data answer. Every function takes any value: what is no code
/// point has no properties. All are safe on any thread; none fails but by what it says.
namespace toolkit {

/// @name Properties of a code point

ORV_API extern const unsigned char latinCategories[256];
ORV_API int wideCategory(ichar code);
/// The general category, 1 to 30 in the order of `ZChar::Category`; 0 above U+10FFFF.
inline int codeCategory(ichar code) { return ORV_LIKELY(code < 256) ? latinCategories[code] : wideCategory(code); }
/// The bidirectional class in the order of `ZChar::Direction`; isolates count as other neutrals.
ORV_API int codeDirection(ichar code);
/// The canonical combining class, 0 to 254.
ORV_API int codeCombiningClass(ichar code);
/// The decomposition type in the order of `ZChar::Decomposition`; 255 for a character without a decomposition.
ORV_API int codeDecomposition(ichar code);
/// The bits of `ZChar::Flags`.
ORV_API int codeFlags(ichar code);
/// The value of a decimal digit or of another digit, such as a superscript; -1 for anything else.
ORV_API int codeDigit(ichar code);
/// The value of a decimal digit; -1 for anything else.
ORV_API int codeDecimal(ichar code);
/// The mirror image for right-to-left text; the code itself if there is none.
ORV_API ichar codeMirror(ichar code);

/// @name Case, one code to one code

ORV_API ichar wideLower(ichar code);
ORV_API ichar wideFold(ichar code);
inline ichar codeLower(ichar code) {
    return ORV_LIKELY(code < 0x80) ? code + (code - 'A' < 26u) * 32u : wideLower(code);
}
ORV_API ichar codeUpper(ichar code);
ORV_API ichar codeTitle(ichar code);
/// Simple case folding: what comparisons that ignore case compare.
inline ichar codeFold(ichar code) { return ORV_LIKELY(code < 0x80) ? code + (code - 'A' < 26u) * 32u : wideFold(code); }

/// @name Blocks and names

/// The number of the Unicode block of a code; 0 for none. Numbers are below `blockCount()`.
ORV_API int codeBlock(ichar code);
ORV_API int blockCount();
/// The block with a name; case, blanks, hyphens and underscores don't count. -1 if there is none.
ORV_API int blockIndex(const char* name);
/// Writes a block's name with blanks between its words, terminated, at most `room` bytes with the terminator. Answers
/// its length; 0 for no such block.
ORV_API int blockName(int index, char* out, int room);
/// Writes the Unicode name of a code, or its label such as "<control-0009>" where it has none, as `blockName` does.
ORV_API int codeName(ichar code, char* out, int room);

/// @name Texts

enum class TextCase { Lower, Upper, Title, Fold };
/// The full case mapping of a text. Writes at most `room` units, no terminator, and answers the units that the result
/// takes; with a null `out` it only measures. 0 also when there is no memory or the text is above 2^30 units.
ORV_API size_t mapCase(TextCase kind, wchar* out, size_t room, const wchar* text, size_t length);

/// Shift JIS as UTF-16, each malformed part U+FFFD. Writes at most `room` units, no terminator, and answers the units
/// that the text takes; with a null `out` it only measures. 0 also without memory, and for a text above 2^30 bytes.
ORV_API size_t fromShiftJis(wchar* out, size_t room, const char* text, size_t length);

/// The order of two texts as a reader expects it, by the root collation: negative, 0 or positive. Texts that differ can
/// be equal in it. Only the first 2^28 units count. Without the collation data or memory: the order of the units.
ORV_API int collate(const char* a, size_t lengthA, const char* b, size_t lengthB);
ORV_API int collate(const wchar* a, size_t lengthA, const wchar* b, size_t lengthB);
ORV_API int collate(const ichar* a, size_t lengthA, const ichar* b, size_t lengthB);
/// Bytes whose plain order is the order of `collate`, zero-terminated, the terminator counted. Writes at most `room`
/// and answers the whole size; with a null `out` it only measures. 0 on failure.
ORV_API size_t sortKey(byte* out, size_t room, const char* text, size_t length);
ORV_API size_t sortKey(byte* out, size_t room, const wchar* text, size_t length);
ORV_API size_t sortKey(byte* out, size_t room, const ichar* text, size_t length);

/// Loads what collation needs; false if it can't be had. Otherwise the first use does it.
ORV_API bool openText();
/// Gives it back. No other thread may be inside `collate` or `sortKey`.
ORV_API void closeText();

} // namespace toolkit
