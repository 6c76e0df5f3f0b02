#include "value/ZUnknownData.h"

#include "core/construct.h"
#include "object/ztype.h"

#include <cstring>

namespace {
const __ZPassMetaType* tagOr(const __ZPassMetaType* type) { return type ? type : orv::passType(ztype<ZUnknownData>()); }
} // namespace

ZUnknownData::ZUnknownData(const ZSelector& typeName, const void* bytes, size_t size, bool bigEndian,
                           const __ZPassMetaType* type)
    : ZType(tagOr(type)), unknownType(typeName), length(size), isBigEndian(bigEndian) {
    if (!size) return;
    data = __zalloc(size);
    if (data)
        std::memcpy(data, bytes, size);
    else
        ZError::fail();
}
ZUnknownData::ZUnknownData(const ZUnknownData* source, const __ZPassMetaType* type) : ZType(source, tagOr(type)) {
    if (!source) return;
    unknownType = source->unknownType;
    data = ::retain(source->data);
    length = source->length;
    isBigEndian = source->isBigEndian;
}
ZUnknownData::~ZUnknownData() { zfree(data); }

ZType* ZUnknownData::copy() const { return zmake<ZUnknownData>(this, orv::passType(metaType)); }

int ZUnknownData::compare(const ZType* other) const {
    if (int order = ZType::compare(other)) return order;
    auto& data = static_cast<const ZUnknownData&>(*other);
    if (int order = unknownType.compare(data.unknownType)) return order;
    if (isBigEndian != data.isBigEndian) return isBigEndian ? 1 : -1;
    if (size() != data.size()) return size() < data.size() ? -1 : 1;
    const int order = size() ? std::memcmp(this->data, data.data, size()) : 0;
    return (order > 0) - (order < 0);
}
