#include "object/ZMetaTypeData.h"

// How well values of one type serve where another one is asked for. Smaller is better, -1 is no match and never part of
// a sum. What is had by way of bases stays at or below `farthest`; what has to be converted costs more than that.

namespace {

constexpr int noMatch = -1;
constexpr int farthest = 1 << 24;
constexpr int converted = 1 << 25;
constexpr int asVariant = 1 << 26;
constexpr int perSurplus = 64;

int saturated(large distance) { return distance > farthest ? farthest : int(distance); }

/// Adds to a distance without leaving its class: what is converted stays so.
int plus(int distance, large more) {
    if (distance < 0) return noMatch;
    if (distance <= farthest) return saturated(distance + more);
    return distance + saturated(more);
}

bool isNumber(const ZMetaType* type) { return type->kind() >= ZMetaType::Bool && type->kind() <= ZMetaType::Real; }
bool isReal(const ZMetaType* type) { return type->kind() >= ZMetaType::Float; }

int betweenNumbers(const ZMetaType* from, const ZMetaType* to) {
    return from->kind() == to->kind() ? 0 : isReal(from) == isReal(to) ? 2 : 3;
}

/// From one type up to another by way of bases and aliases: a direct one costs 5, each step further `d * 4 + 8`. A type
/// that is derived from a number serves for other numbers too.
int climb(const ZMetaType* from, const ZMetaType* to, bool byValue) {
    uint depth = 0;
    large distance = 5;
    const bool wantsNumber = byValue && isNumber(to);
    orv::eachAncestor(from, [&](const orv::Ancestor& at) {
        if (at.type == to) {
            depth = at.depth;
            distance = 5;
            return false;
        }
        if (!depth && wantsNumber && isNumber(at.type)) {
            depth = at.depth;
            distance = betweenNumbers(at.type, to) * 4 + 8;
        }
        return true;
    });
    if (depth == 0) return noMatch;
    while (--depth && distance < farthest) distance = distance * 4 + 8;
    return saturated(distance);
}

/// Whether the parameter's words allow all of the argument's: what is const doesn't become writable.
bool wordsContained(const ZSelector& argument, const ZSelector& parameter) {
    return argument == parameter || (!argument.isEmpty() && parameter.contains(argument));
}

} // namespace

int ZMetaType::distance(const ZMetaType* other, bool implicit) const {
    if (!other) return typeKind == Void ? 0 : primitive() ? 2 : noMatch;
    const ZMetaType *from = relationType(), *to = other->relationType();
    int found = noMatch;
    if (own->ptrCount == other->own->ptrCount) {
        const bool contained = wordsContained(own->qualifier, other->own->qualifier);
        if (contained || own->qualifier.isEmpty()) {
            const bool byValue = own->ptrCount == 0;
            if (from == to || from->rootType() == to->rootType())
                found = 0;
            else if (byValue && isNumber(from) && isNumber(to))
                found = betweenNumbers(from, to);
            else
                found = climb(from, to->rootType(), byValue);
            if (!contained) found = plus(found, 1);
        }
    }
    return found < 0 && implicit ? implicitDistance(other) : found;
}

int ZMetaType::implicitDistance(const ZMetaType* other) const {
    // What is pointed to can't be converted in place.
    if (!other || other->own->ptrCount) return noMatch;
    if (other->isVariant()) return asVariant;
    if (own->ptrCount) return noMatch;
    // What is near to the argument of a converting constructor converts too, as in C++.
    int nearest = noMatch;
    for (const ZMetaType* source : other->getImplicitFrom()) {
        const int distance = relationType()->distance(source, false);
        if (distance >= 0 && (nearest < 0 || distance < nearest)) nearest = distance;
    }
    return nearest < 0 ? noMatch : converted + nearest;
}

int ZMetaType::distance(const ZArrayT<ZMetaType*>& arguments, const ZArrayT<ZMetaType*>& parameters, bool skipResult,
                        bool exactCount, bool implicit) {
    const uint given = arguments.count(), wanted = parameters.count();
    if (given > wanted && exactCount) return noMatch;
    const uint both = given < wanted ? given : wanted;
    int worst = 0;
    for (uint i = skipResult ? 1 : 0; i < both; ++i) {
        const ZMetaType *argument = arguments[i], *parameter = parameters[i];
        // An argument without a value has no type of its own to ask.
        int single = argument    ? argument->distance(parameter, implicit)
                     : parameter ? parameter->distance(nullptr, implicit)
                                 : 0;
        if (!argument && single < 0 && implicit && parameter->isVariant()) single = asVariant;
        if (single < 0) return noMatch;
        if (single > worst) worst = single;
    }
    return plus(worst, large(given > wanted ? given - wanted : wanted - given) * perSurplus);
}
