#include "tests/support/AllocProbe.h"

#include <mutex>
#include <unordered_map>

namespace {
struct State {
    std::mutex lock;
    std::unordered_map<void*, std::string> blocks;
    long failAt = 0, allocations = 0;
    bool onwards = false, failed = false;
};
State state;
const toolkit::AllocHooks* before = nullptr;

bool allow(size_t) {
    std::lock_guard held(state.lock);
    ++state.allocations;
    bool refuse =
        state.failAt && (state.allocations == state.failAt || (state.onwards && state.allocations > state.failAt));
    state.failed |= refuse;
    return !refuse;
}
void made(void* p, size_t size, const char* type) {
    std::lock_guard held(state.lock);
    state.blocks[p] = type ? type : "block of " + std::to_string(size);
}
void gone(void* p) {
    std::lock_guard held(state.lock);
    state.blocks.erase(p);
}
void mark(void* p, const char* file, int line) {
    std::lock_guard held(state.lock);
    if (auto at = state.blocks.find(p); at != state.blocks.end())
        at->second = std::string(file) + ":" + std::to_string(line);
}
const toolkit::AllocHooks hooks{allow, made, gone, mark};
} // namespace

AllocProbe::AllocProbe() {
    std::lock_guard held(state.lock);
    state.blocks.clear();
    state.failAt = state.allocations = 0;
    state.failed = false;
    before = toolkit::setAllocHooks(&hooks);
}
AllocProbe::~AllocProbe() { toolkit::setAllocHooks(before); }

void AllocProbe::failAt(long n, bool onwards) {
    std::lock_guard held(state.lock);
    state.failAt = n;
    state.onwards = onwards;
    state.allocations = 0;
    state.failed = false;
}
bool AllocProbe::failed() const {
    std::lock_guard held(state.lock);
    return state.failed;
}
long AllocProbe::allocations() const {
    std::lock_guard held(state.lock);
    return state.allocations;
}
long AllocProbe::live() const {
    std::lock_guard held(state.lock);
    return long(state.blocks.size());
}
std::string AllocProbe::leaks() const {
    std::lock_guard held(state.lock);
    std::map<std::string, int> byType;
    for (auto& [p, type] : state.blocks) ++byType[type];
    std::string text;
    for (auto& [type, count] : byType) text += std::to_string(count) + " x " + type + "\n";
    return text;
}
