#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "jet/storage/file_system.h"

namespace fuzz {

/// Files in memory, of which a target gives the first: no input touches the disk.
class MemoryFiles : public jet::storage::FileSystem {
  public:
    using Content = std::vector<std::uint8_t>;

    MemoryFiles(const std::filesystem::path& path, Content content) {
        files_[path] = std::make_shared<Content>(std::move(content));
    }

    std::unique_ptr<jet::storage::File> Open(const std::filesystem::path& path,
                                             jet::storage::FileAccess access) override {
        if (access == jet::storage::FileAccess::Replace) files_[path] = std::make_shared<Content>();
        const auto found = files_.find(path);
        if (found == files_.end())
            throw jet::Error(jet::ErrorKind::NotFound, path.string() + " does not exist.");
        return std::make_unique<MemoryFile>(found->second);
    }
    bool Exists(const std::filesystem::path& path) override { return files_.contains(path); }
    std::optional<jet::storage::FileFacts> Look(const std::filesystem::path& path) override {
        const auto found = files_.find(path);
        if (found == files_.end()) return std::nullopt;
        return jet::storage::FileFacts{.size = found->second->size()};
    }
    std::filesystem::path Resolve(const std::filesystem::path& path) override { return path; }
    std::filesystem::path FullPath(const std::filesystem::path& path) override { return path; }
    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        files_[to] = files_.at(from);
        files_.erase(from);
    }
    void Remove(const std::filesystem::path& path) override { files_.erase(path); }
    void SyncFolderOf(const std::filesystem::path& /*path*/) override {}

  private:
    class MemoryFile : public jet::storage::File {
      public:
        explicit MemoryFile(std::shared_ptr<Content> content) : content_(std::move(content)) {}

        std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
            if (offset >= content_->size()) return 0;
            const std::size_t size = std::min<std::size_t>(bytes.size(), content_->size() - offset);
            std::copy_n(content_->begin() + static_cast<std::ptrdiff_t>(offset), size,
                        bytes.begin());
            return size;
        }
        void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
            content_->resize(std::max<std::size_t>(content_->size(), offset + bytes.size()));
            std::ranges::copy(bytes, content_->begin() + static_cast<std::ptrdiff_t>(offset));
        }
        void Reserve(std::uint64_t /*size*/) override {}
        void Sync() override {}
        jet::storage::FileFacts Facts() override { return {.size = content_->size()}; }
        jet::storage::LockResult Lock() override { return jet::storage::LockResult::Taken; }
        std::optional<std::string> Note() override { return std::nullopt; }
        bool SetNote(const std::string& /*text*/) override { return false; }
        bool KeepsNotes() override { return false; }

      private:
        std::shared_ptr<Content> content_;
    };

    std::map<std::filesystem::path, std::shared_ptr<Content>> files_;
};

}  // namespace fuzz
