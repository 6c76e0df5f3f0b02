#include "core/ZArrayT.h"
#include "core/ZError.h"
#include "object/ZMetaType.h"
#include "object/ztype.h"
#include "text/ZBlendPos.h"
#include "text/ZCharBuffer.h"
#include "text/ZFileInfo.h"
#include "text/ZFileName.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

// What lists of numbers, folders and blend positions have to do with types and values.

// Lists of numbers

static ZArrayT<real> realsOf(const ZVArray& numbers) {
    ZArrayT<real> reals;
    for (uint i = 0; i < numbers.count(); ++i)
        if (!reals.append(numbers.variant(int(i)).toReal())) {
            ZError::fail();
            return {};
        }
    return reals;
}
ZCharBuffer::ZCharBuffer(const ZVArray& numbers, int precision) : ZCharBuffer(realsOf(numbers), precision) {}

ZCharBuffer::ZCharBuffer(const ZVArray& items) : ZCharBuffer() {
    ZFailGuard guard;
    for (uint i = 0; i < items.count() && !guard.rose(); ++i) {
        const ZVariant item = items.variant(int(i));
        const int kind = item.typeType();
        bool done = i == 0 || add(' ');
        if (kind == ZMetaType::Float || kind == ZMetaType::Double || kind == ZMetaType::Real)
            done = done && printf("%.*!f", 6, item.toReal());
        else
            done = done && add(item.toString());
        if (!done) ZError::fail();
    }
    if (guard.rose()) initialize(0);
}

namespace {

/// The numbers of a list; without memory, a failure and no items.
template <class T> ZVArray arrayOf(const ZArrayT<T>& numbers) {
    ZVArray made(ztype<T>());
    if (!made.appendItems(numbers.data(), numbers.count()) && !numbers.isEmpty()) ZError::fail();
    return made;
}

} // namespace

ZVArray ZCharBuffer::scanIntArray(int radix) { return arrayOf(scanInt(radix)); }
ZVArray ZCharBuffer::scanFloatArray(int decimal) { return arrayOf(scanFloat(decimal)); }
ZVArray ZCharBuffer::scanRealArray(int decimal) { return arrayOf(scanReal(decimal)); }

// Folders

namespace {

/// Adds what a scan finds to an array; `scan` fills a list of its kind.
template <class T, class F> bool scanInto(ZVArray& found, F&& scan) {
    ZArrayT<T> list;
    if (!scan(list) || (!found.hasType() && !found.setType(ztype<T>()))) return false;
    for (const T& item : list)
        if (!found.append(ZVariant(ztype<T>(), &item))) return false;
    return true;
}

} // namespace

using Names = ZFileName::Names;
using Infos = ZFileName::Infos;

bool ZFileName::scan(ZVArray& found, bool recurse, bool folders, const Names& extensions, const Filter& filter) const {
    return scanInto<ZString>(found, [&](Names& list) { return scan(list, recurse, folders, extensions, filter); });
}
bool ZFileName::scan(ZVArray& found, const ZString& folder, bool recurse, bool folders, const Names& extensions,
                     const Filter& filter) {
    return scanInto<ZString>(found,
                             [&](Names& list) { return scan(list, folder, recurse, folders, extensions, filter); });
}
bool ZFileName::scan(ZVArray& found, const Names& starts, bool recurse, bool folders, const Names& extensions,
                     const Filter& filter) {
    return scanInto<ZString>(found,
                             [&](Names& list) { return scan(list, starts, recurse, folders, extensions, filter); });
}
bool ZFileName::scanFiles(ZVArray& found, bool recurse, const Names& extensions, const Filter& filter) const {
    return scan(found, recurse, false, extensions, filter);
}
bool ZFileName::scanFiles(ZVArray& found, const ZString& folder, bool recurse, const Names& extensions,
                          const Filter& filter) {
    return scan(found, folder, recurse, false, extensions, filter);
}
bool ZFileName::scanFiles(ZVArray& found, const Names& starts, bool recurse, const Names& extensions,
                          const Filter& filter) {
    return scan(found, starts, recurse, false, extensions, filter);
}
bool ZFileName::scanInfo(ZVArray& found, bool recurse, bool folders, const Names& extensions,
                         const Filter& filter) const {
    return scanInto<ZFileInfo>(found,
                               [&](Infos& list) { return scanInfo(list, recurse, folders, extensions, filter); });
}
bool ZFileName::scanInfo(ZVArray& found, const ZString& folder, bool recurse, bool folders, const Names& extensions,
                         const Filter& filter) {
    return scanInto<ZFileInfo>(
        found, [&](Infos& list) { return scanInfo(list, folder, recurse, folders, extensions, filter); });
}
bool ZFileName::scanInfo(ZVArray& found, const Names& starts, bool recurse, bool folders, const Names& extensions,
                         const Filter& filter) {
    return scanInto<ZFileInfo>(
        found, [&](Infos& list) { return scanInfo(list, starts, recurse, folders, extensions, filter); });
}
bool ZFileName::scanFileInfo(ZVArray& found, bool recurse, const Names& extensions, const Filter& filter) const {
    return scanInfo(found, recurse, false, extensions, filter);
}
bool ZFileName::scanFileInfo(ZVArray& found, const ZString& folder, bool recurse, const Names& extensions,
                             const Filter& filter) {
    return scanInfo(found, folder, recurse, false, extensions, filter);
}
bool ZFileName::scanFileInfo(ZVArray& found, const Names& starts, bool recurse, const Names& extensions,
                             const Filter& filter) {
    return scanInfo(found, starts, recurse, false, extensions, filter);
}

// Blend positions

ZBlendPos ZBlendPos::create(ZMetaType* type) const {
    ZBlendPos made(position);
    made.base = base;
    made.colours = colours;
    made.type = type;
    made.above = this;
    return made;
}
ZBlendPos ZBlendPos::create(const ZType* instance) const { return create(instance ? instance->type() : nullptr); }
