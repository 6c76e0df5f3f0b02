#include "text/transcode.h"

#include "bench/support/pair.h"

#include <string>
#include <unicode/ustring.h>

namespace {

std::string repeated(const char* piece, size_t bytes) {
    std::string text;
    while (text.size() < bytes) text += piece;
    return text;
}
const std::string& plain() {
    static const std::string text =
        repeated("The quick brown fox jumps over the lazy dog, and then once more. ", 1 << 20);
    return text;
}
/// Words of several scripts, some of them long, with ASCII between.
const std::string& mixed() {
    static const std::string text = repeated("Grüße aus Köln; Съешь ещё этих мягких французских булок. "
                                             "いろはにほへとちりぬるを, plain words in between 😀 and a naïve café. ",
                                             1 << 20);
    return text;
}

size_t ours(std::u16string& out, const std::string& text) {
    return orv::detail::transcode(out.data(), out.size(), text.data(), text.size());
}
size_t peers(std::u16string& out, const std::string& text) {
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(out.data(), int32_t(out.size()), &length, text.data(), int32_t(text.size()), 0xFFFD, nullptr,
                         &error);
    return U_SUCCESS(error) ? size_t(length) : 0;
}

using Convert = size_t (*)(std::u16string& out, const std::string& text);
void run(benchmark::State& state, const std::string& text, Convert convert) {
    std::u16string out(text.size(), u'\0'), other(text.size(), u'\0');
    if (ours(out, text) != peers(other, text) || out != other) return state.SkipWithError("results differ");
    for (auto _ : state) {
        benchmark::DoNotOptimize(convert(out, text));
        benchmark::ClobberMemory();
    }
}
BenchPair ascii(
    "UTF-8 to UTF-16, ASCII", "ICU", 0.25, [](benchmark::State& s) { run(s, plain(), ours); },
    [](benchmark::State& s) { run(s, plain(), peers); });
BenchPair several(
    "UTF-8 to UTF-16, mixed", "ICU", 1.0, [](benchmark::State& s) { run(s, mixed(), ours); },
    [](benchmark::State& s) { run(s, mixed(), peers); });

} // namespace
