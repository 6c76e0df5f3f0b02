#include "text/ZTextNumberT.h"

#include "core/memory.h"
#include "text/format.h"
#include "text/number.h"
#include "text/transcode.h"

#include <cstdio>
#include <cstring>
#include <utility>

using namespace orv::detail;

namespace {

/// Formats on the stack; what is longer is formatted again into the new text.
template <class C, class F> C* makeText(F&& write) {
    constexpr int room = 128;
    C local[room + 1];
    int length = write(local, room + 1);
    if (length < 0) return nullptr;
    C* made = static_cast<C*>(__zalloc((size_t(length) + 1) * sizeof(C)));
    if (!made) return nullptr;
    if (length <= room)
        std::memcpy(made, local, (size_t(length) + 1) * sizeof(C));
    else
        write(made, length + 1);
    return made;
}

/// The units of a text that ends at its length or its terminator, whichever comes first.
template <class C> int limited(const C* text, int length) {
    return text ? int(textLength(text, size_t(length < 0 ? INT32_MAX : length))) : 0;
}
template <class C, class T> bool read(const C* text, int length, T& value, int parameter) {
    return orv::strtonumber(text, limited(text, length), value, parameter);
}

/// Writes pieces of formatted text to a file as UTF-8. A character may come in two pieces.
template <class C> struct FileSink {
    static bool take(void* context, const C* piece, int length) {
        auto self = static_cast<FileSink*>(context);
        if constexpr (sizeof(C) == 1) return self->write(piece, size_t(length));
        for (int at = 0; at < length;) {
            C units[chunk];
            int count = 0;
            if (self->lead) units[count++] = std::exchange(self->lead, C(0));
            while (count < chunk && at < length) units[count++] = piece[at++];
            if (sizeof(C) == 2 && leadSurrogate(units[count - 1])) self->lead = units[--count];
            if (!self->convert(units, count)) return false;
        }
        return true;
    }
    bool finish() { return !lead || convert(&lead, 1); }

    std::FILE* file;
    C lead = 0; ///< the first half of a character whose other half is to come
    int written = 0;

private:
    bool write(const char* bytes, size_t size) {
        written += int(size);
        return std::fwrite(bytes, 1, size, file) == size;
    }
    bool convert(const C* units, int count) {
        char bytes[4 * chunk];
        return write(bytes, transcode(bytes, sizeof bytes, units, size_t(count)));
    }

    static constexpr int chunk = 64;
};

} // namespace

template <class C>
int ZTextNumberT<C>::inttostr(C* out, int size, int value, int radix, int width, bool zeros, bool upper) {
    return orv::inttostr(out, size, value, radix, width, zeros, upper);
}
template <class C>
int ZTextNumberT<C>::uinttostr(C* out, int size, uint value, int radix, int width, bool zeros, bool upper) {
    return orv::uinttostr(out, size, value, radix, width, zeros, upper);
}
template <class C>
int ZTextNumberT<C>::largetostr(C* out, int size, large value, int radix, int width, bool zeros, bool upper) {
    return orv::inttostr(out, size, value, radix, width, zeros, upper);
}
template <class C>
int ZTextNumberT<C>::ulargetostr(C* out, int size, ularge value, int radix, int width, bool zeros, bool upper) {
    return orv::uinttostr(out, size, value, radix, width, zeros, upper);
}
template <class C> C* ZTextNumberT<C>::inttostr(int value, int radix, int width, bool zeros, bool upper) {
    return makeText<C>([&](C* out, int size) { return orv::inttostr(out, size, value, radix, width, zeros, upper); });
}
template <class C> C* ZTextNumberT<C>::uinttostr(uint value, int radix, int width, bool zeros, bool upper) {
    return makeText<C>([&](C* out, int size) { return orv::uinttostr(out, size, value, radix, width, zeros, upper); });
}
template <class C> C* ZTextNumberT<C>::largetostr(large value, int radix, int width, bool zeros, bool upper) {
    return makeText<C>([&](C* out, int size) { return orv::inttostr(out, size, value, radix, width, zeros, upper); });
}
template <class C> C* ZTextNumberT<C>::ulargetostr(ularge value, int radix, int width, bool zeros, bool upper) {
    return makeText<C>([&](C* out, int size) { return orv::uinttostr(out, size, value, radix, width, zeros, upper); });
}
template <class C>
int ZTextNumberT<C>::realtostr(C* out, int size, double value, int width, int precision, ichar decimal) {
    return orv::realtostr(out, size, value, width, precision, decimal);
}
template <class C> C* ZTextNumberT<C>::floattostr(double value, int width, int precision, ichar decimal) {
    return makeText<C>([&](C* out, int size) { return orv::realtostr(out, size, value, width, precision, decimal); });
}

