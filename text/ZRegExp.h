#pragma once

#include "text/ZString.h"

/// A regular expression, in the syntax of PCRE2. The text is the pattern, and its width that of the expression; what it
/// is matched with is converted to that width, and positions and lengths count units of what was given, whatever its
/// width. A place inside a character of the given text means its start where a match begins, its end where one ends.
/// Line ends are LF unless the pattern begins with something like "(*ANYCRLF)".
///
/// The expression is compiled once and shared by copies. Operations of `ZString` that change the text leave the
/// expression as it is until `reset`. A value belongs to one thread at a time; copies of it may be on any.
///
/// The groups of the pattern form a tree. Its nodes are numbers from 0, the root, which is the whole pattern; every
/// other node is a group with its parentheses, whether it captures or not, and comes ahead of those inside it.
class ORV_API ZRegExp : public ZString {
public:
    using ZRelocatable = void;

    enum Flags {
        None = 0,
        DefGroup = 1, ///< plain parentheses capture; without it only named groups do
        UCDGroup = 2  ///< text is UTF, and classes and case go by the Unicode properties; without it units stand alone
    };

    /// Milliseconds that a use may take, unless told otherwise.
    static constexpr int defaultTimeLimit = 1000;

    // Lifetime. A pattern that doesn't compile raises `ZError::fail` and leaves an empty expression.

    ZRegExp() noexcept = default;
    explicit ZRegExp(const ZString& pattern, Flags flags = None);
    ZRegExp(const ZRegExp& other);
    ZRegExp(ZRegExp&& other) noexcept;
    ~ZRegExp();
    ZRegExp& operator=(const ZRegExp& other);
    ZRegExp& operator=(ZRegExp&& other) noexcept;
    void swap(ZRegExp& other) noexcept;

    // The pattern. An empty one is no expression: nothing matches it. False leaves everything as it was, and
    // `errorPosition` and `errorText` tell where and why.

    bool setPattern(const ZString& pattern) { return setPattern(pattern, flags); }
    bool setPattern(const ZString& pattern, Flags flags);
    /// What the expression was compiled from.
    ZString pattern() const;
    Flags getFlags() const { return flags; }
    /// Whether there is no expression.
    bool isEmpty() const { return !compiled; }
    /// The width of the pattern; `Char` without one.
    Type getCharType() const;
    /// Converts the pattern. False for `Internal`.
    bool setCharType(Type type);
    /// Compiles the text, if it was changed since; for one that doesn't compile the old text comes back. Forgets how
    /// the last use ended, which is all that uses leave behind.
    bool reset();
    /// Forgets how the last use ended; false for a number that is no node.
    bool reset(int node);
    void clear();

    // Matching. With `partial`, a text that ends inside a possible match, behind its first character, counts to its
    // end. What takes longer than the time limit, or needs too much memory, is given up: there is no match then, and
    // `gaveUp` tells.

    /// Whether the whole text matches.
    bool match(const ZString& text, bool partial = false) const;
    bool match(const ZSelector& name, bool partial = false) const;
    /// The length of the match at the start of a text; -1 if there is none.
    int check(const ZString& text, bool partial = false) const;
    /// Where the first match begins that doesn't begin before `first`; -1 if there is none. What stands before `first`
    /// is seen by what looks back.
    int find(const ZString& text, bool partial = false, int first = 0) const;
    /// The same; `length` is the match's, 0 without one.
    int find(const ZString& text, bool partial, int first, int& length) const;

    /// In milliseconds.
    int timeLimit() const { return milliseconds; }
    /// Copies take it over. A limit below 0 counts as 0.
    void setTimeLimit(int limit) { milliseconds = limit < 0 ? 0 : limit; }
    /// Whether the last use was given up, so that its answer is no answer.
    bool gaveUp() const { return outcome != Answered; }

    // What went wrong last, with a pattern or in a use

    /// The unit of the pattern at which it was refused; -1 if none was.
    int errorPosition() const { return faultAt; }
    /// In English; empty if nothing went wrong.
    ZString errorText() const;

    // The tree. What is asked of a number that is no node answers -1, a depth 0, a text the empty one.

    /// 0, or -1 for the empty expression.
    int root() const { return compiled ? 0 : -1; }
    int countNodes() const;
    /// The first group inside.
    int child(int node) const;
    /// The next group inside the same one.
    int next(int node) const;
    int parent(int node) const;
    int depth(int node) const;
    /// The number by which a group captures, 0 for the root, -1 for a group that doesn't capture.
    int label(int node) const;
    ZString name(int node) const;
    /// The first node of a subtree, the node itself among them, with a label or a name; -1 if there is none.
    int findLabel(int node, int label) const;
    int findName(int node, const ZString& name) const;
    /// The part of the pattern that a node is.
    ZString text(int node) const;
    /// A subtree as an expression of its own, its groups numbered anew from 1. The options that hold at its place, such
    /// as (?i), are put ahead of it. Empty for what refers to a group outside of it; its `errorText` then tells.
    ZRegExp extract(int node) const;

    /// By the text, then by the flags.
    int compare(const ZRegExp& other) const;
    bool operator==(const ZRegExp& other) const { return compare(other) == 0; }

private:
    struct Compiled;
    enum Outcome : byte { Answered, TimeUp, TooDeep, NoMemory };
    struct Use;

    bool fail(int position, const char* text);
    bool matchWhole(const View& text, bool partial) const;
    bool run(const View& text, const Use& use, int& from, int& to) const;
    template <class C> bool run(const View& text, const Use& use, int& from, int& to) const;

    Compiled* compiled = nullptr;
    Flags flags = None;
    int milliseconds = defaultTimeLimit;
    int faultAt = -1;
    mutable Outcome outcome = Answered;
    ZString fault;
};
