#include "toolkit/thread.h"

#include "toolkit/atomic.h"
#include "toolkit/epoch.h"
#include "toolkit/lock.h"

#include <pthread.h>

namespace toolkit {

namespace {

constexpr int hookRoom = 16;
const ThreadHooks* hookTable[hookRoom];

constexpr uint wordBits = 64;
uint64_t numbersInUse[threadNumberLimit / wordBits];
uint lastNumber = 0;
int numberGuard = 0;

pthread_key_t endKey;
bool endKeyMade = false;
pthread_once_t endKeyOnce = PTHREAD_ONCE_INIT;

/// The next number behind the last one given that nobody has.
uint takeNumber() {
    spinLock(numberGuard);
    do lastNumber = lastNumber + 1 < threadNumberLimit ? lastNumber + 1 : 1;
    while (numbersInUse[lastNumber / wordBits] >> lastNumber % wordBits & 1);
    numbersInUse[lastNumber / wordBits] |= uint64_t(1) << lastNumber % wordBits;
    uint number = lastNumber;
    spinUnlock(numberGuard);
    return number;
}

void giveNumberBack(uint number) {
    spinLock(numberGuard);
    numbersInUse[number / wordBits] &= ~(uint64_t(1) << number % wordBits);
    spinUnlock(numberGuard);
}

/// Runs behind the destructors of the thread's own objects, which may still take locks. One that does so even later
/// registers the thread anew, and this runs once more.
void threadEnds(void*) {
    for (int i = hookRoom; i > 0; --i)
        if (const ThreadHooks* hooks = loadAcquire(hookTable[i - 1]); hooks && hooks->ends) hooks->ends(hooks->context);
    ThreadState& state = threadState;
    epochThreadEnds(state);
    // A thread that ends while it reads keeps its number: the entries of its list can't be given up by another.
    if (state.heldReads == 0) giveNumberBack(state.number);
    state.number = 0;
    state.registered = false;
}

} // namespace

uint registerThread() {
    ThreadState& state = threadState;
    if (state.number) return state.number;
    state.number = takeNumber();
    pthread_once(&endKeyOnce, [] { endKeyMade = pthread_key_create(&endKey, threadEnds) == 0; });
    state.registered = endKeyMade && pthread_setspecific(endKey, &state) == 0;
    for (auto& place : hookTable)
        if (const ThreadHooks* hooks = loadAcquire(place); hooks && hooks->begins) hooks->begins(hooks->context);
    return state.number;
}

bool addThreadHooks(const ThreadHooks* hooks) {
    for (auto& place : hookTable) {
        const ThreadHooks* none = nullptr;
        if (compareExchange(place, none, hooks)) return true;
    }
    return false;
}

bool removeThreadHooks(const ThreadHooks* hooks) {
    for (auto& place : hookTable) {
        const ThreadHooks* seen = hooks;
        if (hooks && compareExchange(place, seen, static_cast<const ThreadHooks*>(nullptr))) return true;
    }
    return false;
}

} // namespace toolkit
