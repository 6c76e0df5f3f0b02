#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orv::tool {

/// What can't be read: where, counted from 1, and why.
struct Damage {
    size_t line = 0;
    std::string what;
};

/// Whether two names of fields are the same, upper and lower case of ASCII aside.
bool sameField(std::string_view a, std::string_view b);

/// Reads the stanzas of a control file, as the package manager keeps them (deb822(5)): lines "Name: value", a value
/// going on in lines that begin with a blank or tab, stanzas parted by empty lines. Holds one stanza at a time.
///
/// A stanza that is damaged is told of and passed over, and reading goes on behind it: a line that is no field, a field
/// that is there twice, a control character or bytes that aren't UTF-8, a line longer than `longestLine`, a stanza
/// longer than `longestStanza`, one that the end of the file cuts within a line.
class StanzaReader {
public:
    static constexpr size_t longestLine = 1 << 20;
    static constexpr size_t longestStanza = 8 << 20;
    static constexpr size_t mostFields = 1000;

    /// The value is without blanks around it; its further lines are parted by line feeds, with their leading blank.
    struct Field {
        std::string_view name, value;
    };

    /// Fills up to `size` bytes; the count, 0 at the end.
    using Source = std::function<size_t(char* bytes, size_t size)>;
    StanzaReader(Source source, std::function<void(const Damage&)> tell);

    /// The next whole stanza, valid until the next call; false at the end. Names of fields keep their case.
    bool next(std::vector<Field>& fields);
    /// The line on which the last stanza begins, from 1.
    size_t line() const { return firstLine; }

private:
    enum class Line { Text, Blank, End };
    /// The part of a field within `text`, which may still move.
    struct Place {
        size_t name, nameLength, value, valueLength;
    };

    Line readLine(std::string_view& out);
    bool fill();
    void damaged(const std::string& what);
    bool add(std::string_view line);

    Source source;
    std::function<void(const Damage&)> tell;
    std::vector<char> buffer;
    size_t begin = 0, end = 0;
    bool ended = false;
    bool tooLong = false; ///< of the line read last: only its beginning was kept
    bool cut = false;     ///< it has no end
    size_t lineNumber = 0, firstLine = 0;
    bool broken = false; ///< of the stanza being read
    std::string text;
    std::vector<Place> places;
};

} // namespace orv::tool
