#include "text/patternTree.h"

#include <algorithm>
#include <cstring>

namespace orv {

using detail::TextView;

namespace {

constexpr ichar behind = ichar(-1); ///< the character at the end of a text

bool isDigit(ichar c) { return c - '0' < 10u; }
bool isLower(ichar c) { return c - 'a' < 26u; }
bool isLetter(ichar c) { return (c | 32) - 'a' < 26u && c < 128; }

/// How lines end, which a comment asks for.
enum Newline { Lf, Cr, CrLf, Any, AnyCrLf, Nul };
constexpr const char* newlineVerbs[] = {"LF)", "CR)", "CRLF)", "ANY)", "ANYCRLF)", "NUL)"};
/// The verbs that a whole expression begins with; those that end in "=" have a number.
constexpr const char* startVerbs[] = {
    "UTF)",         "UCP)",          "NOTEMPTY)",   "NOTEMPTY_ATSTART)", "NO_AUTO_POSSESS)", "NO_DOTSTAR_ANCHOR)",
    "NO_JIT)",      "NO_START_OPT)", "LIMIT_HEAP=", "LIMIT_MATCH=",      "LIMIT_DEPTH=",     "LIMIT_RECURSION=",
    "BSR_ANYCRLF)", "BSR_UNICODE)"};

} // namespace

template <class C> class PatternTree::Reader {
public:
    Reader(PatternTree& tree, const C* text, int length) : tree(tree), text(text), length(length) {}

    bool run() {
        options = tree.captures ? 0u : NoCapture;
        open(0, 0);
        skipStartVerbs();
        tree.verbs = at;
        while (at < length && !failed) {
            step();
            at = std::min(at, length);
        }
        while (!failed && !frames.isEmpty()) close();
        tree.largest = most;
        return !failed;
    }

private:
    /// An open group.
    struct Frame {
        using ZRelocatable = void;
        int node;
        uint options;    ///< as they were ahead of it
        int first, last; ///< of a group whose alternatives share numbers: those in use ahead of it, and at its end
    };

    ichar peek(int ahead = 0) const {
        return at + ahead < length ? ichar(std::make_unsigned_t<C>(text[at + ahead])) : behind;
    }
    ichar next() { return at < length ? ichar(std::make_unsigned_t<C>(text[at++])) : behind; }
    bool stands(const char* word, int ahead = 0) const {
        for (; *word; ++word, ++ahead)
            if (peek(ahead) != ichar(*word)) return false;
        return true;
    }
    bool take(const char* word) {
        if (!stands(word)) return false;
        while (*word++) ++at;
        return true;
    }
    /// Moves behind the next `end`.
    void skipBehind(ichar end) {
        while (at < length && next() != end) {}
    }

    void skipStartVerbs() {
        for (;;) {
            if (!stands("(*")) return;
            bool known = false;
            for (int i = Lf; i <= Nul; ++i)
                if (stands(newlineVerbs[i], 2)) known = true, newline = Newline(i);
            for (const char* verb : startVerbs) known = known || stands(verb, 2);
            if (!known) return;
            skipBehind(')');
        }
    }

    /// Units of the line end that stands here; 0 for none.
    int lineEnd() const {
        const ichar c = peek();
        switch (newline) {
        case Lf:
            return c == '\n';
        case Cr:
            return c == '\r';
        case CrLf:
            return c == '\r' && peek(1) == '\n' ? 2 : 0;
        case Nul:
            return c == 0;
        case Any:
            if (c == '\v' || c == '\f' || c == 0x2028 || c == 0x2029) return 1;
            if (c == 0x85) return 1;
            if (sizeof(C) == 1 && c == 0xC2 && peek(1) == 0x85) return 2;
            if (sizeof(C) == 1 && c == 0xE2 && peek(1) == 0x80 && (peek(2) | 1) == 0xA9) return 3;
            [[fallthrough]];
        case AnyCrLf:
            return c == '\n' || c == '\r';
        }
        return 0;
    }

    /// The next item of the text.
    void step() {
        const int start = at;
        const ichar c = next();
        if (c == '(' && stands("?#")) {
            at += 2;
            skipBehind(')');
        } else if (c == '\\')
            escape(start);
        else if (c == '[')
            skipClass();
        else if (c == '(')
            parenthesis(start);
        else if (c == ')')
            close();
        else if (c == '|') {
            Frame& frame = frames[frames.count() - 1];
            if (frame.last >= 0) {
                frame.last = std::max(frame.last, seen);
                seen = frame.first;
            }
        } else if (c == '#' && options & Extended) {
            int units = 0;
            while (at < length && !(units = lineEnd())) ++at;
            at += units;
        }
    }

    // Groups

    void open(int start, int label, int name = 0, int nameLength = 0) {
        const int parent = frames.isEmpty() ? -1 : frames[frames.count() - 1].node;
        const int depth = parent < 0 ? 0 : tree.groups[uint(parent)].depth + 1;
        const int node = tree.count();
        failed = failed || !tree.groups.append({parent, node + 1, depth, label, start, 0, name, nameLength, options}) ||
                 !frames.append({node, options, seen, -1});
    }
    void openCapturing(int start, int name = 0, int nameLength = 0) {
        open(start, ++seen, name, nameLength);
        most = std::max(most, seen);
    }
    /// Ends the innermost group; the root only at the end of the text.
    void close() {
        const uint last = frames.count() - 1;
        if (failed || (last == 0 && at < length)) return;
        const Frame frame = frames[last];
        frames.setCount(last);
        PatternNode& node = tree.groups[uint(frame.node)];
        node.length = at - node.position;
        node.end = tree.count();
        options = frame.options;
        if (frame.last >= 0) seen = std::max(frame.last, seen);
    }

    void parenthesis(int start) {
        if (peek() == '*' && isLower(peek(1))) {
            // An assertion or the like, by its name.
            skipBehind(':');
            open(start, -1);
        } else if (peek() == '*' && (peek(1) == ':' || isLetter(peek(1))))
            skipBehind(')');
        else if (peek() == '?') {
            ++at;
            question(start);
        } else if (options & NoCapture)
            open(start, -1);
        else
            openCapturing(start);
    }

    /// What "(?" begins.
    void question(int start) {
        if (take("P<") || (stands("<") && !stands("=", 1) && !stands("!", 1) && !stands("*", 1) && take("<")))
            named(start, '>');
        else if (take("'"))
            named(start, '\'');
        else if (take("P=") || take("P>") || take("&"))
            name(')');
        else if (take("R"))
            add(Reference::Absolute, at - 1, 1, 0), skipBehind(')');
        else if (isDigit(peek()) || ((peek() == '+' || peek() == '-') && isDigit(peek(1)))) {
            number(Reference::Absolute, at);
            skipBehind(')');
        } else if (take("C"))
            callout();
        else if (take("|")) {
            open(start, -1);
            if (!failed) frames[frames.count() - 1].last = seen;
        } else if (take("<=") || take("<!") || take("<*") || take("=") || take("!") || take("*") || take(">"))
            open(start, -1);
        else if (stands("("))
            condition(start);
        else
            settings(start);
    }

    void named(int start, ichar end) {
        const int name = at;
        skipBehind(end);
        openCapturing(start, name, at - 1 - name);
    }

    void settings(int start) {
        uint wanted = options, on = 0, off = 0;
        uint* set = &on;
        if (take("^")) wanted &= DupNames | Ungreedy;
        for (ichar c; (c = next()) != ')' && c != ':' && c != behind;) {
            if (c == '-') set = &off;
            if (c == 'i') *set |= Caseless;
            if (c == 'm') *set |= MultiLine;
            if (c == 's') *set |= DotAll;
            if (c == 'n') *set |= NoCapture;
            if (c == 'J') *set |= DupNames;
            if (c == 'U') *set |= Ungreedy;
            if (c == 'x') *set |= take("x") ? Extended | ExtendedMore : Extended;
        }
        // One x takes back the second one, and none both.
        if ((on & (Extended | ExtendedMore)) == Extended || off & Extended) off |= ExtendedMore;
        wanted = (wanted | on) & ~off;
        if (at > 0 && text[at - 1] == ':') open(start, -1);
        options = wanted;
    }

    void callout() {
        const ichar open = peek();
        if (open < 128 && open && std::strchr("`'\"^%#${", int(open))) {
            const ichar end = open == '{' ? '}' : open;
            // The closing character stands for itself where it is doubled.
            for (++at; at < length; ++at)
                if (peek() == end) {
                    if (peek(1) != end) break;
                    ++at;
                }
            ++at;
        }
        skipBehind(')');
    }

    /// "(?" with a condition, which stands in parentheses of its own.
    void condition(int start) {
        open(start, -1);
        // An assertion, perhaps behind a callout, is a group that the text goes on with.
        if (stands("(?") || stands("(*")) return;
        ++at;
        if (take("DEFINE)") || take("R)")) return;
        if (stands("VERSION")) return skipBehind(')');
        if (isDigit(peek()) || peek() == '+' || peek() == '-') {
            number(Reference::Absolute, at);
            return skipBehind(')');
        }
        if (take("R&")) return name(')');
        if (peek() == 'R' && isDigit(peek(1))) {
            ++at;
            number(Reference::Absolute, at);
            return skipBehind(')');
        }
        if (take("<"))
            name('>');
        else if (take("'"))
            name('\'');
        else
            return name(')');
        skipBehind(')');
    }

    // References

    void add(Reference::Form form, int position, int units, int label) {
        failed = failed || !tree.references.append({form, position, units, label});
    }
    /// A name up to `end`.
    void name(ichar end) {
        const int start = at;
        skipBehind(end);
        add(Reference::Absolute, start, at - 1 - start, -1);
    }
    /// A number, perhaps one with a sign that counts from here. `start` is where what it is written in begins.
    void number(Reference::Form form, int start) {
        const ichar sign = peek() == '+' || peek() == '-' ? next() : 0;
        const int digits = at;
        int value = 0;
        while (isDigit(peek())) value = std::min(value * 10 + int(next() - '0'), 1 << 20);
        const int label = sign == '+' ? seen + value : sign == '-' ? seen - value + 1 : value;
        if (form == Reference::Escape)
            add(form, start, at - start, label);
        else
            add(sign ? Reference::Relative : form, digits, at - digits, label);
    }

    void escape(int start) {
        const ichar c = next();
        if (c == 'Q') {
            while (at < length && !take("\\E")) ++at;
        } else if (c == 'c')
            ++at;
        else if (isDigit(c) && c != '0') {
            --at;
            int value = 0, digits = 0;
            for (; isDigit(peek(digits)); ++digits) value = std::min(value * 10 + int(peek(digits) - '0'), 1 << 20);
            // What is no reference is the octal number of a character.
            if (value < 10 || c >= '8' || value <= seen)
                number(Reference::Escape, start);
            else
                at += digits;
        } else if (c == 'k') {
            const ichar opens = next();
            name(opens == '{' ? '}' : opens == '<' ? '>' : opens);
        } else if (c == 'g')
            groupEscape();
    }
    void groupEscape() {
        const ichar opens = peek();
        const ichar closes = opens == '{' ? '}' : opens == '<' ? '>' : opens == '\'' ? '\'' : 0;
        if (closes) ++at;
        const ichar c = peek();
        if (isDigit(c) || c == '+' || c == '-') {
            const int start = at;
            number(Reference::Absolute, at);
            // Without brackets the number may run into what follows once it has become shorter.
            if (!closes && !failed) {
                Reference& made = tree.references[tree.references.count() - 1];
                if (made.form == Reference::Absolute) made = {Reference::Escape, start - 2, at - start + 2, made.label};
            }
            if (closes) skipBehind(closes);
        } else
            name(closes);
    }

    // Classes

    void skipClass() {
        for (bool negated = false;;) {
            if (take("\\E") || take("\\Q\\E") || (options & ExtendedMore && (take(" ") || take("\t")))) continue;
            if (negated || !take("^")) break;
            negated = true;
        }
        bool quoted = false;
        for (bool first = true; at < length; first = false) {
            const ichar c = next();
            if (quoted) {
                if (c == '\\' && take("E")) quoted = false;
            } else if (c == ']') {
                if (!first) return;
            } else if (c == '[' && (peek() == ':' || peek() == '.' || peek() == '='))
                skipNamedClass();
            else if (c == '\\') {
                const ichar escaped = next();
                if (escaped == 'Q') quoted = true;
                if (escaped == 'c') ++at;
            }
        }
    }
    /// "[:name:]" and its like behind the bracket; nothing where there is none.
    void skipNamedClass() {
        const ichar mark = peek();
        for (int i = at + 1; i + 1 < length; ++i) {
            const auto c = ichar(std::make_unsigned_t<C>(text[i])), then = ichar(std::make_unsigned_t<C>(text[i + 1]));
            if (c == '\\' && (then == ']' || then == '\\'))
                ++i;
            else if ((c == '[' && then == mark) || c == ']')
                return;
            else if (c == mark && then == ']') {
                at = i + 2;
                return;
            }
        }
    }

    PatternTree& tree;
    const C* text;
    const int length;
    int at = 0;
    uint options = 0;
    Newline newline = Lf;
    int seen = 0, most = 0; ///< the number given last, and the largest one
    bool failed = false;
    ZArrayT<Frame> frames;
};

bool PatternTree::read(const TextView& text, bool capturing) {
    groups.clear();
    references.clear();
    captures = capturing;
    return withText(text, [&](auto* units, int length) {
        using C = std::remove_const_t<std::remove_pointer_t<decltype(units)>>;
        return Reader<C>(*this, units, length).run();
    });
}

bool PatternTree::recurs() const {
    return std::any_of(references.begin(), references.end(), [](auto& reference) { return reference.label == 0; });
}

// Extraction

static TextView part(const TextView& text, int position, int length) {
    return {static_cast<const char*>(text.text) + position * detail::unitBytes(text.width), length, text.width};
}

/// Whether all groups of a name are inside a subtree.
bool PatternTree::holds(const TextView& text, int node, const Reference& reference) const {
    const int end = groups[uint(node)].end;
    const TextView wanted = part(text, reference.position, reference.length);
    bool inside = false;
    for (int i = 0; i < count(); ++i) {
        const PatternNode& group = groups[uint(i)];
        if (group.nameLength != reference.length || compareText(part(text, group.name, group.nameLength), wanted) != 0)
            continue;
        if (i < node || i >= end) return false;
        inside = true;
    }
    return inside;
}

bool PatternTree::extract(const ZString& whole, int node, ZString& out, bool& refers) const {
    refers = false;
    if (node < 0 || node >= count()) return false;
    if (node == 0) return out.assign(whole);
    const TextView text = whole.view();
    const PatternNode& group = groups[uint(node)];
    // The numbers of a subtree follow each other; the first one becomes 1.
    int first = 0, last = 0;
    for (int i = node; i < group.end; ++i) {
        if (!first) first = std::max(groups[uint(i)].label, 0);
        last = std::max(groups[uint(i)].label, last);
    }
    ZString made(part(text, 0, verbs));
    if (verbs && made.isEmpty()) return false;
    char setting[24];
    int units = 0;
    const uint changed = group.options ^ (captures ? 0u : NoCapture);
    const struct {
        uint option;
        const char* letters;
    } letters[] = {{Caseless, "i"}, {MultiLine, "m"},    {DotAll, "s"},   {NoCapture, "n"},
                   {Extended, "x"}, {ExtendedMore, "x"}, {DupNames, "J"}, {Ungreedy, "U"}};
    for (auto& row : letters)
        if (changed & group.options & row.option) setting[units++] = *row.letters;
    if (changed & NoCapture && !(group.options & NoCapture)) setting[units++] = '-', setting[units++] = 'n';
    if (units && !(made.append("(?", 2) && made.append(setting, units) && made.append(")", 1))) return false;
    const int end = group.position + group.length;
    int at = group.position;
    // References stand in the order of the text.
    for (const Reference& reference : references) {
        if (reference.position < at || reference.position >= end) continue;
        const bool named = reference.label < 0;
        if (named ? !holds(text, node, reference) : !first || reference.label < first || reference.label > last) {
            refers = true;
            return false;
        }
        if (reference.form == Reference::Relative || named || first == 1) continue;
        const ZString label = ZString::number(reference.label - first + 1);
        const bool escape = reference.form == Reference::Escape;
        if (label.isEmpty() || !made.append(part(text, at, reference.position - at)) ||
            (escape && !made.append("\\g{", 3)) || !made.append(label) || (escape && !made.append("}", 1)))
            return false;
        at = reference.position + reference.length;
    }
    if (!made.append(part(text, at, end - at))) return false;
    out = std::move(made);
    return true;
}

} // namespace orv
