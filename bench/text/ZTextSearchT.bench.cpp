#include "text/ZTextSearchT.h"

#include "bench/support/pair.h"

#include <cstring>
#include <string>

namespace {

using Text = ZTextSearchT<char>;

constexpr const char* needle = "Needle in the stack";
/// A megabyte of words without the needle, then the needle in the case that `which` finds.
std::string haystack(const char* end) {
    const char* words[] = {"nothing ", "needs ", "the ",     "needless ", "Stack ",
                           "in ",      "knows ", "sisters ", "and ",      "Neo "};
    std::string text;
    unsigned state = 1;
    while (text.size() < 1 << 20)
        text += words[(state = state * 1664525u + 1013904223u) >> 16 & 7 ? state >> 20 & 7 : 9];
    return text + end;
}
const std::string& exact() {
    static const std::string text = haystack(needle);
    return text;
}
const std::string& otherCase() {
    static const std::string text = haystack("nEEDLE IN THE sTACK");
    return text;
}

using Find = const char* (*)(const std::string& text);
const char* oursExact(const std::string& text) { return Text::strnstr(text.data(), int(text.size()), needle); }
const char* peerExact(const std::string& text) {
    return static_cast<const char*>(memmem(text.data(), text.size(), needle, std::strlen(needle)));
}
const char* oursIgnored(const std::string& text) { return Text::stristr(text.c_str(), needle); }
const char* peerIgnored(const std::string& text) { return strcasestr(text.c_str(), needle); }

void run(benchmark::State& state, const std::string& text, Find find) {
    if (find(text) != text.data() + text.size() - std::strlen(needle)) return state.SkipWithError("not found");
    for (auto _ : state) benchmark::DoNotOptimize(find(text));
}
BenchPair substring(
    "substring", "memmem", 1.2, [](benchmark::State& s) { run(s, exact(), oursExact); },
    [](benchmark::State& s) { run(s, exact(), peerExact); });
BenchPair ignoringCase(
    "substring, ignoring case", "strcasestr", 1.2, [](benchmark::State& s) { run(s, otherCase(), oursIgnored); },
    [](benchmark::State& s) { run(s, otherCase(), peerIgnored); });

} // namespace
