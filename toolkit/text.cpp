#include "toolkit/text.h"

#include "toolkit/atomic.h"
#include "toolkit/memory.h"

#include <algorithm>
#include <cstring>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucol.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace toolkit {

const unsigned char latinCategories[256] = {
    26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26,
    26, 26, 26, 23, 18, 18, 18, 20, 18, 18, 18, 14, 15, 18, 19, 18, 13, 18, 18, 9,  9,  9,  9,  9,  9,  9,  9,  9,  9,
    18, 18, 19, 19, 19, 18, 18, 1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,
    1,  1,  1,  1,  14, 18, 15, 21, 12, 21, 2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,
    2,  2,  2,  2,  2,  2,  2,  14, 19, 15, 19, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26,
    26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 23, 18, 20, 20, 20, 20, 22, 18, 21, 22, 5,  16, 19, 27,
    22, 21, 22, 19, 11, 11, 21, 2,  18, 18, 21, 11, 5,  17, 11, 11, 11, 18, 1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,
    1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  19, 1,  1,  1,  1,  1,  1,  1,  2,  2,  2,  2,  2,  2,  2,  2,  2,
    2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  19, 2,  2,  2,  2,  2,  2,  2,  2};

namespace {

constexpr ichar lastCode = 0x10FFFF;
constexpr size_t textLimit = size_t(1) << 28;

// The categories, directions and decompositions of the data in the order of their own numbers.
constexpr unsigned char categories[] = {30, 1,  2,  3,  4,  5,  6,  8,  7,  9,  10, 11, 23, 24, 25,
                                        26, 27, 29, 28, 13, 14, 15, 12, 18, 19, 20, 21, 22, 16, 17};
static_assert(sizeof(categories) == U_CHAR_CATEGORY_COUNT);
constexpr unsigned char directions[] = {1, 4, 9, 10, 11, 12, 13, 16, 17, 18, 19, 2,
                                        3, 5, 6, 7,  8,  14, 15, 19, 19, 19, 19};
constexpr unsigned char decompositions[] = {255, 0, 16, 7, 5, 1, 15, 3, 6, 4, 12, 2, 13, 14, 9, 8, 10, 11};
static_assert(sizeof(decompositions) == U_DT_COUNT);

int clipped(size_t length) { return int(std::min(length, textLimit)); }

/// Normalisation data for the quick checks; null if they can't be loaded.
bool changes(const UNormalizer2* normalizer, UErrorCode error, ichar code, bool composing) {
    if (U_FAILURE(error) || !normalizer) return false;
    UChar units[2];
    int length = 0;
    U16_APPEND_UNSAFE(units, length, UChar32(code));
    error = U_ZERO_ERROR;
    UNormalizationCheckResult result = unorm2_quickCheck(normalizer, units, length, &error);
    return U_SUCCESS(error) && (composing ? result != UNORM_YES : result == UNORM_NO);
}

/// A text in the width that the collation reads. Short ones need no memory.
class Units {
public:
    Units(const wchar* text, size_t length) : text(text), count(clipped(length)) {}
    Units(const char* text, size_t length) {
        convert([=, n = clipped(length)](UChar* out, int room, int* needed, UErrorCode* error) {
            u_strFromUTF8WithSub(out, room, needed, text, n, 0xFFFD, nullptr, error);
        });
    }
    Units(const ichar* text, size_t length) {
        convert([=, n = clipped(length)](UChar* out, int room, int* needed, UErrorCode* error) {
            auto codes = reinterpret_cast<const UChar32*>(text);
            u_strFromUTF32WithSub(out, room, needed, codes, n, 0xFFFD, nullptr, error);
        });
    }
    ~Units() { freeBlock(block); }
    Units(const Units&) = delete;

    const wchar* text = nullptr; ///< null if there was no memory
    int count = 0;

private:
    template <class F> void convert(F&& run) {
        UErrorCode error = U_ZERO_ERROR;
        run(local, localRoom, &count, &error);
        text = local;
        if (count <= localRoom) return;
        block = static_cast<wchar*>(allocBlock(size_t(count) * sizeof(wchar)));
        text = block;
        if (!block) return;
        error = U_ZERO_ERROR;
        run(block, count, &count, &error);
    }

