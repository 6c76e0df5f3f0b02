#include "core/ZSharedLock.h"

#include "core/memory.h"

// A stripe is a zeroed word, so a zeroed block is a block of free stripes.
static_assert(sizeof(ZSpinLock) == 4);

ZSharedLock::ZSharedLock(int bits) {
    if (!init(bits)) ZError::fail();
}

ZSharedLock::ZSharedLock(const ZSharedLock& other) : block(retain(other.block)), mask(block ? other.mask : 0) {}

bool ZSharedLock::init(int bits) {
    clear();
    uint shift = uint(bits) % 32;
    if (shift > uint(maxBits)) return false;
    block = static_cast<ZSpinLock*>(toolkit::allocZeroedBlock(sizeof(ZSpinLock) << shift));
    if (!block) return false;
    mask = (1u << shift) - 1;
    return true;
}

void ZSharedLock::assign(const ZSharedLock& other) {
    ZSpinLock* shared = retain(other.block);
    uint sharedMask = shared ? other.mask : 0;
    clear();
    block = shared;
    mask = sharedMask;
}

void ZSharedLock::clear() {
    zfree(block);
    block = nullptr;
    mask = 0;
}
