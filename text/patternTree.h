#pragma once

#include "core/ZArrayT.h"
#include "text/ZString.h"

/// The groups of a regular expression as a tree, read from its text. The text has to be one that compiles; of any other
/// the tree is some tree.
namespace orv {

/// A group: everything from its opening to its closing parenthesis. Comments, settings, verbs and references are none.
struct PatternNode {
    using ZRelocatable = void;
    int parent; ///< -1 for the root
    int end;    ///< the node behind the last one of the subtree
    int depth;  ///< 0 for the root
    int label;  ///< the number of a group that captures, 0 for the root, -1 for others
    int position, length;
    int name, nameLength;
    uint options; ///< `PatternTree::Option`, as they hold ahead of it
};

class ORV_API PatternTree {
public:
    enum Option : uint {
        Caseless = 1,
        MultiLine = 2,
        DotAll = 4,
        NoCapture = 8,
        Extended = 16,
        ExtendedMore = 32,
        DupNames = 64,
        Ungreedy = 128
    };

    /// With `captures` plain parentheses capture. False without memory.
    bool read(const ZString::View& text, bool captures);

    /// The root and, ahead of what follows them, the groups inside each group.
    const ZArrayT<PatternNode>& nodes() const { return groups; }
    int count() const { return int(groups.count()); }
    /// Groups that capture, each number once.
    int labels() const { return largest; }
    /// Units at the start that set up the whole expression.
    int head() const { return verbs; }
    /// Whether something refers to the whole expression.
    bool recurs() const;

    /// The text of a subtree as an expression of its own: references are numbered anew, and the options that hold there
    /// stand ahead of it. False, with `refers` set, where it refers to a group outside, and without memory.
    bool extract(const ZString& text, int node, ZString& out, bool& refers) const;

private:
    /// What stands for a group, by its number or name.
    struct Reference {
        using ZRelocatable = void;
        enum Form { Absolute, Escape, Relative } form;
        int position, length; ///< of the digits, of the whole escape, or of the name
        int label;            ///< -1 for a name
    };
    template <class C> class Reader;

    bool holds(const ZString::View& text, int node, const Reference& reference) const;

    ZArrayT<PatternNode> groups;
    ZArrayT<Reference> references;
    int largest = 0;
    int verbs = 0; ///< units of the verbs at the start
    bool captures = true;
};

} // namespace orv
