#pragma once

#include <string>

namespace quillon::faults {

/// A reading call leaves everything on the disk as it is, a changing one does not.
enum class Kind { Reading, Changing };

/// What the program is to see of the call in hand.
struct Order {
    /// The error that the call fails with; 0 lets it through.
    int error = 0;
    /// A transfer moves half of its bytes.
    bool half = false;
    /// The process ends once the half is there.
    bool endAfterHalf = false;
};

/// Counts a call on `path`, carries out what the environment asks for at this one, and tells the
/// rest. An empty path is one outside the trial's folder: it is let through uncounted. Keeps errno.
/// Does not return where the process is to be killed before the call.
Order Meet(Kind kind, const char* call, const std::string& path);

/// Puts a call into the record, where all are recorded, without counting it.
void Note(const char* call, const std::string& path);

/// Ends the process like a kill from outside: nothing of it runs any more.
[[noreturn]] void KillProcess();

/// Whether what has not been flushed is to be lost at the kill.
bool PowerIsCut();

/// The time that the program is told, in seconds since 1970; 0 for the true one.
long long ToldTime();

}  // namespace quillon::faults
