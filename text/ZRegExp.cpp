#include "text/ZRegExp.h"

#include "core/ZSelector.h"
#include "core/construct.h"
#include "text/patternTree.h"
#include "toolkit/pattern.h"

#include <cstring>

using namespace orv;
using detail::TextIn;
using detail::TextView;
using detail::withText;

/// What copies share.
struct ZRegExp::Compiled {
    ~Compiled() { toolkit::freePattern(code); }
    toolkit::Pattern* code = nullptr;
    ZString text;
    PatternTree tree;
};

struct ZRegExp::Use {
    int first;
    bool fixed, whole, partial;
};

// Lifetime

ZRegExp::ZRegExp(const ZString& pattern, Flags flags) {
    if (!setPattern(pattern, flags)) ZError::fail();
}
ZRegExp::ZRegExp(const ZRegExp& other)
    : ZString(other), compiled(retain(other.compiled)), flags(other.flags), milliseconds(other.milliseconds),
      faultAt(other.faultAt), outcome(other.outcome), fault(other.fault) {}
ZRegExp::ZRegExp(ZRegExp&& other) noexcept { swap(other); }
ZRegExp::~ZRegExp() { zrelease(compiled); }
ZRegExp& ZRegExp::operator=(const ZRegExp& other) {
    ZRegExp(other).swap(*this);
    return *this;
}
ZRegExp& ZRegExp::operator=(ZRegExp&& other) noexcept {
    ZRegExp(std::move(other)).swap(*this);
    return *this;
}
void ZRegExp::swap(ZRegExp& other) noexcept {
    ZString::swap(other);
    std::swap(compiled, other.compiled);
    std::swap(flags, other.flags);
    std::swap(milliseconds, other.milliseconds);
    std::swap(faultAt, other.faultAt);
    std::swap(outcome, other.outcome);
    fault.swap(other.fault);
}

// The pattern

bool ZRegExp::fail(int position, const char* text) {
    faultAt = position;
    outcome = Answered;
    if (!fault.set(text)) fault.clear();
    return false;
}

bool ZRegExp::setPattern(const ZString& pattern, Flags wanted) {
    Compiled* made = nullptr;
    if (!pattern.isEmpty()) {
        const View view = pattern.view();
        toolkit::PatternFault wrong;
        const bool captures = wanted & DefGroup;
        void* block = __zalloc(sizeof(Compiled));
        if (!block) return fail(0, "no memory");
        made = new (block) Compiled;
        std::strcpy(wrong.text, "no memory");
        if (view.length > int(toolkit::patternLimit) || made->tree.read(view, captures)) {
            const uint options =
                (captures ? toolkit::patternCaptures : 0u) | (wanted & UCDGroup ? toolkit::patternUnicode : 0u);
            made->code = toolkit::compilePattern(view.text, size_t(view.length), size_t(made->tree.head()),
                                                 unitSize(Type(view.width)), options, wrong);
        }
        if (!made->code) {
            zrelease(made);
            return fail(int(wrong.position), wrong.text);
        }
        made->text = pattern;
    }
    zrelease(std::exchange(compiled, made));
    if (made)
        ZString::operator=(made->text);
    else
        ZString::clear();
    flags = wanted;
    faultAt = -1;
    fault.clear();
    outcome = Answered;
    return true;
}

ZString ZRegExp::pattern() const { return compiled ? compiled->text : ZString(); }
void ZRegExp::clear() { setPattern(ZString()); }
ZString::Type ZRegExp::getCharType() const { return compiled ? Type(compiled->text.view().width) : Char; }

bool ZRegExp::setCharType(Type type) {
    if (type != Char && type != WChar && type != IChar) return false;
    if (!compiled || getCharType() == type) return true;
    ZString converted = compiled->text;
    return converted.setType(type) ? setPattern(converted) : fail(0, "no memory");
}

bool ZRegExp::reset() {
    outcome = Answered;
    const ZString old = pattern();
    if (ZString::compare(old) == 0 && type() == old.type()) return true;
    if (setPattern(ZString(*this))) return true;
    ZString::operator=(old);
    return false;
}
bool ZRegExp::reset(int node) {
    outcome = Answered;
    return node >= 0 && node < countNodes();
}

ZString ZRegExp::errorText() const {
    switch (outcome) {
    case TimeUp:
        return "given up: the time limit is reached";
    case TooDeep:
        return "given up: the match takes too much memory";
    case NoMemory:
        return "no memory";
    default:
        return fault;
    }
}

// Matching

namespace {

/// How many units of the other width the first `units` take. A place inside a character counts as its end.
template <class To, class From> int unitsIn(const From* text, int length, int units) {
    const From *at = text, *end = text + length;
    int made = 0;
    while (at < end && at - text < units) made += detail::codeUnits<To>(detail::decodeCode(at, end));
    return made;
}

/// How many units of a text become `units` of the other width. A place inside a character counts as its end or start.
template <class To, class From> int unitsOf(const From* text, int length, int units, bool end) {
    const From *at = text, *last = text + length;
    for (int made = 0; at < last && made < units;) {
        const From* before = at;
        made += detail::codeUnits<To>(detail::decodeCode(at, last));
        if (made > units && !end) return int(before - text);
    }
    return int(at - text);
}

} // namespace

