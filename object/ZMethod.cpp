#include "object/ZMethod.h"

#include "core/SlotPool.h"
#include "object/methodParams.h"
#include "object/methodWords.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

#include <cstring>

alignas(64) orv::TypeGeneration orv::typeGenerationCell;

struct ZMethod::Extra {
    ZVariant data;
    ZSelector external;
};

namespace {
constinit orv::SlotPool<ZMethod> pool("ZMethod", 2048);

template <class T> int order(T a, T b) { return (a > b) - (a < b); }
} // namespace

bool ZMethod::open() { return pool.open(); }
void ZMethod::close() { pool.close(); }

void* ZMethod::emptyFunc(const void*, ZMethod*) { return nullptr; }
void ZMethod::emptyStacked(const void*, ZMethod*, void*) {}

// Making and holding

ZMethod* ZMethod::create() { return pool.make(); }
ZMethod* ZMethod::create(const ZSelector& selector, const ZSelector& qualifier) {
    return pool.make(selector, qualifier);
}
ZMethod* ZMethod::create(const ZSelector& selector, const ZSelector& qualifier, uint flags, Func func,
                         Stacked stacked) {
    ZMethod* made = create(selector, qualifier);
    if (!made) return nullptr;
    made->setFlags(flags);
    if (func) made->setFunc(func);
    made->setStacked(stacked);
    return made;
}
ZMethod* ZMethod::create(const ZMethod& source) { return pool.make(source); }

ZMethod::ZMethod(const ZMethod& source) {
    if (!copyFrom(source)) ZError::fail();
}
ZMethod::~ZMethod() { clear(); }

ZMethod* ZMethod::retain(const ZMethod* method) { return pool.retain(const_cast<ZMethod*>(method)); }
void ZMethod::release(const ZMethod* method) {
    if (method) pool.releaseLater(const_cast<ZMethod*>(method));
}
int ZMethod::refcount(const ZMethod* method) { return pool.refcount(method); }

// Contents

ZMethod::Extra* ZMethod::extras() {
    if (!extra) extra = zmake<Extra>();
    return extra;
}

bool ZMethod::assign(const ZMethod& source) {
    if (this == &source) return true;
    Extra* fresh = nullptr;
    if (source.extra && !(fresh = zmake<Extra>(*source.extra))) return false;
    reset();
    zrelease(extra);
    extra = fresh;
    signature = source.signature;
    qualifier = source.qualifier;
    options = source.options;
    name = source.name;
    func = source.func;
    stacked = source.stacked;
    flags = source.flags;
    sandBoxLevel = source.sandBoxLevel;
    openIndex = source.openIndex;
    wordCount = source.wordCount;
    declared = source.declared;
    return true;
}
bool ZMethod::copyFrom(const ZMethod& source) {
    if (!assign(source)) return false;
    setOwner(source.getOwner());
    context = source.context;
    setBaseMethod(source.baseMethod);
    return true;
}
void ZMethod::reset() { dropParams(); }

void ZMethod::clear() {
    reset();
    zrelease(extra);
    extra = nullptr;
    setBaseMethod(nullptr);
    signature = qualifier = options = name = {};
    func = &emptyFunc;
    stacked = &emptyStacked;
    setOwner(nullptr);
    context = nullptr;
    flags = 0;
    sandBoxLevel = openIndex = registryIndex = bindings[0] = bindings[1] = typeBinding = -1;
    wordCount = -1;
    declared = false;
}

int ZMethod::compare(const ZMethod& other) const {
    if (int found = signature.compare(other.signature)) return found;
    if (int found = qualifier.compare(other.qualifier)) return found;
    if (int found = order(flags, other.flags)) return found;
    if (int found = options.compare(other.options)) return found;
    if (int found = order(uintptr_t(func), uintptr_t(other.func))) return found;
    return order(uintptr_t(stacked), uintptr_t(other.stacked));
}

