#include "tests/support/AllocProbe.h"

#include <mutex>
#include <unordered_map>

static constexpr auto relaxed = std::memory_order_relaxed;

/// What the probes share, and the hooks that fill it. Blocks are spread over many locks, and counts are relaxed, so
/// that watching orders threads little and the thread sanitizer still sees their races.
struct AllocWatch {
    struct Block {
        std::string type;
        long number;
    };
    struct Part {
        std::mutex lock;
        std::unordered_map<void*, Block> blocks;
    };
    static inline Part parts[64];
    static inline std::atomic<long> made{0};
    static inline std::atomic<AllocProbe*> probe{nullptr};
    static inline const toolkit::AllocHooks* before = nullptr;

    static Part& part(void* p) { return parts[(reinterpret_cast<uintptr_t>(p) >> 4) * 0x9E3779B97F4A7C15u >> 58]; }

    static bool allow(size_t) {
        AllocProbe* inner = probe.load(relaxed);
        if (!inner) return true;
        long n = inner->seen.fetch_add(1, relaxed) + 1, failing = inner->failing.load(relaxed);
        bool refuse = failing && (n == failing || (inner->onwards.load(relaxed) && n > failing));
        if (refuse) inner->refused.store(true, relaxed);
        return !refuse;
    }
    static void add(void* p, size_t size, const char* type) {
        Part& in = part(p);
        std::lock_guard held(in.lock);
        in.blocks[p] = {type ? type : "block of " + std::to_string(size), made.fetch_add(1, relaxed)};
    }
    static void remove(void* p) {
        Part& in = part(p);
        std::lock_guard held(in.lock);
        in.blocks.erase(p);
    }
    static void mark(void* p, const char* file, int line) {
        Part& in = part(p);
        std::lock_guard held(in.lock);
        if (auto at = in.blocks.find(p); at != in.blocks.end())
            at->second.type = std::string(file) + ":" + std::to_string(line);
    }
    static constexpr toolkit::AllocHooks hooks{allow, add, remove, mark};

    template <class F> static void each(long first, F&& visit) {
        for (Part& in : parts) {
            std::lock_guard held(in.lock);
            for (auto& [p, block] : in.blocks)
                if (block.number >= first) visit(block);
        }
    }
};

AllocProbe::AllocProbe() : outer(AllocWatch::probe), first(AllocWatch::made) {
    if (!outer)
        for (AllocWatch::Part& in : AllocWatch::parts) in.blocks.clear();
    AllocWatch::probe = this;
    if (!outer) AllocWatch::before = toolkit::setAllocHooks(&AllocWatch::hooks);
}
AllocProbe::~AllocProbe() {
    if (!outer) toolkit::setAllocHooks(AllocWatch::before);
    AllocWatch::probe = outer;
}

void AllocProbe::failAt(long n, bool onwards) {
    failing = n;
    this->onwards = onwards;
    seen = 0;
    refused = false;
}
bool AllocProbe::failed() const { return refused; }
long AllocProbe::allocations() const { return seen; }
long AllocProbe::live() const {
    long count = 0;
    AllocWatch::each(first, [&](const AllocWatch::Block&) { ++count; });
    return count;
}
std::map<std::string, long> AllocProbe::liveBlocks() const {
    std::map<std::string, long> byType;
    AllocWatch::each(first, [&](const AllocWatch::Block& block) { ++byType[block.type]; });
    return byType;
}
std::string AllocProbe::leaks() const {
    std::string text;
    for (auto& [type, count] : liveBlocks()) text += std::to_string(count) + " x " + type + "\n";
    return text;
}
