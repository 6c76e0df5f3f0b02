#include "core/ZArrayT.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "value/ZVariant.h"

// What types and objects answer about bindings while the library has none: nothing is bound, so nothing is called or
// changed, and no binding has a place.

bool ZMetaType::callInstance(ZObject*, const ZSelector&) const { return false; }
bool ZMetaType::bindInstance(ZObject*) { return false; }
bool ZMetaType::bindInstance(ZObject*, const ZSelector&) { return false; }
bool ZMetaType::unbindInstance(ZObject*) { return false; }
bool ZMetaType::unbindInstance(ZObject*, const ZSelector&) { return false; }
void ZMetaType::changeInstanceBindings(ZMethod*) {}

int ZObject::binding(const ZMethod*) const { return -1; }
int ZObject::findBinding(const ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&) const {
    return -1;
}
int ZObject::bind(ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&) { return -1; }
bool ZObject::xbind(ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&) { return false; }
bool ZObject::xunbind(ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&) {
    return false;
}
int ZObject::bindArg(ZObject*, const ZSelector&, const ZSelector&, const ZArrayT<ZVariant>&, int) { return -1; }
int ZObject::bindService(const ZSelector&, const ZSelector&, const ZSelector&) { return -1; }
bool ZObject::autobind(ZObject*, bool) { return false; }
bool ZObject::unbind(ZObject*, const ZSelector&, const ZSelector&, const ZSelector&, const ZSelector&) { return false; }
bool ZObject::unbindsrc(const ZSelector&, const ZSelector&) { return false; }
bool ZObject::unbinddst(const ZSelector&, const ZSelector&) { return false; }
bool ZObject::unbindLabeled(const ZSelector&) { return false; }
bool ZObject::unbindLabeled(ZObject*, const ZSelector&) { return false; }
bool ZObject::unbindService(const ZSelector&, const ZSelector&, const ZSelector&) { return false; }
int ZObject::sbind(ZObject*, const char*, const char*) { return -1; }
bool ZObject::sxbind(ZObject*, const char*, const char*) { return false; }
int ZObject::lbind(const ZSelector&, ZObject*, const ZSelector&, const ZSelector&) { return -1; }
bool ZObject::lxbind(const ZSelector&, ZObject*, const ZSelector&, const ZSelector&) { return false; }
bool ZObject::bindings(ZArrayT<int>&) const { return false; }
bool ZObject::bindings(const ZMethod*, ZArrayT<int>&) const { return false; }
bool ZObject::bindings(const ZObject*, ZArrayT<int>&) const { return false; }
int ZObject::bindType(ZMetaType*, const ZSelector&, const ZSelector&) { return -1; }
bool ZObject::unbindType(ZMetaType*, const ZSelector&, const ZSelector&) { return false; }
ZObject* ZObject::caller() const { return nullptr; }
bool ZObject::callerReturn(const ZVariant&) { return false; }
ZMetaType* ZObject::callerRetType() const { return nullptr; }
bool ZObject::callMethodBindings(ZMethod*, const ZArrayT<ZVariant>&) { return false; }
bool ZObject::callPropertyBindings(const ZSelector&, const ZVariant&) { return false; }
bool ZObject::invokePropertyBindings(const ZSelector&, const ZVariant&) { return false; }
