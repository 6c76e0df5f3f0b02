#include "object/ZMetaType.h"
#include "object/ZType.h"
#include "object/kindValues.h"
#include "value/ZVariant.h"
#include "value/variantTypes.h"

using namespace orv;

// What a variant holds

ZMetaType* ZVariant::mainType() const {
    ZMetaType* type = this->type();
    if (!type) return nullptr;
    if (type->kind() < ZMetaType::Pointer) return type;
    if (type->kind() == ZMetaType::Pointer) {
        if (type->getPtrCount() != 1) return type;
        ZMetaType* main = type->mainOrSelf();
        if (main->holdsZType() && refcount(held()) > 0)
            if (ZMetaType* actual = static_cast<ZType*>(held())->type()) return actual;
        return main;
    }
    return type->isLocalType() ? type : type->mainOrSelf();
}
ZMetaType* ZVariant::valueType() const {
    ZMetaType* type = this->type();
    if (!type || type->kind() < ZMetaType::Pointer) return type;
    ZMetaType* own = detail::pointedType(type);
    if (own && own->holdsZType() && refcount(held()) > 0)
        if (ZMetaType* actual = static_cast<ZType*>(held())->type()) return actual;
    return own;
}
int ZVariant::typeType() const {
    ZMetaType* main = mainType();
    return main ? main->kind() : ZMetaType::Unknown;
}
ZSelector ZVariant::typeName() const {
    ZMetaType* main = mainType();
    return main ? main->getName() : ZSelector();
}
ZSelector ZVariant::typeLabel() const {
    ZMetaType* main = mainType();
    return main ? main->nameLabel() : ZSelector();
}
int ZVariant::typeIndexLabel() const {
    ZMetaType* main = mainType();
    return main ? main->indexLabel() : ZMetaType::NoLabel;
}
ZSelector ZVariant::typeSelector() const {
    ZMetaType* main = mainType();
    return main ? main->typeSelector() : ZSelector();
}
ZMetaType* ZVariant::primaryBase() const {
    ZMetaType* main = mainType();
    return main ? main->primaryBase() : nullptr;
}
bool ZVariant::isType(const ZMetaType* wanted) const {
    ZMetaType* main = mainType();
    if (!main || !wanted) return false;
    if (main == wanted) return true;
    ZMetaType* data = main->getDataType();
    return data && (data == wanted || data->isBase(wanted));
}
bool ZVariant::isType(const ZSelector& name) const {
    ZMetaType* main = mainType();
    if (!main || name.isEmpty()) return false;
    if (main->getName() == name) return true;
    ZMetaType* data = main->getDataType();
    return data && (data->getName() == name || data->isBase(name));
}
bool ZVariant::isNullData() const {
    const void* value = getPtr();
    if (!value) return true;
    ZMetaType* data = valueType();
    if (!data) return false;
    if (detail::hasPlainKind(data)) return isNullKind(data->kind(), value, data->byteSize());
    return data->isNullData(value);
}
bool ZVariant::isPointer() const { return type() && type()->kind() == ZMetaType::Pointer; }
bool ZVariant::isContainer() const {
    ZMetaType* main = mainType();
    return main && main->isContainer();
}
bool ZVariant::isZType() const { return detail::refersToInstance(type()); }
bool ZVariant::isSelector() const { return type() && type()->kind() == ZMetaType::Selector; }
bool ZVariant::isSelectorType() const { return typeType() == ZMetaType::Selector; }
bool ZVariant::isVariableType() const {
    if (isSelector()) return reinterpret_cast<const ZSelector*>(data)->variableName();
    ZMetaType* main = mainType();
    return main && main->isVariable();
}
bool ZVariant::isDetached() const {
    const void* value = getPtr();
    if (!value) return true;
    if (referenceCount() > 1) return false;
    ZMetaType* own = valueType();
    return !own || isPlainKind(own->kind()) || own->isDetachedInstance(value);
}
int ZVariant::cost() const {
    ZMetaType* main = mainType();
    return int(sizeof(ZVariant)) + (main ? main->calcInternalSize(true) + int(main->byteSize()) : 0);
}
