#pragma once

#include "toolkit/types.h"

/// Regular expressions over code units of 1, 2 or 4 bytes, in the syntax of PCRE2. A compiled expression is never
/// changed: any number of threads may use it at once.
namespace toolkit {

struct Pattern;

enum PatternFlags : uint {
    patternCaptures = 1, ///< plain parentheses capture; named ones do anyway
    patternUnicode = 2,  ///< the units are UTF-8, UTF-16 or UTF-32, and classes go by the Unicode properties
};

/// How deep groups may be nested.
inline constexpr uint patternNesting = 512;
/// Units of an expression, at most.
inline constexpr size_t patternLimit = size_t(1) << 20;

struct PatternFault {
    size_t position = 0; ///< in units; how far the text was understood
    char text[120] = ""; ///< what is wrong, in English
};

/// Null for a text that is no expression, and without memory; the fault then tells. `head` is how many units at the
/// start are settings for the whole expression, such as "(*ANYCRLF)".
ORV_API Pattern* compilePattern(const void* text, size_t length, size_t head, int unitBytes, uint flags,
                                PatternFault& fault);
/// Null is fine.
ORV_API void freePattern(Pattern* pattern);
/// Groups that capture.
ORV_API uint patternGroups(const Pattern& pattern);
/// Names of groups; a name that several groups share counts for each.
ORV_API uint patternNames(const Pattern& pattern);
struct PatternName {
    const void* text; ///< of the expression's units; lives as long as that
    size_t length;
    uint group;
};
/// A name by its index, in alphabetical order.
ORV_API PatternName patternName(const Pattern& pattern, uint index);

/// What to look for. Malformed text is no obstacle: nothing matches it, and matches lie between such places.
struct PatternSearch {
    const void* text; ///< of the expression's units
    size_t length;
    size_t first = 0;             ///< where the first match may start; what stands before it is seen by what looks back
    bool fixed = false;           ///< a match starts just there
    bool whole = false;           ///< it starts there and ends with the text
    bool partial = false;         ///< a text that ends inside a possible match is a match to its end
    large budget = 1'000'000'000; ///< nanoseconds; what has no answer by then is given up
};
enum class PatternEnd {
    Found,
    Partial, ///< the text ends inside a possible match
    None,    ///< there is no match
    TimeUp,  ///< given up
    TooDeep, ///< it would take more nesting or memory than the engine is given
    NoMemory,
};
/// Looks for the first match, which is from `from` to `to` then. The budget is kept as far as can be: it is looked at
/// between stretches of the text that grow while they are done quickly, and steps at one place are counted.
ORV_API PatternEnd findPattern(const Pattern& pattern, const PatternSearch& search, size_t& from, size_t& to);

} // namespace toolkit
