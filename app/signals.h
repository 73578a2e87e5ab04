#pragma once

namespace quillon {

/// What becomes of a write to a pipe that nobody reads any more.
enum class BrokenPipe { IsAnError, EndsAsBefore };

/// While an object lives, SIGINT, SIGTERM and SIGHUP press the Abort button instead of ending the
/// process, and a broken pipe is what the caller wants it to be. A second SIGINT or SIGTERM ends
/// the process at once with exit status 3; the database's journal keeps the file whole. A signal
/// that was ignored stays so. One object at a time.
class AbortSignals {
  public:
    explicit AbortSignals(BrokenPipe pipe = BrokenPipe::IsAnError);
    ~AbortSignals();
    AbortSignals(const AbortSignals&) = delete;
    AbortSignals& operator=(const AbortSignals&) = delete;

    /// Whether a signal has asked for the abort.
    static bool AbortRequested() noexcept;

    /// What the second signal does before it ends the process, such as giving the terminal back;
    /// nullptr for nothing. It runs inside the signal handler and may do only what a handler may.
    static void SetLastAct(void (*act)() noexcept) noexcept;
};

}  // namespace quillon
