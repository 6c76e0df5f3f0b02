#include "core/ZSelector.h"

#include "core/ZSelectorData.h"
#include "core/ZSelectorSpace.h"

#include <cstring>

namespace {
ZSelectorSpace& space() { return orv::detail::selectorSpace; }
/// A length for the forms that take one; 0 for null and for what is too long.
int textLength(const char* text) {
    size_t length = text ? std::strlen(text) : 0;
    return length <= size_t(ZSelector::longestText) ? int(length) : 0;
}
} // namespace

bool ZSelector::open() { return space().open(); }
void ZSelector::close() { space().close(); }
uint ZSelector::selectorCount() { return space().count(); }

ZSelector::Type ZSelector::stringType(const char* text, int length) {
    return length > 0 ? orv::detail::selectorType(text, size_t(length)) : Any;
}
char* ZSelector::normalize(const char* text, int length, Type& type, int& newLength) {
    if (!text || length < 1) return nullptr;
    orv::detail::NormalText normal(text, size_t(length));
    if (!normal || normal.length > size_t(longestText)) return nullptr;
    auto own = static_cast<char*>(__zalloc(normal.length + 1));
    if (!own) return nullptr;
    std::memcpy(own, normal.text, normal.length);
    own[normal.length] = 0;
    type = normal.type;
    newLength = int(normal.length);
    return own;
}

ZSelector::ZSelector(const char* text, int length) : id(space().create(text, length, true)) {}

bool ZSelector::set(const char* text) { return take(space().create(text, true)); }
bool ZSelector::set(const char* text, int length) { return take(space().create(text, length, true)); }
bool ZSelector::set(const char* text, int length, Type type) { return take(space().create(text, length, type, true)); }
bool ZSelector::set(const char* text, Type type) { return set(text, textLength(text), type); }
bool ZSelector::setBytes(const char* text, int length) { return take(space().createBytes(text, length, true)); }
bool ZSelector::setValue(uint value) { return take(space().retain(value, true)); }

ZSelector ZSelector::find(const char* text) { return find(text, textLength(text)); }
ZSelector ZSelector::find(const char* text, int length) { return adopt(space().find(text, length, true)); }
ZSelector ZSelector::find(const char* text, int length, Type type) {
    return adopt(space().find(text, length, type, true));
}
ZSelector ZSelector::findBytes(const char* text, int length) { return adopt(space().findBytes(text, length, true)); }

bool ZSelector::store(const char* text) { return store(text, textLength(text)); }
bool ZSelector::store(const char* text, int length) {
    uint made = space().create(text, length, false);
    discard();
    id = made;
    return made != 0;
}
bool ZSelector::store(const char* text, int length, Type type) {
    uint made = space().create(text, length, type, false);
    discard();
    id = made;
    return made != 0;
}
void ZSelector::store(const ZSelector& other) {
    uint taken = space().retain(other.id, false);
    discard();
    id = taken;
}
void ZSelector::discard() {
    if (id > space().permanentLimit()) space().remove(id, false);
    id = 0;
}

bool ZSelector::link(const char* text, bool variableName) {
    id = space().createLink(text, variableName, true);
    return id != 0;
}
void ZSelector::unlink() {
    if (!space().unlink(id, true)) release();
    id = 0;
}

const char* ZSelector::string() const {
    const ZSelectorData* entry = space().get(id);
    return entry ? toolkit::loadAcquire(entry->text) : nullptr;
}
int ZSelector::length() const {
    const ZSelectorData* entry = space().get(id);
    return entry ? int(entry->length) : 0;
}
ZSelector::Type ZSelector::type() const {
    const ZSelectorData* entry = space().get(id);
    return entry ? entry->type : Any;
}
int ZSelector::used() const { return space().refcount(id); }
char ZSelector::at(int index) const {
    const ZSelectorData* entry = space().get(id);
    return entry && index >= 0 && uint(index) < entry->length ? toolkit::loadAcquire(entry->text)[index] : char(0);
}