template <class C> int ZTextNumberT<C>::numeral(C* out, int size, uint value, int format) {
    return orv::numeral(out, size, value, format);
}
template <class C> int ZTextNumberT<C>::romanMumeral(C* out, int size, uint value, bool upper) {
    return orv::romanNumeral(out, size, value, upper);
}
template <class C> int ZTextNumberT<C>::alphaNumeral(C* out, int size, uint value, bool upper) {
    return orv::alphaNumeral(out, size, value, upper);
}
template <class C> int ZTextNumberT<C>::letterNumeral(C* out, int size, uint value, bool upper) {
    return orv::letterNumeral(out, size, value, upper);
}

template <class C> bool ZTextNumberT<C>::strtobyte(const C* text, int length, byte& value, int radix) {
    return read(text, length, value, radix);
}
template <class C> bool ZTextNumberT<C>::strtoint8(const C* text, int length, int8& value, int radix) {
    return read(text, length, value, radix);
}
template <class C> bool ZTextNumberT<C>::strtoint16(const C* text, int length, int16& value, int radix) {
    return read(text, length, value, radix);
}
template <class C> bool ZTextNumberT<C>::strtoword(const C* text, int length, word& value, int radix) {
    return read(text, length, value, radix);
}
template <class C> bool ZTextNumberT<C>::strtoint(const C* text, int length, int& value, int radix) {
    return read(text, length, value, radix);
}
template <class C> bool ZTextNumberT<C>::strtouint(const C* text, int length, uint& value, int radix) {
    return read(text, length, value, radix);
}
template <class C> bool ZTextNumberT<C>::strtolarge(const C* text, int length, large& value, int radix) {
    return read(text, length, value, radix);
}
template <class C> bool ZTextNumberT<C>::strtoularge(const C* text, int length, ularge& value, int radix) {
    return read(text, length, value, radix);
}
template <class C> bool ZTextNumberT<C>::strtofloat(const C* text, int length, float& value, int decimal) {
    return read(text, length, value, decimal);
}
template <class C> bool ZTextNumberT<C>::strtoreal(const C* text, int length, double& value, int decimal) {
    return read(text, length, value, decimal);
}
template <class C>
int ZTextNumberT<C>::strradix(const C* text, int length, int* radix, bool sign,
                              bool* negative) requires(sizeof(C) == 1) {
    // clang 14 instantiates this in every width, whatever is required.
    if constexpr (sizeof(C) == 1)
        return orv::strradix(text, limited(text, length), radix, sign, negative);
    else
        return 0;
}

template <class C> int ZTextNumberT<C>::printf(C* out, int size, const C* format, ...) {
    var_arg arguments;
    va_start(arguments.list, format);
    int length = orv::aformat(out, size, format, &arguments);
    va_end(arguments.list);
    return length;
}
template <class C> int ZTextNumberT<C>::aprintf(C* out, int size, const C* format, var_arg* arguments) {
    return orv::aformat(out, size, format, arguments);
}
template <class C> C* ZTextNumberT<C>::dprintf(const C* format, ...) {
    var_arg arguments;
    va_start(arguments.list, format);
    C* made = makeText<C>([&](C* out, int size) { return orv::aformat(out, size, format, &arguments); });
    va_end(arguments.list);
    return made;
}
template <class C> int ZTextNumberT<C>::fprintf(_IO_FILE* file, const C* format, ...) {
    FileSink<C> sink{file};
    var_arg arguments;
    va_start(arguments.list, format);
    int length = orv::formatTo<C>(&FileSink<C>::take, &sink, format, &arguments);
    va_end(arguments.list);
    return length >= 0 && sink.finish() ? sink.written : -1;
}

template class ZTextNumberT<char>;
template class ZTextNumberT<wchar>;
template class ZTextNumberT<ichar>;
