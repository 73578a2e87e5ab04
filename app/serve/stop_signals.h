#pragma once

#include <csignal>
#include <functional>

namespace quillon {

/// While an object lives, SIGINT and SIGTERM wait to be asked for instead of ending the process.
/// To be made before any thread, so that none of them takes a signal.
class StopSignals {
  public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// Returns when a signal has come, or soon after `goesOn` has become false. From then on the
    /// next signal ends the process at once.
    void WaitWhile(const std::function<bool()>& goesOn);

  private:
    void Restore();

    sigset_t awaited_{}, previous_{};
};

}  // namespace quillon
