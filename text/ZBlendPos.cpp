#include "text/ZBlendPos.h"

#include "core/construct.h"

using orv::BlendRecord;

namespace orv {

BlendRecord::Entry::~Entry() { zrelease(record); }
BlendRecord::~BlendRecord() { zreleasearray(entries); }

int BlendRecord::find(const ZSelector& name) const {
    for (int i = 0; i < count; ++i)
        if (entries[i].name == name) return i;
    return -1;
}

} // namespace orv

namespace {

void copyEntries(BlendRecord::Entry* to, const BlendRecord& from, int count) {
    for (int i = 0; i < count && i < from.count; ++i) {
        to[i].name = from.entries[i].name;
        to[i].record = retain(from.entries[i].record);
    }
}

/// A copy that shares the records of the parts; null without memory.
BlendRecord* cloned(const BlendRecord& from) {
    auto copy = zmake<BlendRecord>();
    if (!copy) return nullptr;
    if (from.count && !(copy->entries = zmakearray<BlendRecord::Entry>(size_t(from.count)))) {
        zrelease(copy);
        return nullptr;
    }
    copyEntries(copy->entries, from, from.count);
    copy->pos = from.pos;
    copy->basePos = from.basePos;
    copy->path = from.path;
    copy->color = from.color;
    copy->image = from.image;
    copy->count = from.count;
    copy->depth = from.depth;
    return copy;
}

/// Makes a record one that nobody else holds; false without memory.
bool detach(BlendRecord*& record) {
    if (refcount(record) == 1) return true;
    BlendRecord* copy = cloned(*record);
    if (!copy) return false;
    zrelease(record);
    record = copy;
    return true;
}

} // namespace

// Lifetime

ZBlendPos::ZBlendPos(BlendRecord* native) : record(retain(native)) {
    if (!record) return;
    position = record->pos;
    base = record->basePos;
}

ZBlendPos::ZBlendPos(const ZBlendPos& other)
    : type(other.type), above(other.above), colours(other.colours), record(retain(other.record)),
      position(other.position), base(other.base), flags(other.flags) {}

ZBlendPos& ZBlendPos::operator=(const ZBlendPos& other) {
    BlendRecord* old = record;
    record = retain(other.record);
    zrelease(old);
    type = other.type;
    above = other.above;
    colours = other.colours;
    position = other.position;
    base = other.base;
    flags = other.flags;
    return *this;
}

ZBlendPos::~ZBlendPos() { zrelease(record); }

BlendRecord* ZBlendPos::fresh() const {
    auto made = zmake<BlendRecord>();
    if (!made) return nullptr;
    made->pos = float(position);
    made->basePos = float(base);
    return made;
}

BlendRecord* ZBlendPos::native() {
    if (!record) record = fresh();
    return record;
}

bool ZBlendPos::own() { return native() && detach(record); }

// Position

bool ZBlendPos::setPos(real pos) {
    if (record) {
        if (!detach(record)) return false;
        record->pos = float(pos);
    }
    position = pos;
    return true;
}

bool ZBlendPos::setBasePos(real pos) {
    if (record) {
        if (!detach(record)) return false;
        record->basePos = float(pos);
    }
    base = pos;
    return true;
}

// Parts

bool ZBlendPos::setCount(int count) {
    if (count < 0 || count > BlendRecord::mostEntries) return false;
    if (count == this->count()) return true;
    BlendRecord::Entry* entries = count ? zmakearray<BlendRecord::Entry>(size_t(count)) : nullptr;
    if ((count && !entries) || !own()) {
        zreleasearray(entries);
        return false;
    }
    copyEntries(entries, *record, count);
    zreleasearray(record->entries);
    record->entries = entries;
    record->count = count;
    return true;
}

bool ZBlendPos::setName(int index, const ZSelector& name) {
    if (index < 0 || index >= count() || !own()) return false;
    record->entries[index].name = name;
    return true;
}

bool ZBlendPos::setPos(int index, real pos) {
    if (index < 0 || index >= count() || !own()) return false;
    BlendRecord*& part = record->entries[index].record;
    if (part ? !detach(part) : !(part = fresh())) return false;
    part->pos = float(pos);
    return true;
}

bool ZBlendPos::setBlend(int index, const ZBlendPos& blend) {
    if (index < 0 || index >= count()) return false;
    // Held from here on, it counts as shared, so that a position can become a part of itself.
    BlendRecord* wanted = blend.record ? retain(blend.record) : blend.fresh();
    if (!wanted || wanted->depth >= BlendRecord::deepest || !own()) {
        zrelease(wanted);
        return false;
    }
    zrelease(record->entries[index].record);
    record->entries[index].record = wanted;
    if (record->depth <= wanted->depth) record->depth = wanted->depth + 1;
    return true;
}

const BlendRecord* ZBlendPos::part(int index) const {
    return index >= 0 && index < count() ? record->entries[index].record : nullptr;
}

bool ZBlendPos::blendItems() const {
    for (int i = 0; i < count(); ++i)
        if (part(i)) return true;
    return false;
}

ZBlendPos ZBlendPos::fieldBlend(int index) const {
    ZBlendPos field(*this);
    if (const BlendRecord* own = part(index)) {
        BlendRecord* shared = retain(const_cast<BlendRecord*>(own));
        zrelease(field.record);
        field.record = shared;
    }
    return field;
}

real ZBlendPos::fieldPos(int index) const {
    const BlendRecord* own = part(index);
    return own ? real(own->pos) : position;
}

// Data of the caller's

bool ZBlendPos::setPathData(const void* data) {
    if (!own()) return false;
    record->path = data;
    return true;
}

bool ZBlendPos::setColorData(const void* data) {
    if (!own()) return false;
    record->color = data;
    return true;
}

bool ZBlendPos::setImageData(const void* data) {
    if (!own()) return false;
    record->image = data;
    return true;
}