template <class C> bool ZRegExp::run(const View& text, const Use& use, int& from, int& to) const {
    const TextIn<C> subject(text);
    if (subject.failed) {
        outcome = NoMemory;
        return false;
    }
    const bool converted = text.length && text.width != detail::widthOf<C>;
    int first = use.first;
    if (converted && first)
        first = withText(text, [&](auto* units, int length) { return unitsIn<C>(units, length, first); });
    const toolkit::PatternSearch search{.text = subject.text,
                                        .length = size_t(subject.length),
                                        .first = size_t(first),
                                        .fixed = use.fixed,
                                        .whole = use.whole,
                                        .partial = use.partial,
                                        .budget = large(milliseconds) * 1'000'000};
    size_t begin = 0, end = 0;
    switch (toolkit::findPattern(*compiled->code, search, begin, end)) {
    case toolkit::PatternEnd::Found:
        break;
    case toolkit::PatternEnd::Partial:
        end = search.length;
        break;
    case toolkit::PatternEnd::None:
        return false;
    case toolkit::PatternEnd::TimeUp:
        outcome = TimeUp;
        return false;
    case toolkit::PatternEnd::TooDeep:
        outcome = TooDeep;
        return false;
    case toolkit::PatternEnd::NoMemory:
        outcome = NoMemory;
        return false;
    }
    from = int(begin);
    to = int(end);
    if (converted)
        withText(text, [&](auto* units, int length) {
            from = unitsOf<C>(units, length, from, false);
            to = to == subject.length ? length : unitsOf<C>(units, length, to, true);
        });
    return true;
}

bool ZRegExp::run(const View& text, const Use& use, int& from, int& to) const {
    outcome = Answered;
    if (!compiled || use.first > text.length) return false;
    switch (getCharType()) {
    case WChar:
        return run<wchar>(text, use, from, to);
    case IChar:
        return run<ichar>(text, use, from, to);
    default:
        return run<char>(text, use, from, to);
    }
}

bool ZRegExp::match(const ZString& text, bool partial) const { return matchWhole(text.view(), partial); }
bool ZRegExp::match(const ZSelector& name, bool partial) const {
    return matchWhole(View(name.string(), name.length()), partial);
}
bool ZRegExp::matchWhole(const View& text, bool partial) const {
    int from, to;
    // What contains itself can't be followed by a test for the end of the text.
    if (partial && compiled && compiled->tree.recurs())
        return run(text, {0, true, false, true}, from, to) && to == text.length;
    return run(text, {0, false, true, partial}, from, to);
}
int ZRegExp::check(const ZString& text, bool partial) const {
    int from, to;
    return run(text.view(), {0, true, false, partial}, from, to) ? to : -1;
}
int ZRegExp::find(const ZString& text, bool partial, int first) const {
    int length;
    return find(text, partial, first, length);
}
int ZRegExp::find(const ZString& text, bool partial, int first, int& length) const {
    int from = -1, to = -1;
    const bool found = run(text.view(), {first > 0 ? first : 0, false, false, partial}, from, to);
    length = found ? to - from : 0;
    return found ? from : -1;
}

// The tree

static const PatternNode* nodeAt(const PatternTree& tree, int node) { return tree.nodes().entry(uint(node)); }

int ZRegExp::countNodes() const { return compiled ? compiled->tree.count() : 0; }
int ZRegExp::child(int node) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    return at && at->end > node + 1 ? node + 1 : -1;
}
int ZRegExp::next(int node) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    return at && at->parent >= 0 && at->end < nodeAt(compiled->tree, at->parent)->end ? at->end : -1;
}
int ZRegExp::parent(int node) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    return at ? at->parent : -1;
}
int ZRegExp::depth(int node) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    return at ? at->depth : 0;
}
int ZRegExp::label(int node) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    return at ? at->label : -1;
}
ZString ZRegExp::name(int node) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    return at && at->nameLength ? compiled->text.ZString::extract(at->name, at->nameLength) : ZString();
}
ZString ZRegExp::text(int node) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    return at ? compiled->text.ZString::extract(at->position, at->length) : ZString();
}
int ZRegExp::findLabel(int node, int label) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    for (int i = node; at && label >= 0 && i < at->end; ++i)
        if (nodeAt(compiled->tree, i)->label == label) return i;
    return -1;
}
int ZRegExp::findName(int node, const ZString& wanted) const {
    const PatternNode* at = compiled ? nodeAt(compiled->tree, node) : nullptr;
    for (int i = node; at && i < at->end && !wanted.isEmpty(); ++i)
        if (name(i) == wanted) return i;
    return -1;
}

ZRegExp ZRegExp::extract(int node) const {
    ZRegExp made;
    ZString part;
    bool refers = false;
    made.milliseconds = milliseconds;
    made.flags = flags;
    if (!compiled || !nodeAt(compiled->tree, node))
        made.fail(-1, "there is no such node");
    else if (compiled->tree.extract(compiled->text, node, part, refers))
        made.setPattern(part);
    else
        made.fail(-1, refers ? "the part refers to a group outside of it" : "no memory");
    return made;
}

int ZRegExp::compare(const ZRegExp& other) const {
    const int order = ZString::compare(other);
    return order ? order : (flags > other.flags) - (flags < other.flags);
}
