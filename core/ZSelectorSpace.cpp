#include "core/ZSelectorSpace.h"

#include "core/ZSelectorData.h"
#include "core/construct.h"
#include "toolkit/hash.h"
#include "toolkit/image.h"

#include <algorithm>
#include <cstring>

using orv::detail::NormalText;
using orv::detail::SelectorEntry;
using toolkit::load;
using toolkit::store;
using toolkit::storeRelease;

namespace orv::detail {
constinit ularge permanentSelectors = ZSelectorSpace::defaultPermanentLimit;

constinit ZSelectorSpace selectorSpace;

uint retainSelector(uint id) { return selectorSpace.retain(id, true); }
void releaseSelector(uint id) { selectorSpace.remove(id, true); }
} // namespace orv::detail

ZSelectorSpace& ZSelectorSpace::space() { return orv::detail::selectorSpace; }

/// The spin lock for a scope, or nothing for a caller who holds it.
struct ZSelectorSpace::Hold {
    Hold(ZSelectorSpace& space, bool lock) : spin(lock ? &space.spin : nullptr) {
        if (spin) spin->lock();
    }
    ~Hold() {
        if (spin) spin->unlock();
    }
    Hold(const Hold&) = delete;
    ZSpinLock* spin;
};

/// What is looked for, and what a new entry is made of.
struct ZSelectorSpace::Request {
    Request(const char* text, size_t length, ZSelector::Type type, ularge hash)
        : text(text), length(length), type(type), hash(hash) {}
    ~Request() { zfree(own); }
    Request(const Request&) = delete;
    bool copyText() {
        own = static_cast<char*>(__zalloc(length + 1));
        if (!own) return false;
        std::memcpy(own, text, length);
        own[length] = 0;
        return true;
    }

    const char* text;
    size_t length;
    ZSelector::Type type;
    ularge hash;
    uint marks = 0, flags = 0; ///< for the entry, a found one too
    bool link = false;         ///< a new entry points to the text
    char* own = nullptr;       ///< else this copy of it goes over to the entry
};

bool ZSelectorSpace::open() {
    if (isOpen()) return true;
    map = zmake<ZRedBlackMap>();
    user = zmake<ZSelectorUser>();
    if (!map || !user || !map->init(sizeof(ZSelectorData), hashSize, growth)) {
        zrelease(std::exchange(map, nullptr));
        zrelease(std::exchange(user, nullptr));
        return false;
    }
    map->setUser(user);
    store(orv::detail::permanentSelectors, defaultPermanentLimit);
    storeRelease(opened, true);
    return true;
}

void ZSelectorSpace::close() {
    if (!isOpen()) return;
    spin.lock();
    storeRelease(opened, false);
    spin.unlock();
    index.clear();
    unindexed = 0;
    for (uint i = 0; i <= map->lastId() >> directoryBits; ++i) {
        ZSelectorData** part = directory[i];
        storeRelease(directory[i], static_cast<ZSelectorData**>(nullptr));
        toolkit::freeBlock(part);
    }
    zrelease(std::exchange(map, nullptr));
    zrelease(std::exchange(user, nullptr));
}

uint ZSelectorSpace::count() const { return isOpen() ? map->count() : 0; }

bool ZSelectorSpace::enterDirectory(uint id, ZSelectorData* entry) {
    ZSelectorData**& part = directory[id >> directoryBits];
    if (!part) {
        auto made = static_cast<ZSelectorData**>(toolkit::allocZeroedBlock(directoryPart * sizeof(ZSelectorData*)));
        if (!made) return false;
        storeRelease(part, made);
    }
    storeRelease(part[id & (directoryPart - 1)], entry);
    return true;
}

// Interning

inline uint ZSelectorSpace::enterNormal(const char* text, int length, bool lock, bool create) {
    if (!text || length < 1) return 0;
    size_t bytes = size_t(length);
    ularge hash = toolkit::hash64(text, bytes);
    if (ZSelectorData* known = index.find(text, bytes, hash, SelectorEntry::normalizes, 0)) return known->self;
    return enterSlow(text, bytes, hash, lock, create);
}

inline uint ZSelectorSpace::enterText(const char* text, bool lock) {
    size_t length = text ? std::strlen(text) : 0;
    return ORV_LIKELY(length <= size_t(ZSelector::longestText)) ? enterNormal(text, int(length), lock, true) : 0;
}
uint ZSelectorSpace::create(const char* text, bool lock) { return enterText(text, lock); }
// Here, so that the way from a name to a permanent entry is one function.
ZSelector::ZSelector(const char* text) : id(orv::detail::selectorSpace.enterText(text, true)) {}

