#include "core/ZUnique.h"
#include "object/ZMethodRef.h"
#include "object/ZObject.h"

// What objects answer about events, posts, timers and late release while the library has no queues: there is no queue,
// nothing is taken for later, and so nothing waits.

void ZObject::cancelDiscarded() {}
void ZObject::releaseDiscarded() {}
bool ZObject::isDiscarded() const { return false; }
bool ZObject::markForDiscard() { return discard(); }
bool ZObject::discard() { return false; }
bool ZObject::revive() { return false; }

ZEventQueue* ZObject::queue() const { return nullptr; }
ZEventQueue* ZObject::postingQueue() const { return nullptr; }
bool ZObject::linkEvent(ZEvent*) { return false; }
bool ZObject::unlinkEvent(ZEvent*) { return false; }
void ZObject::removeFromEvents() {}
bool ZObject::handleEvent(ZEvent*) { return false; }
bool ZObject::forwardEvent(ZEvent*, bool) { return false; }
bool ZObject::forwardCurrentEvent(bool) { return false; }
bool ZObject::sendEvent(ZEvent*) { return false; }
bool ZObject::runLoop(bool) { return false; }

ZUnique ZObject::postMethod(const ZMethodRef&) { return ZUnique(0); }
bool ZObject::postMethod(const ZUnique&, const ZMethodRef&) { return false; }
ZUnique ZObject::timedMethod(const ZMethodRef&, real) { return ZUnique(0); }
bool ZObject::timedMethod(const ZUnique&, const ZMethodRef&, real) { return false; }
bool ZObject::hasPostMethod(const ZUnique&) const { return false; }
bool ZObject::hasTimedMethod(const ZUnique&) const { return false; }
bool ZObject::isTimedPost(const ZSelector&) const { return false; }
bool ZObject::hasMethodPost(const ZSelector&) const { return false; }
int ZObject::startTimer(real, bool) { return 0; }
int ZObject::startTimer(const ZMethodRef&, real) { return 0; }
bool ZObject::stopTimer(int) { return false; }
bool ZObject::removePostMethod(const ZUnique&) { return false; }
bool ZObject::removeTimedMethod(const ZUnique&) { return false; }
bool ZObject::addMethodPost(const ZSelector&, const ZMethodRef&) { return false; }
bool ZObject::addMethodPost(const ZSelector&, const ZMethodRef&, real) { return false; }
bool ZObject::addMethodPost(const ZSelector&, const ZSelector&) { return false; }
bool ZObject::addMethodPost(const ZSelector&, const ZSelector&, real) { return false; }
bool ZObject::addMethodPost(const ZSelector&) { return false; }
bool ZObject::addMethodPost(const ZSelector&, real) { return false; }
void ZObject::exitLoop() {}
bool ZObject::postEvent(ZEvent*) { return false; }
