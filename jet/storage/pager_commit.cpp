// How changed pages reach the file, and how a commit that was cut short is finished.
#include <algorithm>
#include <string>
#include <utility>

#include "jet/error.h"
#include "jet/storage/format/fingerprint.h"
#include "jet/storage/journal_note.h"
#include "jet/storage/lock_file.h"
#include "jet/storage/pager.h"
#include "jet/value.h"

namespace jet::storage {

namespace {

/// Pages written or read in one call at most.
constexpr std::size_t LongestRun = 64;

void RemoveQuietly(FileSystem& files, const std::filesystem::path& path) {
    try {
        files.Remove(path);
    } catch (const Error&) {
        // The caller reports the error that made the file useless; the next commit replaces it.
        return;
    }
}

}  // namespace

void Pager::Commit() {
    // What a journal has brought is not a change, as long as it has not been carried out.
    if (!recovered_ || changed_.empty()) return;
    for (DeferredChanges* deferred : deferred_)
        deferred->MakeNow();
    RequireSameFile();
    RequireSameContent();
    if (observer_ != nullptr) observer_->BeforeCommit();
    const CommitCounters before = CountersOnDisk(*file_, path_);
    CountCommit();
    const std::vector<JournalPage> pages = ChangedInOrder();
    PrepareJournal(before, pages);
    NoteJournal(before);
    files_->Rename(UnfinishedJournalPath(), JournalPath());
    hasJournal_ = true;
    files_->SyncFolderOf(JournalPath());
    WriteIntoPlace(pages);
    ForgetJournal(JournalPath());
    MarkUnchanged();
    if (observer_ != nullptr) observer_->AfterCommit();
}

std::vector<JournalPage> Pager::ChangedInOrder() const {
    std::vector<JournalPage> pages;
    pages.reserve(changed_.size());
    for (const Frame& frame : changed_)
        pages.emplace_back(frame.number, frame.page.get());
    std::sort(pages.begin(), pages.end());
    return pages;
}

void Pager::MarkUnchanged() {
    for (Frame& frame : changed_)
        frame.changed = false;
    unchanged_.splice(unchanged_.begin(), changed_);
    ShrinkCache();
}

/// Each commit leaves its mark in the header, so that a journal can be told from one that belongs
/// to another state of the file.
void Pager::CountCommit() {
    Page& header = Modify(HeaderPage);
    auto count = Load<std::uint16_t>(header, header_format::CommitCountersOffset);
    // Zero would tell the database's own engine that a writer died here.
    if (++count == 0) count = 0x0100;
    Store(std::span(header), header_format::CommitCountersOffset, count);
}

/// A commit that failed while it wrote into place has left its journal. That one must stay until
/// the new one is complete, hence the other name and the renaming.
void Pager::PrepareJournal(const CommitCounters& before, std::span<const JournalPage> pages) {
    // Of a commit that failed before its journal had the final name.
    if (!hasJournal_) ForgetNote();
    try {
        WriteJournal(*files_, UnfinishedJournalPath(), pageCount_, before, pages);
        file_->Reserve(std::uint64_t{pageCount_} * PageSize);
        // All that took its time.
        RequireSameFile();
        if (file_->Facts().names > 1) files_->SyncFolderOf(JournalPath());
    } catch (const Error&) {
        RemoveQuietly(*files_, UnfinishedJournalPath());
        throw;
    }
}

/// From now on every name of the file leads to the journal, the complete one without its final name
/// included: whoever finds no note may write the file, as nothing of the commit is in it yet.
void Pager::NoteJournal(const CommitCounters& before) {
    const FileFacts facts = file_->Facts();
    const JournalNote note{.journal = files_->FullPath(JournalPath()),
                           .file = facts.number,
                           .before = Fingerprint(before),
                           .after = Fingerprint(CountersOf(*Fetch(HeaderPage).page))};
    isNoted_ = true;
    if (file_->SetNote(note.Text()) && facts.names > 1) file_->Sync();
}

void Pager::ForgetNote() {
    if (!isNoted_) return;
    if (file_->SetNote("") && file_->Facts().names > 1) file_->Sync();
    isNoted_ = false;
}

void Pager::WriteIntoPlace(std::span<const JournalPage> pages) {
    facts_.reset();
    for (const auto& [number, page] : pages)
        SumOf(number) = 0;
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
    file_->Sync();
    for (const auto& [number, page] : pages)
        SumOf(number) = Fingerprint(*page);
}

/// All its pages are in their places. The note goes first: without its journal it would say that
/// the file is not whole.
void Pager::ForgetJournal(const std::filesystem::path& journal) {
    ForgetNote();
    files_->Remove(journal);
    hasJournal_ = false;
    RenewRemark();
    facts_ = file_->Facts();
}

/// By whatever way the name leads to it.
void Pager::RequireSameFile() {
    const auto there = files_->Look(openedAs_);
    if (there && there->IsSameFile(file_->Facts())) return;
    throw Error(ErrorKind::Changed,
                openedAs_.string() + " has been " +
                    (there ? "replaced by another file" : "removed or renamed") +
                    " while it was open; nothing more is written to it.");
}

void Pager::RequireSameContent() {
    const FileFacts now = file_->Facts();
    const bool sameSize = !facts_ || facts_->size == now.size;
    if (facts_ == now || (sameSize && HasKnownPages())) return;
    throw Error(ErrorKind::Changed, path_.string() +
                                        " has been changed by another program while it was open; "
                                        "nothing more is written to it.");
}

/// Times and the like may change without the content: a copy program sets them, a file server has
/// its own clock.
bool Pager::HasKnownPages() {
    Bytes run(LongestRun * PageSize);
    for (std::size_t first = 0; first < sums_.size(); first += LongestRun) {
        const std::size_t size = file_->ReadAt(std::uint64_t{first} * PageSize, run);
        for (std::size_t i = 0; i < LongestRun && first + i < sums_.size(); ++i) {
            if (sums_[first + i] == 0) continue;
            if ((i + 1) * PageSize > size ||
                Fingerprint(std::span(run).subspan(i * PageSize, PageSize)) != sums_[first + i])
                return false;
        }
    }
    facts_ = file_->Facts();
    return true;
}

std::uint64_t& Pager::SumOf(PageNumber page) {
    if (page >= sums_.size()) sums_.resize(page + std::size_t{1});
    return sums_[page];
}

/// Others that write the file by another of its names have neither its lock file nor its journal.
void Pager::TakeForWriting() {
    const LockResult lock = file_->Lock();
    if (lock == LockResult::Held) throw Error(ErrorKind::InUse, InUseByAnotherName(path_));
    const std::uint64_t names = file_->Facts().names;
    if (names == 1 || (lock == LockResult::Taken && file_->KeepsNotes())) return;
    throw Error(ErrorKind::NotSupported,
                path_.string() + " has " + std::to_string(names) +
                    " names (hard links), and its file system cannot tell whether it is in use or "
                    "unfinished under another of them. Copy it, and put the copy in its place.");
}

/// Nothing of it reaches the file before Recover().
void Pager::TakeJournal() {
    pageCount_ = journal_.reader->PageCount();
    journal_.reader->ForEach([this](PageNumber number, const Page& page) {
        AddFrame(changed_, number, std::make_shared<Page>(page)).changed = true;
    });
}

void Pager::Recover() {
    if (!writable_ || recovered_) return;
    isNoted_ = journal_.isNoted;
    if (journal_.reader) {
        WriteIntoPlace(ChangedInOrder());
        ForgetJournal(journal_.state.file);
        MarkUnchanged();
    }
    ForgetNote();
    files_->Remove(UnfinishedJournalPath());
    files_->Remove(JournalPath());
    if (std::exchange(journal_.reader, std::nullopt)) RenewRemark();
    recovered_ = true;
    facts_ = file_->Facts();
}

}  // namespace jet::storage
