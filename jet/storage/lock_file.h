#pragma once

#include <filesystem>
#include <string>

#include "jet/storage/system_file.h"

namespace jet::storage {

/// What to say where the database file itself is locked, but not by its lock file.
std::string InUseByAnotherName(const std::filesystem::path& database);

/// Keeps other programs out of a database by the file that the database engine uses for that:
/// `<name>.ldb` beside it, with an entry that says who has the database open, and a lock on bytes
/// far behind its end. Both go when this object goes.
class LockFile {
  public:
    /// `database` is no symbolic link. Error(InUse) names the computers that have the database
    /// open, or that had it open last and left no lock to tell. An entry that this program left on
    /// this computer is taken over.
    explicit LockFile(const std::filesystem::path& database);
    LockFile(LockFile&& other) noexcept = default;
    LockFile& operator=(LockFile&&) = delete;
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;
    ~LockFile();

    /// Where the lock file of a database is.
    static std::filesystem::path PathFor(const std::filesystem::path& database);

  private:
    bool TryTake(const std::filesystem::path& database);

    std::filesystem::path path_;
    Descriptor descriptor_;
};

}  // namespace jet::storage
