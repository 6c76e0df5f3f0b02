#include "tools/orv/stanzas.h"

#include "toolkit/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace orv::tool {

namespace {

constexpr size_t chunk = 1 << 16;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}
bool isNameByte(char c) { return c > ' ' && c < 127 && c != ':'; }
/// Whether eight bytes may have a control character or a byte C2 among them; a tab counts too.
bool mayHaveControl(const char* at) {
    constexpr uint64_t ones = 0x0101010101010101, highs = ones << 7;
    uint64_t bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    const auto has = [](uint64_t x) { return (x - ones) & ~x & highs; }; // a byte 0
    return ((bytes - ones * ' ') & ~bytes & highs) | has(bytes ^ ones * 127) | has(bytes ^ ones * 0xC2);
}
/// Where one may stand first; most lines have none.
size_t firstSuspect(std::string_view line) {
    size_t at = 0;
    while (at + 8 <= line.size() && !mayHaveControl(line.data() + at)) at += 8;
    return at;
}
bool isControl(char c) { return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == 127; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }

} // namespace

bool sameField(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

StanzaReader::StanzaReader(Source from, std::function<void(const Damage&)> teller)
    : source(std::move(from)), tell(std::move(teller)), buffer(chunk) {}

/// More bytes behind those that are left; false if there are none.
bool StanzaReader::fill() {
    if (ended) return false;
    if (begin > 0) {
        std::memmove(buffer.data(), buffer.data() + begin, end - begin);
        end -= begin;
        begin = 0;
    }
    if (end == buffer.size()) buffer.resize(buffer.size() * 2);
    const size_t got = source(buffer.data() + end, buffer.size() - end);
    if (!got) ended = true;
    end += std::min(got, buffer.size() - end);
    return got > 0;
}

/// One line without its end; of one that is too long the beginning.
StanzaReader::Line StanzaReader::readLine(std::string_view& out) {
    tooLong = cut = false;
    size_t seen = 0; // bytes behind `begin` without a line feed
    bool dropping = false;
    for (;;) {
        const char* at = buffer.data() + begin;
        if (const void* feed = std::memchr(at + seen, '\n', end - begin - seen)) {
            const size_t length = size_t(static_cast<const char*>(feed) - at);
            ++lineNumber;
            begin += length + 1;
            tooLong = dropping || length > longestLine;
            out = std::string_view(at, tooLong ? 0 : length);
            if (lineNumber == 1 && out.substr(0, 3) == "\xEF\xBB\xBF") out.remove_prefix(3); // the mark of UTF-8
            if (!out.empty() && out.back() == '\r') out.remove_suffix(1);
            return !tooLong && trimmed(out).empty() ? Line::Blank : Line::Text;
        }
        seen = end - begin;
        if (seen > longestLine) { // nothing of it is needed
            dropping = true;
            begin = end;
            seen = 0;
        }
        if (fill()) continue;
        if (begin == end && !dropping) return Line::End;
        ++lineNumber;
        out = std::string_view(buffer.data() + begin, end - begin);
        begin = end;
        tooLong = dropping;
        cut = true;
        return Line::Text;
    }
}

void StanzaReader::damaged(const std::string& what) {
    // One message a stanza: what follows from the first fault says nothing new.
    if (!broken) tell({lineNumber, what});
    broken = true;
}

/// Enters a line of the stanza; false if it is damaged.
bool StanzaReader::add(std::string_view line) {
    if (tooLong) return damaged("the line has more than " + std::to_string(longestLine) + " bytes"), false;
    if (cut) return damaged("the file ends within the line"), false;
    if (text.size() + line.size() + 1 > longestStanza)
        return damaged("the stanza has more than " + std::to_string(longestStanza) + " bytes"), false;
    const size_t suspect = firstSuspect(line);
    if (auto control = std::find_if(line.begin() + ptrdiff_t(suspect), line.end(), isControl); control != line.end())
        return damaged("byte " + std::to_string(static_cast<unsigned char>(*control)) + " at column " +
                       std::to_string(control - line.begin() + 1)),
               false;
    // The controls behind ASCII, which terminals obey too.
    for (size_t at = line.find('\xC2', suspect); at != line.npos; at = line.find('\xC2', at + 1))
        if (at + 1 < line.size() && static_cast<unsigned char>(line[at + 1]) < 0xA0)
            return damaged("a control character at column " + std::to_string(at + 1)), false;
    if (!toolkit::utf8Valid(line.data(), line.size())) return damaged("bytes that aren't UTF-8"), false;

    if (line.front() == ' ' || line.front() == '\t') {
        if (places.empty()) return damaged("a value goes on, but no field stands before it"), false;
        text += '\n';
        text += line;
        Place& last = places.back();
        last.valueLength = text.size() - last.value;
        return true;
    }
    const size_t colon = line.find(':');
    const std::string_view name = line.substr(0, colon);
    if (colon == line.npos || name.empty() || !std::all_of(name.begin(), name.end(), isNameByte))
        return damaged("expected a field (\"Name: value\")"), false;
    if (places.size() == mostFields)
        return damaged("the stanza has more than " + std::to_string(mostFields) + " fields"), false;
    for (const Place& known : places)
        if (sameField(std::string_view(text).substr(known.name, known.nameLength), name))
            return damaged("the field " + std::string(name) + " is there twice"), false;
    const std::string_view value = trimmed(line.substr(colon + 1));
    const size_t at = text.size();
    text += name;
    text += value;
    places.push_back({at, name.size(), at + name.size(), value.size()});
    return true;
}

bool StanzaReader::next(std::vector<Field>& fields) {
    fields.clear();
    for (;;) {
        text.clear();
        places.clear();
        broken = false;
        std::string_view line;
        Line kind;
        while ((kind = readLine(line)) == Line::Blank) {}
        if (kind == Line::End) return false;
        firstLine = lineNumber;
        for (; kind == Line::Text; kind = readLine(line))
            if (!broken && (tooLong || cut || line.front() != '#')) add(line);
        if (broken || places.empty()) continue;
        for (const Place& place : places)
            fields.push_back({std::string_view(text).substr(place.name, place.nameLength),
                              std::string_view(text).substr(place.value, place.valueLength)});
        return true;
    }
}

} // namespace orv::tool