    static constexpr int localRoom = 256;
    wchar local[localRoom];
    wchar* block = nullptr;
};

UCollator* rootCollator = nullptr;

/// The collator, opened by whoever comes first; null if it can't be had.
const UCollator* collator() {
    if (auto* open = loadAcquire(rootCollator)) return open;
    UErrorCode error = U_ZERO_ERROR;
    UCollator* made = ucol_open("", &error);
    if (U_FAILURE(error) || !made) return nullptr;
    // Settings are fixed before others can see it; afterwards it is only read.
    UCollator* expected = nullptr;
    if (compareExchange(rootCollator, expected, made)) return made;
    ucol_close(made);
    return expected;
}

template <class C> int unitOrder(const C* a, size_t lengthA, const C* b, size_t lengthB) {
    for (size_t i = 0, n = std::min(lengthA, lengthB); i < n; ++i)
        if (a[i] != b[i]) return std::make_unsigned_t<C>(a[i]) < std::make_unsigned_t<C>(b[i]) ? -1 : 1;
    return (lengthA > lengthB) - (lengthA < lengthB);
}

template <class C> int collateUnits(const C* a, size_t lengthA, const C* b, size_t lengthB) {
    const UCollator* root = collator();
    Units left(a, lengthA), right(b, lengthB);
    if (!root || !left.text || !right.text) return unitOrder(a, lengthA, b, lengthB);
    return ucol_strcoll(root, left.text, left.count, right.text, right.count);
}

template <class C> size_t sortKeyOf(byte* out, size_t room, const C* text, size_t length) {
    const UCollator* root = collator();
    Units units(text, length);
    if (!root || !units.text) return 0;
    return size_t(ucol_getSortKey(root, units.text, units.count, out, out ? clipped(room) : 0));
}

} // namespace

int wideCategory(ichar code) { return code > lastCode ? 0 : categories[u_charType(UChar32(code))]; }
int codeDirection(ichar code) {
    if (code > lastCode) return 0;
    size_t direction = size_t(u_charDirection(UChar32(code)));
    return direction < sizeof(directions) ? directions[direction] : 19;
}
int codeCombiningClass(ichar code) { return code > lastCode ? 0 : u_getCombiningClass(UChar32(code)); }
int codeDecomposition(ichar code) {
    if (code > lastCode) return 255;
    size_t type = size_t(u_getIntPropertyValue(UChar32(code), UCHAR_DECOMPOSITION_TYPE));
    return type < sizeof(decompositions) ? decompositions[type] : 255;
}
int codeFlags(ichar code) {
    if (code > lastCode) return 0;
    UErrorCode error = U_ZERO_ERROR, compat = U_ZERO_ERROR, plain = U_ZERO_ERROR, compatPlain = U_ZERO_ERROR;
    const UNormalizer2 *nfc = unorm2_getNFCInstance(&error), *nfkc = unorm2_getNFKCInstance(&compat);
    const UNormalizer2 *nfd = unorm2_getNFDInstance(&plain), *nfkd = unorm2_getNFKDInstance(&compatPlain);
    return changes(nfd, plain, code, false) * 1 + changes(nfc, error, code, true) * 2 +
           changes(nfkd, compatPlain, code, false) * 4 + changes(nfkc, compat, code, true) * 8 +
           (u_isMirrored(UChar32(code)) ? 16 : 0) + (codeUpper(code) != code) * 32 + (codeLower(code) != code) * 64 +
           (codeFold(code) != code) * 128;
}
int codeDigit(ichar code) {
    if (code > lastCode) return -1;
    int type = u_getIntPropertyValue(UChar32(code), UCHAR_NUMERIC_TYPE);
    return type == U_NT_DECIMAL || type == U_NT_DIGIT ? int(u_getNumericValue(UChar32(code))) : -1;
}
int codeDecimal(ichar code) { return code > lastCode ? -1 : u_charDigitValue(UChar32(code)); }
ichar codeMirror(ichar code) { return code > lastCode ? code : ichar(u_charMirror(UChar32(code))); }

ichar wideLower(ichar code) { return code > lastCode ? code : ichar(u_tolower(UChar32(code))); }
ichar wideFold(ichar code) { return code > lastCode ? code : ichar(u_foldCase(UChar32(code), U_FOLD_CASE_DEFAULT)); }
ichar codeUpper(ichar code) {
    if (code < 0x80) return code - (code - 'a' < 26u) * 32u;
    return code > lastCode ? code : ichar(u_toupper(UChar32(code)));
}
ichar codeTitle(ichar code) { return code > lastCode ? code : ichar(u_totitle(UChar32(code))); }