uint ZSelectorSpace::create(const char* text, int length, bool lock) { return enterNormal(text, length, lock, true); }
uint ZSelectorSpace::find(const char* text, int length, bool lock) { return enterNormal(text, length, lock, false); }

uint ZSelectorSpace::enterSlow(const char* text, size_t bytes, ularge hash, bool lock, bool create) {
    if (!isOpen()) return 0;
    NormalText normal(text, bytes);
    if (!normal || !normal.length || normal.length > size_t(ZSelector::longestText)) return 0;
    bool same = normal.length == bytes && std::memcmp(normal.text, text, bytes) == 0;
    if (!same) {
        hash = toolkit::hash64(normal.text, normal.length);
        if (ZSelectorData* known = index.find(normal.text, normal.length, hash, 0, normal.type)) return known->self;
    }
    Request request(normal.text, normal.length, normal.type, hash);
    if (same) request.marks = SelectorEntry::normalizes;
    return enter(request, lock, create);
}

uint ZSelectorSpace::create(const char* text, int length, ZSelector::Type type, bool lock) {
    if (!text || length < 1) return 0;
    auto trimmed = orv::detail::trimBlanks(text, size_t(length));
    return enterPlain(trimmed.text, trimmed.length, type, lock, true);
}
uint ZSelectorSpace::find(const char* text, int length, ZSelector::Type type, bool lock) {
    if (!text || length < 1) return 0;
    auto trimmed = orv::detail::trimBlanks(text, size_t(length));
    return enterPlain(trimmed.text, trimmed.length, type, lock, false);
}
uint ZSelectorSpace::createBytes(const char* text, int length, bool lock) {
    return text && length > 0 ? enterPlain(text, size_t(length), ZSelector::Detect, lock, true) : 0;
}
uint ZSelectorSpace::findBytes(const char* text, int length, bool lock) {
    return text && length > 0 ? enterPlain(text, size_t(length), ZSelector::Detect, lock, false) : 0;
}

uint ZSelectorSpace::enterPlain(const char* text, size_t length, ZSelector::Type type, bool lock, bool create) {
    if (!length || !isOpen()) return 0;
    ularge hash = toolkit::hash64(text, length);
    bool detect = uint(type) >= ZSelector::Detect;
    uint mark = detect ? uint(SelectorEntry::detects) : 0;
    if (ZSelectorData* known = index.find(text, length, hash, mark, type)) return known->self;
    if (detect) type = orv::detail::selectorType(text, length);
    Request request(text, length, type, hash);
    request.marks = mark;
    return enter(request, lock, create);
}

uint ZSelectorSpace::createLink(const char* text, bool variableName, bool lock) {
    if (!text || !*text || !isOpen()) return 0;
    size_t length = std::strlen(text);
    if (length > size_t(ZSelector::longestText)) return 0;
    ularge hash = toolkit::hash64(text, length);
    ZSelectorData* known = index.find(text, length, hash, SelectorEntry::detects, 0);
    if (known && (!variableName || load(known->flags) & ZSelectorData::VariableName)) return known->self;
    Request request(text, length, orv::detail::selectorType(text, length), hash);
    request.marks = SelectorEntry::detects;
    request.flags = variableName ? uint(ZSelectorData::VariableName) : 0;
    request.link = true;
    return enter(request, lock, true);
}

uint ZSelectorSpace::create(const ZSelector& name, const ZSelector& result, const ZSelector* params, int count,
                            ZSelector::Type type, bool lock) {
    if (!isOpen()) return 0;
    size_t length;
    char* text = ZSelectorData::composeText(name, result, params, count, type, length);
    if (!text) return 0;
    ularge hash = toolkit::hash64(text, length);
    if (ZSelectorData* known = index.find(text, length, hash, 0, type)) {
        zfree(text);
        return known->self;
    }
    Request request(text, length, type, hash);
    request.own = text;
    return enter(request, lock, true);
}

/// Finds the entry or adds it, with its own copy of the text made outside the lock, unless it is to be linked.
uint ZSelectorSpace::enter(Request& request, bool lock, bool create) {
    for (;;) {
        {
            Hold held(*this, lock);
            if (!isOpen()) return 0;
            if (uint id = findHeld(request)) return take(id, request.marks, request.flags);
            if (!create) return 0;
            if (request.link || request.own) return add(request);
        }
        if (!request.copyText()) return 0;
    }
}

