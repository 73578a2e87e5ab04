#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/row_observer.h"
#include "jet/storage/file_system.h"
#include "jet/storage/format/page_store.h"
#include "jet/storage/global_map.h"
#include "jet/storage/journal.h"
#include "jet/storage/pending_journal.h"

namespace jet::storage {

/// Somebody who puts changes off.
class DeferredChanges {
  public:
    virtual ~DeferredChanges() = default;
    /// Makes them, since a commit is near.
    virtual void MakeNow() = 0;
};

/// The pages of a database file on disk, with a bounded cache of unchanged pages.
///
/// Changed pages stay in memory until Commit() brings all of them into the file as one group: a
/// journal beside the database is made durable first and named in a note that the file itself
/// keeps, then the pages are written into place, then note and journal are removed. The note is
/// what leads to the journal where the file has several names.
class Pager final : public PageStore {
  public:
    /// Those of a file of 2 GB, the largest that a database can be.
    static constexpr PageNumber MostPages = (PageNumber{2} << 30) / PageSize;

    /// Opens the file, through symbolic links, and where it may be written keeps others from
    /// writing it. The pages of a journal that waits are taken from it, in memory.
    /// Error(InUse) where somebody else writes the file; Error(NotSupported) where that, or a
    /// journal left under another name, cannot be known; Error(Damaged) where the size is not a
    /// multiple of the page size.
    Pager(std::shared_ptr<FileSystem> files, std::filesystem::path path, bool writable);
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;
    ~Pager() override = default;

    std::shared_ptr<const Page> Read(PageNumber page) override;
    Page& Modify(PageNumber page) override;
    PageNumber Allocate() override;
    void Free(PageNumber page) override;
    PageNumber PageCount() const override { return pageCount_; }

    /// Carries out the journal that waits and removes what commits have left that did not come to
    /// their end. Happens before the first change at the latest.
    void Recover();

    /// Whether the file was looked over and found whole with the very content that it has now, as a
    /// remark with the file says. To read all of it takes a tenth of the time of looking it over.
    bool IsKnownWhole();
    /// Leaves that remark: the content, as it was read, is whole. Commits of this object keep it
    /// true.
    void RemarkThatWhole();

    /// Has `deferred` make its changes before each commit.
    void Add(DeferredChanges& deferred) { deferred_.push_back(&deferred); }
    void Remove(DeferredChanges& deferred) noexcept { std::erase(deferred_, &deferred); }

    /// Who is told of rows that change and of commits; null: nobody. Must outlive this object or be
    /// taken back.
    void SetObserver(RowObserver* observer) { observer_ = observer; }
    RowObserver* Observer() const { return observer_; }

    /// Makes all changes durable. On failure nothing is lost: the changes stay in memory, the file
    /// (with its journal) is whole, and Commit() may be called again. Error(Changed), before
    /// anything is written, where the file is not the one that was opened or not as it was left.
    void Commit();

    /// What was found when the file was opened.
    const JournalState& Journal() const { return journal_.state; }

    std::size_t ChangedPages() const { return changed_.size(); }
    /// When the oldest change that is not committed was made; meaningless without changes.
    std::chrono::steady_clock::time_point OldestChange() const { return oldestChange_; }

    const std::filesystem::path& Path() const { return path_; }
    bool IsWritable() const { return writable_; }

    /// A group of changes that is undone when this goes out of scope without Keep(). One at a time.
    class Change {
      public:
        explicit Change(Pager& pager);
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;
        ~Change();
        void Keep();

      private:
        Pager& pager_;
        bool open_ = true;
    };

  private:
    struct Frame;
    using Frames = std::list<Frame>;
    struct Frame {
        PageNumber number = 0;
        std::shared_ptr<Page> page;
        bool changed = false;
        std::uint64_t savedFor = 0;  ///< the Change that knows the content before it
        Frames::iterator place = {};
    };
    /// A page as it was before the current Change.
    struct Before {
        PageNumber number;
        bool changed;
        std::unique_ptr<Page> content;
    };

    /// The page's frame, if it is in memory.
    Frame* FindFrame(PageNumber number) const {
        return number < frames_.size() ? frames_[number] : nullptr;
    }
    Frame& Fetch(PageNumber number);
    Frame& AddFrame(Frames& frames, PageNumber number, std::shared_ptr<Page> page);
    void DropFrame(PageNumber number);
    void ShrinkCache();
    void RequireWritable();
    void MarkChanged(Frame& frame);
    void Save(Frame& frame);
    void Undo();
    PageNumber Append();

    void TakeForWriting();
    void TakeJournal();
    void Measure();
    void CountCommit();
    std::vector<JournalPage> ChangedInOrder() const;
    void MarkUnchanged();
    void PrepareJournal(const CommitCounters& before, std::span<const JournalPage> pages);
    void NoteJournal(const CommitCounters& before);
    void WriteIntoPlace(std::span<const JournalPage> pages);
    void ForgetNote();
    void ForgetJournal(const std::filesystem::path& journal);
    void RequireSameFile();
    void RequireSameContent();
    bool HasKnownPages();
    bool IsWorthARemark() const;
    std::string RemarkOfContent();
    void RenewRemark();
    std::uint64_t& SumOf(PageNumber page);
    std::filesystem::path JournalPath() const { return JournalPathFor(path_); }
    std::filesystem::path UnfinishedJournalPath() const {
        return UnfinishedJournalPathFor(JournalPath());
    }

    std::shared_ptr<FileSystem> files_;
    std::filesystem::path openedAs_;
    std::filesystem::path path_;  ///< of the file that openedAs_ leads to
    bool writable_;
    std::unique_ptr<File> file_;
    PendingJournal journal_;
    bool recovered_ = false;
    bool isNoted_ = false, hasJournal_ = false;  ///< on the disk, from a commit under way
    /// The file as it was left, to see whether somebody else has been there. None while a commit
    /// that failed has left it between two states.
    std::optional<FileFacts> facts_;
    std::vector<std::uint64_t> sums_;  ///< of the pages on the disk; 0: not known
    bool isWhole_ = false;             ///< as it was opened, it was found whole, now or earlier
    PageNumber pageCount_ = 0;
    Frames unchanged_, changed_;  ///< most recently used first
    std::vector<Frame*> frames_;  ///< by page number
    std::chrono::steady_clock::time_point oldestChange_;
    GlobalMap globalMap_;
    std::vector<DeferredChanges*> deferred_;
    RowObserver* observer_ = nullptr;

    std::uint64_t change_ = 0;  ///< number of the latest Change
    bool inChange_ = false;
    PageNumber pageCountBefore_ = 0;
    std::vector<Before> before_;
    std::vector<std::unique_ptr<Page>> spare_;  ///< buffers for `before_`, used again
};

}  // namespace jet::storage
