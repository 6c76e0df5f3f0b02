#include "object/ZCompositeType.h"

#include "core/construct.h"
#include "core/debug.h"
#include "object/ZMetaTypeData.h"
#include "object/compositeMembers.h"
#include "object/ztype.h"
#include "value/ZVariant.h"

using orv::CompositeLayout;
using orv::CompositeMember;

namespace {

void freeLayout(toolkit::EpochLink* link) { zrelease(static_cast<CompositeLayout*>(link)); }

/// The metatype that a map's value is; null for anything else.
ZMetaType* metaTypeIn(const ZVariant& value) {
    ZObject* object = value.toObject();
    return object && object->isMetaType() ? static_cast<ZMetaType*>(object) : nullptr;
}

} // namespace

// Lifetime

ZCompositeType::ZCompositeType(ZPackage* package, const ZSelector& name, const __ZPassMetaType* type,
                               ZInternal* internal)
    : SyntheticType(package, name, Composite, orv::tagFor<ZCompositeType>(type), internal) {
    if (own) setAlignment(1);
}
ZCompositeType::ZCompositeType(const ZCompositeType* source, const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(source, orv::tagFor<ZCompositeType>(type), internal) {
    toolkit::EpochGuard guard;
    const CompositeLayout* theirs = source->layout();
    Members members;
    if (theirs) members = theirs->members;
    if (!own || !setMembers(members)) ZError::fail();
}
ZCompositeType::ZCompositeType(const __ZPassMetaType* type, ZInternal* internal)
    : ZCompositeType(nullptr, ZSelector(), type, internal) {}
ZCompositeType::ZCompositeType(const ZSelector& name, ZCompositeType* main) : SyntheticType(name, main) {}
ZCompositeType::~ZCompositeType() {
    CompositeLayout* last = published.publish(nullptr);
    if (last) hold(last->members, -1);
    zrelease(last);
}

ZType* ZCompositeType::copy() const { return zmake<ZCompositeType>(this, orv::passType(type())); }
ZMetaType* ZCompositeType::makeVariant(const ZSelector& name) {
    return name.ptrCount() ? ZMetaType::makeVariant(name) : zmake<ZCompositeType>(name, this);
}

// The layout

namespace orv {

CompositeLayout::CompositeLayout(const ZArrayT<CompositeMember>& all)
    : members(all), map(ztype<ZMetaType*>(), all.count()) {
    for (const CompositeMember& member : members)
        if (!map.set(member.name, ZVariant(static_cast<const ZType*>(member.type.get())))) ZError::fail();
}

} // namespace orv

/// Counts, or no longer counts, these as members of another composite.
void ZCompositeType::hold(const Members& members, int by) {
    for (const CompositeMember& member : members)
        if (const ZCompositeType* inner = member.type ? member.type->compositeType() : nullptr)
            toolkit::addFetch(inner->holders, by);
}

const CompositeLayout* ZCompositeType::layout() const { return layoutType()->published.load(); }

const CompositeMember* ZCompositeType::find(const ZSelector& name) const {
    const CompositeLayout* all = layout();
    if (!all) return nullptr;
    for (const CompositeMember& member : all->members)
        if (member.name == name) return &member;
    return nullptr;
}

/// How many levels of composites there are in this one, itself counted.
int ZCompositeType::nesting() const {
    int inner = 0;
    if (const CompositeLayout* all = layout())
        for (const CompositeMember& member : all->members)
            if (const ZCompositeType* type = member.type->compositeType())
                if (int levels = type->nesting(); levels > inner) inner = levels;
    return inner + 1;
}

/// Composites that others hold don't change, so none comes to be a member of itself.
bool ZCompositeType::acceptsMember(const ZMetaType* type) const {
    if (!type || type->kind() <= Void || type->kind() >= Dynamic || type->isReference()) return false;
    if (const ZCompositeType* inner = type->compositeType()) return inner != this && inner->nesting() < deepest;
    const uint size = type->getSize(), alignment = type->getAlignment();
    return size && alignment <= 16 && (alignment == 1 || size <= largestMember);
}

/// Publishes a layout of these members. Composites among them are held first, so that their sizes stay.
bool ZCompositeType::setMembers(Members& members) {
    hold(members, 1);
    if (placeMembers(members)) return true;
    hold(members, -1);
    return false;
}
bool ZCompositeType::placeMembers(Members& members) {
    ularge size = 0;
    for (uint i = 0; i < members.count(); ++i) {
        CompositeMember& member = members[i];
        if (member.name.isEmpty() || !acceptsMember(member.type)) {
            zdebug("type %s can't have a member \"%s\" of type %s\n", own->name.string(), member.name.string(),
                   member.type ? member.type->getName().string() : "(none)");
            return false;
        }
        member.offset = uint(size);
        member.size = member.type->getSize();
        member.alignment = member.type->getAlignment();
        size += member.size;
        if (size > 0x7FFFFFFF) return false;
    }
    auto made = zmake<CompositeLayout>(members);
    if (!made) return false;
    CompositeLayout* old;
    {
        ZScopedLock held(own->change);
        const bool used = toolkit::load(instances) > 0 || toolkit::load(holders) > 0;
        old = used ? made : published.publish(made);
    }
    if (old == made) {
        zdebug("type %s is in use: its members can't change\n", own->name.string());
        zrelease(made);
        return false;
    }
    setSize(uint(size));
    if (!old) return true;
    hold(old->members, -1);
    toolkit::epochRetire(old, freeLayout);
    return true;
}

template <class F> bool ZCompositeType::change(F&& edit) {
    if (!own || layoutType() != this) return false;
    Members members;
    {
        toolkit::EpochGuard guard;
        if (const CompositeLayout* all = layout()) members = all->members;
    }
    return edit(members) && setMembers(members);
}

bool ZCompositeType::resetMembers() {
    return change([](Members& members) { return members.detach(); });
}

// Members

const ZVSelectMap& ZCompositeType::member() const {
    static constinit const ZVSelectMap none;
    const CompositeLayout* all = layout();
    return all ? all->map : none;
}
ZMetaType* ZCompositeType::member(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const CompositeMember* found = find(name);
    return found ? found->type.get() : nullptr;
}
ZMetaType* ZCompositeType::memberByIndex(int index) const {
    toolkit::EpochGuard guard;
    const CompositeLayout* all = layout();
    const CompositeMember* found = all ? all->members.entry(uint(index)) : nullptr;
    return found ? found->type.get() : nullptr;
}
int ZCompositeType::countMember() const {
    toolkit::EpochGuard guard;
    const CompositeLayout* all = layout();
    return all ? int(all->members.count()) : 0;
}
bool ZCompositeType::hasMember(const ZMetaType* type) const { return findMemberIndex(type) >= 0; }
ZSelector ZCompositeType::memberKey(int index) const {
    toolkit::EpochGuard guard;
    const CompositeLayout* all = layout();
    const CompositeMember* found = all ? all->members.entry(uint(index)) : nullptr;
    return found ? found->name : ZSelector();
}
int ZCompositeType::memberIndex(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const CompositeMember* found = find(name);
    return found ? int(found - layout()->members.data()) : -1;
}
ZSelector ZCompositeType::findMemberKey(const ZMetaType* type) const { return memberKey(findMemberIndex(type)); }
int ZCompositeType::findMemberIndex(const ZMetaType* type) const {
    toolkit::EpochGuard guard;
    const CompositeLayout* all = layout();
    for (uint i = 0; all && i < all->members.count(); ++i)
        if (all->members[i].type == type) return int(i);
    return -1;
}

bool ZCompositeType::setMember(const ZVSelectMap& map) {
    return change([&](Members& members) {
        Members all;
        for (int i = 0; i < int(map.count()); ++i) {
            CompositeMember member;
            member.name = map.key(i);
            member.type = metaTypeIn(map.entry(i));
            if (!all.append(member)) return false;
        }
        members = all;
        return true;
    });
}
bool ZCompositeType::setMember(const ZSelector& name, const ZMetaType* type) {
    return change([&](Members& members) {
        CompositeMember member;
        member.name = name;
        member.type = const_cast<ZMetaType*>(type);
        const int at = memberIndex(name);
        return at < 0 ? members.append(member) : members.set(uint(at), member);
    });
}
bool ZCompositeType::clearMember() {
    return change([](Members& members) {
        members = Members();
        return true;
    });
}
bool ZCompositeType::removeMember(const ZSelector& name) { return removeMemberByIndex(memberIndex(name)); }
bool ZCompositeType::removeMemberByIndex(int index) {
    return change([&](Members& members) { return uint(index) < members.count() && members.remove(uint(index)); });
}

void* ZCompositeType::field(void* instance, const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const CompositeMember* found = instance ? find(name) : nullptr;
    return found ? found->in(instance) : nullptr;
}
const void* ZCompositeType::field(const void* instance, const ZSelector& name) const {
    return field(const_cast<void*>(instance), name);
}
