#include "text/ZCharBuffer.h"

#include "text/ZCharStrT.h"
#include "text/format.h"
#include "text/number.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr large sizeLimit = 0x7FFFFFF0;
constexpr int tail = 8;

char* newBuffer(large size) {
    return size <= sizeLimit ? static_cast<char*>(toolkit::allocZeroedBlock(size_t(size) + tail)) : nullptr;
}

/// Keeps a block while text in it is copied to its successor.
struct Held {
    char* block;
    explicit Held(char* block) : block(retain(block)) {}
    ~Held() { zfree(block); }
    Held(const Held&) = delete;
};

} // namespace

ZCharBuffer::ZCharBuffer(int n) {
    if (n > 0 && !initialize(n)) ZError::fail();
}
ZCharBuffer::ZCharBuffer(const char* text) { copy(text, orv::detail::givenLength(text, -1)); }
ZCharBuffer::ZCharBuffer(const ZCharStr& text) { copy(text.text(), text.length()); }
ZCharBuffer::ZCharBuffer(const ZSelector& text) { copy(text.string(), text.length()); }
ZCharBuffer::ZCharBuffer(const ZString& text) {
    orv::detail::TextIn<char> bytes(text.view());
    if (bytes.failed)
        ZError::fail();
    else
        copy(bytes.text, bytes.length);
}

void ZCharBuffer::copy(const char* text, int n) {
    if (n < 1) return;
    if (!initialize(n)) {
        ZError::fail();
        return;
    }
    std::memcpy(buffer, text, size_t(n));
}

ZCharBuffer::ZCharBuffer(const ZArrayT<int>& numbers) : ZCharBuffer() { addNumbers(numbers, 0); }
ZCharBuffer::ZCharBuffer(const ZArrayT<float>& numbers, int precision) : ZCharBuffer() {
    addNumbers(numbers, precision);
}
ZCharBuffer::ZCharBuffer(const ZArrayT<real>& numbers, int precision) : ZCharBuffer() {
    addNumbers(numbers, precision);
}
ZCharBuffer::ZCharBuffer(const uint* numbers, int count, int radix) : ZCharBuffer() {
    if (!buffer || !numbers) return;
    char text[40] = " ";
    for (int i = 0; i < count; ++i) {
        int length = orv::uinttostr(text + 1, 39, numbers[i], radix, 0, false, false);
        if (!add(i ? text : text + 1, i ? length + 1 : length)) {
            initialize(0);
            ZError::fail();
            return;
        }
    }
}

template <class T> void ZCharBuffer::addNumbers(const ZArrayT<T>& numbers, int precision) {
    if (!buffer) return;
    for (uint i = 0; i < numbers.count(); ++i) {
        T value = numbers[i];
        bool good = i == 0 || add(' ');
        if constexpr (std::is_same_v<T, int>)
            good = good && printf("%d", value);
        else
            good = good && printf("%.*!f", orv::realPrecision(value, precision), double(value));
        if (!good) {
            initialize(0);
            ZError::fail();
            return;
        }
    }
}

bool ZCharBuffer::initialize(int n) {
    char* fresh = nullptr;
    if (n > 0 && !(fresh = newBuffer(n))) return false;
    zfree(buffer);
    buffer = pos = fresh;
    size = fresh ? n : 0;
    return true;
}

int ZCharBuffer::length() const { return int(orv::detail::textLength(buffer, size_t(size))); }

void ZCharBuffer::setPos(int offset) {
    if (offset >= 0 && offset < size) pos = buffer + offset;
}
void ZCharBuffer::setPos(char* place) {
    auto offset = reinterpret_cast<uintptr_t>(place) - reinterpret_cast<uintptr_t>(buffer);
    if (offset < uintptr_t(size)) pos = place;
}
void ZCharBuffer::advance(int n) { pos = buffer + std::clamp(large(dpos()) + n, large(0), large(size)); }

void ZCharBuffer::setExpand(int step) { expandSize = std::clamp(step, 1, 1 << 30); }

bool ZCharBuffer::expand(int n) {
    if (n < 0) return false;
    large need = large(size) + n, wanted = std::max<large>(2 * large(size), defaultSize);
    while (wanted < need) wanted *= 2;
    if (wanted > sizeLimit && need <= sizeLimit && size < sizeLimit) wanted = sizeLimit;
    char* fresh = newBuffer(wanted);
    if (!fresh) return false;
    if (size) std::memcpy(fresh, buffer, size_t(size));
    pos = fresh + dpos();
    zfree(buffer);
    buffer = fresh;
    size = int(wanted);
    return true;
}

bool ZCharBuffer::room(int n) { return n <= size - dpos() || expand(std::max(expandSize, n)); }

bool ZCharBuffer::undo(int offset) {
    pos = buffer + offset;
    if (buffer) *pos = 0;
    return false;
}

bool ZCharBuffer::add(int code) {
    if (!room(1)) return false;
    *pos++ = char(code);
    *pos = 0;
    return true;
}
bool ZCharBuffer::add(const char* text, int n) {
    n = orv::detail::givenLength(text, n);
    if (n == 0) {
        if (pos) *pos = 0;
        return true;
    }
    if (n > size - dpos()) {
        Held held(buffer);
        if (!room(n)) return false;
        std::memcpy(pos, text, size_t(n));
    } else
        std::memmove(pos, text, size_t(n));
    pos += n;
    *pos = 0;
    return true;
}
bool ZCharBuffer::add(const ZString& text) {
    return orv::detail::withText(text.view(), [this](auto* units, int count) {
        if constexpr (sizeof(*units) == 1) return add(units, count);
        size_t need = orv::detail::transcode(static_cast<char*>(nullptr), 0, units, size_t(count));
        if (need > size_t(sizeLimit) || !room(int(need))) return false;
        if (need == 0) return add("", 0);
        orv::detail::transcode(pos, need, units, size_t(count));
        pos += need;
        *pos = 0;
        return true;
    });
}
bool ZCharBuffer::addCode(uint code) {
    char bytes[orv::detail::longestCode<char>];
    return add(bytes, orv::detail::encodeCode(bytes, code));
}

