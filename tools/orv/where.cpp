#include "tools/orv/where.h"

#include "object/ZEnumType.h"
#include "object/ZMetaType.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "value/ZVArray.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace orv::tool {

namespace {

bool isNameByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           c == '.';
}
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

constexpr const char* words[] = {"is",      "equals",         "not",      "notequal", "less",   "lessorequal",
                                 "greater", "greaterorequal", "contains", "has",      "nothas", "misses",
                                 "in"};
constexpr const char* signs[] = {"=", "==", "!=", "<>", "<", "<=", ">", ">="};

} // namespace

ZVariant readLiteral(ZMetaType* type, const std::string& text) {
    ZMetaType* plain = type->getDataType();
    if (ZVariant(plain).numericType()) {
        char* end = nullptr;
        errno = 0;
        const bool whole = plain->kind() < ZMetaType::Float;
        const long long number = whole ? std::strtoll(text.c_str(), &end, 10) : 0;
        const double real = whole ? double(number) : std::strtod(text.c_str(), &end);
        if (text.empty() || isBlank(text[0]) || *end || errno == ERANGE || !std::isfinite(real)) return {};
        ZVariant value = whole ? ZVariant(large(number)) : ZVariant(real);
        // A number that the type can't hold would be another one.
        return value.convert(plain) && (!whole || value.toLarge() == number) ? value : ZVariant();
    }
    ZVariant value(plain);
    const ZString read(text.data(), int(text.size()));
    if (plain == ztype<ZString>()) return ZVariant(read);
    if (plain == ztype<ZSelector>()) return ZVariant(ZSelector(read));
    if (value.isNull() || !value.getPtr() || !plain->fromString(value.getPtr(), read)) return {};
    // A number that is no item stands for nothing.
    if (const ZEnumType* items = plain->enumType(); items && !items->holds(value.toLarge())) return {};
    return value;
}

/// Reads a condition; the first fault ends it.
class WhereReader {
public:
    WhereReader(std::string_view text, const Where::TypeOf& typeOf) : text(text), typeOf(typeOf) {}

    std::unique_ptr<Where> read(TextFault& out) {
        made = std::make_unique<Where>();
        if (text.size() > Where::longest) failAt(Where::longest, "the condition is too long");
        made->root = condition(0);
        skipBlanks();
        if (good() && at < text.size()) failAt(at, "expected \"and\", \"or\" or the end, found " + shown());
        if (good()) return std::move(made);
        out = *fault;
        return nullptr;
    }

private:
    bool good() const { return !fault; }
    void failAt(size_t place, std::string what) {
        if (fault) return;
        auto before = text.substr(0, std::min(place, text.size()));
        auto characters = std::count_if(before.begin(), before.end(), [](char c) { return (c & 0xC0) != 0x80; });
        fault = {size_t(characters) + 1, std::move(what)};
    }
    void skipBlanks() {
        while (at < text.size() && isBlank(text[at])) ++at;
    }
    /// What stands next, for a message.
    std::string shown() {
        skipBlanks();
        if (at == text.size()) return "the end";
        size_t end = at + 1;
        if (isNameByte(text[at])) {
            while (end < text.size() && isNameByte(text[end])) ++end;
        } else {
            while (end < text.size() && (text[end] & 0xC0) == 0x80) ++end;
        }
        return "\"" + std::string(text.substr(at, std::min<size_t>(end - at, 40))) + "\"";
    }
    std::string_view peekName() {
        skipBlanks();
        size_t end = at;
        while (end < text.size() && isNameByte(text[end])) ++end;
        return text.substr(at, end - at);
    }
    bool take(char sign) {
        skipBlanks();
        if (at == text.size() || text[at] != sign) return false;
        ++at;
        return true;
    }
    bool takeWord(std::string_view word) {
        if (peekName() != word) return false;
        at += word.size();
        return true;
    }
    int add(Where::Node node) {
        made->nodes.push_back(std::move(node));
        return int(made->nodes.size()) - 1;
    }