/// Looks under the lock. While the index holds all entries, it can tell that there is none.
uint ZSelectorSpace::findHeld(const Request& request) {
    if (!unindexed && index.lacks(request.text, request.length, request.hash, request.type)) return 0;
    ZSelectorData key(request.text, request.length, request.type, request.hash);
    return map->find(&key);
}

/// Holds an entry that was found; the lock is held.
uint ZSelectorSpace::take(uint id, uint marks, uint flags) {
    auto entry = static_cast<ZSelectorData*>(map->entry(id));
    if (marks & ~entry->marks) store(entry->marks, entry->marks | marks);
    if (flags & ~entry->flags) storeRelease(entry->flags, entry->flags | flags);
    if (!(entry->marks & SelectorEntry::uncounted)) toolkit::increment(entry->refCount);
    return id;
}

/// Adds an entry; the lock is held.
uint ZSelectorSpace::add(Request& request) {
    uint id = map->create();
    if (!id) return 0;
    auto entry = ::new (map->entry(id)) ZSelectorData(request.text, request.length, request.type, request.hash);
    if (!map->link(id) || !enterDirectory(id, entry)) {
        map->remove(id); // which frees nothing, as the text is borrowed
        return 0;
    }
    bool permanent = id <= permanentLimit();
    std::memcpy(entry->prefix, request.text, std::min(request.length, SelectorEntry::prefixSize));
    if (!request.link) entry->text = std::exchange(request.own, nullptr);
    entry->flags = request.flags | (request.link ? uint(ZSelectorData::Linked) : 0) |
                   (request.type == ZSelector::UID ? uint(ZSelectorData::VariableName) : 0);
    entry->self = id;
    store(entry->marks, request.marks | (permanent || request.link ? uint(SelectorEntry::uncounted) : 0));
    if (!permanent || (request.link && !toolkit::mappedForGood(request.text)) || !index.add(entry)) ++unindexed;
    return id;
}

// Counts

uint ZSelectorSpace::retain(uint id, bool lock) {
    ZSelectorData* entry = get(id);
    if (!entry) return 0;
    if (load(entry->marks) & SelectorEntry::uncounted) return id;
    Hold held(*this, lock);
    // The entry may have gone before the lock was there.
    return get(id) == entry && toolkit::incNonZero(entry->refCount) > 0 ? id : 0;
}

int ZSelectorSpace::refcount(uint id) {
    ZSelectorData* entry = get(id);
    return entry ? load(entry->refCount) : 0;
}

/// Lowers a count; an entry without one leaves the map and goes to the front of the list `dead`.
void ZSelectorSpace::giveUp(uint id, ZSelectorData*& dead, bool lock) {
    ZSelectorData* entry = get(id);
    if (!entry || load(entry->marks) & SelectorEntry::uncounted) return;
    // Only the last count needs the lock: a lookup raises what it finds under it.
    int seen = load(entry->refCount);
    while (seen > 1)
        if (toolkit::compareExchange(entry->refCount, seen, seen - 1)) return;
    Hold held(*this, lock);
    if (load(entry->refCount) < 1 || toolkit::decrement(entry->refCount) > 0) return;
    map->unlink(id);
    enterDirectory(id, nullptr);
    entry->next = dead;
    dead = entry;
}

void ZSelectorSpace::remove(uint id, bool lock) {
    ZSelectorData* dead = nullptr;
    giveUp(id, dead, lock);
    if (ORV_UNLIKELY(dead != nullptr)) bury(dead, lock);
}

/// Frees entries that nobody holds. What they held may follow them: a list, since it can be long.
void ZSelectorSpace::bury(ZSelectorData* dead, bool lock) {
    while (ZSelectorData* entry = dead) {
        dead = entry->next;
        uint self = entry->self;
        auto drop = [&](ZSelector& held) {
            uint id = held.forget();
            if (id != self && id > permanentLimit()) giveUp(id, dead, lock);
        };
        for (ZSelector* each :
             {&entry->nameSel, &entry->resultSel, &entry->rootNameSel, &entry->mainTypeSel, &entry->unqualifiedSel,
              &entry->qualifierSel, &entry->packageSel, &entry->typeNameSel, &entry->nameSpaceSel, &entry->baseNameSel})
            drop(*each);
        for (uint i = 0; i < entry->paramCount; ++i) drop(entry->params[i]);
        entry->~ZSelectorData();
        ::new (entry) ZSelectorData;
        entry->refCount = 0;
        Hold held(*this, lock);
        if (isOpen()) {
            map->remove(self);
            --unindexed;
        }
    }
}

