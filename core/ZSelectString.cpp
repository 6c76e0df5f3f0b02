#include "core/ZSelectString.h"

#include "core/ZArrayT.h"
#include "core/ZSelectorPair.h"

ZSelectString::ZSelectString(const ZString& text) {
    ZArrayT<ZString> words = text.split(' ', false);
    if (words.count() != 2) return;
    selector.set(words.data()[0]);
    string = words.data()[1];
}

ZString ZSelectString::toString() const {
    ZString text(selector.string());
    text.append(" ", 1);
    text.append(string);
    return text;
}

ZSelectorPair::ZSelectorPair(const ZString& text) {
    ZArrayT<ZString> words = text.split(' ', false);
    if (words.count() != 2) return;
    name.set(words.data()[0]);
    selector.set(words.data()[1]);
}
