#include "app/checks/journal_remark.h"

#include <fmt/format.h>

#include "jet/lock.h"

namespace quillon {

std::string JournalRemark(const std::filesystem::path& database, const jet::JournalState& journal) {
    using Kind = jet::JournalState::Kind;
    const std::string file = journal.file.string();
    if (journal.kind == Kind::None) return "";
    if (const auto lock = jet::LookAtLock(database); lock.kind == jet::LockState::Kind::InUse) {
        return fmt::format(
            "{} The journal {} may be that of a change under way; look again when the database is "
            "closed",
            lock.objection, file);
    }
    if (journal.kind == Kind::Waits) {
        return fmt::format(
            "A program was cut off while it wrote the database, and the journal {} has not been "
            "carried out yet. What is said here is about the file with the journal; other programs "
            "see the file without it, perhaps half written. 'quillon db recover {}' completes the "
            "file, and so "
            "does the next run. Leave the journal where it is until then",
            file, database.string());
    }
    return fmt::format(
        "The journal {} {}. It says nothing about the database as it is now, and the next run "
        "removes it",
        file,
        journal.kind == Kind::NotComplete
            ? "is not complete"
            : "was left for the database before that was replaced or changed");
}

}  // namespace quillon
