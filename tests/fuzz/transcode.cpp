// Any bytes, read as each of the three widths: conversions agree with reading code by code in both directions, repaired
// text survives every width, and nothing is written beyond the room that is given.
#include "text/transcode.h"

#include <cstdlib>
#include <string>

using namespace orv::detail;

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

template <class To, class From> std::basic_string<To> convert(const std::basic_string<From>& text) {
    size_t needed = transcode<To>(static_cast<To*>(nullptr), 0, text.data(), text.size());
    std::basic_string<To> out(needed, To());
    require(transcode(out.data(), needed, text.data(), text.size()) == needed);
    return out;
}

template <class C> void check(const uint8_t* data, size_t size) {
    std::basic_string<C> text(size / sizeof(C), C());
    if (!text.empty()) __builtin_memcpy(text.data(), data, text.size() * sizeof(C));
    std::u32string forwards, backwards;
    for (const C *at = text.data(), *end = at + text.size(); at < end;) forwards += decodeCode(at, end);
    for (const C *begin = text.data(), *at = begin + text.size(); at > begin;) backwards += decodeBefore(at, begin);
    require(forwards == std::u32string(backwards.rbegin(), backwards.rend()));
    require(forwards == convert<ichar>(text));
    std::string bytes = convert<char>(text);
    std::u16string units = convert<wchar>(text);
    require(convert<ichar>(bytes) == forwards && convert<ichar>(units) == forwards);
    require(convert<wchar>(bytes) == units && convert<char>(units) == bytes);
    require(countCodes(text.data(), text.size()) == forwards.size());

    size_t room = size ? data[0] % (units.size() + 1) : 0;
    std::u16string part(room + 1, u'\x5A5A');
    require(transcode(part.data(), room, text.data(), text.size()) == units.size());
    require(part[room] == u'\x5A5A');
    size_t whole = room && leadSurrogate(units[room - 1]) ? room - 1 : room;
    require(part.compare(0, whole, units, 0, whole) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    check<char>(data, size);
    check<wchar>(data, size);
    check<ichar>(data, size);
    return 0;
}
