#include "core/construct.h"
#include "module/packages.h"
#include "object/ZEnumType.h"
#include "object/ZMethod.h"
#include "object/ZPropertyPtr.h"
#include "object/glueLife.h"
#include "object/metaClass.h"
#include "object/methodWords.h"
#include "object/ztype.h"
#include "toolkit/image.h"
#include "toolkit/memory.h"

#include <cstring>

// Rows become types, and their lists tables, here.

namespace orv {

namespace {

using namespace glue;

static_assert(staticMethod == int(ZMethod::TypeMethod) && variadicMethod == int(ZMethod::Variadic));

/// The type of a text in a row, as seen from the type that the row is of.
ZMetaType* typeOf(const ZMetaType* from, const char* text) {
    return text && *text ? from->findType(ZSelector(text)) : nullptr;
}

/// Where a base stands in an instance.
int offsetOf(const BaseRow& base) {
    alignas(64) static char instance[64];
    return int(static_cast<const char*>(base.upcast(instance)) - instance);
}

template <class F> void setCallback(ZMetaType* type, ZMetaType::CallBack index, F* function) {
    if (function) type->setCallback(index, reinterpret_cast<ZTypeCallback>(function));
}

/// The record knows how many words the entry takes, and calls it as what it is.
template <class F> ZMethod::Func asFunc(F entry) {
    return reinterpret_cast<ZMethod::Func>(reinterpret_cast<void (*)()>(entry));
}
ZMethod::Func entryOf(const MethodRow& row) {
    switch (row.fastWords) {
    case 0:
        return row.fast.f0;
    case 1:
        return asFunc(row.fast.f1);
    case 2:
        return asFunc(row.fast.f2);
    case 3:
        return asFunc(row.fast.f3);
    case 4:
        return asFunc(row.fast.f4);
    default:
        return nullptr;
    }
}

/// The selector of a text in a row, which is in normal form. Texts that stay as long as this code aren't copied.
ZSelector selectorOf(const char* text) {
    if (!toolkit::mappedForGood(text)) return ZSelector(text);
    ZSelector made;
    made.link(text, false);
    return made;
}

bool addMethod(ZMetaType* type, const MethodRow& row, const ZSelector& constWord) {
    ZMethod* method = ZMethod::create(selectorOf(row.text), row.isConst ? constWord : ZSelector());
    if (!method) return false;
    if (row.options) method->setOptions(ZMethod::extractOptions(ZSelector(row.options)));
    if (auto entry = entryOf(row)) method->setFunc(entry, row.fastWords);
    method->setStacked(row.stacked);
    method->setFlags(row.flags);
    method->setSandBoxLevel(row.sandBox);
    const bool added = method->isValid() && type->appendMethod(method);
    ZMethod::release(method);
    return added;
}

bool createMethods(ZMetaType* type) {
    const ClassRow* row = type->declaration();
    if (!row) return true;
    const ZSelector& constWord = zsel<"const">();
    for (const MethodRow& method : row->methods)
        if (!addMethod(type, method, constWord)) return false;
    return true;
}

/// The words that a property keeps: options and update methods.
ZSelector keptWords(const char* words) {
    char text[longestWords];
    size_t length = 0;
    std::string_view rest = words;
    for (std::string_view word; !(word = propertyNextWord(rest)).empty();) {
        const PropertyWordKind kind = propertyWordMeaning(word).kind;
        if (kind != PropertyWordKind::Option && kind != PropertyWordKind::Update) continue;
        if (length) text[length++] = ' ';
        std::memcpy(text + length, word.data(), word.size());
        length += word.size();
    }
    return ZSelector(text, int(length));
}

bool addProperty(ZMetaType* type, const PropertyRow& row) {
    ZMetaType* valueType = typeOf(type, row.type);
    ZFailGuard guard;
    ZPropertyPtr entry(ZSelector(row.name), ZVariant(valueType, row.value), row.flags);
    if (guard.rose() || !entry.property()) {
        guard.forget();
        return false;
    }
    ZProperty& property = *entry.property();
    property.setVersion(row.version);
    if (row.index) property.setIndex(typeOf(type, row.index));
    if (row.item) property.setItemType(typeOf(type, row.item));
    if (row.options) property.setOptions(keptWords(row.options));
    property.setOffset(row.offset);
    property.setSandBoxLevel(row.sandBox);
    return type->addPropertyDef(entry);
}

bool createProperties(ZMetaType* type) {
    const ClassRow* row = type->declaration();
    if (!row) return true;
    for (const PropertyRow& property : row->properties)
        if (!addProperty(type, property)) return false;
    return true;
}

bool addEnum(ZMetaType* owner, const EnumRow& row) {
    auto type = zmake<ZEnumType>(nullptr, ZSelector(row.name), passType(ztype<ZEnumType>()));
    if (!type) return false;
    type->setSize(uint(row.size));
    type->setRow(&row);
    const bool done = owner->addType(type);
    if (done) type->setPackage(owner->package());
    type->release();
    return done;
}

ZMetaType* newType(ZPackage* package, const ZSelector& name, const ClassRow& row, const ZArrayT<ZSelector>& bases) {
    const MetaClass& meta = row.info->meta ? *row.info->meta : MetaClassOf<ZMetaType>::row;
    return meta.make(package, name, int(row.info->kind), bases);
}

/// What a type has of its row, nested ones as well as those of packages.
bool fillType(ZMetaType* type, const ClassRow& row);

bool addNested(ZMetaType* owner, const ClassRow& row) {
    const char* name = row.name;
    for (const char* at = name; *at; ++at)
        if (at[0] == ':' && at[1] == ':') name = at + 2;
    ZArrayT<ZSelector> bases;
    for (const BaseRow& base : row.bases)
        if (!bases.append(ZSelector(base.name))) return false;
    ZMetaType* type = newType(nullptr, ZSelector(name), row, bases);
    if (!type) return false;
    const bool done = owner->addType(type) && fillType(type, row);
    if (done) {
        type->setPackage(owner->package());
        type->resetBase();
    }
    type->release();
    return done;
}

bool createTypes(ZMetaType* type) {
    const ClassRow* row = type->declaration();
    if (!row) return true;
    for (const EnumRow& nested : row->enums)
        if (!addEnum(type, nested)) return false;
    for (const ClassRow* nested : row->types)
        if (!addNested(type, *nested)) return false;
    return true;
}

bool fillType(ZMetaType* type, const ClassRow& row) {
    const ClassInfo& info = *row.info;
    const Callbacks& life = *row.callbacks;
    type->setDeclaration(&row);
    type->setSize(row.size);
    type->setAlignment(row.alignment);
    if (info.internalSize) type->setInternalSize(info.internalSize);
    if (info.dynamicInternal) type->setDynamicInternal(true);
    if (info.internalOffset) type->setInternalOffset(int(info.internalOffset));
    for (int i = 0; i < row.bases.count; ++i)
        if (const int offset = offsetOf(row.bases.rows[i])) type->setBaseOffset(i, offset);

    setCallback(type, ZMetaType::CopyType, life.copyType);
    setCallback(type, ZMetaType::CreateInstance, life.create);
    setCallback(type, ZMetaType::DeleteInstance, life.destroy);
    setCallback(type, ZMetaType::ReleaseInstance, life.release);
    setCallback(type, ZMetaType::RetainInstance, life.retain);
    setCallback(type, ZMetaType::ConstructInstance, life.construct);
    setCallback(type, ZMetaType::DestructInstance, life.destruct);
    setCallback(type, ZMetaType::CopyInstance1, life.copy);
    setCallback(type, ZMetaType::CopyInstance2, life.copyNew);
    setCallback(type, ZMetaType::DetachInstance, life.detach);
    setCallback(type, ZMetaType::IsDetachedInstance, life.isDetached);
    setCallback(type, ZMetaType::CompareInstance, life.compare);
    setCallback(type, ZMetaType::FromString1, life.fromString);
    setCallback(type, ZMetaType::FromString2, life.newFromString);
    setCallback(type, ZMetaType::ToString, life.toString);
    setCallback(type, ZMetaType::Initialize, life.initialize);
    setCallback(type, ZMetaType::CreateDispatch, life.createDispatch);
    if (row.enums.count || row.types.count) setCallback(type, ZMetaType::CreateTypes, createTypes);
    if (row.methods.count) setCallback(type, ZMetaType::CreateMethods, createMethods);
    if (row.properties.count) setCallback(type, ZMetaType::CreateProperties, createProperties);

    if (info.words) type->setExtraFlags(ZSelector(info.words));
    if (info.blockName) type->setBlockName(ZSelector(info.blockName));
    if (info.sandBoxName) type->setSandBoxName(ZSelector(info.sandBoxName));
    if (info.sandBoxLevel >= 0) type->setSandBoxLevel(info.sandBoxLevel);
    // References are counted where they are given up.
    type->setFlags(info.flags | (life.retain ? uint(typeRetaining) : 0));
    type->setIndexLabel(info.indexLabel);
    if (info.pluginPrefix) type->setPluginPrefix(ZSelector(info.pluginPrefix));
    if (info.pluginId) type->setPluginId(ZSelector(info.pluginId));
    for (const PropertyRow& property : row.properties)
        if ((property.flags & (ZProperty::Dynamic | ZProperty::Optional)) == ZProperty::Dynamic)
            type->setDynamicProperties(true);

    for (const GroupRow& group : row.groups) {
        ZSelectorMap map;
        for (int i = 0; i < group.count; ++i)
            if (!map.set(ZSelector(group.pairs[i].name), ZSelector(group.pairs[i].value))) return false;
        if (!type->setSelectorGroup(ZSelector(group.name), map)) return false;
    }
    if (row.fixed.count && !type->setFixedMethodCount(row.fixed.count)) return false;
    for (const FixedRow& fixed : row.fixed)
        if (!type->setFixedMethod(fixed.index, ZSelector(fixed.text), ZSelector(fixed.qualifier))) return false;
    return type->initialize();
}

} // namespace

ZMetaType* makeType(ZPackage* package, const ClassRow& row) {
    const ZSelector name(row.name);
    if (name.isEmpty()) return nullptr;
    ZArrayT<ZSelector> bases;
    for (const BaseRow& base : row.bases)
        if (!bases.append(ZSelector(base.name))) return nullptr;
    ZMetaType* type = newType(package, name, row, bases);
    if (!type) return nullptr;
    const bool done = fillType(type, row);
    if (!done) package->unlinkType(type);
    // The package has its own reference.
    type->release();
    return done ? type : nullptr;
}

ZMetaType* typeOfType(const ZMetaType& type) {
    const ClassRow* row = type.declaration();
    return row && row->info->meta ? row->info->meta->type() : ztype<ZMetaType>();
}

} // namespace orv

void* orv::glue::newInstance(ZMetaType* type, size_t least) {
    const size_t size = type ? type->byteSize() : 0;
    return __znalloc(size < least ? least : size);
}
