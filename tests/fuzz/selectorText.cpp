#include "core/selectorText.h"
#include "core/ZSelectorSpace.h"

#include <cstdlib>
#include <cstring>
#include <string>

using namespace orv::detail;

namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

/// Items lie in the text, in order, and none is empty.
void checkItems(const char* text, size_t length, ZSelector::Type type) {
    SelectorItems items(text, length, type);
    auto inside = [&](const SelectorPart& part) {
        require(!part.length || (part.text >= text && part.text + part.length <= text + length));
    };
    inside(items.name);
    inside(items.result);
    const char* last = text;
    SelectorPart item;
    while (items.next(item)) {
        inside(item);
        require(item.length > 0 && item.text >= last);
        last = item.text + item.length;
    }
    require(items.close() >= text && items.close() <= text + length);
}

/// The same text and kind are one selector, whatever way leads to it; its parts can be put together again.
void checkSelector(const char* text, size_t length) {
    ZSelector made(text, int(length));
    require(length == 0 || !made.isEmpty());
    require(ZSelector(text, int(length)) == made && ZSelector::find(text, int(length)) == made);
    ZSelector again;
    again.set(made.string(), made.length(), ZSelector::Detect);
    for (const ZSelector& sel : {made, again}) {
        int count = sel.parcount();
        for (int i = 0; i < count; ++i) require(!sel.param(i).isEmpty() && sel.param(i).length() <= sel.length());
        require(sel.contains(sel) && sel.matches(sel));
        require(sel.baseName().length() <= sel.length() && sel.mainType().length() <= sel.length());
        require(sel.nameSpace().length() < sel.length() || sel.isEmpty());
        // An open "<" hides the blanks behind it, so that words put together may be taken apart otherwise.
        bool plain = sel.type() == ZSelector::Names && !sel.hasstr("<");
        ZSelector set = plain ? sel.add(sel) : ZSelector();
        for (int i = 0; plain && i < count; ++i) require(set.contains(sel.param(i)));
        sel.method();
        sel.methodQualifier();
        sel.prefixMask();
        sel.varName();
        sel.lowerCase();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Copies without slack, so that a read past the end shows.
    std::string holder(reinterpret_cast<const char*>(data), size);
    char* text = static_cast<char*>(std::malloc(size ? size : 1));
    std::memcpy(text, holder.data(), size);
    if (size) {
        ZSelector::Type type, again;
        size_t measured = normalizeSelector(text, size, type, nullptr);
        require(measured <= 2 * size && type < ZSelector::Detect);
        std::string normal(measured, 0), twice(2 * measured, 0);
        NormalText held(text, size);
        require(held && held.length == measured && held.type == type);
        normal.assign(held.text, held.length);
        twice.resize(normalizeSelector(normal.data(), normal.size(), again, twice.data()));
        require(twice == normal); // what is in normal form stays
        for (int kind = 0; kind <= ZSelector::Mixed; ++kind) checkItems(text, size, ZSelector::Type(kind));
    }
    ZSelector::open();
    if (size % 2) ZSelectorSpace::space().setPermanentLimit(0);
    checkSelector(text, size);
    if (size % 2) require(ZSelector::selectorCount() == 0); // nothing keeps itself
    ZSelector::close();
    std::free(text);
    return 0;
}
