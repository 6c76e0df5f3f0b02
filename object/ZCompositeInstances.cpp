#include "core/construct.h"
#include "object/ZMetaTypeData.h"
#include "object/compositeMembers.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

// Values of a composite, member by member.

using orv::CompositeLayout;
using orv::CompositeMember;
using orv::useField;

namespace {

/// Calls `step(member)` for each member until one answers false; true if none did. The layout can't go meanwhile: it
/// has an instance, or the caller's guard.
template <class F> bool eachMember(const CompositeLayout* all, F&& step) {
    if (all)
        for (const CompositeMember& member : all->members)
            if (!step(member)) return false;
    return true;
}

/// The texts of members as they stand in that of a composite.
class QuotedWriter {
public:
    bool add(const ZString& item) {
        const orv::detail::TextIn<char> in(item.view());
        if (in.failed || (any && !text.append(" ", 1))) return false;
        any = true;
        if (plain(in.text, in.length)) return text.append(in.text, in.length);
        if (!text.append("\"", 1)) return false;
        for (int i = 0; i < in.length;) {
            int run = i;
            while (run < in.length && in.text[run] != '"' && in.text[run] != '\\') ++run;
            if (run > i && !text.append(in.text + i, run - i)) return false;
            if (run < in.length) {
                const char escaped[2] = {'\\', in.text[run++]};
                if (!text.append(escaped, 2)) return false;
            }
            i = run;
        }
        return text.append("\"", 1);
    }
    ZString text;

private:
    static bool plain(const char* at, int length) {
        for (int i = 0; i < length; ++i)
            if (byte(at[i]) <= ' ' || at[i] == '"' || at[i] == '\\') return false;
        return length > 0;
    }
    bool any = false;
};

class QuotedReader {
public:
    QuotedReader(const char* text, int length) : at(text), end(text + length) {}
    /// The next text; false at the end, for an open quote, and without memory.
    bool next(ZString& item) {
        skipBlanks();
        item = ZString();
        if (at == end) return false;
        if (*at != '"') {
            const char* start = at;
            while (at < end && byte(*at) > ' ') ++at;
            return item.append(start, int(at - start));
        }
        for (++at;;) {
            const char* start = at;
            while (at < end && *at != '"' && *at != '\\') ++at;
            if (at > start && !item.append(start, int(at - start))) return false;
            if (at == end) return false;
            if (*at++ == '"') return true;
            if (at == end || !item.append(at++, 1)) return false;
        }
    }
    bool atEnd() {
        skipBlanks();
        return at == end;
    }

private:
    void skipBlanks() {
        while (at < end && byte(*at) <= ' ') ++at;
    }
    const char *at, *const end;
};

} // namespace

// Making and ending

void* ZCompositeType::createInstance() {
    ZTypeLabel<ZCompositeType> label;
    void* instance = __znalloc(getSize());
    if (!instance || constructInstance(instance)) return instance;
    toolkit::freeBlock(instance);
    return nullptr;
}
void ZCompositeType::deleteInstance(void* instance) const {
    if (!instance) return;
    destructInstance(instance);
    zdfree(instance);
}

/// Ends the first so many members, last to first.
void ZCompositeType::destructMembers(void* instance, uint count) const {
    const CompositeLayout* all = layout();
    while (count--) {
        const CompositeMember& member = all->members[count];
        useField(member, member.in(instance), orv::ReadField,
                 [&](void* value) { return member.type->destructInstance(value); });
    }
}

bool ZCompositeType::constructInstance(void* instance) {
    if (!instance) return false;
    toolkit::increment(layoutType()->instances);
    uint done = 0;
    const bool whole = eachMember(layout(), [&](const CompositeMember& member) {
        if (!useField(member, member.in(instance), orv::MakeField,
                      [&](void* value) { return member.type->constructInstance(value); }))
            return false;
        ++done;
        return true;
    });
    if (whole) return true;
    destructMembers(instance, done);
    toolkit::decrement(layoutType()->instances);
    return false;
}

bool ZCompositeType::destructInstance(void* instance) const {
    if (!instance) return false;
    if (const CompositeLayout* all = layout()) destructMembers(instance, all->members.count());
    toolkit::decrement(layoutType()->instances);
    return true;
}

bool ZCompositeType::copyInstance(void* target, const void* source) const {
    if (!target || !source) return false;
    toolkit::increment(layoutType()->instances);
    uint done = 0;
    const bool whole = eachMember(layout(), [&](const CompositeMember& member) {
        const bool copied = orv::readField(member, source, [&](const void* from) {
            return useField(member, member.in(target), orv::MakeField,
                            [&](void* to) { return member.type->copyInstance(to, from); });
        });
        if (copied) ++done;
        return copied;
    });
    if (whole) return true;
    destructMembers(target, done);
    toolkit::decrement(layoutType()->instances);
    return false;
}
void* ZCompositeType::copyInstance(const void* source) const {
    if (!source) return nullptr;
    ZTypeLabel<ZCompositeType> label;
    void* instance = __znalloc(getSize());
    if (!instance || copyInstance(instance, source)) return instance;
    toolkit::freeBlock(instance);
    return nullptr;
}

// Comparison and sharing

