#include "value/ZTypeArray.h"

#include "text/ZBlendPos.h"
#include "value/ZVArray.h"

using namespace orv;

ZTypeArray::ZTypeArray(uint capacity, int16 expand) {
    if (!items.setExpand(expand) || !items.reserve(capacity)) {
        clear();
        ZError::fail();
    }
}
ZTypeArray::ZTypeArray(const ZType* const* instances, int count) {
    bool done = count <= 0 || (instances && items.reserve(uint(count)));
    for (int i = 0; done && i < count; ++i) done = append(instances[i]);
    if (!done) {
        clear();
        ZError::fail();
    }
}
ZTypeArray::ZTypeArray(const ZVArray& values) {
    bool done = items.reserve(values.count());
    for (uint i = 0; done && i < values.count(); ++i) done = append(values.variant(int(i)));
    if (!done) {
        clear();
        ZError::fail();
    }
}
ZTypeArray::ZTypeArray(const ZVariant& value) : ZTypeArray(ZVArray(value)) {}
ZTypeArray::ZTypeArray(const ZTypeArray* a, const ZTypeArray* b, const ZBlendPos& pos) {
    if (!blendFrom(a, b, pos)) ZError::fail();
}

bool ZTypeArray::blendFrom(const ZTypeArray* a, const ZTypeArray* b, const ZBlendPos& pos) {
    ZTypeArray made;
    if (a && b) {
        const ZTypeArray keptA(*a), keptB(*b);
        auto put = [](void* array, const ZVariant& item) { return static_cast<ZTypeArray*>(array)->append(item); };
        if (!ItemRow::blend(keptA.row(), keptB.row(), pos, put, &made)) return false;
        if (!made.isEmpty() && !made.setExpand(a->expand())) return false;
    } else if (const ZTypeArray* given = a ? a : b)
        made = *given;
    swap(made);
    return true;
}
