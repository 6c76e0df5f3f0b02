#include "core/ZLock.h"

#include "core/ZError.h"
#include "core/construct.h"
#include "core/debug.h"
#include "core/state.h"

namespace {

bool lockingOn() { return toolkit::load(orv::coreState.bound) && toolkit::load(orv::coreState.allowLocking); }

ZLock* sharedLocks = nullptr;
uint sharedCounter = 0;

/// The cells of the process-wide locks; 0 until one is wanted.
struct NamedLock {
    TLockId id;
    const char* label;
};
NamedLock gpuLock{0, "GPU lock"}, openGLLock{0, "OpenGL lock"}, printerLock{0, "printer lock"};
/// Regions of the thread that holds the OpenGL lock; written by that thread.
int openGLRegions = 0;

TLockId namedId(NamedLock& named) {
    TLockId known = toolkit::loadAcquire(named.id);
    if (known || !lockingOn()) return known;
    TLockId made = toolkit::createLock(true, true);
    if (!made) return 0;
    toolkit::setLockLabel(made, named.label, 0);
    if (toolkit::compareExchange(named.id, known, made)) return made;
    toolkit::destroyLock(made, false);
    return known;
}
bool lockNamed(NamedLock& named) { return lockingOn() && toolkit::lockAlone(namedId(named)); }
bool unlockNamed(NamedLock& named) { return toolkit::unlock(toolkit::loadAcquire(named.id)); }

void writeLog(const char* event, TLockId id, const char* label, int index) {
    zdebug("%s %u: %s, %d", event, id, label ? label : "", index);
}

} // namespace

ZLock::ZLock() : ZLock(true) {}

ZLock::ZLock(bool wanted) {
    if (wanted && lockingOn() && !create(true, true)) ZError::fail();
}

ZLock::ZLock(TLockId wanted) { setId(wanted); }

ZLock::ZLock(const ZLock& other) { setId(other.id); }

ZLock& ZLock::operator=(const ZLock& other) {
    assign(other);
    return *this;
}

bool ZLock::create(bool spinning, bool recursive) {
    if (!id) id = toolkit::createLock(spinning, recursive);
    return id != 0;
}

bool ZLock::reset(bool spinning, bool recursive) {
    remove(true);
    return create(spinning, recursive);
}

void ZLock::remove(bool mayBeHeld) {
    if (id) toolkit::destroyLock(id, mayBeHeld);
    id = 0;
}

void ZLock::assign(const ZLock& other) { setId(other.id); }

void ZLock::setId(TLockId wanted) {
    TLockId old = id;
    id = toolkit::retainLock(wanted) ? wanted : 0;
    if (old) toolkit::destroyLock(old, true);
}

bool ZLock::lock(bool tryOnly) const {
    if (!id) return true;
    return tryOnly ? toolkit::tryLockAlone(id) : toolkit::lockAlone(id);
}

int ZLock::lockCount() const { return toolkit::lockHolds(id); }
uint ZLock::thread() const { return toolkit::lockHolder(id); }

const char* ZLock::getLabel(int* index) const { return toolkit::lockLabel(id, index); }
void ZLock::setLabel(const char* label, int index) { toolkit::setLockLabel(id, label, index); }
int ZLock::getIndex(int slot) const { return toolkit::lockSlot(id, slot); }
void ZLock::setIndex(int slot, int value) { toolkit::setLockSlot(id, slot, value); }
uint ZLock::getNumber() const { return toolkit::lockNumber(id); }

void ZLock::setLogging(bool on) {
    if (on) toolkit::setLockLog(writeLog);
    toolkit::setLockLogging(id, on);
}

void ZLock::setSpinning(bool on) {
    if (id)
        toolkit::setLockSpinning(id, on);
    else
        create(on, true);
}

bool ZLock::open(int count) {
    if (sharedLocks) return true;
    if (count <= 0) return false;
    ZLock* made = zmakearray<ZLock>(size_t(count));
    if (!made) return false;
    for (int i = 0; i < count; ++i)
        if (!made[i].create(true, true)) {
            zreleasearray(made);
            return false;
        }
    sharedLocks = made;
    return true;
}

void ZLock::close() {
    zreleasearray(sharedLocks);
    sharedLocks = nullptr;
}

ZLock ZLock::shared() {
    uint turn = toolkit::addFetch(sharedCounter, 1) - 1;
    return sharedLocks ? ZLock(sharedLocks[turn % uint(zarraycount(sharedLocks))]) : ZLock(false);
}

ZLock ZLock::object(const void* block) { return ZLock(toolkit::blockLock(block)); }

void ZLock::lockGPU() { lockNamed(gpuLock); }
void ZLock::unlockGPU() { unlockNamed(gpuLock); }
void ZLock::lockOpenGL() { lockNamed(openGLLock); }
void ZLock::unlockOpenGL() { unlockNamed(openGLLock); }

void ZLock::enterOpenGL() {
    if (lockNamed(openGLLock)) toolkit::store(openGLRegions, openGLRegions + 1);
}

void ZLock::exitOpenGL() {
    if (!openGLRegion()) return;
    toolkit::store(openGLRegions, openGLRegions - 1);
    unlockNamed(openGLLock);
}

bool ZLock::openGLRegion() {
    return toolkit::lockHolder(toolkit::loadAcquire(openGLLock.id)) == toolkit::threadNumber() &&
           toolkit::load(openGLRegions) > 0;
}

void ZLock::lockPrinter() { lockNamed(printerLock); }
void ZLock::unlockPrinter() { unlockNamed(printerLock); }
