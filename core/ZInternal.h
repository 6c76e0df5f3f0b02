#pragma once

#include "core/forward.h"

/// The block in which the classes of one object's chain place their private parts: one allocation for all of them. The
/// room is zero-filled. Counted memory: `zfree` gives it up.
class ORV_API ZInternal {
public:
    ZInternal() : isDirect(false) {}
    /// Retains and answers an existing block, unless it is direct: that one comes back as it is. Without one, makes a
    /// block of the type's internal size, or of `size` bytes without a type. Null when there is no memory.
    static ZInternal* create(const ZMetaType* type, int size, ZInternal* existing);
    /// A block that belongs to one class and isn't shared along a chain. With an existing block or a type, answers
    /// `existing` as it is.
    static ZInternal* direct(const ZMetaType* type, int size, ZInternal* existing);
    /// The next `size` bytes of the room (the type's own part, with a type); null for a null block or when the room is
    /// used up.
    static void* getmem(ZInternal* block, const ZMetaType* type, unsigned size);

    /// How the sizes of a type's parts are asked for; the layer that has types sets this once, at start.
    struct TypeSizes {
        unsigned (*whole)(const ZMetaType* type); ///< of the type and all its bases
        unsigned (*own)(const ZMetaType* type);   ///< of the type's own part
    };
    static void setTypeSizes(const TypeSizes* sizes);

    const ZMetaType* metaType() const { return type; }
    int size() const { return room; }
    bool isDirectBlock() const { return isDirect; }

private:
    static ZInternal* make(const ZMetaType* type, int size, bool direct);

    const ZMetaType* type = nullptr;
    int room = 0;
    bool isDirect;
    byte* next = nullptr;
    [[maybe_unused]] void* reserved = nullptr;
};
static_assert(sizeof(ZInternal) == 32);
