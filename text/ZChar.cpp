#include "text/ZChar.h"

#include "text/ZString.h"

ZChar::ZChar(const char* text, int length) {
    if (text && length > 0) code = orv::detail::decodeCode(text, text + length);
}
ZChar::ZChar(const ZString& text) {
    orv::detail::withText(text.view(), [&](auto* at, int length) {
        if (length > 0) code = orv::detail::decodeCode(at, at + length);
    });
}

int ZChar::blockIndex(const ZString& name) {
    char* bytes = name.astr();
    int index = toolkit::blockIndex(bytes);
    zfree(bytes);
    return index;
}
ZString ZChar::blockName(int index) {
    char name[64];
    return ZString(name, toolkit::blockName(index, name, sizeof name));
}
ZString ZChar::name(ichar code) {
    char name[128];
    return ZString(name, toolkit::codeName(code, name, sizeof name));
}
ZString ZChar::name() const { return name(code); }
