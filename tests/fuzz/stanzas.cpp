// Any bytes, as a control file: what is read and what is told of doesn't depend on the pieces in which the bytes come,
// damage is told in the order of lines, and what was read reads alike once more.
#include "tools/orv/stanzas.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using orv::tool::Damage;
using orv::tool::StanzaReader;

void require(bool holds) {
    if (!holds) std::abort();
}

struct Found {
    std::string stanzas; ///< as a control file again
    std::string damage;
};

Found read(const char* text, size_t length, size_t piece) {
    Found found;
    size_t at = 0, line = 0;
    auto source = [&](char* bytes, size_t size) {
        const size_t count = std::min({piece, size, length - at});
        std::memcpy(bytes, text + at, count);
        at += count;
        return count;
    };
    auto tell = [&](const Damage& damage) {
        require(damage.line > line);
        line = damage.line;
        found.damage += std::to_string(line) + " " + damage.what + "\n";
    };
    StanzaReader reader(source, tell);
    std::vector<StanzaReader::Field> fields;
    while (reader.next(fields)) {
        require(!fields.empty() && reader.line() > line);
        line = reader.line();
        for (auto& field : fields) found.stanzas += std::string(field.name) + ": " + std::string(field.value) + "\n";
        found.stanzas += "\n";
    }
    return found;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    const Found whole = read(text, size, SIZE_MAX);
    for (size_t piece : {1, 3, 64}) {
        const Found parts = read(text, size, piece);
        require(parts.stanzas == whole.stanzas && parts.damage == whole.damage);
    }
    const Found again = read(whole.stanzas.data(), whole.stanzas.size(), SIZE_MAX);
    require(again.stanzas == whole.stanzas && again.damage.empty());
    return 0;
}
