#include "toolkit/plugindir.h"

#include "toolkit/lock.h"
#include "toolkit/memory.h"

#include <cstring>

namespace toolkit {

namespace {
struct Kind {
    Kind* next;
    PluginEntry* first;
    char name[1];
};
Kind* kinds = nullptr;
int kindsLock = 0;

struct Guard {
    Guard() { spinLock(kindsLock); }
    ~Guard() { spinUnlock(kindsLock); }
};

/// A record with its text behind it, in one block.
template <class T> T* withText(const char* text, size_t head) {
    size_t length = std::strlen(text) + 1;
    auto record = static_cast<char*>(allocZeroedBlock(head + length));
    if (record) std::memcpy(record + head, text, length);
    return reinterpret_cast<T*>(record);
}

Kind* find(const char* name) {
    Kind* kind = kinds;
    while (kind && std::strcmp(kind->name, name) != 0) kind = kind->next;
    return kind;
}

void freeEntries(PluginEntry*& first, const void* owner, bool all) {
    for (PluginEntry** at = &first; *at;) {
        PluginEntry* entry = *at;
        if (all || entry->owner == owner) {
            *at = entry->next;
            freeBlock(entry);
        } else
            at = &entry->next;
    }
}
} // namespace

const PluginEntry* pluginEntries(const char* kind) {
    if (!kind) return nullptr;
    Guard guard;
    Kind* found = find(kind);
    return found ? found->first : nullptr;
}

bool registerPlugin(const char* kind, const char* name, const void* provider, const void* owner) {
    if (!kind || !name || !*name) return false;
    Kind* newKind = withText<Kind>(kind, offsetof(Kind, name));
    auto entry = withText<PluginEntry>(name, sizeof(PluginEntry));
    bool added = false;
    if (newKind && entry) {
        entry->name = reinterpret_cast<char*>(entry + 1);
        entry->provider = provider;
        entry->owner = owner;
        Guard guard;
        Kind* held = find(kind);
        if (!held) {
            held = newKind;
            newKind = nullptr;
            held->next = kinds;
            kinds = held;
        }
        PluginEntry** at = &held->first;
        while (*at && std::strcmp((*at)->name, name) != 0) at = &(*at)->next;
        if (!*at) {
            *at = entry;
            entry = nullptr;
            added = true;
        }
    }
    freeBlock(newKind);
    freeBlock(entry);
    return added;
}

void removePlugins(const void* owner) {
    Guard guard;
    for (Kind* kind = kinds; kind; kind = kind->next) freeEntries(kind->first, owner, false);
}

void clearPlugins() {
    Guard guard;
    while (Kind* kind = kinds) {
        freeEntries(kind->first, nullptr, true);
        kinds = kind->next;
        freeBlock(kind);
    }
}

} // namespace toolkit
