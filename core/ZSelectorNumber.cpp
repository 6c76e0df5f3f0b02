#include "core/selectorBuild.h"
#include "text/number.h"

using orv::detail::SelectorPart;
using orv::detail::textOf;

namespace {

/// Makes a selector of what `write(out, size)` writes.
template <class F> bool setWritten(ZSelector& sel, F write) {
    char small[128];
    int length = write(small, int(sizeof small));
    if (length < int(sizeof small)) return sel.set(small, length);
    auto large = static_cast<char*>(__zalloc(size_t(length) + 1));
    if (!large) return false;
    write(large, length + 1);
    bool made = sel.set(large, length);
    zfree(large);
    return made;
}

bool setSigned(ZSelector& sel, large value, int radix, int width, bool zeros, bool upper) {
    return setWritten(sel,
                      [&](char* out, int size) { return orv::inttostr(out, size, value, radix, width, zeros, upper); });
}
bool setUnsigned(ZSelector& sel, ularge value, int radix, int width, bool zeros, bool upper) {
    return setWritten(
        sel, [&](char* out, int size) { return orv::uinttostr(out, size, value, radix, width, zeros, upper); });
}

template <class T> bool read(const ZSelector& sel, T& out, int mode) {
    SelectorPart text = textOf(sel);
    return text.length && orv::strtonumber(text.text, int(text.length), out, mode);
}

bool digit(char c, int& value) {
    if (c < '0' || c > '9') return false;
    value = c - '0';
    return true;
}

} // namespace

bool ZSelector::setInt(int value, int radix, int width, bool zeros, bool upper) {
    return setSigned(*this, value, radix, width, zeros, upper);
}
bool ZSelector::setUInt(uint value, int radix, int width, bool zeros, bool upper) {
    return setUnsigned(*this, value, radix, width, zeros, upper);
}
bool ZSelector::setLong(long value, int radix, int width, bool zeros, bool upper) {
    return setSigned(*this, value, radix, width, zeros, upper);
}
bool ZSelector::setULong(unsigned long value, int radix, int width, bool zeros, bool upper) {
    return setUnsigned(*this, value, radix, width, zeros, upper);
}
bool ZSelector::setLarge(large value, int radix, int width, bool zeros, bool upper) {
    return setSigned(*this, value, radix, width, zeros, upper);
}
bool ZSelector::setULarge(ularge value, int radix, int width, bool zeros, bool upper) {
    return setUnsigned(*this, value, radix, width, zeros, upper);
}
bool ZSelector::setReal(real value, int width, int precision, int decimal) {
    return setRealNumber(value, width, orv::realPrecision(value, precision), decimal);
}
bool ZSelector::setRealNumber(real value, int width, int precision, int decimal) {
    return setWritten(
        *this, [&](char* out, int size) { return orv::realtostr(out, size, value, width, precision, ichar(decimal)); });
}
bool ZSelector::setBool(bool value) { return set(value ? "yes" : "no"); }

namespace {
template <class T> ZSelector numberOf(T value, bool (ZSelector::*set)(T, int, int, bool, bool)) {
    ZSelector made;
    (made.*set)(value, 10, 0, false, false);
    return made;
}
} // namespace

ZSelector ZSelector::number(int value) { return numberOf(value, &ZSelector::setInt); }
ZSelector ZSelector::number(uint value) { return numberOf(value, &ZSelector::setUInt); }
ZSelector ZSelector::number(large value) { return numberOf(value, &ZSelector::setLarge); }
ZSelector ZSelector::number(ularge value) { return numberOf(value, &ZSelector::setULarge); }
ZSelector ZSelector::number(real value) {
    ZSelector made;
    made.setReal(value);
    return made;
}

bool ZSelector::toInt(int& out, int radix) const { return read(*this, out, radix); }
bool ZSelector::toUInt(uint& out, int radix) const { return read(*this, out, radix); }
bool ZSelector::toInt8(int8& out, int radix) const { return read(*this, out, radix); }
bool ZSelector::toInt16(int16& out, int radix) const { return read(*this, out, radix); }
bool ZSelector::toByte(byte& out, int radix) const { return read(*this, out, radix); }
bool ZSelector::toWord(word& out, int radix) const { return read(*this, out, radix); }
bool ZSelector::toLarge(large& out, int radix) const { return read(*this, out, radix); }
bool ZSelector::toULarge(ularge& out, int radix) const { return read(*this, out, radix); }
bool ZSelector::toFloat(float& out, int decimal) const { return read(*this, out, decimal); }
bool ZSelector::toDouble(double& out, int decimal) const { return read(*this, out, decimal); }

bool ZSelector::toBool(bool& out) const {
    bool yes = cmpstr("yes") == 0 || cmpstr("true") == 0;
    if (!yes && cmpstr("no") != 0 && cmpstr("false") != 0) return false;
    out = yes;
    return true;
}

bool ZSelector::integerKey(int& value) const { return length() == 1 && digit(at(0), value); }
bool ZSelector::integerKey(const ZSelector& prefix, int& value) const {
    return length() == prefix.length() + 1 && isPrefix(prefix) && digit(at(prefix.length()), value);
}