int ZCompositeType::compareInstance(const void* a, const void* b) const {
    if (a == b) return 0;
    if (!a || !b) return a ? -1 : 1;
    int order = 0;
    eachMember(layout(), [&](const CompositeMember& member) {
        order = orv::readField(member, a, [&](const void* first) {
            return orv::readField(member, b,
                                  [&](const void* second) { return member.type->compareInstance(first, second); });
        });
        return order == 0;
    });
    return order;
}
bool ZCompositeType::detachInstance(void* instance) const {
    return instance && eachMember(layout(), [&](const CompositeMember& member) {
               return useField(member, member.in(instance), orv::ChangeField,
                               [&](void* value) { return member.type->detachInstance(value); });
           });
}
bool ZCompositeType::isDetachedInstance(const void* instance) const {
    return !instance || eachMember(layout(), [&](const CompositeMember& member) {
        return orv::readField(member, instance,
                              [&](const void* value) { return member.type->isDetachedInstance(value); });
    });
}
bool ZCompositeType::deepDetachInstance(void* instance, ZDetachContext* context) const {
    return instance && eachMember(layout(), [&](const CompositeMember& member) {
               return useField(member, member.in(instance), orv::ChangeField,
                               [&](void* value) { return member.type->deepDetachInstance(value, context); });
           });
}
bool ZCompositeType::isNullData(const void* instance) const {
    return !instance || eachMember(layout(), [&](const CompositeMember& member) {
        return orv::readField(member, instance, [&](const void* value) { return member.type->isNullData(value); });
    });
}

// Blending

bool ZCompositeType::blendInstance(void* instance, const void* a, const void* b, const ZBlendPos& pos) const {
    if (!instance || (!a && !b)) return false;
    return eachMember(layout(), [&](const CompositeMember& member) {
        return useField(member, member.in(instance), orv::ChangeField, [&](void* value) {
            auto blend = [&](const void* first, const void* second) {
                return member.type->blendInstance(value, first, second, pos);
            };
            // An instance may be one of those that it becomes a blend of; its bytes stand where `value` is now.
            auto with = [&](const void* source, auto&& use) {
                if (!source) return use(static_cast<const void*>(nullptr));
                return source == instance ? use(static_cast<const void*>(value)) : orv::readField(member, source, use);
            };
            return with(a, [&](const void* first) {
                return with(b, [&](const void* second) { return blend(first, second); });
            });
        });
    });
}
void* ZCompositeType::blendInstance(const void* a, const void* b, const ZBlendPos& pos) const {
    if (!a && !b) return nullptr;
    void* made = copyInstance(a ? a : b);
    if (!made || blendInstance(made, a, b, pos)) return made;
    releaseInstance(made);
    return nullptr;
}
bool ZCompositeType::setIdentityInstance(void* instance) const {
    return instance && eachMember(layout(), [&](const CompositeMember& member) {
               return useField(member, member.in(instance), orv::ChangeField,
                               [&](void* value) { return member.type->setIdentityInstance(value); });
           });
}

// Texts

bool ZCompositeType::toString(const void* instance, ZString& text) const {
    if (!instance) return false;
    QuotedWriter writer;
    const bool done = eachMember(layout(), [&](const CompositeMember& member) {
        ZString item;
        return orv::readField(member, instance,
                              [&](const void* value) { return member.type->toString(value, item); }) &&
               writer.add(item);
    });
    if (done) text = std::move(writer.text);
    return done;
}

bool ZCompositeType::fromString(void* instance, const ZString& text) const {
    void* made = instance ? fromString(text) : nullptr;
    if (!made) return false;
    // The members change hands by their bytes.
    if (const CompositeLayout* all = layout()) destructMembers(instance, all->members.count());
    std::memcpy(instance, made, getSize());
    toolkit::decrement(layoutType()->instances);
    zfree(made);
    return true;
}
void* ZCompositeType::fromString(const ZString& text) const {
    const orv::detail::TextIn<char> in(text.view());
    void* made = in.failed ? nullptr : const_cast<ZCompositeType*>(this)->createInstance();
    if (!made) return nullptr;
    QuotedReader reader(in.text, in.length);
    const bool done = eachMember(layout(), [&](const CompositeMember& member) {
        ZString item;
        return reader.next(item) && useField(member, member.in(made), orv::ChangeField,
                                             [&](void* value) { return member.type->fromString(value, item); });
    });
    if (done && reader.atEnd()) return made;
    deleteInstance(made);
    return nullptr;
}

// Members as properties

/// Puts a value, which changes hands by its bytes, in place of the member's.
bool ZCompositeType::replaceMember(void* instance, const CompositeMember& member, void* value) const {
    useField(member, member.in(instance), orv::ReadField,
             [&](void* old) { return member.type->destructInstance(old); });
    std::memcpy(member.in(instance), value, member.size);
    return true;
}

bool ZCompositeType::fieldNames(const void*, ZArrayT<ZSelector>& names) const {
    toolkit::EpochGuard guard;
    const uint before = names.count();
    if (eachMember(layout(), [&](const CompositeMember& member) { return names.append(member.name); })) return true;
    names.remove(before, names.count() - before);
    return false;
}
ZVariant ZCompositeType::readField(const void* instance, const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const CompositeMember* found = find(name);
    if (!found) return {};
    return orv::readField(*found, instance, [&](const void* value) { return ZVariant(found->type.get(), value); });
}
bool ZCompositeType::writeField(void* instance, const ZSelector& name, const ZVariant& value) const {
    toolkit::EpochGuard guard;
    const CompositeMember* found = find(name);
    ZVariant converted(value);
    if (!found || !converted.convert(found->type)) return false;
    auto place = [&](void* room) { return converted.getValue(room, true) && replaceMember(instance, *found, room); };
    return orv::useRoom(*found, place);
}
bool ZCompositeType::clearField(void* instance, const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const CompositeMember* found = find(name);
    if (!found) return false;
    auto place = [&](void* room) {
        return found->type->constructInstance(room) && replaceMember(instance, *found, room);
    };
    return orv::useRoom(*found, place);
}
