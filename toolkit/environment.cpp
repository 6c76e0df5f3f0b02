#include "toolkit/environment.h"

#include "toolkit/memory.h"

#include <cstring>

namespace toolkit {

static Environment* current = nullptr;
static int slots[configSlots];

Environment* environment() { return load(current); }

int getConfig(int slot) { return environment() && slot >= 0 && slot < configSlots ? load(slots[slot]) : 0; }
void setConfig(int slot, int value) {
    if (environment() && slot >= 0 && slot < configSlots) store(slots[slot], value);
}

void setText(char*& text, const char* value) {
    char* copy = nullptr;
    if (value) {
        size_t size = std::strlen(value) + 1;
        copy = static_cast<char*>(allocBlock(size));
        if (copy) std::memcpy(copy, value, size);
    }
    freeBlock(text);
    text = copy;
}

bool openEnvironment() {
    auto made = static_cast<Environment*>(allocZeroedBlock(sizeof(Environment)));
    if (!made) return false;
    made->userPath = made->clearTemporary = 1;
    std::memset(slots, 0, sizeof slots);
    store(current, made);
    return true;
}

void closeEnvironment() {
    Environment* gone = exchange(current, static_cast<Environment*>(nullptr));
    if (!gone) return;
    freeBlock(gone->appName);
    freeBlock(gone->appLongName);
    freeBlock(gone);
}

} // namespace toolkit
