// Any bytes, as a pattern and a text: the tree has as many groups, and the names, that the engine tells of a pattern
// that compiles; every part of it that can stand alone compiles and has the groups of the subtree; what is found lies
// within the text, a search in a text of one width finds what it finds in another, and a whole match is a find.
#include "text/ZRegExp.h"

#include "text/patternTree.h"
#include "toolkit/pattern.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

/// What patterns are made of, one for each byte: so most inputs come close to being one.
std::string spelled(const std::string& bytes) {
    static const char* const items[] = {"(",          ")",         ")",
                                        ")",          "|",         "(?:",
                                        "(?|",        "(?<n>",     "(?'m'",
                                        "(?P<q>",     "(?i)",      "(?x)",
                                        "(?xx)",      "(?n)",      "(?-n",
                                        "(?^",        "(?J)",      "(?i-s:",
                                        "(?#",        "(?=",       "(?!",
                                        "(?<=",       "(?<!",      "(?>",
                                        "(?*",        "(?C1)",     "(?C'(')",
                                        "(?(1)",      "(?(<n>)",   "(?(R)",
                                        "(?(DEFINE)", "(?(?=",     "(?(R1)",
                                        "(?1)",       "(?R)",      "(?-1)",
                                        "(?+1)",      "(?&n)",     "(?P>n)",
                                        "(?P=n)",     "\\1",       "\\2",
                                        "\\12",       "\\g{1}",    "\\g2",
                                        "\\g{-1}",    "\\g<n>",    "\\k<n>",
                                        "\\k{m}",     "\\Q",       "\\E",
                                        "\\c(",       "\\(",       "\\)",
                                        "\\[",        "[",         "]",
                                        "[^",         "[]",        "[[:alpha:]",
                                        "[:",         ":]",        "[.",
                                        "\\]",        "#",         "\n",
                                        "\r",         " ",         "a",
                                        "b",          ".",         "*",
                                        "+?",         "{2}",       "?",
                                        "^",          "$",         "(*pla:",
                                        "(*MARK:",    "(*:m)",     "(*ANYCRLF)",
                                        "(*CR)",      "(*ACCEPT)", "(*SKIP)",
                                        "(*COMMIT)",  "(*atomic:", "\\G",
                                        "\\K",        "\\b",       "\\w",
                                        "\\x{e4}",    "\xC3\xA4",  "\xFF",
                                        "\\",         "-",         "x",
                                        "=",          "1",         "(?(VERSION>=10)"};
    std::string made;
    for (unsigned char byte : bytes) made += items[byte % std::size(items)];
    return made;
}

void checkTree(const ZString& pattern, bool captures, bool unicode) {
    const ZString::View view = pattern.view();
    orv::PatternTree tree;
    toolkit::PatternFault fault;
    require(tree.read(view, captures));
    toolkit::Pattern* code =
        toolkit::compilePattern(view.text, size_t(view.length), size_t(tree.head()),
                                ZString::unitSize(ZString::Type(view.width)), captures | (unicode ? 2u : 0u), fault);
    require(code || (fault.position <= size_t(view.length) && fault.text[0]));
    if (!code) return;
    require(tree.labels() == int(toolkit::patternGroups(*code)));
    uint named = 0;
    for (const orv::PatternNode& node : tree.nodes()) named += node.nameLength > 0;
    // Groups that share their number share the name.
    require(named >= toolkit::patternNames(*code));
    for (uint i = 0; i < toolkit::patternNames(*code); ++i) {
        const toolkit::PatternName name = toolkit::patternName(*code, i);
        const ZString wanted(ZString::View(name.text, int(name.length), view.width));
        bool found = false;
        for (const orv::PatternNode& node : tree.nodes())
            found |= node.label == int(name.group) && pattern.extract(node.name, node.nameLength) == wanted;
        require(found);
    }
    toolkit::freePattern(code);
}

void checkNodes(const ZRegExp& expression) {
    const int count = std::min(expression.countNodes(), 50);
    for (int node = 0; node < count; ++node) {
        const int parent = expression.parent(node);
        require(node == 0 ? parent == -1 : parent >= 0 && parent < node);
        require(node == 0 || expression.depth(node) == expression.depth(parent) + 1);
        const ZRegExp part = expression.extract(node);
        require(part.isEmpty() == !part.errorText().isEmpty());
        if (part.isEmpty()) continue;
        int labels = 0;
        for (int i = node; i < expression.countNodes(); ++i) {
            int above = i;
            while (above > node) above = expression.parent(above);
            if (above == node) ++labels;
        }
        // The whole is a node of its own there.
        require(part.countNodes() == labels + (node ? 1 : 0));
    }
}

void checkFinds(ZRegExp& expression, const ZString& text, bool wide) {
    expression.setTimeLimit(5);
    int length = -1;
    const int first = expression.find(text, false, 0, length);
    if (expression.gaveUp()) return;
    require(first < 0 ? length == 0 : length >= 0 && first + length <= text.length());
    const int at = expression.check(text);
    require(at <= text.length());
    if (expression.match(text) && !expression.gaveUp()) require(first >= 0 || at >= 0);
    if (first >= 0) require(expression.find(text, true) >= 0 || expression.gaveUp());
    if (!wide) return;
    // Well-formed text is the same in every width.
    ZString other(text);
    require(other.setType(ZString::WChar));
    const int found = expression.find(other);
    if (!expression.gaveUp()) require((found >= 0) == (first >= 0));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const bool captures = data[0] & 1, unicode = data[0] & 2;
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const size_t line = bytes.rfind('\n');
    std::string units = bytes.substr(0, line);
    if (data[0] & 16) units = spelled(units);
    ZString pattern(units.data(), int(units.size()));
    ZString text(bytes.data() + (line == bytes.npos ? 0 : line + 1));
    if (pattern.isEmpty()) return 0;
    if (data[0] & 12 && !pattern.setType(data[0] & 4 ? ZString::WChar : ZString::IChar)) return 0;
    checkTree(pattern, captures, unicode);
    ZFailGuard guard;
    ZRegExp expression(pattern, ZRegExp::Flags(captures | (unicode ? 2 : 0)));
    guard.forget();
    if (expression.isEmpty()) return 0;
    checkNodes(expression);
    // Text that is repaired before.
    ZString repaired(text);
    require(repaired.setType(ZString::IChar) && repaired.setType(ZString::Char));
    checkFinds(expression, text, false);
    checkFinds(expression, repaired, true);
    return 0;
}