int codeBlock(ichar code) { return code > lastCode ? 0 : int(ublock_getCode(UChar32(code))); }
int blockCount() { return u_getIntPropertyMaxValue(UCHAR_BLOCK) + 1; }
int blockIndex(const char* name) {
    int index = name && *name ? int(u_getPropertyValueEnum(UCHAR_BLOCK, name)) : -1;
    return index == UCHAR_INVALID_CODE ? -1 : index;
}
int blockName(int index, char* out, int room) {
    if (index < 0 || index >= blockCount()) return 0;
    const char* name = u_getPropertyValueName(UCHAR_BLOCK, index, U_LONG_PROPERTY_NAME);
    if (!name) return 0;
    int length = int(std::strlen(name));
    if (!out || room < 1) return length;
    int copied = std::min(length, room - 1);
    std::replace_copy(name, name + copied, out, '_', ' ');
    out[copied] = 0;
    return length;
}
int codeName(ichar code, char* out, int room) {
    if (out && room > 0) *out = 0;
    if (code > lastCode) return 0;
    char name[128];
    UErrorCode error = U_ZERO_ERROR;
    int length = u_charName(UChar32(code), U_EXTENDED_CHAR_NAME, name, sizeof name, &error);
    if (U_FAILURE(error) || length < 0 || length >= int(sizeof name)) return 0;
    if (!out || room < 1) return length;
    int copied = std::min(length, room - 1);
    std::memcpy(out, name, size_t(copied));
    out[copied] = 0;
    return length;
}

size_t mapCase(TextCase kind, wchar* out, size_t room, const wchar* text, size_t length) {
    if (length > size_t(1) << 30) return 0;
    UErrorCode error = U_ZERO_ERROR;
    int n = int(length), size = out ? int(std::min(room, size_t(INT32_MAX))) : 0, needed = 0;
    switch (kind) {
    case TextCase::Lower:
        needed = u_strToLower(out, size, text, n, "", &error);
        break;
    case TextCase::Upper:
        needed = u_strToUpper(out, size, text, n, "", &error);
        break;
    case TextCase::Title:
        needed = u_strToTitle(out, size, text, n, nullptr, "", &error);
        break;
    case TextCase::Fold:
        needed = u_strFoldCase(out, size, text, n, U_FOLD_CASE_DEFAULT, &error);
        break;
    }
    return U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR ? 0 : size_t(needed);
}

/// Writes U+FFFD for a malformed part: by default the converter writes a control character for single bytes.
static void replaceMalformed(const void*, UConverterToUnicodeArgs* arguments, const char*, int32_t,
                             UConverterCallbackReason reason, UErrorCode* error) {
    if (reason > UCNV_IRREGULAR) return;
    *error = U_ZERO_ERROR;
    const UChar replacement = 0xFFFD;
    ucnv_cbToUWriteUChars(arguments, &replacement, 1, 0, error);
}

size_t fromShiftJis(wchar* out, size_t room, const char* text, size_t length) {
    if (!length || length > size_t(1) << 30) return 0;
    UErrorCode error = U_ZERO_ERROR;
    UConverter* converter = ucnv_open("Shift_JIS", &error);
    ucnv_setToUCallBack(converter, replaceMalformed, nullptr, nullptr, nullptr, &error);
    int size = out ? int(std::min(room, size_t(INT32_MAX))) : 0;
    int needed = ucnv_toUChars(converter, out, size, text, int(length), &error);
    ucnv_close(converter);
    return U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR ? 0 : size_t(needed);
}

int collate(const char* a, size_t lengthA, const char* b, size_t lengthB) {
    return collateUnits(a, lengthA, b, lengthB);
}
int collate(const wchar* a, size_t lengthA, const wchar* b, size_t lengthB) {
    return collateUnits(a, lengthA, b, lengthB);
}
int collate(const ichar* a, size_t lengthA, const ichar* b, size_t lengthB) {
    return collateUnits(a, lengthA, b, lengthB);
}
size_t sortKey(byte* out, size_t room, const char* text, size_t length) { return sortKeyOf(out, room, text, length); }
size_t sortKey(byte* out, size_t room, const wchar* text, size_t length) { return sortKeyOf(out, room, text, length); }
size_t sortKey(byte* out, size_t room, const ichar* text, size_t length) { return sortKeyOf(out, room, text, length); }

bool openText() { return collator() != nullptr; }
void closeText() {
    if (UCollator* open = exchange(rootCollator, static_cast<UCollator*>(nullptr))) ucol_close(open);
}

} // namespace toolkit
