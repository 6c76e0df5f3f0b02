#pragma once

#include "toolkit/types.h"

/// Base64 and hexadecimal (RFC 4648). Results go to the caller's buffer; nothing is terminated.
namespace toolkit {

/// Characters of the padded base64 text of `length` bytes.
inline size_t base64Length(size_t length) { return (length + 2) / 3 * 4; }
/// Writes `base64Length(length)` characters and answers how many.
ORV_API size_t base64Encode(const void* data, size_t length, char* out);
/// Decodes tolerantly: characters outside the alphabet are passed over, padding is optional, and what is left of an
/// incomplete group gives the whole bytes in it. Writes at most `length / 4 * 3 + 3` bytes; answers how many.
ORV_API size_t base64Decode(const char* text, size_t length, byte* out);
/// Writes 2 * `length` lower-case digits and answers how many.
ORV_API size_t hexEncode(const void* data, size_t length, char* out);
/// Decodes pairs of digits, passing over all other characters; a lone last digit is dropped. Writes at most
/// `length / 2` bytes; answers how many.
ORV_API size_t hexDecode(const char* text, size_t length, byte* out);

} // namespace toolkit
