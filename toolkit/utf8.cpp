#include "toolkit/utf8.h"

#include <cstring>

namespace toolkit {

bool utf8Valid(const char* text, size_t length) {
    auto at = reinterpret_cast<const byte*>(text);
    for (size_t left = length; left > 0;) {
        size_t size = 8;
        uint64_t word = ~uint64_t(0);
        if (left >= size) std::memcpy(&word, at, size);
        if (word & 0x8080808080808080u) {
            int sequence = utf8Sequence(at, left);
            if (sequence < 0) return false;
            size = size_t(sequence);
        }
        at += size;
        left -= size;
    }
    return true;
}

} // namespace toolkit
