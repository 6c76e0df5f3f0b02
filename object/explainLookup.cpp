#include "core/debug.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/methodArguments.h"
#include "object/methodLookup.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

#include <cstring>

// What a failed lookup or call has to say.

namespace orv {
namespace {

constexpr int mostCandidates = 64;
constexpr int depthLimit = 512;

const char* textOf(const ZSelector& selector) { return selector.isEmpty() ? "" : selector.string(); }

/// Whether the value is a text, which may be the name of something.
bool isWord(const ZVariant& value) {
    return value.typeType() == ZMetaType::String || value.typeType() == ZMetaType::Selector;
}

struct Explanation {
    ZString text;
    const ZSelector& selector;
    const ZSelector& qualifier;
    const ZVariant* args;
    int count; ///< -1 where no arguments are known
    int candidates = 0;

    ORV_PRINTF(2, 3) void add(const char* format, ...) {
        ZString piece;
        var_arg arguments;
        va_start(arguments.list, format);
        piece.aprintf(format, &arguments);
        va_end(arguments.list);
        text.append(piece);
    }
    /// With the text in a name's place: it lives as long as the name.
    void question(const ZMetaType* type) {
        const ZSelector owner = type ? type->getName() : ZSelector();
        add("no method \"%s%s%s\" of %s fits", textOf(selector), qualifier.isEmpty() ? "" : " ", textOf(qualifier),
            type ? textOf(owner) : "no type");
        if (count < 0) return;
        add("; arguments (");
        for (int i = 0; i < count; ++i) add("%s%s", i ? ", " : "", nameOf(args[i].type()));
        add(")");
    }
    static const char* nameOf(const ZMetaType* type) {
        const ZSelector name = type ? type->getName() : ZSelector();
        return name.isEmpty() ? "null" : name.string();
    }
    /// Whether a call could pass the value, as far as can be told without converting it.
    static bool fits(const MethodParam& param, const ZVariant& given) {
        if (typeDistance(given.type(), param.type, true) < 0) return false;
        if (!given.type()) return true;
        if (given.type() == param.data) return isPassable(param.data, given.getPtr());
        if (param.passing != Passing::Value || !isNumber(param.kind)) return true;
        // An enumeration reads the names of its items.
        if (param.kind == ZMetaType::Enum && isWord(given)) return true;
        char room[8];
        return numberBytes(param, given, room);
    }
    /// Why not this one.
    void candidate(const ZMetaType* type, const ZMethod* method) {
        if (++candidates > mostCandidates) return;
        const ZSelector owner = type->getName();
        add("\n  candidate \"%s%s%s\" of %s", textOf(method->getSelector()),
            method->getQualifier().isEmpty() ? "" : " ", textOf(method->getQualifier()), textOf(owner));
        if (!method->qualify(qualifier)) {
            add(": expected qualifier \"%s\", actual \"%s\"", textOf(qualifier), textOf(method->getQualifier()));
            return;
        }
        if (!method->hasFunc() && !method->hasStacked()) add(": has no entry");
        const MethodParams* params = count < 0 || method->collectArgs() ? nullptr : method->params(type);
        for (int i = 1; params && i < params->count; ++i) {
            const ZSelector expected = method->paramType(i);
            const int open = method->openArgument();
            if (open >= 0 && i > open) break;
            if (!(*params)[i].type)
                add(": parameter %d has the unknown type \"%s\"", i, textOf(expected));
            else if (i <= count && !fits((*params)[i], args[i - 1])) {
                add(": argument %d, ", i);
                text.append(explainArgument((*params)[i], expected, args[i - 1]));
            }
        }
        if (params && method->openArgument() < 0 && params->count - 1 != count)
            add(": expected %d arguments, actual %d", params->count - 1, count);
    }
    void walk(const ZMetaType* type, int depth) {
        if (!type || depth > depthLimit) return;
        const ZSelector name = selector.type() == ZSelector::Method ? selector.methodName() : selector;
        if (const MethodTable* table = methodTable(type))
            for (const MethodTree* tree : {&table->user, &table->declared})
                for (const ZMethodPtr* node = tree->find(name); node; node = tree->findNext(node))
                    candidate(type, node->get());
        walk(type->getTemplateType(), depth + 1);
        for (int i = 0, all = type->baseCount(); i < all; ++i) walk(type->baseType(i), depth + 1);
        if (type->mainOrSelf() != type) walk(type->mainOrSelf(), depth + 1);
    }
};

ZString explain(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier, const ZVariant* args,
                int count) {
    toolkit::EpochGuard guard;
    Explanation told{{}, selector, qualifier, args, count};
    told.question(type);
    told.walk(type, 0);
    if (told.candidates == 0) told.add("\n  no candidate has that name");
    if (told.candidates > mostCandidates) told.add("\n  and %d more", told.candidates - mostCandidates);
    return told.text;
}

} // namespace

ZString explainArgument(const MethodParam& param, const ZSelector& expected, const ZVariant& given) {
    constexpr int longestShown = 40;
    const int kind = given.typeType();
    const bool shows = isNumber(ZMetaType::Type(kind)) || isWord(given);
    const ZSelector name = given.type() ? given.type()->getName() : ZSelector();
    ZString text;
    text.printf("expected \"%s\", actual ", textOf(expected));
    if (name.isEmpty()) {
        text.append(given.isNull() ? "null" : "a block");
    } else {
        ZString piece;
        piece.printf("\"%s\"%s", textOf(name), shows ? " " : "");
        text.append(piece);
    }
    if (shows) {
        ZString value = given.toString();
        if (value.length() > longestShown) {
            value.setLength(longestShown);
            value.append("...");
        }
        text.append(value);
    }
    if (param.kind == ZMetaType::Enum && param.data && isNumber(ZMetaType::Type(kind)))
        text.append(", none of its values");
    return text;
}

ZString explainLookup(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier) {
    return explain(type, selector, qualifier, nullptr, -1);
}
ZString explainLookup(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier,
                      const ZVariant* args, int count) {
    return explain(type, selector, qualifier, args, count);
}

void logFailedCall(const ZMetaType* type, const ZSelector& selector, const ZVariant* args, int count) {
    if (!zdebugasked()) return;
    char* text = explain(type, selector, {}, args, count).astr();
    // A line of the log is cut where it is long, so each candidate has its own.
    for (char* line = text; line;) {
        char* end = std::strchr(line, '\n');
        if (end) *end = 0;
        zdebug("%s", line);
        line = end ? end + 1 : nullptr;
    }
    zfree(text);
}

} // namespace orv
