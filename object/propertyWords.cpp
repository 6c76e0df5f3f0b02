#include "object/propertyWords.h"

#include "object/ZProperty.h"
#include "object/propertyPlace.h"

#include <cstring>

namespace {
using orv::PropertyWordKind;

std::string_view textOf(const ZSelector& words) {
    return words.isEmpty() ? std::string_view() : std::string_view(words.string(), size_t(words.length()));
}

/// The words of a kind, or of another, with a blank between them, without their first `cut` characters.
ZSelector wordsOfKind(const ZSelector& words, PropertyWordKind kind, PropertyWordKind other, size_t cut) {
    std::string_view rest = textOf(words);
    auto text = static_cast<char*>(__zalloc(rest.size() + 1));
    if (!text) return ZSelector();
    int length = 0;
    for (std::string_view word; !(word = orv::propertyNextWord(rest)).empty();) {
        PropertyWordKind found = orv::propertyWordMeaning(word).kind;
        if (found != kind && found != other) continue;
        if (length) text[length++] = ' ';
        std::memcpy(text + length, word.data() + cut, word.size() - cut);
        length += int(word.size() - cut);
    }
    ZSelector found(text, length);
    zfree(text);
    return found;
}
} // namespace

uint ZProperty::scanFlags(const ZSelector& words) { return orv::propertyWordSum(textOf(words)).flags; }

int ZProperty::scanVersion(const ZSelector& words, char letter) {
    std::string_view rest = textOf(words);
    int found = -1;
    for (std::string_view word; !(word = orv::propertyNextWord(rest)).empty();)
        if (int number = orv::propertyWordNumber(word, std::string_view(&letter, 1)); number >= 0) found = number;
    return found;
}

int ZProperty::scanSBLevel(const ZSelector& words) { return orv::propertyWordSum(textOf(words)).sandBoxLevel; }

ZSelector ZProperty::extractOptions(const ZSelector& words) {
    return wordsOfKind(words, PropertyWordKind::Option, PropertyWordKind::Option, 0);
}

ZSelector ZProperty::extractUpdate(const ZSelector& words) {
    return wordsOfKind(words, PropertyWordKind::Update, PropertyWordKind::Update, 1);
}

ZSelector orv::optionsAndUpdaters(const ZSelector& words) {
    return wordsOfKind(words, PropertyWordKind::Option, PropertyWordKind::Update, 0);
}
