#include "toolkit/image.h"

#include "toolkit/lock.h"

#include <link.h>

namespace toolkit {

namespace {
struct Range {
    uintptr_t begin, end;
};
struct Images {
    Range program, library;
    bool first; ///< the program is the first image that the loader tells
};
Images images;
int lock = 0, known = 0;

bool holds(const Range& range, uintptr_t at) { return at - range.begin < range.end - range.begin; }

int visit(dl_phdr_info* image, size_t, void* data) {
    auto& found = *static_cast<Images*>(data);
    Range range{UINTPTR_MAX, 0};
    for (int i = 0; i < image->dlpi_phnum; ++i) {
        const auto& part = image->dlpi_phdr[i];
        if (part.p_type != PT_LOAD) continue;
        uintptr_t begin = image->dlpi_addr + part.p_vaddr, end = begin + part.p_memsz;
        if (begin < range.begin) range.begin = begin;
        if (end > range.end) range.end = end;
    }
    if (range.begin >= range.end) return 0;
    if (found.first) found.program = range;
    found.first = false;
    if (holds(range, reinterpret_cast<uintptr_t>(&images))) found.library = range;
    return 0;
}

void lookUp() {
    Images found{{}, {}, true};
    dl_iterate_phdr(visit, &found);
    spinLock(lock);
    if (!known) {
        images = found;
        storeRelease(known, 1);
    }
    spinUnlock(lock);
}
} // namespace

bool mappedForGood(const void* p) {
    if (ORV_UNLIKELY(!loadAcquire(known))) lookUp();
    auto at = reinterpret_cast<uintptr_t>(p);
    return holds(images.program, at) || holds(images.library, at);
}

} // namespace toolkit
