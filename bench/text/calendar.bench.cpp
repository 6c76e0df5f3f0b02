#include "text/ZDateTime.h"

#include "bench/support/pair.h"
#include "text/ZString.h"

#ifdef ORV_PEER_QT
#include <QDateTime>
#endif

namespace {

constexpr int moments = 256;

/// Moments spread over the years 1700 to 2300, in milliseconds since 1970.
struct Moments {
    large all[moments];
    Moments() {
        unsigned state = 2463534242u;
        for (large& moment : all) {
            state ^= state << 13, state ^= state >> 17, state ^= state << 5;
            moment = large(state) * 4400 - 8'500'000'000'000 + state % 1000;
        }
    }
};
const large* table() {
    static const Moments made;
    return made.all;
}

void oursRoundTrip(benchmark::State& state) {
    const large* all = table();
    for (auto _ : state)
        for (int i = 0; i < moments; ++i) {
            ZDateTime date(ZTime(all[i] + orv::detail::unixEpoch));
            ZTime back(date.year(), date.month(), date.day(), date.hour(), date.minute(), date.second());
            if (back.value() + date.msec() != all[i] + orv::detail::unixEpoch) state.SkipWithError("wrong moment");
        }
}

struct Text {
    char text[orv::detail::dateTextRoom];
    int length;
};
const Text* texts() {
    static Text all[moments];
    const large* from = table();
    for (int i = 0; i < moments; ++i) {
        orv::detail::DateFields fields;
        orv::detail::fieldsOf(from[i] + orv::detail::unixEpoch, fields);
        all[i].length = orv::detail::printDate(fields, all[i].text);
    }
    return all;
}

void oursParse(benchmark::State& state) {
    const Text* all = texts();
    const large* expected = table();
    ZString strings[moments];
    for (int i = 0; i < moments; ++i) strings[i].set(all[i].text, all[i].length);
    for (auto _ : state)
        for (int i = 0; i < moments; ++i)
            if (ZTime(strings[i]).value() != expected[i] + orv::detail::unixEpoch) state.SkipWithError("wrong moment");
}

#ifdef ORV_PEER_QT
void qtRoundTrip(benchmark::State& state) {
    const large* all = table();
    for (auto _ : state)
        for (int i = 0; i < moments; ++i) {
            QDateTime date = QDateTime::fromMSecsSinceEpoch(all[i], Qt::UTC);
            int year, month, day;
            date.date().getDate(&year, &month, &day);
            QTime time = date.time();
            QDateTime back(QDate(year, month, day), QTime(time.hour(), time.minute(), time.second()), Qt::UTC);
            if (back.toMSecsSinceEpoch() + time.msec() != all[i]) state.SkipWithError("wrong moment");
        }
}

void qtParse(benchmark::State& state) {
    const Text* all = texts();
    const large* expected = table();
    QString strings[moments];
    for (int i = 0; i < moments; ++i) strings[i] = QString::fromLatin1(all[i].text, all[i].length);
    for (auto _ : state)
        for (int i = 0; i < moments; ++i)
            if (QDateTime::fromString(strings[i], Qt::ISODateWithMs).toMSecsSinceEpoch() != expected[i])
                state.SkipWithError("wrong moment");
}
#else
constexpr BenchPair::Run qtRoundTrip = nullptr, qtParse = nullptr;
#endif

BenchPair roundTrip("calendar round trip", "QDateTime", 0.4, oursRoundTrip, qtRoundTrip);
BenchPair parse("ISO date parse", "QDateTime", 0.1, oursParse, qtParse);

} // namespace
