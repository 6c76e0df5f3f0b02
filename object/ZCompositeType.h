#pragma once

#include "object/SyntheticType.h"
#include "toolkit/epoch.h"
#include "value/ZVSelectMap.h"

namespace orv {
struct CompositeLayout;
struct CompositeMember;
} // namespace orv

/// The type of a structure that no class declares: named members, one behind the other in the order in which they were
/// set, without padding, so that a member may stand at any address. Members are values of any type that isn't a `ZType`
/// class; of those a composite holds pointers. For a value of the type its members are properties.
///
/// A member's value moves by its bytes: one that its type wants aligned is handled in a scratch place. Members are set
/// up before the first instance is made, and don't change while there are instances, or while the type is a member of
/// another composite: such changes are refused. Any thread may use instances of its own.
class ORV_API ZCompositeType : public orv::SyntheticType {
public:
    /// The largest value of a class that a composite takes, in bytes.
    static constexpr uint largestMember = 0x10000;
    /// How deep composites may be nested.
    static constexpr int deepest = 64;

    // Lifetime. As for metatypes. A copy has the same members.

    ZCompositeType(ZPackage* package, const ZSelector& name, const __ZPassMetaType* type = nullptr,
                   ZInternal* internal = nullptr);
    explicit ZCompositeType(const ZCompositeType* source, const __ZPassMetaType* type = nullptr,
                            ZInternal* internal = nullptr);
    explicit ZCompositeType(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    /// A variant, see `getQualified`: it has the members of its main type.
    ZCompositeType(const ZSelector& name, ZCompositeType* main);
    ~ZCompositeType() override;

    // Members. Changes answer false, with the members as they were, without memory, and where they are refused. What is
    // given out is borrowed under an open `toolkit::EpochGuard`, or as long as nobody changes the members.

    /// Types by name.
    virtual const ZVSelectMap& member() const;
    /// Null for a name, or a position, that isn't there.
    virtual ZMetaType* member(const ZSelector& name) const;
    virtual ZMetaType* memberByIndex(int index) const;
    virtual int countMember() const;
    virtual bool hasMember(const ZMetaType* type) const;
    virtual ZSelector memberKey(int index) const;
    /// -1 if it isn't there; so for the following.
    virtual int memberIndex(const ZSelector& name) const;
    /// Of the first member of that type.
    virtual ZSelector findMemberKey(const ZMetaType* type) const;
    virtual int findMemberIndex(const ZMetaType* type) const;
    virtual bool setMember(const ZVSelectMap& members);
    /// Another type for a member, which keeps its place, or a new one at the end.
    virtual bool setMember(const ZSelector& name, const ZMetaType* type);
    virtual bool clearMember();
    virtual bool removeMember(const ZSelector& name);
    virtual bool removeMemberByIndex(int index);
    /// Works the layout and the size out anew, after a member's type got another size.
    virtual bool resetMembers();
    /// Where a member stands in an instance, which may be at any address; null for an unknown one.
    virtual void* field(void* instance, const ZSelector& name) const;
    virtual const void* field(const void* instance, const ZSelector& name) const;

    // Inherited operations for which a composite has an answer of its own: member by member, in order

    ZCompositeType* compositeType() const override { return const_cast<ZCompositeType*>(layoutType()); }
    bool canCopyType() const override { return true; }
    ZType* copy() const override;
    void* createInstance() override;
    void deleteInstance(void* instance) const override;
    bool constructInstance(void* instance) override;
    bool destructInstance(void* instance) const override;
    bool copyInstance(void* target, const void* source) const override;
    void* copyInstance(const void* source) const override;
    int compareInstance(const void* a, const void* b) const override;
    bool detachInstance(void* instance) const override;
    bool isDetachedInstance(const void* instance) const override;
    bool deepDetachInstance(void* instance, ZDetachContext* context) const override;
    bool isNullData(const void* instance) const override;
    bool blendInstance(void* instance, const void* a, const void* b, const ZBlendPos& pos) const override;
    void* blendInstance(const void* a, const void* b, const ZBlendPos& pos) const override;
    bool setIdentityInstance(void* instance) const override;
    /// Reads what `toString` writes. False, with the value as it was, for any other text.
    bool fromString(void* instance, const ZString& text) const override;
    void* fromString(const ZString& text) const override;
    /// The members' texts with a blank between them, in double quotes where a text is empty or has blanks, quotes or
    /// backslashes in it; inside of quotes a backslash stands in front of a quote or backslash.
    bool toString(const void* instance, ZString& text) const override;

protected:
    ZMetaType* makeVariant(const ZSelector& name) override;
    bool fieldNames(const void* instance, ZArrayT<ZSelector>& names) const override;
    uint fieldCount(const void*) const override { return uint(countMember()); }
    ZMetaType* fieldType(const void*, const ZSelector& name) const override { return member(name); }
    ZVariant readField(const void* instance, const ZSelector& name) const override;
    /// Converts the value to the member's type.
    bool writeField(void* instance, const ZSelector& name, const ZVariant& value) const override;
    bool clearField(void* instance, const ZSelector& name) const override;

private:
    friend struct orv::CompositeLayout;
    using Members = ZArrayT<orv::CompositeMember>;

    /// The type itself, or the main type of a variant.
    const ZCompositeType* layoutType() const { return static_cast<const ZCompositeType*>(described()); }
    const orv::CompositeLayout* layout() const;
    const orv::CompositeMember* find(const ZSelector& name) const;
    template <class F> bool change(F&& edit);
    bool setMembers(Members& members);
    bool placeMembers(Members& members);
    bool acceptsMember(const ZMetaType* type) const;
    int nesting() const;
    static void hold(const Members& members, int by);
    void destructMembers(void* instance, uint count) const;
    bool replaceMember(void* instance, const orv::CompositeMember& member, void* value) const;

    toolkit::EpochPtr<orv::CompositeLayout> published; ///< null without members
    mutable int instances = 0;                         ///< that there are
    mutable int holders = 0;                           ///< members of other composites that are of this type
};
