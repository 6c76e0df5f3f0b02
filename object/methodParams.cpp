#include "object/methodParams.h"

#include "core/memory.h"
#include "object/ZMethod.h"

#include <cstring>
#include <new>

namespace {

int slotBytes(const orv::MethodParam& param) {
    if (param.passing != orv::Passing::Value || !param.data || param.kind == ZMetaType::Float) return 8;
    const int bytes = int((param.data->byteSize() + 3) & ~3u);
    return bytes < 4 ? 4 : bytes;
}
/// The types of one lineage: a local copy is what it was copied from.
bool sameLineage(const ZMetaType* a, const ZMetaType* b) {
    return a == b || (a && b && a->rootType() == b->rootType() && a->getPtrCount() == b->getPtrCount());
}
bool findPart(const ZMetaType* from, const ZMetaType* to, int& offset, int depth) {
    if (sameLineage(from, to)) return true;
    if (depth > 512) return false;
    for (int i = 0, all = from->baseCount(); i < all; ++i) {
        const ZMetaType* base = from->baseType(i);
        if (!base) continue;
        int part = offset + from->baseOffset(i);
        if (!findPart(base, to, part, depth + 1)) continue;
        offset = part;
        return true;
    }
    // A local copy keeps its bases with what it was copied from.
    const ZMetaType* main = from->mainOrSelf();
    return main != from && from->baseCount() == 0 && findPart(main, to, offset, depth + 1);
}

} // namespace

namespace orv {

ZMetaType* resolveParam(const ZMetaType* scope, const ZSelector& name, MethodParam& param) {
    param = {};
    const char* text = name.string();
    int length = name.length();
    if (!text) return nullptr;
    if (text[length - 1] == '&') {
        param.passing = Passing::Reference;
        --length;
    }
    while (length > 0 && (text[length - 1] == '*' || text[length - 1] == ' ')) {
        if (text[length - 1] == '*') ++param.pointers;
        --length;
    }
    if (param.pointers && param.passing == Passing::Value) param.passing = Passing::Pointer;
    param.isConst = length > 6 && std::memcmp(text, "const ", 6) == 0;
    const ZSelector main = name.mainType();
    ZMetaType* data = scope ? scope->findType(main) : nullptr;
    if (!data) data = ZMetaType::find(main);
    if (!data) return nullptr;
    data = data->getDataType();
    param.data = data;
    param.kind = data->kind();
    param.type = main == name ? data : data->getQualified(name);
    return param.type;
}

bool upcastOffset(const ZMetaType* from, const ZMetaType* to, int& offset) {
    offset = 0;
    return from && to && findPart(from, to, offset, 0);
}
const void* upcast(const ZMetaType* from, const ZMetaType* to, const void* instance) {
    int offset;
    if (!instance || !upcastOffset(from, to, offset)) return nullptr;
    return static_cast<const char*>(instance) + offset;
}

} // namespace orv

const orv::MethodParams* ZMethod::params(const ZMetaType* type) const {
    const orv::MethodParams* known = toolkit::loadAcquire(resolved);
    return ORV_LIKELY(known != nullptr) && known->current() ? known : resolveParams(type);
}

const orv::MethodParams* ZMethod::resolveParams(const ZMetaType* type) const {
    using namespace orv;
    // Numbers first: what changes meanwhile makes the result a stale one.
    const ularge generation = typeGeneration(), removals = typeRemovals();
    const bool function = signature.type() == ZSelector::Method;
    const int count = function ? signature.parcount() + 1 : 1;
    if (count > 4096) return nullptr;
    void* memory = __zalloc(sizeof(MethodParams) + size_t(count) * sizeof(MethodParam));
    if (!memory) return nullptr;
    auto* fresh = ::new (memory) MethodParams();
    fresh->generation = generation;
    fresh->removals = removals;
    fresh->count = count;
    const ZMetaType* scope = getOwner();
    if (!scope) scope = type;
    auto* entries = reinterpret_cast<MethodParam*>(fresh + 1);
    for (int i = 0; i < count; ++i) {
        MethodParam& param = *::new (entries + i) MethodParam();
        const ZSelector text = paramType(i);
        if (text.isEmpty() && i == 0) continue;
        if (!resolveParam(scope, text, param)) fresh->complete = false;
        if (i == 0) continue;
        param.size = slotBytes(param);
        param.at = 8 + fresh->stackSize;
        fresh->stackSize += param.size;
    }
    fresh->returns = hasReturn();
    fresh->passVariant = count == 2 && entries[1].data && entries[1].data->isVariant();
    fresh->destructor = isDestructor();
    fresh->constructor = function && !fresh->returns && !fresh->destructor && scope && signature.result().isEmpty() &&
                         signature.methodName() == scope->mainOrSelf()->constructorName().methodName();
    MethodParams* seen = toolkit::loadAcquire(resolved);
    if (toolkit::compareExchange(resolved, seen, fresh)) {
        if (seen) toolkit::epochRetire(seen, [](toolkit::EpochLink* link) { zfree(static_cast<MethodParams*>(link)); });
        return fresh;
    }
    // Another thread was quicker. Its answer may be older than this one, which then serves the caller alone.
    if (seen && seen->current()) {
        zfree(fresh);
        return seen;
    }
    toolkit::epochRetire(fresh, [](toolkit::EpochLink* link) { zfree(static_cast<MethodParams*>(link)); });
    return fresh;
}
