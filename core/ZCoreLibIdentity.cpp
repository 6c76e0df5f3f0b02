#include "core/ZCoreLib.h"

#include "toolkit/atomic.h"
#include "toolkit/clock.h"
#include "toolkit/coding.h"
#include "toolkit/memory.h"
#include "toolkit/userstore.h"

#include <cstring>

namespace {

ZCoreLib::Coder identityCoder = nullptr;

/// An identifier of the user's store: its name, its key and how it is written.
struct Identity {
    const char* name;
    const char* keyText;
    bool hexadecimal;
};
constexpr Identity client{"qelm_storedtoken2", "sorbet58plume", true};
constexpr Identity user{"qelm_storedtoken1", "lanyard3oak", false};

ZString stored(const Identity& identity) {
    size_t length = 0;
    char* text = toolkit::loadUserText(identity.name, length);
    ZString value(text, int(length));
    toolkit::freeBlock(text);
    return value;
}

/// The clock and the seed, coded; a counted block or null.
void* codedSeed(const Identity& identity, const ZSelector& coder, const ZString& seed, bool withTime) {
    ZCoreLib::Coder code = toolkit::loadAcquire(identityCoder);
    if (!code) return nullptr;
    char* text = seed.astr();
    size_t length = text ? std::strlen(text) : 0, head = withTime ? sizeof(double) : 0;
    auto plain = static_cast<byte*>(toolkit::allocBlock(head + length));
    void* coded = nullptr;
    if (plain) {
        double now = double(toolkit::processClock()) / 1000.0;
        if (withTime) std::memcpy(plain, &now, sizeof now);
        if (length) std::memcpy(plain + head, text, length);
        byte key[32];
        size_t keyLength = toolkit::base64Decode(identity.keyText, std::strlen(identity.keyText), key);
        coded = code(coder, key, keyLength, plain, head + length);
    }
    toolkit::freeBlock(plain);
    zfree(text);
    return coded;
}

void setup(const Identity& identity, const ZSelector& coder, const ZString& seed, int maxLength, bool withTime) {
    if (maxLength < 1 || !stored(identity).isEmpty()) return;
    void* coded = codedSeed(identity, coder, seed, withTime);
    if (!coded) return;
    size_t size = memsize(coded), room = identity.hexadecimal ? 2 * size : toolkit::base64Length(size), length = 0;
    auto text = static_cast<char*>(toolkit::allocBlock(room + 1));
    if (text) {
        if (identity.hexadecimal)
            length = toolkit::hexEncode(coded, size, text);
        else {
            size_t written = toolkit::base64Encode(coded, size, text);
            for (size_t i = 0; i < written; ++i)
                if (text[i] != '+' && text[i] != '/') text[length++] = text[i];
        }
        if (length > size_t(maxLength)) length = size_t(maxLength);
        if (length) toolkit::storeUserText(identity.name, text, length);
    }
    toolkit::freeBlock(text);
    zfree(coded);
}

} // namespace

void ZCoreLib::setCoder(Coder coder) { toolkit::storeRelease(identityCoder, coder); }
ZString ZCoreLib::clientId() { return stored(client); }
ZString ZCoreLib::userId() { return stored(user); }
void ZCoreLib::setupClientId(const ZSelector& coder, const ZString& seed, int maxLength, bool withTime) {
    setup(client, coder, seed, maxLength, withTime);
}
void ZCoreLib::setupUserId(const ZSelector& coder, const ZString& seed, int maxLength, bool withTime) {
    setup(user, coder, seed, maxLength, withTime);
}