    template <class Part> int chain(Where::Node::Kind kind, std::string_view word, Part part) {
        std::vector<int> parts{part()};
        while (good() && takeWord(word)) parts.push_back(part());
        if (parts.size() == 1) return parts[0];
        Where::Node node;
        node.kind = kind;
        node.parts = std::move(parts);
        return add(std::move(node));
    }
    int condition(int depth) {
        return chain(Where::Node::Any, "or",
                     [&] { return chain(Where::Node::All, "and", [&] { return one(depth + 1); }); });
    }
    int one(int depth) {
        if (!good()) return -1;
        if (depth > Where::deepest) return failAt(at, "nested too deep"), -1;
        if (takeWord("not")) {
            Where::Node node;
            node.kind = Where::Node::Not;
            node.parts = {one(depth + 1)};
            return add(std::move(node));
        }
        if (take('(')) {
            const int inner = condition(depth);
            if (good() && !take(')')) failAt(at, "expected \")\", found " + shown());
            return inner;
        }
        return comparison();
    }
    int comparison() {
        const std::string name(peekName());
        const size_t nameAt = at;
        if (name.empty() || name == "and" || name == "or")
            return failAt(at, "expected a name, \"not\" or \"(\", found " + shown()), -1;
        at += name.size();
        ZMetaType* type = typeOf(name);
        if (!type) return failAt(nameAt, "there is no field \"" + name + "\""), -1;

        const std::string operation = takeOperation();
        if (!good()) return -1;
        Where::Node node;
        node.name = ZSelector(name.c_str(), int(name.size()));
        node.operation = ZSelector(operation == "=" ? "==" : operation.c_str());
        if (operation == "in") {
            node.value = list(type);
        } else {
            node.value = literal(type, name);
        }
        return add(std::move(node));
    }
    std::string takeOperation() {
        skipBlanks();
        const size_t from = at;
        size_t end = at;
        while (end < text.size() && std::string_view("=<>!").find(text[end]) != std::string_view::npos) ++end;
        const bool isSign = end > at;
        std::string found(isSign ? text.substr(at, end - at) : peekName());
        const bool known = isSign ? std::find(std::begin(signs), std::end(signs), found) != std::end(signs)
                                  : std::find(std::begin(words), std::end(words), found) != std::end(words);
        if (!known) failAt(from, "expected an operation such as \"=\", \"<\" or \"contains\", found " + shown());
        at += found.size();
        return found;
    }
    ZVariant list(ZMetaType* type) {
        ZVArray values(type);
        const bool bracket = take('(');
        do {
            const ZVariant value = literal(type, {});
            if (good() && !values.append(value)) failAt(at, "there is no memory for the list");
        } while (good() && bracket && take(','));
        if (good() && bracket && !take(')')) failAt(at, "expected \",\" or \")\", found " + shown());
        return ZVariant(ztype<ZVArray>(), &values);
    }
    ZVariant literal(ZMetaType* type, const std::string& name) {
        skipBlanks();
        const size_t from = at;
        std::string written;
        if (!takeText(written)) return {};
        ZVariant value = readLiteral(type, written);
        if (value.isNull())
            failAt(from, "\"" + written.substr(0, 40) + "\" is no " + type->getName().string() +
                             (name.empty() ? "" : ", as which " + name + " is kept"));
        return value;
    }
    bool takeText(std::string& out) {
        const char quote = at < text.size() && (text[at] == '"' || text[at] == '\'') ? text[at] : 0;
        const size_t from = at;
        if (!quote) {
            while (at < text.size() && !isBlank(text[at]) && text[at] != '(' && text[at] != ')' && text[at] != ',')
                ++at;
            out = text.substr(from, at - from);
            if (out.empty()) failAt(from, "expected a value, found " + shown());
            return good();
        }
        for (++at; at < text.size() && text[at] != quote; ++at) {
            if (quote == '"' && text[at] == '\\' && at + 1 < text.size() &&
                (text[at + 1] == '"' || text[at + 1] == '\\'))
                ++at;
            out += text[at];
        }
        if (at == text.size()) return failAt(from, "the text has no closing quote"), false;
        ++at;
        return true;
    }

    std::string_view text;
    const Where::TypeOf& typeOf;
    std::unique_ptr<Where> made;
    std::optional<TextFault> fault;
    size_t at = 0;
};

std::unique_ptr<Where> Where::read(std::string_view text, const TypeOf& typeOf, TextFault& fault) {
    return WhereReader(text, typeOf).read(fault);
}

bool Where::matches(int index, const ZType& object) const {
    const Node& node = nodes[size_t(index)];
    auto part = [&](int inner) { return matches(inner, object); };
    switch (node.kind) {
    case Node::All:
        return std::all_of(node.parts.begin(), node.parts.end(), part);
    case Node::Any:
        return std::any_of(node.parts.begin(), node.parts.end(), part);
    case Node::Not:
        return !part(node.parts[0]);
    case Node::Compare:
        break;
    }
    const ZVariant value = object.getProperty(node.name);
    return !value.isNull() && value.checkOperation(node.operation, node.value);
}

} // namespace orv::tool
