#include <server/StopSignals.h>

#include <server/ServerOptions.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace Corvane::Server {

namespace {

constexpr int signalledExit = 128; // and the number of the signal, as shells have it
constexpr std::chrono::seconds longestStop(5);
constexpr int farewell = SIGUSR1; // the thread's own end

sigset_t stopSet()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, farewell);
    return set;
}

int anySignal(const sigset_t& set)
{
    int signal = 0;
    sigwait(&set, &signal);
    return signal;
}

// Below 0 where none comes for as long as stopping may take.
int nextSignal(const sigset_t& set)
{
    const timespec longest{longestStop.count(), 0};
    int signal = 0;
    do {
        signal = sigtimedwait(&set, nullptr, &longest);
    } while (signal < 0 && errno == EINTR);
    return signal;
}

// On a thread of its own.
void wait(const std::function<void()>& stop)
{
    const sigset_t set = stopSet();
    std::thread stopper;
    bool goesOn = true;
    while (goesOn) {
        const int signal = stopper.joinable() ? nextSignal(set) : anySignal(set);
        if (signal < 0) {
            _exit(Done); // what does not end is a thread within GDAL; nothing is lost
        }
        goesOn = signal != farewell;
        if (goesOn && stopper.joinable()) {
            _exit(signalledExit + signal);
        }
        if (goesOn) {
            stopper = std::thread(stop);
        }
    }
    if (stopper.joinable()) {
        stopper.join();
    }
}

} // namespace

StopSignals::StopSignals()
{
    const sigset_t set = stopSet();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

StopSignals::~StopSignals()
{
    finish();
}

void StopSignals::finish()
{
    if (waiter.joinable()) {
        pthread_kill(waiter.native_handle(), farewell);
        waiter.join();
    }
}

void StopSignals::onSignal(std::function<void()> stop)
{
    waiter = std::thread([stop = std::move(stop)] { wait(stop); });
}

} // namespace Corvane::Server
