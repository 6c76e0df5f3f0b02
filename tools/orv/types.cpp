#include "tools/orv/types.h"

#include "core/ZCoreLib.h"
#include "module/ZPackage.h"
#include "object/ZEnum.h"
#include "object/ZEnumType.h"
#include "object/ZFixedMethod.h"
#include "object/ZMetaType.h"
#include "object/ZMethodPtr.h"
#include "object/ZProperty.h"
#include "object/ZPropertyPtr.h"
#include "object/methodWords.h"
#include "object/propertyWords.h"
#include "toolkit/epoch.h"
#include "tools/orv/command.h"
#include "tools/orv/json.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace orv::tool {

namespace {

std::string text(const ZSelector& name) { return name.isEmpty() ? "" : name.string(); }

constexpr const char* kindNames[] = {"unknown", "void",      "bool",   "char",    "byte",    "short",     "word",
                                     "int",     "uint",      "large",  "ularge",  "enum",    "float",     "double",
                                     "real",    "selector",  "string", "pointer", "typedef", "structure", "composite",
                                     "class",   "interface", "atomic", "dynamic", "object"};

struct FlagName {
    uint flag;
    const char* name;
};
constexpr FlagName flagNames[] = {
    {ZMetaType::Final, "final"},
    {ZMetaType::Public, "public"},
    {ZMetaType::Polymorphic, "polymorphic"},
    {ZMetaType::Lockable, "lockable"},
    {ZMetaType::Wrapper, "wrapper"},
    {ZMetaType::Container, "container"},
    {ZMetaType::Created, "created"},
    {ZMetaType::RefStore, "refstore"},
    {ZMetaType::Traverse, "traverse"},
    {ZMetaType::Storable, "storable"},
    {ZMetaType::Mutex, "mutex"},
    {ZMetaType::Variable, "variable"},
    {ZMetaType::StorageBase, "storagebase"},
    {ZMetaType::Retaining, "retaining"},
    {ZMetaType::PointerKey, "pointerkey"},
    {ZMetaType::PrimaryBase, "primarybase"},
};

struct EnumText {
    std::string name;
    bool bitFlags = false;
    std::vector<std::pair<std::string, int>> items;
};
struct PropertyText {
    std::string type, name, item, index, words;
    int version = -1, sandBox = -1;
};
struct MethodText {
    std::string signature, qualifier, words;
    int sandBox = -1;
};
struct GroupText {
    std::string name;
    std::vector<std::pair<std::string, std::string>> pairs;
};
/// A type as a person reads it.
struct TypeText {
    std::string name, package, kind, options;
    unsigned size = 0, alignment = 0;
    int label = 0;
    std::vector<std::string> bases, flags, types;
    std::vector<EnumText> enums;
    std::vector<PropertyText> properties;
    std::vector<MethodText> methods;
    std::vector<std::string> fixed; ///< by index; empty where none has it
    std::vector<GroupText> groups;
};

uint cleared(const PropertyWord&) { return 0; }
uint cleared(const MethodWord& word) { return word.cleared; }
/// The words of an option language that say these flags, and those that are options.
template <class Words> std::string words(const Words& known, uint flags, const ZSelector& options) {
    std::string out;
    uint told = 0;
    for (const auto& word : known) {
        if ((flags & word.flags) != word.flags || !(word.flags & ~told) || (flags & cleared(word))) continue;
        told |= word.flags;
        out += (out.empty() ? "" : " ") + std::string(word.word);
    }
    for (const ZSelector& option : options.extract(ZSelector::Names)) out += (out.empty() ? "" : " ") + text(option);
    return out;
}

void addEnums(TypeText& made, const ZMetaType& type) {
    for (const auto& nested : type.getTypes()) {
        const ZMetaType* inner = nested.value();
        if (inner->kind() != ZMetaType::Enum) {
            made.types.push_back(text(inner->getName()));
            continue;
        }
        const ZEnum& names = static_cast<const ZEnumType*>(inner)->data();
        EnumText row{text(inner->getName()), names.isBitFlags(), {}};
        for (const ZEnumItem& item : names.items()) row.items.emplace_back(text(item.name), item.value);
        made.enums.push_back(std::move(row));
    }
}

void addMethods(TypeText& made, const ZMetaType& type, bool unsafe) {
    for (const ZMethodPtr& entry : type.getMethodTypes())
        if (!unsafe || entry->hasOption("unsafe"))
            made.methods.push_back({text(entry->getSelector()), text(entry->getQualifier()),
                                    words(methodWords, entry->getFlags(), entry->getOptions()),
                                    entry->getSandBoxLevel()});
    if (unsafe) return;
    for (const ZFixedMethod& row : type.getFixedMethods()) {
        std::string qualifier = text(row.getQualifier());
        made.fixed.push_back(text(row.getSignature()) + (qualifier.empty() ? "" : " ") + qualifier);
    }
}

void addGroups(TypeText& made, const ZMetaType& type) {
    ZArrayT<ZSelector> names;
    type.selectorGroupNames(names);
    for (const ZSelector& name : std::as_const(names)) {
        const ZSelectorMap group = type.selectorGroup(name);
        GroupText row{text(name), {}};
        for (int i = 0; i < int(group.count()); ++i) row.pairs.emplace_back(text(group.key(i)), text(group.get(i)));
        made.groups.push_back(std::move(row));
    }
}

TypeText describe(ZMetaType& type, const TypeOptions& options) {
    toolkit::EpochGuard guard;
    TypeText made;
    made.name = text(type.getName());
    if (ZPackage* package = type.package()) made.package = text(package->selector());
    made.kind = kindNames[type.kind()];
    made.options = text(type.getExtraFlags());
    made.size = type.getSize();
    made.alignment = type.getAlignment();
    made.label = type.indexLabel();
    for (const ZMetaType* base : type.getBaseTypes()) made.bases.push_back(text(base->getName()));
    for (const FlagName& flag : flagNames)
        if (type.getFlags() & flag.flag) made.flags.push_back(flag.name);
    addEnums(made, type);
    addGroups(made, type);
    if (options.properties)
        for (const ZPropertyPtr& entry : type.getPropertyTypes()) {
            const ZProperty& property = *entry.property();
            const ZMetaType *value = property.value().type(), *item = property.getItemType(),
                            *index = property.getIndex();
            made.properties.push_back({value ? text(value->getName()) : "", text(property.name()),
                                       item && item != value ? text(item->getName()) : "",
                                       index ? text(index->getName()) : "",
                                       words(propertyWords, property.flags(), property.options()), property.version(),
                                       property.sandBoxLevel()});
        }
    if (options.methods) addMethods(made, type, options.unsafe);
    return made;
}

std::string joined(const std::vector<std::string>& parts, const char* between) {
    std::string out;
    for (const std::string& part : parts) out += (out.empty() ? "" : between) + part;
    return out;
}

void printRow(const TypeText& type, std::FILE* out) {
    std::string bases = joined(type.bases, ", ");
    std::fprintf(out, "%-24s %-10s %5u  %s%s%s\n", type.name.c_str(), type.kind.c_str(), type.size,
                 type.package.c_str(), bases.empty() ? "" : " : ", bases.c_str());
}

void printWhole(const TypeText& type, const TypeOptions& options, std::FILE* out) {
    std::fprintf(out, "%s%s%s\n", type.name.c_str(), type.bases.empty() ? "" : " : ", joined(type.bases, ", ").c_str());
    std::fprintf(out, "  %s of %s, %u bytes, aligned to %u\n", type.kind.c_str(),
                 type.package.empty() ? "no package" : type.package.c_str(), type.size, type.alignment);
    if (!type.flags.empty()) std::fprintf(out, "  flags    %s\n", joined(type.flags, " ").c_str());
    if (!type.options.empty()) std::fprintf(out, "  options  %s\n", type.options.c_str());
    if (!type.types.empty()) std::fprintf(out, "  types    %s\n", joined(type.types, ", ").c_str());
    for (const EnumText& row : type.enums) {
        std::fprintf(out, "\n  enum %s%s\n", row.name.c_str(), row.bitFlags ? " (bit flags)" : "");
        for (const auto& [name, value] : row.items) std::fprintf(out, "    %-24s %d\n", name.c_str(), value);
    }
    for (const GroupText& row : type.groups) {
        std::fprintf(out, "\n  selectors %s\n", row.name.c_str());
        for (const auto& [name, value] : row.pairs) std::fprintf(out, "    %-24s %s\n", name.c_str(), value.c_str());
    }
    if (options.properties) {
        std::fprintf(out, "\n  %zu properties\n", type.properties.size());
        for (const PropertyText& row : type.properties) {
            std::string kind = row.index.empty() ? row.item : row.index + " -> " + row.item;
            std::fprintf(out, "    %s %s%s", row.type.c_str(), row.name.c_str(),
                         kind.empty() ? "" : (" [" + kind + "]").c_str());
            if (!row.words.empty()) std::fprintf(out, "  \"%s\"", row.words.c_str());
            if (row.version >= 0) std::fprintf(out, "  version %d", row.version);
            if (row.sandBox >= 0) std::fprintf(out, "  sandbox %d", row.sandBox);
            std::fputc('\n', out);
        }
    }
    if (options.methods) {
        std::fprintf(out, "\n  %zu methods\n", type.methods.size());
        for (const MethodText& row : type.methods) {
            std::fprintf(out, "    %s%s%s", row.signature.c_str(), row.qualifier.empty() ? "" : " ",
                         row.qualifier.c_str());
            if (!row.words.empty()) std::fprintf(out, "  \"%s\"", row.words.c_str());
            if (row.sandBox >= 0) std::fprintf(out, "  sandbox %d", row.sandBox);
            std::fputc('\n', out);
        }
        if (!type.fixed.empty()) std::fputs("\n  fixed methods\n", out);
        for (size_t i = 0; i < type.fixed.size(); ++i)
            if (!type.fixed[i].empty()) std::fprintf(out, "    %3zu %s\n", i, type.fixed[i].c_str());
    }
}

std::string jsonList(const std::vector<std::string>& parts) {
    std::string out = "[";
    for (const std::string& part : parts) out += (out.size() > 1 ? ", " : "") + jsonText(part);
    return out + "]";
}

void printJson(const TypeText& type, const TypeOptions& options, std::FILE* out) {
    std::fprintf(out, "{\"name\": %s, \"package\": %s, \"kind\": %s, \"size\": %u, \"alignment\": %u, \"label\": %d",
                 jsonText(type.name).c_str(), jsonText(type.package).c_str(), jsonText(type.kind).c_str(), type.size,
                 type.alignment, type.label);
    std::fprintf(out, ", \"bases\": %s, \"flags\": %s, \"options\": %s, \"types\": %s, \"enums\": [",
                 jsonList(type.bases).c_str(), jsonList(type.flags).c_str(), jsonText(type.options).c_str(),
                 jsonList(type.types).c_str());
    const char* between = "";
    for (const EnumText& row : type.enums) {
        std::fprintf(out, "%s{\"name\": %s, \"bitFlags\": %s, \"items\": {", between, jsonText(row.name).c_str(),
                     row.bitFlags ? "true" : "false");
        const char* comma = "";
        for (const auto& [name, value] : row.items) {
            std::fprintf(out, "%s%s: %d", comma, jsonText(name).c_str(), value);
            comma = ", ";
        }
        std::fputs("}}", out);
        between = ", ";
    }
    std::fputs("], \"groups\": {", out);
    between = "";
    for (const GroupText& row : type.groups) {
        std::fprintf(out, "%s%s: {", between, jsonText(row.name).c_str());
        const char* comma = "";
        for (const auto& [name, value] : row.pairs) {
            std::fprintf(out, "%s%s: %s", comma, jsonText(name).c_str(), jsonText(value).c_str());
            comma = ", ";
        }
        std::fputc('}', out);
        between = ", ";
    }
    std::fputc('}', out);
    if (options.properties) {
        std::fputs(", \"properties\": [", out);
        between = "";
        for (const PropertyText& row : type.properties) {
            std::fprintf(out,
                         "%s{\"name\": %s, \"type\": %s, \"item\": %s, \"index\": %s, \"words\": %s, \"version\": %d, "
                         "\"sandbox\": %d}",
                         between, jsonText(row.name).c_str(), jsonText(row.type).c_str(), jsonText(row.item).c_str(),
                         jsonText(row.index).c_str(), jsonText(row.words).c_str(), row.version, row.sandBox);
            between = ", ";
        }
        std::fputc(']', out);
    }
    if (options.methods) {
        std::fputs(", \"methods\": [", out);
        between = "";
        for (const MethodText& row : type.methods) {
            std::fprintf(out, "%s{\"signature\": %s, \"qualifier\": %s, \"words\": %s, \"sandbox\": %d}", between,
                         jsonText(row.signature).c_str(), jsonText(row.qualifier).c_str(), jsonText(row.words).c_str(),
                         row.sandBox);
            between = ", ";
        }
        std::fprintf(out, "], \"fixed\": %s", jsonList(type.fixed).c_str());
    }
    std::fputc('}', out);
}

/// All declared types, by name.
std::vector<ZMetaType*> declaredTypes() {
    std::vector<ZMetaType*> types;
    ZPackage* root = ZPackage::root();
    if (!root) return types;
    for (ZMetaType* type : root->getUsedTypes()) types.push_back(type);
    for (const auto& entry : root->getTypes()) types.push_back(entry.value());
    auto name = [](const ZMetaType* type) { return std::string_view(type->getName().string()); };
    std::sort(types.begin(), types.end(), [&](const ZMetaType* a, const ZMetaType* b) { return name(a) < name(b); });
    types.erase(std::unique(types.begin(), types.end()), types.end());
    return types;
}

/// How many characters have to be put in, left out or replaced to make one name the other; case doesn't count.
size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            size_t above = row[j];
            bool same = std::tolower(byte(a[i - 1])) == std::tolower(byte(b[j - 1]));
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
            diagonal = above;
        }
    }
    return row.back();
}

