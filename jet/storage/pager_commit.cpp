// How changed pages reach the file, and how a commit that was cut short is finished.
#include <algorithm>
#include <string>

#include "jet/error.h"
#include "jet/storage/pager.h"
#include "jet/value.h"

namespace jet::storage {

namespace {

constexpr PageNumber HeaderPage = 0;
/// Pages written in one call at most.
constexpr std::size_t LongestRun = 64;

CommitCounters CountersOnDisk(File& file) {
    CommitCounters counters{};
    file.ReadAt(CommitCountersOffset, counters);
    return counters;
}

void RemoveQuietly(FileSystem& files, const std::filesystem::path& path) {
    try {
        files.Remove(path);
    } catch (const Error&) {
        // The caller reports the error that made the file useless; the next commit replaces it.
        return;
    }
}

std::filesystem::path Beside(std::filesystem::path path, const char* suffix) {
    path += suffix;
    return path;
}

}  // namespace

std::filesystem::path Pager::JournalPath() const {
    return Beside(path_, ".journal");
}

std::filesystem::path Pager::UnfinishedJournalPath() const {
    return Beside(path_, ".journal-new");
}

void Pager::Commit() {
    if (changed_.empty()) return;
    const CommitCounters before = CountersOnDisk(*file_);
    CountCommit();
    std::vector<JournalPage> pages;
    pages.reserve(changed_.size());
    for (const Frame& frame : changed_)
        pages.emplace_back(frame.number, frame.page.get());
    std::sort(pages.begin(), pages.end());

    // A commit that failed while it wrote into place has left its journal. That one must stay until
    // the new one is complete, hence the other name and the renaming.
    try {
        WriteJournal(*files_, UnfinishedJournalPath(), pageCount_, before, pages);
        file_->Reserve(std::uint64_t{pageCount_} * PageSize);
        files_->Rename(UnfinishedJournalPath(), JournalPath());
    } catch (const Error&) {
        RemoveQuietly(*files_, UnfinishedJournalPath());
        throw;
    }
    files_->SyncFolderOf(JournalPath());
    WriteIntoPlace(pages);
    file_->Sync();
    files_->Remove(JournalPath());

    for (Frame& frame : changed_)
        frame.changed = false;
    unchanged_.splice(unchanged_.begin(), changed_);
    ShrinkCache();
}

/// Each commit leaves its mark in the header, so that a journal can be told from one that belongs
/// to another state of the file.
void Pager::CountCommit() {
    Page& header = Modify(HeaderPage);
    auto count = Load<std::uint16_t>(header, CommitCountersOffset);
    // Zero would tell the database's own engine that a writer died here.
    if (++count == 0) count = 0x0100;
    Store(std::span(header), CommitCountersOffset, count);
}

void Pager::WriteIntoPlace(std::span<const JournalPage> pages) {
    Bytes run;
    for (std::size_t i = 0; i < pages.size();) {
        const PageNumber first = pages[i].first;
        run.clear();
        for (std::size_t n = 0; n < LongestRun && i < pages.size() && pages[i].first == first + n;
             ++n, ++i) {
            run.insert(run.end(), pages[i].second->begin(), pages[i].second->end());
        }
        file_->WriteAt(std::uint64_t{first} * PageSize, run);
    }
}

void Pager::Recover() {
    if (writable_) files_->Remove(UnfinishedJournalPath());
    const auto journal = JournalReader::Open(*files_, JournalPath());
    if (journal && Belongs(*journal)) {
        if (!writable_) {
            pageCount_ = journal->PageCount();
            journal->ForEach([this](PageNumber number, const Page& page) {
                AddFrame(changed_, number, std::make_shared<Page>(page)).changed = true;
            });
            return;
        }
        journal->ForEach([this](PageNumber number, const Page& page) {
            file_->WriteAt(std::uint64_t{number} * PageSize, page);
        });
        file_->Sync();
    }
    if (writable_) files_->Remove(JournalPath());
}

/// A journal that was left behind, after which the database was replaced by another copy, must not
/// be carried out.
bool Pager::Belongs(const JournalReader& journal) {
    const CommitCounters onDisk = CountersOnDisk(*file_);
    bool belongs = onDisk == journal.CountersBefore();
    journal.ForEach([&](PageNumber number, const Page& page) {
        if (number == HeaderPage && CountersOf(page) == onDisk) belongs = true;
    });
    return belongs;
}

}  // namespace jet::storage
