#include "core/ZSignal.h"

#include "bench/support/pair.h"

#include <thread>

#ifdef ORV_PEER_GLIB
#include <glib.h>
#endif

namespace {

/// Two threads that wake each other in turn; one iteration is there and back.
void oursPingPong(benchmark::State& state) {
    ZSignal ping(true), pong(true);
    long answered = 0, asked = 0;
    std::thread other([&] {
        while (ping.wait(-1)) {
            ++answered;
            pong.send();
        }
    });
    for (auto _ : state) {
        ping.send();
        pong.wait(-1);
        ++asked;
    }
    ping.release();
    other.join();
    if (answered != asked) state.SkipWithError("lost a signal");
}

#ifdef ORV_PEER_GLIB
struct GSignalPeer {
    GMutex mutex;
    GCond cond;
    bool set = false, over = false;
    GSignalPeer() {
        g_mutex_init(&mutex);
        g_cond_init(&cond);
    }
    ~GSignalPeer() {
        g_cond_clear(&cond);
        g_mutex_clear(&mutex);
    }
    void send(bool last = false) {
        g_mutex_lock(&mutex);
        (last ? over : set) = true;
        g_cond_signal(&cond);
        g_mutex_unlock(&mutex);
    }
    bool wait() {
        g_mutex_lock(&mutex);
        while (!set && !over) g_cond_wait(&cond, &mutex);
        bool signalled = set;
        set = false;
        g_mutex_unlock(&mutex);
        return signalled;
    }
};
void peerPingPong(benchmark::State& state) {
    GSignalPeer ping, pong;
    long answered = 0, asked = 0;
    std::thread other([&] {
        while (ping.wait()) {
            ++answered;
            pong.send();
        }
    });
    for (auto _ : state) {
        ping.send();
        pong.wait();
        ++asked;
    }
    ping.send(true);
    other.join();
    if (answered != asked) state.SkipWithError("lost a signal");
}
#else
constexpr BenchPair::Run peerPingPong = nullptr;
#endif
BenchPair pingPong("signal ping-pong", "GCond", 1.0, oursPingPong, peerPingPong);

} // namespace
