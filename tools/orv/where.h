#pragma once

#include "value/ZVariant.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orv::tool {

/// Where in a text something is wrong, counted in characters from 1, and what.
struct TextFault {
    size_t column = 0;
    std::string what;
};

/// A condition on the properties of an object:
///
///     condition  = all { "or" all }
///     all        = one { "and" one }
///     one        = "not" one | "(" condition ")" | NAME OPERATION value
///     value      = literal | "(" literal { "," literal } ")"          the brackets only behind "in"
///     literal    = word | '"' text '"' | "'" text "'"                 \" and \\ within "…"
///
/// NAME is of letters, digits, "-", "_" and ".", a member of a field being "Maintainer.name"; OPERATION "=" or one of
/// those that `ZVariant::checkOperation` knows by a word or sign, methods aside. Each literal becomes a value of the
/// property's type when the text is read.
class Where {
public:
    static constexpr int deepest = 512;
    static constexpr size_t longest = 1 << 16;

    /// The type that a property has, or null if there is none of that name.
    using TypeOf = std::function<ZMetaType*(const std::string& name)>;

    /// Null, with the fault told, for a text that isn't a condition, a name without a type, and a literal that is no
    /// value of the type.
    static std::unique_ptr<Where> read(std::string_view text, const TypeOf& typeOf, TextFault& fault);
    /// A property that isn't there matches nothing, "!=" and its like included.
    bool matches(const ZType& object) const { return matches(root, object); }

private:
    friend class WhereReader;
    struct Node {
        enum Kind { All, Any, Not, Compare } kind = Compare;
        std::vector<int> parts; ///< of All, Any, Not
        ZSelector name, operation;
        ZVariant value;
    };

    bool matches(int index, const ZType& object) const;

    std::vector<Node> nodes;
    int root = -1;
};

/// A value of a type from the text that a person wrote; null if it is none. Numbers are decimal, and the whole text
/// counts.
ZVariant readLiteral(ZMetaType* type, const std::string& text);

} // namespace orv::tool
