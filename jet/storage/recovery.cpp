// The journal as the library's users see it.
#include "jet/error.h"
#include "jet/journal.h"
#include "jet/storage/database_file.h"
#include "jet/storage/file_system.h"
#include "jet/storage/header.h"
#include "jet/storage/lock_file.h"
#include "jet/storage/pager.h"

namespace jet {

using storage::Pager;

JournalState LookAtJournal(const std::filesystem::path& database) {
    const auto files = storage::RealFileSystem();
    storage::CheckHeaderOf(*files, files->Resolve(database));
    return Pager(files, database, false).Journal();
}

JournalState RecoverDatabase(const std::filesystem::path& database) {
    const auto files = storage::RealFileSystem();
    const auto real = files->Resolve(database);
    storage::CheckHeaderOf(*files, real);
    const storage::LockFile lock(real);
    Pager pages(files, real, true);
    const JournalState found = pages.Journal();
    switch (found.kind) {
        case JournalState::Kind::NotComplete:
            throw Error(ErrorKind::Damaged, found.file.string() +
                                                " is not a complete journal and cannot be carried "
                                                "out. Nothing was changed.");
        case JournalState::Kind::NotIts:
            throw Error(ErrorKind::Damaged,
                        found.file.string() + " does not belong to " + real.string() +
                            " as it is now: the database has been replaced or changed since the "
                            "journal was left. Nothing was changed.");
        case JournalState::Kind::None:
        case JournalState::Kind::Waits:
            break;
    }
    if (found.kind == JournalState::Kind::Waits) pages.Recover();
    return found;
}

}  // namespace jet
