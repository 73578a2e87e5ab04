#include "jet/storage/scratch_files.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "jet/error.h"
#include "jet/storage/format/page.h"

namespace jet::storage {

namespace {

/// A file's content: blocks in memory over a file that is there, or over nothing.
class ScratchContent {
  public:
    /// A new file, which others tell from the rest by its number.
    explicit ScratchContent(std::uint64_t number) : own_{.number = number} {}
    explicit ScratchContent(std::unique_ptr<File> ground)
        : ground_(std::move(ground)), size_(ground_->Size()), groundSize_(size_) {}

    std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> bytes) {
        if (offset >= size_) return 0;
        bytes = bytes.first(std::min<std::uint64_t>(bytes.size(), size_ - offset));
        if (!IsInMemory(offset, bytes.size())) ReadGround(offset, bytes);
        ForEachBlock(offset, bytes.size(), [&](std::uint64_t number, Piece piece) {
            const auto found = blocks_.find(number);
            if (found == blocks_.end()) return;
            const auto from = std::span(*found->second).subspan(piece.inBlock, piece.length);
            std::ranges::copy(from, bytes.subspan(piece.inBytes).begin());
        });
        return bytes.size();
    }

    void Write(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
        ForEachBlock(offset, bytes.size(), [&](std::uint64_t number, Piece piece) {
            const auto from = bytes.subspan(piece.inBytes, piece.length);
            std::ranges::copy(from, std::span(BlockToWrite(number)).subspan(piece.inBlock).begin());
        });
        size_ = std::max(size_, offset + bytes.size());
    }

    /// Those of the file underneath, so that what others do to it is noticed.
    FileFacts Facts() {
        FileFacts facts = ground_ ? ground_->Facts() : own_;
        const bool isAsItWas = !ground_ || facts.size == groundSize_;
        if (isAsItWas) facts.size = size_;
        return facts;
    }

    bool HasGround() const { return ground_ != nullptr; }

    std::optional<std::string> Note() {
        return note_ ? note_ : ground_ ? ground_->Note() : std::nullopt;
    }
    void SetNote(const std::string& text) { note_ = text; }
    bool KeepsNotes() { return !ground_ || ground_->KeepsNotes(); }
    std::optional<std::string> Remark() { return ground_ ? ground_->Remark() : std::nullopt; }

  private:
    using Block = std::array<std::uint8_t, PageSize>;
    struct Piece {
        std::size_t inBlock, inBytes, length;
    };

    template <typename Visit>
    static void ForEachBlock(std::uint64_t offset, std::size_t count, Visit visit) {
        for (std::size_t done = 0; done < count;) {
            const auto inBlock = static_cast<std::size_t>((offset + done) % PageSize);
            const std::size_t length = std::min(PageSize - inBlock, count - done);
            visit((offset + done) / PageSize, Piece{inBlock, done, length});
            done += length;
        }
    }

    bool IsInMemory(std::uint64_t offset, std::size_t count) const {
        bool all = true;
        ForEachBlock(offset, count, [&](std::uint64_t number, Piece) {
            if (!blocks_.contains(number)) all = false;
        });
        return all;
    }

    /// Zeros where it has none of these bytes.
    void ReadGround(std::uint64_t offset, std::span<std::uint8_t> bytes) {
        const std::size_t count = ground_ ? ground_->ReadAt(offset, bytes) : 0;
        std::ranges::fill(bytes.subspan(count), std::uint8_t{0});
    }

    Block& BlockToWrite(std::uint64_t number) {
        std::unique_ptr<Block>& block = blocks_[number];
        if (!block) {
            block = std::make_unique<Block>();
            ReadGround(number * PageSize, *block);
        }
        return *block;
    }

    std::unique_ptr<File> ground_;
    FileFacts own_;
    std::uint64_t size_ = 0, groundSize_ = 0;
    std::unordered_map<std::uint64_t, std::unique_ptr<Block>> blocks_;
    std::optional<std::string> note_;
};

class ScratchFile final : public File {
  public:
    explicit ScratchFile(std::shared_ptr<ScratchContent> content) : content_(std::move(content)) {}

    std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
        return content_->Read(offset, bytes);
    }
    void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
        content_->Write(offset, bytes);
    }
    void Reserve(std::uint64_t) override {}
    void Sync() override {}
    FileFacts Facts() override { return content_->Facts(); }
    LockResult Lock() override { return LockResult::Taken; }
    std::optional<std::string> Note() override { return content_->Note(); }
    bool SetNote(const std::string& text) override {
        content_->SetNote(text);
        return true;
    }
    bool KeepsNotes() override { return content_->KeepsNotes(); }
    std::optional<std::string> Remark() override { return content_->Remark(); }

  private:
    std::shared_ptr<ScratchContent> content_;
};

class ScratchFileSystem final : public FileSystem {
  public:
    explicit ScratchFileSystem(std::shared_ptr<FileSystem> ground) : ground_(std::move(ground)) {}

    std::unique_ptr<File> Open(const std::filesystem::path& path, FileAccess access) override {
        if (access == FileAccess::Replace) {
            changed_[path] = std::make_shared<ScratchContent>(++latestNumber_);
        } else if (!changed_.contains(path)) {
            auto file = ground_->Open(path, access);
            if (access == FileAccess::Read) return file;
            changed_[path] = std::make_shared<ScratchContent>(std::move(file));
        }
        return std::make_unique<ScratchFile>(ContentOf(path));
    }

    bool Exists(const std::filesystem::path& path) override {
        const auto found = changed_.find(path);
        return found == changed_.end() ? ground_->Exists(path) : found->second != nullptr;
    }

    std::optional<FileFacts> Look(const std::filesystem::path& path) override {
        const auto found = changed_.find(path);
        // Whether the file itself is still in its place is asked of the disk.
        if (found == changed_.end() || (found->second && found->second->HasGround()))
            return ground_->Look(path);
        if (!found->second) return std::nullopt;
        return found->second->Facts();
    }

    std::filesystem::path Resolve(const std::filesystem::path& path) override {
        return ground_->Resolve(path);
    }
    std::filesystem::path FullPath(const std::filesystem::path& path) override {
        return ground_->FullPath(path);
    }

    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        Open(from, FileAccess::ReadWrite);
        changed_[to] = std::exchange(changed_[from], nullptr);
    }
    void Remove(const std::filesystem::path& path) override { changed_[path] = nullptr; }
    void SyncFolderOf(const std::filesystem::path&) override {}

  private:
    std::shared_ptr<ScratchContent> ContentOf(const std::filesystem::path& path) {
        if (changed_.at(path)) return changed_.at(path);
        throw Error(ErrorKind::NotFound, "Cannot open " + path.string() + ": it was removed.");
    }

    std::shared_ptr<FileSystem> ground_;
    /// All that is not as on the disk; null for what was removed.
    std::map<std::filesystem::path, std::shared_ptr<ScratchContent>> changed_;
    std::uint64_t latestNumber_ = 0;
};

}  // namespace

std::shared_ptr<FileSystem> ScratchFiles(std::shared_ptr<FileSystem> ground) {
    return std::make_shared<ScratchFileSystem>(std::move(ground));
}

}  // namespace jet::storage
