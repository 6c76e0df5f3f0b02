#include "text/ZStringPair.h"

#include "core/ZArrayT.h"

ZStringPair::ZStringPair(const ZString& text) {
    const ZArrayT<ZString> parts = text.split(' ', false);
    if (parts.count() != 2) return;
    first = parts[0];
    second = parts[1];
}

void ZStringPair::clear() {
    first.clear();
    second.clear();
}

int ZStringPair::compare(const ZStringPair& other) const {
    int order = first.compare(other.first);
    return order ? order : second.compare(other.second);
}
