#pragma once

#include <algorithm>
#include <filesystem>
#include <vector>

#include "jet/storage/file_system.h"
#include "jet/storage/journal.h"

namespace quillon {

/// Leaves a journal beside a database as a run does that is killed before it has written a page
/// into place. `commits`: how many there were between the state that the journal is for and now.
inline void LeaveJournal(const std::filesystem::path& database, unsigned commits = 0) {
    namespace storage = jet::storage;
    const auto files = storage::RealFileSystem();
    const auto file = files->Open(database, storage::FileAccess::Read);
    storage::Page header;
    file->ReadAt(0, header);
    std::uint8_t& counter = header[storage::header_format::CommitCountersOffset];
    counter = static_cast<std::uint8_t>(counter - commits);
    const auto before = storage::CountersOf(header);
    ++counter;
    const std::vector<storage::JournalPage> pages{{0, &header}};
    storage::WriteJournal(*files, database.string() + ".journal",
                          static_cast<storage::PageNumber>(file->Size() / storage::PageSize),
                          before, pages);
}

}  // namespace quillon
