#include "object/ZMethodPtr.h"

#include "core/SlotPool.h"
#include "object/ZNamedMethod.h"

namespace {
constinit orv::SlotPool<ZMethodPtr> pool("ZMethodPtr", 2048);
constinit orv::SlotPool<ZNamedMethod> namedPool("ZNamedMethod", 2048);
} // namespace

bool ZMethodPtr::open() { return pool.open(); }
void ZMethodPtr::close() { pool.close(); }

ZMethodPtr::ZMethodPtr(const ZSelector& signature, const ZSelector& qualifier)
    : method(ZMethod::create(signature, qualifier)) {
    if (method)
        name = method->methodName();
    else
        ZError::fail();
}
void ZMethodPtr::set(const ZMethod* other) {
    ZMethod* old = std::exchange(method, ZMethod::retain(other));
    name = method ? method->methodName() : ZSelector();
    ZMethod::release(old);
}
ZMethodPtr* ZMethodPtr::create(const ZMethod* method) { return pool.make(method); }
void ZMethodPtr::release() { pool.release(this); }

bool ZNamedMethod::open() { return namedPool.open(); }
void ZNamedMethod::close() { namedPool.close(); }
ZNamedMethod* ZNamedMethod::create(const ZMethod* method) { return namedPool.make(method); }
void ZNamedMethod::release() { namedPool.release(this); }
