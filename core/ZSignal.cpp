#include "core/ZSignal.h"

#include "core/ZError.h"
#include "core/state.h"
#include "toolkit/lock.h"

ZSignal::ZSignal() : ZSignal(toolkit::load(orv::coreState.bound)) {}

ZSignal::ZSignal(bool wanted) {
    if (wanted && !(id = toolkit::createSignal())) ZError::fail();
}

ZSignal::ZSignal(TLockId wanted) { setId(wanted); }
ZSignal::ZSignal(const ZSignal& other) { setId(other.id); }
ZSignal::~ZSignal() { toolkit::destroySignal(id); }

void ZSignal::assign(const ZSignal& other) { setId(other.id); }

void ZSignal::setId(TLockId wanted) {
    TLockId old = id;
    id = toolkit::retainSignal(wanted) ? wanted : 0;
    toolkit::destroySignal(old);
}

void ZSignal::send() const { toolkit::sendSignal(id); }
void ZSignal::broadcast(bool leaveSet) const { toolkit::broadcastSignal(id, leaveSet); }
bool ZSignal::wait(int timeout) const { return toolkit::waitSignal(id, timeout); }
void ZSignal::release() const { toolkit::releaseSignal(id); }
bool ZSignal::isReleased() const { return toolkit::signalReleased(id); }
