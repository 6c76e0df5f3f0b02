#pragma once

#include "core/ZRetainPtrT.h"
#include "object/ZCompositeType.h"

#include <cstring>

namespace orv {

/// A member of a composite and where it stands in an instance.
struct CompositeMember {
    using ZRelocatable = void;

    ZSelector name;
    ZRetainPtrT<ZMetaType> type;
    uint offset = 0, size = 0, alignment = 1;

    void* in(void* instance) const { return static_cast<char*>(instance) + offset; }
    const void* in(const void* instance) const { return static_cast<const char*>(instance) + offset; }
    int compare(const CompositeMember& other) const { return name.compare(other.name); }
};

/// The members of a composite, published as a whole.
struct CompositeLayout : toolkit::EpochLink {
    ZArrayT<CompositeMember> members;
    ZVSelectMap map;

    explicit CompositeLayout(const ZArrayT<CompositeMember>& all);
};

/// How a member's bytes go between its place and a scratch place.
enum FieldUse { NoField = 0, ReadField = 1, MakeField = 2, ChangeField = 3 };

template <class F>
[[gnu::noinline]] auto useScratch(const CompositeMember& member, void* field, FieldUse use, F& work) {
    void* room = __builtin_alloca_with_align(member.size, 128);
    if (use & ReadField)
        std::memcpy(room, field, member.size);
    else
        std::memset(room, 0, member.size);
    auto answer = work(room);
    if (use & MakeField) std::memcpy(field, room, member.size);
    return answer;
}
/// Calls `work` with zeroed raw memory for a value of the member's type. A composite may be too large for the stack.
template <class F> bool useRoom(const CompositeMember& member, F& work) {
    if (member.size <= ZCompositeType::largestMember) return useScratch(member, nullptr, NoField, work);
    void* room = __znalloc(member.size);
    const bool done = room && work(room);
    zfree(room);
    return done;
}
/// Calls `work` with the address of the member's value: where it stands if that suits its type, else of its bytes in a
/// scratch place, from where `MakeField` and `ChangeField` bring them back.
template <class F> auto useField(const CompositeMember& member, void* field, FieldUse use, F&& work) {
    if (ORV_LIKELY(!(uintptr_t(field) & (member.alignment - 1)))) return work(field);
    return useScratch(member, field, use, work);
}
template <class F> auto readField(const CompositeMember& member, const void* instance, F&& work) {
    return useField(member, const_cast<void*>(member.in(instance)), ReadField,
                    [&](void* value) { return work(static_cast<const void*>(value)); });
}

} // namespace orv
