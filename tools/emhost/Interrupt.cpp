#include "Interrupt.h"

#include <signal.h>

#include <thread>

namespace {

constexpr auto kTick = std::chrono::milliseconds(100);

volatile sig_atomic_t g_bInterrupted = 0;

void OnInterrupt(int) {
    g_bInterrupted = 1;
}

}  // namespace

void CatchInterrupts() {
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool Interrupted() {
    return g_bInterrupted != 0;
}

bool WaitUntil(std::chrono::steady_clock::time_point when,
               std::chrono::steady_clock::time_point deadline, const std::function<bool()>& stop) {
    using Clock = std::chrono::steady_clock;
    while (!g_bInterrupted && Clock::now() < deadline && !(stop && stop())) {
        if (Clock::now() >= when)
            return true;
        std::this_thread::sleep_for(kTick);
    }
    return false;
}
