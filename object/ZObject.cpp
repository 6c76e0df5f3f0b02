#include "object/ZObject.h"

#include "core/ZInternal.h"
#include "core/construct.h"
#include "object/ZObjectData.h"
#include "object/ZPropertyPtr.h"

namespace {
orv::ObjectData* makePart(ZInternal* block) {
    constexpr int room = orv::internalRoom(sizeof(orv::ObjectData));
    if (void* memory = ZInternal::getmem(block, nullptr, room)) return ::new (memory) orv::ObjectData;
    ZError::fail();
    return nullptr;
}
} // namespace

ZObject::ZObject(const __ZPassMetaType* type, ZInternal* given)
    : ZType(type), internal(ZInternal::create(nullptr, orv::internalRoom(sizeof(orv::ObjectData)), given)),
      priv(makePart(internal)) {}

ZObject::ZObject(const ZObject* source, const __ZPassMetaType* type, ZInternal* given)
    : ZType(source, type), internal(ZInternal::create(nullptr, orv::internalRoom(sizeof(orv::ObjectData)), given)),
      priv(makePart(internal)) {
    if (source && source->priv && priv) priv->selector = source->priv->selector;
}

ZObject::~ZObject() {
    if (priv) priv->~ObjectData();
    zfree(internal);
}

bool ZObject::isMetaType() const { return priv && priv->isMetaType; }
void ZObject::setIsMetaType(bool on) {
    if (priv) priv->isMetaType = on;
}
ZSelector ZObject::selector() const { return priv ? priv->selector : ZSelector(); }
void ZObject::setSelector(const ZSelector& name) {
    if (priv) priv->selector = name;
}
