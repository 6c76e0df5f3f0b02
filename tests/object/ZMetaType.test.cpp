#include "object/ZMetaType.h"

#include "core/ZSelectorMap.h"
#include "object/ZMetaTypeData.h"
#include "tests/object/HandMade.h"
#include "tests/support/CoreScope.h"

#include <gtest/gtest.h>

using Kind = ZMetaType::Type;

namespace {
class MetaType : public CoreTest {};
} // namespace

TEST_F(MetaType, KindsAnswerByTheirOrder) {
    struct Row {
        Kind kind;
        uint size;
        bool primitive, isZType, isZObject, atomic, inlineValue;
    };
    const Row rows[] = {
        {Kind::Void, 0, true, false, false, true, true},
        {Kind::Bool, 1, true, false, false, true, true},
        {Kind::Real, 8, true, false, false, true, true},
        {Kind::Selector, 4, false, false, false, true, true},
        {Kind::String, 16, false, false, false, true, true},
        {Kind::Pointer, 8, false, false, false, true, false},
        {Kind::TypeDef, 24, false, false, false, true, false},
        {Kind::Structure, 16, false, false, false, true, true},
        {Kind::Structure, 17, false, false, false, false, false},
        {Kind::Composite, 12, false, false, false, true, true},
        {Kind::Class, 16, false, false, false, true, true},
        {Kind::Class, 24, false, false, false, false, false},
        {Kind::Interface, 8, false, false, false, false, true},
        {Kind::Atomic, 40, false, false, false, true, false},
        {Kind::Dynamic, 16, false, true, false, false, false},
        {Kind::Object, 16, false, true, true, false, false},
    };
    for (const Row& row : rows) {
        TypePtr type = makeSized("OfKind", row.kind, row.size);
        ASSERT_TRUE(type);
        EXPECT_EQ(type->primitive(), row.primitive) << int(row.kind);
        EXPECT_EQ(type->isZType(), row.isZType) << int(row.kind);
        EXPECT_EQ(type->isZObject(), row.isZObject) << int(row.kind);
        EXPECT_EQ(type->atomicData(), row.atomic) << int(row.kind) << " " << row.size;
        EXPECT_EQ(type->heldInline(), row.inlineValue) << int(row.kind) << " " << row.size;
        EXPECT_EQ(type->nullableStore(), row.isZType || row.kind == Kind::Pointer) << int(row.kind);
    }
    TypePtr wide = makeSized("Wide", Kind::Structure, 16);
    wide->setAlignment(16);
    EXPECT_FALSE(wide->heldInline());
}

TEST_F(MetaType, NamesBuildSignatures) {
    TypePtr type = makeType("ZThing", Kind::Object);
    EXPECT_STREQ(type->constructorName().string(), "ZThing()");
    EXPECT_STREQ(type->destructorName().string(), "~ZThing()");
    EXPECT_STREQ(type->copyConstructorName().string(), "ZThing(const ZThing*)");
    EXPECT_STREQ(type->streamConstructorName().string(), "ZThing(const ZStream*)");
    EXPECT_STREQ(type->loadConstructorName(false).string(), "ZThing(const ZXSTNode*)");
    EXPECT_STREQ(type->loadConstructorName(true).string(), "ZThing(const ZXSTNode*, const ZSelector&)");
    EXPECT_EQ(type->selector(), type->getName());
    EXPECT_TRUE(type->isMetaType());
    EXPECT_EQ(type->getName(), type->nameLabel());
    type->setNameLabel("thing");
    EXPECT_EQ(type->nameLabel(), ZSelector("thing"));
    int index = -1;
    EXPECT_STREQ(type->lockLabel(&index), "ZMetaType - ZThing");
    type->setInternalSize(17);
    EXPECT_EQ(type->getInternalSize(), 32u);
}

