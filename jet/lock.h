#pragma once

#include <filesystem>
#include <string>

namespace jet {

/// How a database is opened.
enum class OpenMode {
    ReadOnly,   ///< nothing is written, not even a lock file; a journal is read through
    ReadWrite,  ///< takes the database for this process: Error(InUse) where another has it
    /// As ReadWrite, and refused where the file may not be written, but nothing ever reaches the
    /// disk: changes, transactions and what is made durable are seen through this object alone and
    /// go with it. Others are not kept off, nor does it matter whether they have it open.
    InMemory,
};

/// What the lock file beside a database means to whoever wants to open it for writing.
struct LockState {
    enum class Kind {
        Free,
        LeftBehind,  ///< by this program on this computer; the next opening takes it over
        InUse,       ///< opening is refused
    };
    Kind kind = Kind::Free;
    std::string objection;       ///< why opening is refused; "" when it is not
    std::filesystem::path file;  ///< the lock file's place, whether it is there or not
};

/// Looks at the lock file, and at the lock on the database itself that has no name, and touches
/// nothing. Error(Io, ReadOnly) where that cannot be done.
LockState LookAtLock(const std::filesystem::path& database);

}  // namespace jet
