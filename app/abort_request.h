#pragma once

namespace quillon {

/// Exit status of a process that was ended instead of waited for.
inline constexpr int AbortedStatus = 3;

// What the handlers of AbortSignals have in common. A handler may call all of it: nothing waits or
// allocates.

/// As at the start: nobody has asked for the abort.
void ForgetAbortRequest() noexcept;

/// Somebody or something asks the run to end.
void RequestAbort() noexcept;

/// A person asks. At the second time this does the last act and is true: the process is to end.
bool HasLostPatience() noexcept;

}  // namespace quillon