bool ZMethod::setSelector(const ZSelector& selector) {
    const char* text = selector.string();
    const int length = selector.length();
    ZSelector stored = selector;
    int open = -1;
    // Told by the end of the text first: most signatures needn't be taken apart here.
    if (text && length > 5 && std::memcmp(text + length - 4, "...)", 4) == 0 && selector.type() == ZSelector::Method) {
        open = selector.parcount() - 1;
        if (open < 0 || !stored.setParam(open, "ZArrayT<ZVariant>&")) return false;
    }
    reset();
    signature = stored;
    flags = open >= 0 ? flags | Variadic : flags & ~uint(Variadic);
    openIndex = open;
    return true;
}
ZSelector ZMethod::methodName() const {
    return signature.type() == ZSelector::Method ? signature.methodName() : signature;
}
ZSelector ZMethod::getXName() const { return extra ? extra->external : ZSelector(); }
bool ZMethod::setXName(const ZSelector& external) {
    if (external.isEmpty() && !extra) return true;
    if (!extras()) return false;
    extra->external = external;
    return true;
}
void ZMethod::setBaseMethod(const ZMethod* method) { release(std::exchange(baseMethod, retain(method))); }
void ZMethod::setFunc(Func entry, int words) {
    func = entry ? entry : &emptyFunc;
    wordCount = func == &emptyFunc ? int8(-1) : int8(words);
}
void ZMethod::setStacked(Stacked entry) { stacked = entry ? entry : &emptyStacked; }

// Data

ZVariant ZMethod::getData() const { return extra ? extra->data : ZVariant(); }
bool ZMethod::setData(const ZVariant& value) {
    if (value.isNull() && !extra) return true;
    if (!extras()) return false;
    ZFailGuard guard;
    extra->data = value;
    if (!guard.rose()) return true;
    guard.forget();
    return false;
}

bool ZMethod::set(const ZSelector& key, const ZVariant& value) {
    if (!extras()) return false;
    if (extra->data.isNull()) {
        ZVariant map(ztype<ZVSelectMap>());
        if (!map.resetValue()) return false;
        extra->data = std::move(map);
    }
    return extra->data.setItem(key, value);
}
ZVariant ZMethod::item(const ZSelector& key) const { return extra ? extra->data.itemByKey(key) : ZVariant(); }
bool ZMethod::remove(const ZSelector& key) { return extra && extra->data.removeItem(key); }

// Parameters

void ZMethod::dropParams() {
    if (orv::MethodParams* old = toolkit::exchange(resolved, nullptr))
        toolkit::epochRetire(old, [](toolkit::EpochLink* link) { zfree(static_cast<orv::MethodParams*>(link)); });
}

int ZMethod::paramCount() const { return signature.type() == ZSelector::Method ? signature.parcount() : 0; }
ZSelector ZMethod::paramType(int index) const { return index == 0 ? signature.result() : signature.param(index - 1); }

ZMetaType* ZMethod::parType(int index, const ZMetaType* type) const {
    toolkit::EpochGuard guard;
    const orv::MethodParams* known = params(type);
    return known && index >= 0 && index < known->count ? (*known)[index].type : nullptr;
}
ZArrayT<ZMetaType*> ZMethod::paramTypes(const ZMetaType* type) const {
    toolkit::EpochGuard guard;
    const orv::MethodParams* known = params(type);
    ZArrayT<ZMetaType*> types;
    if (!known || !types.reserve(uint(known->count))) return {};
    for (const orv::MethodParam& param : *known) types.append(param.type);
    return types;
}
bool ZMethod::hasReturn() const {
    const ZSelector result = signature.type() == ZSelector::Method ? signature.result() : ZSelector();
    return !result.isEmpty() && !result.check("void");
}
int ZMethod::getStackSize(const ZMetaType* type) const {
    toolkit::EpochGuard guard;
    const orv::MethodParams* known = params(type);
    return known ? known->stackSize : -1;
}
bool ZMethod::passVariant(const ZMetaType* type) const {
    toolkit::EpochGuard guard;
    const orv::MethodParams* known = params(type);
    return known && known->passVariant;
}
bool ZMethod::isConstructor(const ZMetaType* type) const {
    toolkit::EpochGuard guard;
    const orv::MethodParams* known = params(type);
    return known && known->constructor;
}
bool ZMethod::isDestructor(const ZMetaType*) const {
    return signature.type() == ZSelector::Method && signature.isDestructor({});
}

