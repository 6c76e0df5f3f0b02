#include "text/ZString.h"

#include "core/ZError.h"
#include "text/number.h"

#include <langinfo.h>

using namespace orv;
using detail::TextIn;
using detail::withText;

// Numbers out. The text takes the string's width, `Char` where it has none.

template <class F> bool ZString::setWritten(F write) {
    auto inWidth = [&](auto* room, int roomUnits) {
        using C = std::remove_pointer_t<decltype(room)>;
        int need = write(room, roomUnits);
        if (need < roomUnits) return set(View(room, need));
        ZString made;
        made.record = newRecord(detail::widthOf<C>, need, need);
        if (!made.record) return false;
        write(made.record->units<C>(), need + 1);
        swap(made);
        return true;
    };
    constexpr int roomUnits = 128;
    ichar room[roomUnits];
    switch (type()) {
    case WChar:
        return inWidth(reinterpret_cast<wchar*>(room), roomUnits);
    case IChar:
        return inWidth(room, roomUnits);
    default:
        return inWidth(reinterpret_cast<char*>(room), roomUnits);
    }
}

bool ZString::setLarge(large value, int radix, int width, bool zeros, bool upper) {
    return setWritten([&](auto* out, int size) { return inttostr(out, size, value, radix, width, zeros, upper); });
}
bool ZString::setULarge(ularge value, int radix, int width, bool zeros, bool upper) {
    return setWritten([&](auto* out, int size) { return uinttostr(out, size, value, radix, width, zeros, upper); });
}
bool ZString::setReal(double value, int width, int precision, int decimal) {
    return setRealNumber(value, width, realPrecision(value, precision), decimal);
}
bool ZString::setRealNumber(double value, int width, int precision, int decimal) {
    return setWritten(
        [&](auto* out, int size) { return realtostr(out, size, value, width, precision, ichar(decimal)); });
}
bool ZString::setNumber(uint value, NumFormat format) {
    char none[1];
    if (numeral(none, 0, value, format) < 1) return false;
    return setWritten([&](auto* out, int size) { return numeral(out, size, value, format); });
}

template <class F> static ZString written(F set) {
    ZString made;
    if (!set(made)) ZError::fail();
    return made;
}
ZString ZString::number(large value) {
    return written([&](ZString& s) { return s.setLarge(value); });
}
ZString ZString::number(ularge value) {
    return written([&](ZString& s) { return s.setULarge(value); });
}
ZString ZString::number(double value) {
    return written([&](ZString& s) { return s.setReal(value); });
}

int ZString::precision(double value, int asked) { return realPrecision(value, asked); }

ichar ZString::decimal() {
    const char* point = nl_langinfo(RADIXCHAR);
    const char* end = point + detail::textLength(point);
    return point < end ? detail::decodeCode(point, end) : U'.';
}

// Numbers in

template <class T> static bool numberOf(const ZString& text, T& out, int form) {
    return withText(text.view(), [&](auto* units, int length) { return strtonumber(units, length, out, form); });
}
bool ZString::toByte(byte& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toInt8(int8& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toInt16(int16& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toWord(word& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toInt(int& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toUInt(uint& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toLong(long& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toULong(unsigned long& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toLarge(large& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toULarge(ularge& out, int radix) const { return numberOf(*this, out, radix); }
bool ZString::toFloat(float& out, int decimal) const { return numberOf(*this, out, decimal); }
bool ZString::toReal(double& out, int decimal) const { return numberOf(*this, out, decimal); }

bool ZString::toBool(bool& out) const {
    bool yes = compstr("yes") == 0 || compstr("true") == 0;
    if (!yes && compstr("no") != 0 && compstr("false") != 0) return false;
    out = yes;
    return true;
}

bool ZString::prefixedInt(const char* prefix, int& value, int radix) const {
    TextIn<char> text(view());
    int length = detail::givenLength(prefix, -1);
    if (text.length <= length || __builtin_memcmp(text.text, prefix, size_t(length)) != 0) return false;
    return strtonumber(text.text + length, text.length - length, value, radix);
}

bool ZString::splitAtNumber(ZString& before, ZString& after, int& number) const {
    return withText(view(), [&](auto* units, int length) {
        int from = 0;
        while (from<length&& unsigned(units[from] - '0')> 9) ++from;
        int to = from;
        while (to < length && unsigned(units[to] - '0') <= 9) ++to;
        int value;
        if (from == to || !strtonumber(units + from, to - from, value, 10)) return false;
        ZString head, tail; // may be this string
        if (!head.set(View(units, from)) || !tail.set(View(units + to, length - to))) return false;
        before = std::move(head);
        after = std::move(tail);
        number = value;
        return true;
    });
}
