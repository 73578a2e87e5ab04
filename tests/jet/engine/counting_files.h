#pragma once

#include <memory>
#include <utility>

#include "jet/storage/file_system.h"
#include "jet/storage/format/page.h"

namespace jet {

/// The system's files, with a count of the pieces read from those that were opened through it, and
/// of the pages written to databases among them.
class CountingFiles final : public storage::FileSystem {
  public:
    std::size_t Reads() const { return *reads_; }
    std::size_t PagesWritten() const { return *pagesWritten_; }

    std::unique_ptr<storage::File> Open(const std::filesystem::path& path,
                                        storage::FileAccess access) override {
        const bool isDatabase = path.extension() == ".mdb";
        return std::make_unique<CountingFile>(real_->Open(path, access), reads_,
                                              isDatabase ? pagesWritten_ : nullptr);
    }
    bool Exists(const std::filesystem::path& path) override { return real_->Exists(path); }
    std::optional<storage::FileFacts> Look(const std::filesystem::path& path) override {
        return real_->Look(path);
    }
    std::filesystem::path Resolve(const std::filesystem::path& path) override {
        return real_->Resolve(path);
    }
    std::filesystem::path FullPath(const std::filesystem::path& path) override {
        return real_->FullPath(path);
    }
    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        real_->Rename(from, to);
    }
    void Remove(const std::filesystem::path& path) override { real_->Remove(path); }
    void SyncFolderOf(const std::filesystem::path& path) override { real_->SyncFolderOf(path); }

  private:
    using Count = std::shared_ptr<std::size_t>;

    class CountingFile final : public storage::File {
      public:
        CountingFile(std::unique_ptr<storage::File> real, Count reads, Count pagesWritten)
            : real_(std::move(real)),
              reads_(std::move(reads)),
              pagesWritten_(std::move(pagesWritten)) {}
        std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
            ++*reads_;
            return real_->ReadAt(offset, bytes);
        }
        void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
            if (pagesWritten_) *pagesWritten_ += bytes.size() / storage::PageSize;
            real_->WriteAt(offset, bytes);
        }
        void Reserve(std::uint64_t size) override { real_->Reserve(size); }
        void Sync() override { real_->Sync(); }
        storage::FileFacts Facts() override { return real_->Facts(); }
        storage::LockResult Lock() override { return real_->Lock(); }
        std::optional<std::string> Note() override { return real_->Note(); }
        bool SetNote(const std::string& text) override { return real_->SetNote(text); }
        bool KeepsNotes() override { return real_->KeepsNotes(); }
        std::optional<std::string> Remark() override { return real_->Remark(); }
        void SetRemark(const std::string& text) override { real_->SetRemark(text); }

      private:
        std::unique_ptr<storage::File> real_;
        Count reads_, pagesWritten_;
    };

    std::shared_ptr<storage::FileSystem> real_ = storage::RealFileSystem();
    Count reads_ = std::make_shared<std::size_t>(0);
    Count pagesWritten_ = std::make_shared<std::size_t>(0);
};

}  // namespace jet
