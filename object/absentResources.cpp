#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "value/ZVariant.h"

// What types answer about resources and their strings while the library has none: nothing is found, a text is its own
// translation, and nothing can be stored, removed or chosen.

ZStringResource* ZType::getStringRes() const { return nullptr; }
ZSelector ZType::stringResName() const { return {}; }
ZSelector ZType::stringName(int) const { return {}; }
int ZType::stringIndex(const ZSelector&) const { return -1; }
bool ZType::hasStringResource(const ZSelector&) const { return false; }
ZString ZType::translate(const ZSelector& name) const { return ZString(name); }
ZString ZType::translate(const ZString& text) const { return text; }
ZString ZType::translate(int) const { return {}; }
ZString ZType::transarg(const ZSelector& name, const ZArrayT<ZVariant>&) const { return ZString(name); }

ZVariant ZType::resource(const ZSelector&) const { return {}; }
ZVariant ZType::resource(const ZSelector&, const ZSelector&) const { return {}; }
ZVariant ZType::typeResource(const ZSelector&) const { return {}; }
ZMetaType* ZType::typeOfResource(const ZSelector&) const { return nullptr; }
bool ZType::setResource(const ZSelector&, const ZVariant&) { return false; }
bool ZType::setResource(const ZSelector&, int) { return false; }
bool ZType::setResource(const ZSelector&, bool) { return false; }
bool ZType::setResource(const ZSelector&, const ZType*) { return false; }
bool ZType::setResource(const ZSelector&, const ZSelector&, const ZVariant&) { return false; }
bool ZType::setResource(const ZSelector&, const ZSelector&, int) { return false; }
bool ZType::setResource(const ZSelector&, const ZSelector&, bool) { return false; }
bool ZType::setResource(const ZSelector&, const ZSelector&, const ZType*) { return false; }
bool ZType::removeResource(const ZSelector&) { return false; }
bool ZType::removeResource(const ZSelector&, const ZSelector&) { return false; }
bool ZType::applyStyle(const ZSelector&) { return false; }
bool ZType::applyStyle(const ZSelector&, const ZSelector&) { return false; }

ZVariant ZMetaType::loadResource(const ZSelector&) const { return {}; }
ZVariant ZMetaType::loadResource(const ZSelector&, const ZSelector&) const { return {}; }
ZVariant ZMetaType::loadTypeResource(const ZSelector&) const { return {}; }
ZMetaType* ZMetaType::loadResourceType(const ZSelector&) const { return nullptr; }
bool ZMetaType::storeResource(const ZSelector&, const ZVariant&) { return false; }
bool ZMetaType::storeResource(const ZSelector&, int) { return false; }
bool ZMetaType::storeResource(const ZSelector&, bool) { return false; }
bool ZMetaType::storeResource(const ZSelector&, const ZType*) { return false; }
bool ZMetaType::storeResource(const ZSelector&, const ZSelector&, const ZVariant&) { return false; }
bool ZMetaType::storeResource(const ZSelector&, const ZSelector&, int) { return false; }
bool ZMetaType::storeResource(const ZSelector&, const ZSelector&, bool) { return false; }
bool ZMetaType::storeResource(const ZSelector&, const ZSelector&, const ZType*) { return false; }
bool ZMetaType::deleteResource(const ZSelector&) { return false; }
bool ZMetaType::deleteResource(const ZSelector&, const ZSelector&) { return false; }
bool ZMetaType::selectStyle(const ZSelector&) { return false; }
bool ZMetaType::selectStyle(const ZSelector&, const ZSelector&) { return false; }

bool ZType::loadPersistentProperties() { return false; }
bool ZType::loadPersistentProperties(const ZSelector&) { return false; }
bool ZType::storePersistentProperties() const { return false; }

ZStringResource* ZObject::getObjectStringRes() const { return nullptr; }
ZStringResource* ZObject::getStringResource() const { return nullptr; }
bool ZObject::setStringRes(ZStringResource*) { return false; }
bool ZObject::setStringRes(const ZSelector&) { return false; }
void ZObject::resourceChanged(const ZSelector&) {}
void ZObject::resourceChanged(ZResource*) {}
