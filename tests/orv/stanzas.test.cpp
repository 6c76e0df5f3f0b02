#include "tools/orv/stanzas.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

namespace {

using orv::tool::Damage;
using orv::tool::StanzaReader;

/// "name=value;…|…" of what was read, with "!line" for each damage, in the order of telling. In pieces of `piece`
/// bytes.
std::string read(const std::string& text, size_t piece) {
    std::string out;
    size_t at = 0;
    auto source = [&](char* bytes, size_t size) {
        const size_t count = std::min({piece, size, text.size() - at});
        std::memcpy(bytes, text.data() + at, count);
        at += count;
        return count;
    };
    StanzaReader reader(source, [&](const Damage& damage) { out += "!" + std::to_string(damage.line) + " "; });
    std::vector<StanzaReader::Field> fields;
    while (reader.next(fields)) {
        out += std::to_string(reader.line()) + ":";
        for (auto& field : fields) out += std::string(field.name) + "=" + std::string(field.value) + ";";
        out += "|";
    }
    return out;
}

} // namespace

TEST(Stanzas, WhatIsReadAndWhatIsToldOf) {
    const std::string longLine(StanzaReader::longestLine + 1, 'x');
    struct Row {
        std::string text, read;
    } rows[] = {
        {"", ""},
        {"\n\n \n", ""},
        {"A: 1\nB:2 \n", "1:A=1;B=2;|"},
        {"\n\nA: 1\n\n\n\nB: 2\n\t\n", "3:A=1;|7:B=2;|"},
        {"A: 1\r\nB: 2\r\n\r\nC: 3\r\n", "1:A=1;B=2;|4:C=3;|"},
        {"A: 1\n more\n\tstill\nB:\n .\n", "1:A=1\n more\n\tstill;B=\n .;|"},
        {"# remark\nA: 1\n# between\n go on\n\n# alone\n\nB: 2\n", "1:A=1\n go on;|8:B=2;|"},
        {"A: gr\xC3\xBCn: x\n", "1:A=gr\xC3\xBCn: x;|"},
        {"\xEF\xBB\xBF"
         "A: 1\n",
         "1:A=1;|"},
        // Damage ends the stanza and nothing else.
        {"A: 1\n\nno field\nB: 2\n\nC: 3\n", "1:A=1;|!3 6:C=3;|"},
        {"A: 1\nB\n\nC: 3\n", "!2 4:C=3;|"},
        {" starts\nA: 1\n\nC: 3\n", "!1 4:C=3;|"},
        {": nameless\n\nA b: 1\n\nC: 3\n", "!1 !3 5:C=3;|"},
        {"A: 1\nB: 2\na: 3\n\nC: 3\n", "!3 5:C=3;|"},
        {"A: x\xC2\x9Bm\n\nC: 3\n", "!1 3:C=3;|"},
        {"A: \x01\nB: \x02\n\nA: \xFF\n\nC: 3\n", "!1 !4 6:C=3;|"},
        {std::string("A: 0\0\n\nC: 3\n", 12), "!1 3:C=3;|"},
        {"A: 1\n\nB: 2\nC: cu", "1:A=1;|!4 "},
        {"A: 1\nB: " + longLine + "\nC: 2\n\nD: 3\n", "!2 5:D=3;|"},
        {"A: " + longLine, "!1 "},
    };
    for (const Row& row : rows)
        for (size_t piece : {size_t(1), size_t(7), size_t(1) << 20}) {
            if (row.text.size() > 100000 && piece < 100) continue;
            EXPECT_EQ(read(row.text, piece), row.read) << row.text.substr(0, 80) << " in pieces of " << piece;
        }
}

TEST(Stanzas, AStanzaIsBounded) {
    std::string fields, lines = "A: 1\n";
    for (size_t i = 0; i <= StanzaReader::mostFields; ++i) fields += "F" + std::to_string(i) + ": 1\n";
    const std::string line = " " + std::string(StanzaReader::longestLine - 1, 'x') + "\n";
    for (size_t i = 0; i <= StanzaReader::longestStanza / line.size(); ++i) lines += line;
    EXPECT_EQ(read(fields + "\nB: 2\n", 4096), "!1001 1003:B=2;|");
    EXPECT_EQ(read(lines + "\nB: 2\n", 1 << 16), "!9 11:B=2;|");
}
