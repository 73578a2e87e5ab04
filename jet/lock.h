#pragma once

#include <filesystem>
#include <string>

namespace jet {

/// What the lock file beside a database means to whoever wants to open it for writing.
struct LockState {
    enum class Kind {
        Free,
        LeftBehind,  ///< by this program on this computer; the next opening takes it over
        InUse,       ///< opening is refused
    };
    Kind kind = Kind::Free;
    std::string objection;  ///< why opening is refused; "" when it is not
};

/// Looks at the lock file and touches nothing. Error(Io, ReadOnly) where it cannot be read.
LockState LookAtLock(const std::filesystem::path& database);

}  // namespace jet