bool ZCharBuffer::aprintf(const char* format, var_arg* args) {
    Held held(buffer);
    int start = dpos();
    if (!room(1)) return false;
    // The arguments may be the buffer's own text, whose terminator has to stay until the last of them is read.
    ++pos;
    auto write = [](void* self, const char* piece, int n) { return static_cast<ZCharBuffer*>(self)->add(piece, n); };
    int length = orv::formatTo<char>(write, this, format, args);
    if (length < 0) return undo(start);
    pos = buffer + start;
    std::memmove(pos, pos + 1, size_t(length));
    pos += length;
    *pos = 0;
    return true;
}
bool ZCharBuffer::printf(const char* format, ...) {
    var_arg args;
    va_start(args.list, format);
    bool good = aprintf(format, &args);
    va_end(args.list);
    return good;
}

void ZCharBuffer::clear() {
    if (buffer) std::memset(buffer, 0, size_t(dpos()));
    pos = buffer;
}
void ZCharBuffer::restart(bool terminate) {
    pos = buffer;
    if (buffer && terminate) *pos = 0;
}
void ZCharBuffer::clearSpaces() {
    while (pos > buffer && byte(pos[-1]) <= 32) *--pos = 0;
}

/// Adds byte by byte, all or nothing; the text may be the buffer's own.
template <class F> bool ZCharBuffer::addEach(const char* text, int n, F write) {
    n = orv::detail::givenLength(text, n);
    Held held(buffer);
    int start = dpos();
    for (int i = 0; i < n; ++i)
        if (!write(text[i])) return undo(start);
    return true;
}
template <class F> bool ZCharBuffer::addEach(const ZString& text, F write) {
    orv::detail::TextIn<char> bytes(text.view());
    return !bytes.failed && (this->*write)(bytes.text, bytes.length);
}

bool ZCharBuffer::addWithEscape(const char* text, int n) {
    return addEach(text, n, [this](char c) {
        switch (c) {
        case '\t':
            return add("\\t", 2);
        case '\n':
            return add("\\n", 2);
        case '\r':
            return add("\\r", 2);
        case '"':
            return add("\\\"", 2);
        case '\\':
            return add("\\\\", 2);
        default:
            return add(c);
        }
    });
}
bool ZCharBuffer::addWithQuote(const char* text, int n) {
    return addEach(text, n, [this](char c) { return c == '"' ? add("\\\"", 2) : add(c); });
}
bool ZCharBuffer::addCSVString(const char* text, int n) {
    return addEach(text, n, [this](char c) {
        switch (c) {
        case ',':
            return add("\",\"", 3);
        case '"':
            return add("\"\"", 2);
        case '\t':
            return add("\"\\t\"", 4);
        case '\\':
            return add("\"\\\\\"", 4);
        default:
            return add(c);
        }
    });
}
bool ZCharBuffer::addSpecial(const char* text, int n) {
    return addEach(text, n, [this](char c) {
        bool stays = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '*' ||
                     c == '-' || c == '.' || c == '_';
        static constexpr char digits[] = "0123456789ABCDEF";
        char mark[3] = {'%', digits[byte(c) >> 4], digits[c & 15]};
        return stays ? add(c) : add(mark, 3);
    });
}

using Writer = bool (ZCharBuffer::*)(const char*, int);
bool ZCharBuffer::addWithEscape(const ZString& text) { return addEach(text, Writer(&ZCharBuffer::addWithEscape)); }
bool ZCharBuffer::addWithQuote(const ZString& text) { return addEach(text, Writer(&ZCharBuffer::addWithQuote)); }
bool ZCharBuffer::addCSVString(const ZString& text) { return addEach(text, Writer(&ZCharBuffer::addCSVString)); }
bool ZCharBuffer::addSpecial(const ZString& text) { return addEach(text, Writer(&ZCharBuffer::addSpecial)); }

/// The next such mark in a text with escapes. A backslash that escapes another mark is none itself.
static const char* findMark(const char* from, const char* end, char mark) {
    while (from < end && (from = static_cast<const char*>(std::memchr(from, mark, size_t(end - from))))) {
        if (mark != '\\') return from;
        if (end - from > 1 && from[1] == '\\') return from + 1;
        ++from;
    }
    return nullptr;
}

ZString ZCharBuffer::escapeStringRessource(const ZString& text, const ZString& reference) {
    orv::detail::TextIn<char> from(text.view()), like(reference.view());
    ZCharBuffer out(from.length);
    bool good = !from.failed && !like.failed && (out.buffer || from.length == 0);
    const char *search = like.text, *last = like.text + like.length;
    bool missing[128] = {}; // for good, as the search only moves on
    for (int i = 0; i < from.length && good; ++i) {
        char c = from.text[i];
        bool mark = c && std::strchr("\"#$%&():;<=>?[\\]^{}", c);
        if (c == '%' && i + 1 < from.length && from.text[i + 1] >= '1' && from.text[i + 1] <= '9') mark = false;
        if (mark && search < last && !missing[byte(c)]) {
            const char* found = findMark(search, last, c);
            missing[byte(c)] = !found;
            if (found) {
                search = found + 1;
                if (found > like.text && found[-1] == '\\') good = out.add('\\');
            }
        }
        good = good && out.add(c);
    }
    if (good) return ZString(out.buffer, out.dpos());
    ZError::fail();
    return ZString();
}
