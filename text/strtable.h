#pragma once

#include "text/textview.h"

/// The process-wide table of internal texts: a text becomes a small index that is counted. All functions may be called
/// from every thread. Index 0 means no text; outside `open` and `close` there are no texts, and nothing happens. Texts
/// are told apart by width too: equal texts of two widths have two indexes, and each keeps the width it came in.
namespace orv::strtable {

using detail::TextView;

/// Makes the table ready; true if it is already. False where there is no memory.
ORV_API bool open();
/// Forgets every text, referenced or not. No other thread may use the table meanwhile.
ORV_API void close();

/// The index of a text, with a reference for the caller. 0 for an empty text, without memory, or while closed.
ORV_API uint intern(const TextView& text);
/// Adds a reference. False, without effect, for an index that nobody holds.
ORV_API bool retain(uint index);
/// Gives up one reference; with the last one the index is free for another text.
ORV_API void release(uint index);
/// References to an index; 0 for one that nobody holds.
ORV_API int refcount(uint index);

// The rest needs an index that the caller, or somebody who outlasts the call, holds. An index that nobody holds is
// answered like an empty text.

/// The text in its own width, with a terminator behind it. It stays as long as the index is held.
ORV_API TextView fetch(uint index);
/// Code units.
inline int length(uint index) { return fetch(index).length; }
/// Code points.
ORV_API int count(uint index);
/// A terminated UTF-8 copy, freed by the caller with `zfree`; null for an empty text or without memory.
ORV_API char* copy(uint index);
/// The order of `compareText`.
ORV_API int compare(uint index, const TextView& text);
ORV_API int compare(uint a, uint b);

/// Texts that are held now.
ORV_API int texts();

} // namespace orv::strtable
