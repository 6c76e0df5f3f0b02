#include "object/methodLookup.h"

#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/names.h"

namespace orv {
namespace {

constexpr int depthLimit = 512;

bool isFunction(const ZSelector& selector) { return selector.type() == ZSelector::Method; }

/// As the base knows it: constructors and destructors bear the name of their type.
ZSelector nameInBase(const ZMetaType* type, const ZMetaType* base, const ZSelector& selector) {
    const bool function = isFunction(selector);
    const ZSelector name = function ? selector.methodName() : selector;
    ZSelector other;
    if (name == type->constructorName().methodName())
        other = base->constructorName().methodName();
    else if (name == type->destructorName().methodName())
        other = base->destructorName().methodName();
    else
        return selector;
    if (!function) return other;
    ZSelector renamed = selector;
    return renamed.setMethodName(other) ? renamed : ZSelector();
}

/// Walks what a type inherits from. `ask(type, selector, offset)` answers whether to go on.
template <class F> void walkInherited(const ZMetaType* type, const ZSelector& selector, F ask) {
    if (const ZMetaType* made = type->getTemplateType())
        if (!ask(made, selector, 0)) return;
    for (int i = 0, all = type->baseCount(); i < all; ++i)
        if (const ZMetaType* base = type->baseType(i))
            if (const ZSelector name = nameInBase(type, base, selector); !name.isEmpty())
                if (!ask(base, name, type->baseOffset(i))) return;
    if (const ZMetaType* main = type->mainOrSelf(); main != type) ask(main, selector, 0);
}

ZSelector effective(const ZMetaType* type, const ZSelector& qualifier) {
    const ZSelector own = type->getQualifier();
    return own.isEmpty() ? qualifier : qualifier.isEmpty() ? own : own.add(qualifier);
}

/// `whole` becomes false where a table couldn't be asked, because it is just being built or there is no memory for it:
/// such an answer isn't kept.
MethodHit find(const ZMetaType* type, const ZSelector& selector, const ZSelector& asked, bool base, int depth,
               bool& whole) {
    if (depth > depthLimit) return {};
    const ZSelector qualifier = effective(type, asked);
    const MethodTable* table = methodTable(type);
    whole &= table != nullptr;
    MethodHit hit;
    if (ZMethod* own = pickMethod(table, selector, qualifier, base)) hit = {own, 0, 0, const_cast<ZMetaType*>(type)};
    // What was made up for a template instance gives way to what the template itself says.
    if (hit.method && !hit.method->synthetic()) return hit;
    MethodHit inherited;
    walkInherited(type, selector, [&](const ZMetaType* other, const ZSelector& name, int offset) {
        inherited = find(other, name, qualifier, base, depth + 1, whole);
        inherited.offset += offset;
        return !inherited.method;
    });
    return inherited.method ? inherited : hit;
}

MethodHit findOverload(const ZMetaType* type, const ZSelector& name, const ZMetaType* const* types, int count,
                       byte flags, const ZSelector& asked, bool base, int depth, bool& whole) {
    if (depth > depthLimit) return {};
    const ZSelector qualifier = effective(type, asked);
    const MethodTable* table = methodTable(type);
    whole &= table != nullptr;
    MethodHit best = pickOverload(type, table, name, types, count, flags, qualifier, base);
    if (best.distance == 0) return best;
    walkInherited(type, name, [&](const ZMetaType* other, const ZSelector& inherited, int offset) {
        MethodHit hit = findOverload(other, inherited, types, count, flags, qualifier, base, depth + 1, whole);
        if (hit.method && (!best.method || hit.distance < best.distance)) {
            best = hit;
            best.offset += offset;
        }
        return best.distance != 0;
    });
    return best;
}

/// A signature may end in its qualifier.
MethodHit findSplit(const ZMetaType* type, const ZSelector& name, const ZMetaType* const* types, int count, byte flags,
                    const ZSelector& qualifier, bool base, bool& whole) {
    if (isFunction(name))
        if (const ZSelector words = name.methodQualifier(); !words.isEmpty())
            return findOverload(type, name.method(), types, count, flags, qualifier.add(words), base, 0, whole);
    return findOverload(type, name, types, count, flags, qualifier, base, 0, whole);
}

template <class F> void eachNamed(const MethodTree& tree, const ZSelector& key, F visit) {
    for (const ZMethodPtr* node = tree.find(key); node; node = tree.findNext(node))
        if (!visit(node->get())) return;
}

} // namespace

int typeDistance(const ZMetaType* argument, const ZMetaType* parameter, bool implicit) {
    if (!parameter) return -1;
    if (argument == parameter) return 0;
    if (!argument) {
        const int found = parameter->distance(nullptr, implicit);
        if (found >= 0 || !implicit) return found;
        if (parameter->getPtrCount() > 0) return distanceImplicit;
        return parameter->isVariant() ? distanceVariant : -1;
    }
    const int found = argument->distance(parameter, implicit);
    if (found >= 0 || !implicit) return found;
    // What a call passes by its address, or as a text.
    const int had = argument->getPtrCount(), wanted = parameter->getPtrCount();
    if (had > 1 || wanted > 1 || had == wanted) return -1;
    const ZMetaType *from = argument->getDataType(), *to = parameter->getDataType();
    if (wanted && to->kind() == ZMetaType::Char && parameter->getQualifier().contains(zsel<"const">()))
        return from->kind() == ZMetaType::String || from->kind() == ZMetaType::Selector ? distanceImplicit : -1;
    return from->distance(to, false) >= 0 ? distanceImplicit : -1;
}
int countDistance(int distance, int off) {
    if (off <= 0) return distance;
    const int extra = off > distanceLimit / distancePerCount ? distanceLimit : off * distancePerCount;
    const int sum = distance + extra;
    return distance < distanceLimit && sum > distanceLimit ? distanceLimit : sum;
}
int matchArguments(const ZMethod* method, const MethodParams& params, const ZMetaType* const* types, int count,
                   byte flags) {
    const bool implicit = flags & LookImplicit;
    const int open = method->collectArgs() ? 1 : method->openArgument() < 0 ? -1 : method->openArgument() + 1;
    const int fixed = open < 0 ? params.count : open;
    int worst = 0;
    for (int i = flags & LookSkipResult ? 1 : 0; i < count; ++i) {
        if (i >= fixed && open < 0) break;
        const int single = i < fixed ? typeDistance(types[i], params[i].type, implicit) : distanceVariant;
        if (single < 0) return -1;
        if (single > worst) worst = single;
    }
    const int off = count < fixed ? fixed - count : open < 0 ? count - fixed : 0;
    return off && flags & LookExact ? -1 : countDistance(worst, off);
}

ZMethod* pickMethod(const MethodTable* table, const ZSelector& selector, const ZSelector& qualifier, bool base) {
    if (!table) return nullptr;
    const bool function = isFunction(selector);
    const ZSelector key = function ? selector.methodName() : selector;
    ZMethod *kept = nullptr, *exact = nullptr;
    auto visit = [&](ZMethod* method) {
        if ((function && !(method->getSelector() == selector)) || !method->qualify(qualifier)) return true;
        if (!kept) kept = method;
        if (method->getQualifier() == qualifier) exact = method;
        return !exact;
    };
    if (!base) eachNamed(table->user, key, visit);
    if (!kept) eachNamed(table->declared, key, visit);
    return exact ? exact : kept;
}

MethodHit pickOverload(const ZMetaType* type, const MethodTable* table, const ZSelector& name,
                       const ZMetaType* const* types, int count, byte flags, const ZSelector& qualifier, bool base) {
    MethodHit best;
    if (!table) return best;
    const bool function = isFunction(name);
    auto visit = [&](ZMethod* method) {
        if ((function && !(method->getSelector() == name)) || !method->qualify(qualifier)) return true;
        const MethodParams* params = method->params(type);
        int distance = params ? matchArguments(method, *params, types, count, flags) : -1;
        if (distance < 0 && function && params) distance = distanceNamed;
        if (distance < 0) return true;
        if (!best.method || distance < best.distance) best = {method, 0, distance, const_cast<ZMetaType*>(type)};
        return distance != 0;
    };
    const ZSelector key = function ? name.methodName() : name;
    if (!base) eachNamed(table->user, key, visit);
    if (best.distance != 0) eachNamed(table->declared, key, visit);
    if (!best.method) return best;
    if (best.method->getFlags() & ZMethod::BaseMethod) best.distance = 0;
    if (best.method->synthetic()) ++best.distance;
    return best;
}

MethodHit lookUpMethod(const ZMetaType* type, const ZSelector& selector, const ZSelector& qualifier, bool base) {
    if (ORV_UNLIKELY(!type || selector.isEmpty())) return {};
    MethodTables& tables = const_cast<ZMetaType*>(type)->record().methods;
    const ularge generation = typeGeneration();
    const MethodKey key{selector.key(), qualifier.key(), base};
    const MethodCache* cache = tables.cache.load();
    if (ORV_LIKELY(cache && cache->generation == generation))
        if (const MethodHit* known = cache->find(key)) return *known;
    bool whole = true;
    const MethodHit hit = find(type, selector, qualifier, base, 0, whole);
    if (whole) cacheMethod(tables, key, hit, generation);
    return hit;
}

MethodHit lookUpOverload(const ZMetaType* type, const ZSelector& name, const ZMetaType* const* types, int count,
                         byte flags, const ZSelector& qualifier, bool base) {
    if (ORV_UNLIKELY(!type || name.isEmpty() || count < 0)) return {};
    // The result's type isn't part of the key where it doesn't count.
    const int first = flags & LookSkipResult ? 1 : 0, keyed = count > first ? count - first : 0;
    bool whole = true;
    if (ORV_UNLIKELY(keyed > OverloadKey::typeRoom))
        return findSplit(type, name, types, count, flags, qualifier, base, whole);
    MethodTables& tables = const_cast<ZMetaType*>(type)->record().methods;
    const ularge generation = typeGeneration();
    OverloadKey key{name.key(), qualifier.key(), base, flags, int8(keyed), {}};
    for (int i = 0; i < keyed; ++i) key.types[i] = types[first + i];
    const OverloadCache* cache = tables.overloads.load();
    if (ORV_LIKELY(cache && cache->generation == generation))
        if (const MethodHit* known = cache->find(key)) return *known;
    const MethodHit hit = findSplit(type, name, types, count, flags, qualifier, base, whole);
    if (whole) cacheMethod(tables, key, hit, generation);
    return hit;
}

} // namespace orv
