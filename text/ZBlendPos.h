#pragma once

#include "core/ZSelector.h"
#include "text/forward.h"

class ZType;

namespace orv {

/// What a blend position hands to the code that blends: two positions, data of the caller's that stay the caller's, and
/// a record of its own for each part that has one, by index and by name. Counted; shared ones aren't written.
struct ORV_API BlendRecord {
    struct Entry {
        ZSelector name;
        BlendRecord* record = nullptr; ///< one reference

        Entry() = default;
        Entry(const Entry&) = delete;
        ~Entry();
    };
    static constexpr int mostEntries = 1 << 20;
    static constexpr int deepest = 512; ///< records in each other

    float pos = 0.5f, basePos = 0.5f;
    const void* path = nullptr;
    const void* color = nullptr;
    const void* image = nullptr;
    Entry* entries = nullptr; ///< made by `zmakearray`
    int count = 0;
    int depth = 1;

    BlendRecord() = default;
    BlendRecord(const BlendRecord&) = delete;
    ~BlendRecord();
    /// The index of the first entry of that name; -1 if there is none.
    int find(const ZSelector& name) const;
};

} // namespace orv

/// The position that a blend is at, from 0 to 1, handed to every blend operation; parts of the value may have positions
/// of their own. A value; copies share the record until one of them is changed. What it refers to (the parent, the
/// colour system, the data) belongs to others and has to outlive it. One thread.
///
/// Operations that answer a bool answer false, and change nothing, without memory and for an index out of range.
class ORV_API ZBlendPos {
public:
    using ZRelocatable = void;

    enum Flags : uint { Perceptual = 1 };

    // Lifetime

    ZBlendPos() = default;
    /// The position and the base position.
    explicit ZBlendPos(real pos) : position(pos), base(pos) {}
    /// Takes another reference of the record, and its two positions. Null is fine.
    explicit ZBlendPos(orv::BlendRecord* record);
    ZBlendPos(const ZBlendPos& other);
    ZBlendPos& operator=(const ZBlendPos& other);
    ~ZBlendPos();

    // Position

    real pos() const { return position; }
    bool setPos(real pos);
    /// Where the blend as a whole is, before anything shaped the position.
    real basePos() const { return base; }
    bool setBasePos(real pos);
    uint blendFlags() const { return flags; }
    void setBlendFlags(uint wanted) { flags = wanted; }
    /// Colours are blended as they are seen.
    bool perceptual() const { return flags & Perceptual; }
    void setPerceptual(bool on) { flags = on ? flags | Perceptual : flags & ~uint(Perceptual); }
    /// The type of the value that is blended; null if nobody said.
    ZMetaType* metaType() const { return type; }
    /// The position of the value that this one's is a part of.
    const ZBlendPos* parent() const { return above; }
    void setParent(const ZBlendPos* position) { above = position; }
    /// A handle of the colour system.
    void* cms() const { return colours; }
    void setCMS(void* handle) { colours = handle; }

    // Parts

    /// The position for a part of a type, of the value that is blended here: this one is its parent, which has to
    /// outlive it.
    ZBlendPos create(ZMetaType* type) const;
    /// The same for an instance.
    ZBlendPos create(const ZType* instance) const;
    int count() const { return record ? record->count : 0; }
    /// New parts have neither a name nor a position of their own.
    bool setCount(int count);
    bool setName(int index, const ZSelector& name);
    bool setPos(int index, real pos);
    /// Gives a part the positions that `blend` stands for; false too if that nests too deep.
    bool setBlend(int index, const ZBlendPos& blend);
    /// Whether parts have positions of their own.
    bool blendItems() const;
    /// The position for a part: on the part's own record, or on this one's if it has none; the rest is as here.
    ZBlendPos fieldBlend(int index) const;
    ZBlendPos fieldBlend(const ZSelector& name) const { return fieldBlend(record ? record->find(name) : -1); }
    /// Where the blend of a part is; `pos` if it has no position of its own.
    real fieldPos(int index) const;
    real fieldPos(const ZSelector& name) const { return fieldPos(record ? record->find(name) : -1); }

    // Data of the caller's

    const void* pathData() const { return record ? record->path : nullptr; }
    const void* colorData() const { return record ? record->color : nullptr; }
    const void* imageData() const { return record ? record->image : nullptr; }
    bool setPathData(const void* data);
    bool setColorData(const void* data);
    bool setImageData(const void* data);

    /// The record, made on first use; null without memory. It stays this position's.
    orv::BlendRecord* native();

private:
    orv::BlendRecord* fresh() const;
    /// Makes the record private.
    bool own();
    const orv::BlendRecord* part(int index) const;

    ZMetaType* type = nullptr;
    const ZBlendPos* above = nullptr;
    void* colours = nullptr;
    orv::BlendRecord* record = nullptr;
    real position = 0.5, base = 0.5;
    uint flags = 0;
};
