#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "jet/storage/file_system.h"

namespace jet::storage::test {

/// The system's files, of which one operation fails or after which the machine loses power.
///
/// Operations that change something (write, reserve, flush, rename, remove, note) are counted.
/// Power loss drops a random part of what was not flushed: single writes (a part of one, even),
/// renamings, removals and notes. Operations that only look are counted apart.
class FaultyFileSystem final : public FileSystem,
                               public std::enable_shared_from_this<FaultyFileSystem> {
  public:
    explicit FaultyFileSystem(std::uint32_t seed) : real_(RealFileSystem()), random_(seed) {}

    enum class Fault {
        OneError,   ///< the operation throws, the next ones work
        DiskFull,   ///< it and all writes behind it throw until Repair()
        PowerLoss,  ///< it and all behind it throw; LosePower() then decides what is on the disk
    };
    /// Lets the operation fail that comes after `operations` others.
    void FailAfter(std::size_t operations, Fault fault);
    void Repair() { armed_ = broken_ = looksArmed_ = false; }
    /// Lets the look (open, read, ask) fail, once, that comes after `looks` others.
    void FailLookAfter(std::size_t looks);
    /// What is asked of it when the file system has neither notes nor locks.
    void BeSimple() { simple_ = true; }
    /// Whether the fault has happened.
    bool HasFailed() const { return failed_; }

    /// Brings the disk into a state that power loss may leave.
    void LosePower();

    std::unique_ptr<File> Open(const std::filesystem::path& path, FileAccess access) override;
    bool Exists(const std::filesystem::path& path) override;
    std::optional<FileFacts> Look(const std::filesystem::path& path) override;
    std::filesystem::path Resolve(const std::filesystem::path& path) override;
    std::filesystem::path FullPath(const std::filesystem::path& path) override;
    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
    void Remove(const std::filesystem::path& path) override;
    void SyncFolderOf(const std::filesystem::path& path) override;

  private:
    class FaultyFile;
    struct Write {
        std::uint64_t offset;
        std::string before;
        std::uint64_t sizeBefore;
    };
    struct NameChange {
        std::filesystem::path name;
        bool existed;
        std::string content;  ///< of the file that had the name
    };

    void Count(bool isWrite);
    void CountLook();
    void NoteName(const std::filesystem::path& name);

    std::shared_ptr<FileSystem> real_;
    std::mt19937 random_;
    bool armed_ = false, broken_ = false, failed_ = false;
    Fault fault_ = Fault::OneError;
    std::size_t left_ = 0;
    bool looksArmed_ = false, simple_ = false;
    std::size_t looksLeft_ = 0;
    std::map<std::filesystem::path, std::vector<Write>> unflushed_;
    std::vector<NameChange> unflushedNames_;
    /// What stood in a file's note when it was flushed last.
    std::map<std::filesystem::path, std::string> unflushedNotes_;
};

}  // namespace jet::storage::test