bool ZSelectorSpace::unlink(uint id, bool lock) {
    ZSelectorData* entry = get(id);
    if (!entry || !(toolkit::loadAcquire(entry->flags) & ZSelectorData::Linked)) return false;
    const char* linked = toolkit::loadAcquire(entry->text);
    if (toolkit::mappedForGood(linked)) return true;
    auto own = static_cast<char*>(__zalloc(entry->length + size_t(1)));
    if (own) std::memcpy(own, linked, entry->length + size_t(1));
    {
        Hold held(*this, lock);
        if (isOpen() && entry->flags & ZSelectorData::Linked) {
            if (own) {
                storeRelease(entry->text, own);
                own = nullptr;
                storeRelease(entry->flags, entry->flags & ~uint(ZSelectorData::Linked));
                if (id <= permanentLimit() && index.add(entry)) --unindexed;
            } else {
                static char nothing[] = "";
                map->unlink(id);
                storeRelease(entry->text, nothing);
                store(entry->length, 0u);
            }
        }
    }
    zfree(own);
    return true;
}

// Lazy fields

/// An entry that holds itself doesn't count that, or it would stay for ever. Its caller holds it too.
void ZSelectorSpace::dropSelf(ZSelectorData* entry, const ZSelector& stored) {
    if (stored.key() == entry->self && !(entry->marks & SelectorEntry::uncounted)) toolkit::decrement(entry->refCount);
}

ZSelectorData* ZSelectorSpace::resolve(uint id) {
    ZSelectorData* entry = get(id);
    if (!entry || ORV_LIKELY(toolkit::loadAcquire(entry->flags) & ZSelectorData::Parts)) return entry;
    // Parsed outside the lock; of several threads that do so one keeps its result.
    ZSelector result, name;
    ZSelector* params;
    auto text = entry->view();
    int count = ZSelectorData::extractParams(text.text, text.length, entry->type, result, name, params);
    if (count < 0) return nullptr;
    {
        ZScopedLock held(spin);
        if (!(entry->flags & ZSelectorData::Parts)) {
            const bool named = entry->flags & ZSelectorData::MethodName;
            if (!named) std::swap(entry->nameSel, name);
            std::swap(entry->resultSel, result);
            std::swap(entry->params, params);
            entry->paramCount = uint(count);
            if (!named) dropSelf(entry, entry->nameSel);
            dropSelf(entry, entry->resultSel);
            for (int i = 0; i < count; ++i) dropSelf(entry, entry->params[i]);
            ularge mask = 0;
            bool few = orv::detail::isList(entry->type) && uint(count) <= ZSelectorData::mostFewWords;
            for (int i = 0; few && i < count; ++i) mask |= ZSelectorData::wordBit(entry->params[i].key());
            storeRelease(entry->wordMask, mask);
            storeRelease(entry->flags, entry->flags | ZSelectorData::Parts | ZSelectorData::MethodName);
        }
    }
    zreleasearray(params);
    return entry;
}

ZSelectorData* ZSelectorSpace::resolveName(uint id) {
    ZSelectorData* entry = get(id);
    if (!entry || ORV_LIKELY(toolkit::loadAcquire(entry->flags) & ZSelectorData::MethodName)) return entry;
    if (entry->type != ZSelector::Method) return resolve(id);
    auto text = entry->view();
    const auto part = orv::detail::SelectorItems(text.text, text.length, entry->type).name;
    ZSelector name;
    name.set(part.text, int(part.length), ZSelector::Detect);
    if (name.isEmpty() && part.length) return nullptr;
    publish(entry, ZSelectorData::MethodName, &ZSelectorData::nameSel, std::move(name));
    return entry;
}

void ZSelectorSpace::publish(ZSelectorData* entry, uint flag, ZSelector ZSelectorData::*field, ZSelector&& value) {
    ZScopedLock held(spin);
    if (entry->flags & flag) return;
    std::swap(entry->*field, value);
    dropSelf(entry, entry->*field);
    storeRelease(entry->flags, entry->flags | flag);
}

void ZSelectorSpace::setVariableName(uint id, bool on) {
    ZSelectorData* entry = get(id);
    if (!entry) return;
    ZScopedLock held(spin);
    constexpr uint flag = ZSelectorData::VariableName;
    bool path = entry->type == ZSelector::UID;
    storeRelease(entry->flags, on || path ? entry->flags | flag : entry->flags & ~flag);
}

void ZSelectorSpace::clearXMLNameMap() {
    if (!isOpen()) return;
    ZScopedLock held(spin);
    for (uint id = 1, last = map->lastId(); id <= last; ++id)
        if (auto entry = static_cast<ZSelectorData*>(map->entry(id))) entry->xmlName = entry->xmlSpace = 0;
}