TEST_F(MetaType, BlockNamesAreOwnOrByName) {
    TypePtr type = makeType("Blocked");
    EXPECT_TRUE(type->getBlockName().isEmpty());
    EXPECT_TRUE(ZMetaType::addTypeBlockName("Blocked", "blk"));
    EXPECT_EQ(type->getBlockName(), ZSelector("blk"));
    type->setBlockName("own");
    EXPECT_EQ(type->getBlockName(), ZSelector("own"));
    type->setBlockName({});
    EXPECT_TRUE(ZMetaType::removeTypeBlockName("Blocked"));
    EXPECT_FALSE(ZMetaType::removeTypeBlockName("Blocked"));
    EXPECT_TRUE(type->getBlockName().isEmpty());
    ZMetaType::close();
}

TEST_F(MetaType, WordsOfDeclarations) {
    EXPECT_EQ(ZMetaType::scanFlags("public lock other"), uint(ZMetaType::Public | ZMetaType::Lockable));
    EXPECT_EQ(ZMetaType::scanFlags("final"), uint(ZMetaType::Final));
    EXPECT_EQ(ZMetaType::scanFlags("finally"), 0u);
    EXPECT_EQ(ZMetaType::extractOptions("final a noblend b lock public"), ZSelector("a b"));
}

TEST_F(MetaType, PredicatesFollowTheWordsOfBases) {
    TypePtr base = makeType("Base"), type = makeType("Derived", Kind::Class, {base}), other = makeType("Other");
    EXPECT_TRUE(type->blendable() && type->allowCSPMark() && type->allowCSPUpdate());
    EXPECT_FALSE(type->skipMemberSearch() || type->storageAlias() || type->binaryXSTValue());
    base->setExtraFlags("store noblend nocsp nomember storagealias");
    EXPECT_FALSE(type->hasOption("noblend", false));
    EXPECT_TRUE(type->hasOption("noblend", true));
    EXPECT_FALSE(type->hasOption("nob", true));
    EXPECT_FALSE(type->blendable() || type->allowCSPMark() || type->allowCSPUpdate());
    EXPECT_TRUE(type->skipMemberSearch() && type->storageAlias());
    base->setExtraFlags("aliasedstore noupdate");
    EXPECT_TRUE(type->blendable() && type->allowCSPMark());
    EXPECT_FALSE(type->allowCSPUpdate());
    EXPECT_EQ(type->aliasedStoreType(), base.get());
    EXPECT_FALSE(type->aliasedStore());
    EXPECT_TRUE(base->aliasedStore());
    // A base that comes later counts too.
    other->setExtraFlags("noblend binaryxst");
    other->setFlags(ZMetaType::RefStore);
    EXPECT_FALSE(type->referenceStore());
    EXPECT_TRUE(type->addBase(other));
    EXPECT_TRUE(type->binaryXSTValue() && type->referenceStore());
    EXPECT_FALSE(type->blendable());
}

TEST_F(MetaType, FlagsAndTheirReaders) {
    TypePtr type = makeType("Flagged", Kind::Class);
    type->setFlags(ZMetaType::Polymorphic | ZMetaType::Container | ZMetaType::Mutex | ZMetaType::Variable);
    ZMetaType* variant = type->getQualified("const Flagged&");
    ASSERT_TRUE(variant);
    for (const ZMetaType* asked : {type.get(), variant}) {
        EXPECT_TRUE(asked->polymorphic() && asked->isContainer() && asked->isVariable());
        EXPECT_FALSE(asked->spinLock() || asked->storable() || asked->isTraversed() || asked->hasCreator());
    }
    // A wrapper shows in all bases, also in those that are reached later.
    TypePtr derived = makeType("Wrapping", Kind::Class, {type});
    EXPECT_FALSE(type->hasWrapper());
    derived->setFlags(ZMetaType::Wrapper);
    EXPECT_TRUE(type->hasWrapper());
    TypePtr late = makeType("LateBase");
    EXPECT_TRUE(derived->addBase(late));
    EXPECT_TRUE(late->hasWrapper()) << "also for a base that comes later";
    derived->setFlags(0);
    EXPECT_FALSE(type->hasWrapper());
}

