#include "core/ZTokenSpace.h"

#include "core/construct.h"
#include "text/ZString.h"
#include "toolkit/hash.h"

#include <climits>
#include <cstring>

namespace {

constexpr uint hashSize = 1024;

/// One for all spaces, never destroyed: a space of static storage may go after it otherwise.
union Immortal {
    ZTokenUser user;
    constexpr Immortal() : user() {}
    ~Immortal() {}
};
constinit Immortal tokenUser;

int textLength(const char* text) {
    size_t length = text ? std::strlen(text) : 0;
    return length <= INT_MAX ? int(length) : 0;
}
int textHash(const char* text, int length) { return int(toolkit::hashData(0, text, size_t(length), hashSize)); }

char* duplicate(const char* text, int length) {
    auto copy = static_cast<char*>(__zalloc(size_t(length) + 1));
    if (!copy) return nullptr;
    std::memcpy(copy, text, size_t(length));
    copy[length] = 0;
    return copy;
}

const ZTokenData& token(const void* entry) { return *static_cast<const ZTokenData*>(entry); }

/// The id of an entry with this text; the text isn't copied.
uint findText(const ZRedBlackMap& map, const char* text, int length) {
    if (!text || length < 1) return 0;
    ZTokenData key;
    key.length = length;
    key.hash = textHash(text, length);
    key.text = const_cast<char*>(text);
    uint id = map.find(&key);
    key.setNone();
    return id;
}

} // namespace

ZTokenData::ZTokenData(const char* text) : ZTokenData(text, textLength(text)) {}

ZTokenData::ZTokenData(const char* given, int givenLength) {
    if (!given || givenLength < 1 || !(text = duplicate(given, givenLength))) return;
    length = givenLength;
    hash = textHash(given, givenLength);
}

ZTokenData::~ZTokenData() { zfree(text); }

bool ZTokenUser::copy(const ZRedBlackMap*, void* to, const void* from) {
    char* text = duplicate(token(from).text, token(from).length);
    if (!text) return false;
    std::memcpy(to, from, sizeof(ZTokenData));
    static_cast<ZTokenData*>(to)->text = text;
    return true;
}

void ZTokenUser::destruct(const ZRedBlackMap*, void* entry) { static_cast<ZTokenData*>(entry)->~ZTokenData(); }

int ZTokenUser::comp(const ZRedBlackMap*, const void* a, const void* b) {
    const ZTokenData &one = token(a), &other = token(b);
    if (one.length != other.length) return one.length < other.length ? -1 : 1;
    return std::memcmp(one.text, other.text, size_t(one.length));
}

uint ZTokenUser::hash(const ZRedBlackMap*, const void* key, uint size) { return uint(token(key).hash) % size; }

bool ZTokenSpace::open() {
    if (!map.init(sizeof(ZTokenData), hashSize, uint(slotLength > 0 ? slotLength : 1))) return false;
    map.setUser(&tokenUser.user);
    if (!closed) name_id.clear();
    closed = false;
    return true;
}

void ZTokenSpace::close() {
    closed = true;
    map = ZRedBlackMap();
    name_id.clear();
}

uint ZTokenSpace::create(const char* text) { return intern(text, textLength(text), 0); }
uint ZTokenSpace::create(const char* text, int length) { return intern(text, length, 0); }
uint ZTokenSpace::create(const ZString& text) {
    orv::detail::TextIn<char> bytes(text.view());
    return intern(bytes.text, bytes.length, 0);
}
uint ZTokenSpace::make(const char* text, int nameToken) { return intern(text, textLength(text), nameToken); }

uint ZTokenSpace::intern(const char* text, int length, int nameToken) {
    if (closed || !text || length < 1) return 0;
    if (uint known = findText(map, text, length)) return retain(known);
    ZTokenData entry(text, length);
    if (!entry.text) return 0;
    entry.nameToken = nameToken;
    uint id = map.add(&entry, false);
    if (id) entry.setNone();
    return id;
}

uint ZTokenSpace::createName(int nameToken, const char* text, ZTokenCallback callback) {
    uint id = create(text);
    ZTokenData* entry = id ? edit(id) : nullptr;
    bool row = nameToken >= 0 && uint(nameToken) < name_id.count();
    if (!entry || (row && !name_id.set(uint(nameToken), int(id)))) {
        remove(id);
        return 0;
    }
    entry->nameToken = nameToken;
    entry->callback = callback;
    return id;
}

uint ZTokenSpace::nameIndex(const char* text) const { return findText(map, text, textLength(text)); }
uint ZTokenSpace::nameIndex(const char* text, int length) const { return findText(map, text, length); }

int ZTokenSpace::nameToken(uint id) const {
    const ZTokenData* entry = get(id);
    return entry ? entry->nameToken : 0;
}
uint ZTokenSpace::tokenName(int nameToken) const {
    const int* row = nameToken >= 0 ? name_id.entry(uint(nameToken)) : nullptr;
    return row ? uint(*row) : 0;
}
const char* ZTokenSpace::string(uint id) const {
    const ZTokenData* entry = get(id);
    return entry ? entry->text : nullptr;
}
int ZTokenSpace::length(uint id) const {
    const ZTokenData* entry = get(id);
    return entry ? entry->length : 0;
}
ZTokenCallback ZTokenSpace::callback(uint id) const {
    const ZTokenData* entry = get(id);
    return entry ? entry->callback : nullptr;
}
bool ZTokenSpace::setCallback(uint id, ZTokenCallback callback) {
    ZTokenData* entry = edit(id);
    if (entry) entry->callback = callback;
    return entry != nullptr;
}

ZTokenData* ZTokenSpace::edit(uint id) {
    return map.valid(id) && map.detach() ? static_cast<ZTokenData*>(map.entry(id)) : nullptr;
}

uint ZTokenSpace::retain(uint id) {
    if (!map.valid(id) || !counted(id)) return map.valid(id) ? id : 0;
    ZTokenData* entry = edit(id);
    if (!entry || entry->refCount == INT_MAX) return 0;
    ++entry->refCount;
    return id;
}

void ZTokenSpace::remove(uint id) {
    ZTokenData* entry = counted(id) ? edit(id) : nullptr;
    if (!entry || --entry->refCount > 0) return;
    // Without memory to take it out of its rows it stays too.
    if (keepUnused || !clearRows(id))
        entry->refCount = 1;
    else
        map.remove(id);
}

bool ZTokenSpace::clearRows(uint id) {
    for (uint row = 0; row < name_id.count(); ++row)
        if (tokenName(int(row)) == id && !name_id.set(row, 0)) return false;
    return true;
}

int ZTokenSpace::refcount(uint id) const {
    const ZTokenData* entry = get(id);
    return entry ? entry->refCount : 0;
}

bool ZTokenSpace::setNameCount(int count) { return count >= 0 && name_id.setCount(uint(count)); }

void ZTokenSpace::setMap(const ZRedBlackMap& other) {
    map = other;
    map.setUser(&tokenUser.user);
}

int ZTokenSpace::compare(const ZTokenSpace& other) const {
    uint mine = map.lastId(), others = other.map.lastId();
    for (uint id = 1; id <= mine || id <= others; ++id) {
        const ZTokenData *a = get(id), *b = other.get(id);
        if (!a && !b) continue;
        if (!a || !b) return a ? 1 : -1;
        if (int order = tokenUser.user.comp(nullptr, a, b)) return order < 0 ? -1 : 1;
        if (a->nameToken != b->nameToken) return a->nameToken < b->nameToken ? -1 : 1;
    }
    return 0;
}

bool ZTokenSpace::detach() { return map.detach() && name_id.detach(); }
