// Any bytes, read by each scanner to the end: every step moves on and stays inside, and what is read lies in the text.
// What is written reads back: escapes, percent codes, character references, hexadecimal digits, number lists.
#include "text/ZCharBuffer.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

std::string bytes(const ZString& text) {
    ZString::Type type;
    auto data = static_cast<const char*>(text.data(type));
    require(!data || type == ZString::Char);
    return data ? std::string(data, size_t(text.length())) : std::string();
}

/// A buffer to be read that may hold zeros.
struct Source : ZCharBuffer {
    explicit Source(const std::string& text) : ZCharBuffer(int(text.size())) {
        if (text.empty()) return;
        std::memcpy(getPos(), text.data(), text.size());
    }
};

/// Steps to the end, or until a step says that there is nothing more; each has to move on.
template <class F> void walk(const std::string& text, F step) {
    Source source(text);
    while (!source.ended()) {
        int before = source.dpos();
        if (!step(source)) break;
        require(source.dpos() > before && source.dpos() <= int(text.size()));
        require(source.getSize() == int(text.size()));
    }
}

void words(const std::string& text, uint a, uint b) {
    size_t letters = 0;
    walk(text, [&](ZCharBuffer& s) { return s.token(), true; });
    walk(text, [&](ZCharBuffer& s) { return s.pureName(), true; });
    walk(text, [&](ZCharBuffer& s) {
        int before = s.dpos();
        s.token(int(a), text.size() & 1);
        // At a blank that isn't the code the word ends in front of it, and there may be nothing but blanks up to the
        // code.
        return s.dpos() > before;
    });
    walk(text, [&](ZCharBuffer& s) {
        std::string field = bytes(s.separateString(a));
        require(text.find(field) != text.npos);
        letters += field.size();
        return true;
    });
    require(letters <= text.size());
    walk(text, [&](ZCharBuffer& s) { return s.separateSelector(a), true; });
    std::string parts;
    walk(text, [&](ZCharBuffer& s) {
        bool second;
        std::string part = bytes(s.stringTo(a, b, second));
        parts += part;
        if (parts.size() < text.size() && s.dpos() > int(parts.size())) parts += char(second ? b : a);
        return true;
    });
    require(parts == text || a > 255 || b > 255);
    walk(text, [&](ZCharBuffer& s) {
        require(text.find(bytes(s.extract(a, b))) != text.npos);
        return true;
    });
    ZString tokens("+-*/");
    walk(text, [&](ZCharBuffer& s) {
        ZString arguments;
        s.extract(arguments, a, b, tokens);
        require(text.find(bytes(arguments)) != text.npos);
        return true;
    });
    ZCharBuffer out;
    walk(text, [&](ZCharBuffer& s) {
        if (s.copyTillCode(out, int(a))) out.add(int(a));
        return true;
    });
    require(out.dpos() == int(text.size()) && std::memcmp(out.getPos() - out.dpos(), text.data(), text.size()) == 0);
    walk(text, [&](ZCharBuffer& s) { return s.skipTo(a), true; });
}

void skips(const std::string& text) {
    Source source(text);
    source.skipSpaces();
    require(source.ended() || source.length() == 0 || source.peek() > 32 || source.peek() == 0);
    source.rewind();
    source.skipSeparator();
    require(source.ended() || (source.peek() > 32 && source.peek() != ','));
}

void numbers(const std::string& text, uint a) {
    int radix = int(a % 38);
    walk(text, [&](ZCharBuffer& s) {
        int value;
        return s.scanInt(&value, radix) || s.get() >= 0;
    });
    walk(text, [&](ZCharBuffer& s) {
        uint values[3];
        return s.scanUnsigned(values, 3, radix) || s.get() >= 0;
    });
    walk(text, [&](ZCharBuffer& s) {
        float value;
        return s.scanFloat(&value, ',') || s.get() >= 0;
    });
    walk(text, [&](ZCharBuffer& s) {
        double value;
        return s.scanReal(&value, '.') || s.get() >= 0;
    });
    ZArrayT<int> ints(reinterpret_cast<const int*>(text.data()), uint(text.size() / 4));
    require(Source(bytes(ZCharBuffer(ints).string())).scanInt(10) == ints);
    radix = 2 + radix % 35;
    ZCharBuffer unsigneds(reinterpret_cast<const uint*>(text.data()), int(text.size() / 4), radix);
    Source list(bytes(unsigneds.string()));
    for (uint i = 0; i < ints.count(); ++i) {
        uint value;
        require(list.scanUnsigned(&value, 1, radix) && value == uint(ints.begin()[i]));
    }
}

void roundTrips(const std::string& text) {
    ZCharBuffer out(1);
    auto take = [&] {
        std::string written(out.getPos() - out.dpos(), size_t(out.dpos()));
        out.clear();
        return written;
    };
    int size = int(text.size());
    require(out.addSpecial(text.data(), size));
    std::string back, written = take();
    for (size_t i = 0; i < written.size(); ++i)
        if (written[i] == '%') {
            back += char(std::stoi(written.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else
            back += written[i];
    require(back == text);

    require(out.addWithEscape(text.data(), size));
    back.clear();
    written = take();
    for (size_t i = 0; i < written.size(); ++i)
        if (written[i] == '\\') {
            char c = written[++i];
            back += c == 't' ? '\t' : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
        } else
            back += written[i];
    require(back == text);

    std::string marked, digits;
    for (char c : text) {
        static const char hex[] = "0123456789abcdef";
        const char* name = c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : c == '"' ? "&quot;" : nullptr;
        marked += name ? std::string(name) : byte(c) > 126 ? "&#" + std::to_string(byte(c)) + ";" : std::string(1, c);
        digits += hex[byte(c) >> 4];
        digits += hex[c & 15];
        if (!(c & 7)) digits += c & 8 ? " " : "\xFFg";
    }
    require(bytes(Source(marked).parseXMLCharacters()) == text);
    require(bytes(Source(text).parseXMLCharacters()).size() <= text.size());
    Source hex(digits);
    require(hex.scanBlock() == size && std::memcmp(hex.getPos() - size, text.data(), text.size()) == 0);
    Source anyHex(text);
    require(anyHex.scanBlock() <= size / 2);

    require(out.addWithQuote(text.data(), size) && out.dpos() >= size);
    out.clear();
    require(out.addCSVString(text.data(), size) && out.dpos() >= size);
    ZString half(text.data(), size / 2), rest(text.data() + size / 2, size - size / 2);
    require(ZCharBuffer::escapeStringRessource(half, rest).length() >= half.length());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Names below the limit are never given back; starting anew now and then keeps the space small.
    static int run = 0;
    if (run++ % 2000 == 0) {
        ZSelector::close();
        require(ZSelector::open());
    }
    if (size < 3) return 0;
    std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    words(text, data[0], data[1]);
    skips(text);
    numbers(text, data[0]);
    roundTrips(text);
    return 0;
}
