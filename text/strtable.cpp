#include "text/strtable.h"

#include "core/ZSpinLock.h"
#include "core/debugLayout.h"
#include "toolkit/hash.h"

#include <cstddef>
#include <cstring>

namespace orv::strtable {

namespace {

/// One text: this head, then the units and a terminator of two units.
struct Entry {
    int width;
    int length;
    int codes;
    void* text() { return this + 1; }
};
static_assert(sizeof(Entry) % 4 == 0);

/// The place of one index. `count` is raised from 0 only under the lock, and from above 0 by anybody.
struct Slot {
    int count;
    uint next; ///< in the hash chain, or in the list of free slots
    uint hash;
    Entry* entry;
};

// Slots stand in chunks that double in size and never move, so that an index is followed without the lock.
constexpr uint firstChunk = 256;
constexpr int chunkCount = 23;
constexpr uint lastIndex = firstChunk * ((1u << chunkCount) - 1) - 1;

struct Table {
    ZSpinLock lock;
    Slot* chunks[chunkCount] = {};
    uint* buckets = nullptr; ///< heads of the hash chains, 0 for none
    uint bucketCount = 0;    ///< a power of two
    uint used = 0;           ///< slots ever given out, counted with slot 0, which stands for no text
    uint freeSlots = 0;      ///< head of the list of free slots
    int texts = 0;
};
Table table;

inline int chunkOf(uint index) { return 31 - __builtin_clz(index / firstChunk + 1); }
inline uint chunkStart(int chunk) { return firstChunk * ((1u << chunk) - 1); }

inline Slot* slotAt(uint index) {
    if (!index || index > lastIndex) return nullptr;
    int chunk = chunkOf(index);
    Slot* slots = toolkit::loadAcquire(table.chunks[chunk]);
    return slots ? slots + (index - chunkStart(chunk)) : nullptr;
}

uint hashOf(const TextView& text) {
    uint64_t h =
        toolkit::hash64(text.text, size_t(text.length) * size_t(detail::unitBytes(text.width)), uint64_t(text.width));
    return uint(h ^ h >> 32);
}

/// The slot of a text, 0 for none. Under the lock.
uint find(const TextView& text, uint hash) {
    size_t bytes = size_t(text.length) * size_t(detail::unitBytes(text.width));
    for (uint i = table.buckets[hash & (table.bucketCount - 1)]; i; i = slotAt(i)->next) {
        Slot* slot = slotAt(i);
        if (slot->hash != hash || slot->entry->width != text.width || slot->entry->length != text.length) continue;
        if (std::memcmp(slot->entry->text(), text.text, bytes) == 0) return i;
    }
    return 0;
}

/// More buckets, as soon as there are more texts than buckets; without memory it stays as it is. Under the lock.
void growBuckets() {
    if (uint(table.texts) < table.bucketCount || table.bucketCount >= 1u << 30) return;
    uint wanted = table.bucketCount * 2;
    auto heads = static_cast<uint*>(toolkit::allocZeroedBlock(wanted * sizeof(uint)));
    if (!heads) return;
    for (uint b = 0; b < table.bucketCount; ++b)
        for (uint i = table.buckets[b]; i;) {
            Slot* slot = slotAt(i);
            uint next = slot->next, &head = heads[slot->hash & (wanted - 1)];
            slot->next = head;
            head = i;
            i = next;
        }
    zfree(table.buckets);
    table.buckets = heads;
    table.bucketCount = wanted;
}

/// A free slot, 0 if there is none left. Under the lock.
uint takeSlot() {
    if (uint index = table.freeSlots) {
        table.freeSlots = slotAt(index)->next;
        return index;
    }
    if (table.used > lastIndex) return 0;
    int chunk = chunkOf(table.used);
    if (!table.chunks[chunk]) {
        void* slots = toolkit::allocZeroedBlock(size_t(firstChunk << chunk) * sizeof(Slot));
        if (!slots) return 0;
        toolkit::storeRelease(table.chunks[chunk], static_cast<Slot*>(slots));
    }
    return table.used++;
}

Entry* makeEntry(const TextView& text) {
    size_t unit = size_t(detail::unitBytes(text.width)), bytes = size_t(text.length) * unit;
    auto entry = static_cast<Entry*>(__zalloc(sizeof(Entry) + bytes + 2 * unit));
    if (!entry) return nullptr;
    entry->width = text.width;
    entry->length = text.length;
    entry->codes = detail::countText(text);
    std::memcpy(entry->text(), text.text, bytes);
    std::memset(static_cast<char*>(entry->text()) + bytes, 0, 2 * unit);
    return entry;
}

/// Looks a text up and retains it. Under the lock.
uint hold(const TextView& text, uint hash) {
    uint index = find(text, hash);
    if (index) toolkit::increment(slotAt(index)->count);
    return index;
}

} // namespace

bool open() {
    if (table.buckets) return true;
    constexpr uint initial = 256;
    table.buckets = static_cast<uint*>(toolkit::allocZeroedBlock(initial * sizeof(uint)));
    table.bucketCount = table.buckets ? initial : 0;
    table.used = 1;
    return table.buckets != nullptr;
}

void close() {
    for (uint i = 1; i < table.used; ++i)
        if (Slot* slot = slotAt(i); slot->count > 0) zfree(slot->entry);
    for (Slot*& chunk : table.chunks) zfree(toolkit::exchange(chunk, static_cast<Slot*>(nullptr)));
    zfree(table.buckets);
    table.buckets = nullptr;
    table.bucketCount = table.used = table.freeSlots = 0;
    table.texts = 0;
}

uint intern(const TextView& text) {
    if (text.length < 1 || !detail::unitBytes(text.width)) return 0;
    uint hash = hashOf(text);
    {
        ZScopedLock held(table.lock);
        if (!table.buckets) return 0;
        if (uint index = hold(text, hash)) return index;
    }
    Entry* entry = makeEntry(text);
    if (!entry) return 0;
    table.lock.lock();
    uint index = table.buckets ? hold(text, hash) : 0;
    if (!index && table.buckets && (index = takeSlot()) != 0) {
        growBuckets();
        Slot* slot = slotAt(index);
        uint& head = table.buckets[hash & (table.bucketCount - 1)];
        slot->next = head;
        slot->hash = hash;
        slot->entry = entry;
        head = index;
        ++table.texts;
        toolkit::storeRelease(slot->count, 1);
        entry = nullptr;
    }
    table.lock.unlock();
    zfree(entry);
    return index;
}

bool retain(uint index) {
    Slot* slot = slotAt(index);
    return slot && toolkit::incNonZero(slot->count) > 0;
}

void release(uint index) {
    Slot* slot = slotAt(index);
    if (!slot) return;
    int seen = toolkit::load(slot->count);
    while (seen > 1)
        if (toolkit::compareExchange(slot->count, seen, seen - 1)) return;
    Entry* gone = nullptr;
    {
        ZScopedLock held(table.lock);
        if (toolkit::load(slot->count) <= 0 || toolkit::decrement(slot->count) > 0) return;
        uint* link = &table.buckets[slot->hash & (table.bucketCount - 1)];
        while (*link != index) link = &slotAt(*link)->next;
        *link = slot->next;
        gone = slot->entry;
        slot->entry = nullptr;
        slot->next = table.freeSlots;
        table.freeSlots = index;
        --table.texts;
    }
    zfree(gone);
}

int refcount(uint index) {
    Slot* slot = slotAt(index);
    return slot ? toolkit::load(slot->count) : 0;
}

static Entry* entryAt(uint index) {
    Slot* slot = slotAt(index);
    return slot && toolkit::loadAcquire(slot->count) > 0 ? slot->entry : nullptr;
}

TextView fetch(uint index) {
    Entry* entry = entryAt(index);
    return entry ? TextView(entry->text(), entry->length, entry->width) : TextView();
}

int count(uint index) {
    Entry* entry = entryAt(index);
    return entry ? entry->codes : 0;
}

char* copy(uint index) {
    TextView text = fetch(index);
    if (!text.length) return nullptr;
    return detail::withText(text, [](auto* from, int length) -> char* {
        size_t need = detail::transcode(static_cast<char*>(nullptr), 0, from, size_t(length));
        auto out = static_cast<char*>(__zalloc(need + 1));
        if (!out) return nullptr;
        detail::transcode(out, need, from, size_t(length));
        out[need] = 0;
        return out;
    });
}

int compare(uint index, const TextView& text) { return detail::compareText(fetch(index), text); }

int compare(uint a, uint b) { return a == b ? 0 : detail::compareText(fetch(a), fetch(b)); }

int texts() {
    ZScopedLock held(table.lock);
    return table.texts;
}

} // namespace orv::strtable

using namespace orv::strtable;

const orv::detail::DebugRow orv_debug_strings[] = {
    {"strings.chunks", table.chunks, chunkCount},
    {"strings.firstChunk", nullptr, firstChunk},
    {"strings.slotBytes", nullptr, sizeof(Slot)},
    {"strings.slotCount", nullptr, offsetof(Slot, count)},
    {"strings.slotEntry", nullptr, offsetof(Slot, entry)},
    {"strings.width", nullptr, offsetof(Entry, width)},
    {"strings.length", nullptr, offsetof(Entry, length)},
    {"strings.text", nullptr, sizeof(Entry)},
    {},
};