TEST_F(MetaType, SelectorGroupsAreFoundThroughBases) {
    TypePtr base = makeType("GroupBase"), type = makeType("GroupOwner", Kind::Class, {base});
    ZSelectorMap signals;
    signals.set("changed", "void changed()");
    EXPECT_TRUE(base->setSelectorGroup("signals", signals));
    EXPECT_EQ(type->getNamedSelector("changed"), ZSelector("void changed()"));
    EXPECT_TRUE(type->getNamedSelector("missing").isEmpty());
    EXPECT_EQ(base->selectorGroup("signals").count(), 1u);
    EXPECT_EQ(type->selectorGroup("signals").count(), 0u);
    ZArrayT<ZSelector> names;
    EXPECT_TRUE(base->selectorGroupNames(names));
    EXPECT_EQ(names.count(), 1u);
}

TEST_F(MetaType, EveryConstructorSurvivesEveryFailingAllocation) {
    TypePtr base = makeType("FailBase"), source = makeType("FailSource", Kind::Class, {base});
    source->setExtraFlags("noblend");
    source->addAlias(base);
    const ZSelector name("FailMade"), unknown("FailUnknown"), variant("const FailSource*");
    ZArrayT<ZMetaType*> types;
    types.append(base.get());
    types.append(source.get());
    ZArrayT<ZSelector> names;
    names.append(unknown);
    // What types make at their first use stays.
    source->getQualified(variant);
    source->clearVariants();
    using Make = ZMetaType* (*)(const ZSelector&, const ZArrayT<ZMetaType*>&, const ZArrayT<ZSelector>&, ZMetaType*);
    const Make makers[] = {
        [](auto&, auto&, auto&, ZMetaType*) { return zmake<ZMetaType>(); },
        [](auto& name, auto&, auto&, ZMetaType*) { return zmake<ZMetaType>(nullptr, name, Kind::Class); },
        [](auto& name, auto& types, auto&, ZMetaType*) { return zmake<ZMetaType>(nullptr, name, Kind::Class, types); },
        [](auto& name, auto&, auto& names, ZMetaType*) { return zmake<ZMetaType>(nullptr, name, Kind::Class, names); },
        [](auto&, auto&, auto&, ZMetaType* source) { return zmake<ZMetaType>(source); },
        [](auto&, auto&, auto&, ZMetaType* source) { return source->copyType(); },
    };
    for (const Make& make : makers) {
        {
            // Names that only a failure asks for are kept from then on.
            AllocProbe first;
            first.failAt(2);
            if (ZMetaType* made = make(name, types, names, source)) made->release();
            forgetLists({base, source});
        }
        int whole = 0;
        failEachAllocation([&](AllocProbe& probe) {
            ZMetaType* made = make(name, types, names, source);
            // What is worked out on the way can be done without.
            EXPECT_TRUE(made || probe.failed());
            EXPECT_EQ(zfailcount(), 0);
            if (made) {
                whole += !probe.failed();
                EXPECT_EQ(made->refcount(), 1);
                made->release();
            }
            forgetLists({base, source});
        });
        EXPECT_EQ(whole, 1);
        EXPECT_EQ(base->getDescendants().count(), 1u);
        EXPECT_EQ(source->getCopies().count(), 0u);
    }
    {
        AllocProbe first;
        first.failAt(2);
        source->getQualified(variant);
        source->clearVariants();
        forgetLists({base, source});
    }
    failEachAllocation([&](AllocProbe& probe) {
        ZMetaType* made = source->getQualified(variant);
        EXPECT_EQ(made == nullptr, probe.failed());
        source->clearVariants();
        forgetLists({base, source});
    });
    EXPECT_EQ(source->refcount(), 1);
}
