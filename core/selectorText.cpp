#include "core/selectorText.h"

#include "core/memory.h"

#include <cstring>

using Type = ZSelector::Type;

namespace {

constexpr byte nameChar = 1;

struct NameTable {
    byte chars[128] = {};
    constexpr NameTable() {
        for (int c = '0'; c <= ':'; ++c) chars[c] = nameChar;
        for (int c = 'A'; c <= 'Z'; ++c) chars[c] = chars[c + 32] = nameChar;
        chars[int('_')] = nameChar;
    }
};
constexpr NameTable names;

/// Works a text's kind out while its characters go by.
struct Classifier {
    Type type = ZSelector::Name;
    int64_t depth = 0;

    void blank() {
        if (type != ZSelector::Bracket && type != ZSelector::Template && type != ZSelector::Method &&
            type != ZSelector::Mixed)
            type = ZSelector::Names;
    }
    void doubleColon(bool liftNames) {
        if (type < ZSelector::Template) {
            if (type != ZSelector::Names || liftNames) type = ZSelector::Types;
        } else if (type == ZSelector::Template) {
            if (depth == 0) type = ZSelector::Types;
        } else if (type != ZSelector::Method)
            type = ZSelector::Mixed;
    }
    void colon() {
        if (type < ZSelector::Colon) type = ZSelector::Colon;
    }
    void dot() {
        switch (type) {
        case ZSelector::Any:
        case ZSelector::Name:
        case ZSelector::UID:
            type = ZSelector::UID;
            break;
        case ZSelector::Names:
        case ZSelector::Colon:
        case ZSelector::Types:
        case ZSelector::Method:
            break;
        default:
            type = ZSelector::Mixed;
        }
    }
    void open(bool isOperator) {
        if (!isOperator)
            type = type < ZSelector::Method    ? ZSelector::Template
                   : type == ZSelector::Method ? ZSelector::Method
                                               : ZSelector::Mixed;
        ++depth;
    }
    void other() {
        if (type >= ZSelector::Name && type <= ZSelector::Colon) type = ZSelector::Any;
    }
};

/// What a character asks for; plain ones have no effect on the kind.
enum Class : byte { plain, control, special, foreign };

struct ClassTable {
    byte of[256] = {};
    constexpr ClassTable() {
        for (int c = 0; c < 256; ++c) of[c] = c < ' ' ? control : c < 128 && names.chars[c] ? plain : foreign;
        for (char c : {' ', ':', '.', '(', '<', '>', '['}) of[int(c)] = special;
        for (char c : {'&', ')', '*', ']', '~'}) of[int(c)] = plain;
    }
};
constexpr ClassTable classes;

/// Whether the characters kept in front of `at` end in "operator".
bool keptOperator(const char* text, size_t at) {
    static constexpr char word[] = "operator";
    for (size_t left = 8; left > 0;) {
        if (at == 0) return false;
        char c = text[--at];
        if (byte(c) < ' ') continue;
        if (c != word[--left]) return false;
    }
    return true;
}

struct NoOutput {
    static constexpr bool detects = true;
    void put(const char*, size_t) {}
};
struct Measure {
    static constexpr bool detects = false;
    size_t length = 0;
    void put(const char*, size_t bytes) { length += bytes; }
};
struct Writer {
    static constexpr bool detects = false;
    char* out;
    size_t length = 0;
    void put(const char* text, size_t bytes) {
        if (bytes == 1)
            out[length] = *text;
        else
            std::memcpy(out + length, text, bytes);
        length += bytes;
    }
};

/// One pass over a text: kept characters go to `out`. Answers whether more than one would be kept.
template <class Out> bool scan(const char* text, size_t length, Type& type, Out& out) {
    size_t end = length;
    while (end > 0 && byte(text[end - 1]) <= ' ') --end;
    Classifier kind;
    size_t kept = 0;
    char last = 0;           // kept last
    bool keptBefore = false; // the character in front was kept
    auto keep = [&](const char* from, size_t count) {
        out.put(from, count);
        last = from[count - 1];
        keptBefore = true;
        kept += count;
    };
    for (size_t i = 0; i < end;) {
        size_t run = i;
        while (run < end && classes.of[byte(text[run])] == plain) ++run;
        if (run > i) {
            keep(text + i, run - i);
            i = run;
            continue;
        }
        char c = text[i];
        size_t count = 1;
        switch (c) {
        case ' ': {
            bool wanted = keptBefore && last != ' ';
            if (wanted) {
                kind.blank();
                size_t next = i + 1;
                while (byte(text[next]) <= ' ') ++next; // ends: text[end - 1] is none of them
                wanted = text[next] != '&' && text[next] != '*';
            }
            if (!wanted) count = 0;
            break;
        }
        case ':':
            if (i + 2 < end && text[i + 1] == ':') {
                kind.doubleColon(Out::detects);
                count = 2;
            } else
                kind.colon();
            break;
        case '.':
            kind.dot();
            break;
        case '(':
            kind.type = kind.type < ZSelector::Mixed ? ZSelector::Method : ZSelector::Mixed;
            break;
        case '<':
            kind.open(keptOperator(text, i));
            break;
        case '>':
            --kind.depth;
            if (last == '>' && kind.type >= ZSelector::Template) keep(" ", 1);
            break;
        case '[':
            if (kept == 0 && kind.type <= ZSelector::Name && text[end - 1] == ']')
                kind.type = ZSelector::Bracket;
            else
                kind.other();
            break;
        default:
            if (byte(c) < ' ')
                count = 0;
            else
                kind.other();
        }
        if (count)
            keep(text + i, count);
        else
            keptBefore = false;
        i += count ? count : 1;
    }
    if (end > 0 && end < length && text[end] == ' ') { // it goes, but it counts
        kind.blank();
        ++kept;
    }
    type = kind.type;
    return kept > 1;
}

constexpr bool isOperatorSign(char c) {
    switch (c) {
    case '<':
    case '>':
    case '=':
    case '-':
    case '!':
    case '+':
    case '*':
    case '/':
    case '%':
    case '^':
    case '&':
    case '|':
    case '~':
        return true;
    default:
        return false;
    }
}

} // namespace

