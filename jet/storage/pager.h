#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

#include "jet/storage/file_system.h"
#include "jet/storage/format/page_store.h"
#include "jet/storage/global_map.h"
#include "jet/storage/journal.h"

namespace jet::storage {

/// The pages of a database file on disk, with a bounded cache of unchanged pages.
///
/// Changed pages stay in memory until Commit() brings all of them into the file as one group: a
/// journal beside the database is made durable first, then the pages are written into place, then
/// the journal is removed. Opening a file whose journal is complete finishes that commit.
class Pager final : public PageStore {
  public:
    /// Opens the file. A complete journal is carried out; where `writable` is false that happens in
    /// memory only. Error(Damaged) where the size is not a multiple of the page size.
    Pager(std::shared_ptr<FileSystem> files, std::filesystem::path path, bool writable);
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;
    ~Pager() override = default;

    std::shared_ptr<const Page> Read(PageNumber page) override;
    Page& Modify(PageNumber page) override;
    PageNumber Allocate() override;
    void Free(PageNumber page) override;
    PageNumber PageCount() const override { return pageCount_; }

    /// Makes all changes durable. On failure nothing is lost: the changes stay in memory, the file
    /// (with its journal) is whole, and Commit() may be called again.
    void Commit();

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
    struct Frame {
        PageNumber number = 0;
        std::shared_ptr<Page> page;
        bool changed = false;
        std::uint64_t savedFor = 0;  ///< the Change that knows the content before it
    };
    using Frames = std::list<Frame>;
    /// A page as it was before the current Change.
    struct Before {
        PageNumber number;
        bool changed;
        std::unique_ptr<Page> content;
    };

    Frame& Fetch(PageNumber number);
    Frame& AddFrame(Frames& frames, PageNumber number, std::shared_ptr<Page> page);
    void DropFrame(PageNumber number);
    void ShrinkCache();
    void RequireWritable() const;
    void MarkChanged(Frame& frame);
    void Save(Frame& frame);
    void Undo();
    PageNumber Append();

    void Recover();
    bool Belongs(const JournalReader& journal);
    void CountCommit();
    void WriteIntoPlace(std::span<const JournalPage> pages);
    std::filesystem::path JournalPath() const;
    std::filesystem::path UnfinishedJournalPath() const;

    std::shared_ptr<FileSystem> files_;
    std::filesystem::path path_;
    bool writable_;
    std::unique_ptr<File> file_;
    PageNumber pageCount_ = 0;
    Frames unchanged_, changed_;  ///< most recently used first
    std::unordered_map<PageNumber, Frames::iterator> frames_;
    std::chrono::steady_clock::time_point oldestChange_;
    GlobalMap globalMap_;

    std::uint64_t change_ = 0;  ///< number of the latest Change
    bool inChange_ = false;
    PageNumber pageCountBefore_ = 0;
    std::vector<Before> before_;
    std::vector<std::unique_ptr<Page>> spare_;  ///< buffers for `before_`, used again
};

}  // namespace jet::storage
