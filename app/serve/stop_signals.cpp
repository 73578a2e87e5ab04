#include "app/serve/stop_signals.h"

namespace quillon {

StopSignals::StopSignals() {
    sigemptyset(&awaited_);
    for (const int signal : {SIGINT, SIGTERM}) {
        // Who starts a job in the background may have had it ignore the keyboard; that stays so.
        struct sigaction action{};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN) sigaddset(&awaited_, signal);
    }
    pthread_sigmask(SIG_BLOCK, &awaited_, &previous_);
}

StopSignals::~StopSignals() {
    Restore();
}

void StopSignals::WaitWhile(const std::function<bool()>& goesOn) {
    constexpr timespec Pause{1, 0};
    while (goesOn() && sigtimedwait(&awaited_, nullptr, &Pause) < 0) {
    }
    Restore();
}

void StopSignals::Restore() {
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
}

}  // namespace quillon