const byte* ZSelector::namechars() { return names.chars; }

namespace orv::detail {

Type selectorType(const char* text, size_t length) {
    if (!text || !length) return ZSelector::Any;
    Type type = ZSelector::Name;
    NoOutput none;
    if (length > 1) scan(text, length, type, none);
    return type;
}

size_t normalizeSelector(const char* text, size_t length, Type& type, char* out) {
    size_t result;
    bool several;
    if (out) {
        Writer writer{out};
        several = scan(text, length, type, writer);
        result = writer.length;
    } else {
        Measure measure;
        several = scan(text, length, type, measure);
        result = measure.length;
    }
    if (several) return result;
    if (out) std::memcpy(out, text, length);
    type = ZSelector::Name;
    return length;
}

NormalText::NormalText(const char* source, size_t sourceLength) : text(small) {
    if (sourceLength > room) {
        size_t needed = normalizeSelector(source, sourceLength, type, nullptr);
        text = static_cast<char*>(__zalloc(needed));
        if (!text) return;
    }
    length = normalizeSelector(source, sourceLength, type, text);
}
NormalText::~NormalText() {
    if (text != small) zfree(text);
}

SelectorPart trimBlanks(const char* text, size_t length) {
    while (length > 0 && *text == ' ') ++text, --length;
    while (length > 0 && text[length - 1] == ' ') --length;
    return {text, length};
}

void BracketWalk::passBracket() {
    if (behindOperator(begin, at)) {
        while (at < end && isOperatorSign(*at)) ++at;
        return;
    }
    if (*at == '<')
        ++depth;
    else if (depth)
        --depth;
    ++at;
}

SelectorItems::SelectorItems(const char* text, size_t length, Type kind)
    : begin(text), at(text), end(text + length), type(kind) {
    switch (type) {
    case ZSelector::Names:
    case ZSelector::UID:
    case ZSelector::Colon:
    case ZSelector::Types:
        break;
    case ZSelector::Template:
        startTemplate();
        break;
    case ZSelector::Method:
        startMethod();
        break;
    default:
        done = true;
    }
}

void SelectorItems::startTemplate() {
    const char* nameStart = begin;
    for (const char* p = begin; p < end; ++p) {
        if (*p == ' ') nameStart = p + 1;
        if (*p != '<') continue;
        if (behindOperator(begin, p)) {
            while (p + 1 < end && isOperatorSign(p[1])) ++p;
            continue;
        }
        name = {nameStart, size_t(p - nameStart)};
        at = p + 1;
        return;
    }
    at = end;
    done = true;
}

void SelectorItems::startMethod() {
    BracketWalk walk{begin, begin, end};
    const char *blank = nullptr, *split = nullptr; // the last blank, and the last with a word behind it
    const char *open = nullptr, *nameStart = begin;
    for (; walk.at < end; walk.pass()) {
        if (walk.depth) continue;
        char c = *walk.at;
        bool isName = behindOperator(begin, walk.at);
        if (c == '(' && !(open && isName)) {
            open = walk.at;
            nameStart = split ? split + 1 : begin;
            if (!isName) break;
        }
        if (c != ' ')
            split = blank ? blank : split;
        else if (!isName)
            blank = walk.at;
    }
    if (!open) {
        at = end;
        done = true;
        return;
    }
    at = open + 1;
    name = trimBlanks(nameStart, size_t(open - nameStart));
    result = trimBlanks(begin, size_t(nameStart - begin));
}

bool SelectorItems::next(SelectorPart& item) {
    while (!done)
        if (step(item)) return true;
    return false;
}

/// Takes one item off the text; false if it is empty.
bool SelectorItems::step(SelectorPart& item) {
    const char* start = at;
    BracketWalk walk{begin, at, end};
    while (walk.at < end) {
        if (walk.depth == 0) {
            char c = *walk.at;
            size_t separator = 1; // bytes of what ends the item; 0 while it goes on
            switch (type) {
            case ZSelector::Names:
                separator = c == ' ';
                break;
            case ZSelector::UID:
                separator = c == '.';
                break;
            case ZSelector::Colon:
                separator = c == ':';
                break;
            case ZSelector::Types:
                separator = c == ':' && walk.at + 1 < end && walk.at[1] == ':' ? 2 : 0;
                break;
            case ZSelector::Template:
                done = c == '>' && !behindOperator(begin, walk.at);
                break;
            default:
                done = c == ')';
            }
            if (type >= ZSelector::Template) separator = c == ',';
            if (separator || done) {
                item = trimBlanks(start, size_t(walk.at - start));
                at = walk.at + separator;
                return item.length > 0;
            }
        }
        walk.pass();
    }
    item = trimBlanks(start, size_t(walk.at - start));
    at = end;
    done = true;
    return item.length > 0;
}

} // namespace orv::detail
