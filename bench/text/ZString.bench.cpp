#include "text/ZString.h"

#include "bench/support/pair.h"
#include "core/ZArrayT.h"

#include <cmath>
#include <string>
#include <vector>
#ifdef ORV_PEER_QT
#include <QString>
#include <QStringList>
#endif

namespace {

void oursCopy(benchmark::State& state) {
    ZString text("a text of some length that is shared");
    for (auto _ : state) {
        ZString copy(text);
        benchmark::DoNotOptimize(copy);
    }
}

constexpr int appends = 1000;
/// Texts of one and of four units in turn, to a fresh string.
void oursAppends(benchmark::State& state) {
    for (auto _ : state) {
        ZString text;
        for (int i = 0; i < appends; ++i) {
            text.append(u"a", 1);
            text.append(u"bcde", 4);
        }
        if (text.length() != 5 * appends) return state.SkipWithError("wrong length");
    }
}

/// Ten megabytes of words with a blank between: 20,000 different ones of two to ten letters, as unevenly spread as in
/// prose (the n-th as often as 1 / n).
const std::string& words() {
    static const std::string text = [] {
        uint32_t seed = 1;
        auto next = [&] { return (seed = seed * 1664525 + 1013904223) >> 8; };
        std::vector<std::string> known;
        for (int i = 0; i < 20000; ++i) {
            std::string word;
            for (uint32_t length = 2 + next() % 9; word.size() < length;) word += char('a' + next() % 26);
            known.push_back(word);
        }
        std::string made;
        while (made.size() < 10u << 20) {
            double rank = std::exp(next() / double(1 << 24) * std::log(20000.0));
            made.append(known[size_t(rank) - 1]) += ' ';
        }
        return made;
    }();
    return text;
}
size_t wordCount() {
    size_t count = 0;
    for (char c : words()) count += c == ' ';
    return count;
}
void oursSplit(benchmark::State& state) {
    ZString text(words().c_str(), int(words().size()));
    size_t expected = wordCount();
    for (auto _ : state) {
        auto parts = text.split(' ', false);
        if (parts.count() != expected) return state.SkipWithError("wrong count");
    }
}

#ifdef ORV_PEER_QT
void peerCopy(benchmark::State& state) {
    QString text = QString::fromLatin1("a text of some length that is shared");
    for (auto _ : state) {
        QString copy(text);
        benchmark::DoNotOptimize(copy);
    }
}
void peerAppends(benchmark::State& state) {
    const QChar* one = reinterpret_cast<const QChar*>(u"a");
    const QChar* four = reinterpret_cast<const QChar*>(u"bcde");
    for (auto _ : state) {
        QString text;
        for (int i = 0; i < appends; ++i) {
            text.append(one, 1);
            text.append(four, 4);
        }
        if (text.size() != 5 * appends) return state.SkipWithError("wrong length");
    }
}
void peerSplit(benchmark::State& state) {
    QString text = QString::fromStdString(words());
    size_t expected = wordCount();
    for (auto _ : state) {
        auto parts = text.split(QChar(' '), Qt::SkipEmptyParts);
        if (size_t(parts.size()) != expected) return state.SkipWithError("wrong count");
    }
}
#else
constexpr BenchPair::Run peerCopy = nullptr, peerAppends = nullptr, peerSplit = nullptr;
#endif

BenchPair copy("string copy", "QString", 1.0, oursCopy, peerCopy);
BenchPair append("string appends", "QString", 1.5, oursAppends, peerAppends);
BenchPair split("split of 10 MB", "QString::split", 0.7, oursSplit, peerSplit);

} // namespace