// As ends of a binding

bool ZMethod::matchBinding(const ZMethod* destination, const ZMetaType* type, const ZMetaType* destinationType) const {
    if (!destination) return false;
    if (destination->collectArgs()) return true;
    toolkit::EpochGuard guard;
    const orv::MethodParams *mine = params(type), *theirs = destination->params(destinationType);
    if (!mine || !theirs) return false;
    const int shared = mine->count < theirs->count ? mine->count : theirs->count;
    for (int i = 1; i < shared; ++i) {
        // From there on it takes anything.
        if (destination->openArgument() >= 0 && i > destination->openArgument()) break;
        const orv::MethodParam &from = (*mine)[i], &to = (*theirs)[i];
        if (!from.type || !to.type || from.type == to.type || from.type->typeOf(to.type)) continue;
        if (from.data->isVariant() || to.data->isVariant()) continue;
        return false;
    }
    return true;
}
bool ZMethod::matchBindCall(const ZMethod* destination) const {
    if (!destination || !matchBinding(destination)) return false;
    bool needsCall, convertFirst, dropRest;
    fetchBindingOptions(destination, needsCall, convertFirst, dropRest);
    return !needsCall;
}
bool ZMethod::matchReturn(const ZMethod* destination) const {
    if (!destination) return false;
    if (!hasReturn()) return true;
    toolkit::EpochGuard guard;
    ZMetaType *mine = resultType(), *theirs = destination->resultType();
    return mine && theirs && (mine == theirs || theirs->typeOf(mine));
}
bool ZMethod::matchMap(const ZMethod* source) const {
    if (!source) return false;
    toolkit::EpochGuard guard;
    const orv::MethodParams *mine = params(), *theirs = source->params();
    if (!mine || !theirs || theirs->count < mine->count) return false;
    for (int i = 1; i < mine->count; ++i) {
        ZMetaType *to = (*mine)[i].type, *from = (*theirs)[i].type;
        if (!to || !from || from->distance(to, true) < 0) return false;
    }
    return true;
}
void ZMethod::fetchBindingOptions(const ZMethod* destination, bool& needsCall, bool& convertFirst,
                                  bool& dropRest) const {
    needsCall = true;
    convertFirst = dropRest = false;
    if (!destination) return;
    toolkit::EpochGuard guard;
    const orv::MethodParams *mine = params(), *theirs = destination->params();
    if (!mine || !theirs) return;
    dropRest = mine->count > 1 && theirs->count == 1;
    if (mine->count > 0 && theirs->count > 0) {
        ZMetaType *from = (*mine)[0].type, *to = (*theirs)[0].type;
        convertFirst = from && to && (from == to || from->typeOf(to));
    }
    if (mine->count < theirs->count || destination->openArgument() >= 0) return;
    needsCall = false;
    if (theirs->count < 2 || destination->collectArgs()) return;
    for (int i = 1; i < theirs->count && !needsCall; ++i) needsCall = (*mine)[i].type != (*theirs)[i].type;
}

// Option words

uint ZMethod::scanFlags(const ZSelector& words) {
    return words.isEmpty() ? 0 : orv::methodWordSum(words.string()).flags;
}
ZSelector ZMethod::extractOptions(const ZSelector& words) {
    ZSelector kept;
    if (words.isEmpty()) return kept;
    std::string_view rest = words.string();
    for (std::string_view word; !(word = orv::propertyNextWord(rest)).empty();)
        if (!orv::isMethodWord(word) && orv::propertyWordNumber(word, "sb") < 0)
            kept = kept.add(ZSelector(word.data(), int(word.size())));
    return kept;
}
