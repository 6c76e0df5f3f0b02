#pragma once

#include "core/ZTreeItemT.h"
#include "object/ZProperty.h"

/// An entry of a property tree: its name and one retained record, which copies of the entry share until one of them is
/// detached. Entries come from a pool. An entry made by `ZPropertyPtr(name)` alone reserves a name and has no record.
class ORV_API ZPropertyPtr : public ZTreeItemT<ZSelector, ZPropertyPtr> {
public:
    // Pool

    static bool open();
    static void close();
    /// A pooled entry from a constructor's arguments; null without memory. A tree takes it over.
    template <class... A> [[nodiscard]] static ZPropertyPtr* create(A&&... arguments) {
        return entries.make(std::forward<A>(arguments)...);
    }
    /// An entry of its own that shares the record; null without memory.
    [[nodiscard]] ZPropertyPtr* copy() const;
    /// Gives the entry up. For pooled entries.
    void release();

    // Lifetime. Without memory for the record a failure is raised and the entry has none.

    ZPropertyPtr() = default;
    ZPropertyPtr(const ZPropertyPtr& other);
    /// Shares the record, which may be null.
    explicit ZPropertyPtr(const ZProperty* property);
    explicit ZPropertyPtr(const ZSelector& name) : selector(name) {}
    explicit ZPropertyPtr(const ZVariant& value);
    ZPropertyPtr(const ZSelector& name, const ZVariant& value, uint flags = ZProperty::Default);
    ZPropertyPtr(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType, ZMetaType* indexType,
                 uint flags = ZProperty::Default);
    ZPropertyPtr(const ZSelector& name, ZMetaType* valueType, ZMetaType* itemType, uint flags = ZProperty::Default);
    ZPropertyPtr(const ZSelector& name, ZMetaType* valueType, uint flags = ZProperty::Default);
    ZPropertyPtr(const ZProperty* a, const ZProperty* b, const ZBlendPos& pos);
    ~ZPropertyPtr();
    /// While the entry is in a tree its name stays, so `other` has to have the same.
    ZPropertyPtr& operator=(const ZPropertyPtr& other);
    void assign(const ZPropertyPtr& other) { *this = other; }

    // What a tree asks

    const ZSelector& key() const { return selector; }
    static void getHashInfo(uint& bits, uint& load) {
        bits = 0;
        load = 100;
    }
    static uint calcHashBits(uint count, uint load) { return orv_calchashbits(count, load, 0, 14); }
    static bool isMultiKey() { return false; }

    // The record

    /// Borrowed: valid while the entry holds it. Null for none.
    ZProperty* property() const { return record; }
    ZProperty* operator->() const { return record; }
    /// Gives the record up; the name stays.
    void clear();
    /// Shares another record. False if that one is on its way out: then nothing has changed.
    bool set(const ZProperty* property);
    /// Makes a shared record private. False without memory.
    bool detach();
    /// Hands the record and its reference over to the caller.
    [[nodiscard]] ZProperty* drop() { return std::exchange(record, nullptr); }
    /// By name, then by the records; an entry without one comes first.
    int compare(const ZPropertyPtr& other) const;
    int compare(const ZSelector& name) const { return selector.compare(name); }
    /// The record becomes the blend of two. False without memory.
    bool blendFrom(const ZPropertyPtr* a, const ZPropertyPtr* b, const ZBlendPos& pos);

    // Walks. The caller holds the owner's write lock, or the owner is its thread's alone.

    /// Whether a walk may enter: false without a record, for a link, and while another walk is in it.
    bool beginUpdate() { return record && record->beginUpdate(); }
    void endUpdate() {
        if (record) record->endUpdate();
    }

private:
    static orv::SlotPool<ZPropertyPtr> entries;
    void take(ZProperty* fresh);

    ZSelector selector;
    ZProperty* record = nullptr;
};
