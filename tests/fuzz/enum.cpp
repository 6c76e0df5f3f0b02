// Any bytes, as the names of an enumeration and an expression over them: reading leaves no names behind, a flag set
// that is written reads back, and an expression of one name is its value.
#include "object/ZEnum.h"

#include "core/ZCoreLib.h"
#include "text/ZString.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

/// The first line holds names, one a word; the second is the expression.
void run(const std::string& names, const std::string& expression) {
    ZEnum data(ZSelector("Fuzzed"));
    ZSelector all(names.data(), int(names.size()));
    ZArrayT<ZSelector> words = all.extract(ZSelector::Names);
    for (uint i = 0; i < words.count() && i < 40; ++i) data.add(words[i], i < 32 ? int(1u << i) : int(i * 7));
    data.resetBitFlags();
    for (uint i = 0; i < data.count(); ++i) {
        const int value = data.valueAtIndex(int(i));
        const ZSelector name = data.nameAtIndex(int(i));
        require(data.value(name) == value && data.resolve(name) == value);
        require(data.prevValue(data.nextValue(value)) == value);
    }
    for (int value : {0, 1, -1, 0x1234567, int(0x80000000u)}) {
        // A name may look like the number of a value that has none.
        const ZSelector called = data.name(value);
        require(data.value(called) == value || (data.valueIndex(value) < 0 && data.value(called, nullptr)));
        const int flags = data.scan(data.output(value, false), false);
        require((flags & ~value) == 0 && data.scan(data.output(flags, false), false) == flags);
    }
    const uint before = ZSelector::selectorCount();
    const ZString text(expression.data(), int(expression.size()));
    data.resolve(text);
    require(ZSelector::selectorCount() == before);
    // The first look at a known name may take that apart.
    ZEnum::resolveEnum(text);
    const uint known = ZSelector::selectorCount();
    ZEnum::resolveEnum(text);
    require(ZSelector::selectorCount() == known);
    ZSelector list(expression.data(), int(expression.size()));
    data.scan(list, false);
    data.scan(list, true);
    while (data.count()) require(data.remove(data.valueAtIndex(0)));
    require(data.isBitFlags() && data.names().isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static ZCoreLib library("fuzz", false, false, true);
    std::string text(reinterpret_cast<const char*>(bytes), size);
    const size_t line = text.find('\n');
    run(text.substr(0, line), line == text.npos ? "" : text.substr(line + 1));
    return 0;
}
