#include "text/ZString.h"

#include "core/ZError.h"
#include "core/ZSelector.h"
#include "text/ZCharBuffer.h"
#include "text/ZFileName.h"
#include "toolkit/userstore.h"

#include <cstring>

using namespace orv;
using detail::TextIn;

namespace {

/// Takes the units of a text in a byte order.
template <class C> bool setUnits(ZString& out, const byte* bytes, size_t size, bool bigEnd) {
    size_t units = size / sizeof(C);
    auto text = static_cast<C*>(__zalloc((units + 1) * sizeof(C)));
    if (!text) return false;
    for (size_t i = 0; i < units; ++i) {
        uint unit = 0;
        for (size_t b = 0; b < sizeof(C); ++b)
            unit |= uint(bytes[i * sizeof(C) + b]) << 8 * (bigEnd ? sizeof(C) - 1 - b : b);
        text[i] = C(unit);
    }
    bool done = out.set(text, int(units));
    zfree(text);
    return done;
}

/// Tells the width of a text by the mark at its start, and takes it without the mark.
bool decodeFile(ZString& out, const byte* bytes, size_t size) {
    auto marked = [&](const char* mark, size_t length) { return size >= length && !std::memcmp(bytes, mark, length); };
    if (marked("\xEF\xBB\xBF", 3)) return out.set(reinterpret_cast<const char*>(bytes) + 3, int(size - 3));
    if (marked("\xFF\xFE\0\0", 4)) return setUnits<ichar>(out, bytes + 4, size - 4, false);
    if (marked("\0\0\xFE\xFF", 4)) return setUnits<ichar>(out, bytes + 4, size - 4, true);
    if (marked("\xFF\xFE", 2)) return setUnits<wchar>(out, bytes + 2, size - 2, false);
    if (marked("\xFE\xFF", 2)) return setUnits<wchar>(out, bytes + 2, size - 2, true);
    return out.set(reinterpret_cast<const char*>(bytes), int(size));
}

} // namespace

ZString ZString::load(const ZString& path, bool* loaded) {
    ZString text;
    size_t size = 0;
    void* bytes = ZFileName(path).absolute().read(size, size_t(maxCapacity));
    bool done = bytes && decodeFile(text, static_cast<const byte*>(bytes), size);
    if (bytes && !done) ZError::fail();
    zfree(bytes);
    if (loaded) *loaded = done;
    return text;
}

bool ZString::save(const ZString& path, bool originalPlace) const {
    TextIn<char> text(view());
    if (text.failed) return false;
    ZFileName file(path);
    if (!originalPlace && !file.toAbsolute(ZFileName::Create)) return false;
    return file.write(text.text, size_t(text.length));
}

ZString ZString::fileName() const { return ZFileName(*this).absolute(); }

ZString ZString::loadUser(const ZSelector& name) {
    ZString text;
    size_t length = 0;
    char* bytes = name.isEmpty() ? nullptr : toolkit::loadUserText(name.string(), length);
    if (bytes && !text.set(bytes, int(length))) ZError::fail();
    zfree(bytes);
    return text;
}

bool ZString::storeUser(const ZSelector& name) const {
    TextIn<char> text(view());
    return !text.failed && !name.isEmpty() && toolkit::storeUserText(name.string(), text.text, size_t(text.length));
}

ZString ZString::adjustResource(const ZString& reference) const {
    ZString text(*this);
    if (!text.trimEndings(' ') || !text.trimEndings('.')) {
        ZError::fail();
        return ZString();
    }
    return text.pos('%') < 0 ? text : ZCharBuffer::escapeStringRessource(text, reference);
}