int unknownType(const std::string& name, const std::vector<ZMetaType*>& types, std::FILE* log) {
    constexpr size_t longestName = 4096;
    std::vector<std::pair<size_t, std::string>> close;
    for (const ZMetaType* type : types) {
        std::string known = text(type->getName());
        if (name.size() > longestName) break;
        size_t apart = editDistance(name, known);
        if (apart <= 2 + name.size() / 4) close.emplace_back(apart, std::move(known));
    }
    std::sort(close.begin(), close.end());
    std::string message = "no type \"" + name + "\"";
    for (size_t i = 0; i < close.size() && i < 3; ++i) message += (i ? ", " : "; did you mean ") + close[i].second;
    complain("types", close.empty() ? message : message + "?", log);
    return Failed;
}

} // namespace

int printTypes(const TypeOptions& options, std::FILE* out, std::FILE* log) {
    ZCoreLib library("orv", false, false, true);
    std::vector<ZMetaType*> types = declaredTypes();
    if (types.empty()) {
        complain("types", "the library can't be started", log);
        return Failed;
    }
    if (!options.name.empty()) {
        ZSelector name = ZSelector::find(options.name.c_str(), int(std::min<size_t>(options.name.size(), INT32_MAX)));
        ZMetaType* type = name.isEmpty() ? nullptr : ZMetaType::findExisting(name);
        if (!type) return unknownType(options.name, types, log);
        TypeText row = describe(*type, options);
        if (options.json) {
            printJson(row, options, out);
            std::fputc('\n', out);
        } else {
            printWhole(row, options, out);
        }
        return Done;
    }
    const char* between = "[";
    for (ZMetaType* type : types) {
        TypeText row = describe(*type, options);
        if (options.unsafe && row.methods.empty()) continue;
        if (options.json) {
            std::fputs(between, out);
            printJson(row, options, out);
            between = ",\n ";
        } else if (options.methods || options.properties) {
            printWhole(row, options, out);
            std::fputc('\n', out);
        } else {
            printRow(row, out);
        }
    }
    if (options.json) std::fputs(*between == '[' ? "[]\n" : "]\n", out);
    return Done;
}

void addTypes(CLI::App& app, int& exit) {
    auto options = std::make_shared<TypeOptions>();
    CLI::App* command = app.add_subcommand(
        "types", "Lists the registered types (name, kind, bytes, package, bases), or tells all about one");
    command->add_option("NAME", options->name, "the type to tell about; all types without it");
    CLI::Option* methods =
        command->add_flag("--methods", options->methods, "also the signature of each method, and methods by index");
    command->add_flag("--unsafe", options->unsafe, "of the methods only those that no sandbox calls")->needs(methods);
    command->add_flag("--properties", options->properties, "also each property with its words");
    command->add_flag("--json", options->json, "print JSON");
    command->callback([options, &exit] {
        exit = printTypes(*options, stdout, stderr);
        if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
            complain("types", "the answer can't be written", stderr);
            exit = Failed;
        }
    });
}

} // namespace orv::tool
