#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "jet/storage/file_system.h"
#include "jet/storage/format/page.h"
#include "jet/storage/header_format.h"

namespace jet::storage {

/// The header page's commit counters: they tell whether a journal belongs to the state that a
/// database file is in.
using CommitCounters = std::array<std::uint8_t, header_format::CommitCountersSize>;
/// The page that holds them.
constexpr PageNumber HeaderPage = 0;

/// The commit counters of a header page.
CommitCounters CountersOf(const Page& header);

/// One page and its place, to be written to a journal.
using JournalPage = std::pair<PageNumber, const Page*>;

/// Writes a complete journal file and waits until it is on the disk.
///
/// Layout: 16 bytes name of the format, number of pages in the database afterwards (4), number of
/// records (4), zeros up to 512, the commit counters before this commit (512), the records (page
/// number (4), content), a checksum of all before it (8).
void WriteJournal(FileSystem& files, const std::filesystem::path& path, PageNumber pageCount,
                  const CommitCounters& before, std::span<const JournalPage> pages);

/// A journal file that has been found.
class JournalReader {
  public:
    /// Opens and checks the file, which exists; none if it is not a complete journal.
    static std::optional<JournalReader> Open(FileSystem& files, const std::filesystem::path& path);

    /// Pages in the database after the journal's commit.
    PageNumber PageCount() const { return pageCount_; }
    /// The database's commit counters before the journal's commit.
    const CommitCounters& CountersBefore() const { return before_; }

    std::size_t Pages() const { return records_; }
    void ForEach(const std::function<void(PageNumber, const Page&)>& visit) const;

  private:
    JournalReader(std::unique_ptr<File> file, PageNumber pageCount, std::size_t records,
                  const CommitCounters& before)
        : file_(std::move(file)), pageCount_(pageCount), records_(records), before_(before) {}

    std::unique_ptr<File> file_;
    PageNumber pageCount_;
    std::size_t records_;
    CommitCounters before_;
};

}  // namespace jet::storage
