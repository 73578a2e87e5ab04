#pragma once

#include <cstddef>
#include <filesystem>

namespace jet {

/// The journal of a database: what a program that was cut off while it wrote has left, so that the
/// next one can bring the file to the end of that commit.
struct JournalState {
    enum class Kind {
        None,
        Waits,        ///< the file is whole only together with it
        NotComplete,  ///< it was cut short or changed, and says nothing
        NotIts,       ///< it was left for the database as it was before it was replaced
    };
    Kind kind = Kind::None;
    std::filesystem::path file;
    std::size_t pages = 0;  ///< that it has for the database
};

/// Looks for the journal and touches nothing.
JournalState LookAtJournal(const std::filesystem::path& database);

/// Carries out a journal that waits, and nothing else; what was found. Takes the database for that:
/// Error(InUse). Error(Damaged) for a journal that is not complete or not the database's; nothing
/// is touched then.
JournalState RecoverDatabase(const std::filesystem::path& database);

}  // namespace jet
